#include "operate/Operation.h"

#include "frame/Failure.h"
#include "frame/Text.h"

#include <algorithm>
#include <stdexcept>

namespace Orvex::Cli {

namespace {

template <typename Type>
const Type& ValueNamed(const OperationCall& call, const std::string& name)
{
  for (std::size_t i = 0; i < call.values.size(); ++i)
    if (call.operation.options[i].field.name == name)
      if (const Type* value = std::get_if<Type>(&call.values[i]))
        return *value;
  throw std::logic_error("no such option: " + name);
}

std::vector<const Operation*> AllOfThem()
{
  std::vector<const Operation*> all;
  for (const auto& family : {BooleanOperations(), SolidOperations(), CurveOperations(),
                             SurfaceOperations(), NurbsOperations(), InspectOperations()})
    for (const Operation& operation : family)
      all.push_back(&operation);
  return all;
}

} // namespace

double OperationCall::Real(const char* name) const
{
  return ValueNamed<double>(*this, name);
}

int OperationCall::Integer(const char* name) const
{
  return ValueNamed<int>(*this, name);
}

bool OperationCall::Flag(const char* name) const
{
  return Integer(name) != 0;
}

gp_Vec OperationCall::Vector(const char* name) const
{
  return ValueNamed<gp_Vec>(*this, name);
}

gp_Dir OperationCall::Direction(const char* name) const
{
  return ValueNamed<gp_Dir>(*this, name);
}

PointList OperationCall::Points(const char* name) const
{
  return ValueNamed<PointList>(*this, name);
}

TopoDS_Shape OperationCall::Shape(const char* name) const
{
  return ValueNamed<TopoDS_Shape>(*this, name);
}

std::span<const Operation* const> Operations()
{
  static const std::vector<const Operation*> all = AllOfThem();
  return all;
}

const Operation& OperationNamed(const std::string& name)
{
  QStringList names;
  for (const Operation* operation : Operations()) {
    if (operation->name == name)
      return *operation;
    names.append(TextFromBytes(operation->name));
  }
  throw Failure{ExitCode::Usage,
                {},
                {},
                QStringLiteral("there is no operation \"%1\"").arg(TextFromBytes(name)),
                QStringLiteral("the operations: ") + names.join(QStringLiteral(", "))};
}

} // namespace Orvex::Cli
