// Writes a replay bundle as a Python script: a self-contained program that carries the bundle and,
// run inside a host that offers an object CAD, has the host carry out the plan.
//
//   StepPythonReplayExporter().ExportReplayBundleScript(bundleJson, "solid", 3)
//
// The script needs Python 3 and its module json. Apart from the three values its text is always the
// same; see step/replay/script/replay_script.py. Run without a host it prints a message and ends.
//
// The bundle and the scope become Python string literals in single quotes. Tab, newline, carriage
// return, single quote and backslash are escaped; every other byte is written as it is. What comes
// back when the script is run:
// - Every UTF-8 text does, U+2028, U+FEFF, U+007F and U+FFFF included, but for what follows.
// - NUL, and bytes that are no UTF-8 (Latin-1, overlong forms, surrogates encoded one by one, code
//   points past U+10FFFF): Python refuses the source, with a SyntaxError or a ValueError.
// - Control characters below 0x20 other than tab, newline and carriage return: they compile and
//   come back from a scope, but the JSON of this library writes them unescaped, and json.loads
//   takes none inside a string.
// - NaN and infinity: that JSON has them as nan and inf, which json.loads refuses.
// A bundle that json.loads refuses raises its ValueError as soon as the script is loaded, also
// without a host.
//
// Caveats of the script:
// - Sweeps, lofts, revolves and booleans are made from the exact text of the bundle, unless the
//   host asks for their own rebuild. All other solids are left to the commands of the plan.
// - The plan of a face or a shell may bear the strategy of its solid. The script then asks for a
//   solid even so, without an exact text, and the host has to refuse it.
// - With the intermediate commands switched on, its time grows with the square of the faces:
//   seconds for 2,000 faces. Without them it is linear: seconds for 100,000.
// - As a main program it prints its result, with all geometry of the bundle, on standard output.
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
