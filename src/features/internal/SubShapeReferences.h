// References to edges and faces that survive a rebuild of their shape.
//
// A feature that works on sub-shapes keeps beside each index a geometric fingerprint. Before a
// rebuild the indices are brought up to date against the current source shape: an index list counts
// as it is; where there is none, each fingerprint is matched with the nearest one in the shape, and
// all fingerprints are taken anew. No naming service of the kernel is used.
//
// What stands in the parameters of a feature (indices count from 0 in the kernel's map of edges or
// faces of "sourceBrep"):
//
//   "Chamfer"          "edgeIndices", "edgeRefs"      integers, edge references
//   "Shell", "Draft"   "faceIndices", "faceRefs"      integers, face references
//   "Fillet"           "edgeRadiusSpecs"              edge references with values of the feature
//
// An edge reference has "edgeIndex", "curveType", "length" and the points "midX" to "midZ",
// "startX" to "startZ", "endX" to "endZ"; a face reference "faceIndex", "surfaceType", "area",
// "centerX" to "centerZ" and for a plane "normalX" to "normalZ".
//
// Caveat: the nearest candidate is taken however far it lies.
// Cost: linear in the edges or faces of the shape for each reference that is resolved; the source
// is parsed once.
#pragma once

#include "features/FeatureHistoryItem.h"

#include <QVariantMap>
#include <TopTools_IndexedMapOfShape.hxx>
#include <TopoDS_Shape.hxx>

namespace Orvex {

// A copy of the parameters with indices and references brought up to date; unchanged for other
// types of feature and without a source shape.
FeatureParameters RefreshReferences(const std::string& type, const FeatureParameters& parameters);

// Null for what is no text, is empty or cannot be read.
// Caveat: the kernel checks little of what it reads; a text that was changed by hand can end the
// process.
TopoDS_Shape ParseSourceBrep(const QVariant& source);

// Write all keys but the index into the reference.
// Returns: false, with the reference as it was, if the kernel cannot measure the sub-shape or an
//   edge lacks a vertex.
bool FingerprintEdge(const TopoDS_Shape& edge, QVariantMap& reference);
bool FingerprintFace(const TopoDS_Shape& face, QVariantMap& reference);

// How far a candidate is from a stored reference; the largest double if it cannot be measured. The
// terms have mixed units: good for putting candidates in order only. An edge may run either way.
double ScoreEdge(const TopoDS_Shape& edge, const QVariantMap& reference);
double ScoreFace(const TopoDS_Shape& face, const QVariantMap& reference);

// The index of the best candidate, the lowest of equal ones. The stored index, -1 if there is none,
// for a reference without the keys that matter and if no candidate can be measured.
int ResolveEdgeRef(const TopTools_IndexedMapOfShape& edges, const QVariantMap& reference);
int ResolveFaceRef(const TopTools_IndexedMapOfShape& faces, const QVariantMap& reference);

} // namespace Orvex
