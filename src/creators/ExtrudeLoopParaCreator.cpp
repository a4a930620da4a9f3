#include "creators/ExtrudeLoopParaCreator.h"

#include "creators/internal/Sweeps.h"
#include "document/LabelScheme.h"
#include "foundation/UserMessage.h"

#include <BRepBuilderAPI_Transform.hxx>
#include <BRepSweep_Prism.hxx>
#include <QObject>
#include <TopoDS.hxx>

#include <array>

using namespace Orvex;

namespace {

enum Field { kNormal, kLength, kFace };

const std::array kFields = {
  DirectionField("Normal"),
  SweepField("Length", Unit::Length),
  ShapeField("Extrude"),
};

TopoDS_Shape Build(const ParameterSet& values)
{
  const TopoDS_Shape& face = ShapeAt(values, kFace);
  if (face.IsNull()) {
    ShowUserMessage(QObject::tr("Error").toStdString(),
                    QObject::tr("extrude face is NULL").toStdString());
    return {};
  }
  if (face.ShapeType() != TopAbs_FACE)
    return {};
  BRepPrimAPI_MakePrism prism(face, gp_Vec(DirectionAt(values, kNormal)) * RealAt(values, kLength),
                              false, true);
  // The sweep of its own, whose Shape is not const.
  BRepSweep_Prism sweep = prism.Prism();
  return sweep.Shape();
}

} // namespace

const ShapeKind& ExtrudeLoopParaCreator::Kind() const
{
  static const ShapeKind kind{.word = "ExtrudeLoop",
                              .typeCode = kTypeExtrudeLoop,
                              .namePrefix = "Extrude",
                              .rebuildsInCommand = true,
                              .fields = kFields,
                              .build = &Build,
                              .condition = "Extrude is a face",
                              .make = &MakeCreator<ExtrudeLoopParaCreator>,
                              .update = &UpdateWith<ExtrudeLoopParaCreator>};
  return kind;
}

TDF_Label ExtrudeLoopParaCreator::CreateExtrudeByLoop(const TopoDS_Face& face,
                                                      const gp_Dir& direction, double length)
{
  return CreateWith({direction, length, TopoDS_Shape(face)});
}

void ExtrudeLoopParaCreator::GetParameter(TDF_Label label, TopoDS_Face& face, gp_Dir& direction,
                                          double& length)
{
  TopoDS_Shape shape = face;
  ReadInto(label, direction, length, shape);
  face = TopoDS::Face(shape);
}

void ExtrudeLoopParaCreator::SetShapeParameter(TDF_Label& label, TopoDS_Face& face,
                                               gp_Dir& direction, double& length)
{
  StoreFrom(label, direction, length, TopoDS_Shape(face));
}

ParameterSet ExtrudeLoopParaCreator::Moved(const TDF_Label& label, const gp_Trsf& trsf)
{
  ParameterSet values = ReadParameters(label);
  std::get<gp_Dir>(values[kNormal]).Transform(trsf);
  auto& face = std::get<TopoDS_Shape>(values[kFace]);
  if (!face.IsNull()) {
    BRepBuilderAPI_Transform transform(trsf);
    transform.Perform(face, false);
    face = transform.Shape();
  }
  return values;
}

void ExtrudeLoopParaCreator::PerformTransform(TDF_Label& label, gp_Trsf trsf)
{
  StoreParameters(label, Moved(label, trsf));
}

TDF_Label ExtrudeLoopParaCreator::PerformClone(TDF_Label& label, gp_Trsf trsf)
{
  if (label.IsNull())
    return {};
  const ParameterSet values = Moved(label, trsf);
  return CreateExtrudeByLoop(TopoDS::Face(ShapeAt(values, kFace)), DirectionAt(values, kNormal),
                             RealAt(values, kLength));
}
