// Formula compilation: header, integral lifting, tokens, checks, postfix program.
#include <algorithm>
#include <cctype>

#include "engine/engine.h"
#include "engine/error_table.h"
#include "engine/evaluator.h"
#include "engine/number_text.h"

namespace merida {
namespace {

constexpr std::string_view kOneArgumentNames[] = {
    "sin",  "cos",  "tan",  "log",   "ln",  "exp",    "sqr",      "abs",   "sinh",  "cosh", "tanh",
    "asin", "acos", "atan", "integ", "sgm", "random", "timestep", "erf",   "Gamma", "expand"};
constexpr std::string_view kTwoArgumentNames[] = {"comb", "perm", "Jn", "Yn", "Pn"};

bool IsNameChar(unsigned char c) {
  return std::isdigit(c) || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '[' || c == '{' ||
         c == '_' || c == '~';
}

bool EqualsIgnoringCase(std::string_view a, std::string_view b) {
  return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
           return std::tolower(static_cast<unsigned char>(x)) == std::tolower(static_cast<unsigned char>(y));
         });
}

}  // namespace

bool IsVariableText(std::string_view t) { return t != "PI" && t != "E" && !IsNumeric(t); }

void TokenList::clear() {
  Text.assign(1, std::string());
  Kind.assign(1, 0);
  Precedence.assign(1, 0);
  Count = 0;
}

void TokenList::push(std::string text, int16_t kind, int16_t precedence) {
  Text.push_back(std::move(text));
  Kind.push_back(kind);
  Precedence.push_back(precedence);
  Count = static_cast<int16_t>(Text.size() - 1);
}

std::string TokenList::joined() const {
  std::string s;
  for (int i = 1; i <= Count; ++i) s += Text[i];
  return s;
}

Engine::Engine(EngineHost& host) : host_(&host) { ResetEngine(); }

Engine::~Engine() = default;

void Engine::ResetEngine() {
  CurrentSlot = 1;
  ErrorFlag = 0;
  BindToX = -1;
  IntegralCount = 0;
  for (auto& e : IntegralTable) e.State = -1;
  XValue = 0;
  IntegralBinding = -1;
  StopRequested = 0;
  UnboundPolicy = -1;
  FaultFlag = false;
  CancelFlag = false;
  for (auto& t : TokenTable) t.clear();
  for (auto& f : FunctionTable) f = FunctionHeader{};
  keptLines_.clear();
  droppedLines_ = 0;
  storeBase_.clear();
  for (auto& line : storeLines_) line.clear();
  InvalidateCallCache();
}

void Engine::BeginRun(int16_t bindToX, std::string_view formulaBoxText) {
  ErrorFlag = 0;
  BindToX = bindToX;
  StopRequested = 0;
  IntegralBinding = -1;
  UnboundPolicy = -1;
  FaultFlag = false;
  CancelFlag = false;
  for (auto& e : IntegralTable) e.State = -1;
  FormulaText = std::string(TrimLeft(formulaBoxText));
}

void Engine::ShowError(int code) {
  if (muted_) return;
  if (const char* m = ErrorMessage(code)) currentMessage_ = m;
  host_->showError(code, currentMessage_);
}

void Engine::Fail(int code) {
  ShowError(code);
  ErrorFlag = 1;
}

// A text past the limit is refused before any step walks it.
bool Engine::CheckLength(std::string_view text) {
  if (text.size() <= static_cast<size_t>(kMaxFormulaLength)) return true;
  Fail(10);
  return false;
}

void Engine::SplitFormula() {
  if (!CheckLength(FormulaText)) {
    HeaderText.clear();
    BodyText.clear();
    return;
  }
  size_t p = FormulaText.find('=');
  if (p == std::string::npos) {
    HeaderText.clear();
    BodyText = FormulaText;
  } else {
    HeaderText = FormulaText.substr(0, p);
    BodyText = FormulaText.substr(p + 1);
  }
}

int16_t Engine::ExpandIntegrals() {
  IntegralCount = 0;
  return ExpandCalls("integ");
}

int16_t Engine::ExpandSigmas() { return ExpandCalls("sgm"); }

