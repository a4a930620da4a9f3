// orvex version: what stands behind a result, for a bug report.
#include "commands/Commands.h"

#include "foundation/LibraryVersion.h"

#include <OSD_Parallel.hxx>
#include <Standard_Version.hxx>

#include <thread>

namespace Orvex::Cli {

namespace {

QJsonObject VersionRecord()
{
  const bool ownThreads = OSD_Parallel::ToUseOcctThreads();
  return {{"schema", "orvex.version"},
          {"version", 1},
          {"library", LibraryVersion()},
          {"kernel", OCC_VERSION_COMPLETE},
          {"qt", qVersion()},
          {"threads", QJsonObject{{"hardware", int(std::thread::hardware_concurrency())},
                                  {"kernel", OSD_Parallel::NbLogicalProcessors()},
                                  {"kernelScheduler", ownThreads ? "own" : "TBB"}}}};
}

QString VersionText(const QJsonObject& record)
{
  const QJsonObject threads = record.value("threads").toObject();
  return QStringLiteral("OrvexCoreGeometry %1\n"
                        "OpenCASCADE       %2\n"
                        "Qt Core           %3\n"
                        "threads           %4 hardware, %5 in the kernel (%6)\n")
    .arg(record.value("library").toString(), record.value("kernel").toString(),
         record.value("qt").toString())
    .arg(threads.value("hardware").toInt())
    .arg(threads.value("kernel").toInt())
    .arg(threads.value("kernelScheduler").toString());
}

} // namespace

Action DeclareVersion(CLI::App&)
{
  return [](Session& session) {
    const QJsonObject record = VersionRecord();
    session.Options().json ? session.Result(record) : session.Result(VersionText(record));
    return ExitCode::Done;
  };
}

} // namespace Orvex::Cli
