#include "foundation/UserMessage.h"

#include "foundation/ReplaceableHandler.h"

#include <cstdio>

namespace Orvex {

namespace {

using HandlerSlot = ReplaceableHandler<const std::string&, const std::string&>;

HandlerSlot& Handler()
{
  static HandlerSlot* slot = new HandlerSlot([](const std::string& title, const std::string& text) {
    std::fprintf(stderr, "%s: %s\n", title.c_str(), text.c_str());
  });
  return *slot;
}

} // namespace

UserMessageHandler SetUserMessageHandler(UserMessageHandler handler)
{
  return Handler().Replace(std::move(handler));
}

void ShowUserMessage(const std::string& title, const std::string& text)
{
  Handler().Call(title, text);
}

} // namespace Orvex
