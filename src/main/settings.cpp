// Reading and writing the two files of the current directory. Both are read with a bound:
// only MERIDA.DEF's first line matters, and MERIDA.DAT holds at most 49 functions and the
// lines kept beside them.
#include "main/settings.h"

#include <cerrno>

#include "engine/file_input.h"
#include "engine/number_text.h"
#include "main/app_state.h"

namespace merida {
namespace {

constexpr size_t kSettingsBytes = 4096;
constexpr const char* kStoreName = "MERIDA.DAT";

// Loads the store file into `engine`: nothing when it is missing, its read error otherwise.
std::string LoadStoreFile(Engine& engine, const std::filesystem::path& path, StoreLoadReport& report) {
  std::string error;
  int code = 0;
  std::optional<ByteInput> in = ByteInput::Open(path, error, &code);
  if (!in) return code == ENOENT ? std::string() : error;
  std::string scratch;
  report = engine.LoadStore([&]() -> std::optional<StoreLine> {
    bool tooLong = false;
    std::optional<std::string_view> line = NextLine(*in, scratch, kMaxStoreLine, tooLong);
    if (tooLong) return StoreLine{{}, true};
    if (!line) return std::nullopt;
    return StoreLine{*line, false};
  });
  return in->error();
}

}  // namespace

int16_t ReadDisplayLanguage(const std::filesystem::path& dir, int16_t current) {
  SmallFile f = ReadSmallFile(dir / "MERIDA.DEF", kSettingsBytes);
  if (!f.error.empty() || f.missing) return current;
  std::string_view first(f.text);
  first = first.substr(0, first.find_first_of("\r\n"));
  first = Trim(first);
  if (first == "English") return kEnglish;
  if (first == "Japanese") return kJapanese;
  return current;
}

FileResult WriteDisplayLanguage(const std::filesystem::path& dir, int16_t language) {
  std::filesystem::path target;
  if (FileResult refused = SaveTarget(dir / "MERIDA.DEF", target); !refused) return refused;
  FileLock lock(target);
  return WriteFileAtomically(target, language == kJapanese ? "Japanese\r\n" : "English\r\n");
}

StoreLoad LoadUserFunctions(Engine& engine, const std::filesystem::path& dir) {
  RemoveStaleTemporaries(dir);
  StoreLoad load;
  load.error = LoadStoreFile(engine, dir / kStoreName, load.lines);
  return load;
}

std::string StoreLoadNotice(const StoreLoad& load) {
  std::string notice;
  if (!load.error.empty()) notice = std::string("cannot read ") + kStoreName + ": " + load.error;
  if (load.lines.failed > 1 || load.lines.dropped > 0) {
    if (!notice.empty()) notice += "; ";
    notice += std::string(kStoreName) + ": " + std::to_string(load.lines.failed) +
              (load.lines.failed == 1 ? " line" : " lines") + " could not be loaded (the first error is shown)";
    if (load.lines.dropped > 0) {
      notice += "; " + std::to_string(load.lines.dropped) + " of them cannot be kept, so " + kStoreName +
                " will not be saved over until it is shortened";
    }
  }
  return notice;
}

StoreSession::StoreSession(const std::filesystem::path& dir, bool create) {
  status_ = SaveTarget(dir / kStoreName, target_);
  if (status_) lock_.emplace(target_, create);
}

FileResult StoreSession::read(Engine& into) {
  StoreLoadReport report;
  std::string error = LoadStoreFile(into, target_, report);
  if (!error.empty()) return {"cannot read it: " + error};
  if (into.droppedStoreLines() > 0) {
    return {"it holds " + std::to_string(into.droppedStoreLines()) +
            " lines this program cannot keep; it is left as it is until it is shortened"};
  }
  return {};
}

FileResult StoreSession::reload(Engine& engine) {
  if (!status_) return status_;
  engine.ReplaceStore("");
  // Messages were shown when the program started; this is the same file, or a newer one.
  SilentHost silent;
  EngineHost& host = engine.host();
  engine.setHost(silent);
  FileResult r = read(engine);
  engine.setHost(host);
  return r;
}

FileResult StoreSession::save(Engine& engine) {
  if (!status_) return status_;
  SilentHost silent;
  Engine current(silent);
  if (FileResult r = read(current); !r) return r;
  StoreMerge merge = engine.MergedStore(current);
  if (merge.conflict) {
    engine.Fail(merge.conflict);
    return {merge.conflict == 9 ? "with the functions another program saved there, it would hold more than 49"
                                : "another program saved a function of the same name there"};
  }
  if (FileResult r = WriteFileAtomically(target_, merge.text); !r) return r;
  engine.StoreSaved(merge.text);
  return {};
}

FileResult SaveUserFunctions(Engine& engine, const std::filesystem::path& dir) { return StoreSession(dir).save(engine); }

}  // namespace merida
