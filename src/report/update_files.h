#pragma once
// Parameter update files: after an estimation, the value of every effect of the model (its
// estimate when it was included, otherwise the value the run file gave it), one file per
// effect section, so that the front end can carry the estimates into its next run file.
// Each file is a plain sequence of two-line entries, a name line and a "%.5f" value line,
// with no header; a section that was not given leaves its file created but empty.

#include <array>
#include <cstdio>
#include <string>

#include "model/model.h"

namespace vexa {

// The five file names of a network kind, in writing order: structural, then the binary,
// continuous, categorical and covariate files (graph: "stupdate.vexa", "biupdate.vexa", ...).
const std::array<const char*, 5>& update_file_names(NetworkKind kind);

// The structural entries: every effect that has a run-file entry, in run-file order, when
// the structural section was given; nothing otherwise.
void write_structural_update(FILE* out, const Model& model);

// The entries of one attribute kind (or the covariates): for each attribute in file order,
// every effect of the kind in run-file order, named "<attribute>_<effect>"; nothing when the
// sub-block was not given or has no attribute.
void write_attribute_update(FILE* out, const Model& model, AttributeKind kind);

// Writes the five files of the model's network kind into `directory` ("" means the working
// directory), each truncated, written and closed before the next. Throws OutputFileError
// when a file cannot be written and SettingError when the model's arrays do not fit its
// catalogue.
void write_update_files(const Model& model, const std::string& directory);

}  // namespace vexa
