// Reads face payloads back from the JSON text that StepGeometryPayloadStore writes, and that replay
// scripts hand to their host.
#pragma once

#include "foundation/Export.h"
#include "step/replay/ReplayPayloads.h"

#include <TopoDS_Shape.hxx>

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

  // Gives the faces of one solid the digits that their text has lost: the text of payloads keeps
  // six, which is too few for small parts far from the origin. `exact` is the same solid as its
  // payload holds it in "exactBrep". Faces keep their ids; edges and vertices get others.
  // Returns: false, with `faces` as they were, if the solid has another number of faces, or other
  //   kinds of surfaces.
  static bool RestoreDigits(const TopoDS_Shape& exact, std::vector<ReplayFacePayload>& faces);
};

} // namespace Orvex
