#include "entry/parameter_sets.h"

#include <cstdio>
#include <map>
#include <new>

#include "base/errors.h"
#include "base/matrix_text.h"
#include "base/text_file.h"
#include "entry/run_driver.h"
#include "entry/run_file.h"
#include "entry/start_from.h"
#include "model/parameter_vector.h"
#include "numeric/matrix.h"
#include "numeric/normal.h"
#include "report/update_files.h"

namespace vexa {

namespace {

// An update file as name -> value; the file alternates a name line and a value line.
struct UpdateFile {
    std::string path;
    std::map<std::string, std::string> values;
};

UpdateFile read_update_file(const std::string& path) {
    const std::string text = read_text_file(path, "update");
    UpdateFile file{path, {}};
    const std::vector<std::string> lines = split_lines(text);
    for (size_t k = 0; k + 1 < lines.size(); k += 2) file.values[lines[k]] = lines[k + 1];
    return file;
}

double estimate_of(const UpdateFile& file, const std::string& name) {
    const auto found = file.values.find(name);
    double value = 0.0;
    if (found == file.values.end()) {
        throw InputFileError(format_message("vexa: update file '%s' has no entry for '%s'",
                                            file.path.c_str(), name.c_str()));
    }
    const std::vector<std::string> words = split_words(found->second);
    if (words.size() != 1 || !parse_double(words[0], value)) {
        throw InputFileError(
            format_message("vexa: update file '%s', entry '%s': '%s' is not a number",
                           file.path.c_str(), name.c_str(), found->second.c_str()));
    }
    return value;
}

std::string join(const std::string& directory, const char* name) {
    if (directory.empty()) return name;
    const char last = directory.back();
    return last == '/' || last == '\\' ? directory + name : directory + "/" + name;
}

}  // namespace

std::vector<double> read_update_estimates(const Model& model, const std::string& directory) {
    Model estimated = model;
    const std::array<const char*, 5>& names = update_file_names(model.kind);
    if (model.structural_included > 0) {
        const UpdateFile file = read_update_file(join(directory, names[0]));
        const CatalogueView& catalogue = structural_catalogue(model.kind);
        for (size_t r = 0; r < estimated.structural.size(); ++r) {
            EffectSetting& effect = estimated.structural[r];
            if (effect.slot != -1)
                effect.value = estimate_of(file, catalogue.rows[r].labels.update_name);
        }
    }
    std::map<int, UpdateFile> files;
    for_each_included_attribute_effect(model, [&](AttributeKind kind, int32_t effect, int32_t a) {
        const int k = static_cast<int>(kind);
        if (files.count(k) == 0)
            files[k] = read_update_file(join(directory, names[static_cast<size_t>(k) + 1]));
        AttributeSection& section = estimated.section(kind);
        const std::string name = section.names[static_cast<size_t>(a)] + "_" +
                                 attribute_catalogue(model.kind, kind)
                                     .rows[static_cast<size_t>(effect)]
                                     .labels.update_name;
        section.value[static_cast<size_t>(effect)][static_cast<size_t>(a)] =
            estimate_of(files[k], name);
    });
    return pack(estimated);
}

void draw_parameter_sets(const std::string& run_file, int count, const std::string& sets_path,
                         const RunOptions& options) {
    FILE* console = options.console != nullptr ? options.console : stdout;
    const RunFile file = read_run_file(run_file, console);
    if (file.settings.task != Task::estimation) {
        throw SettingError(format_message(
            "vexa: run file '%s' is not an estimation (it runs a %s); parameter sets are drawn "
            "around the estimates of an estimation, so give its run file",
            run_file.c_str(), task_name(file.settings.task)));
    }
    const int p = file.model.parameter_count();
    if (p == 0) {
        throw SettingError(
            format_message("vexa: run file '%s' includes no effect, so there is nothing to draw",
                           run_file.c_str()));
    }
    if (count < 1) {
        throw SettingError(format_message("vexa: cannot draw %d parameter sets", count));
    }
    // The estimation's own report, never the update files that every run in the folder shares.
    const MatchedEstimates matched = match_report(
        file.model, read_report_estimates(file.names.estimation),
        format_message("the estimation report '%s'", file.names.estimation.c_str()), run_file);
    if (matched.covariance.rows != p) {
        throw InputFileError(format_message(
            "vexa: the estimation report '%s' holds no covariance matrix after its last summary "
            "table",
            file.names.estimation.c_str()));
    }
    const std::vector<double>& estimates = matched.estimates;
    const Matrix& covariance = matched.covariance;
    SeedSource seeds;
    seeds.fixed = options.fixed_seed;
    seeds.base = options.seed;
    Rng rng;
    const Matrix draws = multivariate_normal_batch(estimates, covariance, count, rng, seeds);
    OutFile out(sets_path, OpenMode::truncate);
    for (int r = 0; r < count; ++r) {
        for (int j = 0; j < p; ++j) print(out, j == 0 ? "%.6f" : "\t%.6f", draws[r][j]);
        print(out, "\n");
    }
    out.close();
    std::fprintf(console,
                 "vexa: %d parameter sets drawn around the estimates and covariance of the "
                 "estimation report '%s' were written to '%s'\n",
                 count, file.names.estimation.c_str(), sets_path.c_str());
}

int draw_parameter_sets_entry(const std::string& run_file, int count, const std::string& sets_path,
                              const RunOptions& options) noexcept {
    FILE* console = options.console != nullptr ? options.console : stdout;
    return run_guarded(console, [&] { draw_parameter_sets(run_file, count, sets_path, options); });
}

}  // namespace vexa
