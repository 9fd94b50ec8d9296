#include "report/tie_list_output.h"

#include <algorithm>
#include <cstdint>
#include <span>
#include <vector>

#include "base/text_file.h"

namespace vexa {

namespace {

// Text gathered in a large buffer and written when it fills.
class LineBuffer {
public:
    explicit LineBuffer(FILE* out) : out_(out) { text_.reserve(capacity); }
    LineBuffer(const LineBuffer&) = delete;
    LineBuffer& operator=(const LineBuffer&) = delete;
    ~LineBuffer() { flush(); }

    void words(const char* text) {
        for (; *text != '\0'; ++text) text_.push_back(*text);
    }
    // "a b\n".
    void tie(uint32_t a, uint32_t b) {
        if (text_.size() + longest_tie > capacity) flush();
        number(a);
        text_.push_back(' ');
        number(b);
        text_.push_back('\n');
    }
    void number(uint32_t value) {
        char digits[10];
        int count = 0;
        do {
            digits[count++] = static_cast<char>('0' + value % 10);
            value /= 10;
        } while (value != 0);
        while (count > 0) text_.push_back(digits[--count]);
    }
    void flush() {
        if (!text_.empty()) std::fwrite(text_.data(), 1, text_.size(), out_);
        text_.clear();
    }

private:
    static constexpr size_t capacity = size_t{1} << 20;
    static constexpr size_t longest_tie = 2 * 10 + 2;
    FILE* out_;
    std::vector<char> text_;
};

template <class Store>
std::span<const int32_t> partners_of(const Store& store, int v) {
    if constexpr (Store::kind == NetworkKind::graph) {
        return store.neighbours_of(v);
    } else {
        return store.out_neighbours(v);
    }
}

template <class Store>
void write_ties(FILE* out, const Store& store) {
    constexpr bool directed = Store::kind == NetworkKind::digraph;
    LineBuffer lines(out);
    lines.words("*Vertices ");
    lines.number(static_cast<uint32_t>(store.node_count));
    lines.words(directed ? "\n*Arcs\n" : "\n*Edges\n");
    std::vector<int32_t> ends;  // a node's ties in the file's order
    for (int a = 0; a < store.node_count; ++a) {
        ends.clear();
        for (const int32_t b : partners_of(store, a)) {
            if (directed || b > a) ends.push_back(b);
        }
        std::sort(ends.begin(), ends.end());
        for (const int32_t b : ends)
            lines.tie(static_cast<uint32_t>(a) + 1, static_cast<uint32_t>(b) + 1);
    }
}

template <class Store>
void write_file(const std::string& path, const Store& store) {
    OutFile file(path, OpenMode::truncate);
    write_ties(file.get(), store);
    file.close();
}

}  // namespace

void write_tie_list(FILE* out, const Graph& graph) { write_ties(out, graph); }
void write_tie_list(FILE* out, const SparseGraph& graph) { write_ties(out, graph); }
void write_tie_list(FILE* out, const Digraph& digraph) { write_ties(out, digraph); }
void write_tie_list(FILE* out, const SparseDigraph& digraph) { write_ties(out, digraph); }

void write_tie_list_file(const std::string& path, const Graph& graph) { write_file(path, graph); }
void write_tie_list_file(const std::string& path, const SparseGraph& graph) {
    write_file(path, graph);
}
void write_tie_list_file(const std::string& path, const Digraph& digraph) {
    write_file(path, digraph);
}
void write_tie_list_file(const std::string& path, const SparseDigraph& digraph) {
    write_file(path, digraph);
}

}  // namespace vexa
