#include "entry/digraph_kind.h"

#include <cmath>
#include <type_traits>

#include "base/errors.h"
#include "entry/graph_kind.h"
#include "entry/tasks.h"
#include "report/digraph_files.h"
#include "report/network_file.h"
#include "report/pajek.h"

namespace vexa {

template <class D>
D DigraphTraits<D>::random_start(RunContext& context) {
    const RunSettings& s = context.settings;
    const int n = s.node_count;
    const double dyads = static_cast<double>(n) * (n - 1);
    const double target = std::trunc(dyads * s.initial_density);
    if (!(target >= 0.0) || target > dyads) {
        throw SettingError(format_message(
            "vexa: run file '%s': initial_density %g asks for %.0f arcs, but %d nodes have only "
            "%.0f "
            "ordered pairs",
            s.run_file.c_str(), static_cast<double>(s.initial_density), target, n, dyads));
    }
    if constexpr (std::is_same_v<D, Digraph>) {
        return random_digraph_by_count(n, static_cast<int64_t>(target), context.rng, context.seeds);
    } else {
        return random_sparse_digraph(n, static_cast<int64_t>(target), context.rng, context.seeds);
    }
}

template <class D>
D DigraphTraits<D>::read(const std::string& path, int n, MatrixNotes* notes) {
    if constexpr (std::is_same_v<D, Digraph>) {
        return read_digraph(path, n, notes);
    } else {
        return read_sparse_digraph(path, n, notes);
    }
}

template <class D>
void DigraphTraits<D>::after_run(RunContext& context, const EstimationRun& run) {
    if (run.t_ratios.empty()) return;
    for (const double t : run.t_ratios) std::fprintf(context.console, "%lf\t", t);
    std::fprintf(context.console, "\n");
    std::fflush(context.console);
}

template <class D>
void DigraphTraits<D>::before_gof_after_estimation(RunContext& context) {
    std::fprintf(context.console, "gof!\n");
    std::fflush(context.console);
}

template <class D>
const std::vector<std::string>& DigraphTraits<D>::measure_names() {
    static const std::vector<std::string> names{
        "Std Dev in-degree dist",  "Skew in-degree dist",          "Std Dev out-degree dist",
        "Skew out-degree dist",    "CorrCoef in-out-degree dists", "Global Clustering Cto",
        "Global Clustering Cti",   "Global Clustering Ctm",        "Global Clustering Ccm",
        "Global Clustering AKC-T", "Global Clustering AKC-D",      "Global Clustering AKC-U",
        "Global Clustering AKC-C"};
    return names;
}

template <class D>
SampleMeasures DigraphTraits<D>::measure(const D& digraph, DigraphScratch& scratch) {
    directed_geodesics(digraph, scratch);
    const Moments in = in_degree_moments(digraph);
    const Moments out = out_degree_moments(digraph);
    const DigraphClustering c = digraph_clustering(digraph);
    SampleMeasures m;
    m.values = {in.stddev, in.skew, out.stddev, out.skew, in_out_degree_correlation(digraph),
                c.cto,     c.cti,   c.ctm,      c.ccm,    c.akc_t,
                c.akc_d,   c.akc_u, c.akc_c};
    m.quartiles = geodesic_quartiles(scratch.geodesic_counts);
    return m;
}

template <class D>
DigraphTraits<D>::SampleFiles::SampleFiles(const D& digraph, const RunSettings& s,
                                           const OutputNames& names) {
    const auto open = [](const std::string& path) {
        return std::make_unique<OutFile>(path, OpenMode::truncate);
    };
    if (s.outputs.degree_distribution) {
        degree = open(names.degree_distribution);
        write_in_out_degree_header(*degree, digraph);
    }
    if (s.outputs.geodesic) {
        geodesic = open(names.geodesic_distribution);
        write_directed_geodesic_header(*geodesic, digraph);
    }
    if (s.outputs.cluster_giant) {
        cluster = open(names.cluster_giant);
        write_digraph_clustering_header(*cluster);
    }
}

template <class D>
void DigraphTraits<D>::SampleFiles::write_rows(const D& digraph, DigraphScratch& scratch,
                                               const SampleMeasures* measured) {
    if (degree) write_in_out_degree_row(*degree, digraph);
    if (geodesic) {
        if (measured == nullptr) directed_geodesics(digraph, scratch);
        write_directed_geodesic_row(*geodesic, digraph, scratch);
    }
    if (cluster) write_digraph_clustering_row(*cluster, digraph_clustering(digraph));
}

template <class D>
void DigraphTraits<D>::SampleFiles::close() {
    for (auto* file : {&degree, &geodesic, &cluster}) {
        if (*file) (*file)->close();
    }
}

template <class D>
void DigraphTraits<D>::GofExtras::write(FILE* out) const {
    write_triad_census_block(out, observed_census, sample);
}

template <class D>
void DigraphTraits<D>::write_sample_network(const D& digraph, double sample,
                                            const OutputNames& names,
                                            const std::string& network_name) {
    write_network_file(sample_network_path(names.sample_statistics, sample), digraph);
    char label[64];
    std::snprintf(label, sizeof label, "%.0f", sample);
    write_pajek_block(digraph, network_name + "_" + label, names.pajek);
}

template struct DigraphTraits<Digraph>;
template struct DigraphTraits<SparseDigraph>;

void run_digraph_task(RunContext& context) {
    if (sparse_store_chosen(context.store, context.settings.node_count, NetworkKind::digraph)) {
        run_task<SparseDigraph>(context);
    } else {
        run_task<Digraph>(context);
    }
}

}  // namespace vexa
