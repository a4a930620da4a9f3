// Numbers of the entities of a read model: positions, from 1, in the kernel's indexed maps over the
// root shapes. 0 means none.
#pragma once

#include <cstdint>

namespace Orvex {

using ReplayId = std::uint64_t;

} // namespace Orvex
