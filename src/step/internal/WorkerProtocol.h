// What the reader and its worker process agree on.
//
// The worker is called with the fields of a WorkerRequest as arguments. It writes frames to the
// file descriptor kFrameDescriptor: a kind, the number of payload bytes as 64 bits, the payload.
// Progress frames hold the fraction as a double and then the stage; the last frame holds the
// outcome. Its other descriptors lead nowhere.
#pragma once

#include <QString>

#include <optional>
#include <string>
#include <vector>

namespace Orvex {

inline constexpr int kFrameDescriptor = 3;
inline constexpr char kProgressFrame = 'P';
inline constexpr char kOutcomeFrame = 'R';
inline constexpr int kExitBadRequest = 64;

struct WorkerRequest
{
  QString file;
  bool isFull = true; // names, colours and tree; otherwise the plain read
  bool collectReport = false;
  bool readObjectNames = false;
  int nextNumber = 0;            // for unnamed shapes of plain reads
  double timeLimitSeconds = 0.0; // kept by the caller's side
};

std::vector<std::string> ArgumentsFor(const WorkerRequest& request);

// Returns: nothing if the arguments come from another version of the library.
std::optional<WorkerRequest> RequestFrom(const std::vector<std::string>& arguments);

} // namespace Orvex
