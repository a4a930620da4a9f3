// Tests with many random cases run fewer of them under a sanitizer, which makes each several times
// as slow.
#pragma once

namespace OrvexTest {

#if defined(__SANITIZE_ADDRESS__)
constexpr bool kIsSanitized = true;
#else
constexpr bool kIsSanitized = false;
#endif

constexpr int FewerIfSanitized(int count, int sanitized)
{
  return kIsSanitized ? sanitized : count;
}

} // namespace OrvexTest
