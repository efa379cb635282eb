// The matrix component on Eigen's full-pivoting LU in double precision.
#include "controls/matrix.h"

#include <Eigen/Dense>
#include <algorithm>
#include <cmath>
#include <limits>

namespace merida {
namespace {

using MatrixD = Eigen::Matrix<double, Eigen::Dynamic, Eigen::Dynamic, Eigen::RowMajor>;
using VectorD = Eigen::VectorXd;

bool AllFinite(const std::vector<double>& v) {
  return std::all_of(v.begin(), v.end(), [](double x) { return std::isfinite(x); });
}

MatrixResult Checked(std::vector<double> values) {
  if (!AllFinite(values)) return {MatrixStatus::Overflow, {}};
  return {MatrixStatus::Ok, std::move(values)};
}

// Only an exact zero pivot makes the matrix singular: a relative threshold would refuse
// well-posed but badly scaled systems such as diag(1, 1e-8).
Eigen::FullPivLU<MatrixD> Decompose(const std::vector<double>& m, int n) {
  Eigen::FullPivLU<MatrixD> lu(Eigen::Map<const MatrixD>(m.data(), n, n));
  lu.setThreshold(0.0);
  return lu;
}

}  // namespace

void MatrixControl::setOrder(int n) {
  order_ = std::clamp(n, 1, kMaxOrder);
  matrix_.assign(static_cast<size_t>(order_ * order_), 0.0);
  vector_.assign(static_cast<size_t>(order_), 0.0);
}

void MatrixControl::setMatrix(const std::vector<double>& rowMajor) {
  std::fill(matrix_.begin(), matrix_.end(), 0.0);
  std::copy_n(rowMajor.begin(), std::min(matrix_.size(), rowMajor.size()), matrix_.begin());
}

void MatrixControl::setVector(const std::vector<double>& rhs) {
  std::fill(vector_.begin(), vector_.end(), 0.0);
  std::copy_n(rhs.begin(), std::min(vector_.size(), rhs.size()), vector_.begin());
}

MatrixResult MatrixControl::solve() const {
  if (!AllFinite(matrix_) || !AllFinite(vector_)) return {MatrixStatus::Overflow, {}};
  auto lu = Decompose(matrix_, order_);
  if (!lu.isInvertible()) return {MatrixStatus::Singular, {}};
  VectorD x = lu.solve(Eigen::Map<const VectorD>(vector_.data(), order_));
  return Checked(std::vector<double>(x.data(), x.data() + x.size()));
}

MatrixResult MatrixControl::inverse() const {
  if (!AllFinite(matrix_)) return {MatrixStatus::Overflow, {}};
  auto lu = Decompose(matrix_, order_);
  if (!lu.isInvertible()) return {MatrixStatus::Singular, {}};
  MatrixD inv = lu.inverse();
  return Checked(std::vector<double>(inv.data(), inv.data() + inv.size()));
}

MatrixResult MatrixControl::determinant() const {
  if (!AllFinite(matrix_)) return {MatrixStatus::Overflow, {}};
  auto lu = Decompose(matrix_, order_);
  if (!lu.isInvertible()) return {MatrixStatus::Ok, {0.0}};
  return Checked({lu.determinant()});
}

double MatrixControl::conditionNumber() const {
  const Eigen::JacobiSVD<MatrixD> svd(Eigen::Map<const MatrixD>(matrix_.data(), order_, order_));
  const VectorD& sigma = svd.singularValues();
  const double smallest = sigma(order_ - 1), largest = sigma(0);
  if (!(smallest > 0)) return std::numeric_limits<double>::infinity();
  return largest / smallest;
}

}  // namespace merida
