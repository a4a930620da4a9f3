// What numeric options may be: never without an end, and no text that is no number.
#pragma once

#include <CLI/CLI.hpp>

#include <cmath>
#include <string>

namespace Orvex::Cli {

template <typename IsAllowed>
CLI::Validator FiniteNumber(const char* rule, IsAllowed isAllowed)
{
  return {[rule, isAllowed](std::string& text) {
            double number = 0;
            const bool isNumber = CLI::detail::lexical_cast(text, number);
            return isNumber && std::isfinite(number) && isAllowed(number)
                     ? std::string()
                     : text + " is not " + rule;
          },
          {}};
}

inline CLI::Validator AnyNumber()
{
  return FiniteNumber("a finite number", [](double) { return true; });
}

inline CLI::Validator NumberFromZero()
{
  return FiniteNumber("a finite number from 0 on", [](double number) { return number >= 0; });
}

inline CLI::Validator NumberAboveZero()
{
  return FiniteNumber("a finite number above 0", [](double number) { return number > 0; });
}

} // namespace Orvex::Cli
