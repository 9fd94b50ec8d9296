#pragma once
// Whether a chain could ever find a proposal, checked once before it runs, so that an
// impossible setting ends the run with a clear line instead of a chain that never moves.

#include <bit>

#include "base/errors.h"
#include "sampler/chain.h"

namespace vexa {

// Throws SettingError when the chain could never find a proposal: fewer than two nodes, a
// mask that allows no dyad, or a count-preserving move whose allowed dyads are all ties or
// all non-ties. Call once before running steps.
template <class Store>
void check_proposals_possible(const Store& store, const SamplerSettings& settings) {
    const int n = store.node_count;
    if (n < 2) {
        throw SettingError(format_message("vexa: a network of %d node has no dyad to sample", n));
    }
    const DyadMask* mask = settings.mask;
    if (mask != nullptr && mask->allowed_count == 0) {
        throw SettingError("vexa: the constraint network has no ties, so no dyad may change");
    }
    constexpr bool directed = Store::kind != NetworkKind::graph;
    if constexpr (directed) {
        if (settings.proposal == Proposal::receiver_move) {
            // A sender with two or more arcs and a receiver it could move one to; moves keep
            // every out-degree, so one check before the chain suffices.
            for (int s = 0; s < n; ++s) {
                if (store.out_degree(s) < 2) continue;
                bool tied = false, free = false;
                for (int r = 0; r < n && !(tied && free); ++r) {
                    if (r == s || (mask != nullptr && !mask->allows(s, r))) continue;
                    (has_tie(store, s, r) ? tied : free) = true;
                }
                if (tied && free) return;
            }
            throw SettingError(
                "vexa: the out-degree-preserving sampler cannot move an arc: no node sends two or "
                "more arcs and has a receiver it could move one to");
        }
    }
    if (settings.proposal != Proposal::swap) return;
    // The count-preserving move needs an allowed tie and an allowed non-tie; moves within
    // the allowed dyads keep both numbers, so one check before the chain suffices.
    long long allowed_ties = 0;
    long long allowed_dyads = 0;
    if (mask != nullptr) {
        allowed_dyads = mask->allowed_count;
        for (int a = 0; a < n; ++a) {
            const uint64_t* row = mask->row(a);
            for (int w = 0; w < mask->row_words; ++w) {
                for (uint64_t bits = row[w]; bits != 0; bits &= bits - 1) {
                    const int b = w * 64 + std::countr_zero(bits);
                    if ((directed || b > a) && has_tie(store, a, b)) ++allowed_ties;
                }
            }
        }
    } else {
        allowed_dyads = static_cast<long long>(n) * (n - 1) / (directed ? 1 : 2);
        allowed_ties = tie_count(store);
    }
    if (tie_count(store) >= 2 && (allowed_ties == 0 || allowed_ties == allowed_dyads)) {
        throw SettingError(
            "vexa: the edge-preserving sampler cannot move a tie: every dyad it may change is "
            "already a tie, or none is");
    }
}

}  // namespace vexa
