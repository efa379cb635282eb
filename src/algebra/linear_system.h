// Simultaneous linear equations, determinant and inverse: grid cell texts in, list lines out.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace merida {

constexpr int kMaxSystemOrder = 10;
constexpr double kResidualLimit = 0.01;
constexpr float kInverseThreshold = 1e-6f;

// The data cells of the grid, row by row: n rows of n + 1 texts (equations) or n texts (matrix).
using CellTexts = std::vector<std::vector<std::string>>;

enum class LinearOutcome {
  Listed,      // lines replace the list (a solution, possibly with the residual warning; a determinant)
  Refused,     // lines replace the list, but they say why nothing was solved
  Silent,      // an empty cell: nothing happens, the list keeps its lines
  NotNumeric,  // a cell holds text that is not a number: nothing computed
  Fault,       // arithmetic overflow: ends without a message
};

struct LinearResult {
  LinearOutcome outcome = LinearOutcome::Silent;
  std::vector<std::string> lines;
  CellTexts cells;                 // Inverse: the new data cells
  int badRow = 0, badColumn = 0;   // NotNumeric: the cell, 1-based
  // Set when the matrix is too ill-conditioned for single precision to carry a digit:
  // "ill-conditioned (condition number about 1.5E+10); the answer may have no correct digits".
  std::string warning;
  double condition = 0;  // the estimate behind the warning
};

// The warning for a condition number, or "" when single precision still carries digits.
std::string ConditionWarning(double condition);

// Go: Gauss-Jordan elimination in double precision without pivoting; unknowns listed in single.
LinearResult SolveByElimination(const CellTexts& grid);
// Simult: the same system, read in single precision, solved in double by the matrix component;
// the unknowns listed in single.
LinearResult SolveByMatrix(const CellTexts& grid);
// Determinant of the n x n matrix (read in single, computed in double), one line in single.
LinearResult Determinant(const CellTexts& grid);
// Inverse matrix written back as cell texts (elements below 1e-6 in magnitude become "0");
// the list is emptied.
LinearResult Inverse(const CellTexts& grid);

// The order the Dimension box asks for: its value rounded to 16 bits, above 10 cut to 10;
// nullopt for a text that is not a number or an order below 1.
std::optional<int> DimensionFromText(std::string_view text);

// The grid's headers of columns 1 onwards (" a1" .. " an", then " c" for equations) and of
// rows 1 to n ("1" .. "n"); the corner cell is a caption and belongs to the window.
std::vector<std::string> ColumnHeaders(int n, bool matrixMode);
std::vector<std::string> RowHeaders(int n);

struct CellPosition {
  int row = 1, column = 1;
  bool operator==(const CellPosition&) const = default;
};
// The cell after Enter in the entry box: one column right, past the last data column to
// column 1 of the next row, past the last row back to the first cell.
CellPosition NextCell(CellPosition at, int n, bool matrixMode);

// A single-precision value as a grid cell shows it: plain form with 7 significant digits.
std::string CellText(float v);

}  // namespace merida
