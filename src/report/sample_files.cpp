#include "report/sample_files.h"

#include <cstdio>

#include "report/descriptive_files.h"
#include "report/digraph_files.h"
#include "report/network_file.h"
#include "report/pajek.h"

namespace vexa {

namespace {

std::unique_ptr<OutFile> open_file(const std::string& path) {
    return std::make_unique<OutFile>(path, OpenMode::truncate);
}

template <class G>
void open_graph_files(SampleFiles<G>& f, const G& graph) {
    const SampleOutputs& o = f.outputs;
    if (o.degree_distribution) {
        f.degree = open_file(f.names.degree_distribution);
        write_degree_header(*f.degree, graph);
    }
    if (o.geodesic) {
        f.geodesic = open_file(f.names.geodesic_distribution);
        write_geodesic_header(*f.geodesic, graph);
        f.quartiles = open_file(f.names.geodesic_quartiles);
        write_quartile_header(*f.quartiles);
    }
    if (o.cluster_giant) {
        f.cluster = open_file(f.names.cluster_giant);
        write_cluster_giant_header(*f.cluster);
    }
    if (o.triangle_distribution) {
        f.triangle = open_file(f.names.triangle_distribution);
        write_triangle_header(*f.triangle, graph);
    }
    if (o.twopath_distribution) {
        f.twopath = open_file(f.names.twopath_distribution);
        write_two_path_header(*f.twopath, graph);
    }
    if (o.et0nt_distribution) {
        f.et0nt = open_file(f.names.et0nt_distribution);
        write_edge_triangle_header(*f.et0nt, graph);
    }
}

template <class D>
void open_digraph_files(SampleFiles<D>& f, const D& digraph) {
    const SampleOutputs& o = f.outputs;
    if (o.degree_distribution) {
        f.degree = open_file(f.names.degree_distribution);
        write_in_out_degree_header(*f.degree, digraph);
    }
    if (o.geodesic) {
        f.geodesic = open_file(f.names.geodesic_distribution);
        write_directed_geodesic_header(*f.geodesic, digraph);
    }
    if (o.cluster_giant) {
        f.cluster = open_file(f.names.cluster_giant);
        write_digraph_clustering_header(*f.cluster);
    }
}

template <class G>
void write_graph_rows(SampleFiles<G>& f, const G& graph, DescribeScratch* measured) {
    DescribeScratch& scratch = measured != nullptr ? *measured : f.scratch;
    if (measured == nullptr && (f.geodesic != nullptr || f.cluster != nullptr))
        geodesics(graph, scratch);
    if (f.degree) write_degree_row(*f.degree, graph);
    if (f.geodesic) {
        write_geodesic_row(*f.geodesic, graph, scratch);
        write_quartile_row(*f.quartiles, geodesic_quartiles(scratch));
    }
    if (f.cluster) write_cluster_giant_row(*f.cluster, graph, scratch);
    if (f.triangle) write_triangle_row(*f.triangle, graph);
    if (f.twopath) write_two_path_row(*f.twopath, graph);
    if (f.et0nt) write_edge_triangle_row(*f.et0nt, graph, scratch);
}

template <class D>
void write_digraph_rows(SampleFiles<D>& f, const D& digraph, DigraphScratch* measured) {
    DigraphScratch& scratch = measured != nullptr ? *measured : f.scratch;
    if (f.degree) write_in_out_degree_row(*f.degree, digraph);
    if (f.geodesic) {
        if (measured == nullptr) directed_geodesics(digraph, scratch);
        write_directed_geodesic_row(*f.geodesic, digraph, scratch);
    }
    if (f.cluster) write_digraph_clustering_row(*f.cluster, digraph_clustering(digraph));
}

}  // namespace

template <class Store>
SampleFiles<Store>::SampleFiles(const Store& network, const SampleOutputs& chosen,
                                const OutputNames& file_names, const std::string& name)
    : outputs(chosen), names(file_names), network_name(name) {
    if constexpr (Store::kind == NetworkKind::graph) {
        open_graph_files(*this, network);
    } else {
        open_digraph_files(*this, network);
    }
}

template <class Store>
void SampleFiles<Store>::write(const Store& network, double number, ScratchOf<Store>* measured) {
    if constexpr (Store::kind == NetworkKind::graph) {
        write_graph_rows(*this, network, measured);
    } else {
        write_digraph_rows(*this, network, measured);
    }
    if (outputs.pajek) {
        write_network_file(sample_network_path(names.sample_statistics, number), network);
        char label[64];
        std::snprintf(label, sizeof label, "%.0f", number);
        write_pajek_block(network, network_name + "_" + label, names.pajek);
    }
}

template <class Store>
void SampleFiles<Store>::close() {
    for (auto* file : {&degree, &geodesic, &cluster, &quartiles, &triangle, &twopath, &et0nt}) {
        if (*file) (*file)->close();
    }
}

template struct SampleFiles<Graph>;
template struct SampleFiles<SparseGraph>;
template struct SampleFiles<Digraph>;
template struct SampleFiles<SparseDigraph>;

}  // namespace vexa
