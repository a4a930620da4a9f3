#include "commands/Commands.h"

namespace Orvex::Cli {

std::span<const Command> AllCommands()
{
  static constexpr Command kCommands[] = {
    {"info", "What is in a STEP file: structure, names, colours, counts, size", DeclareInfo},
    {"version", "The versions of the library and of what it stands on", DeclareVersion},
  };
  return kCommands;
}

} // namespace Orvex::Cli
