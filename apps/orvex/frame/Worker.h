// Work that may take the process down with it, done in a process of its own.
//
// The kernel's STEP parser can abort, overwrite its heap or run for ever on a broken file. Work
// given to a worker runs in a copy of this process; what comes back is one JSON object, or the
// news that the copy died, hung, did not end in time, or was interrupted. The copy is a fork
// without exec, so it costs a few milliseconds and the memory that the work itself takes.
//
// Requires: a caller that has no threads beside the one it calls on.
#pragma once

#include "frame/Failure.h"
#include "frame/Progress.h"

#include <QJsonObject>

#include <functional>

namespace Orvex::Cli {

struct WorkerReply
{
  enum class End { Replied, Died, Stalled, TimeLimit, Interrupted };
  End end = End::Died;
  QJsonObject value; // of a worker that replied
  int signal = 0;    // that ended a worker which died; 0: it went away without one
};

// Gets a sink for progress; must not throw.
using WorkerJob = std::function<QJsonObject(const ProgressSink&)>;

struct WorkerOptions
{
  double timeLimitSeconds = 0.0;  // for the whole job; 0: none
  double stallLimitSeconds = 0.0; // from one report of progress to the next; 0: none
  bool showChatter = false;       // let the worker write to standard error
};

// Runs the job and waits for it, showing its progress.
//
// Errors: a Failure when no process can be made.
WorkerReply RunInWorker(const WorkerJob& job, const WorkerOptions& options,
                        ProgressDisplay& progress);

// What the work was, for a line about its end.
struct WorkerTask
{
  ExitCode code; // of work that the kernel did not survive
  QString subject;
  const char* done;  // "read"
  const char* doing; // "reading"
  QString entity;    // what it was done with, and what is allowed; may be empty
  QString allowed;
};

// Requires: a worker that did not reply.
Failure FailureOfWorker(const WorkerReply& reply, const WorkerOptions& limits,
                        const WorkerTask& task);

// Runs a job that may throw, and gives its result.
//
// Errors: the Failure that the job threw or that stands for what it threw (the task's code), or
//   that it did not get to answer.
QJsonObject ResultOfWorker(const WorkerJob& job, const WorkerOptions& options,
                           ProgressDisplay& progress, const WorkerTask& task);

} // namespace Orvex::Cli
