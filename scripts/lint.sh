#!/usr/bin/env bash
# Runs clang-tidy with the checks of .clang-tidy over every source file of src/, using the
# compile commands of a build (default build/). Any finding fails.
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
build="${1:-$root/build}"
cd "$root"
command -v clang-tidy >/dev/null 2>&1 || bash scripts/setup.sh
[ -f "$build/compile_commands.json" ] || bash scripts/build.sh "$build"
mapfile -t files < <(git ls-files 'src/*.cpp' | grep -v '^src/entry/export/jni_export.cpp$')
printf '%s\n' "${files[@]}" | xargs -P "$(nproc)" -n 4 clang-tidy -p "$build" --quiet 2>/dev/null
echo "lint ok: ${#files[@]} files"
