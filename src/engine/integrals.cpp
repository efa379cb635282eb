// Integrals (composite Simpson rule) and sums, folded into constant program cells.
#include <cmath>

#include "engine/engine.h"
#include "engine/number_text.h"

namespace merida {
namespace {

bool IsSingleName(std::string_view t) {
  if (t.empty()) return false;
  for (char c : t) {
    bool ok = (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
    if (!ok) return false;
  }
  return true;
}

}  // namespace

int16_t Engine::ComputeIntegrals(int16_t n) {
  ++busyDepth_;
  int16_t r = ComputeEntries(n, false);
  --busyDepth_;
  return r;
}

int16_t Engine::ComputeSigmas(int16_t n) {
  ++busyDepth_;
  int16_t r = ComputeEntries(n, true);
  --busyDepth_;
  return r;
}

int16_t Engine::ComputeEntries(int16_t n, bool sums) {
  const char* name = sums ? "sgm" : "integ";
  bool any = false;
  for (int i = 2; i <= n && !any; ++i) any = Program.cells_[i].Value == name;
  if (!any) return n;

  merida::Program work = Program;  // the formula, folded step by step
  // A sum inside a called function runs inside the caller's sum: leave the binding as found.
  const int16_t bindingFound = IntegralBinding;
  IntegralBinding = 1;
  for (int i = 2; i <= n;) {
    if (work.cells_[i].Value != name) {
      ++i;
      continue;
    }
    auto k = ToInt16(ReadLenient(work.cells_[i - 1].Value));
    if (!k || *k < 1 || *k > kMaxIntegrals) {
      ++i;  // not an entry: evaluation reports the bare name
      continue;
    }
    IntegralEntry& entry = IntegralTable[*k];
    // Integrals are computed once per run; sums depend on the point and are computed each time.
    if (sums || entry.State != 1) {
      bool ok = sums ? ComputeSumEntry(entry) : ComputeIntegralEntry(entry);
      if (!ok) {
        Program = work;
        IntegralBinding = bindingFound;
        return -1;
      }
      entry.State = 1;
    }
    ProgramCell& folded = work.cells_[i - 1];
    folded.Value = PlainText(entry.Value);
    folded.Kind = kOperandKind;
    folded.Precedence = 4;
    folded.Link = 0;
    for (int j = i; j < n; ++j) work.cells_[j] = std::move(work.cells_[j + 1]);
    --n;
  }
  Program = work;
  Touch();
  IntegralBinding = bindingFound;
  return n;
}

std::optional<double> Engine::ReadLimit(const std::string& text) {
  if (text == "PI") return 3.14159265358979;
  if (text == "E") return 2.71828182845905;
  if (auto v = ReadNumber(text)) {
    if (!std::isfinite(*v)) {
      ReportFault("Overflow");
      return std::nullopt;
    }
    return *v;
  }
  if (IsSingleName(text)) return AskValue(text);
  double v = EvaluateConstantText(text);
  if (failed()) return std::nullopt;
  return v;
}

bool Engine::ComputeIntegralEntry(IntegralEntry& entry) {
  // The integrand is compiled on its own without disturbing the formula's own tokens,
  // which tool windows still read for its variables.
  TokenList savedTokens = TokenTable[CurrentSlot];
  FunctionHeader savedHeader = FunctionTable[CurrentSlot];
  std::string savedBody = BodyText;
  auto restoreSlot = [&]() {
    TokenTable[CurrentSlot] = std::move(savedTokens);
    FunctionTable[CurrentSlot] = std::move(savedHeader);
    BodyText = std::move(savedBody);
  };
  BodyText = entry.Integrand;
  TokenizeBody();
  int16_t n = ErrorFlag ? 0 : CompilePostfix(CurrentSlot);
  if (ErrorFlag) {
    restoreSlot();
    return false;
  }
  CollectVariables();
  int16_t variables = FunctionTable[CurrentSlot].ParamCount;
  restoreSlot();
  if (variables > 1) {
    Fail(24);
    return false;
  }
  SavedProgram integrand = SaveProgram(n);

  auto a = ReadLimit(entry.LowerText);
  if (!a) return false;
  auto b = ReadLimit(entry.UpperText);
  if (!b) return false;
  auto divisions = ReadLimit(entry.FourthText);
  if (!divisions) return false;
  double count = std::nearbyint(*divisions);
  // Reversed limits end quietly.
  if (!(count >= 1)) {
    EndSilently("integ: the number of divisions must be at least 1");
    return false;
  }
  if (!(*a < *b)) {
    EndSilently("integ: the lower limit must be below the upper limit");
    return false;
  }
  if (count > 10000) count = 10000;
  int m = static_cast<int>(count);
  if (m % 2) ++m;

  double h = (*b - *a) / m;
  double S = 0, x0 = *a;
  double savedX = XValue;
  auto f = [&](double x) {
    RestoreProgram(integrand);
    XValue = x;
    return EvaluateProgram(n);
  };
  for (int pair = 0; pair < m / 2; ++pair) {
    double f0 = f(x0);
    if (failed()) break;
    double f1 = f(x0 + h);
    if (failed()) break;
    double f2 = f(x0 + 2 * h);
    if (failed()) break;
    S = S + f0 + 4 * f1 + f2;
    x0 = x0 + 2 * h;
    PollStop();
    if (StopRequested == 1) break;
  }
  XValue = savedX;
  if (failed() || StopRequested == 1) return false;
  entry.Value = h * S / 3;
  if (!std::isfinite(entry.Value)) {
    ReportFault("Overflow");
    StopRequested = 1;
    return false;
  }
  return true;
}

bool Engine::ComputeSumEntry(IntegralEntry& entry) {
  StopRequested = 0;
  std::string savedBody = BodyText;
  BodyText = entry.Integrand;
  TokenizeBody();
  int16_t n = ErrorFlag ? 0 : CompilePostfix(CurrentSlot);
  BodyText = std::move(savedBody);
  if (ErrorFlag) return false;
  // An integral of the formula written inside the summand: its entry, computed once per run.
  n = ComputeIntegrals(n);
  if (n < 0 || failed()) return false;

  // Every free variable but the index is fixed before the loop.
  std::string index(Trim(entry.FourthText));
  std::vector<std::string> fixed;
  for (int i = 1; i <= n; ++i) {
    const ProgramCell& c = Program.cells_[i];
    if (c.Kind != kOperandKind || c.Value == index || c.Value == "PI" || c.Value == "E" || IsNumeric(c.Value)) continue;
    bool seen = false;
    for (const auto& v : fixed) seen = seen || v == c.Value;
    if (!seen) fixed.push_back(c.Value);
  }
  for (const std::string& name : fixed) {
    double v = XValue;
    if (BindToX <= 0) {
      auto asked = AskValue(name);
      if (!asked) return false;
      v = *asked;
    }
    BindVariableCells(name, v);
  }
  SavedProgram summand = SaveProgram(n);

  auto a = ReadLimit(entry.LowerText);
  if (!a) return false;
  auto b = ReadLimit(entry.UpperText);
  if (!b) return false;
  auto from = ToInt32(*a), to = ToInt32(*b);
  if (!from || !to) {
    ReportFault("Overflow");
    return false;
  }
  double savedX = XValue;
  double S = 0;
  for (int64_t i = *from; i <= *to; ++i) {
    RestoreProgram(summand);
    XValue = static_cast<double>(i);
    S = S + EvaluateProgram(n);
    if (failed()) break;
    PollStop();
    if (StopRequested == 1) break;
  }
  XValue = savedX;
  if (failed() || StopRequested == 1) return false;
  if (!std::isfinite(S)) {
    ReportFault("Overflow");
    return false;
  }
  entry.Value = S;
  return true;
}

}  // namespace merida
