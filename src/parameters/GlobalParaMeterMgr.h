// The named global parameters of the current model, and the JSON file beside a document that keeps
// them.
//
// Parameters on shape labels refer to them by name. The table is process-wide and independent of
// the current document; the application loads and saves the file with the document:
//
//   QString error;
//   GlobalParaMeterMgr::LoadFromFile(GlobalParaMeterMgr::SidecarPath(documentPath), &error);
//
// Cycles: a real parameter may name itself, directly or through other reals. Every parameter on
// such a cycle has the value 0, whichever of them is asked for, and what depends on it computes
// with that 0. A vector or a boolean ends a chain: as a number a vector is 0, a boolean 0 or 1. The
// length of a chain is limited by memory only.
//
// Caveat: for one thread at a time.
#pragma once

#include "parameters/ParametersDef.h"

#include <functional>
#include <unordered_map>
#include <vector>

class ORVEX_API GlobalParaMeterMgr
{
public:
  using Table =
    std::unordered_map<QString, ParametersDef, std::hash<QString>, std::equal_to<QString>>;

  // Inserts or replaces. Any name is accepted, also one that differs from the record's own.
  static void AddParameter(QString name, ParametersDef definition);
  static void ClearAllParameters();
  static Table& GetAllParameters();
  // In table order, which is none that a reader would know.
  static std::vector<QString> GetAllParametersName();

  // Units: bytes. A larger file is neither read nor written.
  static constexpr qint64 kLargestFile = 64LL << 20;

  // A boolean, a double, or a list of exactly three doubles by the parameter's type; each of the
  // three is 0 for a vector whose text does not have three parts or that has an expression. Invalid
  // for an unknown name, an unknown type, and a boolean that can't be read.
  // Cost: each parameter that the value depends on is evaluated once, however many ways lead to it;
  // nothing is kept for the next call.
  static QVariant GetParameterRawValue(QString name);

  static bool IsValidParaName(QString name);
  // A letter or underscore, then letters, digits and underscores, all ASCII.
  static bool IsValidParaNameFormat(const QString& name);

  // The file beside a document: its directory, its name without the last ending, ".params.json".
  static QString SidecarPath(const QString& documentPath);

  // Replaces the table by the file's content. A file that does not exist is no error and changes
  // nothing. On failure (a file that cannot be read, is too large, or is no JSON array) the table
  // stays as it is and `error`, unless null, says why.
  static bool LoadFromFile(const QString& path, QString* error);

  // Replaces the file as a whole: until the new one is complete, the old one stays.
  static bool SaveToFile(const QString& path, QString* error);

private:
  static Table m_nameMapParameters;
};
