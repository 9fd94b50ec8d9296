#include "report/spss.h"

#include <array>
#include <cstddef>
#include <vector>

#include "base/errors.h"
#include "base/text_file.h"
#include "effects/attribute_catalogue.h"
#include "effects/digraph_catalogue.h"
#include "effects/graph_catalogue.h"
#include "effects/attribute_catalogue.h"

namespace vexa {

namespace {

// Rows 6 and 7 (the in- and out-4-stars) have no run-file entry, so their slot is always -1;
// like the graph's P0 they keep their place and their test.
// clang-format off
constexpr std::array<DigraphSpssVariable, digraph_effect_count> digraph_variables{{
    {0, "arc", "F8.0"},       {1, "recip", "F8.0"},     {2, "in2star", "F8.0"},   {3, "out2star", "F8.0"},
    {4, "in3star", "F8.0"},   {5, "out3star", "F8.0"},  {6, "in4star", "F8.0"},   {7, "out4star", "F8.0"},
    {8, "mix2star", "F8.0"},
    {15, "t7", "F8.0"},       {16, "t8", "F8.0"},       {14, "t6", "F8.0"},       {18, "t10", "F8.0"},
    {11, "t3", "F8.0"},       {10, "t2", "F8.0"},       {13, "t5", "F8.0"},       {12, "t4", "F8.0"},
    {17, "t9", "F8.0"},       {9, "t1", "F8.0"},
    {19, "sink", "F8.0"},     {20, "source", "F8.0"},   {21, "iso", "F8.0"},
    {22, "kinstar", "F8.4"},  {23, "koutstar", "F8.4"}, {24, "kinstar2", "F8.4"}, {25, "koutstar2", "F8.4"},
    {26, "konestar", "F8.4"}, {27, "onelstar", "F8.4"}, {28, "klstar", "F8.4"},
    {29, "tktri", "F8.4"},    {30, "cktri", "F8.4"},    {31, "dktri", "F8.4"},
    {33, "attd", "F8.4"},     {34, "attu", "F8.4"},     {35, "atdu", "F8.4"},     {36, "attdu", "F8.4"},
    {32, "uktri", "F8.4"},
    {37, "talt2p", "F8.4"},   {38, "dalt2p", "F8.4"},   {39, "ualt2p", "F8.4"},   {40, "a2ptd", "F8.4"},
    {41, "a2ptu", "F8.4"},    {42, "a2pdu", "F8.4"},    {43, "a2ptdu", "F8.4"},
}};
// clang-format on

constexpr bool every_row_once() {
    std::array<int, digraph_effect_count> seen{};
    for (const DigraphSpssVariable& v : digraph_variables) {
        if (v.row < 0 || v.row >= digraph_effect_count) return false;
        if (++seen[static_cast<size_t>(v.row)] != 1) return false;
    }
    return true;
}
static_assert(every_row_once(), "the digraph SPSS list names every catalogue row once");

struct Variable {
    std::string name;
    const char* format;
};

bool included(const Model& model, size_t row) {
    return row < model.structural.size() && model.structural[row].slot != -1;
}

std::vector<Variable> variables_of(const Model& model) {
    std::vector<Variable> variables;
    if (model.kind == NetworkKind::digraph) {
        for (const DigraphSpssVariable& v : digraph_variables) {
            if (included(model, static_cast<size_t>(v.row))) variables.push_back({v.name, v.format});
        }
    } else {
        for (size_t r = 0; r < graph_catalogue().size(); ++r) {
            const GraphEffectRow& row = graph_catalogue()[r];
            if (included(model, r)) variables.push_back({row.spss_name, row.spss_format});
        }
    }
    for_each_included_attribute_effect(model, [&](AttributeKind kind, int32_t effect, int32_t attribute) {
        const AttributeSection& section = model.section(kind);
        const AttributeEffectRow& row = attribute_catalogue(model.kind, kind).rows[static_cast<size_t>(effect)];
        if (static_cast<size_t>(attribute) >= section.names.size()) {
            throw SettingError(format_message("vexa: attribute %d of effect %s is included but has no name",
                                              attribute + 1, row.update_name));
        }
        variables.push_back({section.names[static_cast<size_t>(attribute)] + "_" + row.spss_name,
                             row.spss_format});
    });
    return variables;
}

}  // namespace

std::span<const DigraphSpssVariable> digraph_spss_variables() { return digraph_variables; }

void write_spss_syntax(FILE* out, const Model& model, const std::string& simulation_file) {
    const std::vector<Variable> variables = variables_of(model);
    // Two blanks after GET DATA, a tab between the quotes and the header line skipped: SPSS
    // reads the table exactly as the simulation writes it.
    print(out,
          "GET DATA  /TYPE = TXT\n/FILE = '%s'\n/DELCASE = LINE\n/DELIMITERS = \"\t\"\n"
          "/ARRANGEMENT = DELIMITED\n/FIRSTCASE = 2\n/IMPORTCASE = ALL\n/VARIABLES =\nid F5.0\n",
          simulation_file.c_str());
    for (const Variable& v : variables) print(out, "%s %s\n", v.name.c_str(), v.format);
    print(out, "CACHE.\nEXECUTE.\n\n");
    for (const Variable& v : variables) {
        print(out, "GRAPH\n/Histogram=%s.\nGRAPH\n/SCATTERPLOT(BIVAR)=id WITH %s\n/MISSING=LISTWISE.\n",
              v.name.c_str(), v.name.c_str());
    }
}

void write_spss_file(const std::string& path, const Model& model, const std::string& simulation_file) {
    OutFile file(path, OpenMode::truncate);
    write_spss_syntax(file, model, simulation_file);
    file.close();
}

}  // namespace vexa
