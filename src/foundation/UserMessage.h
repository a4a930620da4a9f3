// Text for the user: what a desktop application would show in a message box.
//
// The libraries have no user interface. Where an operation has something to tell the person in
// front of the screen, it goes through one handler, which the application replaces by its own
// dialog; the one in place at start writes "TITLE: TEXT" to standard error.
#pragma once

#include "foundation/Export.h"

#include <functional>
#include <string>

namespace Orvex {

// Takes the title and the text, both UTF-8. Runs on the thread of the operation, which goes on
// when the handler returns.
using UserMessageHandler = std::function<void(const std::string& title, const std::string& text)>;

// Puts a handler in place and returns the one that was there. An empty handler shows nothing.
ORVEX_FOUNDATION_API UserMessageHandler SetUserMessageHandler(UserMessageHandler handler);

// Shows a text to the user. Errors: whatever the handler throws passes through.
ORVEX_FOUNDATION_API void ShowUserMessage(const std::string& title, const std::string& text);

} // namespace Orvex
