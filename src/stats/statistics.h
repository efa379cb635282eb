// The statistical analysis window's logic over columns of the record function table: the
// frequency distribution, the basic statistics, the regression line and the multiple regression.
// Every sum is a float formed in row order, as the tables' values are floats.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/engine.h"
#include "engine/record_table.h"
#include "graph/graph_plot.h"

namespace merida {

// Label14: the data kind in words (the same text in both languages).
const char* RecordKindText(int16_t kind);

// A result box: the "###.#####" pattern, or empty where the quantity is undefined (a zero
// denominator or a non-finite value), so that no box ever shows "inf" or "nan".
std::string StatBox(std::optional<float> v);

struct FrequencyResult {
  float min = 0, max = 0, width = 0;
  float median = 0, mode = 0;
  std::array<int, 100> classes{};  // counts of classes 1..100
  std::vector<ChartPoint> chart;   // (lower bound of the class, its count), 100 points
  std::string medianBox, modeBox;  // Text2, Text3
};

struct BasicResult {
  float mean = 0, variance = 0, deviation = 0;
  std::string meanBox, varianceBox, deviationBox;  // Text4, Text5, Text6
};

struct RegressionResult {
  float mx = 0, my = 0, vx = 0, vy = 0, cov = 0;
  std::optional<float> a, b, r;           // undefined when a variance is 0
  std::string aBox, bBox, rBox;           // Text7, Text8, Text9
  std::vector<ChartPoint> chart;          // the n points (x, y)
};

struct MultipleRegressionResult {
  // Text1..Text19 in order: mx my mz, Sxx Syy Szz, Sxy Sxz Syz, rxy rxz ryz,
  // rxz.y ryz.x rxy.z, R, a b c.
  std::array<std::optional<float>, 19> values{};
  std::array<std::string, 19> boxes;
};

// Each analysis reads the column named by `columnBox` (Text1, 1 to 3) over rows 1..count.
// Errors (44, 45; 46 for a table with no rows) are shown through the engine and give nullopt:
// the window then leaves its boxes as they were.
std::optional<FrequencyResult> FrequencyDistribution(Engine& engine, const RecordFunctionTable& table,
                                                     std::string_view columnBox);
std::optional<BasicResult> BasicStatistics(Engine& engine, const RecordFunctionTable& table,
                                           std::string_view columnBox);
// x is the chosen column, y the next one (the first after the third); a y column beyond the
// data's dimension is error 45.
std::optional<RegressionResult> RegressionLine(Engine& engine, const RecordFunctionTable& table,
                                               std::string_view columnBox);
// Columns 1, 2, 3 are x, y, z; error 49 unless the table has three columns.
std::optional<MultipleRegressionResult> MultipleRegression(Engine& engine, const RecordFunctionTable& table);

// The k-th smallest (1-based) of `v` by partition-exchange selection; `v` is rearranged so that
// nothing before position k is larger and nothing after it smaller.
float SelectKth(std::vector<float>& v, int k);

}  // namespace merida
