// Small shapes for tests of replay: one face or edge of each kind, and solids that stand for the
// strategies.
#pragma once

#include <BRepAlgoAPI_Cut.hxx>
#include <BRepBuilderAPI_MakeEdge.hxx>
#include <BRepBuilderAPI_MakeFace.hxx>
#include <BRepBuilderAPI_MakeWire.hxx>
#include <BRepOffsetAPI_ThruSections.hxx>
#include <BRepPrimAPI_MakeBox.hxx>
#include <BRepPrimAPI_MakeCylinder.hxx>
#include <BRepPrimAPI_MakeRevol.hxx>
#include <BRepPrimAPI_MakeSphere.hxx>
#include <BRepPrimAPI_MakeTorus.hxx>
#include <Geom_BSplineCurve.hxx>
#include <Geom_BSplineSurface.hxx>
#include <Geom_BezierCurve.hxx>
#include <Geom_BezierSurface.hxx>
#include <Geom_ConicalSurface.hxx>
#include <Geom_CylindricalSurface.hxx>
#include <Geom_OffsetSurface.hxx>
#include <Geom_Plane.hxx>
#include <Geom_SphericalSurface.hxx>
#include <Geom_SurfaceOfLinearExtrusion.hxx>
#include <Geom_SurfaceOfRevolution.hxx>
#include <Geom_ToroidalSurface.hxx>
#include <TColStd_Array1OfInteger.hxx>
#include <TColStd_Array1OfReal.hxx>
#include <TColStd_Array2OfReal.hxx>
#include <TColgp_Array1OfPnt.hxx>
#include <TColgp_Array2OfPnt.hxx>
#include <TopoDS.hxx>
#include <gp_Circ.hxx>

#include <vector>

