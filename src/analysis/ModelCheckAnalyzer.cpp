#include "analysis/ModelCheckAnalyzer.h"

#include "analysis/internal/ModelCheckCatalogue.h"

#include <BRepAdaptor_Curve.hxx>
#include <BRepAdaptor_Surface.hxx>
#include <BRepCheck_Analyzer.hxx>
#include <BRepCheck_Wire.hxx>
#include <BRepGProp.hxx>
#include <BRep_Tool.hxx>
#include <GCPnts_AbscissaPoint.hxx>
#include <GProp_GProps.hxx>
#include <TopExp.hxx>
#include <TopExp_Explorer.hxx>
#include <TopTools_IndexedDataMapOfShapeListOfShape.hxx>
#include <TopTools_ListOfShape.hxx>
#include <TopoDS.hxx>
#include <gp_Circ.hxx>
#include <gp_Cylinder.hxx>
#include <gp_Sphere.hxx>
#include <gp_Torus.hxx>

#include <algorithm>
#include <cmath>
#include <limits>

using Orvex::ModelFault;

namespace {

constexpr std::int32_t kWholeShape = -1;

ModelCheckOptions Normalized(ModelCheckOptions options)
{
  for (double ModelCheckOptions::*limit :
       {&ModelCheckOptions::shortEdgeThreshold, &ModelCheckOptions::smallHoleRadius,
        &ModelCheckOptions::smallBlendRadius, &ModelCheckOptions::smallChamferWidth,
        &ModelCheckOptions::tinyFaceArea})
    if (!(options.*limit > 0))
      options.*limit = 0;
  options.maxIssuesPerShape = std::max(options.maxIssuesPerShape, 1);
  return options;
}

// Above 0 and below the limit.
bool IsSmall(double measure, double limit)
{
  return measure > 0 && measure < limit;
}

double LengthOf(const BRepAdaptor_Curve& curve)
{
  constexpr double kTolerance = 1e-7;
  const double first = curve.FirstParameter(), last = curve.LastParameter();
  return first < last ? GCPnts_AbscissaPoint::Length(curve, first, last, kTolerance) : 0.0;
}

double AreaOf(const TopoDS_Face& face)
{
  GProp_GProps properties;
  BRepGProp::SurfaceProperties(face, properties);
  return properties.Mass();
}

// Of the kinds of surface that have one; 0 for others.
double RadiusOf(const BRepAdaptor_Surface& surface)
{
  switch (surface.GetType()) {
  case GeomAbs_Cylinder:
    return surface.Cylinder().Radius();
  case GeomAbs_Sphere:
    return surface.Sphere().Radius();
  case GeomAbs_Torus:
    return std::min(surface.Torus().MajorRadius(), surface.Torus().MinorRadius());
  default:
    return 0;
  }
}

// Calls visit(edge) for each use of an edge that has extent.
template <typename Visit>
void EachEdge(const TopoDS_Face& face, Visit&& visit)
{
  for (TopExp_Explorer edges(face, TopAbs_EDGE); edges.More(); edges.Next())
    if (const TopoDS_Edge& edge = TopoDS::Edge(edges.Current()); !BRep_Tool::Degenerated(edge))
      visit(edge);
}

int CountCircles(const TopoDS_Face& face)
{
  int count = 0;
  EachEdge(face, [&](const TopoDS_Edge& edge) {
    count += BRepAdaptor_Curve(edge).GetType() == GeomAbs_Circle;
  });
  return count;
}

// One measure that the kernel may refuse: what it throws costs no more than the measure.
template <typename Measure>
void Guarded(Measure&& measure)
{
  try {
    measure();
  } catch (...) {
  }
}

// The checks of one shape.
class ShapeCheck
{
public:
  ShapeCheck(const TopoDS_Shape& checked, std::int32_t place, const ModelCheckOptions& limits,
             std::vector<ModelCheckIssue>& found)
      : shape(checked), shapeIndex(place), options(limits), issues(found), analyzer(checked, true),
        isValid(analyzer.IsValid())
  {}

