#!/usr/bin/env bash
# The whole suite under AddressSanitizer and UndefinedBehaviorSanitizer, with the store's
# bookkeeping recounted after every accepted toggle.
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
BUILD_TYPE=RelWithDebInfo bash "$root/scripts/build.sh" "$root/build-sanitize" \
    -DVEXA_SANITIZE=ON -DVEXA_CHECK_BOOKKEEPING=ON -DVEXA_BUILD_JNI=OFF -DVEXA_BUILD_BENCH=OFF
cd "$root/build-sanitize"
ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
    ctest --output-on-failure -j "$(nproc)" -LE slow
