#include "engine/english.h"

#include <iterator>

namespace merida {
namespace {

struct Rendering {
  std::string_view japanese, english;
};

// Generated from translations/merida_en.ts at configure time.
constexpr Rendering kRenderings[] = {
#include "english_table.inc"
};

}  // namespace

std::string_view EnglishOf(std::string_view japanese) {
  for (const Rendering& r : kRenderings) {
    if (r.japanese == japanese) return r.english;
  }
  return {};
}

std::string WithEnglish(std::string_view text) {
  const Rendering* best = nullptr;
  for (const Rendering& r : kRenderings) {
    if (text.find(r.japanese) != std::string_view::npos && (!best || r.japanese.size() > best->japanese.size())) {
      best = &r;
    }
  }
  std::string out(text);
  if (best) out.append(" (").append(best->english).append(")");
  return out;
}

}  // namespace merida
