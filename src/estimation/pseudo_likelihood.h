#pragma once
// The maximum pseudo-likelihood estimate (MPLE) of a model, written once for every store type:
// the logistic regression of each dyad's tie indicator on its change statistics, the change
// of the statistics when the dyad's tie is added with the rest of the network as observed.
// For a model whose ties are independent (edges, attribute effects of dyads) it is the maximum
// likelihood estimate itself (exact_likelihood.h says when); for any other it is a cheap
// starting point for the stochastic approximation.
//
// Small networks enter dyad by dyad. Large ones enter through a sample stratified by outcome:
// ties and non-ties drawn separately, each case weighted by the inverse of its stratum's
// sampling fraction, so that the weighted regression estimates the full one. A uniform sample
// of dyads would hold few ties on a sparse network, and the ties carry most of the information.

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <utility>
#include <vector>

#include "effects/combiner.h"
#include "effects/term.h"
#include "estimation/logistic.h"
#include "network/dyad_mask.h"
#include "network/missing_dyads.h"
#include "network/network_kind.h"
#include "numeric/rng.h"

namespace vexa {

struct PseudoLikelihood {
    bool finite = false;            // a finite, unique maximum was found: a usable start
    std::vector<double> estimates;  // by slot; zeros when not finite
    int64_t dyads_used = 0;         // cases of the regression (a dyad drawn twice counts twice)
    int64_t ties_used = 0;          // of which ties
    bool sampled = false;           // the dyads were sampled rather than all visited
    int32_t iterations = 0;         // Newton steps taken
    bool exact = false;             // the maximum likelihood estimate itself (exact_likelihood.h)
};

// Up to `exact_dyads` allowed dyads every dyad enters: 250,000 is a graph of about 700 nodes
// or a digraph of 500, 2 MB of regression rows per statistic, and change statistics (O(n) a
// dyad for the alternating effects) that take a fraction of a second. Beyond it the sample
// takes up to `tie_sample` ties and `non_tie_sample` non-ties, weighted back to the full
// counts. A sampled coefficient then differs from the full regression's by about
// sqrt(1/ties + 1/non-ties) times the inflation of its collinearity with the other
// regressors: with 25,000 of each, 0.009 for a lone regressor and about 0.03 for edge beside
// 2-star (whose inflation is near 4), well inside the distance the estimation moves a start
// in its first steps. Fewer would let the start wander between runs; more would cost the
// change statistics of an exact case without making the start any more useful.
struct PseudoLikelihoodSizes {
    int64_t exact_dyads = 250000;
    int64_t tie_sample = 25000;
    int64_t non_tie_sample = 25000;
};

namespace pseudo_likelihood_detail {

// The dyads of the network, once each: i < j for a graph, every i != j for a digraph.
template <class Store>
double dyad_count(const Store& network) {
    const double n = network.node_count;
    return Store::kind == NetworkKind::graph ? n * (n - 1.0) / 2.0 : n * (n - 1.0);
}

// Calls fn(i, j) for every dyad the mask allows (every dyad without one), reading the mask a
// word at a time so that a sparse mask over many nodes costs n^2 / 64.
template <class Store, class Fn>
void for_each_allowed_dyad(const Store& network, const DyadMask* mask, Fn&& fn) {
    const int n = network.node_count;
    for (int i = 0; i < n; ++i) {
        const int first = Store::kind == NetworkKind::graph ? i + 1 : 0;
        if (mask == nullptr) {
            for (int j = first; j < n; ++j) {
                if (j != i) fn(i, j);
            }
            continue;
        }
        const uint64_t* row = mask->row(i);
        for (int w = first >> 6; w < mask->row_words; ++w) {
            for (uint64_t bits = row[w]; bits != 0; bits &= bits - 1) {
                const int j = w * 64 + std::countr_zero(bits);
                if (j >= first && j != i && j < n) fn(i, j);
            }
        }
    }
}

// Appends the case of dyad (i, j): its change statistics, taken as the sampler takes them
// (a present tie is lifted from the adjacency while its change is read, and put back), and
// whether it holds a tie. The rows were reserved, so nothing is allocated. False when a
// change is not finite.
template <class Store>
bool add_case(Store& network, const std::vector<Term<Store>>& terms, Workspace& workspace,
              const std::vector<double>& zeros, LogisticCases& cases, int i, int j) {
    const bool present = has_tie(network, i, j);
    const size_t at = cases.x.size();
    cases.x.resize(at + static_cast<size_t>(cases.columns), 0.0);
    double* row = cases.x.data() + at;
    if (present) remove_tie(network, i, j);
    change_statistics(network, terms, workspace, zeros.data(), row, i, j, present ? 0 : 1);
    if (present) add_tie(network, i, j);
    cases.y.push_back(present ? 1 : 0);
    for (int32_t k = 0; k < cases.columns; ++k) {
        if (!std::isfinite(row[k])) return false;
    }
    return true;
}

// A uniform sample of up to `wanted` of the ties the mask allows, without replacement (a
// reservoir, so the tie list is never copied whole); `allowed_ties` counts them all.
template <class Store>
std::vector<std::pair<int, int>> sample_ties(const Store& network, const DyadMask* mask,
                                             int64_t wanted, Rng& rng, int64_t& allowed_ties) {
    std::vector<std::pair<int, int>> sample;
    sample.reserve(static_cast<size_t>(std::min<int64_t>(wanted, tie_count(network))));
    allowed_ties = 0;
    for_each_tie(network, [&](int i, int j) {
        if (mask != nullptr && !mask->allows(i, j)) return;
        const int64_t seen = allowed_ties++;
        if (seen < wanted) {
            sample.emplace_back(i, j);
        } else {
            const int64_t slot = rng.uniform(seen + 1);
            if (slot < wanted) sample[static_cast<size_t>(slot)] = {i, j};
        }
    });
    return sample;
}

// Up to `wanted` allowed non-ties drawn uniformly with replacement: random dyads, those that
// are ties or not allowed drawn again. The tries are bounded at four times the expected number
// (and 10^8 at most, a few seconds), so a network that is nearly complete within its mask may
// yield fewer.
template <class Store>
std::vector<std::pair<int, int>> sample_non_ties(const Store& network, const DyadMask* mask,
                                                 const MissingDyads* missing, int64_t wanted,
                                                 double non_ties, Rng& rng) {
    std::vector<std::pair<int, int>> sample;
    if (wanted <= 0 || non_ties <= 0.0) return sample;
    sample.reserve(static_cast<size_t>(wanted));
    const double expected = static_cast<double>(wanted) * dyad_count(network) / non_ties;
    const auto tries = static_cast<int64_t>(std::min(4.0 * expected + 1000.0, 1e8));
    const int64_t n = network.node_count;
    for (int64_t t = 0; t < tries && static_cast<int64_t>(sample.size()) < wanted; ++t) {
        int i = static_cast<int>(rng.uniform(n));
        int j = static_cast<int>(rng.uniform(n));
        if (i == j) continue;
        if (Store::kind == NetworkKind::graph && i > j) std::swap(i, j);
        if (mask != nullptr && !mask->allows(i, j)) continue;
        if (has_tie(network, i, j)) continue;
        if (missing != nullptr && missing->contains(i, j)) continue;
        sample.emplace_back(i, j);
    }
    return sample;
}

}  // namespace pseudo_likelihood_detail

// The MPLE of the terms' `count` statistics on `network`, over the dyads the mask allows (all
// when it is null) that were observed (not among `missing`, whose change statistics read the
// missing ties as absent). The store is changed while a present tie's change statistics are read
// and left holding the same ties on return (a neighbour list may list them in another order), as a
// sampler's refused step leaves it; pass a copy when that order matters. `rng` draws the sample
// of a large network and is untouched otherwise. Never throws on data without a finite
// maximum: `finite` is false then, and the caller should start elsewhere.
template <class Store>
PseudoLikelihood pseudo_likelihood(Store& network, const std::vector<Term<Store>>& terms,
                                   int32_t count, const DyadMask* mask, Rng& rng,
                                   const PseudoLikelihoodSizes& sizes = {},
                                   const MissingDyads* missing = nullptr) {
    namespace detail = pseudo_likelihood_detail;
    PseudoLikelihood result;
    result.estimates.assign(static_cast<size_t>(count), 0.0);
    const double unobserved = missing != nullptr ? static_cast<double>(missing->count()) : 0.0;
    const double allowed =
        (mask != nullptr ? static_cast<double>(mask->allowed_count) : detail::dyad_count(network)) -
        unobserved;
    LogisticCases cases;
    cases.columns = count;
    Workspace workspace;
    prepare_workspace(workspace, terms);
    const std::vector<double> zeros(static_cast<size_t>(count), 0.0);
    bool usable = true;
    const auto add = [&](int i, int j) {
        if (missing != nullptr && !missing->empty() && missing->contains(i, j)) return;
        usable = detail::add_case(network, terms, workspace, zeros, cases, i, j) && usable;
    };
    if (allowed <= static_cast<double>(sizes.exact_dyads)) {
        const auto dyads = static_cast<size_t>(allowed);
        cases.x.reserve(dyads * static_cast<size_t>(count));
        cases.y.reserve(dyads);
        detail::for_each_allowed_dyad(network, mask, add);
    } else {
        result.sampled = true;
        int64_t allowed_ties = 0;
        const std::vector<std::pair<int, int>> ties =
            detail::sample_ties(network, mask, sizes.tie_sample, rng, allowed_ties);
        const double non_ties = allowed - static_cast<double>(allowed_ties);
        const std::vector<std::pair<int, int>> others =
            detail::sample_non_ties(network, mask, missing, sizes.non_tie_sample, non_ties, rng);
        // Non-ties exist but none was found: the sample would misstate the network.
        if (non_ties > 0.0 && others.empty()) usable = false;
        const size_t total = ties.size() + others.size();
        cases.x.reserve(total * static_cast<size_t>(count));
        cases.y.reserve(total);
        for (const auto& [i, j] : ties) add(i, j);
        for (const auto& [i, j] : others) add(i, j);
        if (!ties.empty())
            cases.tie_weight = static_cast<double>(allowed_ties) / static_cast<double>(ties.size());
        if (!others.empty()) cases.non_tie_weight = non_ties / static_cast<double>(others.size());
    }
    result.dyads_used = cases.size();
    for (const uint8_t y : cases.y) result.ties_used += y;
    if (!usable) return result;
    const LogisticFit fit = fit_logistic(cases);
    result.iterations = fit.iterations;
    if (!fit.finite) return result;
    result.finite = true;
    result.estimates = fit.coefficients;
    return result;
}

}  // namespace vexa