  void Run()
  {
    if (!isValid)
      Add(ModelFault::InvalidShape, kWholeShape);
    CheckEdges();
    CheckEach(TopAbs_WIRE, &ShapeCheck::CheckWire);
    CheckEach(TopAbs_SOLID, &ShapeCheck::CheckSolid);
    CheckEach(TopAbs_FACE, &ShapeCheck::CheckFace);
  }

private:
  // The kernel finds a shape valid only if it finds all that it consists of valid.
  bool IsFaulty(const TopoDS_Shape& part) const
  {
    return !isValid && !analyzer.IsValid(part);
  }

  void Add(ModelFault fault, std::int32_t subIndex, double value = 0, double threshold = 0)
  {
    if (count >= options.maxIssuesPerShape)
      return;
    ++count;
    const Orvex::ModelFaultRow& row = Orvex::RowOf(fault);
    issues.push_back({shapeIndex, subIndex, row.severity, row.code, row.entityType, row.category,
                      row.message, value, threshold});
  }

  void CheckEach(TopAbs_ShapeEnum type,
                 void (ShapeCheck::*check)(const TopoDS_Shape&, std::int32_t))
  {
    std::int32_t number = 0;
    for (TopExp_Explorer parts(shape, type); parts.More(); parts.Next())
      (this->*check)(parts.Current(), ++number);
  }

  void CheckEdges()
  {
    TopTools_IndexedDataMapOfShapeListOfShape facesOfEdges;
    TopExp::MapShapesAndAncestors(shape, TopAbs_EDGE, TopAbs_FACE, facesOfEdges);
    int freeEdges = 0, nonManifoldEdges = 0;
    for (int i = 1; i <= facesOfEdges.Extent(); ++i) {
      const TopoDS_Edge& edge = TopoDS::Edge(facesOfEdges.FindKey(i));
      if (edge.IsNull())
        continue;
      if (BRep_Tool::Degenerated(edge)) {
        Add(ModelFault::DegeneratedEdge, i);
        continue;
      }
      const int faces = facesOfEdges(i).Extent();
      freeEdges += faces < 2;
      nonManifoldEdges += faces > 2;
      CheckEdge(edge, i);
    }
    constexpr double kManifold = 2.0;
    if (freeEdges > 0)
      Add(ModelFault::OpenBoundary, kWholeShape, freeEdges);
    if (nonManifoldEdges > 0)
      Add(ModelFault::NonManifoldEdge, kWholeShape, nonManifoldEdges, kManifold);
  }

  void CheckEdge(const TopoDS_Edge& edge, std::int32_t number)
  {
    if (IsFaulty(edge))
      Add(ModelFault::InvalidEdge, number);
    Guarded([&] {
      if (!BRep_Tool::SameParameter(edge))
        Add(ModelFault::UnmatchedEdgeCurves, number);
      const BRepAdaptor_Curve curve(edge);
      const double length = LengthOf(curve);
      if (IsSmall(length, options.shortEdgeThreshold))
        Add(ModelFault::ShortEdge, number, length, options.shortEdgeThreshold);
      if (curve.GetType() != GeomAbs_Circle)
        return;
      const double radius = curve.Circle().Radius();
      if (IsSmall(radius, options.smallHoleRadius))
        Add(ModelFault::SmallLoop, number, radius, options.smallHoleRadius);
    });
  }

  void CheckWire(const TopoDS_Shape& wire, std::int32_t number)
  {
    if (IsFaulty(wire))
      Add(ModelFault::InvalidWire, number);
    BRepCheck_Wire check(TopoDS::Wire(wire));
    const BRepCheck_Status status = check.Closed(false);
    if (status != BRepCheck_NoError)
      Add(ModelFault::OpenWire, number, status);
  }

