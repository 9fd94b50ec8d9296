#pragma once
// The report of goodness of fit over parameter sets, appended to the goodness-of-fit file: the
// sets' means and spreads, then the observed network set beside the draws (a t-ratio and a
// two-sided posterior predictive p-value per statistic and descriptive measure), the
// acceptance rate, and the draws that ended at the empty or complete network. The quartile,
// distance and triad census blocks are those of goodness of fit.

#include <cstdio>
#include <string>
#include <vector>

#include "model/parameter_labels.h"
#include "network/network_kind.h"
#include "numeric/moments.h"
#include "simulation/goodness_of_fit.h"

namespace vexa {

// "BAYESIAN GOODNESS OF FIT", the mean and standard deviation of each parameter over the sets
// used (`labels` in simulation style, `summary` by position), and the number of sets with the
// burn-in each ran.
void write_bayesian_heading(FILE* out, const std::vector<ParameterLabel>& labels,
                            const std::vector<Moments>& summary, int set_count, double burn_in);

// The accepted count, the table of statistics (`labels` in gof style, `observed` by position)
// and descriptive measures with their p-values, and the acceptance rate over every burn-in.
void write_bayesian_comparisons(FILE* out, NetworkKind kind, double accepted, double proposals,
                                const std::vector<ParameterLabel>& labels,
                                const std::vector<double>& observed,
                                const std::vector<std::string>& measure_names,
                                const std::vector<double>& observed_measures,
                                const GofSample& sample);

// How many draws ended at a network without ties and how many at one with every tie.
void write_bayesian_bounds(FILE* out, int empty, int complete);

}  // namespace vexa
