// How failures look in Python: what the kernel throws is a KernelError with the kernel's message,
// input that is refused a ValueError.
#pragma once

#include <pybind11/pybind11.h>

#include <string>

void BindKernelErrors(pybind11::module_& module);

// Throws what becomes a KernelError.
[[noreturn]] void RaiseKernelError(const std::string& message);
