#include "simulation/graph_simulation.h"

#include <algorithm>
#include <cmath>
#include <memory>

#include "base/errors.h"
#include "base/text_file.h"
#include "describe/graph_describe.h"
#include "effects/graph_catalogue.h"
#include "effects/parameter_labels.h"
#include "numeric/matrix.h"
#include "numeric/moments.h"
#include "report/network_file.h"
#include "report/pajek.h"

namespace vexa {

namespace {

// 0ET and ETNT are not carried through the chain (their change is never summed); they are
// counted afresh wherever a sample is read.
void recount_edge_triangle_statistics(Graph& graph, const std::vector<Term>& terms) {
    for (const Term& term : terms) {
        const size_t slot = static_cast<size_t>(term.slot);
        if (term.effect == GraphEffect::et0) {
            graph.statistics[slot] = static_cast<double>(ties_in_no_triangle(graph));
        } else if (term.effect == GraphEffect::etnt) {
            graph.statistics[slot] = static_cast<double>(triangle_times_lone_ties(graph));
        }
    }
}

void write_parameter_lines(FILE* out, const Model& model, const std::vector<double>& parameters) {
    for (const ParameterLabel& label : graph_parameter_labels(model, LabelStyle::simulation)) {
        std::fprintf(out, "%s\t%.5f\n", labelled(label).c_str(),
                     parameters[static_cast<size_t>(label.position)]);
    }
}

// The per-sample descriptive files that the options turn on, with their headers written.
struct DescriptiveFiles {
    std::unique_ptr<OutFile> degree, geodesic, quartiles, cluster, triangle, twopath, et0nt;

    DescriptiveFiles(const Graph& graph, const SimulationOptions& options, const SimulationFiles& files) {
        auto open = [](const std::string& path) {
            return std::make_unique<OutFile>(path, OpenMode::truncate);
        };
        if (options.degree_distribution) {
            degree = open(files.degree_distribution);
            write_degree_header(*degree, graph);
        }
        if (options.geodesic) {
            geodesic = open(files.geodesic_distribution);
            write_geodesic_header(*geodesic, graph);
            quartiles = open(files.geodesic_quartiles);
            write_quartile_header(*quartiles);
        }
        if (options.cluster_giant) {
            cluster = open(files.cluster_giant);
            write_cluster_giant_header(*cluster);
        }
        if (options.triangle_distribution) {
            triangle = open(files.triangle_distribution);
            write_triangle_header(*triangle, graph);
        }
        if (options.twopath_distribution) {
            twopath = open(files.twopath_distribution);
            write_two_path_header(*twopath, graph);
        }
        if (options.et0nt_distribution) {
            et0nt = open(files.et0nt_distribution);
            write_edge_triangle_header(*et0nt, graph);
        }
    }

    bool need_geodesics() const { return geodesic != nullptr || cluster != nullptr; }

    // One row per enabled file; the geodesic pass must have run when need_geodesics().
    void write_rows(Graph& graph, const DescribeScratch& scratch) {
        if (degree) write_degree_row(*degree, graph);
        if (geodesic) {
            write_geodesic_row(*geodesic, graph, scratch);
            write_quartile_row(*quartiles, geodesic_quartiles(scratch));
        }
        if (cluster) write_cluster_giant_row(*cluster, graph);
        if (triangle) write_triangle_row(*triangle, graph);
        if (twopath) write_two_path_row(*twopath, graph);
        if (et0nt) write_edge_triangle_row(*et0nt, graph);
    }

