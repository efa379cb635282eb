// Reading and writing the two files of the current directory.
#include "main/settings.h"

#include "engine/atomic_file.h"
#include "engine/number_text.h"
#include "main/app_state.h"

namespace merida {

int16_t ReadDisplayLanguage(const std::filesystem::path& dir, int16_t current) {
  auto text = ReadWholeFile(dir / "MERIDA.DEF");
  if (!text) return current;
  std::string_view first(*text);
  first = first.substr(0, first.find_first_of("\r\n"));
  first = Trim(first);
  if (first == "English") return kEnglish;
  if (first == "Japanese") return kJapanese;
  return current;
}

bool WriteDisplayLanguage(const std::filesystem::path& dir, int16_t language) {
  FileLock lock(dir / "MERIDA.DEF");
  return WriteFileAtomically(dir / "MERIDA.DEF", language == kJapanese ? "Japanese\r\n" : "English\r\n");
}

void LoadUserFunctions(Engine& engine, const std::filesystem::path& dir) {
  RemoveStaleTemporaries(dir);
  auto text = ReadWholeFile(dir / "MERIDA.DAT");
  if (!text) return;
  engine.LoadStoreText(*text);
}

bool SaveUserFunctions(Engine& engine, const std::filesystem::path& dir) {
  const std::filesystem::path path = dir / "MERIDA.DAT";
  FileLock lock(path);
  auto current = ReadWholeFile(path);
  std::string text = current ? engine.MergedStoreText(*current) : engine.StoreText();
  if (!WriteFileAtomically(path, text)) return false;
  engine.StoreSaved(text);
  return true;
}

}  // namespace merida
