#include "entry/run_file_labels.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "base/closest.h"
#include "entry/run_file.h"
#include "support/run_files.h"
#include "support/test_support.h"

namespace vexa {
namespace {

using namespace vexa::testing;
namespace fs = std::filesystem;

TEST(Closest, EditDistanceByHandAndTheNearestWord) {
    EXPECT_EQ(edit_distance("kitten", "sitting"), 3u);  // two substitutions and an insertion
    EXPECT_EQ(edit_distance("", "abc"), 3u);
    EXPECT_EQ(edit_distance("Triangle", "triangle"), 0u);  // case does not count
    EXPECT_EQ(edit_distance("AT-T", "AT-C"), 1u);
    EXPECT_EQ(closest_word("Tirangle", {"edge", "Triangle", "Triangle2"}), "Triangle");
    EXPECT_EQ(closest_word("x", {}), "");
}

// The console of reading `text` as a run file in `dir`.
std::string read_console(const std::string& dir, const std::string& text) {
    write_text(dir + "/run.txt", text);
    WorkingDirectory here(dir);
    return capture([&](FILE* out) { read_run_file("run.txt", out); });
}

TEST(RunFileLabels, AWrongLabelIsSaidOnceWithItsLineAndTheValueStillReadByPosition) {
    const std::string dir = scratch_directory("labels_wrong");
    GraphRunFile file;
    file.network_file = "net.txt";
    file.effects["Triangle"] = {0.5, 0.0};
    const std::string good = file.text();
    EXPECT_EQ(read_console(dir, good), "");

    // A slip of the pen: the closest known label is the expected one, and the value is read.
    std::string slip = good;
    slip.replace(slip.find("\nTriangle\n"), 10, "\nTrinagle\n");
    const int line = value_line(good, "Triangle") - 1;
    const std::string said = read_console(dir, slip);
    EXPECT_EQ(said, "vexa: warning: run file 'run.txt', line " + std::to_string(line) +
                        ": the label says 'Trinagle' where 'Triangle' is expected (the closest "
                        "known label is 'Triangle'); the value after it is read as Triangle\n");
    WorkingDirectory here(dir);
    const RunFile read = read_run_file("run.txt", nullptr);
    EXPECT_EQ(read.model.structural[5].value, 0.5);  // Triangle, row 5 of the graph catalogue

    // A row left out (and one added before AS to keep the count): every label between is
    // another row's, each said once and named as what it is.
    std::string shifted = good;
    const size_t at = shifted.find("2-star\n");
    shifted.erase(at, shifted.find("3-star\n") - at);
    shifted.insert(shifted.find("\nAS\n") + 1, "extra\n0\n0.0\n");
    const std::string many = read_console(dir, shifted);
    EXPECT_NE(many.find("the label says '3-star' where '2-star' is expected (the closest "
                        "known label is '3-star')"),
              std::string::npos);
    size_t warnings = 0;
    for (size_t k = many.find("warning"); k != std::string::npos; k = many.find("warning", k + 1))
        ++warnings;
    EXPECT_EQ(warnings, 26u);  // 2-star's row to one2et's

    // Other spellings in use for a row are accepted, regardless of case, '_' and '-'.
    EXPECT_TRUE(label_matches("Number_of_Nodes", accepted_labels("node_count")));
    EXPECT_TRUE(label_matches("subphases", accepted_labels("subphase_count")));
    EXPECT_FALSE(label_matches("runs", accepted_labels("subphase_count")));
    EXPECT_TRUE(label_matches("AT_T", {"AT-T"}));
}

// Every run file bundled with vexa or used by its tests reads without a label warning: the
// run files in examples/, tests/data/runfiles and the golden cases.
TEST(RunFileLabels, NoBundledRunFileRaisesAWarning) {
    const fs::path data(data_path(""));
    std::vector<fs::path> dirs{example_path(""), data / "runfiles"};
    for (const auto& entry :
         fs::directory_iterator(data.parent_path().parent_path() / "golden" / "cases"))
        dirs.push_back(entry.path());
    int files = 0;
    for (const fs::path& dir : dirs) {
        WorkingDirectory here(dir.string());
        for (const auto& entry : fs::directory_iterator(dir)) {
            const std::string name = entry.path().filename().string();
            const std::string text = read_text(entry.path().string());
            if (text.rfind("network_name", 0) != 0 && text.rfind("Network_name", 0) != 0) continue;
            ++files;
            std::string console;
            try {
                console = capture([&](FILE* out) { read_run_file(name, out); });
            } catch (const std::exception& e) {
                console = e.what();  // a file meant to be refused: its labels are checked too
            }
            EXPECT_EQ(console.find("warning"), std::string::npos) << dir / name << ": " << console;
        }
    }
    EXPECT_GE(files, 37);
}

}  // namespace
}  // namespace vexa
