// Laws that hold for every kind of shape, over seeded random parameters: what is created can be
// read back, rebuilt, moved, cloned, saved and reopened, and its measure is that of the closed
// formula.

#include "creators/KindShapeParaCreator.h"
#include "creators/ShapeBuilder.h"
#include "creators/ShapeParaCreatorTool.h"
#include "document/LabelScheme.h"
#include "document/ShapeLabelMgr.h"
#include "features/ParametricFeatureManager.h"
#include "foundation/UserMessage.h"
#include "support/Measures.h"
#include "support/Random.h"
#include "support/TestDocument.h"

#include <BRepAdaptor_Curve.hxx>
#include <BRepBuilderAPI_MakeFace.hxx>
#include <BRepBuilderAPI_MakePolygon.hxx>
#include <BRepBuilderAPI_MakeVertex.hxx>
#include <BRepCheck_Analyzer.hxx>
#include <BRepExtrema_DistShapeShape.hxx>
#include <TopoDS.hxx>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

using namespace OrvexTest;
using Orvex::ParameterSet;
using Orvex::PointList;
using Orvex::ShapeKind;
using std::numbers::pi;

namespace {

// Parameters and the measure that their shape must have: a volume for solids, else a length.
struct Sample
{
  ParameterSet values;
  double measure;
};

gp_Pnt RandomPoint(Random& random)
{
  return {random.Real(-10, 10), random.Real(-10, 10), random.Real(-10, 10)};
}

gp_Dir RandomDirection(Random& random)
{
  const gp_Vec vector(RandomPoint(random).XYZ());
  return vector.Magnitude() < 1 ? gp_Dir(0, 0, 1) : gp_Dir(vector);
}

TopoDS_Face RectangleFace(double length, double width, double x0 = 0)
{
  return BRepBuilderAPI_MakeFace(
    BRepBuilderAPI_MakePolygon(gp_Pnt(x0, 0, 0), gp_Pnt(x0 + length, 0, 0),
                               gp_Pnt(x0 + length, 0, width), gp_Pnt(x0, 0, width), true)
      .Wire());
}

// Ramanujan's series would do; the arithmetic-geometric mean is exact.
// Source: Abramowitz and Stegun, Handbook of Mathematical Functions, 17.6.
double EllipsePerimeter(double major, double minor)
{
  double a = major, b = minor, c = std::sqrt(a * a - b * b), sum = c * c / 2, power = 1;
  while (c > 1e-15 * major) {
    const double mean = (a + b) / 2;
    c = (a - b) / 2;
    b = std::sqrt(a * b);
    a = mean;
    sum += power * c * c;
    power *= 2;
  }
  return 2 * pi / a * (major * major - sum);
}

double CircumRadius(const gp_Pnt& a, const gp_Pnt& b, const gp_Pnt& c)
{
  const double area = gp_Vec(a, b).Crossed(gp_Vec(a, c)).Magnitude() / 2;
  return a.Distance(b) * b.Distance(c) * c.Distance(a) / (4 * area);
}

gp_Pnt DeCasteljau(PointList points, double t)
{
  for (std::size_t level = points.size() - 1; level > 0; --level)
    for (std::size_t i = 0; i < level; ++i)
      points[i] = gp_Pnt(points[i].XYZ() * (1 - t) + points[i + 1].XYZ() * t);
  return points.front();
}

double BezierLength(const PointList& points)
{
  // Richardson extrapolation of polyline lengths, whose error falls with the square of the step.
  const auto polyline = [&](int steps) {
    double length = 0;
    for (int i = 0; i < steps; ++i)
      length +=
        DeCasteljau(points, double(i) / steps).Distance(DeCasteljau(points, double(i + 1) / steps));
    return length;
  };
  return (4 * polyline(4000) - polyline(2000)) / 3;
}

Sample RandomBox(Random& r)
{
  const double l = r.Real(0.1, 9), w = r.Real(0.1, 9), h = r.Real(0.1, 9);
  return {{RandomPoint(r), RandomDirection(r), l, w, h}, l * w * h};
}

Sample RandomCylinder(Random& r)
{
  const double radius = r.Real(0.1, 9), h = r.Real(0.1, 9), angle = r.Real(5, 360);
  return {{RandomPoint(r), RandomDirection(r), radius, h, angle},
          angle / 360 * pi * radius * radius * h};
}

Sample RandomCone(Random& r)
{
  const double b = r.Real(0.5, 9), t = b * r.Real(0, 0.9), h = r.Real(0.1, 9);
  const double angle = r.Real(5, 360);
  return {{RandomPoint(r), b, t, h, angle, RandomDirection(r)},
          angle / 360 * pi * h / 3 * (b * b + b * t + t * t)};
}

Sample RandomSphere(Random& r)
{
  const double radius = r.Real(0.1, 9), a1 = r.Real(-90, -5), a2 = r.Real(5, 90);
  const double a3 = r.Real(5, 360);
  const auto antiderivative = [&](double z) { return radius * radius * z - z * z * z / 3; };
  const double bottom = radius * std::sin(a1 * pi / 180), top = radius * std::sin(a2 * pi / 180);
  return {{RandomPoint(r), radius, a1, a2, a3},
          a3 / 360 * pi * (antiderivative(top) - antiderivative(bottom))};
}

Sample RandomTorus(Random& r)
{
  const double major = r.Real(2, 9), minor = major * r.Real(0.1, 0.9), a3 = r.Real(5, 360);
  return {{RandomPoint(r), major, minor, -180.0, 180.0, a3},
          a3 / 360 * 2 * pi * major * pi * minor * minor};
}

Sample RandomLine(Random& r)
{
  const gp_Pnt a = RandomPoint(r), b = RandomPoint(r);
  return {{a, b}, a.Distance(b)};
}

Sample RandomRectangle(Random& r)
{
  const double l = r.Real(0.1, 9), w = r.Real(0.1, 9);
  return {{RandomPoint(r), l, w}, 2 * (l + w)};
}

Sample RandomPolygon(Random& r)
{
  const gp_Pnt center = RandomPoint(r);
  const double radius = r.Real(0.5, 9), turn = r.Real(0, 6), z = r.Real(-3, 3);
  const int sides = 3 + r.Index(10);
  const gp_Pnt vertex = center.Translated({radius * std::cos(turn), radius * std::sin(turn), z});
  return {{center, vertex, sides}, sides * 2 * radius * std::sin(pi / sides)};
}

Sample RandomArc(Random& r)
{
  const double radius = r.Real(1, 9), from = r.Real(0, 6), sweep = r.Real(0.2, 6);
  const gp_Pnt center = RandomPoint(r);
  const auto at = [&](double t) {
    return center.Translated({radius * std::cos(t), radius * std::sin(t), 0});
  };
  const gp_Pnt a = at(from), b = at(from + sweep / 2), c = at(from + sweep);
  EXPECT_NEAR(CircumRadius(a, b, c), radius, 1e-6 * radius);
  return {{a, b, c}, radius * sweep};
}

Sample RandomCircle(Random& r)
{
  const double radius = r.Real(0.1, 9);
  return {{RandomPoint(r), radius}, 2 * pi * radius};
}

Sample RandomEllipse(Random& r)
{
  const double major = r.Real(1, 9), minor = major * r.Real(0.1, 0.95);
  return {{RandomPoint(r), major, minor}, EllipsePerimeter(major, minor)};
}

Sample RandomBezier(Random& r)
{
  PointList points;
  for (int i = 2 + r.Index(5); i > 0; --i)
    points.push_back(RandomPoint(r));
  return {{points}, BezierLength(points)};
}

// Two points make a straight line; the general curve has a test of its own.
Sample RandomBSpline(Random& r)
{
  const PointList points{RandomPoint(r), RandomPoint(r)};
  return {{points}, points[0].Distance(points[1])};
}

Sample RandomExtrude(Random& r)
{
  const double l = r.Real(0.1, 9), w = r.Real(0.1, 9), length = r.Real(0.1, 9);
  const gp_Vec vector(r.Real(-1, 1), 1, r.Real(-1, 1));
  return {{vector, length, TopoDS_Shape(RectangleFace(l, w))},
          l * w * length * vector.Y() / vector.Magnitude()};
}

Sample RandomExtrudeLoop(Random& r)
{
  const double l = r.Real(0.1, 9), w = r.Real(0.1, 9), length = r.Real(0.1, 9);
  return {{gp_Dir(0, 1, 0), length, TopoDS_Shape(RectangleFace(l, w))}, l * w * length};
}

// Pappus: area times the way of its centroid.
Sample RandomRevolve(Random& r)
{
  const double l = r.Real(0.1, 9), w = r.Real(0.1, 9), x0 = r.Real(0.1, 5);
  const double angle = r.Real(0.1, 6);
  return {{gp_Pnt(), gp_Dir(0, 0, 1), angle, TopoDS_Shape(RectangleFace(l, w, x0))},
          l * w * angle * (x0 + l / 2)};
}

struct KindCase
{
  const char* word;
  Sample (*sample)(Random&);

