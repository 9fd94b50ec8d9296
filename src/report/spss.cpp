#include "report/spss.h"

#include <vector>

#include "base/errors.h"
#include "base/text_file.h"
#include "model/parameter_labels.h"

namespace vexa {

void write_spss_syntax(FILE* out, const Model& model, const std::string& table_file) {
    for_each_included_attribute_effect(
        model, [&](AttributeKind kind, int32_t effect, int32_t attribute) {
            if (static_cast<size_t>(attribute) >= model.section(kind).names.size()) {
                throw SettingError(format_message(
                    "vexa: attribute %d of effect %s is included but has no name", attribute + 1,
                    attribute_catalogue(model.kind, kind)
                        .rows[static_cast<size_t>(effect)]
                        .labels.update_name));
            }
        });
    const std::vector<ParameterLabel> variables = parameter_labels(model, LabelStyle::spss);
    // Two blanks after GET DATA, a tab between the quotes and the header line skipped: SPSS
    // reads the table exactly as the simulation writes it.
    print(out,
          "GET DATA  /TYPE = TXT\n/FILE = '%s'\n/DELCASE = LINE\n/DELIMITERS = \"\t\"\n"
          "/ARRANGEMENT = DELIMITED\n/FIRSTCASE = 2\n/IMPORTCASE = ALL\n/VARIABLES =\nid F5.0\n",
          table_file.c_str());
    for (const ParameterLabel& v : variables) print(out, "%s %s\n", v.name.c_str(), v.format);
    print(out, "CACHE.\nEXECUTE.\n\n");
    for (const ParameterLabel& v : variables) {
        print(out,
              "GRAPH\n/Histogram=%s.\nGRAPH\n/SCATTERPLOT(BIVAR)=id WITH %s\n/MISSING=LISTWISE.\n",
              v.name.c_str(), v.name.c_str());
    }
}

void write_spss_file(const std::string& path, const Model& model, const std::string& table_file) {
    OutFile file(path, OpenMode::truncate);
    write_spss_syntax(file, model, table_file);
    file.close();
}

}  // namespace vexa
