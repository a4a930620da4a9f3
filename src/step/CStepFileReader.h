// Reads a STEP file into named, coloured shapes and the product tree.
//
//   CStepFileReader reader;
//   reader.SetInputFileName("gearbox.step");
//   if (!reader.ReadSynchronously())          // or start(), and wait() for the end
//     std::cerr << reader.GetLastError().toStdString() << '\n';
//   for (const StepShapeData& item : reader.GetImportShapeDataList())
//     Add(item.shape, item.name);
//
// Two ways through a file. The full one (the thread, ReadSynchronously, TryReadStepWithXCAF) reads
// names, colours, layers and materials, and fills the process's AssemblyTreeMgr, which it clears
// first. The plain one (TryReadStepsMapNew) knows shapes and the names of their entities only; the
// application calls it itself when the full one has failed. Neither leaves a document open, and
// neither depends on the locale of the process. Names are UTF-8.
//
// Failure is told by a flag and a text, never by an exception. A fault of the processor inside the
// kernel's translation (null dereference, endless recursion) ends the read with
// "XCAF reader crashed with SEH" and false; the process goes on. What the kernel held at that
// moment is not freed.
//
// Caveat: no handler can make good a kernel that has destroyed the heap, aborts the process or
// loops. For files from strangers set StepReadOptions::isolated: the read then runs in the program
// orvex-step-worker, which is looked for in the environment variable ORVEX_STEP_WORKER (a path),
// beside the library, beside the running program, and where it was installed. However the worker
// ends, the reader answers with false and a text that says how. Results are the same, geometry that
// shapes share included; placements of shapes may differ in the last bit. Lines of the debug log,
// but for those that ORVEX_DEBUG_LOG sends to a file, stay in the worker.
// Cost: about 60 ms to start the worker, and a tenth of the time of the read to hand over a large
// assembly. The worker takes the memory of the read, so that the caller's own peak is lower than
// for a read of its own.
//
// Caveat: the results may be looked at only after the thread's end. The product tree is one for
// the process, cleared at the begin of a full read and filled at its end: two full reads must not
// overlap, whether isolated or not.
//
// A reader that is destroyed while it runs waits for its thread. Call RequestCancel first if there
// is no time for that. A class derived from this one must call wait() in its own destructor.
#pragma once

#include "foundation/Export.h"
#include "step/StepReadOptions.h"
#include "step/StepReadReport.h"
#include "step/StepShapeData.h"
#include "step/replay/ReplayFeatureCandidate.h"
#include "step/replay/ReplayIRSummary.h"

#include <Standard_Handle.hxx>

#include <QString>
#include <QThread>

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

class Standard_Transient;
class TDocStd_Document;
class XSControl_TransferReader;

namespace Orvex {
class ReadControl;
class ReplayModel;
class WorkerRead;
enum class ReplayScope;
} // namespace Orvex

class ORVEX_API CStepFileReader : public QThread
{
public:
  CStepFileReader();
  ~CStepFileReader() override;

  // Sets the file of the next read and forgets a request to cancel.
  void SetInputFileName(QString fileName);

  // How the next reads are to run.
  // Requires: no read under way.
  void SetReadOptions(const Orvex::StepReadOptions& readOptions);

  // Waits for the thread if it runs, then reads on the calling thread, whatever the thread read.
  // Returns: ReadSucceeded().
  bool ReadSynchronously();

  // The full read as the thread does it, without emptying earlier results first and without the
  // guard against faults. Returns: true when at least one shape came out; otherwise GetLastError
  // tells why.
  bool TryReadStepWithXCAF();

  // The plain read. Fills the map of shapes only; adds to what is there, and a name that comes
  // twice keeps the later shape. Faults of the processor are caught here as well, with the text
  // "basic STEP reader crashed".
  // Returns: true when the reader then holds at least one shape. Otherwise the last error is set,
  // unless an earlier read left one, which then stays.
  bool TryReadStepsMapNew();

  // Whether the last read of the thread or of ReadSynchronously succeeded.
  bool ReadSucceeded() const;

  // Why the last read failed. The full read clears it at its start, the plain one does not.
  QString GetLastError() const;

  // Sets the last error from Latin-1 text; null stands for the empty text.
  void SetLastErrorFromLatin1(const char* text);

  // Name to shape. Of the full read: the same shapes as the list below.
  std::map<std::string, TopoDS_Shape> GetImportShapesMap() const;

  // The shapes of the full read with their colours, in the order of the file's tree.
  std::vector<StepShapeData>& GetImportShapeDataList();
  const std::vector<StepShapeData>& GetImportShapeDataList() const;

  // What the last read found and lost. Its `collected` is false unless the options asked for it.
  const Orvex::StepReadReport& GetReadReport() const;

