// What a feature leaves on its label, so that it is saved with the document: below child 9001, its
// type on child 1 and its parameters as compact JSON on child 2, both TDataStd_AsciiString. The
// source shape is left out; it can be had from the document.
#pragma once

#include "features/FeatureHistoryItem.h"

namespace Orvex {

// Changes the document; call inside a command to make it part of an undo step. A null label:
// nothing.
void PersistMetaToLabel(const TDF_Label& label, const std::string& type,
                        const FeatureParameters& parameters);

// Returns: false, with the outputs as they were, if there is no type. Parameters that are missing
//   or no JSON object leave `parameters` as it was.
bool RestoreMetaFromLabel(const TDF_Label& label, std::string& type, FeatureParameters& parameters);

} // namespace Orvex
