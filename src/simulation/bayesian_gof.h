#pragma once
// Goodness of fit with the parameters' uncertainty carried along (a posterior predictive
// check): one network per parameter set, each the end of a chain that starts at the observed
// network and runs the burn-in under that set. The sets come from a file, one vector per line:
// draws from a posterior, or from the normal distribution around an estimate.

#include <cstdint>
#include <string>
#include <vector>

#include "network/network_kind.h"
#include "numeric/moments.h"
#include "sampler/steps.h"

namespace vexa {

// The first `wanted` parameter vectors of a file of vectors of length p, one per line, values
// separated by tabs or blanks; blank lines are skipped. Reading stops after `wanted` vectors, so
// `sets.size() < wanted` means the file holds fewer. Throws InputFileError naming the file and
// line for a line with fewer or more than p values or a value that is not a finite number, and
// for a file that holds no vector at all.
struct ParameterSets {
    std::vector<std::vector<double>> sets;
};
ParameterSets read_parameter_sets(const std::string& path, int p, int wanted);

// Per parameter, its mean and standard deviation over the sets.
std::vector<Moments> summarise_sets(const std::vector<std::vector<double>>& sets, int p);

// Two-sided posterior predictive p-value: 2 x min(share of the sample >= observed, share <=
// observed), at most 1. An empty sample gives 1.
double posterior_predictive_p(double observed, const std::vector<double>& sample);

// Where a draw ended: at no tie, at every tie, or in between.
enum class Bound { none, empty, complete };

template <class Store>
Bound bound_of(const Store& store) {
    const double n = store.node_count;
    const double dyads = Store::kind == NetworkKind::graph ? n * (n - 1.0) / 2.0 : n * (n - 1.0);
    const auto ties = static_cast<double>(tie_count(store));
    if (ties == 0.0) return Bound::empty;
    if (ties == dyads) return Bound::complete;
    return Bound::none;
}

// Runs one chain per parameter set on `chain`, whose store is reset to `observed` before each:
// a fresh seed, `burn_in` steps under the set, then on_draw(d, accepted) with the set's index d
// (from 0), the chain's statistics (the uncarried ones recounted) and its store at the draw's
// end. Returns the steps accepted over all sets.
template <class Store, class OnDraw>
double run_parameter_sets(Chain<Store>& chain, const Store& observed,
                          const std::vector<std::vector<double>>& sets, double burn_in,
                          SeedSource& seeds, OnDraw&& on_draw) {
    double accepted_total = 0.0;
    for (size_t d = 0; d < sets.size(); ++d) {
        *chain.store = observed;
        recount(chain);
        const double accepted = run_sampler(chain, sets[d].data(), burn_in, seeds);
        recount_uncarried(chain);
        on_draw(d, accepted);
        accepted_total += accepted;
    }
    return accepted_total;
}

}  // namespace vexa
