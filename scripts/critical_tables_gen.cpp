// Writes src/stats/critical_tables.cpp: the upper critical values of t, chi-square and F.
// Entries the classic printed tables give are kept exactly as printed, even where a modern
// quantile differs in the last digit; the rest are computed here and rounded the same way.
// Run scripts/critical-tables to regenerate; a test checks that the file matches.
#include <boost/math/distributions/chi_squared.hpp>
#include <boost/math/distributions/fisher_f.hpp>
#include <cmath>
#include <cstdio>
#include <limits>
#include <map>
#include <string>
#include <tuple>

namespace {

using boost::math::chi_squared;
using boost::math::complement;
using boost::math::fisher_f;
using boost::math::quantile;

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kAlpha[2] = {0.05, 0.01};

// Degrees of freedom of the rows: 1..30, 40, 60, 120, infinity (t and F), 1..30, 40..100 (chi-square).
double TRowFreedom(int row) {
  if (row < 30) return row + 1;
  const double tail[] = {40, 60, 120, kInf};
  return tail[row - 30];
}
double ChiRowFreedom(int row) { return row < 30 ? row + 1 : 40 + 10 * (row - 30); }
constexpr double kFColumns[10] = {1, 2, 3, 4, 5, 6, 8, 12, 24, kInf};

const char* const kT[2][34] = {
    {"12.706", "4.303", "3.182", "2.776", "2.571", "2.447", "2.365", "2.306", "2.262", "2.228", "2.201", "2.179",
     "2.160",  "2.145", "2.131", "2.120", "2.110", "2.101", "2.093", "2.086", "2.080", "2.074", "2.069", "2.064",
     "2.060",  "2.056", "2.052", "2.048", "2.045", "2.042", "2.021", "2.000", "1.980", "1.95996"},
    {"63.657", "9.925", "5.841", "4.604", "4.032", "3.707", "3.499", "3.355", "3.250", "3.169", "3.106", "3.055",
     "3.012",  "2.977", "2.947", "2.921", "2.898", "2.878", "2.861", "2.845", "2.831", "2.819", "2.807", "2.797",
     "2.787",  "2.779", "2.771", "2.763", "2.756", "2.750", "2.704", "2.660", "2.617", "2.57582"},
};

// Printed chi-square entries by (level, row).
const std::map<std::pair<int, int>, const char*> kChiPrinted = {
    {{0, 0}, "3.84"},   {{0, 1}, "5.99"},   {{0, 2}, "7.81"},   {{0, 3}, "9.49"},   {{0, 4}, "11.07"},
    {{0, 5}, "12.59"},  {{0, 6}, "14.07"},  {{0, 7}, "15.51"},  {{0, 8}, "16.92"},  {{0, 9}, "18.31"},
    {{0, 10}, "19.68"}, {{0, 11}, "21.0"},  {{0, 29}, "43.8"},  {{0, 30}, "55.8"},  {{0, 31}, "67.5"},
    {{0, 32}, "79.1"},  {{0, 33}, "90.5"},  {{0, 34}, "101.9"}, {{0, 35}, "113.1"}, {{0, 36}, "124.3"},
    {{1, 0}, "6.63"},   {{1, 1}, "9.21"},   {{1, 2}, "11.34"},  {{1, 3}, "13.28"},  {{1, 4}, "15.09"},
    {{1, 5}, "16.81"},  {{1, 6}, "18.48"},  {{1, 7}, "20.1"},   {{1, 8}, "21.7"},   {{1, 9}, "23.2"},
    {{1, 29}, "50.9"},  {{1, 30}, "63.7"},  {{1, 31}, "76.2"},  {{1, 32}, "88.4"},  {{1, 33}, "100.4"},
    {{1, 34}, "112.3"}, {{1, 35}, "124.1"}, {{1, 36}, "135.8"},
};

// Printed F entries by (level, row, column).
std::map<std::tuple<int, int, int>, const char*> FPrinted() {
  std::map<std::tuple<int, int, int>, const char*> m;
  const char* const first5[10] = {"161.4", "199.5", "215.7", "224.6", "230.2", "234.0", "238.9", "243.9", "249.0", "254.3"};
  const char* const last5[10] = {"3.84", "2.99", "2.60", "2.37", "2.21", "2.09", "1.94", "1.75", "1.52", "1.00"};
  const char* const first1[10] = {"4052", "4999", "5403", "5625", "5764", "5859", "5981", "6106", "6234", "6366"};
  const char* const second1[4] = {"98.49", "99.01", "99.17", "99.25"};
  const char* const column1[10] = {"4052", "98.49", "34.12", "21.20", "16.26", "13.74", "12.25", "11.26", "10.56", "10.04"};
  const char* const column1Tail[5] = {"7.56", "7.31", "7.08", "6.85", "6.64"};
  for (int c = 0; c < 10; ++c) {
    m[{0, 0, c}] = first5[c];
    m[{0, 33, c}] = last5[c];
    m[{1, 0, c}] = first1[c];
    m[{1, c, 0}] = column1[c];
  }
  for (int c = 0; c < 4; ++c) m[{1, 1, c}] = second1[c];
  for (int r = 0; r < 5; ++r) m[{1, 29 + r, 0}] = column1Tail[r];
  return m;
}

double FPoint(double alpha, double n1, double n2) {
  if (std::isinf(n1) && std::isinf(n2)) return 1;
  if (std::isinf(n2)) return quantile(complement(chi_squared(n1), alpha)) / n1;
  if (std::isinf(n1)) return n2 / quantile(chi_squared(n2), alpha);
  return quantile(complement(fisher_f(n1, n2), alpha));
}

// A float literal of a printed entry: "4052" becomes "4052.0f".
std::string Literal(const std::string& text) {
  return text + (text.find('.') == std::string::npos ? ".0f" : "f");
}

std::string Rounded(double v, int decimals) {
  char text[32];
  std::snprintf(text, sizeof text, "%.*f", decimals, v);
  return text;
}

}  // namespace

