#include "parameters/ParametersDef.h"

#include "parameters/internal/ParameterResolver.h"

double ParametersDef::CalculateAndGetRealValue() const
{
  return Orvex::ParameterResolver().ValueOf(*this);
}

void ParametersDef::CalculateAndGetVectorlValue(double& x, double& y, double& z) const
{
  if (!expression.empty())
    return;
  const QStringList parts = valueText.split(QLatin1Char(','), Qt::KeepEmptyParts);
  if (parts.size() != 3)
    return;
  Orvex::ParameterResolver resolver;
  x = resolver.ValueOf(parts[0]);
  y = resolver.ValueOf(parts[1]);
  z = resolver.ValueOf(parts[2]);
}

double ParametersDef::CalculateExpress() const
{
  return expression.empty() ? 0.0 : CalculateAndGetRealValue();
}
