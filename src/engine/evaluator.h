// The evaluator's flat form of a postfix program (internal to the engine).
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "engine/number_text.h"

#include "engine/builtins.h"
#include "engine/engine.h"

namespace merida {

enum class Op : uint8_t {
  kConst,    // push value
  kVar,      // first cell of a free variable: bound by the operand rules
  kLinked,   // a later cell of the same variable: reads the first cell's text back
  kParam,    // a user function's parameter: the argument in 15 digits
  kAdd, kSub, kMul, kDiv,
  kAddC, kSubC, kMulC, kDivC,  // the top value with a constant right operand
  kPow, kPowInt,               // kPowInt: a constant integral exponent in `arg`
  // Tool mode, where every free variable is x: register 0 is x, register 1 is x read back
  // in 15 digits (what later cells of a variable hold). `count` names the register.
  kPushR, kAddR, kSubR, kMulR, kDivR,
  kRPowInt,  // push register^arg
  kCMulR,    // push value * register
  // Registers 2 and up hold bound cells: numbers a tool puts into named cells at every point.
  kPowB,     // top ^ bound register: an integral exponent in 16 bits takes the integral power,
             // as the number cell it stands for would have been fused into kPowInt
  kUnary, kBinary, kRandom,
  kCall,     // user function: slot in `arg`, parameter count in `count`
  kError,    // reaching this cell is error `arg`
  kFaultConst,  // a literal beyond the range of a Double
};

struct Instr {
  Op op;
  Builtin fn = Builtin::kNone;
  int16_t arg = 0;
  int16_t count = 0;
  double value = 0;
};

// The lean form of tool-mode code. Steps that keep a non-finite value non-finite (+, -, *,
// divisions, positive integral powers) run unchecked; a step that could hide one (a function)
// checks its input, and a step that fails first looks for an earlier overflow on the stack.
// So any overflow is still reported as a fault and before any later error, with one check
// at the end. A term is c * register^k, computed exactly as the steps it replaces.
enum class LeanOp : uint8_t {
  kPushC, kPushReg, kPushTerm, kPushNegTerm, kAddTerm, kSubTerm, kMulTerm, kDivReg,
  kAddC, kSubC, kMulC, kDivC, kAdd, kSub, kMul, kDiv, kPowInt,
  kSin, kCos, kAtan, kAbs, kTan, kExp, kSqr, kLn,  // the common functions, dispatched once
  kSinh, kCosh, kTanh, kLog,  // computed as the built-ins compute them
  kUnary, kBinary, kPow,
  kCall,  // a user function's lean code: `reg` arguments, each read back in 15 digits
  // A one-parameter body of terms, copied in: the argument read back into register `reg`
  // (popped), the body's steps, then a check that leaves the point to the full machine if
  // the body overflowed.
  kSetParam, kBodyEnd,
  kParamTerm,  // kSetParam then the body's first step, a term of that register: c * register^k
  kPushTermAddC,  // push c * register^k + d
  kRevSubC, kRevDivC,  // c - top, c / top: a constant pushed before a run of steps on one value
  kParamTermEnd,  // kParamTerm of a body that is that one term, then kBodyEnd
  // A term plus d and the step that takes it: top + term + d, top * (term + d), top / (term + d).
  kAddTermAddC, kMulTermAddC, kDivTermAddC,
  kEnd,
};

struct CompiledCode;

struct LeanInstr {
  LeanOp op;
  uint8_t reg = 0;
  int16_t k = 1;
  double c = 1;
  Builtin fn = Builtin::kNone;
  const CompiledCode* callee = nullptr;
  double d = 0;
  mutable detail::Round15Guess guess{};  // of a step that reads a value back
};

struct VariableSlot {
  std::string name;
  double unboundValue = 0;  // what a linked cell reads when the first cell kept its name
};

constexpr int kFirstBoundRegister = 2;
constexpr int kMaxBoundCells = 32;  // values a tool binds per point (more take the text path)
constexpr int kRegisterCount = kFirstBoundRegister + kMaxBoundCells;
// A called body's registers: x, x read back, then its parameters (never bound cells).
constexpr int kParamRegister = kFirstBoundRegister;
constexpr int kCalleeRegisterCount = kParamRegister + kMaxParameters;
// Lean code calls bodies at most this deep; deeper calls (and circular ones) run full.
constexpr int kMaxLeanNesting = 8;
// Registers of lean code: those above kRegisterCount hold the parameters of copied bodies.
constexpr int kLeanRegisterCount = kRegisterCount + 64;

struct CompiledCode {
  uint64_t identity = ~uint64_t{0};
  int16_t n = -1;
  uint64_t functionsVersion = 0;
  bool toolMode = false;        // built for BindToX = 1: variables read x directly
  bool usesRounded = false;     // register 1 is needed
  std::vector<Instr> code;
  std::vector<LeanInstr> lean;  // empty unless the whole code has a lean form
  bool termsOnly = false;       // lean code that is one running value (copied into callers)
  RegisterRunner runRegisters = nullptr;  // RegisterRunnerFor(lean)
  bool leanCalls = false;       // lean code that calls bodies
  bool leanAllowed = true;      // the engine's lean switch when this was built
  int16_t boundCount = 0;       // bound registers the code reads
  int running = 0;              // calls of this code under way
  std::vector<VariableSlot> vars;
  // Run-time storage, sized once so that evaluating allocates nothing.
  std::array<double, kMaxTokens + 2> stack{};
  std::vector<double> varValue;
  std::vector<uint8_t> varBound;
};

constexpr double kPiValue = 3.14159265358979;  // the constants PI and E
constexpr double kEValue = 2.71828182845905;

// a^k for k >= 1 by repeated products, as the power step makes it (for a != 0).
[[gnu::always_inline]] inline double IntPower(double a, int k) {
  double r = a;
  for (int i = 1; i < k; ++i) r *= a;
  return r;
}

// top^k for a whole k, as the integral power instructions compute it; false when a negative k
// meets a power that underflowed to 0.
[[gnu::always_inline]] inline bool WholePower(double& top, int k) {
  if (k == 0) {
    top = 1;
    return true;
  }
  if (top == 0) return true;  // 0^k is 0, also for negative k
  double r = IntPower(top, k < 0 ? -k : k);
  if (k < 0) {
    if (r == 0) return false;
    r = 1 / r;
  }
  top = r;
  return true;
}


// c * r^k as the separate steps make it. A product by 1 changes no value: it is left out.
[[gnu::always_inline]] inline double Term(double r, int k, double c) {
  const double t = IntPower(r, k);
  return c == 1 ? t : t * c;
}

// A called slot's code with a lean form, or null.
using LeanCallee = std::function<const CompiledCode*(int slot)>;

// The lean form of tool-mode code, or nothing when a step needs the full machine. Sets
// `usesRounded` when a copied body reads x back.
std::vector<LeanInstr> MakeLean(const std::vector<Instr>& code, const LeanCallee& callee, bool& usesRounded);
// True for the steps of a called body copied into its caller.
inline bool IsCopiedBodyStep(LeanOp op) {
  return op == LeanOp::kSetParam || op == LeanOp::kParamTerm || op == LeanOp::kParamTermEnd;
}
// True when lean code is one running value combined with terms and constants.
bool IsTermsOnly(const std::vector<LeanInstr>& lean);
// Stack values a register run keeps at most.
constexpr int kRegisterDepth = 4;
// The runner that keeps lean code's values in registers, or null when the code calls bodies
// it has not copied in or holds too many values (it runs on the stack in memory). It writes
// copied bodies' parameters into `reg`, which holds kLeanRegisterCount values. Its result is not finite when a
// step would fail or overflowed: the stack form then runs the point and reports why.
RegisterRunner RegisterRunnerFor(const std::vector<LeanInstr>& lean);

}  // namespace merida
