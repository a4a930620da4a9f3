// A modelling feature that could have produced a part of a model.
#pragma once

#include "step/replay/ReplayIRSummary.h"

namespace Orvex {

struct ReplayFeatureCandidate
{
  // "analytic_plane_face", "primitive_box_solid_candidate", ...
  std::string kind;
  // 0 to 1.
  double confidence = 0;
  std::vector<ReplayId> faceIds;
  std::vector<ReplayId> surfaceIds;
  std::vector<ReplayId> shellIds;
  std::vector<ReplayId> solidIds;
  // Of a solid: the faces that carry its form, its planes, and the faces that are trimmed.
  std::vector<ReplayId> supportFaceIds;
  std::vector<ReplayId> capFaceIds;
  std::vector<ReplayId> trimmedFaceIds;
};

// One JSON array, keys in the order of the fields.
ORVEX_API std::string ToJson(const std::vector<ReplayFeatureCandidate>& candidates);

} // namespace Orvex
