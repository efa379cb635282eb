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
  EXPECT_EQ(d.values[0], 0.0f);
}

TEST(MatrixControlTest, SolvesWithRowExchange) {
  MatrixControl m;
  m.setOrder(3);
  m.setMatrix({0, 2, 1, 1, 0, 0, 3, 0, 1});  // x = 1, y = 2, z = 3
  m.setVector({7, 1, 6});
  MatrixResult x = m.solve();
  ASSERT_EQ(x.status, MatrixStatus::Ok);
  ASSERT_EQ(x.values.size(), 3u);
  EXPECT_FLOAT_EQ(x.values[0], 1);
  EXPECT_FLOAT_EQ(x.values[1], 2);
  EXPECT_FLOAT_EQ(x.values[2], 3);
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
  EXPECT_EQ(x.values, (std::vector<float>{1, 0}));
}

TEST(MatrixControlTest, BadlyScaledButRegularIsNotSingular) {
  MatrixControl m;
  m.setOrder(2);
  m.setMatrix({1, 0, 0, 1e-8f});
  MatrixResult inv = m.inverse();
  ASSERT_EQ(inv.status, MatrixStatus::Ok);
  EXPECT_FLOAT_EQ(inv.values[3], 1e8f);
}

TEST(MatrixControlTest, SingularAndOverflow) {
  MatrixControl m;
  m.setOrder(3);
  m.setMatrix({1, 2, 3, 4, 5, 6, 7, 8, 9});
  EXPECT_EQ(m.inverse().status, MatrixStatus::Singular);
  EXPECT_EQ(m.solve().status, MatrixStatus::Singular);
  EXPECT_EQ(m.determinant().values, std::vector<float>{0.0f});

  m.setOrder(2);
  m.setMatrix({1e30f, 0, 0, 1e30f});
  EXPECT_EQ(m.determinant().status, MatrixStatus::Overflow);
  m.setMatrix({1e-40f, 0, 0, 1});  // a subnormal pivot: its inverse leaves the range
  EXPECT_EQ(m.inverse().status, MatrixStatus::Overflow);
  m.setMatrix({INFINITY, 0, 0, 1});
  EXPECT_EQ(m.determinant().status, MatrixStatus::Overflow);
  m.setMatrix({1, 0, 0, 1});
  m.setVector({NAN, 1});
  EXPECT_EQ(m.solve().status, MatrixStatus::Overflow);
}

TEST(MatrixControlTest, HilbertOfOrderFourAgainstItsKnownInverse) {
  // The inverse of the 4x4 Hilbert matrix has integer entries.
  const float known[16] = {16, -120, 240, -140, -120, 1200, -2700, 1680,
                           240, -2700, 6480, -4200, -140, 1680, -4200, 2800};
  std::vector<float> h;
  for (int i = 0; i < 4; ++i)
    for (int j = 0; j < 4; ++j) h.push_back(1.0f / static_cast<float>(i + j + 1));
  MatrixControl m;
  m.setOrder(4);
  m.setMatrix(h);
  MatrixResult inv = m.inverse();
  ASSERT_EQ(inv.status, MatrixStatus::Ok);
  for (int k = 0; k < 16; ++k) EXPECT_NEAR(inv.values[k], known[k], std::fabs(known[k]) * 2e-2) << k;
  MatrixResult d = m.determinant();
  EXPECT_NEAR(d.values[0], 1.0f / 6048000.0f, 1e-8);
}

}  // namespace
}  // namespace merida
