// The compile-time checks that hold each catalogue table, its enum and its orders in step: a
// check that passed everything would leave every catalogue unguarded, so each is shown a table
// or an order out of step and must reject it.

#include <gtest/gtest.h>

#include <array>

#include "effects/catalogue_table.h"

namespace vexa {
namespace {

enum class Toy : int32_t { a, b, c, count };
struct ToyStore {};
using ToyRow = CatalogueRow<Toy, ToyStore>;

constexpr ToyRow row(Toy id, const char* update, const char* sample) {
    return {id,
            {update, "r", update, "s", "s", "g", sample, sample, "F8.0", "toy"},
            0.0f,
            true,
            0,
            true,
            0,
            TieReads::network,
            Bookkeeping::all,
            nullptr,
            nullptr};
}

// b has no run-file entry.
constexpr std::array<ToyRow, 3> toys{
    {row(Toy::a, "a", "sa"), row(Toy::b, nullptr, "sb"), row(Toy::c, "c", "sc")}};

TEST(CatalogueTable, ChecksRejectTablesOutOfStepWithTheirEnum) {
    EXPECT_TRUE(ids_in_order(toys));
    constexpr std::array<ToyRow, 3> swapped{{toys[1], toys[0], toys[2]}};
    EXPECT_FALSE(ids_in_order(swapped));
    constexpr std::array<ToyRow, 2> short_of_the_enum{{toys[0], toys[1]}};
    EXPECT_FALSE(ids_in_order(short_of_the_enum));

    EXPECT_TRUE(names_unique(toys));
    std::array<ToyRow, 3> clash = toys;
    clash[2].labels.sample_column = "sa";
    EXPECT_FALSE(names_unique(clash));
    clash = toys;
    clash[0].labels.update_name = nullptr;  // two rows without an entry do not clash
    EXPECT_TRUE(names_unique(clash));
    clash[2].labels.column_name = "b";
    clash[1].labels.column_name = "b";
    EXPECT_FALSE(names_unique(clash));
}

TEST(CatalogueTable, ChecksRejectOrdersThatMissOrRepeatRows) {
    EXPECT_EQ(run_file_rows<toys>(), (std::array<int32_t, 2>{0, 2}));
    EXPECT_TRUE(every_entry_once(toys, std::array<int32_t, 2>{2, 0}));
    EXPECT_FALSE(every_entry_once(toys, std::array<int32_t, 1>{0}));     // misses c
    EXPECT_FALSE(every_entry_once(toys, std::array<int32_t, 2>{0, 0}));  // a twice
    EXPECT_FALSE(every_entry_once(toys, std::array<int32_t, 2>{0, 1}));  // b has no entry

    EXPECT_TRUE(every_row_once(toys, rows_of(std::array{Toy::c, Toy::a, Toy::b})));
    EXPECT_TRUE(every_row_once(toys, table_order(toys)));
    EXPECT_FALSE(every_row_once(toys, std::array<int32_t, 2>{0, 1}));
    EXPECT_FALSE(every_row_once(toys, std::array<int32_t, 3>{0, 1, 1}));
    EXPECT_FALSE(every_row_once(toys, std::array<int32_t, 3>{0, 1, 3}));
    EXPECT_FALSE(every_row_once(toys, std::array<int32_t, 3>{-1, 1, 2}));
}

}  // namespace
}  // namespace vexa
