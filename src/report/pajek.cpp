#include "report/pajek.h"

#include "base/text_file.h"
#include "report/network_file.h"

namespace vexa {

namespace {

template <class G>
void graph_matrix(FILE* out, const G& graph) {
    write_adjacency_rows(out, graph, true);
    print(out, "\n");
}

template <class G>
void graph_block(const G& graph, const std::string& label, const std::string& path) {
    {
        OutFile file(path, OpenMode::append);
        print(file, "*Network %s\n*vertices %d\n*matrix\n", label.c_str(), graph.node_count);
        file.close();
    }
    {
        OutFile file(path, OpenMode::append);
        graph_matrix(file, graph);
        file.close();
    }
    OutFile file(path, OpenMode::append);
    print(file, "\n");
    file.close();
}

// The digraph block's keywords have no asterisk.
template <class D>
void digraph_block(const D& digraph, const std::string& label, const std::string& path) {
    {
        OutFile file(path, OpenMode::append);
        print(file, "Network %s\nvertices %d\nmatrix\n", label.c_str(), digraph.node_count);
        file.close();
    }
    {
        OutFile file(path, OpenMode::append);
        write_adjacency_rows(file, digraph, true);
        file.close();
    }
    OutFile file(path, OpenMode::append);
    print(file, "\n");
    file.close();
}

}  // namespace

void write_pajek_matrix(FILE* out, const Graph& graph) { graph_matrix(out, graph); }
void write_pajek_matrix(FILE* out, const SparseGraph& graph) { graph_matrix(out, graph); }

void write_pajek_block(const Graph& graph, const std::string& label, const std::string& path) {
    graph_block(graph, label, path);
}
void write_pajek_block(const SparseGraph& graph, const std::string& label,
                       const std::string& path) {
    graph_block(graph, label, path);
}

void write_pajek_block(const Digraph& digraph, const std::string& label, const std::string& path) {
    digraph_block(digraph, label, path);
}
void write_pajek_block(const SparseDigraph& digraph, const std::string& label,
                       const std::string& path) {
    digraph_block(digraph, label, path);
}

}  // namespace vexa
