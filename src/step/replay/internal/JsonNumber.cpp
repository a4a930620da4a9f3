#include "step/replay/internal/JsonNumber.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>

namespace Orvex {

namespace {

constexpr int kDigits = 6;
constexpr double kSmallest = 1e-4;
constexpr double kLargest = 1e6;

char* WriteAny(char* out, double value)
{
  return std::to_chars(out, out + kJsonNumberSize, value, std::chars_format::general, kDigits).ptr;
}

// The power of ten of the first digit, and the factor that puts six digits before the point.
struct Scale
{
  double upTo;
  int exponent;
  double factor;
};
constexpr Scale kScales[] = {{1e-3, -4, 1e9}, {1e-2, -3, 1e8}, {1e-1, -2, 1e7}, {1e0, -1, 1e6},
                             {1e1, 0, 1e5},   {1e2, 1, 1e4},   {1e3, 2, 1e3},   {1e4, 3, 1e2},
                             {1e5, 4, 1e1},   {1e6, 5, 1e0}};

const Scale& ScaleOf(double magnitude)
{
  const Scale* scale = kScales;
  while (magnitude >= scale->upTo)
    ++scale;
  return *scale;
}

// The six digits of a number with the decimal exponent of the first one, without the zeros at the
// end of its fraction.
char* WriteFixed(char* out, std::uint32_t number, int exponent)
{
  char digits[kDigits];
  for (int i = kDigits - 1; i >= 0; --i, number /= 10)
    digits[i] = static_cast<char>('0' + number % 10);
  const int whole = std::max(exponent + 1, 0);
  int count = kDigits;
  while (count > whole && digits[count - 1] == '0')
    --count;
  out = whole == 0 ? std::fill_n(out, 1, '0') : std::copy_n(digits, whole, out);
  if (count == whole)
    return out;
  *out++ = '.';
  out = std::fill_n(out, whole - exponent - 1, '0');
  return std::copy(digits + whole, digits + count, out);
}

} // namespace

// The product with the factor, a power of ten that a double holds exactly, is off by half a unit in
// its last place, at most 6e-11. Unless its fraction lies that close to a half, both round to the
// same whole number; the rest is left to the general conversion.
char* WriteJsonNumber(char* out, double value)
{
  constexpr double kDoubt = 1e-9;
  const double magnitude = std::abs(value);
  if (value == 0 && !std::signbit(value)) {
    *out = '0';
    return out + 1;
  }
  if (!(magnitude >= kSmallest && magnitude < kLargest))
    return WriteAny(out, value);
  const Scale& scale = ScaleOf(magnitude);
  const double scaled = magnitude * scale.factor;
  const auto below = static_cast<std::uint32_t>(scaled);
  const double fraction = scaled - below;
  const std::uint32_t number = fraction > 0.5 ? below + 1 : below;
  if (std::abs(fraction - 0.5) < kDoubt || number >= kLargest)
    return WriteAny(out, value);
  if (value < 0)
    *out++ = '-';
  return WriteFixed(out, number, scale.exponent);
}

} // namespace Orvex
