#include "model/StepReading.h"

#include "frame/Failure.h"
#include "frame/Text.h"

namespace Orvex::Cli {

void ReadStep(CStepFileReader& reader, const std::string& path, const ProgressSink& progress)
{
  StepReadOptions options;
  options.progress = [&progress](const StepProgress& step) {
    progress({TextFromBytes(step.stage), step.fraction});
  };
  reader.SetInputFileName(TextFromBytes(path));
  reader.SetReadOptions(options);
  if (!reader.ReadSynchronously() && !reader.TryReadStepsMapNew())
    throw Failure{ExitCode::Unreadable, TextFromBytes(path), {}, reader.GetLastError(), {}};
}

} // namespace Orvex::Cli
