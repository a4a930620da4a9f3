// Reading STEP, and the documents of a replay.
#include "Bindings.h"

#include <pybind11/stl.h>

#include "assembly/AssemblyTreeMgr.h"
#include "step/CStepFileReader.h"

#include <optional>

namespace py = pybind11;

namespace {

using Id = std::uint64_t;

// The progress of a read that runs on another thread, for one that waits.
class ProgressBoard
{
public:
  void Set(const Orvex::StepProgress& progress)
  {
    const std::lock_guard lock(mutex);
    latest = progress;
  }

  std::optional<std::pair<std::string, double>> Take()
  {
    const std::lock_guard lock(mutex);
    if (!latest)
      return {};
    const auto taken = std::make_pair(latest->stage, latest->fraction);
    latest.reset();
    return taken;
  }

private:
  std::mutex mutex;
  std::optional<Orvex::StepProgress> latest;
};

// A reader whose thread Python starts and waits for.
class StepRead
{
public:
  StepRead(const std::string& path, bool isolated, double timeLimit, bool report)
  {
    Orvex::StepReadOptions options;
    options.collectReport = report;
    options.isolated = isolated;
    options.timeLimitSeconds = timeLimit;
    options.progress = [this](const Orvex::StepProgress& progress) { board.Set(progress); };
    reader.SetInputFileName(QString::fromStdString(path));
    reader.SetReadOptions(options);
  }

  ~StepRead()
  {
    reader.RequestCancel();
    reader.wait();
  }

  StepRead(const StepRead&) = delete;
  StepRead& operator=(const StepRead&) = delete;

  // Returns: whether the read has ended.
  bool Wait(double seconds)
  {
    return reader.wait(QDeadlineTimer(static_cast<qint64>(seconds * 1000)));
  }

  ProgressBoard board;
  CStepFileReader reader;
};

// Text of any encoding: what is no UTF-8 comes with replacement characters.
py::str TextOf(const std::string& text)
{
  return py::reinterpret_steal<py::str>(
    PyUnicode_DecodeUTF8(text.data(), static_cast<Py_ssize_t>(text.size()), "replace"));
}

template <std::string (CStepFileReader::*build)() const>
py::str Whole(const StepRead& read)
{
  return TextOf((read.reader.*build)());
}

template <std::string (CStepFileReader::*build)(Id) const>
py::str OfEntity(const StepRead& read, Id id)
{
  return TextOf((read.reader.*build)(id));
}

py::list ItemsOf(const StepRead& read)
{
  py::list items;
  for (const StepShapeData& item : read.reader.GetImportShapeDataList())
    items.append(py::make_tuple(item.shape, TextOf(item.name),
                                item.hasColor ? py::object(py::make_tuple(item.r, item.g, item.b))
                                              : py::none()));
  return items;
}

py::dict ReportOf(const StepRead& read)
{
  const Orvex::StepReadReport& report = read.reader.GetReadReport();
  py::list messages;
  for (const Orvex::StepMessage& message : report.messages)
    messages.append(
      py::dict(py::arg("entity") = message.entityId, py::arg("type") = TextOf(message.entityType),
               py::arg("text") = TextOf(message.text), py::arg("is_failure") = message.isFailure,
               py::arg("during_transfer") = message.duringTransfer));
  py::list losses;
  for (const Orvex::StepLoss& loss : report.losses)
    losses.append(py::dict(py::arg("entity") = loss.entityId,
                           py::arg("type") = TextOf(loss.entityType),
                           py::arg("outcome") = TextOf(loss.outcome)));
  return py::dict(
    py::arg("collected") = report.collected, py::arg("schema") = TextOf(report.schema),
    py::arg("length_unit") = TextOf(report.lengthUnit),
    py::arg("length_unit_in_millimetres") = report.lengthUnitInMillimetres,
    py::arg("roots") = report.roots, py::arg("free_shapes") = report.freeShapes,
    py::arg("assemblies") = report.assemblies, py::arg("parts") = report.parts,
    py::arg("components") = report.components, py::arg("entities") = report.entities,
    py::arg("entities_in_error") = report.entitiesInError,
    py::arg("solids_in_file") = report.solidsInFile, py::arg("solids_out") = report.solidsOut,
    py::arg("faces_in_file") = report.facesInFile, py::arg("faces_out") = report.facesOut,
    py::arg("messages") = messages, py::arg("losses") = losses);
}

// (name, name of the shape among the imported ones or "", rows of the placement in the parent,
// children): of an assembly even without children a list, of a part None.
py::tuple NodeOf(const AssemblyTreeNode& node)
{
  py::list rows;
  for (std::size_t row = 0; row < 4; ++row) {
    const double* numbers = node.transform.matrix.data() + 4 * row;
    rows.append(py::make_tuple(numbers[0], numbers[1], numbers[2], numbers[3]));
  }
  py::list children;
  for (const AssemblyTreeNode& child : node.children)
    children.append(NodeOf(child));
  return py::make_tuple(TextOf(node.name), TextOf(node.shapeName), py::tuple(rows),
                        node.isAssembly ? py::object(children) : py::none());
}

// Of the read that ended last.
py::list ProductTree()
{
  py::list roots;
  for (const AssemblyTreeNode& node : AssemblyTreeMgr::GetInstance().GetRoots())
    roots.append(NodeOf(node));
  return roots;
}

} // namespace

