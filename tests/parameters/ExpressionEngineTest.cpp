#include "parameters/ExpressionEngine.h"

#include "support/CommaLocale.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using Variables = std::map<std::string, double>;

std::string Repeated(const std::string& text, int count)
{
  std::string result;
  for (int i = 0; i < count; ++i)
    result += text;
  return result;
}

TEST(ExpressionEngine, ComputesWithVariablesInRadians)
{
  Variables variables{{"x", 3.0}, {"y", 0.5}};
  double result = -1;
  EXPECT_TRUE(ExpressionEngine::TryCalculateExpress("x*2", variables, result));
  EXPECT_EQ(result, 6.0);
  EXPECT_TRUE(ExpressionEngine::TryCalculateExpress("sin(y) + x^2 - 2.5", variables, result));
  EXPECT_DOUBLE_EQ(result, std::sin(0.5) + 6.5);
  EXPECT_EQ(ExpressionEngine::CalculateExpress("x - x - x", variables), -3.0);
}

// What docs/parameters.md promises, so that another build of the parser cannot take it away.
TEST(ExpressionEngine, OffersTheDocumentedOperatorsAndFunctions)
{
  const double x = 0.75;
  const std::vector<std::pair<const char*, double>> cases{{"2^3^2", 512},
                                                          {"-2^2", -4},
                                                          {"-5%3", -2},
                                                          {"8/4/2", 1},
                                                          {"0.1+0.2=0.3", 1},
                                                          {"x!=x", 0},
                                                          {"x<=1", 1},
                                                          {"x>=1", 0},
                                                          {"x>0.5&x<1", 1},
                                                          {"0.4|x", 1},
                                                          {"!0.6", 0},
                                                          {"2--3", 5},
                                                          {"0x1F", 31},
                                                          {".5+1e-3", 0.501},
                                                          {"sqrt(x)", std::sqrt(x)},
                                                          {"cbrt(x)", std::cbrt(x)},
                                                          {"pow(x,3)", std::pow(x, 3)},
                                                          {"hypot(3,4)", 5},
                                                          {"exp(x)", std::exp(x)},
                                                          {"exp2(x)", std::exp2(x)},
                                                          {"log(x)", std::log(x)},
                                                          {"log2(8)", 3},
                                                          {"log10(100)", 2},
                                                          {"sin(x)", std::sin(x)},
                                                          {"cos(x)", std::cos(x)},
                                                          {"tan(x)", std::tan(x)},
                                                          {"cot(x)", 1 / std::tan(x)},
                                                          {"sec(x)", 1 / std::cos(x)},
                                                          {"csc(x)", 1 / std::sin(x)},
                                                          {"asin(x)", std::asin(x)},
                                                          {"acos(x)", std::acos(x)},
                                                          {"atan(x)", std::atan(x)},
                                                          {"atan2(x,-2)", std::atan2(x, -2)},
                                                          {"sinh(x)", std::sinh(x)},
                                                          {"cosh(x)", std::cosh(x)},
                                                          {"tanh(x)", std::tanh(x)},
                                                          {"asinh(x)", std::asinh(x)},
                                                          {"acosh(2)", std::acosh(2)},
                                                          {"atanh(x)", std::atanh(x)},
                                                          {"floor(-2.5)", -3},
                                                          {"ceil(-2.5)", -2},
                                                          {"trunc(-2.5)", -2},
                                                          {"int(-2.5)", -3},
                                                          {"int(2.5)", 3},
                                                          {"abs(-x)", x},
                                                          {"min(x,2)", x},
                                                          {"max(x,2)", 2},
                                                          {"if(x<1,7,1/0)", 7}};
  Variables variables{{"x", x}};
  for (const auto& [expression, expected] : cases) {
    double result = 0;
    EXPECT_TRUE(ExpressionEngine::TryCalculateExpress(expression, variables, result)) << expression;
    EXPECT_DOUBLE_EQ(result, expected) << expression;
  }
}

