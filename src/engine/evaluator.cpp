// Evaluation: operand rules, the stack machine, the lean form's runner, user-function calls.
#include "engine/evaluator.h"

#include <algorithm>
#include <chrono>
#include <cmath>

#include "engine/number_text.h"

namespace merida {
namespace {

// Bodies may only call earlier functions, but deletions and the loader can make calls circular.
constexpr int kMaxCallDepth = 64;

int StackEffectTake(const Instr& in) {
  switch (in.op) {
    case Op::kConst: case Op::kVar: case Op::kLinked: case Op::kParam: case Op::kFaultConst: case Op::kError:
    case Op::kPushR:
      return 0;
    case Op::kAdd: case Op::kSub: case Op::kMul: case Op::kDiv: case Op::kPow: case Op::kBinary:
      return 2;
    case Op::kCall:
      return in.count;
    default:
      return 1;
  }
}

// Folds constants and x into the operations that use them. Left-hand constants move only in
// tool mode: elsewhere the value produced before a variable cell must stay what it was,
// because a stopped run binds variables to it.
void Fuse(std::vector<Instr>& code, bool toolMode) {
  size_t size = code.size();
  if (size < 2) return;
  Instr op = code.back();
  Instr& prev = code[size - 2];
  if (toolMode && size >= 3 && code[size - 3].op == Op::kConst && prev.op == Op::kPushR && op.op == Op::kMul) {
    code[size - 3] = Instr{Op::kCMulR, Builtin::kNone, 0, prev.count, code[size - 3].value};
    code.resize(size - 2);
    return;
  }
  if (prev.op == Op::kPushR) {
    Op fused;
    switch (op.op) {
      case Op::kAdd: fused = Op::kAddR; break;
      case Op::kSub: fused = Op::kSubR; break;
      case Op::kMul: fused = Op::kMulR; break;
      case Op::kDiv: fused = Op::kDivR; break;
      case Op::kPowInt: prev.op = Op::kRPowInt; prev.arg = op.arg; code.pop_back(); return;
      case Op::kPow:
        if (prev.count < kFirstBoundRegister) return;
        prev.op = Op::kPowB;
        code.pop_back();
        return;
      default: return;
    }
    prev.op = fused;
    code.pop_back();
    return;
  }
  if (toolMode && size >= 3 && code[size - 3].op == Op::kConst && (op.op == Op::kMul || op.op == Op::kAdd)) {
    // c V op with a commutative op gives the same bits as V op c.
    double c = code[size - 3].value;
    if (prev.op == Op::kRPowInt || prev.op == Op::kCMulR) {
      code[size - 3] = prev;
      code[size - 2] = Instr{op.op == Op::kAdd ? Op::kAddC : Op::kMulC, Builtin::kNone, 0, 0, c};
      code.pop_back();
      return;
    }
  }
  if (prev.op != Op::kConst) return;
  double c = prev.value;
  Op fused;
  switch (op.op) {
    case Op::kAdd: fused = Op::kAddC; break;
    case Op::kSub: fused = Op::kSubC; break;
    case Op::kMul: fused = Op::kMulC; break;
    case Op::kDiv:
      if (c == 0) return;  // keep the error at its place
      fused = Op::kDivC;
      break;
    case Op::kPow:
      if (c != std::floor(c) || std::fabs(c) > 32767) return;
      fused = Op::kPowInt;
      break;
    default: return;
  }
  prev = Instr{fused, Builtin::kNone, static_cast<int16_t>(fused == Op::kPowInt ? c : 0), 0, c};
  code.pop_back();
  Fuse(code, toolMode);  // x 2 ^ becomes x^2 in one step
}

uint64_t SplitMix(uint64_t& s) {
  uint64_t z = (s += 0x9E3779B97F4A7C15ull);
  z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
  z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
  return z ^ (z >> 31);
}

}  // namespace

// Builds and runs compiled code; a friend of Engine.
struct Evaluator {
  Engine& e;

