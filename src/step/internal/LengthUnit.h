// The unit of length of a loaded STEP file.
#pragma once

#include <string>

class STEPControl_Reader;

namespace Orvex {

struct LengthUnit
{
  std::string name;           // lower case, "millimetre"; empty: the file names none
  double inMillimetres = 0.0; // 0: unknown
};

// Of the first representation that names one: a file may mix units, and the kernel converts each
// representation by its own.
LengthUnit LengthUnitOf(STEPControl_Reader& reader);

} // namespace Orvex
