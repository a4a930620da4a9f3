// A shape without the holes, pockets and bosses that lie outside of a region.
//
// The kernel's boolean looks at every face of a shape, wherever the other one is: clipping a plate
// of a thousand holes to a corner costs as much as a boolean of two such plates. What makes the
// clip cheap is to fill the far holes first, which changes nothing in the region.
//
// Faces are gathered into features by cutting the shape along the inner wires of its planar faces.
// With a disc of the plane in each of its wires, every feature is a closed surface by itself. One
// whose box is outside of the region encloses nothing there, whether it is a hole or a boss, so it
// can go, and with it the wires. Features that bear others go only together with those.
#pragma once

#include "kernel/internal/BoxLimits.h"

#include <TopTools_IndexedDataMapOfShapeListOfShape.hxx>
#include <TopTools_IndexedMapOfShape.hxx>
#include <TopTools_MapOfShape.hxx>
#include <TopoDS_Face.hxx>
#include <TopoDS_Shape.hxx>

#include <vector>

namespace Orvex {

class RegionReduction
{
public:
  // Cost: about ten microseconds for a face.
  explicit RegionReduction(const TopoDS_Shape& shape);

  // Around the faces, whatever meshes they have; void without faces.
  const Bnd_Box& Box() const;

  // Returns: the shape itself if little would be won; otherwise one with new faces where wires
  //   went, and the rest shared.
  // Errors: Standard_Failure passes.
  TopoDS_Shape ReducedTo(const BoxLimits& region);

private:
  struct InnerWire
  {
    TopoDS_Shape wire;
    std::size_t carrier;                 // face
    std::vector<std::size_t> neighbours; // faces on the other side
  };

  std::size_t NumberOf(const TopoDS_Shape& face) const;
  void FindInnerWires();
  void FindInnerWiresOf(const TopoDS_Face& face);
  bool FindNeighbours(InnerWire& wire) const;
  void GatherFeatures();
  void DropFeaturesOutside(const Bnd_Box& region);
  void KeepBearers();
  bool WinsEnough() const;
  TopoDS_Shape Rebuilt() const;

  // Positions are those of `faces`, less one.
  TopoDS_Shape shape;
  TopTools_IndexedMapOfShape faces;
  std::vector<Bnd_Box> boxes;
  Bnd_Box whole;
  TopTools_IndexedDataMapOfShapeListOfShape facesOfEdges;
  std::vector<InnerWire> innerWires;
  std::vector<std::size_t> feature; // of each face: the first face of its feature
  std::vector<bool> isDropped;      // by feature
};

// Takes the meshes of faces that only the reduction has off their edges again: those belong to the
// shape.
void RemoveMeshesOfNewFaces(const TopoDS_Shape& reduction, const TopoDS_Shape& shape);

} // namespace Orvex
