// The alias table held to the catalogues: every alias that maps names an effect the model
// takes, every effect has a meaning, and what cannot be mapped is refused with the closest
// effect named. That each mapped statistic equals its vexa effect's is checked by brute-force
// counts in the Python package's tests, which count both.
#include "entry/effect_aliases.h"

#include <gtest/gtest.h>

#include "base/errors.h"

namespace vexa {
namespace {

TaskRequest request_with(NetworkKind kind, const EffectChoice& choice,
                         const std::vector<AttributeColumn>& attributes) {
    TaskRequest request;
    request.settings.network_kind = kind;
    request.settings.node_count = 3;
    request.effects = {choice};
    request.attributes = attributes;
    request.covariate_given = true;
    request.covariate_name = "w";
    request.covariate.assign(9, 0.0);
    return request;
}

TEST(EffectAliases, EveryMappedAliasBuildsAModelAndEveryEffectHasAMeaning) {
    const std::vector<AttributeColumn> columns = {{"z", AttributeKind::binary, {0, 1, 1}, {}},
                                                  {"x", AttributeKind::continuous, {0.5, 1, 2}, {}},
                                                  {"c", AttributeKind::categorical, {1, 2, 1}, {}}};
    for (const NetworkKind kind : {NetworkKind::graph, NetworkKind::digraph}) {
        for (const EffectEntry& e : effect_entries(kind)) {
            SCOPED_TRACE(e.name);
            EXPECT_FALSE(e.meaning.empty());
            if (e.kind != "alias" || e.maps_to.empty()) continue;
            AliasTerm term{e.name, e.argument == "decay" || e.argument == "lambda", 2.0, ""};
            // An order alias: the order of its first vexa effect (kstar: 2, cycle: 4).
            if (e.argument == "k")
                term = {e.name, true,
                        std::stod(e.maps_to.substr(e.maps_to.find_first_of("0123456789"))), ""};
            if (e.argument == "covariate") term.attribute = "w";
            for (const char* a : {"z", "x", "c"}) {
                if (e.argument != "attribute") break;
                term.attribute = a;
                try {
                    resolve_alias(term, kind, columns, "w");
                    break;
                } catch (const SettingError&) {
                }
            }
            const EffectChoice choice = resolve_alias(term, kind, columns, "w");
            const Model model = request_model(request_with(kind, choice, columns));
            EXPECT_EQ(model.parameter_count(), 1);
        }
    }
}

TEST(EffectAliases, RefusalsNameTheClosestEffect) {
    const std::vector<AttributeColumn> grade = {{"grade", AttributeKind::continuous, {1, 2}, {}}};
    const struct {
        NetworkKind kind;
        AliasTerm term;
        const char* says;
    } cases[] = {
        {NetworkKind::graph, {"gwdegree", true, 0.5, ""}, "the closest is AS"},
        {NetworkKind::digraph, {"triangle", false, 0.0, ""}, "the closest is Transitive-Triad"},
        {NetworkKind::graph, {"gwesp", true, 0.0, ""}, "a decay above 0"},
        {NetworkKind::graph, {"gwesp", false, 0.0, ""}, "needs its decay"},
        {NetworkKind::graph, {"kstar", true, 7.0, ""}, "maps k = 2, 3, 4, 5"},
        {NetworkKind::graph, {"nodematch", false, 0.0, "grade"}, "needs a categorical attribute"},
        {NetworkKind::graph, {"nodecov", false, 0.0, "age"}, "no attribute 'age'"},
        {NetworkKind::graph, {"mutual", false, 0.0, ""}, "neither a vexa effect nor an alias"},
    };
    for (const auto& c : cases) {
        try {
            resolve_alias(c.term, c.kind, grade, "");
            ADD_FAILURE() << c.says;
        } catch (const SettingError& e) {
            EXPECT_NE(std::string(e.what()).find(c.says), std::string::npos) << e.what();
        }
    }
    // A vexa effect keeps its name and takes the number as its lambda.
    const EffectChoice as = resolve_term({"AS", true, 3.0, ""}, NetworkKind::graph, {}, "");
    EXPECT_EQ(as.name, "AS");
    EXPECT_EQ(as.lambda, 3.0f);
}

}  // namespace
}  // namespace vexa
