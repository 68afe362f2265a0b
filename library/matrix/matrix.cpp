#include "matrix/matrix.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace gult {

/// Rows are separate arrays, so that a row swap exchanges two pointers.
struct dMatrix::Representation {
  Representation(std::uint64_t rows, std::uint64_t cols) : Representation(nullptr, rows, cols) {}
  /// Copies the rows of a given row table; zeros without one.
  Representation(const double* const* table, std::uint64_t rows, std::uint64_t cols)
      : RowTable(new double*[rows]()),
        RowCount(rows),
        ColCount(cols),
        AllocatedRows(rows),
        AllocatedCols(cols) {
    try {
      for (std::uint64_t r = 0; r < rows; ++r) {
        RowTable[r] = new double[cols]();
        if (table != nullptr) std::copy_n(table[r], cols, RowTable[r]);
      }
    } catch (...) {
      Free();
      throw;
    }
  }
  Representation(const Representation&) = delete;
  Representation& operator=(const Representation&) = delete;
  ~Representation() { Free(); }

  void Free() noexcept {
    for (std::uint64_t r = 0; r < AllocatedRows; ++r) delete[] RowTable[r];
    delete[] RowTable;
  }

  double** RowTable;
  std::uint64_t RowCount;
  std::uint64_t ColCount;
  std::uint64_t AllocatedRows;
  std::uint64_t AllocatedCols;
  std::int32_t ReferenceCount = 1;
};

namespace {

[[noreturn]] void ThrowIndex() { throw matrix_error("matrixT::operator(): Index out of range!"); }

/// Row with the largest magnitude in column k from row k on; the first keeps a tie, k when all are 0.
std::uint64_t PivotRow(const double* const* rows, std::uint64_t size, std::uint64_t k) {
  double best = -1.0;
  std::uint64_t pivot = k;
  for (std::uint64_t r = k; r < size; ++r) {
    const double value = std::fabs(rows[r][k]);
    if (value > best && value != 0.0) {
      best = value;
      pivot = r;
    }
  }
  return pivot;
}

/// Makes column k of `a` a unit column and applies the same row operations to `result`.
void EliminateColumn(double** a, double** result, std::uint64_t size, std::uint64_t k) {
  const double p = a[k][k];
  for (std::uint64_t j = 0; j < size; ++j) {
    a[k][j] /= p;
    result[k][j] /= p;
  }
  for (std::uint64_t i = 0; i < size; ++i) {
    if (i == k) continue;
    const double f = a[i][k];
    for (std::uint64_t j = 0; j < size; ++j) {
      a[i][j] -= f * a[k][j];
      result[i][j] -= f * result[k][j];
    }
  }
}

}  // namespace

dMatrix::dMatrix(std::uint64_t rows, std::uint64_t cols) : shared_(new Representation(rows, cols)) {}

dMatrix::dMatrix(const dMatrix& other) noexcept : shared_(other.shared_) { ++shared_->ReferenceCount; }

dMatrix& dMatrix::operator=(const dMatrix& other) noexcept {
  ++other.shared_->ReferenceCount;
  Release();
  shared_ = other.shared_;
  return *this;
}

dMatrix::~dMatrix() { Release(); }

void dMatrix::Release() noexcept {
  if (--shared_->ReferenceCount == 0) delete shared_;
}

void dMatrix::Detach() {
  if (shared_->ReferenceCount <= 1) return;
  Representation* own = new Representation(shared_->RowTable, shared_->RowCount, shared_->ColCount);
  --shared_->ReferenceCount;
  shared_ = own;
}

std::uint64_t dMatrix::Rows() const noexcept { return shared_->RowCount; }

std::uint64_t dMatrix::Cols() const noexcept { return shared_->ColCount; }

double dMatrix::operator()(std::uint64_t row, std::uint64_t col) const {
  if (row >= shared_->RowCount || col >= shared_->ColCount) ThrowIndex();
  return shared_->RowTable[row][col];
}

double& dMatrix::operator()(std::uint64_t row, std::uint64_t col) {
  if (row >= shared_->RowCount || col >= shared_->ColCount) ThrowIndex();
  Detach();
  return shared_->RowTable[row][col];
}

dMatrix& dMatrix::operator*=(const dMatrix& b) {
  const std::uint64_t inner = shared_->ColCount;
  if (inner != b.shared_->RowCount) {
    throw matrix_error("matrixT::operator*= : Inconsistent matrix sizes in multiplication!");
  }
  dMatrix result(shared_->RowCount, b.shared_->ColCount);
  for (std::uint64_t r = 0; r < result.Rows(); ++r) {
    const double* row = shared_->RowTable[r];
    for (std::uint64_t c = 0; c < result.Cols(); ++c) {
      double sum = 0.0;
      for (std::uint64_t i = 0; i < inner; ++i) sum += row[i] * b.shared_->RowTable[i][c];
      result.shared_->RowTable[r][c] = sum;
    }
  }
  return *this = result;
}

dMatrix operator*(const dMatrix& a, const dMatrix& b) {
  dMatrix product(a);
  product *= b;
  return product;
}

dMatrix dMatrix::operator~() const {
  dMatrix result(shared_->ColCount, shared_->RowCount);
  for (std::uint64_t r = 0; r < shared_->RowCount; ++r) {
    for (std::uint64_t c = 0; c < shared_->ColCount; ++c) {
      result.shared_->RowTable[c][r] = shared_->RowTable[r][c];
    }
  }
  return result;
}

void dMatrix::Identity() {
  Detach();
  const std::uint64_t size = std::min(shared_->RowCount, shared_->ColCount);
  shared_->RowCount = size;
  shared_->ColCount = size;
  for (std::uint64_t r = 0; r < size; ++r) {
    std::fill_n(shared_->RowTable[r], size, 0.0);
    shared_->RowTable[r][r] = 1.0;
  }
}

dMatrix dMatrix::operator!() const {
  if (shared_->RowCount != shared_->ColCount) {
    throw matrix_error("matrixT::operator!: Inversion of a non-square matrix");
  }
  const std::uint64_t size = shared_->RowCount;
  dMatrix result(size, size);
  result.Identity();
  dMatrix copy(*this);
  copy.Detach();
  double** a = copy.shared_->RowTable;
  double** r = result.shared_->RowTable;
  for (std::uint64_t k = 0; k < size; ++k) {
    const std::uint64_t pivot = PivotRow(a, size, k);
    if (a[pivot][k] == 0.0) throw matrix_error("matrixT::operator!: Inversion of a singular matrix");
    if (pivot != k) {
      std::swap(a[pivot], a[k]);
      std::swap(r[pivot], r[k]);
    }
    EliminateColumn(a, r, size, k);
  }
  return result;
}

}  // namespace gult
