// The two streams of the process, kept apart: results on standard output, everything else on
// standard error.
//
// The kernel prints to standard output when it pleases. A Console therefore keeps standard output
// for itself under another descriptor, and leaves descriptor 1 pointing nowhere (or, when the user
// wants to hear it, at standard error). Whatever the kernel or a library prints can so never mix
// with a result.
#pragma once

#include <QByteArray>
#include <QString>

namespace Orvex::Cli {

class Console
{
public:
  // Takes standard output away from descriptor 1, before anything else runs; the destructor gives
  // it back.
  Console();
  ~Console();
  Console(const Console&) = delete;
  Console& operator=(const Console&) = delete;

  // Lets descriptor 1 go to standard error instead of nowhere.
  void ShowKernelChatter();

  // Gives standard output back, for a program that is to take this one's place.
  void GiveBack() const;

  // Writes to the real standard output, whole.
  // Errors: a Failure when it cannot be written.
  void WriteResult(const QByteArray& bytes);

  // Writes to standard error; failures are not reported, there is nowhere left to report to.
  void WriteMessage(const QByteArray& bytes);

  bool ResultIsTerminal() const;
  bool MessagesAreTerminal() const;

  // Colours are for terminals, and not for those who set NO_COLOR or have a dumb terminal.
  bool ColouredResult() const;
  bool ColouredMessages() const;

private:
  int resultDescriptor;
};

} // namespace Orvex::Cli
