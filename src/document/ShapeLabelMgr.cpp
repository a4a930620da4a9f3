#include "document/ShapeLabelMgr.h"

#include "document/DocumentCommand.h"
#include "document/LabelScheme.h"
#include "document/ShapeDocMgr.h"
#include "foundation/MessageLog.h"

#include <BRepBndLib.hxx>
#include <QString>
#include <Standard_Failure.hxx>
#include <TDF_AttributeIterator.hxx>
#include <TDF_LabelSequence.hxx>
#include <TDataStd_AsciiString.hxx>
#include <TDataStd_Name.hxx>
#include <TDataXtd_Shape.hxx>
#include <TNaming_SameShapeIterator.hxx>
#include <XCAFDoc_DocumentTool.hxx>
#include <XCAFDoc_ShapeMapTool.hxx>

#include <algorithm>
#include <array>
#include <list>

namespace {

// Parameters that follow a move of the whole shape.
constexpr std::array kMovedPoints = {"Base Point"};

// How many different lists GetAllShapesPtr keeps alive.
constexpr std::size_t kPointerGenerations = 16;

TopoDS_Shape ShapeOn(const TDF_Label& label)
{
  return label.IsNull() ? TopoDS_Shape() : XCAFDoc_ShapeTool::GetShape(label);
}

std::vector<TDF_Label> ToVector(const TDF_LabelSequence& labels)
{
  return {labels.begin(), labels.end()};
}

TDF_Label FirstWithTag(const std::vector<TDF_Label>& labels, int tag)
{
  const auto found = std::find_if(labels.begin(), labels.end(),
                                  [tag](const TDF_Label& label) { return label.Tag() == tag; });
  return found == labels.end() ? TDF_Label() : *found;
}

// A parameter that holds the source of a sweep bears a shape, and so looks like the label of a
// sub-shape to the kernel. It is none: naming or colouring it would spoil the parameter.
bool IsShapeParameter(const TDF_Label& label)
{
  return !label.IsNull() && label.IsAttribute(TDataXtd_Shape::GetID());
}

std::vector<TDF_Label> SubShapeLabels(const TDF_Label& label)
{
  TDF_LabelSequence labels;
  XCAFDoc_ShapeTool::GetSubShapes(label, labels);
  std::vector<TDF_Label> found = ToVector(labels);
  std::erase_if(found, &IsShapeParameter);
  return found;
}

// The first label with the shape that is no parameter; null if there is none.
TDF_Label OtherLabelOf(const TopoDS_Shape& shape, const TDF_Label& access)
{
  TDF_Label first;
  for (TNaming_SameShapeIterator it(shape, access); it.More(); it.Next()) {
    const TDF_Label label = it.Label();
    if (!IsShapeParameter(label) && XCAFDoc_ShapeTool::IsShape(label) &&
        (first.IsNull() || label.Tag() < first.Tag()))
      first = label;
  }
  return first;
}

// The kernel's maps of sub-shapes do not follow undo and redo: brings those up to date that belong
// to another shape than the one on the label.
void RefreshSubShapeMaps(const Handle(XCAFDoc_ShapeTool) & tool)
{
  TDF_LabelSequence labels;
  tool->GetShapes(labels);
  for (const TDF_Label& label : labels) {
    Handle(XCAFDoc_ShapeMapTool) map;
    const TopoDS_Shape shape = ShapeOn(label);
    if (!shape.IsNull() && label.FindAttribute(XCAFDoc_ShapeMapTool::GetID(), map) &&
        !map->GetMap().Contains(shape))
      map->SetShape(shape);
  }
}

TDF_Label SubShapeLabelOf(const Handle(XCAFDoc_ShapeTool) & tool, const TDF_Label& main,
                          const TopoDS_Shape& shape)
{
  TDF_Label sub;
  tool->FindSubShape(main, shape, sub);
  return IsShapeParameter(sub) ? TDF_Label() : sub;
}

std::vector<TDF_Label> ShapeLabelsOf(const Handle(XCAFDoc_ShapeTool) & tool)
{
  TDF_LabelSequence labels;
  if (!tool.IsNull())
    tool->GetShapes(labels);
  return ToVector(labels);
}

std::vector<TopoDS_Shape> ShapesOf(const std::vector<TDF_Label>& labels)
{
  std::vector<TopoDS_Shape> shapes;
  shapes.reserve(labels.size());
  for (const TDF_Label& label : labels)
    shapes.push_back(ShapeOn(label));
  return shapes;
}

// Appends the shapes of the sub-shape labels to the entry of the label's shape, and returns those
// labels for a walk that goes on below them.
std::vector<TDF_Label> AppendSubShapes(const TDF_Label& label,
                                       ShapeLabelMgr::SubShapeMap& subShapes)
{
  const TopoDS_Shape shape = ShapeOn(label);
  if (shape.IsNull())
    return {};
  const std::vector<TDF_Label> children = SubShapeLabels(label);
  auto& entry = subShapes[shape.TShape()];
  for (const TDF_Label& child : children)
    entry.push_back(ShapeOn(child));
  return children;
}

// For work that must be done even if the log is out of order.
void LogQuietly(int level, const std::string& text)
{
  try {
    MessageLog(level, "%s", text.c_str());
  } catch (...) {
    // The caller's work does not depend on its log line.
  }
}

// Runs an operation of the kernel; whatever it throws is logged under the operation's name and
// answered by `fallback`.
template <typename Result, typename Operation>
Result Guarded(const char* name, Result fallback, Operation&& operation)
{
  const std::string head = std::string("ShapeLabelMgr::") + name;
  try {
    return operation();
  } catch (const Standard_Failure& failure) {
    LogQuietly(Orvex::kLogWarning, head + " OCC exception: " + failure.GetMessageString());
  } catch (const std::exception& failure) {
    LogQuietly(Orvex::kLogWarning, head + " std exception: " + failure.what());
  } catch (...) {
    LogQuietly(Orvex::kLogWarning, head + " unknown exception");
  }
  return fallback;
}

std::string KeepAscii(const TCollection_ExtendedString& text)
{
  std::string kept;
  for (int i = 1; i <= text.Length(); ++i)
    if (text.Value(i) < 128)
      kept.push_back(static_cast<char>(text.Value(i)));
  return kept;
}

Handle(TDataStd_Name) TextAttribute(const TDF_Label& label)
{
  Handle(TDataStd_Name) name;
  if (!label.IsNull())
    label.FindAttribute(TDataStd_Name::GetID(), name);
  return name;
}

// The kernel's own conversion reads past the end of a text that is cut inside a character.
TCollection_ExtendedString FromUtf8(const std::string& text)
{
  const QString decoded = QString::fromStdString(text);
  return TCollection_ExtendedString(
    reinterpret_cast<const Standard_ExtCharacter*>(decoded.utf16()));
}

// The first text on a label, under whatever id it stands there.
Handle(TDataStd_AsciiString) FirstText(const TDF_Label& label)
{
  if (label.IsNull())
    return nullptr;
  Handle(TDataStd_AsciiString) text;
  for (TDF_AttributeIterator it(label); it.More() && text.IsNull(); it.Next())
    text = Handle(TDataStd_AsciiString)::DownCast(it.Value());
  return text;
}

// A flag attribute of a shape; `fallback` if the list is missing.
bool FlagOnChild(const TDF_Label& shapeLabel, int tag, bool fallback)
{
  return Orvex::FlagOf(shapeLabel.FindChild(tag)).value_or(fallback);
}

void SetFlagOnChild(const TDF_Label& shapeLabel, int tag, const char* name, bool value)
{
  const TDF_Label child = shapeLabel.FindChild(tag);
  Orvex::EnsureName(child, name);
  Orvex::SetFlag(child, value);
}

} // namespace

