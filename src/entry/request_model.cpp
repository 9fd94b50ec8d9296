// The model of an in-memory request: effects named as a run file names them, attributes as
// columns, each refused with one clear line when it cannot be used.
#include <array>
#include <cmath>
#include <utility>

#include "base/closest.h"
#include "base/errors.h"
#include "entry/api.h"
#include "entry/run_file.h"

namespace vexa {

namespace {

// The row of a catalogue whose run-file name is `name`, or -1.
int32_t row_named(const CatalogueView& catalogue, const std::string& name) {
    for (size_t r = 0; r < catalogue.rows.size(); ++r) {
        const char* update = catalogue.rows[r].labels.update_name;
        if (update != nullptr && name == update) return static_cast<int32_t>(r);
    }
    return -1;
}

// Where a requested effect lands: a structural row, or an attribute (or the covariate) and a
// row of its kind's catalogue.
struct Target {
    bool structural = true;
    AttributeKind kind = AttributeKind::binary;
    size_t attribute = 0;  // index among the request's attributes of its kind
    int32_t row = -1;
};

struct Attributes {
    // Per kind, the request's columns of that kind, in request order.
    std::array<std::vector<const AttributeColumn*>, attribute_kind_count> by_kind;
};

// The request's attributes of a kind, by name (the covariate's, when given, for its kind).
std::vector<std::string> names_of_kind(const TaskRequest& request, const Attributes& attributes,
                                       AttributeKind kind) {
    std::vector<std::string> names;
    if (kind == AttributeKind::covariate) {
        if (request.covariate_given) names.push_back(request.covariate_name);
    } else {
        for (const AttributeColumn* column : attributes.by_kind[static_cast<size_t>(kind)])
            names.push_back(column->name);
    }
    return names;
}

// Every effect name the request could use: the structural ones, then each attribute's (and the
// covariate's) effects after its name.
std::vector<std::string> known_effects(const TaskRequest& request, const Model& model,
                                       const Attributes& attributes) {
    std::vector<std::string> known;
    for (const EffectDescription& row : structural_catalogue(model.kind).rows)
        if (row.labels.update_name != nullptr) known.emplace_back(row.labels.update_name);
    for (int k = 0; k < attribute_kind_count; ++k) {
        const auto kind = static_cast<AttributeKind>(k);
        const std::vector<std::string> names = names_of_kind(request, attributes, kind);
        for (const std::string& name : names) {
            for (const EffectDescription& row : attribute_catalogue(model.kind, kind).rows)
                if (row.labels.update_name != nullptr)
                    known.push_back(name + "_" + row.labels.update_name);
        }
    }
    return known;
}

Target find_effect(const TaskRequest& request, const Model& model, const Attributes& attributes,
                   const EffectChoice& choice) {
    Target target;
    target.row = row_named(structural_catalogue(model.kind), choice.name);
    if (target.row >= 0) return target;
    target.structural = false;
    for (int k = 0; k < attribute_kind_count; ++k) {
        const auto kind = static_cast<AttributeKind>(k);
        const CatalogueView& catalogue = attribute_catalogue(model.kind, kind);
        const std::vector<std::string> names = names_of_kind(request, attributes, kind);
        for (size_t a = 0; a < names.size(); ++a) {
            const std::string& prefix = names[a];
            if (choice.name.size() <= prefix.size() + 1 ||
                choice.name.compare(0, prefix.size(), prefix) != 0 ||
                choice.name[prefix.size()] != '_') {
                continue;
            }
            const int32_t row = row_named(catalogue, choice.name.substr(prefix.size() + 1));
            if (row < 0) continue;
            target.kind = kind;
            target.attribute = a;
            target.row = row;
            return target;
        }
    }
    throw SettingError(format_message(
        "vexa: %s: no effect '%s' for a %s; did you mean '%s'? effects take their run-file names "
        "(edge, AS, ...), attribute effects the attribute's name before them "
        "(Grade_Same_Category_edge)",
        request.settings.run_file.c_str(), choice.name.c_str(),
        model.kind == NetworkKind::digraph ? "digraph" : "graph",
        closest_word(choice.name, known_effects(request, model, attributes)).c_str()));
}

void fill_section(AttributeSection& section, const Model& model, AttributeKind kind,
                  std::vector<std::string> names, std::vector<std::vector<double>> data,
                  std::vector<std::vector<uint8_t>> missing) {
    const size_t effects = attribute_catalogue(model.kind, kind).rows.size();
    section.given = true;
    section.count = static_cast<int32_t>(names.size());
    section.file = "";
    section.names = std::move(names);
    section.data = std::move(data);
    section.missing = std::move(missing);
    section.included.assign(effects, std::vector<int32_t>(section.names.size(), 0));
    section.value.assign(effects, std::vector<double>(section.names.size(), 0.0));
    section.slot.assign(effects, std::vector<int32_t>(section.names.size(), -1));
    section.included_count = 0;
}

void check_values(const TaskRequest& request, const AttributeColumn& column, int32_t n) {
    const char* run = request.settings.run_file.c_str();
    if (column.values.size() != static_cast<size_t>(n) ||
        (!column.missing.empty() && column.missing.size() != static_cast<size_t>(n))) {
        throw InputFileError(format_message("vexa: %s: attribute '%s' has %zu values for %d nodes",
                                            run, column.name.c_str(), column.values.size(), n));
    }
    if (column.name.empty() || column.name.find_first_of(" \t\r\n") != std::string::npos) {
        throw InputFileError(format_message("vexa: %s: attribute name '%s' must be one word", run,
                                            column.name.c_str()));
    }
    for (size_t v = 0; v < column.values.size(); ++v) {
        const bool missing = !column.missing.empty() && column.missing[v] != 0;
        const double x = missing ? 0.0 : column.values[v];
        if (!std::isfinite(x) || (column.kind == AttributeKind::binary && x != 0.0 && x != 1.0)) {
            throw InputFileError(format_message(
                "vexa: %s: attribute '%s', node %zu: expected %s, found %g", run,
                column.name.c_str(), v + 1,
                column.kind == AttributeKind::binary ? "0 or 1" : "a finite number", x));
        }
    }
}

// Every attribute kind's section, filled with the request's columns (and covariate).
void fill_sections(const TaskRequest& request, Model& model, const Attributes& attributes) {
    const RunSettings& s = request.settings;
    const int32_t n = s.node_count;
    for (int k = 0; k < attribute_kind_count; ++k) {
        const auto kind = static_cast<AttributeKind>(k);
        std::vector<std::string> names;
        std::vector<std::vector<double>> data;
        std::vector<std::vector<uint8_t>> missing;
        if (kind == AttributeKind::covariate) {
            if (!request.covariate_given) continue;
            if (request.covariate.size() != static_cast<size_t>(n) * static_cast<size_t>(n)) {
                throw InputFileError(format_message(
                    "vexa: %s: covariate '%s' has %zu values for %d x %d pairs", s.run_file.c_str(),
                    request.covariate_name.c_str(), request.covariate.size(), n, n));
            }
            names.push_back(request.covariate_name);
            data.push_back(request.covariate);
            missing.emplace_back(static_cast<size_t>(n), uint8_t{0});
        } else {
            for (const AttributeColumn* column : attributes.by_kind[static_cast<size_t>(k)]) {
                names.push_back(column->name);
                data.push_back(column->values);
                std::vector<uint8_t> flags = column->missing;
                flags.resize(static_cast<size_t>(n), 0);
                for (size_t v = 0; v < flags.size(); ++v) {
                    if (flags[v] != 0) data.back()[v] = 0.0;
                }
                missing.push_back(std::move(flags));
            }
            if (names.empty()) continue;
            model.attributes_given = true;
        }
        fill_section(model.section(kind), model, kind, std::move(names), std::move(data),
                     std::move(missing));
    }
}

using Chosen = std::vector<std::pair<Target, const EffectChoice*>>;

// Which effects are in, with their values and lambdas; refused when unknown, repeated or
// malformed.
Chosen choose_effects(const TaskRequest& request, const Model& model,
                      const Attributes& attributes) {
    const RunSettings& s = request.settings;
    Chosen chosen;
    for (const EffectChoice& choice : request.effects) {
        const Target target = find_effect(request, model, attributes, choice);
        for (const auto& [other, earlier] : chosen) {
            if (other.structural == target.structural && other.kind == target.kind &&
                other.attribute == target.attribute && other.row == target.row) {
                throw SettingError(format_message("vexa: %s: effect '%s' is given twice",
                                                  s.run_file.c_str(), choice.name.c_str()));
            }
        }
        const EffectDescription& row =
            target.structural
                ? structural_catalogue(model.kind).rows[static_cast<size_t>(target.row)]
                : attribute_catalogue(model.kind, target.kind)
                      .rows[static_cast<size_t>(target.row)];
        if (!std::isfinite(choice.value) || !std::isfinite(choice.lambda) ||
            (choice.lambda != 0.0f && (!row.alternating() || choice.lambda <= 0.0f))) {
            throw SettingError(format_message(
                "vexa: %s: effect '%s': value %g with lambda %g cannot be used%s",
                s.run_file.c_str(), choice.name.c_str(), choice.value,
                static_cast<double>(choice.lambda),
                row.alternating() ? " (a lambda must be above 0)" : " (it takes no lambda)"));
        }
        const std::string refusal =
            row.alternating() ? lambda_refusal(choice.lambda, row.lambda_default) : "";
        if (!refusal.empty()) {
            throw SettingError(format_message("vexa: %s: effect '%s': %s", s.run_file.c_str(),
                                              choice.name.c_str(), refusal.c_str()));
        }
        chosen.emplace_back(target, &choice);
    }
    return chosen;
}

// Slots in the order a run file lists the effects, so that a request and the run file of the
// same model agree.
void assign_slots(Model& model, const Chosen& chosen) {
    int32_t next_slot = 0;
    for (const int32_t row : structural_catalogue(model.kind).run_file_order) {
        for (const auto& [target, choice] : chosen) {
            if (!target.structural || target.row != row) continue;
            EffectSetting& effect = model.structural[static_cast<size_t>(row)];
            effect.value = choice->value;
            effect.lambda = choice->lambda != 0.0f ? choice->lambda
                                                   : structural_catalogue(model.kind)
                                                         .rows[static_cast<size_t>(row)]
                                                         .lambda_default;
            effect.slot = next_slot++;
            ++model.structural_included;
        }
    }
    for (int k = 0; k < attribute_kind_count; ++k) {
        const auto kind = static_cast<AttributeKind>(k);
        AttributeSection& section = model.section(kind);
        const size_t effects = attribute_catalogue(model.kind, kind).rows.size();
        for (size_t a = 0; a < static_cast<size_t>(section.count); ++a) {
            for (size_t e = 0; e < effects; ++e) {
                for (const auto& [target, choice] : chosen) {
                    if (target.structural || target.kind != kind || target.attribute != a ||
                        target.row != static_cast<int32_t>(e)) {
                        continue;
                    }
                    section.included[e][a] = 1;
                    section.value[e][a] = choice->value;
                    section.slot[e][a] = next_slot++;
                    ++section.included_count;
                }
            }
        }
    }
}

Attributes attributes_of(const TaskRequest& request) {
    const RunSettings& s = request.settings;
    Attributes attributes;
    for (const AttributeColumn& column : request.attributes) {
        if (column.kind == AttributeKind::covariate) {
            throw SettingError(format_message("vexa: %s: attribute '%s' cannot be a covariate",
                                              s.run_file.c_str(), column.name.c_str()));
        }
        check_values(request, column, s.node_count);
        attributes.by_kind[static_cast<size_t>(column.kind)].push_back(&column);
    }
    return attributes;
}

}  // namespace

Model request_model(const TaskRequest& request) {
    Model model = empty_model(request.settings.network_kind);
    model.structural_given = true;
    const Attributes attributes = attributes_of(request);
    fill_sections(request, model, attributes);
    assign_slots(model, choose_effects(request, model, attributes));
    return model;
}

std::vector<int32_t> effect_slots(const TaskRequest& request, const Model& model) {
    const Attributes attributes = attributes_of(request);
    std::vector<int32_t> slots;
    for (const EffectChoice& choice : request.effects) {
        const Target t = find_effect(request, model, attributes, choice);
        if (t.structural) {
            slots.push_back(model.structural[static_cast<size_t>(t.row)].slot);
            continue;
        }
        // Attribute values follow the structural ones in the order the vector walks them,
        // which is not their slot order (the binary effects take an order of their own).
        int32_t position = model.structural_included;
        int32_t found = -1;
        for_each_included_attribute_effect(model, [&](AttributeKind kind, int32_t effect,
                                                      int32_t attribute) {
            if (kind == t.kind && effect == t.row && attribute == static_cast<int32_t>(t.attribute))
                found = position;
            ++position;
        });
        slots.push_back(found);
    }
    return slots;
}

}  // namespace vexa
