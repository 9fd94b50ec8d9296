#!/usr/bin/env bash
# The HTML report in a real browser: runs bundled examples of every task and both network kinds
# with --html (goodness of fit with its per-sample degree and geodesic files turned on), renders
# each page with Debian's headless chromium to a PNG, and checks with check_html_report.py that
# the page fetches nothing, that its plotted values agree with the text reports, and that the
# picture is not blank. Installs chromium (and Pillow) when missing.
#
#   scripts/test-html.sh [BUILD_DIR]     BUILD_DIR defaults to build; vexa is built if missing
#
# The pages and PNGs stay in BUILD_DIR/html-check for a look.
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
build="$(cd "$root" && mkdir -p "${1:-build}" && cd "${1:-build}" && pwd)"
python=/usr/bin/python3

missing=()
[ -x /usr/bin/chromium ] || missing+=(chromium)
dpkg -s python3-pil >/dev/null 2>&1 || missing+=(python3-pil)
dpkg -s fonts-dejavu-core >/dev/null 2>&1 || missing+=(fonts-dejavu-core)
if [ ${#missing[@]} -gt 0 ]; then
    echo "test-html: installing ${missing[*]}"
    sudo_cmd=()
    [ "$(id -u)" -ne 0 ] && sudo_cmd=(sudo)
    export DEBIAN_FRONTEND=noninteractive
    "${sudo_cmd[@]}" apt-get update -qq
    "${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi
if [ ! -x "$build/vexa" ]; then
    BUILD_TARGETS=vexa_cli bash "$root/scripts/build.sh" "$build"
fi

work="$build/html-check"
rm -rf "$work"
mkdir -p "$work/out"
cp "$root"/examples/* "$work/"
cd "$work"

# Turns on the per-sample degree and geodesic files of a run file (their labels differ between
# run files; the value is the next line that is not blank).
with_distributions() {
    "$python" - "$1" "$2" <<'EOF'
import sys
lines = open(sys.argv[1]).read().split("\n")
for k, line in enumerate(lines):
    if line.strip() in ("degree", "degree_distribution_output", "geodesic", "geodesic_output"):
        j = k + 1
        while not lines[j].strip():
            j += 1
        lines[j] = "1"
open(sys.argv[2], "w").write("\n".join(lines))
EOF
}
with_distributions flomarriage_gof.txt flomarriage_gof_html.txt
with_distributions samplike_gof.txt samplike_gof_html.txt
with_distributions flomarriage_bayes.txt flomarriage_bayes_html.txt

# run file, network name, kind, network file
cases=(
    "flomarriage_gof_html.txt flomarriage_gof graph flomarriage.txt"
    "samplike_gof_html.txt samplike_gof digraph samplike.txt"
    "flomarriage_bayes_html.txt flomarriage_bayes graph flomarriage.txt"
    "samplike_estimation.txt samplike_estimation digraph samplike.txt"
    "flomarriage_alternating.txt flomarriage_alternating graph flomarriage.txt"
    "samplike_simulation.txt samplike_simulation digraph -"
)
status=0
for case in "${cases[@]}"; do
    read -r run name kind network <<<"$case"
    code=0
    "$build/vexa" --seed 7 --html "$run" >"out/$name.console" 2>&1 || code=$?
    # 3: an estimation that did not converge still writes its page.
    if [ "$code" -ne 0 ] && [ "$code" -ne 3 ]; then
        echo "test-html: $run failed with status $code"
        tail -n 3 "out/$name.console"
        status=1
        continue
    fi
    page="$work/out/report_$name.html"
    png="$work/out/report_$name.png"
    profile="$(mktemp -d "$work/chromium.XXXXXX")"
    timeout 60 /usr/bin/chromium --headless --no-sandbox --disable-gpu --disable-quic \
        --no-first-run --disable-background-networking --disable-component-update --disable-sync \
        --user-data-dir="$profile" --screenshot="$png" --window-size=1200,3000 \
        "file://$page" >"out/$name.chromium" 2>&1 || true
    rm -rf "$profile"
    if [ ! -s "$png" ]; then
        echo "test-html: chromium made no screenshot of $page"
        tail -n 5 "out/$name.chromium"
        status=1
        continue
    fi
    network_args=()
    [ "$network" != "-" ] && network_args=(--network "$network")
    "$python" "$root/scripts/check_html_report.py" "$page" out "$name" --kind "$kind" \
        "${network_args[@]}" --png "$png" || status=1
done
[ "$status" -eq 0 ] && echo "test-html: every page renders and agrees with its text reports"
exit "$status"