ShapeLabelMgr* ShapeLabelMgr::m_Instance = nullptr;
opencascade::handle<XCAFDoc_ShapeTool> ShapeLabelMgr::myAssembly;

ShapeLabelMgr* ShapeLabelMgr::GetInstance()
{
  if (m_Instance == nullptr)
    m_Instance = new ShapeLabelMgr();
  return m_Instance;
}

const opencascade::handle<XCAFDoc_ShapeTool>& ShapeLabelMgr::FetchShapeTool()
{
  const auto doc = ShapeDocMgr::GetInstance()->GetDoc();
  if (doc.IsNull())
    myAssembly.Nullify();
  else
    myAssembly = XCAFDoc_DocumentTool::ShapeTool(doc->Main());
  return myAssembly;
}

// --- Adding and connecting ---

TDF_Label ShapeLabelMgr::AddNewShapeToDocAndGetLabel(opencascade::handle<TDocStd_Document> doc,
                                                     const TopoDS_Shape& shape)
{
  if (doc.IsNull() || shape.IsNull())
    return {};
  myAssembly = XCAFDoc_DocumentTool::ShapeTool(doc->Main());
  const TDF_Label label = myAssembly->NewShape();
  myAssembly->SetShape(label, shape);
  Orvex::ReserveAttributeTags(label);
  return label;
}

