#include "support/brute_force.h"

#include <algorithm>
#include <cmath>

#include "numeric/rng.h"

namespace vexa::testing {

namespace {

size_t at(int v) { return static_cast<size_t>(v); }

// Extends a clique whose largest node is `last` by every later node tied to all its members.
void extend_clique(const AdjacencyMatrix& m, std::vector<int>& members,
                   std::array<int64_t, 9>& cliques) {
    const int last = members.back();
    for (int v = last + 1; v < m.n; ++v) {
        bool tied_to_all = true;
        for (const int u : members) tied_to_all = tied_to_all && m(u, v);
        if (!tied_to_all) continue;
        members.push_back(v);
        cliques[members.size()] += 1;
        if (members.size() < 8) extend_clique(m, members, cliques);
        members.pop_back();
    }
}

}  // namespace

double decay(double lambda, int m) {
    if (m < 0) return 0.0;
    if (m == 0) return 1.0;
    return std::pow(1.0 - 1.0 / lambda, std::min(m, 100));
}

int64_t subsets(int64_t d, int k) {
    if (k > d) return 0;
    int64_t value = 1;
    for (int r = 1; r <= k; ++r) value = value * (d - k + r) / r;
    return value;
}

double geometric(const std::vector<int>& values, double lambda) {
    if (lambda < 1.0) return 0.0;
    double sum = 0.0;
    for (const int value : values) sum += lambda * (1.0 - decay(lambda, value));
    return sum;
}

double alternating_star(const std::vector<int>& degrees, double lambda) {
    if (lambda < 1.0) return 0.0;
    double sum = 0.0;
    for (const int d : degrees) sum += lambda * lambda * (decay(lambda, d) - 1.0 + d / lambda);
    return sum;
}

AdjacencyMatrix random_matrix(int n, double density, uint32_t seed) {
    AdjacencyMatrix m(n);
    Rng rng;
    rng.seed(seed);
    for (int a = 0; a < n; ++a) {
        for (int b = a + 1; b < n; ++b) {
            if (rng.next() < density * 32768.0) m.set(a, b, true);
        }
    }
    return m;
}

BruteCounts brute_force_counts(const AdjacencyMatrix& m) {
    BruteCounts c;
    const int n = m.n;
    c.n = n;
    c.ties = m;
    c.degree.assign(at(n), 0);
    c.partners.assign(at(n) * at(n), 0);
    c.triangles_at.assign(at(n), 0);

    // Pairs: degrees, edges, common neighbours.
    for (int u = 0; u < n; ++u) {
        for (int v = 0; v < n; ++v) {
            if (u == v) continue;
            if (m(u, v)) c.degree[at(u)] += 1;
            for (int w = 0; w < n; ++w) {
                if (w != u && w != v && m(u, w) && m(v, w)) c.partners[m.index(u, v)] += 1;
            }
        }
    }
    for (int u = 0; u < n; ++u) {
        if (c.degree[at(u)] == 0) c.isolates += 1;
        for (int v = u + 1; v < n; ++v) c.edges += m(u, v) ? 1 : 0;
    }
    for (int k = 2; k <= 5; ++k) {
        for (int u = 0; u < n; ++u) c.stars[at(k)] += subsets(c.degree[at(u)], k);
    }

    // Triangles and the configurations built on them.
    std::vector<std::array<int, 3>> triangle_list;
    for (int a = 0; a < n; ++a) {
        for (int b = a + 1; b < n; ++b) {
            for (int d = b + 1; d < n; ++d) {
                if (m(a, b) && m(b, d) && m(a, d)) triangle_list.push_back({a, b, d});
            }
        }
    }
    c.triangles = static_cast<int64_t>(triangle_list.size());
    for (const auto& t : triangle_list) {
        for (const int v : t) c.triangles_at[at(v)] += 1;
    }
    for (size_t x = 0; x < triangle_list.size(); ++x) {
        for (size_t y = x + 1; y < triangle_list.size(); ++y) {
            int shared = 0;
            for (const int p : triangle_list[x]) {
                for (const int q : triangle_list[y]) shared += p == q ? 1 : 0;
            }
            if (shared == 2) c.triangle2 += 1;
            if (shared == 1) c.bow_tie += 1;
        }
    }
    for (const auto& t : triangle_list) {
        for (const int v : t) {
            // Ties of the corner v that leave the triangle, singly and in unordered pairs.
            std::vector<int> outside;
            for (int x = 0; x < n; ++x) {
                if (m(v, x) && x != t[0] && x != t[1] && x != t[2]) outside.push_back(x);
            }
            c.et1 += static_cast<int64_t>(outside.size());
            for (size_t p = 0; p < outside.size(); ++p)
                c.et2 += static_cast<int64_t>(outside.size() - p - 1);
        }
    }

    // Edges in no triangle.
    std::vector<int> bare_edges_at(at(n), 0);
    for (int u = 0; u < n; ++u) {
        for (int v = u + 1; v < n; ++v) {
            if (!m(u, v)) continue;
            bool closed = false;
            for (int w = 0; w < n; ++w) closed = closed || (w != u && w != v && m(u, w) && m(v, w));
            if (!closed) {
                c.et0 += 1;
                bare_edges_at[at(u)] += 1;
                bare_edges_at[at(v)] += 1;
            }
        }
    }
    for (int v = 0; v < n; ++v) c.etnt += int64_t{c.triangles_at[at(v)]} * bare_edges_at[at(v)];

    // Walks of three distinct edges (3-trails) and paths on four distinct nodes, each found
    // from both of its ends.
    int64_t trails = 0, paths = 0;
    for (int u = 0; u < n; ++u) {
        for (int v = 0; v < n; ++v) {
            if (!m(u, v)) continue;
            for (int w = 0; w < n; ++w) {
                if (w == u || !m(v, w)) continue;
                for (int x = 0; x < n; ++x) {
                    if (x == v || !m(w, x)) continue;
                    trails += 1;
                    if (x != u) paths += 1;
                }
            }
        }
    }
    c.path3 = trails / 2;
    c.p3 = paths / 2;

    // Quadruples: the three ways of closing four nodes into a cycle.
    for (int a = 0; a < n; ++a) {
        for (int b = a + 1; b < n; ++b) {
            for (int d = b + 1; d < n; ++d) {
                for (int e = d + 1; e < n; ++e) {
                    c.cycle4 += (m(a, b) && m(b, d) && m(d, e) && m(e, a)) ? 1 : 0;
                    c.cycle4 += (m(a, b) && m(b, e) && m(e, d) && m(d, a)) ? 1 : 0;
                    c.cycle4 += (m(a, d) && m(d, b) && m(b, e) && m(e, a)) ? 1 : 0;
                }
            }
        }
    }

    // Sets of one, two and three two-paths joining a pair.
    for (int u = 0; u < n; ++u) {
        for (int v = u + 1; v < n; ++v) {
            std::vector<int> middle;
            for (int w = 0; w < n; ++w) {
                if (w != u && w != v && m(u, w) && m(v, w)) middle.push_back(w);
            }
            const size_t size = middle.size();
            int64_t ones = static_cast<int64_t>(size), twos = 0, threes = 0;
            for (size_t x = 0; x < size; ++x) {
                for (size_t y = x + 1; y < size; ++y) {
                    twos += 1;
                    for (size_t z = y + 1; z < size; ++z) threes += 1;
                }
            }
            if (m(u, v)) {
                c.q31 += threes;
            } else {
                c.q10 += ones;
                c.q20 += twos;
                c.q30 += threes;
            }
        }
    }

    // Cliques up to eight nodes.
    c.cliques[1] = n;
    for (int v = 0; v < n; ++v) {
        std::vector<int> members{v};
        extend_clique(m, members, c.cliques);
    }
    return c;
}

double brute_force_value(const BruteCounts& c, GraphEffect effect, double lambda) {
    const auto count = [](int64_t v) { return static_cast<double>(v); };
    switch (effect) {
        case GraphEffect::edge: return count(c.edges);
        case GraphEffect::star2: return count(c.stars[2]);
        case GraphEffect::star3: return count(c.stars[3]);
        case GraphEffect::star4: return count(c.stars[4]);
        case GraphEffect::star5: return count(c.stars[5]);
        case GraphEffect::triangle:
        case GraphEffect::p0: return count(c.triangles);
        case GraphEffect::clique4: return count(c.cliques[4]);
        case GraphEffect::clique5: return count(c.cliques[5]);
        case GraphEffect::clique6: return count(c.cliques[6]);
        case GraphEffect::clique7: return count(c.cliques[7]);
        case GraphEffect::isolates: return count(c.isolates);
        case GraphEffect::triangle2: return count(c.triangle2);
        case GraphEffect::bow_tie: return count(c.bow_tie);
        case GraphEffect::p3: return count(c.p3);
        case GraphEffect::q10: return count(c.q10);
        case GraphEffect::q20: return count(c.q20);
        case GraphEffect::q30: return count(c.q30);
        case GraphEffect::q31: return count(c.q31);
        case GraphEffect::path3: return count(c.path3);
        case GraphEffect::cycle4: return count(c.cycle4);
        case GraphEffect::et1: return count(c.et1);
        case GraphEffect::et2: return count(c.et2);
        case GraphEffect::et0: return count(c.et0);
        case GraphEffect::etnt: return count(c.etnt);
        case GraphEffect::two3star: return count(c.stars[2]) - count(c.stars[3]) / 2.0;
        case GraphEffect::one2triangle: return 3.0 * count(c.triangles) - count(c.triangle2) / 2.0;
        case GraphEffect::one2et: return count(c.et1) - count(c.et2) / 2.0;
        case GraphEffect::as:
        case GraphEffect::as2: return alternating_star(c.degree, lambda);
        case GraphEffect::at:
        case GraphEffect::at2:
        case GraphEffect::a2p: {
            std::vector<int> partners;  // over the edges, or over all pairs for A2P
            for (int u = 0; u < c.n; ++u) {
                for (int v = u + 1; v < c.n; ++v) {
                    if (effect == GraphEffect::a2p || c.ties(u, v))
                        partners.push_back(c.partners[c.ties.index(u, v)]);
                }
            }
            return geometric(partners, lambda);
        }
        case GraphEffect::ac: {
            if (lambda < 1.0) return 0.0;
            double sum = 0.0, factor = 1.0;
            for (int k = 4; k <= 8; ++k) {
                sum += factor * count(c.cliques[at(k)]);
                factor *= -1.0 / lambda;
            }
            return sum;
        }
        case GraphEffect::aet: {
            double sum = 0.0;
            for (int v = 0; v < c.n; ++v) {
                sum += c.triangles_at[at(v)] * (1.0 - decay(lambda, c.degree[at(v)] - 2));
            }
            return lambda * sum;
        }
        case GraphEffect::count: break;
    }
    return 0.0;
}

}  // namespace vexa::testing
