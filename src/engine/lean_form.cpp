// The lean form of tool code: built from the flat code, and its terms-only runner.
#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "engine/evaluator.h"

namespace merida {

// The lean form of tool-mode code, or nothing when a step needs the full machine (random
// numbers, literal overflows, powers that can give 1 or a reciprocal, calls of bodies
// without a lean form). `callee` gives a called slot's lean code, or null.
std::vector<LeanInstr> MakeLean(const std::vector<Instr>& code, const LeanCallee& callee, bool& usesRounded) {
  std::vector<LeanInstr> out;
  int nextRegister = kRegisterCount;
  auto lastIsPlainTerm = [&] { return !out.empty() && out.back().op == LeanOp::kPushTerm; };
  auto reg = [](const Instr& in) { return static_cast<uint8_t>(in.count); };
  // A constant pushed just before the steps that made the top value from one push: the
  // binary step after them can take it as an operand instead (c + v and c * v are v + c and
  // v * c to the bit). Returns its index, or -1.
  auto constantBeforeRun = [&]() -> int {
    for (int i = static_cast<int>(out.size()) - 1; i >= 1; --i) {
      switch (out[i].op) {
        case LeanOp::kPushC: case LeanOp::kPushReg: case LeanOp::kPushTerm: case LeanOp::kPushNegTerm:
          return out[i - 1].op == LeanOp::kPushC ? i - 1 : -1;
        case LeanOp::kAddTerm: case LeanOp::kSubTerm: case LeanOp::kMulTerm: case LeanOp::kDivReg:
        case LeanOp::kAddC: case LeanOp::kSubC: case LeanOp::kMulC: case LeanOp::kDivC: case LeanOp::kPowInt:
        case LeanOp::kSin: case LeanOp::kCos: case LeanOp::kAtan: case LeanOp::kAbs: case LeanOp::kTan:
        case LeanOp::kExp: case LeanOp::kSqr: case LeanOp::kLn: case LeanOp::kUnary: case LeanOp::kParamTerm:
        case LeanOp::kSinh: case LeanOp::kCosh: case LeanOp::kTanh: case LeanOp::kLog:
        case LeanOp::kBodyEnd: case LeanOp::kRevSubC: case LeanOp::kRevDivC: case LeanOp::kParamTermEnd:
          continue;
        default:
          return -1;
      }
    }
    return -1;
  };
  auto takeConstant = [&](LeanOp op) {
    const int j = constantBeforeRun();
    if (j < 0) return false;
    const double c = out[j].c;
    out.erase(out.begin() + j);
    out.push_back({op, 0, 1, c});
    return true;
  };
  for (const Instr& in : code) {
    switch (in.op) {
      case Op::kConst: out.push_back({LeanOp::kPushC, 0, 1, in.value}); break;
      case Op::kPushR: out.push_back({LeanOp::kPushTerm, reg(in), 1, 1}); break;
      case Op::kCMulR: out.push_back({LeanOp::kPushTerm, reg(in), 1, in.value}); break;
      case Op::kRPowInt:
        if (in.arg < 0) return {};
        if (in.arg == 0) out.push_back({LeanOp::kPushC, 0, 1, 1});
        else out.push_back({LeanOp::kPushTerm, reg(in), in.arg, 1});
        break;
      case Op::kMulC:
        // r^k * c: the product the separate steps make.
        if (lastIsPlainTerm() && out.back().c == 1) out.back().c = in.value;
        else out.push_back({LeanOp::kMulC, 0, 1, in.value});
        break;
      case Op::kAddC: out.push_back({LeanOp::kAddC, 0, 1, in.value}); break;
      case Op::kSubC: out.push_back({LeanOp::kSubC, 0, 1, in.value}); break;
      case Op::kDivC: {
        // By a power of two, a product by its reciprocal is the same quotient to the bit.
        int exp2 = 0;
        const bool power = std::fabs(std::frexp(in.value, &exp2)) == 0.5 && exp2 > -1000 && exp2 < 1000;
        out.push_back({power ? LeanOp::kMulC : LeanOp::kDivC, 0, 1, power ? 1 / in.value : in.value});
        break;
      }
      case Op::kAddR: out.push_back({LeanOp::kAddTerm, reg(in), 1, 1}); break;
      case Op::kSubR: out.push_back({LeanOp::kSubTerm, reg(in), 1, 1}); break;
      case Op::kMulR: out.push_back({LeanOp::kMulTerm, reg(in), 1, 1}); break;
      case Op::kDivR: out.push_back({LeanOp::kDivReg, reg(in), 1, 1}); break;
      case Op::kAdd: case Op::kSub: case Op::kMul: {
        bool add = in.op == Op::kAdd, sub = in.op == Op::kSub;
        if (sub && lastIsPlainTerm() && out.size() >= 2 && out[out.size() - 2].op == LeanOp::kPushC &&
            out[out.size() - 2].c == 0 && !std::signbit(out[out.size() - 2].c)) {
          // 0 - term, the way a formula negates: one step, still 0 - v (so 0 - 0 is +0).
          out[out.size() - 2] = out.back();
          out[out.size() - 2].op = LeanOp::kPushNegTerm;
          out.pop_back();
        } else if (lastIsPlainTerm()) {
          out.back().op = add ? LeanOp::kAddTerm : sub ? LeanOp::kSubTerm : LeanOp::kMulTerm;
        } else if (!takeConstant(add ? LeanOp::kAddC : sub ? LeanOp::kRevSubC : LeanOp::kMulC)) {
          out.push_back({add ? LeanOp::kAdd : sub ? LeanOp::kSub : LeanOp::kMul});
        }
        break;
      }
      case Op::kDiv:
        if (!takeConstant(LeanOp::kRevDivC)) out.push_back({LeanOp::kDiv});
        break;
      case Op::kPowInt:
        if (in.arg < 1) return {};  // x^0 is 1 even for an overflowed x
        // A parameter's power: its register is never -0, so the term's product is the same.
        if (lastIsPlainTerm() && out.back().k == 1 && out.back().c == 1 && out.back().reg >= kParamRegister) {
          out.back().k = in.arg;
        } else {
          out.push_back({LeanOp::kPowInt, 0, in.arg, 1});
        }
        break;
      case Op::kPow: out.push_back({LeanOp::kPow}); break;
      case Op::kUnary: {
        LeanOp op;
        switch (in.fn) {
          case Builtin::kSin: op = LeanOp::kSin; break;
          case Builtin::kCos: op = LeanOp::kCos; break;
          case Builtin::kAtan: op = LeanOp::kAtan; break;
          case Builtin::kAbs: op = LeanOp::kAbs; break;
          case Builtin::kTan: op = LeanOp::kTan; break;
          case Builtin::kExp: op = LeanOp::kExp; break;
          case Builtin::kSqr: op = LeanOp::kSqr; break;
          case Builtin::kLn: op = LeanOp::kLn; break;
          case Builtin::kSinh: op = LeanOp::kSinh; break;
          case Builtin::kCosh: op = LeanOp::kCosh; break;
          case Builtin::kTanh: op = LeanOp::kTanh; break;
          case Builtin::kLog: op = LeanOp::kLog; break;
          default: op = LeanOp::kUnary; break;
        }
        out.push_back({op, 0, 1, 1, in.fn});
        break;
      }
      case Op::kBinary: out.push_back({LeanOp::kBinary, 0, 1, 1, in.fn}); break;
      case Op::kParam: out.push_back({LeanOp::kPushTerm, static_cast<uint8_t>(kParamRegister + in.arg), 1, 1}); break;
      case Op::kCall: {
        const CompiledCode* body = callee(in.arg);
        if (!body || in.count < 1 || in.count > kMaxParameters) return {};
        if (in.count == 1 && body->termsOnly && nextRegister < kLeanRegisterCount) {
          // Copied in, the call costs no dispatch of its own.
          const auto r = static_cast<uint8_t>(nextRegister++);
          out.push_back({LeanOp::kSetParam, r});
          for (LeanInstr step : body->lean) {
            if (step.op == LeanOp::kEnd) break;
            if (step.reg == kParamRegister) step.reg = r;
            if (out.back().op == LeanOp::kSetParam && step.reg == r &&
                (step.op == LeanOp::kPushTerm || step.op == LeanOp::kPushReg)) {
              // The argument goes straight into the term: no pop and push, no reload.
              out.back() = {LeanOp::kParamTerm, r, step.k, step.c};
              continue;
            }
            out.push_back(step);
          }
          if (out.back().op == LeanOp::kParamTerm) out.back().op = LeanOp::kParamTermEnd;  // a body of one term
          else out.push_back({LeanOp::kBodyEnd});
          usesRounded = usesRounded || body->usesRounded;
          break;
        }
        out.push_back({LeanOp::kCall, static_cast<uint8_t>(in.count), 1, 1, Builtin::kNone, body});
        break;
      }
      default:
        return {};
    }
  }
  // A bare register needs no arithmetic: it feeds a function without an extra product.
  for (LeanInstr& in : out) {
    if (in.op == LeanOp::kPushTerm && in.k == 1 && in.c == 1) in.op = LeanOp::kPushReg;
  }
  // A term and the constant added to it in one step (t - c is t + -c to the bit).
  std::vector<LeanInstr> fused;
  for (const LeanInstr& in : out) {
    if ((in.op == LeanOp::kAddC || in.op == LeanOp::kSubC) && !fused.empty() &&
        (fused.back().op == LeanOp::kPushTerm || fused.back().op == LeanOp::kPushReg)) {
      fused.back().op = LeanOp::kPushTermAddC;
      fused.back().d = in.op == LeanOp::kAddC ? in.c : -in.c;
      continue;
    }
    fused.push_back(in);
  }
  // A pushed term plus constant that the next step takes at once, and a term's step followed by
  // a constant, each as one step computing the same operations in the same order (a product's
  // operands may change places: that is exact).
  std::vector<LeanInstr> merged;
  for (const LeanInstr& in : fused) {
    if (!merged.empty()) {
      LeanInstr& last = merged.back();
      if (last.op == LeanOp::kPushTermAddC && (in.op == LeanOp::kMul || in.op == LeanOp::kDiv)) {
        last.op = in.op == LeanOp::kMul ? LeanOp::kMulTermAddC : LeanOp::kDivTermAddC;
        continue;
      }
      if (last.op == LeanOp::kAddTerm && (in.op == LeanOp::kAddC || in.op == LeanOp::kSubC)) {
        last.op = LeanOp::kAddTermAddC;
        last.d = in.op == LeanOp::kAddC ? in.c : -in.c;
        continue;
      }
    }
    merged.push_back(in);
  }
  merged.push_back({LeanOp::kEnd});
  return merged;
}

// True when lean code is one running value: a first term or constant, then steps that
// combine it with terms and constants. A called body of this form is copied into its caller.
bool IsTermsOnly(const std::vector<LeanInstr>& lean) {
  LeanOp first = lean[0].op;
  if (first != LeanOp::kPushC && first != LeanOp::kPushReg && first != LeanOp::kPushTerm &&
      first != LeanOp::kPushNegTerm && first != LeanOp::kPushTermAddC) {
    return false;
  }
  for (size_t i = 1; i < lean.size(); ++i) {
    switch (lean[i].op) {
      case LeanOp::kAddTerm: case LeanOp::kSubTerm: case LeanOp::kMulTerm: case LeanOp::kAddC:
      case LeanOp::kSubC: case LeanOp::kMulC: case LeanOp::kDivC: case LeanOp::kPowInt: case LeanOp::kRevSubC:
      case LeanOp::kAddTermAddC: case LeanOp::kMulTermAddC: case LeanOp::kEnd:
        break;
      default:
        return false;
    }
  }
  return true;
}

namespace {

// The values lean code runs in registers with (2 or kRegisterDepth), or 0 when it calls
// bodies or must hold more (it runs on a stack in memory).
int RegisterDepth(const std::vector<LeanInstr>& lean) {
  int depth = 0, deepest = 0;
  bool functions = false;
  for (const LeanInstr& in : lean) {
    switch (in.op) {
      case LeanOp::kPushC: case LeanOp::kPushReg: case LeanOp::kPushTerm: case LeanOp::kPushNegTerm:
      case LeanOp::kPushTermAddC:
        deepest = std::max(deepest, ++depth);
        break;
      case LeanOp::kAdd: case LeanOp::kSub: case LeanOp::kMul: case LeanOp::kDiv:
        if (--depth < 1) return 0;
        break;
      case LeanOp::kSetParam:  // the argument leaves the stack for a register
        if (--depth < 0) return 0;
        break;
      case LeanOp::kParamTerm: case LeanOp::kParamTermEnd: case LeanOp::kBodyEnd:
        if (depth < 1) return 0;
        break;
      case LeanOp::kAddTerm: case LeanOp::kSubTerm: case LeanOp::kMulTerm: case LeanOp::kDivReg:
      case LeanOp::kAddC: case LeanOp::kSubC: case LeanOp::kMulC: case LeanOp::kDivC: case LeanOp::kPowInt:
      case LeanOp::kRevSubC: case LeanOp::kRevDivC: case LeanOp::kAbs: case LeanOp::kAddTermAddC:
      case LeanOp::kMulTermAddC: case LeanOp::kDivTermAddC:
        if (depth < 1) return 0;
        break;
      case LeanOp::kSin: case LeanOp::kCos: case LeanOp::kAtan: case LeanOp::kTan: case LeanOp::kExp:
      case LeanOp::kSqr: case LeanOp::kLn: case LeanOp::kSinh: case LeanOp::kCosh: case LeanOp::kTanh:
      case LeanOp::kLog:
        if (depth < 1) return 0;
        functions = true;
        break;
      case LeanOp::kEnd:
        if (depth != 1) return 0;
        // Every held value is saved around a library call: with more than one below the
        // top, the stack form (whose values stay in memory) is the faster.
        if (deepest <= 2) return 2;
        return deepest <= kRegisterDepth && !functions ? kRegisterDepth : 0;
      default:
        return 0;
    }
  }
  return 0;
}

// The stack's top values live in up to four variables, so the whole run stays in registers. It
// computes what the stack form computes, step for step. At the first step that would fail
// it gives up with a NaN, and the caller, seeing a value that is not finite, runs the stack
// form, which reports what failed in its order.
// Code without copied bodies gets a runner without their read-backs (and the calls those may
// make), which keeps its prologue and registers lean.
template <int Depth, bool Bodies>
double RunInRegisters(const LeanInstr* p, double* reg) {
  static_assert(Depth == 2 || Depth == 4);
  auto term = [reg](const LeanInstr& q) { return Term(reg[q.reg], q.k, q.c); };
  double top = 0, s1 = 0, s2 = 0, s3 = 0;
  auto push = [&](double v) {
    if constexpr (Depth == 4) {
      s3 = s2;
      s2 = s1;
    }
    s1 = top;
    top = v;
  };
  auto pop = [&] {
    const double below = s1;
    if constexpr (Depth == 4) {
      s1 = s2;
      s2 = s3;
    }
    return below;
  };
  auto usable = [](double v) { return std::isfinite(v); };
  static const void* const kJump[] = {&&R_kPushC, &&R_kPushReg, &&R_kPushTerm, &&R_kPushNegTerm, &&R_kAddTerm,
      &&R_kSubTerm, &&R_kMulTerm, &&R_kDivReg, &&R_kAddC, &&R_kSubC, &&R_kMulC, &&R_kDivC, &&R_kAdd, &&R_kSub,
      &&R_kMul, &&R_kDiv, &&R_kPowInt, &&R_kSin, &&R_kCos, &&R_kAtan, &&R_kAbs, &&R_kTan, &&R_kExp, &&R_kSqr,
      &&R_kLn, &&R_kSinh, &&R_kCosh, &&R_kTanh, &&R_kLog, &&R_fail, &&R_fail, &&R_fail, &&R_fail, &&R_kSetParam,
      &&R_kBodyEnd, &&R_kParamTerm, &&R_kPushTermAddC, &&R_kRevSubC, &&R_kRevDivC, &&R_kParamTermEnd,
      &&R_kAddTermAddC, &&R_kMulTermAddC, &&R_kDivTermAddC, &&R_end};
  static_assert(sizeof kJump / sizeof kJump[0] == static_cast<size_t>(LeanOp::kEnd) + 1);
#define NEXT goto* kJump[static_cast<int>((++p)->op)]
  goto* kJump[static_cast<int>(p->op)];
R_kPushC: push(p->c); NEXT;
R_kPushReg: push(reg[p->reg]); NEXT;
R_kPushTerm: push(term(*p)); NEXT;
R_kPushNegTerm: push(0.0 - term(*p)); NEXT;
R_kPushTermAddC: push(term(*p) + p->d); NEXT;
R_kAddTerm: top = top + term(*p); NEXT;
R_kSubTerm: top = top - term(*p); NEXT;
R_kMulTerm: top = top * term(*p); NEXT;
R_kDivReg:
  if (reg[p->reg] == 0 || !usable(reg[p->reg])) goto R_fail;
  top = top / reg[p->reg];
  NEXT;
R_kAddC: top = top + p->c; NEXT;
R_kSubC: top = top - p->c; NEXT;
R_kMulC: top = top * p->c; NEXT;
R_kDivC: top = top / p->c; NEXT;
R_kRevSubC: top = p->c - top; NEXT;
R_kRevDivC:
  if (!usable(top) || top == 0) goto R_fail;  // c/inf would hide an overflow
  top = p->c / top;
  NEXT;
R_kAdd: { const double a = pop(); top = a + top; NEXT; }
R_kSub: { const double a = pop(); top = a - top; NEXT; }
R_kMul: { const double a = pop(); top = a * top; NEXT; }
R_kDiv: {
  if (!usable(top) || top == 0) goto R_fail;
  const double a = pop();
  top = a / top;
  NEXT;
}
R_kPowInt: top = top == 0 ? top : IntPower(top, p->k); NEXT;
R_kAddTermAddC: top = (top + term(*p)) + p->d; NEXT;
R_kMulTermAddC: top = top * (term(*p) + p->d); NEXT;
R_kDivTermAddC: {
  const double divisor = term(*p) + p->d;
  if (!usable(divisor) || divisor == 0) goto R_fail;
  top = top / divisor;
  NEXT;
}
// A copied body: its parameter read back into a register, its steps, its end.
R_kSetParam: {
  if constexpr (!Bodies) goto R_fail;
  const double v = Round15(top, p->guess);
  if (!usable(v)) goto R_fail;
  reg[p->reg] = v;
  top = pop();
  NEXT;
}
// A body's overflow needs no check of its own here: every step that could hide it checks.
R_kBodyEnd: NEXT;
R_kParamTerm: R_kParamTermEnd: {
  if constexpr (!Bodies) goto R_fail;
  const double v = Round15(top, p->guess);
  if (!usable(v)) goto R_fail;
  reg[p->reg] = v;
  top = Term(v, p->k, p->c);
  NEXT;
}
#define MERIDA_UNARY(name, guard, expr) \
  R_##name:                            \
    if (!usable(top) || (guard)) goto R_fail; \
    top = expr;                        \
    NEXT;
MERIDA_UNARY(kSin, false, std::sin(top))
MERIDA_UNARY(kCos, false, std::cos(top))
MERIDA_UNARY(kAtan, false, std::atan(top))
MERIDA_UNARY(kAbs, false, std::fabs(top))
MERIDA_UNARY(kTan, false, std::tan(top))
MERIDA_UNARY(kExp, false, std::exp(top))
MERIDA_UNARY(kSinh, false, (std::exp(top) - std::exp(-top)) / 2)
MERIDA_UNARY(kCosh, false, (std::exp(top) + std::exp(-top)) / 2)
R_kTanh: {
  if (!usable(top)) goto R_fail;
  const double p2 = std::exp(top), q2 = std::exp(-top);
  top = (p2 - q2) / (p2 + q2);
  NEXT;
}
MERIDA_UNARY(kLog, top <= 0, std::log(top) / std::log(10.0))
MERIDA_UNARY(kSqr, top < 0, std::sqrt(top))
MERIDA_UNARY(kLn, top <= 0, std::log(top))
#undef MERIDA_UNARY
#undef NEXT
R_end:
  return top;
R_fail:
  return std::numeric_limits<double>::quiet_NaN();
}

}  // namespace

RegisterRunner RegisterRunnerFor(const std::vector<LeanInstr>& lean) {
  if (lean.empty()) return nullptr;
  const bool bodies =
      std::any_of(lean.begin(), lean.end(), [](const LeanInstr& in) { return IsCopiedBodyStep(in.op); });
  switch (RegisterDepth(lean)) {
    case 2: return bodies ? &RunInRegisters<2, true> : &RunInRegisters<2, false>;
    case kRegisterDepth: return bodies ? &RunInRegisters<kRegisterDepth, true> : &RunInRegisters<kRegisterDepth, false>;
    default: return nullptr;
  }
}

}  // namespace merida
