#include "effects/model.h"

#include "effects/attribute_catalogue.h"
#include "effects/digraph_catalogue.h"
#include "effects/graph_catalogue.h"

namespace vexa {

Model empty_model(NetworkKind kind) {
    Model model;
    model.kind = kind;
    model.structural.assign(
        static_cast<size_t>(kind == NetworkKind::digraph ? digraph_effect_count : graph_effect_count),
        EffectSetting{});
    return model;
}

}  // namespace vexa
