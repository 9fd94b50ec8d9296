#!/usr/bin/env bash
# Builds the Python module (python/) from the release build's engine objects and runs its
# pytest suite with Debian's interpreter. The release build (default build/) is configured
# with the module added: its engine libraries are linked as they are, and only the bridge is
# compiled, through ccache. Installs Debian's pybind11, networkx, numpy, pandas, scipy,
# matplotlib and pytest when missing.
# Usage: scripts/test-python.sh [BUILD_DIR]
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
build="${1:-$root/build}"
bash "$root/scripts/setup.sh" --python
source "$root/scripts/ccache-env.sh"
cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE="${BUILD_TYPE:-Release}" \
    -DVEXA_PYTHON=ON -DPython_EXECUTABLE=/usr/bin/python3 "${ccache_launcher[@]}" >/dev/null
cmake --build "$build" -j "$(nproc)" --target vexa_python
# The package from the source tree, the module from the build; figures drawn off screen.
PYTHONPATH="$root/python:$build/python" MPLBACKEND=Agg PYTHONDONTWRITEBYTECODE=1 \
    /usr/bin/python3 -m pytest -q -p no:cacheprovider "$root/python/tests"
