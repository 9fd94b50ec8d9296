#!/usr/bin/env bash
# The statistical checks labelled slow (parameter recovery, long-run means, closed forms) on the
# build of scripts/test.sh, which is brought up to date first (nothing to do when test.sh has
# just built it).
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
bash "$root/scripts/build.sh" "$root/build"
cd "$root/build"
ctest --output-on-failure -j "$(nproc)" -L slow
