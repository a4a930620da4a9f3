#include "creators/ShapeKind.h"

#include "creators/ArcShapeParaCreator.h"
#include "creators/BSplineShapeParaCreator.h"
#include "creators/BezierShapeParaCreator.h"
#include "creators/BoxShapeParaCreator.h"
#include "creators/CircleShapeParaCreator.h"
#include "creators/ConeShapeParaCreator.h"
#include "creators/CylinderShapeParaCreator.h"
#include "creators/EllipseShapeParaCreator.h"
#include "creators/ExtrudeLoopParaCreator.h"
#include "creators/ExtrudeShapeParaCreator.h"
#include "creators/LineShapeParaCreator.h"
#include "creators/OrthPolygonShapeParaCreator.h"
#include "creators/RectangleShapeParaCreator.h"
#include "creators/RevolveShapeParaCreator.h"
#include "creators/SphereShapeParaCreator.h"
#include "creators/TorousShapeParaCreator.h"
#include "document/LabelScheme.h"

#include <QByteArray>
#include <XCAFDoc_ShapeTool.hxx>

#include <array>
#include <charconv>
#include <cmath>

namespace Orvex {

namespace {

std::string NumberText(double value)
{
  char text[32];
  constexpr int kDigits = 15;
  return {text,
          std::to_chars(text, text + sizeof text, value, std::chars_format::general, kDigits).ptr};
}

} // namespace

bool ValueRange::Holds(double value) const
{
  return std::isfinite(value) && (fromExcluded ? value > from : value >= from) && value <= to;
}

std::string ValueRange::Text() const
{
  if (std::isinf(from) && std::isinf(to))
    return "any";
  std::string text(std::isinf(to) ? (fromExcluded ? "> " : ">= ") : (fromExcluded ? "(" : "["));
  text.append(NumberText(from));
  if (!std::isinf(to))
    text.append(", ").append(NumberText(to)).append("]");
  return text;
}

std::span<const ShapeKind* const> ShapeKinds()
{
  static const std::array kinds = {
    &LineShapeParaCreator().Kind(),        &RectangleShapeParaCreator().Kind(),
    &OrthPolygonShapeParaCreator().Kind(), &ArcShapeParaCreator().Kind(),
    &CircleShapeParaCreator().Kind(),      &EllipseShapeParaCreator().Kind(),
    &BSplineShapeParaCreator().Kind(),     &BezierShapeParaCreator().Kind(),
    &BoxShapeParaCreator().Kind(),         &CylinderShapeParaCreator().Kind(),
    &SphereShapeParaCreator().Kind(),      &ConeShapeParaCreator().Kind(),
    &TorousShapeParaCreator().Kind(),      &RevolveShapeParaCreator().Kind(),
    &ExtrudeShapeParaCreator().Kind(),     &ExtrudeLoopParaCreator().Kind(),
  };
  return kinds;
}

const ShapeKind* KindOfCode(int typeCode)
{
  for (const ShapeKind* kind : ShapeKinds())
    if (kind->typeCode == typeCode)
      return kind;
  return nullptr;
}

RebuildFunction RebuildOf(const ShapeKind& kind, const TDF_Label& label)
{
  return [label, code = kind.typeCode, update = kind.update] {
    if (ValidTypeOf(label) != code || XCAFDoc_ShapeTool::GetShape(label).IsNull())
      return false;
    TDF_Label target = label;
    update(target);
    return true;
  };
}

const ShapeKind* KindOfWord(const std::string& word)
{
  for (const ShapeKind* kind : ShapeKinds())
    if (qstricmp(kind->word, word.c_str()) == 0)
      return kind;
  return nullptr;
}

} // namespace Orvex
