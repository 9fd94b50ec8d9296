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
// attribute, and as many effects as the catalogue has unless `short_by` says otherwise.
AttributeSection& give_section(Model& model, AttributeKind kind, const Strings& names,
                               size_t short_by = 0) {
    const size_t effects = attribute_catalogue(model.kind, kind).rows.size() - short_by;
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

// The structural and categorical files, and the digraph's structural, binary and categorical
// ones, are in the golden outputs; no bundled run gives the other sections.
TEST(UpdateFiles, GraphModelWritesEveryEffectWithItsValue) {
    Model model = empty_model(NetworkKind::graph);
    model.structural_given = true;
    // activity estimated for age only; wealth keeps its run-file value.
    give_section(model, AttributeKind::binary, {"wealth", "age"}).value[0][1] = -0.4321;
    give_section(model, AttributeKind::continuous, {"income"});
    give_section(model, AttributeKind::covariate, {"dist"});
    testing::WorkingDirectory here(testing::scratch_directory("update_graph"));
    write_update_files(model, "");  // the working directory
    // Attribute effects go attribute by attribute, each with every effect.
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
    check_update("covupdate.vexa", 6,
                 {{0, "dist_edge 0.00000"}, {1, "dist_S21 10.00000"}, {5, "dist_T3 50.00000"}});

    // A later run without the structural section or a sub-block, or with a sub-block of no
    // attributes, leaves their files there, empty.
    model.structural_given = false;
    model.section(AttributeKind::covariate).given = false;
    give_section(model, AttributeKind::continuous, {});
    write_update_files(model, "");
    for (const char* file : {"stupdate.vexa", "contupdate.vexa", "covupdate.vexa"})
        EXPECT_EQ(std::filesystem::file_size(file), 0u) << file;
    EXPECT_THROW(write_update_files(model, "missing/deeper"), OutputFileError);
    // Names never read, or values short of the catalogue, end the run instead of reading past them.
    model.section(AttributeKind::binary).names.pop_back();
    EXPECT_THROW(write_update_files(model, ""), SettingError);
    give_section(model, AttributeKind::binary, {"wealth"}, 1);
    EXPECT_THROW(write_update_files(model, ""), SettingError);
}

TEST(UpdateFiles, DigraphContinuousAndCovariateFiles) {
    Model model = empty_model(NetworkKind::digraph);
    give_section(model, AttributeKind::continuous, {"age", "rank"});
    give_section(model, AttributeKind::covariate, {"dist"});
    const std::string dir = testing::scratch_directory("update_digraph");
    write_update_files(model, dir);
    testing::WorkingDirectory here(dir);
    check_update("dicontupdate.vexa", 26,
                 {{0, "age_sender 0.00000"},
                  {12, "age_path2 120.00000"},
                  {13, "rank_sender 1.00000"},
                  {25, "rank_path2 121.00000"}});
    check_update("dicovupdate.vexa", 1, {{0, "dist_arc 0.00000"}});
}

std::string syntax_of(const Model& model) {
    return testing::capture(
        [&](FILE* out) { write_spss_syntax(out, model, "out/sim_simulation_flo.txt"); });
}

// Every effect's variable and format is in the golden outputs; these are the rules no bundled run
// reaches.
TEST(SpssSyntax, FileTruncatesVariablesFollowTheSlotsAndNamesAreNeeded) {
    // The file form truncates: a second write leaves one copy.
    Model simple = empty_model(NetworkKind::graph);
    simple.structural_given = true;
    simple.structural[size_t(GraphEffect::edge)].slot = 0;
    simple.structural_included = 1;
    const std::string path = testing::scratch_directory("spss_file") + "/sim_flo.sps";
    write_spss_file(path, simple, "out/sim_simulation_flo.txt");
    write_spss_file(path, simple, "out/sim_simulation_flo.txt");
    EXPECT_EQ(read_text(path), syntax_of(simple));

    // Digraph catalogue rows arc 0, T1 9, T7 15, AT-U 32, AT-TD 33, given slots in another order:
    // SPSS names the table's columns by position, so the list follows the slots.
    Model digraph = empty_model(NetworkKind::digraph);
    digraph.structural_given = true;
    for (const auto& [row, slot] :
         std::vector<std::pair<size_t, int32_t>>{{0, 0}, {15, 1}, {9, 2}, {33, 3}, {32, 4}}) {
        digraph.structural[row].slot = slot;
    }
    digraph.structural_included = 5;
    const std::string syntax = syntax_of(digraph);
    EXPECT_NE(syntax.find("\nid F5.0\narc F8.0\nt7 F8.0\nt1 F8.0\nattd F8.4\nuktri F8.4\nCACHE."),
              std::string::npos)
        << syntax;

    // An included attribute without a name cannot be labelled.
    Model model = simple;
    model.attributes_given = true;
    give_section(model, AttributeKind::binary, {"wealth"}).included[0][0] = 1;
    model.section(AttributeKind::binary).names.clear();
    EXPECT_THROW(syntax_of(model), SettingError);
}

}  // namespace
}  // namespace vexa
