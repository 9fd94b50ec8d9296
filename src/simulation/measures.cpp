#include "simulation/measures.h"

namespace vexa {

namespace {

template <class G>
SampleMeasures graph_measures(const G& graph, DescribeScratch& scratch) {
    geodesics(graph, scratch);
    const Moments degrees = degree_moments(graph);
    const Clustering c = clustering(graph, scratch);
    SampleMeasures m;
    m.values = {degrees.stddev, degrees.skew, c.global, c.mean_local, c.variance_local};
    m.quartiles = geodesic_quartiles(scratch);
    return m;
}

template <class D>
SampleMeasures digraph_measures(const D& digraph, DigraphScratch& scratch) {
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

}  // namespace

const std::vector<std::string>& measure_names(NetworkKind kind) {
    static const std::vector<std::string> graph{"Std Dev degree dist", "Skew degree dist",
                                                "Global Clustering", "Mean Local Clustering",
                                                "Variance Local Clustering"};
    static const std::vector<std::string> digraph{
        "Std Dev in-degree dist",  "Skew in-degree dist",          "Std Dev out-degree dist",
        "Skew out-degree dist",    "CorrCoef in-out-degree dists", "Global Clustering Cto",
        "Global Clustering Cti",   "Global Clustering Ctm",        "Global Clustering Ccm",
        "Global Clustering AKC-T", "Global Clustering AKC-D",      "Global Clustering AKC-U",
        "Global Clustering AKC-C"};
    return kind == NetworkKind::digraph ? digraph : graph;
}

SampleMeasures measure(const Graph& graph, DescribeScratch& scratch) {
    return graph_measures(graph, scratch);
}
SampleMeasures measure(const SparseGraph& graph, DescribeScratch& scratch) {
    return graph_measures(graph, scratch);
}
SampleMeasures measure(const Digraph& digraph, DigraphScratch& scratch) {
    return digraph_measures(digraph, scratch);
}
SampleMeasures measure(const SparseDigraph& digraph, DigraphScratch& scratch) {
    return digraph_measures(digraph, scratch);
}

}  // namespace vexa