// Lifts every name(f,a,b,n) of the body into the integral table, leaving name(k).
int16_t Engine::ExpandCalls(std::string_view name) {
  if (!CheckLength(BodyText)) return -1;
  size_t from = 0;
  for (;;) {
    size_t at = BodyText.find(name, from);
    if (at == std::string::npos) return 0;
    size_t open = at + name.size();
    if (open >= BodyText.size() || BodyText[open] != '(') {
      Fail(22);
      return -1;
    }
    int depth = 0;
    size_t close = std::string::npos;
    for (size_t i = open; i < BodyText.size(); ++i) {
      if (BodyText[i] == '(') ++depth;
      else if (BodyText[i] == ')' && --depth == 0) {
        close = i;
        break;
      }
    }
    if (close == std::string::npos) {
      Fail(22);
      return -1;
    }
    std::string_view args(BodyText.data() + open, close - open + 1);
    if (!CheckArgumentCount(args, 4)) return -1;
    if (IntegralCount >= kMaxIntegrals) {
      Fail(25);
      return -1;
    }
    IntegralCount += 1;
    size_t commas[3];
    int found = 0;
    for (size_t i = close; i-- > open + 1 && found < 3;) {
      if (BodyText[i] == ',') commas[found++] = i;
    }
    if (found < 3) {
      Fail(26);
      return -1;
    }
    IntegralEntry& e = IntegralTable[IntegralCount];
    e.State = -1;  // a new entry, whatever an earlier formula left in its place
    e.FourthText = BodyText.substr(commas[0] + 1, close - commas[0] - 1);
    e.UpperText = BodyText.substr(commas[1] + 1, commas[0] - commas[1] - 1);
    e.LowerText = BodyText.substr(commas[2] + 1, commas[1] - commas[2] - 1);
    e.Integrand = BodyText.substr(open + 1, commas[2] - open - 1);
    BodyText = BodyText.substr(0, open + 1) + std::to_string(IntegralCount) + BodyText.substr(close);
    from = open + 1;
    if (from >= BodyText.size()) return 1;
  }
}

void Engine::ParseHeader() {
  FunctionHeader& f = FunctionTable[CurrentSlot];
  f.ParamCount = 0;
  f.Param.assign(1, std::string());
  if (!CheckLength(HeaderText)) return;
  if (HeaderText.empty()) {
    for (int k = 1; k <= 100; ++k) {
      std::string candidate = "f_" + std::to_string(k);
      bool used = false;
      for (int s = 1; s < CurrentSlot; ++s) used = used || FunctionTable[s].Name == candidate;
      if (!used) {
        f.Name = candidate;
        break;
      }
    }
    return;
  }
  size_t s = 0;
  int count = 0;
  bool sawOpen = false;
  for (size_t i = 0; i < HeaderText.size(); ++i) {
    char c = HeaderText[i];
    if (c == '(' && !sawOpen) {
      sawOpen = true;
      f.Name = std::string(Trim(std::string_view(HeaderText).substr(s, i - s)));
      s = i + 1;
      CheckNameUnused(f.Name);
      if (ErrorFlag == 1) return;
      if (!CheckName(f.Name)) return;
    } else if (c == ',' || (c == ')' && (s < i || count > 0))) {
      // An empty or blank parameter would change the signature at the next save.
      std::string param(Trim(std::string_view(HeaderText).substr(s, i - s)));
      if (param.empty()) {
        Fail(21);
        return;
      }
      if (IsNumeric(param)) {
        Fail(1);
        return;
      }
      ++count;
      f.Param.push_back(param);
      s = i + 1;
    }
  }
  if (count > kMaxParameters) {
    Fail(5);
    return;
  }
  f.ParamCount = static_cast<int16_t>(count);
  if (!sawOpen) {
    f.Name = std::string(Trim(HeaderText));
    CheckNameUnused(f.Name);
    if (ErrorFlag == 1) return;
    CheckName(f.Name);
  }
}

void Engine::CheckNameUnused(std::string_view name) {
  if (BindToX == 1) return;
  for (int s = 1; s < CurrentSlot; ++s) {
    if (FunctionTable[s].Name == name) {
      Fail(7);
      return;
    }
  }
}

