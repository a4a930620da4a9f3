// What becomes of the operands of a subtraction in the document.
#pragma once

enum eBOOL_Option {
  eBOOL_KEEP_BOTH = 0,
  eBOOL_REMOVE_BOTH = 1,
  eBOOL_REMOVE_SECOND = 2,
  eBOOL_REMOVE_FIRST = 3
};
