#!/usr/bin/env bash
# Wall time of estimations in the plain and the automatic mode on the bundled examples and the
# school network's homophily model, at the multiplication factor a new user leaves (2), a few
# seeds each: the time to a converged estimate, and how many runs it took.
# Usage: bench/estimation_wall_time.sh [BUILD_DIR] [SEEDS]
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
build="$(realpath -m "${1:-$root/build}")"
seeds="${2:-3}"
[ -x "$build/vexa" ] || BUILD_TARGETS=vexa_cli bash "$root/scripts/build.sh" "$build"
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
cp "$root"/examples/* "$work"/
cd "$work"
mkdir -p out
# The run file as a new user writes it: factor 2, five runs, no goodness of fit after.
plain_settings() {
    awk 'prev == "multiplication_factor" { $0 = "2" } prev == "estimation_runs" { $0 = "5" }
         prev == "gof_after_estimation" { $0 = "0" } { print; prev = $0 }' "$1" >"m2_$1"
}
printf 'case\tmode\tseed\tseconds\tstatus\truns\n'
for example in flomarriage_alternating.txt samplike_estimation.txt faux_mesa_grade.txt; do
    plain_settings "$example"
    for mode in plain auto; do
        flag=""
        [ "$mode" = auto ] && flag="--auto"
        for seed in $(seq 1 "$seeds"); do
            start=$(date +%s%N)
            status=0
            "$build/vexa" --seed "$seed" $flag "m2_$example" >log.txt 2>&1 || status=$?
            end=$(date +%s%N)
            runs=$(grep -c '^vexa: run [0-9]' log.txt || true)
            printf '%s\t%s\t%d\t%s\t%d\t%d\n' "${example%.txt}" "$mode" "$seed" \
                "$(awk -v a="$start" -v b="$end" 'BEGIN { printf "%.2f", (b - a) / 1e9 }')" \
                "$status" "$runs"
        done
    done
done
