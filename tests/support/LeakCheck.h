// For tests that make leaks on purpose.
#pragma once

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/lsan_interface.h>
#endif

namespace OrvexTest {

// What is allocated while this object lives counts as no leak: after a fault nobody can free what
// the kernel held.
class LeaksAreExpected
{
public:
#if defined(__SANITIZE_ADDRESS__)
  LeaksAreExpected()
  {
    __lsan_disable();
  }
  ~LeaksAreExpected()
  {
    __lsan_enable();
  }
#else
  LeaksAreExpected()
  {}
#endif
  LeaksAreExpected(const LeaksAreExpected&) = delete;
  LeaksAreExpected& operator=(const LeaksAreExpected&) = delete;
};

} // namespace OrvexTest
