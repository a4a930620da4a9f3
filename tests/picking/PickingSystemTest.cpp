#include "picking/OCCPickingSystem.h"

#include "picking/OCCPickingSystemImpl.h"
#include "picking/internal/CurvePick.h"
#include "support/DetailedLog.h"
#include "support/Plate.h"
#include "support/Random.h"

#include <BRepAdaptor_Curve.hxx>
#include <BRepAlgoAPI_Cut.hxx>
#include <BRepBndLib.hxx>
#include <BRepBuilderAPI_MakeEdge.hxx>
#include <BRepBuilderAPI_MakeFace.hxx>
#include <BRepBuilderAPI_MakeVertex.hxx>
#include <BRepExtrema_DistShapeShape.hxx>
#include <BRepIntCurveSurface_Inter.hxx>
#include <BRepPrimAPI_MakeBox.hxx>
#include <BRepPrimAPI_MakeCylinder.hxx>
#include <BRepPrimAPI_MakeHalfSpace.hxx>
#include <BRepPrimAPI_MakeSphere.hxx>
#include <BRepPrimAPI_MakeTorus.hxx>
#include <BRep_Builder.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>
#include <gp_Pln.hxx>

#include <gtest/gtest.h>

#include <cmath>

using namespace OrvexTest;

namespace {

using Shapes = std::vector<TopoDS_Shape>;
using Results = std::vector<PickResult>;

TopoDS_Shape CubeAt(double x)
{
  return BRepPrimAPI_MakeBox(gp_Pnt(x, 0, 0), 10, 10, 10).Shape();
}

Results Pick(const Shapes& shapes, PickingLevel level, const gp_Lin& ray)
{
  OCCPickingSystem picking;
  picking.SetShapesToPick(shapes);
  picking.SetPickingLevel(level);
  return picking.PickShapes(ray);
}

const gp_Lin kAlongX({-5, 3, 4}, gp::DX());

TEST(PickingSystem, FacesAreHitOnTheWholeLineNearestFirst)
{
  const Shapes shapes = {CubeAt(20), CubeAt(0), CubeAt(-31)};
  const Results results = Pick(shapes, PickingLevel::Face, kAlongX);
  ASSERT_EQ(results.size(), 6U);
  const double xs[] = {0, 10, -21, 20, -31, 30};
  const std::size_t owners[] = {1, 1, 2, 0, 2, 0};
  for (std::size_t i = 0; i < 6; ++i) {
    EXPECT_NEAR(results[i].point.Distance({xs[i], 3, 4}), 0, 1e-9);
    EXPECT_NEAR(results[i].parameter, xs[i] + 5, 1e-9);
    EXPECT_EQ(results[i].shapeIndex, owners[i]);
    EXPECT_EQ(results[i].level, 2);
    EXPECT_TRUE(results[i].hit && results[i].parentShape.IsNull());
    const auto surface = BRep_Tool::Surface(TopoDS::Face(results[i].subShape));
    EXPECT_NEAR(surface->Value(results[i].u, results[i].v).Distance(results[i].point), 0, 1e-9);
  }
}

TEST(PickingSystem, EdgesAreHitWithinTheTolerance)
{
  OCCPickingSystem picking;
  picking.SetShapesToPick({CubeAt(0)});
  picking.SetPickingLevel(PickingLevel::Edge);
  // Past the edge from (0, 0, 10) to (0, 10, 10), 0.25 below it.
  const gp_Lin ray({-5, 3, 9.75}, gp::DX());
  EXPECT_TRUE(picking.PickShapes(ray).empty());
  picking.SetPickingTolerance(0.2500001);
  const Results results = picking.PickShapes(ray);
  // Each edge is met once for each of its two faces.
  ASSERT_EQ(results.size(), 4U);
  EXPECT_NEAR(results.front().point.Distance({0, 3, 10}), 0, 1e-6);
  EXPECT_EQ(results.front().level, 1);
  const TopoDS_Edge edge = TopoDS::Edge(results.front().subShape);
  double first = 0, last = 0;
  const auto curve = BRep_Tool::Curve(edge, first, last);
  EXPECT_EQ(curve->Value(results.front().parameter).Distance(results.front().point), 0);
  picking.SetPickingTolerance(0.2499999);
  EXPECT_TRUE(picking.PickShapes(ray).empty());
  // Along two entries of an edge, just as far as the tolerance, and across two other edges.
  const gp_Lin along({0.25, -5, 0}, gp::DY());
  EXPECT_EQ(picking.PickShapes(along).size(), 4U);
  picking.SetPickingTolerance(0.25);
  EXPECT_EQ(picking.PickShapes(along).size(), 6U);
  // The boxes of shapes are not enlarged.
  picking.SetPickingTolerance(5);
  EXPECT_TRUE(picking.PickShapes(gp_Lin({-5, 3, 10.25}, gp::DX())).empty());
}

TEST(PickingSystem, VerticesAreHitWithinAFixedTolerance)
{
  const gp_Lin diagonal({20, 20, 20}, gp_Dir(1, 1, 1));
  const Results results = Pick({CubeAt(0)}, PickingLevel::Vertex, diagonal);
  // Each vertex is met once for each edge's end.
  ASSERT_EQ(results.size(), 12U);
  EXPECT_NEAR(results.front().point.Distance({10, 10, 10}), 0, 1e-9);
  EXPECT_EQ(results.front().level, 0);
  EXPECT_EQ(results.front().parameter, 0);
  const TopoDS_Shape vertex = BRepBuilderAPI_MakeVertex(gp_Pnt(1, 0, 0)).Shape();
  EXPECT_EQ(Pick({vertex}, PickingLevel::Vertex, gp_Lin({1, 0, 9}, gp::DZ())).size(), 1U);
  const gp_Lin close({10 - 0.9e-6, 10, 0}, gp::DZ()), apart({10 - 1.1e-6, 10, 0}, gp::DZ());
  EXPECT_FALSE(Pick({CubeAt(0)}, PickingLevel::Vertex, close).empty());
  EXPECT_TRUE(Pick({CubeAt(0)}, PickingLevel::Vertex, apart).empty());
}

TEST(PickingSystem, SolidsAreSeenAgainstTheLinesDirection)
{
  const Shapes shapes = {CubeAt(0), CubeAt(40),
                         TopExp_Explorer(CubeAt(20), TopAbs_SHELL).Current()};
  const gp_Lin ray({100, 3, 4}, gp::DX());
  const Results results = Pick(shapes, PickingLevel::Solid, ray);
  ASSERT_EQ(results.size(), 2U);
  EXPECT_EQ(results[0].shapeIndex, 1U);
  EXPECT_NEAR(results[0].parameter, 50, 1e-9);
  EXPECT_EQ(results[0].level, 2);
  EXPECT_EQ(results[0].subShape.ShapeType(), TopAbs_FACE);
  EXPECT_TRUE(results[0].parentShape.IsEqual(shapes[1]));
  EXPECT_EQ(results[1].shapeIndex, 0U);
  EXPECT_TRUE(Pick(shapes, PickingLevel::Solid, ray.Reversed()).empty());
}

TEST(PickingSystem, ScansFollowLengthAndTolerance)
{
  EXPECT_EQ(Orvex::CountScanSteps(100, 0.01), 2048);
  EXPECT_EQ(Orvex::CountScanSteps(100, 1), 200);
  EXPECT_EQ(Orvex::CountScanSteps(100, 50), 128);
  EXPECT_EQ(Orvex::CountScanSteps(1e-8, 0.01), 128);
  EXPECT_EQ(Orvex::CountScanSteps(1e-3, 0.01), 128);
  EXPECT_EQ(Orvex::CountScanSteps(1e-3, 0), 2000);
  EXPECT_EQ(Orvex::CountScanSteps(100.7, 1), 201);
}

Shapes Models()
{
  gp_Trsf aside;
  aside.SetTranslation(gp_Vec(4, 2, 1));
  return {BRepPrimAPI_MakeTorus(6, 2).Shape(), BRepPrimAPI_MakeSphere(gp_Pnt(-8, 0, 0), 3).Shape(),
          PerforatedPlate(3).Moved(aside),
          BRepAlgoAPI_Cut(CubeAt(-4), BRepPrimAPI_MakeCylinder(gp_Ax2({1, 5, -1}, gp::DZ()), 2, 12))
            .Shape()};
}

gp_Lin AnyLine(Random& random)
{
  const auto number = [&](double size) { return random.Real(-size, size); };
  const double x = number(12), y = number(12), z = number(12);
  const double dx = number(1), dy = number(1), dz = number(1);
  return {gp_Pnt(x, y, z), gp_Dir(dx, dy, dz)};
}

// What is not looked at because of its box would not have been hit.
TEST(PickingSystem, BoxesHideNothing)
{
  SCOPED_TRACE(SeedNote());
  Random random(Seed());
  const Shapes models = Models();
  OCCPickingSystem picking;
  picking.SetShapesToPick(models);
  picking.SetPickingTolerance(0.5);
  int faces = 0, edges = 0;
  for (int i = 0; i < 300; ++i) {
    const gp_Lin ray = AnyLine(random);
    std::size_t faceHits = 0, edgeHits = 0;
    for (const TopoDS_Shape& model : models) {
      for (TopExp_Explorer face(model, TopAbs_FACE); face.More(); face.Next()) {
        BRepIntCurveSurface_Inter crossing;
        crossing.Init(TopoDS::Face(face.Current()), ray, 1e-7);
        faceHits += crossing.More() ? 1 : 0;
      }
      Bnd_Box box;
      BRepBndLib::Add(model, box, true);
      if (box.IsOut(ray))
        continue;
      for (TopExp_Explorer edge(model, TopAbs_EDGE); edge.More(); edge.Next()) {
        const auto place = Orvex::NearestPlace(TopoDS::Edge(edge.Current()), ray, 0.5);
        edgeHits += place && place->distance <= 0.5 ? 1 : 0;
      }
    }
    picking.SetPickingLevel(PickingLevel::Face);
    EXPECT_EQ(picking.PickShapes(ray).size(), faceHits);
    picking.SetPickingLevel(PickingLevel::Edge);
    EXPECT_EQ(picking.PickShapes(ray).size(), edgeHits);
    faces += static_cast<int>(faceHits);
    edges += static_cast<int>(edgeHits);
  }
  EXPECT_GT(faces, 100);
  EXPECT_GT(edges, 50);
}

TEST(PickingSystem, TheNearestPlaceOnAnEdgeIsTheKernels)
{
  SCOPED_TRACE(SeedNote());
  Random random(Seed());
  for (const TopoDS_Shape& model : Models())
    for (TopExp_Explorer found(model, TopAbs_EDGE); found.More(); found.Next()) {
      const TopoDS_Edge edge = TopoDS::Edge(found.Current());
      const gp_Lin ray = AnyLine(random);
      const auto place = Orvex::NearestPlace(edge, ray, 0.01);
      ASSERT_EQ(place.has_value(), !BRep_Tool::Degenerated(edge));
      if (!place)
        continue;
      const TopoDS_Edge line = BRepBuilderAPI_MakeEdge(ray, -200, 200);
      EXPECT_NEAR(place->distance, BRepExtrema_DistShapeShape(edge, line).Value(), 1e-4);
    }
}

TEST(PickingSystem, CopiesPickFromTheirOwnList)
{
  OCCPickingSystemImpl picking;
  picking.SetPickingLevel(PickingLevel::Face);
  EXPECT_TRUE(picking.PickShapes(kAlongX).empty());
  picking.SetShapes({CubeAt(0)});
  const OCCPickingSystemImpl copy = picking;
  picking.SetShapes({});
  EXPECT_TRUE(picking.PickShapes(kAlongX).empty());
  OCCPickingSystemImpl moved(copy);
  EXPECT_EQ(moved.PickShapes(kAlongX).size(), 2U);
  picking = std::move(moved);
  picking.SetPickingLevel(PickingLevel::None);
  EXPECT_TRUE(picking.PickShapes(kAlongX).empty());
}

TEST(PickingSystem, WhatCannotBePickedIsPassedOver)
{
  TopoDS_Compound empty;
  BRep_Builder().MakeCompound(empty);
  TopoDS_Face bare;
  BRep_Builder().MakeFace(bare);
  const TopoDS_Face plane = BRepBuilderAPI_MakeFace(gp_Pln(gp::XOY()));
  const Shapes shapes = {
    TopoDS_Shape(), empty, bare, plane, BRepPrimAPI_MakeHalfSpace(plane, gp_Pnt(0, 0, 1)).Solid(),
    CubeAt(0)};
  for (const auto& [level, hits] :
       {std::pair(PickingLevel::Vertex, 0), std::pair(PickingLevel::Edge, 0),
        std::pair(PickingLevel::Face, 2), std::pair(PickingLevel::Solid, 0)}) {
    const Results results = Pick(shapes, level, kAlongX);
    EXPECT_EQ(results.size(), static_cast<std::size_t>(hits));
    for (const PickResult& result : results)
      EXPECT_EQ(result.shapeIndex, 5U);
    const gp_Lin none(gp_Pnt(std::nan(""), 0, 0), gp::DX());
    EXPECT_TRUE(Pick(shapes, level, none).empty());
  }
}

TEST(PickingSystem, EveryFaceHasALineInADetailedLog)
{
  OrvexDebugLogFile* log = OrvexDebugLogFile::GetInstance();
  const DetailedLog detailed;
  const std::size_t before = log->Lines().size();
  Pick({CubeAt(0), CubeAt(0), CubeAt(90).Moved(gp_Trsf())}, PickingLevel::Face,
       gp_Lin({5, 5, 0}, gp::DZ()));
  const std::vector<std::string> lines = log->Lines();
  ASSERT_EQ(lines.size(), before + 12);
  for (std::size_t i = before; i < lines.size(); ++i)
    EXPECT_TRUE(lines[i].rfind("Pick Cost time: ", 0) == 0 ||
                lines[i].rfind("Pick Face time: ", 0) == 0)
      << lines[i];
}

} // namespace
