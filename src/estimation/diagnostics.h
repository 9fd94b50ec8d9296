#pragma once
// Whether an estimate can be trusted: the t-ratios of the draws at the estimate, the overall
// maximum convergence ratio (the largest t-ratio over all linear combinations of the
// statistics), and the effective sample size of each statistic's draws, from their
// autocorrelation. A t-ratio is only as precise as the draws are many and independent: with
// an effective sample size s its noise is about 1 / sqrt(s), so below about 100 effective
// draws a t-ratio cannot be compared with 0.1.

#include <cstdint>
#include <string>
#include <vector>

#include "numeric/matrix.h"

namespace vexa {

enum class Verdict { converged, converged_but_noisy, not_converged, degenerate };

// The words the verdict file and the console print.
const char* verdict_text(Verdict verdict);

// The effective sample size of one statistic's draws (rows of `draws`, column `column`): N over
// the integrated autocorrelation time, summing pairs of autocorrelations while they stay
// positive (Geyer's initial positive sequence). 0 for a constant series.
double effective_sample_size(const Matrix& draws, int column);

// The rows of chain `chain` in draws dealt round-robin over `chains` chains (row i from chain
// i mod chains), in their order.
Matrix chain_rows(const Matrix& draws, int chains, int chain);

// The effective sample size of draws pooled from `chains` chains dealt round-robin, from the
// chains' autocorrelations read together with the spread of their means: chains that each
// stayed in their own part of the distribution count for little.
double effective_sample_size(const Matrix& draws, int column, int chains);

// The integrated autocorrelation time of the same series (1 for independent draws).
double autocorrelation_time(const Matrix& draws, int column);

// The largest integrated autocorrelation time (in draws) over the columns of `draws`; a
// constant column, which has none, counts as independent.
double slowest_autocorrelation(const Matrix& draws);

// The smallest effective sample size over the columns of `draws`; constant columns aside.
// Draws pooled from several chains count each chain's effective draws (see above).
double smallest_effective_size(const Matrix& draws, int chains = 1);

// How many draws to add to `rows` draws of `effective` effective ones to reach `target`:
// effective draws grow in proportion to the draws, so as many as that predicts, and a tenth
// more.
double more_draws_wanted(int rows, double effective, double target);

// Appends the rows of `more` (as many columns) to `draws`.
void append_draw_rows(Matrix& draws, const Matrix& more);

struct ConvergenceCheck {
    std::vector<double> t_ratios;  // (observed - mean) / standard deviation, per statistic
    std::vector<double> effective_sizes;
    double largest_t = 0.0;  // the largest |t|
    double overall_ratio =
        0.0;  // sqrt(d' S^-1 d), d = mean - observed; infinite when S is singular
    double smallest_effective_size = 0.0;
    int32_t smallest_at = -1;  // the statistic with the smallest effective size
    int32_t suggested_factor =
        0;  // a multiplication factor for enough draws; 0 when there are enough
    Verdict verdict = Verdict::not_converged;
};

// Thresholds: every |t| below 0.1 and the overall ratio below 0.25 for convergence; at least
// 100 effective draws of every statistic for the t-ratios to be trusted.
inline constexpr double t_ratio_limit = 0.1;
inline constexpr double overall_ratio_limit = 0.25;
inline constexpr double enough_effective_draws = 100.0;

// The check of draws (one row per draw, one column per statistic) against the observed
// statistics. `factor` is the multiplication factor the draws were taken with, to suggest a
// larger one when they are too few.
// Draws pooled from `chains` chains (dealt round-robin) sum the chains' effective sizes.
ConvergenceCheck check_convergence(const Matrix& draws, const std::vector<double>& observed,
                                   int32_t factor, int32_t chains = 1);

}  // namespace vexa
