#pragma once
// SPSS syntax that loads a simulation file (the tab-separated table of sampled statistics)
// and draws, for every statistic of the model, a histogram and a scatter plot against the
// sample number. The variable list names the model's included statistics: the structural
// ones first, then the attribute effects in parameter-vector order, each prefixed with its
// attribute's name.

#include <cstdint>
#include <cstdio>
#include <span>
#include <string>

#include "effects/model.h"

namespace vexa {

// One structural SPSS variable of the digraph list: the catalogue row it stands for, its
// short name and its print format.
struct DigraphSpssVariable {
    int32_t row;
    const char* name;
    const char* format;
};

// Every digraph catalogue row once, in the order the syntax lists its variables. That order
// is its own (the triad configurations come as t7, t8, t6, t10, t3, t2, t5, t4, t9, t1) and is
// kept so that existing syntax files stay comparable.
std::span<const DigraphSpssVariable> digraph_spss_variables();

// Writes the whole syntax for the model of either network kind. `simulation_file` is the full
// name of the table to load; it need not exist yet. Throws SettingError when an included
// attribute has no name.
void write_spss_syntax(FILE* out, const Model& model, const std::string& simulation_file);

// The same into the file `path`, truncated first. Throws OutputFileError when it cannot be
// written.
void write_spss_file(const std::string& path, const Model& model, const std::string& simulation_file);

}  // namespace vexa
