// Measures of shapes.
#pragma once

#include <BRepAdaptor_Curve.hxx>
#include <BRepBndLib.hxx>
#include <BRepGProp.hxx>
#include <Bnd_Box.hxx>
#include <GCPnts_AbscissaPoint.hxx>
#include <GProp_GProps.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>

namespace OrvexTest {

inline double VolumeOf(const TopoDS_Shape& shape)
{
  GProp_GProps properties;
  BRepGProp::VolumeProperties(shape, properties);
  return properties.Mass();
}

inline double AreaOf(const TopoDS_Shape& shape)
{
  GProp_GProps properties;
  BRepGProp::SurfaceProperties(shape, properties);
  return properties.Mass();
}

// By adaptive integration: the kernel's linear properties are off by a percent on a slim ellipse.
inline double LengthOf(const TopoDS_Shape& shape)
{
  double length = 0;
  for (TopExp_Explorer edges(shape, TopAbs_EDGE); edges.More(); edges.Next())
    length += GCPnts_AbscissaPoint::Length(BRepAdaptor_Curve(TopoDS::Edge(edges.Current())), 1e-10);
  return length;
}

// The box of the exact geometry, without tolerances and gaps.
inline Bnd_Box BoundsOf(const TopoDS_Shape& shape)
{
  Bnd_Box box;
  BRepBndLib::AddOptimal(shape, box, false, false);
  return box;
}

} // namespace OrvexTest
