#include "report/gof_report.h"

#include "base/text_file.h"
#include "report/simulation_report.h"

namespace vexa {

namespace {

const char* networks(NetworkKind kind) {
    return kind == NetworkKind::digraph ? "digraphs" : "graphs";
}

void write_quartile_block(FILE* out, const char* heading, const char* observed_line,
                          const char* name, const QuartileComparison& c) {
    print(out,
          "%s\nMedian of sample %ss: %d\nInterquartile range: %d\n%s: %d\n"
          "in model samples, %.2f%% of graphs have lower %s.\n"
          "in model samples, %.2f%% of graphs have higher %s.\n\n",
          heading, name, c.median, c.range, observed_line, c.observed, c.lower, name, c.higher,
          name);
}

}  // namespace

void write_gof_heading(FILE* out, NetworkKind kind, const std::vector<ParameterLabel>& labels,
                       const std::vector<double>& parameters, const SamplingPlan& plan) {
    print(out, "\n\n GOODNESS OF FIT\n\nParameter Values:\n");
    write_parameter_lines(out, labels, parameters);
    print(out, "Proposed %.0f %s.\nSamples were picked up at 1 per %.0f %s.\n", plan.proposals,
          networks(kind), plan.interval, networks(kind));
}

void write_gof_plan_after_estimation(FILE* out, const SamplingPlan& plan, double burn_in) {
    print(out,
          "Goodness of fit after estimation: %.0f samples, one every %.0f steps (the "
          "estimation's steps per draw), after a burn-in of %.0f steps.\n",
          planned_samples(plan), plan.interval, burn_in);
}

void write_gof_comparisons(FILE* out, NetworkKind kind, double accepted, double proposals,
                           const std::vector<ParameterLabel>& labels,
                           const std::vector<double>& observed,
                           const std::vector<std::string>& measure_names,
                           const std::vector<double>& observed_measures, const GofSample& sample) {
    print(out, "Accepted %.0f proposed %s.\n", accepted, networks(kind));
    // The graph report's first word is misspelt, and has always been.
    print(out, kind == NetworkKind::digraph
                   ? "observation, sample mean (standard error), t-statistic\n"
                   : "obeservation, sample mean (standard error), t-statistic for observed "
                     "network\n");
    print(out,
          "t-statistics = (observation - sample mean)/standard deviation\n\n"
          "effects\tobserved\tmean\tstddev\tt-ratio\n");
    for (const ParameterLabel& label : labels) {
        const size_t k = static_cast<size_t>(label.position);
        const Comparison c = compare(observed[k], sample.statistics[k]);
        print(out, label.integral ? "%s\t%.0f\t%.3f\t%.3f\t%s\n" : "%s\t%.3f\t%.3f\t%.3f\t%s\n",
              labelled(label).c_str(), c.observed, c.mean, c.stddev, fixed_text(c.t, 3).c_str());
    }
    for (size_t m = 0; m < measure_names.size(); ++m) {
        const Comparison c = compare(observed_measures[m], sample.measures[m]);
        print(out, "%s\t%.3f\t%.3f\t%.3f\t%s\n", measure_names[m].c_str(), c.observed, c.mean,
              c.stddev, fixed_text(c.t, 3).c_str());
    }
    print(out, "\nACCEPTANCE RATE: %.4f\n\n", proposals > 0.0 ? accepted / proposals : 0.0);
}

void write_gof_quartiles(FILE* out, const GeodesicQuartiles& observed, const GofSample& sample) {
    print(out, "SAMPLE GEODESIC DISTRIBUTION\n");
    print(out,
          "Note: geodesic = shortest path between two nodes.\n"
          "The geodesic distribution is not based on semi-paths.\n\n");
    std::vector<int32_t> g25, g50, g75;
    for (const GeodesicQuartiles& q : sample.quartiles) {
        g25.push_back(q.g25);
        g50.push_back(q.g50);
        g75.push_back(q.g75);
    }
    write_quartile_block(out, "FIRST QUARTILES", "Observed first quartile geodesic", "G25",
                         compare_quartile(observed.g25, g25));
    write_quartile_block(out, "SECOND QUARTILES", "Observed median geodesic", "G50",
                         compare_quartile(observed.g50, g50));
    // The third block's observed line says "first quartile", as it always has.
    write_quartile_block(out, "THIRD QUARTILES", "Observed first quartile geodesic", "G75",
                         compare_quartile(observed.g75, g75));
}

void write_gof_mahalanobis(FILE* out, NetworkKind kind, const Mahalanobis& distance) {
    if (!distance.available) {
        print(out,
              "Mahalanobis distance not available: the sampled statistics are collinear "
              "(their covariance matrix is singular)\n");
        return;
    }
    if (kind == NetworkKind::digraph) {
        // The second value is the squared distance, the quadratic form the samples are ranked by.
        print(out, "Mahalanobis distance =%lf (%lf)\n", distance.observed_distance,
              distance.observed_form);
        print(out,
              "%.0lf%% simulated samples have smaller Mahalanobis distances than the observed "
              "network.\n",
              distance.closer_percent);
    } else {
        print(out, "Mahalanobis distance =%lf\n", distance.observed_distance);
        print(out,
              "%.0lf%% simulated samples have smaller Mahalanobis distances than the observed "
              "network\n",
              distance.closer_percent);
    }
}

void write_gof_sample_table(FILE* out, const std::vector<ParameterLabel>& columns,
                            const GofSample& sample, const Mahalanobis& distance) {
    print(out, "id\t");
    for (const ParameterLabel& label : columns) print(out, "%s\t", label.name.c_str());
    print(out, "mahalanobis\n");
    for (size_t s = 0; s < sample.numbers.size(); ++s) {
        print(out, "%d\t", static_cast<int>(sample.numbers[s]));
        for (const std::vector<double>& row : sample.statistics) print(out, "%lf\t", row[s]);
        print(out, "%lf\t", distance.sample_forms[s]);
        print(out, "\n");
    }
}

}  // namespace vexa
