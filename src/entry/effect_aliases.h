#pragma once
// Other names for vexa's effects, in the style network scientists know from the R package's
// terms (edges, kstar(2), gwesp(0.5), nodematch("grade")), for hosts whose users write models
// that way. A name maps to a vexa effect only where the two statistics are the same up to the
// parameterisation; a name whose statistic no vexa effect counts is refused, naming the
// closest effect, so that a model never silently means something else.

#include <string>
#include <vector>

#include "effects/catalogue.h"
#include "entry/api.h"
#include "network/network_kind.h"

namespace vexa {

// A term as such a user writes it: a name, with a number (an order k, a decay, a lambda) and
// an attribute's name where the term takes them.
struct AliasTerm {
    std::string name;
    bool has_number = false;
    double number = 0.0;
    std::string attribute;
};

// Whether `name` is one of the other names for the network kind (mapped or refused).
bool is_alias(const std::string& name, NetworkKind kind);

// The vexa effect the term names, its lambda set where the alias fixes one. `attributes` says
// the kind of each attribute the model may read; a covariate is given by its name. Throws
// SettingError naming the closest vexa effect when no effect counts the same statistic, or
// when the number or attribute the term needs is missing or of the wrong kind.
EffectChoice resolve_alias(const AliasTerm& term, NetworkKind kind,
                           const std::vector<AttributeColumn>& attributes,
                           const std::string& covariate_name);

// A term as a host's user writes it, a vexa effect (its number the lambda, 0 the default) or
// an alias. A name that is neither passes on as it is, for the model to refuse.
EffectChoice resolve_term(const AliasTerm& term, NetworkKind kind,
                          const std::vector<AttributeColumn>& attributes,
                          const std::string& covariate_name);

// One line of the list of effects a host shows: a vexa effect or an alias, with what it
// counts.
struct EffectEntry {
    std::string name;
    std::string kind;  // "structural", "binary", "continuous", "categorical", "covariate", "alias"
    std::string argument;  // "lambda", "k", "decay", "attribute", "covariate" or ""
    std::string maps_to;   // an alias: the vexa effect it stands for ("" when it has none)
    std::string meaning;
    // An alias of an attribute effect: the kind of attribute it reads ("binary", "continuous",
    // "categorical"); "" for any other entry.
    std::string attribute_kind;
};

// Every vexa effect of the kind (attribute effects by their run-file suffix), then every alias.
std::vector<EffectEntry> effect_entries(NetworkKind kind);

// What a vexa effect counts, by its run-file name (an attribute effect by its suffix, given its
// kind); "" when the catalogue has no such name.
std::string effect_meaning(NetworkKind kind, const std::string& name);
std::string attribute_effect_meaning(NetworkKind kind, AttributeKind which,
                                     const std::string& name);

}  // namespace vexa