bool Engine::CheckName(std::string_view word) {
  if (IsNumeric(word)) return true;
  bool ok = !word.empty() && !std::isdigit(static_cast<unsigned char>(word[0])) &&
            std::all_of(word.begin(), word.end(), [](char c) { return IsNameChar(static_cast<unsigned char>(c)); });
  if (!ok) Fail(21);
  return ok;
}

int16_t Engine::ClassifyWord(std::string_view word) const {
  for (auto n : kOneArgumentNames) {
    if (n == word) return kUnaryKind;
  }
  for (auto n : kTwoArgumentNames) {
    if (n == word) return kBinaryKind;
  }
  for (int s = 1; s < CurrentSlot; ++s) {
    if (FunctionTable[s].Name == word) return static_cast<int16_t>(FunctionTable[s].ParamCount + 4);
  }
  return kOperandKind;
}

namespace {

int ArgumentCount(std::string_view text) {
  int depth = 0, args = 0;
  for (char c : text) {
    if (c == '(') {
      ++depth;
    } else if (c == ',' && depth == 1) {
      ++args;
    } else if (c == ')') {
      if (depth == 1) {
        ++args;
        break;
      }
      --depth;
    }
  }
  return args;
}

}  // namespace

bool Engine::CheckArgumentCount(std::string_view text, int n) {
  if (ArgumentCount(text) != n) {
    Fail(8);
    return false;
  }
  return true;
}

void Engine::TokenizeBody() {
  ErrorFlag = 0;
  TokenList& list = TokenTable[CurrentSlot];
  list.clear();
  if (!CheckLength(BodyText)) return;
  std::string body = BodyText;
  if (!body.empty() && body[0] == '-') body.insert(0, 1, '0');
  else if (!body.empty() && body[0] == '+') body.erase(0, 1);

  auto emit = [&](std::string text, int16_t kind, int16_t precedence) {
    if (list.Count >= kMaxTokens) {
      Fail(10);
      return false;
    }
    list.push(std::move(text), kind, precedence);
    return true;
  };
  // Emits the word body[s, i); i is the position of the character that ended it.
  auto emitWord = [&](std::string word, size_t i) {
    int16_t kind = ClassifyWord(word);
    if (!CheckName(word)) return false;
    if (kind >= 5 && !CheckArgumentCount(std::string_view(body).substr(i), kind - 4)) return false;
    // A name followed by "(" that is no function.
    if (kind == kOperandKind && i < body.size() && body[i] == '(' && !IsNumeric(word)) {
      if (missingCall_ != MissingCall::kKept) {
        Fail(missingCall_ == MissingCall::kNotFound ? 4 : 22);
        return false;
      }
      int args = ArgumentCount(std::string_view(body).substr(i));
      if (args > kMaxParameters) {
        Fail(8);
        return false;
      }
      kind = static_cast<int16_t>(args + 4);
    }
    // A function without parameters has kind 4 like the comma; its name binds as any function.
    int16_t precedence = (kind == 1 || kind == 2 || kind >= 4) ? 1 : kind;
    return emit(std::move(word), kind, precedence);
  };

  size_t s = 0;
  for (size_t i = 0; i < body.size(); ++i) {
    if (list.Count >= kMaxTokens) {
      Fail(10);
      return;
    }
    char c = body[i];
    if (c == '+' || c == '-') {
      // A signed number right after "^" is the exponent itself: 2^-2 is 2^(-2).
      if (s == i && list.Count > 0 && list.Text[list.Count] == "^") {
        size_t j = body.find_first_of("+-*/^!(),", i + 1);
        if (j == std::string::npos) j = body.size();
        std::string_view number = Trim(std::string_view(body).substr(i + 1, j - i - 1));
        if (IsNumeric(number) && number[0] != '+' && number[0] != '-') {
          std::string exponent(1, c);
          exponent.append(number.data(), number.size());
          if (!emit(std::move(exponent), kOperandKind, 3)) return;
          i = j - 1;
          s = j;
          continue;
        }
      }
      if (s < i) {
        if (!emitWord(body.substr(s, i - s), i)) return;
      } else if (list.Count > 0) {
        std::string_view prev = TrimLeft(list.Text[list.Count]);
        if ((prev == "," || prev == "(") && !emit("0", kOperandKind, 3)) return;
      }
      if (!emit(std::string(1, c), kBinaryKind, 3)) return;
      s = i + 1;
    } else if (c == '*' || c == '/' || c == '^' || c == '!') {
      if (s < i && !emitWord(body.substr(s, i - s), i)) return;
      if (c == '!') {
        if (!emit("!", kUnaryKind, 1)) return;
      } else if (!emit(std::string(1, c), kBinaryKind, c == '^' ? 1 : 2)) {
        return;
      }
      s = i + 1;
    } else if (c == '(' || c == ')' || c == ',') {
      std::string word(TrimLeft(std::string_view(body).substr(s, i - s)));
      if (!word.empty() && !emitWord(word, i)) return;
      if (!emit(std::string(1, c), c == ',' ? kCommaKind : kParenKind, 4)) return;
      s = i + 1;
    }
  }
  // The last word is not name-checked; blanks after it are not part of it.
  std::string last(Trim(std::string_view(body).substr(std::min(s, body.size()))));
  if (!last.empty() && !emit(std::move(last), kOperandKind, 4)) return;
  CheckSyntax();
}

