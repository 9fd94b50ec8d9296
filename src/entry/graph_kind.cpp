#include "entry/graph_kind.h"

#include <cmath>

#include "base/errors.h"
#include "entry/tasks.h"
#include "report/descriptive_files.h"
#include "report/network_file.h"
#include "report/pajek.h"

namespace vexa {

Graph KindTraits<Graph>::random_start(RunContext& context) {
    const RunSettings& s = context.settings;
    const int n = s.node_count;
    const double target = std::trunc(static_cast<double>(n) * (n - 1) * s.initial_density * 0.5);
    if (!(target >= 0.0) || target > static_cast<double>(n) * (n - 1) / 2.0) {
        throw SettingError(
            format_message("vexa: run file '%s': initial_density %g asks for %.0f ties, but %d "
                           "nodes have only %.0f dyads",
                           s.run_file.c_str(), static_cast<double>(s.initial_density), target, n,
                           static_cast<double>(n) * (n - 1) / 2.0));
    }
    return random_graph(n, static_cast<int64_t>(target), context.rng, context.seeds);
}

void KindTraits<Graph>::adjust_start(const Model& model, const Graph& observed,
                                     std::vector<double>& parameters) {
    const EffectSetting& edge = model.structural[static_cast<size_t>(GraphEffect::edge)];
    if (edge.slot != -1 && edge.value == 0.0) {
        const double d = density(observed);
        const double log_odds = std::log(d / (1.0 - d));
        if (std::isfinite(log_odds)) parameters[static_cast<size_t>(edge.slot)] = log_odds;
    }
}

const std::vector<std::string>& KindTraits<Graph>::measure_names() {
    static const std::vector<std::string> names{"Std Dev degree dist", "Skew degree dist",
                                                "Global Clustering", "Mean Local Clustering",
                                                "Variance Local Clustering"};
    return names;
}

SampleMeasures KindTraits<Graph>::measure(const Graph& graph, DescribeScratch& scratch) {
    geodesics(graph, scratch, false);
    const Moments degrees = degree_moments(graph);
    const Clustering c = clustering(graph, scratch);
    SampleMeasures m;
    m.values = {degrees.stddev, degrees.skew, c.global, c.mean_local, c.variance_local};
    m.quartiles = geodesic_quartiles(scratch);
    return m;
}

KindTraits<Graph>::SampleFiles::SampleFiles(const Graph& graph, const RunSettings& s,
                                            const OutputNames& names) {
    const auto open = [](const std::string& path) {
        return std::make_unique<OutFile>(path, OpenMode::truncate);
    };
    if (s.degree_distribution_output == 1) {
        degree = open(names.degree_distribution);
        write_degree_header(*degree, graph);
    }
    if (s.geodesic_output == 1) {
        geodesic = open(names.geodesic_distribution);
        write_geodesic_header(*geodesic, graph);
        quartiles = open(names.geodesic_quartiles);
        write_quartile_header(*quartiles);
    }
    if (s.cluster_giant_output == 1) {
        cluster = open(names.cluster_giant);
        write_cluster_giant_header(*cluster);
    }
    if (s.triangle_distribution_output == 1) {
        triangle = open(names.triangle_distribution);
        write_triangle_header(*triangle, graph);
    }
    if (s.twopath_distribution_output == 1) {
        twopath = open(names.twopath_distribution);
        write_two_path_header(*twopath, graph);
    }
    if (s.et0nt_distribution_output == 1) {
        et0nt = open(names.et0nt_distribution);
        write_edge_triangle_header(*et0nt, graph);
    }
}

void KindTraits<Graph>::SampleFiles::write_rows(const Graph& graph, DescribeScratch& scratch,
                                                const SampleMeasures* measured) {
    if (measured == nullptr && (geodesic != nullptr || cluster != nullptr))
        geodesics(graph, scratch, false);
    if (degree) write_degree_row(*degree, graph);
    if (geodesic) {
        write_geodesic_row(*geodesic, graph, scratch);
        write_quartile_row(*quartiles, geodesic_quartiles(scratch));
    }
    if (cluster) write_cluster_giant_row(*cluster, graph, scratch);
    if (triangle) write_triangle_row(*triangle, graph);
    if (twopath) write_two_path_row(*twopath, graph);
    if (et0nt) write_edge_triangle_row(*et0nt, graph, scratch);
}

void KindTraits<Graph>::SampleFiles::close() {
    for (auto* file : {&degree, &geodesic, &quartiles, &cluster, &triangle, &twopath, &et0nt}) {
        if (*file) (*file)->close();
    }
}

void KindTraits<Graph>::write_sample_network(const Graph& graph, double sample,
                                             const OutputNames& names,
                                             const std::string& network_name) {
    write_network_file(sample_network_path(names.sample_statistics, sample), graph);
    char label[64];
    std::snprintf(label, sizeof label, "%.0f", sample);
    write_pajek_block(graph, network_name + "_" + label, names.pajek);
}

void run_graph_task(RunContext& context) { run_task<Graph>(context); }

}  // namespace vexa
