#pragma once
// The engine's result records as Python dicts.

#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include "entry/api.h"

namespace vexa_python {

// The result of a request whose network has n nodes: labels, the records of its task, the
// kept networks as lists of (i, j) ties, and `error`, the one line of a failed run.
pybind11::dict result_dict(const vexa::TaskResult& result, int n);

}  // namespace vexa_python
