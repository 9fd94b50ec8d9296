#include "base/closest.h"

#include <algorithm>
#include <cctype>

namespace vexa {

namespace {

char folded(char c) { return static_cast<char>(std::tolower(static_cast<unsigned char>(c))); }

}  // namespace

size_t edit_distance(const std::string& a, const std::string& b) {
    // One row of the table at a time: row[j] is the distance of a's prefix to b's first j.
    std::vector<size_t> row(b.size() + 1);
    for (size_t j = 0; j <= b.size(); ++j) row[j] = j;
    for (size_t i = 1; i <= a.size(); ++i) {
        size_t diagonal = row[0];
        row[0] = i;
        for (size_t j = 1; j <= b.size(); ++j) {
            const size_t above = row[j];
            const size_t substitute = diagonal + (folded(a[i - 1]) == folded(b[j - 1]) ? 0 : 1);
            row[j] = std::min({above + 1, row[j - 1] + 1, substitute});
            diagonal = above;
        }
    }
    return row[b.size()];
}

std::string closest_word(const std::string& word, const std::vector<std::string>& candidates) {
    std::string best;
    size_t best_distance = 0;
    for (const std::string& candidate : candidates) {
        const size_t distance = edit_distance(word, candidate);
        if (best.empty() || distance < best_distance) {
            best = candidate;
            best_distance = distance;
        }
    }
    return best;
}

}  // namespace vexa
