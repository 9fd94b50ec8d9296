#!/usr/bin/env bash
# Configures and builds vexa. Usage: scripts/build.sh [BUILD_DIR] [extra cmake options...]
# BUILD_TARGETS="vexa vexa_cli" builds only those targets (default: everything).
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
build="${1:-$root/build}"
shift || true
bash "$root/scripts/setup.sh"
source "$root/scripts/ccache-env.sh"
cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE="${BUILD_TYPE:-Release}" \
    "${ccache_launcher[@]}" "$@" >/dev/null
if [ -n "${BUILD_TARGETS:-}" ]; then
    read -r -a targets <<<"$BUILD_TARGETS"
    cmake --build "$build" -j "$(nproc)" --target "${targets[@]}"
else
    cmake --build "$build" -j "$(nproc)"
fi