TEST(ExpressionEngine, FailsOrderly)
{
  Variables none, x{{"x", 0.0}};
  double result = 7;
  EXPECT_FALSE(ExpressionEngine::TryCalculateExpress("2*3", none, result));
  EXPECT_EQ(result, 0.0);
  for (const char* bad :
       {"1/x", "x*", "unknown", "log(x)", "sqrt(x-1)", "acos(x+2)", "2x", "pi", "1,5", ""}) {
    EXPECT_FALSE(ExpressionEngine::TryCalculateExpress(bad, x, result)) << bad;
    EXPECT_EQ(ExpressionEngine::CalculateExpress(bad, x), 0.0) << bad;
  }
  // What was computed is handed out even where it is no value to use.
  x["x"] = 1e308;
  EXPECT_FALSE(ExpressionEngine::TryCalculateExpress("x*10", x, result));
  EXPECT_TRUE(std::isinf(result));
}

TEST(ExpressionEngine, ATextIsReadToItsEnd)
{
  std::map<std::string, double> variables{{"x", 2}};
  double result = 1;
  EXPECT_FALSE(
    ExpressionEngine::TryCalculateExpress(std::string("x\0+nonsense", 11), variables, result));
}

TEST(ExpressionEngine, NamesThatTheParserDoesNotTakeGoByAnother)
{
  const Variables odd{
    {"Bottom Radius", 2.0}, {"2nd", 3.0},   {"min", 5.0},    {"", 7.0},  {"a-b", 11.0},
    {"a_b", 13.0},          {"höhe", 17.0}, {"c\xff", 19.0}, {"x", 23.0}};
  const auto valueOf = [&odd](const char* expression) {
    Variables variables = odd;
    return ExpressionEngine::CalculateExpress(expression, variables);
  };
  EXPECT_EQ(valueOf("Bottom_Radius+x"), 25);
  EXPECT_EQ(valueOf("_2nd"), 3);
  EXPECT_EQ(valueOf("min(x, 4)+min_"), 9);
  EXPECT_EQ(valueOf("a_b"), 13) << "a name as it is comes first";
  EXPECT_EQ(valueOf("höhe"), 17);
  EXPECT_EQ(valueOf("Bottom Radius"), 0);
  Variables onlyOdd{{"c\xff", 1.0}};
  double result = 0;
  EXPECT_TRUE(ExpressionEngine::TryCalculateExpress("6*7", onlyOdd, result));
  EXPECT_EQ(result, 42);
}

// Each of these would end the process if the parser were let at it.
TEST(ExpressionEngine, RefusesNestingThatWouldExhaustTheStack)
{
  Variables variables{{"x", 1.0}};
  double result = 0;
  const int deep = ExpressionEngine::kDeepestNesting - 1;
  for (const std::string& unit :
       {std::string("("), std::string("-"), std::string("x^"), std::string("sin("),
        std::string("- ("), std::string("!"), std::string("1^1e-5^"), std::string("1^1e+5^"),
        std::string("x^(x)^"), std::string("x^max(x,x+x)^"), std::string("x^ -")}) {
    const std::string head = Repeated(unit, 1000000 / static_cast<int>(unit.size()));
    EXPECT_FALSE(ExpressionEngine::TryCalculateExpress(head + "x", variables, result)) << unit;
  }
  EXPECT_TRUE(ExpressionEngine::TryCalculateExpress(Repeated("(", deep) + "x" + Repeated(")", deep),
                                                    variables, result));
  EXPECT_TRUE(ExpressionEngine::TryCalculateExpress(Repeated("x^", deep) + "x", variables, result));
}

TEST(ExpressionEngine, TakesLongFlatTextsUpToItsLimit)
{
  Variables variables{{"x", 1.0}};
  double result = 0;
  for (const char* term : {"x+", "x - ", "x^2-", "-x*", "(1-x)^2-", "x!=-"})
    EXPECT_TRUE(
      ExpressionEngine::TryCalculateExpress(Repeated(term, 100000) + "x", variables, result))
      << term;
  const std::string tooLong(ExpressionEngine::kLongestExpression + 1, '1');
  EXPECT_FALSE(ExpressionEngine::TryCalculateExpress(tooLong, variables, result));
}

TEST(ExpressionEngine, ReadsPointedNumbersInAnyLocale)
{
  const OrvexTest::CommaLocale locale;
  Variables variables{{"x", 1.0}};
  EXPECT_EQ(ExpressionEngine::CalculateExpress("x*2.5", variables), 2.5);
  EXPECT_EQ(ExpressionEngine::CalculateExpress("min(x,5)", variables), 1.0);
}

} // namespace
