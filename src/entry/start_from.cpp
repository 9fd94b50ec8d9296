#include "entry/start_from.h"

#include <filesystem>
#include <map>

#include "base/errors.h"
#include "base/matrix_text.h"
#include "model/parameter_labels.h"
#include "model/parameter_vector.h"
#include "report/update_files.h"

namespace vexa {

namespace {

std::string joined(const std::vector<std::string>& names) {
    std::string text;
    for (const std::string& name : names) text += (text.empty() ? "" : ", ") + name;
    return text;
}

// The covariance rows after the summary table that ends at line `from`, when there are p.
Matrix covariance_after(const std::vector<std::string>& lines, size_t from, size_t p) {
    size_t k = from;
    while (k < lines.size() && lines[k] != "Estimated Covariance Matrix") {
        if (lines[k].rfind("effects\testimates", 0) == 0) return {};
        ++k;
    }
    if (k + p >= lines.size() + 1) return {};
    Matrix covariance = make_matrix(static_cast<int>(p), static_cast<int>(p));
    for (size_t i = 0; i < p; ++i) {
        const std::vector<std::string> words = split_words(lines[k + 1 + i]);
        if (words.size() != p) return {};
        for (size_t j = 0; j < p; ++j) {
            if (!parse_double(words[j], covariance[static_cast<int>(i)][j])) return {};
        }
    }
    return covariance;
}

// The model's labels as a report prints them, in parameter order.
std::vector<std::string> report_labels(const Model& model) {
    std::vector<std::string> labels;
    for (const ParameterLabel& label : parameter_labels(model, LabelStyle::summary))
        labels.push_back(labelled(label));
    return labels;
}

// An update file as name -> value; empty when the file is not there.
std::map<std::string, std::string> update_entries(const std::string& path) {
    std::map<std::string, std::string> entries;
    if (!std::filesystem::exists(path)) return entries;
    const std::vector<std::string> lines = split_lines(read_text_file(path, "update"));
    for (size_t k = 0; k + 1 < lines.size(); k += 2) entries[lines[k]] = lines[k + 1];
    return entries;
}

bool is_update_file(const std::string& path) {
    const std::string name = std::filesystem::path(path).filename().string();
    for (const NetworkKind kind : {NetworkKind::graph, NetworkKind::digraph}) {
        for (const char* update : update_file_names(kind))
            if (name == update) return true;
    }
    return false;
}

int take_update_estimates(Model& model, const std::string& path, const std::string& run_file) {
    const std::string folder = std::filesystem::path(path).parent_path().string();
    const std::array<const char*, 5>& names = update_file_names(model.kind);
    std::array<std::map<std::string, std::string>, 5> files;
    for (size_t k = 0; k < files.size(); ++k)
        files[k] = update_entries((std::filesystem::path(folder) / names[k]).string());
    std::vector<std::string> missing;
    int taken = 0;
    const auto take = [&](size_t file, const std::string& name, double& value) {
        const auto found = files[file].find(name);
        double number = 0.0;
        const std::vector<std::string> words =
            found == files[file].end() ? std::vector<std::string>{} : split_words(found->second);
        if (words.size() != 1 || !parse_double(words[0], number)) {
            missing.push_back(name);
            return;
        }
        value = number;
        ++taken;
    };
    const CatalogueView& catalogue = structural_catalogue(model.kind);
    for (size_t r = 0; r < model.structural.size(); ++r) {
        if (model.structural[r].slot != -1)
            take(0, catalogue.rows[r].labels.update_name, model.structural[r].value);
    }
    for_each_included_attribute_effect(model, [&](AttributeKind kind, int32_t e, int32_t a) {
        AttributeSection& section = model.section(kind);
        const std::string name =
            section.names[static_cast<size_t>(a)] + "_" +
            attribute_catalogue(model.kind, kind).rows[static_cast<size_t>(e)].labels.update_name;
        take(static_cast<size_t>(kind) + 1, name,
             section.value[static_cast<size_t>(e)][static_cast<size_t>(a)]);
    });
    if (!missing.empty()) {
        throw SettingError(format_message(
            "vexa: --start-from '%s' does not fit run file '%s': the update files there hold no "
            "estimate of %s",
            path.c_str(), run_file.c_str(), joined(missing).c_str()));
    }
    return taken;
}

}  // namespace

ReportEstimates read_report_estimates(const std::string& path) {
    const std::vector<std::string> lines = split_lines(read_text_file(path, "estimation report"));
    size_t header = lines.size();
    for (size_t k = 0; k < lines.size(); ++k) {
        if (lines[k].rfind("effects\testimates\tstderr\tt-ratio", 0) == 0) header = k;
    }
    if (header == lines.size()) {
        throw InputFileError(format_message(
            "vexa: '%s' holds no estimates: it is neither an estimation report with a summary "
            "table nor an update file (stupdate.vexa, ...)",
            path.c_str()));
    }
    ReportEstimates report;
    size_t k = header + 1;
    for (; k < lines.size() && !lines[k].empty(); ++k) {
        const std::vector<std::string> words = split_words(lines[k]);
        double estimate = 0.0;
        if (words.size() < 2 || !parse_double(words[1], estimate)) {
            throw InputFileError(format_message(
                "vexa: estimation report '%s', line %zu: '%s' is not a row of estimates",
                path.c_str(), k + 1, lines[k].c_str()));
        }
        report.labels.push_back(words[0]);
        report.estimates.push_back(estimate);
    }
    report.covariance = covariance_after(lines, k, report.labels.size());
    return report;
}

MatchedEstimates match_report(const Model& model, const ReportEstimates& report,
                              const std::string& what, const std::string& run_file) {
    const std::vector<std::string> wanted = report_labels(model);
    std::vector<size_t> at;
    std::vector<std::string> missing, extra;
    for (const std::string& label : wanted) {
        size_t k = 0;
        while (k < report.labels.size() && report.labels[k] != label) ++k;
        if (k == report.labels.size()) missing.push_back(label);
        at.push_back(k);
    }
    for (const std::string& label : report.labels) {
        bool found = false;
        for (const std::string& w : wanted) found = found || w == label;
        if (!found) extra.push_back(label);
    }
    if (!missing.empty() || !extra.empty()) {
        std::string why;
        if (!missing.empty()) why = "it has no estimate of " + joined(missing);
        if (!extra.empty())
            why += (why.empty() ? "it estimates " : "; it estimates ") + joined(extra) +
                   ", which the run file leaves out";
        throw SettingError(format_message("vexa: %s does not fit run file '%s': %s", what.c_str(),
                                          run_file.c_str(), why.c_str()));
    }
    MatchedEstimates matched;
    const auto p = static_cast<int>(wanted.size());
    for (const size_t k : at) matched.estimates.push_back(report.estimates[k]);
    if (report.covariance.rows == p) {
        matched.covariance = make_matrix(p, p);
        for (int i = 0; i < p; ++i) {
            for (int j = 0; j < p; ++j) {
                matched.covariance[i][j] =
                    report.covariance[static_cast<int>(at[static_cast<size_t>(i)])]
                                     [at[static_cast<size_t>(j)]];
            }
        }
    }
    return matched;
}

int take_estimates(Model& model, const std::string& path, const std::string& run_file) {
    if (is_update_file(path)) return take_update_estimates(model, path, run_file);
    const MatchedEstimates matched =
        match_report(model, read_report_estimates(path),
                     format_message("--start-from '%s'", path.c_str()), run_file);
    unpack(model, matched.estimates);
    return static_cast<int>(matched.estimates.size());
}

}  // namespace vexa
