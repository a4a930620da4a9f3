// A process-wide callable that a host can replace while other threads call it.
#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <utility>

namespace Orvex {

template <typename... Args>
class ReplaceableHandler
{
public:
  using Handler = std::function<void(Args...)>;

  explicit ReplaceableHandler(Handler initial)
      : current(std::make_shared<Handler>(std::move(initial)))
  {}

  // Returns the handler that was in place.
  Handler Replace(Handler next)
  {
    auto replacement = std::make_shared<Handler>(std::move(next));
    const std::scoped_lock lock(guard);
    std::swap(current, replacement);
    return *replacement;
  }

  // Calls outside the lock, so that a handler may call or replace itself.
  void Call(Args... args) const
  {
    std::shared_ptr<Handler> handler;
    {
      const std::scoped_lock lock(guard);
      handler = current;
    }
    if (*handler)
      (*handler)(args...);
  }

private:
  mutable std::mutex guard;
  std::shared_ptr<Handler> current;
};

} // namespace Orvex
