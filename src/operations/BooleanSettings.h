// Options of the kernel for a chop that the user tunes.
#pragma once

#include <BOPAlgo_GlueEnum.hxx>

struct BooleanSettings
{
  static BooleanSettings Default()
  {
    return {};
  }

  // Distance in model units within which the operands are taken to touch, on top of their own
  // tolerances. The kernel raises what is below 1e-7 to that.
  double fuzzyValue = 1e-7;
  // Use the kernel's own threads.
  bool runParallel = true;
  // The kernel's mode that writes nothing on its operands. A chop works on copies anyway.
  bool nonDestructive = false;
  // Faster for operands whose faces coincide; wrong if they do so only in part or also cross.
  BOPAlgo_GlueEnum glue = BOPAlgo_GlueOff;
};
