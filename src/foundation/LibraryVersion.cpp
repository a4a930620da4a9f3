#include "foundation/LibraryVersion.h"

namespace Orvex {

const char* LibraryVersion()
{
  return ORVEX_VERSION;
}

} // namespace Orvex
