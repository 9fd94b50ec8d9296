#include "entry/effect_aliases.h"

#include <array>
#include <cmath>
#include <utility>

#include "base/errors.h"

namespace vexa {

namespace {

// What an alias takes beside its name.
enum class Argument { none, order, decay, lambda, attribute, covariate };

// One alias. An order alias has one row per order it maps (kstar(2) and kstar(3) are two
// rows). An attribute or covariate alias names the suffix of the vexa effect, which follows
// the attribute's name. A row without target is refused, naming `closest`.
struct AliasRow {
    const char* name;
    NetworkKind kind;
    Argument argument;
    int order;           // the k of an order row
    const char* target;  // the vexa effect; nullptr: none counts the same statistic
    int attribute_kind;  // the AttributeKind the attribute must have; -1: any or none
    const char* closest;
    const char* meaning;
};

constexpr NetworkKind G = NetworkKind::graph;
constexpr NetworkKind D = NetworkKind::digraph;
constexpr int binary = static_cast<int>(AttributeKind::binary);
constexpr int continuous = static_cast<int>(AttributeKind::continuous);
constexpr int categorical = static_cast<int>(AttributeKind::categorical);

// The geometrically weighted terms sum e^decay (1 - (1 - e^-decay)^L) over edges or pairs;
// with lambda = e^decay that is lambda (1 - (1 - 1/lambda)^L), term by term the alternating
// sum of the vexa effect named. altkstar(lambda) is the series sum over k >= 2 of
// (-1)^k S_k / lambda^(k-2), which sums in closed form to AS's lambda^2 ((1 - 1/lambda)^d - 1 +
// d / lambda) per node. gwdegree is not AS: AS = lambda (2 edges - gwdegree).
// clang-format off
constexpr auto aliases = std::to_array<AliasRow>({
    {"edges",      G, Argument::none,  0, "edge",     -1, "", "the number of edges"},
    {"kstar",      G, Argument::order, 2, "2-star",   -1, "", "kstar(k), k = 2 to 5: the sum over nodes of C(degree, k)"},
    {"kstar",      G, Argument::order, 3, "3-star",   -1, "", ""},
    {"kstar",      G, Argument::order, 4, "4-star",   -1, "", ""},
    {"kstar",      G, Argument::order, 5, "5-star",   -1, "", ""},
    {"triangle",   G, Argument::none,  0, "Triangle", -1, "", "the number of triangles"},
    {"triangles",  G, Argument::none,  0, "Triangle", -1, "", "the number of triangles"},
    {"isolates",   G, Argument::none,  0, "Isolates", -1, "", "nodes of degree 0"},
    {"cycle",      G, Argument::order, 4, "cycle4",   -1, "", "cycle(4): the number of 4-cycles"},
    {"threetrail", G, Argument::none,  0, "3Path",    -1, "", "walks along three distinct edges, a triangle counting 3"},
    {"altkstar",   G, Argument::lambda, 0, "AS",      -1, "", "altkstar(lambda): the sum over k >= 2 of (-1)^k kstar(k) / lambda^(k-2); AS at the same lambda"},
    {"gwesp",      G, Argument::decay, 0, "AT",       -1, "", "gwesp(decay): e^decay times the sum over edges of 1 - (1 - e^-decay)^(shared partners); AT at lambda = e^decay"},
    {"gwdsp",      G, Argument::decay, 0, "A2P",      -1, "", "gwdsp(decay): e^decay times the sum over pairs of 1 - (1 - e^-decay)^(shared partners); A2P at lambda = e^decay"},
    {"gwdegree",   G, Argument::decay, 0, nullptr,    -1, "AS", "gwdegree(decay): e^decay times the sum over nodes of 1 - (1 - e^-decay)^degree; no vexa effect counts it, but AS at lambda = e^decay is lambda (2 edges - gwdegree), so edge + AS gives the same models as edges + gwdegree"},
    {"gwnsp",      G, Argument::decay, 0, nullptr,    -1, "A2P", "gwnsp(decay): gwdsp over the pairs without a tie; no vexa effect counts it, it is A2P minus AT at lambda = e^decay"},
    {"nodematch",  G, Argument::attribute, 0, "Same_Category_edge", categorical, "", "nodematch(a): edges whose ends share the category of a"},
    {"nodecov",    G, Argument::attribute, 0, "sum_of_Continuous",  continuous,  "", "nodecov(a): the sum over edges of a_i + a_j"},
    {"absdiff",    G, Argument::attribute, 0, "diff_of_Continuous", continuous,  "", "absdiff(a): the sum over edges of |a_i - a_j|"},
    {"nodefactor", G, Argument::attribute, 0, "activity",           binary,      "", "nodefactor(a) of a true/false attribute: the ends of edges at nodes where a is true"},
    {"edgecov",    G, Argument::covariate, 0, "edge",               -1,          "", "edgecov(w): the sum over edges of w_ij"},
    {"edges",      D, Argument::none,  0, "arc",              -1, "", "the number of arcs"},
    {"mutual",     D, Argument::none,  0, "reciprocity",      -1, "", "the number of mutual dyads"},
    {"istar",      D, Argument::order, 2, "in2star",          -1, "", "istar(k), k = 2 or 3: the sum over nodes of C(in-degree, k)"},
    {"istar",      D, Argument::order, 3, "in-3-star",        -1, "", ""},
    {"ostar",      D, Argument::order, 2, "out2star",         -1, "", "ostar(k), k = 2 or 3: the sum over nodes of C(out-degree, k)"},
    {"ostar",      D, Argument::order, 3, "out-3-star",       -1, "", ""},
    {"m2star",     D, Argument::none,  0, "path2",            -1, "", "two-paths i->k->j with i != j"},
    {"twopath",    D, Argument::none,  0, "path2",            -1, "", "two-paths i->k->j with i != j"},
    {"ttriple",    D, Argument::none,  0, "Transitive-Triad", -1, "", "transitive triples: i->j with a two-path i->k->j"},
    {"ctriple",    D, Argument::none,  0, "Cyclic-Triad",     -1, "", "cyclic triples i->j->k->i, each cycle once"},
    {"triangle",   D, Argument::none,  0, nullptr,            -1, "Transitive-Triad", "on a digraph name the triple: ttriple (Transitive-Triad) or ctriple (Cyclic-Triad)"},
    {"gwesp",      D, Argument::decay, 0, "AT-T",             -1, "", "gwesp(decay) on a digraph: an arc i->j's shared partners are the k of the two-paths i->k->j that it closes transitively, as dgwesp_OTP; AT-T at lambda = e^decay (dgwesp_ITP, _OSP, _ISP name the other kinds)"},
    {"gwdsp",      D, Argument::decay, 0, "A2P-T",            -1, "", "gwdsp(decay) on a digraph: the two-paths i->k->j of each ordered pair, as dgwdsp_OTP; A2P-T at lambda = e^decay"},
    {"dgwesp_OTP", D, Argument::decay, 0, "AT-T", -1, "", "e^decay times the sum over arcs i->j of 1 - (1 - e^-decay)^L, L the k with i->k->j; AT-T at lambda = e^decay"},
    {"dgwesp_ITP", D, Argument::decay, 0, "AT-C", -1, "", "the same with L the k with j->k->i; AT-C at lambda = e^decay"},
    {"dgwesp_OSP", D, Argument::decay, 0, "AT-U", -1, "", "the same with L the k with i->k and j->k; AT-U at lambda = e^decay"},
    {"dgwesp_ISP", D, Argument::decay, 0, "AT-D", -1, "", "the same with L the k with k->i and k->j; AT-D at lambda = e^decay"},
    {"dgwdsp_OTP", D, Argument::decay, 0, "A2P-T", -1, "", "e^decay times the sum over ordered pairs i != j of 1 - (1 - e^-decay)^L, L the k with i->k->j; A2P-T at lambda = e^decay"},
    {"gwidegree",  D, Argument::decay, 0, nullptr, -1, "AinS", "geometrically weighted in-degrees; no vexa effect counts them, AinS at lambda = e^decay is lambda (arcs - gwidegree)"},
    {"gwodegree",  D, Argument::decay, 0, nullptr, -1, "AoutS", "geometrically weighted out-degrees; no vexa effect counts them, AoutS at lambda = e^decay is lambda (arcs - gwodegree)"},
    {"nodematch",  D, Argument::attribute, 0, "same_Category", categorical, "", "nodematch(a): arcs whose ends share the category of a"},
    {"nodecov",    D, Argument::attribute, 0, "sum",      continuous, "", "nodecov(a): the sum over arcs of a_i + a_j"},
    {"absdiff",    D, Argument::attribute, 0, "diff",     continuous, "", "absdiff(a): the sum over arcs of |a_i - a_j|"},
    {"nodeocov",   D, Argument::attribute, 0, "sender",   continuous, "", "nodeocov(a): the sum over arcs i->j of a_i"},
    {"nodeicov",   D, Argument::attribute, 0, "receiver", continuous, "", "nodeicov(a): the sum over arcs i->j of a_j"},
    {"nodeofactor", D, Argument::attribute, 0, "sender",  binary,     "", "nodeofactor(a) of a true/false attribute: arcs sent by nodes where a is true"},
    {"nodeifactor", D, Argument::attribute, 0, "receiver", binary,    "", "nodeifactor(a) of a true/false attribute: arcs received by nodes where a is true"},
    {"edgecov",    D, Argument::covariate, 0, "arc",      -1,         "", "edgecov(w): the sum over arcs i->j of w_ij"},
});
// clang-format on

const char* kind_word(NetworkKind kind) {
    return kind == NetworkKind::digraph ? "digraph" : "graph";
}

const char* attribute_kind_word(int kind) {
    switch (kind) {
        case binary: return "true/false (binary)";
        case continuous: return "numeric (continuous)";
        case categorical: return "categorical";
        default: return "covariate";
    }
}

const char* argument_word(Argument argument) {
    switch (argument) {
        case Argument::order: return "k";
        case Argument::decay: return "decay";
        case Argument::lambda: return "lambda";
        case Argument::attribute: return "attribute";
        case Argument::covariate: return "covariate";
        case Argument::none: break;
    }
    return "";
}

// The orders an order alias maps, for its message: "2 to 5", "2 or 3".
std::string orders_of(const std::string& name, NetworkKind kind) {
    std::string orders;
    for (const AliasRow& row : aliases) {
        if (row.kind != kind || name != row.name) continue;
        if (!orders.empty()) orders += ", ";
        orders += std::to_string(row.order);
    }
    return orders;
}

EffectChoice attribute_choice(const AliasRow& row, const AliasTerm& term,
                              const std::vector<AttributeColumn>& attributes,
                              const std::string& covariate_name) {
    if (term.attribute.empty()) {
        throw SettingError(format_message("vexa: '%s' needs the name of %s %s", term.name.c_str(),
                                          row.argument == Argument::covariate ? "a" : "an",
                                          argument_word(row.argument)));
    }
    if (row.argument == Argument::covariate) {
        if (term.attribute != covariate_name) {
            throw SettingError(format_message("vexa: '%s': no covariate '%s' was given",
                                              term.name.c_str(), term.attribute.c_str()));
        }
        return {term.attribute + "_" + row.target, 0.0, 0.0f};
    }
    for (const AttributeColumn& column : attributes) {
        if (column.name != term.attribute) continue;
        if (static_cast<int>(column.kind) != row.attribute_kind) {
            throw SettingError(
                format_message("vexa: '%s' needs a %s attribute; '%s' is %s", term.name.c_str(),
                               attribute_kind_word(row.attribute_kind), term.attribute.c_str(),
                               attribute_kind_word(static_cast<int>(column.kind))));
        }
        return {term.attribute + "_" + row.target, 0.0, 0.0f};
    }
    throw SettingError(format_message("vexa: '%s': no attribute '%s' was given", term.name.c_str(),
                                      term.attribute.c_str()));
}

// The lambda of a decay or lambda alias, refused where the alternating sum is switched off
// (lambda at or below 1) or would not fit its single-precision field.
float lambda_of(const AliasRow& row, const AliasTerm& term) {
    if (!term.has_number || !std::isfinite(term.number)) {
        throw SettingError(format_message("vexa: '%s' needs its %s as a number", term.name.c_str(),
                                          argument_word(row.argument)));
    }
    const double lambda = row.argument == Argument::decay ? std::exp(term.number) : term.number;
    if (!(lambda > 1.0) || lambda > 1e6) {
        throw SettingError(format_message(
            "vexa: '%s': %s %g gives lambda %g; vexa's %s takes a lambda above 1 (a decay above "
            "0) and below a million",
            term.name.c_str(), argument_word(row.argument), term.number, lambda, row.target));
    }
    return static_cast<float>(lambda);
}

}  // namespace

bool is_alias(const std::string& name, NetworkKind kind) {
    for (const AliasRow& row : aliases) {
        if (row.kind == kind && name == row.name) return true;
    }
    return false;
}

EffectChoice resolve_alias(const AliasTerm& term, NetworkKind kind,
                           const std::vector<AttributeColumn>& attributes,
                           const std::string& covariate_name) {
    const AliasRow* found = nullptr;
    for (const AliasRow& row : aliases) {
        if (row.kind != kind || term.name != row.name) continue;
        if (row.argument == Argument::order &&
            !(term.has_number && term.number == static_cast<double>(row.order))) {
            continue;
        }
        found = &row;
        break;
    }
    if (found == nullptr) {
        if (is_alias(term.name, kind)) {
            throw SettingError(format_message(
                "vexa: '%s' on a %s maps k = %s to vexa effects, found %s", term.name.c_str(),
                kind_word(kind), orders_of(term.name, kind).c_str(),
                term.has_number ? format_message("%g", term.number).c_str() : "no k"));
        }
        throw SettingError(
            format_message("vexa: '%s' is neither a vexa effect nor an alias of one "
                           "for a %s; vexa.effects() lists them",
                           term.name.c_str(), kind_word(kind)));
    }
    const AliasRow& row = *found;
    if (row.target == nullptr) {
        throw SettingError(format_message(
            "vexa: '%s' has no vexa effect of the same statistic on a %s; the closest is %s: %s",
            term.name.c_str(), kind_word(kind), row.closest, row.meaning));
    }
    switch (row.argument) {
        case Argument::attribute:
        case Argument::covariate: return attribute_choice(row, term, attributes, covariate_name);
        case Argument::decay:
        case Argument::lambda: return {row.target, 0.0, lambda_of(row, term)};
        case Argument::none:
        case Argument::order: break;
    }
    return {row.target, 0.0, 0.0f};
}

EffectChoice resolve_term(const AliasTerm& term, NetworkKind kind,
                          const std::vector<AttributeColumn>& attributes,
                          const std::string& covariate_name) {
    bool vexa_name = false;
    for (const EffectDescription& row : structural_catalogue(kind).rows)
        vexa_name =
            vexa_name || (row.labels.update_name != nullptr && term.name == row.labels.update_name);
    if (!vexa_name && is_alias(term.name, kind))
        return resolve_alias(term, kind, attributes, covariate_name);
    if (!term.attribute.empty()) {
        throw SettingError(
            format_message("vexa: effect '%s' takes no attribute; write it as "
                           "'%s_%s'",
                           term.name.c_str(), term.attribute.c_str(), term.name.c_str()));
    }
    const double lambda = term.has_number ? term.number : 0.0;
    if (!std::isfinite(lambda) || std::fabs(lambda) > 1e6) {
        throw SettingError(format_message("vexa: effect '%s': lambda %g cannot be used",
                                          term.name.c_str(), lambda));
    }
    return {term.name, 0.0, static_cast<float>(lambda)};
}

std::vector<EffectEntry> effect_entries(NetworkKind kind) {
    static constexpr const char* kind_words[] = {"binary", "continuous", "categorical",
                                                 "covariate"};
    std::vector<EffectEntry> entries;
    const CatalogueView& structural = structural_catalogue(kind);
    for (const int32_t r : structural.run_file_order) {
        const EffectDescription& row = structural.rows[static_cast<size_t>(r)];
        const std::string name = row.labels.update_name;
        entries.push_back({name, "structural", row.alternating() ? "lambda" : "", "",
                           effect_meaning(kind, name), ""});
    }
    for (int k = 0; k < attribute_kind_count; ++k) {
        const auto which = static_cast<AttributeKind>(k);
        const CatalogueView& catalogue = attribute_catalogue(kind, which);
        for (const int32_t r : catalogue.run_file_order) {
            const std::string suffix = catalogue.rows[static_cast<size_t>(r)].labels.update_name;
            entries.push_back({"<attribute>_" + suffix, kind_words[k], "", "",
                               attribute_effect_meaning(kind, which, suffix), ""});
        }
    }
    for (const AliasRow& row : aliases) {
        if (row.kind != kind || row.meaning[0] == '\0') continue;
        std::string target = row.target != nullptr ? row.target : "";
        if (row.argument == Argument::order) {
            for (const AliasRow& other : aliases) {
                if (&other != &row && other.kind == kind && std::string(other.name) == row.name)
                    target.append(", ").append(other.target);
            }
        }
        if (row.argument == Argument::attribute || row.argument == Argument::covariate) {
            std::string prefixed = "<";
            prefixed.append(argument_word(row.argument)).append(">_").append(target);
            target = std::move(prefixed);
        }
        entries.push_back({row.name, "alias", argument_word(row.argument), target, row.meaning,
                           row.attribute_kind >= 0 ? kind_words[row.attribute_kind] : ""});
    }
    return entries;
}

}  // namespace vexa
