#!/usr/bin/env bash
# Configures and builds vexa. Usage: scripts/build.sh [BUILD_DIR] [extra cmake options...]
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
build="${1:-$root/build}"
shift || true
bash "$root/scripts/setup.sh"
cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE="${BUILD_TYPE:-Release}" "$@" >/dev/null
cmake --build "$build" -j "$(nproc)"
