#include "kernel/internal/OperandKeeping.h"

#include "support/Measures.h"
#include "support/OperandPairs.h"
#include "support/TestDocument.h"

#include <BRepBuilderAPI_Copy.hxx>
#include <BRepCheck_Analyzer.hxx>
#include <BRep_TEdge.hxx>
#include <BRep_Tool.hxx>
#include <TopExp.hxx>
#include <TopTools_IndexedMapOfShape.hxx>

#include <gtest/gtest.h>

using namespace OrvexTest;

namespace {

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

// With the kernel's default options, or in its non-destructive mode.
TopoDS_Shape KernelAnswer(BOPAlgo_Operation operation, const OperandPair& pair,
                          bool nonDestructive = false)
{
  TopTools_ListOfShape arguments, tools;
  arguments.Append(pair.first);
  tools.Append(pair.second);
  BRepAlgoAPI_BooleanOperation boolean;
  boolean.SetOperation(operation);
  boolean.SetArguments(arguments);
  boolean.SetTools(tools);
  boolean.SetNonDestructive(nonDestructive);
  boolean.Build();
  return boolean.IsDone() ? boolean.Shape() : TopoDS_Shape();
}

void ExpectKeptAndSameAsTheKernel(BOPAlgo_Operation operation, const OperandPair& pair)
{
  SCOPED_TRACE(pair.name + ", operation " + std::to_string(operation));
  const TopoDS_Shape expected = KernelAnswer(
    operation, {"", BRepBuilderAPI_Copy(pair.first), BRepBuilderAPI_Copy(pair.second)});
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
  KernelAnswer(BOPAlgo_FUSE, boxes);
  EXPECT_EQ(EdgeFacts(boxes.second).curves, before + 4);
}

TEST(KernelDefect, BooleansRaiseTheTolerancesOfTheirOperands)
{
  const OperandPair boxes{"", BoxAt(0, 0, 0), BoxAt(10 + 1.5e-7, 2, 2, 5)};
  const double before = EdgeFacts(boxes.second).tolerances;
  KernelAnswer(BOPAlgo_FUSE, boxes);
  EXPECT_GT(EdgeFacts(boxes.second).tolerances, before + 1e-7);
}

TEST(KernelDefect, NonDestructiveBooleansTakeTheMarkFreeFromTheirOperands)
{
  const OperandPair boxes = DisjointBoxes();
  KernelAnswer(BOPAlgo_FUSE, boxes, true);
  EXPECT_FALSE(boxes.first.Free());
}

// --- Booleans without them ---

TEST(OperandKeeping, OperandsStayBitForBitAndResultsAreTheKernels)
{
  std::vector<OperandPair> pairs = SolidPairs();
  pairs.push_back(SolidAndFace());
  pairs.push_back({"a face and a solid", pairs.back().second, pairs.back().first});
  for (const OperandPair& pair : pairs)
    for (const BOPAlgo_Operation operation : {BOPAlgo_FUSE, BOPAlgo_CUT, BOPAlgo_COMMON})
      ExpectKeptAndSameAsTheKernel(operation, pair);
}

} // namespace
