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

// Cases that each choose one of `alternatives` outcomes, each outcome with regressors of its
// own (a conditional logit): the likelihood of a model whose dyads are independent of each
// other, each dyad choosing among its states. An alternative may be all zeros.
struct ChoiceCases {
    int32_t columns = 0;
    int32_t alternatives = 0;
    std::vector<double> x;        // per case, one row of `columns` per alternative
    std::vector<uint8_t> chosen;  // the alternative each case chose

    int64_t size() const { return static_cast<int64_t>(chosen.size()); }
};

// Newton steps limit: a fit from zero converges within about twenty; one still moving after
// this many follows a maximum at infinity.
inline constexpr int32_t logistic_iteration_limit = 100;

// The maximum of the weighted log-likelihood, or finite = false when the information matrix
// is singular (some regressor, or a combination, never varies), when the cases are separated
// (a coefficient grows without bound), when the steps do not settle within the limit, or when a
// regressor or an intermediate value is not finite. Never throws on such data.
LogisticFit fit_logistic(const LogisticCases& cases);

// The maximum of the choice cases' log-likelihood, refused as fit_logistic's is; also refused
// when the cases are not shaped as they say.
LogisticFit fit_choices(const ChoiceCases& cases);

}  // namespace vexa
