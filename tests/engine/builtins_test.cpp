// Built-in functions against reference values (the approximations' own accuracy).
#include <cmath>

#include "engine/builtins.h"
#include "engine/engine.h"
#include "engine/record_table.h"
#include "main/calculator.h"
#include "test_support.h"

namespace merida {
namespace {

TEST(Builtins, ApproximationsAgainstReferenceValues) {
  struct Row {
    Builtin fn;
    double a, b, expected, tolerance;
  };
  const Row rows[] = {
      {Builtin::kAsin, 0, 0.5, 0.5235987755982988, 3e-8},
      {Builtin::kAcos, 0, -0.5, 2.0943951023931957, 3e-8},
      {Builtin::kAsin, 0, -1, -1.5707963267948966, 3e-8},
      {Builtin::kErf, 0, 0.5, 0.5204998778130465, 1e-6},
      {Builtin::kErf, 0, 2, 0.9953222650189527, 1e-6},
      {Builtin::kGamma, 0, 2.5, 1.329340388179137, 1e-7},
      {Builtin::kGamma, 0, 0.25, 3.625609908221908, 1e-6},
      {Builtin::kGamma, 0, 10, 362880, 1e-2},
      {Builtin::kJn, 0, 1, 0.7651976865579666, 1e-9},
      {Builtin::kJn, 1, 2.5, 0.4970941024642741, 1e-9},
      {Builtin::kJn, 2, 30, 0.0784512460792, 1e-9},
      {Builtin::kJn, -1, 2.5, -0.4970941024642741, 1e-9},
      {Builtin::kYn, 0, 1, 0.08825696421567696, 1e-7},
      {Builtin::kYn, 1, 5, 0.1478631433912268, 1e-7},
      {Builtin::kYn, 2, 10, -0.005868082442208615, 1e-7},
      {Builtin::kPn, 3, 0.5, -0.4375, 1e-12},
      {Builtin::kPn, -3, 0.5, -0.125, 1e-12},
      {Builtin::kSinh, 0, 1, std::sinh(1.0), 1e-15},
      {Builtin::kTanh, 0, -0.5, std::tanh(-0.5), 1e-15},
      {Builtin::kLog, 0, 1000, 3, 1e-15},
  };
  for (const Row& r : rows) {
    Applied out = ApplyBuiltin(r.fn, r.a, r.b);
    ASSERT_EQ(out.status, 0) << static_cast<int>(r.fn) << " " << r.b;
    EXPECT_NEAR(out.value, r.expected, r.tolerance) << static_cast<int>(r.fn) << "(" << r.a << "," << r.b << ")";
  }
}

TEST(Builtins, IntegerProductsOverflowAsFaults) {
  struct Row {
    Builtin fn;
    double a, b;
    int status;
    double value;
  };
  const Row rows[] = {
      {Builtin::kFact, 0, 12, 0, 479001600}, {Builtin::kFact, 0, 13, kFault, 0},
      {Builtin::kFact, 0, 40000, kFault, 0}, {Builtin::kFact, 0, -3, 0, 1},
      {Builtin::kPerm, 50, 5, 0, 254251200}, {Builtin::kPerm, 50, 6, kFault, 0},
      {Builtin::kComb, 12, 12, 0, 1},        {Builtin::kComb, 13, 13, kFault, 0},  {Builtin::kComb, 14, 2, 0, 91},
      {Builtin::kPerm, 5, -1, 0, 1},         {Builtin::kPerm, 70000, 1, kFault, 0},
  };
  for (const Row& r : rows) {
    Applied out = ApplyBuiltin(r.fn, r.a, r.b);
    EXPECT_EQ(out.status, r.status) << static_cast<int>(r.fn) << "(" << r.a << "," << r.b << ")";
    if (r.status == 0) {
      EXPECT_EQ(out.value, r.value);
    }
  }
}

TEST(Builtins, PowerRules) {
  struct Row {
    double a, b, value;
    int status;
  };
  const Row rows[] = {{-2, 3, -8, 0},   {2, -2, 0.25, 0}, {0, -1, 0, 0},      {0, 0, 1, 0},  {-8, 1.0 / 3, 0, 14},
                      {2, 0.5, std::sqrt(2.0), 0},        {1, 32767, 1, 0}, {1, 32768, 0, kFault},
                      {2, 1024, 0, kFault},               {0.1, -400, 0, kFault}, {-1, -32767, -1, 0}};
  for (const Row& r : rows) {
    Applied out = Power(r.a, r.b);
    EXPECT_EQ(out.status, r.status) << r.a << "^" << r.b;
    if (r.status == 0) {
      EXPECT_NEAR(out.value, r.value, 1e-15) << r.a << "^" << r.b;
    }
  }
}

TEST(Builtins, RandomIsUniformInUnitInterval) {
  test::RecordingHost host;
  Engine e(host);
  double sum = 0;
  for (int i = 0; i < 10000; ++i) {
    auto v = Calc(e, "random(-1)");
    ASSERT_TRUE(v);
    double x = std::stod(*v);
    ASSERT_GE(x, 0);
    ASSERT_LT(x, 1);
    sum += x;
  }
  EXPECT_NEAR(sum / 10000, 0.5, 0.02);
}

TEST(RecordTable, RecordPointKeepsCountAndIgnoresRowsPastCapacity) {
  RecordFunctionTable t;
  for (int i = 1; i <= 100; ++i) t.RecordPoint(i, static_cast<float>(i), 0, 0);
  EXPECT_EQ(t.count, 100);
  t.RecordPoint(5001, 1, 2, 3);
  EXPECT_EQ(t.count, 100);
  t.RecordPoint(3, 9, 9, 9);
  EXPECT_EQ(t.count, 3);
  EXPECT_EQ(t.values[10][0], 10.0f);
  for (int i = 1; i <= 5000; ++i) t.RecordPoint(i, 0, 0, 0);
  EXPECT_EQ(t.count, 5000);
  t.RecordPoint(-1, 1, 1, 1);
  EXPECT_EQ(t.count, 5000);
}

}  // namespace
}  // namespace merida
