#include "model/ShapeFiles.h"

#include "document/LabelScheme.h"
#include "frame/Failure.h"
#include "frame/Text.h"
#include "info/StepInfo.h"
#include "model/Documents.h"

#include <BRepTools.hxx>
#include <BRep_Builder.hxx>
#include <IGESControl_Controller.hxx>
#include <IGESControl_Reader.hxx>
#include <IGESControl_Writer.hxx>
#include <IGESData_GlobalSection.hxx>
#include <IGESData_IGESModel.hxx>
#include <STEPCAFControl_Writer.hxx>
#include <TDataStd_Name.hxx>
#include <TopoDS_Compound.hxx>
#include <TopoDS_Iterator.hxx>
#include <XCAFDoc_ShapeTool.hxx>

namespace Orvex::Cli {

namespace {

Failure Unreadable(const std::string& path, const QString& reason)
{
  return {ExitCode::Unreadable, TextFromBytes(path), {}, reason, {}};
}

TopoDS_Shape Joined(const std::vector<TopoDS_Shape>& shapes)
{
  if (shapes.size() == 1)
    return shapes.front();
  TopoDS_Compound compound;
  const BRep_Builder builder;
  builder.MakeCompound(compound);
  for (const TopoDS_Shape& shape : shapes)
    builder.Add(compound, shape);
  return compound;
}

bool OnlyWraps(const TopoDS_Shape& shape)
{
  const TopAbs_ShapeEnum type = shape.ShapeType();
  const bool container =
    type == TopAbs_COMPOUND || type == TopAbs_COMPSOLID || type == TopAbs_SHELL;
  return container && shape.NbChildren() == 1;
}

TopoDS_Shape Unwrapped(TopoDS_Shape shape)
{
  while (OnlyWraps(shape))
    shape = TopoDS_Iterator(shape).Value();
  return shape;
}

bool WriteStep(const TDF_Label& label, const std::string& path)
{
  // Products take their names from here; the display name is in an attribute of our own.
  if (const auto name = NameOf(label))
    TDataStd_Name::Set(label, TCollection_ExtendedString(name->ToCString(), true));
  STEPCAFControl_Writer writer;
  return writer.Transfer(label, STEPControl_AsIs) && writer.Write(path.c_str()) == IFSelect_RetDone;
}

// In the mode that keeps solids whole.
bool WriteIges(const TopoDS_Shape& shape, const std::string& path)
{
  constexpr int kWithSolids = 1;
  IGESControl_Controller::Init();
  IGESControl_Writer writer("MM", kWithSolids);
  if (!writer.AddShape(shape))
    return false;
  writer.ComputeModel();
  return writer.Write(path.c_str());
}

bool Write(const TDF_Label& label, FileFormat format, const std::string& path)
{
  const TopoDS_Shape shape = XCAFDoc_ShapeTool::GetShape(label);
  switch (format) {
  case FileFormat::Step:
    return WriteStep(label, path);
  case FileFormat::Iges:
    return WriteIges(shape, path);
  case FileFormat::Document:
    return SaveDocument(TDocStd_Document::Get(label), path);
  default:
    return BRepTools::Write(shape, path.c_str(), false, false, TopTools_FormatVersion_CURRENT);
  }
}

} // namespace

TopoDS_Shape ReadBrep(const std::string& path)
{
  TopoDS_Shape shape;
  if (!BRepTools::Read(shape, path.c_str(), BRep_Builder()) || shape.IsNull())
    throw Unreadable(path, QStringLiteral("there is no shape in it, or it is damaged or cut off"));
  return shape;
}

IgesModel ReadIges(const std::string& path)
{
  IGESControl_Controller::Init();
  IGESControl_Reader reader;
  if (reader.ReadFile(path.c_str()) != IFSelect_RetDone)
    throw Unreadable(path, QStringLiteral("the parser cannot make sense of it"));
  reader.TransferRoots();
  IgesModel model;
  model.shape = reader.OneShape();
  if (model.shape.IsNull())
    throw Unreadable(path, QStringLiteral("there are no shapes in it"));
  const IGESData_GlobalSection& global = reader.IGESModel()->GlobalSection();
  if (!global.UnitName().IsNull())
    model.unit = global.UnitName()->ToCString();
  model.unitInMillimetres = global.UnitValue();
  return model;
}

TopoDS_Shape ReadOperand(const std::string& path)
{
  if (FormatOfName(path) == FileFormat::Brep)
    return Unwrapped(ReadBrep(path));
  return Unwrapped(Joined(ReadStepShapes(path)));
}

FileFormat OutputFormat(const std::string& path)
{
  if (const auto format = FormatOfName(path))
    return *format;
  throw Failure{ExitCode::Usage,
                TextFromBytes(path),
                {},
                QStringLiteral("the ending tells no format to write"),
                QStringLiteral("one of %1").arg(QLatin1String(kEndings))};
}

void WriteModel(const TDF_Label& label, const WriteTarget& target)
{
  bool written = false;
  QString reason = QStringLiteral("the kernel could not write it");
  try {
    written = Write(label, target.format, target.path);
  } catch (...) {
    reason += QStringLiteral(": ") + FailureOfCurrentException(ExitCode::Partial).reason;
  }
  if (!written)
    throw Failure{ExitCode::Partial, TextFromBytes(target.name), {}, reason, {}};
}

} // namespace Orvex::Cli