  // Turns the program cells 1..n into flat code. `params` (may be null) marks a user
  // function's parameters, which become kParam cells. `cellRegister` (may be null) marks the
  // cells bound to registers: cell i loads bound value cellRegister[i] when that is >= 0.
  void Build(CompiledCode& c, int16_t n, const FunctionHeader* params, bool toolMode,
             const int16_t* cellRegister = nullptr) {
    c.identity = e.Program.identity_;
    c.n = n;
    c.functionsVersion = e.functionsVersion_;
    c.toolMode = toolMode;
    c.usesRounded = false;
    c.leanAllowed = e.leanCode_;
    c.boundCount = 0;
    c.code.clear();
    c.vars.clear();
    std::vector<Instr>& code = c.code;
    int depth = 0;
    bool broken = false;
    for (int i = 1; i <= n; ++i) {
      const ProgramCell& cell = e.Program.cells_[i];
      const std::string& t = cell.Value;
      Instr in{Op::kError};
      if (cell.Kind == kParenKind || (cell.Kind == kCommaKind && t == ",")) continue;
      if (cell.Kind == kOperandKind) {
        int param = 0;
        if (params) {
          for (int j = 1; j <= params->ParamCount && !param; ++j) {
            if (params->Param[j] == t) param = j;
          }
        }
        if (cellRegister && cellRegister[i] >= 0) {
          // The cell is a number that changes from point to point: a register, not a constant.
          in = Instr{Op::kPushR, Builtin::kNone, 0, static_cast<int16_t>(kFirstBoundRegister + cellRegister[i])};
          c.boundCount = std::max<int16_t>(c.boundCount, static_cast<int16_t>(cellRegister[i] + 1));
        } else if (param) {
          in = Instr{Op::kParam, Builtin::kNone, static_cast<int16_t>(param - 1)};
        } else if (t == "PI") {
          in = Instr{Op::kConst, Builtin::kNone, 0, 0, kPiValue};
        } else if (t == "E") {
          in = Instr{Op::kConst, Builtin::kNone, 0, 0, kEValue};
        } else if (auto v = ReadNumber(t)) {
          in = std::isfinite(*v) ? Instr{Op::kConst, Builtin::kNone, 0, 0, *v} : Instr{Op::kFaultConst};
        } else {
          int16_t slot = -1;
          for (size_t k = 0; k < c.vars.size(); ++k) {
            if (c.vars[k].name == t) slot = static_cast<int16_t>(k);
          }
          if (toolMode) {
            // Every first cell takes x; later cells read x back from the first cell's text.
            in = Instr{Op::kPushR, Builtin::kNone, 0, static_cast<int16_t>(slot >= 0 ? 1 : 0)};
            c.usesRounded = c.usesRounded || slot >= 0;
            if (slot < 0) c.vars.push_back(VariableSlot{t, 0});
          } else if (slot >= 0) {
            in = Instr{Op::kLinked, Builtin::kNone, slot};
          } else {
            c.vars.push_back(VariableSlot{t, ReadLenient(t)});
            in = Instr{Op::kVar, Builtin::kNone, static_cast<int16_t>(c.vars.size() - 1)};
          }
        }
      } else if (cell.Kind == kUnaryKind || cell.Kind == kBinaryKind) {
        Builtin fn = LookupBuiltin(t);
        switch (fn) {
          case Builtin::kNone: in = Instr{Op::kError, fn, 4}; break;
          case Builtin::kRandom: in = Instr{Op::kRandom, fn}; break;
          case Builtin::kAdd: in = Instr{Op::kAdd, fn}; break;
          case Builtin::kSub: in = Instr{Op::kSub, fn}; break;
          case Builtin::kMul: in = Instr{Op::kMul, fn}; break;
          case Builtin::kDiv: in = Instr{Op::kDiv, fn}; break;
          case Builtin::kPow: in = Instr{Op::kPow, fn}; break;
          default: in = Instr{cell.Kind == kUnaryKind ? Op::kUnary : Op::kBinary, fn}; break;
        }
        // A name's kind decides how many values it takes, whatever the name.
        if (in.op == Op::kError) in.count = static_cast<int16_t>(cell.Kind == kBinaryKind ? 2 : 1);
      } else {
        int16_t slot = 0;
        for (int s = 1; s < e.CurrentSlot && !slot; ++s) {
          if (e.FunctionTable[s].Name == t) slot = static_cast<int16_t>(s);
        }
        in = slot ? Instr{Op::kCall, Builtin::kNone, slot, static_cast<int16_t>(cell.Kind - 4)}
                  : Instr{Op::kError, Builtin::kNone, 4, static_cast<int16_t>(cell.Kind - 4)};
      }
      int take = in.op == Op::kError ? in.count : StackEffectTake(in);
      if (depth < take) broken = true;
      depth += 1 - take;
      code.push_back(in);
      Fuse(code, toolMode);
    }
    if (broken || depth != 1) {
      code.assign(1, Instr{Op::kError, Builtin::kNone, 22});
    }
    // Tool-mode code binds through registers and needs no per-variable state.
    size_t stateSize = toolMode ? 0 : c.vars.size();
    c.varValue.assign(stateSize, 0.0);
    c.varBound.assign(stateSize, 0);
    bool rounded = false;
    c.lean = toolMode && e.leanCode_
                 ? MakeLean(code, [this](int slot) { return LeanCallee(slot); }, rounded)
                 : std::vector<LeanInstr>{};
    c.usesRounded = c.usesRounded || rounded;
    c.termsOnly = !c.lean.empty() && IsTermsOnly(c.lean);
    c.runRegisters = RegisterRunnerFor(c.lean);
    c.leanCalls = std::any_of(c.lean.begin(), c.lean.end(),
                              [](const LeanInstr& in) { return in.op == LeanOp::kCall || IsCopiedBodyStep(in.op); });
  }

