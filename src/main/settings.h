// MERIDA.DEF (display language) and MERIDA.DAT (user functions) in the current directory.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

#include "engine/atomic_file.h"
#include "engine/engine.h"

namespace merida {

// The language named by the settings file's first line, or `current` when it is absent,
// unknown or unreadable.
int16_t ReadDisplayLanguage(const std::filesystem::path& dir, int16_t current);
// Rewrites MERIDA.DEF.
FileResult WriteDisplayLanguage(const std::filesystem::path& dir, int16_t language);

struct StoreLoad {
  StoreLoadReport lines;
  std::string error;  // why MERIDA.DAT could not be read; empty when it was, or is missing
};
// Registers every function of MERIDA.DAT; a missing file loads nothing. Only the first line
// that cannot be registered is shown.
StoreLoad LoadUserFunctions(Engine& engine, const std::filesystem::path& dir);
// One line telling the user what a load left out beyond the one message shown: a read error,
// many lines that failed, lines too many to keep. Empty when there is nothing more to say.
std::string StoreLoadNotice(const StoreLoad& load);

// MERIDA.DAT held for a read-check-write: locked from construction to destruction, so that
// programs saving at once take turns and each sees what the one before it wrote.
class StoreSession {
 public:
  // `create`: an empty store is made to hold the lock when there is none (a rec); a del of a
  // store that is not there has nothing to wait for.
  explicit StoreSession(const std::filesystem::path& dir, bool create = true);
  // Makes the engine's functions those of the file as it is now, without messages.
  FileResult reload(Engine& engine);
  // Writes the engine's functions merged with what other programs saved since it loaded or
  // saved (the engine then holds the merged functions). Refused, with nothing written, when
  // the file cannot be read or held whole, or when a function added here cannot join those
  // saved there (the engine shows error 7 or 9).
  FileResult save(Engine& engine);

 private:
  FileResult read(Engine& into);

  std::filesystem::path target_;
  FileResult status_;  // why the file cannot be saved over, found before locking it
  std::optional<FileLock> lock_;
};

// A StoreSession's save.
FileResult SaveUserFunctions(Engine& engine, const std::filesystem::path& dir);

}  // namespace merida