  friend void PrintTo(const KindCase& kind, std::ostream* out)
  {
    *out << kind.word;
  }
};

constexpr KindCase kCases[] = {
  {"Line", &RandomLine},       {"Rectangle", &RandomRectangle},
  {"Polygon", &RandomPolygon}, {"Arc", &RandomArc},
  {"Circle", &RandomCircle},   {"Ellipse", &RandomEllipse},
  {"BSpline", &RandomBSpline}, {"Bezier", &RandomBezier},
  {"Box", &RandomBox},         {"Cylinder", &RandomCylinder},
  {"Sphere", &RandomSphere},   {"Cone", &RandomCone},
  {"Torus", &RandomTorus},     {"Revolve", &RandomRevolve},
  {"Extrude", &RandomExtrude}, {"ExtrudeLoop", &RandomExtrudeLoop},
};

double MeasureOf(const TopoDS_Shape& shape)
{
  return TopExp_Explorer(shape, TopAbs_SOLID).More() ? VolumeOf(shape) : LengthOf(shape);
}

TopoDS_Shape ShapeOn(const TDF_Label& label)
{
  return ShapeLabelMgr::GetInstance()->GetShapeByLabel(label);
}

bool SameValue(const Orvex::ParameterValue& a, const Orvex::ParameterValue& b, double tolerance)
{
  if (const auto* point = std::get_if<gp_Pnt>(&a))
    return point->IsEqual(std::get<gp_Pnt>(b), tolerance);
  if (const auto* direction = std::get_if<gp_Dir>(&a))
    return direction->IsEqual(std::get<gp_Dir>(b), 1e-12);
  if (const auto* vector = std::get_if<gp_Vec>(&a))
    return vector->IsEqual(std::get<gp_Vec>(b), 1e-12, 1e-12);
  if (const auto* real = std::get_if<double>(&a))
    return *real == std::get<double>(b);
  if (const auto* integer = std::get_if<int>(&a))
    return *integer == std::get<int>(b);
  if (const auto* shape = std::get_if<TopoDS_Shape>(&a))
    return shape->IsEqual(std::get<TopoDS_Shape>(b));
  const auto& points = std::get<PointList>(a);
  const auto& others = std::get<PointList>(b);
  return std::equal(points.begin(), points.end(), others.begin(), others.end(),
                    [&](const gp_Pnt& p, const gp_Pnt& q) { return p.IsEqual(q, tolerance); });
}

void ExpectSameValues(const ParameterSet& a, const ParameterSet& b, double tolerance)
{
  ASSERT_EQ(a.size(), b.size());
  for (std::size_t i = 0; i < a.size(); ++i) {
    ASSERT_EQ(a[i].index(), b[i].index());
    EXPECT_TRUE(SameValue(a[i], b[i], tolerance)) << "parameter " << i;
  }
}

void ExpectMovedBy(const Bnd_Box& before, const Bnd_Box& after, const gp_Vec& step)
{
  EXPECT_TRUE(after.CornerMin().IsEqual(before.CornerMin().Translated(step), 1e-5));
  EXPECT_TRUE(after.CornerMax().IsEqual(before.CornerMax().Translated(step), 1e-5));
}

class EveryKind : public testing::TestWithParam<KindCase>
{
protected:
  const ShapeKind& Kind() const
  {
    return *Orvex::KindOfWord(GetParam().word);
  }

