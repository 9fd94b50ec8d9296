#include "report/network_file.h"

#include <cstddef>
#include <vector>

#include "base/text_file.h"

namespace vexa {

namespace {

// mark_row(i, set) calls set(j) for every tie of row i: from bit words (the dense stores) or
// from a neighbour list (the sparse store).
template <class Store, class MarkRow>
void write_rows(FILE* out, const Store& graph, bool trailing_blank, MarkRow&& mark_row) {
    const int n = graph.node_count;
    if (n <= 0) return;
    // A large sample network has n^2 cells: format each row once in a buffer instead of one
    // formatted print per cell.
    const size_t width = 2 * static_cast<size_t>(n);
    std::vector<char> line(width + 1);
    for (int i = 0; i < n; ++i) {
        for (size_t c = 0; c < width; c += 2) {
            line[c] = '0';
            line[c + 1] = ' ';
        }
        mark_row(i, [&](int j) {
            if (j < n) line[2 * static_cast<size_t>(j)] = '1';
        });
        size_t length = width;
        if (trailing_blank) {
            line[width] = '\n';
            length = width + 1;
        } else {
            line[width - 1] = '\n';
        }
        std::fwrite(line.data(), 1, length, out);
    }
}

template <class Set>
void mark_words(const uint64_t* words, int row_words, Set&& set) {
    for (int w = 0; w < row_words; ++w) for_each_bit(words[w], w * 64, set);
}

}  // namespace

void write_adjacency_rows(FILE* out, const Graph& graph, bool trailing_blank) {
    write_rows(out, graph, trailing_blank,
               [&](int i, auto&& set) { mark_words(graph.row(i), graph.row_words, set); });
}

void write_adjacency_rows(FILE* out, const SparseGraph& graph, bool trailing_blank) {
    write_rows(out, graph, trailing_blank, [&](int i, auto&& set) {
        for (const int32_t j : graph.neighbours_of(i)) set(j);
    });
}

void write_adjacency_rows(FILE* out, const Digraph& digraph, bool trailing_blank) {
    write_rows(out, digraph, trailing_blank,
               [&](int i, auto&& set) { mark_words(digraph.out_row(i), digraph.row_words, set); });
}

void write_adjacency_rows(FILE* out, const SparseDigraph& digraph, bool trailing_blank) {
    write_rows(out, digraph, trailing_blank, [&](int i, auto&& set) {
        for (const int32_t j : digraph.out_neighbours(i)) set(j);
    });
}

void write_network_matrix(FILE* out, const Graph& graph) {
    write_adjacency_rows(out, graph, false);
}
void write_network_matrix(FILE* out, const SparseGraph& graph) {
    write_adjacency_rows(out, graph, false);
}
void write_network_matrix(FILE* out, const Digraph& digraph) {
    write_adjacency_rows(out, digraph, false);
}

void write_network_matrix(FILE* out, const SparseDigraph& digraph) {
    write_adjacency_rows(out, digraph, false);
}

void write_network_file(const std::string& path, const Graph& graph) {
    OutFile file(path, OpenMode::truncate);
    write_network_matrix(file, graph);
    file.close();
}

void write_network_file(const std::string& path, const SparseGraph& graph) {
    OutFile file(path, OpenMode::truncate);
    write_network_matrix(file, graph);
    file.close();
}

void write_network_file(const std::string& path, const Digraph& digraph) {
    OutFile file(path, OpenMode::truncate);
    write_network_matrix(file, digraph);
    file.close();
}

void write_network_file(const std::string& path, const SparseDigraph& digraph) {
    OutFile file(path, OpenMode::truncate);
    write_network_matrix(file, digraph);
    file.close();
}

std::string sample_network_path(const std::string& prefix, double sample) {
    const int length = std::snprintf(nullptr, 0, "%s%.0f.txt", prefix.c_str(), sample);
    std::vector<char> buffer(static_cast<size_t>(length > 0 ? length : 0) + 1);
    std::snprintf(buffer.data(), buffer.size(), "%s%.0f.txt", prefix.c_str(), sample);
    return std::string(buffer.data());
}

}  // namespace vexa
