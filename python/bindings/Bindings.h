// The families of bindings; a source file each.
#pragma once

#include <pybind11/pybind11.h>

void BindShape(pybind11::module_& module);
void BindDocument(pybind11::module_& module);
void BindOperations(pybind11::module_& module);
void BindStep(pybind11::module_& module);
void BindReplay(pybind11::module_& module);
void BindAnalysis(pybind11::module_& module);
void BindCollision(pybind11::module_& module);
void BindPicking(pybind11::module_& module);
