#include "step/rebuild/internal/OperandAssembly.h"

#include <BRepAlgoAPI_Cut.hxx>
#include <BRepAlgoAPI_Fuse.hxx>
#include <TopExp_Explorer.hxx>
#include <TopTools_ListOfShape.hxx>

#include <algorithm>

namespace Orvex {

namespace {

template <typename Boolean>
TopoDS_Shape Combined(const TopoDS_Shape& base, const TopTools_ListOfShape& tools, double fuzziness)
{
  if (tools.IsEmpty() || base.IsNull())
    return base;
  TopTools_ListOfShape bases;
  bases.Append(base);
  Boolean boolean;
  boolean.SetArguments(bases);
  boolean.SetTools(tools);
  boolean.SetFuzzyValue(fuzziness);
  boolean.SetNonDestructive(true);
  boolean.Build();
  return boolean.IsDone() && !boolean.HasErrors() ? boolean.Shape() : TopoDS_Shape();
}

TopTools_ListOfShape OfRole(const std::vector<OperandShape>& operands, int depth, bool adds)
{
  TopTools_ListOfShape shapes;
  for (const OperandShape& operand : operands)
    if (operand.depth == depth && operand.adds == adds)
      shapes.Append(operand.shape);
  return shapes;
}

// A compound of one shape is that shape.
TopoDS_Shape WithoutWrapping(const TopoDS_Shape& shape)
{
  TopExp_Explorer solids(shape, TopAbs_SOLID);
  if (!solids.More())
    return shape;
  const TopoDS_Shape only = solids.Current();
  solids.Next();
  return solids.More() ? shape : only;
}

} // namespace

TopoDS_Shape PutTogether(const std::vector<OperandShape>& operands, double fuzziness)
{
  int deepest = 0;
  for (const OperandShape& operand : operands)
    deepest = std::max(deepest, operand.depth);
  TopoDS_Shape whole;
  for (int depth = 0; depth <= deepest; ++depth) {
    TopTools_ListOfShape added = OfRole(operands, depth, true);
    if (depth == 0 && !added.IsEmpty()) {
      whole = added.First();
      added.RemoveFirst();
    }
    whole = Combined<BRepAlgoAPI_Fuse>(whole, added, fuzziness);
    whole = Combined<BRepAlgoAPI_Cut>(whole, OfRole(operands, depth, false), fuzziness);
  }
  return whole.IsNull() ? whole : WithoutWrapping(whole);
}

} // namespace Orvex
