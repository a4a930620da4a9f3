// The name that a STEP file gives to one of its entities.
#pragma once

#include <Standard_Transient.hxx>

#include <string>

namespace Orvex {

// Returns: UTF-8; empty for an entity of a kind that bears no name, or one without.
std::string ObjectNameOf(const opencascade::handle<Standard_Transient>& entity);

} // namespace Orvex
