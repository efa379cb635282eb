// Linear systems: Go's own elimination and the matrix component's operations, both in double precision.
#include "algebra/linear_system.h"

#include <array>
#include <cfloat>
#include <cmath>
#include <cstdio>
#include <limits>

#include "controls/matrix.h"
#include "engine/number_text.h"

namespace merida {
namespace {

const std::vector<std::string> kZeroPivotLines = {"対角要素が０になり", "計算できません", "係数の行または列を",
                                                  "交換してください"};
const std::vector<std::string> kSingularLines = {"行列式が０になり", "計算できません"};
const std::vector<std::string> kResidualLines = {"係数がおかしいと", "思われます"};

LinearResult Outcome(LinearOutcome outcome) {
  LinearResult r;
  r.outcome = outcome;
  return r;
}

LinearResult Listed(LinearOutcome outcome, std::vector<std::string> lines) {
  LinearResult r;
  r.outcome = outcome;
  r.lines = std::move(lines);
  return r;
}

// The numbers of the grid, read row by row and left to right as the window reads them.
struct ReadGrid {
  int n = 0;
  std::array<std::array<double, kMaxSystemOrder + 2>, kMaxSystemOrder + 1> cell{};  // 1-based
};

// Reads n rows of `columns` cells; a result when reading ended the operation.
std::optional<LinearResult> ReadCells(const CellTexts& grid, bool withConstants, ReadGrid& out) {
  int n = static_cast<int>(grid.size());
  if (n < 1 || n > kMaxSystemOrder) return Outcome(LinearOutcome::Silent);
  out.n = n;
  int columns = withConstants ? n + 1 : n;
  for (int i = 1; i <= n; ++i) {
    const auto& row = grid[static_cast<size_t>(i - 1)];
    for (int j = 1; j <= columns; ++j) {
      if (static_cast<int>(row.size()) < j || Trim(row[static_cast<size_t>(j - 1)]).empty()) {
        LinearResult r = Outcome(LinearOutcome::Silent);
        r.badRow = i;
        r.badColumn = j;
        return r;
      }
      auto value = ReadNumber(row[static_cast<size_t>(j - 1)]);
      if (!value) {
        LinearResult r = Outcome(LinearOutcome::NotNumeric);
        r.badRow = i;
        r.badColumn = j;
        return r;
      }
      if (!std::isfinite(*value)) return Outcome(LinearOutcome::Fault);
      out.cell[static_cast<size_t>(i)][static_cast<size_t>(j)] = *value;
    }
  }
  return std::nullopt;
}

bool FitsSingle(double v) { return std::isfinite(v) && std::fabs(v) <= FLT_MAX; }

// Results are listed in single precision; one beyond its range is an overflow.
bool AllFitSingle(const std::vector<double>& values) {
  for (double v : values) {
    if (!FitsSingle(v)) return false;
  }
  return true;
}

std::string UnknownLine(int i, float v) { return " X" + std::to_string(i) + " = " + ListText(v); }

// The grid's numbers rounded to single precision, as the window reads them, then handed to the
// component in double so that exact problems stay exact; false when one leaves the single range.
bool ToComponent(const ReadGrid& g, bool withConstants, MatrixControl& m) {
  std::vector<double> matrix, rhs;
  for (int i = 1; i <= g.n; ++i) {
    for (int j = 1; j <= g.n + (withConstants ? 1 : 0); ++j) {
      double v = g.cell[static_cast<size_t>(i)][static_cast<size_t>(j)];
      if (!FitsSingle(v)) return false;
      (j <= g.n ? matrix : rhs).push_back(static_cast<double>(static_cast<float>(v)));
    }
  }
  m.setOrder(g.n);
  m.setMatrix(matrix);
  m.setVector(rhs);
  return true;
}

}  // namespace

LinearResult SolveByElimination(const CellTexts& grid) {
  ReadGrid g;
  if (auto ended = ReadCells(grid, true, g)) return *ended;
  const int n = g.n;
  auto& a = g.cell;  // a[i][j]; the constants sit in column n + 1
  auto c = [&](int i) -> double& { return a[static_cast<size_t>(i)][static_cast<size_t>(n + 1)]; };
  auto at = [&](int i, int j) -> double& { return a[static_cast<size_t>(i)][static_cast<size_t>(j)]; };

  // Row i minus r times row k; false on overflow.
  auto subtractRow = [&](int i, int k) {
    double r = at(i, k) / at(k, k);
    if (!std::isfinite(r)) return false;
    for (int j = 1; j <= n; ++j) {
      at(i, j) -= at(k, j) * r;
      if (!std::isfinite(at(i, j))) return false;
    }
    c(i) -= c(k) * r;
    return std::isfinite(c(i));
  };

  for (int k = 1; k <= n - 1; ++k) {
    if (at(k, k) == 0) return Listed(LinearOutcome::Refused, kZeroPivotLines);
    for (int i = k + 1; i <= n; ++i) {
      if (!subtractRow(i, k)) return Outcome(LinearOutcome::Fault);
    }
  }
  for (int k = n; k >= 2; --k) {
    for (int i = k - 1; i >= 1; --i) {
      if (at(k, k) == 0) return Listed(LinearOutcome::Refused, kZeroPivotLines);
      if (!subtractRow(i, k)) return Outcome(LinearOutcome::Fault);
    }
  }

  std::array<double, kMaxSystemOrder + 1> x{};
  for (int i = 1; i <= n; ++i) {
    x[static_cast<size_t>(i)] = c(i) / at(i, i);
    if (!FitsSingle(x[static_cast<size_t>(i)])) return Outcome(LinearOutcome::Fault);
  }

  LinearResult result = Outcome(LinearOutcome::Listed);
  for (int i = 1; i <= n; ++i) result.lines.push_back(UnknownLine(i, static_cast<float>(x[static_cast<size_t>(i)])));
  for (int i = 1; i <= n; ++i) {
    double s = 0;
    for (int j = 1; j <= n; ++j) s += x[static_cast<size_t>(j)] * at(i, j);
    if (!std::isfinite(s)) return Outcome(LinearOutcome::Fault);
    if (std::fabs(s - c(i)) > kResidualLimit) result.lines.insert(result.lines.end(), kResidualLines.begin(), kResidualLines.end());
  }
  return result;
}

std::string ConditionWarning(double condition) {
  // Relative errors of the single-precision inputs grow by up to the condition number: past
  // 1 / epsilon nothing of the answer is left for certain.
  if (!(condition * std::numeric_limits<float>::epsilon() >= 1)) return {};
  char about[32];
  if (std::isfinite(condition)) {
    std::snprintf(about, sizeof about, "%.1E", condition);
  } else {
    std::snprintf(about, sizeof about, "infinity");
  }
  return std::string("ill-conditioned (condition number about ") + about + "); the answer may have no correct digits";
}

namespace {

void Warn(LinearResult& result, const MatrixControl& m) {
  result.condition = m.conditionNumber();
  result.warning = ConditionWarning(result.condition);
}

}  // namespace

LinearResult SolveByMatrix(const CellTexts& grid) {
  ReadGrid g;
  if (auto ended = ReadCells(grid, true, g)) return *ended;
  MatrixControl m;
  if (!ToComponent(g, true, m)) return Outcome(LinearOutcome::Fault);
  MatrixResult x = m.solve();
  if (x.status == MatrixStatus::Singular) return Listed(LinearOutcome::Refused, kSingularLines);
  if (x.status == MatrixStatus::Overflow || !AllFitSingle(x.values)) return Outcome(LinearOutcome::Fault);
  LinearResult result = Outcome(LinearOutcome::Listed);
  for (int i = 1; i <= g.n; ++i) {
    result.lines.push_back(UnknownLine(i, static_cast<float>(x.values[static_cast<size_t>(i - 1)])));
  }
  Warn(result, m);
  return result;
}

LinearResult Determinant(const CellTexts& grid) {
  ReadGrid g;
  if (auto ended = ReadCells(grid, false, g)) return *ended;
  MatrixControl m;
  if (!ToComponent(g, false, m)) return Outcome(LinearOutcome::Fault);
  MatrixResult d = m.determinant();
  if (d.status != MatrixStatus::Ok || !AllFitSingle(d.values)) return Outcome(LinearOutcome::Fault);
  LinearResult result = Listed(LinearOutcome::Listed, {ListText(static_cast<float>(d.values[0]))});
  Warn(result, m);
  return result;
}

LinearResult Inverse(const CellTexts& grid) {
  ReadGrid g;
  if (auto ended = ReadCells(grid, false, g)) return *ended;
  MatrixControl m;
  if (!ToComponent(g, false, m)) return Outcome(LinearOutcome::Fault);
  MatrixResult inv = m.inverse();
  if (inv.status == MatrixStatus::Singular) return Listed(LinearOutcome::Refused, kSingularLines);
  if (inv.status == MatrixStatus::Overflow || !AllFitSingle(inv.values)) return Outcome(LinearOutcome::Fault);
  LinearResult result = Outcome(LinearOutcome::Listed);
  result.cells.assign(static_cast<size_t>(g.n), {});
  for (int i = 0; i < g.n; ++i) {
    for (int j = 0; j < g.n; ++j) {
      auto v = static_cast<float>(inv.values[static_cast<size_t>(i * g.n + j)]);
      result.cells[static_cast<size_t>(i)].push_back(std::fabs(v) < kInverseThreshold ? "0" : CellText(v));
    }
  }
  Warn(result, m);
  return result;
}

std::optional<int> DimensionFromText(std::string_view text) {
  auto value = ReadNumber(text);
  if (!value) return std::nullopt;
  auto n = ToInt16(*value);
  if (!n || *n < 1) return std::nullopt;
  return *n > kMaxSystemOrder ? kMaxSystemOrder : int{*n};
}

std::vector<std::string> ColumnHeaders(int n, bool matrixMode) {
  std::vector<std::string> headers;
  for (int j = 1; j <= n; ++j) headers.push_back(" a" + std::to_string(j));
  if (!matrixMode) headers.push_back(" c");
  return headers;
}

std::vector<std::string> RowHeaders(int n) {
  std::vector<std::string> headers;
  for (int i = 1; i <= n; ++i) headers.push_back(std::to_string(i));
  return headers;
}

CellPosition NextCell(CellPosition at, int n, bool matrixMode) {
  int lastColumn = matrixMode ? n : n + 1;
  if (at.column < lastColumn) return {at.row, at.column + 1};
  return {at.row < n ? at.row + 1 : 1, 1};
}

std::string CellText(float v) {
  std::string s = ListText(v);
  if (s[0] == ' ') s.erase(0, 1);
  size_t digits = s[0] == '-' ? 1 : 0;
  if (s[digits] == '.') s.insert(digits, 1, '0');
  return s;
}

}  // namespace merida
