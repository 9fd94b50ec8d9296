#pragma once
// The closest of some known words to a word that is none of them, for messages that suggest
// what a misspelt or misplaced word was meant to be.

#include <cstddef>
#include <string>
#include <vector>

namespace vexa {

// The Levenshtein distance of two words, letters compared without regard to case: the fewest
// insertions, deletions and substitutions that turn one into the other.
size_t edit_distance(const std::string& a, const std::string& b);

// The candidate nearest to `word` by edit distance (the first of equals); "" when there is none.
std::string closest_word(const std::string& word, const std::vector<std::string>& candidates);

}  // namespace vexa
