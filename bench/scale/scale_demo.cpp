// The scale demonstration: simulates a large graph under edge + AS + AT + A2P (lambda 2) on the
// sparse store, reports proposals per second, then estimates the same model on the simulated
// network in the same process (a matrix file of 100,000 nodes would hold 10^10 cells). Both
// chains use the tie/no-tie proposal unless VARIANT says otherwise: on a sparse network the
// plain toggle proposes additions that are refused nearly every time, so its simulation would
// barely leave the random start and the estimation would start from a network far from
// stationarity.
//
//   vexa_scale [NODES] [MEAN_DEGREE] [PROPOSALS] [SUBPHASES] [PHASE3_STEPS] [VARIANT] [FACTOR]
//              [START]
//
// START "observed" (the default) starts the estimation where a run file without starting values
// does: the edge parameter at the observed log-odds of a tie, the others at 0. START "simulated"
// starts it at the parameters the network was simulated from, as a user restarting from an
// earlier estimate would; on large networks edge and AS move almost together, and from the
// default start two short sub-phases do not untangle them.
//
// Run it under /usr/bin/time -v for the peak memory. One core; nothing is written to disk.
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <vector>

#include "effects/graph/graph_catalogue.h"
#include "entry/console.h"
#include "estimation/estimation.h"
#include "model/terms.h"
#include "network/sparse_graph.h"
#include "numeric/matrix.h"
#include "sampler/runs.h"

namespace {

using namespace vexa;
using Clock = std::chrono::steady_clock;

double seconds_since(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

// Processor time of this process: on a machine shared with other work, wall time alone
// undersells the engine.
double cpu_seconds() { return static_cast<double>(std::clock()) / CLOCKS_PER_SEC; }

void print_statistics(const char* what, const std::vector<double>& s, const SparseGraph& g) {
    std::printf("%s: edges %.0f, AS %.1f, AT %.1f, A2P %.1f; mean degree %.3f\n", what, s[0], s[1],
                s[2], s[3], 2.0 * g.edge_count / g.node_count);
}

}  // namespace

int main(int argc, char** argv) {
    std::setvbuf(stdout, nullptr, _IOLBF, 0);  // progress shows as it comes
    const int n = argc > 1 ? std::atoi(argv[1]) : 100000;
    const double mean_degree = argc > 2 ? std::atof(argv[2]) : 10.0;
    const double proposals = argc > 3 ? std::atof(argv[3]) : 50e6;
    EstimationSettings settings;
    settings.subphase_count = argc > 4 ? std::atoi(argv[4]) : 5;
    settings.phase3_steps = argc > 5 ? std::atoi(argv[5]) : 500;
    SamplerSettings sampler;
    sampler.proposal = proposal_of(argc > 6 ? std::atoi(argv[6]) : 3, NetworkKind::graph);
    settings.multiplication_factor = argc > 7 ? std::atoi(argv[7]) : 2;
    const bool start_simulated = argc > 8 && std::strcmp(argv[8], "simulated") == 0;

    Model model = empty_model(NetworkKind::graph);
    for (const GraphEffect effect :
         {GraphEffect::edge, GraphEffect::as, GraphEffect::at, GraphEffect::a2p}) {
        EffectSetting& setting = model.structural[static_cast<size_t>(effect)];
        setting.slot = model.structural_included++;
        setting.lambda = 2.0f;
    }
    const std::vector<Term<SparseGraph>> terms = make_terms<SparseGraph>(model);
    // About 0.1 in size for the structural terms, the edge term balancing their pull so that
    // the mean degree stays near the one asked for.
    const double d = mean_degree / (n - 1);
    const std::vector<double> theta{std::log(d / (1.0 - d)) + 1.6, 0.1, 0.1, -0.1};

    Rng rng;
    SeedSource seeds;
    seeds.fixed = true;
    seeds.base = 11;
    Clock::time_point start = Clock::now();
    SparseGraph g = random_sparse_graph(n, static_cast<int64_t>(n * mean_degree / 2.0), rng, seeds);
    std::printf("random start of %d nodes and %d edges: %.1f s\n", n, g.edge_count,
                seconds_since(start));

    Chain<SparseGraph> chain = make_chain(g, terms, 4, sampler, rng);
    print_statistics("start", chain.statistics, g);
    start = Clock::now();
    const double cpu_start = cpu_seconds();
    double accepted = 0.0;
    for (double k = 0.0; k < proposals; k += 1.0) accepted += step(chain, theta.data());
    const double took = seconds_since(start);
    const double cpu = cpu_seconds() - cpu_start;
    std::printf(
        "simulation: %.0f proposals in %.1f s (%.1f s of processor time), %.2f million per "
        "second of processor time (%.2f per second of wall time), %.0f accepted\n",
        proposals, took, cpu, proposals / cpu / 1e6, proposals / took / 1e6, accepted);
    print_statistics("end", chain.statistics, g);
    std::printf("pair table: %zu pairs with a shared partner, %zu slots\n",
                g.shared_partners.size(), g.shared_partners.capacity());
    std::fflush(stdout);

    // Estimation on the simulated network, from where a run file starts it (the edge parameter
    // at the observed log-odds of a tie, the others at 0) or from the simulation's parameters.
    const SparseGraph observed = g;
    SparseGraph working = observed;
    Chain<SparseGraph> estimation_chain = make_chain(working, terms, 4, sampler, rng);
    const double observed_density = density(observed);
    std::vector<double> parameters{std::log(observed_density / (1.0 - observed_density)), 0.0, 0.0,
                                   0.0};
    if (start_simulated) parameters = theta;
    Matrix D = make_matrix(4, 4, 0.0);
    start = Clock::now();
    const double estimation_cpu = cpu_seconds();
    Console console;
    console.text = console_progress(stdout);
    const EstimationRun run =
        estimate(estimation_chain, parameters, D, settings, seeds, console_observer(console));
    std::printf("estimation: %.1f s (%.1f s of processor time), %s\n", seconds_since(start),
                cpu_seconds() - estimation_cpu, run.degenerate ? "degenerate" : "finished");
    if (!run.degenerate) {
        for (size_t k = 0; k < 4; ++k) {
            std::printf("  theta %zu: simulated at %.4f, estimate %.4f (s.e. %.4f, t %.3f)\n", k,
                        theta[k], run.estimates[k], run.standard_errors[k], run.t_ratios[k]);
        }
    }
    return 0;
}
