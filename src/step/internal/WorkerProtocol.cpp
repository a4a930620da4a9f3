#include "step/internal/WorkerProtocol.h"

#include <cstdlib>

namespace Orvex {

namespace {

constexpr std::size_t kArgumentCount = 6;

} // namespace

std::vector<std::string> ArgumentsFor(const WorkerRequest& request)
{
  return {ORVEX_VERSION,
          request.isFull ? "full" : "plain",
          request.collectReport ? "report" : "no-report",
          request.readObjectNames ? "names" : "no-names",
          std::to_string(request.nextNumber),
          request.file.toStdString()};
}

std::optional<WorkerRequest> RequestFrom(const std::vector<std::string>& arguments)
{
  if (arguments.size() != kArgumentCount || arguments[0] != ORVEX_VERSION)
    return std::nullopt;
  WorkerRequest request;
  request.isFull = arguments[1] == "full";
  request.collectReport = arguments[2] == "report";
  request.readObjectNames = arguments[3] == "names";
  request.nextNumber = std::atoi(arguments[4].c_str());
  request.file = QString::fromStdString(arguments[5]);
  return request;
}

} // namespace Orvex
