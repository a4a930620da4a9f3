#include "assembly/AssemblyGeometryHelper.h"

#include "document/ShapeLabelMgr.h"

#include <BRepAdaptor_Surface.hxx>
#include <BRepBndLib.hxx>
#include <Bnd_Box.hxx>
#include <TopoDS.hxx>
#include <gp_Cylinder.hxx>

#include <algorithm>
#include <cmath>
#include <exception>
#include <optional>

namespace AssemblyGeometryHelper {

namespace {

constexpr double kNoAngle = 1e-10;
constexpr double kNoAxis = 1e-10;
constexpr double kPi = 3.14159265358979323846;
constexpr double kRightAngle = 1.5707963267948966;

std::optional<BRepAdaptor_Surface> SurfaceOf(const std::string& reference, GeomAbs_SurfaceType type)
{
  const TopoDS_Shape shape = DecodeRefGeom(reference);
  if (shape.IsNull() || shape.ShapeType() != TopAbs_FACE)
    return std::nullopt;
  BRepAdaptor_Surface surface(TopoDS::Face(shape), true);
  return surface.GetType() == type ? std::optional(surface) : std::nullopt;
}

gp_Dir DirectionOf(const gp_Pln& plane)
{
  return plane.Axis().Direction();
}

// The arc cosine of the product alone is good to 1e-8 only where the directions are nearly the same
// or opposite, and takes equal ones for different.
double AngleBetween(const gp_Dir& a, const gp_Dir& b)
{
  return a.Angle(b);
}

gp_Trsf Rotation(const gp_Pnt& pivot, const gp_Dir& direction, double angle)
{
  gp_Trsf rotation;
  rotation.SetRotation(gp_Ax1(pivot, direction), angle);
  return rotation;
}

// Some direction across d.
gp_Dir Across(const gp_Dir& d)
{
  constexpr double kNearlyAlong = 0.9;
  return std::abs(d * gp::DX()) > kNearlyAlong ? d.Crossed(gp::DY()) : d.Crossed(gp::DX());
}

// Turns d to the target about the pivot.
gp_Trsf TurnTo(const gp_Dir& d, const gp_Dir& target, const gp_Pnt& pivot)
{
  const gp_Vec axis = gp_Vec(d).Crossed(gp_Vec(target));
  const double angle = AngleBetween(d, target);
  if (angle < kNoAngle)
    return {};
  const bool isHalfTurn = kPi - angle < kNoAngle;
  return Rotation(pivot, isHalfTurn ? Across(d) : gp_Dir(axis), angle);
}

// The turn, then a translation that takes the turned point to its goal.
gp_Trsf TurnThenMove(const gp_Trsf& turn, const gp_Pnt& point, const gp_Pnt& goal)
{
  gp_Trsf translation;
  translation.SetTranslation(gp_Vec(point.Transformed(turn), goal));
  return translation * turn;
}

struct PlanePair
{
  gp_Dir a, b;
  gp_Pnt centreA, centreB;
};

std::optional<PlanePair> PlanesOf(const std::string& a, const std::string& b)
{
  gp_Pln planeA, planeB;
  if (!GetFacePlane(a, planeA) || !GetFacePlane(b, planeB))
    return std::nullopt;
  return PlanePair{DirectionOf(planeA), DirectionOf(planeB), GetFaceCenter(a), GetFaceCenter(b)};
}

// Turns B about the line across both directions.
// Returns: nothing, if they are parallel and there is no such line.
std::optional<gp_Trsf> TurnAcross(const PlanePair& planes, double angle)
{
  const gp_Vec axis = gp_Vec(planes.b).Crossed(gp_Vec(planes.a));
  if (axis.Magnitude() < kNoAxis)
    return std::nullopt;
  return Rotation(planes.centreB, gp_Dir(axis), angle);
}

double SignedDistance(const PlanePair& planes)
{
  return gp_Vec(planes.a) * gp_Vec(planes.centreA, planes.centreB);
}

} // namespace

std::string EncodeRefGeom(const TopoDS_Shape& face)
{
  int shapeTag = 0, faceTag = 0;
  TopoDS_Shape named = face;
  if (face.IsNull() || face.ShapeType() != TopAbs_FACE ||
      !ShapeLabelMgr::GetInstance()->GetShapeLabelWithFaceTagID(named, shapeTag, faceTag))
    return {};
  return std::to_string(shapeTag).append(":").append(std::to_string(faceTag));
}

TopoDS_Shape DecodeRefGeom(const std::string& reference)
{
  const std::size_t colon = reference.find(':');
  if (colon == std::string::npos)
    return {};
  try {
    const int shapeTag = std::stoi(reference.substr(0, colon));
    const int faceTag = std::stoi(reference.substr(colon + 1));
    return ShapeLabelMgr::GetInstance()->GetSubShapeByTag(shapeTag, faceTag);
  } catch (const std::exception&) {
    return {};
  }
}

bool GetFacePlane(const std::string& reference, gp_Pln& plane)
{
  const auto surface = SurfaceOf(reference, GeomAbs_Plane);
  if (surface)
    plane = surface->Plane();
  return surface.has_value();
}

bool GetCylinderAxis(const std::string& reference, gp_Ax1& axis)
{
  const auto surface = SurfaceOf(reference, GeomAbs_Cylinder);
  if (surface)
    axis = surface->Cylinder().Axis();
  return surface.has_value();
}

gp_Pnt GetFaceCenter(const std::string& reference)
{
  const TopoDS_Shape shape = DecodeRefGeom(reference);
  Bnd_Box box;
  if (!shape.IsNull())
    BRepBndLib::Add(shape, box, true);
  if (box.IsVoid())
    return {};
  return gp_Pnt((box.CornerMin().XYZ() + box.CornerMax().XYZ()) * 0.5);
}

bool ComputeCoincidentTransform(const std::string& a, const std::string& b, gp_Trsf& motion)
{
  const auto planes = PlanesOf(a, b);
  if (!planes)
    return false;
  const gp_Trsf turn = TurnTo(planes->b, planes->a.Reversed(), planes->centreB);
  motion = TurnThenMove(turn, planes->centreB, planes->centreA);
  return true;
}

bool ComputeConcentricTransform(const std::string& a, const std::string& b, gp_Trsf& motion)
{
  gp_Ax1 axisA, axisB;
  if (!GetCylinderAxis(a, axisA) || !GetCylinderAxis(b, axisB))
    return false;
  const gp_Dir d = axisB.Direction();
  const gp_Dir target =
    axisA.Direction() * d < 0 ? axisA.Direction().Reversed() : axisA.Direction();
  const gp_Trsf turn = TurnTo(d, target, axisB.Location());
  const gp_Vec along(axisA.Direction());
  const gp_Vec offset(axisA.Location(), axisB.Location().Transformed(turn));
  const gp_Pnt foot = axisA.Location().Translated(along * (offset * along));
  motion = TurnThenMove(turn, axisB.Location(), foot);
  return true;
}

bool ComputeParallelTransform(const std::string& a, const std::string& b, gp_Trsf& motion)
{
  const auto planes = PlanesOf(a, b);
  if (!planes)
    return false;
  const double angle = AngleBetween(planes->a, planes->b);
  const double correction = angle <= kRightAngle ? angle : angle - kPi;
  motion = std::abs(correction) < kNoAngle ? gp_Trsf()
                                           : TurnAcross(*planes, correction).value_or(gp_Trsf());
  return true;
}

bool ComputeAngleTransform(const std::string& a, const std::string& b, double degrees,
                           gp_Trsf& motion)
{
  constexpr double kHasTheAngle = 0.0001;
  const auto planes = PlanesOf(a, b);
  if (!planes)
    return false;
  const double correction = AngleBetween(planes->a, planes->b) - degrees * kPi / 180.0;
  motion = gp_Trsf();
  if (std::abs(correction) < kNoAngle)
    return true;
  const auto turn = TurnAcross(*planes, correction);
  motion = turn.value_or(gp_Trsf());
  return turn.has_value() || std::abs(correction) < kHasTheAngle;
}

bool ComputeDistanceTranslation(const std::string& a, const std::string& b, double distance,
                                gp_Vec& translation)
{
  gp_Pln planeA;
  if (!GetFacePlane(a, planeA) || DecodeRefGeom(b).IsNull())
    return false;
  const gp_Vec normal(DirectionOf(planeA));
  const double now = normal * gp_Vec(GetFaceCenter(a), GetFaceCenter(b));
  translation = normal * ((now >= 0 ? distance : -distance) - now);
  return true;
}

bool ComputePlanePlaneDist(const std::string& a, const std::string& b, double& distance)
{
  const auto planes = PlanesOf(a, b);
  if (planes)
    distance = std::abs(SignedDistance(*planes));
  return planes.has_value();
}

} // namespace AssemblyGeometryHelper
