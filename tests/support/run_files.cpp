#include "support/run_files.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <regex>
#include <sstream>

#include "effects/graph/graph_catalogue.h"
#include "entry/run_driver.h"
#include "network/digraph.h"
#include "support/test_support.h"

namespace vexa::testing {

namespace {

std::string number(double value) {
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%.17g", value);
    return buffer;
}

}  // namespace

std::string GraphRunFile::text() const {
    std::string t;
    auto row = [&](const char* label, const std::string& value) {
        t.append(label).append("\n").append(value).append("\n\n");
    };
    row("network_name", name);
    row("output_directory", directory);
    row("sampler_variant", std::to_string(sampler_variant));
    row("task_and_kind", std::to_string(task) + (kind == NetworkKind::digraph ? " 2" : " 1"));
    row("node_count", std::to_string(nodes));
    if (task == 1) {
        row("initial_density", number(initial_density));
    } else {
        row("network_file", network_file);
    }
    if (degree_cap != -1) {
        t.append("degree_cap_given\n1\ndegree_cap\n")
            .append(std::to_string(degree_cap))
            .append("\n");
    } else {
        t += "degree_cap_given\n0\n";
    }
    t += "structural\n1\n";
    const CatalogueView& catalogue = structural_catalogue(kind);
    for (const int32_t index : catalogue.run_file_order) {
        const EffectDescription& effect = catalogue.rows[static_cast<size_t>(index)];
        const auto found = effects.find(effect.labels.update_name);
        const bool included = found != effects.end();
        t.append(effect.labels.update_name).append("\n").append(included ? "1" : "0").append("\n");
        t.append(number(included ? found->second.first : 0.0));
        if (effect.alternating())
            t.append(" ").append(number(included ? found->second.second : 0.0));
        t.append("\n");
    }
    t += attribute_sections.empty() ? "attributes\n0\ncovariates\n0\n" : attribute_sections;
    if (task == 4) t.append("parameter_sets_file\n").append(parameter_sets_file).append("\n\n");
    if (constraint_file.empty()) {
        t += "constraint_given\n0\n";
    } else {
        t.append("constraint_given\n1\nconstraint_file\n").append(constraint_file).append("\n\n");
    }
    if (task == 2) {
        row("subphases", std::to_string(subphases));
        row("gain", number(gain));
        row("factor", std::to_string(factor));
        row("phase3", std::to_string(phase3));
        row("runs", std::to_string(runs));
        row("gof_after", std::to_string(gof_after));
    } else {
        const char* labels[] = {"pajek",    "degree",  "geodesic", "cluster",
                                "triangle", "twopath", "et0nt"};
        for (int k = 0; k < 7; ++k) row(labels[k], std::to_string(flags[k]));
        row("burn_in", number(burn_in));
        if (task != 4) row("iterations", number(iterations));
        row("samples", std::to_string(samples));
    }
    return t;
}

std::string GraphRunFile::write(const std::string& dir, const std::string& file) const {
    const std::string path = dir + "/" + file;
    write_text(path, text());
    return path;
}

GraphRunFile on_network(const std::string& dir, const std::string& network, NetworkKind kind,
                        int nodes) {
    write_text(dir + "/" + network, read_text(data_path(network)));
    GraphRunFile file;
    file.kind = kind;
    file.nodes = nodes;
    file.network_file = network;
    return file;
}

GraphRunFile on_school_network(const std::string& dir) {
    write_text(dir + "/faux.mesa.high_attributes.txt",
               read_text(data_path("faux.mesa.high_attributes.txt")));
    GraphRunFile file = on_network(dir, "faux.mesa.high.txt", NetworkKind::graph, 205);
    file.attribute_sections = grade_same_category_sections();
    return file;
}

std::vector<double> samplike_reciprocity_estimates() {
    const Digraph observed = read_digraph(data_path("samplike.txt"), 18);
    double M = 0, A = 0, N = 0;
    for (int i = 0; i < 18; ++i) {
        for (int j = i + 1; j < 18; ++j) {
            const int ties = observed.has_arc(i, j) + observed.has_arc(j, i);
            (ties == 2 ? M : ties == 1 ? A : N) += 1.0;
        }
    }
    return {std::log(A / (2.0 * N)), std::log(4.0 * M * N / (A * A))};
}

std::vector<double> school_homophily_estimates() {
    return homophily_estimates(read_text(data_path("faux.mesa.high.txt")),
                               read_text(data_path("faux.mesa.high_attributes.txt")));
}

std::vector<double> homophily_estimates(const std::string& matrix_text,
                                        const std::string& attribute_text) {
    std::istringstream matrix(matrix_text);
    std::istringstream attributes(attribute_text);
    std::string word;
    attributes >> word >> word >> word;  // Grade Race Sex
    std::vector<std::string> grade;
    for (std::string g, race, sex; attributes >> g >> race >> sex;) grade.push_back(g);
    const size_t n = grade.size();
    double pairs[2] = {0, 0}, ties[2] = {0, 0};  // between, within
    for (size_t i = 0; i < n; ++i) {
        for (size_t j = 0; j < n; ++j) {
            std::string cell;
            matrix >> cell;
            if (j <= i || cell == "NA" || cell == ".") continue;
            // A missing grade matches none.
            const int same = grade[i] == grade[j] && grade[i] != "NA" ? 1 : 0;
            pairs[same] += 1;
            ties[same] += cell == "1" ? 1 : 0;
        }
    }
    const auto logit = [](double tied, double all) { return std::log(tied / (all - tied)); };
    const double edge = logit(ties[0], pairs[0]);
    return {edge, logit(ties[1], pairs[1]) - edge};
}

std::string run_vexa(const std::string& dir, const GraphRunFile& file, uint32_t seed, bool confirm,
                     int* status, bool automatic) {
    RunOptions options;
    options.fixed_seed = true;
    options.seed = seed;
    options.confirm = confirm;
    options.automatic = automatic;
    return run_vexa_with(dir, file, options, status);
}

std::string run_vexa_with(const std::string& dir, const GraphRunFile& file, RunOptions options,
                          int* status) {
    const WorkingDirectory here(dir);
    std::filesystem::create_directories(dir + "/" + file.directory);
    const std::string path = file.write(dir);
    return capture([&](FILE* console) {
        options.console = console;
        const int returned = run_entry(path.c_str(), options);
        if (status != nullptr) *status = returned;
    });
}

std::string grade_same_category_sections() {
    std::string sections =
        "attributes\n1\nbinary\n0\ncontinuous\n0\ncategorical\n1\n3\nfile\n"
        "faux.mesa.high_attributes.txt\n\n";
    for (const std::string attribute : {"Grade", "Race", "Sex"}) {
        const int included = attribute == "Grade" ? 1 : 0;
        sections += attribute + "_same\n" + std::to_string(included) + "\n0\n" + attribute +
                    "_different\n0\n0\n";
    }
    return sections + "covariates\n0\n";
}

int value_line(const std::string& text, const std::string& label) {
    const std::vector<std::string> lines = lines_of(text);
    for (size_t k = 0; k + 1 < lines.size(); ++k)
        if (lines[k] == label) return static_cast<int>(k) + 2;
    return 0;
}

std::vector<std::string> lines_of(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    std::string line;
    while (std::getline(in, line)) lines.push_back(line);
    return lines;
}

std::vector<std::string> tab_fields(const std::string& line) {
    std::vector<std::string> out;
    std::string field;
    std::istringstream in(line);
    while (std::getline(in, field, '\t')) out.push_back(field);
    return out;
}

std::map<std::string, std::vector<double>> report_table(const std::string& report,
                                                        const std::string& header) {
    std::map<std::string, std::vector<double>> rows;
    const std::vector<std::string> lines = lines_of(report);
    size_t k = 0;
    while (k < lines.size() && lines[k] != header) ++k;
    for (++k; k < lines.size() && !lines[k].empty(); ++k) {
        const std::vector<std::string> fields = tab_fields(lines[k]);
        std::vector<double>& values = rows[fields[0]];
        for (size_t f = 1; f < fields.size(); ++f) values.push_back(std::stod(fields[f]));
    }
    return rows;
}

std::vector<SummaryRow> last_summary(const std::string& report) {
    const std::vector<std::string> lines = lines_of(report);
    const std::regex row(R"(([^\t]+)\t(-?\d+\.\d{6})\t(-?\d+\.\d{5})\t(-?\d+\.\d{5})\t(\*?))");
    std::vector<SummaryRow> rows;
    for (size_t k = 0; k < lines.size(); ++k) {
        if (lines[k] != "effects\testimates\tstderr\tt-ratio") continue;
        rows.clear();
        for (size_t r = k + 1; r < lines.size() && !lines[r].empty(); ++r) {
            std::smatch m;
            if (!std::regex_match(lines[r], m, row)) {
                rows.push_back({"malformed: " + lines[r]});
                continue;
            }
            rows.push_back({m[1], std::stod(m[2]), std::stod(m[3]), std::stod(m[4]), m[5] == "*"});
        }
    }
    return rows;
}

}  // namespace vexa::testing
