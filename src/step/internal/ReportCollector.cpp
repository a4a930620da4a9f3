#include "step/internal/ReportCollector.h"

#include "step/internal/LabelReading.h"
#include "step/internal/LengthUnit.h"

#include <APIHeaderSection_MakeHeader.hxx>
#include <Interface_Check.hxx>
#include <Interface_ReportEntity.hxx>
#include <STEPControl_Reader.hxx>
#include <StepData_StepModel.hxx>
#include <StepShape_FaceSurface.hxx>
#include <StepShape_SolidModel.hxx>
#include <TCollection_HAsciiString.hxx>
#include <TDF_LabelSequence.hxx>
#include <TDocStd_Document.hxx>
#include <TopExp_Explorer.hxx>
#include <TopTools_IndexedMapOfShape.hxx>
#include <TransferBRep.hxx>
#include <Transfer_Binder.hxx>
#include <Transfer_TransientProcess.hxx>
#include <XCAFDoc_DocumentTool.hxx>
#include <XCAFDoc_ShapeTool.hxx>
#include <XSControl_TransferReader.hxx>
#include <XSControl_WorkSession.hxx>

#include <algorithm>

namespace Orvex {

namespace {

using Entity = opencascade::handle<Standard_Transient>;

// The kernel writes "(A,B)" for a complex entity.
std::string TypeNameOf(const StepData_StepModel& model, const Entity& entity)
{
  std::string name = model.TypeName(entity);
  std::erase_if(name, [](char c) { return c == '(' || c == ')'; });
  std::ranges::replace(name, ',', '+');
  return name;
}

class MessageTaker
{
public:
  MessageTaker(const StepData_StepModel& stepModel, bool isTransfer,
               std::vector<StepMessage>& messageList)
      : model(stepModel), duringTransfer(isTransfer), messages(messageList)
  {}

  // A null entity stands for the file as a whole.
  void Take(const Entity& entity, const opencascade::handle<Interface_Check>& check)
  {
    if (check.IsNull())
      return;
    for (int i = 1; i <= check->NbFails(); ++i)
      Add(entity, check->CFail(i), true);
    for (int i = 1; i <= check->NbWarnings(); ++i)
      Add(entity, check->CWarning(i), false);
  }

private:
  void Add(const Entity& entity, const char* text, bool isFailure)
  {
    StepMessage message;
    if (!entity.IsNull()) {
      message.entityId = model.IdentLabel(entity);
      message.entityType = TypeNameOf(model, entity);
    }
    message.text = text;
    message.isFailure = isFailure;
    message.duringTransfer = duringTransfer;
    messages.push_back(std::move(message));
  }

