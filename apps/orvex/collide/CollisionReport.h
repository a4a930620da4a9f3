// Collisions between parts: a run of the engine as JSON, text and CSV.
#pragma once

#include "model/PartList.h"

#include <QJsonObject>
#include <QString>

#include <optional>
#include <string>
#include <vector>

namespace Orvex::Cli {

enum class CollisionPreset { Fast, Balanced, Strict, Accurate, Visualization };
enum class CollisionIndex { None, Grid, Octree, RTree, Morton };

struct CollisionRequest
{
  std::vector<std::string> files;
  CollisionPreset preset = CollisionPreset::Balanced;
  std::optional<CollisionIndex> index; // absent: the preset's
  std::optional<double> tolerance;     // model units; absent: a share of the scene's diagonal
  double timeLimitSeconds = 0.0;       // for the pairs; 0: the preset's
  double minVolume = 0.0;              // overlaps below are no collision, nor are touching parts
  bool minVolumeGiven = false;
  std::vector<std::string> ignored; // patterns with * and ? of names or paths
  bool check = false;               // look at cleared pairs again
  bool explain = false;
};

// Reads the files, runs the engine, and writes what the parts have in common to `overlapFile`
// (empty: nowhere).
//
// Returns: all but "schema" and "version" of orvex.collide.schema.json.
// Errors: a Failure; nothing is written then.
QJsonObject Collide(const CollisionRequest& request, const std::string& overlapFile,
                    const std::string& overlapName, const ProgressSink& progress);

// Take such an object.
QString CollisionText(const QJsonObject& report);
QString CollisionCsv(const QJsonObject& report);

struct RegionRequest
{
  std::string first, second;
  std::optional<double> tolerance; // model units; absent: the least, 1e-7
};

// The common solid of two models through the region in which they meet; the rest as above, with
// orvex.region.schema.json.
QJsonObject CommonInRegion(const RegionRequest& request, const std::string& overlapFile,
                           const std::string& overlapName, const ProgressSink& progress);

QString RegionText(const QJsonObject& report);

struct InterferenceRequest
{
  std::vector<std::string> files;
  double tolerance = 0.0;       // around boxes, model units
  std::optional<double> linear; // deflection of the filter; absent: no filter
  double angular = 0.5;         // radians
};

// The pairs whose common has a vertex; the rest as above, with orvex.interfere.schema.json.
QJsonObject Interfere(const InterferenceRequest& request, const ProgressSink& progress);

QString InterferenceText(const QJsonObject& report);

} // namespace Orvex::Cli
