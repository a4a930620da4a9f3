// What the environment sets. Each is looked up at every call.
//
// Of the switches "1", "true", "yes" and "on" switch on, "0", "false", "no" and "off" switch off,
// in any case; any other value, and an unset variable, leave the default.
#pragma once

#include "foundation/Export.h"

#include <string>

class ORVEX_FOUNDATION_API OrvexEnvVariableSet
{
public:
  // ORVEX_STEP_DUMP_MESSAGES, default off: the plain STEP reader writes how many shapes a file
  // holds to the debug log.
  static bool isDumpMessageToFile();

  // ORVEX_STEP_READ_SUBGROUPS, default off: the plain STEP reader also stores the members of
  // nested groups.
  static bool isReadSTEPSubgroup();

  // ORVEX_STEP_READ_OBJECT_NAMES, default on: the plain STEP reader names shapes after the
  // objects in the file instead of numbering them.
  static bool isReadSTEPObjectName();

  // ORVEX_SIMULATION_DUMPS, default none: the folder for the IGES files that the union for
  // simulation leaves behind. Empty if it is not set.
  static std::string simulationDumpFolder();
};
