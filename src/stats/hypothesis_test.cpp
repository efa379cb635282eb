// The mean, variance and chi-square tests and their table lookups.
#include "stats/hypothesis_test.h"

#include <algorithm>
// GCC 12 sees an uninitialised value through the F quantile's inlined root search that
// cannot be reached: the search sets both values before they are read.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif
#include <boost/math/distributions/chi_squared.hpp>
#include <boost/math/distributions/fisher_f.hpp>
#include <boost/math/distributions/normal.hpp>
#include <boost/math/distributions/students_t.hpp>
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic pop
#endif
#include <cmath>
#include <utility>

#include "engine/number_text.h"
#include "stats/critical_tables.h"
#include "stats/statistics.h"

namespace merida {
namespace {

int LevelIndex(int level) { return level == 1 ? 1 : 0; }

// Linear interpolation between tabulated freedoms lo and hi, in single precision.
float Between(float atLo, float atHi, int nu, int lo, int hi) {
  return atLo + (atHi - atLo) * static_cast<float>(nu - lo) / static_cast<float>(hi - lo);
}

// Where a freedom falls among the rows 1..30, 40, 60, 120, infinity: one row (lo == hi) or a
// bracket to interpolate in, as row indices and the freedoms they stand for.
struct Bracket {
  int lo, hi, nuLo, nuHi;
};

// `capFrom`: the freedom from which the infinity row is taken without interpolation.
Bracket TRows(int nu, int capFrom) {
  if (nu < 30) return {nu - 1, nu - 1, nu, nu};
  if (nu < 40) return {29, 30, 30, 40};
  if (nu < 60) return {30, 31, 40, 60};
  if (nu < 120) return {31, 32, 60, 120};
  if (nu < capFrom) return {32, 32, 120, 120};
  return {33, 33, 0, 0};
}

// F columns: 1..6, 8, 12, 24, infinity; the 24 column serves up to `infinityFrom` - 1.
Bracket FColumns(int nu, int infinityFrom) {
  if (nu <= 6) return {nu - 1, nu - 1, nu, nu};
  if (nu < 8) return {5, 6, 6, 8};
  if (nu < 12) return {6, 7, 8, 12};
  if (nu < 24) return {7, 8, 12, 24};
  if (nu < infinityFrom) return {8, 8, 24, 24};
  return {9, 9, 0, 0};
}

float Along(const Bracket& b, int nu, float atLo, float atHi) {
  return b.lo == b.hi ? atLo : Between(atLo, atHi, nu, b.nuLo, b.nuHi);
}

// A box's number: nullopt for a blank box, error 46 for text that is not a number.
struct Box {
  bool ok = true;
  std::optional<double> value;
};
Box Read(std::string_view text) {
  if (Trim(text).empty()) return {};
  std::optional<double> v = ReadNumber(text);
  if (!v) return {false, {}};
  return {true, v};
}

// A count rounded to a whole number; nullopt when blank, odd or beyond 32 bits.
std::optional<int> Count(const Box& b) {
  if (!b.value) return std::nullopt;
  return ToInt32(*b.value);
}

struct ColumnSummary {
  float mean = 0, deviation = 0;
  int count = 0;
};

// Mean and population deviation √(Σx²/n − x̄²) of one column, sums in row order. The sums are
// taken in double around the first value: shifting every x leaves the formula's value as it is,
// and values near 1e6 that differ in their last places no longer cancel to nothing.
ColumnSummary Summarize(const RecordFunctionTable& t, int column) {
  const double origin = t.count >= 1 ? t.values[1][column] : 0;
  double sum = 0, squares = 0;
  for (int i = 1; i <= t.count; ++i) {
    const double d = static_cast<double>(t.values[i][column]) - origin;
    sum += d;
    squares += d * d;
  }
  ColumnSummary s;
  s.count = t.count;
  const double shifted = sum / t.count;
  s.mean = static_cast<float>(origin + shifted);
  // Rounding can leave a constant column's variance a hair below zero.
  s.deviation = static_cast<float>(std::sqrt(std::max(0.0, squares / t.count - shifted * shifted)));
  return s;
}

std::string CountText(int n) { return std::to_string(n); }

// The column of the record option (from 1), or error 45 when above `highest` or below 1.
std::optional<int> RecordColumn(Engine& engine, std::string_view text, int highest) {
  const std::optional<int16_t> j = ToInt16(ReadLenient(text));
  if (!j || *j < 1 || *j > highest) {
    engine.Fail(45);
    return std::nullopt;
  }
  return *j - 1;
}

std::optional<TestResult> Refuse(Engine& engine, int code) {
  engine.Fail(code);
  return std::nullopt;
}

// Errors come back as NaN instead of exceptions: a value that cannot be had is left unshown.
using Quiet = boost::math::policies::policy<
    boost::math::policies::domain_error<boost::math::policies::ignore_error>,
    boost::math::policies::overflow_error<boost::math::policies::ignore_error>,
    boost::math::policies::evaluation_error<boost::math::policies::ignore_error>>;

template <class Distribution>
std::optional<ExactTail> UpperTail(const Distribution& d, double statistic, double alpha, bool twoSided) {
  if (!std::isfinite(statistic)) return std::nullopt;
  const double tail = boost::math::cdf(boost::math::complement(d, std::fabs(statistic)));
  const ExactTail t{twoSided ? std::min(1.0, 2 * tail) : tail,
                    boost::math::quantile(boost::math::complement(d, twoSided ? alpha / 2 : alpha))};
  if (!std::isfinite(t.pValue) || !std::isfinite(t.critical)) return std::nullopt;
  return t;
}

double Alpha(int level) { return level == 1 ? 0.01 : 0.05; }

void AddExact(TestResult& r, const std::optional<ExactTail>& exact) {
  if (!exact) return;
  r.pValue = exact->pValue;
  r.exactCritical = exact->critical;
  r.decisionDiffers = (r.statistic > r.critical) != (r.statistic > exact->critical);
}

std::optional<TestResult> MeanTest(Engine& engine, const RecordFunctionTable& table, const TestInput& in) {
  TestResult r;
  const Box mu = Read(in.boxes[0]), sigma = Read(in.boxes[1]);
  Box mean, s;
  std::optional<int> n;
  if (in.record) {
    const std::optional<int> j = RecordColumn(engine, in.column, std::min<int>(table.dimension, 3));
    if (!j) return std::nullopt;
    if (table.count < 1) return Refuse(engine, 46);
    const ColumnSummary c = Summarize(table, *j);
    mean.value = c.mean;
    s.value = c.deviation;
    n = c.count;
    r.boxes[3] = StatBox(c.mean);
    r.boxes[4] = StatBox(c.deviation);
    r.boxes[5] = CountText(c.count);
  } else {
    mean = Read(in.boxes[3]);
    s = Read(in.boxes[4]);
    n = Count(Read(in.boxes[5]));
  }
  if (!mu.ok || !sigma.ok || !mean.ok || !s.ok || !mu.value || !mean.value || !n) return Refuse(engine, 46);
  const bool sigmaGiven = sigma.value && *sigma.value >= 0, sGiven = s.value && *s.value >= 0;
  if (sigmaGiven == sGiven) return Refuse(engine, 46);
  const float gap = std::fabs(static_cast<float>(*mean.value) - static_cast<float>(*mu.value));
  if (sigmaGiven) {
    if (*n < 1 || *sigma.value == 0) return Refuse(engine, 46);
    r.statistic = gap * std::sqrt(static_cast<float>(*n)) / static_cast<float>(*sigma.value);
    r.critical = CriticalT(in.level, kInfiniteFreedom);
    AddExact(r, ExactT(in.level, r.statistic, kInfiniteFreedom));
  } else {
    if (*n < 2) return Refuse(engine, 48);  // no freedom left once the mean is estimated
    if (*s.value == 0) return Refuse(engine, 46);
    r.statistic = gap * std::sqrt(static_cast<float>(*n - 1)) / static_cast<float>(*s.value);
    r.critical = CriticalT(in.level, *n - 1);
    AddExact(r, ExactT(in.level, r.statistic, *n - 1));
  }
  if (!std::isfinite(r.statistic)) return Refuse(engine, 46);
  r.conclusion = r.statistic > r.critical ? "標本の平均値は、母集団と異なる" : "標本の平均値は、母集団と異なるとは言えない";
  return r;
}

std::optional<TestResult> VarianceTest(Engine& engine, const RecordFunctionTable& table, const TestInput& in) {
  TestResult r;
  float sA, sB;
  int nA, nB;
  if (in.record) {
    const std::optional<int> j = RecordColumn(engine, in.column, table.dimension - 1);
    if (!j) return std::nullopt;
    if (table.count < 1) return Refuse(engine, 46);
    const ColumnSummary a = Summarize(table, *j), b = Summarize(table, *j + 1);
    sA = a.deviation;
    sB = b.deviation;
    nA = a.count;
    nB = b.count;
    r.boxes[1] = StatBox(sA);
    r.boxes[2] = CountText(nA);
    r.boxes[4] = StatBox(sB);
    r.boxes[5] = CountText(nB);
  } else {
    const Box a = Read(in.boxes[1]), b = Read(in.boxes[4]);
    const std::optional<int> countA = Count(Read(in.boxes[2])), countB = Count(Read(in.boxes[5]));
    if (!a.value || !b.value || !countA || !countB || *a.value < 0 || *b.value < 0) return Refuse(engine, 46);
    sA = static_cast<float>(*a.value);
    sB = static_cast<float>(*b.value);
    nA = *countA;
    nB = *countB;
  }
  if (sA < sB) {
    std::swap(sA, sB);
    std::swap(nA, nB);
  }
  if (nA < 2 || nB < 2) return Refuse(engine, 48);
  if (sB == 0) return Refuse(engine, 46);  // the smaller variance divides
  const float fa = static_cast<float>(nA), fb = static_cast<float>(nB);
  r.statistic = (fa * sA * sA / (fa - 1)) / (fb * sB * sB / (fb - 1));
  if (!std::isfinite(r.statistic)) return Refuse(engine, 46);
  r.critical = CriticalF(in.level, nA - 1, nB - 1);
  AddExact(r, ExactF(in.level, r.statistic, nA - 1, nB - 1));
  r.conclusion = r.statistic > r.critical ? "２標本の分散は異なる" : "２標本の分散は異なるとは言えない";
  return r;
}

std::optional<TestResult> ChiSquareTest(Engine& engine, const RecordFunctionTable& table, const TestInput& in) {
  if (table.kind < 3 || table.dimension < 2) return Refuse(engine, 47);
  const Box a = Read(in.boxes[2]), b = Read(in.boxes[5]);
  if (!a.ok || !b.ok) return Refuse(engine, 46);
  // A blank count is no count.
  const std::optional<int> ra = a.value ? Count(a) : 0, rb = b.value ? Count(b) : 0;
  if (!ra || !rb) return Refuse(engine, 46);
  long long nu;
  if (*ra > 0 && *rb <= 0) {
    nu = *ra - 1LL;
  } else if (*ra <= 0 && *rb > 0) {
    nu = *rb - 1LL;
  } else if (*ra > 0 && *rb > 0) {
    nu = (*ra - 1LL) * (*rb - 1LL);
  } else {
    return Refuse(engine, 48);
  }
  if (nu < 1) return Refuse(engine, 48);  // one class or one row leaves nothing free
  TestResult r;
  float chi = 0;
  for (int i = 1; i <= table.count; ++i) {
    const float observed = table.values[i][0], expected = table.values[i][1];
    if (expected == 0) return Refuse(engine, 46);
    chi += (observed - expected) * (observed - expected) / expected;
  }
  if (!std::isfinite(chi)) return Refuse(engine, 46);
  r.statistic = chi;
  r.critical = CriticalChiSquare(in.level, static_cast<int>(std::min<long long>(nu, kInfiniteFreedom)));
  AddExact(r, ExactChiSquare(in.level, r.statistic, nu));
  r.conclusion = r.statistic > r.critical ? "適合するとは言えない" : "適合すると言える";
  return r;
}

}  // namespace

std::optional<ExactTail> ExactT(int level, double statistic, long long nu) {
  if (nu >= kInfiniteFreedom) return UpperTail(boost::math::normal_distribution<double, Quiet>(), statistic, Alpha(level), true);
  if (nu < 1) return std::nullopt;
  return UpperTail(boost::math::students_t_distribution<double, Quiet>(static_cast<double>(nu)), statistic,
                   Alpha(level), true);
}

std::optional<ExactTail> ExactF(int level, double statistic, long long nu1, long long nu2) {
  if (nu1 < 1 || nu2 < 1) return std::nullopt;
  return UpperTail(boost::math::fisher_f_distribution<double, Quiet>(static_cast<double>(nu1), static_cast<double>(nu2)),
                   statistic, Alpha(level), false);
}

std::optional<ExactTail> ExactChiSquare(int level, double statistic, long long nu) {
  if (nu < 1) return std::nullopt;
  return UpperTail(boost::math::chi_squared_distribution<double, Quiet>(static_cast<double>(nu)), statistic,
                   Alpha(level), false);
}

float CriticalT(int level, int nu) {
  const float* rows = kTTable[LevelIndex(level)];
  const Bracket b = TRows(nu, 120);
  return Along(b, nu, rows[b.lo], rows[b.hi]);
}

float CriticalChiSquare(int level, int nu) {
  const float* rows = kChiSquareTable[LevelIndex(level)];
  if (nu < 30) return rows[nu - 1];
  if (nu >= 100) return rows[36];
  const int lo = 30 + (nu - 30) / 10 * 10;
  const int row = 29 + (lo - 30) / 10;
  return Between(rows[row], rows[row + 1], nu, lo, lo + 10);
}

float CriticalF(int level, int nu1, int nu2) {
  const auto& table = kFTable[LevelIndex(level)];
  const Bracket column = FColumns(nu1, level == 1 ? 50 : 45);
  const Bracket row = TRows(nu2, 200);
  // Along the numerator's freedom on each bracketing row, then between the rows.
  const float atLo = Along(column, nu1, table[row.lo][column.lo], table[row.lo][column.hi]);
  const float atHi = Along(column, nu1, table[row.hi][column.lo], table[row.hi][column.hi]);
  return Along(row, nu2, atLo, atHi);
}

std::optional<TestResult> RunTest(Engine& engine, const RecordFunctionTable& table, TestKind kind,
                                  const TestInput& input) {
  std::optional<TestResult> r;
  switch (kind) {
    case TestKind::kMean: r = MeanTest(engine, table, input); break;
    case TestKind::kVariance: r = VarianceTest(engine, table, input); break;
    case TestKind::kChiSquare: r = ChiSquareTest(engine, table, input); break;
  }
  if (r) {
    r->statisticBox = StatBox(r->statistic);
    r->criticalBox = StatBox(r->critical);
  }
  return r;
}

}  // namespace merida
