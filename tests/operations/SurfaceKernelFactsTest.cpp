// What the geometry kernel does where operations on surfaces stand in its way. A test that fails
// here tells that a new kernel behaves, and that the work around it may go.
#include "support/Measures.h"
#include "support/SurfaceInputs.h"

#include <BRepAlgoAPI_Section.hxx>
#include <BRepFeat_SplitShape.hxx>
#include <BRepOffsetAPI_MakeFilling.hxx>
#include <BRepOffsetAPI_MakePipeShell.hxx>
#include <BRepOffsetAPI_ThruSections.hxx>
#include <GeomLib.hxx>
#include <Geom_Plane.hxx>
#include <Geom_RectangularTrimmedSurface.hxx>
#include <gp_Pln.hxx>

#include <gtest/gtest.h>

using namespace OrvexTest;

namespace {

bool Lofts(const std::vector<TopoDS_Wire>& sections, bool compatible, int degree,
           GeomAbs_Shape continuity, bool smoothing)
{
  BRepOffsetAPI_ThruSections loft;
  loft.CheckCompatibility(compatible);
  loft.SetSmoothing(smoothing);
  loft.SetMaxDegree(degree);
  loft.SetContinuity(continuity);
  for (const TopoDS_Wire& section : sections)
    loft.AddWire(section);
  loft.Build();
  return loft.IsDone();
}

TEST(SurfaceKernelFacts, ALoftThatCannotBeSmoothedIsFatal)
{
  const std::vector<TopoDS_Wire> circles = {CircleWire(0, 5), CircleWire(5, 6), CircleWire(9, 5)};
  EXPECT_TRUE(Lofts(circles, true, 8, GeomAbs_C2, true));
  EXPECT_TRUE(Lofts(circles, true, 3, GeomAbs_C2, false));
  EXPECT_DEATH(Lofts(circles, true, 3, GeomAbs_C2, true), "");
}

TEST(SurfaceKernelFacts, SomeSectionsAreFatal)
{
  const std::vector<TopoDS_Wire> unequal = {RegularWire(0, 5, 5), RegularWire(5, 5, 4),
                                            CircleWire(9, 5)};
  EXPECT_TRUE(Lofts(unequal, true, 8, GeomAbs_C1, false));
  EXPECT_DEATH(Lofts(unequal, false, 8, GeomAbs_C1, false), "");
  const std::vector<TopoDS_Wire> tiny = {CircleWire(0, 7e-9), CircleWire(2e-9, 8e-9),
                                         SquareWire(5e-9, 2e-7)};
  EXPECT_DEATH(Lofts(tiny, true, 8, GeomAbs_C1, false), "");
}

bool Sweeps(const TopoDS_Wire& rail2, const TopoDS_Wire& profile)
{
  BRepOffsetAPI_MakePipeShell pipe(PolygonWire({gp_Pnt(0, 0, 0), gp_Pnt(0, 0, 20)}, false));
  pipe.SetMode(rail2, true, BRepFill_ContactOnBorder);
  pipe.Add(profile, false, true);
  return pipe.IsReady();
}

TEST(SurfaceKernelFacts, ASweptProfileOutsideAPlaneAndARailWithoutACurveAreFatal)
{
  const TopoDS_Wire rail = PolygonWire({gp_Pnt(10, 0, 0), gp_Pnt(10, 0, 20)}, false);
  const gp_Pnt start(0, 0, 0), end(10, 0, 0);
  const TopoDS_Wire roof = PolygonWire({start, gp_Pnt(5, 5, 0), end}, false);
  EXPECT_TRUE(Sweeps(rail, roof));
  EXPECT_DEATH(Sweeps(rail, PolygonWire({start, end}, false)), "");
  EXPECT_DEATH(Sweeps(rail, PolygonWire({start, gp_Pnt(5, 5, 1), gp_Pnt(7, 5, 3), end}, false)),
               "");
  const TopoDS_Edge pole = TopoDS::Edge(PartsOf(BRepPrimAPI_MakeSphere(5).Shape(), TopAbs_EDGE)[1]);
  EXPECT_DEATH(Sweeps(WireFrom(PoleOfSphere()), roof), "");
}

bool Fills(const TopoDS_Shape& border, GeomAbs_Shape order)
{
  BRepOffsetAPI_MakeFilling filling;
  for (const TopoDS_Shape& edge : PartsOf(border, TopAbs_EDGE))
    filling.Add(TopoDS::Edge(edge), order, true);
  filling.Build();
  return filling.IsDone();
}

TEST(SurfaceKernelFacts, LevelsOfAFillNeedASplineSurface)
{
  EXPECT_THROW(Fills(SquareWire(0, 5), GeomAbs_G1), Standard_Failure) << "no surface at all";
  const TopoDS_Shape box = BRepPrimAPI_MakeBox(1, 2, 3).Shape();
  EXPECT_THROW(Fills(PartsOf(box, TopAbs_WIRE).front(), GeomAbs_G1), Standard_Failure);
  const TopoDS_Shape rim = PartsOf(BRepPrimAPI_MakeCylinder(5, 8).Shape(), TopAbs_EDGE).front();
  EXPECT_TRUE(Fills(rim, GeomAbs_C0));
  EXPECT_DEATH(Fills(rim, GeomAbs_G1), "");
}

bool Splits(const TopoDS_Face& face, const TopoDS_Edge& edge)
{
  BRepFeat_SplitShape splitter(face);
  splitter.Add(edge, face);
  splitter.Build();
  return splitter.IsDone();
}

TEST(SurfaceKernelFacts, ASplitAlongAnEdgeWithoutACurveIsFatal)
{
  const TopoDS_Face face = BRepBuilderAPI_MakeFace(gp_Pln(gp::XOY()), 0, 10, 0, 4);
  const TopoDS_Edge pole = TopoDS::Edge(PartsOf(BRepPrimAPI_MakeSphere(5).Shape(), TopAbs_EDGE)[1]);
  EXPECT_TRUE(Splits(face, LineEdge(gp_Pnt(3, 0, 0), gp_Pnt(3, 4, 0))));
  const TopoDS_Shape sphere = BRepPrimAPI_MakeSphere(3).Shape();
  EXPECT_DEATH(Splits(TopoDS::Face(PartsOf(sphere, TopAbs_FACE).front()), PoleOfSphere()), "");
}

TEST(SurfaceKernelFacts, NoExtensionAboveOrderThree)
{
  for (const int order : {0, 1, 2, 3, 4}) {
    Handle(Geom_BoundedSurface) surface =
      new Geom_RectangularTrimmedSurface(new Geom_Plane(gp::XOY()), 0.0, 10.0, 0.0, 4.0);
    GeomLib::ExtendSurfByLength(surface, 3, order, true, true);
    double uFirst = 0, uLast = 0, vFirst = 0, vLast = 0;
    surface->Bounds(uFirst, uLast, vFirst, vLast);
    const double length = surface->Value(uFirst, vFirst).Distance(surface->Value(uLast, vFirst));
    EXPECT_NEAR(length, order > 3 ? 10 : 13, 1e-6) << order;
  }
}

} // namespace
