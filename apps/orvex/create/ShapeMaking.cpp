#include "create/ShapeMaking.h"

#include "creators/KindShapeParaCreator.h"
#include "document/LabelScheme.h"
#include "frame/Failure.h"
#include "frame/Text.h"
#include "model/Documents.h"
#include "model/ParameterRecord.h"
#include "model/ShapeFiles.h"
#include "model/ShapeMeasures.h"
#include "model/ShapeRecord.h"

#include <BRepCheck_Analyzer.hxx>
#include <XCAFDoc_ShapeTool.hxx>

#include <memory>

namespace Orvex::Cli {

namespace {

Failure Refused(const NewShape& wanted, const QString& reason)
{
  return {ExitCode::KernelFailure, TextFromBytes(wanted.kind->word),
          GivenText(*wanted.kind, wanted), reason, AllowedText(*wanted.kind)};
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

QJsonObject MeasuredRecord(const NewShape& wanted, const TopoDS_Shape& shape)
{
  QJsonObject record = SizeJson(shape);
  if (!HasSize(record))
    throw Refused(wanted, QStringLiteral("what the kernel makes of these values has no size or no "
                                         "end"));
  record.insert("shape", ShapeWord(shape));
  return record;
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
    WriteModel(label, *target);
  return record;
}

QString MadeText(const QJsonObject& made)
{
  QString text = QStringLiteral("%1 \"%2\": %3\n")
                   .arg(made.value("kind").toString(), TerminalText(made.value("name").toString()),
                        made.value("shape").toString());
  text += ParametersText(made.value("parameters").toArray(), QStringLiteral("    "));
  text += SizeText(made);
  if (made.value("file").isString())
    text += QStringLiteral("  written    %1\n").arg(TerminalText(made.value("file").toString()));
  return text;
}

} // namespace Orvex::Cli
