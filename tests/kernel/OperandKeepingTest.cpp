#include "kernel/internal/OperandKeeping.h"

#include "support/Measures.h"
#include "support/OperandPairs.h"
#include "support/Random.h"
#include "support/TestDocument.h"

#include <BRepAlgoAPI_Fuse.hxx>
#include <BRepBuilderAPI_Copy.hxx>
#include <BRepCheck_Analyzer.hxx>
#include <BRepPrimAPI_MakeCone.hxx>
#include <BRepPrimAPI_MakeSphere.hxx>
#include <BRepPrimAPI_MakeTorus.hxx>
#include <BRepTools.hxx>
#include <BRep_TEdge.hxx>
#include <BRep_Tool.hxx>
#include <Standard_Failure.hxx>
#include <TopExp.hxx>
#include <TopTools_IndexedMapOfShape.hxx>

#include <gtest/gtest.h>

#include <array>
#include <sstream>

using namespace OrvexTest;

namespace {

constexpr std::array kOperations = {BOPAlgo_FUSE, BOPAlgo_CUT, BOPAlgo_COMMON};

// Sums over the edges of a shape.
struct EdgeFacts
{
  explicit EdgeFacts(const TopoDS_Shape& shape)
  {
    TopTools_IndexedMapOfShape edges;
    TopExp::MapShapes(shape, TopAbs_EDGE, edges);
    for (int i = 1; i <= edges.Extent(); ++i) {
      const TopoDS_Shape& edge = edges(i);
      curves += Handle(BRep_TEdge)::DownCast(edge.TShape())->Curves().Extent();
      tolerances += BRep_Tool::Tolerance(TopoDS::Edge(edge));
    }
  }

  int curves = 0;
  double tolerances = 0;
};

// What the kernel says with its defaults, on copies that nothing else sees.
struct KernelAnswer
{
  KernelAnswer(BOPAlgo_Operation operation, const TopoDS_Shape& first, const TopoDS_Shape& second)
  {
    TopTools_ListOfShape arguments, tools;
    arguments.Append(BRepBuilderAPI_Copy(first).Shape());
    tools.Append(BRepBuilderAPI_Copy(second).Shape());
    BRepAlgoAPI_BooleanOperation boolean;
    boolean.SetOperation(operation);
    boolean.SetArguments(arguments);
    boolean.SetTools(tools);
    boolean.Build();
    if (boolean.IsDone())
      shape = boolean.Shape();
  }

