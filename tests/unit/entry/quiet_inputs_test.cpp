// Inputs that once passed without a word: each now gets one line naming the file, row or
// setting, a warning when the run can go on and a refusal when it cannot.
#include <gtest/gtest.h>

#include "base/errors.h"
#include "base/matrix_text.h"
#include "entry/attribute_files.h"
#include "entry/run_file.h"
#include "network/graph.h"
#include "support/run_files.h"
#include "support/test_support.h"

namespace vexa {
namespace {

using namespace vexa::testing;

// What reading the run file says, or the line it is refused with.
std::string read_says(const std::string& dir, const GraphRunFile& file) {
    file.write(dir);
    WorkingDirectory here(dir);
    try {
        return capture([&](FILE* out) { read_run_file("run.txt", out); });
    } catch (const VexaError& e) {
        return std::string("refused: ") + e.what();
    }
}

TEST(QuietInputs, EachIsSaidInOneLineNamingItsPlace) {
    const std::string dir = scratch_directory("quiet_inputs");

    // A 1 on a graph's diagonal: the loop is dropped, and said once with the first node.
    write_text(dir + "/loops.txt", "0 1 0\n1 1 0\n0 0 1\n");
    MatrixNotes notes;
    const Graph g = read_graph(dir + "/loops.txt", 3, &notes);
    EXPECT_EQ(g.edge_count, 1);
    const auto lines = matrix_note_lines(notes, "network", "loops.txt");
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0],
              "vexa: network file 'loops.txt': 2 ties of a node to itself (first of node 2, a 1 "
              "on the diagonal) are dropped; a network has no loops");

    // A degree cap of 0 in a simulation: the run goes on, with a warning on the cap's line.
    GraphRunFile simulation;
    simulation.task = 1;
    simulation.degree_cap = 0;
    simulation.iterations = 100;
    simulation.effects["edge"] = {0.0, 0.0};
    const std::string cap = read_says(dir, simulation);
    EXPECT_NE(cap.find("vexa: warning: run file 'run.txt', line " +
                       std::to_string(value_line(simulation.text(), "degree_cap")) +
                       " (degree_cap): a cap of 0 lets no tie be added"),
              std::string::npos)
        << cap;

    // No sub-phase: no phase 2, so the estimate would be the start; said on its line.
    GraphRunFile estimation;
    estimation.network_file = "net.txt";
    estimation.subphases = 0;
    estimation.effects["edge"] = {0.0, 0.0};
    const std::string subphases = read_says(dir, estimation);
    EXPECT_NE(subphases.find("line " + std::to_string(value_line(estimation.text(), "subphases")) +
                             " (subphase_count): 0 sub-phases run no phase 2"),
              std::string::npos)
        << subphases;

    // A lambda far beyond what the weights can hold is refused, naming the lambda.
    estimation.subphases = 5;
    estimation.effects["AS"] = {0.0, 1e30};
    const std::string lambda = read_says(dir, estimation);
    EXPECT_EQ(lambda.rfind("refused: vexa: run file 'run.txt', line " +
                               std::to_string(value_line(estimation.text(), "AS") + 1) +
                               " (AS: lambda): lambda 1e+30 is above 10000",
                           0),
              0u)
        << lambda;
    estimation.effects["AS"] = {0.0, 1e4};  // the largest taken
    EXPECT_EQ(read_says(dir, estimation).find("refused"), std::string::npos);

    // A category with a fraction is a measurement: refused with the file, line and node.
    write_text(dir + "/groups.txt", "group\n1\n2\n1.5\n");
    try {
        read_attribute_file(dir + "/groups.txt", AttributeKind::categorical, 1, 3);
        ADD_FAILURE() << "a category of 1.5 was taken";
    } catch (const InputFileError& e) {
        EXPECT_NE(std::string(e.what()).find("line 4 (node 3), column 1: '1.5' is not a category"),
                  std::string::npos)
            << e.what();
    }
    write_text(dir + "/groups.txt", "group\n1\n2.0\nA\n");  // whole numbers and words stay
    EXPECT_NO_THROW(read_attribute_file(dir + "/groups.txt", AttributeKind::categorical, 1, 3));
}

}  // namespace
}  // namespace vexa
