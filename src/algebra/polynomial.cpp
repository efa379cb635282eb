// Terms are split at top-level signs and each is evaluated with every variable at 1; the
// constant terms land with power 1 and are moved down by the formula's value at 0.
#include "algebra/polynomial.h"

#include <chrono>
#include <cmath>

#include "engine/formula_sampler.h"
#include "engine/number_text.h"

namespace merida {
namespace {

constexpr int kNegativePowerError = 14;
constexpr int kSyntaxError = 22;
constexpr int kTwoVariablesError = 52;
constexpr int kBadFactorError = 53;
constexpr int kDegreeError = 54;

using Coefficients = std::array<double, kMaxPolynomialDegree + 1>;

// A number inside a formula text: the list form without its leading blank (".5", "-2").
std::string Text(double v) { return std::string(TrimLeft(ListText(v))); }

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// A run of digits read as a power; saturates well above the largest degree.
int DigitRun(std::string_view text, size_t& i) {
  int v = 0;
  while (i < text.size() && IsDigit(text[i])) {
    v = std::min(v * 10 + (text[i] - '0'), 10 * kMaxPolynomialDegree);
    ++i;
  }
  return v;
}

struct Term {
  std::string text;
  int exponent = 1;
};

// The next term of `rest` (which keeps what follows); 0 or the number of the error.
int SplitTerm(std::string& rest, Term& term) {
  std::string text = rest;
  if (text.empty() || (text[0] != '+' && text[0] != '-')) text.insert(text.begin(), '+');
  size_t end = 1;
  for (int depth = 0; end < text.size(); ++end) {
    char c = text[end];
    if (c == '(') ++depth;
    else if (c == ')') --depth;
    else if ((c == '+' || c == '-') && depth == 0) break;
  }
  term.text = text.substr(text[0] == '+' ? 1 : 0, end - (text[0] == '+' ? 1 : 0));
  rest = text.substr(end);
  if (term.text.empty() || term.text == "-") return kSyntaxError;
  term.exponent = 1;
  for (size_t i = 0; i < term.text.size(); ++i) {
    if (term.text[i] != '^') continue;
    size_t j = i + 1;
    if (j >= term.text.size() || !IsDigit(term.text[j])) return kSyntaxError;
    term.exponent = DigitRun(term.text, j);
    if (term.exponent < 1) return kNegativePowerError;
    i = j - 1;
  }
  return 0;
}

// Ends a tool the way a failed evaluation asks: the engine has shown any message.
PolyEnd FailedEnd(Engine& engine) { return engine.FaultFlag ? PolyEnd::kFault : PolyEnd::kError; }

// The polynomial's leading zero coefficients dropped: the degree Seek and Factor work on.
int TrueDegree(const Coefficients& c, int degree) {
  while (degree > 0 && c[degree] == 0) --degree;
  return degree;
}

bool AllFinite(const Coefficients& c, int degree) {
  for (int i = 0; i <= degree; ++i) {
    if (!std::isfinite(c[i])) return false;
  }
  return true;
}

// What Seek collects: roots in order found and the factor each came from.
struct Roots {
  std::vector<PolyRoot> roots;
  std::vector<PolyFactor> factors;
};

void SolveQuadratic(double a, double b, double c, bool roundOn, double tolerance, Roots& out) {
  auto snap = [&](double v) { return roundOn ? SnapToInteger(v, tolerance) : v; };
  out.factors.push_back({a, b, c});
  if (a == 0) {  // a leading coefficient snapped away: what is left is linear
    if (b != 0) out.roots.push_back({snap(-c / b), RootKind::kSimple});
    return;
  }
  double d = b * b - 4 * a * c;
  if (d == 0) {
    double r = snap(-b / (2 * a));
    out.roots.push_back({r, RootKind::kDouble});
    out.roots.push_back({r, RootKind::kDouble});
  } else if (d > 0) {
    out.roots.push_back({snap((-b - std::sqrt(d)) / (2 * a)), RootKind::kSimple});
    out.roots.push_back({snap((-b + std::sqrt(d)) / (2 * a)), RootKind::kSimple});
  } else {
    out.roots.push_back({0, RootKind::kComplex});
    out.roots.push_back({0, RootKind::kComplex});
  }
}

}  // namespace

std::optional<Polynomial> ExtractCoefficients(Engine& engine, std::string_view body, std::string& varName) {
  engine.ErrorFlag = 0;
  engine.BindToX = -1;
  engine.StopRequested = 0;
  engine.IntegralBinding = -1;
  for (auto& e : engine.IntegralTable) e.State = -1;
  struct KeepBody {
    Engine& engine;
    const std::string text;
    ~KeepBody() { engine.BodyText = text; }
  } kept{engine, std::string(body)};
  Polynomial p;
  double atZero = 0;
  std::string rest = kept.text;
  auto fail = [&](int code) {
    engine.Fail(code);
    return std::nullopt;
  };
  do {
    if (StopRequestedAtCheckpoint(engine)) return std::nullopt;
    Term term;
    if (int error = SplitTerm(rest, term)) return fail(error);
    if (term.exponent > kMaxPolynomialDegree) return fail(kDegreeError);
    p.degree = std::max(p.degree, term.exponent);
    engine.BodyText = term.text;
    engine.UnboundPolicy = -1;
    engine.TokenizeBody();
    if (engine.failed()) return std::nullopt;
    const TokenList& tokens = engine.TokenTable[engine.CurrentSlot];
    for (int i = 1; i <= tokens.Count; ++i) {
      if (tokens.Kind[i] != kOperandKind || !IsVariableText(tokens.Text[i])) continue;
      if (varName.empty()) varName = tokens.Text[i];
      else if (tokens.Text[i] != varName) return fail(kTwoVariablesError);
    }
    int16_t n = engine.CompilePostfix(engine.CurrentSlot);
    if (engine.failed()) return std::nullopt;
    engine.UnboundPolicy = 1;
    p.coef[term.exponent] += engine.EvaluateProgram(n);
    if (engine.failed()) return std::nullopt;
    // The formula at 0 is the terms at 0 summed in order, as a whole evaluation would fold
    // them; term by term, a polynomial is not held to the token limit of one formula.
    engine.UnboundPolicy = 0;
    atZero += engine.EvaluateProgram(n);
    if (engine.failed()) return std::nullopt;
  } while (!rest.empty());

  p.coef[0] += atZero;
  p.coef[1] -= p.coef[0];
  if (!AllFinite(p.coef, p.degree)) {
    engine.FaultFlag = true;
    EndRunOnFault(engine);
    return std::nullopt;
  }
  p.varName = varName;
  return p;
}

namespace {

// Writes the terms from `degree` down to 1; `zeros` writes zero coefficients out (Arrange).
std::string PowerTerms(const Polynomial& p, bool zeros) {
  std::string s;
  for (int i = p.degree; i >= 1; --i) {
    const double c = p.coef[i];
    if (c == 0 && !zeros) continue;
    if ((zeros ? c >= 0 : c > 0) && i != p.degree) s += '+';
    // By the text: a coefficient a rounding away from 1 prints as 1 and is written as one.
    const std::string t = Text(c);
    if (t == "1") s += p.varName;
    else if (t == "-1") s.append("-").append(p.varName);
    else s.append(t).append("*").append(p.varName);
    if (i > 1) s.append("^").append(std::to_string(i));
  }
  return s;
}

}  // namespace

std::string ExpandText(const Polynomial& p) {
  std::string s = PowerTerms(p, false);
  const double c = p.coef[0];
  if (c > 0) s.append("+").append(Text(c));
  else if (c < 0) s += Text(c);
  return s;
}

std::string ArrangeText(const Polynomial& p) {
  std::string s = PowerTerms(p, true);
  if (p.coef[0] >= 0) s += '+';
  return s + Text(p.coef[0]);
}

std::string FactorListText(std::string_view varName, const std::vector<PolyFactor>& factors) {
  const std::string v(varName);
  std::string s;
  for (size_t k = 0; k < factors.size(); ++k) {
    const PolyFactor& f = factors[k];
    s += k == 0 ? "(" : "*(";
    const std::string a = Text(f.a), b = Text(f.b);
    if (a == "1") s.append(v).append("^2");
    else if (a == "-1") s.append("-").append(v).append("^2");
    else if (f.a != 0) s.append(a).append("*").append(v).append("^2");
    const std::string plus = f.a != 0 ? "+" : "";
    if (b == "1") s.append(plus).append(v);
    else if (f.b > 0) s.append(plus).append(b).append("*").append(v);
    else if (b == "-1") s.append("-").append(v);
    else if (f.b < 0) s.append(b).append("*").append(v);
    if (f.c > 0) s.append("+").append(Text(f.c));
    else if (f.c < 0) s += Text(f.c);
    s += ")";
  }
  return s;
}

std::vector<std::string> RootLines(const std::vector<PolyRoot>& roots) {
  std::vector<std::string> lines;
  lines.reserve(roots.size());
  for (const PolyRoot& r : roots) {
    switch (r.kind) {
      case RootKind::kSimple: lines.push_back("x=" + ListText(r.value)); break;
      case RootKind::kDouble: lines.push_back("x=" + ListText(r.value) + " 重根"); break;
      case RootKind::kComplex: lines.push_back("x= 虚根"); break;
    }
  }
  return lines;
}

double SnapToInteger(double v, double tolerance) {
  std::optional<int16_t> n = ToInt16(std::fabs(v));
  if (!n) return v;
  if (std::fabs(std::fabs(v) - *n) < tolerance) return v < 0 ? -double(*n) : double(*n);
  return v;
}

PolynomialTools::PolynomialTools(Engine& engine) : engine_(&engine) {}

std::optional<Polynomial> PolynomialTools::extract(std::string_view formula) {
  engine_->BeginRun(-1, formula);
  engine_->SplitFormula();
  if (engine_->failed()) return std::nullopt;
  std::string varName;
  return ExtractCoefficients(*engine_, engine_->BodyText, varName);
}

PolyResult PolynomialTools::expand(std::string_view formula) {
  PolyResult r;
  engine_->BeginRun(-1, formula);
  engine_->SplitFormula();
  auto ended = [&] {
    engine_->UnboundPolicy = -1;
    r.end = engine_->StopRequested == 1 && !engine_->failed() ? PolyEnd::kStopped : FailedEnd(*engine_);
    return r;
  };
  if (engine_->failed()) return ended();
  const std::string body = engine_->BodyText;
  std::string varName;
  Polynomial product;
  product.coef[0] = 1;
  auto syntax = [&] {
    engine_->Fail(kSyntaxError);
    return ended();
  };
  size_t i = 0;
  for (;;) {
    if (i >= body.size() || body[i] != '(') return syntax();
    size_t close = i + 1;
    for (int depth = 1; close < body.size(); ++close) {
      if (body[close] == '(') ++depth;
      if (body[close] == ')' && --depth == 0) break;
    }
    if (close >= body.size()) return syntax();
    const std::string inside = body.substr(i + 1, close - i - 1);
    i = close + 1;
    int power = 1;
    if (i < body.size() && body[i] == '^') {
      ++i;
      if (i >= body.size() || !IsDigit(body[i])) return syntax();
      power = DigitRun(body, i);
      if (power < 1) {
        engine_->Fail(kNegativePowerError);
        return ended();
      }
    }
    std::optional<Polynomial> f = ExtractCoefficients(*engine_, inside, varName);
    if (!f) return ended();
    if (f->degree * power + product.degree > kMaxPolynomialDegree) {
      engine_->Fail(kDegreeError);
      return ended();
    }
    for (int k = 0; k < power; ++k) {
      Coefficients next{};
      for (int a = 0; a <= product.degree; ++a) {
        for (int b = 0; b <= f->degree; ++b) next[a + b] += product.coef[a] * f->coef[b];
      }
      product.coef = next;
      product.degree += f->degree;
    }
    if (!AllFinite(product.coef, product.degree)) {
      engine_->FaultFlag = true;
      EndRunOnFault(*engine_);
      return ended();
    }
    if (i >= body.size()) break;
    if (body[i] != '*') return syntax();
    ++i;
  }
  product.varName = varName;
  poly_ = product;
  engine_->BodyText = ExpandText(product);
  engine_->UnboundPolicy = -1;
  r.end = PolyEnd::kDone;
  r.secondFunction = engine_->BodyText;
  return r;
}

PolyResult PolynomialTools::arrange(std::string_view formula) {
  PolyResult r;
  std::optional<Polynomial> p = extract(formula);
  engine_->UnboundPolicy = -1;
  if (!p) {
    r.end = engine_->failed() ? FailedEnd(*engine_) : PolyEnd::kStopped;
    return r;
  }
  poly_ = *p;
  work_ = p->coef;
  workDegree_ = 0;  // a new working polynomial: factoring starts afresh
  r.end = PolyEnd::kDone;
  r.secondFunction = ArrangeText(*p);
  return r;
}

PolyResult PolynomialTools::seek(std::string_view formula, std::string_view toleranceBox, double judge,
                                 bool roundOn) {
  PolyResult r;
  std::optional<Polynomial> p = extract(formula);
  auto end = [&](PolyEnd e) {
    engine_->UnboundPolicy = -1;
    r.end = e;
    return r;
  };
  if (!p) return end(engine_->failed() ? FailedEnd(*engine_) : PolyEnd::kStopped);
  // Leading zeros (x^3-x^3+x) would divide by zero; the polynomial is what remains.
  p->degree = TrueDegree(p->coef, p->degree);
  poly_ = *p;
  work_ = p->coef;
  workDegree_ = 0;
  if (p->degree <= 0) {
    engine_->EndSilently("the formula is a constant: it has no roots to seek");
    return end(PolyEnd::kSilent);
  }
  std::optional<double> tolerance = ReadNumber(toleranceBox);
  if (!tolerance) {
    engine_->EndSilently("the tolerance must be a number (not \"" + std::string(Trim(toleranceBox)) + "\")", "Text7");
    return end(PolyEnd::kSilent);
  }
  integerTolerance_ = *tolerance;
  if (!seeded_) random_.seed(static_cast<uint64_t>(std::chrono::steady_clock::now().time_since_epoch().count()));
  auto snap = [&](double v) { return roundOn ? SnapToInteger(v, integerTolerance_) : v; };
  std::uniform_real_distribution<double> unit(0.0, 1.0);

  Roots found;
  Coefficients c = p->coef;
  int n = p->degree;
  std::array<double, kMaxPolynomialDegree + 1> a{}, b{}, d{};
  while (n != 1) {
    if (n == 2) {
      SolveQuadratic(c[2], c[1], c[0], roundOn, integerTolerance_, found);
      break;
    }
    for (int i = 0; i <= n; ++i) a[i] = c[n - i];
    bool converged = false;
    double pv = 0, qv = 0;
    for (int start = 0; start < kStarts && !converged; ++start) {
      pv = unit(random_);
      qv = unit(random_);
      for (int it = 0; it < kIterationsPerStart; ++it) {
        if (StopRequestedAtCheckpoint(*engine_)) return end(PolyEnd::kStopped);
        b[0] = a[0];
        b[1] = a[1] - pv * b[0];
        for (int i = 2; i <= n; ++i) b[i] = a[i] - pv * b[i - 1] - qv * b[i - 2];
        d[0] = b[0];
        d[1] = b[1] - pv * d[0];
        for (int i = 2; i <= n; ++i) d[i] = b[i] - pv * d[i - 1] - qv * d[i - 2];
        const double den = d[n - 2] * d[n - 2] - d[n - 3] * (d[n - 1] - b[n - 1]);
        if (den == 0 || !std::isfinite(den)) break;  // a fresh start
        const double dp = (b[n - 1] * d[n - 2] - b[n] * d[n - 3]) / den;
        const double dq = (b[n] * d[n - 2] - b[n - 1] * (d[n - 1] - b[n - 1])) / den;
        if (!std::isfinite(dp) || !std::isfinite(dq)) break;
        pv += dp;
        qv += dq;
        if (std::fabs(dp) <= judge || std::fabs(dq) <= judge) {
          converged = true;
          break;
        }
      }
    }
    if (!converged) {
      engine_->EndSilently("Seek found no factor: the method did not converge");
      return end(PolyEnd::kNoConvergence);
    }
    pv = snap(pv);
    qv = snap(qv);
    // The quotient is taken at the p and q of the factor solved below, not at the step
    // before: a quotient one step stale carries its error into every later factor.
    b[0] = a[0];
    b[1] = a[1] - pv * b[0];
    for (int i = 2; i <= n - 2; ++i) b[i] = a[i] - pv * b[i - 1] - qv * b[i - 2];
    for (int i = 0; i <= n - 2; ++i) c[n - 2 - i] = snap(b[i]);
    SolveQuadratic(1, pv, qv, roundOn, integerTolerance_, found);
    n -= 2;
  }
  if (n == 1) {
    found.roots.push_back({snap(-c[0] / c[1]), RootKind::kSimple});
    found.factors.push_back({0, c[1], c[0]});
  }
  for (const PolyRoot& root : found.roots) {
    if (!std::isfinite(root.value)) {
      engine_->FaultFlag = true;
      EndRunOnFault(*engine_);
      return end(PolyEnd::kFault);
    }
  }
  roots_ = found.roots;
  r.lines = RootLines(found.roots);
  for (const PolyRoot& root : found.roots) r.rootX.push_back(root.value);
  r.secondFunction = FactorListText(p->varName, found.factors);
  return end(PolyEnd::kDone);
}

std::optional<PolynomialTools::Division> PolynomialTools::divide(Coefficients& work, int m, double v, double judge,
                                                                 bool coefficientOn) {
  double k = 1;
  if (coefficientOn) {
    std::optional<int16_t> rounded = ToInt16(work[m]);
    int lead = rounded ? *rounded : (work[m] > 0 ? INT16_MAX : 0);
    if (lead >= 1) {
      k = lead + 1;
      for (int j = 1; j <= lead; ++j) {
        const double scaled = j * std::fabs(v);
        if (std::fabs(scaled - std::nearbyint(scaled)) <= integerTolerance_) {
          k = j;
          v = std::nearbyint(j * v);
          break;
        }
      }
    }
  }
  const double c = -v;
  Coefficients q = work;
  q[m] = q[m] / k;
  for (int i = m - 1; i >= 0; --i) q[i] = (q[i] - q[i + 1] * c) / k;
  if (!(std::fabs(q[0]) <= judge)) {
    engine_->Fail(kBadFactorError);
    return std::nullopt;
  }
  for (int i = 0; i < m; ++i) q[i] = q[i + 1];
  q[m] = 0;
  work = q;

  Division out;
  if (c == 0) {
    out.factor = poly_.varName;
  } else {
    out.factor = (coefficientOn && k != 1 ? Text(k) + "*" : "") + poly_.varName + (c > 0 ? "+" : "") + Text(c);
  }
  Polynomial quotient;
  quotient.varName = poly_.varName;
  quotient.coef = work;
  quotient.degree = m - 1;
  out.quotient = ExpandText(quotient);
  return out;
}

PolyResult PolynomialTools::factor(std::string_view polynomialBox, std::string_view toleranceBox, double judge,
                                   bool coefficientOn) {
  PolyResult r;
  engine_->ErrorFlag = 0;
  if (std::optional<double> t = ReadNumber(toleranceBox)) integerTolerance_ = *t;
  auto end = [&](PolyEnd e) {
    engine_->UnboundPolicy = -1;
    r.end = e;
    return r;
  };
  if (Trim(polynomialBox).empty()) {
    // Every real root of the last Seek in turn; each division that succeeds shows at once.
    std::string prefix;
    for (const PolyRoot& root : roots_) {
      if (poly_.degree <= 1) break;
      if (root.kind == RootKind::kComplex) continue;
      std::optional<Division> d = divide(work_, poly_.degree, root.value, judge, coefficientOn);
      if (!d) return end(PolyEnd::kError);
      --poly_.degree;
      r.secondFunction = prefix + "(" + d->factor + ")*(" + d->quotient + ")";
      prefix += "(" + d->factor + ")*";
    }
    if (!r.secondFunction) engine_->EndSilently("there is no real root of a Seek to divide by");
    return end(r.secondFunction ? PolyEnd::kDone : PolyEnd::kSilent);
  }
  std::optional<double> v = ReadNumber(polynomialBox);
  if (!v) {
    engine_->EndSilently("the root to divide by must be a number (not \"" + std::string(Trim(polynomialBox)) + "\")",
                         "Text6");
    return end(PolyEnd::kSilent);
  }
  if (workDegree_ == 0) {
    workDegree_ = TrueDegree(work_, poly_.degree);
    factorPrefix_.clear();
  }
  if (workDegree_ <= 1) {
    engine_->EndSilently("the polynomial is already of degree 1 or less");
    return end(PolyEnd::kSilent);
  }
  std::optional<Division> d = divide(work_, workDegree_, *v, judge, coefficientOn);
  if (!d) return end(PolyEnd::kError);
  --workDegree_;
  r.secondFunction = factorPrefix_ + "(" + d->factor + ")*(" + d->quotient + ")";
  factorPrefix_ += "(" + d->factor + ")*";
  return end(PolyEnd::kDone);
}

}  // namespace merida
