// The lean form of tool code: built from the flat code, and its terms-only runner.
#include <cmath>
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
  fused.push_back({LeanOp::kEnd});
  return fused;
}

// True when lean code is one running value: a first term or constant, then steps that
// combine it with terms and constants. Such code runs in registers with no stack.
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
      case LeanOp::kEnd:
        break;
      default:
        return false;
    }
  }
  return true;
}

// Terms-only lean code: a leaf loop whose running value never leaves a register. Nothing in
// it can fail before the end, where non-finite means an overflow somewhere on the way.
double RunTerms(const LeanInstr* p, const double* reg, bool& overflow) {
  auto term = [reg](const LeanInstr& q) { return Term(reg[q.reg], q.k, q.c); };
  double top = p->op == LeanOp::kPushC          ? p->c
               : p->op == LeanOp::kPushReg      ? reg[p->reg]
               : p->op == LeanOp::kPushTerm     ? term(*p)
               : p->op == LeanOp::kPushTermAddC ? term(*p) + p->d
                                                : 0.0 - term(*p);
  // Threaded like the stack form; every other step ends the terms.
  static const void* const kJump[] = {&&T_end, &&T_end, &&T_end, &&T_end, &&T_kAddTerm, &&T_kSubTerm, &&T_kMulTerm, &&T_end, &&T_kAddC, &&T_kSubC, &&T_kMulC, &&T_kDivC, &&T_end, &&T_end, &&T_end, &&T_end, &&T_kPowInt, &&T_end, &&T_end, &&T_end, &&T_end, &&T_end, &&T_end, &&T_end, &&T_end, &&T_end, &&T_end, &&T_end, &&T_end, &&T_end, &&T_end, &&T_end, &&T_end, &&T_end, &&T_end, &&T_end, &&T_end, &&T_kRevSubC, &&T_end, &&T_end, &&T_end};
  static_assert(sizeof kJump / sizeof kJump[0] == static_cast<size_t>(LeanOp::kEnd) + 1);
#define NEXT goto* kJump[static_cast<int>((++p)->op)]
  NEXT;
T_kAddTerm: top = top + term(*p); NEXT;
T_kSubTerm: top = top - term(*p); NEXT;
T_kMulTerm: top = top * term(*p); NEXT;
T_kAddC: top = top + p->c; NEXT;
T_kSubC: top = top - p->c; NEXT;
T_kMulC: top = top * p->c; NEXT;
T_kDivC: top = top / p->c; NEXT;
T_kPowInt: top = top == 0 ? top : IntPower(top, p->k); NEXT;
T_kRevSubC: top = p->c - top; NEXT;
#undef NEXT
T_end:
  overflow = !std::isfinite(top);
  return top;
}


}  // namespace merida
