// Per-point evaluation as a tool window runs it, beside muparser and hand-written C++.
#include <benchmark/benchmark.h>
#include <muParser.h>

#include <cmath>
#include <functional>
#include <string>

#include "engine/engine.h"
#include "engine/number_text.h"
#include "engine/record_table.h"
#include "main/calculator.h"

namespace {

using merida::Engine;
using merida::SavedProgram;

struct Formula {
  const char* name;
  const char* merida;
  const char* muparser;
  double (*native)(double);
  double top;  // x sweeps 0.1..top
};

// The first six hand-written again with x at its first cell and r, x read back in 15 digits,
// at the later ones, as the engine must read them.
using ReadBackForm = double (*)(double x, double r);
const ReadBackForm kReadBackForms[] = {
    [](double x, double r) { return x * x + 3 * r + 1; },
    [](double x, double r) {
      double s = std::sin(x), c = std::cos(r);
      return s * s + c * c;
    },
    [](double x, double r) { return (x + 1) * (r - 1) / (r * r + 1); },
    [](double x, double r) { return std::exp(0 - x * r / 2) * std::sqrt(2 * r + 1); },
    [](double x, double r) { return 2 * (x * x * x * x) - 3 * (r * r * r) + r * r - 5 * r + 7; },
    [](double x, double r) {
      return std::sin(x) + std::cos(2 * r) + std::tan(r / 40) + std::exp(0 - r / 10) + std::log(r + 1) +
             std::sqrt(r) + std::fabs(r - 5) + std::sinh(r / 9) - std::cosh(r / 9) + std::atan(r) * std::tanh(r) +
             std::log10(r + 2);
    },
};

// The same mathematics in each form (muparser spells sqrt, log10 and unary minus its own way).
// The first six are the per-point formulas the tool windows are measured by, over 0.1..10.
const Formula kFormulas[] = {
    {"poly2", "x^2+3*x+1", "x^2+3*x+1", [](double x) { return x * x + 3 * x + 1; }, 10},
    {"pythagoras", "sin(x)^2+cos(x)^2", "sin(x)^2+cos(x)^2",
     [](double x) {
       double s = std::sin(x), c = std::cos(x);
       return s * s + c * c;
     },
     10},
    {"rational", "(x+1)*(x-1)/(x^2+1)", "(x+1)*(x-1)/(x^2+1)", [](double x) { return (x + 1) * (x - 1) / (x * x + 1); },
     10},
    {"gauss", "exp(0-x*x/2)*sqr(2*x+1)", "exp(0-x*x/2)*sqrt(2*x+1)",
     [](double x) { return std::exp(0 - x * x / 2) * std::sqrt(2 * x + 1); }, 10},
    {"poly4", "2*x^4-3*x^3+x^2-5*x+7", "2*x^4-3*x^3+x^2-5*x+7",
     [](double x) { return 2 * (x * x * x * x) - 3 * (x * x * x) + x * x - 5 * x + 7; }, 10},
    {"eleven",
     "sin(x)+cos(2*x)+tan(x/40)+exp(0-x/10)+ln(x+1)+sqr(x)+abs(x-5)+sinh(x/9)-cosh(x/9)+atan(x)*tanh(x)+log(x+2)",
     "sin(x)+cos(2*x)+tan(x/40)+exp(0-x/10)+ln(x+1)+sqrt(x)+abs(x-5)+sinh(x/9)-cosh(x/9)+atan(x)*tanh(x)+log10(x+2)",
     [](double x) {
       return std::sin(x) + std::cos(2 * x) + std::tan(x / 40) + std::exp(0 - x / 10) + std::log(x + 1) +
              std::sqrt(x) + std::fabs(x - 5) + std::sinh(x / 9) - std::cosh(x / 9) + std::atan(x) * std::tanh(x) +
              std::log10(x + 2);
     },
     10},
    {"poly2_to100", "x^2+3*x+1", "x^2+3*x+1", [](double x) { return x * x + 3 * x + 1; }, 100},
    {"poly4_to100", "2*x^4-3*x^3+x^2-5*x+7", "2*x^4-3*x^3+x^2-5*x+7",
     [](double x) { return 2 * (x * x * x * x) - 3 * (x * x * x) + x * x - 5 * x + 7; }, 100},
    {"trig", "sin(x)*cos(x)+exp(0-x^2)", "sin(x)*cos(x)+exp(0-x^2)",
     [](double x) { return std::sin(x) * std::cos(x) + std::exp(0 - x * x); }, 100},
    {"mix", "sqr(abs(x))+ln(x^2+1)+atan(x)*tanh(x)-sin(x)^2/(1+cos(x)^2)+log(x^2+2)*exp(x/10)",
     "sqrt(abs(x))+ln(x^2+1)+atan(x)*tanh(x)-sin(x)^2/(1+cos(x)^2)+log10(x^2+2)*exp(x/10)",
     [](double x) {
       double s = std::sin(x), c = std::cos(x);
       return std::sqrt(std::fabs(x)) + std::log(x * x + 1) + std::atan(x) * std::tanh(x) - s * s / (1 + c * c) +
              std::log10(x * x + 2) * std::exp(x / 10);
     },
     100},
};
constexpr int kFormulaCount = static_cast<int>(sizeof kFormulas / sizeof kFormulas[0]);

class QuietHost : public merida::SilentHost {};

// Evaluates one point per iteration, moving x a little each time, as a plot does. x sweeps
// from..top again and again, inside every formula's domain whatever the iteration count.
void EvaluatePoints(benchmark::State& state, Engine& e, const SavedProgram& saved, double top = 100,
                    double from = 0.1, double step = 1e-4) {
  double x = from;
  for (auto _ : state) {
    double y = e.EvaluateAt(saved, x);
    benchmark::DoNotOptimize(y);
    x = x < top ? x + step : from;
  }
  if (e.failed()) state.SkipWithError("evaluation failed");
}

// Compiles the formula for a tool window: BindToX = 1, one saved program.
SavedProgram CompileTool(Engine& e, const char* formula) {
  e.BeginRun(1, formula);
  e.SplitFormula();
  e.ExpandIntegrals();
  e.ExpandSigmas();
  e.ParseHeader();
  e.TokenizeBody();
  int16_t n = e.CompilePostfix(e.CurrentSlot);
  n = e.ComputeIntegrals(n);
  e.CollectVariables();
  return e.SaveProgram(n);
}

void BM_Merida(benchmark::State& state) {
  const Formula& f = kFormulas[state.range(0)];
  QuietHost host;
  Engine e(host);
  EvaluatePoints(state, e, CompileTool(e, f.merida), f.top);
  state.SetLabel(f.name);
}

void BM_Muparser(benchmark::State& state) {
  const Formula& f = kFormulas[state.range(0)];
  mu::Parser p;
  double x = 0.1;
  p.DefineVar("x", &x);
  p.SetExpr(f.muparser);
  p.Eval();
  for (auto _ : state) {
    double y = p.Eval();
    benchmark::DoNotOptimize(y);
    x = x < f.top ? x + 1e-4 : 0.1;
  }
  state.SetLabel(f.name);
}

void BM_Native(benchmark::State& state) {
  const Formula& f = kFormulas[state.range(0)];
  double x = 0.1;
  for (auto _ : state) {
    benchmark::DoNotOptimize(x);
    double y = f.native(x);
    benchmark::DoNotOptimize(y);
    x = x < f.top ? x + 1e-4 : 0.1;
  }
  state.SetLabel(f.name);
}

BENCHMARK(BM_Merida)->DenseRange(0, kFormulaCount - 1);
BENCHMARK(BM_Muparser)->DenseRange(0, kFormulaCount - 1);
BENCHMARK(BM_Native)->DenseRange(0, kFormulaCount - 1);

// The floor of any evaluator that keeps the read-back rule: hand-written, with the read-back.
void BM_NativeReadBack(benchmark::State& state) {
  const ReadBackForm f = kReadBackForms[state.range(0)];
  merida::detail::Round15Guess guess;
  double x = 0.1;
  for (auto _ : state) {
    benchmark::DoNotOptimize(x);
    double y = f(x, merida::Round15(x, guess));
    benchmark::DoNotOptimize(y);
    x = x < 10 ? x + 1e-4 : 0.1;
  }
  state.SetLabel(kFormulas[state.range(0)].name);
}
BENCHMARK(BM_NativeReadBack)->DenseRange(0, 5);

// A 6001-point graph sample: compile once, evaluate at every point, record the rows.
void BM_GraphSample6001(benchmark::State& state) {
  QuietHost host;
  Engine e(host);
  merida::RecordFunctionTable table;
  for (auto _ : state) {
    SavedProgram saved = CompileTool(e, kFormulas[kFormulaCount - 1].merida);
    const double start = 0.5, end = 10;
    const int n = 6000;
    const double h = (end - start) / n;
    for (int i = 0; i <= n; ++i) {
      double x = i == n ? end : i * h + start;
      double y = e.EvaluateAt(saved, x);
      table.RecordPoint(i + 1, static_cast<float>(x), static_cast<float>(y), 0);
    }
    benchmark::DoNotOptimize(table.count);
  }
}
BENCHMARK(BM_GraphSample6001)->Unit(benchmark::kMicrosecond);

// Calc of an integral of 10000 divisions.
void BM_Integral10000(benchmark::State& state) {
  QuietHost host;
  Engine e(host);
  for (auto _ : state) {
    auto answer = merida::Calc(e, "integ(sin(x)*x^2,0,PI,10000)");
    benchmark::DoNotOptimize(answer);
  }
}
BENCHMARK(BM_Integral10000)->Unit(benchmark::kMicrosecond);

// A user function called at every point.
void BM_UserFunctionCall(benchmark::State& state) {
  QuietHost host;
  Engine e(host);
  e.RegisterFormula("sq(t)=t*t+1");
  EvaluatePoints(state, e, CompileTool(e, "sq(x)+x"));
}
BENCHMARK(BM_UserFunctionCall);

// f(f(...f(x))) with f(x)=x^2, `depth` calls deep: range(1) 0 sweeps x near 1 (values stay
// within a few decades), 1 sweeps 0.1..10 (values reach 1e-256..1e256 at depth 8).
void BM_Chain(benchmark::State& state) {
  const int depth = static_cast<int>(state.range(0));
  const bool wide = state.range(1) != 0;
  QuietHost host;
  Engine e(host);
  e.RegisterFormula("f(x)=x^2");
  std::string formula = "x";
  for (int i = 0; i < depth; ++i) formula = "f(" + formula + ")";
  if (wide) EvaluatePoints(state, e, CompileTool(e, formula.c_str()), 10, 0.1, 1e-4);
  else EvaluatePoints(state, e, CompileTool(e, formula.c_str()), 1.001, 0.999, 1e-7);
  state.counters["ns_per_level"] =
      benchmark::Counter(static_cast<double>(state.iterations()) * depth, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
  state.SetLabel(wide ? "x 0.1..10" : "x near 1");
}
// The 15-digit read-back alone, as a variable's later cells and every parameter take it:
// range 0 over 0.1..10, range 1 over 1e20..1e290 (outside the table of the inline path).
void BM_ReadBack(benchmark::State& state) {
  const bool wide = state.range(0) != 0;
  double x = wide ? 1e20 : 0.1;
  for (auto _ : state) {
    double y = merida::Round15(x);
    benchmark::DoNotOptimize(y);
    x = wide ? (x < 1e290 ? x * 1.0001 : 1e20) : (x < 10 ? x + 1e-4 : 0.1);
  }
  state.SetLabel(wide ? "1e20..1e290" : "0.1..10");
}
BENCHMARK(BM_ReadBack)->Arg(0)->Arg(1);

BENCHMARK(BM_Chain)->ArgsProduct({benchmark::CreateDenseRange(1, 8, 1), {0, 1}});

}  // namespace

BENCHMARK_MAIN();
