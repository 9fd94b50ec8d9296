#pragma once
// The catalogue of graph structural effects: one row per effect in the fixed order that the
// parameter vector, the reports, the run file and the change-statistics combiner follow, with
// every label the engine prints for it, its lambda default and its total and change functions.
//
// To add an effect: write its change and total functions (graph_counts.h and its neighbours,
// or graph_alternating.h), then put its enumerator below where it should stand and its row at
// the same place in the table of graph_catalogue.cpp. The enumerator is the row's name; the
// compiler rejects a table that does not follow the enum, or labels that clash. Sizes and
// orders follow from the table.

#include <cstdint>

#include "effects/catalogue.h"
#include "effects/graph/cliques.h"

namespace vexa {

enum class GraphEffect : int32_t {
    edge,
    star2,
    star3,
    star4,
    star5,
    triangle,
    clique4,
    clique5,
    clique6,
    clique7,
    isolates,
    p0,
    triangle2,
    bow_tie,
    p3,
    q10,
    q20,
    q30,
    q31,
    path3,
    cycle4,
    et1,
    et2,
    et0,
    etnt,
    two3star,
    one2triangle,
    one2et,
    as,
    as2,
    at,
    at2,
    a2p,
    ac,
    aet,
    count  // not an effect: the number of rows
};

inline const EffectDescription& graph_about(GraphEffect effect) {
    return structural_catalogue(NetworkKind::graph).rows[static_cast<size_t>(effect)];
}

}  // namespace vexa
