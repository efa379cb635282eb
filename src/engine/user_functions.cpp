// User functions: registering, listing, deleting, and the store text.
#include <algorithm>
#include <string_view>

#include "engine/engine.h"
#include "engine/number_text.h"

namespace merida {
namespace {

std::vector<std::string> StoreLines(std::string_view text) {
  std::vector<std::string> lines;
  size_t pos = 0;
  while (pos < text.size()) {
    size_t end = text.find("\r\n", pos);
    if (end == std::string_view::npos) end = text.size();
    lines.emplace_back(text.substr(pos, end - pos));
    pos = end + 2;
  }
  return lines;
}

// Integrals are lifted before sums, so an integral written inside a sum's arguments is held
// there as integ(k): the sum's texts get the integral's arguments back.
std::string WithIntegralsWrittenOut(std::string text, const std::array<IntegralEntry, kMaxIntegrals + 1>& table,
                                    int count) {
  size_t from = 0;
  for (;;) {
    size_t at = text.find("integ(", from);
    if (at == std::string::npos) return text;
    size_t open = at + 5, close = text.find(')', open);
    if (close == std::string::npos) return text;
    std::string_view number(text.data() + open + 1, close - open - 1);
    auto k = ToInt16(ReadLenient(number));
    bool digits = !number.empty() && std::all_of(number.begin(), number.end(), [](char c) { return c >= '0' && c <= '9'; });
    if (!digits || !k || *k < 1 || *k > count) {
      from = open + 1;
      continue;
    }
    const IntegralEntry& e = table[*k];
    std::string arguments = e.Integrand + "," + e.LowerText + "," + e.UpperText + "," + e.FourthText;
    text.replace(open + 1, close - open - 1, arguments);
    from = open + 1 + arguments.size();
  }
}

}  // namespace

void Engine::ReinsertIntegralArguments(int slot) {
  TokenList& list = TokenTable[slot];
  for (const char* name : {"integ", "sgm"}) {
    for (int i = 1; i + 3 <= list.Count; ++i) {
      // The lifting found the name at the end of a word: "gsgm(" is a call of gsgm whose
      // arguments were lifted all the same, and they must be written back.
      if (!std::string_view(list.Text[i]).ends_with(name) || list.Text[i + 1] != "(" || list.Text[i + 3] != ")") {
        continue;
      }
      auto k = ToInt16(ReadLenient(list.Text[i + 2]));
      if (!IsNumeric(list.Text[i + 2]) || !k || *k < 1 || *k > IntegralCount) continue;
      IntegralEntry e = IntegralTable[*k];
      if (std::string_view(name) == "sgm") {
        for (std::string* text : {&e.Integrand, &e.LowerText, &e.UpperText, &e.FourthText}) {
          *text = WithIntegralsWrittenOut(std::move(*text), IntegralTable, IntegralCount);
        }
      }
      list.Text[i + 2] = e.Integrand;
      const std::string inserted[] = {",", e.LowerText, ",", e.UpperText, ",", e.FourthText};
      auto at = static_cast<std::ptrdiff_t>(i + 3);
      for (int j = 5; j >= 0; --j) {
        bool comma = inserted[j] == ",";
        list.Text.insert(list.Text.begin() + at, inserted[j]);
        list.Kind.insert(list.Kind.begin() + at, comma ? kCommaKind : kOperandKind);
        list.Precedence.insert(list.Precedence.begin() + at, comma ? 4 : 3);
      }
      list.Count = static_cast<int16_t>(list.Text.size() - 1);
      i += 9;
    }
  }
}

bool Engine::RegisterFormula(std::string_view formulaBoxText) {
  if (busy()) return false;
  BeginRun(-1, formulaBoxText);
  SplitFormula();
  if (ExpandIntegrals() < 0 || failed()) return false;
  if (ExpandSigmas() < 0 || failed()) return false;
  ParseHeader();
  if (failed()) return false;
  ErrorFlag = 0;
  TokenizeBody();
  if (failed()) return false;
  CompilePostfix(CurrentSlot);
  if (failed()) return false;
  if (!HeaderText.empty()) {
    CheckParameters();
  } else {
    CollectVariables();
    if (!failed() && FunctionTable[CurrentSlot].ParamCount > kMaxParameters) Fail(5);
  }
  if (failed()) return false;
  ReinsertIntegralArguments(CurrentSlot);
  if (CurrentSlot + 1 > kMaxWorkSlot) {
    Fail(9);
    return false;
  }
  storeLines_[CurrentSlot].clear();
  CurrentSlot += 1;
  InvalidateCallCache();
  return true;
}

std::string Engine::FunctionListLine(int k) const {
  if (k < 1 || k >= CurrentSlot) return {};
  const FunctionHeader& f = FunctionTable[k];
  std::string line = f.Name + "(";
  for (int j = 1; j <= f.ParamCount; ++j) {
    if (j > 1) line += ",";
    line += f.Param[j];
  }
  return line + ")=" + TokenTable[k].joined();
}

bool Engine::DeleteFunction(int k) {
  if (busy() || k < 1 || k >= CurrentSlot) return false;
  for (int s = k; s + 1 < CurrentSlot; ++s) {
    TokenTable[s] = std::move(TokenTable[s + 1]);
    FunctionTable[s] = std::move(FunctionTable[s + 1]);
    storeLines_[s] = std::move(storeLines_[s + 1]);
  }
  CurrentSlot -= 1;
  TokenTable[CurrentSlot].clear();
  FunctionTable[CurrentSlot] = FunctionHeader{};
  storeLines_[CurrentSlot].clear();
  for (KeptLine& line : keptLines_) {
    if (line.after >= k) line.after -= 1;
  }
  InvalidateCallCache();
  return true;
}

std::string Engine::StoreText() const {
  std::string out;
  size_t kept = 0;
  for (int k = 0; k < CurrentSlot; ++k) {
    if (k > 0 && !storeLines_[k].empty()) {
      out += storeLines_[k] + "\r\n";
    } else if (k > 0) {
      std::string line = FunctionListLine(k);
      std::replace(line.begin(), line.end(), ',', '@');  // the store never holds a comma
      out += line + "\r\n";
    }
    for (; kept < keptLines_.size() && keptLines_[kept].after <= k; ++kept) out += keptLines_[kept].text + "\r\n";
  }
  for (; kept < keptLines_.size(); ++kept) out += keptLines_[kept].text + "\r\n";
  return out;
}

StoreLoadReport Engine::LoadStore(const std::function<std::optional<StoreLine>()>& next) {
  StoreLoadReport report;
  if (busy()) return report;
  const MissingCall savedMissing = missingCall_;
  const bool savedMuted = muted_;
  // A body may call a function that a later line defines, or that was deleted: it registers,
  // and the call is error 4 while the function is missing.
  missingCall_ = MissingCall::kKept;
  // What cannot be registered stays in the store as the user wrote it, while there is room.
  auto failedLine = [&](std::string_view raw, bool held) {
    ++report.failed;
    muted_ = true;  // one message is enough; the caller reports how many lines failed
    if (held && keptLines_.size() < kMaxKeptLines) {
      keptLines_.push_back(KeptLine{userFunctionCount(), std::string(raw)});
    } else {
      ++report.dropped;
    }
  };
  while (std::optional<StoreLine> entry = next()) {
    // Once a line is dropped the store will not be saved over: the rest are only counted, so
    // that ten million lines of garbage cost a read, not ten million compilations.
    if (report.dropped > 0 && (entry->tooLong || !Trim(entry->text).empty())) {
      failedLine({}, false);
      continue;
    }
    if (entry->tooLong) {
      Fail(10);
      failedLine({}, false);
      continue;
    }
    std::string_view raw = entry->text;
    if (Trim(raw).empty()) continue;
    if (!CheckLength(raw)) {
      failedLine(raw, true);
      continue;
    }
    if (CurrentSlot >= kMaxWorkSlot) {
      Fail(9);
      failedLine(raw, true);
      continue;
    }
    std::string line(raw);
    std::replace(line.begin(), line.end(), '@', ',');
    BeginRun(-1, line);
    SplitFormula();
    // Integrals and sums are lifted as Rec does, so a stored body that holds them can be called.
    if (ExpandIntegrals() < 0 || failed() || ExpandSigmas() < 0 || failed()) {
      failedLine(raw, true);
      continue;
    }
    ParseHeader();
    if (!failed()) TokenizeBody();
    if (failed()) {
      failedLine(raw, true);
      continue;
    }
    ReinsertIntegralArguments(CurrentSlot);
    storeLines_[CurrentSlot] = std::string(raw);
    CurrentSlot += 1;
  }
  missingCall_ = savedMissing;
  muted_ = savedMuted;
  droppedLines_ += report.dropped;
  InvalidateCallCache();
  ErrorFlag = 0;
  BeginRun(-1, "");
  storeBase_ = StoreLines(StoreText());
  return report;
}

StoreLoadReport Engine::LoadStoreText(std::string_view text) {
  size_t pos = 0;
  return LoadStore([&]() -> std::optional<StoreLine> {
    if (pos >= text.size()) return std::nullopt;
    size_t end = text.find('\n', pos);
    if (end == std::string_view::npos) end = text.size();
    std::string_view raw = text.substr(pos, end - pos);
    pos = end + 1;
    if (!raw.empty() && raw.back() == '\r') raw.remove_suffix(1);
    if (raw.size() > kMaxStoreLine) return StoreLine{{}, true};
    return StoreLine{raw, false};
  });
}

void Engine::ReplaceStore(std::string_view text) {
  if (busy()) return;
  for (int k = 1; k < CurrentSlot; ++k) {
    TokenTable[k].clear();
    FunctionTable[k] = FunctionHeader{};
    storeLines_[k].clear();
  }
  CurrentSlot = 1;
  keptLines_.clear();
  droppedLines_ = 0;
  muted_ = true;
  LoadStoreText(text);
  muted_ = false;
}

void Engine::CopyStateFrom(const Engine& other) {
  TokenTable = other.TokenTable;
  FunctionTable = other.FunctionTable;
  CurrentSlot = other.CurrentSlot;
  storeLines_ = other.storeLines_;
  keptLines_ = other.keptLines_;
  droppedLines_ = other.droppedLines_;
  storeBase_ = other.storeBase_;
  randomState_ = other.randomState_;
  leanCode_ = other.leanCode_;
  boundCells_ = other.boundCells_;
  InvalidateCallCache();
}

StoreMerge Engine::MergedStore(const Engine& current) const {
  StoreMerge merge{StoreText(), 0};
  std::vector<std::string> theirs = StoreLines(current.StoreText());
  if (theirs == storeBase_) return merge;
  std::vector<std::string> mine = StoreLines(merge.text);
  auto has = [](const std::vector<std::string>& lines, const std::string& line) {
    return std::find(lines.begin(), lines.end(), line) != lines.end();
  };
  std::string kept;
  for (const std::string& line : theirs) {
    if (!has(storeBase_, line) || has(mine, line)) kept += line + "\r\n";
  }
  // Each function added here joins as a Rec would: a name already there, or a 50th function,
  // stops the merge with that error.
  struct FirstError : SilentHost {
    int code = 0;
    void showError(int c, const std::string&) override { code = code ? code : c; }
  } host;
  Engine merged(host);
  merged.ReplaceStore(kept);
  for (const std::string& line : mine) {
    if (has(storeBase_, line) || has(theirs, line)) continue;
    const int before = merged.userFunctionCount();
    host.code = 0;
    merged.LoadStoreText(line);
    if (merged.userFunctionCount() == before) {
      merge.conflict = host.code ? host.code : 7;
      return merge;
    }
  }
  merge.text = merged.StoreText();
  return merge;
}

void Engine::StoreSaved(std::string_view text) {
  if (busy()) return;
  if (text != StoreText()) ReplaceStore(text);
  storeBase_ = StoreLines(StoreText());
}

}  // namespace merida