void ShapeLabelMgr::AddNewShapeToDoc(opencascade::handle<TDocStd_Document> doc, TopoDS_Shape shape)
{
  AddNewShapeToDocAndGetLabel(doc, shape);
}

void ShapeLabelMgr::ConnectShapeAndLable(TopoDS_Shape& shape, TDF_Label label)
{
  if (FetchShapeTool().IsNull() || label.IsNull() || shape.IsNull())
    return;
  myAssembly->SetShape(label, shape);
  if (!Orvex::ValidTypeOf(label))
    Orvex::SetType(label, Orvex::kTypeCompound);
}

// --- Look-up ---

TDF_Label ShapeLabelMgr::GetShapeLabel(TopoDS_Shape shape)
{
  return GetShapeLabel(&shape);
}

TDF_Label ShapeLabelMgr::GetShapeLabel(const TopoDS_Shape* shape)
{
  if (shape == nullptr || shape->IsNull() || FetchShapeTool().IsNull())
    return {};
  TDF_Label label = myAssembly->FindShape(*shape, false);
  // Spares a located shape the search, which walks through all sub-shapes of the document.
  if (label.IsNull() && !shape->Location().IsIdentity())
    myAssembly->FindShape(*shape, label, true);
  if (label.IsNull()) {
    RefreshSubShapeMaps(myAssembly);
    myAssembly->Search(*shape, label, true, true, true);
  }
  return IsShapeParameter(label) ? OtherLabelOf(*shape, label) : label;
}

std::vector<TDF_Label> ShapeLabelMgr::GetShapeLabels(const std::vector<TopoDS_Shape>& shapes)
{
  std::vector<TDF_Label> labels;
  labels.reserve(shapes.size());
  for (const TopoDS_Shape& shape : shapes)
    labels.push_back(GetShapeLabel(&shape));
  return labels;
}

TDF_Label ShapeLabelMgr::GetShapeLabelWithFace(TopoDS_Shape& face)
{
  if (face.IsNull() || FetchShapeTool().IsNull())
    return {};
  RefreshSubShapeMaps(myAssembly);
  const TDF_Label main = myAssembly->FindMainShape(face);
  return main.IsNull() ? TDF_Label() : SubShapeLabelOf(myAssembly, main, face);
}

bool ShapeLabelMgr::GetShapeLabelWithFaceTagID(TopoDS_Shape& face, int& shapeTag, int& faceTag)
{
  if (face.IsNull() || FetchShapeTool().IsNull())
    return false;
  RefreshSubShapeMaps(myAssembly);
  const TDF_Label main = myAssembly->FindMainShape(face);
  if (main.IsNull())
    return false;
  shapeTag = main.Tag();
  const TDF_Label sub = SubShapeLabelOf(myAssembly, main, face);
  if (sub.IsNull())
    return false;
  faceTag = sub.Tag();
  return true;
}

TDF_Label ShapeLabelMgr::RegisterSubShape(const TopoDS_Shape& shape)
{
  if (shape.IsNull() || FetchShapeTool().IsNull())
    return {};
  RefreshSubShapeMaps(myAssembly);
  const TDF_Label main = myAssembly->FindMainShape(shape);
  if (main.IsNull())
    return {};
  if (const TDF_Label known = SubShapeLabelOf(myAssembly, main, shape); !known.IsNull())
    return known;
  Orvex::DocumentCommand command(ShapeDocMgr::GetInstance()->GetDoc());
  Orvex::ReserveAttributeTags(main);
  const TDF_Label added = myAssembly->AddSubShape(main, shape);
  command.Commit();
  return added;
}

TopoDS_Shape ShapeLabelMgr::GetShapeByLabel(TDF_Label label)
{
  return Guarded("GetShapeByLabel", TopoDS_Shape(),
                 [&] { return FetchShapeTool().IsNull() ? TopoDS_Shape() : ShapeOn(label); });
}

std::vector<TopoDS_Shape> ShapeLabelMgr::GetShapesByLabels(const std::vector<TDF_Label>& labels)
{
  std::vector<TopoDS_Shape> shapes;
  shapes.reserve(labels.size());
  for (const TDF_Label& label : labels)
    shapes.push_back(GetShapeByLabel(label));
  return shapes;
}

