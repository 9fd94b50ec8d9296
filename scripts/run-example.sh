#!/usr/bin/env bash
# Sets up, builds and runs the main job: an estimation of an alternating model (edge,
# alternating k-stars, k-triangles and two-paths) on the Florentine marriage network, then
# shows the summary table of the estimation report. It builds only what it runs: the library
# and the command-line program, not the tests and benchmarks.
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
BUILD_TARGETS="vexa vexa_cli" bash "$root/scripts/build.sh" "$root/build"
cd "$root/examples"
mkdir -p out
rm -f out/estimation_flomarriage_alternating.txt
"$root/build/vexa" flomarriage_alternating.txt
echo
# The summary of the last estimation run.
awk '/^Estimation Result/ { block = "" } /^Estimation Result/, /^Estimated Covariance/ { block = block $0 "\n" }
     END { printf "%s", block }' out/estimation_flomarriage_alternating.txt | sed '$d'
