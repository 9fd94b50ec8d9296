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
#include "simulation/goodness_of_fit.h"

namespace vexa {

template <class Store>
struct KindTraits;

template <>
struct KindTraits<Digraph> {
    using Scratch = DigraphScratch;

    static Digraph read(const std::string& path, int n, MatrixNotes* notes) {
        return read_digraph(path, n, notes);
    }
    // The random start of a simulation: trunc(n(n-1) x density) arcs.
    static Digraph random_start(RunContext& context);

    // A digraph's starting values are used as the run file gives them.
    static void adjust_start(const Model&, const Digraph&, std::vector<double>&) {}
    // Each run's t-ratios also go to standard output.
    static void after_run(RunContext& context, const EstimationRun& run);
    static void before_gof_after_estimation(RunContext& context);

    // The spread and skew of the in- and out-degrees and their correlation, the clustering
    // coefficients, and the geodesic quartiles over ordered pairs.
    static const std::vector<std::string>& measure_names();
    static SampleMeasures measure(const Digraph& digraph, DigraphScratch& scratch);

    struct SampleFiles {
        SampleFiles(const Digraph& digraph, const RunSettings& settings, const OutputNames& names);
        void write_rows(const Digraph& digraph, DigraphScratch& scratch,
                        const SampleMeasures* measured);
        void close();

        std::unique_ptr<OutFile> degree, geodesic, cluster;
    };

    // Goodness of fit of a digraph keeps an acceptance file and writes no end statistics.
    static constexpr bool gof_writes_accept = true;
    static constexpr bool gof_writes_end_statistics = false;
    // The triad census of the observed digraph beside those of the samples.
    struct GofExtras {
        explicit GofExtras(const Digraph& observed) : observed_census(triad_census(observed)) {}
        void record(const Digraph& digraph) { sample.push_back(triad_census(digraph)); }
        void write(FILE* out) const;

        TriadCensus observed_census;
        std::vector<TriadCensus> sample;
    };

    static void write_sample_network(const Digraph& digraph, double sample,
                                     const OutputNames& names, const std::string& network_name);
};

// Runs the task of the context's run file on a digraph.
void run_digraph_task(RunContext& context);

}  // namespace vexa
