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

TEST(ExpressionEngine, FailsOrderly)
{
  Variables none, x{{"x", 0.0}}, blank{{"Bottom Radius", 1.0}};
  double result = 7;
  EXPECT_FALSE(ExpressionEngine::TryCalculateExpress("2*3", none, result));
  EXPECT_EQ(result, 0.0);
  for (const char* bad : {"1/x", "x*", "unknown", "log(x)", "sqrt(x-1)", ""}) {
    EXPECT_FALSE(ExpressionEngine::TryCalculateExpress(bad, x, result)) << bad;
    EXPECT_EQ(ExpressionEngine::CalculateExpress(bad, x), 0.0) << bad;
  }
  // What was computed is handed out even where it is no value to use.
  x["x"] = 1e308;
  EXPECT_FALSE(ExpressionEngine::TryCalculateExpress("x*10", x, result));
  EXPECT_TRUE(std::isinf(result));
  EXPECT_FALSE(ExpressionEngine::TryCalculateExpress("1", blank, result));
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
