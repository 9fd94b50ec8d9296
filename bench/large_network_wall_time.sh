#!/usr/bin/env bash
# Wall time of the alternating model (edge + AS + AT + A2P) on networks of 1,000 and 5,000
# nodes, in the plain mode at the run file's usual settings (factor 2, five runs) and in the
# automatic mode: seconds, the exit status (0 converged, 3 not) and the runs it took.
# The networks are drawn here: nodes in groups of 25, each node with about four ties inside
# its group and two outside, so that they hold the clustering an alternating model describes.
# Usage: bench/large_network_wall_time.sh [BUILD_DIR] [SIZES...]
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
build="$(realpath -m "${1:-$root/build}")"
shift || true
sizes=("$@")
[ ${#sizes[@]} -gt 0 ] || sizes=(1000 5000)
[ -x "$build/vexa" ] || BUILD_TARGETS=vexa_cli bash "$root/scripts/build.sh" "$build"
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
cd "$work"
mkdir -p out
draw_network() {  # nodes, file
    python3 - "$1" "$2" <<'EOF'
import random, sys
n, path = int(sys.argv[1]), sys.argv[2]
rng = random.Random(n)
group = 25
inside, outside = 4.0 / (group - 1), 2.0 / (n - group)
ties = [bytearray(b"0" * n) for _ in range(n)]
for i in range(n):
    for j in range(i + 1, n):
        p = inside if i // group == j // group else outside
        if rng.random() < p:
            ties[i][j] = ties[j][i] = ord("1")
with open(path, "w") as out:
    for row in ties:
        out.write(" ".join(chr(c) for c in row) + "\n")
EOF
}
run_file() {  # nodes, name
    awk -v n="$1" -v name="$2" '
        prev == "network_name" { $0 = name } prev == "node_count" { $0 = n }
        prev == "network_file" { $0 = name ".txt" } prev == "multiplication_factor" { $0 = "2" }
        prev == "estimation_runs" { $0 = "5" } prev == "gof_after_estimation" { $0 = "0" }
        { print; prev = $0 }' "$root/examples/flomarriage_alternating.txt" >"$2_run.txt"
}
printf 'nodes\tmode\tseconds\tstatus\truns\n'
for n in "${sizes[@]}"; do
    name="net$n"
    draw_network "$n" "$name.txt"
    run_file "$n" "$name"
    for mode in plain auto; do
        flag=""
        [ "$mode" = auto ] && flag="--auto"
        start=$(date +%s%N)
        status=0
        "$build/vexa" --seed 1 $flag "${name}_run.txt" >log.txt 2>&1 || status=$?
        end=$(date +%s%N)
        runs=$(grep -c '^vexa: run [0-9]' log.txt || true)
        printf '%d\t%s\t%s\t%d\t%d\n' "$n" "$mode" \
            "$(awk -v a="$start" -v b="$end" 'BEGIN { printf "%.1f", (b - a) / 1e9 }')" \
            "$status" "$runs"
    done
done
