#include "analyse/ModelParts.h"

#include "frame/Failure.h"
#include "frame/Text.h"
#include "info/InputCheck.h"
#include "model/FileFormat.h"
#include "model/ShapeFiles.h"
#include "model/StepReading.h"

#include <BRep_Builder.hxx>
#include <TopoDS_Compound.hxx>

#include <filesystem>

namespace Orvex::Cli {

namespace {

// A name that tells nothing is taken for a STEP file.
FileFormat FormatOf(const std::string& path)
{
  return FormatOfName(path).value_or(FileFormat::Step);
}

} // namespace

void RequireModelFile(const std::string& path)
{
  const FileFormat format = FormatOf(path);
  if (format != FileFormat::Step && format != FileFormat::Brep)
    throw Failure{ExitCode::Usage,
                  TextFromBytes(path),
                  {},
                  QStringLiteral("is no BREP or STEP file"),
                  QStringLiteral("end the name with .brep, .step or .stp")};
  if (const auto problem = CheckInput(path, format))
    throw *problem;
}

std::vector<ModelPart> ReadModelParts(const std::string& path, const ProgressSink& progress)
{
  if (FormatOf(path) == FileFormat::Brep)
    return {{TextFromBytes(std::filesystem::path(path).stem().string()), ReadBrep(path)}};
  CStepFileReader reader;
  ReadStep(reader, path, progress);
  std::vector<ModelPart> parts;
  for (const StepShapeData& item : reader.GetImportShapeDataList())
    if (!item.shape.IsNull())
      parts.push_back({TextFromBytes(item.name), item.shape});
  return parts;
}

TopoDS_Shape WholeOf(const std::vector<ModelPart>& parts)
{
  if (parts.size() == 1)
    return parts.front().shape;
  TopoDS_Compound whole;
  BRep_Builder builder;
  builder.MakeCompound(whole);
  for (const ModelPart& part : parts)
    builder.Add(whole, part.shape);
  return whole;
}

} // namespace Orvex::Cli