void Engine::CheckSyntax() {
  const TokenList& list = TokenTable[CurrentSlot];
  int operators = 0, operands = 0, open = 0, close = 0;
  for (int i = 1; i <= list.Count; ++i) {
    int16_t k = list.Kind[i];
    if (k == kBinaryKind) ++operators;
    else if (k >= 5 || (k == kCommaKind && list.Text[i] != ",")) operators += k - 5;
    else if (k == kOperandKind) ++operands;
    if (list.Text[i] == "(") ++open;
    if (list.Text[i] == ")") ++close;
  }
  if (operators + 1 != operands) {
    Fail(22);
    return;
  }
  if (open != close) Fail(23);
}

void Engine::SetCell(int i, std::string text, int16_t kind, int16_t precedence) {
  ProgramCell& c = Program.cells_[i];
  c.Value = std::move(text);
  c.Kind = kind;
  c.Precedence = precedence;
  c.Link = 0;
}

int16_t Engine::CompilePostfix(int slot) {
  const TokenList& list = TokenTable[slot];
  int stack[kMaxTokens + 1];
  int top = 0;
  int n = 0;
  auto out = [&](int t) { SetCell(++n, list.Text[t], list.Kind[t], list.Precedence[t]); };
  auto isOpen = [&](int t) { return list.Text[t] == "("; };
  for (int t = 1; t <= list.Count; ++t) {
    int16_t kind = list.Kind[t];
    if (kind == kOperandKind) {
      out(t);
    } else if (kind == kParenKind && isOpen(t)) {
      stack[++top] = t;
    } else if (kind == kParenKind) {
      while (top > 0 && !isOpen(stack[top])) out(stack[top--]);
      if (top == 0) {  // ")" before its "("
        Fail(23);
        Touch();
        return 0;
      }
      --top;
    } else if (kind == kCommaKind && list.Text[t] == ",") {
      while (top > 0 && !isOpen(stack[top])) out(stack[top--]);
    } else if (kind == kBinaryKind || list.Text[t] == "!") {
      while (top > 0 && !isOpen(stack[top]) && list.Precedence[stack[top]] <= list.Precedence[t]) {
        out(stack[top--]);
      }
      stack[++top] = t;
    } else {
      stack[++top] = t;  // function names wait for their parenthesised argument
    }
  }
  while (top > 0) {
    if (isOpen(stack[top])) {
      Fail(23);
      Touch();
      return 0;
    }
    out(stack[top--]);
  }
  Touch();
  // The checks above count operators and operands but not their order; a program that would
  // take more values than the stack holds is a syntax error here, never at evaluation.
  int depth = 0;
  for (int i = 1; i <= n; ++i) {
    int16_t kind = Program.cells_[i].Kind;
    int take = kind == kOperandKind ? 0 : kind == kUnaryKind ? 1 : kind == kBinaryKind ? 2 : kind >= 4 ? kind - 4 : 0;
    int give = kind != kParenKind ? 1 : 0;  // commas never reach the output
    if (depth < take) {
      Fail(22);
      return 0;
    }
    depth += give - take;
  }
  if (n > 0 && depth != 1) {
    Fail(22);
    return 0;
  }
  return static_cast<int16_t>(n);
}

