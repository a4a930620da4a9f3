#include "creators/TorousShapeParaCreator.h"

#include "creators/internal/Fields.h"
#include "document/LabelScheme.h"

#include <BRepCheck_Analyzer.hxx>
#include <BRepMesh_IncrementalMesh.hxx>
#include <BRepPrimAPI_MakeTorus.hxx>
#include <BRep_Tool.hxx>
#include <Poly_Triangulation.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>

#include <algorithm>
#include <array>
#include <cmath>

using namespace Orvex;

namespace {

enum Field { kBasePoint, kMajorRadius, kMinorRadius, kAngle1, kAngle2, kAngle3 };

const std::array kFields = {
  OriginField("Base Point"),       LengthField("Bottom Radius"),   LengthField("Radius"),
  DegreesField("Angle1", -180, 0), DegreesField("Angle2", 0, 180), DegreesField("Angle3", 0, 360),
};

// With a thinner tube the kernel's mesher takes more points than it can handle in any useful time;
// further out it cannot tell them apart, and does not end.
constexpr double kLargestRadiusRatio = 1e6;
constexpr double kLargestDistanceRatio = 1e12;

bool IsInProportion(const gp_Pnt& center, double major, double minor)
{
  const gp_XYZ& place = center.XYZ();
  const double furthest = std::max({std::abs(place.X()), std::abs(place.Y()), std::abs(place.Z())});
  return std::isfinite(place.X() + place.Y() + place.Z()) && std::isfinite(major) &&
         furthest <= kLargestDistanceRatio * minor && major <= kLargestRadiusRatio * minor;
}

bool HasTriangles(const TopoDS_Shape& shape)
{
  for (TopExp_Explorer faces(shape, TopAbs_FACE); faces.More(); faces.Next()) {
    TopLoc_Location location;
    const auto mesh = BRep_Tool::Triangulation(TopoDS::Face(faces.Current()), location);
    if (!mesh.IsNull() && mesh->NbTriangles() > 0)
      return true;
  }
  return false;
}

// The mesh that the second attempt makes is finer in both measures.
bool CanBeMeshed(const TopoDS_Shape& shape, double smallerRadius)
{
  BRepMesh_IncrementalMesh(shape, std::max(0.05 * smallerRadius, 0.001), false, 0.5, true);
  if (HasTriangles(shape))
    return true;
  BRepMesh_IncrementalMesh(shape, std::max(0.01 * smallerRadius, 0.0001), false, 0.25, true);
  return HasTriangles(shape);
}

TopoDS_Shape Build(const ParameterSet& values)
{
  const double major = RealAt(values, kMajorRadius);
  const double minor = RealAt(values, kMinorRadius);
  if (!TorousShapeParaCreator::ValidateParameters(major, minor, RealAt(values, kAngle1),
                                                  RealAt(values, kAngle2), RealAt(values, kAngle3),
                                                  nullptr) ||
      !IsInProportion(PointAt(values, kBasePoint), major, minor))
    return {};
  const gp_Ax2 axes(PointAt(values, kBasePoint), gp_Dir(0, 0, 1));
  const TopoDS_Shape shape =
    BRepPrimAPI_MakeTorus(axes, major, minor, Radians(RealAt(values, kAngle1)),
                          Radians(RealAt(values, kAngle2)), Radians(RealAt(values, kAngle3)))
      .Shape();
  const bool sound = !shape.IsNull() && BRepCheck_Analyzer(shape, true).IsValid() &&
                     CanBeMeshed(shape, std::min(major, minor));
  return sound ? shape : TopoDS_Shape();
}

} // namespace

bool TorousShapeParaCreator::ValidateParameters(double majorRadius, double minorRadius,
                                                double angle1, double angle2, double angle3,
                                                std::string* error)
{
  struct Check
  {
    bool holds;
    const char* text;
  };
  const std::array checks = {
    Check{majorRadius > 0, "Torus major radius must be positive."},
    Check{minorRadius > 0, "Torus minor radius must be positive."},
    Check{majorRadius > minorRadius, "Torus major radius must be greater than minor radius."},
    Check{angle1 >= -180 && angle1 <= 0, "Torus angle1 must be within [-180, 0]."},
    Check{angle2 >= 0 && angle2 <= 180, "Torus angle2 must be within [0, 180]."},
    Check{angle3 > 0 && angle3 <= 360, "Torus angle3 must be within (0, 360]."},
  };
  const auto failed =
    std::find_if(checks.begin(), checks.end(), [](const Check& check) { return !check.holds; });
  if (failed == checks.end())
    return true;
  if (error != nullptr)
    *error = failed->text;
  return false;
}

const ShapeKind& TorousShapeParaCreator::Kind() const
{
  static const ShapeKind kind{.word = "Torus",
                              .typeCode = kTypeTorus,
                              .namePrefix = "Torus",
                              .featureType = "Torus",
                              .isSolid = true,
                              .fields = kFields,
                              .build = &Build,
                              .condition =
                                "Bottom Radius is greater than Radius and at most 1e6 times it",
                              .make = &MakeCreator<TorousShapeParaCreator>,
                              .update = &UpdateWith<TorousShapeParaCreator>};
  return kind;
}

TDF_Label TorousShapeParaCreator::CreateTorous(const gp_Pnt& center, double& majorRadius,
                                               double& minorRadius, double& angle1, double& angle2,
                                               double& angle3)
{
  return CreateWith({center, majorRadius, minorRadius, angle1, angle2, angle3});
}

void TorousShapeParaCreator::GetParameter(TDF_Label label, gp_Pnt& center, double& majorRadius,
                                          double& minorRadius, double& angle1, double& angle2,
                                          double& angle3)
{
  ReadInto(label, center, majorRadius, minorRadius, angle1, angle2, angle3);
}

void TorousShapeParaCreator::SetShapeParameter(TDF_Label& label, gp_Pnt& center,
                                               double& majorRadius, double& minorRadius,
                                               double& angle1, double& angle2, double& angle3)
{
  StoreFrom(label, center, majorRadius, minorRadius, angle1, angle2, angle3);
}
