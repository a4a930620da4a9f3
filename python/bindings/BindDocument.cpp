// Parametric shapes in a document: kinds, parameters, expressions, global parameters, undo.
#include "Bindings.h"
#include "KernelErrors.h"
#include "ParameterValues.h"

#include <pybind11/stl.h>

#include "creators/KindShapeParaCreator.h"
#include "document/LabelScheme.h"
#include "document/ShapeDocMgr.h"
#include "document/ShapeLabelMgr.h"
#include "features/FeatureHistoryManager.h"
#include "features/FeatureTree.h"
#include "features/GlobalParameterChange.h"
#include "features/ParametricFeatureManager.h"
#include "parameters/GlobalParaMeterMgr.h"

#include <BRepCheck_Analyzer.hxx>
#include <BinXCAFDrivers.hxx>
#include <Message_Messenger.hxx>
#include <TDF_ChildIterator.hxx>
#include <TDocStd_Document.hxx>
#include <UnitsMethods_LengthUnit.hxx>
#include <XCAFApp_Application.hxx>
#include <XCAFDoc_DocumentTool.hxx>

#include <memory>

namespace py = pybind11;

namespace {

using Orvex::ParameterField;
using Orvex::ShapeKind;

constexpr int kUndoLimit = 1000;

const Handle(XCAFApp_Application) & Application()
{
  static const Handle(XCAFApp_Application) application = [] {
    auto made = XCAFApp_Application::GetApplication();
    BinXCAFDrivers::DefineFormat(made);
    made->MessageDriver()->ChangePrinters().Clear();
    return made;
  }();
  return application;
}

// Puts a value on the label of its parameter. Shapes and lists cannot be changed there.
struct Storing
{
  const TDF_Label& label;

  bool operator()(double value) const
  {
    Orvex::SetReal(label, value);
    return true;
  }
  bool operator()(int value) const
  {
    Orvex::SetInteger(label, value);
    return true;
  }
  bool operator()(const gp_Pnt& value) const
  {
    Orvex::SetPoint(label, value);
    return true;
  }
  bool operator()(const gp_Dir& value) const
  {
    Orvex::SetPoint(label, value.XYZ());
    return true;
  }
  bool operator()(const gp_Vec& value) const
  {
    Orvex::SetPoint(label, value.XYZ());
    return true;
  }
  template <typename Other>
  bool operator()(const Other&) const
  {
    return false;
  }
};

const ShapeKind& KindCalled(const std::string& word)
{
  if (const ShapeKind* kind = Orvex::KindOfWord(word))
    return *kind;
  std::string known;
  for (const ShapeKind* kind : Orvex::ShapeKinds())
    known.append(known.empty() ? "" : ", ").append(kind->word);
  Refuse("kind", std::string("one of ").append(known));
}

const ParameterField& FieldCalled(const ShapeKind& kind, const std::string& name)
{
  std::string known;
  for (const ParameterField& field : kind.fields) {
    if (name == field.name)
      return field;
    known.append(known.empty() ? "" : ", ").append(field.name);
  }
  Refuse(name,
         std::string("no parameter of a ").append(kind.word).append(", which has ").append(known));
}

Orvex::ParameterSet ValuesOf(const ShapeKind& kind, const py::dict& given)
{
  for (const auto& [name, value] : given)
    FieldCalled(kind, name.cast<std::string>());
  Orvex::ParameterSet values;
  for (const ParameterField& field : kind.fields) {
    if (given.contains(field.name))
      values.push_back(ValueOf(field, given[field.name]));
    else if (field.preset)
      values.push_back(*field.preset);
    else
      Refuse(field.name, "it has to be given");
  }
  return values;
}

// The library's document and what hangs on it are one per process, so only the one that was opened
// last is open.
class DocumentFace
{
public:
  explicit DocumentFace(const std::string& path)
  {
    if (current != nullptr)
      current->Close();
    path.empty() ? MakeNew() : Open(path);
    document->SetUndoLimit(kUndoLimit);
    current = this;
    FillGraph();
  }

