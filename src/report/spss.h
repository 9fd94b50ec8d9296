#pragma once
// SPSS syntax that loads the table of sampled statistics and draws, for every statistic of the
// model, a histogram and a scatter plot against the sample number. SPSS names the table's
// columns by position, so the variables follow the parameter vector: the structural effects
// by slot, then the attribute effects, each prefixed with its attribute's name.

#include <cstdio>
#include <string>

#include "model/model.h"

namespace vexa {

// Writes the whole syntax for the model of either network kind. `table_file` is the full name
// of the table to load; it need not exist yet. Throws SettingError when an included attribute
// has no name.
void write_spss_syntax(FILE* out, const Model& model, const std::string& table_file);

// The same into the file `path`, truncated first. Throws OutputFileError when it cannot be
// written.
void write_spss_file(const std::string& path, const Model& model, const std::string& table_file);

}  // namespace vexa
