#include "collide/ReportParts.h"

#include "frame/Failure.h"
#include "frame/Text.h"
#include "model/Documents.h"
#include "model/ShapeFiles.h"

#include <BRep_Builder.hxx>
#include <TopoDS_Compound.hxx>
#include <XCAFDoc_DocumentTool.hxx>
#include <XCAFDoc_ShapeTool.hxx>

namespace Orvex::Cli {

QJsonObject PartJson(const NamedPart& part)
{
  return {{"name", part.name}, {"path", part.path}};
}

QJsonArray PointJson(const gp_Pnt& point)
{
  return {point.X(), point.Y(), point.Z()};
}

QJsonArray FilesJson(const std::vector<std::string>& files)
{
  QJsonArray json;
  for (const std::string& file : files)
    json.append(TextFromBytes(file));
  return json;
}

QString Counted(qsizetype count, const char* word)
{
  return QStringLiteral("%1 %2%3").arg(count).arg(word, count == 1 ? "" : "s");
}

void WriteShapes(const std::vector<TopoDS_Shape>& shapes, const std::string& path,
                 const std::string& shown)
{
  TopoDS_Compound compound;
  BRep_Builder().MakeCompound(compound);
  for (const TopoDS_Shape& shape : shapes)
    BRep_Builder().Add(compound, shape);
  const auto document = NewDocument();
  const TDF_Label label =
    XCAFDoc_DocumentTool::ShapeTool(document->Main())->AddShape(compound, false);
  WriteModel(label, {*FormatOfName(shown), path, shown});
}

} // namespace Orvex::Cli
