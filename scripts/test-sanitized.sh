#!/usr/bin/env bash
# The whole suite under AddressSanitizer and UndefinedBehaviorSanitizer, with the store's
# bookkeeping recounted after every accepted toggle. The statistical checks labelled slow are
# neither run nor built here.
#
# Optimised at -O1, ASan's recommended level, with line tables (-g1) for the debug information:
# GCC compiles the instrumented code about twice as fast as at -O2 with full debug information,
# which had made this build the longest part of CI, and a report still names the file, line
# and function of every frame.
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
flags="-O1 -g1 -DNDEBUG"
BUILD_TYPE=RelWithDebInfo bash "$root/scripts/build.sh" "$root/build-sanitize" \
    -DCMAKE_C_FLAGS_RELWITHDEBINFO="$flags" -DCMAKE_CXX_FLAGS_RELWITHDEBINFO="$flags" \
    -DVEXA_SANITIZE=ON -DVEXA_CHECK_BOOKKEEPING=ON -DVEXA_BUILD_JNI=OFF -DVEXA_BUILD_BENCH=OFF \
    -DVEXA_BUILD_SLOW_TESTS=OFF
cd "$root/build-sanitize"
ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
    ctest --output-on-failure -j "$(nproc)" -LE slow