int main() {
  std::printf(
      "// Upper critical values of t (two-sided), chi-square and F at 5 %% and 1 %%.\n"
      "// Written by scripts/critical-tables; do not edit by hand.\n"
      "#include \"stats/critical_tables.h\"\n\nnamespace merida {\n\n");
  std::printf("const float kTTable[2][34] = {\n");
  for (int level = 0; level < 2; ++level) {
    std::printf("    {");
    for (int row = 0; row < 34; ++row) std::printf("%s%s", row == 0 ? "" : row % 10 ? ", " : ",\n     ", Literal(kT[level][row]).c_str());
    std::printf("},\n");
  }
  std::printf("};\n\nconst float kChiSquareTable[2][37] = {\n");
  for (int level = 0; level < 2; ++level) {
    std::printf("    {");
    for (int row = 0; row < 37; ++row) {
      auto printed = kChiPrinted.find({level, row});
      std::string v;
      if (printed != kChiPrinted.end()) {
        v = printed->second;
      } else {
        const double x = quantile(complement(chi_squared(ChiRowFreedom(row)), kAlpha[level]));
        v = Rounded(x, x > 20 ? 1 : 2);  // the printed tables drop to one decimal past 20
      }
      std::printf("%s%s", row == 0 ? "" : row % 10 ? ", " : ",\n     ", Literal(v).c_str());
    }
    std::printf("},\n");
  }
  std::printf("};\n\nconst float kFTable[2][34][10] = {\n");
  const auto fPrinted = FPrinted();
  for (int level = 0; level < 2; ++level) {
    std::printf("    {\n");
    for (int row = 0; row < 34; ++row) {
      std::printf("        {");
      for (int c = 0; c < 10; ++c) {
        auto printed = fPrinted.find({level, row, c});
        const std::string v = printed != fPrinted.end()
                                  ? printed->second
                                  : Rounded(FPoint(kAlpha[level], kFColumns[c], TRowFreedom(row)), 2);
        std::printf("%s%s", c ? ", " : "", Literal(v).c_str());
      }
      std::printf("},\n");
    }
    std::printf("    },\n");
  }
  std::printf("};\n\n}  // namespace merida\n");
  return 0;
}
