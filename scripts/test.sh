#!/usr/bin/env bash
# Sets up, builds and runs the whole test suite: everything but the statistical checks labelled
# slow, then those (scripts/test-slow.sh, on the same build). With --no-slow it stops before
# them: CI runs them as a step of its own, so that each part's time shows.
# Usage: scripts/test.sh [--no-slow]
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
slow=1
for arg in "$@"; do
    case "$arg" in
        --no-slow) slow=0 ;;
        *) echo "usage: scripts/test.sh [--no-slow]" >&2; exit 2 ;;
    esac
done
# Four shards a test program: a process per test case would cost six times the cases' own time.
bash "$root/scripts/build.sh" "$root/build" -DVEXA_TEST_SHARDS=4
(cd "$root/build" && ctest --output-on-failure -j "$(nproc)" -LE slow)
if [ "$slow" = 1 ]; then
    bash "$root/scripts/test-slow.sh"
fi
