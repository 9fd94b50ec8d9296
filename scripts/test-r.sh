#!/usr/bin/env bash
# Builds the R package from the source tree and runs R CMD check on it (its testthat suite
# included); any error or warning fails. With a release build in build/ the package links its
# engine libraries rather than compiling the engine again. Then, when the command-line program
# is built, checks that R and the command line print the same estimate of the bundled
# alternating model at the same seed, both in the automatic mode, R's default (R names each
# coefficient as typed, the command line adds the lambda).
# Usage: scripts/test-r.sh [WORK_DIR]
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
work="${1:-$root/build-r}"
bash "$root/scripts/setup-r.sh"
# CI links the engine from build/ below, so the path a user's install takes (the engine
# compiled by the package in a few unity units) is checked here: each unit must compile as one
# translation unit, which two files defining the same file-local name would break.
(cd "$root/r" && env -u VEXA_ENGINE_BUILD ./configure >/dev/null)
pids=""
for unit in "$root"/r/src/engine_unit_*.cpp; do
    g++ -std=gnu++20 -fsyntax-only -I"$root/r/src/engine" "$unit" &
    pids="$pids $!"
done
for pid in $pids; do wait "$pid" || { echo "a unity unit of the R package does not compile"; exit 1; }; done
rm -rf "$work"
mkdir -p "$work"
cd "$work"
# R compiles the package with its own compilers and flags; through ccache too, named in a
# Makevars file of this run's own (a user's ~/.R/Makevars is left alone).
source "$root/scripts/ccache-env.sh"
for variable in CC CXX CXX20; do
    echo "$variable = ccache $(R CMD config "$variable")"
done >Makevars
export R_MAKEVARS_USER="$work/Makevars"
# The package links the engine's libraries of the release build when it has them, instead of
# compiling the engine a second time (its configure reads VEXA_ENGINE_BUILD).
if [ -f "$root/build/libvexa_entry.a" ]; then
    export VEXA_ENGINE_BUILD="$root/build"
fi
R CMD build --no-manual "$root/r" >build.log 2>&1 || { cat build.log; exit 1; }
tarball=$(ls vexa_*.tar.gz)
export MAKEFLAGS="-j$(nproc)"
export _R_CHECK_FORCE_SUGGESTS_=false
R CMD check --no-manual "$tarball" >check.log 2>&1 || { cat check.log; exit 1; }
status=$(grep '^Status:' check.log || true)
echo "R CMD check: ${status:-no status}"
if ! echo "$status" | grep -q '^Status: \(OK\|[0-9]* NOTEs\?\)$'; then
    cat check.log
    exit 1
fi
grep -A3 'NOTE$' vexa.Rcheck/00check.log || true

cli="$root/build/vexa"
[ -x "$cli" ] || exit 0
mkdir -p compare/out
cp "$root/examples/flomarriage.txt" "$root/examples/flomarriage_alternating.txt" compare/
(cd compare && "$cli" --seed 1 --auto flomarriage_alternating.txt >/dev/null)
awk '/^effects\testimates/{n = NR} {line[NR] = $0} END {for (k = n + 1; k <= n + 4; ++k) {
    split(line[k], f, "\t"); sub(/\(.*\)$/, "", f[1]); print f[1] "\t" f[2] "\t" f[3] "\t" f[4]}}' \
    compare/out/estimation_flomarriage_alternating.txt >compare/cli.tsv
R_LIBS="$work/vexa.Rcheck" Rscript -e '
started <- Sys.time()
library(vexa)
data(flomarriage)
fit <- vexa_estimate(flomarriage, c("edge", AS = 2, AT = 2, A2P = 2), seed = 1,
                     settings = vexa_settings(runs = 10, progress = FALSE))
elapsed <- as.numeric(Sys.time() - started, units = "secs")
writeLines(sprintf("%s\t%f\t%.5f\t%.5f", names(coef(fit)), coef(fit), fit$std_errors,
                   fit$t_ratios), "compare/r.tsv")
cat(sprintf("R: library(vexa) to a fitted alternating model in %.2f s\n", elapsed))
'
if diff compare/cli.tsv compare/r.tsv; then
    echo "R and the command line print the same estimate at seed 1:"
    cat compare/r.tsv
else
    echo "R and the command line differ at seed 1"
    exit 1
fi