    void close() {
        for (auto* file : {&degree, &geodesic, &quartiles, &cluster, &triangle, &twopath, &et0nt}) {
            if (*file) (*file)->close();
        }
    }
};

void write_sample_statistics_header(FILE* out, const std::vector<ParameterLabel>& columns) {
    std::fputs("id\t", out);
    for (const ParameterLabel& column : columns) std::fprintf(out, "%s\t", column.name.c_str());
    std::fputs("\n", out);
}

void write_sample_statistics_row(FILE* out, double sample, const Graph& graph,
                                 const std::vector<ParameterLabel>& columns) {
    std::fprintf(out, "%.0f\t", sample);
    for (const ParameterLabel& column : columns) {
        const double value = graph.statistics[static_cast<size_t>(column.position)];
        if (column.integral) {
            std::fprintf(out, "%.0f\t", value);
        } else {
            std::fprintf(out, "%.2f\t", value);
        }
    }
    std::fputs("\n", out);
}

void write_sample_network(const Graph& graph, double sample, const SimulationFiles& files) {
    write_network_file(sample_network_path(files.sample_prefix, sample), graph);
    char label[64];
    std::snprintf(label, sizeof label, "%.0f", sample);
    write_pajek_block(graph, files.network_name + "_" + label, files.pajek);
}

// Runs T proposals and calls on_sample(i, accepted since the last sample) at the sampling
// points h, 2h, ... (compared for exact equality, so a fractional h never samples). Returns
// the total accepted at sampling points.
template <typename OnSample>
double run_proposals(Graph& graph, GraphSampler& sampler, const double* parameters,
                     const SimulationOptions& options, Rng& rng, FILE* console, OnSample&& on_sample) {
    double accepted_interval = 0.0;
    double accepted_total = 0.0;
    double next_sample = options.interval;
    bool printed = false;
    for (double i = 1.0; i < options.proposals + 1.0; i += 1.0) {
        accepted_interval += sampler_step(graph, sampler, parameters, rng);
        if (i == next_sample) {
            if (console != nullptr) {
                std::fprintf(console, "%.0f\t", i);
                std::fflush(console);
                printed = true;
            }
            on_sample(i, accepted_interval);
            accepted_total += accepted_interval;
            accepted_interval = 0.0;
            next_sample += options.interval;
        }
    }
    if (console != nullptr) {
        if (printed) std::fputs("\n", console);
        std::fprintf(console, "Accepted %.0f changes.\n", accepted_total);
    }
    return accepted_total;
}

double sample_count(const SimulationOptions& options) {
    if (!(options.interval >= 1.0) || options.interval != std::floor(options.interval)) return 0.0;
    return std::floor(options.proposals / options.interval);
}

}  // namespace

int quantile_index(double share, int count) {
    const int index = static_cast<int>(std::floor(share * (count + 1)));
    return std::clamp(index, 0, std::max(count - 1, 0));
}

void simulate_graph(Graph& graph, GraphSampler& sampler, const std::vector<double>& parameters,
                    const Model& model, const SimulationOptions& options,
                    const SimulationFiles& files, Rng& rng, SeedSource& seeds, FILE* console) {
    seeds.reseed(rng);
    const std::vector<Term>& terms = *sampler.terms;
    {
        OutFile report(files.report, OpenMode::truncate);
        std::fprintf(report, "Simulation started for graph with %d vertices\nParameter Values:\n",
                     graph.node_count);
        write_parameter_lines(report, model, parameters);
        std::fprintf(report, "Proposed %.0f graphs.\nSamples are picked up at 1 per %.0f graphs.\n",
                     options.proposals, options.interval);
        report.close();
        OutFile parameter_file(files.parameter, OpenMode::truncate);
        write_parameter_lines(parameter_file, model, parameters);
        parameter_file.close();
    }
    const std::vector<ParameterLabel> columns = graph_parameter_labels(model, LabelStyle::sample);
    OutFile statistics(files.sample_prefix + ".txt", OpenMode::truncate);
    write_sample_statistics_header(statistics, columns);
    OutFile accept(files.accept, OpenMode::truncate);
    std::fputs("Acceptance Rate (non-Digraph)\n", accept);
    DescriptiveFiles descriptive(graph, options, files);
    DescribeScratch scratch;

    const double accepted = run_proposals(
        graph, sampler, parameters.data(), options, rng, console, [&](double i, double interval_accepted) {
            recount_edge_triangle_statistics(graph, terms);
            write_sample_statistics_row(statistics, i, graph, columns);
            if (descriptive.need_geodesics()) geodesics(graph, scratch, false);
            descriptive.write_rows(graph, scratch);
            std::fprintf(accept, "%8.0f\t%8.4f\n", i, interval_accepted / options.interval);
            if (options.networks) write_sample_network(graph, i, files);
        });
    std::fprintf(accept, "Accepted %.0f proposed graphs.", accepted);
    accept.close();
    statistics.close();
    descriptive.close();
    OutFile report(files.report, OpenMode::append);
    std::fprintf(report, "Accepted %.0f proposed graphs.", accepted);
    report.close();
}

namespace {

// The per-network measures that goodness of fit compares besides the model's statistics.
struct Measures {
    double degree_stddev = 0.0;
    double degree_skew = 0.0;
    double global_clustering = 0.0;
    double mean_local_clustering = 0.0;
    double variance_local_clustering = 0.0;
    GeodesicQuartiles quartiles;
};

Measures measure(Graph& graph, DescribeScratch& scratch) {
    geodesics(graph, scratch, false);
    Measures m;
    const Moments degrees = degree_moments(graph);
    m.degree_stddev = degrees.stddev;
    m.degree_skew = degrees.skew;
    const Clustering c = clustering(graph);
    m.global_clustering = c.global;
    m.mean_local_clustering = c.mean_local;
    m.variance_local_clustering = c.variance_local;
    m.quartiles = geodesic_quartiles(scratch);
    return m;
}

void write_comparison_row(FILE* out, const char* label, double observed, const std::vector<double>& sample) {
    const Moments m = moments(sample.data(), static_cast<int>(sample.size()));
    std::fprintf(out, "%s\t%.3f\t%.3f\t%.3f\t%.3f\n", label, observed, m.mean, m.stddev,
                 (observed - m.mean) / m.stddev);
}

void write_quartile_block(FILE* out, const char* heading, const char* observed_line, const char* name,
                          int observed, std::vector<int32_t> sample) {
    std::sort(sample.begin(), sample.end());
    const int n = static_cast<int>(sample.size());
    auto at = [&](double share) { return sample[static_cast<size_t>(quantile_index(share, n))]; };
    const int median = at(0.5);
    const int range = at(0.75) - at(0.25);
    int below = 0;
    int above = 0;
    for (const int32_t value : sample) {
        if (value < observed) ++below;
        if (value > observed) ++above;
    }
    // Each share is formed in single precision before it is scaled to a percentage.
    const float lower = static_cast<float>(below) / static_cast<float>(n);
    const float higher = static_cast<float>(above) / static_cast<float>(n);
    std::fprintf(out,
                 "%s\nMedian of sample %ss: %d\nInterquartile range: %d\n%s: %d\n"
                 "in model samples, %.2f%% of graphs have lower %s.\n"
                 "in model samples, %.2f%% of graphs have higher %s.\n\n",
                 heading, name, median, range, observed_line, observed,
                 100.0 * static_cast<double>(lower), name, 100.0 * static_cast<double>(higher), name);
}

}  // namespace

void graph_goodness_of_fit(Graph& observed, Graph& working, GraphSampler& sampler,
                           const std::vector<double>& parameters, const Model& model,
                           const SimulationOptions& options, const SimulationFiles& files,
                           Rng& rng, SeedSource& seeds, FILE* console) {
    const double expected_samples = sample_count(options);
    if (expected_samples < 1.0) {
        throw SettingError(format_message(
            "vexa: goodness of fit keeps no sample: %.0f proposals at 1 sample per %.0f proposals "
            "(iterations must be at least sample_count)",
            options.proposals, options.interval));
    }
    const std::vector<Term>& terms = *sampler.terms;
    const size_t p = parameters.size();
    seeds.reseed(rng);

    // The observed network's values, before sampling.
    compute_totals(observed, terms);
    std::vector<double> observed_statistics(observed.statistics.begin(),
                                            observed.statistics.begin() + static_cast<std::ptrdiff_t>(p));
    DescribeScratch scratch;
    const Measures observed_measures = measure(observed, scratch);

    {
        OutFile report(files.gof, OpenMode::append);
        std::fputs("\n\n GOODNESS OF FIT\n\nParameter Values:\n", report);
        write_parameter_lines(report, model, parameters);
        std::fprintf(report, "Proposed %.0f graphs.\nSamples were picked up at 1 per %.0f graphs.\n",
                     options.proposals, options.interval);
        report.close();
    }

    // The sample: one column per kept network, the statistics and the reserved distance.
    std::vector<std::vector<double>> sample(p + 1);
    std::vector<double> sample_numbers;
    std::vector<Measures> sample_measures;
    const size_t reserve = static_cast<size_t>(std::min(expected_samples, 1e7));
    for (auto& row : sample) row.reserve(reserve);
    sample_measures.reserve(reserve);

    const std::vector<ParameterLabel> columns = graph_parameter_labels(model, LabelStyle::sample);
    OutFile statistics(files.sample_prefix + ".txt", OpenMode::truncate);
    write_sample_statistics_header(statistics, columns);
    DescriptiveFiles descriptive(working, options, files);
    compute_totals(working, terms);

    const double accepted = run_proposals(
        working, sampler, parameters.data(), options, rng, console, [&](double i, double) {
            recount_edge_triangle_statistics(working, terms);
            write_sample_statistics_row(statistics, i, working, columns);
            for (size_t k = 0; k < p; ++k) sample[k].push_back(working.statistics[k]);
            sample[p].push_back(0.0);
            sample_numbers.push_back(i);
            sample_measures.push_back(measure(working, scratch));
            descriptive.write_rows(working, scratch);
            if (options.networks) write_sample_network(working, i, files);
        });
    statistics.close();
    descriptive.close();
    const size_t N = sample_numbers.size();

    OutFile report(files.gof, OpenMode::append);
    std::fprintf(report, "Accepted %.0f proposed graphs.\n", accepted);
    std::fputs("obeservation, sample mean (standard error), t-statistic for observed network\n"
               "t-statistics = (observation - sample mean)/standard deviation\n\n"
               "effects\tobserved\tmean\tstddev\tt-ratio\n",
               report);
    for (const ParameterLabel& label : graph_parameter_labels(model, LabelStyle::gof)) {
        const size_t k = static_cast<size_t>(label.position);
        const Moments m = moments(sample[k].data(), static_cast<int>(N));
        const double t = (observed_statistics[k] - m.mean) / m.stddev;
        if (label.integral) {
            std::fprintf(report, "%s\t%.0f\t%.3f\t%.3f\t%.3f\n", labelled(label).c_str(),
                         observed_statistics[k], m.mean, m.stddev, t);
        } else {
            std::fprintf(report, "%s\t%.3f\t%.3f\t%.3f\t%.3f\n", labelled(label).c_str(),
                         observed_statistics[k], m.mean, m.stddev, t);
        }
    }
    auto column = [&](auto field) {
        std::vector<double> values;
        values.reserve(N);
        for (const Measures& m : sample_measures) values.push_back(field(m));
        return values;
    };
    write_comparison_row(report, "Std Dev degree dist", observed_measures.degree_stddev,
                         column([](const Measures& m) { return m.degree_stddev; }));
    write_comparison_row(report, "Skew degree dist", observed_measures.degree_skew,
                         column([](const Measures& m) { return m.degree_skew; }));
    write_comparison_row(report, "Global Clustering", observed_measures.global_clustering,
                         column([](const Measures& m) { return m.global_clustering; }));
    write_comparison_row(report, "Mean Local Clustering", observed_measures.mean_local_clustering,
                         column([](const Measures& m) { return m.mean_local_clustering; }));
    write_comparison_row(report, "Variance Local Clustering", observed_measures.variance_local_clustering,
                         column([](const Measures& m) { return m.variance_local_clustering; }));
    std::fprintf(report, "\nACCEPTANCE RATE: %.4f\n\n",
                 options.proposals > 0.0 ? accepted / options.proposals : 0.0);

    std::fputs("SAMPLE GEODESIC DISTRIBUTION\n", report);
    std::fputs("Note: geodesic = shortest path between two nodes.\n"
               "The geodesic distribution is not based on semi-paths.\n\n",
               report);
    auto quartile_sample = [&](auto field) {
        std::vector<int32_t> values;
        values.reserve(N);
        for (const Measures& m : sample_measures) values.push_back(field(m.quartiles));
        return values;
    };
    write_quartile_block(report, "FIRST QUARTILES", "Observed first quartile geodesic", "G25",
                         observed_measures.quartiles.g25,
                         quartile_sample([](const GeodesicQuartiles& q) { return q.g25; }));
    write_quartile_block(report, "SECOND QUARTILES", "Observed median geodesic", "G50",
                         observed_measures.quartiles.g50,
                         quartile_sample([](const GeodesicQuartiles& q) { return q.g50; }));
    // The third block's observed line says "first quartile", as it always has.
    write_quartile_block(report, "THIRD QUARTILES", "Observed first quartile geodesic", "G75",
                         observed_measures.quartiles.g75,
                         quartile_sample([](const GeodesicQuartiles& q) { return q.g75; }));
    report.close();

    // Mahalanobis distance of every sample, and of the observed statistics, from the sample
    // mean, compared as quadratic forms (the observed one is printed as its square root).
    std::vector<double> mean(p, 0.0);
    for (size_t a = 0; a < p; ++a) mean[a] = moments(sample[a].data(), static_cast<int>(N)).mean;
    Matrix C = make_matrix(static_cast<int>(p), static_cast<int>(p), 0.0);
    for (size_t a = 0; a < p; ++a) {
        for (size_t b = 0; b < p; ++b) {
            double sum = 0.0;
            for (size_t s = 0; s < N; ++s) sum += (sample[a][s] - mean[a]) * (sample[b][s] - mean[b]);
            C[static_cast<int>(a)][b] = sum / static_cast<double>(N);
        }
    }
    const bool invertible = invert_in_place(C) == 1;
    auto quadratic_form = [&](auto value_of) {
        double form = 0.0;
        for (size_t a = 0; a < p; ++a) {
            for (size_t b = 0; b < p; ++b) {
                form += (value_of(a) - mean[a]) * C[static_cast<int>(a)][b] * (value_of(b) - mean[b]);
            }
        }
        return form;
    };
    if (invertible) {
        for (size_t s = 0; s < N; ++s) sample[p][s] = quadratic_form([&](size_t a) { return sample[a][s]; });
    }
    {
        OutFile table(files.report, OpenMode::truncate);
        std::fputs("id\t", table);
        for (const ParameterLabel& label : columns) std::fprintf(table, "%s\t", label.name.c_str());
        std::fputs("mahalanobis\n", table);
        for (size_t s = 0; s < N; ++s) {
            std::fprintf(table, "%d\t", static_cast<int>(sample_numbers[s]));
            for (size_t a = 0; a <= p; ++a) std::fprintf(table, "%lf\t", sample[a][s]);
            std::fputs("\n", table);
        }
        table.close();
    }
    OutFile tail(files.gof, OpenMode::append);
    if (!invertible) {
        std::fputs("Mahalanobis distance not available: the sampled statistics are collinear "
                   "(their covariance matrix is singular)\n",
                   tail);
    } else {
        const double observed_form = quadratic_form([&](size_t a) { return observed_statistics[a]; });
        std::fprintf(tail, "Mahalanobis distance =%lf\n", std::sqrt(observed_form));
        size_t closer = 0;
        for (size_t s = 0; s < N; ++s) closer += sample[p][s] < observed_form ? 1 : 0;
        std::fprintf(tail,
                     "%.0lf%% simulated samples have smaller Mahalanobis distances than the observed "
                     "network\n",
                     100.0 * static_cast<double>(closer) / static_cast<double>(N));
    }
    tail.close();
}

}  // namespace vexa
