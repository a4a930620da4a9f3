// The grid on which all surface analyses sample a face.
#pragma once

#include <BRepAdaptor_Surface.hxx>
#include <BRepTools.hxx>
#include <BRep_Tool.hxx>
#include <GeomLProp_SLProps.hxx>
#include <Geom_Surface.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Face.hxx>

namespace Orvex {

struct GridSize
{
  int nu;
  int nv;

  bool IsEnough() const
  {
    return nu >= 2 && nv >= 2;
  }

  std::size_t Count() const
  {
    return static_cast<std::size_t>(nu) * static_cast<std::size_t>(nv);
  }
};

struct GridPlace
{
  int i;
  int j;
  double u;
  double v;
};

class FaceSampling
{
public:
  explicit FaceSampling(const TopoDS_Face& sampled) : face(sampled)
  {
    BRepTools::UVBounds(face, uMin, uMax, vMin, vMax);
  }

  bool IsEmpty() const
  {
    return uMin >= uMax || vMin >= vMax;
  }

  // Calls visit(place, properties) for each place of the grid, along V within U. The properties are
  // those of the surface where it lies, with derivatives up to the order.
  template <typename Visit>
  void EachPlace(const GridSize& size, int order, Visit&& visit) const
  {
    constexpr double kResolution = 1e-6;
    if (IsEmpty())
      return;
    GeomLProp_SLProps properties(BRep_Tool::Surface(face), order, kResolution);
    for (int i = 0; i < size.nu; ++i)
      for (int j = 0; j < size.nv; ++j) {
        const GridPlace place{i, j, uMin + (uMax - uMin) * i / (size.nu - 1),
                              vMin + (vMax - vMin) * j / (size.nv - 1)};
        properties.SetParameters(place.u, place.v);
        visit(place, properties);
      }
  }

  const TopoDS_Face face;
  double uMin = 0;
  double uMax = 0;
  double vMin = 0;
  double vMax = 0;
};

// Calls visit(face, number) with the numbers from 1. Returns: how many faces there are.
template <typename Visit>
int EachFace(const TopoDS_Shape& shape, Visit&& visit)
{
  int number = 0;
  for (TopExp_Explorer faces(shape, TopAbs_FACE); faces.More(); faces.Next())
    visit(TopoDS::Face(faces.Current()), ++number);
  return number;
}

} // namespace Orvex
