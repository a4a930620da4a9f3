// What `orvex replay` writes of a STEP file.
#pragma once

#include "frame/Progress.h"

#include <QJsonObject>
#include <QString>

#include <cstdint>
#include <string>

namespace Orvex::Cli {

enum class ReplayScopeWord { Model, Face, Shell, Solid };

enum class ReplayForm {
  Manifest,
  Summary,
  Features,
  Bundle,
  Plan,
  Contract,
  Requests,
  Payload,
  Script
};

// One document: of the whole model, or of one of its entities.
struct ReplayWish
{
  ReplayScopeWord scope = ReplayScopeWord::Model;
  std::uint64_t id = 0;
  ReplayForm form = ReplayForm::Manifest;
};

// Reads the file and writes the document to the descriptor, which failures call by the name of the
// output.
//
// Returns: {"bytes": ...}.
// Errors: a Failure; ExitCode::Unreadable for a file that cannot be read, ExitCode::Usage for an id
//   that the model does not have, ExitCode::Partial when it cannot be written.
QJsonObject ExportReplay(const std::string& path, const ReplayWish& wish, int descriptor,
                         const std::string& output, const ProgressSink& progress);

// Reads the file and writes a script for each solid into the folder: solid_1.py and so on.
//
// Returns: {"solids": [...]} as in orvex.replay.schema.json.
// Errors: as above.
QJsonObject ExportAllScripts(const std::string& path, const std::string& folder,
                             const ProgressSink& progress);

// A line for each solid of such a result.
QString ScriptsText(const QJsonObject& exported);

} // namespace Orvex::Cli
