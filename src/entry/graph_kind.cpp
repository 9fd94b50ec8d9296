#include "entry/graph_kind.h"

#include "base/memory.h"

#include <cmath>
#include <type_traits>

#include "base/errors.h"
#include "entry/run_task.h"

namespace vexa {

template <class G>
G GraphTraits<G>::random_start(RunContext& context) {
    const RunSettings& s = context.settings;
    const int n = s.node_count;
    const double target = std::trunc(static_cast<double>(n) * (n - 1) * s.initial_density * 0.5);
    if (!(target >= 0.0) || target > static_cast<double>(n) * (n - 1) / 2.0) {
        throw SettingError(
            format_message("vexa: run file '%s': initial_density %g asks for %.0f ties, but %d "
                           "nodes have only %.0f dyads",
                           s.run_file.c_str(), static_cast<double>(s.initial_density), target, n,
                           static_cast<double>(n) * (n - 1) / 2.0));
    }
    if constexpr (std::is_same_v<G, Graph>) {
        return random_graph(n, static_cast<int64_t>(target), context.rng, context.seeds);
    } else {
        return random_sparse_graph(n, static_cast<int64_t>(target), context.rng, context.seeds);
    }
}

template <class G>
G GraphTraits<G>::read(const std::string& path, int n, MatrixNotes* notes,
                       const ReadProgress* progress) {
    if constexpr (std::is_same_v<G, Graph>) {
        return read_graph(path, n, notes, progress);
    } else {
        return read_sparse_graph(path, n, notes, progress);
    }
}

template struct GraphTraits<Graph>;
template struct GraphTraits<SparseGraph>;

bool sparse_store_chosen(StoreChoice choice, int node_count, NetworkKind kind) {
    if (choice != StoreChoice::automatic) return choice == StoreChoice::sparse;
    const double available = physical_memory_bytes();
    const double dense_bytes = kind == NetworkKind::digraph ? digraph_store_bytes(node_count)
                                                            : graph_store_bytes(node_count);
    return node_count > 20000 || (available > 0.0 && dense_bytes > available / 2);
}

void run_graph_task(RunContext& context) {
    if (sparse_store_chosen(context.store, context.settings.node_count)) {
        run_task<SparseGraph>(context);
    } else {
        run_task<Graph>(context);
    }
}

}  // namespace vexa
