#!/usr/bin/env bash
# Sets up, builds and runs the test suite (the slow statistical checks stay out: ctest -L slow).
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
bash "$root/scripts/build.sh" "$root/build"
cd "$root/build"
ctest --output-on-failure -j "$(nproc)" -LE slow
