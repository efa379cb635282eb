// Frequency distribution, basic statistics, regression line and multiple regression.
#include "stats/statistics.h"

#include <algorithm>
#include <cmath>

#include "engine/number_text.h"

namespace merida {
namespace {

constexpr int kClasses = 100;

// Column `columnBox` (1 to 3) as a 0-based index, or error 45.
std::optional<int> ChosenColumn(Engine& engine, const RecordFunctionTable& table, std::string_view columnBox) {
  const std::optional<int16_t> d = ToInt16(ReadLenient(columnBox) - 1);
  if (!d || *d < 0 || *d > table.dimension - 1 || *d > 2) {
    engine.Fail(45);
    return std::nullopt;
  }
  return *d;
}

// A table that has columns but no rows leaves every quotient undefined: refused as odd input.
bool HasRows(Engine& engine, const RecordFunctionTable& table) {
  if (table.count >= 1) return true;
  engine.Fail(46);
  return false;
}

std::optional<float> Defined(float v) {
  if (!std::isfinite(v)) return std::nullopt;
  return v;
}

float Mean(const RecordFunctionTable& t, int column) {
  float sum = 0;
  for (int i = 1; i <= t.count; ++i) sum += t.values[i][column];
  return sum / t.count;
}

// Σ(ma − a)(mb − b) / n in row order.
float Moment(const RecordFunctionTable& t, int a, float ma, int b, float mb) {
  float sum = 0;
  for (int i = 1; i <= t.count; ++i) sum += (ma - t.values[i][a]) * (mb - t.values[i][b]);
  return sum / t.count;
}

}  // namespace

const char* RecordKindText(int16_t kind) {
  if (kind < 1) return "ﾃﾞｰﾀが記録関数に読み込まれていません";
  switch (kind) {
    case WaveData: return "WAVE形式のﾃﾞｰﾀです";
    case MeridaTextData: return "PALOMA形式のﾃﾞｰﾀです";
    case OrbitaData: return "ORBITA形式のﾃﾞｰﾀです";
    default: return "ﾃﾞｰﾀの形式が違います";
  }
}

std::string StatBox(std::optional<float> v) {
  return v && std::isfinite(*v) ? Fixed5Text(*v) : std::string();
}

float SelectKth(std::vector<float>& v, int k) {
  // Partition exchange around the value at k, narrowing to the side that holds k.
  int lo = 0, hi = static_cast<int>(v.size()) - 1;
  const int target = k - 1;
  while (lo < hi) {
    const float pivot = v[target];
    int i = lo, j = hi;
    do {
      while (v[i] < pivot) ++i;
      while (pivot < v[j]) --j;
      if (i <= j) {
        std::swap(v[i], v[j]);
        ++i;
        --j;
      }
    } while (i <= j);
    if (j < target) lo = i;
    if (target < i) hi = j;
  }
  return v[target];
}

std::optional<FrequencyResult> FrequencyDistribution(Engine& engine, const RecordFunctionTable& table,
                                                     std::string_view columnBox) {
  const std::optional<int> d = ChosenColumn(engine, table, columnBox);
  if (!d || !HasRows(engine, table)) return std::nullopt;
  const int n = table.count;
  FrequencyResult r;
  std::vector<float> copy(n);
  r.min = r.max = table.values[1][*d];
  for (int i = 1; i <= n; ++i) {
    const float x = table.values[i][*d];
    copy[i - 1] = x;
    if (x > r.max) r.max = x;
    if (x < r.min) r.min = x;
  }

  const int k = static_cast<int>(std::nearbyint((n + 1) / 2.0));
  const float kth = SelectKth(copy, k);
  if (n % 2 == 1) {
    r.median = kth;
  } else if (k == n / 2) {
    // Everything after k is at least the k-th: the next order statistic is their least.
    r.median = (kth + *std::min_element(copy.begin() + k, copy.end())) / 2;
  } else {
    r.median = (*std::max_element(copy.begin(), copy.begin() + k - 1) + kth) / 2;
  }

  r.width = (r.max - r.min) / kClasses;
  for (int i = 1; i <= n; ++i) {
    const float x = table.values[i][*d];
    if (r.width == 0) {
      ++r.classes[0];  // a constant column is one class
      continue;
    }
    if (x == r.max) continue;  // the maximum lies on the upper bound of class 100: left out
    // Rounding can carry a value just below the maximum onto that bound; it belongs to class 100.
    const float c = std::floor((x - r.min) / r.width);
    if (!(c >= 0)) continue;  // a range too wide for a float has no classes
    ++r.classes[static_cast<int>(std::min(c, kClasses - 1.0f))];
  }
  int best = 0;
  for (int c = 1; c < kClasses; ++c) {
    if (r.classes[c] > r.classes[best]) best = c;
  }
  r.mode = r.min + (best + 0.5f) * r.width;
  r.chart.reserve(kClasses);
  for (int c = 0; c < kClasses; ++c) r.chart.push_back({r.min + c * r.width, static_cast<double>(r.classes[c])});
  r.medianBox = StatBox(r.median);
  r.modeBox = StatBox(r.mode);
  return r;
}

std::optional<BasicResult> BasicStatistics(Engine& engine, const RecordFunctionTable& table,
                                           std::string_view columnBox) {
  const std::optional<int> d = ChosenColumn(engine, table, columnBox);
  if (!d || !HasRows(engine, table)) return std::nullopt;
  BasicResult r;
  r.mean = Mean(table, *d);
  r.variance = Moment(table, *d, r.mean, *d, r.mean);
  r.deviation = std::sqrt(r.variance);
  r.meanBox = StatBox(r.mean);
  r.varianceBox = StatBox(r.variance);
  r.deviationBox = StatBox(r.deviation);
  return r;
}

std::optional<RegressionResult> RegressionLine(Engine& engine, const RecordFunctionTable& table,
                                               std::string_view columnBox) {
  if (table.dimension < 2) {
    engine.Fail(44);
    return std::nullopt;
  }
  const std::optional<int> x = ChosenColumn(engine, table, columnBox);
  if (!x) return std::nullopt;
  const int y = *x == 2 ? 0 : *x + 1;
  if (y > table.dimension - 1) {
    engine.Fail(45);  // the y column holds no data of this set
    return std::nullopt;
  }
  if (!HasRows(engine, table)) return std::nullopt;
  RegressionResult r;
  r.mx = Mean(table, *x);
  r.my = Mean(table, y);
  r.vx = Moment(table, *x, r.mx, *x, r.mx);
  r.vy = Moment(table, y, r.my, y, r.my);
  r.cov = Moment(table, y, r.my, *x, r.mx);
  r.r = Defined(r.cov / std::sqrt(r.vx * r.vy));
  r.a = Defined(r.cov / r.vx);
  if (r.a) r.b = Defined(r.my - *r.a * r.mx);
  r.aBox = StatBox(r.a);
  r.bBox = StatBox(r.b);
  r.rBox = StatBox(r.r);
  r.chart.reserve(table.count);
  for (int i = 1; i <= table.count; ++i) r.chart.push_back({table.values[i][*x], table.values[i][y]});
  return r;
}

std::optional<MultipleRegressionResult> MultipleRegression(Engine& engine, const RecordFunctionTable& table) {
  if (table.dimension != 3) {
    engine.Fail(49);
    return std::nullopt;
  }
  if (!HasRows(engine, table)) return std::nullopt;
  const float mx = Mean(table, 0), my = Mean(table, 1), mz = Mean(table, 2);
  const float sxx = Moment(table, 0, mx, 0, mx), syy = Moment(table, 1, my, 1, my), szz = Moment(table, 2, mz, 2, mz);
  const float sxy = Moment(table, 0, mx, 1, my), sxz = Moment(table, 0, mx, 2, mz), syz = Moment(table, 1, my, 2, mz);
  const float rxy = sxy / std::sqrt(sxx * syy), rxz = sxz / std::sqrt(sxx * szz), ryz = syz / std::sqrt(syy * szz);
  const float det = sxx * syy - sxy * sxy;
  const float a = (sxz * syy - syz * sxy) / det, b = (syz * sxx - sxz * sxy) / det;
  const float c = mz - a * mx - b * my;
  const float multiple = std::sqrt((a * sxz + b * syz) / szz);
  const float pxz = (rxz - rxy * ryz) / std::sqrt((1 - rxy * rxy) * (1 - ryz * ryz));
  const float pyz = (ryz - rxy * rxz) / std::sqrt((1 - rxy * rxy) * (1 - rxz * rxz));
  const float pxy = (rxy - rxz * ryz) / std::sqrt((1 - rxz * rxz) * (1 - ryz * ryz));
  const float all[19] = {mx, my, mz, sxx, syy, szz, sxy, sxz, syz, rxy, rxz, ryz, pxz, pyz, pxy, multiple, a, b, c};
  MultipleRegressionResult r;
  for (int k = 0; k < 19; ++k) {
    r.values[k] = Defined(all[k]);
    r.boxes[k] = StatBox(r.values[k]);
  }
  return r;
}

}  // namespace merida