void BindStep(py::module_& module)
{
  using Reader = CStepFileReader;
  using Unlocked = py::call_guard<py::gil_scoped_release>;
  const auto id = py::arg("id");
  py::class_<StepRead>(module, "StepRead")
    .def(py::init<const std::string&, bool, double, bool>(), py::arg("path"), py::arg("isolated"),
         py::arg("time_limit"), py::arg("report"))
    .def("start", [](StepRead& read) { read.reader.start(); })
    .def("wait", &StepRead::Wait, py::arg("seconds"), Unlocked())
    .def("cancel", [](StepRead& read) { read.reader.RequestCancel(); })
    .def("take_progress", [](StepRead& read) { return read.board.Take(); })
    .def_property_readonly("succeeded",
                           [](const StepRead& read) { return read.reader.ReadSucceeded(); })
    .def_property_readonly(
      "error",
      [](const StepRead& read) { return TextOf(read.reader.GetLastError().toStdString()); })
    .def_property_readonly("items", &ItemsOf)
    .def_property_readonly("report", &ReportOf)
    .def_property_readonly("product_tree", [](const StepRead&) { return ProductTree(); })
    .def("manifest", &Whole<&Reader::BuildReplayManifestJson>)
    .def("summary", &Whole<&Reader::BuildReplayIRSummaryJson>)
    .def("features", &Whole<&Reader::BuildReplayFeatureCandidatesJson>)
    .def("bundle", &Whole<&Reader::BuildReplayBundleJson>)
    .def("face_plan", &OfEntity<&Reader::BuildReplayFacePlanJson>, id)
    .def("shell_plan", &OfEntity<&Reader::BuildReplayShellPlanJson>, id)
    .def("solid_plan", &OfEntity<&Reader::BuildReplaySolidPlanJson>, id)
    .def("face_bundle", &OfEntity<&Reader::BuildReplayFaceBundleJson>, id)
    .def("shell_bundle", &OfEntity<&Reader::BuildReplayShellBundleJson>, id)
    .def("solid_bundle", &OfEntity<&Reader::BuildReplaySolidBundleJson>, id)
    .def("face_script", &OfEntity<&Reader::BuildReplayFacePythonScript>, id)
    .def("shell_script", &OfEntity<&Reader::BuildReplayShellPythonScript>, id)
    .def("solid_script", &OfEntity<&Reader::BuildReplaySolidPythonScript>, id)
    .def("face_payload", &OfEntity<&Reader::ExpandReplayFacePayloadJson>, id)
    .def("shell_payload", &OfEntity<&Reader::ExpandReplayShellPayloadJson>, id)
    .def("solid_payload", &OfEntity<&Reader::ExpandReplaySolidPayloadJson>, id);
}
