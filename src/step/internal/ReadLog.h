// Lines of the readers in the debug log.
#pragma once

#include "foundation/OrvexDebugLogFile.h"

#include <string>
#include <utility>

namespace Orvex {

inline void LogRead(std::string line)
{
  OrvexDebugLogFile::GetInstance()->dumpToFile(std::move(line));
}

} // namespace Orvex
