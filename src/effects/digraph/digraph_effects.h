#pragma once
// The total and change functions of the digraph structural effects, one pair per family, as
// templates over the store type (instantiated for Digraph and SparseDigraph). The catalogue rows
// point at them; a family's function switches on the row's variant: the order of a k-star, the
// number of a triad configuration, in or out for the alternating stars, and the two-path kinds of
// the alternating triangles and two-paths (two_path_t, _c, _d, _u of digraph_catalogue.h).
//
// Change functions follow the convention of term.h: the increase of the statistic when arc
// i->j is added, evaluated with the arc absent from the adjacency, the degrees and the
// neighbour lists. With added = 0 (a removal) the two-path matrices still count the arc; the
// functions correct the entries it sits in. Notation in the comments: out_v, in_v, mut_v the
// out-, in- and mutual degrees, P(a,b) = two_paths, S(a,b) = common_senders, R(a,b) =
// common_receivers, w the term's capped weight table, q = 1 - 1/lambda.
//
// A function reads the store only through its accessors (has_arc, the degrees, the neighbour
// spans, the adjacency rows, the pair reads), so that another store type can serve it.

#include "effects/term.h"

namespace vexa {

#define VEXA_DIGRAPH_FAMILY(name)                                                            \
    template <class D>                                                                       \
    double change_##name(const D& d, const Term<D>& term, const Workspace& workspace, int i, \
                         int j, int added);                                                  \
    template <class D>                                                                       \
    double total_##name(const D& d, const Term<D>& term, const Workspace& workspace);

// digraph_effects.cpp
VEXA_DIGRAPH_FAMILY(arc)
VEXA_DIGRAPH_FAMILY(reciprocity)
VEXA_DIGRAPH_FAMILY(in_star)   // variant: the order k
VEXA_DIGRAPH_FAMILY(out_star)  // variant: the order k
VEXA_DIGRAPH_FAMILY(mixed_star)
VEXA_DIGRAPH_FAMILY(triad)  // variant: the configuration, 1 to 10
VEXA_DIGRAPH_FAMILY(sink)
VEXA_DIGRAPH_FAMILY(source)
VEXA_DIGRAPH_FAMILY(isolates)

// digraph_alternating.cpp
VEXA_DIGRAPH_FAMILY(alternating_star)        // variant 0: in-degrees, 1: out-degrees
VEXA_DIGRAPH_FAMILY(mixed_alternating_star)  // variant 0: Ain1out, 1: 1inAout, 2: AinAout
VEXA_DIGRAPH_FAMILY(alternating_triangle)    // variant: two-path kinds summed
VEXA_DIGRAPH_FAMILY(alternating_two_path)    // variant: two-path kinds summed

#undef VEXA_DIGRAPH_FAMILY

// Instantiates a family's two functions for both digraph stores, in the file that defines them.
#define VEXA_INSTANTIATE_DIGRAPH_FAMILY_FOR(name, D)                                             \
    template double change_##name<D>(const D&, const Term<D>&, const Workspace&, int, int, int); \
    template double total_##name<D>(const D&, const Term<D>&, const Workspace&);
#define VEXA_INSTANTIATE_DIGRAPH_FAMILY(name)          \
    VEXA_INSTANTIATE_DIGRAPH_FAMILY_FOR(name, Digraph) \
    VEXA_INSTANTIATE_DIGRAPH_FAMILY_FOR(name, SparseDigraph)

}  // namespace vexa
