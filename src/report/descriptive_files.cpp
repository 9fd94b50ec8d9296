// The per-sample descriptive files: tab-separated, one header line, one row per sample.

#include <charconv>
#include <cstddef>

#include "base/errors.h"
#include "base/sizes.h"
#include "report/descriptive_files.h"

#include "describe/graph_describe.h"

namespace vexa {

namespace {

// Integers each followed by a tab, the text of "%d\t" per value. The triangle row alone has
// (n-2)(n-1)/2 + 1 columns, so the values are formatted into a block and written at once
// rather than through one formatted call each.
template <class Count>
void print_counts(FILE* out, const Count* values, size_t count) {
    char block[4096];
    size_t used = 0;
    for (size_t k = 0; k < count; ++k) {
        if (used + 24 > sizeof block) {  // room for any 64-bit value, its sign and the tab
            std::fwrite(block, 1, used, out);
            used = 0;
        }
        used = static_cast<size_t>(
            std::to_chars(block + used, block + sizeof block, values[k]).ptr - block);
        block[used++] = '\t';
    }
    std::fwrite(block, 1, used, out);
}

void print_moments(FILE* out, const Moments& m) {
    std::fprintf(out, "%f\t%f\t%f\t", m.mean, m.stddev, m.skew);
}

// One column per node, numbered from 1.
void print_node_columns(FILE* out, const char* prefix, int n) {
    for (int v = 1; v <= n; ++v) std::fprintf(out, "%s%d\t", prefix, v);
}

}  // namespace

template <class G>
void write_degree_header(FILE* out, const G& graph) {
    print_node_columns(out, "d", graph.node_count);
    std::fprintf(out, "mean\tstddev\tskew\n");
}

template <class G>
void write_degree_row(FILE* out, const G& graph) {
    print_counts(out, graph.degree.data(), as_size(graph.node_count));
    print_moments(out, degree_moments(graph));
    std::fprintf(out, "\n");
}

template <class G>
void write_geodesic_header(FILE* out, const G& graph) {
    const int sources = geodesic_sources(graph.node_count);
    if (sources != graph.node_count) {
        std::fprintf(out,
                     "# geodesics by breadth-first search from a sample of %d of the %d nodes, "
                     "scaled to all pairs\n",
                     sources, graph.node_count);
    }
    for (int d = 1; d < graph.node_count; ++d) std::fprintf(out, "geo%d\t", d);
    std::fprintf(out, "geoInf\n");
}

template <class G>
void write_geodesic_row(FILE* out, const G& graph, const DescribeScratch& scratch) {
    const std::vector<int64_t>& counts = scratch.geodesic_counts;
    const int n = graph.node_count;
    if (counts.size() != as_size(n) + 1) {
        throw VexaError(
            "vexa: a geodesic row was asked for before the geodesic pass of its network");
    }
    for (int d = 1; d < n; ++d)
        std::fprintf(out, "%lld\t", static_cast<long long>(counts[as_size(d)]));
    std::fprintf(out, "%lld\n", static_cast<long long>(counts[as_size(n)]));
}

void write_cluster_giant_header(FILE* out) { std::fprintf(out, "mlocal\tglobal\tgiant\n"); }

template <class G>
void write_cluster_giant_row(FILE* out, const G& graph, DescribeScratch& scratch) {
    const Clustering c = clustering(graph, scratch);
    std::fprintf(out, "%f\t%f\t%d\n", c.mean_local, c.global, c.giant);
}

template <class G>
void write_triangle_header(FILE* out, const G& graph) {
    // k = 0 .. (n-2)(n-1)/2: the most triangles a node can be in, one entry per count.
    const int entries = static_cast<int>(graph.triangle_histogram.size());
    for (int k = 0; k < entries; ++k) std::fprintf(out, "t%d\t", k);
    std::fprintf(out, "mean\tstddev\tskew\t\n");
}

template <class G>
void write_triangle_row(FILE* out, const G& graph) {
    print_counts(out, graph.triangle_histogram.data(), graph.triangle_histogram.size());
    print_moments(out, triangle_moments(graph));
    std::fprintf(out, "\n");
}

template <class G>
void write_two_path_header(FILE* out, const G& graph) {
    // k = 0 .. n-2: the most partners a pair can share.
    for (int k = 0; k + 1 < graph.node_count; ++k) std::fprintf(out, "tp%d\t", k);
    std::fprintf(out, "mean\tstddev\tskew\t\n");
}

template <class G>
void write_two_path_row(FILE* out, const G& graph) {
    // k = 0 .. n-2: the histogram's n-1 entries.
    print_counts(out, graph.shared_partner_histogram.data(), graph.shared_partner_histogram.size());
    print_moments(out, shared_partner_moments(graph));
    std::fprintf(out, "\n");
}

template <class G>
void write_edge_triangle_header(FILE* out, const G& graph) {
    const int n = graph.node_count;
    print_node_columns(out, "et0_v", n);
    std::fprintf(out, "mean\tstddev\tskew\t");
    print_node_columns(out, "etnt_v", n);
    std::fprintf(out, "mean\tstddev\tskew\t");
    print_node_columns(out, "etntratio_v", n);
    std::fprintf(out, "mean\tstddev\tskew\n");
}

template <class G>
void write_edge_triangle_row(FILE* out, const G& graph, DescribeScratch& scratch) {
    const EdgeTriangleProfile profile = edge_triangle_profile(graph, scratch);
    const size_t n = as_size(graph.node_count);
    print_counts(out, scratch.lone_ties.data(), n);
    print_moments(out, profile.et0);
    for (size_t v = 0; v < n; ++v) {
        std::fprintf(out, "%lld\t", static_cast<long long>(scratch.lone_products[v]));
    }
    print_moments(out, profile.etnt);
    for (size_t v = 0; v < n; ++v) std::fprintf(out, "%f\t", scratch.node_values[v]);
    print_moments(out, profile.etnt_ratio);
    std::fprintf(out, "\n");
}

void write_quartile_header(FILE* out) { std::fprintf(out, "G25\tG50\tG75\n"); }

void write_quartile_row(FILE* out, const GeodesicQuartiles& quartiles) {
    std::fprintf(out, "%d\t%d\t%d\n", quartiles.g25, quartiles.g50, quartiles.g75);
}

#define VEXA_DESCRIPTIVE_FILES(G)                                              \
    template void write_degree_header(FILE*, const G&);                        \
    template void write_degree_row(FILE*, const G&);                           \
    template void write_geodesic_header(FILE*, const G&);                      \
    template void write_geodesic_row(FILE*, const G&, const DescribeScratch&); \
    template void write_cluster_giant_row(FILE*, const G&, DescribeScratch&);  \
    template void write_triangle_header(FILE*, const G&);                      \
    template void write_triangle_row(FILE*, const G&);                         \
    template void write_two_path_header(FILE*, const G&);                      \
    template void write_two_path_row(FILE*, const G&);                         \
    template void write_edge_triangle_header(FILE*, const G&);                 \
    template void write_edge_triangle_row(FILE*, const G&, DescribeScratch&);
VEXA_DESCRIPTIVE_FILES(Graph)
VEXA_DESCRIPTIVE_FILES(SparseGraph)
#undef VEXA_DESCRIPTIVE_FILES

}  // namespace vexa
