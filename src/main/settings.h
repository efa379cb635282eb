// MERIDA.DEF (display language) and MERIDA.DAT (user functions) in the current directory.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

#include "engine/engine.h"

namespace merida {

// The language named by the settings file's first line, or `current` when absent or unknown.
int16_t ReadDisplayLanguage(const std::filesystem::path& dir, int16_t current);
// Rewrites MERIDA.DEF; false when it could not be written.
bool WriteDisplayLanguage(const std::filesystem::path& dir, int16_t language);

// Registers every function of MERIDA.DAT; a missing file loads nothing.
void LoadUserFunctions(Engine& engine, const std::filesystem::path& dir);
// Rewrites MERIDA.DAT atomically under a lock, merged with what other programs saved since
// the engine loaded or saved (the engine then holds the merged functions); false when it
// could not be written.
bool SaveUserFunctions(Engine& engine, const std::filesystem::path& dir);

}  // namespace merida
