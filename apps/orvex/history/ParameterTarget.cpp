#include "history/ParameterTarget.h"

#include "create/ParameterInput.h"
#include "document/LabelScheme.h"
#include "document/ShapeDocMgr.h"
#include "document/ShapeLabelMgr.h"
#include "features/FeatureHistoryManager.h"
#include "features/ParametricFeatureManager.h"
#include "frame/Failure.h"
#include "frame/Text.h"
#include "parameters/GlobalParaMeterMgr.h"

#include <QStringList>

#include <algorithm>
#include <set>

namespace Orvex::Cli {

namespace {

struct NamedText
{
  std::string name;
  std::string text;
};

Failure Wrong(const QString& entity, const QString& reason, const QString& advice = {})
{
  return {ExitCode::Usage, {}, entity, reason, advice};
}

NamedText SplitAtEquals(const std::string& input, const char* form)
{
  const std::size_t equals = input.find('=');
  if (equals == std::string::npos)
    throw Wrong(TextFromBytes(input), QStringLiteral("is no %1").arg(QLatin1String(form)));
  return {input.substr(0, equals), input.substr(equals + 1)};
}

std::string NameOfFeature(const TDF_Label& label)
{
  const FeatureHistoryItem* item = FeatureHistoryManager::GetInstance().GetFeatureByLabel(label);
  return item == nullptr ? std::string() : item->name;
}

std::vector<TDF_Label> LabelsCalled(const std::string& name, const std::vector<TDF_Label>& labels)
{
  std::vector<TDF_Label> called;
  for (const TDF_Label& label : labels)
    if (EntryOf(label) == name || NameOfFeature(label) == name || HasName(label, name.c_str()))
      called.push_back(label);
  return called;
}

QString ListOf(const std::vector<TDF_Label>& labels)
{
  constexpr std::size_t kShown = 10;
  QStringList texts;
  for (std::size_t i = 0; i < std::min(labels.size(), kShown); ++i)
    texts.append(QStringLiteral("%1 (%2)").arg(TextFromBytes(NameOfFeature(labels[i])),
                                               TextFromBytes(EntryOf(labels[i]))));
  if (labels.size() > kShown)
    texts.append(QStringLiteral("and %1 more").arg(labels.size() - kShown));
  return texts.join(QStringLiteral(", "));
}

// Failures of the kind's table name the kind; here the feature says more.
template <typename Work>
auto NamingFeature(const std::string& shapeName, Work&& work)
{
  try {
    return work();
  } catch (Failure& failure) {
    failure.subject.clear();
    failure.entity = failure.entity.isEmpty()
                       ? TextFromBytes(shapeName)
                       : TextFromBytes(shapeName) + QStringLiteral(": ") + failure.entity;
    throw;
  }
}

TDF_Label ShapeLabelCalled(const std::string& name)
{
  const std::vector<TDF_Label> labels = ShapeLabelMgr::GetInstance()->GetAllShapeLabes();
  const std::vector<TDF_Label> called = LabelsCalled(name, labels);
  if (called.empty())
    throw Wrong(TextFromBytes(name), QStringLiteral("the document has no such feature"),
                QStringLiteral("it has: ") + ListOf(labels));
  if (called.size() > 1)
    throw Wrong(TextFromBytes(name), QStringLiteral("several features are called that"),
                QStringLiteral("name one by its label: ") + ListOf(called));
  return called.front();
}

const ShapeKind& KindOn(const TDF_Label& label, const std::string& name)
{
  const auto code = ValidTypeOf(label);
  if (const ShapeKind* kind = code ? KindOfCode(*code) : nullptr)
    return *kind;
  throw Wrong(TextFromBytes(name), QStringLiteral("it has no parameters of its own"),
              QStringLiteral("change what it is made of"));
}

// What a parameter followed would go before its value.
void EndReference(const TDF_Label& parameter)
{
  if (ReferenceOf(parameter))
    TDF_ChildIterator(parameter).Value().ForgetAllAttributes();
}

struct Writer
{
  const TDF_Label& label;

