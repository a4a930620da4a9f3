// The module _orvex: the library's classes as they are. The package orvex stands on it.
#include "Bindings.h"
#include "KernelErrors.h"

#include <Message.hxx>
#include <Message_Messenger.hxx>

PYBIND11_MODULE(_orvex, module)
{
  module.doc() = "The classes of OrvexCoreGeometry as they are; the package orvex stands on them.";
  module.attr("__version__") = ORVEX_VERSION;
  // What the kernel has to say comes as exceptions and reports; it would print the rest.
  Message::DefaultMessenger()->ChangePrinters().Clear();
  BindKernelErrors(module);
  BindShape(module);
  BindDocument(module);
  BindOperations(module);
  BindStep(module);
  BindReplay(module);
  BindAnalysis(module);
  BindCollision(module);
  BindPicking(module);
  // What a call costs at least; benchmarks measure it.
  module.def("_nothing", [] {});
}
