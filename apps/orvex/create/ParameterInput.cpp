#include "create/ParameterInput.h"

#include "frame/Failure.h"
#include "frame/Text.h"
#include "info/InputCheck.h"
#include "model/ParameterRecord.h"
#include "model/ShapeFiles.h"

#include <QByteArray>
#include <QStringList>
#include <gp.hxx>

#include <algorithm>
#include <cmath>

namespace Orvex::Cli {

namespace {

constexpr qsizetype kLongestText = 60;
constexpr qsizetype kLongestList = 200;

QString Shortened(const QString& text, qsizetype longest)
{
  return text.size() <= longest ? text : text.first(longest - 3) + QStringLiteral("...");
}

QString Quoted(const std::string& text)
{
  return QStringLiteral("\"%1\"").arg(Shortened(TextFromBytes(text), kLongestText));
}

Failure Wrong(const ParameterForm& form, const QString& entity, const QString& reason,
              const QString& advice)
{
  return {ExitCode::Usage, TextFromBytes(form.word), entity, reason, advice};
}

Failure WrongValue(const ParameterForm& form, const ParameterField& field, const std::string& text,
                   const QString& problem)
{
  QString allowed = QStringLiteral("allowed: ") + AllowedText(field);
  if (form.condition != nullptr)
    allowed += QStringLiteral("; ") + TextFromBytes(form.condition);
  return Wrong(form, TextFromBytes(field.name), Quoted(text) + u' ' + problem, allowed);
}

// What a value may fail by.
struct NotOfType
{};
struct OutOfRange
{};

double RealOfText(const QByteArray& text)
{
  bool ok = false;
  const double value = text.toDouble(&ok);
  if (!ok)
    throw NotOfType();
  return value;
}

gp_XYZ TripleOfText(const QByteArray& text)
{
  const QList<QByteArray> parts = text.split(',');
  if (parts.size() != 3)
    throw NotOfType();
  return {RealOfText(parts[0]), RealOfText(parts[1]), RealOfText(parts[2])};
}

void RequireInRange(const ValueRange& range, const gp_XYZ& xyz)
{
  for (int i = 1; i <= 3; ++i)
    if (!range.Holds(xyz.Coord(i)))
      throw OutOfRange();
}

gp_XYZ NotZero(const gp_XYZ& xyz)
{
  const double length = xyz.Modulus();
  if (!std::isfinite(length) || length <= gp::Resolution())
    throw OutOfRange();
  return xyz;
}

// Reads a text as the type of the value that it visits.
struct FromText
{
  const QByteArray& text;
  const ValueRange& range;

