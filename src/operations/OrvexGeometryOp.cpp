#include "operations/OrvexGeometryOp.h"

#include "creators/CompoundShapeParaCreator.h"
#include "creators/ShapeParaCreatorTool.h"
#include "document/DocumentCommand.h"
#include "document/LabelScheme.h"
#include "document/ShapeDocMgr.h"
#include "document/ShapeLabelMgr.h"
#include "features/ParametricFeatureManager.h"
#include "features/internal/BooleanFeature.h"
#include "kernel/internal/OperandKeeping.h"

#include <BRepBuilderAPI_Copy.hxx>
#include <BRepBuilderAPI_Sewing.hxx>
#include <BRepGProp.hxx>
#include <GProp_GProps.hxx>
#include <Standard_Failure.hxx>
#include <XCAFDoc_DocumentTool.hxx>
#include <XCAFDoc_ShapeTool.hxx>

namespace {

using Document = Handle(TDocStd_Document);

Document CurrentDocument()
{
  return ShapeDocMgr::GetInstance()->GetDoc();
}

bool IsParametric()
{
  return ParametricFeatureManager::GetInstance().IsEnabled();
}

TDF_Label LabelOf(const Document& doc, const TopoDS_Shape& shape)
{
  if (shape.IsNull())
    return {};
  return XCAFDoc_DocumentTool::ShapeTool(doc->Main())->FindShape(shape);
}

void Remove(const Document& doc, const TDF_Label& label)
{
  if (!label.IsNull())
    XCAFDoc_DocumentTool::ShapeTool(doc->Main())->RemoveShape(label, true);
}

void RegisterKnown(const char* kind, const TDF_Label& result, std::vector<TDF_Label> inputs)
{
  std::erase_if(inputs, [](const TDF_Label& input) { return input.IsNull(); });
  Orvex::RegisterBooleanFeature(kind, result, inputs);
}

TopoDS_Shape BooleanOrNull(BOPAlgo_Operation operation, const TopoDS_Shape& first,
                           const TopoDS_Shape& second)
{
  try {
    return Orvex::BooleanOf(operation, first, second);
  } catch (const Standard_Failure&) {
    return {};
  }
}

TopoDS_Shape BooleanWithoutThrow(BOPAlgo_Operation operation, const TopoDS_Shape& first,
                                 const TopoDS_Shape& second) noexcept
{
  try {
    return Orvex::BooleanOf(operation, first, second);
  } catch (...) {
    return {};
  }
}

TopoDS_Shape United(const std::vector<TopoDS_Shape>& shapes)
{
  TopoDS_Shape united = shapes.front();
  for (std::size_t i = 1; i < shapes.size(); ++i) {
    const TopoDS_Shape fused = BooleanOrNull(BOPAlgo_FUSE, united, shapes[i]);
    united = fused.IsNull() ? Orvex::CompoundOf(united, shapes[i]) : fused;
    if (united.IsNull())
      break;
  }
  return united;
}

TopoDS_Shape Chopped(const TopoDS_Shape& first, const TopoDS_Shape& second)
{
  const TopoDS_Shape common = BooleanOrNull(BOPAlgo_COMMON, first, second);
  return common.IsNull() ? common : BooleanOrNull(BOPAlgo_CUT, first, common);
}

TopoDS_Shape CopyOf(const TopoDS_Shape& shape)
{
  BRepBuilderAPI_Copy copy;
  copy.Perform(shape, true, false);
  return copy.Shape();
}

TopoDS_Shape BooleanWith(const BooleanSettings& settings, BOPAlgo_Operation operation,
                         const TopoDS_Shape& first, const TopoDS_Shape& second)
{
  return Orvex::BooleanOf(operation, first, second, [&](BRepAlgoAPI_BooleanOperation& boolean) {
    boolean.SetFuzzyValue(settings.fuzzyValue);
    boolean.SetRunParallel(settings.runParallel);
    boolean.SetNonDestructive(settings.nonDestructive);
    boolean.SetGlue(settings.glue);
  });
}

double VolumeOf(const TopoDS_Shape& shape)
{
  GProp_GProps properties;
  BRepGProp::VolumeProperties(shape, properties, false, false, false);
  return properties.Mass();
}

TopoDS_Shape SecondWithout(const TopoDS_Shape& common, const TopoDS_Shape& first,
                           const TopoDS_Shape& second, const BooleanSettings& settings)
{
  const TopoDS_Shape cut = BooleanWith(settings, BOPAlgo_CUT, second, common);
  return cut.IsNull() ? BooleanWith(settings, BOPAlgo_CUT, second, first) : cut;
}

// Fills the result and returns what went wrong; null for nothing.
const char* Chop(const TopoDS_Shape& first, const TopoDS_Shape& second,
                 const BooleanSettings& settings, ChopResult& result)
{
  constexpr double kNoVolume = 1e-9;
  const TopoDS_Shape common = BooleanWith(settings, BOPAlgo_COMMON, CopyOf(first), CopyOf(second));
  if (common.IsNull())
    return "Shapes do not overlap or intersection computation failed.";
  result.overlapVolume = VolumeOf(common);
  if (!(result.overlapVolume > kNoVolume))
    return "Shapes have no measurable overlap.";
  const TopoDS_Shape chopped = SecondWithout(common, first, second, settings);
  if (chopped.IsNull())
    return "Chop operation failed. Try adjusting Fuzzy Tolerance.";
  result.choppedShape = chopped;
  result.keptShape = first;
  result.modifiedIndex = 1;
  result.success = true;
  return nullptr;
}

} // namespace

