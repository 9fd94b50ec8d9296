#include "report/update_files.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "base/errors.h"
#include "support/test_support.h"

namespace vexa {
namespace {

using Strings = std::vector<std::string>;

// An update file split into its name lines and its value lines.
void parse(const std::string& path, Strings& names, Strings& values) {
    ASSERT_TRUE(std::filesystem::exists(path)) << path;
    std::istringstream in(testing::read_text(path));
    names.clear();
    values.clear();
    for (std::string name, value; std::getline(in, name) && std::getline(in, value);) {
        names.push_back(name);
        values.push_back(value);
    }
}

Strings prefixed(const Strings& attributes, const Strings& effects) {
    Strings names;
    for (const std::string& a : attributes) {
        for (const std::string& e : effects) names.push_back(a + "_" + e);
    }
    return names;
}

// A sub-block as the run-file reader leaves it: nothing included, every value 10 * effect + attribute.
void give_section(Model& model, AttributeKind kind, const Strings& names, size_t effects) {
    AttributeSection& s = model.section(kind);
    s.given = true;
    s.count = static_cast<int32_t>(names.size());
    s.names = names;
    s.included.assign(effects, std::vector<int32_t>(names.size(), 0));
    s.value.assign(effects, std::vector<double>(names.size(), 0.0));
    for (size_t e = 0; e < effects; ++e) {
        for (size_t a = 0; a < names.size(); ++a) s.value[e][a] = static_cast<double>(10 * e + a);
    }
}

const Strings graph_structural{
    "edge", "2-star", "3-star", "4-star", "5-star", "Triangle", "4-clique", "5-clique", "6-clique", "7-clique",
    "Isolates", "Triangle2", "Bow_tie", "P3", "Q10", "Q20", "Q30", "Q31", "3Path", "cycle4", "1ET", "2ET",
    "0ET", "ETNT", "two3star", "one2triangle", "one2et", "AS", "AS2", "AT", "AT2", "A2P", "AC", "AET"};
const Strings graph_binary{"activity", "interaction", "O1au", "O1bu", "O2au", "O2b", "O3u",
                           "T1u", "T2u", "T3u", "ET1", "ET2", "ET0", "ETNT"};

TEST(UpdateFiles, EdgeOnlyModelStillWritesEveryGraphEffect) {
    // Run-file values 0.25 + catalogue row; the edge carries its estimate, ln(0.2).
    Model model = empty_model(NetworkKind::graph);
    model.structural_given = true;
    for (size_t r = 0; r < model.structural.size(); ++r) model.structural[r].value = static_cast<double>(r) + 0.25;
    model.structural[0] = {-1.6094379124341003, 0, 0.0f};
    model.structural_included = 1;
    const std::string dir = testing::scratch_directory("update_edge_only");
    write_update_files(model, dir);

    Strings names, values;
    parse(dir + "/stupdate.vexa", names, values);
    ASSERT_EQ(names, graph_structural);
    EXPECT_EQ(values[0], "-1.60944");
    EXPECT_EQ(values[1], "1.25000");
    EXPECT_EQ(values[10], "10.25000");  // Isolates
    EXPECT_EQ(values[11], "12.25000");  // Triangle2: the row without a run-file entry is skipped
    EXPECT_EQ(values[33], "34.25000");  // AET
    // No attributes: the other files are there, empty.
    for (const char* file : {"biupdate.vexa", "contupdate.vexa", "catupdate.vexa", "covupdate.vexa"}) {
        parse(dir + "/" + file, names, values);
        EXPECT_TRUE(names.empty()) << file;
    }
    // A later run without the structural section truncates the file to nothing.
    model.structural_given = false;
    write_update_files(model, dir);
    EXPECT_EQ(testing::read_text(dir + "/stupdate.vexa"), "");
}

TEST(UpdateFiles, AttributeEntriesPutTheAttributeNameInFront) {
    Model model = empty_model(NetworkKind::graph);
    give_section(model, AttributeKind::binary, {"wealth", "age"}, 14);
    give_section(model, AttributeKind::continuous, {"income"}, 3);
    give_section(model, AttributeKind::categorical, {"dept", "floor"}, 2);
    give_section(model, AttributeKind::covariate, {"dist"}, 6);
    // activity estimated for the second attribute only; the first keeps its run-file value.
    model.section(AttributeKind::binary).included[0][1] = 1;
    model.section(AttributeKind::binary).value[0][1] = -0.4321;
    const std::string dir = testing::scratch_directory("update_attributes");
    write_update_files(model, dir);

    Strings names, values;
    parse(dir + "/biupdate.vexa", names, values);
    ASSERT_EQ(names, prefixed({"wealth", "age"}, graph_binary));
    EXPECT_EQ(values[0], "0.00000");    // wealth_activity
    EXPECT_EQ(values[14], "-0.43210");  // age_activity
    EXPECT_EQ(values[27], "131.00000"); // age_ETNT
    parse(dir + "/contupdate.vexa", names, values);
    EXPECT_EQ(names, prefixed({"income"}, {"sum_of_Continuous", "diff_of_Continuous", "prod_of_Continuous"}));
    parse(dir + "/catupdate.vexa", names, values);
    EXPECT_EQ(names, prefixed({"dept", "floor"}, {"Same_Category_edge", "Different_Category_edge"}));
    EXPECT_EQ(values[3], "11.00000");
    parse(dir + "/covupdate.vexa", names, values);
    EXPECT_EQ(names, prefixed({"dist"}, {"edge", "S21", "S22", "T1", "T2", "T3"}));
    EXPECT_EQ(testing::read_text(dir + "/stupdate.vexa"), "");

    // A sub-block given without any attribute writes nothing.
    give_section(model, AttributeKind::continuous, {}, 3);
    write_update_files(model, dir);
    EXPECT_EQ(testing::read_text(dir + "/contupdate.vexa"), "");
}

TEST(UpdateFiles, DigraphFilesKeepTheirOwnSpellings) {
    Model model = empty_model(NetworkKind::digraph);
    model.structural_given = true;
    for (size_t r = 0; r < model.structural.size(); ++r) model.structural[r].value = 0.5 * static_cast<double>(r);
    give_section(model, AttributeKind::binary, {"sex"}, 10);
    give_section(model, AttributeKind::continuous, {"age"}, 13);
    give_section(model, AttributeKind::categorical, {"club"}, 4);
    give_section(model, AttributeKind::covariate, {"dist"}, 1);
    const std::string dir = testing::scratch_directory("update_digraph");
    write_update_files(model, dir);

    Strings names, values;
    parse(dir + "/distupdate.vexa", names, values);
    ASSERT_EQ(names, (Strings{"arc", "reciprocity", "in2star", "out2star", "in-3-star", "out-3-star", "path2",
                              "Transitive-Triad", "Cyclic-Triad", "T1", "T2", "T3", "T4", "T5", "T6", "T7", "T8",
                              "Sink", "Source", "isolates", "AinS", "AoutS", "AinS2", "AoutS2", "AinAoutS",
                              "Ain1outS", "1inAoutS", "AT-T", "AT-C", "AT-D", "AT-U", "AT-TD", "AT-TU", "AT-DU",
                              "AT-TDU", "A2P-T", "A2P-D", "A2P-U", "A2P-TD", "A2P-TU", "A2P-DU", "A2P-TDU"}));
    // Values by catalogue row (row / 2): path2 is row 8, the transitive triad 17, T1 9,
    // AinAoutS 28 and Ain1outS 26.
    EXPECT_EQ(values[6], "4.00000");
    EXPECT_EQ(values[7], "8.50000");
    EXPECT_EQ(values[9], "4.50000");
    EXPECT_EQ(values[24], "14.00000");
    EXPECT_EQ(values[25], "13.00000");
    parse(dir + "/dibiupdate.vexa", names, values);
    EXPECT_EQ(names, prefixed({"sex"}, {"interaction", "sender", "receiver", "sender_missing", "receiver_missing",
                                        "activity_reciprocity", "interaction_reciprocity", "out2star", "path2",
                                        "in2star"}));
    parse(dir + "/dicontupdate.vexa", names, values);
    EXPECT_EQ(names, prefixed({"age"}, {"sender", "receiver", "sender_missing", "receiver_missing", "sum", "diff",
                                        "prod", "sum_reciprocity", "diff_reciprocity", "prod_reciprocity",
                                        "in2star", "out2star", "path2"}));
    parse(dir + "/dicatupdate.vexa", names, values);
    EXPECT_EQ(names, prefixed({"club"}, {"same_Category", "diff_Category", "same_Category_reciprocity",
                                         "diff_Category_reciprocity"}));
    parse(dir + "/dicovupdate.vexa", names, values);
    EXPECT_EQ(names, Strings{"dist_arc"});
}

TEST(UpdateFiles, WorkingDirectoryAndFaults) {
    Model model = empty_model(NetworkKind::graph);
    model.structural_given = true;
    const std::string dir = testing::scratch_directory("update_working_directory");
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(dir);
    write_update_files(model, "");
    std::filesystem::current_path(before);
    Strings names, values;
    parse(dir + "/stupdate.vexa", names, values);
    EXPECT_EQ(names.size(), 34u);

    EXPECT_THROW(write_update_files(model, dir + "/missing/deeper"), OutputFileError);
    // Names never read, or values short of the catalogue, end the run instead of reading past them.
    give_section(model, AttributeKind::binary, {"wealth"}, 14);
    model.section(AttributeKind::binary).names.clear();
    EXPECT_THROW(write_update_files(model, dir), SettingError);
    give_section(model, AttributeKind::binary, {"wealth"}, 13);
    EXPECT_THROW(write_update_files(model, dir), SettingError);
}

}  // namespace
}  // namespace vexa
