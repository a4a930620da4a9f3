#include "info/InfoText.h"

#include "frame/Text.h"

#include <QJsonArray>
#include <QStringList>
#include <gp_Mat.hxx>
#include <gp_Quaternion.hxx>
#include <gp_Vec.hxx>

#include <cmath>

namespace Orvex::Cli {

namespace {

constexpr int kNamesShown = 8;

QString Row(const char* label, const QString& text)
{
  return QStringLiteral("  %1%2\n").arg(QString::fromLatin1(label).leftJustified(11), text);
}

QString Triple(double x, double y, double z)
{
  return QStringLiteral("(%1, %2, %3)").arg(Decimal(x), Decimal(y), Decimal(z));
}

QString CountOf(int count, const char* one, const char* many)
{
  return QStringLiteral("%1 %2").arg(count).arg(QLatin1String(count == 1 ? one : many));
}

QString Bold(const QString& text, const TextStyle& style)
{
  return style.colour ? QStringLiteral("\x1b[1m%1\x1b[0m").arg(text) : text;
}

QString Dim(const QString& text, const TextStyle& style)
{
  return style.colour && !text.isEmpty() ? QStringLiteral("\x1b[2m%1\x1b[0m").arg(text) : text;
}

// A patch of the colour itself where the terminal can show it, and its code.
QString Colour(const QString& hex, const TextStyle& style)
{
  if (!style.colour)
    return hex;
  const int code = hex.mid(1).toInt(nullptr, 16);
  return QStringLiteral("\x1b[38;2;%1;%2;%3m■\x1b[0m %4")
    .arg(code >> 16 & 255)
    .arg(code >> 8 & 255)
    .arg(code & 255)
    .arg(hex);
}

QString UnitRow(const QJsonObject& unit)
{
  const QString name = unit.value("name").toString();
  const double factor = unit.value("millimetres").toDouble();
  if (name.isEmpty())
    return Row("unit", QStringLiteral("the file names none"));
  return Row("unit", QStringLiteral("%1, lengths times %2 to millimetres")
                       .arg(TerminalText(name), Decimal(factor, 6)));
}

QString SizeRow(const QJsonValue& box)
{
  if (!box.isObject())
    return Row("size", QStringLiteral("nothing to measure"));
  const QJsonArray size = box["size"].toArray();
  return Row("size", QStringLiteral("%1 × %2 × %3 mm, diagonal %4 mm")
                       .arg(Decimal(size[0].toDouble()), Decimal(size[1].toDouble()),
                            Decimal(size[2].toDouble()), Decimal(box["diagonal"].toDouble())));
}

QString StructureRow(const QJsonObject& structure)
{
  const auto value = [&structure](const char* key) {
    return structure.value(QLatin1String(key)).toInt();
  };
  QString text = CountOf(value("assemblies"), "assembly", "assemblies") + QStringLiteral(", ") +
                 CountOf(value("parts"), "part", "parts");
  if (value("occurrences") > 0)
    text += QStringLiteral("; %1 (%2 at the leaves), depth %3")
              .arg(CountOf(value("occurrences"), "occurrence", "occurrences"))
              .arg(value("leaves"))
              .arg(value("depth"));
  else
    text += QStringLiteral("; ") + CountOf(value("freeShapes"), "top shape", "top shapes");
  return Row("structure", text);
}

QString CountsRow(const char* kind, const QJsonObject& counts)
{
  const QJsonObject count = counts.value(QLatin1String(kind)).toObject();
  QString text = QStringLiteral("%1 (%2 distinct")
                   .arg(count.value("expanded").toInt())
                   .arg(count.value("distinct").toInt());
  if (const int free = count.value("free").toInt(); free > 0 && qstrcmp(kind, "solids") != 0)
    text += QStringLiteral(", %1 free").arg(free);
  return Row(kind, text + QStringLiteral(")"));
}

QString SurfacesRow(const QJsonObject& surfaces)
{
  QStringList kinds;
  for (auto kind = surfaces.begin(); kind != surfaces.end(); ++kind)
    kinds.append(QStringLiteral("%1 %2").arg(kind.value().toInt()).arg(kind.key()));
  return kinds.isEmpty() ? QString() : Row("surfaces", kinds.join(QStringLiteral(", ")));
}

QString ShortList(const QStringList& texts, const TextStyle& style)
{
  const int shown = style.allNames ? int(texts.size()) : kNamesShown;
  if (texts.size() <= shown)
    return texts.join(QStringLiteral(", "));
  return QStringLiteral("%1 and %2 more")
    .arg(texts.first(shown).join(QStringLiteral(", ")))
    .arg(texts.size() - shown);
}

QString ColoursRow(const QJsonArray& colours, const TextStyle& style)
{
  QStringList texts;
  for (const QJsonValue& colour : colours)
    texts.append(Colour(colour.toString(), style));
  return Row("colours", texts.isEmpty() ? QStringLiteral("none") : ShortList(texts, style));
}

// What there is, by name: the parts with their number of occurrences, or, where no product tree
// was read, the shapes.
QString NamesRow(const QJsonObject& entry, const TextStyle& style)
{
  const bool hasParts = entry.contains("definitions");
  QStringList names;
  for (const QJsonValue& item : entry.value(hasParts ? "definitions" : "shapes").toArray()) {
    const int count = item["occurrences"].toInt(1);
    const QString name = TerminalText(item["name"].toString());
    names.append(count > 1 ? QStringLiteral("%1 ×%2").arg(name).arg(count) : name);
  }
  return Row(hasParts ? "parts" : "shapes", ShortList(names, style));
}

QString NodeText(const QJsonObject& node, bool repeated, const TextStyle& style)
{
  const bool assembly = node.value("kind") == "assembly";
  const QString name = TerminalText(node.value("name").toString());
  QString text = assembly ? Bold(name, style) : name;
  if (node.contains("color"))
    text += QStringLiteral("  ") + Colour(node.value("color").toString(), style);
  if (const int of = node.value("of").toInt(); of > 1)
    text += QStringLiteral("  [%1 of %2%3]")
              .arg(node.value("occurrence").toInt())
              .arg(of)
              .arg(QLatin1String(repeated ? ", inside as above" : ""));
  const QString placement = PlacementText(node.value("placement").toArray());
  return placement.isEmpty() ? text : text + QStringLiteral("  ") + Dim(placement, style);
}

// An assembly that occurs again is not spread out again: what is inside stands above.
QString TreeText(const QJsonArray& nodes, const QString& indent, const TextStyle& style)
{
  QString text;
  for (qsizetype i = 0; i < nodes.size(); ++i) {
    const bool last = i + 1 == nodes.size();
    const QJsonObject node = nodes[i].toObject();
    const QJsonArray children = node.value("children").toArray();
    const bool repeated = node.value("occurrence").toInt() > 1 && !children.isEmpty();
    text += indent + (last ? QStringLiteral("└─ ") : QStringLiteral("├─ ")) +
            NodeText(node, repeated, style) + u'\n';
    if (!repeated)
      text +=
        TreeText(children, indent + (last ? QStringLiteral("   ") : QStringLiteral("│  ")), style);
  }
  return text;
}

QString DefinitionsText(const QJsonArray& definitions)
{
  QString text = QStringLiteral("\n  definitions\n");
  for (const QJsonValue& part : definitions)
    text += QStringLiteral("  %1 %2 %3\n")
              .arg(part["id"].toString().leftJustified(12))
              .arg(QStringLiteral("×%1").arg(part["occurrences"].toInt()).leftJustified(5))
              .arg(TerminalText(part["name"].toString()));
  return text;
}

} // namespace

QString PlacementText(const QJsonArray& placement)
{
  const auto at = [&placement](int row, int column) {
    return placement[row * 4 + column].toDouble();
  };
  QStringList parts;
  const gp_Vec move(at(0, 3), at(1, 3), at(2, 3));
  if (move.Magnitude() > 1e-9)
    parts.append(QStringLiteral("at ") + Triple(move.X(), move.Y(), move.Z()));
  const gp_Mat turn(at(0, 0), at(0, 1), at(0, 2), at(1, 0), at(1, 1), at(1, 2), at(2, 0), at(2, 1),
                    at(2, 2));
  gp_Vec axis;
  double angle = 0.0;
  gp_Quaternion(turn).GetVectorAndAngle(axis, angle);
  if (std::abs(angle) > 1e-9)
    parts.append(QStringLiteral("turned %1° about %2")
                   .arg(Decimal(angle * 180.0 / M_PI), Triple(axis.X(), axis.Y(), axis.Z())));
  if (turn.Determinant() < 0.0)
    parts.append(QStringLiteral("mirrored"));
  return parts.join(QStringLiteral(", "));
}

QString InfoText(const QJsonObject& entry, const TextStyle& style)
{
  const QJsonObject counts = entry.value("counts").toObject();
  QString text = Bold(TerminalText(entry.value("file").toString()), style) + u'\n';
  text += Row("schema", TerminalText(entry.value("schema").toString()));
  text += UnitRow(entry.value("unit").toObject());
  text += SizeRow(entry.value("box"));
  if (entry.contains("structure"))
    text += StructureRow(entry.value("structure").toObject());
  text += NamesRow(entry, style);
  text += ColoursRow(entry.value("colors").toArray(), style);
  for (const char* kind : {"solids", "shells", "faces", "edges", "vertices"})
    text += CountsRow(kind, counts);
  text += SurfacesRow(counts.value("surfaces").toObject());
  if (const qsizetype lost = entry.value("losses").toArray().size(); lost > 0)
    text += Row("lost", CountOf(int(lost), "solid or face", "solids and faces"));
  if (entry.contains("tree"))
    text += u'\n' + TreeText(entry.value("tree").toArray(), QStringLiteral("  "), style) +
            DefinitionsText(entry.value("definitions").toArray());
  return text;
}

} // namespace Orvex::Cli
