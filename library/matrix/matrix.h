// Dense matrix of doubles whose copies share storage until one of them is written to.
//
// The reference count is not atomic: a matrix and its copies belong to one thread.
#ifndef ORSOLVA_MATRIX_MATRIX_H
#define ORSOLVA_MATRIX_MATRIX_H

#include <cstdint>
#include <stdexcept>
#include <string>

namespace gult {

/// What every failing matrix operation throws, with one of four fixed texts.
class matrix_error : public std::logic_error {
 public:
  explicit matrix_error(const std::string& text) : std::logic_error(text) {}
};

/// Dense matrix, row by row, indices from 0.
class dMatrix {
 public:
  /// All elements 0.0.
  dMatrix(std::uint64_t rows, std::uint64_t cols);
  /// Shares the storage of `other`.
  dMatrix(const dMatrix& other) noexcept;
  dMatrix& operator=(const dMatrix& other) noexcept;
  virtual ~dMatrix();

  std::uint64_t Rows() const noexcept;
  std::uint64_t Cols() const noexcept;
  /// Throws matrix_error outside the matrix.
  double operator()(std::uint64_t row, std::uint64_t col) const;
  /// Writable element; gives this matrix storage of its own first. Throws matrix_error outside the matrix.
  double& operator()(std::uint64_t row, std::uint64_t col);
  /// this * b. Throws matrix_error unless the columns of this are the rows of b.
  dMatrix& operator*=(const dMatrix& b);
  /// The transpose.
  dMatrix operator~() const;
  /// The inverse by Gauss-Jordan elimination with partial pivoting; no tolerance, only a pivot of exactly 0.0
  /// counts as singular. Throws matrix_error for a matrix that is not square or is singular.
  dMatrix operator!() const;
  /// Shrinks to the smaller of rows and columns and becomes the identity.
  void Identity();

 private:
  struct Representation;

  void Detach();
  void Release() noexcept;

  Representation* shared_;
};

/// a * b, see operator*=.
dMatrix operator*(const dMatrix& a, const dMatrix& b);

}  // namespace gult

#endif  // ORSOLVA_MATRIX_MATRIX_H
