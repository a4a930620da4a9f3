#include "kernel/internal/FiniteNumbers.h"

#include <BRep_Tool.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>

bool Orvex::HasFinitePlaces(const TopoDS_Shape& shape)
{
  for (TopExp_Explorer vertex(shape, TopAbs_VERTEX); vertex.More(); vertex.Next()) {
    const gp_Pnt place = BRep_Tool::Pnt(TopoDS::Vertex(vertex.Current()));
    if (!IsFinite(place.X()) || !IsFinite(place.Y()) || !IsFinite(place.Z()))
      return false;
  }
  return true;
}
