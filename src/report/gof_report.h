#pragma once
// The goodness-of-fit report: the parameters and the plan, the observed network set beside the
// sample (a t-ratio per statistic and per descriptive measure), the acceptance rate, the
// geodesic quartiles and the Mahalanobis distance; and the table of the sample with each
// sample's distance, which goodness of fit writes in place of the simulation report.

#include <cstdio>
#include <string>
#include <vector>

#include "describe/geodesic_quartiles.h"
#include "model/parameter_labels.h"
#include "network/network_kind.h"
#include "simulation/goodness_of_fit.h"
#include "simulation/sampling.h"

namespace vexa {

// "\n\n GOODNESS OF FIT\n\nParameter Values:\n", the parameter lines and the plan.
void write_gof_heading(FILE* out, NetworkKind kind, const std::vector<ParameterLabel>& labels,
                       const std::vector<double>& parameters, const SamplingPlan& plan);

// After an estimation, the plan that the estimation set: "Goodness of fit after estimation:
// 1000 samples, one every K steps (the estimation's steps per draw), after a burn-in of B
// steps.\n".
void write_gof_plan_after_estimation(FILE* out, const SamplingPlan& plan, double burn_in);

// The accepted count, the table of statistics (`labels` in gof style, `observed` by slot) and
// of the descriptive measures (named, observed values in the sample's measure order), and the
// acceptance rate.
void write_gof_comparisons(FILE* out, NetworkKind kind, double accepted, double proposals,
                           const std::vector<ParameterLabel>& labels,
                           const std::vector<double>& observed,
                           const std::vector<std::string>& measure_names,
                           const std::vector<double>& observed_measures, const GofSample& sample);

// The three quartile blocks.
void write_gof_quartiles(FILE* out, const GeodesicQuartiles& observed, const GofSample& sample);

// The distance of the observed statistics and the share of samples closer.
void write_gof_mahalanobis(FILE* out, NetworkKind kind, const Mahalanobis& distance);

// The sample with each sample's distance: "id", the statistics (`columns` in sample style) and
// "mahalanobis"; one row per sample.
void write_gof_sample_table(FILE* out, const std::vector<ParameterLabel>& columns,
                            const GofSample& sample, const Mahalanobis& distance);

}  // namespace vexa
