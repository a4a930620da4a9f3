// Whether points lie inside of a shape.
//
// This is BRepClass3d_SolidClassifier, which intersects a line of its choice with every face of the
// shape; here faces whose boxes the line misses are passed over. The answers are the same: also on
// open and invalid shapes, where they depend on the line, and where the kernel errs.
#pragma once

#include <BRepClass3d_SClassifier.hxx>
#include <BRepClass3d_SolidExplorer.hxx>
#include <NCollection_DataMap.hxx>
#include <TopTools_ShapeMapHasher.hxx>
#include <TopoDS_Shape.hxx>
#include <gp_Lin.hxx>
#include <gp_Pnt.hxx>

namespace Orvex {

// One for each thread.
class InsideTest
{
public:
  explicit InsideTest(const TopoDS_Shape& shape) : explorer(shape)
  {}

  // Also for points on the surface, within 1e-7.
  bool Holds(const gp_Pnt& point);

private:
  class BoxedExplorer : public BRepClass3d_SolidExplorer
  {
  public:
    explicit BoxedExplorer(const TopoDS_Shape& shape);
    Standard_Boolean RejectFace(const gp_Lin& line) const override;

  private:
    NCollection_DataMap<TopoDS_Shape, Bnd_Box, TopTools_ShapeMapHasher> boxes;
  };

  BoxedExplorer explorer;
  BRepClass3d_SClassifier classifier;
};

} // namespace Orvex
