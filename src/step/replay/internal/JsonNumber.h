// Numbers as replay documents spell them.
#pragma once

namespace Orvex {

// Enough for any double: sign, six digits, point and exponent, or the zeros in their place.
inline constexpr int kJsonNumberSize = 16;

// Six significant digits in the shorter of fixed and exponent notation, without trailing zeros:
// what printf makes of %g, the same in every locale.
// Returns: behind the last character.
// Cost: some ten nanoseconds for magnitudes of models; the general conversion takes five times as
// long, and numbers are most of a document.
char* WriteJsonNumber(char* out, double value);

} // namespace Orvex