  // The cached tool-mode code of a called slot when it has a lean form, built if need be.
  const CompiledCode* LeanCallee(int slot) {
    if (e.leanNesting_ >= kMaxLeanNesting) return nullptr;
    ++e.leanNesting_;
    CompiledCode* body = e.CallCode(slot, true);
    --e.leanNesting_;
    // A copy stands in for a body that is running; it is overwritten by the next such call.
    if (!body || body != e.callCache_[slot][1].get() || body->lean.empty()) return nullptr;
    return body;
  }

  // Lean code over the registers: x, x read back, the bound values. x = 0 never comes here
  // and bound values are never -0 (their texts read "0"), so a term's power needs no care
  // for the sign of zero.
  // Inside a called body (`inBody`), anything but a finite value leaves the point to the full
  // machine (`bailed`): lean code has shown nothing yet, so running the point again from the
  // start reports what the full machine reports, in its order.
  // `reg` holds kLeanRegisterCount values: copied bodies keep their parameters above the
  // caller's registers.
  double RunLean(const CompiledCode& c, double* reg, bool inBody = false) {
    double stack[kMaxTokens + 2];
    double* const base = stack;
    double* sp = base;
    double top = 0;
    auto term = [reg](const LeanInstr& p) { return Term(reg[p.reg], p.k, p.c); };
    // Values, not references: top and sp must stay in registers.
#define LEAN_FAIL(code, fault) (inBody ? Bail() : LeanFailed(code, fault, top, base, sp))
    // Threaded: every step jumps to the next step's code itself.
    static const void* const kJump[] = {
        &&L_kPushC,
        &&L_kPushReg,
        &&L_kPushTerm,
        &&L_kPushNegTerm,
        &&L_kAddTerm,
        &&L_kSubTerm,
        &&L_kMulTerm,
        &&L_kDivReg,
        &&L_kAddC,
        &&L_kSubC,
        &&L_kMulC,
        &&L_kDivC,
        &&L_kAdd,
        &&L_kSub,
        &&L_kMul,
        &&L_kDiv,
        &&L_kPowInt,
        &&L_kSin,
        &&L_kCos,
        &&L_kAtan,
        &&L_kAbs,
        &&L_kTan,
        &&L_kExp,
        &&L_kSqr,
        &&L_kLn,
        &&L_kSinh,
        &&L_kCosh,
        &&L_kTanh,
        &&L_kLog,
        &&L_kUnary,
        &&L_kBinary,
        &&L_kPow,
        &&L_kCall,
        &&L_kSetParam,
        &&L_kBodyEnd,
        &&L_kParamTerm,
        &&L_kPushTermAddC,
        &&L_kRevSubC,
        &&L_kRevDivC,
        &&L_kParamTermEnd,
        &&L_kAddTermAddC,
        &&L_kMulTermAddC,
        &&L_kDivTermAddC,
        &&L_kEnd};
    static_assert(sizeof kJump / sizeof kJump[0] == static_cast<size_t>(LeanOp::kEnd) + 1);
    const LeanInstr* p = c.lean.data();
#define NEXT goto* kJump[static_cast<int>((++p)->op)]
    goto* kJump[static_cast<int>(p->op)];
    {
        L_kPushC: *++sp = top; top = p->c; NEXT;
        L_kPushReg: *++sp = top; top = reg[p->reg]; NEXT;
        L_kPushTerm: *++sp = top; top = term(*p); NEXT;
        L_kPushNegTerm: *++sp = top; top = 0.0 - term(*p); NEXT;
        L_kPushTermAddC: *++sp = top; top = term(*p) + p->d; NEXT;
        L_kRevSubC: top = p->c - top; NEXT;
        L_kRevDivC:
          if (!std::isfinite(top)) return LEAN_FAIL(kFault, "Overflow");  // c/inf would hide it
          if (top == 0) return LEAN_FAIL(11, nullptr);
          top = p->c / top;
          NEXT;
        L_kAddTerm: top = top + term(*p); NEXT;
        L_kAddTermAddC: top = (top + term(*p)) + p->d; NEXT;
        L_kMulTermAddC: top = top * (term(*p) + p->d); NEXT;
        L_kDivTermAddC:
          // As the separate push and division: the dividend below, the divisor on top.
          *++sp = top;
          top = term(*p) + p->d;
          goto L_kDiv;
        L_kSubTerm: top = top - term(*p); NEXT;
        L_kMulTerm: top = top * term(*p); NEXT;
        L_kDivReg:
          if (reg[p->reg] == 0) return LEAN_FAIL(11, nullptr);
          top = top / reg[p->reg];
          NEXT;
        L_kAddC: top = top + p->c; NEXT;
        L_kSubC: top = top - p->c; NEXT;
        L_kMulC: top = top * p->c; NEXT;
        L_kDivC: top = top / p->c; NEXT;
        L_kAdd: top = *sp-- + top; NEXT;
        L_kSub: top = *sp-- - top; NEXT;
        L_kMul: top = *sp-- * top; NEXT;
        L_kDiv:
          if (!std::isfinite(top)) return LEAN_FAIL(kFault, "Overflow");  // n/inf would hide it
          if (top == 0) return LEAN_FAIL(11, nullptr);
          top = *sp-- / top;
          NEXT;
        L_kPowInt: top = top == 0 ? top : IntPower(top, p->k); NEXT;
        // A function could turn an overflow into a number (atan, exp of -inf): look first.
#define MERIDA_UNARY(name, expr)                                      \
  L_##name:                                                           \
    if (!std::isfinite(top)) return LEAN_FAIL(kFault, "Overflow");         \
    top = expr;                                                       \
    NEXT;
        MERIDA_UNARY(kSin, std::sin(top))
        MERIDA_UNARY(kCos, std::cos(top))
        MERIDA_UNARY(kAtan, std::atan(top))
        MERIDA_UNARY(kAbs, std::fabs(top))
        MERIDA_UNARY(kTan, std::tan(top))
        MERIDA_UNARY(kExp, std::exp(top))
        MERIDA_UNARY(kSinh, (std::exp(top) - std::exp(-top)) / 2)
        MERIDA_UNARY(kCosh, (std::exp(top) + std::exp(-top)) / 2)
        L_kTanh: {
          if (!std::isfinite(top)) return LEAN_FAIL(kFault, "Overflow");
          const double p2 = std::exp(top), q2 = std::exp(-top);
          top = (p2 - q2) / (p2 + q2);
          NEXT;
        }
        L_kLog:
          if (!std::isfinite(top)) return LEAN_FAIL(kFault, "Overflow");
          if (top <= 0) return LEAN_FAIL(13, nullptr);
          top = std::log(top) / std::log(10.0);
          NEXT;
#undef MERIDA_UNARY
        L_kSqr:
          if (!std::isfinite(top)) return LEAN_FAIL(kFault, "Overflow");
          if (top < 0) return LEAN_FAIL(12, nullptr);
          top = std::sqrt(top);
          NEXT;
        L_kLn:
          if (!std::isfinite(top)) return LEAN_FAIL(kFault, "Overflow");
          if (top <= 0) return LEAN_FAIL(13, nullptr);
          top = std::log(top);
          NEXT;
        L_kUnary: {
          if (!std::isfinite(top)) return LEAN_FAIL(kFault, "Overflow");
          Applied r = ApplyBuiltin(p->fn, 0, top);
          if (r.status) return LEAN_FAIL(r.status, r.fault);
          top = r.value;
          NEXT;
        }
        L_kBinary: L_kPow: {
          if (!std::isfinite(top) || !std::isfinite(*sp)) return LEAN_FAIL(kFault, "Overflow");
          Applied r = p->op == LeanOp::kPow ? Power(*sp, top) : ApplyBuiltin(p->fn, *sp, top);
          --sp;
          if (r.status) return LEAN_FAIL(r.status, r.fault);
          top = r.value;
          NEXT;
        }
        L_kCall: {
          // The arguments are the top `reg` values, deepest first.
          const int count = p->reg;
          double args[kLeanRegisterCount];
          args[0] = reg[0];
          args[1] = p->callee->usesRounded ? Round15(reg[0]) : 0;
          for (int j = 0; j < count; ++j) {
            const double a = Round15(j == count - 1 ? top : sp[j - count + 2]);
            if (!std::isfinite(a)) [[unlikely]] return Bail();
            args[kParamRegister + j] = a;
          }
          sp -= count - 1;
          top = CallLean(*p->callee, args);
          if (bailed) return 0;
          NEXT;
        }
        L_kSetParam:
          reg[p->reg] = Round15(top, p->guess);
          if (!std::isfinite(reg[p->reg])) [[unlikely]] return Bail();
          top = *sp--;
          NEXT;
        L_kBodyEnd:
          if (!std::isfinite(top)) [[unlikely]] return Bail();
          NEXT;
        L_kParamTerm: {
          const double v = Round15(top, p->guess);
          if (!std::isfinite(v)) [[unlikely]] return Bail();
          reg[p->reg] = v;
          top = Term(v, p->k, p->c);
          NEXT;
        }
        L_kParamTermEnd: {
          const double v = Round15(top, p->guess);
          if (!std::isfinite(v)) [[unlikely]] return Bail();
          reg[p->reg] = v;
          top = Term(v, p->k, p->c);
          if (!std::isfinite(top)) [[unlikely]] return Bail();
          NEXT;
        }
    }
  L_kEnd:
#undef NEXT
    if (!std::isfinite(top)) [[unlikely]] return LEAN_FAIL(kFault, "Overflow");
    return top;
#undef LEAN_FAIL
  }

