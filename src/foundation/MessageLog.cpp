#include "foundation/MessageLog.h"

#include "foundation/ReplaceableHandler.h"

#include <cstdarg>
#include <cstdio>

namespace {

using SinkSlot = Orvex::ReplaceableHandler<int, const std::string&>;

SinkSlot& Sink()
{
  // Never destroyed: messages may still come while the process ends.
  static SinkSlot* slot = new SinkSlot(&Orvex::DefaultMessageSink);
  return *slot;
}

std::string Expand(const char* format, va_list args)
{
  va_list again;
  va_copy(again, args);
  const int length = std::vsnprintf(nullptr, 0, format, args);
  std::string text;
  if (length < 0) {
    text = format;
  } else {
    text.resize(static_cast<std::size_t>(length));
    std::vsnprintf(text.data(), text.size() + 1, format, again);
  }
  va_end(again);
  return text;
}

} // namespace

namespace Orvex {

MessageSink SetMessageSink(MessageSink sink)
{
  return Sink().Replace(std::move(sink));
}

void DefaultMessageSink(int level, const std::string& text)
{
  if (level >= kLogWarning)
    std::fprintf(stderr, "orvex: %s\n", text.c_str());
}

} // namespace Orvex

void MessageLog(int level, const char* format, ...)
{
  va_list args;
  va_start(args, format);
  const std::string text = Expand(format, args);
  va_end(args);
  Sink().Call(level, text);
}
