#pragma once
// How a catalogue is written, and what is derived from it at compile time.
//
// A catalogue is one table: one row per effect, on one line, in the order of the effect's
// enum. Each row names its own enumerator, so the enum and the table cannot drift apart
// unnoticed: `ids_in_order` holds when row k names enumerator k and the enum's `count` is
// the number of rows. Everything else is derived from the table: the rows with their
// functions that the terms use, the descriptions that readers and writers use, and the
// orders of a view, each checked to list the right rows once.
//
// Every table has the same columns, the fields of CatalogueRow in order:
//   id | update report column summary simulation gof sample spss format meaning (EffectLabels)
//      | lambda integral clique carried variant reads needs (EffectDescription) | change total
//      | helps (optional)

#include <array>
#include <cstddef>
#include <cstdint>

#include "effects/catalogue.h"

namespace vexa {

// A row as a table spells it: flat, so that it reads as one line under the table's column
// header, and naming its enumerator, so that the compiler can hold the table to the enum.
template <class Id, class Store>
struct CatalogueRow {
    Id id;
    EffectLabels labels;
    float lambda_default;
    bool integral;
    int8_t clique_order;
    bool carried;
    int16_t variant;
    TieReads reads;
    Bookkeeping needs;
    ChangeFn<Store> change;
    TotalFn<Store> total;
    // Rarely given, so it ends the row (and may be left out).
    Bookkeeping helps = Bookkeeping::none;

    constexpr EffectDescription about() const {
        return {labels,  lambda_default, integral, clique_order, carried,
                variant, reads,          needs,    helps};
    }
};

// The names the tables' needs column spells its entries with.
namespace needs_column {
inline constexpr Bookkeeping no_counts = Bookkeeping::none;
inline constexpr Bookkeeping all_counts = Bookkeeping::all;
inline constexpr Bookkeeping partners = Bookkeeping::shared_partners;
inline constexpr Bookkeeping triangles = Bookkeeping::triangles;
inline constexpr Bookkeeping partners_triangles = partners | triangles;
inline constexpr Bookkeeping paths = Bookkeeping::two_paths;
inline constexpr Bookkeeping senders = Bookkeeping::common_senders;
inline constexpr Bookkeeping receivers = Bookkeeping::common_receivers;
}  // namespace needs_column

template <class Id, class Store, std::size_t N>
using CatalogueTable = std::array<CatalogueRow<Id, Store>, N>;

// Row k names enumerator k, and the enum ends (at `count`) where the table does.
template <class Id, class Store, std::size_t N>
constexpr bool ids_in_order(const CatalogueTable<Id, Store, N>& table) {
    if (N != static_cast<std::size_t>(Id::count)) return false;
    for (std::size_t k = 0; k < N; ++k) {
        if (static_cast<std::size_t>(table[k].id) != k) return false;
    }
    return true;
}

// The rows as the terms of the store type read them.
template <class Id, class Store, std::size_t N>
constexpr std::array<EffectRow<Store>, N> effect_rows(const CatalogueTable<Id, Store, N>& table) {
    std::array<EffectRow<Store>, N> rows{};
    for (std::size_t k = 0; k < N; ++k)
        rows[k] = {table[k].about(), table[k].change, table[k].total};
    return rows;
}

// The rows as readers and writers see them.
template <class Id, class Store, std::size_t N>
constexpr std::array<EffectDescription, N> descriptions_of(
    const CatalogueTable<Id, Store, N>& table) {
    std::array<EffectDescription, N> about{};
    for (std::size_t k = 0; k < N; ++k) about[k] = table[k].about();
    return about;
}

constexpr bool same_text(const char* a, const char* b) {
    if (a == nullptr || b == nullptr) return a == b;
    while (*a != '\0' && *a == *b) {
        ++a;
        ++b;
    }
    return *a == *b;
}

// No two rows share the label (rows without it, a null name, are left out): files that name
// effects by it must read back the effect that wrote it.
template <class Id, class Store, std::size_t N>
constexpr bool unique_labels(const CatalogueTable<Id, Store, N>& table,
                             const char* EffectLabels::*label) {
    for (std::size_t k = 0; k < N; ++k) {
        const char* name = table[k].labels.*label;
        if (name == nullptr) continue;
        for (std::size_t m = k + 1; m < N; ++m) {
            if (same_text(name, table[m].labels.*label)) return false;
        }
    }
    return true;
}

// The names the files read back: run-file (and update-file) names, change-statistics columns
// and sample columns.
template <class Id, class Store, std::size_t N>
constexpr bool names_unique(const CatalogueTable<Id, Store, N>& table) {
    return unique_labels(table, &EffectLabels::update_name) &&
           unique_labels(table, &EffectLabels::column_name) &&
           unique_labels(table, &EffectLabels::sample_column);
}

// Every row says what it counts: `vexa effects` lists it.
template <class Id, class Store, std::size_t N>
constexpr bool meanings_given(const CatalogueTable<Id, Store, N>& table) {
    for (const auto& row : table) {
        if (row.labels.meaning == nullptr || row.labels.meaning[0] == '\0') return false;
    }
    return true;
}

// The number of rows with a run-file entry.
template <class Id, class Store, std::size_t N>
constexpr std::size_t run_file_entries(const CatalogueTable<Id, Store, N>& table) {
    std::size_t count = 0;
    for (const auto& row : table) count += row.labels.update_name != nullptr ? 1 : 0;
    return count;
}

// Every row in table order.
template <class Id, class Store, std::size_t N>
constexpr std::array<int32_t, N> table_order(const CatalogueTable<Id, Store, N>&) {
    std::array<int32_t, N> order{};
    for (std::size_t k = 0; k < N; ++k) order[k] = static_cast<int32_t>(k);
    return order;
}

// The rows with a run-file entry, in table order.
template <const auto& table>
constexpr auto run_file_rows() {
    std::array<int32_t, run_file_entries(table)> order{};
    std::size_t next = 0;
    for (std::size_t k = 0; k < table.size(); ++k) {
        if (table[k].labels.update_name != nullptr) order[next++] = static_cast<int32_t>(k);
    }
    return order;
}

// An order written by enumerators, as the row indices a view holds.
template <class Id, std::size_t M>
constexpr std::array<int32_t, M> rows_of(const std::array<Id, M>& order) {
    std::array<int32_t, M> rows{};
    for (std::size_t k = 0; k < M; ++k) rows[k] = static_cast<int32_t>(order[k]);
    return rows;
}

// The order lists rows of the table, none twice.
template <std::size_t N, std::size_t M>
constexpr bool distinct_rows(const std::array<int32_t, M>& order) {
    std::array<bool, N> seen{};
    for (const int32_t k : order) {
        if (k < 0 || static_cast<std::size_t>(k) >= N || seen[static_cast<std::size_t>(k)])
            return false;
        seen[static_cast<std::size_t>(k)] = true;
    }
    return true;
}

// The order lists every row once.
template <class Id, class Store, std::size_t N, std::size_t M>
constexpr bool every_row_once(const CatalogueTable<Id, Store, N>&,
                              const std::array<int32_t, M>& order) {
    return M == N && distinct_rows<N>(order);
}

// The order lists every row with a run-file entry once, and no other.
template <class Id, class Store, std::size_t N, std::size_t M>
constexpr bool every_entry_once(const CatalogueTable<Id, Store, N>& table,
                                const std::array<int32_t, M>& order) {
    if (M != run_file_entries(table) || !distinct_rows<N>(order)) return false;
    for (const int32_t k : order) {
        if (table[static_cast<std::size_t>(k)].labels.update_name == nullptr) return false;
    }
    return true;
}

// What a view points at, kept for the life of the program: the descriptions, the run-file
// order (R rows) and the vector order (every row).
template <std::size_t N, std::size_t R>
struct ViewArrays {
    std::array<EffectDescription, N> descriptions;
    std::array<int32_t, R> run_file_order;
    std::array<int32_t, N> vector_order;

