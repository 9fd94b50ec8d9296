#pragma once
// Dense matrices of doubles for the estimation and the draws around an estimate: in-place
// inversion, product, the symmetric square root of a covariance, and the covariance file
// reader. The matrices are small (one row and column per effect), so clarity and exact,
// build-independent arithmetic matter more than speed here.

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace vexa {

// Row-major storage; m[r][c] reads entry (r, c).
struct Matrix {
    int32_t rows = 0;
    int32_t cols = 0;
    std::vector<double> data;

    double* operator[](int r) {
        return data.data() + static_cast<std::size_t>(r) * static_cast<std::size_t>(cols);
    }
    const double* operator[](int r) const {
        return data.data() + static_cast<std::size_t>(r) * static_cast<std::size_t>(cols);
    }
};

// Every entry set to fill. Throws std::invalid_argument for a negative size.
Matrix make_matrix(int rows, int cols, double fill = 0.0);

// The n x n identity.
Matrix identity_matrix(int n);

// Gauss-Jordan elimination with full pivoting; the inverse replaces the matrix. Returns 1 on
// success and 0 when a pivot is exactly zero (of either sign), leaving the matrix partly
// reduced. There is no tolerance: a tiny nonzero pivot is used. Ties in the pivot search go
// to the later row and column. A matrix holding NaN where a pivot must be found also gives 0.
// Throws std::invalid_argument for a matrix that is not square.
int invert_in_place(Matrix& m);

// a * b, each entry summed from k = 0 upward into zero. Throws std::invalid_argument when
// the inner sizes differ.
Matrix multiply(const Matrix& a, const Matrix& b);

// The symmetric square root S of a symmetric positive semi-definite matrix (S * S equals it),
// through a cyclic Jacobi eigen-decomposition: S = V diag(sqrt(l)) V^-1. Eigenvalues that are
// negative only by rounding are taken as 0. Throws SettingError for a matrix that is not
// square, not symmetric, holds a non-finite value, or is clearly not positive semi-definite.
Matrix symmetric_sqrt(const Matrix& covariance);

// A p x p matrix read row by row from a text file of whitespace-separated values (the layout
// of the covariance file). Throws InputFileError for a missing file, a value that is not a
// finite number (naming its row and column), or a count of values other than p * p.
Matrix read_matrix(const std::string& path, int p);

}  // namespace vexa
