#include "report/spss.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "base/errors.h"
#include "effects/graph_catalogue.h"
#include "support/test_support.h"

namespace vexa {
namespace {

std::string syntax_of(const Model& model, const std::string& simulation_file) {
    return testing::capture([&](FILE* out) { write_spss_syntax(out, model, simulation_file); });
}

const char* const load_command =
    "GET DATA  /TYPE = TXT\n/FILE = 'out/sim_simulation_flo.txt'\n/DELCASE = LINE\n"
    "/DELIMITERS = \"\t\"\n/ARRANGEMENT = DELIMITED\n/FIRSTCASE = 2\n/IMPORTCASE = ALL\n"
    "/VARIABLES =\nid F5.0\n";

std::string plot(const std::string& name) {
    return "GRAPH\n/Histogram=" + name + ".\nGRAPH\n/SCATTERPLOT(BIVAR)=id WITH " + name +
           "\n/MISSING=LISTWISE.\n";
}

void include(Model& model, size_t row, int32_t slot) {
    model.structural[row].slot = slot;
    ++model.structural_included;
}

void give_section(Model& model, AttributeKind kind, const std::vector<std::string>& names, size_t effects) {
    AttributeSection& s = model.section(kind);
    s.given = true;
    s.count = static_cast<int32_t>(names.size());
    s.names = names;
    s.included.assign(effects, std::vector<int32_t>(names.size(), 0));
    s.value.assign(effects, std::vector<double>(names.size(), 0.0));
}

TEST(SpssSyntax, StructuralModelGivesTheExactText) {
    Model model = empty_model(NetworkKind::graph);
    model.structural_given = true;
    include(model, static_cast<size_t>(GraphEffect::edge), 0);
    include(model, static_cast<size_t>(GraphEffect::star2), 1);
    include(model, static_cast<size_t>(GraphEffect::as), 2);

    const std::string expected = std::string(load_command) +
                                 "edge F8.0\nstar2 F8.0\nas F8.4\n"
                                 "CACHE.\nEXECUTE.\n\n"
                                 "GRAPH\n/Histogram=edge.\nGRAPH\n/SCATTERPLOT(BIVAR)=id WITH edge\n/MISSING=LISTWISE.\n" +
                                 plot("star2") + plot("as");
    EXPECT_EQ(syntax_of(model, "out/sim_simulation_flo.txt"), expected);

    // The file form truncates: a second write leaves one copy.
    const std::string path = testing::scratch_directory("spss_file") + "/sim_flo.sps";
    write_spss_file(path, model, "out/sim_simulation_flo.txt");
    write_spss_file(path, model, "out/sim_simulation_flo.txt");
    EXPECT_EQ(testing::read_text(path), expected);
}

TEST(SpssSyntax, VariablesFollowTheParameterVectorWithMixedFormats) {
    Model model = empty_model(NetworkKind::graph);
    model.structural_given = true;
    include(model, static_cast<size_t>(GraphEffect::triangle), 0);
    include(model, static_cast<size_t>(GraphEffect::isolates), 1);
    include(model, static_cast<size_t>(GraphEffect::a2p), 2);
    include(model, static_cast<size_t>(GraphEffect::aet), 3);
    model.attributes_given = true;
    give_section(model, AttributeKind::binary, {"wealth", "age"}, 14);
    give_section(model, AttributeKind::continuous, {"income", "rank"}, 3);
    give_section(model, AttributeKind::categorical, {"dept"}, 2);
    give_section(model, AttributeKind::covariate, {"dist"}, 6);
    // Run-file rows of the binary effects: activity 0, interaction 1, O2b 5, T3u 9.
    AttributeSection& binary = model.section(AttributeKind::binary);
    binary.included[0][1] = 1;  // age_activity only
    binary.included[1][0] = 1;  // interaction for both
    binary.included[1][1] = 1;
    binary.included[5][1] = 1;  // age_O2b, spelt o2bu here
    binary.included[9][0] = 1;  // wealth_T3u
    model.section(AttributeKind::continuous).included[1][1] = 1;  // rank_diff
    model.section(AttributeKind::categorical).included[0][0] = 1;  // dept_sameEC
    model.section(AttributeKind::covariate).included[1][0] = 1;    // dist_s21

    std::string expected = std::string(load_command) +
                           "triangle F8.4\niso F8.4\na2p F8.0\naet F8.0\n"
                           "wealth_t3u F8.0\nage_o2bu F8.0\nwealth_interaction F8.0\n"
                           "age_interaction F8.0\nage_activity F8.0\n"
                           "rank_diff F8.4\ndept_sameEC F8.0\ndist_s21 F8.4\n"
                           "CACHE.\nEXECUTE.\n\n";
    for (const char* name : {"triangle", "iso", "a2p", "aet", "wealth_t3u", "age_o2bu", "wealth_interaction",
                             "age_interaction", "age_activity", "rank_diff", "dept_sameEC", "dist_s21"}) {
        expected += plot(name);
    }
    EXPECT_EQ(syntax_of(model, "out/sim_simulation_flo.txt"), expected);

    // An included attribute without a name cannot be labelled.
    binary.names.pop_back();
    EXPECT_THROW(syntax_of(model, "x"), SettingError);
}

TEST(SpssSyntax, DigraphUsesItsShortNamesInItsOwnOrder) {
    // Catalogue rows: arc 0, T1 9, T7 15, AT-U 32, AT-TD 33. The list puts the triad t7
    // before t1 and AT-U (uktri) after the combined triangles.
    Model model = empty_model(NetworkKind::digraph);
    model.structural_given = true;
    include(model, 0, 0);
    include(model, 9, 1);
    include(model, 15, 2);
    include(model, 32, 3);
    include(model, 33, 4);
    const std::string expected = std::string(load_command) +
                                 "arc F8.0\nt7 F8.0\nt1 F8.0\nattd F8.4\nuktri F8.4\n"
                                 "CACHE.\nEXECUTE.\n\n" +
                                 plot("arc") + plot("t7") + plot("t1") + plot("attd") + plot("uktri");
    EXPECT_EQ(syntax_of(model, "out/sim_simulation_flo.txt"), expected);
}

}  // namespace
}  // namespace vexa
