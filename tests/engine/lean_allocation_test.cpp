// A tool window's points allocate nothing once the code is built: every formula shape, calls,
// bound cells, faults, and points that leave the lean form for the full machine.
#include <cstdlib>
#include <new>
#include <string>
#include <vector>

#include "engine/formula_sampler.h"
#include "test_support.h"

namespace {
bool counting = false;
long allocations = 0;
}  // namespace

// Every allocation of this test program passes here; only those inside a counted loop count.
// Out of line, so that the compiler pairs no inlined free with a new expression.
[[gnu::noinline]] void* operator new(std::size_t size) {
  if (counting) ++allocations;
  if (void* p = std::malloc(size ? size : 1)) return p;
  throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* p) noexcept { std::free(p); }
[[gnu::noinline]] void operator delete(void* p, std::size_t) noexcept { std::free(p); }

namespace merida {
namespace {

TEST(LeanAllocation, PointsAllocateNothing) {
  const char* const formulas[] = {
      "x^2+3*x+1", "sin(x)^2+cos(x)^2", "(x+1)*(x-1)/(x^2+1)", "exp(0-x*x/2)*sqr(2*x+1)",
      "2*x^4-3*x^3+x^2-5*x+7",
      "sin(x)+cos(2*x)+tan(x/40)+exp(0-x/10)+ln(x+1)+sqr(x)+abs(x-5)+sinh(x/9)-cosh(x/9)+atan(x)*tanh(x)+log(x+2)",
      "f(f(f(f(x))))", "g(x,2)+h(x)", "x*1e300*1e300", "ln(x-5)", "h(x-1)", "Jn(1,x)+x^x",
  };
  test::RecordingHost host;
  Engine e(host);
  ASSERT_TRUE(e.RegisterFormula("f(x)=x^2"));
  ASSERT_TRUE(e.RegisterFormula("g(a,b)=a/b-b"));
  ASSERT_TRUE(e.RegisterFormula("h(t)=f(t)+1/t"));
  FormulaSampler sampler(e);
  for (const char* formula : formulas) {
    ASSERT_EQ(sampler.compile(formula), PointStatus::kOk) << formula;
    double y = 0;
    sampler.at(0.5, y);  // builds the code and caches the bodies
    // Values and faults (overflows) allocate nothing; an error's message may (it ends the run).
    for (double x : {0.5, 1.0, 2.5, 3.0, 7.0, 1e200, 0.1 + 0.2}) {
      counting = true;
      allocations = 0;
      sampler.at(x, y);
      counting = false;
      if (e.ErrorFlag == 0) {
        EXPECT_EQ(allocations, 0) << formula << " at " << x;
      }
      e.ErrorFlag = 0;
      e.FaultFlag = false;
    }
  }
  EXPECT_FALSE(host.errors.empty()) << "the points must reach the error paths too";
  // Numbers a solver puts into named cells at every point.
  e.BindToX = 1;
  ASSERT_EQ(sampler.compile("0-0.5*diff-4*y+f(x)/diff"), PointStatus::kOk);
  sampler.setCellNames({"y", "diff"});
  const double values[2] = {0.25, 3};
  double y = 0;
  sampler.atValues(1, values, y);
  counting = true;
  allocations = 0;
  for (double x : {0.5, 1.0, 2.5}) sampler.atValues(x, values, y);
  counting = false;
  EXPECT_EQ(allocations, 0);
}

}  // namespace
}  // namespace merida
