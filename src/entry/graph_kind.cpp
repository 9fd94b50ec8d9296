#include "entry/graph_kind.h"

#include "base/memory.h"

#include <cmath>
#include <type_traits>

#include "base/errors.h"
#include "entry/tasks.h"
#include "network/digraph.h"
#include "report/descriptive_files.h"
#include "report/network_file.h"
#include "report/pajek.h"

namespace vexa {

template <class G>
G GraphTraits<G>::random_start(RunContext& context) {
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
    if constexpr (std::is_same_v<G, Graph>) {
        return random_graph(n, static_cast<int64_t>(target), context.rng, context.seeds);
    } else {
        return random_sparse_graph(n, static_cast<int64_t>(target), context.rng, context.seeds);
    }
}

template <class G>
G GraphTraits<G>::read(const std::string& path, int n, MatrixNotes* notes) {
    if constexpr (std::is_same_v<G, Graph>) {
        return read_graph(path, n, notes);
    } else {
        return read_sparse_graph(path, n, notes);
    }
}

template <class G>
void GraphTraits<G>::adjust_start(const Model& model, const G& observed,
                                  std::vector<double>& parameters) {
    const EffectSetting& edge = model.structural[static_cast<size_t>(GraphEffect::edge)];
    if (edge.slot != -1 && edge.value == 0.0) {
        const double d = density(observed);
        const double log_odds = std::log(d / (1.0 - d));
        if (std::isfinite(log_odds)) parameters[static_cast<size_t>(edge.slot)] = log_odds;
    }
}

template <class G>
const std::vector<std::string>& GraphTraits<G>::measure_names() {
    static const std::vector<std::string> names{"Std Dev degree dist", "Skew degree dist",
                                                "Global Clustering", "Mean Local Clustering",
                                                "Variance Local Clustering"};
    return names;
}

template <class G>
SampleMeasures GraphTraits<G>::measure(const G& graph, DescribeScratch& scratch) {
    geodesics(graph, scratch);
    const Moments degrees = degree_moments(graph);
    const Clustering c = clustering(graph, scratch);
    SampleMeasures m;
    m.values = {degrees.stddev, degrees.skew, c.global, c.mean_local, c.variance_local};
    m.quartiles = geodesic_quartiles(scratch);
    return m;
}

template <class G>
GraphTraits<G>::SampleFiles::SampleFiles(const G& graph, const RunSettings& s,
                                         const OutputNames& names) {
    const auto open = [](const std::string& path) {
        return std::make_unique<OutFile>(path, OpenMode::truncate);
    };
    if (s.outputs.degree_distribution) {
        degree = open(names.degree_distribution);
        write_degree_header(*degree, graph);
    }
    if (s.outputs.geodesic) {
        geodesic = open(names.geodesic_distribution);
        write_geodesic_header(*geodesic, graph);
        quartiles = open(names.geodesic_quartiles);
        write_quartile_header(*quartiles);
    }
    if (s.outputs.cluster_giant) {
        cluster = open(names.cluster_giant);
        write_cluster_giant_header(*cluster);
    }
    if (s.outputs.triangle_distribution) {
        triangle = open(names.triangle_distribution);
        write_triangle_header(*triangle, graph);
    }
    if (s.outputs.twopath_distribution) {
        twopath = open(names.twopath_distribution);
        write_two_path_header(*twopath, graph);
    }
    if (s.outputs.et0nt_distribution) {
        et0nt = open(names.et0nt_distribution);
        write_edge_triangle_header(*et0nt, graph);
    }
}

template <class G>
void GraphTraits<G>::SampleFiles::write_rows(const G& graph, DescribeScratch& scratch,
                                             const SampleMeasures* measured) {
    if (measured == nullptr && (geodesic != nullptr || cluster != nullptr))
        geodesics(graph, scratch);
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

template <class G>
void GraphTraits<G>::SampleFiles::close() {
    for (auto* file : {&degree, &geodesic, &quartiles, &cluster, &triangle, &twopath, &et0nt}) {
        if (*file) (*file)->close();
    }
}

template <class G>
void GraphTraits<G>::write_sample_network(const G& graph, double sample, const OutputNames& names,
                                          const std::string& network_name) {
    write_network_file(sample_network_path(names.sample_statistics, sample), graph);
    char label[64];
    std::snprintf(label, sizeof label, "%.0f", sample);
    write_pajek_block(graph, network_name + "_" + label, names.pajek);
}

template struct GraphTraits<Graph>;
template struct GraphTraits<SparseGraph>;

bool sparse_store_chosen(StoreChoice choice, int node_count, NetworkKind kind) {
    if (choice != StoreChoice::automatic) return choice == StoreChoice::sparse;
    const double available = physical_memory_bytes();
    const double dense_bytes = kind == NetworkKind::digraph ? digraph_store_bytes(node_count)
                                                            : graph_store_bytes(node_count);
    return node_count > 20000 || (available > 0.0 && dense_bytes > available / 2);
}

void run_graph_task(RunContext& context) {
    if (sparse_store_chosen(context.store, context.settings.node_count)) {
        run_task<SparseGraph>(context);
    } else {
        run_task<Graph>(context);
    }
}

}  // namespace vexa
