#pragma once
// The graph store: one undirected network of n nodes without loops, with the bookkeeping
// that change statistics and descriptive statistics read instead of recounting: degrees and
// their histogram, shared partners of every pair and their histogram, triangles at every node
// and their histogram. Everything kept is current on every toggle (add_edge or remove_edge,
// then update_shared_partners), so a sampler step never recounts. A store keeps all of it
// until keep_only drops what a chain's model does not read.
//
// The adjacency is a bit matrix stored as 64-bit words, so that neighbour scans and common
// neighbours (AND of two rows, popcount) work a word at a time.

#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "base/compiler.h"
#include "base/large_allocator.h"
#include "base/matrix_text.h"
#include "base/progress.h"
#include "network/bookkeeping.h"
#include "network/network_kind.h"

namespace vexa {

struct Rng;
struct SeedSource;

// The largest graph whose shared-partner counts (at most n - 2) fit in 16 bits.
inline constexpr int max_graph_nodes = 65537;

struct Graph {
    static constexpr NetworkKind kind = NetworkKind::graph;

    int32_t node_count = 0;
    int32_t edge_count = 0;
    int32_t row_words = 0;  // 64-bit words per adjacency row
    // What the store keeps of shared partners and triangles; the arrays of what it does not
    // keep are empty.
    Bookkeeping kept = Bookkeeping::all;

    std::vector<uint64_t> adjacency;  // n rows of row_words; node j is bit j%64 of word j/64
    // Symmetric n x n, 16 bits a count (half the memory and cache of 32, and a count never
    // exceeds n - 2); the diagonal is not kept. On large pages where the system has them.
    // Both halves are kept current, so that a node's partners with every other node lie in
    // its row, where the change statistics read them. Kept once (at row min, column max),
    // half of those reads leave the row: measured under edge + AS + AT + A2P, a chain ran 41 %
    // slower at 1,000 nodes and only 13 % faster at 5,000, where the second write's misses
    // begin to outweigh the reads'.
    std::vector<uint16_t, LargeAllocator<uint16_t>> shared_partners;
    std::vector<int32_t> degree_histogram;  // n: entry d = nodes of degree d
    std::vector<int32_t> degree;            // n
    std::vector<int32_t>
        shared_partner_histogram;             // n-1: entry s = unordered pairs with s partners
    std::vector<int32_t> triangles;           // n: triangles at each node
    std::vector<int32_t> triangle_histogram;  // (n-2)(n-1)/2 + 1: entry t = nodes in t triangles
    // The neighbours of every node in no particular order, kept with the adjacency: on sparse
    // networks a neighbour scan reads a few words instead of a whole bit row. Node v's list is
    // the first degree[v] entries of row v, rows `neighbour_stride` entries apart: packed
    // close, the lists of a sparse network stay in cache. A degree that outgrows the stride
    // spreads the rows to twice the stride in place, within room for n - 1 entries a node
    // reserved (not touched) when the store is created, so that no toggle allocates.
    int32_t neighbour_stride = 0;
    std::vector<int32_t, LargeAllocator<int32_t>> neighbour_lists;

    Graph() = default;
    Graph(const Graph& other);
    Graph& operator=(const Graph& other);
    Graph(Graph&&) noexcept = default;
    Graph& operator=(Graph&&) noexcept = default;

