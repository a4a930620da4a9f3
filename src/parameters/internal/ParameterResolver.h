// Values of real parameters that depend on each other.
#pragma once

#include "parameters/GlobalParaMeterMgr.h"

namespace Orvex {

// The names that a record's value refers to, whether they exist or not: those of its expression, or
// the one in its value text unless that is a number. Commas separate, empty parts are kept.
QStringList ReferencesOf(const ParametersDef& definition);

// The value of the real parameter `name` of the table.
double ResolveReal(const GlobalParaMeterMgr::Table& table, const QString& name);

} // namespace Orvex
