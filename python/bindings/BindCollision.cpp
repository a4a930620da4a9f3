// Collisions between shapes.
#include "Bindings.h"

#include <pybind11/functional.h>
#include <pybind11/stl.h>

#include "collision/InterferenceChecker.h"

namespace py = pybind11;

namespace {

OrvexCollisionConfig PresetOf(const std::string& name)
{
  if (name == "fast")
    return OrvexCollisionConfig::createFastConfig();
  if (name == "balanced")
    return OrvexCollisionConfig::createBalancedConfig();
  if (name == "strict")
    return OrvexCollisionConfig::createStrictConfig();
  if (name == "accurate")
    return OrvexCollisionConfig::createAccurateConfig();
  throw py::value_error("preset: \"fast\", \"balanced\", \"strict\" or \"accurate\"");
}

std::vector<OrvexCollisionResult> Collisions(const std::vector<TopoDS_Shape>& shapes,
                                             const std::string& preset, bool overlapShapes)
{
  OrvexCollisionConfig config = PresetOf(preset);
  config.keepOverlapShape = overlapShapes;
  OrvexCollisionMetrics metrics;
  const py::gil_scoped_release release;
  return InterferenceChecker::FindCollisionsDetailed(shapes, config, {}, &metrics);
}

py::tuple TupleOf(const gp_Pnt& point)
{
  return py::make_tuple(point.X(), point.Y(), point.Z());
}

} // namespace

void BindCollision(py::module_& module)
{
  using Result = OrvexCollisionResult;
  py::class_<Result>(module, "Collision")
    .def_readonly("first", &Result::partA)
    .def_readonly("second", &Result::partB)
    .def_property_readonly("state", &Result::stateString)
    .def_readonly("overlap_volume", &Result::overlapVolume)
    .def_readonly("distance", &Result::distance)
    .def_readonly("overlap_shape", &Result::overlapShape)
    .def_property_readonly("has_collision", &Result::hasCollision)
    .def_property_readonly(
      "is_contact",
      [](const Result& result) { return result.hasCollision() && !(result.overlapVolume > 0); })
    .def_property_readonly("point_on_first",
                           [](const Result& result) { return TupleOf(result.pointOnA); })
    .def_property_readonly("point_on_second",
                           [](const Result& result) { return TupleOf(result.pointOnB); });
  module.def("collisions", &Collisions, py::arg("shapes"), py::kw_only(),
             py::arg("preset") = "balanced", py::arg("overlap_shapes") = false);
  module.def("interferences", &InterferenceChecker::FindInterferences, py::arg("shapes"),
             py::arg("tolerance"), py::call_guard<py::gil_scoped_release>());
}
