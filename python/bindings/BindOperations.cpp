// The modelling operations, by the table that the command line has of them.
#include "Bindings.h"
#include "KernelErrors.h"
#include "ParameterValues.h"

#include <pybind11/stl.h>

#include "frame/Failure.h"
#include "operate/Operation.h"

#include <BRepBuilderAPI_Copy.hxx>
#include <QJsonDocument>

namespace py = pybind11;

namespace {

using Orvex::Cli::Failure;
using Orvex::Cli::Operation;
using Orvex::Cli::OperationCall;
using Orvex::Cli::OperationOption;
using Orvex::Cli::OperationOutcome;

[[noreturn]] void Raise(const Failure& failure)
{
  const std::string line = Orvex::Cli::FailureLine(failure).toStdString();
  if (failure.code == Orvex::Cli::ExitCode::Usage)
    throw py::value_error(line);
  RaiseKernelError(line);
}

const Operation& OperationCalled(const std::string& name)
{
  try {
    return Orvex::Cli::OperationNamed(name);
  } catch (const Failure& failure) {
    Raise(failure);
  }
}

std::string WordsOf(const OperationOption& option)
{
  std::string words;
  for (const char* word : option.words)
    words.append(words.empty() ? "" : ", ").append(word);
  return words;
}

// A word, or a truth for a question of yes and no.
Orvex::ParameterValue WordValue(const OperationOption& option, const py::handle& given)
{
  if (py::isinstance<py::bool_>(given))
    return given.cast<bool>() ? 1 : 0;
  if (py::isinstance<py::str>(given))
    for (std::size_t at = 0; at < option.words.size(); ++at)
      if (given.cast<std::string>() == option.words[at])
        return static_cast<int>(at);
  Refuse(option.field.name, WordsOf(option));
}

Orvex::ParameterSet ValuesOf(const Operation& operation, const py::dict& given)
{
  Orvex::ParameterSet values;
  std::size_t used = 0;
  for (const OperationOption& option : operation.options) {
    const char* name = option.field.name;
    if (given.contains(name)) {
      ++used;
      values.push_back(option.words.empty() ? ValueOf(option.field, given[name])
                                            : WordValue(option, given[name]));
    } else if (option.field.preset) {
      values.push_back(*option.field.preset);
    } else {
      Refuse(name, "it has to be given");
    }
  }
  if (used != given.size())
    for (const auto& [key, value] : given)
      if (std::none_of(operation.options.begin(), operation.options.end(),
                       [&](const OperationOption& option) {
                         return key.cast<std::string>() == option.field.name;
                       }))
        Refuse(key.cast<std::string>(), std::string("no option of ").append(operation.name));
  return values;
}

void CheckInputs(const Operation& operation, const std::vector<TopoDS_Shape>& inputs)
{
  const auto count = static_cast<int>(inputs.size());
  if (count < operation.fewestInputs || count > operation.mostInputs)
    Refuse("shapes", operation.inputs);
  for (const TopoDS_Shape& input : inputs)
    if (input.IsNull())
      Refuse("shapes", "none of them null");
}

// Edits of B-spline faces are made in place; whoever calls from here keeps the face.
std::vector<TopoDS_Shape> OperandsFor(const std::string& name,
                                      const std::vector<TopoDS_Shape>& inputs)
{
  if (name.rfind("nurbs-", 0) != 0)
    return inputs;
  std::vector<TopoDS_Shape> copies;
  for (const TopoDS_Shape& input : inputs)
    copies.push_back(BRepBuilderAPI_Copy(input).Shape());
  return copies;
}

OperationOutcome Run(const OperationCall& call)
{
  const py::gil_scoped_release release;
  try {
    return call.operation.run(call);
  } catch (const Failure& failure) {
    Raise(failure);
  }
}

py::tuple Operate(const std::string& name, const std::vector<TopoDS_Shape>& inputs,
                  const py::dict& options)
{
  const Operation& operation = OperationCalled(name);
  CheckInputs(operation, inputs);
  const OperationOutcome outcome =
    Run({operation, OperandsFor(name, inputs), ValuesOf(operation, options)});
  if (operation.givesShape && outcome.shape.IsNull())
    RaiseKernelError(outcome.reason.isEmpty()
                       ? std::string(name).append(": the kernel cannot do it with these shapes")
                       : outcome.reason.toStdString());
  std::vector<std::string> notes;
  for (const QString& note : outcome.notes)
    notes.push_back(note.toStdString());
  const QByteArray facts = QJsonDocument(outcome.facts).toJson(QJsonDocument::Compact);
  return py::make_tuple(outcome.shape, facts.toStdString(), notes);
}

py::dict OptionsTold(const Operation& operation)
{
  py::dict options;
  for (const OperationOption& option : operation.options) {
    const std::string allowed = option.words.empty() ? option.field.range.Text() : WordsOf(option);
    options[option.field.name] = py::make_tuple(
      option.help, allowed, option.field.preset ? ToPython(*option.field.preset) : py::none());
  }
  return options;
}

py::dict OperationsTold()
{
  py::dict operations;
  for (const Operation* operation : Orvex::Cli::Operations())
    operations[operation->name] =
      py::make_tuple(operation->summary, operation->inputs, OptionsTold(*operation));
  return operations;
}

} // namespace

void BindOperations(py::module_& module)
{
  module.def("operate", &Operate, py::arg("name"), py::arg("shapes"), py::arg("options"));
  module.def("operations", &OperationsTold);
}
