// Picks by a line.
#include "Bindings.h"

#include <pybind11/stl.h>

#include "picking/OCCPickingSystem.h"

#include <gp_Lin.hxx>

#include <array>
#include <cmath>

namespace py = pybind11;

namespace {

using Triple = std::array<double, 3>;

constexpr const char* kLevels[] = {"vertex", "edge", "face", "solid"};

PickingLevel LevelOf(const std::string& name)
{
  for (int level = 0; level < 4; ++level)
    if (name == kLevels[level])
      return static_cast<PickingLevel>(level);
  throw py::value_error("level: \"vertex\", \"edge\", \"face\" or \"solid\"");
}

gp_Lin LineOf(const Triple& origin, const Triple& direction)
{
  const double length = std::hypot(direction[0], direction[1], direction[2]);
  if (!(length > gp::Resolution()) || !std::isfinite(length))
    throw py::value_error("direction: a vector that is not zero");
  return gp_Lin(gp_Pnt(origin[0], origin[1], origin[2]),
                gp_Dir(direction[0], direction[1], direction[2]));
}

std::vector<PickResult> Pick(OCCPickingSystem& system, const Triple& origin,
                             const Triple& direction)
{
  const gp_Lin line = LineOf(origin, direction);
  const py::gil_scoped_release release;
  return system.PickShapes(line);
}

} // namespace

void BindPicking(py::module_& module)
{
  py::class_<PickResult>(module, "PickResult")
    .def_readonly("shape_index", &PickResult::shapeIndex)
    .def_property_readonly("level", [](const PickResult& result) { return kLevels[result.level]; })
    .def_property_readonly("point",
                           [](const PickResult& result) {
                             return py::make_tuple(result.point.X(), result.point.Y(),
                                                   result.point.Z());
                           })
    .def_readonly("parameter", &PickResult::parameter)
    .def_readonly("sub_shape", &PickResult::subShape)
    .def_readonly("parent_shape", &PickResult::parentShape);
  py::class_<OCCPickingSystem>(module, "PickingSystem")
    .def(py::init<>())
    .def("set_shapes", &OCCPickingSystem::SetShapesToPick, py::arg("shapes"))
    .def(
      "set_level",
      [](OCCPickingSystem& system, const std::string& level) {
        system.SetPickingLevel(LevelOf(level));
      },
      py::arg("level"))
    .def("set_tolerance", &OCCPickingSystem::SetPickingTolerance, py::arg("tolerance"))
    .def("pick", &Pick, py::arg("origin"), py::arg("direction"));
}
