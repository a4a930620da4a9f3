#include "operate/OperationRun.h"

#include "document/LabelScheme.h"
#include "document/ShapeLabelMgr.h"
#include "frame/Failure.h"
#include "frame/Text.h"
#include "info/InputCheck.h"
#include "model/Documents.h"
#include "model/ParameterRecord.h"
#include "model/ShapeMeasures.h"
#include "model/ShapeRecord.h"
#include "operations/OrvexGeometryOp.h"

#include <BRepCheck_Analyzer.hxx>

#include <algorithm>
#include <filesystem>

namespace Orvex::Cli {

namespace {

Failure Wrong(const Operation& operation, const QString& reason, const QString& advice)
{
  return {ExitCode::Usage, TextFromBytes(operation.name), {}, reason, advice};
}

std::vector<ParameterField> FieldsOf(const Operation& operation)
{
  std::vector<ParameterField> fields;
  for (const OperationOption& option : operation.options)
    fields.push_back(option.field);
  return fields;
}

QString WordsText(const OperationOption& option)
{
  QStringList words;
  for (const char* word : option.words)
    words.append(TextFromBytes(word));
  return words.join(QStringLiteral(", "));
}

// "join=arc" as "join=0"; anything else as it is.
std::string WithNumberForWord(const Operation& operation, const ParameterForm& form,
                              const std::string& input)
{
  const std::size_t equals = input.find('=');
  if (equals == std::string::npos)
    return input;
  const OperationOption& option = operation.options[FieldNamed(form, input.substr(0, equals))];
  if (option.words.empty())
    return input;
  const QString given = TextFromBytes(input.substr(equals + 1));
  for (std::size_t i = 0; i < option.words.size(); ++i)
    if (given.compare(QLatin1String(option.words[i]), Qt::CaseInsensitive) == 0)
      return input.substr(0, equals + 1) + std::to_string(i);
  throw Failure{ExitCode::Usage, TextFromBytes(operation.name), TextFromBytes(option.field.name),
                QStringLiteral("\"%1\" is none of its words").arg(given),
                QStringLiteral("allowed: ") + WordsText(option)};
}

GivenParameters ReadOptions(const Operation& operation, const std::vector<std::string>& options)
{
  const std::vector<ParameterField> fields = FieldsOf(operation);
  const ParameterForm form(operation.name, fields);
  std::vector<std::string> numbers;
  for (const std::string& option : options)
    numbers.push_back(WithNumberForWord(operation, form, option));
  GivenParameters given = ReadParameterInput(form, numbers);
  for (std::size_t i = 0; i < given.texts.size(); ++i)
    if (!operation.options[i].words.empty() && !given.texts[i].empty())
      given.texts[i] =
        operation.options[i].words[static_cast<std::size_t>(std::get<int>(given.values[i]))];
  return given;
}

void CheckFile(const Operation& operation, const std::string& path)
{
  const auto format = FormatOfName(path);
  if (format != FileFormat::Brep && format != FileFormat::Step)
    throw Wrong(operation, QStringLiteral("%1 is no BREP or STEP file").arg(TextFromBytes(path)),
                QStringLiteral("end the name of an input with .brep, .step or .stp"));
  if (const auto problem = CheckInput(path, *format))
    throw *problem;
}

void CheckCount(const Operation& operation, std::size_t count)
{
  const auto fewest = static_cast<std::size_t>(operation.fewestInputs);
  const auto most = static_cast<std::size_t>(operation.mostInputs);
  if (count >= fewest && count <= most)
    return;
  const QString limit = fewest == most   ? QString::number(fewest)
                        : count < fewest ? QStringLiteral("at least %1").arg(fewest)
                                         : QStringLiteral("at most %1").arg(most);
  throw Wrong(operation, QStringLiteral("it takes %1 inputs, not %2").arg(limit).arg(count),
              TextFromBytes(operation.inputs));
}

Failure Refused(const OperationRequest& request, const QString& reason)
{
  return {ExitCode::KernelFailure, TextFromBytes(request.operation->name), GivenText(request),
          reason, AllowedText(request)};
}

OperationCall CallOf(const OperationRequest& request)
{
  OperationCall call{*request.operation, {}, ValuesWithShapes(request.options)};
  for (const std::string& input : request.inputs)
    call.inputs.push_back(ReadOperand(input));
  return call;
}

OperationOutcome OutcomeOf(const OperationRequest& request, const OperationCall& call)
{
  OperationOutcome outcome;
  try {
    outcome = request.operation->run(call);
  } catch (const Failure&) {
    throw;
  } catch (...) {
    throw Refused(request, QStringLiteral("the kernel refuses: ") +
                             FailureOfCurrentException(ExitCode::KernelFailure).reason);
  }
  if (request.operation->givesShape && outcome.shape.IsNull())
    throw Refused(request, outcome.reason.isEmpty()
                             ? QStringLiteral("the kernel cannot do it with these shapes")
                             : outcome.reason);
  return outcome;
}

// A document that holds the shape and nothing else.
TDF_Label LabelFor(const Operation& operation, const TopoDS_Shape& shape)
{
  const TDF_Label label =
    ShapeLabelMgr::GetInstance()->AddNewShapeToDocAndGetLabel(NewDocument(), shape);
  SetName(label, operation.name);
  return label;
}

void Write(const Operation& operation, const TopoDS_Shape& shape, const WriteTarget& target)
{
  if (operation.onlyFormat != FileFormat::Iges) {
    WriteModel(LabelFor(operation, shape), target);
    return;
  }
  std::string path = target.path;
  OrvexGeometryOp::SaveShapeToIgsFile(path, shape);
  if (std::filesystem::file_size(path) == 0)
    throw Failure{ExitCode::Partial,
                  TextFromBytes(target.name),
                  {},
                  QStringLiteral("the kernel could not write it"),
                  {}};
}

QJsonArray OptionsJson(const OperationRequest& request)
{
  QJsonArray options;
  for (std::size_t i = 0; i < request.options.values.size(); ++i) {
    const OperationOption& option = request.operation->options[i];
    const ParameterValue& value = request.options.values[i];
    QJsonObject json{{"name", option.field.name}, {"value", ValueJson(value)}};
    if (!option.words.empty())
      json.insert("value", option.words[static_cast<std::size_t>(std::get<int>(value))]);
    else if (std::holds_alternative<TopoDS_Shape>(value) && !request.options.texts[i].empty())
      json.insert("value", TextFromBytes(request.options.texts[i]));
    if (option.field.unit != Unit::None)
      json.insert("unit", UnitWord(option.field.unit));
    options.append(json);
  }
  return options;
}

QJsonArray InputsJson(const OperationRequest& request, const OperationCall& call)
{
  QJsonArray inputs;
  for (std::size_t i = 0; i < call.inputs.size(); ++i)
    inputs.append(QJsonObject{{"file", TextFromBytes(request.inputs[i])},
                              {"shape", ShapeWord(call.inputs[i])}});
  return inputs;
}

QString FactsText(const QJsonObject& facts)
{
  qsizetype width = 11;
  for (const QString& name : facts.keys())
    width = std::max(width, name.size() + 1);
  QString text;
  for (auto fact = facts.begin(); fact != facts.end(); ++fact) {
    const QString value = fact->isBool()
                            ? (fact->toBool() ? QStringLiteral("yes") : QStringLiteral("no"))
                            : ValueText(*fact);
    text += QStringLiteral("  %1%2\n").arg(fact.key().leftJustified(width), value);
  }
  return text;
}

QJsonObject ShapeJson(const TopoDS_Shape& shape)
{
  QJsonObject json = SizeJson(shape);
  json.insert("shape", ShapeWord(shape));
  json.insert("valid", BRepCheck_Analyzer(shape).IsValid());
  return json;
}

} // namespace

OperationRequest RequestFor(const Operation& operation, const std::vector<std::string>& inputs,
                            const std::vector<std::string>& options)
{
  CheckCount(operation, inputs.size());
  OperationRequest request{&operation, inputs, ReadOptions(operation, options)};
  for (const std::string& input : inputs)
    CheckFile(operation, input);
  return request;
}

QString GivenText(const OperationRequest& request)
{
  QStringList parts;
  for (const std::string& input : request.inputs)
    parts.append(TextFromBytes(input));
  const std::vector<ParameterField> fields = FieldsOf(*request.operation);
  if (const QString options =
        GivenText(ParameterForm(request.operation->name, fields), request.options);
      !options.isEmpty())
    parts.append(options);
  return parts.join(QStringLiteral(", "));
}

QString AllowedText(const OperationRequest& request)
{
  const std::vector<ParameterField> fields = FieldsOf(*request.operation);
  QStringList parts;
  if (request.operation->mostInputs > 0)
    parts.append(QStringLiteral("it takes: ") + TextFromBytes(request.operation->inputs));
  parts.append(AllowedText(ParameterForm(request.operation->name, fields)));
  parts.removeAll(QString());
  return parts.join(QStringLiteral("; "));
}

QJsonObject RunOperation(const OperationRequest& request, const std::optional<WriteTarget>& target)
{
  const OperationCall call = CallOf(request);
  // Some operations put their results on labels.
  const auto document = NewDocument();
  const OperationOutcome outcome = OutcomeOf(request, call);
  QJsonObject record{{"operation", request.operation->name},
                     {"inputs", InputsJson(request, call)},
                     {"options", OptionsJson(request)},
                     {"facts", outcome.facts},
                     {"notes", QJsonArray::fromStringList(outcome.notes)},
                     {"result", QJsonValue()},
                     {"file", QJsonValue()},
                     {"format", QJsonValue()}};
  if (outcome.shape.IsNull())
    return record;
  record.insert("result", ShapeJson(outcome.shape));
  if (target) {
    Write(*request.operation, outcome.shape, *target);
    record.insert("file", TextFromBytes(target->name));
    record.insert("format", FormatWord(target->format));
  }
  return record;
}

QString OutcomeText(const QJsonObject& outcome)
{
  const QJsonObject result = outcome.value("result").toObject();
  QString text = outcome.value("operation").toString();
  if (!result.isEmpty())
    text += QStringLiteral(": ") + result.value("shape").toString();
  text += u'\n' + ParametersText(outcome.value("options").toArray(), QStringLiteral("    "));
  if (!result.isEmpty())
    text += SizeText(result);
  text += FactsText(outcome.value("facts").toObject());
  for (const QJsonValue& note : outcome.value("notes").toArray())
    text += QStringLiteral("  note       %1\n").arg(TerminalText(note.toString()));
  if (outcome.value("file").isString())
    text += QStringLiteral("  written    %1\n").arg(TerminalText(outcome.value("file").toString()));
  return text;
}

} // namespace Orvex::Cli
