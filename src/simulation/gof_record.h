#pragma once
// What goodness of fit computes: the observed network's values, the sample's, and the
// comparisons between them, as report/ writes them.

#include <cstdint>
#include <optional>
#include <vector>

#include "describe/triad_census.h"
#include "network/network_kind.h"
#include "numeric/moments.h"
#include "simulation/goodness_of_fit.h"
#include "simulation/sampling.h"

namespace vexa {

// What the Bayesian form adds: the sets' spread, and how many draws ended at the empty or the
// complete network (a sign of parameter sets in a degenerate region).
struct ParameterSetsSummary {
    std::vector<Moments> moments;  // per parameter, over the sets used
    int32_t count = 0;             // sets used
    int32_t empty = 0;
    int32_t complete = 0;
};

struct GofRecord {
    NetworkKind kind = NetworkKind::graph;
    std::vector<double> parameters;  // the fixed parameters (empty in the Bayesian form)
    SamplingPlan plan;               // the Bayesian form: none
    double burn_in = 0.0;            // the Bayesian form: per set
    bool after_estimation = false;   // the plan is the one an estimation set
    std::vector<double> observed_statistics;
    SampleMeasures observed_measures;
    GofSample sample;
    std::vector<double> acceptance_rates;  // per sample
    double accepted = 0.0;
    double proposals = 0.0;  // the proposals the acceptance rate is over
    Mahalanobis distance;
    TriadCensus observed_census;  // digraphs
    std::vector<TriadCensus> census;
    std::vector<double> end_statistics;  // of the last network drawn
    std::optional<ParameterSetsSummary> sets;
    // A network with missing dyads: the observed side is the mean of this many networks drawn
    // given its observed dyads (given_sample.h); 0 when none is missing.
    int32_t given_draws = 0;
    int64_t missing_dyads = 0;
};

}  // namespace vexa
