// What a pick looks for.
#pragma once

enum class PickingLevel : int {
  Vertex = 0,
  Edge = 1,
  Face = 2,
  // Each listed compound, compsolid or solid as one whole.
  Solid = 3,
  None = 4
};
