// The version of the library that is loaded, which need not be the one a program was built with.
#pragma once

#include "foundation/Export.h"

namespace Orvex {

// "MAJOR.MINOR.PATCH".
ORVEX_FOUNDATION_API const char* LibraryVersion();

} // namespace Orvex
