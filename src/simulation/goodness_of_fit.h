#pragma once
// The comparisons of goodness of fit: the observed network's values set beside a sample of
// simulated networks. Pure computations on the sampled values; the sampling is the simulation
// loop's and the report is report/'s.

#include <cstdint>
#include <vector>

#include "describe/geodesic_quartiles.h"

namespace vexa {

// The descriptive measures of one network that goodness of fit compares besides the model's
// statistics: the kind's measures (named by the kind) and the geodesic quartiles.
struct SampleMeasures {
    std::vector<double> values;
    GeodesicQuartiles quartiles;
};

// What a goodness-of-fit run keeps of each sampled network.
struct GofSample {
    std::vector<double> numbers;                  // the proposal at which each sample was taken
    std::vector<std::vector<double>> statistics;  // per statistic, one value per sample
    std::vector<std::vector<double>> measures;    // per descriptive measure, one value per sample
    std::vector<GeodesicQuartiles> quartiles;     // per sample
};

struct Comparison {
    double observed = 0.0;
    double mean = 0.0;
    double stddev = 0.0;  // sample standard deviation (divisor N - 1)
    double t = 0.0;       // (observed - mean) / stddev
};
Comparison compare(double observed, const std::vector<double>& sample);

struct QuartileComparison {
    int32_t median = 0;
    int32_t range = 0;  // interquartile range of the sample
    int32_t observed = 0;
    double lower = 0.0;   // percent of samples strictly below the observed value
    double higher = 0.0;  // percent strictly above
};
// Each share is formed in single precision before it is scaled to a percentage.
QuartileComparison compare_quartile(int32_t observed, std::vector<int32_t> sample);

// Index of a sample quantile in N sorted values, floor(share x (N + 1)), kept inside the list.
int quantile_index(double share, int count);

struct Mahalanobis {
    bool available = false;            // false when the sampled statistics are collinear
    std::vector<double> sample_forms;  // each sample's quadratic form about the sample mean
    double observed_form = 0.0;
    double observed_distance = 0.0;  // the square root of the observed form
    double closer_percent = 0.0;     // 100 x samples whose form is below the observed one / N
};
// Over the statistic rows (one row per statistic, one value per sample), with the covariance
// divided by N.
Mahalanobis mahalanobis(const std::vector<std::vector<double>>& rows,
                        const std::vector<double>& observed);

}  // namespace vexa
