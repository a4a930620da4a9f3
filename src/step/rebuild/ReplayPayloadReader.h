// Reads face payloads back from the JSON text that StepGeometryPayloadStore writes, and that replay
// scripts hand to their host.
#pragma once

#include "foundation/Export.h"
#include "step/replay/ReplayPayloads.h"

#include <string>
#include <vector>

namespace Orvex {

class ORVEX_API ReplayPayloadReader
{
public:
  // Takes the payload of a face, a shell or a solid, or an array of them, and adds their faces in
  // order; what has no "faceId" and no faces is passed over. Keys that are missing keep the
  // defaults of their records, unknown keys are ignored. Returns: false, with the reason in `error`
  // and `faces` as they were, for a text that is no JSON
  //   or where a value is of another type than its record's, an array of points for example.
  static bool ReadFaces(const std::string& json, std::vector<ReplayFacePayload>& faces,
                        std::string& error);
};

} // namespace Orvex
