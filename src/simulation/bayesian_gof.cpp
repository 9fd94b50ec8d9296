#include "simulation/bayesian_gof.h"

#include <algorithm>
#include <cmath>

#include "base/errors.h"
#include "base/matrix_text.h"

namespace vexa {

ParameterSets read_parameter_sets(const std::string& path, int p, int wanted) {
    const std::string text = read_text_file(path, "parameter sets");
    ParameterSets result;
    size_t start = 0;
    int line = 0;
    while (start < text.size() && static_cast<int>(result.sets.size()) < wanted) {
        size_t end = text.find('\n', start);
        if (end == std::string::npos) end = text.size();
        ++line;
        const std::vector<std::string> words =
            split_words(std::string_view(text).substr(start, end - start));
        start = end + 1;
        if (words.empty()) continue;
        if (static_cast<int>(words.size()) != p) {
            throw InputFileError(format_message(
                "vexa: parameter sets file '%s', line %d: %zu values, but the model has %d "
                "parameters",
                path.c_str(), line, words.size(), p));
        }
        std::vector<double> set(static_cast<size_t>(p), 0.0);
        for (size_t k = 0; k < words.size(); ++k) {
            if (!parse_double(words[k], set[k]) || !std::isfinite(set[k])) {
                throw InputFileError(format_message(
                    "vexa: parameter sets file '%s', line %d, value %zu: '%s' is not a finite "
                    "number",
                    path.c_str(), line, k + 1, words[k].c_str()));
            }
        }
        result.sets.push_back(std::move(set));
    }
    if (result.sets.empty() && wanted > 0) {
        throw InputFileError(
            format_message("vexa: parameter sets file '%s' holds no parameter set", path.c_str()));
    }
    return result;
}

std::vector<Moments> summarise_sets(const std::vector<std::vector<double>>& sets, int p) {
    std::vector<Moments> summary;
    std::vector<double> column(sets.size(), 0.0);
    for (size_t k = 0; k < static_cast<size_t>(p); ++k) {
        for (size_t d = 0; d < sets.size(); ++d) column[d] = sets[d][k];
        summary.push_back(moments(column.data(), static_cast<int>(column.size())));
    }
    return summary;
}

double posterior_predictive_p(double observed, const std::vector<double>& sample) {
    if (sample.empty()) return 1.0;
    size_t at_least = 0;
    size_t at_most = 0;
    for (const double value : sample) {
        at_least += value >= observed ? 1 : 0;
        at_most += value <= observed ? 1 : 0;
    }
    const double n = static_cast<double>(sample.size());
    return std::min(1.0, 2.0 * static_cast<double>(std::min(at_least, at_most)) / n);
}

}  // namespace vexa