    const uint64_t* row(int i) const {
        return adjacency.data() + static_cast<size_t>(i) * static_cast<size_t>(row_words);
    }
    uint64_t* row(int i) {
        return adjacency.data() + static_cast<size_t>(i) * static_cast<size_t>(row_words);
    }
    int32_t partners(int a, int b) const {
        return shared_partners[static_cast<size_t>(a) * static_cast<size_t>(node_count) +
                               static_cast<size_t>(b)];
    }
    const int32_t* neighbour_row(int v) const {
        return neighbour_lists.data() +
               static_cast<size_t>(v) * static_cast<size_t>(neighbour_stride);
    }
    int32_t* neighbour_row(int v) {
        return const_cast<int32_t*>(std::as_const(*this).neighbour_row(v));
    }
    std::span<const int32_t> neighbours_of(int v) const {
        return {neighbour_row(v), static_cast<size_t>(degree[static_cast<size_t>(v)])};
    }
    const uint16_t* partners_row(int a) const {
        return shared_partners.data() + static_cast<size_t>(a) * static_cast<size_t>(node_count);
    }
};

// Allocates an empty graph. Throws SettingError for n < 1, n above 65,537 (the shared-partner
// counts could pass 65,535) or a store larger than this machine.
Graph create_graph(int n);

// The bytes a store of n nodes holds at most (its arrays, and the room it reserves for the
// neighbour lists of the densest network). Creating a store refuses one larger than the
// machine's physical memory.
double graph_store_bytes(int n);

inline bool has_edge(const Graph& graph, int i, int j) {
    return (graph.row(i)[j >> 6] >> (j & 63)) & 1u;
}

// Set or clear edge {i,j} with edge_count, degree, degree_histogram and the neighbour lists.
// No-ops when the edge
// is already in the requested state; then update_shared_partners must not be called.
void add_edge(Graph& graph, int i, int j);
void remove_edge(Graph& graph, int i, int j);

// Brings shared partners, triangles and both histograms up to date after add_edge (added = 1)
// or remove_edge (any other value) of {i,j}. Cost: one pass over the neighbours of i and j,
// none when the store keeps neither.
void update_shared_partners(Graph& graph, int i, int j, int added);

// Drops (and frees) the counts `keep` leaves out; it never adds one back. What is kept stays
// exactly as it was, so a trimmed store's totals and changes equal the full store's.
void keep_only(Graph& graph, Bookkeeping keep);

// Reads an n x n matrix file of whitespace-separated numbers; a value of exactly 1 above the
// diagonal is an edge, anything else is not. Throws InputFileError naming the file, and the
// row and column of a value that is not a number, or the count when the file is short or long.
// `notes`, when given, counts the cells that are neither 0 nor 1 and the pairs whose lower
// cell disagrees with the upper one. `progress`, when given, hears the bytes read.
Graph read_graph(const std::string& path, int n, MatrixNotes* notes = nullptr,
                 const ReadProgress* progress = nullptr);

// A random graph with exactly edge_target edges (pairs drawn uniformly; the generator is
// reseeded first). Throws SettingError when edge_target exceeds n(n-1)/2.
Graph random_graph(int n, int64_t edge_target, Rng& rng, SeedSource& seeds);

// 2E / (n(n-1)); 0 for fewer than two nodes.
double density(const Graph& graph);

// Recounts every piece of bookkeeping the store keeps from the adjacency alone and returns a
// description of the first disagreement, or an empty string when the store is consistent.
// O(n^2 words).
std::string check_bookkeeping(const Graph& graph);

// The names every store answers to, so that samplers and reports are written once.
inline bool has_tie(const Graph& graph, int i, int j) { return has_edge(graph, i, j); }
inline void add_tie(Graph& graph, int i, int j) { add_edge(graph, i, j); }
inline void remove_tie(Graph& graph, int i, int j) { remove_edge(graph, i, j); }
inline void update_after_toggle(Graph& graph, int i, int j, int added) {
    update_shared_partners(graph, i, j, added);
}
inline int64_t tie_count(const Graph& graph) { return graph.edge_count; }
// Asks ahead for what a proposal on {i, j} reads first: the adjacency word, both neighbour
// lists and the pair's shared-partner count; from 2,000 nodes on, where the partner matrix
// has left the nearer caches, also the partners of i with each neighbour of j and of j with
// each neighbour of i, which the two-path and triangle changes read (the lists themselves
// stay in cache). Measured on 5,000 nodes under edge + AS + AT + A2P: 12 % more tie/no-tie
// proposals a second; on 1,000 nodes the extra requests cost the toggle a fifth.
inline void prefetch_dyad(const Graph& graph, int i, int j) {
    prefetch(graph.row(i) + (j >> 6));
    prefetch(graph.neighbour_row(i));
    prefetch(graph.neighbour_row(j));
    if (graph.shared_partners.empty()) return;
    const uint16_t* from_i = graph.partners_row(i);
    prefetch(from_i + j);
    if (graph.node_count < 2000) return;
    const uint16_t* from_j = graph.partners_row(j);
    for (const int32_t k : graph.neighbours_of(j)) prefetch(from_i + k);
    for (const int32_t k : graph.neighbours_of(i)) prefetch(from_j + k);
}

// Calls fn(u, v) once for every edge, u < v, from the neighbour lists.
template <typename Fn>
void for_each_tie(const Graph& graph, Fn&& fn) {
    for (int u = 0; u < graph.node_count; ++u) {
        for (const int32_t v : graph.neighbours_of(u)) {
            if (u < v) fn(u, v);
        }
    }
}

// Whether bit b of a row (of the adjacency, say) is set.
inline bool row_has(const uint64_t* row, int b) { return (row[b >> 6] >> (b & 63)) & 1u; }

// Calls fn(k) for every node k set in a word range of a row: the word-wide neighbour scan.
template <typename Fn>
inline void for_each_bit(uint64_t word, int base, Fn&& fn) {
    while (word != 0) {
        fn(base + std::countr_zero(word));
        word &= word - 1;
    }
}

// Number of common neighbours of i and j, from the adjacency (AND of two rows, popcount).
inline int common_neighbour_count(const Graph& graph, int i, int j) {
    const uint64_t* a = graph.row(i);
    const uint64_t* b = graph.row(j);
    int count = 0;
    for (int w = 0; w < graph.row_words; ++w) count += std::popcount(a[w] & b[w]);
    return count;
}

}  // namespace vexa
