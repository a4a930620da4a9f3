#include "parameters/ExpressionEngine.h"

#include "foundation/ScopedNumericLocale.h"

// The library's header does not hold itself to our warnings.
#include <fparser.hh>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <string_view>
#include <vector>

namespace {

bool IsOneOf(char c, std::string_view characters)
{
  return characters.find(c) != std::string_view::npos;
}

// How deep the parser has called itself: once for each bracket, and within a bracket for each sign
// before an operand and each power (which bind to the right) up to the next other operator. Where
// the text alone does not tell, the depth is put too high, never too low.
class NestingMeter
{
public:
  int DepthAfter(char c)
  {
    // A sign right behind one of these may be that of an exponent, which ends no chain of powers.
    const bool isExponentSign = IsOneOf(c, "+-") && IsOneOf(previous, "eEpP");
    previous = c;
    if (IsOneOf(c, " \t\n\v\f\r"))
      return depth;
    if (!isExponentSign)
      Count(c);
    afterOperand = IsOneOf(c, "_.)") || std::isalnum(static_cast<unsigned char>(c));
    return depth;
  }

private:
  void Count(char c)
  {
    if (c == '(') {
      chains.push_back(0);
      ++depth;
    } else if (c == ')' && chains.size() > 1) {
      depth -= chains.back() + 1;
      chains.pop_back();
    } else if (IsOneOf(c, "^!") || (c == '-' && !afterOperand)) {
      ++chains.back();
      ++depth;
    } else if (IsOneOf(c, "+-*/%,<=>&|")) {
      depth -= chains.back();
      chains.back() = 0;
    }
  }

  // Signs and powers that are open, for each open bracket and for the whole.
  std::vector<int> chains{0};
  int depth = 0;
  char previous = ' ';
  bool afterOperand = false;
};

bool IsTooDeep(const std::string& expression)
{
  NestingMeter meter;
  return std::any_of(expression.begin(), expression.end(), [&](char c) {
    return meter.DepthAfter(c) > ExpressionEngine::kDeepestNesting;
  });
}

bool Evaluate(const std::string& expression, const std::map<std::string, double>& variables,
              double& result)
{
  std::string names;
  std::vector<double> values;
  for (const auto& [name, value] : variables) {
    if (!values.empty())
      names.push_back(',');
    names.append(name);
    values.push_back(value);
  }
  const Orvex::ScopedNumericLocale pointedNumbers;
  FunctionParser parser;
  if (parser.Parse(expression, names, false) >= 0)
    return false;
  result = parser.Eval(values.data());
  return parser.EvalError() == 0 && std::isfinite(result);
}

} // namespace

bool ExpressionEngine::TryCalculateExpress(const std::string& expression,
                                           std::map<std::string, double>& variables, double& result)
{
  result = 0.0;
  try {
    if (variables.empty() || expression.size() > kLongestExpression || IsTooDeep(expression))
      return false;
    return Evaluate(expression, variables, result);
  } catch (...) {
    return false;
  }
}

double ExpressionEngine::CalculateExpress(const std::string& expression,
                                          std::map<std::string, double>& variables)
{
  double result = 0.0;
  return TryCalculateExpress(expression, variables, result) ? result : 0.0;
}
