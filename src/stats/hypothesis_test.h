// The test window's logic: the mean test (t, or normal when the population's deviation is
// known), the F test of two variances and the chi-square test of fit, against tables of
// published critical values.
#pragma once

#include <array>
#include <climits>
#include <optional>
#include <string>

#include "engine/engine.h"
#include "engine/record_table.h"

namespace merida {

enum class TestKind { kMean, kVariance, kChiSquare };

struct TestInput {
  std::array<std::string, 6> boxes;  // Text1..Text6: population mean, sd, count; sample mean, sd, count
  int level = 5;                     // 5 or 1 (percent)
  bool record = false;               // take the data from the record function table
  std::string column = "1";          // Text9: the column the record option reads (from 1)
};

struct TestResult {
  // Boxes the test rewrites (the record option shows what it computed), Text1..Text6.
  std::array<std::optional<std::string>, 6> boxes;
  float statistic = 0, critical = 0;
  std::string statisticBox, criticalBox;  // Text7, Text8
  std::string conclusion;                 // Label8
  // Beside the tables: the distribution's own p-value and critical value (two-sided for the
  // mean test, upper tail for F and chi-square), in double precision, and whether the exact
  // critical value would have decided the other way.
  std::optional<double> pValue, exactCritical;
  bool decisionDiffers = false;
};

// Errors 45 to 48 (and 46 for a count or deviation that makes the statistic undefined) are
// shown through the engine and give nullopt: the window's result boxes keep their contents.
std::optional<TestResult> RunTest(Engine& engine, const RecordFunctionTable& table, TestKind kind,
                                  const TestInput& input);

// Degrees of freedom standing for infinity in the lookups below.
constexpr int kInfiniteFreedom = INT_MAX;

// Critical values at `level` percent, interpolated linearly between tabulated degrees of freedom.
float CriticalT(int level, int nu);
float CriticalChiSquare(int level, int nu);
float CriticalF(int level, int nu1, int nu2);

// The exact values, for degrees of freedom kInfiniteFreedom meaning the normal distribution.
// nullopt where the distribution cannot be evaluated (no freedom, a statistic that is not finite).
struct ExactTail {
  double pValue, critical;
};
std::optional<ExactTail> ExactT(int level, double statistic, long long nu);
std::optional<ExactTail> ExactF(int level, double statistic, long long nu1, long long nu2);
std::optional<ExactTail> ExactChiSquare(int level, double statistic, long long nu);

}  // namespace merida