void Engine::CheckParameters() {
  const TokenList& list = TokenTable[CurrentSlot];
  FunctionHeader& f = FunctionTable[CurrentSlot];
  std::vector<bool> marked(list.Count + 1, false);
  for (int i = 1; i <= list.Count; ++i) {
    marked[i] = list.Kind[i] == kOperandKind && IsVariableText(list.Text[i]);
  }
  for (int j = 1; j <= f.ParamCount; ++j) {
    const std::string& p = f.Param[j];
    bool found = false;
    for (int i = 1; i <= list.Count; ++i) {
      if (marked[i] && EqualsIgnoringCase(list.Text[i], p)) {
        marked[i] = false;
        found = true;
      }
    }
    for (int k = 1; k <= IntegralCount && !found; ++k) {
      const IntegralEntry& e = IntegralTable[k];
      found = EqualsIgnoringCase(e.LowerText, p) || EqualsIgnoringCase(e.UpperText, p) ||
              EqualsIgnoringCase(e.FourthText, p) || (!p.empty() && e.Integrand.find(p) != std::string::npos);
    }
    if (!found) {
      Fail(2);
      return;
    }
  }
  for (int i = 1; i <= list.Count; ++i) {
    if (marked[i]) {
      Fail(3);
      return;
    }
  }
}

void Engine::CollectVariables() {
  const TokenList& list = TokenTable[CurrentSlot];
  FunctionHeader& f = FunctionTable[CurrentSlot];
  f.Param.assign(1, std::string());
  for (int i = 1; i <= list.Count; ++i) {
    const std::string& t = list.Text[i];
    if (list.Kind[i] != kOperandKind || !IsVariableText(t)) continue;
    if (std::find(f.Param.begin() + 1, f.Param.end(), t) == f.Param.end()) f.Param.push_back(t);
  }
  f.ParamCount = static_cast<int16_t>(f.Param.size() - 1);
}

SavedProgram Engine::SaveProgram(int16_t n) const {
  SavedProgram s;
  s.n = n;
  for (int i = 1; i <= n; ++i) s.program.cells_[i] = Program.cells_[i];
  s.program.identity_ = Program.identity_;
  return s;
}

void Engine::RestoreProgram(const SavedProgram& saved) {
  if (Program.identity_ == saved.program.identity_) return;
  for (int i = 1; i <= saved.n; ++i) Program.cells_[i] = saved.program.cells_[i];
  Program.identity_ = saved.program.identity_;
}

void Engine::BindVariableCells(std::string_view name, double value) {
  std::string text = PlainText(value);
  for (int i = 1; i <= kMaxTokens; ++i) {
    ProgramCell& c = Program.cells_[i];
    if (c.Kind == kOperandKind && c.Value == name) c.Value = text;
  }
  Touch();
}

int16_t Engine::FoldCellPairs(int16_t n, std::string_view name, const std::function<double(double)>& value) {
  for (int i = 2; i <= n;) {
    if (Program.cells_[i].Value != name) {
      ++i;
      continue;
    }
    ProgramCell& folded = Program.cells_[i - 1];
    folded.Value = PlainText(value(ReadLenient(folded.Value)));
    folded.Kind = kOperandKind;
    folded.Precedence = 4;
    folded.Link = 0;
    for (int j = i; j < n; ++j) Program.cells_[j] = std::move(Program.cells_[j + 1]);
    --n;
  }
  Touch();
  return n;
}

bool Engine::programHasSums(int16_t n) const {
  for (int i = 1; i <= n; ++i) {
    if (Program.cells_[i].Value == "sgm") return true;
  }
  return false;
}

}  // namespace merida
