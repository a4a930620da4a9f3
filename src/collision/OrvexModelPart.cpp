#include "collision/OrvexModelPart.h"

#include <BRepBndLib.hxx>
#include <BRepGProp.hxx>
#include <GProp_GProps.hxx>

bool OrvexModelPart::isValid() const
{
  return !shape.IsNull();
}

OrvexModelPart OrvexModelPart::fromShape(const TopoDS_Shape& shape, const std::string& name)
{
  OrvexModelPart part;
  part.name = name;
  part.shape = shape;
  if (shape.IsNull())
    return part;
  BRepBndLib::Add(shape, part.box, true);
  GProp_GProps volume, surface;
  BRepGProp::VolumeProperties(shape, volume, false, false, false);
  part.volume = volume.Mass();
  part.centroid = volume.CentreOfMass();
  BRepGProp::SurfaceProperties(shape, surface, false, false);
  part.surfaceArea = surface.Mass();
  return part;
}
