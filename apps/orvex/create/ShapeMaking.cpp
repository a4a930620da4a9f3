#include "create/ShapeMaking.h"

#include "creators/KindShapeParaCreator.h"
#include "document/LabelScheme.h"
#include "frame/Failure.h"
#include "frame/Text.h"
#include "model/Documents.h"
#include "model/ParameterRecord.h"
#include "model/ShapeFiles.h"
#include "model/ShapeRecord.h"

#include <BRepAdaptor_Curve.hxx>
#include <BRepCheck_Analyzer.hxx>
#include <BRepGProp.hxx>
#include <GCPnts_AbscissaPoint.hxx>
#include <GProp_GProps.hxx>
#include <QStringList>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>
#include <XCAFDoc_ShapeTool.hxx>

#include <cmath>
#include <memory>

namespace Orvex::Cli {

namespace {

Failure Refused(const NewShape& wanted, const QString& reason)
{
  return {ExitCode::KernelFailure, TextFromBytes(wanted.kind->word), GivenText(wanted), reason,
          AllowedText(*wanted.kind)};
}

ParameterSet ValuesWithShapes(const NewShape& wanted)
{
  ParameterSet values = wanted.values;
  for (std::size_t i = 0; i < values.size(); ++i)
    if (std::holds_alternative<TopoDS_Shape>(values[i]))
      values[i] = ReadSweepable(wanted.texts[i]);
  return values;
}

// Work of the kernel's that may throw.
template <typename Work>
auto OrRefused(const NewShape& wanted, const char* what, Work&& work)
{
  try {
    return work();
  } catch (const Failure&) {
    throw;
  } catch (...) {
    throw Refused(wanted, QStringLiteral("%1: %2").arg(
                            what, FailureOfCurrentException(ExitCode::KernelFailure).reason));
  }
}

TDF_Label Create(const NewShape& wanted, const ParameterSet& values)
{
  const std::unique_ptr<KindShapeParaCreator> creator(wanted.kind->make());
  const TDF_Label label = OrRefused(wanted, "the kernel refuses these values",
                                    [&] { return creator->CreateWith(values); });
  if (label.IsNull())
    throw Refused(wanted, QStringLiteral("no such shape can be made"));
  return label;
}

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

bool CanBeMeasured(const std::vector<Measure>& measures)
{
  for (const Measure& measure : measures)
    if (!std::isfinite(measure.value) || measure.value == 0.0)
      return false;
  return true;
}

QJsonObject MeasuresJson(const std::vector<Measure>& measures)
{
  QJsonObject json;
  for (const Measure& measure : measures)
    json.insert(QLatin1String(measure.name), measure.value);
  return json;
}

QJsonObject MeasuredRecord(const NewShape& wanted, const TopoDS_Shape& shape)
{
  const ShapeCounts counts = CountShapes({shape});
  const std::vector<Measure> measures = MeasuresOf(shape, counts);
  const QJsonValue box = BoxJson(counts.box);
  if (box.isNull() || !CanBeMeasured(measures))
    throw Refused(wanted, QStringLiteral("what the kernel makes of these values has no size or no "
                                         "end"));
  return {{"shape", ShapeWord(shape)},
          {"measures", MeasuresJson(measures)},
          {"counts", CountsJson(counts)},
          {"box", box}};
}

// The kernel makes shapes from some values that no operation can use afterwards.
QJsonObject SoundRecord(const NewShape& wanted, const TopoDS_Shape& shape)
{
  return OrRefused(wanted, "the kernel cannot measure what it makes of these values", [&] {
    if (!BRepCheck_Analyzer(shape).IsValid())
      throw Refused(wanted, QStringLiteral("what the kernel makes of these values is not valid "
                                           "(BRepCheck)"));
    return MeasuredRecord(wanted, shape);
  });
}

void Write(const TDF_Label& label, const WriteTarget& target)
{
  bool written = false;
  QString reason = QStringLiteral("the kernel could not write it");
  try {
    written = WriteModel(label, target.format, target.path);
  } catch (...) {
    reason += QStringLiteral(": ") + FailureOfCurrentException(ExitCode::Partial).reason;
  }
  if (!written)
    throw Failure{ExitCode::Partial, TextFromBytes(target.name), {}, reason, {}};
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

QJsonObject MakeShape(const NewShape& wanted, const std::optional<WriteTarget>& target)
{
  const Handle(TDocStd_Document) document = NewDocument();
  const TDF_Label label = Create(wanted, ValuesWithShapes(wanted));
  QJsonObject record = SoundRecord(wanted, XCAFDoc_ShapeTool::GetShape(label));
  record.insert("kind", wanted.kind->word);
  record.insert("name", NameOf(label)->ToCString());
  record.insert("parameters", ParametersJson(*wanted.kind, label));
  record.insert("file", target ? QJsonValue(TextFromBytes(target->name)) : QJsonValue());
  record.insert("format", target ? QJsonValue(FormatWord(target->format)) : QJsonValue());
  if (target)
    Write(label, *target);
  return record;
}

QString MadeText(const QJsonObject& made)
{
  const QJsonValue box = made.value("box");
  QString text = QStringLiteral("%1 \"%2\": %3\n")
                   .arg(made.value("kind").toString(), TerminalText(made.value("name").toString()),
                        made.value("shape").toString());
  text += ParametersText(made.value("parameters").toArray(), QStringLiteral("    "));
  text += MeasureRows(made.value("measures").toObject());
  text += QStringLiteral("  box        %1 to %2 mm\n").arg(Corner(box["min"]), Corner(box["max"]));
  if (made.value("file").isString())
    text += QStringLiteral("  written    %1\n").arg(TerminalText(made.value("file").toString()));
  return text;
}

} // namespace Orvex::Cli
