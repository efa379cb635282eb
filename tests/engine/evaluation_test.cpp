// Operand rules: asking, linking, tool-window binding, stop, policy; EvaluateConstantText.
#include <bit>
#include <cmath>
#include <random>
#include <string>
#include <vector>

#include "engine/engine.h"
#include "engine/number_text.h"
#include "main/calculator.h"
#include "test_support.h"

namespace merida {
namespace {

using test::RecordingHost;

// Compiles a formula the way a tool window does; returns the program length.
int16_t CompileForTool(Engine& e, const std::string& formula) {
  e.BeginRun(1, formula);
  e.SplitFormula();
  if (e.ExpandIntegrals() < 0 || e.ExpandSigmas() < 0) return -1;
  e.ParseHeader();
  e.TokenizeBody();
  if (e.failed()) return -1;
  int16_t n = e.CompilePostfix(e.CurrentSlot);
  if (e.failed()) return -1;
  n = e.ComputeIntegrals(n);
  if (n < 0) return -1;
  if (e.HeaderText.empty()) e.CollectVariables();
  else e.CheckParameters();
  return e.failed() ? -1 : n;
}

TEST(Evaluation, AsksEachVariableOnceInPostfixOrder) {
  struct Row {
    const char* formula;
    std::vector<std::string> prompts;
  };
  const Row rows[] = {
      {"x+x", {"x"}},
      {"x+y", {"x", "y"}},
      {"y*x+x*y", {"y", "x"}},
      {"sin(b)+a", {"b", "a"}},
      {"X+x", {"X", "x"}},
      {"PI+E+3", {}},
  };
  for (const Row& r : rows) {
    RecordingHost host;
    Engine e(host);
    ASSERT_TRUE(Calc(e, r.formula)) << r.formula;
    EXPECT_EQ(host.prompts, r.prompts) << r.formula;
  }
}

TEST(Evaluation, CancelledInputBoxEndsWithoutAnswerOrMessage) {
  RecordingHost host;
  host.answers = {std::string("1"), std::nullopt};
  Engine e(host);
  EXPECT_FALSE(Calc(e, "x+y+z"));
  EXPECT_EQ(host.prompts, (std::vector<std::string>{"x", "y"}));
  EXPECT_TRUE(host.errors.empty());
  EXPECT_TRUE(e.CancelFlag);
  // The next Calc starts afresh.
  host.answers = {std::string("2")};
  EXPECT_EQ(Calc(e, "x*3"), "6");
}

// Later cells of a variable read the first cell's text back, so they carry 15 digits.
TEST(Evaluation, LinkedCellsCarryFifteenDigits) {
  RecordingHost host;
  Engine e(host);
  const double x = 0.1 + 0.2;  // 0.30000000000000004
  int16_t n = CompileForTool(e, "x-x");
  ASSERT_GT(n, 0);
  SavedProgram saved = e.SaveProgram(n);
  double y = e.EvaluateAt(saved, x);
  EXPECT_FALSE(e.failed());
  EXPECT_EQ(y, x - Round15(x));
  EXPECT_NE(y, 0.0);
  // A single use takes XValue exactly.
  n = CompileForTool(e, "x*1");
  saved = e.SaveProgram(n);
  EXPECT_EQ(e.EvaluateAt(saved, x), x);
}

TEST(Evaluation, ToolModeBindsEveryFreeVariableToX) {
  RecordingHost host;
  Engine e(host);
  int16_t n = CompileForTool(e, "x^2+3*x+1");
  ASSERT_GT(n, 0);
  EXPECT_EQ(e.FunctionTable[e.CurrentSlot].ParamCount, 1);
  SavedProgram saved = e.SaveProgram(n);
  for (double x : {-2.0, 0.0, 0.5, 3.0}) {
    EXPECT_DOUBLE_EQ(e.EvaluateAt(saved, x), x * x + 3 * x + 1) << x;
  }
  EXPECT_TRUE(host.prompts.empty());
  n = CompileForTool(e, "x*y");
  ASSERT_GT(n, 0);
  EXPECT_EQ(e.FunctionTable[e.CurrentSlot].ParamCount, 2);
}

TEST(Evaluation, ToolModeErrorsAndFaultsEndQuietly) {
  RecordingHost host;
  Engine e(host);
  int16_t n = CompileForTool(e, "1/x");
  SavedProgram saved = e.SaveProgram(n);
  e.EvaluateAt(saved, 0);
  EXPECT_EQ(e.ErrorFlag, 1);
  EXPECT_EQ(host.errors, std::vector<int>{11});
  n = CompileForTool(e, "exp(x)");
  saved = e.SaveProgram(n);
  e.EvaluateAt(saved, 1000);
  EXPECT_TRUE(e.FaultFlag);
  EXPECT_TRUE(host.faults.empty()) << "a tool ends a faulted run without a message";
}

TEST(Evaluation, SumsFollowThePointInToolMode) {
  RecordingHost host;
  Engine e(host);
  int16_t n = CompileForTool(e, "sgm(k*x,1,3,k)");
  ASSERT_GT(n, 0);
  SavedProgram saved = e.SaveProgram(n);
  EXPECT_EQ(e.EvaluateAt(saved, 1), 6);
  EXPECT_EQ(e.EvaluateAt(saved, 2), 12);
  EXPECT_EQ(e.EvaluateAt(saved, 0.5), 3);
}

TEST(Evaluation, IntegralsAreComputedOncePerRun) {
  RecordingHost host;
  host.answers = {std::string("1"), std::string("5")};
  Engine e(host);
  int16_t n = CompileForTool(e, "x+integ(t,0,b,10)");
  ASSERT_GT(n, 0);
  EXPECT_EQ(host.prompts, std::vector<std::string>{"b"});
  SavedProgram saved = e.SaveProgram(n);
  EXPECT_EQ(e.EvaluateAt(saved, 1), 1.5);
  EXPECT_EQ(e.EvaluateAt(saved, 2), 2.5);
  EXPECT_EQ(host.prompts.size(), 1u);
  // The formula's own variables are still x alone.
  EXPECT_EQ(e.FunctionTable[e.CurrentSlot].ParamCount, 1);
}

TEST(Evaluation, UnboundPolicyAndStopRequest) {
  RecordingHost host;
  Engine e(host);
  for (int16_t policy : {0, 1}) {
    e.BeginRun(-1, "x+1");
    e.UnboundPolicy = policy;
    e.SplitFormula();
    e.TokenizeBody();
    int16_t n = e.CompilePostfix(e.CurrentSlot);
    EXPECT_EQ(e.EvaluateProgram(n), policy + 1);
  }
  e.BeginRun(-1, "5+x");
  e.SplitFormula();
  e.TokenizeBody();
  int16_t n = e.CompilePostfix(e.CurrentSlot);
  e.StopRequested = 1;  // winding down: the variable takes the value last produced
  EXPECT_EQ(e.EvaluateProgram(n), 10);
  EXPECT_TRUE(host.prompts.empty());
}

TEST(Evaluation, ConstantTexts) {
  struct Row {
    const char* text;
    double value;
    int error;
  };
  const Row rows[] = {
      {"PI/2", 3.14159265358979 / 2, 0}, {"-1", -1, 0},       {"+2", 2, 0},       {"2^3^2", 64, 0},
      {"2*(3+4)", 14, 0},                {"1E-5", 1e-5, 0},   {"", 0, 0},         {"abc", 0, 0},
      {"12abc+1", 13, 0},                {"1/0", 0, 11},      {"(-8)^(1/3)", 0, 14}, {"(2", 0, 23},
      {"2)", 0, 23},                     {"2+", 0, 22},       {"2*(-3)", -6, 0},  {"E", 2.71828182845905, 0},
      {" 1 2 ", 12, 0},
  };
  for (const Row& r : rows) {
    RecordingHost host;
    Engine e(host);
    double v = e.EvaluateConstantText(r.text);
    if (r.error) {
      EXPECT_EQ(host.errors, std::vector<int>{r.error}) << r.text;
    } else {
      EXPECT_TRUE(host.errors.empty()) << r.text;
      EXPECT_DOUBLE_EQ(v, r.value) << r.text;
    }
  }
}

TEST(Evaluation, HostileTextsEndInAnErrorOrAnAnswer) {
  std::vector<std::string> texts = {std::string(100000, '('), std::string(5000, '1'), std::string(3000, '-'),
                                    "\xff\xfe\x00", "integ(integ(x,0,1,2),0,1,2)", "sgm(sgm(k,1,2,k),1,2,j)",
                                    ",,,", "((()))", "1e308*10", "f(((", "!!!", "^", "(,)", "=", "==="};
  std::string many;
  for (int i = 0; i < 2000; ++i) many += "sin(";
  texts.push_back(many);
  for (const auto& t : texts) {
    RecordingHost host;
    Engine e(host);
    auto answer = Calc(e, t);
    EXPECT_TRUE(answer || !host.errors.empty() || !host.faults.empty() || e.failed()) << t.substr(0, 40);
  }
}


// Tool code runs in a lean form that checks for overflow only where a step could hide it.
// It must give the full machine's value to the bit, and the same error or fault, in the
// same order: an overflow earlier in the formula wins over a later error.
struct LeanOutcome {
  double value;
  int16_t error;
  bool fault;
  std::vector<int> shown;
  bool lean;  // the code had a lean form
};

// User functions the formulas call: plain terms, several parameters, calls inside bodies,
// domain errors and divisions inside a body, a body that reads x as a free variable.
const char* const kLeanFunctions[] = {
    "f(x)=x^2", "g(a,b)=a/b-b", "h(t)=f(t)+1/t", "q(u)=sqr(u)*exp(0-u)", "w(v)=ln(v)+v*v", "s(t)=t",
    "p(t)=3*t^2-t+1", "m(t)=t*t*t", "c(t)=p(m(t))*2", "k(t)=2-t",
};

LeanOutcome RunTool(bool lean, const std::string& formula, double x) {
  RecordingHost host;
  Engine e(host);
  for (const char* f : kLeanFunctions) EXPECT_TRUE(e.RegisterFormula(f)) << f;
  e.setLeanCode(lean);
  int16_t n = CompileForTool(e, formula);
  EXPECT_GT(n, 0) << formula;
  SavedProgram saved = e.SaveProgram(n);
  e.EvaluateAt(saved, 0.75);  // a first point builds the code; the second runs it as a tool's loop does
  e.FaultFlag = false;
  e.ErrorFlag = 0;
  host.errors.clear();
  double y = e.EvaluateAt(saved, x);
  return LeanOutcome{y, e.ErrorFlag, e.FaultFlag, host.errors, e.hasLeanCode()};
}

// Points at the corners: signs, 15-digit read-backs that differ from x, tiny and huge values
// whose powers overflow or underflow, the top of the range (its text reads back as infinite).
const double kLeanPoints[] = {1, -1, 0.3, 0.1 + 0.2, 2.5, 1e-8, 1e20, -1e200, 1e300, 0, 7.000000000000001,
                              -0.1, 1e-170, 1.7976931348623157e308, 123456.78901234567};

// Returns whether the formula had a lean form at all.
bool ExpectLeanAgrees(const std::string& f) {
  bool reached = false;
  for (double x : kLeanPoints) {
    LeanOutcome lean = RunTool(true, f, x), full = RunTool(false, f, x);
    reached = reached || lean.lean;
    EXPECT_FALSE(full.lean) << f;
    EXPECT_EQ(std::bit_cast<uint64_t>(lean.value), std::bit_cast<uint64_t>(full.value))
        << f << " at " << x << ": " << lean.value << " vs " << full.value;
    EXPECT_EQ(lean.error, full.error) << f << " at " << x;
    EXPECT_EQ(lean.fault, full.fault) << f << " at " << x;
    EXPECT_EQ(lean.shown, full.shown) << f << " at " << x;
  }
  return reached;
}

TEST(Evaluation, LeanToolCodeAgreesWithTheFullMachine) {
  const char* formulas[] = {
      "x^2+3*x+1", "2*x^4-3*x^3+x^2-5*x+7", "sin(x)*cos(x)+exp(0-x^2)", "(x+1)*(x-1)/(x+2)",
      "x-x", "0-x^3", "x^3*2-x", "x*x/x", "x/2/x", "3/x^2", "x^-2", "x^0", "x^x", "x^2.5",
      "sqr(x)", "ln(x)", "Jn(1,x)", "comb(x,2)", "sin(x)^2/(1+cos(x)^2)", "abs(x)*1e308*10",
      "x*1e300*1e300-ln(0)", "atan(x*1e300*1e300)", "exp(0-x*1e300*1e300)", "1/(x*1e300*1e300)",
      "tanh(x*1e300)", "sqr(0-x)+x*1e300*1e300", "x*1e300*1e300/(x-x)", "(x*1e300*1e300)+sqr(0-1)",
      "x*x*x*x", "1/(x-1)", "x/(x-x)", "(x-1)^2*(x+1)^2", "x^3/x^2", "x+x*x+x*x*x",
      // The per-point formulas tool windows are measured by.
      "sin(x)^2+cos(x)^2", "(x+1)*(x-1)/(x^2+1)", "exp(0-x*x/2)*sqr(2*x+1)",
      "sin(x)+cos(2*x)+tan(x/40)+exp(0-x/10)+ln(x+1)+sqr(x)+abs(x-5)+sinh(x/9)-cosh(x/9)+atan(x)*tanh(x)+log(x+2)",
      // Calls: chains, several arguments, errors and overflows inside bodies, around calls.
      "f(x)", "f(f(x))", "f(f(f(f(f(f(f(f(x))))))))", "g(x,2)", "g(2,x)", "g(x,x-x)", "h(x)", "h(x-x)",
      "q(x)", "w(x)", "w(0-x)", "f(x)*1e300*1e300-w(0)", "w(0)+f(x)*1e300*1e300", "s(x)", "s(s(x))-x",
      "f(x*1e300)", "1/f(x)", "g(f(x),h(x))+q(f(x))", "x-s(x)", "f(x)^2/s(x)", "p(x)", "m(p(x))-p(m(x))",
      "c(x)", "c(c(x))", "p(x)*m(x)/f(x)", "ln(m(x))+p(0-x)", "x/2", "x/0.25/(0-4)", "x/1e300/1e300/2",
      "1-(x+2)*3", "2/(x-1)", "1/(x*1e300*1e300)+ln(0)", "cosh(x)*tanh(x)-sinh(x)/log(x)", "k(x)*k(k(x))",
      "1/k(x*1e300*1e300)", "k(x-1e300*1e300)+ln(0)", "x/(x*1e300+1)", "(x-1)/(x*1e300-1)-ln(0)",
  };
  for (const char* f : formulas) ExpectLeanAgrees(f);
  // Calls, divisions by expressions, exp and sqr of expressions and nested parentheses run lean.
  for (const char* f : {"f(f(f(x)))", "g(f(x),h(x))+q(f(x))", "(x+1)*(x-1)/(x^2+1)", "exp(0-x*x/2)*sqr(2*x+1)",
                        "w(x)", "((x+1)*(x-2))/((x-3)*(x+4))"}) {
    EXPECT_TRUE(ExpectLeanAgrees(f)) << f;
  }
  // The per-point formulas tool windows are measured by, and call chains, keep their values in
  // registers; deeper stacks and calls that are not copied in use the stack in memory.
  const std::pair<const char*, bool> forms[] = {
      {"x^2+3*x+1", true}, {"sin(x)^2+cos(x)^2", true}, {"(x+1)*(x-1)/(x^2+1)", true},
      {"exp(0-x*x/2)*sqr(2*x+1)", true}, {"f(f(f(f(f(f(f(f(x))))))))", true}, {"k(k(x))*p(x)", true},
      {"sin(x)+cos(2*x)+tan(x/40)+exp(0-x/10)+ln(x+1)+sqr(x)+abs(x-5)+sinh(x/9)-cosh(x/9)+atan(x)*tanh(x)+log(x+2)",
       false},
      {"(x+1)*((x+2)*((x+3)*((x+4)*abs(x+5))))", false}, {"g(x,2)", false},
  };
  for (const auto& [formula, registers] : forms) {
    RecordingHost host;
    Engine e(host);
    for (const char* f : kLeanFunctions) e.RegisterFormula(f);
    SavedProgram saved = e.SaveProgram(CompileForTool(e, formula));
    e.EvaluateAt(saved, 0.75);
    EXPECT_TRUE(e.hasLeanCode()) << formula;
    EXPECT_EQ(e.runsInRegisters(), registers) << formula;
  }
  // The cases above must reach both outcomes, or they test nothing about ordering.
  EXPECT_TRUE(RunTool(true, "x*1e300*1e300-ln(0)", 1).fault);
  EXPECT_EQ(RunTool(true, "x*1e300*1e300-ln(0)", 1).shown, std::vector<int>{});
  EXPECT_EQ(RunTool(true, "x-ln(0)", 1).shown, std::vector<int>{13});
  EXPECT_TRUE(RunTool(true, "atan(x*1e300*1e300)", 1).fault);
  EXPECT_EQ(RunTool(true, "w(0)+f(x)*1e300*1e300", 1).shown, std::vector<int>{13});
  EXPECT_TRUE(RunTool(true, "f(f(f(f(f(f(f(f(x))))))))", 20).fault);
  EXPECT_FALSE(RunTool(true, "f(f(f(f(f(f(f(f(x))))))))", 10).fault);
  // A parameter holds its argument read back in 15 digits.
  EXPECT_EQ(RunTool(true, "x-s(x)", 0.1 + 0.2).value, (0.1 + 0.2) - Round15(0.1 + 0.2));
}

// Random formulas: any mix of the operations, powers, parentheses, built-ins and calls.
std::string RandomLeanFormula(std::mt19937& rng, int depth) {
  static const char* const atoms[] = {"x", "x", "x", "0", "1", "2", "0.5", "3", "1e300", "PI", "7", "0.25", "0.001"};
  static const char* const ops[] = {"+", "-", "*", "/", "^"};
  static const char* const functions[] = {"sin", "cos", "atan", "abs", "tan", "exp", "sqr",
                                          "ln",  "sinh", "log", "f",  "h",   "q",   "w", "s",
                                          "p",   "m",    "c",  "cosh", "tanh"};
  auto pick = [&rng](int n) { return std::uniform_int_distribution<int>(0, n - 1)(rng); };
  const int c = pick(10);
  if (depth == 0 || c < 3) return atoms[pick(13)];
  const std::string left = RandomLeanFormula(rng, depth - 1);
  if (c < 7) return "(" + left + ops[pick(5)] + RandomLeanFormula(rng, depth - 1) + ")";
  if (c < 8) return left + ops[pick(4)] + RandomLeanFormula(rng, depth - 1);  // precedence decides
  if (c < 9) return "g(" + left + "," + RandomLeanFormula(rng, depth - 1) + ")";
  return std::string(functions[pick(20)]) + "(" + left + ")";
}

TEST(Evaluation, LeanToolCodeAgreesOnRandomFormulas) {
  std::mt19937 rng(1717);
  int lean = 0;
  for (int i = 0; i < 1000; ++i) {
    std::string formula = RandomLeanFormula(rng, 4);
    if (formula.find('x') == std::string::npos) formula += "+x";
    if (ExpectLeanAgrees(formula)) ++lean;
  }
  EXPECT_GT(lean, 750);
}

}  // namespace
}  // namespace merida
