// A block with two holes and two rounded edges whose faces and edges have names that come from how
// they were made, not from where they lie: the truth for references that are to find them again.
#pragma once

#include "support/Random.h"

#include <BRepAlgoAPI_Cut.hxx>
#include <BRepFilletAPI_MakeFillet.hxx>
#include <BRepPrimAPI_MakeBox.hxx>
#include <BRepPrimAPI_MakeCylinder.hxx>
#include <TopExp.hxx>
#include <TopTools_IndexedDataMapOfShapeListOfShape.hxx>
#include <TopTools_IndexedMapOfShape.hxx>
#include <TopTools_ListOfShape.hxx>
#include <TopoDS.hxx>

#include <algorithm>
#include <array>
#include <map>
#include <string>
#include <vector>

namespace OrvexTest {

class DrilledBlock
{
public:
  // Length, width, height, radius of both holes, and of both fillets.
  using Dimensions = std::array<double, 5>;
  static constexpr Dimensions kStart = {100, 60, 30, 8, 4};

  // Each dimension by its own factor of up to `change`, within half and twice of where they began.
  static Dimensions Changed(const Dimensions& from, double change, Random& random)
  {
    Dimensions to = from;
    for (std::size_t i = 0; i < to.size(); ++i)
      to[i] =
        std::clamp(to[i] * (1 + random.Real(-change, change)), 0.75 * kStart[i], 1.3 * kStart[i]);
    return to;
  }

  explicit DrilledBlock(const Dimensions& size)
  {
    Make(size);
    Drill(gp_Pnt(0.25 * size[0], 0.5 * size[1], -1), size, "first hole");
    Drill(gp_Pnt(0.7 * size[0], 0.4 * size[1], -1), size, "second hole");
    Round("front", "right", size[4]);
    Round("back", "left", size[4]);
    NameSubShapes();
  }

  // In the order of the kernel's maps. An edge is named by the faces that it lies between.
  TopoDS_Shape shape;
  std::vector<std::string> faceNames;
  std::vector<std::string> edgeNames;

private:
  struct NamedFace
  {
    std::string name;
    TopoDS_Shape face;
  };

  void Make(const Dimensions& size)
  {
    BRepPrimAPI_MakeBox box(size[0], size[1], size[2]);
    shape = box.Shape();
    faces = {{"bottom", box.BottomFace()}, {"top", box.TopFace()},   {"front", box.FrontFace()},
             {"back", box.BackFace()},     {"left", box.LeftFace()}, {"right", box.RightFace()}};
  }

  // What an operation made of the faces so far.
  template <typename Operation>
  void Follow(Operation& operation)
  {
    std::vector<NamedFace> followed;
    for (const NamedFace& named : faces) {
      const TopTools_ListOfShape& modified = operation.Modified(named.face);
      if (modified.IsEmpty() && !operation.IsDeleted(named.face))
        followed.push_back(named);
      for (const TopoDS_Shape& face : modified)
        followed.push_back({named.name, face});
    }
    faces = std::move(followed);
    shape = operation.Shape();
  }

  void Drill(const gp_Pnt& place, const Dimensions& size, const std::string& name)
  {
    BRepPrimAPI_MakeCylinder drill(gp_Ax2(place, gp::DZ()), size[3], size[2] + 2);
    faces.push_back({name, drill.Cylinder().LateralFace()});
    BRepAlgoAPI_Cut cut(shape, drill.Shape());
    Follow(cut);
  }

  void Round(const std::string& one, const std::string& other, double radius)
  {
    NameSubShapes();
    const auto found = std::find(edgeNames.begin(), edgeNames.end(), Pair(one, other));
    TopTools_IndexedMapOfShape edges;
    TopExp::MapShapes(shape, TopAbs_EDGE, edges);
    const TopoDS_Edge edge = TopoDS::Edge(edges(1 + static_cast<int>(found - edgeNames.begin())));
    BRepFilletAPI_MakeFillet fillet(shape);
    fillet.Add(radius, edge);
    fillet.Build();
    const TopoDS_Shape rounded = fillet.Generated(edge).First();
    Follow(fillet);
    faces.push_back({Pair(one, other) + " fillet", rounded});
  }

  static std::string Pair(std::string one, std::string other)
  {
    if (other < one)
      std::swap(one, other);
    return one.append("|").append(other);
  }

  std::string NameOfFace(const TopoDS_Shape& face) const
  {
    for (const NamedFace& named : faces)
      if (named.face.IsSame(face))
        return named.name;
    return "unknown";
  }

  void NameSubShapes()
  {
    TopTools_IndexedMapOfShape faceMap;
    TopExp::MapShapes(shape, TopAbs_FACE, faceMap);
    faceNames.clear();
    for (int i = 1; i <= faceMap.Extent(); ++i)
      faceNames.push_back(NameOfFace(faceMap(i)));
    TopTools_IndexedDataMapOfShapeListOfShape edges;
    TopExp::MapShapesAndAncestors(shape, TopAbs_EDGE, TopAbs_FACE, edges);
    TopTools_IndexedMapOfShape edgeMap;
    TopExp::MapShapes(shape, TopAbs_EDGE, edgeMap);
    edgeNames.clear();
    for (int i = 1; i <= edgeMap.Extent(); ++i) {
      const TopTools_ListOfShape& around = edges.FindFromKey(edgeMap(i));
      edgeNames.push_back(Pair(NameOfFace(around.First()), NameOfFace(around.Last())));
    }
  }

  std::vector<NamedFace> faces;
};

} // namespace OrvexTest
