// Wall thickness as it is defined, place after place, with the kernel's classes for whole shapes:
// what the analysis must agree with, and what it is measured against.
#pragma once

#include <BRepBndLib.hxx>
#include <BRepClass3d_SolidClassifier.hxx>
#include <BRepIntCurveSurface_Inter.hxx>
#include <BRepTools.hxx>
#include <BRep_Tool.hxx>
#include <Bnd_Box.hxx>
#include <GeomLProp_SLProps.hxx>
#include <Geom_Surface.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>
#include <gp_Lin.hxx>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <map>

namespace OrvexTest {

class PlainThickness
{
public:
  PlainThickness(const TopoDS_Shape& whole, int samples) : shape(whole), classifier(whole)
  {
    Bnd_Box box;
    BRepBndLib::Add(shape, box, true);
    const double diagonal = std::sqrt(box.SquareExtent());
    longest = std::max(2 * diagonal, 1.0);
    eps = std::max(diagonal * 1e-9, 1e-6);
    int number = 0;
    for (TopExp_Explorer faces(shape, TopAbs_FACE); faces.More(); faces.Next())
      Sample(TopoDS::Face(faces.Current()), ++number, samples);
  }

  // By face number and parameters.
  std::map<std::array<double, 3>, double> values;

private:
  void Sample(const TopoDS_Face& face, int number, int samples)
  {
    double u1 = 0, u2 = 0, v1 = 0, v2 = 0;
    BRepTools::UVBounds(face, u1, u2, v1, v2);
    for (int i = 0; i < samples; ++i)
      for (int j = 0; j < samples; ++j) {
        const double u = u1 + (u2 - u1) * i / (samples - 1), v = v1 + (v2 - v1) * j / (samples - 1);
        GeomLProp_SLProps properties(BRep_Tool::Surface(face), u, v, 1, 1e-6);
        if (properties.IsNormalDefined())
          Measure({double(number), u, v}, properties.Value(), properties.Normal());
      }
  }

  void Measure(const std::array<double, 3>& place, const gp_Pnt& point, const gp_Dir& normal)
  {
    const gp_Pnt plus = point.Translated(gp_Vec(normal) * eps);
    const gp_Pnt minus = point.Translated(gp_Vec(normal) * -eps);
    const bool plusInside = IsInside(plus), minusInside = IsInside(minus);
    double distance = std::numeric_limits<double>::infinity();
    if (plusInside && minusInside) {
      const double ahead = Way(plus, normal), back = Way(minus, -normal);
      if (std::isfinite(ahead) && std::isfinite(back))
        distance = std::min(ahead, back);
    } else if (plusInside)
      distance = Way(plus, normal);
    else if (minusInside)
      distance = Way(minus, -normal);
    if (std::isfinite(distance))
      values[place] = distance + eps;
  }

  bool IsInside(const gp_Pnt& point)
  {
    classifier.Perform(point, 1e-7);
    return classifier.State() == TopAbs_IN || classifier.State() == TopAbs_ON;
  }

  double Way(const gp_Pnt& from, const gp_Dir& direction)
  {
    double nearest = std::numeric_limits<double>::infinity();
    BRepIntCurveSurface_Inter hits;
    for (hits.Init(shape, gp_Lin(from, direction), 1e-7); hits.More(); hits.Next())
      if (hits.W() > eps && hits.W() < longest)
        nearest = std::min(nearest, hits.W());
    return nearest;
  }

  const TopoDS_Shape shape;
  BRepClass3d_SolidClassifier classifier;
  double eps = 0;
  double longest = 0;
};

} // namespace OrvexTest
