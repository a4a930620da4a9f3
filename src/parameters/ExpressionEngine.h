// Values of expressions, computed by the fparser library: arithmetic, comparisons, powers (^) and
// its functions, angles in radians. A number is written with a point, whatever the locale.
#pragma once

#include "foundation/Export.h"

#include <map>
#include <string>

class ORVEX_API ExpressionEngine
{
public:
  // The parser descends once per open bracket, and within a bracket once per sign and power up to
  // the next other operator. Deeper expressions are refused before they can exhaust the stack (at
  // the limit it takes about 0.4 MB), as are texts longer than this.
  static constexpr int kDeepestNesting = 500;
  static constexpr std::size_t kLongestExpression = 1 << 20;

  // A variable whose name the parser does not take as it is goes by another: each character that is
  // no letter, digit or underscore is written as an underscore, a name that begins with a digit
  // gets one in front, the name of a function one behind: Bottom_Radius, _2nd, min_. If another
  // variable has that name already, it keeps it, and the first is left out.
  //
  // Every call parses anew. The result is 0 until a value was computed, and holds it also when the
  // call fails because of it.
  // Returns: false for no variables at all (also for a constant expression), a syntax error, an
  // error of evaluation as a division by zero, and a value that is not finite.
  static bool TryCalculateExpress(const std::string& expression,
                                  std::map<std::string, double>& variables, double& result);

  // 0 on failure, which this form cannot tell from a true zero.
  static double CalculateExpress(const std::string& expression,
                                 std::map<std::string, double>& variables);
};
