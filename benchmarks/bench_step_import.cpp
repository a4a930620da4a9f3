// Reading STEP files against the bare kernel reader: same file, same modes, same run, one after the
// other in each round. Prints the processor time of each way as a multiple of the kernel's (the
// best of all rounds each) and its peak memory as a multiple of the kernel's, each peak measured in
// a process of its own. Needs the folder of real files in ORVEX_TEST_DATA.

#include "step/CStepFileReader.h"

#include <Interface_Static.hxx>
#include <STEPCAFControl_Controller.hxx>
#include <STEPCAFControl_Reader.hxx>
#include <TDocStd_Document.hxx>
#include <XCAFApp_Application.hxx>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include <sys/resource.h>

namespace {

constexpr const char* kFiles[] = {"nested-bracket-assembly-ap214.step", "freeform-foot-cover.step",
                                  "distribution-board-assembly.step",
                                  "robot-arm-follower-assembly.step"};

void ReadBare(const std::string& file)
{
  STEPCAFControl_Controller::Init();
  Interface_Static::SetIVal("read.stepcaf.subshapes.name", 1);
  STEPCAFControl_Reader reader;
  reader.SetColorMode(true);
  reader.SetNameMode(true);
  reader.SetLayerMode(true);
  reader.SetPropsMode(true);
  reader.SetMatMode(true);
  Handle(TDocStd_Document) document;
  const auto application = XCAFApp_Application::GetApplication();
  application->NewDocument("MDTV-XCAF", document);
  if (reader.ReadFile(file.c_str()) != IFSelect_RetDone || !reader.Transfer(document))
    std::abort();
  application->Close(document);
}

void ReadWith(const std::string& file, bool collectReport, bool isolated)
{
  Orvex::StepReadOptions options;
  options.collectReport = collectReport;
  options.isolated = isolated;
  CStepFileReader reader;
  reader.SetReadOptions(options);
  reader.SetInputFileName(QString::fromStdString(file));
  if (!reader.ReadSynchronously())
    std::abort();
}

struct Way
{
  const char* name;
  void (*read)(const std::string& file);
};

// The first one is the floor.
constexpr Way kWays[] = {
  {"kernel", ReadBare},
  {"reader", [](const std::string& file) { ReadWith(file, false, false); }},
  {"report", [](const std::string& file) { ReadWith(file, true, false); }},
  {"isolated", [](const std::string& file) { ReadWith(file, false, true); }},
};
constexpr std::size_t kWayCount = std::size(kWays);

double CpuSeconds(int who)
{
  rusage usage{};
  getrusage(who, &usage);
  const auto seconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) + 1e-6 * static_cast<double>(time.tv_usec);
  };
  return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

// Processor time, a worker's included: steadier than the clock on a machine with other work.
double SecondsOf(const Way& way, const std::string& file)
{
  const double before = CpuSeconds(RUSAGE_SELF) + CpuSeconds(RUSAGE_CHILDREN);
  way.read(file);
  return CpuSeconds(RUSAGE_SELF) + CpuSeconds(RUSAGE_CHILDREN) - before;
}

// Of this process, in megabytes. A process that another one starts inherits that one's peak in
// getrusage, but not here.
double PeakMegabytes()
{
  std::ifstream status("/proc/self/status");
  for (std::string word; status >> word;)
    if (word == "VmHWM:" && status >> word)
      return std::stod(word) / 1024.0;
  return 0.0;
}

double PeakInOwnProcess(const Way& way, const std::string& file)
{
  char program[4096] = {};
  std::ifstream("/proc/self/cmdline").getline(program, sizeof program, '\0');
  const std::string command =
    std::string(program).append(" --peak ").append(way.name).append(" '").append(file).append("'");
  std::FILE* output = popen(command.c_str(), "r");
  double peak = 0.0;
  if (output == nullptr || std::fscanf(output, "%lf", &peak) != 1)
    std::abort();
  pclose(output);
  return peak;
}

void ImportBench(benchmark::State& state, const std::string& file)
{
  std::array<std::vector<double>, kWayCount> seconds;
  for (const Way& way : kWays)
    way.read(file);
  for (auto _ : state) {
    for (std::size_t i = 0; i < kWayCount; ++i)
      seconds[i].push_back(SecondsOf(kWays[i], file));
    state.SetIterationTime(seconds[1].back());
  }
  const double kernelSeconds = std::ranges::min(seconds[0]);
  const double kernelPeak = PeakInOwnProcess(kWays[0], file);
  state.counters["kernel_ms"] = 1000.0 * kernelSeconds;
  state.counters["kernel_MB"] = kernelPeak;
  for (std::size_t i = 1; i < kWayCount; ++i) {
    const std::string name = kWays[i].name;
    state.counters[name + "_time"] = std::ranges::min(seconds[i]) / kernelSeconds;
    state.counters[name + "_peak"] = PeakInOwnProcess(kWays[i], file) / kernelPeak;
  }
}

int PrintPeak(const std::string& wayName, const std::string& file)
{
  for (const Way& way : kWays)
    if (way.name == wayName)
      way.read(file);
  std::printf("%f\n", PeakMegabytes());
  return EXIT_SUCCESS;
}

void RegisterAll(const std::string& folder)
{
  for (const char* name : kFiles) {
    const std::string file = std::string(folder).append("/").append(name);
    benchmark::RegisterBenchmark(name, ImportBench, file)
      ->UseManualTime()
      ->Unit(benchmark::kMillisecond)
      ->Iterations(15);
  }
}

} // namespace

int main(int argumentCount, char** arguments)
{
  if (argumentCount == 4 && std::string(arguments[1]) == "--peak")
    return PrintPeak(arguments[2], arguments[3]);
  benchmark::Initialize(&argumentCount, arguments);
  if (const char* folder = std::getenv("ORVEX_TEST_DATA"))
    RegisterAll(folder);
  else
    std::puts("ORVEX_TEST_DATA does not name the folder of real STEP files: nothing to measure");
  benchmark::RunSpecifiedBenchmarks();
  return EXIT_SUCCESS;
}
