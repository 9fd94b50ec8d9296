#pragma once
// The label lines of a run file. The value after a label is read by its position alone, so a
// label that is not the expected one reads the wrong value without a word: a misspelt label is
// harmless, but a row left out or given twice shifts every later value. Each label is
// compared with the spellings in use for its row; a mismatch is said once, with the closest
// known label, which tells a shifted row (another row's label) from a slip of the pen.

#include <string>
#include <vector>

namespace vexa {

// The labels a row takes, the one a written template uses first; a row that is not one of the
// fixed rows (an effect entry) takes `setting` itself.
std::vector<std::string> accepted_labels(const std::string& setting);

// The spellings of every fixed row, for finding the closest label.
const std::vector<std::string>& fixed_row_labels();

// Whether `label` is one of `accepted`, regardless of case, '_' and '-'.
bool label_matches(const std::string& label, const std::vector<std::string>& accepted);

}  // namespace vexa
