#include "assembly/AssemblyConstraintSolver.h"

AssemblyConstraintSolver& AssemblyConstraintSolver::GetInstance()
{
  static AssemblyConstraintSolver solver;
  return solver;
}

std::string AssemblyConstraintSolver::AddConstraint(const AssemblyConstraint& constraint)
{
  AssemblyConstraint& added = constraints.emplace_back(constraint);
  if (added.id.empty())
    added.id.append("ac_").append(std::to_string(++generatedIds));
  return added.id;
}

bool AssemblyConstraintSolver::RemoveConstraint(const std::string& id)
{
  // The caller's may be that of a constraint in the list.
  const std::string removed = id;
  return std::erase_if(constraints,
                       [&](const auto& constraint) { return constraint.id == removed; }) != 0;
}

const std::vector<AssemblyConstraint>& AssemblyConstraintSolver::GetConstraints() const
{
  return constraints;
}

void AssemblyConstraintSolver::Clear()
{
  constraints.clear();
  generatedIds = 0;
}

bool AssemblyConstraintSolver::Solve()
{
  return true;
}
