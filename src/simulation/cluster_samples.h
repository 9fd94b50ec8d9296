#pragma once
// A sample drawn in another process, as it travels to process 0: what the record keeps of it,
// the steps accepted before it, where a parameter set's draw ended, and, when process 0
// writes files from each sample's network, the network's ties. Process 0 puts the values in
// the record where its own chain would have, and rebuilds the network on its copy of the
// chain's store, which stands idle in that process.

#include <cstdint>
#include <utility>
#include <vector>

#include "simulation/bayesian_gof.h"
#include "simulation/gof_task.h"
#include "simulation/simulate.h"

namespace vexa::cluster_detail {

// What sample s of a goodness of fit put in the record, then `accepted` and `bound`.
inline std::vector<double> pack_gof_sample(const GofRecord& record, size_t s, double accepted,
                                           Bound bound) {
    std::vector<double> v{record.sample.numbers[s], record.acceptance_rates[s]};
    for (const auto& row : record.sample.statistics) v.push_back(row[s]);
    for (const auto& row : record.sample.measures) v.push_back(row[s]);
    const GeodesicQuartiles& q = record.sample.quartiles[s];
    v.insert(v.end(),
             {static_cast<double>(q.g25), static_cast<double>(q.g50), static_cast<double>(q.g75)});
    if (!record.census.empty()) {
        const TriadCensus& c = record.census[s];
        v.push_back(c.node_count);
        v.insert(v.end(), c.counts.begin(), c.counts.end());
        v.push_back(c.exact ? 1.0 : 0.0);
    }
    v.push_back(accepted);
    v.push_back(static_cast<double>(bound));
    return v;
}

// Puts a packed sample in the record as sample s; returns where the ties begin.
inline size_t unpack_gof_sample(GofRecord& record, size_t s, const std::vector<double>& v,
                                double& accepted, Bound& bound) {
    size_t at = 0;
    record.sample.numbers[s] = v[at++];
    record.acceptance_rates[s] = v[at++];
    for (auto& row : record.sample.statistics) row[s] = v[at++];
    for (auto& row : record.sample.measures) row[s] = v[at++];
    GeodesicQuartiles& q = record.sample.quartiles[s];
    q.g25 = static_cast<int32_t>(v[at++]);
    q.g50 = static_cast<int32_t>(v[at++]);
    q.g75 = static_cast<int32_t>(v[at++]);
    if (!record.census.empty()) {
        TriadCensus& c = record.census[s];
        c.node_count = static_cast<int32_t>(v[at++]);
        for (double& count : c.counts) count = v[at++];
        c.exact = v[at++] != 0.0;
    }
    accepted = v[at++];
    bound = static_cast<Bound>(static_cast<int>(v[at++]));
    return at;
}

// What sample s of a simulation put in the record, then `accepted`.
inline std::vector<double> pack_simulation_sample(const SimulationRecord& record, size_t s,
                                                  double accepted) {
    std::vector<double> v{record.sample_numbers[s], record.acceptance_rates[s]};
    v.insert(v.end(), record.sample_statistics[s].begin(), record.sample_statistics[s].end());
    v.push_back(accepted);
    return v;
}

// Puts a packed sample in the record as sample s of p statistics; returns where the ties
// begin.
inline size_t unpack_simulation_sample(SimulationRecord& record, size_t s, size_t p,
                                       const std::vector<double>& v, double& accepted) {
    record.sample_numbers[s] = v[0];
    record.acceptance_rates[s] = v[1];
    record.sample_statistics[s].assign(v.begin() + 2, v.begin() + 2 + static_cast<long>(p));
    accepted = v[2 + p];
    return 3 + p;
}

// Appends the network's tie count and ties.
template <class Store>
void append_ties(std::vector<double>& v, const Store& store) {
    v.push_back(static_cast<double>(tie_count(store)));
    for_each_tie(store, [&](int i, int j) {
        v.push_back(i);
        v.push_back(j);
    });
}

// Makes `store` the network whose ties were appended at v[at].
template <class Store>
void take_ties(Store& store, const std::vector<double>& v, size_t at) {
    std::vector<std::pair<int, int>> old;
    for_each_tie(store, [&](int i, int j) { old.emplace_back(i, j); });
    for (const auto& [i, j] : old) {
        remove_tie(store, i, j);
        update_after_toggle(store, i, j, 0);
    }
    const auto count = static_cast<size_t>(v[at]);
    for (size_t t = 0; t < count; ++t) {
        const auto i = static_cast<int>(v[at + 1 + 2 * t]);
        const auto j = static_cast<int>(v[at + 2 + 2 * t]);
        add_tie(store, i, j);
        update_after_toggle(store, i, j, 1);
    }
}

}  // namespace vexa::cluster_detail
