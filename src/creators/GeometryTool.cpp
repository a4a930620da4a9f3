#include "creators/GeometryTool.h"

#include "foundation/ScopedNumericLocale.h"
#include "kernel/internal/FileReplacement.h"
#include "kernel/internal/TopologyCopy.h"

#include <IGESControl_Controller.hxx>
#include <IGESControl_Writer.hxx>
#include <QFile>

#include <optional>
#include <sstream>

namespace {

// In the mode that writes faces as trimmed surfaces of their own.
std::optional<std::string> IgesText(const TopoDS_Shape& shape)
{
  constexpr int kFaces = 0;
  const Orvex::ScopedNumericLocale point;
  IGESControl_Controller::Init();
  IGESControl_Writer writer("MM", kFaces);
  // Writing puts curves on surfaces onto edges that have none there.
  if (!writer.AddShape(Orvex::TopologyCopier().Copy(shape)))
    return std::nullopt;
  writer.ComputeModel();
  std::ostringstream text;
  text.imbue(std::locale::classic());
  if (!writer.Write(text, false))
    return std::nullopt;
  return std::move(text).str();
}

} // namespace

void GeometryTool::SaveShapeToIgsFile(const std::string& path, const TopoDS_Shape& shape)
{
  if (shape.IsNull())
    return;
  if (const auto text = IgesText(shape))
    Orvex::ReplaceFile(QFile::decodeName(path.c_str()),
                       QByteArray(text->data(), static_cast<qsizetype>(text->size())));
}
