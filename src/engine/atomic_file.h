// Replacing a file so that a crash leaves the old or the new contents, whole.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace merida {

// Writes a temporary file beside `path`, syncs it, renames it over `path`, syncs the directory.
bool WriteFileAtomically(const std::filesystem::path& path, std::string_view contents);

// Removes temporary files a killed write left in `dir`.
void RemoveStaleTemporaries(const std::filesystem::path& dir);

// The whole file, or nullopt when it cannot be read.
std::optional<std::string> ReadWholeFile(const std::filesystem::path& path);

}  // namespace merida
