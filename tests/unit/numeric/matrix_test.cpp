#include "numeric/matrix.h"

#include <gtest/gtest.h>

#include <cmath>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "base/errors.h"
#include "numeric/rng.h"
#include "support/test_support.h"

namespace vexa {
namespace {

using Pairs = std::vector<std::pair<Matrix, Matrix>>;

void expect_near(const Matrix& actual, const Matrix& expected, double tolerance) {
    ASSERT_TRUE(actual.rows == expected.rows && actual.cols == expected.cols);
    for (size_t k = 0; k < actual.data.size(); ++k)
        EXPECT_NEAR(actual.data[k], expected.data[k], tolerance) << k;
}

TEST(MatrixInverse, HandWorkedMatricesAndRoundTrips) {
    // 1 by 1; a scaled permutation, whose pivots all lie off the diagonal, so that rows are
    // exchanged and the columns swapped back; determinant 1, so the inverse is the integer
    // adjugate.
    for (auto [m, inverse] : Pairs{{Matrix{1, 1, {4}}, Matrix{1, 1, {0.25}}},
                                   {Matrix{3, 3, {0, 0, 2, 0, 3, 0, 4, 0, 0}},
                                    Matrix{3, 3, {0, 0, 0.25, 0, 1.0 / 3, 0, 0.5, 0, 0}}},
                                   {Matrix{3, 3, {1, 2, 3, 0, 1, 4, 5, 6, 0}},
                                    Matrix{3, 3, {-24, 18, 5, 20, -15, -4, -5, 4, 1}}}}) {
        EXPECT_EQ(invert_in_place(m), 1);
        expect_near(m, inverse, 1e-12);
    }
    // Singular: a zero of either sign; row 2 twice row 1 (every step exact, the third pivot 0).
    for (Matrix m :
         {Matrix{1, 1, {0.0}}, Matrix{1, 1, {-0.0}}, Matrix{3, 3, {1, 2, 4, 2, 4, 8, 1, 1, 1}}}) {
        EXPECT_EQ(invert_in_place(m), 0);
    }
    // All four entries tie, so the last, (1, 1), is the pivot. Its row stays [1 1] and row 0
    // becomes [1 - 1, 0 - 1/1] = [0 -1] (the pivot column takes the inverse's entries), whose
    // 0 is the next pivot. Had the first entry won, the result would be [[1 1] [-1 0]].
    Matrix ties{2, 2, {1, 1, 1, 1}};
    EXPECT_EQ(invert_in_place(ties), 0);
    expect_near(ties, Matrix{2, 2, {0, -1, 1, 1}}, 0.0);

    const Matrix product =
        multiply(Matrix{2, 3, {1, 2, 3, 4, 5, 6}}, Matrix{3, 2, {1, 7, 0, 8, -1, 9}});
    expect_near(product, Matrix{2, 2, {-2, 50, -2, 122}}, 0.0);
    // Random entries with a dominant one of random sign at (r, r + 1 mod n): well conditioned,
    // and the pivots need exchanges that undo in the right order only. A A^-1 = I.
    Rng rng;
    rng.seed(2024);
    for (const int n : {2, 3, 5, 8, 13}) {
        Matrix a = make_matrix(n, n);
        for (double& x : a.data) x = rng.unit() * 2.0 - 1.0;
        for (int r = 0; r < n; ++r) a[r][(r + 1) % n] += (rng.next() % 2 == 0 ? 1.0 : -1.0) * n;
        Matrix inverse = a;
        EXPECT_EQ(invert_in_place(inverse), 1);
        expect_near(multiply(a, inverse), identity_matrix(n), 1e-12);
    }
}

TEST(SymmetricSquareRoot, HandWorkedAndRandomRoots) {
    // [[2,1],[1,2]]: eigenvalues 3, 1 on (1,1), (1,-1); root (1/2) [[r3+1, r3-1], [r3-1, r3+1]].
    // C = [[1,1],[1,1]]: C C = 2C, root C / sqrt(2). The last two are B B for a tridiagonal B with
    // positive eigenvalues (2, 2 +- r2; 3 + 2 cos(k pi / 5)), so B is their root; several sweeps.
    const double r3 = std::sqrt(3.0), h = 1.0 / std::sqrt(2.0);
    for (const auto& [c, root] : Pairs{
             {Matrix{1, 1, {9}}, Matrix{1, 1, {3}}},
             {make_matrix(2, 2, 0.0), make_matrix(2, 2, 0.0)},
             {Matrix{2, 2, {2, 1, 1, 2}},
              Matrix{2, 2, {(r3 + 1) / 2, (r3 - 1) / 2, (r3 - 1) / 2, (r3 + 1) / 2}}},
             {Matrix{2, 2, {1, 1, 1, 1}}, Matrix{2, 2, {h, h, h, h}}},
             {Matrix{3, 3, {5, 4, 1, 4, 6, 4, 1, 4, 5}}, Matrix{3, 3, {2, 1, 0, 1, 2, 1, 0, 1, 2}}},
             {Matrix{4, 4, {10, 6, 1, 0, 6, 11, 6, 1, 1, 6, 11, 6, 0, 1, 6, 10}},
              Matrix{4, 4, {3, 1, 0, 0, 1, 3, 1, 0, 0, 1, 3, 1, 0, 0, 1, 3}}}}) {
        expect_near(symmetric_sqrt(c), root, 1e-9);
    }
    // Random covariances A A^T + I / 10: the root is symmetric and squares back to C.
    Rng rng;
    rng.seed(77);
    for (const int n : {2, 3, 5, 8, 12}) {
        Matrix a = make_matrix(n, n);
        for (double& x : a.data) x = rng.unit() * 4.0 - 2.0;
        Matrix a_transposed = make_matrix(n, n);
        for (int r = 0; r < n; ++r)
            for (int c = 0; c < n; ++c) a_transposed[c][r] = a[r][c];
        Matrix c = multiply(a, a_transposed);
        for (int r = 0; r < n; ++r) c[r][r] += 0.1;
        const Matrix root = symmetric_sqrt(c);
        expect_near(multiply(root, root), c, 1e-9 * n);
        for (int r = 0; r < n; ++r)
            for (int k = 0; k < r; ++k) EXPECT_NEAR(root[r][k], root[k][r], 1e-9) << n;
    }
    // Not a covariance: an eigenvalue -1, a negative variance, asymmetric, not finite, not square.
    for (const Matrix& bad :
         {Matrix{2, 2, {1, 2, 2, 1}}, Matrix{1, 1, {-4}}, Matrix{2, 2, {1, 0.5, 0.2, 1}},
          Matrix{2, 2, {1, NAN, NAN, 1}}, make_matrix(2, 3)}) {
        EXPECT_THROW(symmetric_sqrt(bad), SettingError);
    }
}

TEST(ReadMatrix, ReadsTheCovarianceFileLayoutAndRejectsBadFiles) {
    const std::string dir = testing::scratch_directory("numeric_read_matrix");
    const std::string good = dir + "/covariance.txt", bad = dir + "/bad.txt";
    testing::write_text(good,
                        "0.25\t-0.125\t1.5\t\n-2\t3.000000\t0.001\t\n7\t0.001000\t12.345678\t\n\n");
    expect_near(read_matrix(good, 3),
                Matrix{3, 3, {0.25, -0.125, 1.5, -2, 3, 1e-3, 7, 1e-3, 12.345678}}, 0.0);
    EXPECT_THROW(read_matrix(dir + "/absent.txt", 3), InputFileError);
    EXPECT_THROW(read_matrix(good, 4), InputFileError);  // too few values
    testing::write_text(bad, "1\tnan\t\n3\t4\t\n");
    EXPECT_THROW(read_matrix(bad, 2), InputFileError);
    testing::write_text(bad, "1\t2\t\n3\tx4\t\n");
    try {
        read_matrix(bad, 2);
        ADD_FAILURE() << "no error";
    } catch (const InputFileError& error) {
        EXPECT_NE(std::string(error.what()).find("row 2, column 2"), std::string::npos)
            << error.what();
    }
}

}  // namespace
}  // namespace vexa
