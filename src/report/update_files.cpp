#include "report/update_files.h"

#include <cstddef>

#include "base/errors.h"
#include "base/text_file.h"

namespace vexa {

namespace {

constexpr std::array<const char*, 5> graph_files{
    "stupdate.vexa", "biupdate.vexa", "contupdate.vexa", "catupdate.vexa", "covupdate.vexa"};
constexpr std::array<const char*, 5> digraph_files{"distupdate.vexa", "dibiupdate.vexa",
                                                   "dicontupdate.vexa", "dicatupdate.vexa",
                                                   "dicovupdate.vexa"};

const char* kind_words(AttributeKind kind) {
    switch (kind) {
        case AttributeKind::binary: return "binary attributes";
        case AttributeKind::continuous: return "continuous attributes";
        case AttributeKind::categorical: return "categorical attributes";
        case AttributeKind::covariate: return "covariates";
    }
    return "attributes";
}

size_t structural_row_count(NetworkKind kind) { return structural_catalogue(kind).rows.size(); }

// The model is built by the run-file reader; a mismatch with the catalogue is a fault of the
// caller, but it must end the run with a message rather than read past an array.
void check_structural(const Model& model) {
    if (model.structural.size() != structural_row_count(model.kind)) {
        throw SettingError(format_message(
            "vexa: the model holds %zu structural effects where the catalogue has %zu",
            model.structural.size(), structural_row_count(model.kind)));
    }
}

void check_section(const AttributeSection& section, size_t effect_count, AttributeKind kind) {
    const auto count = static_cast<size_t>(section.count);
    if (section.names.size() < count) {
        throw SettingError(format_message("vexa: %zu names were read for %zu %s",
                                          section.names.size(), count, kind_words(kind)));
    }
    bool fits = section.value.size() == effect_count;
    for (size_t e = 0; fits && e < effect_count; ++e) fits = section.value[e].size() >= count;
    if (!fits) {
        throw SettingError(format_message("vexa: the values of the %s do not cover every effect",
                                          kind_words(kind)));
    }
}

std::string join(const std::string& directory, const char* name) {
    if (directory.empty()) return name;
    const char last = directory.back();
    if (last == '/' || last == '\\') return directory + name;
    return directory + "/" + name;
}

}  // namespace

const std::array<const char*, 5>& update_file_names(NetworkKind kind) {
    return kind == NetworkKind::digraph ? digraph_files : graph_files;
}

void write_structural_update(FILE* out, const Model& model) {
    if (!model.structural_given) return;
    check_structural(model);
    const CatalogueView& catalogue = structural_catalogue(model.kind);
    for (const int32_t row : catalogue.run_file_order) {
        const auto r = static_cast<size_t>(row);
        print(out, "%s\n%.5f\n", catalogue.rows[r].labels.update_name, model.structural[r].value);
    }
}

void write_attribute_update(FILE* out, const Model& model, AttributeKind kind) {
    const AttributeSection& section = model.section(kind);
    if (!section.given || section.count < 1) return;
    const CatalogueView& catalogue = attribute_catalogue(model.kind, kind);
    check_section(section, catalogue.rows.size(), kind);
    for (size_t a = 0; a < static_cast<size_t>(section.count); ++a) {
        for (size_t e = 0; e < catalogue.rows.size(); ++e) {
            print(out, "%s_%s\n%.5f\n", section.names[a].c_str(),
                  catalogue.rows[e].labels.update_name, section.value[e][a]);
        }
    }
}

void write_update_files(const Model& model, const std::string& directory) {
    const std::array<const char*, 5>& names = update_file_names(model.kind);
    {
        OutFile file(join(directory, names[0]), OpenMode::truncate);
        write_structural_update(file, model);
        file.close();
    }
    for (int k = 0; k < attribute_kind_count; ++k) {
        OutFile file(join(directory, names[static_cast<size_t>(k) + 1]), OpenMode::truncate);
        write_attribute_update(file, model, static_cast<AttributeKind>(k));
        file.close();
    }
}

}  // namespace vexa
