// Every operation on surfaces over random inputs, sound and unsound: no crash, no hang, nothing
// thrown where nothing may be, inputs left as they were, and a report that
// agrees with the result. The counts are printed.
#include "operations/AdvancedSurfaceOp.h"

#include "kernel/internal/BrepText.h"
#include "support/Measures.h"
#include "support/SurfaceInputs.h"

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <iostream>
#include <optional>

using namespace OrvexTest;

namespace {

constexpr int kCases = 200;

using Shapes = std::vector<TopoDS_Shape>;
using Op = AdvancedSurfaceOp;

std::string TextOf(const Shapes& shapes)
{
  std::string text;
  for (const TopoDS_Shape& shape : shapes)
    if (!shape.IsNull())
      text += Orvex::BrepText(shape);
  return text;
}

struct Case
{
  Shapes inputs;
  std::function<TopoDS_Shape(OperationReport*)> run;
};

struct Counts
{
  std::array<int, 3> outcomes = {0, 0, 0};
  int raised = 0;
};

// Null for what the kernel raised.
std::optional<TopoDS_Shape> ResultOf(const Case& tried, OperationReport* report)
{
  try {
    return tried.run(report);
  } catch (const Standard_Failure&) {
    return {};
  }
}

void Check(const Case& tried, bool mayRaise, Counts& counts)
{
  const std::string before = TextOf(tried.inputs);
  OperationReport report;
  const std::optional<TopoDS_Shape> result = ResultOf(tried, &report);
  EXPECT_EQ(TextOf(tried.inputs), before) << "an input was changed";
  EXPECT_TRUE(result.has_value() || mayRaise);
  if (!result) {
    ++counts.raised;
    return;
  }
  ++counts.outcomes[static_cast<std::size_t>(report.outcome)];
  EXPECT_EQ(result->IsNull(), report.outcome != OperationOutcome::Built) << report.Text();
  EXPECT_EQ(result->IsNull(), !report.reason.empty()) << report.Text();
  EXPECT_EQ(result->IsNull(), report.Winner() == nullptr) << report.Text();
}

void Print(const char* name, const Counts& counts, double seconds)
{
  const auto& [refused, failed, built] = counts.outcomes;
  std::cout << name << ": tried " << kCases << ", built " << built << ", refused " << refused
            << ", failed " << failed << ", raised " << counts.raised << ", " << seconds << " s\n";
}

// The kernel makes no box of 1e-9, for one: then another case is made.
template <typename MakeCase>
Case NextCase(MakeCase&& makeCase, RandomShapes& shapes)
{
  for (;;) {
    shapes.PickScale();
    try {
      return makeCase(shapes);
    } catch (const Standard_Failure&) {
    }
  }
}

// Makes the cases one after the other, so that a seed and a number name one.
template <typename MakeCase>
void RunAll(const char* name, MakeCase&& makeCase, bool mayRaise = false)
{
  SCOPED_TRACE(SeedNote());
  RandomShapes shapes(Seed());
  Counts counts;
  const auto start = std::chrono::steady_clock::now();
  for (int i = 0; i < kCases && !testing::Test::HasFailure(); ++i) {
    SCOPED_TRACE(i);
    Check(NextCase(makeCase, shapes), mayRaise, counts);
  }
  const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
  Print(name, counts, seconds.count());
  EXPECT_GT(counts.outcomes[2], 0) << "nothing was built";
}

AdvancedLoftOptions RandomLoftOptions(RandomShapes& shapes)
{
  const auto flag = [&] { return shapes.random.Index(2) == 0; };
  const auto number = [&](int from, int to) { return from + shapes.random.Index(to - from + 1); };
  return {flag(),        flag(),         flag(),        shapes.Number(), flag(),
          number(-1, 3), number(-3, 20), number(-1, 3), number(-1, 3)};
}

Shapes Several(RandomShapes& shapes, int most)
{
  Shapes several;
  for (int count = shapes.random.Index(most + 1); count > 0; --count)
    several.push_back(shapes.Curve());
  return several;
}

// Sections in a row, as a sound loft has them: of one kind, or loops of any.
Shapes Row(RandomShapes& shapes, int count)
{
  Shapes row;
  const int kind = shapes.random.Index(4);
  for (int i = 0; i < count; ++i) {
    const double z = 4 * i, size = shapes.random.Real(3, 6);
    const int corners = kind == 3 ? 2 + shapes.random.Index(6) : 4;
    if (kind == 0)
      row.push_back(ArcAt(z, size, 0.5, 2));
    else if (kind == 1 || corners == 2)
      row.push_back(CircleWire(z, size));
    else
      row.push_back(RegularWire(z, size, corners));
  }
  return row;
}

TEST(SurfaceRandom, Loft)
{
  RunAll("loft", [](RandomShapes& shapes) {
    const bool isRow = shapes.random.Index(2) == 0;
    const Shapes sections = isRow ? Row(shapes, 2 + shapes.random.Index(5)) : Several(shapes, 6);
    const Shapes guides = Several(shapes, 2);
    const AdvancedLoftOptions options = RandomLoftOptions(shapes);
    Shapes inputs = sections;
    inputs.insert(inputs.end(), guides.begin(), guides.end());
    return Case{inputs, [=](OperationReport* report) {
                  return Op::BuildAdvancedLoft(sections, guides, options, report);
                }};
  });
}

TEST(SurfaceRandom, Sweep2)
{
  RunAll("sweep2", [](RandomShapes& shapes) {
    const TopoDS_Shape rail1 = shapes.Curve(), rail2 = shapes.Curve();
    const Shapes sections = Several(shapes, 2);
    const int continuity = shapes.random.Index(5) - 1;
    Shapes inputs = sections;
    inputs.insert(inputs.end(), {rail1, rail2});
    return Case{inputs, [=](OperationReport* report) {
                  return Op::BuildSweep2(rail1, rail2, sections, continuity, report);
                }};
  });
}

BlendBoundaryConstraint RandomSide(RandomShapes& shapes)
{
  BlendBoundaryConstraint side;
  side.edge = shapes.Edge();
  if (shapes.random.Index(3) == 0) {
    side.supportFace = shapes.Face();
    side.continuity = shapes.random.Index(4);
    if (shapes.random.Index(2) == 0)
      side.edge = TopoDS::Edge(PartsOf(side.supportFace, TopAbs_EDGE).front());
  }
  return side;
}

TEST(SurfaceRandom, Blend)
{
  RunAll("blend", [](RandomShapes& shapes) {
    BlendSurfaceBuildOptions options;
    options.first = RandomSide(shapes);
    options.second = RandomSide(shapes);
    options.blendFactor = shapes.Number();
    return Case{{options.first.edge, options.second.edge, options.first.supportFace,
                 options.second.supportFace},
                [=](OperationReport* report) {
                  const TopoDS_Wire frame = Op::BuildBlendBoundaryFrame(options);
                  const TopoDS_Face seed = Op::BuildBlendBoundarySeedSurface(options);
                  if (Op::ValidateBlendSurfaceInput(options) != BlendSurfaceInputStatus::Valid) {
                    EXPECT_TRUE(frame.IsNull() && seed.IsNull());
                  }
                  return Op::BuildBlendSurface(options, report);
                }};
  });
}

TEST(SurfaceRandom, Patch)
{
  RunAll("patch", [](RandomShapes& shapes) {
    const TopoDS_Wire wire = shapes.Wire();
    std::vector<gp_Pnt> points;
    for (int i = shapes.random.Index(3); i > 0; --i)
      points.push_back(shapes.Point());
    const double quality = shapes.Number();
    const int continuity = shapes.random.Index(5) - 1;
    return Case{{wire}, [=](OperationReport* report) {
                  return Op::BuildPatchSurface(wire, points, quality, continuity, report);
                }};
  });
}

TEST(SurfaceRandom, FillHole)
{
  RunAll("fill", [](RandomShapes& shapes) {
    const TopoDS_Wire wire = shapes.Wire();
    const auto level = static_cast<SurfaceContinuityLevel>(shapes.random.Index(5) - 1);
    const std::vector<FillHoleEdgeConstraint> constraints = {
      {shapes.random.Index(6) - 1, shapes.random.Index(5) - 1, shapes.Number()}};
    return Case{{wire}, [=](OperationReport* report) {
                  return Op::FillHole(wire, constraints, level, report);
                }};
  });
}

TEST(SurfaceRandom, Network)
{
  RunAll("network", [](RandomShapes& shapes) {
    std::vector<TopoDS_Wire> wires;
    const bool isRow = shapes.random.Index(2) == 0;
    const int count = 1 + shapes.random.Index(4);
    for (int i = 0; i < count; ++i)
      wires.push_back(isRow ? CircleWire(5 * i, shapes.random.Real(3, 6)) : shapes.Wire());
    const auto level = static_cast<SurfaceContinuityLevel>(shapes.random.Index(5) - 1);
    std::vector<SurfaceNetworkBoundaryConstraint> constraints;
    if (shapes.random.Index(2) == 0)
      constraints = {{shapes.random.Index(5), shapes.random.Index(4) - 1, shapes.Number()}};
    return Case{Shapes(wires.begin(), wires.end()), [=](OperationReport* report) {
                  return Op::BuildSurfaceNetwork(wires, constraints, level, report);
                }};
  });
}

TEST(SurfaceRandom, Extend)
{
  RunAll(
    "extend",
    [](RandomShapes& shapes) {
      const TopoDS_Face face = shapes.random.Index(10) == 0 ? TopoDS_Face() : shapes.Face();
      const double length = shapes.Number();
      const int side = shapes.random.Index(7) - 1, continuity = shapes.random.Index(5) - 1;
      return Case{{face}, [=](OperationReport* report) {
                    return Op::ExtendSurface(face, length, side, continuity, report);
                  }};
    },
    true);
}

TEST(SurfaceRandom, Trim)
{
  RunAll("trim", [](RandomShapes& shapes) {
    const TopoDS_Face face = shapes.random.Index(10) == 0 ? TopoDS_Face() : shapes.Face();
    const TopoDS_Shape cutter = shapes.Curve();
    const bool project = shapes.random.Index(2) == 0;
    return Case{{face, cutter}, [=](OperationReport* report) {
                  return Op::TrimSurface(face, cutter, project, report);
                }};
  });
}

TEST(SurfaceRandom, Intersect)
{
  RunAll("intersect", [](RandomShapes& shapes) {
    const TopoDS_Shape first = shapes.random.Index(3) == 0 ? shapes.Solid() : shapes.Face();
    const TopoDS_Shape second = shapes.random.Index(3) == 0 ? shapes.Curve() : shapes.Face();
    return Case{{first, second}, [=](OperationReport* report) {
                  return Op::IntersectSurfaces(first, second, report);
                }};
  });
}

TEST(SurfaceRandom, Project)
{
  RunAll(
    "project",
    [](RandomShapes& shapes) {
      const TopoDS_Shape curve = shapes.Curve();
      const TopoDS_Shape surface =
        shapes.random.Index(5) == 0 ? shapes.Solid() : TopoDS_Shape(shapes.Face());
      const gp_Dir direction(shapes.random.Real(-1, 1), shapes.random.Real(-1, 1), 1);
      const bool isDirected = shapes.random.Index(2) == 0;
      return Case{{curve, surface}, [=](OperationReport* report) {
                    return Op::ProjectCurveToSurface(curve, surface,
                                                     isDirected ? &direction : nullptr, report);
                  }};
    },
    true);
}

} // namespace
