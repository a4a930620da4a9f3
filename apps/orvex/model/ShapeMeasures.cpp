#include "model/ShapeMeasures.h"

#include "frame/Text.h"
#include "info/ShapeCounts.h"
#include "model/ShapeRecord.h"

#include <BRepAdaptor_Curve.hxx>
#include <BRepGProp.hxx>
#include <GCPnts_AbscissaPoint.hxx>
#include <GProp_GProps.hxx>
#include <QStringList>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>

#include <cmath>

namespace Orvex::Cli {

namespace {

// The measure of the highest dimension that a shape has comes first.
struct Measure
{
  const char* name;
  double value;
};

// Edge by edge: the kernel's integral over a whole shape is good to three digits only.
double LengthOf(const TopoDS_Shape& shape)
{
  constexpr double kTolerance = 1e-7;
  double length = 0.0;
  for (TopExp_Explorer edges(shape, TopAbs_EDGE); edges.More(); edges.Next())
    length +=
      GCPnts_AbscissaPoint::Length(BRepAdaptor_Curve(TopoDS::Edge(edges.Current())), kTolerance);
  return length;
}

std::vector<Measure> MeasuresOf(const TopoDS_Shape& shape, const ShapeCounts& counts)
{
  GProp_GProps volume, area;
  std::vector<Measure> measures;
  if (counts.solids.expanded > 0) {
    BRepGProp::VolumeProperties(shape, volume);
    measures.push_back({"volume", volume.Mass()});
  }
  if (counts.faces.expanded > 0) {
    BRepGProp::SurfaceProperties(shape, area);
    measures.push_back({"area", area.Mass()});
  }
  if (measures.empty())
    measures.push_back({"length", LengthOf(shape)});
  return measures;
}

QJsonObject MeasuresJson(const std::vector<Measure>& measures)
{
  QJsonObject json;
  for (const Measure& measure : measures)
    json.insert(QLatin1String(measure.name), measure.value);
  return json;
}

// With fewer digits than a box has: the kernel adds its tolerance to it.
QString Corner(const QJsonValue& point)
{
  constexpr int kDecimals = 6;
  QStringList texts;
  for (const QJsonValue& value : point.toArray())
    texts.append(Decimal(value.toDouble(), kDecimals));
  return QStringLiteral("(%1)").arg(texts.join(QStringLiteral(", ")));
}

QString MeasureRows(const QJsonObject& measures)
{
  QString text;
  for (const auto& [name, unit] : {std::pair{"volume", "mm³"}, {"area", "mm²"}, {"length", "mm"}})
    if (const QJsonValue value = measures.value(QLatin1String(name)); value.isDouble())
      text += QStringLiteral("  %1%2 %3\n")
                .arg(QString::fromLatin1(name).leftJustified(11), Number(value.toDouble()),
                     QString::fromUtf8(unit));
  return text;
}

} // namespace

QJsonObject SizeJson(const TopoDS_Shape& shape)
{
  const ShapeCounts counts = CountShapes({shape});
  return {{"measures", MeasuresJson(MeasuresOf(shape, counts))},
          {"counts", CountsJson(counts)},
          {"box", BoxJson(counts.box)}};
}

bool HasSize(const QJsonObject& size)
{
  const QJsonObject measures = size.value("measures").toObject();
  for (const QJsonValue& measure : measures)
    if (!std::isfinite(measure.toDouble()) || measure.toDouble() == 0.0)
      return false;
  return !measures.isEmpty() && !size.value("box").isNull();
}

QString SizeText(const QJsonObject& size)
{
  QString text = MeasureRows(size.value("measures").toObject());
  if (const QJsonValue box = size.value("box"); !box.isNull())
    text +=
      QStringLiteral("  box        %1 to %2 mm\n").arg(Corner(box["min"]), Corner(box["max"]));
  return text;
}

} // namespace Orvex::Cli
