// A tool's code against the full machine reading number texts: the lean form and cells bound to
// registers give the same results to the bit and the same errors and faults, in the same order
// (an overflow earlier in the formula wins over a later error); built code allocates nothing.
// Tools run as jobs on engines of their own.
#include <array>
#include <atomic>
#include <bit>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <limits>
#include <new>
#include <random>
#include <thread>

#include "calculus/integration.h"
#include "engine/formula_sampler.h"
#include "engine/job.h"
#include "engine/number_text.h"
#include "main/calculator.h"
#include "test_support.h"

namespace {
bool counting = false;
long allocations = 0;
}  // namespace

// Every allocation of this program passes here; out of line, so that no inlined free is paired.
[[gnu::noinline]] void* operator new(std::size_t size) {
  if (counting) ++allocations;
  if (void* p = std::malloc(size ? size : 1)) return p;
  throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* p) noexcept { std::free(p); }
[[gnu::noinline]] void operator delete(void* p, std::size_t) noexcept { std::free(p); }

namespace merida {
namespace {

struct Outcome {
  PointStatus status;
  uint64_t bits;  // the value's
  int16_t error;  // ErrorFlag
  bool fault;
  std::vector<int> shown;
  bool operator==(const Outcome&) const = default;
};
std::ostream& operator<<(std::ostream& os, const Outcome& o) {
  return os << "status " << static_cast<int>(o.status) << " value " << std::bit_cast<double>(o.bits) << " error "
            << o.error << (o.fault ? " fault" : "") << " shown " << o.shown.size();
}

// Functions for formulas of x to call: chains, two parameters, errors inside, a body reading x.
const char* const kFunctions[] = {"f(x)=x^2",       "g(a,b)=a/b-b", "h(t)=f(t)+1/t", "q(u)=sqr(u)*exp(0-u)",
                                  "w(v)=ln(v)+v*v", "s(t)=t",       "p(t)=3*t^2-t+1", "m(t)=t*t*t",
                                  "c(t)=p(m(t))*2", "k(t)=2-t"};

// Texts on the full machine (the reference), texts lean, bound cells lean, bound cells full.
enum class Mode { kFull, kLean, kBound, kBoundFull };

// One engine's points in sequence; flags are cleared after each, so the next is as if fresh.
struct Runner {
  Runner(Mode mode, bool functions) {
    engine.ResetEngine();
    engine.setBoundCells(mode == Mode::kBound || mode == Mode::kBoundFull);
    engine.setLeanCode(mode == Mode::kLean || mode == Mode::kBound);
    for (const char* f : kFunctions) EXPECT_TRUE(!functions || engine.RegisterFormula(f)) << f;
    host.answers = {std::string("5")};
  }
  Outcome point(const std::function<PointStatus(double&)>& evaluate) {
    host.errors.clear();
    double y = 0;
    PointStatus s = evaluate(y);
    Outcome o{s, std::bit_cast<uint64_t>(s == PointStatus::kOk ? y : 0.0), engine.ErrorFlag, engine.FaultFlag,
              host.errors};
    lean = lean || engine.hasLeanCode();
    engine.ErrorFlag = 0;
    engine.FaultFlag = false;
    return o;
  }
  test::RecordingHost host;
  Engine engine{host};
  FormulaSampler sampler{engine};
  bool lean = false;  // the code had a lean form at some point
};

// The four engines compile `formula` and run `setup`, then `count` points checked against the
// reference's. Returns the lean engine, for what it built.
std::unique_ptr<Runner> Compare(const std::string& formula, size_t count,
                                const std::function<PointStatus(Runner&, size_t, double&)>& at,
                                const std::function<void(Runner&)>& setup = nullptr, bool functions = false) {
  std::array<std::unique_ptr<Runner>, 4> r;
  for (int m = 0; m < 4; ++m) {
    r[m] = std::make_unique<Runner>(static_cast<Mode>(m), functions);
    EXPECT_EQ(r[m]->sampler.compile(formula), PointStatus::kOk) << formula;
    if (setup) setup(*r[m]);
  }
  for (size_t i = 0; i < count; ++i) {
    auto point = [&](Runner& runner) { return runner.point([&](double& y) { return at(runner, i, y); }); };
    const Outcome reference = point(*r[0]);
    for (int m = 1; m < 4; ++m) EXPECT_EQ(point(*r[m]), reference) << formula << " point " << i << " mode " << m;
  }
  return std::move(r[1]);
}

// x at the corners: signs, 15-digit read-backs unlike x, powers that overflow or underflow, the top.
const double kMax = std::numeric_limits<double>::max();
const std::vector<double> kLeanPoints = {0.75, 1, -1, 0.3, 0.1 + 0.2, 2.5, 1e-8, 1e20, -1e200, 1e300, 0,
                                         7.000000000000001, -0.1, 1e-170, kMax, 123456.78901234567};

std::unique_ptr<Runner> CompareAtX(const std::string& formula) {
  return Compare(
      formula, kLeanPoints.size(), [](Runner& r, size_t i, double& y) { return r.sampler.at(kLeanPoints[i], y); },
      nullptr, true);
}

TEST(ToolCode, FormulasOfXAgree) {
  for (const char* f :
       {"2*x^4-3*x^3+x^2-5*x+7", "sin(x)*cos(x)+exp(0-x^2)", "(x+1)*(x-1)/(x+2)", "x-x", "0-x^3", "x^3*2-x", "x*x/x",
        "x/2/x", "3/x^2", "x^-2", "x^0", "x^x", "x^2.5", "sqr(x)", "ln(x)", "Jn(1,x)", "comb(x,2)",
        "sin(x)^2/(1+cos(x)^2)", "abs(x)*1e308*10", "x*1e300*1e300-ln(0)", "atan(x*1e300*1e300)",
        "exp(0-x*1e300*1e300)", "1/(x*1e300*1e300)", "tanh(x*1e300)", "sqr(0-x)+x*1e300*1e300", "x*1e300*1e300/(x-x)",
        "(x*1e300*1e300)+sqr(0-1)", "x*x*x*x", "1/(x-1)", "x/(x-x)", "(x-1)^2*(x+1)^2", "x^3/x^2", "x+x*x+x*x*x",
        // Calls: chains, several arguments, errors and overflows inside bodies and around calls.
        "f(x)", "f(f(x))", "g(2,x)", "g(x,x-x)", "h(x)", "h(x-x)", "q(x)", "w(0-x)", "f(x)*1e300*1e300-w(0)",
        "w(0)+f(x)*1e300*1e300", "s(x)", "s(s(x))-x", "f(x*1e300)", "1/f(x)", "x-s(x)", "f(x)^2/s(x)", "p(x)",
        "m(p(x))-p(m(x))", "c(x)", "c(c(x))", "p(x)*m(x)/f(x)", "ln(m(x))+p(0-x)", "x/2", "x/0.25/(0-4)",
        "x/1e300/1e300/2", "1-(x+2)*3", "2/(x-1)", "1/(x*1e300*1e300)+ln(0)", "cosh(x)*tanh(x)-sinh(x)/log(x)",
        "k(x)*k(k(x))", "1/k(x*1e300*1e300)", "k(x-1e300*1e300)+ln(0)", "x/(x*1e300+1)", "(x-1)/(x*1e300-1)-ln(0)"}) {
    CompareAtX(f);
  }
  // These run lean: 'r' with their values in registers (the per-point formulas tool windows are
  // measured by, call chains), 'm' on the stack in memory (deeper stacks, calls not copied in).
  const std::pair<const char*, char> forms[] = {
      {"x^2+3*x+1", 'r'}, {"sin(x)^2+cos(x)^2", 'r'}, {"(x+1)*(x-1)/(x^2+1)", 'r'}, {"exp(0-x*x/2)*sqr(2*x+1)", 'r'},
      {"f(f(f(f(f(f(f(f(x))))))))", 'r'}, {"k(k(x))*p(x)", 'r'}, {"g(x,2)", 'm'},
      {"sin(x)+cos(2*x)+tan(x/40)+exp(0-x/10)+ln(x+1)+sqr(x)+abs(x-5)+sinh(x/9)-cosh(x/9)+atan(x)*tanh(x)+log(x+2)",
       'm'},
      {"(x+1)*((x+2)*((x+3)*((x+4)*abs(x+5))))", 'm'}, {"f(f(f(x)))", 'l'}, {"g(f(x),h(x))+q(f(x))", 'l'},
      {"w(x)", 'l'}, {"((x+1)*(x-2))/((x-3)*(x+4))", 'l'},
  };
  for (const auto& [f, form] : forms) {
    auto lean = CompareAtX(f);
    EXPECT_TRUE(lean->lean && (form == 'l' || lean->engine.runsInRegisters() == (form == 'r'))) << f;
  }
}

// Values at the rules' corners: zeros' signs, ties, 16-bit exponents, subnormals, the top.
const std::vector<double> kValues = {0.0, -0.0, 1, -1, 2, -3, 0.5, 2.5, 0.1 + 0.2, -1.0 / 3, 32767, 32768, -32767,
                                     100000000000000.5, 1e-200, 1e-320, -4e-318, 1e-7, 1e300, -1e300, 7e307, kMax,
                                     -kMax, 123456.789012345678};
const std::vector<double> kPoints = {0.0, -0.0, 1, -2, 0.75, 0.1 + 0.2, 1e-310, 1e200, 3};

// The double integral's y substituted once per value, then points of x (w remains, as there).
void CompareSubstituted(const std::string& formula, const std::vector<double>& values,
                        const std::vector<double>& points) {
  const size_t n = points.size();
  Compare(formula + "+0*w", values.size() * n, [&](Runner& r, size_t i, double& y) {
    if (i % n == 0) r.sampler.substitute("y", values[i / n]);
    return r.sampler.atSubstituted(points[i % n], y);
  });
}

TEST(ToolCode, SubstitutedSolverAndFoldedCellsAgree) {
  // Linked later cells, constant fusion on either side, integral and general powers with a bound
  // exponent, divisions by a bound zero, domain errors, overflows before and after errors.
  for (const char* formula :
       {"y", "y+x", "x-y", "y*x", "x/y", "y/x", "y-y", "y*y*y", "2*y", "y*2", "2-y", "y-2", "y/0", "2/y", "0-y",
        "0-y*3", "y^2", "y^3*4", "3*y^2", "y^0", "y^(0-1)", "x^y", "y^x", "2^y", "y^y", "y^0.5", "(0-2)^y",
        "sqr(y)", "ln(y)", "ln(y)+1/x", "atan(y*1e300*1e300)", "y*1e300*1e300-ln(0)", "x*1e300*1e300-ln(y)",
        "sin(y)+cos(x)", "exp(y)", "tan(y)*y", "abs(y)-y", "log(y)", "asin(y)", "Gamma(y)", "y-x-y+x",
        "y*x+sin(y)*cos(x)", "1/(y-y)", "y^32768", "x^(y*2)", "erf(y)+tanh(x)", "sinh(y)*y", "y^(0-2)",
        "perm(y,2)", "comb(5,y)", "y*1e300", "(y+1)*(y-1)/(x+y)", "y-(x-y)", "E*y+PI"}) {
    CompareSubstituted(formula, kValues, kPoints);
  }
  // The solvers' dependent values y, diff and z at once, each used or not; the delay window's
  // timestep(k), every pair folded into a cell holding the k-th delayed value.
  std::mt19937 rng(7);
  std::uniform_int_distribution<size_t> pick(0, kValues.size() - 1);
  std::vector<std::array<double, 3>> values(400);
  for (auto& v : values) v = {kValues[pick(rng)], kValues[pick(rng)], kValues[pick(rng)]};
  for (const char* formula : {"0-0.5*diff-4*y+sin(x)", "y*z-diff", "diff^y+z", "z/diff-y/z", "y+y+diff+diff", "x",
                              "ln(diff)*y^z", "z^2+y^(0-2)-diff^0", "sqr(y*diff)-z*1e300*1e300",
                              "atan(diff*1e308*10)+ln(y)", "y/(z-diff)"}) {
    Compare(
        formula, values.size(),
        [&](Runner& r, size_t i, double& y) { return r.sampler.atValues(kPoints[i % kPoints.size()], values[i], y); },
        [](Runner& r) { r.sampler.setCellNames({"y", "diff", "z"}); });
  }
  for (const char* formula : {"timestep(1)", "timestep(1)+0.5*timestep(2)", "timestep(2)-timestep(1)*timestep(1)",
                              "timestep(1)^timestep(2)", "2^timestep(1)", "sqr(timestep(1))", "1/timestep(2)",
                              "ln(timestep(1))+timestep(3)", "timestep(timestep(1))",
                              "timestep(1)*1e300*1e300-ln(timestep(2))", "sin(timestep(1))+timestep(1)", "3"}) {
    Compare(formula, kValues.size(), [&](Runner& r, size_t start, double& y) {
      // A nested timestep's k is a delayed value itself: any double.
      auto delayed = [&](double k) {
        const size_t step = std::isfinite(k) ? static_cast<size_t>(std::fmod(std::fabs(k), 7.0)) : 0;
        return kValues[(start + step * 5) % kValues.size()];
      };
      return r.sampler.atFolded("timestep", delayed, y);
    });
  }
}

// Single points, so that the comparisons above are known to reach every outcome. In a tool
// window every free variable is x; sums follow the point, integrals are computed once per run
// (b is asked once and answered 5); errors are shown, faults end the run without a message.
TEST(ToolCode, PointsReachValuesErrorsAndFaults) {
  const double x3 = 0.1 + 0.2, none = std::nan("");  // x3 reads back in 15 digits as another value
  const PointStatus ok = PointStatus::kOk, error = PointStatus::kError, fault = PointStatus::kFault;
  struct Row {
    const char* formula;
    double y, x;  // y NaN: a formula of x alone, with the functions
    PointStatus status;
    double value;  // NaN: not checked
    std::vector<int> shown = {};
  };
  const Row rows[] = {
      {"2/y", 0, 1, error, none, {11}}, {"ln(y)", -1, 1, error, none, {13}}, {"y*1e300*1e300-ln(0)", 1, 1, fault, none},
      {"y^(0-2)", 1e-200, 1, fault, none},  // a negative integral power whose product underflows divides by zero
      {"x^y", -2, 1e-200, fault, none},
      {"y", kMax, 1, fault, none},             // the largest double's text reads back beyond the range
      {"x^y", 2, x3, ok, x3 * x3},             // an integral exponent (repeated products); 2.5 a general power
      {"x^y", 2.5, 4, ok, 32},
      {"y*x-x", 1, x3, ok, x3 - Round15(x3)},  // a later cell of x still reads it back in 15 digits
      {"x*1e300*1e300-ln(0)", none, 1, fault, none}, {"x-ln(0)", none, 1, error, none, {13}},
      {"atan(x*1e300*1e300)", none, 1, fault, none}, {"w(0)+f(x)*1e300*1e300", none, 1, error, none, {13}},
      {"f(f(f(f(f(f(f(f(x))))))))", none, 20, fault, none}, {"f(f(f(f(f(f(f(f(x))))))))", none, 10, ok, none},
      {"x-s(x)", none, x3, ok, x3 - Round15(x3)},  // a parameter holds its argument read back in 15 digits
      {"x^2+3*x+1", none, -2, ok, -1}, {"x^2+3*x+1", none, 0.5, ok, 2.75}, {"x-x", none, x3, ok, x3 - Round15(x3)},
      {"x*1", none, x3, ok, x3},  // a single use takes XValue exactly
      {"sgm(j*x,1,3,j)", none, 2, ok, 12}, {"sgm(j*x,1,3,j)", none, 0.5, ok, 3}, {"exp(x)", none, 1000, fault, none},
      {"x+integ(t,0,b,10)", none, 2, ok, 14.5}, {"1/x", none, 0, error, none, {11}},
  };
  for (const Row& r : rows) {
    const bool ofX = std::isnan(r.y);
    Runner runner(ofX ? Mode::kLean : Mode::kBound, ofX);
    ASSERT_EQ(runner.sampler.compile(r.formula + std::string(ofX ? "" : "+0*w")), PointStatus::kOk);
    if (ofX) runner.point([&](double& out) { return runner.sampler.at(0.75, out); });  // builds the code
    else runner.sampler.substitute("y", r.y);
    Outcome o = runner.point(
        [&](double& out) { return ofX ? runner.sampler.at(r.x, out) : runner.sampler.atSubstituted(r.x, out); });
    EXPECT_EQ(std::tuple(o.status, o.shown, o.error), std::tuple(r.status, r.shown, r.status == error ? 1 : 0))
        << r.formula;
    EXPECT_TRUE(std::isnan(r.value) || std::bit_cast<double>(o.bits) == r.value) << r.formula;
    EXPECT_EQ(runner.host.prompts.size(), std::string(r.formula).find("integ") != std::string::npos) << r.formula;
    EXPECT_TRUE(runner.host.faults.empty());
  }
  for (auto [formula, params] : {std::pair{"x*y", 2}, {"x^2+3*x+1", 1}}) {
    Runner runner(Mode::kLean, false);
    ASSERT_EQ(runner.sampler.compile(formula), PointStatus::kOk);
    EXPECT_EQ(runner.engine.FunctionTable[runner.engine.CurrentSlot].ParamCount, params) << formula;
  }
}

TEST(ToolCode, PointsAllocateNothing) {
  Runner r(Mode::kBound, true);  // as tools run
  double y = 0;
  bool errors = false;  // the points must reach the error paths too
  for (const char* formula :
       {"x^2+3*x+1", "sin(x)^2+cos(x)^2", "(x+1)*(x-1)/(x^2+1)", "exp(0-x*x/2)*sqr(2*x+1)", "2*x^4-3*x^3+x^2-5*x+7",
        "sin(x)+cos(2*x)+tan(x/40)+exp(0-x/10)+ln(x+1)+sqr(x)+abs(x-5)+sinh(x/9)-cosh(x/9)+atan(x)*tanh(x)+log(x+2)",
        "f(f(f(f(x))))", "g(x,2)+h(x)", "x*1e300*1e300", "ln(x-5)", "h(x-1)", "Jn(1,x)+x^x"}) {
    ASSERT_EQ(r.sampler.compile(formula), PointStatus::kOk) << formula;
    r.sampler.at(0.5, y);  // builds the code and caches the bodies
    // Values and faults (overflows) allocate nothing; an error's message may (it ends the run).
    for (double x : {0.5, 1.0, 2.5, 3.0, 7.0, 1e200, 0.1 + 0.2}) {
      counting = true;
      allocations = 0;
      r.sampler.at(x, y);
      counting = false;
      EXPECT_TRUE(r.engine.ErrorFlag != 0 || allocations == 0) << formula << " at " << x << ": " << allocations;
      errors = errors || r.engine.ErrorFlag != 0;
      r.engine.ErrorFlag = 0;
      r.engine.FaultFlag = false;
    }
  }
  EXPECT_TRUE(errors);
  // Numbers a solver puts into named cells at every point.
  ASSERT_EQ(r.sampler.compile("0-0.5*diff-4*y+f(x)/diff"), PointStatus::kOk);
  r.sampler.setCellNames({"y", "diff"});
  const double values[2] = {0.25, 3};
  r.sampler.atValues(1, values, y);
  counting = true;
  allocations = 0;
  for (double x : {0.5, 1.0, 2.5}) r.sampler.atValues(x, values, y);
  counting = false;
  EXPECT_EQ(allocations, 0);
}

TEST(Job, RunsOnItsOwnThreadReportsProgressAndTheDestructorStopsIt) {
  std::atomic<bool> started{false}, finished{false};
  std::thread::id worker;
  {
    Job job([&](std::stop_token stop, JobProgress& progress) {
          worker = std::this_thread::get_id();
          progress.done = 3;
          started = true;
          while (!stop.stop_requested()) std::this_thread::yield();
        }, [&] { finished = true; });
    while (!started) std::this_thread::yield();
    EXPECT_TRUE(worker != std::this_thread::get_id() && job.progress().done == 3 && !job.finished());
  }
  EXPECT_TRUE(finished);
}

// On a copy of the shared engine: its functions are there, a stop ends the run at its next row,
// and what the run showed is kept for the window.
TEST(Job, AToolRunsOnACopyOfTheEngineAndStopsAtItsNextRow) {
  test::RecordingHost sharedHost;
  Engine shared(sharedHost);
  ASSERT_TRUE(shared.RegisterFormula("g(x,y)=x*y"));
  struct Row {
    const char *formula, *num;
    bool stop;
    IntegrationEnd end;
    std::vector<int> errors;
  } rows[] = {{"g(x,y)+1", "100", false, IntegrationEnd::kCompleted, {}},
              {"g(x,y)", "10000", true, IntegrationEnd::kStopped, {}},
              {"x*y/0", "10", false, IntegrationEnd::kError, {11}}};
  for (const Row& r : rows) {
    JobHost host;
    Engine engine(host);
    engine.CopyStateFrom(shared);
    AppState state;
    IntegrationResult result;
    Job job([&](std::stop_token stop, JobProgress& progress) {
      host.attach(engine, stop, &progress);
      result = IntegrateDouble(engine, state, r.formula, {"0", "1", r.num}, {"0", "1", r.num});
    });
    if (r.stop) {
      while (job.progress().done.load() == 0) std::this_thread::yield();
      job.requestStop();
    }
    while (!job.finished()) std::this_thread::yield();
    std::vector<int> errors;
    for (const JobHost::Message& m : host.messages()) errors.push_back(m.code);
    EXPECT_EQ(std::tuple(result.end, errors), std::tuple(r.end, r.errors)) << r.formula;
    EXPECT_TRUE(r.end != IntegrationEnd::kCompleted ||
                (std::fabs(*result.value - 1.25) < 1e-12 && job.progress().done == job.progress().total));
  }
  EXPECT_TRUE(sharedHost.errors.empty()) << "a run's messages wait for the window";
  EXPECT_EQ(Calc(shared, "g(2,3)"), "6");
}

TEST(Job, OnlyWhatARunChangedReachesTheSharedState) {
  AppState shared, before;
  before.DivisionCount = shared.DivisionCount = 50;
  AppState after = before;
  after.GraphMode = 2;                 // the run changed this
  after.Records.RecordPoint(1, 1, 2, 3);
  shared.DivisionCount = 80;           // another window changed this meanwhile
  shared.DisplayLanguage = kJapanese;
  ApplyChanges(shared, before, after);
  EXPECT_EQ((std::vector<double>{1.0 * shared.GraphMode, 1.0 * shared.DivisionCount, 1.0 * shared.DisplayLanguage,
                                 1.0 * shared.Records.count, shared.Records.values[1][1]}),
            (std::vector<double>{2, 80, kJapanese, 1, 2}));
}

// Writers of one thing start one at a time, in turn; leaving the line first starts nothing.
TEST(JobQueue, StartsOwnersInTurnAndSkipsThoseWhoLeft) {
  JobQueue queue;
  std::string started;
  auto enter = [&](char owner) {
    return queue.Enter(reinterpret_cast<const void*>(static_cast<uintptr_t>(owner)), std::string(1, owner),
                       [&started, owner] { started += owner; });
  };
  auto leave = [&](char owner) { queue.Leave(reinterpret_cast<const void*>(static_cast<uintptr_t>(owner))); };
  EXPECT_TRUE(enter('a'));
  EXPECT_FALSE(enter('b') || enter('c'));
  EXPECT_EQ(queue.holder(), "a");
  leave('b');  // gives up its place: never starts
  EXPECT_EQ(started, "a");
  leave('a');
  EXPECT_EQ(started + queue.holder(), "acc");
  EXPECT_FALSE(enter('a'));
  EXPECT_FALSE(enter('c')) << "entering again goes to the back";
  EXPECT_EQ(started, "aca");
  leave('a');
  EXPECT_EQ(started, "acac");
  queue.Clear();
  leave('c');
  EXPECT_EQ(started + queue.holder(), "acac");
}

}  // namespace
}  // namespace merida