  // Asks the read under way, or else the next one, to end soon: it then answers false, with
  // WasCancelled true and a text. Safe from any thread and from a signal handler.
  void RequestCancel();

  // Whether the last read ended because of RequestCancel, or because of its time limit.
  bool WasCancelled() const;
  bool TimeLimitReached() const;

  // --- Replay: what was read, as documents from which it can be rebuilt ---
  //
  // The model are the shapes of the list above, or without any those of the map in the order of its
  // keys. Summary, candidates and payloads are built at their first use and kept until the next
  // read of either kind. All texts are JSON in the form of step/replay/internal/JsonWriter.h, or
  // Python source. An id that the model does not have is no error: a plan without steps, a payload
  // of {} and no candidates. Not beside the thread, nor beside each other.
  // Cost: a solid's bundle holds all its geometry, once as the kernel's text and once by faces.

  Orvex::ReplayIRSummary BuildReplayIRSummary() const;
  std::string BuildReplayIRSummaryJson() const;
  std::vector<Orvex::ReplayFeatureCandidate> BuildReplayFeatureCandidates() const;
  std::string BuildReplayFeatureCandidatesJson() const;

  // Counts, ids of solids and shells, candidates by kind.
  std::string BuildReplayManifestJson() const;
  // Manifest, summary and all candidates.
  std::string BuildReplayBundleJson() const;
  std::string BuildReplayManifestPythonScript() const;

  std::string BuildReplayFacePlanJson(std::uint64_t id) const;
  std::string BuildReplayShellPlanJson(std::uint64_t id) const;
  std::string BuildReplaySolidPlanJson(std::uint64_t id) const;
  std::string BuildReplayFaceCommandContractJson(std::uint64_t id) const;
  std::string BuildReplayShellCommandContractJson(std::uint64_t id) const;
  std::string BuildReplaySolidCommandContractJson(std::uint64_t id) const;
  std::string BuildReplayFaceCommandRequestsJson(std::uint64_t id) const;
  std::string BuildReplayShellCommandRequestsJson(std::uint64_t id) const;
  std::string BuildReplaySolidCommandRequestsJson(std::uint64_t id) const;

  // Payload, candidates, plan, contract and requests of one entity.
  std::string BuildReplayFaceBundleJson(std::uint64_t id) const;
  std::string BuildReplayShellBundleJson(std::uint64_t id) const;
  std::string BuildReplaySolidBundleJson(std::uint64_t id) const;
  std::string BuildReplayFacePythonScript(std::uint64_t id) const;
  std::string BuildReplayShellPythonScript(std::uint64_t id) const;
  std::string BuildReplaySolidPythonScript(std::uint64_t id) const;

  // Exact geometry. A curve has the id of its edge, a surface and a trim that of their face.
  std::string ExpandReplayCurvePayloadJson(std::uint64_t id) const;
  std::string ExpandReplaySurfacePayloadJson(std::uint64_t id) const;
  std::string ExpandReplayFacePayloadJson(std::uint64_t id) const;
  std::string ExpandReplayFaceTrimPayloadJson(std::uint64_t id) const;
  std::string ExpandReplayShellPayloadJson(std::uint64_t id) const;
  std::string ExpandReplaySolidPayloadJson(std::uint64_t id) const;

protected:
  QString inputFileName;
  std::map<std::string, TopoDS_Shape> importShapes;

private:
  friend class OrvexStepReader;
  friend class Orvex::WorkerRead;

  void run() override;
  void readStepWithXCAF(const QString& file);
  void readStepsMapNew(QString file, bool flag);
  void ParseCompound(const opencascade::handle<XSControl_TransferReader>& transfer,
                     TopoDS_Shape& shape);
  bool HasImportedShapes() const;

  void BeginRead();
  void EndRead(bool failed);
  void ReadIsolated(bool isFull);
  void CollectFrom(const TDocStd_Document& document, const Orvex::ReadControl& control);
  void StorePlain(const opencascade::handle<XSControl_TransferReader>& transfer,
                  TopoDS_Shape& shape);
  std::string PlainNameOf(const opencascade::handle<Standard_Transient>& entity) const;
  static int& NextNumberForUnnamed();
  std::vector<TopoDS_Shape> CollectReplayRootShapes() const;
  Orvex::ReplayModel& Replay() const;

  QString baseName; // also the model name of what is derived from the read shapes
  std::vector<StepShapeData> shapeDataList;
  bool readObjectNames = false;
  bool readSucceeded = false;
  QString lastError;

  Orvex::StepReadOptions options;
  Orvex::StepReadReport report;
  std::atomic<bool> cancelRequested{false};
  bool wasCancelled = false;
  bool timeLimitReached = false;

  // Built of what was read last; null while nothing was asked for.
  mutable std::unique_ptr<Orvex::ReplayModel> replay;
};
