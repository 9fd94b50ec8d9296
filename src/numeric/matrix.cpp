#include "numeric/matrix.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <utility>

#include "base/errors.h"
#include "base/matrix_text.h"

namespace vexa {

namespace {

// Cyclic Jacobi sweeps over a symmetric matrix held in full (both triangles kept equal).
// On return the diagonal of a holds the eigenvalues and the columns of v the eigenvectors.
constexpr int max_sweeps = 100;

void rotate(Matrix& a, Matrix& v, int p, int q) {
    const int n = a.rows;
    const double apq = a[p][q];
    const double half_difference = (a[p][p] - a[q][q]) * 0.5;
    // The smaller root of apq t^2 - 2 d t - apq = 0, so the angle stays within 45 degrees
    // and the update is stable; apq is nonzero here, so the denominator is too.
    const double radius = std::hypot(half_difference, apq);
    const double t = -apq / (half_difference + std::copysign(radius, half_difference));
    const double c = 1.0 / std::sqrt(1.0 + t * t);
    const double s = t * c;

    a[p][p] -= t * apq;
    a[q][q] += t * apq;
    a[p][q] = 0.0;
    a[q][p] = 0.0;
    for (int r = 0; r < n; ++r) {
        if (r == p || r == q) continue;
        const double arp = a[r][p];
        const double arq = a[r][q];
        const double new_rp = c * arp - s * arq;
        const double new_rq = s * arp + c * arq;
        a[r][p] = new_rp;
        a[p][r] = new_rp;
        a[r][q] = new_rq;
        a[q][r] = new_rq;
    }
    for (int r = 0; r < n; ++r) {
        const double vrp = v[r][p];
        const double vrq = v[r][q];
        v[r][p] = c * vrp - s * vrq;
        v[r][q] = s * vrp + c * vrq;
    }
}

void jacobi_eigen(Matrix& a, Matrix& v) {
    const int n = a.rows;
    // The stop threshold is 1e-10 of the starting off-diagonal norm sqrt(2 sum a_pq^2), over
    // n. The squares are summed relative to the largest entry so that they cannot overflow.
    double largest = 0.0;
    for (int p = 0; p < n; ++p) {
        for (int q = p + 1; q < n; ++q) largest = std::max(largest, std::fabs(a[p][q]));
    }
    if (largest == 0.0) return;  // already diagonal
    double relative_squares = 0.0;
    for (int p = 0; p < n; ++p) {
        for (int q = p + 1; q < n; ++q)
            relative_squares += (a[p][q] / largest) * (a[p][q] / largest);
    }
    const double threshold =
        1e-10 * largest * std::sqrt(2.0 * relative_squares) / static_cast<double>(n);
    for (int sweep = 0; sweep < max_sweeps; ++sweep) {
        bool rotated = false;
        for (int p = 0; p < n; ++p) {
            for (int q = p + 1; q < n; ++q) {
                if (std::fabs(a[p][q]) > threshold) {
                    rotate(a, v, p, q);
                    rotated = true;
                }
            }
        }
        if (!rotated) return;
    }
}

}  // namespace

Matrix make_matrix(int rows, int cols, double fill) {
    if (rows < 0 || cols < 0) {
        throw std::invalid_argument(format_message("vexa: a matrix cannot be %d x %d", rows, cols));
    }
    Matrix m;
    m.rows = rows;
    m.cols = cols;
    m.data.assign(static_cast<std::size_t>(rows) * static_cast<std::size_t>(cols), fill);
    return m;
}

Matrix identity_matrix(int n) {
    Matrix m = make_matrix(n, n, 0.0);
    for (int i = 0; i < n; ++i) m[i][i] = 1.0;
    return m;
}

int invert_in_place(Matrix& m) {
    if (m.rows != m.cols) {
        throw std::invalid_argument(
            format_message("vexa: cannot invert a %d x %d matrix", m.rows, m.cols));
    }
    const int n = m.rows;
    const std::size_t size = static_cast<std::size_t>(n);
    std::vector<int> used(size, 0);  // per column: has it served as a pivot
    std::vector<int> pivot_row(size, 0);
    std::vector<int> pivot_column(size, 0);

    for (int step = 0; step < n; ++step) {
        double best = 0.0;
        int row = -1;
        int column = -1;
        for (int j = 0; j < n; ++j) {
            if (used[static_cast<std::size_t>(j)] == 1) continue;
            const double* entries = m[j];
            for (int k = 0; k < n; ++k) {
                if (used[static_cast<std::size_t>(k)] != 0) continue;
                const double size_of = std::fabs(entries[k]);
                if (size_of >= best) {  // later rows and columns win ties
                    best = size_of;
                    row = j;
                    column = k;
                }
            }
        }
        if (row < 0) return 0;  // every candidate was NaN
        ++used[static_cast<std::size_t>(column)];

        if (row != column) {
            std::swap_ranges(m[row], m[row] + n, m[column]);
        }
        pivot_row[static_cast<std::size_t>(step)] = row;
        pivot_column[static_cast<std::size_t>(step)] = column;

        double* pivot = m[column];
        if (pivot[column] == 0.0) return 0;  // true for -0.0 as well
        const double reciprocal = 1.0 / pivot[column];
        pivot[column] = 1.0;
        for (int c = 0; c < n; ++c) pivot[c] *= reciprocal;
        for (int other = 0; other < n; ++other) {
            if (other == column) continue;
            double* entries = m[other];
            const double factor = entries[column];
            entries[column] = 0.0;
            for (int c = 0; c < n; ++c) entries[c] -= pivot[c] * factor;
        }
    }

    // The row exchanges permuted the unknowns; undo them on the columns, last step first.
    for (int step = n - 1; step >= 0; --step) {
        const int a = pivot_row[static_cast<std::size_t>(step)];
        const int b = pivot_column[static_cast<std::size_t>(step)];
        if (a == b) continue;
        for (int r = 0; r < n; ++r) std::swap(m[r][a], m[r][b]);
    }
    return 1;
}

Matrix multiply(const Matrix& a, const Matrix& b) {
    if (a.cols != b.rows) {
        throw std::invalid_argument(
            format_message("vexa: cannot multiply a %d x %d matrix by a %d x %d one", a.rows,
                           a.cols, b.rows, b.cols));
    }
    Matrix out = make_matrix(a.rows, b.cols, 0.0);
    // k in the middle loop keeps each entry's sum in the order k = 0, 1, ... while reading
    // b row by row.
    for (int i = 0; i < a.rows; ++i) {
        double* target = out[i];
        const double* left = a[i];
        for (int k = 0; k < a.cols; ++k) {
            const double factor = left[k];
            const double* right = b[k];
            for (int j = 0; j < b.cols; ++j) target[j] += factor * right[j];
        }
    }
    return out;
}

Matrix symmetric_sqrt(const Matrix& covariance) {
    const int n = covariance.rows;
    if (covariance.cols != n) {
        throw SettingError(format_message("vexa: the covariance matrix is %d x %d, not square", n,
                                          covariance.cols));
    }
    double largest_entry = 0.0;
    for (const double value : covariance.data) {
        if (!std::isfinite(value)) {
            throw SettingError(
                "vexa: the covariance matrix holds a value that is not a finite number");
        }
        largest_entry = std::max(largest_entry, std::fabs(value));
    }
    // A matrix computed in floating point may differ from its transpose by rounding; use the
    // mean of the two triangles, but refuse a matrix that is not symmetric at all.
    Matrix a = make_matrix(n, n, 0.0);
    for (int i = 0; i < n; ++i) {
        a[i][i] = covariance[i][i];
        for (int j = i + 1; j < n; ++j) {
            const double upper = covariance[i][j];
            const double lower = covariance[j][i];
            if (std::fabs(upper - lower) > 1e-9 * largest_entry) {
                throw SettingError(
                    format_message("vexa: the covariance matrix is not symmetric (row %d, column "
                                   "%d: %g against %g)",
                                   i + 1, j + 1, upper, lower));
            }
            a[i][j] = (upper + lower) * 0.5;
            a[j][i] = a[i][j];
        }
    }

    Matrix v = identity_matrix(n);
    jacobi_eigen(a, v);

    double largest_eigenvalue = 0.0;
    for (int i = 0; i < n; ++i)
        largest_eigenvalue = std::max(largest_eigenvalue, std::fabs(a[i][i]));
    // Rounding leaves the zero eigenvalues of a singular covariance slightly negative.
    const double tolerance = 1e-8 * largest_eigenvalue;
    Matrix root = make_matrix(n, n, 0.0);
    for (int i = 0; i < n; ++i) {
        const double eigenvalue = a[i][i];
        if (eigenvalue < -tolerance) {
            throw SettingError("vexa: the covariance matrix is not positive semi-definite");
        }
        root[i][i] = eigenvalue > 0.0 ? std::sqrt(eigenvalue) : 0.0;
    }

    Matrix v_inverse = v;
    if (invert_in_place(v_inverse) == 0) {
        // The eigenvectors are orthogonal; this only happens if the sweeps went badly wrong.
        throw SettingError("vexa: the eigenvectors of the covariance matrix could not be inverted");
    }
    return multiply(multiply(v, root), v_inverse);
}

Matrix read_matrix(const std::string& path, int p) {
    if (p < 0) {
        throw SettingError(format_message("vexa: matrix file '%s' cannot hold a %d x %d matrix",
                                          path.c_str(), p, p));
    }
    Matrix m = make_matrix(p, p, 0.0);
    read_matrix_file(path, "matrix", p, [&](int row, int column, double value) {
        if (!std::isfinite(value)) {
            throw InputFileError(format_message(
                "vexa: matrix file '%s', row %d, column %d: %g is not a finite number",
                path.c_str(), row + 1, column + 1, value));
        }
        m[row][column] = value;
    });
    return m;
}

}  // namespace vexa
