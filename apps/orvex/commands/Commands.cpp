#include "commands/Commands.h"

namespace Orvex::Cli {

std::span<const Command> AllCommands()
{
  static constexpr Command kCommands[] = {
    {"check", "What in a model troubles meshing and machining", DeclareCheck},
    {"collide", "Which parts touch or overlap, where and by how much", DeclareCollide},
    {"compare", "Whether two models are the same for practical purposes", DeclareCompare},
    {"history", "How a saved document was made: its features in order", DeclareHistory},
    {"info", "What is in a file: structure, names, colours, parameters, counts, size", DeclareInfo},
    {"interfere", "Which parts have something in common, by booleans alone", DeclareInterfere},
    {"new", "Make a parametric shape and write it to a file", DeclareNew},
    {"op", "Run a modelling operation on shapes from files", DeclareOp},
    {"pick", "What rays hit in a model: vertices, edges, faces or solids", DeclarePick},
    {"quality", "Curvature, stripes, draft, radii, thickness of a model's faces", DeclareQuality},
    {"rebuild", "Change parameters of a saved document and rebuild what depends on them",
     DeclareRebuild},
    {"replay", "Plans and scripts that rebuild a STEP model", DeclareReplay},
    {"version", "The versions of the library and of what it stands on", DeclareVersion},
  };
  return kCommands;
}

} // namespace Orvex::Cli