  ~DocumentFace()
  {
    Close();
  }

  DocumentFace(const DocumentFace&) = delete;
  DocumentFace& operator=(const DocumentFace&) = delete;

  void Close()
  {
    if (current != this)
      return;
    current = nullptr;
    // The history and the registry hold labels, which end with the document.
    Graph().ClearRegisteredState();
    ShapeDocMgr::GetInstance()->SetDoc(nullptr);
    GlobalParaMeterMgr::ClearAllParameters();
    Application()->Close(document);
    document.Nullify();
  }

  bool IsOpen() const
  {
    return current == this;
  }

  std::string Add(const std::string& kindWord, const py::dict& given)
  {
    Require();
    const ShapeKind& kind = KindCalled(kindWord);
    const Orvex::ParameterSet values = ValuesOf(kind, given);
    const std::unique_ptr<KindShapeParaCreator> creator(kind.make());
    const TDF_Label label = creator->CreateWith(values);
    if (label.IsNull())
      RaiseKernelError(std::string(kindWord).append(": no such shape can be made"));
    FillGraph();
    return Orvex::EntryOf(label);
  }

  std::vector<std::string> Entries() const
  {
    Require();
    TDF_LabelSequence labels;
    XCAFDoc_DocumentTool::ShapeTool(document->Main())->GetFreeShapes(labels);
    std::vector<std::string> entries;
    for (const TDF_Label& label : labels)
      entries.push_back(Orvex::EntryOf(label));
    return entries;
  }

  TopoDS_Shape ShapeOf(const std::string& entry) const
  {
    return ShapeLabelMgr::GetInstance()->GetShapeByLabel(LabelOf(entry));
  }

  std::string NameOf(const std::string& entry) const
  {
    return ShapeLabelMgr::GetInstance()->GetShapeNameByLabel(LabelOf(entry));
  }

  std::string KindWordOf(const std::string& entry) const
  {
    const auto code = Orvex::ValidTypeOf(LabelOf(entry));
    const ShapeKind* kind = code ? Orvex::KindOfCode(*code) : nullptr;
    return kind == nullptr ? "" : kind->word;
  }

  py::dict ParametersOf(const std::string& entry) const
  {
    const TDF_Label label = LabelOf(entry);
    const std::unique_ptr<KindShapeParaCreator> creator(KindOf(entry).make());
    py::dict told;
    for (const Orvex::HeldParameter& held : creator->HeldParameters(label))
      told[held.field->name] = ToPython(held.value);
    return told;
  }

  void SetParameter(const std::string& entry, const std::string& name, const py::handle& given)
  {
    const ParameterField& field = FieldCalled(KindOf(entry), name);
    const Orvex::ParameterValue value = ValueOf(field, given);
    const TDF_Label parameter = ParameterOf(entry, field);
    if (!std::visit(Storing{parameter}, value))
      Refuse(name, "it cannot be changed here");
    EndReference(parameter);
    Graph().SetParamExpressionRaw(parameter, {});
    MarkDirty(entry, parameter);
  }

  std::string ExpressionOf(const std::string& entry, const std::string& name) const
  {
    return Graph().GetParamExpression(ParameterOf(entry, FieldCalled(KindOf(entry), name)));
  }

  void SetExpression(const std::string& entry, const std::string& name, const std::string& text)
  {
    const ParameterField& field = FieldCalled(KindOf(entry), name);
    if (!std::holds_alternative<double>(field.initial))
      Refuse(name, "only a real parameter can have an expression");
    const TDF_Label parameter = ParameterOf(entry, field);
    double value = 0;
    if (!text.empty() && !Graph().EvaluateExpression(entry, text, value))
      Refuse(name, std::string("\"").append(text).append("\" has no value"));
    EndReference(parameter);
    Graph().SetParamExpressionRaw(parameter, text);
    MarkDirty(entry, parameter);
  }

