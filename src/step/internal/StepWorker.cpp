#include "step/internal/StepWorker.h"

#include "foundation/OrvexDebugLogFile.h"
#include "step/CStepFileReader.h"
#include "step/internal/ReadOutcome.h"
#include "step/internal/WorkerProtocol.h"

#include <Message.hxx>
#include <Message_Messenger.hxx>
#include <Message_Printer.hxx>

#include <cerrno>
#include <csignal>
#include <sstream>
#include <string_view>

#include <sys/prctl.h>
#include <unistd.h>

namespace Orvex {

namespace {

void WriteAll(std::string_view bytes)
{
  while (!bytes.empty()) {
    const ssize_t written = write(kFrameDescriptor, bytes.data(), bytes.size());
    if (written > 0)
      bytes.remove_prefix(static_cast<std::size_t>(written));
    else if (errno != EINTR)
      _exit(EXIT_FAILURE);
  }
}

template <typename Value>
std::string_view BytesOf(const Value& value)
{
  return {reinterpret_cast<const char*>(&value), sizeof value};
}

void WriteHead(char kind, std::uint64_t size)
{
  WriteAll(BytesOf(kind));
  WriteAll(BytesOf(size));
}

void WriteProgress(const StepProgress& progress)
{
  WriteHead(kProgressFrame, sizeof progress.fraction + progress.stage.size());
  WriteAll(BytesOf(progress.fraction));
  WriteAll(progress.stage);
}

// The kernel tells why it cannot parse a file to its messenger only. In a process of its own that
// can be listened to.
class FailureListener : public Message_Printer
{
  DEFINE_STANDARD_RTTI_INLINE(FailureListener, Message_Printer)

public:
  std::vector<StepMessage> TakeMessages()
  {
    return std::move(messages);
  }

protected:
  void send(const TCollection_AsciiString& text, const Message_Gravity gravity) const override
  {
    if (gravity < Message_Alarm)
      return;
    StepMessage message;
    message.text = QString::fromUtf8(text.ToCString()).remove('*').trimmed().toStdString();
    message.isFailure = true;
    messages.push_back(std::move(message));
  }

private:
  mutable std::vector<StepMessage> messages;
};

} // namespace

// Sets what only a read of the full kind would set, and takes what the reader holds.
class WorkerRead
{
public:
  explicit WorkerRead(const WorkerRequest& workerRequest) : request(workerRequest)
  {
    StepReadOptions options;
    options.collectReport = request.collectReport;
    options.progress = WriteProgress;
    reader.SetReadOptions(options);
    reader.SetInputFileName(request.file);
  }

  ReadOutcome Run()
  {
    ReadOutcome outcome;
    if (request.isFull) {
      outcome.succeeded = reader.ReadSynchronously();
    } else {
      reader.readObjectNames = request.readObjectNames;
      CStepFileReader::NextNumberForUnnamed() = request.nextNumber;
      outcome.succeeded = reader.TryReadStepsMapNew();
    }
    outcome.lastError = reader.lastError;
    outcome.importShapes = std::move(reader.importShapes);
    outcome.shapeDataList = std::move(reader.shapeDataList);
    outcome.roots = AssemblyTreeMgr::GetInstance().GetRoots();
    outcome.definitions = AssemblyTreeMgr::GetInstance().GetDefinitions();
    outcome.report = std::move(reader.report);
    outcome.nextNumber = CStepFileReader::NextNumberForUnnamed();
    return outcome;
  }

private:
  const WorkerRequest& request;
  CStepFileReader reader;
};

int RunStepWorker(int argumentCount, char** arguments)
{
  prctl(PR_SET_PDEATHSIG, SIGKILL); // no one is left to read for
  const auto request =
    RequestFrom(std::vector<std::string>(arguments + 1, arguments + argumentCount));
  if (!request)
    return kExitBadRequest;
  const Handle(FailureListener) listener = new FailureListener;
  Message::DefaultMessenger()->AddPrinter(listener);
  WorkerRead read(*request);
  ReadOutcome outcome = read.Run();
  if (request->collectReport && !outcome.report.collected)
    outcome.report.messages = listener->TakeMessages();
  std::ostringstream stream;
  stream.imbue(std::locale::classic());
  WriteOutcome(outcome, stream);
  const std::string bytes = std::move(stream).str();
  OrvexDebugLogFile::GetInstance()->Flush(); // whoever has the outcome ends this process
  WriteHead(kOutcomeFrame, bytes.size());
  WriteAll(bytes);
  // After a fault the kernel's own clean-up may go down, and there is nothing left to clean up.
  _exit(EXIT_SUCCESS);
}

} // namespace Orvex
