#!/usr/bin/env bash
# The build that spreads a task's chains over MPI's processes: installs OpenMPI, builds the
# command-line program with -DVEXA_MPI=ON in build-mpi/ (every object but one comes from ccache
# once scripts/test.sh has built), then runs bundled examples of every task and both network
# kinds with several chains, once as one process and once under mpirun, and fails unless every
# file matches byte for byte. Per-sample files are switched on where a task writes them, so
# the networks drawn in the other processes travel too.
# Usage: scripts/test-mpi.sh [BUILD_DIR]
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
build="${1:-$root/build-mpi}"
bash "$root/scripts/setup.sh" --mpi
BUILD_TARGETS=vexa_cli bash "$root/scripts/build.sh" "$build" -DVEXA_MPI=ON \
    -DVEXA_BUILD_TESTS=OFF -DVEXA_BUILD_BENCH=OFF -DVEXA_BUILD_JNI=OFF
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
mpirun_options=(--oversubscribe)
if [ "$(id -u)" = 0 ]; then mpirun_options+=(--allow-run-as-root); fi

# check NAME PROCESSES OPTIONS...: the example NAME.txt (with every per-sample file switched
# on) in one process and in PROCESSES processes.
failed=0
check() {
    local name="$1" processes="$2"
    shift 2
    for mode in one many; do
        mkdir -p "$work/$name.$mode/out"
        cp "$root"/examples/* "$work/$name.$mode/"
        sed -i -E '/_output$/{n;s/^0$/1/}' "$work/$name.$mode/$name.txt"
    done
    (cd "$work/$name.one" && "$build/vexa" --seed 11 "$@" "$name.txt" >console.txt) || true
    (cd "$work/$name.many" && mpirun "${mpirun_options[@]}" -np "$processes" \
        "$build/vexa" --seed 11 "$@" "$name.txt" >console.txt 2>/dev/null) || true
    local files
    files=$(find "$work/$name.one/out" -type f | wc -l)
    if diff -r "$work/$name.one" "$work/$name.many" >/dev/null && [ "$files" -gt 2 ]; then
        echo "mpi: $name over $processes processes ($*): the same $files files"
    else
        echo "mpi: $name over $processes processes ($*): the files differ" >&2
        diff -r "$work/$name.one" "$work/$name.many" | head -20 >&2 || true
        failed=1
    fi
}
check flomarriage_alternating 2 --chains 4
check samplike_estimation 2 --auto --check
check flomarriage_gof 3 --chains 5 --threads 2
check samplike_gof 2 --chains 4
check flomarriage_bayes 2 --chains 3
check samplike_simulation 2 --chains 4
exit "$failed"
