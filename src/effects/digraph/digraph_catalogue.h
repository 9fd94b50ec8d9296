#pragma once
// The catalogue of digraph structural effects: one row per effect in report order, with every
// label the engine prints for it, its lambda default, the variant its family's function
// switches on, and its total and change functions. The run file lists the effects in an order
// of its own, written beside the table.
//
// To add an effect: write its family's change and total functions (digraph_effects.h lists
// the families) or give an existing family a new variant, then put its enumerator below where
// it should stand and its row at the same place in the table of digraph_catalogue.cpp, and
// its name in the run-file order there if the run file lists it. The enumerator is the row's
// name; the compiler rejects a table that does not follow the enum, labels that clash, and a
// run-file order that misses a row with a run-file name or lists one twice.

#include <cstdint>

#include "effects/catalogue.h"

namespace vexa {

struct Digraph;
struct SparseDigraph;

enum class DigraphEffect : int32_t {
    arc,
    reciprocity,
    in_star2,
    out_star2,
    in_star3,
    out_star3,
    in_star4,
    out_star4,
    mixed_star2,
    t1,
    t2,
    t3,
    t4,
    t5,
    t6,
    t7,
    t8,
    t9,
    t10,
    sink,
    source,
    isolates,
    ain_s,
    aout_s,
    ain_s2,
    aout_s2,
    ain1out_s,
    one_in_aout_s,
    ain_aout_s,
    at_t,
    at_c,
    at_d,
    at_u,
    at_td,
    at_tu,
    at_du,
    at_tdu,
    a2p_t,
    a2p_d,
    a2p_u,
    a2p_td,
    a2p_tu,
    a2p_du,
    a2p_tdu,
    count  // not an effect: the number of rows
};

// Variants of the two-path families: each combined effect sums the kinds whose bits it holds.
// AT-C is the transitive count taken over reversed arcs; it has a bit of its own.
inline constexpr int16_t two_path_t = 1;  // i->x->j
inline constexpr int16_t two_path_c = 2;  // the cycle closed by j->i over i->x->j
inline constexpr int16_t two_path_d = 4;  // x->i and x->j: common senders
inline constexpr int16_t two_path_u = 8;  // i->x and j->x: common receivers

template <>
std::span<const EffectRow<Digraph>> structural_rows<Digraph>();
template <>
std::span<const EffectRow<SparseDigraph>> structural_rows<SparseDigraph>();

// A term of one row as a run builds it (see structural_term).
inline Term<Digraph> digraph_term(DigraphEffect effect, int32_t slot, float lambda = 0.0f) {
    return structural_term<Digraph>(static_cast<int>(effect), slot, lambda);
}

inline const EffectDescription& digraph_about(DigraphEffect effect) {
    return structural_catalogue(NetworkKind::digraph).rows[static_cast<size_t>(effect)];
}

}  // namespace vexa
