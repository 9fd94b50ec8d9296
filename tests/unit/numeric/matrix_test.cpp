#include "numeric/matrix.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "base/errors.h"
#include "numeric/rng.h"
#include "support/test_support.h"

namespace vexa {
namespace {

Matrix from_rows(const std::vector<std::vector<double>>& rows) {
    Matrix m = make_matrix(static_cast<int>(rows.size()),
                           rows.empty() ? 0 : static_cast<int>(rows[0].size()));
    for (int r = 0; r < m.rows; ++r) {
        for (int c = 0; c < m.cols; ++c)
            m[r][c] = rows[static_cast<size_t>(r)][static_cast<size_t>(c)];
    }
    return m;
}

void expect_near(const Matrix& actual, const Matrix& expected, double tolerance) {
    ASSERT_EQ(actual.rows, expected.rows);
    ASSERT_EQ(actual.cols, expected.cols);
    for (int r = 0; r < actual.rows; ++r) {
        for (int c = 0; c < actual.cols; ++c) {
            EXPECT_NEAR(actual[r][c], expected[r][c], tolerance) << "entry " << r << ", " << c;
        }
    }
}

TEST(MatrixInverse, HandWorkedMatrices) {
    Matrix one = from_rows({{4.0}});
    EXPECT_EQ(invert_in_place(one), 1);
    EXPECT_EQ(one[0][0], 0.25);

    for (const double zero : {0.0, -0.0}) {
        Matrix singular = from_rows({{zero}});
        EXPECT_EQ(invert_in_place(singular), 0);
        EXPECT_EQ(singular[0][0], 0.0);
    }

    // The only pivots lie off the diagonal: rows are exchanged, then the columns swapped back.
    Matrix exchange = from_rows({{0, 1}, {1, 0}});
    EXPECT_EQ(invert_in_place(exchange), 1);
    expect_near(exchange, from_rows({{0, 1}, {1, 0}}), 0.0);

    Matrix scaled_permutation = from_rows({{0, 0, 2}, {0, 3, 0}, {4, 0, 0}});
    EXPECT_EQ(invert_in_place(scaled_permutation), 1);
    expect_near(scaled_permutation, from_rows({{0, 0, 0.25}, {0, 1.0 / 3.0, 0}, {0.5, 0, 0}}),
                1e-15);

    // Determinant 1, so the inverse is the integer adjugate.
    Matrix general = from_rows({{1, 2, 3}, {0, 1, 4}, {5, 6, 0}});
    EXPECT_EQ(invert_in_place(general), 1);
    expect_near(general, from_rows({{-24, 18, 5}, {20, -15, -4}, {-5, 4, 1}}), 1e-12);
}

TEST(MatrixInverse, SingularMatricesStopAtTheZeroPivot) {
    // Row 2 is twice row 1; every elimination step is exact, so the third pivot is exactly 0.
    Matrix dependent = from_rows({{1, 2, 4}, {2, 4, 8}, {1, 1, 1}});
    EXPECT_EQ(invert_in_place(dependent), 0);

    // All four entries tie, so the last, (1, 1), is the pivot. Its row stays [1 1] and row 0
    // becomes [1 - 1, 0 - 1/1] = [0 -1] (the pivot column takes the inverse's entries), whose
    // 0 is the next pivot. Had the first entry won, the result would be [[1 1] [-1 0]].
    Matrix ties = from_rows({{1, 1}, {1, 1}});
    EXPECT_EQ(invert_in_place(ties), 0);
    expect_near(ties, from_rows({{0, -1}, {1, 1}}), 0.0);

    Matrix not_square = make_matrix(2, 3);
    EXPECT_THROW(invert_in_place(not_square), std::invalid_argument);
}

TEST(MatrixProduct, HandWorkedAndInverseRoundTrips) {
    expect_near(multiply(from_rows({{1, 2}, {3, 4}}), from_rows({{5, 6}, {7, 8}})),
                from_rows({{19, 22}, {43, 50}}), 0.0);
    expect_near(multiply(from_rows({{1, 2, 3}, {4, 5, 6}}), from_rows({{1}, {0}, {-1}})),
                from_rows({{-2}, {-2}}), 0.0);
    EXPECT_THROW(multiply(make_matrix(2, 3), make_matrix(2, 3)), std::invalid_argument);

    // Diagonally dominant random matrices are well conditioned; their rows are then shuffled
    // so that the large pivots lie off the diagonal and need exchanges. A A^-1 = A^-1 A = I.
    Rng rng;
    rng.seed(2024);
    for (const int n : {1, 2, 3, 5, 8, 13}) {
        Matrix dominant = make_matrix(n, n);
        for (int r = 0; r < n; ++r) {
            for (int c = 0; c < n; ++c) dominant[r][c] = rng.unit() * 2.0 - 1.0;
            dominant[r][r] += (rng.next() % 2 == 0 ? 1.0 : -1.0) * static_cast<double>(n);
        }
        std::vector<int> order(static_cast<size_t>(n));
        for (int r = 0; r < n; ++r) order[static_cast<size_t>(r)] = r;
        for (int r = n - 1; r > 0; --r)
            std::swap(order[static_cast<size_t>(r)], order[static_cast<size_t>(rng.node(r + 1))]);
        Matrix a = make_matrix(n, n);
        for (int r = 0; r < n; ++r) {
            for (int c = 0; c < n; ++c) a[r][c] = dominant[order[static_cast<size_t>(r)]][c];
        }
        Matrix inverse = a;
        ASSERT_EQ(invert_in_place(inverse), 1);
        expect_near(multiply(a, inverse), identity_matrix(n), 1e-12);
        expect_near(multiply(inverse, a), identity_matrix(n), 1e-12);
    }
}

TEST(SymmetricSquareRoot, SquaresBackToTheCovariance) {
    expect_near(symmetric_sqrt(from_rows({{9}})), from_rows({{3}}), 1e-15);
    expect_near(symmetric_sqrt(from_rows({{4, 0, 0}, {0, 9, 0}, {0, 0, 0.25}})),
                from_rows({{2, 0, 0}, {0, 3, 0}, {0, 0, 0.5}}), 1e-15);
    EXPECT_EQ(symmetric_sqrt(make_matrix(0, 0)).rows, 0);

    // [[2,1],[1,2]] has eigenvalues 3 and 1 on (1,1) and (1,-1); its root is
    // (1/2) [[r3+1, r3-1], [r3-1, r3+1]].
    const double r3 = std::sqrt(3.0);
    expect_near(symmetric_sqrt(from_rows({{2, 1}, {1, 2}})),
                from_rows({{(r3 + 1) / 2, (r3 - 1) / 2}, {(r3 - 1) / 2, (r3 + 1) / 2}}), 1e-14);
    // Singular: C * C = 2C, so the root is C / sqrt(2); a zero eigenvalue is fine.
    const double h = 1.0 / std::sqrt(2.0);
    expect_near(symmetric_sqrt(from_rows({{1, 1}, {1, 1}})), from_rows({{h, h}, {h, h}}), 1e-14);

    // Covariances B B^T (PSD by construction) and a fixed one with off-diagonals.
    std::vector<Matrix> cases{from_rows({{4, 2, 0.6}, {2, 5, 1}, {0.6, 1, 3}})};
    Rng rng;
    rng.seed(77);
    for (const int n : {2, 4, 7, 12}) {
        Matrix b = make_matrix(n, n);
        for (double& x : b.data) x = rng.unit() * 4.0 - 2.0;
        Matrix bt = make_matrix(n, n);
        for (int r = 0; r < n; ++r) {
            for (int c = 0; c < n; ++c) bt[c][r] = b[r][c];
        }
        cases.push_back(multiply(b, bt));
    }
    for (const Matrix& c : cases) {
        // The rotations stop once the off-diagonal entries are below 1e-10 of their starting
        // size, which bounds the error relative to the matrix's scale.
        double scale = 0.0;
        for (const double x : c.data) scale = std::max(scale, std::fabs(x));
        const Matrix s = symmetric_sqrt(c);
        expect_near(multiply(s, s), c, 1e-9 * scale);
        for (int r = 0; r < s.rows; ++r) {
            for (int k = 0; k < r; ++k) EXPECT_NEAR(s[r][k], s[k][r], 1e-9 * scale);
        }
    }
}

TEST(SymmetricSquareRoot, RejectsWhatIsNotACovariance) {
    EXPECT_THROW(symmetric_sqrt(from_rows({{1, 2}, {2, 1}})), SettingError);  // eigenvalue -1
    EXPECT_THROW(symmetric_sqrt(from_rows({{-4}})), SettingError);
    EXPECT_THROW(symmetric_sqrt(from_rows({{1, 0.5}, {0.2, 1}})), SettingError);
    EXPECT_THROW(symmetric_sqrt(from_rows({{1, NAN}, {NAN, 1}})), SettingError);
    EXPECT_THROW(symmetric_sqrt(make_matrix(2, 3)), SettingError);
}

TEST(ReadMatrix, ReadsTheCovarianceFileLayoutAndRejectsBadFiles) {
    const std::string dir = testing::scratch_directory("numeric_read_matrix");
    const Matrix c = from_rows({{0.25, -0.125, 1.5}, {-0.125, 3.0, 1e-3}, {1.5, 1e-3, 12.345678}});
    const std::string good = dir + "/covariance.txt";
    FILE* out = std::fopen(good.c_str(), "w");
    ASSERT_NE(out, nullptr);
    for (int r = 0; r < 3; ++r) {
        for (int k = 0; k < 3; ++k) std::fprintf(out, "%f\t", c[r][k]);
        std::fprintf(out, "\n");
    }
    std::fprintf(out, "\n");
    std::fclose(out);
    expect_near(read_matrix(good, 3), c, 0.0);

    EXPECT_THROW(read_matrix(dir + "/absent.txt", 3), InputFileError);
    EXPECT_THROW(read_matrix(good, 4), InputFileError);  // too few values

    const std::string bad = dir + "/bad.txt";
    testing::write_text(bad, "1\t2\t\n3\tx4\t\n");
    try {
        read_matrix(bad, 2);
        FAIL() << "no error";
    } catch (const InputFileError& error) {
        EXPECT_NE(std::string(error.what()).find("row 2, column 2"), std::string::npos)
            << error.what();
    }
    testing::write_text(bad, "1\tnan\t\n3\t4\t\n");
    EXPECT_THROW(read_matrix(bad, 2), InputFileError);
}

}  // namespace
}  // namespace vexa
