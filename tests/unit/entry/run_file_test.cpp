#include "entry/run_file.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <sstream>

#include "base/errors.h"
#include "effects/catalogue.h"
#include "entry/attribute_files.h"
#include "model/parameter_vector.h"
#include "support/run_files.h"
#include "support/test_support.h"

namespace vexa {
namespace {

using namespace vexa::testing;
using Strings = std::vector<std::string>;

std::string joined(const Strings& lines, const char* end = "\n") {
    std::string text;
    for (const std::string& line : lines) text += line + end;
    return text;
}

// A scratch copy of the bundled run and attribute files with every line ended by `end`.
std::string copy_of_runfiles(const std::string& name, const char* end) {
    const std::string dir = scratch_directory(name);
    for (const auto& file : std::filesystem::directory_iterator(data_path("runfiles")))
        write_text(dir + "/" + file.path().filename().string(),
                   joined(lines_of(read_text(file.path().string())), end));
    return dir;
}

// The one line reading `path` ends with, or whether the task is known and where the gof report
// goes.
std::string outcome(const std::string& path) {
    RunFile file;
    try {
        capture([&](FILE* out) { file = read_run_file(path, out); });
    } catch (const VexaError& e) {
        return e.what();
    }
    return "known " + file.names.gof;
}

// The largest clique size an included effect reads.
int clique_order_of(const Model& m) {
    int order = 0;
    for (size_t r = 0; r < m.structural.size(); ++r) {
        if (m.structural[r].slot != -1)
            order = std::max<int>(order, structural_catalogue(m.kind).rows[r].clique_order);
    }
    return order;
}

// A read in three lines: the settings in the order of the format below (p: parameter count; g:
// structural and attribute flags; d: density; est: estimation settings) and the attribute names;
// "name slot value lambda; " of structural effects picked by their run-file name, then
// "kind:effect.attribute=slot:value, " of the attribute entries included or carrying a value
// (kinds: 0 binary, 1 continuous, 2 categorical, 3 covariate); the parameter vector.
std::string dump(const RunFile& f, const Strings& picks) {
    const RunSettings& s = f.settings;
    const Model& m = f.model;
    char line[2048];
    std::snprintf(line, sizeof line,
                  "[%s] %s %s n%d v:%s cap%d [%s] [%s] %d%d%d%d%d%d%d burn%g samples%d thin%g "
                  "clique%d p%d g%d%d "
                  "d%g est%d/%g/%d/%d/%d/%d [%s] ",
                  s.network_name.c_str(), task_name(s.task),
                  s.network_kind == NetworkKind::digraph ? "digraph" : "graph", s.node_count,
                  proposal_name(s.proposal, s.network_kind), s.degree_cap, s.network_file.c_str(),
                  s.constraint_file.c_str(), s.outputs.pajek, s.outputs.degree_distribution,
                  s.outputs.geodesic, s.outputs.cluster_giant, s.outputs.triangle_distribution,
                  s.outputs.twopath_distribution, s.outputs.et0nt_distribution, s.burn_in,
                  s.sample_count, s.thinning_interval, clique_order_of(m), m.parameter_count(),
                  m.structural_given, m.attributes_given, double(s.initial_density),
                  s.subphase_count, double(s.start_a_value), s.multiplication_factor,
                  s.phase3_steps, s.estimation_runs, s.gof_after_estimation,
                  s.parameter_sets_file.c_str());
    std::ostringstream out(line, std::ios::ate);
    for (const AttributeSection& a : m.attributes) out << joined(a.names, ",");
    out << '\n';
    for (const std::string& pick : picks) {
        for (size_t r = 0; r < m.structural.size(); ++r) {
            const EffectSetting& e = m.structural[r];
            const char* row = structural_catalogue(m.kind).rows[r].labels.update_name;
            if (row != nullptr && pick == row)
                out << pick << ' ' << e.slot << ' ' << e.value << ' ' << e.lambda << "; ";
        }
    }
    for (size_t k = 0; k < m.attributes.size(); ++k) {
        const AttributeSection& a = m.attributes[k];
        for (size_t e = 0; e < a.slot.size(); ++e)
            for (size_t i = 0; i < a.slot[e].size(); ++i)
                if (a.included[e][i] != 0 || a.value[e][i] != 0.0)
                    out << k << ':' << e << '.' << i << '=' << a.slot[e][i] << ':' << a.value[e][i]
                        << ", ";
    }
    out << '\n';
    for (const double v : pack(m)) out << v << ' ';
    return out.str();
}

TEST(RunFile, EveryTaskAndKindReadsToTheRightValuesAndPacksThem) {
    // Per file: the read as dump() shows it and, where given, what the attribute sections print.
    const struct {
        const char* file;
        Strings picks;
        std::string expected;
    } cases[] = {
        // Blanks inside text lines are kept. Lambda 0 in the file is 2, or 1 for AS2 and AT2,
        // whether
        // the effect is included or not; values of left-out effects are kept; of two clique effects
        // the larger order wins. Thinning is trunc(iterations / samples).
        {"graph_simulation.txt",
         {"edge", "2-star", "4-clique", "6-clique", "AS", "AS2", "AT", "AT2", "A2P", "AET"},
         "[  sim run one] simulation graph n30 v:edge swap cap6 [] [] 1010010 burn10000 samples300 "
         "thin333 clique6 p6 "
         "g10 d0.125 "
         "est5/0.1/2/500/1/0 [] \nedge 0 -4 0; 2-star -1 0.3 0; 4-clique 1 0.2 0; 6-clique 2 -0.1 "
         "0; "
         "AS 3 0.4 2; AS2 4 -0.2 1; AT 5 1.25 3.5; AT2 -1 0.7 1; A2P -1 0 2; AET -1 0 2.75; \n"
         "-4 0.2 -0.1 0.4 -0.2 1.25 "},
        // No maximum degree row: the default cap stays. The vector: structural effects by slot,
        // then
        // binary effects effect by effect in vector order, which puts T3u (northern only) before
        // activity (both) though activity was read first, then seats' sum and prod, distance's
        // edge, T2.
        {"graph_estimation.txt",
         {"7-clique", "AC"},
         "[flomarriage] estimation graph n16 v:toggle cap9999 [flomarriage.txt] [constraint "
         "file.txt] 0000000 burn0 "
         "samples0 thin0 "
         "clique8 p11 g11 d0 est7/0.05/3/1000/2/1 [] wealthy,northern,seats,distance,\n7-clique -1 "
         "0.9 0; "
         "AC 3 0.1 2; 0:0.0=4:0.5, 0:0.1=5:0.25, 0:1.1=-1:0.125, 0:9.0=-1:0.75, 0:9.1=6:-0.7, "
         "1:0.0=7:0.01, "
         "1:1.0=-1:0.02, 1:2.0=8:0.03, 3:0.0=9:1.5, 3:1.0=-1:2, 3:4.0=10:-0.5, \n"
         "0 0.5 -0.3 0.1 -0.7 0.5 0.25 0.01 0.03 1.5 -0.5 "},
        // Sections with flag 0: the attribute block's three empty sub-blocks follow at once.
        {"graph_gof.txt",
         {},
         "[flomarriage gof] goodness of fit graph n16 v:toggle cap5 [flomarriage.txt] [fixed.txt] "
         "0101101 burn500.5 "
         "samples7 thin714 "
         "clique0 p0 g01 d0 est5/0.1/2/500/1/0 [] \n\n"},
        // No iterations row: the number of parameter sets is kept. A left-out clique does not
        // count.
        {"graph_bayes.txt",
         {"4-clique", "5-clique"},
         "[flomarriage] Bayesian goodness of fit graph n16 v:toggle cap9999 [flomarriage.txt] [] "
         "0000000 burn2000 samples50 thin0 "
         "clique5 p3 g11 "
         "d0 est5/0.1/2/500/1/0 [posterior sets.txt] family,\n4-clique -1 0.5 0; 5-clique 1 0.5 0; "
         "2:0.0=-1:0.4, 2:1.0=2:-0.6, \n-2 0.5 -0.6 "},
        // The 42 entries land on their catalogue rows, whatever the catalogue's own order.
        {"digraph_simulation.txt",
         {"Transitive-Triad", "isolates", "AinS2", "AinAoutS", "AT-T", "A2P-TDU"},
         "[samplike sim] simulation digraph n18 v:toggle cap4 [] [] 1111111 burn1000 samples3 "
         "thin6666 clique0 p7 g10 "
         "d0.3 "
         "est5/0.1/2/500/1/0 [] friendship,\nTransitive-Triad 2 0.3 0; isolates -1 1 0; AinS2 -1 0 "
         "2; "
         "AinAoutS 3 -0.4 2; AT-T 4 0.8 3; A2P-TDU 5 -0.05 1.5; 3:0.0=6:0.9, \n-1.5 2 0.3 -0.4 0.8 "
         "-0.05 0.9 "},
        {"digraph_estimation.txt",
         {"AT-T"},
         "[samplike] estimation digraph n18 v:toggle cap9999 [samplike.txt] [samplike "
         "constraint.txt] 0000000 burn0 "
         "samples0 thin0 "
         "clique0 p8 g11 d0 est5/0.1/2/500/1/0 [] loyal,age,tenure,group,\nAT-T 2 0.5 2; "
         "0:2.0=3:0.2, "
         "1:0.0=4:0.1, 1:0.1=-1:0.3, 1:12.1=5:-0.2, 2:0.0=6:1.1, 2:3.0=7:-1.2, \n0 1 0.5 0.2 0.1 "
         "-0.2 1.1 -1.2 "},
        // Only a flag of exactly 1 counts: in2star's 2 leaves it out, and the attribute block's 2
        // means
        // no sub-blocks follow.
        {"digraph_gof.txt",
         {"in2star"},
         "[samplike] goodness of fit digraph n18 v:arc swap cap9 [samplike.txt] [] 0010000 burn100 "
         "samples1000 thin1 clique0 "
         "p2 g10 d0 "
         "est5/0.1/2/500/1/0 [] \nin2star -1 0.7 0; \n-1 1.5 "},
    };
    // The same from a copy with every line ended by "\r\n".
    for (const std::string& dir :
         {data_path("runfiles"), copy_of_runfiles("run_file_crlf", "\r\n")}) {
        WorkingDirectory here(dir);
        for (const auto& c : cases) {
            SCOPED_TRACE(dir + "/" + c.file);
            RunFile f;
            capture([&](FILE* out) { f = read_run_file(dir + "/" + c.file, out); });
            EXPECT_EQ(dump(f, c.picks), c.expected);
            // Distinct values unpacked go back where pack found them, and nothing else changes.
            RunFile g = f;
            std::vector<double> moved(static_cast<size_t>(f.model.parameter_count()));
            for (size_t k = 0; k < moved.size(); ++k) moved[k] = 100.0 + static_cast<double>(k);
            unpack(g.model, moved);
            EXPECT_EQ(pack(g.model), moved);
            unpack(g.model, pack(f.model));
            EXPECT_EQ(dump(g, c.picks), c.expected);
            // Every section is sized for the writers that walk it, given or not.
            for (size_t k = 0; k < f.model.attributes.size(); ++k) {
                EXPECT_EQ(f.model.attributes[k].slot.size(),
                          attribute_catalogue(f.model.kind, AttributeKind(k)).rows.size());
            }
        }
    }
}

TEST(RunFile, BadInputEndsTheRunWithOneClearLine) {
    WorkingDirectory here(scratch_directory("run_file_bad"));
    // Edits line `line` of `file` (from 1; below 1: keeps -line lines) in a fresh copy; reads
    // `run`.
    const auto fails = [](const std::string& run, const std::string& file, int line,
                          const std::string& text) {
        WorkingDirectory copy(copy_of_runfiles("run_file_edited", "\n"));
        Strings lines = lines_of(read_text(file));
        if (line > 0)
            lines.at(static_cast<size_t>(line - 1)) = text;
        else
            lines.resize(static_cast<size_t>(-line));
        write_text(file, joined(lines));
        return outcome(run);
    };
    EXPECT_EQ(outcome("no such.txt"), "vexa: cannot open run file 'no such.txt'");
    // graph_gof.txt: node_count's label at line 13, its value at 14, burn_in's value at 62,
    // sample_count's at 68. graph_simulation.txt: AS's label at 106, its flag at 107, "value
    // lambda" at 108. A label with a blank shifts the reading: its second word is taken for the
    // value.
    const struct {
        std::string file;
        int line;
        std::string text, expected;
    } cases[] = {
        {"graph_gof.txt", 14, "16x", "14 (node_count): expected a whole number, found '16x'"},
        {"graph_gof.txt", 13, "Number of nodes",
         "13 (node_count): expected a whole number, found 'of'"},
        {"graph_simulation.txt", 108, "0.4 fast",
         "108 (AS: lambda): expected a number, found 'fast'"},
        {"graph_simulation.txt", 108, "0.4", "109 (AS: lambda): expected a number, found 'AS2'"},
        {"graph_simulation.txt", 107, "yes",
         "107 (AS: inclusion flag): expected a whole number, found 'yes'"},
        {"graph_gof.txt", 68, "0", "68 (sample_count): at least 1 network must be kept, found 0"},
        {"graph_gof.txt", 14, "0", "14 (node_count): the network needs at least 1 node, found 0"},
        {"graph_gof.txt", 2, std::string(1000, 'n'),
         "2 (network_name): the name is 1000 characters long; names must stay below 1000"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(fails(c.file, c.file, c.line, c.text),
                  "vexa: run file '" + c.file + "', line " + c.expected);
    // A file that ends early names what it was about to read.
    EXPECT_EQ(fails("graph_gof.txt", "graph_gof.txt", -12, ""),
              "vexa: run file 'graph_gof.txt' ends before node_count (line 13)");

    // Attribute files, read by graph_estimation.txt (line 131 names the binary file) and
    // graph_bayes.txt: the names on line 1, then one row per node; a blank line is skipped.
    EXPECT_EQ(fails("graph_estimation.txt", "graph_estimation.txt", 131, "gone.txt"),
              "vexa: cannot open binary attribute file 'gone.txt'");
    const struct {
        int line;
        const char *text, *expected;
    } binary[] = {
        {4, "1 2", ", line 4 (node 3), column 2: '2' is not 0, 1 or NA"},
        {4, "1", ", line 4 (node 3): 1 values; each node needs 2, one per attribute"},
        {1, "wealthy", " names 1 attributes in line 1; the run file gives 2"},
        {17, "", " holds 15 node rows; the network has 16 nodes"},
    };
    for (const auto& c : binary)
        EXPECT_EQ(fails("graph_estimation.txt", "graph_binary.txt", c.line, c.text),
                  std::string("vexa: binary attribute file 'graph_binary.txt'") + c.expected);
    EXPECT_EQ(fails("graph_estimation.txt", "graph_covariate.txt", 17,
                    "15 14 13 12 11 10 9 8 7 6 5 4 3 2 1"),
              "vexa: covariate file 'graph_covariate.txt' holds 255 values after its name; a 16 x "
              "16 matrix "
              "needs 256");
    EXPECT_EQ(fails("graph_estimation.txt", "graph_continuous.txt", 3, "rich"),
              "vexa: continuous attribute file 'graph_continuous.txt', line 3 (node 2), column 1: "
              "'rich' is not a number or NA");

    // An unknown task or kind is refused, naming both codes, before anything after the head
    // is read.
    for (const std::string pair : {"5 1", "0 2", "2 3"}) {
        write_text("r.txt", "name\nnet\n\ndirectory\n\n\nvariant\n0\n\ntask\n" + pair +
                                "\n\nnot a run file\n");
        EXPECT_EQ(outcome("r.txt"), "vexa: run file 'r.txt' asks for task " + pair.substr(0, 1) +
                                        " on network kind " + pair.substr(2) +
                                        "; vexa runs tasks 1 to 4 on kinds 1 (graph) and 2 "
                                        "(digraph), so nothing was run");
    }
}

// Missing values read as 0 with a flag; categories may be names (then coded 1, 2, ..., equal
// numbers being one category), and numbers alone keep their values.
TEST(AttributeFiles, MissingValuesAndCategoryWords) {
    WorkingDirectory here(scratch_directory("attribute_words"));
    write_text("cat.txt", "group grade\nTurks 7\n7.0 7.0\nNA 8\nTurks .\n");
    const AttributeData cat = read_attribute_file("cat.txt", AttributeKind::categorical, 2, 4);
    EXPECT_EQ(cat.data[0], (std::vector<double>{1, 2, 0, 1}));
    EXPECT_EQ(cat.missing[0], (std::vector<uint8_t>{0, 0, 1, 0}));
    EXPECT_EQ(cat.data[1], (std::vector<double>{7, 7, 8, 0}));
    EXPECT_EQ(cat.missing[1], (std::vector<uint8_t>{0, 0, 0, 1}));
    write_text("bin.txt", "smoker\n1\nNA\n0\n.\n");
    const AttributeData bin = read_attribute_file("bin.txt", AttributeKind::binary, 1, 4);
    EXPECT_EQ(bin.data[0], (std::vector<double>{1, 0, 0, 0}));
    EXPECT_EQ(bin.missing[0], (std::vector<uint8_t>{0, 1, 0, 1}));
}

}  // namespace
}  // namespace vexa
