// Tie lists read in blocks: a list of some megabytes, in every spelling a line may take and
// with lines cut by the block ends, hands over exactly the ties it was written with.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <tuple>
#include <vector>

#include "base/errors.h"
#include "base/tie_list_file.h"
#include "numeric/rng.h"
#include "support/test_support.h"

namespace vexa {
namespace {

using Tie = std::tuple<int, int, double, bool>;

// A line for the tie (from, to, value), nodes from 0, in one of the spellings the reader takes.
std::string tie_line(Rng& rng, int from, int to, double value) {
    const std::string a = std::to_string(from + 1), b = std::to_string(to + 1);
    if (value != 1.0) return a + " " + b + " " + (value == 2.0 ? "2" : "0.5") + "\n";
    switch (rng.node(6)) {
        case 0: return a + " " + b + " 1\n";
        case 1: return "  " + a + "\t" + b + " 1 words past the value\r\n";
        case 2: return "00" + a + " " + b + "\r\n";
        case 3: return a + " " + b + " 1.0\n";
        default: return a + " " + b + "\n";
    }
}

TEST(TieListFiles, ALargeListHandsOverTheTiesItWasWrittenWith) {
    const std::string dir = testing::scratch_directory("tie_list_large");
    const int n = 100000;
    Rng rng;
    rng.seed(5);
    std::string text = "% a list in every spelling\n*Network big\n*Vertices 100000\n1 \"a b\"\n";
    std::vector<Tie> written;
    for (const bool both : {false, true}) {
        text += both ? "*edges\n" : "*Arcs\n";
        for (int k = 0; k < 200000; ++k) {
            const int from = rng.node(n), to = k % 1000 == 0 ? from : rng.node(n);
            const double value = k % 97 == 0 ? 2.0 : k % 89 == 0 ? 0.5 : 1.0;
            if (k % 500 == 0) text += "% a comment\n\n";
            text += tie_line(rng, from, to, value);
            if (from != to) written.emplace_back(from, to, value, both);
        }
    }
    text += "7 8";  // the last line has no line end
    written.emplace_back(6, 7, 1.0, true);
    ASSERT_GT(text.size(), size_t{5} << 20);  // more than one block
    testing::write_text(dir + "/big.net", text);
    ASSERT_TRUE(is_tie_list_file(dir + "/big.net"));

    std::vector<Tie> read;
    std::vector<double> heard;
    const WorkDone bytes = [&](double done, double total) {
        EXPECT_EQ(total, static_cast<double>(text.size()));
        heard.push_back(done);
    };
    read_tie_list_file(
        dir + "/big.net", "network", n,
        [&](int a, int b, double value, bool both) { read.emplace_back(a, b, value, both); },
        &bytes);
    EXPECT_EQ(read, written);
    ASSERT_GE(heard.size(), 2u);
    EXPECT_LT(heard.front(), heard.back());
    EXPECT_EQ(heard.back(), static_cast<double>(text.size()));
    std::filesystem::remove_all(dir);  // megabytes
}

TEST(TieListFiles, ALineWithoutEndIsRefusedByItsNumber) {
    const std::string dir = testing::scratch_directory("tie_list_long_line");
    const std::string path = dir + "/long.net";
    for (const std::string& tail : {std::string(longest_tie_list_line + 1, '1'),
                                    std::string(longest_tie_list_line + 1, 'x') + "\n1 2\n"}) {
        testing::write_text(path, "*Vertices 4\n*Arcs\n1 2\n" + tail);
        try {
            read_tie_list_file(path, "network", 4, [](int, int, double, bool) {});
            ADD_FAILURE() << "a line of " << tail.size() << " characters was read";
        } catch (const InputFileError& e) {
            EXPECT_EQ(std::string(e.what()),
                      "vexa: network file '" + path + "', line 4: the line runs on for more than " +
                          std::to_string(longest_tie_list_line) + " characters");
        }
    }
    std::filesystem::remove_all(dir);
}

}  // namespace
}  // namespace vexa
