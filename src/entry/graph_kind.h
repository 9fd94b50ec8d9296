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
#include "simulation/goodness_of_fit.h"

namespace vexa {

template <class Store>
struct KindTraits;

template <>
struct KindTraits<Graph> {
    using Scratch = DescribeScratch;

    static Graph read(const std::string& path, int n, MatrixNotes* notes) {
        return read_graph(path, n, notes);
    }
    // The random start of a simulation: trunc(n(n-1) x density x 0.5) edges.
    static Graph random_start(RunContext& context);

    // An edge effect started at exactly 0 starts at the observed log-odds of a tie instead.
    static void adjust_start(const Model& model, const Graph& observed,
                             std::vector<double>& parameters);
    static void after_run(RunContext&, const EstimationRun&) {}
    static void before_gof_after_estimation(RunContext&) {}

    // The degree spread and skew, the global clustering and the mean and variance of the local
    // clustering, and the geodesic quartiles.
    static const std::vector<std::string>& measure_names();
    static SampleMeasures measure(const Graph& graph, DescribeScratch& scratch);

    // The per-sample descriptive files that the run's flags turn on, with their headers.
    struct SampleFiles {
        SampleFiles(const Graph& graph, const RunSettings& settings, const OutputNames& names);
        // One row per enabled file. `measured` says that the scratch holds the geodesics of
        // this network already (goodness of fit measured it).
        void write_rows(const Graph& graph, DescribeScratch& scratch,
                        const SampleMeasures* measured);
        void close();

        std::unique_ptr<OutFile> degree, geodesic, quartiles, cluster, triangle, twopath, et0nt;
    };

    // Goodness of fit of a graph writes no acceptance file of its own, but its end statistics.
    static constexpr bool gof_writes_accept = false;
    static constexpr bool gof_writes_end_statistics = true;
    // What a graph's goodness of fit compares beyond the measures: nothing.
    struct GofExtras {
        explicit GofExtras(const Graph&) {}
        void record(const Graph&) {}
        void write(FILE*) const {}
    };

    // The sample's matrix file and its Pajek block.
    static void write_sample_network(const Graph& graph, double sample, const OutputNames& names,
                                     const std::string& network_name);
};

// Runs the task of the context's run file on a graph.
void run_graph_task(RunContext& context);

}  // namespace vexa
