#pragma once
// What tasks on undirected networks do their own way: reading and drawing a graph, the start
// value of the edge effect, the descriptive measures of goodness of fit and the per-sample
// files.

#include <memory>
#include <string>
#include <vector>

#include "base/text_file.h"
#include "describe/graph_describe.h"
#include "effects/graph/graph_catalogue.h"
#include "entry/run_context.h"
#include "estimation/estimation.h"
#include "network/graph.h"
#include "network/sparse_graph.h"
#include "simulation/goodness_of_fit.h"

namespace vexa {

template <class Store>
struct KindTraits;

// The same for both graph stores, G = Graph (dense) or SparseGraph.
template <class G>
struct GraphTraits {
    using Scratch = DescribeScratch;

    static G read(const std::string& path, int n, MatrixNotes* notes = nullptr);
    // The random start of a simulation: trunc(n(n-1) x density x 0.5) edges.
    static G random_start(RunContext& context);

    // An edge effect started at exactly 0 starts at the observed log-odds of a tie instead.
    static void adjust_start(const Model& model, const G& observed,
                             std::vector<double>& parameters);
    static void after_run(RunContext&, const EstimationRun&) {}
    static void before_gof_after_estimation(RunContext&) {}

    // The degree spread and skew, the global clustering and the mean and variance of the local
    // clustering, and the geodesic quartiles.
    static const std::vector<std::string>& measure_names();
    static SampleMeasures measure(const G& graph, DescribeScratch& scratch);

    // The per-sample descriptive files that the run's flags turn on, with their headers.
    struct SampleFiles {
        SampleFiles(const G& graph, const RunSettings& settings, const OutputNames& names);
        // One row per enabled file. `measured` says that the scratch holds the geodesics of
        // this network already (goodness of fit measured it).
        void write_rows(const G& graph, DescribeScratch& scratch, const SampleMeasures* measured);
        void close();

        std::unique_ptr<OutFile> degree, geodesic, quartiles, cluster, triangle, twopath, et0nt;
    };

    // Goodness of fit of a graph writes no acceptance file of its own, but its end statistics.
    static constexpr bool gof_writes_accept = false;
    static constexpr bool gof_writes_end_statistics = true;
    // What a graph's goodness of fit compares beyond the measures: nothing.
    struct GofExtras {
        explicit GofExtras(const G&) {}
        void record(const G&) {}
        void write(FILE*) const {}
    };

    // The sample's matrix file and its Pajek block.
    static void write_sample_network(const G& graph, double sample, const OutputNames& names,
                                     const std::string& network_name);
};

template <>
struct KindTraits<Graph> : GraphTraits<Graph> {};
template <>
struct KindTraits<SparseGraph> : GraphTraits<SparseGraph> {};

// Whether a run on a network of this size takes the sparse store (see StoreChoice).
bool sparse_store_chosen(StoreChoice choice, int node_count, NetworkKind kind = NetworkKind::graph);

// Runs the task of the context's run file on a graph.
void run_graph_task(RunContext& context);

}  // namespace vexa
