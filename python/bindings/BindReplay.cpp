// Solids from the payloads of a replay.
#include "Bindings.h"

#include <pybind11/stl.h>

#include "step/rebuild/ReplayPayloadReader.h"
#include "step/rebuild/ReplaySolidRebuilder.h"

#include <memory>

namespace py = pybind11;

namespace {

using Faces = std::vector<Orvex::ReplayFacePayload>;

Faces FacesOf(const std::string& json)
{
  Faces faces;
  std::string error;
  if (!Orvex::ReplayPayloadReader::ReadFaces(json, faces, error))
    throw py::value_error(std::string("payload: ").append(error));
  return faces;
}

// The payloads of one solid, and what can be built of them.
class SolidRebuilder
{
public:
  explicit SolidRebuilder(const std::string& json)
      : faces(FacesOf(json)), rebuilder(std::make_unique<Orvex::ReplaySolidRebuilder>(faces))
  {}

  bool RestoreDigits(const TopoDS_Shape& exact)
  {
    if (!Orvex::ReplayPayloadReader::RestoreDigits(exact, faces))
      return false;
    rebuilder = std::make_unique<Orvex::ReplaySolidRebuilder>(faces);
    return true;
  }

  const Orvex::ReplaySolidRebuilder& Get() const
  {
    return *rebuilder;
  }

private:
  Faces faces;
  std::unique_ptr<Orvex::ReplaySolidRebuilder> rebuilder;
};

} // namespace

void BindReplay(py::module_& module)
{
  using Unlocked = py::call_guard<py::gil_scoped_release>;
  py::class_<Orvex::ReplayRebuiltOperand>(module, "RebuiltOperand")
    .def_readonly("face_ids", &Orvex::ReplayRebuiltOperand::faceIds)
    .def_readonly("role", &Orvex::ReplayRebuiltOperand::role)
    .def_readonly("form", &Orvex::ReplayRebuiltOperand::form);
  py::class_<Orvex::ReplayRebuild>(module, "Rebuild")
    .def_readonly("shape", &Orvex::ReplayRebuild::shape)
    .def_readonly("operands", &Orvex::ReplayRebuild::operands)
    .def_readonly("failure", &Orvex::ReplayRebuild::failure);
  py::class_<SolidRebuilder>(module, "SolidRebuilder")
    .def(py::init<const std::string&>(), py::arg("payload"))
    .def("restore_digits", &SolidRebuilder::RestoreDigits, py::arg("exact"), Unlocked())
    .def_property_readonly("failures",
                           [](const SolidRebuilder& solid) {
                             std::vector<std::pair<std::uint64_t, std::string>> failures;
                             for (const auto& failure : solid.Get().Failures())
                               failures.emplace_back(failure.faceId, failure.reason);
                             return failures;
                           })
    .def(
      "face", [](const SolidRebuilder& solid, std::uint64_t id) { return solid.Get().Face(id); },
      py::arg("id"))
    .def(
      "shell",
      [](const SolidRebuilder& solid, const std::vector<std::uint64_t>& ids) {
        return solid.Get().Shell({ids.begin(), ids.end()});
      },
      py::arg("ids"), Unlocked())
    .def(
      "from_faces", [](const SolidRebuilder& solid) { return solid.Get().FromFaces(); }, Unlocked())
    .def(
      "from_features", [](const SolidRebuilder& solid) { return solid.Get().FromFeatures(); },
      Unlocked())
    .def(
      "from_primitive",
      [](const SolidRebuilder& solid, const std::string& kind) {
        return solid.Get().FromPrimitive(kind);
      },
      py::arg("kind"), Unlocked());
}
