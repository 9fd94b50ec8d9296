#pragma once
// What tasks on directed networks do their own way: reading and drawing a digraph, the
// t-ratios and the "gof!" line on standard output, the descriptive measures of goodness of fit
// with the triad census, and the per-sample files.

#include <memory>
#include <string>
#include <vector>

#include "base/text_file.h"
#include "describe/digraph_describe.h"
#include "describe/triad_census.h"
#include "entry/run_context.h"
#include "estimation/estimation.h"
#include "network/digraph.h"
#include "network/sparse_digraph.h"
#include "simulation/goodness_of_fit.h"

namespace vexa {

template <class Store>
struct KindTraits;

// The same for both digraph stores, D = Digraph (dense) or SparseDigraph.
template <class D>
struct DigraphTraits {
    using Scratch = DigraphScratch;

    static D read(const std::string& path, int n, MatrixNotes* notes);
    // The random start of a simulation: trunc(n(n-1) x density) arcs.
    static D random_start(RunContext& context);

    // A digraph's starting values are used as the run file gives them.
    static void adjust_start(const Model&, const D&, std::vector<double>&) {}
    // Each run's t-ratios also go to standard output.
    static void after_run(RunContext& context, const EstimationRun& run);
    static void before_gof_after_estimation(RunContext& context);

    // The spread and skew of the in- and out-degrees and their correlation, the clustering
    // coefficients, and the geodesic quartiles over ordered pairs.
    static const std::vector<std::string>& measure_names();
    static SampleMeasures measure(const D& digraph, DigraphScratch& scratch);

    struct SampleFiles {
        SampleFiles(const D& digraph, const RunSettings& settings, const OutputNames& names);
        void write_rows(const D& digraph, DigraphScratch& scratch, const SampleMeasures* measured);
        void close();

        std::unique_ptr<OutFile> degree, geodesic, cluster;
    };

    // Goodness of fit of a digraph keeps an acceptance file and writes no end statistics.
    static constexpr bool gof_writes_accept = true;
    static constexpr bool gof_writes_end_statistics = false;
    // The triad census of the observed digraph beside those of the samples.
    struct GofExtras {
        explicit GofExtras(const D& observed) : observed_census(triad_census(observed)) {}
        void record(const D& digraph) { sample.push_back(triad_census(digraph)); }
        void write(FILE* out) const;

        TriadCensus observed_census;
        std::vector<TriadCensus> sample;
    };

    static void write_sample_network(const D& digraph, double sample, const OutputNames& names,
                                     const std::string& network_name);
};

template <>
struct KindTraits<Digraph> : DigraphTraits<Digraph> {};
template <>
struct KindTraits<SparseDigraph> : DigraphTraits<SparseDigraph> {};

// Runs the task of the context's run file on a digraph.
void run_digraph_task(RunContext& context);

}  // namespace vexa