  TopoDS_Shape shape;
};

void ExpectKeptAndSameAsTheKernel(BOPAlgo_Operation operation, const OperandPair& pair)
{
  SCOPED_TRACE(pair.name + ", operation " + std::to_string(operation));
  const TopoDS_Shape expected = KernelAnswer(operation, pair.first, pair.second).shape;
  const std::string first = BrepOf(pair.first), second = BrepOf(pair.second);
  const TopoDS_Shape result = Orvex::BooleanOf(operation, pair.first, pair.second);
  EXPECT_TRUE(SameDump(BrepOf(pair.first), first));
  EXPECT_TRUE(SameDump(BrepOf(pair.second), second));
  ASSERT_EQ(result.IsNull(), expected.IsNull());
  if (result.IsNull())
    return;
  const double volume = VolumeOf(expected), area = AreaOf(expected);
  EXPECT_NEAR(VolumeOf(result), volume, 1e-6 * (1 + std::abs(volume)));
  EXPECT_NEAR(AreaOf(result), area, 1e-6 * (1 + area));
  EXPECT_EQ(BRepCheck_Analyzer(result).IsValid(), BRepCheck_Analyzer(expected).IsValid());
}

// --- Kernel defects. When one of these fails, Orvex::BooleanOf can do without its cure. ---

TEST(KernelDefect, BooleansAddCurvesToTheEdgesOfTheirOperands)
{
  const OperandPair boxes = TouchingBoxes();
  const int before = EdgeFacts(boxes.second).curves;
  const BRepAlgoAPI_Fuse fuse(boxes.first, boxes.second);
  EXPECT_EQ(EdgeFacts(boxes.second).curves, before + 4);
}

TEST(KernelDefect, BooleansRaiseTheTolerancesOfTheirOperands)
{
  const TopoDS_Shape low = BoxAt(0, 0, 0), high = BoxAt(10 + 1.5e-7, 2, 2, 5);
  const double before = EdgeFacts(high).tolerances;
  const BRepAlgoAPI_Fuse fuse(low, high);
  EXPECT_GT(EdgeFacts(high).tolerances, before + 1e-7);
}

TEST(KernelDefect, NonDestructiveBooleansTakeTheMarkFreeFromTheirOperands)
{
  const TopoDS_Shape box = BoxAt(0, 0, 0);
  TopTools_ListOfShape arguments, tools;
  arguments.Append(box);
  tools.Append(BoxAt(50, 0, 0));
  BRepAlgoAPI_Fuse fuse;
  fuse.SetArguments(arguments);
  fuse.SetTools(tools);
  fuse.SetNonDestructive(true);
  fuse.Build();
  EXPECT_FALSE(box.Free());
}

// --- Booleans without them ---

TEST(OperandKeeping, OperandsStayBitForBitAndResultsAreTheKernels)
{
  std::vector<OperandPair> pairs = SolidPairs();
  pairs.push_back(SolidAndFace());
  pairs.push_back({"a face and a solid", pairs.back().second, pairs.back().first});
  for (const OperandPair& pair : pairs)
    for (const BOPAlgo_Operation operation : kOperations)
      ExpectKeptAndSameAsTheKernel(operation, pair);
}

TEST(OperandKeeping, AResultThatHoldsItsOperandsIsAnOperandLikeAnyOther)
{
  const OperandPair boxes = DisjointBoxes();
  const TopoDS_Shape both = Orvex::BooleanOf(BOPAlgo_FUSE, boxes.first, boxes.second);
  const TopoDS_Shape together = Orvex::CompoundOf(both, boxes.first);
  const std::vector<TopoDS_Shape> shapes = {boxes.first, boxes.second, both, together};
  std::vector<std::string> before;
  for (const TopoDS_Shape& shape : shapes)
    before.push_back(BrepOf(shape));
  for (const TopoDS_Shape& shape : shapes)
    for (const BOPAlgo_Operation operation : kOperations)
      Orvex::BooleanOf(operation, shape, BoxAt(100, 0, 0));
  for (std::size_t i = 0; i < shapes.size(); ++i)
    EXPECT_TRUE(SameDump(BrepOf(shapes[i]), before[i])) << i;
}

// Whole numbers make faces, edges and vertices of the two meet often.
gp_Ax2 RandomAxes(Random& random)
{
  const gp_Pnt corner(random.Index(7) - 3, random.Index(7) - 3, random.Index(7) - 3);
  const gp_Dir directions[] = {gp::DX(), gp::DY(), gp::DZ(), gp_Dir(1, 2, 2)};
  return {corner, directions[random.Index(4)]};
}

TopoDS_Shape RandomPrimitive(Random& random)
{
  const gp_Ax2 axes = RandomAxes(random);
  const int size = 1 + random.Index(4);
  switch (random.Index(5)) {
  case 0:
    return BRepPrimAPI_MakeCylinder(axes, size, 3).Shape();
  case 1:
    return BRepPrimAPI_MakeSphere(axes, size).Shape();
  case 2:
    return BRepPrimAPI_MakeCone(axes, size, 0.5 * random.Index(2), 3).Shape();
  case 3:
    return BRepPrimAPI_MakeTorus(axes, 3, 1).Shape();
  default:
    return BRepPrimAPI_MakeBox(axes, size, 2, 3).Shape();
  }
}

TopoDS_Shape FirstFace(const TopoDS_Shape& shape)
{
  return TopExp_Explorer(shape, TopAbs_FACE).Current();
}

TopoDS_Shape ReadBack(const TopoDS_Shape& shape)
{
  std::istringstream text(BrepOf(shape));
  TopoDS_Shape read;
  BRepTools::Read(read, text, BRep_Builder());
  return read;
}

TopoDS_Shape Moved(const TopoDS_Shape& shape)
{
  gp_Trsf step;
  step.SetTranslation(gp_Vec(1, 0, 2));
  return shape.Moved(step);
}

TopoDS_Shape RandomOperand(Random& random)
{
  const TopoDS_Shape shape = RandomPrimitive(random);
  switch (random.Index(8)) {
  case 0:
    return FirstFace(shape);
  case 1:
    return ReadBack(shape);
  case 2:
    return Moved(shape);
  case 3:
    return WithLooseVertices(shape, 1e-3);
  case 4:
    return Orvex::BooleanOf(BOPAlgo_FUSE, shape, RandomPrimitive(random));
  case 5:
    return Orvex::CompoundOf(shape, RandomPrimitive(random));
  default:
    return shape;
  }
}

TEST(OperandKeeping, SoItIsForRandomOperands)
{
  Random random(Seed());
  for (int round = 0; round < 45; ++round) {
    OperandPair pair{SeedNote() + ", round " + std::to_string(round), RandomOperand(random), {}};
    pair.second = random.Index(8) == 0 ? Moved(pair.first) : RandomOperand(random);
    ExpectKeptAndSameAsTheKernel(kOperations[static_cast<std::size_t>(round) % 3], pair);
  }
}

TEST(OperandKeeping, ASetupReachesTheKernel)
{
  const double gap = 1e-4;
  const OperandPair boxes{"", BoxAt(0, 0, 0), BoxAt(10 + gap, 0, 0)};
  const auto solids = [&](const Orvex::BooleanSetup& setup) {
    int count = 0;
    const TopoDS_Shape fused = Orvex::BooleanOf(BOPAlgo_FUSE, boxes.first, boxes.second, setup);
    for (TopExp_Explorer solid(fused, TopAbs_SOLID); solid.More(); solid.Next())
      ++count;
    return count;
  };
  EXPECT_EQ(solids({}), 2);
  EXPECT_EQ(solids([&](BRepAlgoAPI_BooleanOperation& fuse) { fuse.SetFuzzyValue(2 * gap); }), 1);
}

TEST(OperandKeeping, NullOperandsGiveANullShape)
{
  const TopoDS_Shape box = BoxAt(0, 0, 0), none;
  for (const BOPAlgo_Operation operation : kOperations) {
    EXPECT_TRUE(Orvex::BooleanOf(operation, none, box).IsNull());
    EXPECT_TRUE(Orvex::BooleanOf(operation, box, none).IsNull());
  }
}

TEST(OperandKeeping, ACompoundKeepsWhatItHoldsAndTakesOneShapeAlone)
{
  const TopoDS_Shape box = BoxAt(0, 0, 0), square = SquareAt(0, 0, 20), none;
  const std::string before = BrepOf(box) + BrepOf(square);
  const TopoDS_Shape both = Orvex::CompoundOf(box, square);
  EXPECT_TRUE(SameDump(BrepOf(box) + BrepOf(square), before));
  EXPECT_EQ(both.NbChildren(), 2);
  EXPECT_TRUE(Orvex::CompoundOf(box, none).IsEqual(box));
  EXPECT_TRUE(Orvex::CompoundOf(none, square).IsEqual(square));
  EXPECT_TRUE(Orvex::CompoundOf(none, none).IsNull());
}

} // namespace
