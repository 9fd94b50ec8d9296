#pragma once
// Weighted logistic regression by Newton-Raphson, for the pseudo-likelihood: the cases are
// dyads, the outcome whether the dyad holds a tie, the regressors its change statistics. Every
// case of one outcome carries the same weight, which is all a sample stratified by outcome
// needs.

#include <cstdint>
#include <vector>

namespace vexa {

struct LogisticCases {
    int32_t columns = 0;
    std::vector<double> x;        // one row of `columns` regressors per case, row after row
    std::vector<uint8_t> y;       // the outcome of each case, 0 or 1
    double tie_weight = 1.0;      // the weight of every case with outcome 1
    double non_tie_weight = 1.0;  // the weight of every case with outcome 0

    int64_t size() const { return static_cast<int64_t>(y.size()); }
};

struct LogisticFit {
    bool finite = false;               // a finite, unique maximum was reached
    std::vector<double> coefficients;  // one per column; zeros when not finite
    int32_t iterations = 0;            // Newton steps taken
};

// Newton steps limit: a fit from zero converges within about twenty; one still moving after
// this many follows a maximum at infinity.
inline constexpr int32_t logistic_iteration_limit = 100;

// The maximum of the weighted log-likelihood, or finite = false when the information matrix
// is singular (some regressor, or a combination, never varies), when the cases are separated
// (a coefficient grows without bound), when the steps do not settle within the limit, or when a
// regressor or an intermediate value is not finite. Never throws on such data.
LogisticFit fit_logistic(const LogisticCases& cases);

}  // namespace vexa
