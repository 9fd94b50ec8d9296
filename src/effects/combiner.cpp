// The terms of a graph model, the totals pass and the change-statistics combiner.

#include <algorithm>
#include <cstdio>

#include "base/errors.h"
#include "effects/graph_catalogue.h"
#include "effects/graph_effects.h"

namespace vexa {

namespace {

// The largest clique size an effect reads from the store (0: none).
int clique_need(GraphEffect effect) {
    switch (effect) {
        case GraphEffect::clique4: return 4;
        case GraphEffect::clique5: return 5;
        case GraphEffect::clique6: return 6;
        case GraphEffect::clique7: return 7;
        case GraphEffect::ac: return 8;
        default: return 0;
    }
}

// 0ET and ETNT are described, never weighed: their change is written as 0.
inline bool unweighted(GraphEffect effect) { return effect == GraphEffect::et0 || effect == GraphEffect::etnt; }

}  // namespace

std::vector<Term> graph_terms(const Model& model) {
    if (model.kind != NetworkKind::graph) {
        throw SettingError("vexa: the graph effects were asked for the terms of a digraph model");
    }
    std::vector<Term> terms;
    const auto& catalogue = graph_catalogue();
    const size_t rows = std::min(catalogue.size(), model.structural.size());
    for (size_t k = 0; k < rows; ++k) {
        const EffectSetting& setting = model.structural[k];
        if (setting.slot == -1) continue;
        const GraphEffectRow& row = catalogue[k];
        Term term;
        term.effect = row.id;
        term.slot = setting.slot;
        if (row.alternating()) {
            term.lambda = setting.lambda == 0.0f ? row.lambda_default : setting.lambda;
            term.weights = weight_table(term.lambda);
        }
        term.change = row.change;
        term.total = row.total;
        terms.push_back(term);
    }
    return terms;
}

std::string effect_label(const char* name, bool alternating, float lambda) {
    if (!alternating) return name;
    char buffer[256];
    std::snprintf(buffer, sizeof buffer, "%s(%.2f)", name, static_cast<double>(lambda));
    return buffer;
}

void compute_totals(Graph& graph, const std::vector<Term>& terms) {
    if (graph.clique_depth > max_clique_depth) {
        throw SettingError(format_message("vexa: cliques of up to %d nodes are counted, not %d",
                                          max_clique_depth, graph.clique_depth));
    }
    for (const Term& term : terms) {
        const GraphEffectRow& row = graph_row(term.effect);
        const auto label = [&] { return effect_label(row.report_name, row.alternating(), term.lambda); };
        const int need = clique_need(term.effect);
        if (graph.clique_depth < need) {
            throw SettingError(format_message(
                "vexa: the effect %s needs cliques of up to %d nodes, but the network keeps them up to %d",
                label().c_str(), need, graph.clique_depth));
        }
        if (term.slot < 0 || static_cast<size_t>(term.slot) >= graph.statistics.size()) {
            throw SettingError(format_message("vexa: the effect %s has slot %d, outside the %zu statistics",
                                              label().c_str(), term.slot, graph.statistics.size()));
        }
    }
    if (graph.clique_depth >= 1) count_cliques(graph);
    for (const Term& term : terms) {
        graph.statistics[static_cast<size_t>(term.slot)] = term.total(graph, term);
    }
}

double change_statistics(Graph& graph, const std::vector<Term>& terms, const double* parameters,
                         double* changes, int i, int j, int added) {
    // Most terms read the pair's shared partners, far away in an n x n matrix: ask for it now.
    __builtin_prefetch(graph.partners_row(i) + j);
    fill_clique_changes(graph, i, j);
    double sum = 0.0;
    for (const Term& term : terms) {
        const size_t slot = static_cast<size_t>(term.slot);
        if (unweighted(term.effect)) {
            changes[slot] = 0.0;
            continue;
        }
        const double change = term.change(graph, term, i, j, added);
        changes[slot] = change;
        // A zero parameter adds nothing, so an infinite or undefined change cannot spoil the sum.
        const double parameter = parameters[slot];
        if (parameter != 0.0) sum += parameter * change;
    }
    return sum;
}

}  // namespace vexa
