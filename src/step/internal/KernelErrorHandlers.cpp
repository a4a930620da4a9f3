#include "step/internal/KernelErrorHandlers.h"

#include <Standard_ErrorHandler.hxx>

#include <functional>

namespace Orvex {

namespace {

// The list is only reachable through private members. An explicit instantiation may name them, and
// hands them to friends that the rest of this file can call.
template <auto PreviousMember, auto ThreadMember>
struct Access
{
  friend Standard_PErrorHandler PreviousOf(const Standard_ErrorHandler& handler)
  {
    return handler.*PreviousMember;
  }
  friend Standard_ThreadId ThreadOf(const Standard_ErrorHandler& handler)
  {
    return handler.*ThreadMember;
  }
};

Standard_PErrorHandler PreviousOf(const Standard_ErrorHandler& handler);
Standard_ThreadId ThreadOf(const Standard_ErrorHandler& handler);

template struct Access<&Standard_ErrorHandler::myPrevious, &Standard_ErrorHandler::myThread>;

} // namespace

void UnlinkKernelErrorHandlersBelow(const void* frame)
{
  Standard_ErrorHandler probe; // puts itself at the head of the list
  Standard_PErrorHandler handler = PreviousOf(probe);
  while (handler != nullptr) {
    const Standard_PErrorHandler next = PreviousOf(*handler);
    if (ThreadOf(*handler) == ThreadOf(probe) && std::less<const void*>()(handler, frame))
      handler->Unlink();
    handler = next;
  }
}

} // namespace Orvex
