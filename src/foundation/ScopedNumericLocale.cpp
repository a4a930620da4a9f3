#include "foundation/ScopedNumericLocale.h"

namespace Orvex {

ScopedNumericLocale::ScopedNumericLocale()
    : pointed(newlocale(LC_NUMERIC_MASK, "C", duplocale(uselocale(nullptr)))),
      previous(pointed == nullptr ? nullptr : uselocale(pointed))
{}

ScopedNumericLocale::~ScopedNumericLocale()
{
  if (pointed == nullptr)
    return;
  uselocale(previous);
  freelocale(pointed);
}

} // namespace Orvex
