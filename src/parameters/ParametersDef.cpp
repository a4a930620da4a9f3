#include "parameters/ParametersDef.h"

#include "parameters/ExpressionEngine.h"
#include "parameters/GlobalParaMeterMgr.h"

#include <QStringList>

#include <array>

namespace {

// A number, or else the value of the parameter with that name.
double NumberOrParameter(const QString& text)
{
  const QString trimmed = text.trimmed();
  bool isNumber = false;
  const double number = trimmed.toDouble(&isNumber);
  return isNumber ? number : GlobalParaMeterMgr::GetParameterRawValue(trimmed).toDouble();
}

} // namespace

double ParametersDef::CalculateAndGetRealValue() const
{
  return expression.empty() ? NumberOrParameter(valueText) : CalculateExpress();
}

void ParametersDef::CalculateAndGetVectorlValue(double& x, double& y, double& z) const
{
  if (!expression.empty())
    return;
  const QStringList parts = valueText.split(QLatin1Char(','), Qt::KeepEmptyParts);
  if (parts.size() != 3)
    return;
  x = NumberOrParameter(parts[0]);
  y = NumberOrParameter(parts[1]);
  z = NumberOrParameter(parts[2]);
}

double ParametersDef::CalculateExpress() const
{
  std::map<std::string, double> variables;
  for (const QString& part :
       expressionParameters.split(QLatin1Char(','), Qt::KeepEmptyParts, Qt::CaseSensitive))
    variables[part.toStdString()] = GlobalParaMeterMgr::GetParameterRawValue(part).toDouble();
  return ExpressionEngine::CalculateExpress(expression, variables);
}
