// The main window's Calc and Rec, shared by the desktop program and merida-cli.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "engine/engine.h"

namespace merida {

// Calc: compiles and evaluates the formula box text (a header is allowed and ignored).
// Returns the answer in plain form, or nullopt after an error, a fault or a cancel.
std::optional<std::string> Calc(Engine& engine, std::string_view formulaBoxText);

}  // namespace merida
