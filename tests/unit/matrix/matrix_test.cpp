#include "matrix/matrix.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <initializer_list>
#include <limits>
#include <new>
#include <random>
#include <stdexcept>
#include <string>

namespace gult {
namespace {

dMatrix Make(std::uint64_t rows, std::uint64_t cols, std::initializer_list<double> values) {
  dMatrix m(rows, cols);
  std::uint64_t i = 0;
  for (double value : values) {
    m(i / cols, i % cols) = value;
    ++i;
  }
  return m;
}

const dMatrix& Const(const dMatrix& m) { return m; }

template <class Operation>
std::string ErrorOf(Operation operation) {
  try {
    operation();
  } catch (const matrix_error& error) {
    return error.what();
  }
  return "nothing thrown";
}

void ExpectEqual(const dMatrix& a, const dMatrix& b) {
  ASSERT_EQ(a.Rows(), b.Rows());
  ASSERT_EQ(a.Cols(), b.Cols());
  for (std::uint64_t r = 0; r < a.Rows(); ++r) {
    for (std::uint64_t c = 0; c < a.Cols(); ++c) EXPECT_EQ(a(r, c), b(r, c)) << r << "," << c;
  }
}

TEST(Matrix, IsZeroAtFirst) {
  const dMatrix m(2, 3);
  EXPECT_EQ(m.Rows(), 2u);
  EXPECT_EQ(m.Cols(), 3u);
  for (int r = 0; r < 2; ++r) {
    for (int c = 0; c < 3; ++c) EXPECT_EQ(m(r, c), 0.0);
  }
}

TEST(Matrix, AccessOutsideThrowsTheIndexText) {
  dMatrix m(2, 3);
  const char* text = "matrixT::operator(): Index out of range!";
  EXPECT_EQ(ErrorOf([&] { m(2, 0) = 1.0; }), text);
  EXPECT_EQ(ErrorOf([&] { m(0, 3) = 1.0; }), text);
  EXPECT_EQ(ErrorOf([&] { static_cast<void>(Const(m)(2, 0)); }), text);
  EXPECT_EQ(ErrorOf([&] { static_cast<void>(Const(m)(0, std::numeric_limits<std::uint64_t>::max())); }),
            text);
  EXPECT_EQ(ErrorOf([] { static_cast<void>(Const(dMatrix(0, 0))(0, 0)); }), text);
}

TEST(Matrix, ErrorIsALogicError) {
  EXPECT_THROW(static_cast<void>(Const(dMatrix(1, 1))(1, 0)), std::logic_error);
}

TEST(Matrix, CopyShareStorageUntilOneIsWritten) {
  dMatrix a = Make(2, 2, {1, 2, 3, 4});
  const double* shared = &a(0, 0);
  dMatrix b(a);
  dMatrix c(1, 1);
  c = b;
  b(0, 0) = 9.0;
  EXPECT_EQ(Const(a)(0, 0), 1.0);
  EXPECT_EQ(Const(c)(0, 0), 1.0);
  EXPECT_EQ(Const(b)(1, 1), 4.0);
  a(1, 1) = 5.0;
  EXPECT_EQ(Const(c)(1, 1), 4.0);
  // Only the last of the sharers writes into the first storage.
  EXPECT_EQ(&c(0, 0), shared);
}

TEST(Matrix, SelfAssignmentKeepsIt) {
  dMatrix a = Make(1, 2, {1, 2});
  a = *&a;
  EXPECT_EQ(Const(a)(0, 1), 2.0);
}

TEST(Matrix, SharersMayEndInAnyOrder) {
  dMatrix* first = new dMatrix(Make(1, 1, {7}));
  dMatrix second(*first);
  delete first;
  EXPECT_EQ(Const(second)(0, 0), 7.0);
}

TEST(Matrix, ProductMultipliesRowsByColumns) {
  const dMatrix a = Make(2, 3, {1, 2, 3, 4, 5, 6});
  const dMatrix b = Make(3, 2, {7, 8, 9, 10, 11, 12});
  ExpectEqual(a * b, Make(2, 2, {58, 64, 139, 154}));
  ExpectEqual(a, Make(2, 3, {1, 2, 3, 4, 5, 6}));
}

TEST(Matrix, ProductSumsInAscendingOrder) {
  const dMatrix a = Make(1, 3, {1e16, 1.0, -1e16});
  const dMatrix b = Make(3, 1, {1, 1, 1});
  EXPECT_EQ((a * b)(0, 0), 0.0 + 1e16 + 1.0 - 1e16);
}

TEST(Matrix, ProductWithItselfUsesTheOldElements) {
  dMatrix a = Make(2, 2, {1, 1, 0, 1});
  a *= a;
  ExpectEqual(a, Make(2, 2, {1, 2, 0, 1}));
}

TEST(Matrix, ProductOfInconsistentSizesThrowsTheSizeText) {
  dMatrix a(3, 2);
  const dMatrix b(3, 2);
  EXPECT_EQ(ErrorOf([&] { a *= b; }), "matrixT::operator*= : Inconsistent matrix sizes in multiplication!");
  EXPECT_EQ(a.Rows(), 3u);
}

TEST(Matrix, TransposeSwapsRowsAndColumns) {
  ExpectEqual(~Make(2, 3, {1, 2, 3, 4, 5, 6}), Make(3, 2, {1, 4, 2, 5, 3, 6}));
}

TEST(Matrix, IdentityOf3By5Is3By3) {
  dMatrix m(3, 5);
  m(0, 1) = 4.0;
  m(2, 4) = 5.0;
  const dMatrix before(m);
  m.Identity();
  ExpectEqual(m, Make(3, 3, {1, 0, 0, 0, 1, 0, 0, 0, 1}));
  EXPECT_EQ(before.Cols(), 5u);
  EXPECT_EQ(before(2, 4), 5.0);
  dMatrix tall = Make(3, 2, {1, 2, 3, 4, 5, 6});
  tall.Identity();
  ExpectEqual(tall, Make(2, 2, {1, 0, 0, 1}));
}

TEST(Matrix, InverseSwapsRowsForAZeroPivot) {
  const dMatrix m = Make(2, 2, {0, 1, 1, 0});
  ExpectEqual(!m, m);
}

TEST(Matrix, InverseChoosesTheLargestPivot) {
  // Without the row swap 1e-20 would be the pivot and the second row would lose its digits.
  const dMatrix inverse = !Make(2, 2, {1e-20, 1, 1, 1});
  EXPECT_NEAR(inverse(0, 0), -1.0, 1e-15);
  EXPECT_NEAR(inverse(0, 1), 1.0, 1e-15);
  EXPECT_NEAR(inverse(1, 0), 1.0, 1e-15);
  EXPECT_NEAR(inverse(1, 1), 0.0, 1e-15);
}

TEST(Matrix, InverseTimesMatrixIsTheIdentity) {
  std::mt19937 random(3);
  std::uniform_real_distribution<double> value(-1.0, 1.0);
  for (int size = 1; size <= 9; ++size) {
    dMatrix m(size, size);
    for (int r = 0; r < size; ++r) {
      for (int c = 0; c < size; ++c) m(r, c) = value(random) + (r == c ? 4.0 : 0.0);
    }
    const dMatrix product = Const(m) * !m;
    for (int r = 0; r < size; ++r) {
      // Diagonally weighted matrices of this size have a condition below 1e2; 1e-13 leaves a factor of 5.
      for (int c = 0; c < size; ++c) EXPECT_NEAR(product(r, c), r == c ? 1.0 : 0.0, 1e-13);
    }
  }
}

TEST(Matrix, InverseLeavesTheOperand) {
  const dMatrix m = Make(2, 2, {2, 0, 0, 4});
  const dMatrix inverse = !m;
  ExpectEqual(m, Make(2, 2, {2, 0, 0, 4}));
  ExpectEqual(inverse, Make(2, 2, {0.5, 0, 0, 0.25}));
}

TEST(Matrix, InverseOfASingularMatrixThrowsTheSingularText) {
  const dMatrix m = Make(2, 2, {1, 2, 2, 4});
  EXPECT_EQ(ErrorOf([&] { static_cast<void>(!m); }), "matrixT::operator!: Inversion of a singular matrix");
  ExpectEqual(m, Make(2, 2, {1, 2, 2, 4}));
}

TEST(Matrix, InverseOfANonSquareMatrixThrowsItsText) {
  const dMatrix m(2, 3);
  EXPECT_EQ(ErrorOf([&] { static_cast<void>(!m); }), "matrixT::operator!: Inversion of a non-square matrix");
}

TEST(Matrix, InverseHasNoToleranceForTinyPivots) { EXPECT_EQ((!Make(1, 1, {0x1p-1000}))(0, 0), 0x1p1000); }

TEST(Matrix, InverseWithNotANumberDoesNotThrow) {
  const dMatrix inverse = !Make(1, 1, {std::numeric_limits<double>::quiet_NaN()});
  EXPECT_TRUE(std::isnan(inverse(0, 0)));
}

// The address sanitizer of clang++ ends a program that asks for more memory than there can be.
#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define ORSOLVA_ABSURD_SIZES_ABORT
#endif
#endif
#ifndef ORSOLVA_ABSURD_SIZES_ABORT
TEST(Matrix, AbsurdSizesThrowAndLeakNothing) {
  constexpr std::uint64_t absurd = std::uint64_t{1} << 62;
  EXPECT_THROW(dMatrix(absurd, 1), std::bad_alloc);
  EXPECT_THROW(dMatrix(2, absurd), std::bad_alloc);
}
#endif

}  // namespace
}  // namespace gult
