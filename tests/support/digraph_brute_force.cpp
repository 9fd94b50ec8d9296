#include "support/digraph_brute_force.h"

#include <cmath>
#include <utility>

#include "numeric/rng.h"

namespace vexa::testing {

namespace {

size_t at(int v) { return static_cast<size_t>(v); }

// Af(d) = decay(0) + ... + decay(d - 1).
double alternating_sum(double lambda, int d) {
    double sum = 0.0;
    for (int m = 0; m < d; ++m) sum += decay(lambda, m);
    return sum;
}

}  // namespace

ArcMatrix random_arc_matrix(int n, double density, double reciprocity, uint32_t seed) {
    ArcMatrix m(n);
    Rng rng;
    rng.seed(seed);
    for (int a = 0; a < n; ++a) {
        for (int b = a + 1; b < n; ++b) {
            const bool tied = density >= 1.0 || (density > 0.0 && rng.unit() < density);
            if (!tied) continue;
            if (reciprocity >= 1.0 || (reciprocity > 0.0 && rng.unit() < reciprocity)) {
                m.set(a, b, true);
                m.set(b, a, true);
            } else if (rng.next() % 2 == 0) {
                m.set(a, b, true);
            } else {
                m.set(b, a, true);
            }
        }
    }
    return m;
}

DigraphCounts digraph_counts(const ArcMatrix& m) {
    DigraphCounts c;
    const int n = m.n;
    c.arcs = m;
    c.in.assign(at(n), 0);
    c.out.assign(at(n), 0);
    c.paths.assign(at(n) * at(n), 0);
    c.senders.assign(at(n) * at(n), 0);
    c.receivers.assign(at(n) * at(n), 0);
    const auto mutual = [&m](int a, int b) { return m(a, b) && m(b, a); };
    for (int a = 0; a < n; ++a) {
        for (int b = 0; b < n; ++b) {
            if (!m(a, b)) continue;
            c.arc += 1;
            c.out[at(a)] += 1;
            c.in[at(b)] += 1;
            if (a < b && m(b, a)) c.mutual += 1;
        }
    }
    for (int a = 0; a < n; ++a) {
        for (int b = 0; b < n; ++b) {
            if (a == b) continue;
            for (int x = 0; x < n; ++x) {
                if (x == a || x == b) continue;
                c.paths[m.index(a, b)] += m(a, x) && m(x, b);
                c.senders[m.index(a, b)] += m(x, a) && m(x, b);
                c.receivers[m.index(a, b)] += m(a, x) && m(b, x);
            }
        }
    }
    for (int v = 0; v < n; ++v) {
        for (int k = 2; k <= 4; ++k) {
            c.in_stars[at(k)] += subsets(c.in[at(v)], k);
            c.out_stars[at(k)] += subsets(c.out[at(v)], k);
        }
        const int in = c.in[at(v)], out = c.out[at(v)];
        c.sink += out == 0 && in >= 1;
        c.source += in == 0 && out >= 1;
        c.isolates += in == 0 && out == 0;
    }
    // Ordered pairs (a, b) and third nodes k, as the configurations are defined.
    std::array<int64_t, 11> raw{};
    for (int a = 0; a < n; ++a) {
        for (int b = 0; b < n; ++b) {
            if (b == a) continue;
            for (int k = 0; k < n; ++k) {
                if (k == a || k == b) continue;
                c.mixed2 += m(a, k) && m(k, b);  // a path a->k->b with a != b
                raw[1] += mutual(a, b) && mutual(a, k) && mutual(b, k);
                raw[2] += mutual(a, b) && mutual(a, k) && m(b, k);
                raw[3] += mutual(a, b) && m(a, k) && m(k, b);
                raw[4] += mutual(a, b) && m(k, a) && m(k, b);
                raw[5] += mutual(a, b) && m(a, k) && m(b, k);
                raw[6] += b < k && mutual(a, b) && mutual(a, k);  // centre a, the pair b < k
                raw[7] += mutual(a, b) && m(k, a);
                raw[8] += mutual(a, b) && m(a, k);
                raw[9] += m(a, b) && m(a, k) && m(k, b);
                raw[10] += m(a, b) && m(b, k) && m(k, a);
            }
        }
    }
    c.t = {0,      raw[1] / 6, raw[2], raw[3], raw[4] / 2, raw[5] / 2,
           raw[6], raw[7],     raw[8], raw[9], raw[10] / 3};
    return c;
}

double digraph_value(const DigraphCounts& c, DigraphEffect effect, double lambda) {
    using E = DigraphEffect;
    const int n = c.arcs.n;
    // The two-path values of one kind over the arcs a->b of the digraph.
    const auto over_arcs = [&](const std::vector<int>& pairs, bool reversed) {
        std::vector<int> values;
        for (int a = 0; a < n; ++a) {
            for (int b = 0; b < n; ++b) {
                if (c.arcs(a, b))
                    values.push_back(pairs[reversed ? c.arcs.index(b, a) : c.arcs.index(a, b)]);
            }
        }
        return values;
    };
    const auto over_pairs = [&](const std::vector<int>& pairs, bool ordered) {
        std::vector<int> values;
        for (int a = 0; a < n; ++a) {
            for (int b = ordered ? 0 : a + 1; b < n; ++b) {
                if (a != b) values.push_back(pairs[c.arcs.index(a, b)]);
            }
        }
        return values;
    };
    const auto mixed_stars = [&](int form) {
        if (lambda < 1.0) return 0.0;
        double sum = 0.0;
        for (int v = 0; v < n; ++v) {
            const int in = c.in[at(v)], out = c.out[at(v)];
            if (form == 0) sum += out * alternating_sum(lambda, in);
            if (form == 1) sum += in * alternating_sum(lambda, out);
            if (form == 2) sum += alternating_sum(lambda, in) * alternating_sum(lambda, out);
        }
        return sum;
    };
    const double at_t = geometric(over_arcs(c.paths, false), lambda);
    const double at_c = geometric(over_arcs(c.paths, true), lambda);
    const double at_d = geometric(over_arcs(c.senders, false), lambda);
    const double at_u = geometric(over_arcs(c.receivers, false), lambda);
    const double a2p_t = geometric(over_pairs(c.paths, true), lambda);
    const double a2p_d = geometric(over_pairs(c.senders, false), lambda);
    const double a2p_u = geometric(over_pairs(c.receivers, false), lambda);
    switch (effect) {
        case E::arc: return static_cast<double>(c.arc);
        case E::reciprocity: return static_cast<double>(c.mutual);
        case E::in_star2: return static_cast<double>(c.in_stars[2]);
        case E::out_star2: return static_cast<double>(c.out_stars[2]);
        case E::in_star3: return static_cast<double>(c.in_stars[3]);
        case E::out_star3: return static_cast<double>(c.out_stars[3]);
        case E::in_star4: return static_cast<double>(c.in_stars[4]);
        case E::out_star4: return static_cast<double>(c.out_stars[4]);
        case E::mixed_star2: return static_cast<double>(c.mixed2);
        case E::t1:
        case E::t2:
        case E::t3:
        case E::t4:
        case E::t5:
        case E::t6:
        case E::t7:
        case E::t8:
        case E::t9:
        case E::t10:
            return static_cast<double>(
                c.t[at(static_cast<int>(effect) - static_cast<int>(E::t1) + 1)]);
        case E::sink: return static_cast<double>(c.sink);
        case E::source: return static_cast<double>(c.source);
        case E::isolates: return static_cast<double>(c.isolates);
        case E::ain_s:
        case E::ain_s2: return alternating_star(c.in, lambda);
        case E::aout_s:
        case E::aout_s2: return alternating_star(c.out, lambda);
        case E::ain1out_s: return mixed_stars(0);
        case E::one_in_aout_s: return mixed_stars(1);
        case E::ain_aout_s: return mixed_stars(2);
        case E::at_t: return at_t;
        case E::at_c: return at_c;
        case E::at_d: return at_d;
        case E::at_u: return at_u;
        case E::at_td: return at_t + at_d;
        case E::at_tu: return at_t + at_u;
        case E::at_du: return at_d + at_u;
        case E::at_tdu: return at_t + at_d + at_u;
        case E::a2p_t: return a2p_t;
        case E::a2p_d: return a2p_d;
        case E::a2p_u: return a2p_u;
        case E::a2p_td: return a2p_t + a2p_d;
        case E::a2p_tu: return a2p_t + a2p_u;
        case E::a2p_du: return a2p_d + a2p_u;
        case E::a2p_tdu: return a2p_t + a2p_d + a2p_u;
        case E::count: break;
    }
    return 0.0;
}

std::array<int64_t, 16> triad_census_by_triples(const ArcMatrix& m) {
    // One pattern per class in census order, as arcs among nodes 0, 1, 2.
    using Arcs = std::vector<std::pair<int, int>>;
    const std::array<Arcs, 16> patterns = {{
        {{0, 1}, {1, 0}, {0, 2}, {2, 0}, {1, 2}, {2, 1}},  // 300
        {{0, 1}, {1, 0}, {0, 2}, {2, 0}, {1, 2}},          // 210
        {{0, 1}, {1, 0}, {0, 2}, {2, 1}},                  // 120C: a mutual pair and a path 0->2->1
        {{0, 1}, {1, 0}, {2, 0}, {2, 1}},                  // 120D: node 2 sends to both ends
        {{0, 1}, {1, 0}, {0, 2}, {1, 2}},                  // 120U: both ends send to node 2
        {{0, 1}, {1, 0}, {0, 2}, {2, 0}},                  // 201
        {{0, 1}, {1, 0}, {2, 0}},                          // 111D
        {{0, 1}, {1, 0}, {0, 2}},                          // 111U
        {{0, 1}, {0, 2}, {2, 1}},                          // 030T
        {{0, 1}, {1, 2}, {2, 0}},                          // 030C
        {{0, 1}, {1, 0}},                                  // 102
        {{0, 1}, {0, 2}},                                  // 021D: out-star
        {{0, 1}, {1, 2}},                                  // 021C: path
        {{1, 0}, {2, 0}},                                  // 021U: in-star
        {{0, 1}},                                          // 012
        {},                                                // 003
    }};
    constexpr int labellings[6][3] = {{0, 1, 2}, {0, 2, 1}, {1, 0, 2},
                                      {1, 2, 0}, {2, 0, 1}, {2, 1, 0}};
    // code bit 3u + v: arc u->v among the triple's three positions.
    std::array<int, 512> class_of{};
    class_of.fill(-1);
    for (size_t k = 0; k < patterns.size(); ++k) {
        for (const auto& l : labellings) {
            int code = 0;
            for (const auto& [u, v] : patterns[k]) code |= 1 << (3 * l[u] + l[v]);
            class_of[at(code)] = static_cast<int>(k);
        }
    }
    std::array<int64_t, 16> census{};
    for (int a = 0; a < m.n; ++a) {
        for (int b = a + 1; b < m.n; ++b) {
            for (int k = b + 1; k < m.n; ++k) {
                const int node[3] = {a, b, k};
                int code = 0;
                for (int u = 0; u < 3; ++u) {
                    for (int v = 0; v < 3; ++v) {
                        if (u != v && m(node[u], node[v])) code |= 1 << (3 * u + v);
                    }
                }
                const int found = class_of[at(code)];
                if (found >= 0) census[at(found)] += 1;  // a triad left out shows in the sum
            }
        }
    }
    return census;
}

}  // namespace vexa::testing
