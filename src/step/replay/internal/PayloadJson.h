// Payload records as JSON, keys in the order of their fields.
#pragma once

#include "step/replay/ReplayPayloads.h"
#include "step/replay/internal/JsonWriter.h"

namespace Orvex {

void WritePayload(JsonWriter& json, const ReplayCurvePayload& curve);
void WritePayload(JsonWriter& json, const ReplaySurfacePayload& surface);
void WritePayload(JsonWriter& json, const ReplayFaceTrimPayload& trim);

// The parts of a face as they stand, not as one record.
void WriteFacePayload(JsonWriter& json, const ReplaySurfacePayload& surface,
                      const ReplayFaceTrimPayload& trim);

} // namespace Orvex