  std::map<std::string, std::string> Globals() const
  {
    Require();
    std::map<std::string, std::string> told;
    for (const auto& [name, definition] : GlobalParaMeterMgr::GetAllParameters())
      told[name.toStdString()] = definition.valueText.toStdString();
    return told;
  }

  void SetGlobal(const std::string& name, double value)
  {
    Require();
    const QString key = QString::fromStdString(name);
    if (!GlobalParaMeterMgr::IsValidParaNameFormat(key))
      Refuse(name, "a letter or underscore, then letters, digits and underscores");
    const Orvex::GlobalParameterChange change;
    ParametersDef definition;
    definition.name = key;
    definition.type = eREAL_PARAMETER;
    definition.valueText = QString::number(value, 'g', 17);
    GlobalParaMeterMgr::AddParameter(key, definition);
    change.MarkDirty();
  }

  // Returns: the entries of what was rebuilt, in order.
  std::vector<std::string> Recompute()
  {
    Require();
    Graph().RecomputeAllDirty(true);
    std::vector<std::string> rebuilt = Graph().GetLastRebuiltFeatureKeys();
    for (const std::string& entry : rebuilt)
      if (!BRepCheck_Analyzer(ShapeOf(entry)).IsValid())
        RaiseKernelError(NameOf(entry).append(": the rebuilt shape is not valid"));
    return rebuilt;
  }

  void Begin()
  {
    Require();
    if (document->HasOpenCommand())
      throw py::value_error("transaction: one is open already");
    document->NewCommand();
  }

  void Commit()
  {
    Require();
    document->CommitCommand();
  }

  void Abort()
  {
    Require();
    document->AbortCommand();
    FillGraph();
  }

  bool Undo()
  {
    Require();
    const bool undone = document->Undo();
    FillGraph();
    return undone;
  }

  bool Redo()
  {
    Require();
    const bool redone = document->Redo();
    FillGraph();
    return redone;
  }

  void Save(const std::string& path, const std::string& parameters)
  {
    Require();
    Orvex::StoreFeatureTree();
    if (Application()->SaveAs(document, TCollection_ExtendedString(path.c_str(), true)) !=
        PCDM_SS_OK)
      RaiseKernelError(path + ": the kernel cannot write it");
    QString error;
    if (!GlobalParaMeterMgr::SaveToFile(QString::fromStdString(parameters), &error))
      RaiseKernelError(error.toStdString());
  }

private:
  static ParametricFeatureManager& Graph()
  {
    return ParametricFeatureManager::GetInstance();
  }

  void MakeNew()
  {
    Application()->NewDocument("BinXCAF", document);
    XCAFDoc_DocumentTool::SetLengthUnit(document, 1.0, UnitsMethods_LengthUnit_Millimeter);
    ShapeDocMgr::GetInstance()->SetDoc(document);
    GlobalParaMeterMgr::ClearAllParameters();
  }

  void Open(const std::string& path)
  {
    if (Application()->Open(TCollection_ExtendedString(path.c_str(), true), document) != PCDM_RS_OK)
      RaiseKernelError(path + ": the kernel cannot read it as a document");
    ShapeDocMgr::GetInstance()->SetDoc(document);
    QString error;
    const QString sidecar = GlobalParaMeterMgr::SidecarPath(QString::fromStdString(path));
    if (!GlobalParaMeterMgr::LoadFromFile(sidecar, &error))
      RaiseKernelError(sidecar.toStdString() + ": it is no file of global parameters");
    Orvex::RestoreFeatureTree();
  }

  // Expressions stay: the graph keeps them by the labels of their parameters.
  void FillGraph()
  {
    std::map<std::string, std::string> expressions;
    for (const std::string& entry : Graph().RegisteredFeatureKeys())
      for (const auto& [name, parameter] : Graph().FindFeature(entry)->paramLabels)
        expressions[parameter] =
          Graph().GetParamExpression(Orvex::LabelOfEntry(document, parameter));
    Graph().SetEnabled(false);
    Graph().SetEnabled(true);
    for (const auto& [parameter, text] : expressions)
      if (const TDF_Label label = Orvex::LabelOfEntry(document, parameter);
          !text.empty() && !label.IsNull())
        Graph().SetParamExpressionRaw(label, text);
  }

