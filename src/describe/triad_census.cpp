#include "describe/triad_census.h"

#include <limits>

#include "effects/combiner.h"
#include "effects/digraph/digraph_catalogue.h"
#include "network/digraph.h"
#include "network/sparse_digraph.h"

namespace vexa {

namespace {

// The statistic of one catalogue row, from the row's own total function.
template <class D>
double total_of(const D& digraph, DigraphEffect effect) {
    const Term<D> term = structural_term<D>(static_cast<int>(effect), 0);
    Workspace workspace;
    prepare_totals(digraph, workspace);
    return term.total(digraph, term, workspace);
}

// a x b as 32-bit signed arithmetic leaves it: wrapped modulo 2^32.
int32_t wrapped_product(int64_t a, int64_t b) { return static_cast<int32_t>(a * b); }

}  // namespace

template <class D>
TriadCensus triad_census(const D& digraph) {
    using E = DigraphEffect;
    const double t1 = total_of(digraph, E::t1), t2 = total_of(digraph, E::t2),
                 t3 = total_of(digraph, E::t3), t4 = total_of(digraph, E::t4),
                 t5 = total_of(digraph, E::t5), t6 = total_of(digraph, E::t6),
                 t7 = total_of(digraph, E::t7), t8 = total_of(digraph, E::t8),
                 t9 = total_of(digraph, E::t9), t10 = total_of(digraph, E::t10);
    const double in2 = total_of(digraph, E::in_star2);
    const double out2 = total_of(digraph, E::out_star2);
    const double mixed2 = total_of(digraph, E::mixed_star2);
    const int64_t n = digraph.node_count;
    const int64_t arcs = static_cast<int64_t>(total_of(digraph, E::arc));
    const int64_t mutual = static_cast<int64_t>(total_of(digraph, E::reciprocity));

    TriadCensus census;
    census.node_count = digraph.node_count;
    census.exact = n * (n - 1) * (n - 2) <= std::numeric_limits<int32_t>::max();
    std::array<double, triad_class_count>& q = census.counts;
    q[0] = t1;
    q[1] = t2 - 6 * q[0];
    q[2] = t3 - 2 * q[1] - 6 * q[0];
    q[3] = t4 - q[1] - 3 * q[0];
    q[4] = t5 - q[1] - 3 * q[0];
    q[5] = t6 - q[1] - 3 * q[0];
    q[6] = t7 - (2 * q[5] + 2 * q[3] + q[2] + 3 * q[1] + 6 * q[0]);
    q[7] = t8 - (2 * q[5] + 2 * q[4] + q[2] + 3 * q[1] + 6 * q[0]);
    q[8] = t9 - (2 * q[4] + 2 * q[3] + q[2] + 3 * q[1] + 6 * q[0]);
    q[9] = t10 - (2 * q[0] + q[2] + q[1]);
    q[10] = wrapped_product(n - 2, mutual) -
            (2 * q[1] + q[7] + q[6] + q[2] + q[3] + q[4] + 2 * q[5] + 3 * q[0]);
    q[11] = out2 - (2 * q[1] + 2 * q[4] + q[8] + q[7] + q[2] + q[3] + q[5] + 3 * q[0]);
    q[12] = mixed2 - (2 * q[5] + 2 * q[3] + 3 * q[2] + 3 * q[9] + q[8] + q[7] + q[6] + 2 * q[4] +
                      4 * q[1] + 6 * q[0]);
    q[13] = in2 - (3 * q[0] + 2 * q[3] + q[8] + q[6] + q[2] + q[4] + q[5] + 2 * q[1]);
    q[14] = wrapped_product(n - 2, arcs) -
            (3 * (q[9] + q[8] + q[7] + q[6]) + 2 * (q[13] + q[12] + q[11] + q[10]) +
             4 * (q[5] + q[4] + q[3] + q[2]) + 5 * q[1] + 6 * q[0]);
    const int32_t triples = wrapped_product(wrapped_product(n, n - 1), n - 2) / 6;
    double denser = 0.0;
    for (int k = 0; k < 15; ++k) denser += q[static_cast<size_t>(k)];
    q[15] = triples - denser;
    return census;
}

template TriadCensus triad_census(const Digraph&);
template TriadCensus triad_census(const SparseDigraph&);

void write_triad_census(FILE* out, const TriadCensus& census) {
    std::fputs("Triad Census:\n", out);
    if (!census.exact) {
        std::fprintf(out,
                     "not counted: a digraph of %d nodes passes the 32-bit range of the census "
                     "(at most 1291 nodes)\n",
                     census.node_count);
        return;
    }
    for (int k = 0; k < triad_class_count; ++k) {
        std::fprintf(out, "%s\t%.0f\n", triad_class_names[static_cast<size_t>(k)],
                     census.counts[static_cast<size_t>(k)]);
    }
}

}  // namespace vexa
