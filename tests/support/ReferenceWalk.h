// How many references find their edge or face again while a block changes step by step.
#pragma once

#include "features/internal/SubShapeReferences.h"
#include "support/DrilledBlock.h"

namespace OrvexTest {

struct FoundShare
{
  int edges = 0, edgesFound = 0, faces = 0, facesFound = 0;

  double Edges() const
  {
    return static_cast<double>(edgesFound) / edges;
  }
  double Faces() const
  {
    return static_cast<double>(facesFound) / faces;
  }
};

inline TopTools_IndexedMapOfShape SubShapes(const TopoDS_Shape& shape, TopAbs_ShapeEnum type)
{
  TopTools_IndexedMapOfShape map;
  TopExp::MapShapes(shape, type, map);
  return map;
}

using Fingerprint = bool (*)(const TopoDS_Shape&, QVariantMap&);
using Resolve = int (*)(const TopTools_IndexedMapOfShape&, const QVariantMap&);

// References taken on one block and looked up in the next: how many lead to what bears their name.
inline int FoundAgain(const TopoDS_Shape& before, const std::vector<std::string>& namesBefore,
                      const TopoDS_Shape& after, const std::vector<std::string>& namesAfter,
                      TopAbs_ShapeEnum type, Fingerprint fingerprint, Resolve resolve)
{
  const TopTools_IndexedMapOfShape from = SubShapes(before, type), to = SubShapes(after, type);
  int found = 0;
  for (int i = 1; i <= from.Extent(); ++i) {
    QVariantMap reference;
    const int index = fingerprint(from(i), reference) ? resolve(to, reference) : -1;
    found += index >= 0 && namesAfter[static_cast<std::size_t>(index)] ==
                             namesBefore[static_cast<std::size_t>(i - 1)];
  }
  return found;
}

inline FoundShare WalkOfReferences(int steps, double change, std::uint64_t seed)
{
  Random random(seed);
  FoundShare share;
  DrilledBlock::Dimensions size = DrilledBlock::kStart;
  DrilledBlock before(size);
  for (int step = 0; step < steps; ++step) {
    size = DrilledBlock::Changed(size, change, random);
    DrilledBlock after(size);
    share.edges += static_cast<int>(before.edgeNames.size());
    share.faces += static_cast<int>(before.faceNames.size());
    share.edgesFound += FoundAgain(before.shape, before.edgeNames, after.shape, after.edgeNames,
                                   TopAbs_EDGE, &Orvex::FingerprintEdge, &Orvex::ResolveEdgeRef);
    share.facesFound += FoundAgain(before.shape, before.faceNames, after.shape, after.faceNames,
                                   TopAbs_FACE, &Orvex::FingerprintFace, &Orvex::ResolveFaceRef);
    before = std::move(after);
  }
  return share;
}

} // namespace OrvexTest
