#include "estimation/diagnostics.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace vexa {

namespace {

struct Series {
    std::vector<double> centred;
    double variance = 0.0;  // divisor N
};

Series series_of(const Matrix& draws, int column) {
    Series s;
    const int n = draws.rows;
    double mean = 0.0;
    for (int i = 0; i < n; ++i) mean += draws[i][column];
    mean /= std::max(n, 1);
    s.centred.resize(static_cast<size_t>(n));
    for (int i = 0; i < n; ++i) {
        s.centred[static_cast<size_t>(i)] = draws[i][column] - mean;
        s.variance += s.centred[static_cast<size_t>(i)] * s.centred[static_cast<size_t>(i)];
    }
    s.variance /= std::max(n, 1);
    return s;
}

double autocorrelation(const Series& s, size_t lag) {
    const size_t n = s.centred.size();
    double sum = 0.0;
    for (size_t i = 0; i + lag < n; ++i) sum += s.centred[i] * s.centred[i + lag];
    return sum / static_cast<double>(n) / s.variance;
}

}  // namespace

const char* verdict_text(Verdict verdict) {
    switch (verdict) {
        case Verdict::converged: return "converged";
        case Verdict::converged_but_noisy: return "converged but noisy";
        case Verdict::not_converged: return "not converged";
        case Verdict::degenerate: return "degenerate";
    }
    return "not converged";
}

double autocorrelation_time(const Matrix& draws, int column) {
    const Series s = series_of(draws, column);
    const size_t n = s.centred.size();
    if (n < 4 || !(s.variance > 0.0)) return std::numeric_limits<double>::infinity();
    // tau = -1 + 2 (sum of the pairs rho(2m) + rho(2m+1) while they stay positive), each pair
    // kept no larger than the one before, so that noise in the tail does not add up.
    double tau = -1.0;
    double previous = std::numeric_limits<double>::infinity();
    for (size_t m = 0; 2 * m + 1 < n; ++m) {
        double pair = autocorrelation(s, 2 * m) + autocorrelation(s, 2 * m + 1);
        if (pair <= 0.0) break;
        pair = std::min(pair, previous);
        tau += 2.0 * pair;
        previous = pair;
    }
    return std::max(tau, 1.0 / static_cast<double>(n));
}

double effective_sample_size(const Matrix& draws, int column) {
    const double tau = autocorrelation_time(draws, column);
    if (!std::isfinite(tau)) return 0.0;
    return std::min(static_cast<double>(draws.rows), static_cast<double>(draws.rows) / tau);
}

Matrix chain_rows(const Matrix& draws, int chains, int chain) {
    Matrix rows;
    rows.cols = draws.cols;
    for (int i = chain; i < draws.rows; i += chains) {
        rows.data.insert(rows.data.end(), draws[i], draws[i] + draws.cols);
        ++rows.rows;
    }
    return rows;
}

namespace {

// One chain's series cut to n draws, centred on its mean.
std::vector<double> centred_series(const Matrix& rows, int column, int n, double& mean) {
    mean = 0.0;
    for (int i = 0; i < n; ++i) mean += rows[i][column];
    mean /= n;
    std::vector<double> centred(static_cast<size_t>(n), 0.0);
    for (int i = 0; i < n; ++i) centred[static_cast<size_t>(i)] = rows[i][column] - mean;
    return centred;
}

// The autocovariance of a centred series at `lag` (divisor: its length).
double autocovariance(const std::vector<double>& centred, size_t lag) {
    double sum = 0.0;
    for (size_t i = 0; i + lag < centred.size(); ++i) sum += centred[i] * centred[i + lag];
    return sum / static_cast<double>(centred.size());
}

}  // namespace

double effective_sample_size(const Matrix& draws, int column, int chains) {
    if (chains <= 1) return effective_sample_size(draws, column);
    // Every chain cut to the shortest one's length n. The autocorrelation at lag t is read off
    // the chains together: 1 - (W - mean autocovariance at t) / V, where W is the mean
    // within-chain variance and V = (n - 1) / n W + B / n adds the spread of the chains' means
    // (B / n their variance). Chains that have not each explored the distribution disagree in
    // their means, V grows, the autocorrelations stay high, and the effective size is small,
    // however smooth each short chain looks by itself.
    const int n = draws.rows / chains;
    if (n < 4) return 0.0;
    std::vector<std::vector<double>> series;
    std::vector<double> means;
    for (int k = 0; k < chains; ++k) {
        double mean = 0.0;
        series.push_back(centred_series(chain_rows(draws, chains, k), column, n, mean));
        means.push_back(mean);
    }
    double grand = 0.0;
    for (const double m : means) grand += m;
    grand /= chains;
    double spread = 0.0;  // B / n
    for (const double m : means) spread += (m - grand) * (m - grand);
    spread /= chains - 1;
    double within = 0.0;  // W, each chain's variance with divisor n - 1
    for (const auto& x : series) within += autocovariance(x, 0) * n / (n - 1.0);
    within /= chains;
    const double total = (n - 1.0) / n * within + spread;
    if (!(total > 0.0)) return 0.0;
    const auto rho = [&](int lag) {
        double mean_covariance = 0.0;
        for (const auto& x : series) mean_covariance += autocovariance(x, static_cast<size_t>(lag));
        return 1.0 - (within - mean_covariance / chains) / total;
    };
    // Geyer's initial positive (and monotone) sequence, as for one chain.
    double tau = -1.0;
    double previous = std::numeric_limits<double>::infinity();
    for (int m = 0; 2 * m + 1 < n; ++m) {
        double pair = rho(2 * m) + rho(2 * m + 1);
        if (pair <= 0.0) break;
        pair = std::min(pair, previous);
        tau += 2.0 * pair;
        previous = pair;
    }
    const double size = static_cast<double>(chains) * n;
    return std::min(size, size / std::max(tau, 1.0 / size));
}

