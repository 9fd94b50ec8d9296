#!/usr/bin/env bash
# Cross-builds vexa for 64-bit Windows with MinGW-w64: vexa.dll, vexa.exe and the test
# programs, all in build-windows/ (or the directory given). Then checks that the DLL exports
# exactly its two entries and needs no DLL beyond Windows' own, and runs the unit, end-to-end
# and library tests and every bundled example (against the recorded outputs) under Wine. The
# statistical checks labelled slow stay out. With --no-test it stops after the build.
# Usage: scripts/build-windows.sh [BUILD_DIR] [--no-test]
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
build="$root/build-windows"
run_tests=1
for arg in "$@"; do
    case "$arg" in
        --no-test) run_tests=0 ;;
        *) build="$arg" ;;
    esac
done
bash "$root/scripts/setup.sh" --windows
source "$root/scripts/ccache-env.sh"

cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release "${ccache_launcher[@]}" \
    -DCMAKE_TOOLCHAIN_FILE="$root/cmake/mingw-w64-x86_64.cmake" -DVEXA_BUILD_BENCH=OFF >/dev/null
cmake --build "$build" -j "$(nproc)" --target vexa vexa_cli vexa_tests vexa_library_tests

objdump=x86_64-w64-mingw32-objdump
echo "vexa.dll exports:"
"$objdump" -p "$build/vexa.dll" | sed -n '/\[Ordinal\/Name Pointer\] Table/,/^$/p' | sed '1d;/^$/d'
for file in vexa.dll vexa.exe; do
    echo "$file imports: $("$objdump" -p "$build/$file" | sed -n 's/^\tDLL Name: //p' | sort -u | tr '\n' ' ')"
done
[ "$run_tests" = 1 ] || exit 0

cd "$build"
# Wine makes its prefix on first use, which takes a while and can fail the program that
# triggered it on a fresh machine: make it here, before the tests start side by side.
"$root/scripts/wine-run.sh" "$build/vexa.exe" --help >/dev/null 2>&1 || true
ctest --output-on-failure -j "$(nproc)" -LE slow

# The main job through vexa.exe against the Linux build's report, when there is one.
linux_vexa="$root/build/vexa"
if [ -x "$linux_vexa" ]; then
    work="$(mktemp -d)"
    trap 'rm -rf "$work"' EXIT
    for side in linux windows; do
        mkdir -p "$work/$side/out"
        cp "$root"/examples/*.txt "$work/$side/"
    done
    (cd "$work/linux" && "$linux_vexa" --seed 7 flomarriage_alternating.txt >/dev/null)
    (cd "$work/windows" &&
        "$root/scripts/wine-run.sh" "$build/vexa.exe" --seed 7 flomarriage_alternating.txt >/dev/null)
    report=out/estimation_flomarriage_alternating.txt
    if cmp -s "$work/linux/$report" "$work/windows/$report"; then
        echo "estimation report of vexa.exe under Wine = the Linux build's, byte for byte" \
            "($(sha256sum <"$work/windows/$report" | cut -c1-16))"
    else
        echo "the estimation report of vexa.exe differs from the Linux build's:"
        diff "$work/linux/$report" "$work/windows/$report" | head -20
        exit 1
    fi
fi