TDF_Label OrvexGeometryOp::CreateAttribue(TopoDS_Shape& shape)
{
  TDF_Label label =
    ShapeLabelMgr::GetInstance()->AddNewShapeToDocAndGetLabel(CurrentDocument(), shape);
  if (label.IsNull())
    return {};
  Orvex::SetName(label, TCollection_AsciiString("compound") + TarvelNameIndexMgr::GetGlobeIndex());
  CompoundShapeParaCreator compound;
  compound.CreateShapeParameter(label);
  compound.AddCommonAttribute(label);
  return label;
}

TDF_Label OrvexGeometryOp::PerformUnite(std::vector<TopoDS_Shape>& shapes, bool keepOriginals)
{
  const Document doc = CurrentDocument();
  if (doc.IsNull() || shapes.empty())
    return {};
  TopoDS_Shape united = United(shapes);
  if (united.IsNull())
    return {};
  Orvex::DocumentCommand command(doc);
  if (!keepOriginals && !IsParametric())
    for (const TopoDS_Shape& shape : shapes)
      Remove(doc, LabelOf(doc, shape));
  const TDF_Label result = CreateAttribue(united);
  command.Commit();
  RegisterKnown("BooleanFuse", result, ShapeLabelMgr::GetInstance()->GetShapeLabels(shapes));
  return result;
}

TopoDS_Shape OrvexGeometryOp::PerformUnite(TopoDS_Shape& first, TopoDS_Shape& second)
{
  return BooleanWithoutThrow(BOPAlgo_FUSE, first, second);
}

TDF_Label OrvexGeometryOp::PerformSubtract(TopoDS_Shape& first, TopoDS_Shape& second,
                                           eBOOL_Option option)
{
  const Document doc = CurrentDocument();
  if (doc.IsNull())
    return {};
  TopoDS_Shape cut = Orvex::BooleanOf(BOPAlgo_CUT, first, second);
  if (cut.IsNull())
    return {};
  const TDF_Label firstLabel = LabelOf(doc, first), secondLabel = LabelOf(doc, second);
  Orvex::DocumentCommand command(doc);
  if (!IsParametric() && (option == eBOOL_REMOVE_BOTH || option == eBOOL_REMOVE_FIRST))
    Remove(doc, firstLabel);
  if (!IsParametric() && (option == eBOOL_REMOVE_BOTH || option == eBOOL_REMOVE_SECOND))
    Remove(doc, secondLabel);
  const TDF_Label result = CreateAttribue(cut);
  command.Commit();
  if (IsParametric())
    RegisterKnown("BooleanCut", result, {firstLabel, secondLabel});
  return result;
}

TopoDS_Shape OrvexGeometryOp::PerformSubtract(TopoDS_Shape& first, TopoDS_Shape& second, bool)
{
  return BooleanWithoutThrow(BOPAlgo_CUT, first, second);
}

TopoDS_Shape OrvexGeometryOp::PerformIneersect(TopoDS_Shape& first, TopoDS_Shape& second)
{
  return Orvex::BooleanOf(BOPAlgo_COMMON, first, second);
}

TDF_Label OrvexGeometryOp::PerformSew(TopoDS_Shape& first, TopoDS_Shape& second)
{
  const Document doc = CurrentDocument();
  if (doc.IsNull())
    return {};
  constexpr double kTolerance = 1e-6;
  BRepBuilderAPI_Sewing sewing(kTolerance, true, true, true, true);
  sewing.Add(CopyOf(first));
  sewing.Add(CopyOf(second));
  sewing.Perform();
  TopoDS_Shape sewn = sewing.SewedShape();
  Orvex::DocumentCommand command(doc);
  const TDF_Label result = CreateAttribue(sewn);
  command.Commit();
  return result;
}

bool OrvexGeometryOp::PerformChop(TopoDS_Shape& first, TopoDS_Shape& second, TopoDS_Shape& result,
                                  bool keepOriginal)
{
  const TopoDS_Shape chopped = Chopped(first, second);
  if (chopped.IsNull())
    return false;
  const Document doc = CurrentDocument();
  if (!doc.IsNull() && !keepOriginal) {
    Orvex::DocumentCommand command(doc);
    Remove(doc, LabelOf(doc, first));
    command.Commit();
  }
  result = chopped;
  return true;
}

ChopResult OrvexGeometryOp::PerformChopEnhanced(const TopoDS_Shape& first,
                                                const TopoDS_Shape& second,
                                                const BooleanSettings& settings)
{
  ChopResult result;
  try {
    if (const char* reason = Chop(first, second, settings, result))
      result.message = reason;
  } catch (const Standard_Failure& failure) {
    result.message.assign("Boolean operation failed: ").append(failure.GetMessageString());
  }
  return result;
}
