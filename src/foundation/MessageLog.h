// The message log: what the libraries have to say to the application that loads them.
//
// A library writes nothing uninvited. A message goes to one sink, which the host can replace; the
// sink in place at start shows warnings and errors on standard error and drops the rest.
#pragma once

#include "foundation/Export.h"

#include <functional>
#include <string>

namespace Orvex {

// Levels of MessageLog.
inline constexpr int kLogInformation = 0;
inline constexpr int kLogWarning = 1;

// Takes a level and the complete text, without a line end. May be called from any thread, also
// from several at once.
using MessageSink = std::function<void(int level, const std::string& text)>;

// Puts a sink in place and returns the one that was there. An empty sink drops every message.
ORVEX_FOUNDATION_API MessageSink SetMessageSink(MessageSink sink);

// The sink in place at start: level 1 and above on standard error as "orvex: TEXT".
ORVEX_FOUNDATION_API void DefaultMessageSink(int level, const std::string& text);

} // namespace Orvex

// Records a message. `format` and what follows are those of printf.
//
// Errors: whatever the sink throws passes through; a format that cannot be expanded is recorded
// as it stands.
ORVEX_FOUNDATION_API void MessageLog(int level, const char* format, ...)
  __attribute__((format(printf, 2, 3)));
