#include "estimation/logistic.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

namespace vexa {

namespace {

// A Cholesky pivot below this, on the scale where the information at zero has a unit diagonal,
// is no pivot: columns that are exact combinations of others leave pivots of rounding size
// (about 1e-15), while a fit of a network of density d keeps pivots near 4 d times its
// collinearity, far above this for any network that fits in memory.
constexpr double pivot_floor = 1e-12;

// The iteration ends, taking its last step, once the Newton decrement (twice the gain of the
// log-likelihood that step promises) is below `decrement_tolerance` times the total weight
// and no coefficient moves by more than `step_limit` of its standard error at zero. The
// decrement's rounding noise, measured on ill-conditioned fits, stays near 1e-21 times the
// total weight, so a legitimate fit gets there; its steps shrink to rounding too, and only a
// fit so ill-conditioned that rounding alone moves a coefficient by a twentieth of a standard
// error is refused, no loss for a starting value. A fit running off to infinity (separation)
// also sees its decrement vanish, but its steps do not: each moves the separating
// coefficients by about one unit of the margin, at least half a standard error at zero
// whatever the regressor's scale; if it runs long enough its pivot falls through the floor.
constexpr double decrement_tolerance = 1e-14;
constexpr double step_limit = 0.05;

constexpr int halving_limit = 40;

// log(1 + e^eta), exact for every eta, where the plain formula overflows above 709.
double softplus(double eta) {
    return eta > 0.0 ? eta + std::log1p(std::exp(-eta)) : std::log1p(std::exp(eta));
}

double logistic(double eta) {
    if (eta >= 0.0) return 1.0 / (1.0 + std::exp(-eta));
    const double e = std::exp(eta);
    return e / (1.0 + e);
}

double weight_of(const LogisticCases& cases, size_t c) {
    return cases.y[c] != 0 ? cases.tie_weight : cases.non_tie_weight;
}

double weight_sum(const LogisticCases& cases) {
    double ties = 0.0;
    for (const uint8_t y : cases.y) ties += y;
    return ties * cases.tie_weight +
           (static_cast<double>(cases.y.size()) - ties) * cases.non_tie_weight;
}

double linear_predictor(const double* row, const std::vector<double>& beta) {
    double eta = 0.0;
    for (size_t k = 0; k < beta.size(); ++k) eta += row[k] * beta[k];
    return eta;
}

double log_likelihood(const LogisticCases& cases, const std::vector<double>& beta) {
    const auto p = static_cast<size_t>(cases.columns);
    double sum = 0.0;
    for (size_t c = 0; c < cases.y.size(); ++c) {
        const double eta = linear_predictor(cases.x.data() + c * p, beta);
        sum += weight_of(cases, c) * ((cases.y[c] != 0 ? eta : 0.0) - softplus(eta));
    }
    return sum;
}

// The score and the information at beta, on the scale s (column k multiplied by s[k]). The
// information is filled in its lower triangle only.
void score_and_information(const LogisticCases& cases, const std::vector<double>& beta,
                           const std::vector<double>& s, std::vector<double>& score,
                           std::vector<double>& information) {
    const auto p = static_cast<size_t>(cases.columns);
    std::fill(score.begin(), score.end(), 0.0);
    std::fill(information.begin(), information.end(), 0.0);
    for (size_t c = 0; c < cases.y.size(); ++c) {
        const double* row = cases.x.data() + c * p;
        const double mu = logistic(linear_predictor(row, beta));
        const double w = weight_of(cases, c);
        const double residual = w * ((cases.y[c] != 0 ? 1.0 : 0.0) - mu);
        const double curvature = w * mu * (1.0 - mu);
        for (size_t a = 0; a < p; ++a) {
            score[a] += residual * row[a];
            const double left = curvature * row[a];
            for (size_t b = 0; b <= a; ++b) information[a * p + b] += left * row[b];
        }
    }
    for (size_t a = 0; a < p; ++a) {
        score[a] *= s[a];
        for (size_t b = 0; b <= a; ++b) information[a * p + b] *= s[a] * s[b];
    }
}

// Solves information * step = score through the Cholesky factor, built in place in the lower
// triangle. False when a pivot falls below the floor (or is not a number).
bool cholesky_solve(std::vector<double>& m, const std::vector<double>& score,
                    std::vector<double>& step) {
    const size_t p = score.size();
    for (size_t k = 0; k < p; ++k) {
        double pivot = m[k * p + k];
        for (size_t r = 0; r < k; ++r) pivot -= m[k * p + r] * m[k * p + r];
        if (!(pivot > pivot_floor)) return false;
        const double root = std::sqrt(pivot);
        m[k * p + k] = root;
        for (size_t a = k + 1; a < p; ++a) {
            double entry = m[a * p + k];
            for (size_t r = 0; r < k; ++r) entry -= m[a * p + r] * m[k * p + r];
            m[a * p + k] = entry / root;
        }
    }
    for (size_t a = 0; a < p; ++a) {
        double v = score[a];
        for (size_t r = 0; r < a; ++r) v -= m[a * p + r] * step[r];
        step[a] = v / m[a * p + a];
    }
    for (size_t a = p; a-- > 0;) {
        double v = step[a];
        for (size_t r = a + 1; r < p; ++r) v -= m[r * p + a] * step[r];
        step[a] = v / m[a * p + a];
    }
    return true;
}

// 1 / sqrt of each diagonal entry of the information at zero, (1/4) sum w x^2: on that scale
// the first information matrix has a unit diagonal, so one pivot floor serves regressors of
// any size. Empty when a column is zero throughout or not finite.
std::vector<double> column_scales(const LogisticCases& cases) {
    const auto p = static_cast<size_t>(cases.columns);
    std::vector<double> s(p, 0.0);
    for (size_t c = 0; c < cases.y.size(); ++c) {
        const double w = weight_of(cases, c);
        for (size_t k = 0; k < p; ++k) {
            const double x = cases.x[c * p + k];
            s[k] += 0.25 * w * x * x;
        }
    }
    for (double& v : s) {
        if (!(v > 0.0) || !std::isfinite(v)) return {};
        v = 1.0 / std::sqrt(v);
    }
    return s;
}

// A case of several alternatives: eta_k = x_k . beta for each; the chosen one's eta less
// log sum exp eta_k is its log-likelihood. `eta` has room for the alternatives.
double choice_log_normaliser(const ChoiceCases& cases, size_t c, const std::vector<double>& beta,
                             std::vector<double>& eta) {
    const auto p = static_cast<size_t>(cases.columns);
    const auto K = static_cast<size_t>(cases.alternatives);
    const double* rows = cases.x.data() + c * K * p;
    double top = -std::numeric_limits<double>::infinity();
    for (size_t k = 0; k < K; ++k) {
        eta[k] = linear_predictor(rows + k * p, beta);
        top = std::max(top, eta[k]);
    }
    double sum = 0.0;
    for (size_t k = 0; k < K; ++k) sum += std::exp(eta[k] - top);
    return top + std::log(sum);
}

double log_likelihood(const ChoiceCases& cases, const std::vector<double>& beta) {
    std::vector<double> eta(static_cast<size_t>(cases.alternatives), 0.0);
    double sum = 0.0;
    for (size_t c = 0; c < cases.chosen.size(); ++c) {
        const double normaliser = choice_log_normaliser(cases, c, beta, eta);
        sum += eta[cases.chosen[c]] - normaliser;
    }
    return sum;
}

// The score (chosen less expected regressors) and the information (their covariance over the
// alternatives), on the scale s, the information in its lower triangle.
void score_and_information(const ChoiceCases& cases, const std::vector<double>& beta,
                           const std::vector<double>& s, std::vector<double>& score,
                           std::vector<double>& information) {
    const auto p = static_cast<size_t>(cases.columns);
    const auto K = static_cast<size_t>(cases.alternatives);
    std::vector<double> eta(K, 0.0), mean(p, 0.0);
    std::fill(score.begin(), score.end(), 0.0);
    std::fill(information.begin(), information.end(), 0.0);
    for (size_t c = 0; c < cases.chosen.size(); ++c) {
        const double* rows = cases.x.data() + c * K * p;
        const double normaliser = choice_log_normaliser(cases, c, beta, eta);
        std::fill(mean.begin(), mean.end(), 0.0);
        for (size_t k = 0; k < K; ++k) {
            const double chance = std::exp(eta[k] - normaliser);
            const double* row = rows + k * p;
            for (size_t a = 0; a < p; ++a) {
                mean[a] += chance * row[a];
                const double left = chance * row[a];
                for (size_t b = 0; b <= a; ++b) information[a * p + b] += left * row[b];
            }
        }
        const double* chosen = rows + cases.chosen[c] * p;
        for (size_t a = 0; a < p; ++a) {
            score[a] += chosen[a] - mean[a];
            for (size_t b = 0; b <= a; ++b) information[a * p + b] -= mean[a] * mean[b];
        }
    }
    for (size_t a = 0; a < p; ++a) {
        score[a] *= s[a];
        for (size_t b = 0; b <= a; ++b) information[a * p + b] *= s[a] * s[b];
    }
}

// As for the logistic cases: 1 / sqrt of a quarter of each column's sum of squares over every
// alternative, so that the first information matrix has a diagonal near one.
std::vector<double> column_scales(const ChoiceCases& cases) {
    const auto p = static_cast<size_t>(cases.columns);
    std::vector<double> s(p, 0.0);
    for (size_t at = 0; at < cases.x.size(); ++at) s[at % p] += 0.25 * cases.x[at] * cases.x[at];
    for (double& v : s) {
        if (!(v > 0.0) || !std::isfinite(v)) return {};
        v = 1.0 / std::sqrt(v);
    }
    return s;
}

// Newton-Raphson with step halving from zero, on the scale s, for any cases that have a
// log_likelihood and a score_and_information. `total_weight` scales the stopping rule.
template <class Cases>
LogisticFit newton_fit(const Cases& cases, const std::vector<double>& s, double total_weight) {
    const size_t p = s.size();
    LogisticFit fit;
    fit.coefficients.assign(p, 0.0);
    std::vector<double> beta(p, 0.0), trial(p, 0.0), score(p, 0.0), step(p, 0.0);
    std::vector<double> information(p * p, 0.0);
    double current = log_likelihood(cases, beta);
    while (fit.iterations < logistic_iteration_limit) {
        ++fit.iterations;
        score_and_information(cases, beta, s, score, information);
        if (!cholesky_solve(information, score, step)) return fit;
        double decrement = 0.0, largest = 0.0;
        for (size_t k = 0; k < p; ++k) {
            decrement += score[k] * step[k];
            largest = std::max(largest, std::fabs(step[k]));
        }
        if (!std::isfinite(decrement)) return fit;
        double t = 1.0;
        double next = current;
        int halvings = 0;
        for (; halvings <= halving_limit; ++halvings, t *= 0.5) {
            for (size_t k = 0; k < p; ++k) trial[k] = beta[k] + t * step[k] * s[k];
            next = log_likelihood(cases, trial);
            // Near the maximum the gain falls below the rounding of a sum this long; a step
            // that loses no more than that is as good as one that gains.
            if (next >= current - 1e-12 * (1.0 + std::fabs(current))) break;
        }
        if (halvings > halving_limit || !std::isfinite(next)) return fit;
        beta.swap(trial);
        current = next;
        if (decrement <= decrement_tolerance * total_weight && largest <= step_limit) {
            fit.finite = true;
            fit.coefficients = beta;
            return fit;
        }
    }
    return fit;
}

}  // namespace

LogisticFit fit_logistic(const LogisticCases& cases) {
    LogisticFit fit;
    fit.coefficients.assign(static_cast<size_t>(cases.columns), 0.0);
    if (cases.columns == 0 || cases.y.empty()) return fit;
    if (!std::isfinite(cases.tie_weight) || !std::isfinite(cases.non_tie_weight)) return fit;
    const std::vector<double> s = column_scales(cases);
    if (s.empty()) return fit;
    return newton_fit(cases, s, weight_sum(cases));
}

LogisticFit fit_choices(const ChoiceCases& cases) {
    LogisticFit fit;
    fit.coefficients.assign(static_cast<size_t>(cases.columns), 0.0);
    if (cases.columns == 0 || cases.alternatives < 2 || cases.chosen.empty()) return fit;
    if (cases.x.size() != cases.chosen.size() * static_cast<size_t>(cases.alternatives) *
                              static_cast<size_t>(cases.columns))
        return fit;
    for (const uint8_t chosen : cases.chosen) {
        if (chosen >= cases.alternatives) return fit;
    }
    const std::vector<double> s = column_scales(cases);
    if (s.empty()) return fit;
    return newton_fit(cases, s, static_cast<double>(cases.chosen.size()));
}

}  // namespace vexa
