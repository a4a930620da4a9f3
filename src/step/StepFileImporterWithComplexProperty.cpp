#include "step/StepFileImporterWithComplexProperty.h"

#include "foundation/OrvexDebugLogFile.h"
#include "foundation/ScopedNumericLocale.h"

#include <Message_Messenger.hxx>
#include <Message_Printer.hxx>
#include <STEPControl_Reader.hxx>
#include <TopoDS_Iterator.hxx>
#include <Transfer_TransientProcess.hxx>
#include <XSControl_WorkSession.hxx>
#include <gp_Ax3.hxx>

#include <iomanip>
#include <locale>
#include <sstream>

namespace Orvex {

namespace {

struct Triple
{
  const std::array<double, 3>& values;
};

std::ostream& operator<<(std::ostream& stream, const Triple& triple)
{
  const auto& [x, y, z] = triple.values;
  return stream << '(' << x << ", " << y << ", " << z << ')';
}

void PrintMatrix(std::ostream& stream, const gp_Trsf& motion)
{
  for (int row = 1; row <= 3; ++row) {
    for (int column = 1; column <= 4; ++column)
      stream << std::setw(12) << motion.Value(row, column) << ' ';
    stream << '\n';
  }
}

// Takes what the kernel says to the debug log: a library writes nothing uninvited.
class LogPrinter : public Message_Printer
{
  DEFINE_STANDARD_RTTI_INLINE(LogPrinter, Message_Printer)

protected:
  void send(const TCollection_AsciiString& text, const Message_Gravity /*gravity*/) const override
  {
    OrvexDebugLogFile::GetInstance()->dumpToFile(text.ToCString());
  }
};

void DescribeLoad(STEPControl_Reader& reader)
{
  const auto process = reader.WS()->MapReader();
  process->SetMessenger(new Message_Messenger(new LogPrinter));
  process->SetTraceLevel(2);
  std::ostringstream checks;
  reader.PrintCheckLoad(checks, false, IFSelect_ItemsByEntity);
  OrvexDebugLogFile::GetInstance()->dumpToFile(checks.str());
}

} // namespace

bool StepFileImporterWithComplexProperty::ImportFile(const char* path)
{
  const ScopedNumericLocale locale;
  STEPControl_Reader reader;
  if (reader.ReadFile(path) != IFSelect_RetDone)
    return false;
  DescribeLoad(reader);
  reader.TransferRoots();
  for (int i = 1; i <= reader.NbShapes(); ++i)
    if (const TopoDS_Shape shape = reader.Shape(i); !shape.IsNull())
      ExtractShapeInfo(shape, i);
  return true;
}

const std::vector<std::shared_ptr<AssemblyItem>>&
StepFileImporterWithComplexProperty::GetAssemblyItems() const
{
  return items;
}

std::map<std::string, TopoDS_Shape> StepFileImporterWithComplexProperty::GetUniqueShapes() const
{
  std::map<std::string, TopoDS_Shape> shapes;
  for (const auto& item : items)
    shapes[item->name] = item->shape;
  return shapes;
}

void StepFileImporterWithComplexProperty::ExtractShapeInfo(const TopoDS_Shape& shape, int index)
{
  auto item = std::make_shared<AssemblyItem>();
  item->name = "Shape_" + std::to_string(index);
  item->shape = shape;
  item->transformation = shape.Location().Transformation();

  const gp_Pnt origin = gp::Origin().Transformed(item->transformation);
  const gp_Dir zAxis = gp::DZ().Transformed(item->transformation);
  const gp_Dir xAxis = gp::DX().Transformed(item->transformation);
  item->position = {origin.X(), origin.Y(), origin.Z()};
  item->axis = {zAxis.X(), zAxis.Y(), zAxis.Z()};
  item->angle = xAxis.AngleWithRef(gp::DX(), gp::DZ());
  item->info = GenerateShapeInfoString(*item);
  items.push_back(std::move(item));

  for (TopoDS_Iterator child(shape); child.More(); child.Next())
    ExtractShapeInfo(child.Value(), ++index);
}

std::string StepFileImporterWithComplexProperty::GenerateShapeInfoString(const AssemblyItem& item)
{
  std::ostringstream text;
  text.imbue(std::locale::classic());
  text << std::fixed << std::setprecision(6);
  text << "Shape: " << item.name << '\n'
       << "Position: " << Triple{item.position} << '\n'
       << "Axis: " << Triple{item.axis} << '\n'
       << "Angle: " << item.angle << '\n'
       << "Transformation Matrix:\n";
  PrintMatrix(text, item.transformation);
  return text.str();
}

} // namespace Orvex