  std::unique_ptr<KindShapeParaCreator> Creator() const
  {
    return std::unique_ptr<KindShapeParaCreator>(Kind().make());
  }

  TestDocument document{10};
};

TEST_P(EveryKind, KeepsItsMeasureThroughTheWholeLifeOfAShape)
{
  Random random(Seed());
  const auto creator = Creator();
  for (int round = 0; round < 10; ++round) {
    SCOPED_TRACE(SeedNote() + ", round " + std::to_string(round));
    const Sample sample = GetParam().sample(random);
    const double tolerance = 1e-6 * sample.measure;
    TDF_Label label = creator->CreateWith(sample.values);
    ASSERT_FALSE(label.IsNull());
    EXPECT_TRUE(BRepCheck_Analyzer(ShapeOn(label)).IsValid());
    EXPECT_NEAR(MeasureOf(ShapeOn(label)), sample.measure, tolerance);
    ExpectSameValues(creator->ReadParameters(label), sample.values, 0);

    const Bnd_Box before = BoundsOf(ShapeOn(label));
    creator->UpdateShape(label);
    EXPECT_NEAR(MeasureOf(ShapeOn(label)), sample.measure, tolerance);
    ExpectMovedBy(before, BoundsOf(ShapeOn(label)), gp_Vec());

    gp_Trsf trsf;
    const gp_Vec step(1, -2, 3);
    trsf.SetTranslation(step);
    const TDF_Label clone = ShapeBuilder::PerformClone(label, trsf);
    EXPECT_NEAR(MeasureOf(ShapeOn(clone)), sample.measure, tolerance);
    // A moved direction turns nothing: the clone of a face's extrude moves with its face.
    ExpectMovedBy(before, BoundsOf(ShapeOn(clone)), step);

    EXPECT_TRUE(ShapeBuilder::PerformMove(label, trsf));
    if (Kind().movesParameters)
      ShapeBuilder::UpdateShapeByTDF(label);
    EXPECT_NEAR(MeasureOf(ShapeOn(label)), sample.measure, tolerance);
    ExpectMovedBy(before, BoundsOf(ShapeOn(label)), step);
  }
}

TEST_P(EveryKind, SavedAndReopenedIsTheSameAndRebuilds)
{
  Random random(Seed());
  const Sample sample = GetParam().sample(random);
  const Bnd_Box bounds = BoundsOf(ShapeOn(Creator()->CreateWith(sample.values)));
  const std::string before = DumpWithoutShapes(document.Doc()->Main());
  document.SaveAndReopen();
  EXPECT_TRUE(SameDump(DumpWithoutShapes(document.Doc()->Main()), before));
  const auto labels = ShapeLabelMgr::GetInstance()->GetAllShapeLabes();
  ASSERT_EQ(labels.size(), 1U);
  for (const bool rebuild : {false, true}) {
    if (rebuild)
      ShapeBuilder::UpdateAllShape();
    EXPECT_NEAR(MeasureOf(ShapeOn(labels[0])), sample.measure, 1e-6 * sample.measure);
    ExpectMovedBy(bounds, BoundsOf(ShapeOn(labels[0])), gp_Vec());
  }
}

TEST_P(EveryKind, WritesItsTableOntoTheLabel)
{
  Random random(Seed());
  const int number = TarvelNameIndexMgr::GetGlobeIndex() + 1;
  TDF_Label label = Creator()->CreateWith(GetParam().sample(random).values);
  const ShapeKind& kind = Kind();
  EXPECT_EQ(ShapeBuilder::GetShapeType(label), kind.typeCode);
  const std::string name = kind.namePrefix + (kind.numbered ? std::to_string(number) : "");
  EXPECT_EQ(ShapeLabelMgr::GetInstance()->GetShapeNameByLabel(label), name);
  int tag = Orvex::kFirstParameterTag;
  for (const auto& field : kind.fields)
    EXPECT_TRUE(Orvex::HasName(label.FindChild(tag++, false), field.name)) << field.name;
  EXPECT_EQ(label.NbChildren(), tag - 1);

  const auto* feature = ParametricFeatureManager::GetInstance().FindFeature(
    ParametricFeatureManager::MakeLabelKey(label));
  ASSERT_EQ(feature == nullptr, kind.featureType == nullptr);
  if (feature != nullptr) {
    EXPECT_EQ(feature->type, kind.featureType);
    EXPECT_EQ(feature->paramDependencies.size(), feature->paramLabels.size());
    EXPECT_TRUE(feature->rebuild());
  }
}

TEST_P(EveryKind, WithTheManagerOffOnlyThreeSolidsRegister)
{
  setenv("TARVEL_ENABLE_PARAMETRIC", "0", 1);
  Random random(Seed());
  const TDF_Label label = Creator()->CreateWith(GetParam().sample(random).values);
  const bool registered = ParametricFeatureManager::GetInstance().FindFeature(
                            ParametricFeatureManager::MakeLabelKey(label)) != nullptr;
  const std::string word = GetParam().word;
  EXPECT_EQ(registered, word == "Box" || word == "Cylinder" || word == "Sphere");
}

TEST_P(EveryKind, ARebuildJoinsTheCommandThatIsOpen)
{
  Random random(Seed());
  document.Doc()->NewCommand();
  TDF_Label label = Creator()->CreateWith(GetParam().sample(random).values);
  document.Doc()->CommitCommand();
  const std::string before = DumpWithoutShapes(document.Doc()->Main());
  const TopoDS_Shape shape = ShapeOn(label);
  document.Doc()->NewCommand();
  Orvex::SetName(label, "renamed");
  Creator()->UpdateShape(label);
  EXPECT_TRUE(document.Doc()->HasOpenCommand());
  document.Doc()->AbortCommand();
  EXPECT_TRUE(SameDump(DumpWithoutShapes(document.Doc()->Main()), before));
  EXPECT_TRUE(ShapeOn(label).IsEqual(shape));
}

// A NaN or an infinity in any place: the kernel refuses it or makes something of it, but nothing
// hangs or crashes, and a refusal leaves the document as it was.
TEST_P(EveryKind, SurvivesNumbersThatAreNone)
{
  Orvex::SetUserMessageHandler({});
  const double inf = std::numeric_limits<double>::infinity();
  const ShapeKind& kind = Kind();
  for (std::size_t i = 0; i < kind.fields.size(); ++i)
    for (const double bad : {std::nan(""), inf, -inf, 0.0, -1.0, 1e300}) {
      SCOPED_TRACE(std::string(kind.fields[i].name) + " = " + std::to_string(bad));
      Random random(Seed());
      ParameterSet values = GetParam().sample(random).values;
      if (auto* real = std::get_if<double>(&values[i]))
        *real = bad;
      else if (auto* point = std::get_if<gp_Pnt>(&values[i]))
        point->SetX(bad);
      else if (auto* integer = std::get_if<int>(&values[i]))
        *integer = bad < 0 ? -1 : bad > 0 ? 1 : 0;
      else if (auto* points = std::get_if<PointList>(&values[i]))
        points->back().SetX(bad);
      else
        continue;
      const std::string before = DumpOf(document.Doc()->Main());
      TDF_Label label;
      try {
        label = Creator()->CreateWith(values);
      } catch (const Standard_Failure&) {
        EXPECT_TRUE(label.IsNull());
      }
      if (label.IsNull()) {
        EXPECT_TRUE(SameDump(DumpOf(document.Doc()->Main()), before));
        continue;
      }
      try {
        Creator()->UpdateShape(label);
      } catch (const Standard_Failure&) {
        EXPECT_FALSE(ShapeOn(label).IsNull());
      }
      ShapeLabelMgr::GetInstance()->RemoveShapeByLabel(label);
    }
}

INSTANTIATE_TEST_SUITE_P(Kinds, EveryKind, testing::ValuesIn(kCases),
                         [](const auto& test) { return test.param.word; });

TEST(ShapeKinds, HasOneRowForEachCodeAndWord)
{
  for (const ShapeKind* kind : Orvex::ShapeKinds()) {
    EXPECT_EQ(Orvex::KindOfCode(kind->typeCode), kind);
    EXPECT_EQ(Orvex::KindOfWord(kind->word), kind);
  }
  EXPECT_EQ(std::size(kCases), Orvex::ShapeKinds().size());
  EXPECT_EQ(Orvex::KindOfWord("bOX"), Orvex::KindOfCode(10));
  for (const int none : {0, 1, 15, 16, 17, 19, 20, 21, 24, -1})
    EXPECT_EQ(Orvex::KindOfCode(none), nullptr);
}

} // namespace