ConvergenceCheck check_convergence(const Matrix& draws, const std::vector<double>& observed,
                                   int32_t factor, int32_t chains) {
    ConvergenceCheck c;
    const int p = draws.cols;
    const int n = draws.rows;
    std::vector<double> mean(static_cast<size_t>(p), 0.0);
    for (int i = 0; i < n; ++i) {
        for (int k = 0; k < p; ++k) mean[static_cast<size_t>(k)] += draws[i][k];
    }
    for (double& m : mean) m /= std::max(n, 1);
    Matrix covariance = make_matrix(p, p, 0.0);
    for (int i = 0; i < n; ++i) {
        for (int a = 0; a < p; ++a) {
            for (int b = 0; b < p; ++b) {
                covariance[a][b] += (draws[i][a] - mean[static_cast<size_t>(a)]) *
                                    (draws[i][b] - mean[static_cast<size_t>(b)]);
            }
        }
    }
    for (int a = 0; a < p; ++a) {
        for (int b = 0; b < p; ++b) covariance[a][b] /= std::max(n - 1, 1);
    }
    c.smallest_effective_size = std::numeric_limits<double>::infinity();
    bool constant = false;
    for (int k = 0; k < p; ++k) {
        const size_t kk = static_cast<size_t>(k);
        const double sd = std::sqrt(covariance[k][k]);
        constant = constant || !(sd > 0.0);
        const double t = (observed[kk] - mean[kk]) / sd;
        c.t_ratios.push_back(t);
        c.largest_t = std::max(
            c.largest_t, std::isfinite(t) ? std::fabs(t) : std::numeric_limits<double>::infinity());
        const double size = effective_sample_size(draws, k, chains);
        c.effective_sizes.push_back(size);
        if (size < c.smallest_effective_size) {
            c.smallest_effective_size = size;
            c.smallest_at = k;
        }
    }
    if (p == 0) c.smallest_effective_size = 0.0;
    Matrix inverse = covariance;
    if (p > 0 && !constant && invert_in_place(inverse) == 1) {
        double form = 0.0;
        for (int a = 0; a < p; ++a) {
            for (int b = 0; b < p; ++b) {
                form += (mean[static_cast<size_t>(a)] - observed[static_cast<size_t>(a)]) *
                        inverse[a][b] *
                        (mean[static_cast<size_t>(b)] - observed[static_cast<size_t>(b)]);
            }
        }
        // Rounding in a nearly singular covariance can make the form negative: then the ratio
        // cannot be told.
        c.overall_ratio = form >= 0.0 && std::isfinite(form)
                              ? std::sqrt(form)
                              : std::numeric_limits<double>::infinity();
    } else {
        c.overall_ratio = std::numeric_limits<double>::infinity();
    }
    if (constant) {
        c.verdict = Verdict::degenerate;
    } else if (c.largest_t < t_ratio_limit && c.overall_ratio < overall_ratio_limit) {
        c.verdict = c.smallest_effective_size < enough_effective_draws
                        ? Verdict::converged_but_noisy
                        : Verdict::converged;
    } else {
        c.verdict = Verdict::not_converged;
    }
    // Effective draws grow about in proportion to the steps between draws; aim at half again
    // as many as enough, so that the next try is not on the edge.
    if (c.smallest_effective_size < enough_effective_draws &&
        std::isfinite(c.smallest_effective_size)) {
        const double wanted =
            1.5 * enough_effective_draws / std::max(c.smallest_effective_size, 1.0);
        c.suggested_factor = static_cast<int32_t>(std::ceil(std::max(factor, 1) * wanted));
    }
    return c;
}

double more_draws_wanted(int rows, double effective, double target) {
    return rows * (1.1 * target / std::max(effective, 1.0) - 1.0);
}

void append_draw_rows(Matrix& draws, const Matrix& more) {
    if (more.rows == 0) return;
    draws.data.insert(draws.data.end(), more.data.begin(), more.data.end());
    draws.rows += more.rows;
}

double slowest_autocorrelation(const Matrix& draws) {
    double slowest = 1.0;
    for (int k = 0; k < draws.cols; ++k) {
        const double tau = autocorrelation_time(draws, k);
        if (std::isfinite(tau)) slowest = std::max(slowest, tau);
    }
    return slowest;
}

double smallest_effective_size(const Matrix& draws, int chains) {
    double smallest = static_cast<double>(draws.rows);
    for (int k = 0; k < draws.cols; ++k) {
        // A constant column has no autocorrelation to thin out; the phase-3 checks refuse it.
        if (std::isfinite(autocorrelation_time(draws, k)))
            smallest = std::min(smallest, effective_sample_size(draws, k, chains));
    }
    return smallest;
}

}  // namespace vexa