TopoDS_Shape ShapeLabelMgr::GetShapeByTag(int tag)
{
  return ShapeOn(FirstWithTag(GetAllShapeLabes(), tag));
}

TopoDS_Shape ShapeLabelMgr::GetSubShapeByTag(int shapeTag, int subShapeTag)
{
  const TDF_Label label = FirstWithTag(GetAllShapeLabes(), shapeTag);
  return label.IsNull() ? TopoDS_Shape()
                        : ShapeOn(FirstWithTag(SubShapeLabels(label), subShapeTag));
}

TopoDS_Shape ShapeLabelMgr::GetShapeByName(std::string& name)
{
  for (const TDF_Label& label : GetAllShapeLabes())
    if (GetShapeNameByLabel(label) == name)
      return GetShapeByLabel(label);
  return {};
}

// --- Enumeration ---

std::vector<TDF_Label> ShapeLabelMgr::GetAllShapeLabes()
{
  return ShapeLabelsOf(FetchShapeTool());
}

std::vector<TopoDS_Shape> ShapeLabelMgr::GetAllShapes(opencascade::handle<TDocStd_Document> doc)
{
  if (doc.IsNull())
    return {};
  return ShapesOf(ShapeLabelsOf(XCAFDoc_DocumentTool::ShapeTool(doc->Main())));
}

std::vector<TopoDS_Shape> ShapeLabelMgr::GetAllShapes()
{
  return ShapesOf(ShapeLabelsOf(FetchShapeTool()));
}

std::vector<TopoDS_Shape*> ShapeLabelMgr::GetAllShapesPtr()
{
  // The lists handed out last, the newest in front.
  static std::list<std::vector<TopoDS_Shape>> generations;
  std::vector<TopoDS_Shape> shapes = GetAllShapes();
  const bool unchanged =
    !generations.empty() &&
    std::equal(shapes.begin(), shapes.end(), generations.front().begin(), generations.front().end(),
               [](const TopoDS_Shape& a, const TopoDS_Shape& b) { return a.IsEqual(b); });
  if (!unchanged)
    generations.push_front(std::move(shapes));
  if (generations.size() > kPointerGenerations)
    generations.pop_back();

  std::vector<TopoDS_Shape*> pointers;
  pointers.reserve(generations.front().size());
  for (TopoDS_Shape& shape : generations.front())
    pointers.push_back(&shape);
  return pointers;
}

std::vector<TopoDS_Shape> ShapeLabelMgr::GetAllSolidShapes()
{
  std::vector<TopoDS_Shape> shapes = GetAllShapes();
  std::erase_if(shapes, [](const TopoDS_Shape& shape) {
    return shape.IsNull() ||
           (shape.ShapeType() != TopAbs_SOLID && shape.ShapeType() != TopAbs_COMPSOLID);
  });
  return shapes;
}

std::vector<std::string> ShapeLabelMgr::GetAllShapeNames()
{
  std::vector<std::string> names;
  for (const TopoDS_Shape& shape : GetAllShapes())
    names.push_back(GetShapeName(&shape));
  return names;
}

Bnd_Box ShapeLabelMgr::GetAllBoundingBox()
{
  Bnd_Box box;
  for (const TopoDS_Shape& shape : GetAllShapes())
    BRepBndLib::Add(shape, box, true);
  box.SetGap(0.0);
  return box;
}

// --- Sub-shape trees ---

void ShapeLabelMgr::GetSubshapNocursive(TDF_Label label, SubShapeMap& subShapes)
{
  AppendSubShapes(label, subShapes);
}

void ShapeLabelMgr::GetSubshapWithcursive(TDF_Label label, SubShapeMap& subShapes)
{
  for (const TDF_Label& child : AppendSubShapes(label, subShapes))
    GetSubshapWithcursive(child, subShapes);
}

// --- Attributes ---

std::string ShapeLabelMgr::GetShapeName(const TopoDS_Shape* shape)
{
  return GetShapeNameByLabel(GetShapeLabel(shape));
}

std::string ShapeLabelMgr::GetShapeNameByLabel(const TDF_Label& label)
{
  const auto name = FirstText(label);
  return name.IsNull() ? std::string("Default_Name") : std::string(name->Get().ToCString());
}

bool ShapeLabelMgr::SetShapeName(const TopoDS_Shape* shape, std::string& name)
{
  const TDF_Label label = GetShapeLabel(shape);
  if (label.IsNull())
    return false;
  if (const auto text = FirstText(label); !text.IsNull())
    text->Set(name.c_str());
  else
    Orvex::SetName(label, name.c_str());
  return true;
}

