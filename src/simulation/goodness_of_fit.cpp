#include "simulation/goodness_of_fit.h"

#include <algorithm>
#include <cmath>

#include "numeric/matrix.h"
#include "numeric/moments.h"

namespace vexa {

Comparison compare(double observed, const std::vector<double>& sample) {
    // A sample that never varies has that value as its mean and no spread, exactly: summing it
    // would leave rounding in both, and a t-ratio made of rounding.
    if (!sample.empty() &&
        std::all_of(sample.begin(), sample.end(), [&](double v) { return v == sample[0]; })) {
        return {observed, sample[0], 0.0, (observed - sample[0]) / 0.0};
    }
    const Moments m = moments(sample.data(), static_cast<int>(sample.size()));
    return {observed, m.mean, m.stddev, (observed - m.mean) / m.stddev};
}

int quantile_index(double share, int count) {
    const int index = static_cast<int>(std::floor(share * (count + 1)));
    return std::clamp(index, 0, std::max(count - 1, 0));
}

QuartileComparison compare_quartile(int32_t observed, std::vector<int32_t> sample) {
    std::sort(sample.begin(), sample.end());
    const int n = static_cast<int>(sample.size());
    const auto at = [&](double share) {
        return sample[static_cast<size_t>(quantile_index(share, n))];
    };
    QuartileComparison c;
    c.median = at(0.5);
    c.range = at(0.75) - at(0.25);
    c.observed = observed;
    int below = 0;
    int above = 0;
    for (const int32_t value : sample) {
        if (value < observed) ++below;
        if (value > observed) ++above;
    }
    const float lower = static_cast<float>(below) / static_cast<float>(n);
    const float higher = static_cast<float>(above) / static_cast<float>(n);
    c.lower = 100.0 * static_cast<double>(lower);
    c.higher = 100.0 * static_cast<double>(higher);
    return c;
}

Mahalanobis mahalanobis(const std::vector<std::vector<double>>& rows,
                        const std::vector<double>& observed) {
    const size_t p = rows.size();
    const size_t N = p > 0 ? rows[0].size() : 0;
    std::vector<double> mean(p, 0.0);
    for (size_t a = 0; a < p; ++a) mean[a] = moments(rows[a].data(), static_cast<int>(N)).mean;
    Matrix C = make_matrix(static_cast<int>(p), static_cast<int>(p), 0.0);
    for (size_t a = 0; a < p; ++a) {
        for (size_t b = 0; b < p; ++b) {
            double sum = 0.0;
            for (size_t s = 0; s < N; ++s) sum += (rows[a][s] - mean[a]) * (rows[b][s] - mean[b]);
            C[static_cast<int>(a)][b] = sum / static_cast<double>(N);
        }
    }
    Mahalanobis result;
    result.available = invert_in_place(C) == 1;
    result.sample_forms.assign(N, 0.0);
    if (!result.available) return result;
    const auto quadratic_form = [&](auto value_of) {
        double form = 0.0;
        for (size_t a = 0; a < p; ++a) {
            for (size_t b = 0; b < p; ++b) {
                form +=
                    (value_of(a) - mean[a]) * C[static_cast<int>(a)][b] * (value_of(b) - mean[b]);
            }
        }
        return form;
    };
    for (size_t s = 0; s < N; ++s)
        result.sample_forms[s] = quadratic_form([&](size_t a) { return rows[a][s]; });
    result.observed_form = quadratic_form([&](size_t a) { return observed[a]; });
    result.observed_distance = std::sqrt(result.observed_form);
    size_t closer = 0;
    for (const double form : result.sample_forms) closer += form < result.observed_form ? 1 : 0;
    result.closer_percent = 100.0 * static_cast<double>(closer) / static_cast<double>(N);
    return result;
}

}  // namespace vexa
