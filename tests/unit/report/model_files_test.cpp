// The files written from a model's effects: the update files and the SPSS syntax.
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "base/errors.h"
#include "effects/graph/graph_catalogue.h"
#include "report/spss.h"
#include "report/update_files.h"
#include "support/run_files.h"
#include "support/test_support.h"

namespace vexa {
namespace {

using Strings = std::vector<std::string>;
using testing::read_text;

// A sub-block as the run-file reader leaves it: nothing included, every value 10 * effect +
// attribute.
AttributeSection& give_section(Model& model, AttributeKind kind, const Strings& names,
                               size_t effects) {
    AttributeSection& s = model.section(kind);
    s.given = true;
    s.count = static_cast<int32_t>(names.size());
    s.names = names;
    s.included.assign(effects, std::vector<int32_t>(names.size(), 0));
    s.value.assign(effects, std::vector<double>(names.size(), 0.0));
    for (size_t e = 0; e < effects; ++e)
        for (size_t a = 0; a < names.size(); ++a) s.value[e][a] = static_cast<double>(10 * e + a);
    return s;
}

// Checks the number of entries ("name value", one line each) of an update file and those at some
// positions.
void check_update(const std::string& path, size_t count,
                  const std::map<size_t, std::string>& spots) {
    const Strings lines = testing::lines_of(read_text(path));
    EXPECT_EQ(lines.size(), 2 * count) << path;
    for (const auto& [k, entry] : spots)
        EXPECT_EQ(2 * k + 1 < lines.size() ? lines[2 * k] + " " + lines[2 * k + 1] : "", entry)
            << path;
}

TEST(UpdateFiles, GraphModelWritesEveryEffectWithItsValue) {
    // Run-file values 0.25 + catalogue row; the edge carries its estimate, ln(0.2).
    Model model = empty_model(NetworkKind::graph);
    model.structural_given = true;
    for (size_t r = 0; r < model.structural.size(); ++r)
        model.structural[r].value = double(r) + 0.25;
    model.structural[0] = {-1.6094379124341003, 0, 0.0f};
    // activity estimated for age only; wealth keeps its run-file value.
    give_section(model, AttributeKind::binary, {"wealth", "age"}, 14).value[0][1] = -0.4321;
    give_section(model, AttributeKind::continuous, {"income"}, 3);
    give_section(model, AttributeKind::categorical, {"dept", "floor"}, 2);
    give_section(model, AttributeKind::covariate, {"dist"}, 6);
    testing::WorkingDirectory here(testing::scratch_directory("update_graph"));
    write_update_files(model, "");  // the working directory
    // The catalogue row without a run-file entry, after Isolates, is skipped. Attribute effects go
    // attribute by attribute, each with every effect.
    check_update("stupdate.vexa", 34,
                 {{0, "edge -1.60944"},
                  {1, "2-star 1.25000"},
                  {10, "Isolates 10.25000"},
                  {11, "Triangle2 12.25000"},
                  {33, "AET 34.25000"}});
    check_update("biupdate.vexa", 28,
                 {{0, "wealth_activity 0.00000"},
                  {5, "wealth_O2b 50.00000"},
                  {13, "wealth_ETNT 130.00000"},
                  {14, "age_activity -0.43210"},
                  {23, "age_T3u 91.00000"},
                  {27, "age_ETNT 131.00000"}});
    check_update("contupdate.vexa", 3,
                 {{0, "income_sum_of_Continuous 0.00000"},
                  {1, "income_diff_of_Continuous 10.00000"},
                  {2, "income_prod_of_Continuous 20.00000"}});
    check_update(
        "catupdate.vexa", 4,
        {{0, "dept_Same_Category_edge 0.00000"}, {3, "floor_Different_Category_edge 11.00000"}});
    check_update("covupdate.vexa", 6,
                 {{0, "dist_edge 0.00000"}, {1, "dist_S21 10.00000"}, {5, "dist_T3 50.00000"}});

    // A later run without the structural section or a sub-block, or with a sub-block of no
    // attributes, leaves their files there, empty.
    model.structural_given = false;
    model.section(AttributeKind::covariate).given = false;
    give_section(model, AttributeKind::continuous, {}, 3);
    write_update_files(model, "");
    for (const char* file : {"stupdate.vexa", "contupdate.vexa", "covupdate.vexa"})
        EXPECT_EQ(std::filesystem::file_size(file), 0u) << file;
    EXPECT_THROW(write_update_files(model, "missing/deeper"), OutputFileError);
    // Names never read, or values short of the catalogue, end the run instead of reading past them.
    model.section(AttributeKind::binary).names.pop_back();
    EXPECT_THROW(write_update_files(model, ""), SettingError);
    give_section(model, AttributeKind::binary, {"wealth"}, 13);
    EXPECT_THROW(write_update_files(model, ""), SettingError);
}

TEST(UpdateFiles, DigraphFilesKeepTheirOwnSpellingsInRunFileOrder) {
    Model model = empty_model(NetworkKind::digraph);
    model.structural_given = true;
    for (size_t r = 0; r < model.structural.size(); ++r)
        model.structural[r].value = 0.5 * double(r);
    give_section(model, AttributeKind::binary, {"sex"}, 10);
    give_section(model, AttributeKind::continuous, {"age", "rank"}, 13);
    give_section(model, AttributeKind::categorical, {"club"}, 4);
    give_section(model, AttributeKind::covariate, {"dist"}, 1);
    const std::string dir = testing::scratch_directory("update_digraph");
    write_update_files(model, dir);
    testing::WorkingDirectory here(dir);
    // Values by catalogue row (row / 2): path2 is row 8, the transitive triad 17, T1 9, AinAoutS
    // 28, Ain1outS 26 and A2P-TDU 43.
    check_update("distupdate.vexa", 42,
                 {{0, "arc 0.00000"},
                  {6, "path2 4.00000"},
                  {7, "Transitive-Triad 8.50000"},
                  {9, "T1 4.50000"},
                  {24, "AinAoutS 14.00000"},
                  {25, "Ain1outS 13.00000"},
                  {41, "A2P-TDU 21.50000"}});
    check_update("dibiupdate.vexa", 10,
                 {{0, "sex_interaction 0.00000"}, {9, "sex_in2star 90.00000"}});
    check_update("dicontupdate.vexa", 26,
                 {{0, "age_sender 0.00000"},
                  {12, "age_path2 120.00000"},
                  {13, "rank_sender 1.00000"},
                  {25, "rank_path2 121.00000"}});
    check_update("dicatupdate.vexa", 4, {{3, "club_diff_Category_reciprocity 30.00000"}});
    check_update("dicovupdate.vexa", 1, {{0, "dist_arc 0.00000"}});
}

const char* const load_command =
    "GET DATA  /TYPE = TXT\n/FILE = 'out/sim_simulation_flo.txt'\n/DELCASE = LINE\n/DELIMITERS = "
    "\"\t\"\n"
    "/ARRANGEMENT = DELIMITED\n/FIRSTCASE = 2\n/IMPORTCASE = ALL\n/VARIABLES =\nid F5.0\n";

// The syntax for variables given as "name format": the list, then a histogram and a scatter plot
// each.
std::string expected_syntax(const Strings& variables) {
    std::string text = load_command, plots;
    for (const std::string& v : variables) {
        const std::string name = v.substr(0, v.find(' '));
        text += v + "\n";
        plots += "GRAPH\n/Histogram=" + name + ".\nGRAPH\n/SCATTERPLOT(BIVAR)=id WITH " + name +
                 "\n/MISSING=LISTWISE.\n";
    }
    return text + "CACHE.\nEXECUTE.\n\n" + plots;
}

std::string syntax_of(const Model& model) {
    return testing::capture(
        [&](FILE* out) { write_spss_syntax(out, model, "out/sim_simulation_flo.txt"); });
}

// A model with the given catalogue rows included, in slot order.
Model with_structural(NetworkKind kind, const std::vector<size_t>& rows) {
    Model model = empty_model(kind);
    model.structural_given = true;
    for (const size_t row : rows) model.structural[row].slot = model.structural_included++;
    return model;
}

TEST(SpssSyntax, VariablesFollowTheParameterVectorWithTheirFormats) {
    using G = GraphEffect;
    const Model simple =
        with_structural(NetworkKind::graph, {size_t(G::edge), size_t(G::star2), size_t(G::as)});
    EXPECT_EQ(syntax_of(simple), expected_syntax({"edge F8.0", "star2 F8.0", "as F8.4"}));
    // The file form truncates: a second write leaves one copy.
    const std::string path = testing::scratch_directory("spss_file") + "/sim_flo.sps";
    write_spss_file(path, simple, "out/sim_simulation_flo.txt");
    write_spss_file(path, simple, "out/sim_simulation_flo.txt");
    EXPECT_EQ(read_text(path), expected_syntax({"edge F8.0", "star2 F8.0", "as F8.4"}));

    // Digraph catalogue rows arc 0, T1 9, T7 15, AT-U 32, AT-TD 33, given slots in another order:
    // SPSS names the table's columns by position, so the list follows the slots.
    Model digraph = empty_model(NetworkKind::digraph);
    digraph.structural_given = true;
    for (const auto& [row, slot] :
         std::vector<std::pair<size_t, int32_t>>{{0, 0}, {15, 1}, {9, 2}, {33, 3}, {32, 4}}) {
        digraph.structural[row].slot = slot;
    }
    digraph.structural_included = 5;
    EXPECT_EQ(syntax_of(digraph),
              expected_syntax({"arc F8.0", "t7 F8.0", "t1 F8.0", "attd F8.4", "uktri F8.4"}));

    // Attribute effects in parameter-vector order: binary effects effect by effect in vector order
    // (T3u, O2b spelt o2bu here, interaction, activity: run-file rows 9, 5, 1, 0), then continuous,
    // categorical and covariate ones.
    Model model = with_structural(NetworkKind::graph, {size_t(G::triangle), size_t(G::isolates),
                                                       size_t(G::a2p), size_t(G::aet)});
    model.attributes_given = true;
    AttributeSection& binary = give_section(model, AttributeKind::binary, {"wealth", "age"}, 14);
    binary.included = {{0, 1}, {1, 1}, {0, 0}, {0, 0}, {0, 0}, {0, 1}, {0, 0},
                       {0, 0}, {0, 0}, {1, 0}, {0, 0}, {0, 0}, {0, 0}, {0, 0}};
    give_section(model, AttributeKind::continuous, {"income", "rank"}, 3).included[1][1] = 1;
    give_section(model, AttributeKind::categorical, {"dept"}, 2).included[0][0] = 1;
    give_section(model, AttributeKind::covariate, {"dist"}, 6).included[1][0] = 1;
    EXPECT_EQ(syntax_of(model),
              expected_syntax({"triangle F8.4", "iso F8.4", "a2p F8.0", "aet F8.0",
                               "wealth_t3u F8.0", "age_o2bu F8.0", "wealth_interaction F8.0",
                               "age_interaction F8.0", "age_activity F8.0", "rank_diff F8.4",
                               "dept_sameEC F8.0", "dist_s21 F8.4"}));
    // An included attribute without a name cannot be labelled.
    binary.names.pop_back();
    EXPECT_THROW(syntax_of(model), SettingError);
}

}  // namespace
}  // namespace vexa