  ParameterValue operator()(double) const
  {
    const double value = RealOfText(text);
    if (!range.Holds(value))
      throw OutOfRange();
    return value;
  }
  ParameterValue operator()(int) const
  {
    bool ok = false;
    const int value = text.toInt(&ok);
    if (!ok)
      throw NotOfType();
    if (!range.Holds(value))
      throw OutOfRange();
    return value;
  }
  ParameterValue operator()(const gp_Pnt&) const
  {
    const gp_XYZ xyz = TripleOfText(text);
    RequireInRange(range, xyz);
    return gp_Pnt(xyz);
  }
  ParameterValue operator()(const gp_Dir&) const
  {
    return gp_Dir(NotZero(TripleOfText(text)));
  }
  ParameterValue operator()(const gp_Vec&) const
  {
    return gp_Vec(NotZero(TripleOfText(text)));
  }
  ParameterValue operator()(const PointList&) const
  {
    PointList points;
    for (const QByteArray& part : text.split(';')) {
      const gp_XYZ xyz = TripleOfText(part);
      RequireInRange(range, xyz);
      points.emplace_back(xyz);
    }
    return points;
  }
  ParameterValue operator()(const TopoDS_Shape& none) const
  {
    const auto format = FormatOfName(text.toStdString());
    if (format != FileFormat::Brep && format != FileFormat::Step)
      throw NotOfType();
    return none;
  }
};

void CheckFileOf(const ParameterForm& form, const ParameterField& field, const std::string& text)
{
  if (!std::holds_alternative<TopoDS_Shape>(field.initial))
    return;
  if (auto problem = CheckInput(text, *FormatOfName(text))) {
    problem->reason = problem->subject + QStringLiteral(": ") + problem->reason;
    problem->subject = TextFromBytes(form.word);
    problem->entity = TextFromBytes(field.name);
    throw *problem;
  }
}

QString Simplified(const QString& name)
{
  QString simple = name.toLower();
  simple.removeIf([](QChar c) { return c.isSpace() || c == u'-' || c == u'_'; });
  return simple;
}

QString KnownNames(const ParameterForm& form)
{
  QStringList names;
  for (const ParameterField& field : form.fields)
    names.append(TextFromBytes(field.name));
  return names.join(QStringLiteral(", "));
}

void Take(const ParameterForm& form, GivenParameters& given, const std::string& input)
{
  const std::size_t equals = input.find('=');
  if (equals == std::string::npos)
    throw Wrong(form, {}, QStringLiteral("%1 is no name=value").arg(Quoted(input)),
                QStringLiteral("its parameters: ") + KnownNames(form));
  const std::size_t index = FieldNamed(form, input.substr(0, equals));
  const ParameterField& field = form.fields[index];
  const std::string text = input.substr(equals + 1);
  if (!given.texts[index].empty())
    throw Wrong(form, TextFromBytes(field.name), QStringLiteral("is given twice"), {});
  given.values[index] = ValueOf(form, field, text);
  CheckFileOf(form, field, text);
  given.texts[index] = text;
}

void RequireComplete(const ParameterForm& form, const GivenParameters& given)
{
  QStringList missing;
  for (std::size_t i = 0; i < given.texts.size(); ++i) {
    const ParameterField& field = form.fields[i];
    if (given.texts[i].empty() && !field.preset)
      missing.append(QStringLiteral("%1 (%2)").arg(TextFromBytes(field.name), AllowedText(field)));
  }
  if (!missing.isEmpty())
    throw Wrong(form, {}, QStringLiteral("missing: ") + missing.join(QStringLiteral(", ")), {});
}

QString RangeText(const ParameterField& field)
{
  QStringList parts;
  if (const QString range = TextFromBytes(field.range.Text()); range != QStringLiteral("any"))
    parts.append(range);
  if (field.unit != Unit::None)
    parts.append(UnitWord(field.unit));
  return parts.join(u' ');
}

} // namespace

const ShapeKind& KindNamed(const std::string& word)
{
  if (const ShapeKind* kind = KindOfWord(word))
    return *kind;
  QStringList words;
  for (const ShapeKind* kind : ShapeKinds())
    words.append(TextFromBytes(kind->word));
  throw Failure{ExitCode::Usage,
                {},
                {},
                QStringLiteral("there is no kind %1").arg(Quoted(word)),
                QStringLiteral("the kinds: ") + words.join(QStringLiteral(", "))};
}

std::size_t FieldNamed(const ParameterForm& form, const std::string& name)
{
  const QString simple = Simplified(TextFromBytes(name));
  const auto found =
    std::find_if(form.fields.begin(), form.fields.end(), [&simple](const ParameterField& field) {
      return Simplified(TextFromBytes(field.name)) == simple;
    });
  if (found == form.fields.end())
    throw Wrong(form, {}, QStringLiteral("has no parameter %1").arg(Quoted(name)),
                form.fields.empty() ? QString()
                                    : QStringLiteral("its parameters: ") + KnownNames(form));
  return static_cast<std::size_t>(found - form.fields.begin());
}

ParameterValue ValueOf(const ParameterForm& form, const ParameterField& field,
                       const std::string& text)
{
  try {
    return std::visit(FromText{QByteArray::fromStdString(text), field.range}, field.initial);
  } catch (const NotOfType&) {
    throw WrongValue(form, field, text,
                     QStringLiteral("is no %1")
                       .arg(std::holds_alternative<double>(field.initial)
                              ? QStringLiteral("number")
                              : TypeWord(field.initial)));
  } catch (const OutOfRange&) {
    throw WrongValue(form, field, text, QStringLiteral("is out of range"));
  }
}

GivenParameters ReadParameterInput(const ParameterForm& form,
                                   const std::vector<std::string>& inputs)
{
  GivenParameters given{{}, std::vector<std::string>(form.fields.size())};
  for (const ParameterField& field : form.fields)
    given.values.push_back(field.preset.value_or(field.initial));
  for (const std::string& input : inputs)
    Take(form, given, input);
  RequireComplete(form, given);
  return given;
}

ParameterSet ValuesWithShapes(const GivenParameters& given)
{
  ParameterSet values = given.values;
  for (std::size_t i = 0; i < values.size(); ++i)
    if (std::holds_alternative<TopoDS_Shape>(values[i]) && !given.texts[i].empty())
      values[i] = ReadOperand(given.texts[i]);
  return values;
}

QString AllowedText(const ParameterField& field)
{
  return (WrittenForm(field.initial) + u' ' + RangeText(field)).trimmed();
}

QString AllowedText(const ParameterForm& form)
{
  QStringList parts;
  for (const ParameterField& field : form.fields)
    if (field.range.Text() != "any")
      parts.append(TextFromBytes(field.name) + u' ' + RangeText(field));
  QString text = parts.join(QStringLiteral(", "));
  if (form.condition != nullptr)
    text += (text.isEmpty() ? QString() : QStringLiteral("; ")) + TextFromBytes(form.condition);
  return text.isEmpty() ? text : QStringLiteral("allowed: ") + text;
}

QString GivenText(const ParameterForm& form, const GivenParameters& given)
{
  QStringList parts;
  for (std::size_t i = 0; i < given.texts.size(); ++i)
    if (!given.texts[i].empty())
      parts.append(TextFromBytes(form.fields[i].name) + u'=' + TextFromBytes(given.texts[i]));
  return Shortened(parts.join(QStringLiteral(", ")), kLongestList);
}

} // namespace Orvex::Cli
