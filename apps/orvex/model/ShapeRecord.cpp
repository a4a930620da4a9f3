#include "model/ShapeRecord.h"

#include "frame/Text.h"

#include <Quantity_Color.hxx>
#include <TopAbs.hxx>
#include <gp_Pnt.hxx>

#include <algorithm>
#include <cmath>

namespace Orvex::Cli {

namespace {

QJsonObject KindJson(const KindCount& count)
{
  return {{"expanded", count.expanded}, {"distinct", count.distinct}, {"free", count.free}};
}

QJsonArray PointJson(const gp_XYZ& point)
{
  return {point.X(), point.Y(), point.Z()};
}

} // namespace

QString ShapeWord(const TopoDS_Shape& shape)
{
  return QString::fromLatin1(TopAbs::ShapeTypeToString(shape.ShapeType())).toLower();
}

QJsonObject CountsJson(const ShapeCounts& counts)
{
  QJsonObject surfaces;
  for (const auto& [kind, count] : counts.surfaces)
    surfaces.insert(TextFromBytes(kind), count);
  return {{"solids", KindJson(counts.solids)},
          {"shells", KindJson(counts.shells)},
          {"faces", KindJson(counts.faces)},
          {"wires", KindJson(counts.wires)},
          {"edges", KindJson(counts.edges)},
          {"vertices", KindJson(counts.vertices)},
          {"surfaces", surfaces}};
}

QJsonValue BoxJson(const Bnd_Box& box)
{
  if (box.IsVoid() || box.IsOpen())
    return {};
  const gp_XYZ low = box.CornerMin().XYZ();
  const gp_XYZ high = box.CornerMax().XYZ();
  if (!std::isfinite((high - low).Modulus()))
    return {};
  return QJsonObject{{"min", PointJson(low)},
                     {"max", PointJson(high)},
                     {"size", PointJson(high - low)},
                     {"diagonal", (high - low).Modulus()}};
}

QString Hex(double r, double g, double b)
{
  const auto inRange = [](double value) { return value > 0.0 ? std::min(value, 1.0) : 0.0; };
  const Quantity_Color colour(inRange(r), inRange(g), inRange(b), Quantity_TOC_RGB);
  return QString::fromLatin1(Quantity_Color::ColorToHex(colour).ToCString()).toLower();
}

} // namespace Orvex::Cli
