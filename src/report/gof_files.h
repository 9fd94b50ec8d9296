#pragma once
// The files of a goodness of fit, plain or over parameter sets: the report appended to the
// goodness-of-fit file, the sample statistics, the table of the sample with each sample's
// distance (in place of a simulation report), and by network kind the acceptance rates
// (digraphs) or the end statistics (graphs).

#include "model/model.h"
#include "report/output_names.h"
#include "simulation/gof_task.h"

namespace vexa {

void write_gof_files(const OutputNames& names, const Model& model, const GofRecord& record);

}  // namespace vexa
