#include "report/digraph_files.h"

#include "base/errors.h"
#include "base/text_file.h"
#include "describe/graph_describe.h"
#include "simulation/goodness_of_fit.h"

namespace vexa {

namespace {

void print_degrees(FILE* out, const std::vector<int32_t>& degrees, const Moments& m) {
    for (const int32_t d : degrees) print(out, "%d\t", d);
    print(out, "%f\t%f\t%f\t", m.mean, m.stddev, m.skew);
}

}  // namespace

template <class D>
void write_in_out_degree_header(FILE* out, const D& digraph) {
    for (int v = 1; v <= digraph.node_count; ++v) print(out, "ind%d\t", v);
    print(out, "mean\tstddev\tskew\t");
    for (int v = 1; v <= digraph.node_count; ++v) print(out, "outd%d\t", v);
    print(out, "mean\tstddev\tskew\n");
}

template <class D>
void write_in_out_degree_row(FILE* out, const D& digraph) {
    print_degrees(out, digraph.in_degree_values, in_degree_moments(digraph));
    print_degrees(out, digraph.out_degree_values, out_degree_moments(digraph));
    print(out, "\n");
}

template <class D>
void write_directed_geodesic_header(FILE* out, const D& digraph) {
    const int sources = geodesic_sources(digraph.node_count);
    if (sources != digraph.node_count) {
        print(out,
              "# geodesics by breadth-first search from a sample of %d of the %d nodes, scaled "
              "to all pairs\n",
              sources, digraph.node_count);
    }
    for (int d = 1; d < digraph.node_count; ++d) print(out, "geo%d\t", d);
    print(out, "geoInf\n");
}

template <class D>
void write_directed_geodesic_row(FILE* out, const D& digraph, const DigraphScratch& scratch) {
    const int n = digraph.node_count;
    const std::vector<int64_t>& counts = scratch.geodesic_counts;
    if (counts.size() != static_cast<size_t>(n) + 1) {
        throw VexaError(
            "vexa: a geodesic row was asked for before the geodesic pass of its network");
    }
    for (int d = 1; d < n; ++d)
        print(out, "%lld\t", static_cast<long long>(counts[static_cast<size_t>(d)]));
    print(out, "%lld\n", static_cast<long long>(counts[static_cast<size_t>(n)]));
}

#define VEXA_DIGRAPH_FILES(D)                                      \
    template void write_in_out_degree_header(FILE*, const D&);     \
    template void write_in_out_degree_row(FILE*, const D&);        \
    template void write_directed_geodesic_header(FILE*, const D&); \
    template void write_directed_geodesic_row(FILE*, const D&, const DigraphScratch&);
VEXA_DIGRAPH_FILES(Digraph)
VEXA_DIGRAPH_FILES(SparseDigraph)
#undef VEXA_DIGRAPH_FILES

void write_digraph_clustering_header(FILE* out) {
    print(out, "%s", "cto\tcti\tctm\tccm\takct\akcd\takcu\takcc\n");
}

void write_digraph_clustering_row(FILE* out, const DigraphClustering& c) {
    print(out, "%f\t%f\t%f\t%f\t%f\t%f\t%f\t%f\n", c.cto, c.cti, c.ctm, c.ccm, c.akc_t, c.akc_d,
          c.akc_u, c.akc_c);
}

void write_triad_census_block(FILE* out, const TriadCensus& observed,
                              const std::vector<TriadCensus>& sample) {
    print(out, "\nGOF on Triad Census\nTriad\tobserved\tmean\tstddev\tt-ratio\n");
    if (!observed.exact) {
        print(out, "not counted: a digraph of %d nodes passes the range of the census's products\n",
              observed.node_count);
        return;
    }
    std::vector<double> values(sample.size());
    for (int k = 0; k < triad_class_count; ++k) {
        for (size_t s = 0; s < sample.size(); ++s)
            values[s] = sample[s].counts[static_cast<size_t>(k)];
        const Comparison c = compare(observed.counts[static_cast<size_t>(k)], values);
        print(out, "%s\t%.0f\t%.3f\t%.3f\t%s\n", triad_class_names[static_cast<size_t>(k)],
              c.observed, c.mean, c.stddev, fixed_text(c.t, 3).c_str());
    }
}

}  // namespace vexa