  void CheckSolid(const TopoDS_Shape& solid, std::int32_t number)
  {
    constexpr double kNoVolume = 1e-7;
    if (IsFaulty(solid))
      Add(ModelFault::InvalidSolid, number);
    GProp_GProps properties;
    BRepGProp::VolumeProperties(solid, properties);
    if (std::abs(properties.Mass()) <= kNoVolume)
      Add(ModelFault::ZeroVolume, number, properties.Mass(), kNoVolume);
  }

  void CheckFace(const TopoDS_Shape& part, std::int32_t number)
  {
    const TopoDS_Face& face = TopoDS::Face(part);
    if (IsFaulty(face))
      Add(ModelFault::InvalidFace, number);
    bool isPlane = false;
    Guarded([&] {
      const BRepAdaptor_Surface surface(face, true);
      isPlane = surface.GetType() == GeomAbs_Plane;
      CheckRadius(face, number, surface);
    });
    const double area = AreaOf(face);
    if (!(area > 0))
      return;
    if (area < options.tinyFaceArea)
      Add(ModelFault::TinyFace, number, area, options.tinyFaceArea);
    constexpr double kChamferAreas = 3.0;
    if (isPlane && area < kChamferAreas * options.tinyFaceArea)
      Guarded([&] { CheckChamfer(face, number); });
  }

  void CheckRadius(const TopoDS_Face& face, std::int32_t number, const BRepAdaptor_Surface& surface)
  {
    constexpr int kCirclesOfHole = 2;
    const double radius = RadiusOf(surface);
    if (!std::isfinite(radius) || !(radius > 0))
      return;
    const bool isHole =
      CountCircles(face) >= kCirclesOfHole && surface.GetType() == GeomAbs_Cylinder;
    if (isHole && radius < options.smallHoleRadius)
      Add(ModelFault::SmallHole, number, radius, options.smallHoleRadius);
    else if (radius < options.smallBlendRadius)
      Add(ModelFault::SmallBlend, number, radius, options.smallBlendRadius);
  }

  void CheckChamfer(const TopoDS_Face& face, std::int32_t number)
  {
    constexpr int kFewestEdges = 3;
    int edges = 0;
    double shortest = std::numeric_limits<double>::infinity();
    EachEdge(face, [&](const TopoDS_Edge& edge) {
      ++edges;
      shortest = std::min(shortest, LengthOf(BRepAdaptor_Curve(edge)));
    });
    if (edges >= kFewestEdges && std::isfinite(shortest) &&
        IsSmall(shortest, options.smallChamferWidth))
      Add(ModelFault::SmallChamfer, number, shortest, options.smallChamferWidth);
  }

  const TopoDS_Shape& shape;
  const std::int32_t shapeIndex;
  const ModelCheckOptions& options;
  std::vector<ModelCheckIssue>& issues;
  const BRepCheck_Analyzer analyzer;
  const bool isValid;
  std::int32_t count = 0;
};

void Count(ModelCheckReport& report)
{
  report.issueCount = static_cast<std::int32_t>(report.issues.size());
  for (const ModelCheckIssue& issue : report.issues)
    if (issue.severity == "critical")
      ++report.criticalCount;
    else if (issue.severity == "warning")
      ++report.warningCount;
    else
      ++report.infoCount;
}

} // namespace

ModelCheckReport ModelCheckAnalyzer::Analyze(const std::vector<TopoDS_Shape>& shapes,
                                             const ModelCheckOptions& options)
{
  ModelCheckReport report;
  report.shapeCount = static_cast<std::int32_t>(shapes.size());
  const ModelCheckOptions limits = Normalized(options);
  for (std::size_t i = 0; i < shapes.size(); ++i)
    if (!shapes[i].IsNull())
      ShapeCheck(shapes[i], static_cast<std::int32_t>(i), limits, report.issues).Run();
  Count(report);
  report.success = true;
  return report;
}
