// A function object whose copies share their state.
//
// A rebuild function is called through a copy, so that it can replace what it was registered as;
// what it changes in itself must be there at the next call.
#pragma once

#include <functional>
#include <memory>
#include <utility>

namespace Orvex {

// Empty for empty.
template <typename Result, typename... Arguments>
std::function<Result(Arguments...)> Shared(std::function<Result(Arguments...)> function)
{
  if (!function)
    return function;
  auto shared = std::make_shared<std::function<Result(Arguments...)>>(std::move(function));
  return
    [shared](Arguments... arguments) { return (*shared)(std::forward<Arguments>(arguments)...); };
}

} // namespace Orvex
