#include "entry/digraph_kind.h"

#include <cmath>
#include <type_traits>

#include "base/errors.h"
#include "entry/graph_kind.h"
#include "entry/run_task.h"

namespace vexa {

template <class D>
D DigraphTraits<D>::random_start(RunContext& context) {
    const RunSettings& s = context.settings;
    const int n = s.node_count;
    const double dyads = static_cast<double>(n) * (n - 1);
    const double target = std::trunc(dyads * s.initial_density);
    if (!(target >= 0.0) || target > dyads) {
        throw SettingError(format_message(
            "vexa: run file '%s': initial_density %g asks for %.0f arcs, but %d nodes have only "
            "%.0f "
            "ordered pairs",
            s.run_file.c_str(), static_cast<double>(s.initial_density), target, n, dyads));
    }
    if constexpr (std::is_same_v<D, Digraph>) {
        return random_digraph_by_count(n, static_cast<int64_t>(target), context.rng, context.seeds);
    } else {
        return random_sparse_digraph(n, static_cast<int64_t>(target), context.rng, context.seeds);
    }
}

template <class D>
D DigraphTraits<D>::read(const std::string& path, int n, MatrixNotes* notes,
                         const ReadProgress* progress) {
    if constexpr (std::is_same_v<D, Digraph>) {
        return read_digraph(path, n, notes, progress);
    } else {
        return read_sparse_digraph(path, n, notes, progress);
    }
}

template struct DigraphTraits<Digraph>;
template struct DigraphTraits<SparseDigraph>;

void run_digraph_task(RunContext& context) {
    if (sparse_store_chosen(context.store, context.settings.node_count, NetworkKind::digraph)) {
        run_task<SparseDigraph>(context);
    } else {
        run_task<Digraph>(context);
    }
}

}  // namespace vexa
