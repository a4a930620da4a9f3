// A change of global parameters, and the features that it makes stale.
//
//   Orvex::GlobalParameterChange change;
//   ...change the table: GlobalParaMeterMgr::AddParameter, LoadFromFile...
//   change.MarkDirty();
//   ParametricFeatureManager::GetInstance().RecomputeAllDirty(true);
//
// What follows a global parameter is compared by its value before and after: an expression of a
// parameter, or a reference that stands on it. So it does not matter through how many other
// parameters the change comes, and what computes to the same value is not rebuilt.
// Cost: linear in the parameters of all registered features.
#pragma once

#include "foundation/Export.h"

#include <QVariant>

#include <map>
#include <string>

namespace Orvex {

class ORVEX_API GlobalParameterChange
{
public:
  // Takes down what the parameters of the current document give now.
  GlobalParameterChange();

  // Marks the features that get other values since.
  void MarkDirty() const;

private:
  // By feature key and parameter name.
  using Values = std::map<std::pair<std::string, std::string>, QVariant>;
  static Values CurrentValues();

  Values before;
};

} // namespace Orvex