  const StepData_StepModel& model;
  bool duringTransfer;
  std::vector<StepMessage>& messages;
};

std::string SchemaOf(const opencascade::handle<StepData_StepModel>& model)
{
  APIHeaderSection_MakeHeader header(model);
  if (!header.HasFs() || header.NbSchemaIdentifiers() == 0)
    return {};
  const auto name = header.SchemaIdentifiersValue(1);
  return name.IsNull() ? std::string() : name->ToCString();
}

int CountDistinct(const std::vector<TopoDS_Shape>& shapes, TopAbs_ShapeEnum kind)
{
  TopTools_IndexedMapOfShape distinct;
  for (const TopoDS_Shape& shape : shapes)
    for (TopExp_Explorer part(shape, kind); part.More(); part.Next())
      distinct.Add(part.Current().Located(TopLoc_Location()).Oriented(TopAbs_FORWARD));
  return distinct.Extent();
}

bool Holds(const TopoDS_Shape& shape, TopAbs_ShapeEnum kind)
{
  return !shape.IsNull() && TopExp_Explorer(shape, kind).More();
}

std::string WordsFor(const TopoDS_Shape& remains)
{
  TopExp_Explorer shell(remains, TopAbs_SHELL);
  if (shell.More())
    return shell.Current().Closed() ? "came out as a shell" : "came out as an open shell";
  if (Holds(remains, TopAbs_FACE))
    return "came out as loose faces";
  if (Holds(remains, TopAbs_EDGE))
    return "came out as edges";
  return "nothing came out";
}

TopoDS_Shape ResultOf(const Transfer_TransientProcess& process, const Entity& entity)
{
  const opencascade::handle<Transfer_Binder> binder = process.Find(entity);
  return binder.IsNull() ? TopoDS_Shape() : TransferBRep::ShapeResult(binder);
}

// The kind of shape that the translation should make of an entity; TopAbs_SHAPE for the others,
// which are not counted.
TopAbs_ShapeEnum KindOf(const Entity& entity)
{
  if (entity->IsKind(STANDARD_TYPE(StepShape_SolidModel)))
    return TopAbs_SOLID;
  return entity->IsKind(STANDARD_TYPE(StepShape_FaceSurface)) ? TopAbs_FACE : TopAbs_SHAPE;
}

} // namespace

void ReportLoad(STEPControl_Reader& reader, StepReadReport& report)
{
  const opencascade::handle<StepData_StepModel> model = reader.StepModel();
  report.collected = true;
  report.schema = SchemaOf(model);
  const LengthUnit unit = LengthUnitOf(reader);
  report.lengthUnit = unit.name;
  report.lengthUnitInMillimetres = unit.inMillimetres;
  report.roots = reader.NbRootsForTransfer();
  report.entities = model->NbEntities();

  MessageTaker taker(*model, false, report.messages);
  taker.Take({}, model->GlobalCheck());
  for (int i = 1; i <= model->NbEntities(); ++i) {
    if (model->IsErrorEntity(i))
      ++report.entitiesInError;
    if (model->IsReportEntity(i))
      taker.Take(model->Value(i), model->ReportEntity(i)->Check());
    const TopAbs_ShapeEnum kind = KindOf(model->Value(i));
    report.solidsInFile += kind == TopAbs_SOLID ? 1 : 0;
    report.facesInFile += kind == TopAbs_FACE ? 1 : 0;
  }
}

void ReportTransfer(const STEPControl_Reader& reader, const std::vector<TopoDS_Shape>& outcome,
                    StepReadReport& report)
{
  const opencascade::handle<StepData_StepModel> model = reader.StepModel();
  const auto process = reader.WS()->TransferReader()->TransientProcess();
  MessageTaker taker(*model, true, report.messages);
  for (int i = 1; i <= model->NbEntities(); ++i) {
    const Entity entity = model->Value(i);
    const opencascade::handle<Transfer_Binder> binder = process->Find(entity);
    if (!binder.IsNull())
      taker.Take(entity, binder->Check());
    const TopAbs_ShapeEnum kind = KindOf(entity);
    if (kind == TopAbs_SHAPE)
      continue;
    const TopoDS_Shape result = ResultOf(*process, entity);
    if (!Holds(result, kind))
      report.losses.push_back(
        {model->IdentLabel(entity), TypeNameOf(*model, entity), WordsFor(result)});
  }
  report.solidsOut = CountDistinct(outcome, TopAbs_SOLID);
  report.facesOut = CountDistinct(outcome, TopAbs_FACE);
}

void ReportDocument(const TDocStd_Document& document, StepReadReport& report)
{
  TDF_LabelSequence products;
  const auto shapeTool = XCAFDoc_DocumentTool::ShapeTool(document.Main());
  shapeTool->GetFreeShapes(products);
  report.freeShapes = products.Length();
  products.Clear();
  shapeTool->GetShapes(products);
  for (const TDF_Label& product : products) {
    const bool isAssembly = XCAFDoc_ShapeTool::IsAssembly(product);
    ++(isAssembly ? report.assemblies : report.parts);
    report.namedProducts += ProductNameOf(product).empty() ? 0 : 1;
    if (!isAssembly)
      continue;
    for (const TDF_Label& component : ComponentsOf(product)) {
      ++report.components;
      report.namedComponents += ProductNameOf(component).empty() ? 0 : 1;
    }
  }

  TDF_LabelSequence colors;
  const auto colorTool = XCAFDoc_DocumentTool::ColorTool(document.Main());
  colorTool->GetColors(colors);
  for (const TDF_Label& label : colors) {
    Quantity_Color color;
    if (colorTool->GetColor(label, color))
      report.colors.push_back({color.Red(), color.Green(), color.Blue()});
  }
}

} // namespace Orvex
