// The engine's result records as Python dicts of lists: the Python side turns them into
// DataFrames and arrays, so nothing here needs numpy or pandas.
#include "records.h"

#include <algorithm>
#include <cmath>

#include "estimation/diagnostics.h"
#include "report/convergence_report.h"
#include "simulation/gof_task.h"

namespace vexa_python {

namespace py = pybind11;

namespace {

template <class Values>
py::list list_of(const Values& values) {
    py::list out;
    for (const auto& v : values) out.append(static_cast<double>(v));
    return out;
}

py::list rows_of(const std::vector<std::vector<double>>& rows) {
    py::list out;
    for (const auto& row : rows) out.append(list_of(row));
    return out;
}

py::list matrix_rows(const vexa::Matrix& m, int size) {
    py::list out;
    for (int r = 0; r < size; ++r) {
        py::list row;
        for (int c = 0; c < size; ++c) row.append(m[r][c]);
        out.append(row);
    }
    return out;
}

py::dict profile_of(const vexa::NetworkProfile& p) {
    py::dict d;
    d["degree"] = list_of(p.degree);
    d["in_degree"] = list_of(p.in_degree);
    d["geodesics"] = list_of(p.geodesics);
    d["triads"] = list_of(p.triads);
    return d;
}

py::dict run_of(const vexa::EstimationRun& run, const vexa::ConvergenceCheck& check,
                const std::vector<vexa::ParameterLabel>& labels, int p) {
    std::vector<std::vector<double>> trace{run.starting};
    if (!run.after_phase1.empty()) trace.push_back(run.after_phase1);
    for (const vexa::Subphase& s : run.subphases) trace.push_back(s.parameters);
    const bool finished = !run.degenerate;
    py::dict d;
    d["observed"] = list_of(run.observed);
    d["trace"] = rows_of(trace);
    d["steps_per_draw"] = run.steps_per_draw;
    d["degenerate"] = vexa::named_degenerate(run);
    d["estimates"] = finished ? list_of(run.estimates) : py::list();
    d["standard_errors"] = finished ? list_of(run.standard_errors) : py::list();
    d["t_ratios"] = finished ? list_of(run.t_ratios) : py::list();
    d["covariance"] = finished ? matrix_rows(run.covariance, p) : py::list();
    d["verdict"] = std::string(vexa::verdict_text(check.verdict));
    d["largest_t"] = check.largest_t;
    d["overall_ratio"] = check.overall_ratio;
    d["effective_sizes"] = list_of(check.effective_sizes);
    d["suggested_factor"] = check.suggested_factor;
    d["phase3_draws"] = run.phase3_draws;
    d["advice"] = run.astray       ? vexa::astray_text(run, labels)
                  : run.degenerate ? vexa::degeneracy_advice(run, labels)
                                   : std::string();
    return d;
}

// Per-sample rows of a profile's counts.
template <class Get>
py::list profile_rows(const std::vector<vexa::NetworkProfile>& profiles, Get&& get) {
    py::list out;
    for (const auto& p : profiles) out.append(list_of(get(p)));
    return out;
}

py::dict comparisons_of(const vexa::GofRecord& e) {
    const vexa::GofSample& g = e.sample;
    py::list obs, mean, sd, t;
    const auto add = [&](double observed, const std::vector<double>& sample) {
        const vexa::Comparison c = vexa::compare(observed, sample);
        obs.append(c.observed);
        mean.append(c.mean);
        sd.append(c.stddev);
        t.append(c.t);
    };
    for (size_t k = 0; k < g.statistics.size(); ++k) add(e.observed_statistics[k], g.statistics[k]);
    for (size_t k = 0; k < g.measures.size(); ++k)
        add(e.observed_measures.values[k], g.measures[k]);
    py::dict d;
    d["observed"] = obs;
    d["mean"] = mean;
    d["sd"] = sd;
    d["t"] = t;
    return d;
}

py::dict quartiles_of(const vexa::GofRecord& e) {
    const vexa::GeodesicQuartiles& oq = e.observed_measures.quartiles;
    const int32_t observed[3] = {oq.g25, oq.g50, oq.g75};
    py::list median, range, lower, higher, samples;
    for (int k = 0; k < 3; ++k) {
        std::vector<int32_t> sample;
        for (const vexa::GeodesicQuartiles& q : e.sample.quartiles)
            sample.push_back(k == 0 ? q.g25 : k == 1 ? q.g50 : q.g75);
        const vexa::QuartileComparison c = vexa::compare_quartile(observed[k], sample);
        median.append(c.median);
        range.append(c.range);
        lower.append(c.lower);
        higher.append(c.higher);
    }
    py::dict d;
    d["observed"] = list_of(observed);
    d["median"] = median;
    d["iqr"] = range;
    d["below"] = lower;
    d["above"] = higher;
    return d;
}

py::dict gof_of(const vexa::TaskResult& result) {
    const vexa::GofRecord& e = *result.records.gof;
    const vexa::GofSample& g = e.sample;
    using Profile = vexa::NetworkProfile;
    py::dict d;
    d["observed"] = list_of(e.observed_statistics);
    d["statistics"] = rows_of(g.statistics);  // one row per statistic
    d["measure_names"] = result.measure_names;
    d["measures"] = rows_of(g.measures);
    d["comparisons"] = comparisons_of(e);
    d["quartiles"] = quartiles_of(e);
    d["mahalanobis"] = e.distance.available ? e.distance.observed_distance : NAN;
    d["mahalanobis_closer"] = e.distance.available ? e.distance.closer_percent : NAN;
    d["observed_profile"] = profile_of(result.observed_profile);
    // The Bayesian form: how many draws ended at the empty and at the complete network.
    d["empty"] = e.sets ? e.sets->empty : 0;
    d["complete"] = e.sets ? e.sets->complete : 0;
    d["degree"] = profile_rows(result.sample_profiles, [](const Profile& p) { return p.degree; });
    d["in_degree"] =
        profile_rows(result.sample_profiles, [](const Profile& p) { return p.in_degree; });
    d["geodesics"] =
        profile_rows(result.sample_profiles, [](const Profile& p) { return p.geodesics; });
    d["triads"] = profile_rows(result.sample_profiles, [](const Profile& p) { return p.triads; });
    return d;
}

}  // namespace

py::dict result_dict(const vexa::TaskResult& result, int n) {
    const int p = static_cast<int>(result.labels.size());
    std::vector<std::string> labels(static_cast<size_t>(p));
    for (const vexa::ParameterLabel& label : result.labels) {
        if (label.position >= 0 && label.position < p)
            labels[static_cast<size_t>(label.position)] = vexa::labelled(label);
    }
    py::dict out;
    out["error"] = result.error;
    out["console"] = result.console;
    out["labels"] = labels;
    out["gof_labels"] = result.gof_labels;
    out["slots"] = result.slots;
    py::list networks;
    for (const std::vector<uint8_t>& m : result.networks) {
        py::list ties;  // (i, j) of every tie, row by row
        for (int i = 0; i < n; ++i) {
            for (int j = 0; j < n; ++j) {
                if (m[static_cast<size_t>(i) * static_cast<size_t>(n) + static_cast<size_t>(j)])
                    ties.append(py::make_tuple(i, j));
            }
        }
        networks.append(ties);
    }
    out["networks"] = networks;
    const vexa::TaskRecords& records = result.records;
    if (records.estimation) {
        const vexa::EstimationRecord& e = *records.estimation;
        py::list runs;
        for (size_t k = 0; k < e.runs.size(); ++k)
            runs.append(run_of(e.runs[k], e.checks[k], result.labels, p));
        out["runs"] = runs;
        out["converged"] = e.converged;
        out["reported_run"] = e.reported_run;
        out["estimates"] = list_of(e.estimates);
    }
    if (records.simulation) {
        out["sample_numbers"] = list_of(records.simulation->sample_numbers);
        out["sample_statistics"] = rows_of(records.simulation->sample_statistics);
        out["accepted"] = records.simulation->accepted;
    }
    if (records.gof) out["gof"] = gof_of(result);
    return out;
}

}  // namespace vexa_python
