#include "entry/run_file.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "base/errors.h"
#include "effects/digraph_catalogue.h"
#include "effects/graph_catalogue.h"
#include "entry/attribute_files.h"
#include "entry/parameter_vector.h"
#include "support/test_support.h"

namespace vexa {
namespace {

namespace fs = std::filesystem;
using testing::data_path;
using testing::read_text;
using testing::scratch_directory;
using testing::write_text;
using E = GraphEffect;
using Ints = std::vector<int32_t>;
using Doubles = std::vector<double>;

// Attribute and covariate files are named relative to the working directory, as the front
// end writes them.
struct WorkingDirectory {
    fs::path saved = fs::current_path();
    explicit WorkingDirectory(const std::string& dir) { fs::current_path(dir); }
    ~WorkingDirectory() { fs::current_path(saved); }
};

std::string runfile(const std::string& name) { return data_path("runfiles/" + name); }

// Reads a run file with the console captured.
RunFile read(const std::string& path, std::string* console = nullptr) {
    char* buffer = nullptr;
    size_t size = 0;
    FILE* stream = open_memstream(&buffer, &size);
    auto close = [&] {
        std::fclose(stream);
        if (console != nullptr) console->assign(buffer, size);
        std::free(buffer);
    };
    try {
        RunFile file = read_run_file(path, stream);
        close();
        return file;
    } catch (...) {
        close();
        throw;
    }
}

// The message of the error of type E that `run` throws.
template <typename Error>
std::string message_of(const std::function<void()>& run) {
    try {
        run();
    } catch (const Error& error) {
        return error.what();
    } catch (const std::exception& error) {
        return std::string("wrong error type: ") + error.what();
    }
    return "no error";
}

std::vector<std::string> lines_of(const std::string& path) {
    std::vector<std::string> lines;
    std::istringstream in(read_text(path));
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
}
std::string joined(const std::vector<std::string>& lines, const char* end = "\n") {
    std::string text;
    for (const std::string& line : lines) text += line + end;
    return text;
}

// A data run file with line `number` (from 1) replaced, as a scratch file.
std::string edited(const std::string& name, int number, const std::string& replacement) {
    std::vector<std::string> lines = lines_of(runfile(name));
    lines.at(static_cast<size_t>(number - 1)) = replacement;
    const std::string path = scratch_directory("run_file_edits") + "/r.txt";
    write_text(path, joined(lines));
    return path;
}

Ints slots(const RunFile& file, std::initializer_list<E> effects) {
    Ints result;
    for (const E e : effects) result.push_back(file.model.structural[static_cast<size_t>(e)].slot);
    return result;
}
std::vector<float> lambdas(const RunFile& file, std::initializer_list<E> effects) {
    std::vector<float> result;
    for (const E e : effects)
        result.push_back(file.model.structural[static_cast<size_t>(e)].lambda);
    return result;
}
double value(const RunFile& file, E effect) {
    return file.model.structural[static_cast<size_t>(effect)].value;
}
// A digraph effect by its run-file name.
const EffectSetting& arc_effect(const RunFile& file, const std::string& name) {
    const auto& rows = digraph_catalogue();
    for (size_t k = 0; k < rows.size(); ++k) {
        if (rows[k].update_name != nullptr && name == rows[k].update_name)
            return file.model.structural[k];
    }
    throw std::logic_error("no digraph effect " + name);
}
Ints output_flags(const RunSettings& s) {
    return {s.pajek_output,
            s.degree_distribution_output,
            s.geodesic_output,
            s.cluster_giant_output,
            s.triangle_distribution_output,
            s.twopath_distribution_output,
            s.et0nt_distribution_output};
}

// Everything a read gives, as text, so that two reads can be compared whole.
std::string everything(const RunFile& file) {
    std::ostringstream out;
    const RunSettings& s = file.settings;
    out << '[' << s.network_name << "][" << s.output_directory << "][" << s.network_file << "]["
        << s.constraint_file << "] " << s.node_count << ' ' << s.start_a_value << ' '
        << s.gof_after_estimation << ' ' << file.names.gof << '\n';
    for (const EffectSetting& e : file.model.structural)
        out << e.slot << ':' << e.value << ':' << e.lambda << ' ';
    for (const AttributeSection& a : file.model.attributes) {
        out << '\n' << a.given << a.count << '[' << a.file << ']';
        for (const std::string& name : a.names) out << name << ',';
        for (const Doubles& column : a.data) {
            for (const double v : column) out << v << ',';
        }
        for (size_t e = 0; e < a.slot.size(); ++e) {
            for (size_t k = 0; k < a.slot[e].size(); ++k) {
                out << a.included[e][k] << '/' << a.slot[e][k] << '/' << a.value[e][k] << ' ';
            }
        }
    }
    return out.str();
}

// Graph binary effects in the order an attribute's entries are read.
enum BinaryEffect { activity = 0, interaction = 1, t3u = 9 };

TEST(RunFile, GraphSimulationReadsHeadStructuralEffectsAndThinning) {
    const RunFile file = read(runfile("graph_simulation.txt"));
    const RunSettings& s = file.settings;
    ASSERT_TRUE(file.task_known);
    // Leading and inner blanks of text lines are kept.
    EXPECT_EQ(s.network_name, "  sim run one");
    EXPECT_EQ(file.names.start_statistics,
              std::string("out dir/sub") + path_separator + "start_statistics_  sim run one.txt");
    EXPECT_EQ(Ints({s.sampler_variant, s.task, s.network_kind, s.node_count}), Ints({1, 1, 1, 30}));
    EXPECT_EQ(s.initial_density, 0.125f);
    EXPECT_EQ(s.degree_cap, 6);

    // Slots in reading order; values are kept for effects left out.
    EXPECT_EQ(
        slots(file, {E::edge, E::clique4, E::clique6, E::as, E::as2, E::at, E::star2, E::at2}),
        Ints({0, 1, 2, 3, 4, 5, -1, -1}));
    EXPECT_EQ(file.model.structural_included, 6);
    EXPECT_EQ(value(file, E::edge), -4.0);
    EXPECT_EQ(value(file, E::star2), 0.3);
    EXPECT_EQ(value(file, E::at2), 0.7);
    // Lambda 0 in the file is 2.0, or 1.0 for AS2 and AT2, included or not; others as read.
    EXPECT_EQ(lambdas(file, {E::as, E::as2, E::at, E::at2, E::a2p, E::aet}),
              std::vector<float>({2.0f, 1.0f, 3.5f, 1.0f, 2.0f, 2.75f}));
    EXPECT_EQ(file.model.clique_order, 6);  // 4-clique and 6-clique: the later one wins

    // Sections that were not given are still sized for the writers that walk them.
    EXPECT_FALSE(file.model.attributes_given);
    EXPECT_EQ(file.model.section(AttributeKind::binary).included.size(), 14u);
    EXPECT_EQ(file.model.section(AttributeKind::covariate).slot.size(), 6u);
    EXPECT_EQ(file.model.parameter_count(), 6);

    EXPECT_EQ(s.constraint_given, 0);
    EXPECT_EQ(output_flags(s), Ints({1, 0, 1, 0, 0, 1, 0}));
    EXPECT_EQ(s.burn_in, 10000.0);
    EXPECT_EQ(s.sample_count, 300);
    EXPECT_EQ(s.thinning_interval, 333.0);  // trunc(100000 / 300)
}

TEST(RunFile, GraphEstimationReadsAttributesCovariateAndConstraint) {
    WorkingDirectory here(data_path("runfiles"));
    std::string console;
    const RunFile file = read(runfile("graph_estimation.txt"), &console);
    const RunSettings& s = file.settings;
    ASSERT_TRUE(file.task_known);
    EXPECT_EQ(s.network_file, "flomarriage.txt");
    EXPECT_EQ(s.degree_cap, 9999);  // no maximum degree row: the default stays
    EXPECT_EQ(s.constraint_file, "constraint file.txt");
    EXPECT_EQ(Ints({s.subphase_count, s.multiplication_factor, s.phase3_steps, s.estimation_runs,
                    s.gof_after_estimation}),
              Ints({7, 3, 1000, 2, 1}));
    EXPECT_EQ(s.start_a_value, 0.05f);

    EXPECT_EQ(slots(file, {E::edge, E::triangle, E::as, E::ac, E::clique7}),
              Ints({0, 1, 2, 3, -1}));
    EXPECT_EQ(file.model.clique_order, 8);

    // Binary: wealthy (every third node) and northern (the first eight), partially included;
    // slots follow reading order, attribute by attribute.
    const AttributeSection& binary = file.model.section(AttributeKind::binary);
    EXPECT_EQ(binary.names, (std::vector<std::string>{"wealthy", "northern"}));
    EXPECT_EQ(binary.data,
              (std::vector<Doubles>{{0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 1, 0},
                                    {1, 1, 1, 1, 1, 1, 1, 1, 0, 0, 0, 0, 0, 0, 0, 0}}));
    EXPECT_EQ(binary.slot[activity], Ints({4, 5}));
    EXPECT_EQ(binary.slot[t3u], Ints({-1, 6}));
    EXPECT_EQ(binary.included[t3u], Ints({0, 1}));
    EXPECT_EQ(binary.value[t3u], Doubles({0.75, -0.7}));
    EXPECT_EQ(binary.value[interaction], Doubles({0.0, 0.125}));
    EXPECT_EQ(binary.included_count, 3);

    const AttributeSection& continuous = file.model.section(AttributeKind::continuous);
    EXPECT_EQ(continuous.data[0][9], 15.0);  // node 10 has 10 x 1.5 seats
    EXPECT_EQ(continuous.slot, (std::vector<Ints>{{7}, {-1}, {8}}));
    EXPECT_EQ(continuous.value[1][0], 0.02);
    EXPECT_FALSE(file.model.section(AttributeKind::categorical).given);

    // The covariate: the distance between nodes r and c is |r - c|.
    const AttributeSection& covariate = file.model.section(AttributeKind::covariate);
    EXPECT_EQ(covariate.names, (std::vector<std::string>{"distance"}));
    ASSERT_EQ(covariate.data[0].size(), 256u);
    EXPECT_EQ(covariate.data[0][2 * 16 + 7], 5.0);
    EXPECT_EQ(covariate.data[0][15 * 16 + 0], 15.0);
    EXPECT_EQ(covariate.slot, (std::vector<Ints>{{9}, {-1}, {-1}, {-1}, {10}, {-1}}));
    EXPECT_EQ(covariate.value[1][0], 2.0);
    EXPECT_EQ(file.model.parameter_count(), 11);

    EXPECT_EQ(console,
              "binary attributes\n2 binary attributes\ngraph_binary.txt\n2 binary attributes\n"
              "continuous attributes\n1 continuous attributes\ngraph_continuous.txt\n"
              "1 continuous attributes\n");
}

TEST(RunFile, GraphGoodnessOfFitAndBayesianRows) {
    const RunFile gof = read(runfile("graph_gof.txt"));
    ASSERT_TRUE(gof.task_known);
    EXPECT_EQ(gof.settings.network_name, "flomarriage gof");
    EXPECT_EQ(gof.settings.degree_cap, 5);
    // Sections with flag 0: the attribute block's three empty sub-blocks follow at once.
    EXPECT_FALSE(gof.model.structural_given);
    EXPECT_TRUE(gof.model.attributes_given);
    EXPECT_EQ(gof.model.clique_order, 0);
    EXPECT_TRUE(pack(gof.model).empty());
    EXPECT_EQ(gof.settings.constraint_file, "fixed.txt");
    EXPECT_EQ(output_flags(gof.settings), Ints({0, 1, 0, 1, 1, 0, 1}));
    EXPECT_EQ(gof.settings.burn_in, 500.5);
    EXPECT_EQ(gof.settings.thinning_interval, 714.0);  // 5000 / 7 = 714.28...

    WorkingDirectory here(data_path("runfiles"));
    std::string console;
    const RunFile bayes = read(runfile("graph_bayes.txt"), &console);
    ASSERT_TRUE(bayes.task_known);
    EXPECT_EQ(bayes.names.estimation, "estimation_flomarriage.txt");  // empty directory
    EXPECT_EQ(bayes.model.clique_order, 5);
    const AttributeSection& categorical = bayes.model.section(AttributeKind::categorical);
    EXPECT_EQ(categorical.data[0][6], 3.0);  // node 7: 7 mod 4
    EXPECT_EQ(categorical.slot, (std::vector<Ints>{{-1}, {2}}));
    EXPECT_EQ(console, "graph_categorical.txt\n1 categorical attributes\n");
    EXPECT_EQ(bayes.settings.parameter_sets_file, "posterior sets.txt");
    EXPECT_EQ(bayes.settings.burn_in, 2000.0);
    // No iterations row; the number of parameter sets is kept as it is.
    EXPECT_EQ(bayes.settings.sample_count, 50);
    EXPECT_EQ(bayes.settings.thinning_interval, 0.0);
}

TEST(RunFile, DigraphRunsOfEveryTask) {
    WorkingDirectory here(data_path("runfiles"));
    const RunFile sim = read(runfile("digraph_simulation.txt"));
    ASSERT_TRUE(sim.task_known);
    EXPECT_EQ(sim.model.kind, NetworkKind::digraph);
    EXPECT_EQ(sim.settings.degree_cap, 4);
    // The 42 entries land on their catalogue rows, whatever the catalogue's own order.
    EXPECT_EQ(Ints({arc_effect(sim, "arc").slot, arc_effect(sim, "reciprocity").slot,
                    arc_effect(sim, "Transitive-Triad").slot, arc_effect(sim, "isolates").slot,
                    arc_effect(sim, "AinAoutS").slot, arc_effect(sim, "AT-T").slot,
                    arc_effect(sim, "A2P-TDU").slot}),
              Ints({0, 1, 2, -1, 3, 4, 5}));
    EXPECT_EQ(arc_effect(sim, "Transitive-Triad").value, 0.3);
    EXPECT_EQ(arc_effect(sim, "isolates").value, 1.0);
    EXPECT_EQ(arc_effect(sim, "AinAoutS").value, -0.4);
    EXPECT_EQ(
        std::vector<float>({arc_effect(sim, "AinAoutS").lambda, arc_effect(sim, "AT-T").lambda,
                            arc_effect(sim, "A2P-TDU").lambda, arc_effect(sim, "AinS2").lambda}),
        std::vector<float>({2.0f, 3.0f, 1.5f, 2.0f}));
    EXPECT_EQ(sim.model.clique_order, 0);
    // The covariate: friendship from r to c (from 1) is r + c when r < c, else 0.
    const AttributeSection& covariate = sim.model.section(AttributeKind::covariate);
    ASSERT_EQ(covariate.data[0].size(), 324u);
    EXPECT_EQ(covariate.data[0][2 * 18 + 5], 9.0);
    EXPECT_EQ(covariate.data[0][5 * 18 + 2], 0.0);
    EXPECT_EQ(covariate.slot, (std::vector<Ints>{{6}}));
    EXPECT_EQ(sim.settings.thinning_interval, 6666.0);

    std::string console;
    const RunFile est = read(runfile("digraph_estimation.txt"), &console);
    EXPECT_EQ(est.settings.constraint_file, "samplike constraint.txt");
    EXPECT_EQ(est.model.section(AttributeKind::binary).slot[2], Ints({3}));  // receiver
    const AttributeSection& continuous = est.model.section(AttributeKind::continuous);
    EXPECT_EQ(continuous.names, (std::vector<std::string>{"age", "tenure"}));
    EXPECT_EQ(continuous.data[1][17], 8.5);
    EXPECT_EQ(continuous.slot[0], Ints({4, -1}));  // sender
    EXPECT_EQ(continuous.value[0], Doubles({0.1, 0.3}));
    EXPECT_EQ(continuous.slot[12], Ints({-1, 5}));  // path2
    EXPECT_EQ(est.model.section(AttributeKind::categorical).slot,
              (std::vector<Ints>{{6}, {-1}, {-1}, {7}}));
    EXPECT_EQ(est.model.parameter_count(), 8);
    EXPECT_EQ(console,
              "binary attributes\n1 binary attributes\ndigraph_binary.txt\n1 binary attributes\n"
              "continuous attributes\n2 continuous attributes\ndigraph_continuous.txt\n"
              "2 continuous attributes\ndigraph_categorical.txt\n1 categorical attributes\n");

    // Only a flag of exactly 1 counts: in2star's 2 leaves it out, and the attribute block's 2
    // means no sub-blocks follow.
    const RunFile gof = read(runfile("digraph_gof.txt"));
    EXPECT_EQ(gof.model.structural_included, 2);
    EXPECT_EQ(arc_effect(gof, "in2star").slot, -1);
    EXPECT_EQ(arc_effect(gof, "in2star").value, 0.7);
    EXPECT_FALSE(gof.model.attributes_given);
    EXPECT_EQ(gof.settings.thinning_interval, 1.0);

    const RunFile bayes = read(runfile("digraph_bayes.txt"));
    EXPECT_EQ(arc_effect(bayes, "Cyclic-Triad").slot, 1);
    EXPECT_EQ(bayes.settings.parameter_sets_file, "sets.txt");
    EXPECT_EQ(bayes.settings.constraint_file, "c.txt");
    EXPECT_EQ(bayes.settings.sample_count, 12);
}

TEST(RunFile, WindowsLineEndsAndUnknownTasks) {
    // The estimation file and its attribute files with every line ended by "\r\n".
    const std::string dir = scratch_directory("run_file_crlf");
    for (const char* name : {"graph_estimation.txt", "graph_binary.txt", "graph_continuous.txt",
                             "graph_covariate.txt"}) {
        write_text(dir + "/" + name, joined(lines_of(runfile(name)), "\r\n"));
    }
    std::string plain_console, crlf_console;
    RunFile plain, crlf;
    {
        WorkingDirectory here(data_path("runfiles"));
        plain = read(runfile("graph_estimation.txt"), &plain_console);
    }
    {
        WorkingDirectory here(dir);
        crlf = read(dir + "/graph_estimation.txt", &crlf_console);
    }
    EXPECT_EQ(crlf.settings.constraint_file, "constraint file.txt");
    EXPECT_EQ(everything(crlf), everything(plain));
    EXPECT_EQ(crlf_console, plain_console);

    // An unknown task or kind: the names are formed and nothing after the head is read.
    for (const char* pair : {"5 1", "0 2", "2 3"}) {
        write_text(dir + "/r.txt", "name\nnet\n\ndirectory\nout\n\nvariant\n0\n\ntask\n" +
                                       std::string(pair) + "\n\nnot a run file at all\n");
        const RunFile file = read(dir + "/r.txt");
        EXPECT_FALSE(file.task_known) << pair;
        EXPECT_EQ(file.names.gof, std::string("out") + path_separator + "gof_net.txt");
    }
}

TEST(RunFile, BadRunFilesEndTheRunWithOneClearLine) {
    EXPECT_EQ(message_of<RunFileError>([] { read("/no/such/r.txt"); }),
              "vexa: cannot open run file '/no/such/r.txt'");
    auto fails = [](const std::string& path) {
        return message_of<RunFileError>([&] { read(path); });
    };
    const std::string at =
        "vexa: run file '" + scratch_directory("run_file_edits") + "/r.txt', line ";

    // graph_gof.txt: line 13 is node_count's label, line 14 its value, 62 burn_in's value.
    EXPECT_EQ(fails(edited("graph_gof.txt", 14, "abc")),
              at + "14 (node_count): expected a whole number, found 'abc'");
    EXPECT_EQ(fails(edited("graph_gof.txt", 14, "16x")),
              at + "14 (node_count): expected a whole number, found '16x'");
    EXPECT_EQ(fails(edited("graph_gof.txt", 62, "5oo")),
              at + "62 (burn_in): expected a number, found '5oo'");
    // A label with a blank shifts the reading: its second word is taken for the value.
    EXPECT_EQ(fails(edited("graph_gof.txt", 13, "Number of nodes")),
              at + "13 (node_count): expected a whole number, found 'of'");

    // Structural entries go by their run-file name. graph_simulation.txt: AS's label at line
    // 106, its flag at 107, "value lambda" at 108.
    ASSERT_EQ(lines_of(runfile("graph_simulation.txt"))[105], "AS");
    EXPECT_EQ(fails(edited("graph_simulation.txt", 108, "0.4 fast")),
              at + "108 (AS: lambda): expected a number, found 'fast'");
    EXPECT_EQ(fails(edited("graph_simulation.txt", 108, "0.4")),  // takes the next label
              at + "109 (AS: lambda): expected a number, found 'AS2'");
    EXPECT_EQ(fails(edited("graph_simulation.txt", 107, "yes")),
              at + "107 (AS: inclusion flag): expected a whole number, found 'yes'");

    // A file that ends early names what it was about to read.
    std::vector<std::string> lines = lines_of(runfile("graph_gof.txt"));
    const std::string path = scratch_directory("run_file_short") + "/r.txt";
    lines.resize(12);
    write_text(path, joined(lines));
    EXPECT_EQ(fails(path), "vexa: run file '" + path + "' ends before node_count (line 13)");
    lines.resize(1);
    write_text(path, joined(lines));
    EXPECT_EQ(fails(path), "vexa: run file '" + path + "' ends before network_name (line 2)");

    // Settings that cannot be carried out.
    auto impossible = [](const std::string& file) {
        return message_of<SettingError>([&] { read(file); });
    };
    EXPECT_EQ(impossible(edited("graph_gof.txt", 68, "0")),
              at + "68 (sample_count): at least 1 network must be kept, found 0");
    EXPECT_EQ(impossible(edited("graph_gof.txt", 14, "0")),
              at + "14 (node_count): the network needs at least 1 node, found 0");
    EXPECT_EQ(
        impossible(edited("graph_gof.txt", 2, std::string(1000, 'n'))),
        at + "2 (network_name): the name is 1000 characters long; names must stay below 1000");
    EXPECT_EQ(read(edited("graph_gof.txt", 2, std::string(999, 'n'))).settings.network_name.size(),
              999u);
}

TEST(RunFile, BadAttributeFilesNameTheFileLineAndColumn) {
    const std::string dir = scratch_directory("run_file_attributes");
    WorkingDirectory here(dir);
    const std::string run = dir + "/run.txt";
    for (const char* name :
         {"graph_estimation.txt", "graph_continuous.txt", "graph_covariate.txt"}) {
        write_text(dir + "/" + name, read_text(runfile(name)));
    }
    write_text(run, read_text(runfile("graph_estimation.txt")));
    auto fails = [&] { return message_of<InputFileError>([&] { read(run); }); };
    EXPECT_EQ(fails(), "vexa: cannot open binary attribute file 'graph_binary.txt'");

    const std::vector<std::string> lines = lines_of(runfile("graph_binary.txt"));
    auto with_line = [&](size_t k, const std::string& text) {
        std::vector<std::string> changed = lines;
        changed.at(k) = text;
        write_text(dir + "/graph_binary.txt", joined(changed));
        return fails();
    };
    const std::string binary = "vexa: binary attribute file 'graph_binary.txt'";
    EXPECT_EQ(with_line(3, "1 2"), binary + ", line 4 (node 3), column 2: '2' is not 0 or 1");
    EXPECT_EQ(with_line(3, "1 x"), binary + ", line 4 (node 3), column 2: 'x' is not a number");
    EXPECT_EQ(with_line(3, "1"),
              binary + ", line 4 (node 3): 1 values; each node needs 2, one per attribute");
    EXPECT_EQ(with_line(0, "wealthy"),
              binary + " names 1 attributes in line 1; the run file gives 2");
    write_text(dir + "/graph_binary.txt", joined({lines.begin(), lines.end() - 1}));
    EXPECT_EQ(fails(), binary + " holds 15 node rows; the network has 16 nodes");

    write_text(dir + "/graph_binary.txt", joined(lines));
    std::vector<std::string> covariate = lines_of(runfile("graph_covariate.txt"));
    covariate.back() = "15 14 13 12 11 10 9 8 7 6 5 4 3 2 1";
    write_text(dir + "/graph_covariate.txt", joined(covariate));
    EXPECT_EQ(fails(),
              "vexa: covariate file 'graph_covariate.txt' holds 255 values after its name; "
              "a 16 x 16 matrix needs 256");

    // Categorical codes are whole numbers; blank lines do no harm.
    write_text(dir + "/c.txt", "group\n\n2\n 2.0 \n\n-1\n");
    EXPECT_EQ(read_attribute_file(dir + "/c.txt", AttributeKind::categorical, 1, 3).data,
              (std::vector<Doubles>{{2.0, 2.0, -1.0}}));
    write_text(dir + "/c.txt", "group\n2\n2.5\n1\n");
    EXPECT_EQ(message_of<InputFileError>(
                  [&] { read_attribute_file(dir + "/c.txt", AttributeKind::categorical, 1, 3); }),
              "vexa: categorical attribute file '" + dir +
                  "/c.txt', line 3 (node 2), column 1: '2.5' is not a whole number");
}

TEST(ParameterVector, PackAndUnpackARunFileModelWithAttributes) {
    WorkingDirectory here(data_path("runfiles"));
    RunFile file = read(runfile("graph_estimation.txt"));
    Model& m = file.model;
    const std::string before = everything(file);

    // Structural effects by slot, then binary effects effect by effect in vector order, which
    // puts T3u before activity though activity was read first. T3u, included for the second
    // attribute only, takes one entry, where the reading gave activity a slot.
    const Doubles expected{0.0,  0.5,  -0.3, 0.1,  // edge, Triangle, AS, AC
                           -0.7,                   // T3u of northern
                           0.5,  0.25,             // activity of wealthy, northern
                           0.01, 0.03,             // seats: sum, prod
                           1.5,  -0.5};            // distance: edge, T2
    EXPECT_EQ(pack(m), expected);
    EXPECT_NE(expected[static_cast<size_t>(m.section(AttributeKind::binary).slot[t3u][1])], -0.7);

    unpack(m, pack(m));
    EXPECT_EQ(everything(file), before);

    // Distinct entries go back to the effects they came from; left-out values stay.
    Doubles moved(expected.size());
    for (size_t k = 0; k < moved.size(); ++k) moved[k] = 100.0 + static_cast<double>(k);
    unpack(m, moved);
    const AttributeSection& binary = m.section(AttributeKind::binary);
    EXPECT_EQ(value(file, E::ac), 103.0);
    EXPECT_EQ(value(file, E::clique7), 0.9);
    EXPECT_EQ(binary.value[t3u], Doubles({0.75, 104.0}));
    EXPECT_EQ(binary.value[activity], Doubles({105.0, 106.0}));
    EXPECT_EQ(binary.value[interaction], Doubles({0.0, 0.125}));
    EXPECT_EQ(m.section(AttributeKind::continuous).value[1][0], 0.02);
    EXPECT_EQ(m.section(AttributeKind::covariate).value[4][0], 110.0);
    EXPECT_EQ(pack(m), moved);
}

}  // namespace
}  // namespace vexa
