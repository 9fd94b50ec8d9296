#pragma once
// The maximum likelihood estimate itself, for the models where it can be had without a chain:
// those whose effects read nothing of the network beyond the dyad they change. Their
// likelihood is a product over the dyads.
// - When every effect reads nothing beyond its own tie, the ties are independent and the
//   likelihood is the logistic regression of the ties on their change statistics: the
//   pseudo-likelihood, taken over every dyad.
// - When some effect reads the reverse tie (reciprocity and its attribute forms), each dyad of
//   a digraph is one draw among its four states (none, i->j, j->i, both), and the likelihood
//   is a conditional logit over them. The pseudo-likelihood then differs from it in general
//   (it conditions each tie on the observed reverse tie), though not for arc and reciprocity
//   alone, whose estimates both reduce to the dyad census.
// Either way the product holds only while the chain may visit every network: a proposal that
// keeps the number of ties or the out-degrees, a degree cap or a constraint network on a
// digraph's dyads change the sample space, and a sample of dyads would make it approximate.

#include <algorithm>
#include <cstdint>
#include <vector>

#include "effects/combiner.h"
#include "effects/term.h"
#include "estimation/logistic.h"
#include "estimation/pseudo_likelihood.h"
#include "network/dyad_mask.h"
#include "network/network_kind.h"
#include "numeric/rng.h"
#include "sampler/chain.h"

namespace vexa {

// The farthest any of the terms reads.
template <class Store>
TieReads model_reads(const std::vector<Term<Store>>& terms) {
    TieReads reads = TieReads::nothing;
    for (const Term<Store>& term : terms) reads = std::max(reads, term.reads);
    return reads;
}

// Whether a chain under these settings may reach every network on `n` nodes (within the
// mask's dyads): the single-dyad proposals and no degree cap that could bind.
inline bool samples_every_network(const SamplerSettings& sampler, int n) {
    const bool free_proposal = sampler.proposal == Proposal::toggle || lists_ties(sampler.proposal);
    return free_proposal && sampler.max_degree >= n - 1 && sampler.max_in_degree >= n - 1;
}

// The likelihood of a digraph model whose effects read at most the reverse tie, maximised
// over the dyads' four states. The store is changed while the states are read and holds the
// same arcs on return.
template <class Store>
PseudoLikelihood dyad_likelihood(Store& network, const std::vector<Term<Store>>& terms,
                                 int32_t count) {
    PseudoLikelihood result;
    result.estimates.assign(static_cast<size_t>(count), 0.0);
    const int n = network.node_count;
    const auto p = static_cast<size_t>(count);
    ChoiceCases cases;
    cases.columns = count;
    cases.alternatives = 4;
    const size_t dyads = static_cast<size_t>(n) * static_cast<size_t>(std::max(n - 1, 0)) / 2;
    cases.x.reserve(dyads * 4 * p);
    cases.chosen.reserve(dyads);
    Workspace workspace;
    prepare_workspace(workspace, terms);
    const std::vector<double> zeros(p, 0.0);
    for (int i = 0; i < n; ++i) {
        for (int j = i + 1; j < n; ++j) {
            const bool forward = has_tie(network, i, j), backward = has_tie(network, j, i);
            if (forward) remove_tie(network, i, j);
            if (backward) remove_tie(network, j, i);
            const size_t at = cases.x.size();
            cases.x.resize(at + 4 * p, 0.0);  // state 0, no arc, has all statistics at zero
            double* state = cases.x.data() + at;
            change_statistics(network, terms, workspace, zeros.data(), state + p, i, j, 1);
            change_statistics(network, terms, workspace, zeros.data(), state + 2 * p, j, i, 1);
            add_tie(network, i, j);
            change_statistics(network, terms, workspace, zeros.data(), state + 3 * p, j, i, 1);
            remove_tie(network, i, j);
            for (size_t k = 0; k < p; ++k) state[3 * p + k] += state[p + k];
            if (forward) add_tie(network, i, j);
            if (backward) add_tie(network, j, i);
            cases.chosen.push_back(static_cast<uint8_t>((forward ? 1 : 0) + (backward ? 2 : 0)));
        }
    }
    // A change that is not finite leaves its column's scale so, and the fit refuses it.
    result.dyads_used = cases.size();
    const LogisticFit fit = fit_choices(cases);
    result.iterations = fit.iterations;
    if (!fit.finite) return result;
    result.finite = true;
    result.exact = true;
    result.estimates = fit.coefficients;
    return result;
}

// The estimate the automatic mode starts from: the maximum likelihood estimate itself where the
// model's likelihood factors over the dyads and the whole network can be visited (`exact` then
// holds), else the maximum pseudo-likelihood estimate.
template <class Store>
PseudoLikelihood starting_estimate(Store& network, const std::vector<Term<Store>>& terms,
                                   int32_t count, const SamplerSettings& sampler, Rng& rng,
                                   const PseudoLikelihoodSizes& sizes = {}) {
    const TieReads reads = model_reads(terms);
    const bool whole = samples_every_network(sampler, network.node_count);
    if (reads == TieReads::reverse && Store::kind == NetworkKind::digraph && whole &&
        sampler.mask == nullptr && (sampler.missing == nullptr || sampler.missing->empty()) &&
        pseudo_likelihood_detail::dyad_count(network) <= static_cast<double>(sizes.exact_dyads)) {
        PseudoLikelihood fit = dyad_likelihood(network, terms, count);
        if (fit.finite) return fit;
    }
    // Without the missing dyads, the likelihood of independent ties is the logistic regression
    // over the observed ones: the estimate stays exact when the missing ties are missing at
    // random.
    PseudoLikelihood fit =
        pseudo_likelihood(network, terms, count, sampler.mask, rng, sizes, sampler.missing);
    fit.exact = fit.finite && !fit.sampled && whole && reads == TieReads::nothing;
    return fit;
}

}  // namespace vexa