  bool operator()(double value) const
  {
    SetReal(label, value);
    return true;
  }
  bool operator()(int value) const
  {
    SetInteger(label, value);
    return true;
  }
  bool operator()(const gp_Pnt& value) const
  {
    SetPoint(label, value);
    return true;
  }
  bool operator()(const gp_Dir& value) const
  {
    SetPoint(label, value.XYZ());
    return true;
  }
  bool operator()(const gp_Vec& value) const
  {
    SetPoint(label, value.XYZ());
    return true;
  }
  template <typename Other>
  bool operator()(const Other&) const
  {
    return false;
  }
};

bool IsNumberOrParameter(const QString& text)
{
  bool isNumber = false;
  text.toDouble(&isNumber);
  return isNumber || GlobalParaMeterMgr::IsValidParaName(text.trimmed());
}

bool IsValueOf(int type, const QString& text)
{
  static const std::set<QString> kBooleans = {"true", "false", "1", "0"};
  const QStringList parts = text.split(u',');
  switch (type) {
  case eBOOLEAN_PARAMETER:
    return kBooleans.count(text.trimmed().toLower()) != 0;
  case eVECTOR_PARAMETER:
    return parts.size() == 3 && std::all_of(parts.begin(), parts.end(), IsNumberOrParameter);
  default:
    return IsNumberOrParameter(text);
  }
}

const char* FormOf(int type)
{
  return type == eBOOLEAN_PARAMETER  ? "true or false"
         : type == eVECTOR_PARAMETER ? "x,y,z, each a number or a global parameter"
                                     : "a number or a global parameter";
}

} // namespace

ParameterTarget TargetOf(const std::string& input)
{
  const NamedText named = SplitAtEquals(input, "LABEL:PARAMETER=VALUE");
  const std::size_t colon = named.name.rfind(':');
  if (colon == std::string::npos)
    throw Wrong(TextFromBytes(input), QStringLiteral("is no LABEL:PARAMETER=VALUE"));
  const std::string shapeName = named.name.substr(0, colon);
  ParameterTarget target;
  target.text = named.text;
  target.shape = ShapeLabelCalled(shapeName);
  target.kind = &KindOn(target.shape, shapeName);
  target.name = shapeName;
  target.field = NamingFeature(shapeName, [&] {
    return &target.kind->fields[FieldNamed(*target.kind, named.name.substr(colon + 1))];
  });
  target.parameter = ChildByName(target.shape, target.field->name);
  if (target.parameter.IsNull())
    throw Wrong(TextFromBytes(shapeName),
                QStringLiteral("its label lacks the parameter %1").arg(target.field->name));
  return target;
}

void SetValue(const ParameterTarget& target)
{
  const ParameterValue value =
    NamingFeature(target.name, [&] { return ValueOf(*target.kind, *target.field, target.text); });
  if (!std::visit(Writer{target.parameter}, value))
    throw Wrong(TextFromBytes(target.name) + QStringLiteral(": ") +
                  TextFromBytes(target.field->name),
                QStringLiteral("this parameter cannot be given here"));
  EndReference(target.parameter);
  ParametricFeatureManager::GetInstance().SetParamExpressionRaw(target.parameter, {});
}

void SetExpression(const ParameterTarget& target)
{
  if (!std::holds_alternative<double>(target.field->initial))
    throw Wrong(TextFromBytes(target.name) + QStringLiteral(": ") +
                  TextFromBytes(target.field->name),
                QStringLiteral("only a real parameter can have an expression"));
  EndReference(target.parameter);
  ParametricFeatureManager::GetInstance().SetParamExpressionRaw(target.parameter, target.text);
}

void SetGlobalParameter(const std::string& input)
{
  const NamedText named = SplitAtEquals(input, "NAME=VALUE");
  const QString name = TextFromBytes(named.name), text = TextFromBytes(named.text);
  const auto found = GlobalParaMeterMgr::GetAllParameters().find(name);
  const bool isNew = found == GlobalParaMeterMgr::GetAllParameters().end();
  if (isNew && !GlobalParaMeterMgr::IsValidParaNameFormat(name))
    throw Wrong(name, QStringLiteral("is no name for a parameter"),
                QStringLiteral("a letter or underscore, then letters, digits and underscores"));
  ParametersDef definition = isNew ? ParametersDef() : found->second;
  if (isNew)
    definition.type = text.count(u',') == 2 ? eVECTOR_PARAMETER : eREAL_PARAMETER;
  if (!IsValueOf(definition.type, text))
    throw Wrong(name, QStringLiteral("\"%1\" is no value for it").arg(text),
                QStringLiteral("allowed: %1").arg(FormOf(definition.type)));
  definition.name = name;
  definition.valueText = text;
  definition.valueVariant = {};
  definition.expression.clear();
  definition.expressionParameters.clear();
  GlobalParaMeterMgr::AddParameter(name, definition);
}

} // namespace Orvex::Cli
