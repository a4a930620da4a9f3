#include "parameters/ExpressionEngine.h"

#include "foundation/ScopedNumericLocale.h"

// The library's header does not hold itself to our warnings.
#include <fparser.hh>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <set>
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

// What the parser is given: names that it takes, and the values in their order.
class ParserVariables
{
public:
  // Finding out which names are functions takes a call of the parser for each.
  enum class Functions { Unlikely, Recognized };

  ParserVariables(const std::map<std::string, double>& variables_, Functions functions)
      : variables(variables_)
  {
    for (const auto& [name, value] : variables) {
      std::string written = WrittenName(name);
      if (functions == Functions::Recognized && !IsTaken(written))
        written.push_back('_');
      if (functions == Functions::Unlikely || IsTaken(written))
        Add(name, written, value);
    }
  }

  std::string names;
  std::vector<double> values;

private:
  static bool IsTaken(const std::string& name)
  {
    return FunctionParser().Parse("0", name, false) < 0;
  }

  static bool IsNameCharacter(unsigned char c)
  {
    return c == '_' || c >= 0x80 || std::isalnum(c);
  }

  static std::string WrittenName(const std::string& name)
  {
    std::string written = name;
    for (char& c : written)
      if (!IsNameCharacter(static_cast<unsigned char>(c)))
        c = '_';
    if (!written.empty() && std::isdigit(static_cast<unsigned char>(written.front())))
      written.insert(0, 1, '_');
    return written;
  }

  // A name as it is comes before one that only looks like it when written.
  void Add(const std::string& name, const std::string& written, double value)
  {
    if (written.empty() || (written != name && variables.count(written) != 0) ||
        !added.insert(written).second)
      return;
    if (!names.empty())
      names.push_back(',');
    names.append(written);
    values.push_back(value);
  }

  const std::map<std::string, double>& variables;
  std::set<std::string> added;
};

bool Evaluate(const std::string& expression, const std::map<std::string, double>& variables,
              double& result)
{
  const Orvex::ScopedNumericLocale pointedNumbers;
  FunctionParser parser;
  ParserVariables given(variables, ParserVariables::Functions::Unlikely);
  int errorPlace = parser.Parse(expression, given.names, false);
  if (errorPlace >= 0 && parser.GetParseErrorType() == FunctionParser::INVALID_VARS) {
    ParserVariables renamed(variables, ParserVariables::Functions::Recognized);
    errorPlace = parser.Parse(expression, renamed.names, false);
    std::swap(given.values, renamed.values);
  }
  if (errorPlace >= 0)
    return false;
  result = parser.Eval(given.values.data());
  return parser.EvalError() == 0 && std::isfinite(result);
}

} // namespace

bool ExpressionEngine::TryCalculateExpress(const std::string& expression,
                                           std::map<std::string, double>& variables, double& result)
{
  result = 0.0;
  try {
    // The parser stops at a NUL.
    const bool isWhole = expression.find('\0') == std::string::npos;
    if (variables.empty() || !isWhole || expression.size() > kLongestExpression ||
        IsTooDeep(expression))
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
