#!/usr/bin/env bash
# Fuzzes the readers with libFuzzer: the run-file reader through the C entry, the matrix readers
# and the attribute readers, each for SECONDS (default 20) with a fixed seed, starting from the
# run files, networks and attribute files of tests/data and examples. Everything the fuzzers and
# the runs they make write stays in a scratch directory, removed at the end unless a finding is
# kept there. Any finding (a crash, a sanitizer report, a hang, a leak) fails the script.
# Usage: scripts/fuzz.sh [SECONDS] [BUILD_DIR]
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
seconds="${1:-20}"
build="${2:-$root/build-fuzz}"
bash "$root/scripts/setup.sh" --fuzz
source "$root/scripts/ccache-env.sh"
CC=clang CXX=clang++ cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    "${ccache_launcher[@]}" -DVEXA_BUILD_FUZZERS=ON -DVEXA_BUILD_TESTS=OFF -DVEXA_BUILD_BENCH=OFF -DVEXA_BUILD_JNI=OFF \
    >/dev/null
cmake --build "$build" --target fuzz_run_file fuzz_matrix fuzz_attributes

scratch="$(mktemp -d "${TMPDIR:-/tmp}/vexa-fuzz.XXXXXX")"
found=0
seeds() {  # the seed inputs of a harness, copied into DIR
    local harness="$1" dir="$2" file
    mkdir -p "$dir"
    for file in "$root"/tests/data/*.txt "$root"/tests/data/runfiles/*.txt "$root"/examples/*.txt \
                "$root"/tests/fuzz/seeds/*.txt \
                "$root"/tests/golden/cases/*/*.txt; do
        [ -f "$file" ] || continue
        local is_run=0
        head -c 12 "$file" | grep -q '^network_name' && is_run=1
        if [ "$harness" = fuzz_run_file ] && [ $is_run -eq 0 ]; then continue; fi
        if [ "$harness" != fuzz_run_file ] && [ $is_run -eq 1 ]; then continue; fi
        cp "$file" "$dir/$(echo "${file#"$root"/}" | tr '/' '_')"
    done
}
fuzz() {  # one harness for SECONDS in its own scratch directory; fails on a finding
    local harness="$1" work="$scratch/$1"
    # Standard output (the runs' one-line answers) is closed; libFuzzer reports on standard
    # error. New inputs go to corpus/, findings to the harness's scratch directory.
    (cd "$work" && ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1 \
        "$build/tests/fuzz/$harness" -seed=1 -max_total_time="$seconds" -timeout=20 \
        -rss_limit_mb=4096 -close_fd_mask=1 -print_final_stats=1 -artifact_prefix="$work/" \
        "$work/corpus" "$work/seeds" 2>"$work/log.txt")
}
harnesses=(fuzz_run_file fuzz_matrix fuzz_attributes)
for harness in "${harnesses[@]}"; do
    mkdir -p "$scratch/$harness/corpus"
    seeds "$harness" "$scratch/$harness/seeds"
    echo "fuzz: $harness for ${seconds}s from $(ls "$scratch/$harness/seeds" | wc -l) seeds"
done
# The harnesses run side by side, as many at once as there are cores, so each still has a core
# of its own for its time.
for harness in "${harnesses[@]}"; do
    while [ "$(jobs -rp | wc -l)" -ge "$(nproc)" ]; do
        wait -n || true
    done
    { if fuzz "$harness"; then result=ok; else result=fault; fi
      echo "$result" >"$scratch/$harness/result"; } &
done
wait
for harness in "${harnesses[@]}"; do
    work="$scratch/$harness"
    if [ "$(cat "$work/result")" = ok ]; then
        # The closing figures: executions, coverage (edges and features) and the corpus.
        echo "fuzz: $harness: $(grep -E '^#[0-9]+[[:space:]]+DONE|^Done [0-9]+ runs' "$work/log.txt" |
            tail -2 | tr -s ' \t\n' ' ')"
    else
        found=1
        tail -60 "$work/log.txt"
        echo "fuzz: $harness found a fault; the input and the log are kept in $work"
    fi
done
if [ $found -ne 0 ]; then
    exit 1
fi
rm -rf "$scratch"
echo "fuzz ok: no findings"
