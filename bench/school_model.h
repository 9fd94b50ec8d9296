#pragma once
// The school network of the examples (205 students, faux.mesa.high.txt) under edge + AT
// (lambda e^0.25) and, when asked, Grade's same-category effect, at the estimates the bundled
// example run converges to. Shared by the benchmarks that time proposals and mixing on it.

#include <filesystem>
#include <vector>

#include "effects/attribute/attribute_catalogue.h"
#include "effects/graph/graph_catalogue.h"
#include "entry/attribute_files.h"
#include "model/terms.h"
#include "network/graph.h"

namespace vexa::bench {

struct SchoolModel {
    Model model;
    std::vector<double> parameters;
    Graph network;
};

inline SchoolModel school_model(bool with_grade) {
    const std::filesystem::path examples = VEXA_EXAMPLES_DIR;
    constexpr int students = 205;
    SchoolModel school{empty_model(NetworkKind::graph), {-6.295, 1.468}, {}};
    Model& model = school.model;
    for (const GraphEffect effect : {GraphEffect::edge, GraphEffect::at}) {
        EffectSetting& setting = model.structural[static_cast<size_t>(effect)];
        setting.slot = model.structural_included++;
        setting.lambda = effect == GraphEffect::at ? 1.2840254f : 0.0f;
    }
    if (with_grade) {
        AttributeSection& section = model.section(AttributeKind::categorical);
        AttributeData data =
            read_attribute_file((examples / "faux.mesa.high_attributes.txt").string(),
                                AttributeKind::categorical, 3, students);
        section.given = true;
        section.count = 3;
        section.names = data.names;
        section.data = data.data;
        section.missing = data.missing;
        const CatalogueView& catalogue =
            attribute_catalogue(NetworkKind::graph, AttributeKind::categorical);
        section.included.assign(catalogue.rows.size(), std::vector<int32_t>(3, 0));
        section.included[static_cast<size_t>(GraphCategoricalEffect::same)][0] = 1;  // Grade
        section.included_count = 1;
        school.parameters.push_back(1.990);
    }
    school.network = read_graph((examples / "faux.mesa.high.txt").string(), students);
    return school;
}

}  // namespace vexa::bench
