#include "analysis/internal/InsideTest.h"

#include "analysis/internal/FaceSampling.h"

#include <BRepBndLib.hxx>

namespace Orvex {

InsideTest::BoxedExplorer::BoxedExplorer(const TopoDS_Shape& shape)
    : BRepClass3d_SolidExplorer(shape)
{
  // The kernel takes a hit for one on the face if it is as close as this.
  constexpr double kGap = 1e-6;
  EachFace(shape, [&](const TopoDS_Face& face, int) {
    Bnd_Box box;
    BRepBndLib::Add(face, box, false);
    box.Enlarge(kGap);
    boxes.Bind(face, box);
  });
}

Standard_Boolean InsideTest::BoxedExplorer::RejectFace(const gp_Lin& line) const
{
  const Bnd_Box* box = boxes.Seek(CurrentFace());
  return box != nullptr && box->IsOut(line);
}

bool InsideTest::Holds(const gp_Pnt& point)
{
  constexpr double kTolerance = 1e-7;
  classifier.Perform(explorer, point, kTolerance);
  return classifier.State() == TopAbs_IN || classifier.State() == TopAbs_ON;
}

} // namespace Orvex
