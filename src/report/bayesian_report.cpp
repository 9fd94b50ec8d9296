#include "report/bayesian_report.h"

#include "base/text_file.h"
#include "simulation/bayesian_gof.h"

namespace vexa {

void write_bayesian_heading(FILE* out, const std::vector<ParameterLabel>& labels,
                            const std::vector<Moments>& summary, int set_count, double burn_in) {
    print(out, "\n\nBAYESIAN GOODNESS OF FIT\n\n");
    print(out, "Parameter Values over the sets used:\neffects\tmean\tstddev\n");
    for (const ParameterLabel& label : labels) {
        const Moments& m = summary[static_cast<size_t>(label.position)];
        print(out, "%s\t%.5f\t%.5f\n", labelled(label).c_str(), m.mean, m.stddev);
    }
    print(out, "Proposed %d parameter sets.\nSamples were picked up with burnin %.0lf\n", set_count,
          burn_in);
}

void write_bayesian_comparisons(FILE* out, NetworkKind kind, double accepted, double proposals,
                                const std::vector<ParameterLabel>& labels,
                                const std::vector<double>& observed,
                                const std::vector<std::string>& measure_names,
                                const std::vector<double>& observed_measures,
                                const GofSample& sample) {
    print(out, "Accepted %.0f proposed %s.\n", accepted,
          kind == NetworkKind::digraph ? "digraphs" : "graphs");
    print(out,
          "observation, posterior predictive mean (standard deviation), t-statistic, p-value\n"
          "t-statistics = (observation - sample mean)/standard deviation\n"
          "p-value = 2 x min(share of samples >= observation, share of samples <= observation)\n\n"
          "effects\tobserved\tmean\tstddev\tt-ratio\tp-value\n");
    const auto row = [&](const std::string& name, bool integral, double value,
                         const std::vector<double>& values) {
        const Comparison c = compare(value, values);
        print(
            out,
            integral ? "%s\t%.0f\t%.3f\t%.3f\t%.3f\t%.3f\n" : "%s\t%.3f\t%.3f\t%.3f\t%.3f\t%.3f\n",
            name.c_str(), c.observed, c.mean, c.stddev, c.t, posterior_predictive_p(value, values));
    };
    for (const ParameterLabel& label : labels) {
        const size_t k = static_cast<size_t>(label.position);
        row(labelled(label), label.integral, observed[k], sample.statistics[k]);
    }
    for (size_t m = 0; m < measure_names.size(); ++m)
        row(measure_names[m], false, observed_measures[m], sample.measures[m]);
    print(out, "\nACCEPTANCE RATE: %.4f\n\n", proposals > 0.0 ? accepted / proposals : 0.0);
}

void write_bayesian_bounds(FILE* out, int empty, int complete) {
    print(out,
          "Draws that ended at the empty network: %d\n"
          "Draws that ended at the complete network: %d\n",
          empty, complete);
}

}  // namespace vexa
