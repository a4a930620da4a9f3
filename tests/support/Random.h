// Random numbers that are the same on every platform: SplitMix64 (Steele, Lea, Flood, 2014) and our
// own distributions.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <string>

namespace OrvexTest {

class Random
{
public:
  explicit Random(std::uint64_t seedValue) : state(seedValue)
  {}

  std::uint64_t Next()
  {
    std::uint64_t z = (state += 0x9e3779b97f4a7c15ULL);
    z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9ULL;
    z = (z ^ (z >> 27)) * 0x94d049bb133111ebULL;
    return z ^ (z >> 31);
  }

  double Real(double from, double to)
  {
    return from + (to - from) * (static_cast<double>(Next() >> 11) * 0x1.0p-53);
  }

  // From 0 up to, not including, count.
  int Index(int count)
  {
    return static_cast<int>(Next() % static_cast<std::uint64_t>(count));
  }

private:
  std::uint64_t state;
};

// The seed of a random test: ORVEX_TEST_SEED if it is set, else a fixed one. Tests name it in what
// they report.
inline std::uint64_t Seed()
{
  const char* given = std::getenv("ORVEX_TEST_SEED");
  return given == nullptr ? 20261122 : std::strtoull(given, nullptr, 10);
}

inline std::string SeedNote()
{
  return "reproduce with ORVEX_TEST_SEED=" + std::to_string(Seed());
}

} // namespace OrvexTest
