#pragma once
// The catalogues of attribute and covariate effects, four per network kind (AttributeKind):
// one row per effect in the order the run file lists them, with every label the engine prints
// for it, the variant its function switches on, and its total and change functions. The
// parameter vector may take a catalogue's effects in an order of its own, written beside the
// table where it differs. Each enum names the rows of one table; `count` is not an effect but
// the number of rows.
//
// To add an effect: write its change and total functions (attribute_effects.h) or give an
// existing function a new variant, then put its enumerator below where the run file lists it
// and its row at the same place in its table (graph_attribute_catalogue.cpp or
// digraph_attribute_catalogue.cpp), and its name in the table's vector order if it has one.
// The compiler rejects a table that does not follow its enum, labels that clash, and a vector
// order that misses a row or lists one twice.

#include <cstdint>

namespace vexa {

enum class GraphBinaryEffect : int32_t {
    activity,
    interaction,
    o1au,
    o1bu,
    o2au,
    o2b,
    o3u,
    t1u,
    t2u,
    t3u,
    et1,
    et2,
    et0,
    etnt,
    count
};
enum class GraphContinuousEffect : int32_t { sum, difference, product, count };
enum class GraphCategoricalEffect : int32_t { same, different, count };
enum class GraphCovariateEffect : int32_t { edge, s21, s22, t1, t2, t3, count };

enum class DigraphBinaryEffect : int32_t {
    interaction,
    sender,
    receiver,
    sender_missing,
    receiver_missing,
    activity_reciprocity,
    interaction_reciprocity,
    out2star,
    path2,
    in2star,
    count
};
enum class DigraphContinuousEffect : int32_t {
    sender,
    receiver,
    sender_missing,
    receiver_missing,
    sum,
    difference,
    product,
    sum_reciprocity,
    difference_reciprocity,
    product_reciprocity,
    in2star,
    out2star,
    path2,
    count
};
enum class DigraphCategoricalEffect : int32_t {
    same,
    different,
    same_reciprocity,
    different_reciprocity,
    count
};
enum class DigraphCovariateEffect : int32_t { arc, count };

}  // namespace vexa
