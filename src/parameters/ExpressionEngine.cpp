#include "parameters/ExpressionEngine.h"

#include "foundation/ScopedNumericLocale.h"

// The library's header does not hold itself to our warnings.
#include <fparser.hh>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <vector>

namespace {

// The parser calls itself for each bracket, for each sign before an operand, and for each power in
// a chain of powers (which bind to the right).
class NestingMeter
{
public:
  int DepthAfter(char c)
  {
    if (c == ' ' || c == '\t' || c == '\n' || c == '\r')
      return depth + signs + powers;
    const bool isSign = c == '-' || c == '!';
    const bool isBinary = isSign && afterOperand;
    if (c == '(')
      ++depth;
    else if (c == ')')
      --depth;
    if (c == '^')
      ++powers;
    else if (isBinary || c == '+' || c == '*' || c == '/' || c == ',' || c == ')')
      powers = 0;
    signs = isSign && !isBinary ? signs + 1 : 0;
    afterOperand = c == ')' || c == '_' || c == '.' || std::isalnum(static_cast<unsigned char>(c));
    return depth + signs + powers;
  }

private:
  int depth = 0, signs = 0, powers = 0;
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
  if (variables.empty() || expression.size() > kLongestExpression || IsTooDeep(expression))
    return false;
  try {
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
