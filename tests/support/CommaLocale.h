// A locale with a decimal comma for the length of a scope, on systems that have none too: it is
// made on the spot with localedef, which is part of the C library, from a source of our own.
#pragma once

#include <string>

namespace OrvexTest {

class CommaLocale
{
public:
  // Fails the test if no such locale comes about.
  CommaLocale();
  ~CommaLocale();
  CommaLocale(const CommaLocale&) = delete;
  CommaLocale& operator=(const CommaLocale&) = delete;

private:
  std::string earlier;
};

} // namespace OrvexTest
