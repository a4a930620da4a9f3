// One named global parameter: a boolean, a real or a vector, given as a number, as the name of
// another parameter, or (reals only) as an expression over others.
#pragma once

#include "foundation/Export.h"

#include <QString>
#include <QVariant>

#include <cstdint>
#include <string>

// Values of ParametersDef::type.
enum eGLOBAL_PARAMETER_TYPE { eBOOLEAN_PARAMETER = 0, eREAL_PARAMETER = 1, eVECTOR_PARAMETER = 2 };

// A plain record, copied by value. The constructor leaves all texts empty and the variant invalid;
// the other members are for whoever fills the record, the type first of all. They start at zero, so
// that a copy never reads something undefined.
//
// Names are looked up in the table of GlobalParaMeterMgr. A record outside of it, a copy of one of
// its records included, lies on no cycle: it computes with what the parameters of the table give.
struct ORVEX_API ParametersDef
{
  // Also its key in the table of GlobalParaMeterMgr.
  QString name;
  // 0 boolean, 1 real, 2 vector.
  int type = 0;
  // For the front end; carried along, not saved.
  std::int32_t typeData = 0;
  // Empty if the parameter is no expression.
  std::string expression;
  // Names of the parameters that the expression uses, joined by commas.
  QString expressionParameters;
  // For the front end; carried along, not saved.
  std::int64_t expressionData = 0;
  // A boolean value, set by the front end; not saved.
  QVariant valueVariant;
  // For the front end; carried along, not saved.
  double values[3] = {0.0, 0.0, 0.0};
  // A number, a name, or for a vector three such items joined by commas.
  QString valueText;
  // Free text.
  QString description;

  // The expression's value, else the number in the value text, else the value of the parameter that
  // the text names. 0 for an unknown name, a failed expression and a parameter on a cycle.
  double CalculateAndGetRealValue() const;

  // Writes the three values of a vector text. A text without exactly three parts, and a record with
  // an expression, write nothing.
  void CalculateAndGetVectorlValue(double& x, double& y, double& z) const;

  // The value of the expression with the global parameters as variables; 0 if it fails.
  double CalculateExpress() const;
};
