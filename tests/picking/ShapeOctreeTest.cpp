#include "picking/OrvexOctreeUpdateController.h"
#include "picking/OrvexShapeOctree.h"
#include "picking/OrvexShapeOctreeManager.h"

#include "document/ShapeLabelMgr.h"
#include "support/Random.h"
#include "support/TestDocument.h"

#include <BRepBndLib.hxx>
#include <BRepPrimAPI_MakeBox.hxx>
#include <BRep_Builder.hxx>
#include <TopoDS_Compound.hxx>

#include <gtest/gtest.h>

#include <algorithm>

using namespace OrvexTest;

namespace {

using Shapes = std::vector<TopoDS_Shape>;

TopoDS_Shape BoxAt(double x, double y, double z, double size = 1)
{
  return BRepPrimAPI_MakeBox(gp_Pnt(x, y, z), size, size, size).Shape();
}

Bnd_Box BoxOf(const TopoDS_Shape& shape)
{
  Bnd_Box box;
  BRepBndLib::Add(shape, box, true);
  return box;
}

Bnd_Box Cell(double from, double to)
{
  Bnd_Box box;
  box.Update(from, from, from, to, to, to);
  return box;
}

Shapes Scattered(Random& random, int count)
{
  Shapes shapes;
  while (static_cast<int>(shapes.size()) < count) {
    const double x = random.Real(0, 90), y = random.Real(0, 90), z = random.Real(0, 90);
    shapes.push_back(BoxAt(x, y, z, random.Real(0.1, 9)));
  }
  return shapes;
}

std::size_t CountOf(const TopoDS_Shape& shape, const Shapes& shapes)
{
  return static_cast<std::size_t>(std::count_if(
    shapes.begin(), shapes.end(), [&](const TopoDS_Shape& other) { return other.IsEqual(shape); }));
}

// Each shape is in the answer if and only if its box says so.
template <typename IsWanted>
void ExpectOnlyWanted(const Shapes& all, const Shapes& answer, const IsWanted& isWanted)
{
  for (const TopoDS_Shape& shape : all)
    EXPECT_EQ(CountOf(shape, answer) > 0, isWanted(BoxOf(shape)));
}

TEST(ShapeOctree, QueriesAnswerByBoxes)
{
  SCOPED_TRACE(SeedNote());
  Random random(Seed());
  const Shapes shapes = Scattered(random, 400);
  OrvexShapeOctree tree(Cell(-1, 101), 6, 8);
  tree.InsertShapes(shapes);
  ExpectOnlyWanted(shapes, tree.GetAllShapes(), [](const Bnd_Box&) { return true; });
  for (int i = 0; i < 50; ++i) {
    const gp_Pnt point(random.Real(0, 100), random.Real(0, 100), random.Real(0, 100));
    const double radius = random.Real(0, 20);
    ExpectOnlyWanted(shapes, tree.GetNearestShapes(point, radius), [&](const Bnd_Box& box) {
      Bnd_Box single;
      single.Add(point);
      return box.Distance(single) <= radius;
    });
    Bnd_Box asked = Cell(random.Real(0, 50), random.Real(50, 100));
    ExpectOnlyWanted(shapes, tree.GetShapesInBox(asked),
                     [&](const Bnd_Box& box) { return !box.IsOut(asked); });
    const gp_Lin ray(point, gp_Dir(random.Real(-1, 1), random.Real(-1, 1), random.Real(0.1, 1)));
    ExpectOnlyWanted(shapes, tree.GetCandidateShapes(ray, 0),
                     [&](const Bnd_Box& box) { return !box.IsOut(ray); });
  }
}

TEST(ShapeOctree, LeavesAreSplitWhenTheyAreFull)
{
  // One shape to a leaf: the second splits the root, and what spans all cells is in each of them.
  OrvexShapeOctree tree(Cell(0, 8), 6, 1);
  tree.Insert(BoxAt(0.5, 0.5, 0.5));
  tree.Insert(BoxAt(6.5, 6.5, 6.5));
  EXPECT_EQ(tree.GetAllShapes().size(), 2U);
  const TopoDS_Shape middle = BoxAt(3.5, 3.5, 3.5);
  tree.Insert(middle);
  // In six cells it is alone; in two it meets another shape, whose cell is split until they part.
  EXPECT_EQ(CountOf(middle, tree.GetAllShapes()), 8U);
  EXPECT_EQ(tree.GetAllShapes().size(), 10U);

  // A split takes two levels from those that caused it, so depth 1 is the last.
  OrvexShapeOctree shallow(Cell(0, 8), 1, 1);
  for (int i = 0; i < 4; ++i)
    shallow.Insert(BoxAt(0.5, 0.5, 0.5 + i * 0.01));
  EXPECT_EQ(shallow.GetAllShapes().size(), 4U);
  EXPECT_EQ(shallow.GetNearestShapes({1, 1, 1}, 0).size(), 4U);
}

TEST(ShapeOctree, LinesThatOnlyTouchMissAndToleranceEnlargesShapesAlone)
{
  OrvexShapeOctree tree(Cell(0, 10), 6, 128);
  const TopoDS_Shape box = BoxAt(4, 4, 4, 2);
  tree.Insert(box);
  const double top = BoxOf(box).CornerMax().Z();
  const gp_Lin above({0, 5, top + 0.5}, gp::DX());
  EXPECT_EQ(tree.GetCandidateShapes(gp_Lin({5, 5, 20}, gp::DZ()), 0).size(), 1U)
    << "lines run both ways";
  EXPECT_TRUE(tree.GetCandidateShapes(above, 0.4).empty());
  EXPECT_EQ(tree.GetCandidateShapes(above, 0.6).size(), 1U);
  EXPECT_TRUE(tree.GetCandidateShapes(gp_Lin({0, 5, 10.5}, gp::DX()), 9).empty());
  const gp_Lin corner({0, 10, 0}, gp_Dir(1, 1, 0));
  EXPECT_TRUE(tree.GetCandidateShapes(corner, 99).empty());
}

TEST(ShapeOctree, WhatHasNoPlaceIsHeldNowhere)
{
  TopoDS_Compound empty;
  BRep_Builder().MakeCompound(empty);
  OrvexShapeOctree tree(Cell(0, 10), 6, 128);
  tree.InsertShapes({empty, TopoDS_Shape(), BoxAt(20, 20, 20)});
  EXPECT_TRUE(tree.GetAllShapes().empty());

  OrvexShapeOctree ofNothing(Bnd_Box(), 6, 128);
  ofNothing.Insert(BoxAt(0, 0, 0));
  EXPECT_TRUE(ofNothing.GetAllShapes().empty());
  EXPECT_TRUE(ofNothing.GetCandidateShapes(gp_Lin(gp::OX()), 1).empty());
  EXPECT_TRUE(ofNothing.GetNearestShapes({0, 0, 0}, 1).empty());
  EXPECT_TRUE(ofNothing.GetBoundingBox().IsVoid());
}

TEST(ShapeOctreeManager, TheTreeIsThatOfTheLastAddShapes)
{
  auto& manager = OrvexShapeOctreeManager::GetInstance();
  manager.ClearShapes();
  const gp_Lin ray({0.5, 0.5, 0}, gp::DZ());
  EXPECT_TRUE(manager.GetCandidateShapes(ray, 0).empty());
  EXPECT_TRUE(manager.IsNeedRebuild());
  const TopoDS_Shape first = BoxAt(0, 0, 0), second = BoxAt(0, 0, 5);
  manager.AddShape(first);
  EXPECT_TRUE(manager.GetCandidateShapes(ray, 0).empty());
  manager.AddShapes({});
  EXPECT_EQ(manager.GetCandidateShapes(ray, 0).size(), 1U);
  EXPECT_TRUE(manager.IsNeedRebuild());
  manager.UpdateShape(first, second);
  ASSERT_EQ(manager.GetAllShapes().size(), 1U);
  EXPECT_TRUE(manager.GetAllShapes().front().IsEqual(second));
  EXPECT_TRUE(manager.GetNearestShapes({0, 0, 0}, 0).front().IsEqual(first));
  manager.AddShapes({first, second, second.Reversed()});
  EXPECT_EQ(manager.GetShapesInBox(Cell(-1, 20)).size(), 4U);
  manager.RemoveShapes({second, TopoDS_Shape()});
  EXPECT_EQ(manager.GetAllShapes().size(), 2U);
  manager.ClearShapes();
  EXPECT_TRUE(manager.GetAllShapes().empty());
  EXPECT_TRUE(manager.GetShapesInBox(Cell(-1, 20)).empty());
  manager.AddShapes({});
  EXPECT_TRUE(manager.GetCandidateShapes(ray, 0).empty());
}

TEST(OctreeUpdateController, ComparesNumbersOfShapes)
{
  const TestDocument document;
  auto& manager = OrvexShapeOctreeManager::GetInstance();
  manager.ClearShapes();
  EXPECT_FALSE(OrvexOctreeUpdateController::NeedUpdateOctree());
  manager.AddShape(BoxAt(0, 0, 0));
  EXPECT_TRUE(OrvexOctreeUpdateController::NeedUpdateOctree());
  ShapeLabelMgr::GetInstance()->AddNewShapeToDocAndGetLabel(document.Doc(), BoxAt(1, 1, 1));
  EXPECT_FALSE(OrvexOctreeUpdateController::NeedUpdateOctree());
  OrvexOctreeUpdateController::SetForceNeedUpdateOctree(true);
  EXPECT_TRUE(OrvexOctreeUpdateController::NeedUpdateOctree());
  EXPECT_TRUE(OrvexOctreeUpdateController::NeedUpdateOctree());
  OrvexOctreeUpdateController::SetForceNeedUpdateOctree(false);
  EXPECT_FALSE(OrvexOctreeUpdateController::NeedUpdateOctree());
  manager.ClearShapes();
}

} // namespace