  void Require() const
  {
    if (current != this)
      throw py::value_error("document: it is closed; one document is open at a time");
  }

  TDF_Label LabelOf(const std::string& entry) const
  {
    Require();
    const TDF_Label label = Orvex::LabelOfEntry(document, entry);
    if (label.IsNull() || ShapeLabelMgr::GetInstance()->GetShapeByLabel(label).IsNull())
      Refuse(entry, "there is no such shape in the document");
    return label;
  }

  const ShapeKind& KindOf(const std::string& entry) const
  {
    const std::string word = KindWordOf(entry);
    if (word.empty())
      Refuse(entry, "it has no parameters of its own");
    return KindCalled(word);
  }

  TDF_Label ParameterOf(const std::string& entry, const ParameterField& field) const
  {
    const TDF_Label parameter = Orvex::ChildByName(LabelOf(entry), field.name);
    if (parameter.IsNull())
      Refuse(field.name, "the shape lacks it");
    return parameter;
  }

  static void EndReference(const TDF_Label& parameter)
  {
    if (Orvex::ReferenceOf(parameter))
      TDF_ChildIterator(parameter).Value().ForgetAllAttributes();
  }

  static void MarkDirty(const std::string& entry, const TDF_Label& parameter)
  {
    Graph().MarkDirtyFromParam(parameter);
    Graph().MarkDirty(entry);
  }

  static DocumentFace* current;
  Handle(TDocStd_Document) document;
};

DocumentFace* DocumentFace::current = nullptr;

py::dict KindsTold()
{
  py::dict kinds;
  for (const ShapeKind* kind : Orvex::ShapeKinds()) {
    py::dict fields;
    for (const ParameterField& field : kind->fields)
      fields[field.name] =
        py::make_tuple(field.range.Text(), field.preset ? ToPython(*field.preset) : py::none());
    kinds[kind->word] = fields;
  }
  return kinds;
}

} // namespace

void BindDocument(py::module_& module)
{
  py::class_<DocumentFace>(module, "DocumentFace")
    .def(py::init<const std::string&>(), py::arg("path"))
    .def("close", &DocumentFace::Close)
    .def_property_readonly("is_open", &DocumentFace::IsOpen)
    .def("add", &DocumentFace::Add, py::arg("kind"), py::arg("values"))
    .def("entries", &DocumentFace::Entries)
    .def("shape", &DocumentFace::ShapeOf, py::arg("entry"))
    .def("name", &DocumentFace::NameOf, py::arg("entry"))
    .def("kind", &DocumentFace::KindWordOf, py::arg("entry"))
    .def("parameters", &DocumentFace::ParametersOf, py::arg("entry"))
    .def("set_parameter", &DocumentFace::SetParameter, py::arg("entry"), py::arg("name"),
         py::arg("value"))
    .def("expression", &DocumentFace::ExpressionOf, py::arg("entry"), py::arg("name"))
    .def("set_expression", &DocumentFace::SetExpression, py::arg("entry"), py::arg("name"),
         py::arg("text"))
    .def("globals", &DocumentFace::Globals)
    .def("set_global", &DocumentFace::SetGlobal, py::arg("name"), py::arg("value"))
    .def("recompute", &DocumentFace::Recompute)
    .def("begin", &DocumentFace::Begin)
    .def("commit", &DocumentFace::Commit)
    .def("abort", &DocumentFace::Abort)
    .def("undo", &DocumentFace::Undo)
    .def("redo", &DocumentFace::Redo)
    .def("save", &DocumentFace::Save, py::arg("path"), py::arg("parameters"));
  module.def("kinds", &KindsTold);
  module.def(
    "sidecar",
    [](const std::string& path) {
      return GlobalParaMeterMgr::SidecarPath(QString::fromStdString(path)).toStdString();
    },
    py::arg("path"));
}
