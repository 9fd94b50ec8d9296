#!/usr/bin/env bash
# Sets up, builds and runs the whole test suite, the statistical checks labelled slow included.
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
bash "$root/scripts/build.sh" "$root/build"
cd "$root/build"
ctest --output-on-failure -j "$(nproc)"
