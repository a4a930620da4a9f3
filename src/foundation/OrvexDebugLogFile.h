// The debug log: lines that help to find out afterwards what the library did.
//
// Lines stay in memory, in a ring of the last kRingCapacity, and can be read back. Only when the
// environment variable ORVEX_DEBUG_LOG names a file (looked up once, at the first use) are they
// appended to it as well, each as
//
//   2026-01-31T12:34:56.789Z TEXT
//
// with the time in UTC. The file is written through a buffer, which is emptied when it is full,
// at Flush and at the end of the process. A file that cannot be written is given up silently.
#pragma once

#include "foundation/Export.h"

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

class ORVEX_FOUNDATION_API OrvexDebugLogFile
{
public:
  static constexpr std::size_t kRingCapacity = 4096;

  // The process's one log, never destroyed.
  static OrvexDebugLogFile* GetInstance();

  // A log of one's own, for tests. An empty path: memory only.
  explicit OrvexDebugLogFile(const std::string& path);
  ~OrvexDebugLogFile();
  OrvexDebugLogFile(const OrvexDebugLogFile&) = delete;
  OrvexDebugLogFile& operator=(const OrvexDebugLogFile&) = delete;

  // Appends a line. Safe from any thread; never throws.
  void dumpToFile(std::string line);

  // Whether lines about each single step of a pick are wanted, which cost more than the step. From
  // the start if the log goes to a file; else not.
  bool WantsDetail() const;
  void SetWantsDetail(bool isWanted);

  // The lines in the ring, oldest first.
  std::vector<std::string> Lines() const;

  // Empties the buffer into the file, if there is one.
  void Flush();

private:
  struct State;
  std::unique_ptr<State> state;
};
