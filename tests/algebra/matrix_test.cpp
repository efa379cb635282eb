// The matrix component: order limits, singular matrices, overflow, known results.
#include "controls/matrix.h"

#include <gtest/gtest.h>

#include <cmath>

namespace merida {
namespace {

TEST(MatrixControlTest, OrderIsClampedAndClearsTheData) {
  MatrixControl m;
  m.setOrder(0);
  EXPECT_EQ(m.order(), 1);
  m.setOrder(11);
  EXPECT_EQ(m.order(), 10);
  m.setOrder(2);
  m.setMatrix({1, 2, 3, 4});
  m.setOrder(2);
  MatrixResult d = m.determinant();
  ASSERT_EQ(d.status, MatrixStatus::Ok);
  EXPECT_EQ(d.values[0], 0.0);
}

TEST(MatrixControlTest, SolvesWithRowExchange) {
  MatrixControl m;
  m.setOrder(3);
  m.setMatrix({0, 2, 1, 1, 0, 0, 3, 0, 1});  // x = 1, y = 2, z = 3
  m.setVector({7, 1, 6});
  MatrixResult x = m.solve();
  ASSERT_EQ(x.status, MatrixStatus::Ok);
  ASSERT_EQ(x.values.size(), 3u);
  EXPECT_DOUBLE_EQ(x.values[0], 1);
  EXPECT_DOUBLE_EQ(x.values[1], 2);
  EXPECT_DOUBLE_EQ(x.values[2], 3);
}

TEST(MatrixControlTest, MissingElementsAreZero) {
  MatrixControl m;
  m.setOrder(2);
  m.setMatrix({2});          // [[2, 0], [0, 0]]
  EXPECT_EQ(m.solve().status, MatrixStatus::Singular);
  m.setMatrix({2, 0, 0, 4, 99, 99});  // extra elements ignored
  m.setVector({2});
  MatrixResult x = m.solve();
  ASSERT_EQ(x.status, MatrixStatus::Ok);
  EXPECT_EQ(x.values, (std::vector<double>{1, 0}));
}

TEST(MatrixControlTest, BadlyScaledButRegularIsNotSingular) {
  MatrixControl m;
  m.setOrder(2);
  m.setMatrix({1, 0, 0, 1e-8});
  MatrixResult inv = m.inverse();
  ASSERT_EQ(inv.status, MatrixStatus::Ok);
  EXPECT_DOUBLE_EQ(inv.values[3], 1e8);
}

TEST(MatrixControlTest, SingularAndOverflow) {
  MatrixControl m;
  m.setOrder(3);
  m.setMatrix({1, 2, 3, 4, 5, 6, 7, 8, 9});
  EXPECT_EQ(m.inverse().status, MatrixStatus::Singular);
  EXPECT_EQ(m.solve().status, MatrixStatus::Singular);
  EXPECT_EQ(m.determinant().values, std::vector<double>{0.0});

  m.setOrder(2);
  m.setMatrix({1e200, 0, 0, 1e200});
  EXPECT_EQ(m.determinant().status, MatrixStatus::Overflow);
  m.setMatrix({1e-320, 0, 0, 1});  // a subnormal pivot: its inverse leaves the range
  EXPECT_EQ(m.inverse().status, MatrixStatus::Overflow);
  m.setMatrix({INFINITY, 0, 0, 1});
  EXPECT_EQ(m.determinant().status, MatrixStatus::Overflow);
  m.setMatrix({1, 0, 0, 1});
  m.setVector({NAN, 1});
  EXPECT_EQ(m.solve().status, MatrixStatus::Overflow);
}

TEST(MatrixControlTest, HilbertOfOrderFourAgainstItsKnownInverse) {
  // The inverse of the 4x4 Hilbert matrix has integer entries.
  const double known[16] = {16, -120, 240, -140, -120, 1200, -2700, 1680,
                           240, -2700, 6480, -4200, -140, 1680, -4200, 2800};
  std::vector<double> h;
  for (int i = 0; i < 4; ++i)
    for (int j = 0; j < 4; ++j) h.push_back(1.0 / (i + j + 1));
  MatrixControl m;
  m.setOrder(4);
  m.setMatrix(h);
  MatrixResult inv = m.inverse();
  ASSERT_EQ(inv.status, MatrixStatus::Ok);
  for (int k = 0; k < 16; ++k) EXPECT_NEAR(inv.values[k], known[k], std::fabs(known[k]) * 1e-9) << k;
  MatrixResult d = m.determinant();
  EXPECT_NEAR(d.values[0], 1.0 / 6048000.0, 1e-18);
}

// Integer matrices whose results are integers come out exact: no single-precision noise.
struct ExactCase {
  const char* name;
  int n;
  std::vector<double> matrix;
  double determinant;
  std::vector<double> inverse;
};

class ExactIntegerTest : public ::testing::TestWithParam<ExactCase> {};

TEST_P(ExactIntegerTest, DeterminantAndInverse) {
  const ExactCase& c = GetParam();
  MatrixControl m;
  m.setOrder(c.n);
  m.setMatrix(c.matrix);
  MatrixResult d = m.determinant();
  ASSERT_EQ(d.status, MatrixStatus::Ok);
  EXPECT_NEAR(d.values[0], c.determinant, 1e-12);
  MatrixResult inv = m.inverse();
  ASSERT_EQ(inv.status, MatrixStatus::Ok);
  ASSERT_EQ(inv.values.size(), c.inverse.size());
  for (size_t k = 0; k < c.inverse.size(); ++k) EXPECT_NEAR(inv.values[k], c.inverse[k], 1e-12) << k;
}

INSTANTIATE_TEST_SUITE_P(
    Matrices, ExactIntegerTest,
    ::testing::Values(ExactCase{"Three", 3, {4, 7, 2, 3, 6, 1, 2, 5, 3}, 9,
                                {13.0 / 9, -11.0 / 9, -5.0 / 9, -7.0 / 9, 8.0 / 9, 2.0 / 9, 3.0 / 9, -6.0 / 9, 3.0 / 9}},
                      ExactCase{"UnitLowerTimesUpper", 3, {1, 2, 3, 2, 5, 3, 1, 0, 8}, -1,
                                {-40, 16, 9, 13, -5, -3, 5, -2, -1}},
                      ExactCase{"Two", 2, {4, 7, 2, 6}, 10, {0.6, -0.7, -0.2, 0.4}}),
    [](const auto& p) { return std::string(p.param.name); });

}  // namespace
}  // namespace merida