  bool bailed = false;
  double Bail() {
    bailed = true;
    return 0;
  }

  double CallLean(const CompiledCode& body, double* args) {
    if (body.runRegisters) {
      const double r = body.runRegisters(body.lean.data(), args);
      return std::isfinite(r) ? r : Bail();
    }
    return RunLean(body, args, true);
  }

  // Lean code from the first step, or the full machine when the lean form left the point.
  double RunLeanOrFull(CompiledCode& c, double* reg, const double* bound = nullptr) {
    if (LeanCanStart(reg)) [[likely]] {
      double r = RunLean(c, reg);
      if (!bailed) [[likely]] return r;
      bailed = false;
    }
    return Run(c, nullptr, bound);
  }

  // The full machine reads an infinite x (or x read back beyond the range) without a fault
  // until arithmetic meets it; lean code checks values where it cannot tell them apart.
  static bool LeanCanStart(const double* reg) { return std::isfinite(reg[0]) && std::isfinite(reg[1]); }

  // A failing lean step reports the overflow before it, if one is on the stack, as the fault
  // it was. Out of line so that the lean loop keeps its values in registers.
  [[gnu::noinline, gnu::cold]] double LeanFailed(int code, const char* fault, double top, const double* base,
                                                  const double* sp) {
    bool overflowed = !std::isfinite(top);
    for (const double* q = base + 1; q <= sp; ++q) overflowed = overflowed || !std::isfinite(*q);
    ++e.busyDepth_;  // a message box may handle events
    if (overflowed || code == kFault) Fault(overflowed ? "Overflow" : fault);
    else e.Fail(code);
    --e.busyDepth_;
    return 0.0;
  }

