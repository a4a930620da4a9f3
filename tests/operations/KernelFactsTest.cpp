// What the geometry kernel does where the operations stand in its way. A test that fails here tells
// that a new kernel behaves, and that the work around it may go.
#include "support/Measures.h"
#include "support/OperandPairs.h"

#include <BOPAlgo_Builder.hxx>
#include <BRepAlgoAPI_Section.hxx>
#include <BRepBuilderAPI_MakeEdge.hxx>
#include <BRepBuilderAPI_MakeWire.hxx>
#include <BRepOffsetAPI_MakeOffset.hxx>
#include <BRepOffsetAPI_MakeOffsetShape.hxx>
#include <BRepPrimAPI_MakeSphere.hxx>
#include <BRepSweep_Prism.hxx>
#include <Geom_Line.hxx>
#include <Geom_TrimmedCurve.hxx>
#include <gp_Circ.hxx>

#include <gtest/gtest.h>

#include <csignal>
#include <limits>
#include <unistd.h>

using namespace OrvexTest;

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

BRepBuilderAPI_MakeFace FaceOfOneEdge()
{
  const TopoDS_Edge edge = BRepBuilderAPI_MakeEdge(gp_Pnt(0, 0, 0), gp_Pnt(1, 0, 0));
  return BRepBuilderAPI_MakeFace(BRepBuilderAPI_MakeWire(edge).Wire(), false);
}

TopoDS_Shape PrismOf(const TopoDS_Face& face, double length)
{
  const BRepPrimAPI_MakePrism prism(face, gp_Vec(0, 0, length), false, true);
  return BRepSweep_Prism(prism.Prism()).Shape();
}

void Offset(const TopoDS_Shape& shape, double distance)
{
  BRepOffsetAPI_MakeOffsetShape().PerformByJoin(shape, distance, 1e-3);
}

bool DiesOfASignal(int status)
{
#if defined(__SANITIZE_ADDRESS__)
  return !WIFEXITED(status) || WEXITSTATUS(status) != 0;
#else
  return WIFSIGNALED(status);
#endif
}

// Much longer than any of these takes when it ends.
template <typename Work>
void RunForASecond(Work&& work)
{
  alarm(1);
  work();
  _exit(0);
}

template <typename Work>
void ExpectNoEnd(const char* what, Work&& work)
{
  EXPECT_EXIT(RunForASecond(work), testing::KilledBySignal(SIGALRM), "") << what;
}

TEST(KernelFacts, AFaceThatWasNotMadeIsNullAndItsPrismIsFatal)
{
  EXPECT_FALSE(FaceOfOneEdge().IsDone());
  EXPECT_TRUE(FaceOfOneEdge().Face().IsNull());
  EXPECT_EXIT(PrismOf(FaceOfOneEdge().Face(), 1), DiesOfASignal, "");
}

TEST(KernelFacts, SomeNumbersKeepItBusyForEver)
{
  ExpectNoEnd("prism, measured", [] { VolumeOf(PrismOf(TopoDS::Face(SquareAt(0, 0, 0)), kNaN)); });
  ExpectNoEnd("offset", [] { Offset(BoxAt(0, 0, 0), kNaN); });
  ExpectNoEnd("offset", [] { Offset(BRepPrimAPI_MakeSphere(5).Shape(), kInfinity); });
  ExpectNoEnd("line", [] {
    const Handle(Geom_Line) line = new Geom_Line(gp_Pnt(), gp_Dir(0, 0, 1));
    BRepBuilderAPI_MakeEdge(new Geom_TrimmedCurve(line, kNaN, kNaN, true, true));
  });
}

TEST(KernelFacts, TheInwardOffsetOfASmallCircleIsFatal)
{
  const auto offsetInwards = [](double radius) {
    const TopoDS_Edge circle = BRepBuilderAPI_MakeEdge(gp_Circ(gp::XOY(), radius));
    BRepOffsetAPI_MakeOffset offset(BRepBuilderAPI_MakeWire(circle).Wire(), GeomAbs_Arc, false);
    offset.Perform(-radius / 2, 0);
    return offset.IsDone();
  };
  EXPECT_EXIT(offsetInwards(1), DiesOfASignal, "");
  EXPECT_TRUE(offsetInwards(1.001));
}

TEST(KernelFacts, TheSectionOfShapesThatDoNotMeetIsEmptyAndNotNull)
{
  const OperandPair apart = DisjointBoxes();
  const TopoDS_Shape section = BRepAlgoAPI_Section(apart.first, apart.second, true);
  ASSERT_FALSE(section.IsNull());
  EXPECT_EQ(section.NbChildren(), 0);
}

TEST(KernelFacts, GluedShapesAreNotCutWhereTheirInsidesOverlap)
{
  for (const BOPAlgo_GlueEnum glue : {BOPAlgo_GlueOff, BOPAlgo_GlueShift}) {
    BOPAlgo_Builder builder;
    builder.AddArgument(BoxAt(0, 0, 0));
    builder.AddArgument(BoxAt(5, 5, 5));
    builder.SetGlue(glue);
    builder.Perform();
    EXPECT_EQ(builder.Shape().NbChildren(), glue == BOPAlgo_GlueOff ? 3 : 2);
  }
}

} // namespace