bool ShapeLabelMgr::GetShapeColor(TopoDS_Shape shape, double& red, double& green, double& blue)
{
  const TDF_Label label = GetShapeLabel(&shape);
  if (label.IsNull())
    return false;
  const gp_Pnt color =
    Orvex::PointOf(label.FindChild(Orvex::kColorTag)).value_or(Orvex::DefaultColor());
  color.Coord(red, green, blue);
  return true;
}

void ShapeLabelMgr::SetShapeColor(TopoDS_Shape shape, double& red, double& green, double& blue)
{
  for (double* component : {&red, &green, &blue})
    *component = std::clamp(*component, 0.0, 1.0);
  if (red >= 0.95 && green >= 0.95 && blue <= 0.15) {
    red = 1.0;
    green = 0.85;
    blue = 0.0;
  }
  const TDF_Label label = GetShapeLabel(&shape);
  if (label.IsNull())
    return;
  const TDF_Label child = label.FindChild(Orvex::kColorTag);
  if (!Orvex::PointOf(child))
    Orvex::EnsureName(child, Orvex::kColorName);
  Orvex::SetPoint(child, gp_Pnt(red, green, blue));
}

double ShapeLabelMgr::GetShapeTransparent(TopoDS_Shape& shape)
{
  const TDF_Label label = GetShapeLabel(&shape);
  if (label.IsNull())
    return Orvex::kOpaque;
  if (const auto stored = Orvex::RealOf(label.FindChild(Orvex::kTransparentTag)))
    return *stored;
  SetShapeTransparent(shape, Orvex::kOpaque);
  return Orvex::kOpaque;
}

void ShapeLabelMgr::SetShapeTransparent(TopoDS_Shape& shape, double transparent)
{
  const TDF_Label label = GetShapeLabel(&shape);
  if (label.IsNull())
    return;
  const TDF_Label child = label.FindChild(Orvex::kTransparentTag);
  Orvex::EnsureName(child, Orvex::kTransparentName);
  Orvex::SetReal(child, transparent);
}

bool ShapeLabelMgr::GetShapeVisibilty(TopoDS_Shape& shape)
{
  const TDF_Label label = GetShapeLabel(&shape);
  return !label.IsNull() && FlagOnChild(label, Orvex::kVisibilityTag, true);
}

void ShapeLabelMgr::SetShapeVisibilty(TopoDS_Shape& shape, bool visible)
{
  const TDF_Label label = GetShapeLabel(&shape);
  if (!label.IsNull())
    SetFlagOnChild(label, Orvex::kVisibilityTag, Orvex::kVisibilityName, visible);
}

bool ShapeLabelMgr::GetIsShapeEnabled(TopoDS_Shape& shape)
{
  const TDF_Label label = GetShapeLabel(&shape);
  return label.IsNull() || FlagOnChild(label, Orvex::kEnabledTag, true);
}

void ShapeLabelMgr::SetIsShapeEnabled(TopoDS_Shape& shape, bool enabled)
{
  const TDF_Label label = GetShapeLabel(&shape);
  if (!label.IsNull())
    SetFlagOnChild(label, Orvex::kEnabledTag, Orvex::kEnabledName, enabled);
}

std::string ShapeLabelMgr::GetShapeDisplayMode(TopoDS_Shape& shape)
{
  const TDF_Label label = GetShapeLabel(&shape);
  if (label.IsNull()) {
    LogQuietly(Orvex::kLogWarning,
               "GetShapeDisplayMode: inputLabel is null, defaulting to surface");
    return Orvex::kSurfaceMode;
  }
  const TDF_Label child = label.FindChild(Orvex::kDisplayModeTag);
  if (const auto mode = TextAttribute(child); !mode.IsNull()) {
    std::string word = KeepAscii(mode->Get());
    if (!word.empty())
      return word;
    LogQuietly(Orvex::kLogWarning,
               "GetShapeDisplayMode: modeName found but empty after conversion! ExtStr length = " +
                 std::to_string(mode->Get().Length()) + ". Falling back to BooleanList.");
  }
  if (const auto wireframe = Orvex::FlagOf(child)) {
    const std::string word = *wireframe ? Orvex::kWireframeMode : Orvex::kSurfaceMode;
    LogQuietly(Orvex::kLogInformation,
               std::string("GetShapeDisplayMode: Using BooleanList fallback, isWireframe=") +
                 (*wireframe ? "true" : "false") + ", returning: " + word);
    return word;
  }
  LogQuietly(Orvex::kLogInformation,
             "GetShapeDisplayMode: No DisplayMode attribute found, using default 'surface'");
  return Orvex::kSurfaceMode;
}