    constexpr CatalogueView view() const { return {descriptions, run_file_order, vector_order}; }
};

// The arrays of a structural table, whose parameter vector follows the table: its run file
// lists the rows with an entry in table order, or in the order given.
template <const auto& table>
constexpr auto structural_table() {
    constexpr auto run_file_order = run_file_rows<table>();
    return ViewArrays<table.size(), run_file_order.size()>{descriptions_of(table), run_file_order,
                                                           table_order(table)};
}
template <class Id, class Store, std::size_t N, std::size_t R>
constexpr ViewArrays<N, R> structural_table(const CatalogueTable<Id, Store, N>& table,
                                            const std::array<Id, R>& run_file_order) {
    return {descriptions_of(table), rows_of(run_file_order), table_order(table)};
}

// The arrays of a table listed in run-file order, every row with an entry (the attribute
// catalogues), whose parameter vector follows the table or the order given.
template <class Id, class Store, std::size_t N>
constexpr ViewArrays<N, N> run_file_table(const CatalogueTable<Id, Store, N>& table) {
    return {descriptions_of(table), table_order(table), table_order(table)};
}
template <class Id, class Store, std::size_t N, std::size_t M>
constexpr ViewArrays<N, N> run_file_table(const CatalogueTable<Id, Store, N>& table,
                                          const std::array<Id, M>& vector_order) {
    static_assert(M == N, "the parameter vector takes every row");
    return {descriptions_of(table), table_order(table), rows_of(vector_order)};
}

}  // namespace vexa
