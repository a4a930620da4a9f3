// The files that the union for simulation leaves behind, to look at what it was given and made.
#pragma once

#include <TopoDS_Shape.hxx>

namespace Orvex {

// Writes the files of one run and counts it. What cannot be written is left out.
// Caveat: not for two threads at once.
void DumpSimulationUnion(const TopoDS_Shape& tool, const TopoDS_Shape& blank,
                         const TopoDS_Shape& result);

} // namespace Orvex
