// Scenes of parts for collision checks: the same seed gives the same scene.
#pragma once

#include "support/Random.h"

#include <BRepAlgoAPI_Cut.hxx>
#include <BRepBndLib.hxx>
#include <BRepBuilderAPI_MakeFace.hxx>
#include <BRepBuilderAPI_MakePolygon.hxx>
#include <BRepPrimAPI_MakeBox.hxx>
#include <BRepPrimAPI_MakeCone.hxx>
#include <BRepPrimAPI_MakeCylinder.hxx>
#include <BRepPrimAPI_MakePrism.hxx>
#include <BRepPrimAPI_MakeSphere.hxx>
#include <BRepPrimAPI_MakeTorus.hxx>
#include <Bnd_Box.hxx>
#include <TopTools_ListOfShape.hxx>
#include <TopoDS_Shape.hxx>
#include <gp_Trsf.hxx>

#include <cmath>
#include <vector>

namespace OrvexTest {

inline TopoDS_Shape CutAway(const TopoDS_Shape& shape, const TopTools_ListOfShape& tools)
{
  TopTools_ListOfShape arguments;
  arguments.Append(shape);
  BRepAlgoAPI_Cut cut;
  cut.SetArguments(arguments);
  cut.SetTools(tools);
  cut.Build();
  return cut.Shape();
}

// An angle of two plates with two holes through the lower one.
inline TopoDS_Shape Bracket(double size)
{
  const double t = 0.15 * size;
  TopTools_ListOfShape tools;
  tools.Append(BRepPrimAPI_MakeBox(gp_Pnt(t, -1, t), gp_Pnt(2 * size, 2 * size, 2 * size)));
  for (const double y : {0.25, 0.75})
    tools.Append(
      BRepPrimAPI_MakeCylinder(gp_Ax2(gp_Pnt(0.6 * size, y * size, -t), gp::DZ()), t, 3 * t));
  return CutAway(BRepPrimAPI_MakeBox(size, size, size), tools);
}

// A toothed wheel around Z.
inline TopoDS_Shape Gear(double radius, int teeth)
{
  BRepBuilderAPI_MakePolygon outline;
  for (int i = 0; i < 4 * teeth; ++i) {
    const double r = i % 4 < 2 ? radius : 0.85 * radius;
    const double angle = i * M_PI / (2 * teeth);
    outline.Add(gp_Pnt(r * std::cos(angle), r * std::sin(angle), 0));
  }
  outline.Close();
  return BRepPrimAPI_MakePrism(BRepBuilderAPI_MakeFace(outline.Wire()), gp_Vec(0, 0, 0.3 * radius));
}

constexpr int kPartKinds = 7;

// A solid about as large as the size, around the origin or beside it.
inline TopoDS_Shape PartOfKind(int kind, double size)
{
  switch (kind) {
  case 0:
    return BRepPrimAPI_MakeBox(size, 0.7 * size, 0.5 * size);
  case 1:
    return BRepPrimAPI_MakeCylinder(0.4 * size, size);
  case 2:
    return BRepPrimAPI_MakeCone(0.5 * size, 0.2 * size, size);
  case 3:
    return BRepPrimAPI_MakeSphere(0.5 * size);
  case 4:
    return BRepPrimAPI_MakeTorus(0.4 * size, 0.12 * size);
  case 5:
    return Bracket(0.9 * size);
  default:
    return Gear(0.5 * size, 12);
  }
}

inline gp_Trsf RandomTurn(Random& random)
{
  const gp_Dir axis(random.Real(-1, 1), random.Real(-1, 1), random.Real(0.1, 1));
  gp_Trsf turn;
  turn.SetRotation(gp_Ax1(gp::Origin(), axis), random.Real(0, 2 * M_PI));
  return turn;
}

inline gp_Trsf Shift(double x, double y, double z)
{
  gp_Trsf shift;
  shift.SetTranslation(gp_Vec(x, y, z));
  return shift;
}

// Parts of all kinds, each a shape of its own, on a loose lattice; about one in `everyMeets` is
// moved so near to the one before it that the two touch or overlap.
inline std::vector<TopoDS_Shape> SceneOfParts(std::uint64_t seed, int count, int everyMeets = 14)
{
  Random random(seed);
  const int side = static_cast<int>(std::ceil(std::cbrt(count)));
  std::vector<TopoDS_Shape> parts;
  gp_XYZ last;
  for (int i = 0; i < count; ++i) {
    const double size = random.Real(6, 11);
    const gp_XYZ cell(17.0 * (i % side), 17.0 * (i / side % side), 17.0 * (i / side / side));
    gp_XYZ place = cell + gp_XYZ(random.Real(-2, 2), random.Real(-2, 2), random.Real(-2, 2));
    if (i > 0 && random.Index(everyMeets) == 0)
      place = last + gp_XYZ(random.Real(3, 8), random.Real(0, 3), random.Real(0, 3));
    last = place;
    const gp_Trsf placing = Shift(place.X(), place.Y(), place.Z()) * RandomTurn(random);
    parts.push_back(PartOfKind(random.Index(kPartKinds), size).Moved(placing));
  }
  return parts;
}

// k by k round holes in a plate, its corner at the place given.
inline TopoDS_Shape PerforatedPlate(int k, const gp_Pnt& corner)
{
  constexpr double kPitch = 10, kRadius = 3, kThickness = 5;
  TopTools_ListOfShape drills;
  for (int i = 0; i < k * k; ++i) {
    const gp_Pnt at(corner.X() + kPitch * (i % k + 0.5), corner.Y() + kPitch * (i / k + 0.5),
                    corner.Z() - 1);
    drills.Append(BRepPrimAPI_MakeCylinder(gp_Ax2(at, gp::DZ()), kRadius, kThickness + 2));
  }
  return CutAway(BRepPrimAPI_MakeBox(corner, kPitch * k, kPitch * k, kThickness), drills);
}

inline double DiagonalOf(const std::vector<TopoDS_Shape>& shapes)
{
  Bnd_Box box;
  for (const TopoDS_Shape& shape : shapes)
    BRepBndLib::Add(shape, box, true);
  return std::sqrt(box.SquareExtent());
}

} // namespace OrvexTest