void ShapeLabelMgr::SetShapeDisplayMode(TopoDS_Shape& shape, const std::string& mode)
{
  const TDF_Label label = GetShapeLabel(&shape);
  if (label.IsNull()) {
    LogQuietly(Orvex::kLogWarning, "SetShapeDisplayMode: inputLabel is null, skipping update");
    return;
  }
  std::string word = mode;
  for (char& c : word)
    if (c >= 'A' && c <= 'Z')
      c = static_cast<char>(c - 'A' + 'a');
  const TDF_Label child = label.FindChild(Orvex::kDisplayModeTag);
  TDataStd_Name::Set(child, FromUtf8(word));
  Orvex::SetFlag(child, word == Orvex::kWireframeMode);
}

bool ShapeLabelMgr::GetShapeIsWireFrameMode(TopoDS_Shape& shape)
{
  return GetShapeDisplayMode(shape) == Orvex::kWireframeMode;
}

void ShapeLabelMgr::SetShapeIsWireFrameMode(TopoDS_Shape& shape, bool wireframe)
{
  SetShapeDisplayMode(shape, wireframe ? Orvex::kWireframeMode : Orvex::kSurfaceMode);
}

std::string ShapeLabelMgr::GetShapeMaterial(TopoDS_Shape& shape)
{
  if (shape.IsNull())
    return "No-Geometry";
  const TDF_Label label = GetShapeLabel(&shape);
  if (label.IsNull())
    return "Not-Found";
  const TDF_Label child = label.FindChild(Orvex::kMaterialTag);
  if (child.IsNull())
    return "No-Material-Prop";
  const auto material = TextAttribute(child);
  return material.IsNull() ? std::string()
                           : std::string(TCollection_AsciiString(material->Get()).ToCString());
}

void ShapeLabelMgr::SetShapeMaterial(TopoDS_Shape& shape, std::string& material)
{
  const TDF_Label label = GetShapeLabel(&shape);
  if (label.IsNull())
    return;
  if (const auto stored = TextAttribute(label.FindChild(Orvex::kMaterialTag, false));
      !stored.IsNull())
    stored->Set(FromUtf8(material));
}

bool ShapeLabelMgr::ShapeHasMaterial(TopoDS_Shape& shape)
{
  const TDF_Label label = GetShapeLabel(&shape);
  if (label.IsNull())
    return false;
  const auto material = TextAttribute(label.FindChild(Orvex::kMaterialTag));
  return !material.IsNull() && !material->Get().IsEmpty() &&
         !material->Get().IsEqual(TCollection_ExtendedString(Orvex::kNoMaterial));
}

std::string ShapeLabelMgr::GetMaterialByLabel(const TDF_Label&)
{
  return {};
}

int ShapeLabelMgr::GetPrimitiveType(TopoDS_Shape& shape)
{
  const TDF_Label label = GetShapeLabel(&shape);
  if (label.IsNull())
    return -1;
  return Orvex::IntegerOf(label.FindChild(Orvex::kTypeTag)).value_or(0);
}

int ShapeLabelMgr::GetShapeElementID(TopoDS_Shape&)
{
  return 2;
}

// --- Removing and moving ---

bool ShapeLabelMgr::RemoveShape(TopoDS_Shape& shape)
{
  const TDF_Label label = GetShapeLabel(&shape);
  return !label.IsNull() && myAssembly->RemoveShape(label, true);
}

bool ShapeLabelMgr::RemoveShapeByLabel(TDF_Label& label)
{
  return Guarded("RemoveShapeByLabel", false, [&] {
    return !label.IsNull() && !FetchShapeTool().IsNull() && myAssembly->RemoveShape(label, true);
  });
}

void ShapeLabelMgr::UpdateTDFByMoveAction(TDF_Label& label, gp_Trsf trsf)
{
  if (label.IsNull())
    return;
  Orvex::VisitChildren(label, [&](const TDF_Label& child) {
    const bool moved = std::any_of(kMovedPoints.begin(), kMovedPoints.end(),
                                   [&](const char* name) { return Orvex::HasName(child, name); });
    if (const auto point = Orvex::PointOf(child); moved && point)
      Orvex::SetPoint(child, point->Transformed(trsf));
    return false;
  });
}
