#!/usr/bin/env bash
# Fails when a C++ file of the tree is not formatted as .clang-format says. With --fix,
# formats them in place instead.
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
cd "$root"
command -v clang-format >/dev/null 2>&1 || bash scripts/setup.sh
# Rcpp generates the R package's export glue; it keeps Rcpp's layout.
mapfile -t files < <(git ls-files '*.cpp' '*.h' | grep -v '^r/src/RcppExports.cpp$')
if [ "${1:-}" = "--fix" ]; then
    clang-format -i "${files[@]}"
    exit 0
fi
clang-format --dry-run -Werror "${files[@]}"
echo "format ok: ${#files[@]} files"
