// Writes a replay bundle as a Python script: a self-contained program that carries the bundle and,
// run inside a host that offers an object CAD, has the host carry out the plan.
//
//   StepPythonReplayExporter().ExportReplayBundleScript(bundleJson, "solid", 3)
//
// The script needs Python 3 and its module json. Apart from the three values its text is always the
// same; see step/replay/script/replay_script.py. Run without a host it prints a message and ends.
//
// The bundle and the scope become Python string literals in single quotes. Tab, newline, carriage
// return, single quote and backslash are escaped; every other byte is written as it is. Caveats:
// - The bundle must be UTF-8 without NUL bytes. Python refuses the source of anything else:
//   stray Latin-1 bytes, overlong forms, surrogates encoded one by one (CESU-8).
// - The bundle must be JSON. Other text compiles, and json.loads raises ValueError as soon as the
//   script is loaded. The JSON of this library falls short of it in two cases. A control character
//   below 0x20 other than tab, newline and carriage return goes into a name unescaped; json.loads
//   takes none inside a string. And NaN and infinity are written as nan and inf.
// - Everything else comes back unchanged, U+2028, U+FEFF and U+007F included.
// - The script prints its result, with all geometry of the bundle, on standard output.
#pragma once

#include "foundation/Export.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace Orvex {

class ORVEX_API StepPythonReplayExporter
{
public:
  // The whole script. The scope is "manifest", "face", "shell" or "solid", the id that of the
  // entity, 0 for a manifest; neither is checked against the bundle.
  // Cost: two passes over the bundle and one allocation of exactly the script's size.
  std::string ExportReplayBundleScript(std::string_view bundleJson, std::string_view scope,
                                       std::uint64_t entityId) const;
};

} // namespace Orvex
