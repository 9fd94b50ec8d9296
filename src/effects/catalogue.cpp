#include "effects/catalogue.h"

#include <cmath>
#include <cstdio>

namespace vexa {

// Each kind's catalogues define their views beside their tables.
const CatalogueView& graph_structural_catalogue();
const CatalogueView& digraph_structural_catalogue();
const CatalogueView& graph_attribute_catalogue(AttributeKind which);
const CatalogueView& digraph_attribute_catalogue(AttributeKind which);

const CatalogueView& structural_catalogue(NetworkKind kind) {
    return kind == NetworkKind::digraph ? digraph_structural_catalogue()
                                        : graph_structural_catalogue();
}

const CatalogueView& attribute_catalogue(NetworkKind kind, AttributeKind which) {
    return kind == NetworkKind::digraph ? digraph_attribute_catalogue(which)
                                        : graph_attribute_catalogue(which);
}

WeightTable weight_table(float lambda) {
    WeightTable table{};
    table[0] = 1.0f;
    const double ratio = 1.0 - 1.0 / static_cast<double>(lambda);
    for (int m = 1; m <= weight_table_cap; ++m) {
        table[static_cast<size_t>(m)] = static_cast<float>(std::pow(ratio, m));
    }
    return table;
}

std::string effect_label(const char* name, bool alternating, float lambda) {
    if (!alternating) return name;
    char buffer[256];
    std::snprintf(buffer, sizeof buffer, "%s(%.2f)", name, static_cast<double>(lambda));
    return buffer;
}

}  // namespace vexa
