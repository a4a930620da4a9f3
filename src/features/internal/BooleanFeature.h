// Booleans as features: the record of a boolean in the dependency graph, and its rebuild.
//
// The record holds the label keys of the operands and of the result, no shapes: a rebuild takes
// what stands on the operand labels at that time, computes with the kernel's default tolerance, and
// puts the outcome on the result label. The operands stay bit for bit as they are. A result that
// was removed does not come back, nor does it replace a shape of another type that has been given
// its label since.
#pragma once

#include "features/FeatureHistoryItem.h"

#include <TDF_Label.hxx>

#include <string>
#include <vector>

namespace Orvex {

// A kind whose rebuild is known: "Unite" and "BooleanFuse", "Subtract" and "BooleanCut", "Common"
// and "BooleanCommon".
bool IsBooleanKind(const std::string& type);

// Enters a boolean that was made of the inputs, in this order. Nothing happens for a null result or
// with fewer than two inputs. A null input counts as one, and makes every rebuild fail.
void RegisterBooleanFeature(const std::string& type, const TDF_Label& result,
                            const std::vector<TDF_Label>& inputs);

// The same from an entry of the history, of whatever type.
// Returns: false, and nothing is entered, for a null label or fewer than two inputs.
bool RegisterBooleanFeatureFromHistory(const FeatureHistoryItem& item);

// The boolean of the first operand with the second, of the outcome with the third, and so on.
// Returns: false if there is no document, the kind is unknown, there are fewer than two operands, a
// label or the shape on one is missing, or the kernel cannot do it. The result label is as it was
// then, and so it is when the kernel throws.
bool RebuildBoolean(const std::string& type, const std::vector<std::string>& inputKeys,
                    const std::string& resultKey);

} // namespace Orvex
