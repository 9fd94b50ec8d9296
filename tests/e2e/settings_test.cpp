// Settings that no run could carry out are answered before any work starts: one line naming
// the row and the value, no output file, and a failed status for the command line.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <functional>
#include <string>

#include "support/run_files.h"
#include "support/test_support.h"

namespace vexa {
namespace {

using testing::GraphRunFile;
using testing::run_vexa;
using testing::value_line;

TEST(Settings, ImpossibleSettingsAreRefusedNamingRowAndValue) {
    const std::string dir = testing::scratch_directory("settings_refused");
    testing::on_network(dir, "samplike.txt");
    const std::string path = dir + "/run.txt";
    GraphRunFile estimation = testing::on_network(dir, "flomarriage.txt");
    estimation.effects = {{"edge", {-1.6, 0.0}}, {"AS", {0.1, 2.0}}};
    GraphRunFile simulation = estimation;
    simulation.task = 1;
    simulation.burn_in = 100;
    simulation.iterations = 1000;
    simulation.samples = 10;
    GraphRunFile gof = simulation;
    gof.task = 3;

    using Edit = std::function<void(GraphRunFile&)>;
    const std::string phase3 =
        "(phase3_steps): phase 3 needs at least 2 draws for standard errors and t-ratios, found ";
    const std::string samples =
        "(sample_count): 1001 networks cannot be kept from 1000 iterations: a sample every 0 "
        "proposals keeps none (sample_count must be at most iterations)";
    const auto lambda = [](const char* value) {
        return std::string("(AS: lambda): lambda ") + value +
               " is below 1, where an alternating effect's weights (1 - 1/lambda)^k no longer "
               "fall steadily to 0: it has no proper change statistic and the model is "
               "degenerate; give 1 or more (0 for the default, 2)";
    };
    const struct {
        const GraphRunFile& base;
        Edit edit;
        const char* label;  // the label line before the value at fault
        std::string says;
    } cases[] = {
        {estimation, [](GraphRunFile& f) { f.runs = 0; }, "runs",
         "(estimation_runs): at least 1 estimation run is needed, found 0"},
        {estimation, [](GraphRunFile& f) { f.subphases = -1; }, "subphases",
         "(subphase_count): the number of sub-phases must be 0 or more, found -1"},
        {estimation, [](GraphRunFile& f) { f.gain = 0.0; }, "gain",
         "(start_a_value): the starting gain must be above 0, found 0"},
        {estimation, [](GraphRunFile& f) { f.gain = -0.5; }, "gain",
         "(start_a_value): the starting gain must be above 0, found -0.5"},
        {estimation, [](GraphRunFile& f) { f.factor = 0; }, "factor",
         "(multiplication_factor): the multiplication factor must be at least 1, found 0"},
        {estimation, [](GraphRunFile& f) { f.phase3 = 0; }, "phase3", phase3 + "0"},
        {estimation, [](GraphRunFile& f) { f.phase3 = 1; }, "phase3", phase3 + "1"},
        {estimation, [](GraphRunFile& f) { f.degree_cap = -2; }, "degree_cap",
         "(degree_cap): the cap must be 0 or more, found -2"},
        // Flomarriage: node 9 (the Medici) has 6 ties; samplike: node 1 sends 6 arcs.
        {estimation, [](GraphRunFile& f) { f.degree_cap = 5; }, "degree_cap",
         "(degree_cap): the cap 5 is below the degree 6 of node 9 (row 9 of network file "
         "'flomarriage.txt'); it must be at least the observed network's largest degree"},
        {gof,
         [](GraphRunFile& f) {
             f.kind = NetworkKind::digraph;
             f.network_file = "samplike.txt";
             f.nodes = 18;
             f.effects = {{"arc", {-1.0, 0.0}}};
             f.degree_cap = 4;
         },
         "degree_cap",
         "(degree_cap): the cap 4 is below the out-degree 6 of node 1 (row 1 of network file "
         "'samplike.txt'); it must be at least the observed network's largest out-degree"},
        {simulation, [](GraphRunFile& f) { f.samples = 1001; }, "samples", samples},
        {gof, [](GraphRunFile& f) { f.samples = 1001; }, "samples", samples},
        {simulation, [](GraphRunFile& f) { f.iterations = -10; }, "iterations",
         "(iterations): the number of proposals must be 0 or more, found -10"},
        {gof, [](GraphRunFile& f) { f.burn_in = -1; }, "burn_in",
         "(burn_in): the burn-in must be 0 or more steps, found -1"},
        {simulation,
         [](GraphRunFile& f) {
             f.effects["AS"] = {0.1, 0.5};
         },
         "AS", lambda("0.5")},
        {estimation,
         [](GraphRunFile& f) {
             f.effects["AS"] = {0.1, -2.0};
         },
         "AS", lambda("-2")},
        {estimation,
         [](GraphRunFile& f) {
             f.effects["AS"] = {0.1, INFINITY};
         },
         "AS", "(AS: lambda): lambda must be a finite number, found 'inf'"},
    };
    for (const auto& c : cases) {
        GraphRunFile file = c.base;
        c.edit(file);
        std::filesystem::remove_all(dir + "/out");
        int status = 0;
        const std::string printed = run_vexa(dir, file, 1, false, &status);
        // An effect's value and lambda stand on the line after its inclusion flag.
        const int line = value_line(file.text(), c.label) + (std::string(c.label) == "AS");
        const std::string expected =
            "vexa: run file '" + path + "', line " + std::to_string(line) + " " + c.says + "\n";
        EXPECT_EQ(printed, expected);
        EXPECT_EQ(status, 1) << c.says;
        EXPECT_TRUE(std::filesystem::is_empty(dir + "/out")) << c.says;
    }

    // An unknown task runs nothing and says so, as a refusal.
    GraphRunFile unknown = estimation;
    unknown.task = 5;
    int status = 0;
    EXPECT_EQ(run_vexa(dir, unknown, 1, false, &status),
              "vexa: run file '" + path +
                  "' asks for task 5 on network kind 1; vexa runs tasks 1 to 4 on kinds 1 "
                  "(graph) and 2 (digraph), so nothing was run\n");
    EXPECT_EQ(status, 1);

    // The limits themselves are allowed: a cap equal to the largest degree, one sample per
    // proposal, lambda 1.
    GraphRunFile edge = gof;
    edge.degree_cap = 6;
    edge.iterations = 20;
    edge.samples = 20;
    edge.effects["AS"] = {0.1, 1.0};
    std::filesystem::remove_all(dir + "/out");
    run_vexa(dir, edge, 1, false, &status);
    EXPECT_EQ(status, 0);
    EXPECT_NE(testing::read_text(dir + "/out/gof_net.txt").find("Accepted"), std::string::npos);
}

TEST(Settings, ValuedMatricesAreReadAsNoTieAndSaidOnce) {
    const std::string dir = testing::scratch_directory("settings_valued");
    // Ties 1-2 and 3-4 (from 1); the 2 at row 1, column 3 is no tie, nor is the 1 at row 4,
    // column 2, whose upper cell holds 0. The constraint allows every pair but 1-4, whose cell
    // holds 9.
    testing::write_text(dir + "/valued.txt", "0 1 2 0\n1 0 0 0\n0 0 0 1\n0 1 1 0\n");
    testing::write_text(dir + "/allowed.txt", "0 1 1 9\n1 0 1 1\n1 1 0 1\n9 1 1 0\n");
    GraphRunFile file;
    file.task = 3;
    file.nodes = 4;
    file.network_file = "valued.txt";
    file.constraint_file = "allowed.txt";
    file.effects = {{"edge", {-1.0, 0.0}}};
    file.iterations = 10;
    file.samples = 10;
    const std::string printed = run_vexa(dir, file, 1);
    EXPECT_EQ(printed.substr(0, printed.find("1\t")),
              "vexa: network file 'valued.txt': 1 cell holds a value other than 0 and 1 (at row "
              "1, column 3); it is read as no tie\n"
              "vexa: network file 'valued.txt': the matrix is not symmetric (1 pair differs, "
              "first at row 2, column 4); only its upper triangle is used\n"
              "vexa: constraint file 'allowed.txt': 2 cells hold values other than 0 and 1 "
              "(first at row 1, column 4); they are read as no tie\n");
    EXPECT_EQ(testing::read_text(dir + "/out/start_statistics_net.txt"),
              "\n***This graph contains:****\nedge\t2\n");
}

}  // namespace
}  // namespace vexa
