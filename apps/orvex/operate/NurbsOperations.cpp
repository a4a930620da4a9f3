// B-spline faces: from a grid, and edited.
#include "operate/OperationOptions.h"

#include "operations/NurbsSurfaceEditor.h"

#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>

namespace Orvex::Cli {

namespace {

constexpr ValueRange kIndex{.from = 1};

OperationOutcome FromGrid(const OperationCall& call)
{
  const PointList points = call.Points("points");
  const auto rows = static_cast<std::size_t>(call.Integer("rows"));
  if (points.size() % rows != 0)
    return {
      {},
      {},
      {},
      QStringLiteral("%1 points are no %2 rows of equal length").arg(points.size()).arg(rows)};
  const auto columns = static_cast<std::ptrdiff_t>(points.size() / rows);
  std::vector<std::vector<gp_Pnt>> grid;
  for (auto row = points.begin(); row != points.end(); row += columns)
    grid.emplace_back(row, row + columns);
  return {NurbsSurfaceEditor::CreateSurfaceFromControlGrid(grid, call.Integer("u-degree"),
                                                           call.Integer("v-degree")),
          {},
          {},
          QStringLiteral("a grid has two rows and two columns at least")};
}

// The edit of the first face of the input.
template <typename Edit>
OperationOutcome Edited(const OperationCall& call, Edit&& edit)
{
  const TopExp_Explorer first(call.inputs[0], TopAbs_FACE);
  TopoDS_Face face = first.More() ? TopoDS::Face(first.Current()) : TopoDS_Face();
  if (edit(face))
    return {face};
  return {{}, {}, {}, QStringLiteral("there is no such B-spline face to edit")};
}

OperationOutcome MovePole(const OperationCall& call)
{
  return Edited(call, [&](TopoDS_Face& face) {
    return NurbsSurfaceEditor::MoveControlPoint(face, call.Integer("u"), call.Integer("v"),
                                                call.Vector("delta"));
  });
}

OperationOutcome PushPull(const OperationCall& call)
{
  return Edited(call, [&](TopoDS_Face& face) {
    return NurbsSurfaceEditor::PushPullFaceAlongNormal(face, call.Real("distance"));
  });
}

OperationOutcome Reparameterize(const OperationCall& call)
{
  return Edited(call, [&](TopoDS_Face& face) {
    return NurbsSurfaceEditor::ReparameterizeSurface(face, call.Real("u-min"), call.Real("u-max"),
                                                     call.Real("v-min"), call.Real("v-max"));
  });
}

} // namespace

std::span<const Operation> NurbsOperations()
{
  constexpr const char* kFace = "a B-spline face; of another shape its first face";
  static const std::vector<Operation> rows = {
    {"nurbs-grid",
     "A B-spline face from a grid of control points",
     "",
     0,
     0,
     {PointsOption("points", "row by row"), IntegerOption("rows", "of equal length", {.from = 2}),
      IntegerOption("u-degree", "across the rows; what is too high or low is clamped", kAnyReal, 3),
      IntegerOption("v-degree", "along the rows; what is too high or low is clamped", kAnyReal, 3)},
     FromGrid},
    {"nurbs-move-pole",
     "A B-spline face with one control point moved",
     kFace,
     1,
     1,
     {IntegerOption("u", "row of the pole", kIndex), IntegerOption("v", "its column", kIndex),
      VectorOption("delta", "by what to move it")},
     MovePole},
    {"nurbs-push-pull",
     "A B-spline face moved along the normal at its middle",
     kFace,
     1,
     1,
     {RealOption("distance", "more than 1e-7 either way", Unit::Length, kAnyReal)},
     PushPull},
    {"nurbs-reparameterize",
     "A B-spline face with other ranges of its parameters",
     kFace,
     1,
     1,
     {RealOption("u-min", "", Unit::None, kAnyReal, 0.0),
      RealOption("u-max", "above u-min", Unit::None, kAnyReal, 1.0),
      RealOption("v-min", "", Unit::None, kAnyReal, 0.0),
      RealOption("v-max", "above v-min", Unit::None, kAnyReal, 1.0)},
     Reparameterize},
  };
  return rows;
}

} // namespace Orvex::Cli
