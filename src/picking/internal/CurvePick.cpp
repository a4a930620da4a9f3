#include "picking/internal/CurvePick.h"

#include <BRepAdaptor_Curve.hxx>
#include <BRep_Tool.hxx>
#include <ElCLib.hxx>
#include <GCPnts_AbscissaPoint.hxx>
#include <Geom_Curve.hxx>

#include <algorithm>
#include <cmath>

namespace Orvex {

namespace {

constexpr double kLeastLength = 1e-7;

struct Interval
{
  double from, to;
};

double LengthOf(const TopoDS_Edge& edge, const Interval& range)
{
  try {
    return GCPnts_AbscissaPoint::Length(BRepAdaptor_Curve(edge), range.from, range.to, 1e-7);
  } catch (...) {
    return 0;
  }
}

class DistanceToLine
{
public:
  DistanceToLine(const Geom_Curve& scannedCurve, const gp_Lin& ray) : curve(scannedCurve), line(ray)
  {}

  double operator()(double parameter) const
  {
    const gp_Pnt point = curve.Value(parameter);
    return point.Distance(ElCLib::Value(ElCLib::Parameter(line, point), line));
  }

private:
  const Geom_Curve& curve;
  const gp_Lin& line;
};

// The neighbourhood of the nearest of the samples, the first one of several.
Interval Scan(const DistanceToLine& distance, const Interval& range, int steps)
{
  int nearest = 0;
  double smallest = 0;
  for (int i = 0; i <= steps; ++i) {
    const double d = distance(range.from + (range.to - range.from) * i / steps);
    if (i > 0 && !(d < smallest))
      continue;
    smallest = d;
    nearest = i;
  }
  const double h = (range.to - range.from) / steps;
  const double a = std::max(range.from + (nearest - 1) * h, range.from);
  const double b = std::min(range.from + (nearest + 1) * h, range.to);
  return {std::min(a, b), std::max(a, b)};
}

double Refine(const DistanceToLine& distance, Interval bracket)
{
  static constexpr double r = 0.6180339887498949;
  static constexpr int kRefinements = 24;
  auto& [a, b] = bracket;
  if (std::abs(b - a) <= 1e-7)
    return a;
  double x1 = b - (b - a) * r, x2 = a + (b - a) * r;
  double f1 = distance(x1), f2 = distance(x2);
  for (int i = 0; i < kRefinements; ++i) {
    if (f2 >= f1) {
      b = x2;
      x2 = x1;
      f2 = f1;
      x1 = b - (b - a) * r;
      f1 = distance(x1);
    } else {
      a = x1;
      x1 = x2;
      f1 = f2;
      x2 = a + (b - a) * r;
      f2 = distance(x2);
    }
  }
  return f2 >= f1 ? x1 : x2;
}

} // namespace

int CountScanSteps(double length, double tolerance)
{
  static constexpr double kFewest = 128, kMost = 4096, kShareOfLength = 0.00048828125;
  if (!std::isfinite(length) || length <= kLeastLength)
    return static_cast<int>(kFewest);
  const double step = std::max(length * kShareOfLength, 0.5 * std::max(1e-6, tolerance));
  return static_cast<int>(std::clamp(std::trunc(length / step), kFewest, kMost));
}

std::optional<CurvePlace> NearestPlace(const TopoDS_Edge& edge, const gp_Lin& ray, double tolerance)
{
  Interval range{};
  const opencascade::handle<Geom_Curve> curve = BRep_Tool::Curve(edge, range.from, range.to);
  if (curve.IsNull())
    return std::nullopt;
  const DistanceToLine distance(*curve, ray);
  const int steps = CountScanSteps(LengthOf(edge, range), tolerance);
  const double t = Refine(distance, Scan(distance, range, steps));
  return CurvePlace{t, curve->Value(t), distance(t)};
}

} // namespace Orvex
