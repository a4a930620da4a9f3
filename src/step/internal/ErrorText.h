// The one place where what a read throws becomes a text.
#pragma once

#include <Standard_Failure.hxx>

#include <QString>

#include <exception>
#include <optional>
#include <string>

namespace Orvex {

// Runs `work`.
// Returns: nothing if it came to its end; otherwise the text of what it threw, `unknown` for
// something that has none.
template <typename Work>
std::optional<QString> ErrorTextOf(Work&& work, const char* unknown)
{
  try {
    work();
    return std::nullopt;
  } catch (const Standard_Failure& failure) {
    return QString::fromLocal8Bit(failure.GetMessageString());
  } catch (const std::string& text) {
    return QString::fromStdString(text);
  } catch (const std::exception& error) {
    return QString::fromLocal8Bit(error.what());
  } catch (...) {
    return QString::fromLatin1(unknown);
  }
}

} // namespace Orvex
