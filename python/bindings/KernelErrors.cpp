#include "KernelErrors.h"

#include <Standard_Failure.hxx>

#include <exception>
#include <stdexcept>

namespace py = pybind11;

namespace {

// A failure of the kernel that it told by a flag instead of an exception.
class ToldFailure : public std::runtime_error
{
public:
  using std::runtime_error::runtime_error;
};

PyObject* kernelError = nullptr;

std::string TextOf(const Standard_Failure& failure)
{
  std::string text = failure.DynamicType()->Name();
  const char* message = failure.GetMessageString();
  if (message != nullptr && *message != '\0')
    text.append(": ").append(message);
  return text;
}

void Translate(std::exception_ptr thrown)
{
  try {
    if (thrown)
      std::rethrow_exception(thrown);
  } catch (const Standard_Failure& failure) {
    PyErr_SetString(kernelError, TextOf(failure).c_str());
  } catch (const ToldFailure& failure) {
    PyErr_SetString(kernelError, failure.what());
  }
}

} // namespace

void BindKernelErrors(py::module_& module)
{
  kernelError = PyErr_NewExceptionWithDoc(
    "orvex.KernelError", "The geometry kernel could not do it; the text is the kernel's own.",
    PyExc_RuntimeError, nullptr);
  module.add_object("KernelError", py::handle(kernelError));
  py::register_exception_translator(Translate);
}

void RaiseKernelError(const std::string& message)
{
  throw ToldFailure(message);
}
