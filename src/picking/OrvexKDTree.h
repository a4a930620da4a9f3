// A tree over triangles that says which of them a ray may strike, and which it strikes first.
//
// A node's box is that of its triangles. It is split in the middle of its longest side (X where the
// longest is not one alone), and each triangle goes with the middle of its own box, so that it is
// in one leaf only. Leaves are nodes of up to 32 triangles, those at depth 20, and those that a
// split would leave as they are. A ray's candidates are the triangles of the leaves whose boxes it
// meets, left before right.
//
// The nearest hit is found without a list of candidates, on a second tree (internal/WideBoxTree.h),
// and is the one that going through all candidates in their order gives, to the last bit.
//
// The triangles are kept as corners and the number of their face. Reading is safe from any number
// of threads.
#pragma once

#include "foundation/Export.h"
#include "picking/OrvexTriangleData.h"

#include <gp_Dir.hxx>

#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

class ORVEX_API OrvexKDTree
{
public:
  struct Hit
  {
    gp_Pnt point;
    // From the ray's origin.
    double distance;
    // The tree's.
    const TopoDS_Shape* face;
  };

  // Copies what it needs of the triangles; boxes are taken from the corners.
  // Errors: std::length_error above 2^31 triangles.
  explicit OrvexKDTree(const std::vector<OrvexTriangleData>& triangles);
  ~OrvexKDTree();
  OrvexKDTree(const OrvexKDTree&) = delete;
  OrvexKDTree& operator=(const OrvexKDTree&) = delete;

  // Copies of the candidates, in their order. None for a ray with a number that is not finite.
  std::vector<OrvexTriangleData> Query(const gp_Pnt& origin, const gp_Dir& direction) const;
  std::size_t CountCandidates(const gp_Pnt& origin, const gp_Dir& direction) const;

  // Of the candidates that the ray strikes the nearest, and of several at that distance the first.
  std::optional<Hit> NearestHit(const gp_Pnt& origin, const gp_Dir& direction) const;

  // Copies of all triangles, in the order in which they were given.
  std::vector<OrvexTriangleData> Triangles() const;

  // The leaves from left to right, each as the places of its triangles among those given.
  std::vector<std::vector<std::size_t>> Leaves() const;

private:
  struct Node;
  struct Contents;

  std::unique_ptr<Contents> contents;
};
