#include "collision/internal/FaceBoxes.h"

#include <BRepBndLib.hxx>
#include <TopExp_Explorer.hxx>

namespace Orvex {

namespace {

std::vector<Bnd_Box> EnlargedBoxes(const FaceBoxes& faces, double tolerance)
{
  std::vector<Bnd_Box> boxes;
  boxes.reserve(faces.entries.size());
  for (const FaceBoxes::Entry& entry : faces.entries) {
    boxes.push_back(entry.box);
    boxes.back().Enlarge(tolerance);
  }
  return boxes;
}

} // namespace

FaceBoxes FaceBoxes::Of(const TopoDS_Shape& shape)
{
  FaceBoxes faces;
  int number = 0;
  for (TopExp_Explorer face(shape, TopAbs_FACE); face.More(); face.Next(), ++number) {
    Bnd_Box box;
    BRepBndLib::Add(face.Current(), box, true);
    if (!box.IsVoid())
      faces.entries.push_back({box, number});
  }
  return faces;
}

bool FacesMayOverlap(const FaceBoxes& a, const FaceBoxes& b, double tolerance)
{
  Bnd_Box wholeOfB;
  const std::vector<Bnd_Box> boxesOfB = EnlargedBoxes(b, tolerance);
  for (const Bnd_Box& box : boxesOfB)
    wholeOfB.Add(box);
  for (const Bnd_Box& box : EnlargedBoxes(a, tolerance)) {
    if (box.IsOut(wholeOfB))
      continue;
    for (const Bnd_Box& other : boxesOfB)
      if (!box.IsOut(other))
        return true;
  }
  return false;
}

} // namespace Orvex
