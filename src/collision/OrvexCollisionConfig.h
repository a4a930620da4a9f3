// How the collision engine looks for collisions, and five ready-made ways.
//
// Lengths are shares of the scene's diagonal (OrvexSceneStats), so that one configuration suits
// scenes of any size. Values that are none (negative counts, shares that are not numbers) count as
// the least that makes sense.
//
// What a configuration can overlook, and the one that overlooks nothing, is told at
// OrvexCollisionEngine.
#pragma once

#include "foundation/Export.h"

struct ORVEX_API OrvexCollisionConfig
{
  // Which pairs are tried: 0 all; by 1 a grid, 2 an octree, 3 an R-tree; any other value the grid.
  int spaceIndexKind = 1;
  // 1: neighbours on a space-filling curve, in the place of the index above.
  int useMortonIndex = 0;
  int reservedInt = 0; // read by nothing
  // Of the octree.
  int octreeMaxDepth = 6;
  // Of octree and R-tree.
  int maxItemsPerLeaf = 16;
  // How many neighbours along the curve a part is paired with.
  int mortonNeighbours = 1;
  // 2: finer grid cells. 3: in scenes with very large parts, small ones are not paired with each
  // other.
  int sceneProfile = 0;
  // The filter before anything exact: 0 boxes of few triangles each; 4 triangles in a grid, which
  // also decides; 5 and 6 boxes of faces; any other value none.
  int narrowPhaseMode = 0;
  // What decides: 0 the distance between the meshes, where there are meshes; 1 the exact distance,
  // then the common solid; any other value the exact distance alone.
  int exactMode = 1;
  // Copied into the metrics, used for nothing else.
  double reportedDeflection = 0.003;
  // Times the diagonal: how fine meshes are, as the kernel's relative deflection and as its angle.
  // No finer than 3e-4 and 0.05, whatever comes out: the kernel would mesh for minutes.
  double relativeMeshDeflection = 0.001;
  double reservedDouble = 0.0005; // read by nothing
  bool reservedFlag = false;      // read by nothing
  // Times the diagonal: the fuzzy tolerance, which is what counts as contact.
  double relativeFuzzy = 0.0001;
  // Times the diagonal: how near boxes must come; at least the fuzzy tolerance.
  double relativeTolerance = 0;
  double reservedDoubleB = 0; // read by nothing
  double reservedDoubleC = 0; // read by nothing
  // Other than 0: pairs are tried in the order in which the index gives them. Otherwise those whose
  // boxes overlap most come first.
  int keepPairOrder = 0;
  // Which preset this is: 0 fast, 1 balanced, 2 strict, 3 accurate and visualization.
  int preset = 0;
  // Keep what was made for each part from one computation to the next. The caller promises that a
  // list with as many parts is the same list.
  bool reuseCaches = true;
  bool reservedFlagA = true;  // read by nothing
  bool reservedFlagB = false; // read by nothing
  bool reservedFlagC = true;  // read by nothing
  // Of each pair that meets; with exactMode 1.
  bool computeOverlapVolume = true;
  bool keepOverlapShape = false;
  // One thread, and all pairs whatever the index.
  bool serial = false;
  // For a whole computation; 0: none. Pairs are then tried one by one.
  double timeLimitSeconds = 0;
  // After so many pairs of tree nodes a distance between two meshes is what it is.
  int maxNodePairVisits = 10000000;
  // A distance between meshes is given up when the first triangles looked at are farther apart than
  // this many contact tolerances.
  double farFactor = 100.0;

  // Meshes only, no volumes.
  static OrvexCollisionConfig createFastConfig();

  // Boxes of faces, then exact.
  static OrvexCollisionConfig createBalancedConfig();

  // All pairs, one by one, for four minutes at most.
  static OrvexCollisionConfig createStrictConfig();

  // Meshes, then exact, with the common solids.
  static OrvexCollisionConfig createAccurateConfig();

  // The same with the grid.
  static OrvexCollisionConfig createVisualizationConfig();
};
