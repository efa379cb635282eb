// The matrix component: linear systems, inverse and determinant of a square matrix in double precision.
#pragma once

#include <vector>

namespace merida {

enum class MatrixStatus { Ok, Singular, Overflow };

struct MatrixResult {
  MatrixStatus status = MatrixStatus::Ok;
  std::vector<double> values;  // the solution, the inverse row by row, or the one determinant
};

// Holds a square matrix of order 1 to 10 and a right-hand side, as three settable properties.
// A matrix is singular when elimination meets an exact zero pivot; results that are not finite,
// or inputs that are not finite, are overflows.
class MatrixControl {
 public:
  static constexpr int kMaxOrder = 10;

  // Sets the order (clamped to 1..10); the matrix and the vector become zero.
  void setOrder(int n);
  int order() const { return order_; }
  // Row-major elements; missing elements are zero, extra ones ignored.
  void setMatrix(const std::vector<double>& rowMajor);
  void setVector(const std::vector<double>& rhs);

  // The x with matrix * x = vector.
  MatrixResult solve() const;
  // The inverse, row-major.
  MatrixResult inverse() const;
  // The determinant (0 for a singular matrix, never Singular).
  MatrixResult determinant() const;
  // The 2-norm condition number (largest over smallest singular value); infinity when singular.
  double conditionNumber() const;

 private:
  int order_ = 1;
  std::vector<double> matrix_ = std::vector<double>(1, 0.0);
  std::vector<double> vector_ = std::vector<double>(1, 0.0);
};

}  // namespace merida
