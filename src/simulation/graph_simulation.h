#pragma once
// Simulation and goodness of fit of graph models. A simulation runs the sampler for a number
// of proposals and records, every so many proposals, the model's statistics, optional
// descriptive statistics and optionally the network itself. A goodness-of-fit run samples the
// same way and sets the observed network beside the sample: t-ratios, clustering, geodesic
// quartiles and a Mahalanobis distance.

#include <cstdio>
#include <string>
#include <vector>

#include "effects/model.h"
#include "network/graph.h"
#include "numeric/rng.h"
#include "sampler/graph_sampler.h"

namespace vexa {

struct SimulationOptions {
    double proposals = 0.0;  // T: sampler steps after the burn-in
    double interval = 0.0;   // h: a sample every h proposals (the thinning interval)
    bool degree_distribution = false;
    bool geodesic = false;  // geodesic distribution and quartiles
    bool cluster_giant = false;
    bool triangle_distribution = false;
    bool twopath_distribution = false;
    bool et0nt_distribution = false;
    bool networks = false;  // each kept sample as a matrix file and a Pajek block
};

// Where the per-sample files go.
struct SimulationFiles {
    std::string report;           // "simulation": the simulation report; goodness of fit's sample table
    std::string parameter;        // the parameter values of a simulation
    std::string sample_prefix;    // sample statistics are prefix + ".txt", networks prefix + i + ".txt"
    std::string accept;
    std::string gof;
    std::string pajek;
    std::string degree_distribution;
    std::string geodesic_distribution;
    std::string geodesic_quartiles;
    std::string cluster_giant;
    std::string triangle_distribution;
    std::string twopath_distribution;
    std::string et0nt_distribution;
    std::string network_name;     // labels the Pajek blocks
};

// Simulates from `graph` (its statistics vector current) under fixed parameters.
void simulate_graph(Graph& graph, GraphSampler& sampler, const std::vector<double>& parameters,
                    const Model& model, const SimulationOptions& options,
                    const SimulationFiles& files, Rng& rng, SeedSource& seeds, FILE* console);

// Goodness of fit of the parameters to `observed`, sampling from `working` (a copy of the
// observed network, burnt in). Throws SettingError when the settings keep no sample.
void graph_goodness_of_fit(Graph& observed, Graph& working, GraphSampler& sampler,
                           const std::vector<double>& parameters, const Model& model,
                           const SimulationOptions& options, const SimulationFiles& files,
                           Rng& rng, SeedSource& seeds, FILE* console);

// Index of a sample quantile in N sorted values, floor(share x (N + 1)), kept inside the list.
int quantile_index(double share, int count);

}  // namespace vexa
