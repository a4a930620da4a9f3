// Text on its way out: names in files are bytes that nobody has checked.
#pragma once

#include <QString>

#include <string>
#include <string_view>

namespace Orvex::Cli {

// The text of UTF-8 bytes. A byte that is none becomes U+FFFD, so that the result can always be
// written as UTF-8 again; a null pointer gives the empty text.
QString TextFromBytes(std::string_view bytes);
QString TextFromBytes(const char* bytes);

// The same text with everything escaped that could move a cursor, end a line or reverse the
// direction of what follows: "\n" and "\t" as they are written in C, the rest as "\u001b".
QString TerminalText(const QString& text);

// A number with the decimals given, trailing zeros and "-0" tidied away: 12.5, 200, 0.
QString Decimal(double value, int decimals = 3);

// A number of any size with twelve significant digits at most: 6000, 0.001, 1e+20.
QString Number(double value);

} // namespace Orvex::Cli