  // The value of a first variable cell, by the operand rules 4 to 7.
  bool Bind(CompiledCode& c, int k, double last, double& out) {
    if (e.BindToX == 1 || e.IntegralBinding == 1) {
      out = e.XValue;
      c.varBound[k] = 1;
    } else if (e.StopRequested == 1) {
      out = last;  // winding down: no input boxes, and the cell keeps its name
    } else if (e.UnboundPolicy == 0 || e.UnboundPolicy == 1) {
      out = e.UnboundPolicy;
      c.varBound[k] = 1;
    } else {
      auto v = e.AskValue(c.vars[k].name);
      if (!v) return false;
      out = *v;
      c.varBound[k] = 1;
    }
    c.varValue[k] = out;
    return true;
  }

  bool Fault(const char* what) {
    e.ReportFault(what);
    return false;
  }

  // The stack machine. `top` holds the top value and is also the value last produced,
  // which a stopped run gives its variables; below it, the stack grows upward from slot 1.
  // `bound` holds the values of the bound registers (may be null when the code has none).
  [[gnu::hot, gnu::always_inline]] inline double Run(CompiledCode& c, const double* args,
                                                     const double* bound = nullptr) {
    double* sp = c.stack.data();
    double top = 0;
    double reg[kRegisterCount];
    reg[0] = e.XValue;
    reg[1] = c.usesRounded ? Round15(reg[0]) : 0;
    for (int k = 0; k < c.boundCount; ++k) reg[kFirstBoundRegister + k] = bound[k];
    if (!c.varBound.empty()) std::fill(c.varBound.begin(), c.varBound.end(), 0);
    for (const Instr& in : c.code) {
      switch (in.op) {
        case Op::kConst:
          *++sp = top;
          top = in.value;
          continue;
        case Op::kPushR:
          *++sp = top;
          top = reg[in.count];
          continue;
        case Op::kVar: {
          double v;
          if (!Bind(c, in.arg, top, v)) return 0;
          *++sp = top;
          top = v;
          continue;
        }
        case Op::kLinked:
          *++sp = top;
          top = c.varBound[in.arg] ? Round15(c.varValue[in.arg]) : c.vars[in.arg].unboundValue;
          continue;
        case Op::kParam:
          *++sp = top;
          top = Round15(args[in.arg]);
          continue;
        case Op::kAdd: top = *sp-- + top; break;
        case Op::kSub: top = *sp-- - top; break;
        case Op::kMul: top = *sp-- * top; break;
        case Op::kDiv:
          if (top == 0) return Error(11);
          top = *sp-- / top;
          break;
        case Op::kAddC: top = top + in.value; break;
        case Op::kSubC: top = top - in.value; break;
        case Op::kMulC: top = top * in.value; break;
        case Op::kDivC: top = top / in.value; break;
        case Op::kAddR: top = top + reg[in.count]; break;
        case Op::kSubR: top = top - reg[in.count]; break;
        case Op::kMulR: top = top * reg[in.count]; break;
        case Op::kDivR:
          if (reg[in.count] == 0) return Error(11);
          top = top / reg[in.count];
          break;
        case Op::kCMulR:
          *++sp = top;
          top = in.value * reg[in.count];
          break;
        case Op::kRPowInt:
          *++sp = top;
          top = reg[in.count];
          [[fallthrough]];
        case Op::kPowInt:
          if (!WholePower(top, in.arg)) {
            Fault("Division by zero");
            return 0;
          }
          break;
        case Op::kPow: {
          Applied r = Power(*sp--, top);
          if (r.status) return Status(r);
          top = r.value;
          continue;
        }
        case Op::kPowB: {
          const double b = reg[in.count];
          if (b != std::floor(b) || std::fabs(b) > 32767) {
            Applied r = Power(top, b);
            if (r.status) return Status(r);
            top = r.value;
            continue;
          }
          if (!WholePower(top, static_cast<int>(b))) {
            Fault("Division by zero");
            return 0;
          }
          break;
        }
        case Op::kUnary: {
          // The common functions inline; the rest (and every domain error) go the long way.
          switch (in.fn) {
            case Builtin::kSin: top = std::sin(top); continue;
            case Builtin::kCos: top = std::cos(top); continue;
            case Builtin::kAtan: top = std::atan(top); continue;
            case Builtin::kAbs: top = std::fabs(top); continue;
            case Builtin::kTan: top = std::tan(top); break;
            case Builtin::kExp: top = std::exp(top); break;
            case Builtin::kSqr:
              if (top < 0) return Error(12);
              top = std::sqrt(top);
              continue;
            case Builtin::kLn:
              if (top <= 0) return Error(13);
              top = std::log(top);
              continue;
            default: {
              Applied r = ApplyBuiltin(in.fn, 0, top);
              if (r.status) return Status(r);
              top = r.value;
              continue;
            }
          }
          break;
        }
        case Op::kBinary: {
          Applied r = ApplyBuiltin(in.fn, *sp--, top);
          if (r.status) return Status(r);
          top = r.value;
          continue;
        }
        case Op::kRandom:
          top = e.NextRandom(top >= 0);
          continue;
        case Op::kCall: {
          *++sp = top;          // the arguments are the top `count` values, deepest first
          sp -= in.count;
          top = e.CallUserFunction(in.arg, sp + 1, in.count);
          if (e.failed()) return 0;
          continue;
        }
        case Op::kError:
          return Error(in.arg);
        case Op::kFaultConst:
          Fault("Overflow");
          return 0;
      }
      // Arithmetic results: an overflow is a fault, never a value.
      if (!std::isfinite(top)) [[unlikely]] {
        Fault("Overflow");
        return 0;
      }
    }
    return top;
  }

