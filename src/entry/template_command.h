#pragma once
// The command line's `vexa template` and `vexa effects`: run files and the effect list on
// standard output, the options parsed here so that the run options stay apart.

#include <cstdio>

namespace vexa {

// `vexa template --task estimate|simulate|gof|bayes --kind graph|digraph [--network FILE]
// [--nodes N] [--effects LIST] [--attribute KIND:FILE]... [--covariate FILE] [--name NAME]
// [--output-dir DIR] [--sets FILE]`; argv[0] is "template". Writes the run file to `out`;
// returns 0, 1 (a file that cannot be read, an unknown effect: one line on `err`) or 2 (the
// options are wrong).
int template_command(int argc, char** argv, FILE* out, FILE* err);

// `vexa effects [--kind graph|digraph]`: both kinds' effects without --kind.
int effects_command(int argc, char** argv, FILE* out, FILE* err);

}  // namespace vexa
