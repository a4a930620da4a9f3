#include "info/ModelInfo.h"

#include "frame/Failure.h"
#include "frame/Text.h"
#include "info/DocumentRecord.h"
#include "info/StepInfo.h"
#include "info/TreeRecord.h"
#include "model/Documents.h"
#include "model/ShapeFiles.h"
#include "model/ShapeRecord.h"

#include <QJsonArray>
#include <QStringList>
#include <TDF_LabelSequence.hxx>
#include <UnitsMethods_LengthUnit.hxx>
#include <XCAFDoc_DocumentTool.hxx>
#include <XCAFDoc_ShapeTool.hxx>

#include <chrono>

namespace Orvex::Cli {

namespace {

// What has been read, whatever the format.
struct ReadModel
{
  std::vector<TopoDS_Shape> shapes; // to count and measure
  QJsonObject entry;
};

QJsonObject UnitJson(const QString& name, double millimetres)
{
  return {{"name", name}, {"millimetres", millimetres}};
}

QJsonArray UnnamedShape(const TopoDS_Shape& shape)
{
  return {QJsonObject{{"name", QString()}, {"shape", ShapeWord(shape)}}};
}

ReadModel FromBrep(const std::string& path)
{
  const TopoDS_Shape shape = ReadBrep(path);
  return {{shape},
          {{"unit", UnitJson({}, 0.0)}, {"shapes", UnnamedShape(shape)}, {"colors", QJsonArray()}}};
}

ReadModel FromIges(const std::string& path)
{
  const IgesModel model = ReadIges(path);
  return {{model.shape},
          {{"unit", UnitJson(TextFromBytes(model.unit), model.unitInMillimetres)},
           {"shapes", UnnamedShape(model.shape)},
           {"colors", QJsonArray()}}};
}

// Lengths of a document stay as they are; this is what they mean.
QJsonObject UnitOf(const Handle(TDocStd_Document) & document)
{
  double millimetres = 0.0;
  if (!XCAFDoc_DocumentTool::GetLengthUnit(document, millimetres,
                                           UnitsMethods_LengthUnit_Millimeter))
    return UnitJson({}, 0.0);
  return UnitJson(millimetres == 1.0 ? QStringLiteral("millimetre")
                                     : Number(millimetres) + QStringLiteral(" mm"),
                  millimetres);
}

struct Colours
{
  QJsonArray distinct;
  std::map<std::string, QString> byDefinition;
};

Colours ColoursOf(const QJsonArray& shapes)
{
  Colours colours;
  for (const QJsonValue& shape : shapes) {
    const QJsonValue colour = shape["color"];
    if (!colour.isString())
      continue;
    if (!colours.distinct.contains(colour))
      colours.distinct.append(colour);
    colours.byDefinition.emplace(shape["id"].toString().toStdString(), colour.toString());
  }
  return colours;
}

QJsonObject StructureJson(const TDF_LabelSequence& all, int freeShapes, const TreeRecord& tree)
{
  int assemblies = 0;
  for (const TDF_Label& label : all)
    assemblies += XCAFDoc_ShapeTool::IsAssembly(label) ? 1 : 0;
  return {{"freeShapes", freeShapes},
          {"assemblies", assemblies},
          {"parts", all.Length() - assemblies},
          {"occurrences", tree.occurrences},
          {"leaves", tree.leaves},
          {"depth", tree.depth}};
}

ReadModel FromDocument(const std::string& path, bool withTree)
{
  const OpenDocument opened(path);
  const Handle(TDocStd_Document)& document = opened.Get();
  const auto shapeTool = XCAFDoc_DocumentTool::ShapeTool(document->Main());
  TDF_LabelSequence all, free;
  shapeTool->GetShapes(all);
  shapeTool->GetFreeShapes(free);
  QJsonArray shapes;
  for (const TDF_Label& label : all)
    shapes.append(ShapeLabelJson(label));
  const Colours colours = ColoursOf(shapes);
  const TreeRecord tree = RecordTree(TreeOf(free), colours.byDefinition);

  ReadModel model;
  for (const TDF_Label& label : free)
    if (const TopoDS_Shape shape = XCAFDoc_ShapeTool::GetShape(label); !shape.IsNull())
      model.shapes.push_back(shape);
  model.entry = {{"unit", UnitOf(document)},
                 {"shapes", shapes},
                 {"colors", colours.distinct},
                 {"structure", StructureJson(all, free.Length(), tree)},
                 {"definitions", tree.definitions}};
  if (withTree)
    model.entry.insert("tree", tree.roots);
  return model;
}

ReadModel Read(const std::string& path, FileFormat format, bool withTree)
{
  switch (format) {
  case FileFormat::Brep:
    return FromBrep(path);
  case FileFormat::Iges:
    return FromIges(path);
  default:
    return FromDocument(path, withTree);
  }
}

QJsonObject Describe(const std::string& path, FileFormat format, bool withTree,
                     const ProgressSink& progress)
{
  const auto start = std::chrono::steady_clock::now();
  progress({QStringLiteral("parse"), -1.0});
  ReadModel model = Read(path, format, withTree);
  progress({QStringLiteral("count"), -1.0});
  const ShapeCounts counts = CountShapes(model.shapes);
  QJsonObject& entry = model.entry;
  entry.insert("file", TextFromBytes(path));
  entry.insert("format", FormatWord(format));
  entry.insert("status", "read");
  entry.insert("counts", CountsJson(counts));
  entry.insert("box", BoxJson(counts.box));
  entry.insert("seconds",
               std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
  return entry;
}

} // namespace

QJsonObject DescribeModelFile(const std::string& path, FileFormat format, bool withTree,
                              const ProgressSink& progress)
{
  try {
    return Describe(path, format, withTree, progress);
  } catch (...) {
    return FailedEntry(FailureOfCurrentException(ExitCode::Unreadable, TextFromBytes(path)));
  }
}

} // namespace Orvex::Cli
