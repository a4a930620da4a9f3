#include "foundation/OrvexEnvVariableSet.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string>
#include <string_view>

namespace {

bool IsOneOf(const std::string& value, const std::array<std::string_view, 4>& words)
{
  return std::find(words.begin(), words.end(), value) != words.end();
}

bool Switch(const char* name, bool fallback)
{
  const char* raw = std::getenv(name);
  if (raw == nullptr)
    return fallback;
  std::string value(raw);
  for (char& c : value)
    if (c >= 'A' && c <= 'Z')
      c = static_cast<char>(c - 'A' + 'a');
  if (IsOneOf(value, {"1", "true", "yes", "on"}))
    return true;
  if (IsOneOf(value, {"0", "false", "no", "off"}))
    return false;
  return fallback;
}

} // namespace

bool OrvexEnvVariableSet::isDumpMessageToFile()
{
  return Switch("ORVEX_STEP_DUMP_MESSAGES", false);
}

bool OrvexEnvVariableSet::isReadSTEPSubgroup()
{
  return Switch("ORVEX_STEP_READ_SUBGROUPS", false);
}

bool OrvexEnvVariableSet::isReadSTEPObjectName()
{
  return Switch("ORVEX_STEP_READ_OBJECT_NAMES", true);
}

std::string OrvexEnvVariableSet::simulationDumpFolder()
{
  const char* folder = std::getenv("ORVEX_SIMULATION_DUMPS");
  return folder == nullptr ? std::string() : folder;
}
