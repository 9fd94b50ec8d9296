#include "sampler/graph_sampler.h"

#include <cmath>

#include "base/errors.h"

namespace vexa {

namespace {

void add_changes(Graph& graph, const std::vector<double>& changes, int32_t count, double sign) {
    double* statistics = graph.statistics.data();
    for (int32_t k = 0; k < count; ++k) statistics[k] += sign * changes[static_cast<size_t>(k)];
}

// With the bookkeeping check compiled in, every accepted step recounts the store and the
// statistics, so a fault shows at the step that made it.
void check_after_step([[maybe_unused]] Graph& graph, [[maybe_unused]] const GraphSampler& sampler) {
#ifdef VEXA_CHECK_BOOKKEEPING
    const std::string fault = check_bookkeeping(graph);
    if (!fault.empty()) throw VexaError("vexa: store bookkeeping fault: " + fault);
    std::vector<double> kept = graph.statistics;
    compute_totals(graph, *sampler.terms);
    for (const Term& term : *sampler.terms) {
        if (term.effect == GraphEffect::et0 || term.effect == GraphEffect::etnt) continue;
        const size_t slot = static_cast<size_t>(term.slot);
        if (std::fabs(kept[slot] - graph.statistics[slot]) > 1e-6 * (1.0 + std::fabs(kept[slot]))) {
            throw VexaError(format_message("vexa: statistic %d drifted: %.9g carried, %.9g recounted",
                                           term.slot, kept[slot], graph.statistics[slot]));
        }
    }
    graph.statistics = kept;
#endif
}

bool allowed(const GraphSampler& sampler, int i, int j) {
    return !sampler.use_mask || has_edge(*sampler.mask, i, j);
}

}  // namespace

GraphSampler make_graph_sampler(const std::vector<Term>& terms, int32_t statistic_count,
                                int32_t max_degree, bool fixed_edges, const Graph* mask) {
    GraphSampler sampler;
    sampler.terms = &terms;
    sampler.statistic_count = statistic_count;
    sampler.max_degree = max_degree;
    sampler.fixed_edges = fixed_edges;
    sampler.use_mask = mask != nullptr;
    sampler.mask = mask;
    const size_t count = static_cast<size_t>(statistic_count);
    sampler.change_vector.assign(count, 0.0);
    sampler.removal_changes.assign(count, 0.0);
    sampler.addition_changes.assign(count, 0.0);
    return sampler;
}

void check_proposals_possible(const Graph& graph, const GraphSampler& sampler) {
    const int n = graph.node_count;
    if (n < 2) {
        throw SettingError(format_message("vexa: a network of %d node has no dyad to sample", n));
    }
    if (sampler.use_mask && sampler.mask->edge_count == 0) {
        throw SettingError("vexa: the constraint network has no ties, so no dyad may change");
    }
    if (!sampler.fixed_edges) return;
    // The edge-preserving step needs an allowed tie and an allowed non-tie; swaps within the
    // allowed dyads keep both numbers, so one check before the chain suffices.
    long long allowed_ties = 0;
    long long allowed_dyads = 0;
    if (sampler.use_mask) {
        for (int a = 0; a < n; ++a) {
            const uint64_t* mask_row = sampler.mask->row(a);
            const uint64_t* graph_row = graph.row(a);
            for (int w = 0; w < graph.row_words; ++w) {
                allowed_dyads += std::popcount(mask_row[w]);
                allowed_ties += std::popcount(mask_row[w] & graph_row[w]);
            }
        }
        allowed_dyads /= 2;
        allowed_ties /= 2;
    } else {
        allowed_dyads = static_cast<long long>(n) * (n - 1) / 2;
        allowed_ties = graph.edge_count;
    }
    if (graph.edge_count >= 2 && (allowed_ties == 0 || allowed_ties == allowed_dyads)) {
        throw SettingError(
            "vexa: the edge-preserving sampler cannot move a tie: every dyad it may change is "
            "already a tie, or none is");
    }
}

int toggle_step(Graph& graph, GraphSampler& sampler, const double* parameters, Rng& rng) {
    const int n = graph.node_count;
    int i = rng.node(n);
    int j = i;
    if (!sampler.use_mask) {
        while (j == i) j = rng.node(n);
    } else {
        while (j == i || !has_edge(*sampler.mask, i, j)) {
            i = rng.node(n);
            j = rng.node(n);
        }
    }
    const std::vector<Term>& terms = *sampler.terms;
    double* changes = sampler.change_vector.data();
    if (!has_edge(graph, i, j)) {
        if (graph.degree[static_cast<size_t>(i)] >= sampler.max_degree ||
            graph.degree[static_cast<size_t>(j)] >= sampler.max_degree) {
            return 0;
        }
        const double s = change_statistics(graph, terms, parameters, changes, i, j, 1);
        const double p = std::exp(s);
        if (rng.unit() > p) return 0;
        add_changes(graph, sampler.change_vector, sampler.statistic_count, 1.0);
        add_edge(graph, i, j);
        update_shared_partners(graph, i, j, 1);
        check_after_step(graph, sampler);
        return 1;
    }
    remove_edge(graph, i, j);
    const double s = change_statistics(graph, terms, parameters, changes, i, j, 0);
    const double p = std::exp(-s);
    if (rng.unit() > p) {
        add_edge(graph, i, j);  // the shared-partner data never changed
        return 0;
    }
    add_changes(graph, sampler.change_vector, sampler.statistic_count, -1.0);
    update_shared_partners(graph, i, j, 0);
    check_after_step(graph, sampler);
    return 1;
}

int swap_step(Graph& graph, GraphSampler& sampler, const double* parameters, Rng& rng) {
    if (graph.edge_count < 2) return 0;
    const int n = graph.node_count;
    int a = 0, b = 0, e = 0, f = 0;
    while (true) {
        if (!sampler.use_mask) {
            a = rng.node(n);
            e = rng.node(n);
            b = rng.node(n);
            f = rng.node(n);
        } else {
            b = rng.node(n);
            f = rng.node(n);
            a = rng.node(n);
            e = rng.node(n);
        }
        if (a == b || e == f) continue;
        if (has_edge(graph, a, b) == has_edge(graph, e, f)) continue;
        if (sampler.use_mask && (!allowed(sampler, a, b) || !allowed(sampler, e, f))) continue;
        break;
    }
    // {r,s} is the tie to move, {t,w} the non-tie it moves to.
    int r = a, s = b, t = e, w = f;
    if (!has_edge(graph, a, b)) {
        r = e;
        s = f;
        t = a;
        w = b;
    }
    const std::vector<Term>& terms = *sampler.terms;
    remove_edge(graph, r, s);
    const double s_remove =
        change_statistics(graph, terms, parameters, sampler.removal_changes.data(), r, s, 0);
    update_shared_partners(graph, r, s, 0);
    const double s_add =
        change_statistics(graph, terms, parameters, sampler.addition_changes.data(), t, w, 1);
    const double p = std::exp(s_add - s_remove);
    if (rng.unit() > p) {
        add_edge(graph, r, s);
        update_shared_partners(graph, r, s, 1);
        return 0;
    }
    double* statistics = graph.statistics.data();
    for (int32_t k = 0; k < sampler.statistic_count; ++k) {
        statistics[k] += sampler.addition_changes[static_cast<size_t>(k)] -
                         sampler.removal_changes[static_cast<size_t>(k)];
    }
    add_edge(graph, t, w);
    update_shared_partners(graph, t, w, 1);
    check_after_step(graph, sampler);
    return 1;
}

void run_sampler(Graph& graph, GraphSampler& sampler, const double* parameters, double step_count,
                 Rng& rng, SeedSource& seeds) {
    seeds.reseed(rng);
    for (double k = 0.0; k < step_count; k += 1.0) sampler_step(graph, sampler, parameters, rng);
}

}  // namespace vexa
