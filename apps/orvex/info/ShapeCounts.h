// How many solids, faces and so on a set of shapes is made of, and how large it is.
#pragma once

#include <Bnd_Box.hxx>
#include <TopoDS_Shape.hxx>

#include <map>
#include <string>
#include <vector>

namespace Orvex::Cli {

struct KindCount
{
  int expanded = 0; // each placement counts: two occurrences of a cube have twelve faces
  int distinct = 0; // geometry that is shared counts once: two occurrences of a cube have six
  int free = 0;     // expanded ones that are no part of the next larger kind (a face of no shell)
};

struct ShapeCounts
{
  KindCount solids, shells, faces, wires, edges, vertices;
  std::map<std::string, int> surfaces; // distinct faces by kind of surface: "plane", "cylinder"
  Bnd_Box box;                         // void when there is no geometry
};

// Counts over all shapes together: what two of them share at one place counts once, so that a
// shape given beside one of its own sub-shapes changes nothing.
//
// Units: the box is in the units of the shapes; it encloses them, and where surfaces are free-form
//   it may be larger than need be.
ShapeCounts CountShapes(const std::vector<TopoDS_Shape>& shapes);

} // namespace Orvex::Cli
