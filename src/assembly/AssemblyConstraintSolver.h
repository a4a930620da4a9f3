// The mates of an assembly, in the order in which they were added: a record of intent. Where parts
// go to is computed by AssemblyGeometryHelper and applied by the application.
//
// Caveat: for the thread of the front end only.
#pragma once

#include "assembly/AssemblyConstraint.h"
#include "foundation/Export.h"

#include <string>
#include <vector>

class ORVEX_API AssemblyConstraintSolver
{
public:
  // The process's one list, made on first use from any thread.
  static AssemblyConstraintSolver& GetInstance();

  // Appends a copy. One without an id gets "ac_1", "ac_2", ...; one that comes with an id keeps it,
  // also if another has it already.
  // Returns: the id.
  std::string AddConstraint(const AssemblyConstraint& constraint);

  // Removes every constraint with the id. Returns: whether there was one.
  bool RemoveConstraint(const std::string& id);

  const std::vector<AssemblyConstraint>& GetConstraints() const;

  // Also makes the next id "ac_1" again.
  void Clear();

  // Moves nothing. Returns: true.
  bool Solve();

private:
  AssemblyConstraintSolver() = default;

  std::vector<AssemblyConstraint> constraints;
  int generatedIds = 0;
};
