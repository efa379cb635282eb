// The compile-once, evaluate-per-point helper and its box readers.
#include "engine/formula_sampler.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>

#include "test_support.h"

namespace merida {
namespace {

class FormulaSamplerTest : public test::EngineTest {
 protected:
  FormulaSampler s{engine};
};

TEST_F(FormulaSamplerTest, CompilesOnceAndEvaluatesAtEachX) {
  ASSERT_EQ(s.compile("  sqr(x)+integ(t,0,1,10)"), PointStatus::kOk);
  EXPECT_EQ(s.variables(), std::vector<std::string>{"x"});
  for (double x : {0.0, 1.0, 2.25, 16.0}) {
    double y = -1;
    ASSERT_EQ(s.at(x, y), PointStatus::kOk);
    EXPECT_NEAR(y, std::sqrt(x) + 0.5, 1e-12);
  }
  double y = 0;
  EXPECT_EQ(s.at(-1, y), PointStatus::kError);
  EXPECT_EQ(host.errors, std::vector<int>{12});
}

TEST_F(FormulaSamplerTest, ReportsVariablesInOrderAndBindsCells) {
  ASSERT_EQ(s.compile("b*10+a"), PointStatus::kOk);
  EXPECT_EQ(s.variables(), (std::vector<std::string>{"b", "a"}));
  double y = 0;
  ASSERT_EQ(s.atCells({{"a", 3}, {"b", 4}}, y), PointStatus::kOk);
  EXPECT_EQ(y, 43);
  ASSERT_EQ(s.atCells({{"a", -1}, {"b", 0.5}}, y), PointStatus::kOk);
  EXPECT_EQ(y, 4);
}

TEST_F(FormulaSamplerTest, CompileErrorsAndFaults) {
  EXPECT_EQ(s.compile("sin(x"), PointStatus::kError);
  EXPECT_EQ(host.errors, std::vector<int>{23});
  ASSERT_EQ(s.compile("x!"), PointStatus::kOk);
  double y = 0;
  EXPECT_EQ(s.at(12, y), PointStatus::kOk);
  EXPECT_EQ(y, 479001600);
  EXPECT_EQ(s.at(13, y), PointStatus::kFault);
  EXPECT_TRUE(host.faults.empty());  // tools end a fault without a message
}

TEST(FormulaSamplerBoxTest, CountBoxesAreNumericRoundedAndSixteenBit) {
  struct Case {
    const char* text;
    std::optional<int16_t> value;
  };
  const Case cases[] = {{"10", 10},         {" 2.5 ", 2},         {"3.5", 4},         {"-7", -7},
                        {"1E3", 1000},      {"32767", 32767},     {"32768", std::nullopt},
                        {"", std::nullopt}, {"1 0", std::nullopt}, {"PI", std::nullopt}, {"5x", std::nullopt}};
  for (const Case& c : cases) EXPECT_EQ(ReadCountBox(c.text), c.value) << c.text;
}

TEST(FormulaSamplerBoxTest, RecordValuesMustFitSinglePrecision) {
  EXPECT_EQ(RecordValue(1.5), 1.5f);
  EXPECT_EQ(RecordValue(-FLT_MAX), -FLT_MAX);
  EXPECT_FALSE(RecordValue(1e39));
  EXPECT_FALSE(RecordValue(-1e39));
  EXPECT_FALSE(RecordValue(INFINITY));
  EXPECT_FALSE(RecordValue(NAN));
}

}  // namespace
}  // namespace merida
