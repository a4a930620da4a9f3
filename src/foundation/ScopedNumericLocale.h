// Makes the calling thread read and write numbers with a decimal point for the length of a scope,
// whatever locale the process runs in. Other threads keep theirs.
#pragma once

#include "foundation/Export.h"

#include <clocale>
#include <locale.h>

namespace Orvex {

class ORVEX_FOUNDATION_API ScopedNumericLocale
{
public:
  ScopedNumericLocale();
  ~ScopedNumericLocale();
  ScopedNumericLocale(const ScopedNumericLocale&) = delete;
  ScopedNumericLocale& operator=(const ScopedNumericLocale&) = delete;

private:
  locale_t pointed;
  locale_t previous;
};

} // namespace Orvex