  double Error(int code) {
    e.Fail(code);
    return 0;
  }

  double Status(const Applied& r) {
    if (r.status == kFault) Fault(r.fault);
    else e.Fail(r.status);
    return 0;
  }
};

CompiledCode& Engine::CodeAtDepth() {
  if (static_cast<size_t>(evalDepth_) < code_.size()) [[likely]] return *code_[evalDepth_];
  while (code_.size() <= static_cast<size_t>(evalDepth_)) code_.push_back(std::make_unique<CompiledCode>());
  return *code_[evalDepth_];
}

double Engine::EvaluateProgram(int16_t n) {
  ErrorFlag = 0;
  if (evalDepth_ >= kMaxCallDepth) {
    Fail(10);
    return 0;
  }
  CompiledCode& c = CodeAtDepth();
  Evaluator ev{*this};
  bool toolMode = BindToX == 1 || IntegralBinding == 1;
  if (c.identity != Program.identity_ || c.n != n || c.functionsVersion != functionsVersion_ ||
      c.toolMode != toolMode) {
    if (evalDepth_ == 0) leanIdentity_ = ~uint64_t{0};
    ev.Build(c, n, nullptr, toolMode);
  }
  ++evalDepth_;
  ++busyDepth_;
  double r;
  if (c.lean.empty() || XValue == 0 || (c.leanCalls && evalDepth_ + kMaxLeanNesting >= kMaxCallDepth)) {
    r = ev.Run(c, nullptr);
  } else {
    double reg[kLeanRegisterCount];
    reg[0] = XValue;
    reg[1] = c.usesRounded ? Round15(XValue) : 0;
    r = ev.RunLeanOrFull(c, reg);
  }
  --busyDepth_;
  --evalDepth_;
  return r;
}

double Engine::EvaluateLean(double x) {
  ErrorFlag = 0;
  XValue = x;
  double reg[kLeanRegisterCount];
  reg[0] = x;
  reg[1] = leanRounded_ ? Round15(x, xGuess_) : 0;
  if (leanRun_) {
    const double y = leanRun_(leanSteps_, reg);
    if (std::isfinite(y)) [[likely]] return y;
  }
  return EvaluateLeanStack(reg[0], reg[1]);
}

// Out of line, so that terms-only code pays for neither the stack nor the register file.
double Engine::EvaluateLeanStack(double x, double rounded) {
  double reg[kLeanRegisterCount];
  reg[0] = x;
  reg[1] = rounded;
  CompiledCode& c = *code_[0];
  Evaluator ev{*this};
  if (ev.LeanCanStart(reg)) [[likely]] {
    const double r = ev.RunLean(c, reg);
    if (!ev.bailed) [[likely]] return r;
  }
  ++evalDepth_;
  ++busyDepth_;
  const double full = ev.Run(c, nullptr);
  --busyDepth_;
  --evalDepth_;
  return full;
}

double Engine::EvaluateBound(CompiledCode& c, const SavedProgram& saved, const int16_t* cellRegister,
                             const double* values, double x) {
  ErrorFlag = 0;
  XValue = x;
  if (evalDepth_ >= kMaxCallDepth) {
    Fail(10);
    return 0;
  }
  const bool toolMode = BindToX == 1 || IntegralBinding == 1;
  if (c.identity != saved.program.identity_ || c.n != saved.n || c.functionsVersion != functionsVersion_ ||
      c.toolMode != toolMode || c.leanAllowed != leanCode_) [[unlikely]] {
    RestoreProgram(saved);
    Evaluator{*this}.Build(c, saved.n, nullptr, toolMode, cellRegister);
  }
  ++evalDepth_;
  ++busyDepth_;
  double reg[kLeanRegisterCount];
  reg[0] = x;
  reg[1] = c.usesRounded ? Round15(x) : 0;
  for (int k = 0; k < c.boundCount; ++k) reg[kFirstBoundRegister + k] = values[k];
  double r = 0;
  bool failed = true;
  if (c.lean.empty() || x == 0 || (c.leanCalls && evalDepth_ + kMaxLeanNesting >= kMaxCallDepth)) {
    r = Evaluator{*this}.Run(c, nullptr, values);
  } else {
    if (c.runRegisters) {
      r = c.runRegisters(c.lean.data(), reg);
      failed = !std::isfinite(r);
    }
    if (failed) r = Evaluator{*this}.RunLeanOrFull(c, reg, values);
  }
  --busyDepth_;
  --evalDepth_;
  return r;
}

double Engine::EvaluateAtSlow(const SavedProgram& saved, double x) {
  if (Program.identity_ != saved.program.identity_) RestoreProgram(saved);
  int16_t n = saved.n;
  XValue = x;
  if (sumsCheckedIdentity_ != saved.program.identity_) {
    sumsCheckedIdentity_ = saved.program.identity_;
    savedHasSums_ = programHasSums(n);
  }
  if (savedHasSums_) {
    CurrentSlot += 1;
    n = ComputeSigmas(n);
    CurrentSlot -= 1;
    if (n < 0) {
      ErrorFlag = 1;
      return 0;
    }
    XValue = x;
  }
  double r = EvaluateProgram(n);
  if (!savedHasSums_ && evalDepth_ == 0 && !code_.empty() && !code_[0]->lean.empty() &&
      code_[0]->identity == saved.program.identity_ && code_[0]->n == n && Program.identity_ == saved.program.identity_) {
    leanIdentity_ = saved.program.identity_;
    leanN_ = n;
    leanRounded_ = code_[0]->usesRounded;
    leanRun_ = code_[0]->runRegisters;
    leanSteps_ = code_[0]->lean.data();
  }
  return r;
}

void Engine::ReportFault(const char* description) {
  // Tool windows end a faulted run quietly; the main window and integrals say why once.
  if (!FaultFlag && (BindToX != 1 || IntegralBinding == 1)) host_->showFault(description);
  FaultFlag = true;
}

std::optional<double> Engine::AskValue(const std::string& name) {
  auto reply = host_->askValue(name);
  if (!reply) {
    CancelFlag = true;
    ErrorFlag = 1;
    return std::nullopt;
  }
  if (auto v = ReadNumber(*reply)) {
    if (!std::isfinite(*v)) {
      ReportFault("Overflow");
      return std::nullopt;
    }
    return *v;
  }
  double v = EvaluateConstantText(*reply);
  if (failed()) return std::nullopt;
  return v;
}

double Engine::NextRandom(bool reseed) {
  if (reseed) {
    auto now = std::chrono::high_resolution_clock::now().time_since_epoch().count();
    randomState_ ^= static_cast<uint64_t>(now);
  }
  return static_cast<double>(SplitMix(randomState_) >> 11) * 0x1.0p-53;
}

void Engine::setLeanCode(bool on) {
  leanCode_ = on;
  for (auto& c : code_) c->identity = ~uint64_t{0};
  leanIdentity_ = ~uint64_t{0};
}

bool Engine::hasLeanCode() const { return leanCode_ && !code_.empty() && !code_[0]->lean.empty(); }

bool Engine::runsInRegisters() const { return hasLeanCode() && code_[0]->runRegisters != nullptr; }

void Engine::InvalidateCallCache() {
  ++functionsVersion_;
  leanIdentity_ = ~uint64_t{0};
  if (busy()) {
    for (auto& entry : callCache_) retiredCache_.push_back(std::move(entry));
  } else {
    retiredCache_.clear();
  }
  callCache_.clear();
}

// Compiles slot's body for calls; false when the body must take the step-by-step path
// (it holds integrals or sums, whose entries the call must rebuild, or it does not compile).
bool Engine::BuildCallCode(int slot, CompiledCode& into) {
  const TokenList& body = TokenTable[slot];
  for (int i = 1; i <= body.Count; ++i) {
    if (body.Text[i] == "integ" || body.Text[i] == "sgm") return false;
  }
  merida::Program savedProgram = Program;
  TokenList savedTokens = TokenTable[CurrentSlot];
  std::string savedBody = BodyText;
  int16_t savedError = ErrorFlag;
  MissingCall savedMissing = missingCall_;
  muted_ = true;
  missingCall_ = MissingCall::kNotFound;
  BodyText = body.joined();
  TokenizeBody();
  int16_t n = ErrorFlag ? 0 : CompilePostfix(CurrentSlot);
  bool ok = ErrorFlag == 0;
  if (ok) Evaluator{*this}.Build(into, n, &FunctionTable[slot], BindToX == 1 || IntegralBinding == 1);
  muted_ = false;
  missingCall_ = savedMissing;
  Program = savedProgram;
  TokenTable[CurrentSlot] = std::move(savedTokens);
  BodyText = std::move(savedBody);
  ErrorFlag = savedError;
  return ok;
}

// The compiled body of slot for this mode, built once; null when it takes the step path.
CompiledCode* Engine::CallCode(int slot, bool toolMode) {
  const int mode = toolMode ? 1 : 0;
  if (callCache_.size() <= static_cast<size_t>(slot)) callCache_.resize(slot + 1);
  if (!callCache_[slot][mode]) {
    auto built = std::make_unique<CompiledCode>();
    if (!BuildCallCode(slot, *built)) return nullptr;
    // Building may build the bodies it calls, growing the cache (look the entry up again),
    // and may even have built this one: code built meanwhile can point at that copy, keep it.
    if (callCache_.size() <= static_cast<size_t>(slot)) callCache_.resize(slot + 1);
    if (!callCache_[slot][mode]) callCache_[slot][mode] = std::move(built);
  }
  CompiledCode* c = callCache_[slot][mode].get();
  if (c->running) {
    // The same body again inside its own run (a sum in a function it calls): the running
    // call keeps its stack, this one works on a copy kept for its depth.
    while (callCopies_.size() <= static_cast<size_t>(evalDepth_)) callCopies_.push_back(std::make_unique<CompiledCode>());
    CompiledCode& copy = *callCopies_[evalDepth_];
    copy = *c;
    copy.running = 0;
    c = &copy;
  }
  return c;
}

double Engine::CallUserFunction(int slot, const double* args, int count) {
  if (evalDepth_ >= kMaxCallDepth) {
    Fail(10);
    return 0;
  }
  if (CompiledCode* c = CallCode(slot, BindToX == 1 || IntegralBinding == 1)) {
    ErrorFlag = 0;
    ++c->running;
    ++evalDepth_;
    double r = Evaluator{*this}.Run(*c, args);
    --evalDepth_;
    --c->running;
    return r;
  }
  return CallStepByStep(slot, args, count);
}

// Recompiles the body, substitutes the arguments, folds, evaluates. The call may use the
// integral table, the work slot and the bindings; the caller finds them as it left them.
double Engine::CallStepByStep(int slot, const double* args, int count) {
  if (CurrentSlot + 1 >= kSlotCount) {
    Fail(10);
    return 0;
  }
  const FunctionHeader& f = FunctionTable[slot];
  merida::Program savedProgram = Program;
  TokenList savedTokens = TokenTable[CurrentSlot];
  std::string savedBody = BodyText;
  auto savedTable = IntegralTable;
  int16_t savedCount = IntegralCount, savedBinding = IntegralBinding;
  double savedX = XValue;
  MissingCall savedMissing = missingCall_;
  missingCall_ = MissingCall::kNotFound;

  double r = 0;
  bool ok = false;
  BodyText = TokenTable[slot].joined();
  if (ExpandIntegrals() >= 0 && ExpandSigmas() >= 0 && !failed()) {
    TokenizeBody();
    int16_t n = ErrorFlag ? 0 : CompilePostfix(CurrentSlot);
    if (!ErrorFlag) {
      for (int j = 1; j <= f.ParamCount && j <= count; ++j) {
        std::string text = PlainText(args[j - 1]);
        for (int i = 1; i <= n; ++i) {
          if (Program.cells_[i].Value == f.Param[j]) Program.cells_[i].Value = text;
        }
        for (int k = 1; k <= IntegralCount; ++k) {
          IntegralEntry& e = IntegralTable[k];
          for (std::string* field : {&e.LowerText, &e.UpperText, &e.FourthText}) {
            if (*field == f.Param[j]) *field = text;
          }
        }
      }
      Touch();
      n = ComputeIntegrals(n);
      if (n >= 0) {
        CurrentSlot += 1;
        n = ComputeSigmas(n);
        CurrentSlot -= 1;
      }
      if (n >= 0 && !failed()) {
        r = EvaluateProgram(n);
        ok = !failed();
      }
    }
  }
  missingCall_ = savedMissing;
  Program = savedProgram;
  TokenTable[CurrentSlot] = std::move(savedTokens);
  BodyText = std::move(savedBody);
  IntegralTable = std::move(savedTable);
  IntegralCount = savedCount;
  IntegralBinding = savedBinding;
  XValue = savedX;
  if (!ok) {
    ErrorFlag = 1;
    return 0;
  }
  return r;
}

}  // namespace merida
