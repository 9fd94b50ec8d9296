#!/usr/bin/env bash
# Records the golden outputs anew, for a change of output made on purpose: builds the
# command-line program when it is missing or stale, runs every bundled run file with the pinned
# seed and rewrites tests/golden/expected/<case>/. What changed is then the git diff of those
# files: review it before committing it with the change that caused it.
# Usage: scripts/update-goldens.sh [BUILD_DIR] [goldens.py options, e.g. --only est_swap]
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
build="$root/build"
if [ $# -gt 0 ] && [ "${1#-}" = "$1" ]; then
    build="$1"
    shift
fi
if [ -f "$build/CMakeCache.txt" ]; then
    # A configured build keeps its options (a sanitized or debug build stays one).
    cmake --build "$build" --target vexa_cli
else
    BUILD_TARGETS="vexa_cli" bash "$root/scripts/build.sh" "$build"
fi
python3 "$root/tests/golden/goldens.py" --vexa "$build/vexa" --update --jobs "$(nproc)" "$@"
changed="$(git -C "$root" status --short --untracked-files=all -- tests/golden/expected)"
if [ -z "$changed" ]; then
    echo "no recorded output changed"
else
    echo "$(wc -l <<<"$changed") recorded files changed (git diff tests/golden/expected):"
    head -40 <<<"$changed"
fi