namespace OrvexTest {

inline TopoDS_Shape BoxSolid()
{
  return BRepPrimAPI_MakeBox(10, 20, 30).Shape();
}

inline TopoDS_Shape CylinderSolid(double radius = 4)
{
  return BRepPrimAPI_MakeCylinder(radius, 9).Shape();
}

inline TopoDS_Shape HoledBoxSolid()
{
  const gp_Ax2 axis(gp_Pnt(5, 10, -1), gp::DZ());
  return BRepAlgoAPI_Cut(BoxSolid(), BRepPrimAPI_MakeCylinder(axis, 2, 40).Shape()).Shape();
}

// A patch of a surface: a small range that every kind has.
inline TopoDS_Face FaceOn(const Handle(Geom_Surface) & surface)
{
  return BRepBuilderAPI_MakeFace(surface, 0.25, 0.75, 0.25, 0.75, 1e-7).Face();
}

inline TopoDS_Edge BezierEdge(const std::vector<double>& weights)
{
  TColgp_Array1OfPnt poles(1, 3);
  TColStd_Array1OfReal values(1, 3);
  for (int i = 1; i <= 3; ++i) {
    poles(i) = gp_Pnt(i, i == 2, 0);
    values(i) = weights[static_cast<std::size_t>(i - 1)];
  }
  return BRepBuilderAPI_MakeEdge(new Geom_BezierCurve(poles, values)).Edge();
}

// Of degree 2 with four poles and knots at 0, 1/2 and 1, beside the Z axis.
inline Handle(Geom_BSplineCurve) SplineCurve()
{
  TColgp_Array1OfPnt poles(1, 4);
  for (int i = 1; i <= 4; ++i)
    poles(i) = gp_Pnt(5 + (i % 2), 0, i);
  TColStd_Array1OfReal knots(1, 3);
  TColStd_Array1OfInteger multiplicities(1, 3);
  for (int i = 1; i <= 3; ++i) {
    knots(i) = (i - 1) * 0.5;
    multiplicities(i) = i == 2 ? 1 : 3;
  }
  return new Geom_BSplineCurve(poles, knots, multiplicities, 2);
}

inline TopoDS_Edge SplineEdge()
{
  return BRepBuilderAPI_MakeEdge(SplineCurve()).Edge();
}

inline TopoDS_Face RevolvedSpline()
{
  return FaceOn(new Geom_SurfaceOfRevolution(SplineCurve(), gp::OZ()));
}

inline TopoDS_Face ExtrudedSpline()
{
  return FaceOn(new Geom_SurfaceOfLinearExtrusion(SplineCurve(), gp::DZ()));
}

inline TopoDS_Face OffsetFace()
{
  const Handle(Geom_Surface) revolved = new Geom_SurfaceOfRevolution(SplineCurve(), gp::OZ());
  return FaceOn(new Geom_OffsetSurface(revolved, 0.1));
}

// Degrees 1 and 2, two rows of four poles (i, j, i * j), with weights 1 + i * j if rational.
inline TopoDS_Face SplineFace(bool rational)
{
  TColgp_Array2OfPnt poles(1, 2, 1, 4);
  TColStd_Array2OfReal weights(1, 2, 1, 4);
  for (int i = 0; i < 2; ++i)
    for (int j = 0; j < 4; ++j) {
      poles(i + 1, j + 1) = gp_Pnt(i, j, i * j);
      weights(i + 1, j + 1) = rational ? 1 + i * j : 1;
    }
  TColStd_Array1OfReal uKnots(1, 2), vKnots(1, 3);
  TColStd_Array1OfInteger uMultiplicities(1, 2), vMultiplicities(1, 3);
  for (int i = 1; i <= 2; ++i) {
    uKnots(i) = i - 1;
    uMultiplicities(i) = 2;
  }
  for (int i = 1; i <= 3; ++i) {
    vKnots(i) = (i - 1) * 0.5;
    vMultiplicities(i) = i == 2 ? 1 : 3;
  }
  return FaceOn(new Geom_BSplineSurface(poles, weights, uKnots, vKnots, uMultiplicities,
                                        vMultiplicities, 1, 2));
}

inline TopoDS_Face BezierFace()
{
  TColgp_Array2OfPnt poles(1, 2, 1, 2);
  for (int i = 1; i <= 2; ++i)
    for (int j = 1; j <= 2; ++j)
      poles(i, j) = gp_Pnt(i, j, i * j);
  return FaceOn(new Geom_BezierSurface(poles));
}

inline TopoDS_Shape RevolvedSolid()
{
  const TopoDS_Wire profile =
    BRepBuilderAPI_MakeWire(SplineEdge(), BRepBuilderAPI_MakeEdge(gp_Pnt(5, 0, 4), gp_Pnt(0, 0, 4)),
                            BRepBuilderAPI_MakeEdge(gp_Pnt(0, 0, 4), gp_Pnt(0, 0, 1)),
                            BRepBuilderAPI_MakeEdge(gp_Pnt(0, 0, 1), gp_Pnt(6, 0, 1)));
  return BRepPrimAPI_MakeRevol(BRepBuilderAPI_MakeFace(profile).Face(), gp::OZ()).Shape();
}

// Through circles, so that its wall is a B-spline.
inline TopoDS_Shape LoftedSolid()
{
  BRepOffsetAPI_ThruSections loft(true, false);
  for (int i = 0; i < 3; ++i) {
    const gp_Circ circle(gp_Ax2(gp_Pnt(0, 0, 5 * i), gp::DZ()), 3 + i % 2);
    loft.AddWire(BRepBuilderAPI_MakeWire(BRepBuilderAPI_MakeEdge(circle)));
  }
  return loft.Shape();
}

inline std::vector<TopoDS_Shape> GoldenShapes()
{
  return {BoxSolid(),
          HoledBoxSolid(),
          CylinderSolid(),
          BRepPrimAPI_MakeSphere(5).Shape(),
          BRepPrimAPI_MakeTorus(9, 2).Shape(),
          RevolvedSolid(),
          LoftedSolid()};
}

} // namespace OrvexTest
