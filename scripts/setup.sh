#!/usr/bin/env bash
# Installs what vexa needs to build and test on Debian, skipping what is already there.
# With --windows, also the MinGW-w64 cross-compiler and Wine for the Windows build; with --mpi,
# OpenMPI; with --r, only what the R package needs; with --python, only what the Python module
# needs.
set -euo pipefail

packages=(cmake g++ ninja-build ccache libgtest-dev libbenchmark-dev default-jdk-headless python3 clang-format clang-tidy)
for option in "$@"; do
    case "$option" in
        --windows) packages+=(g++-mingw-w64-x86-64-posix wine64) ;;
        # clang and its libFuzzer runtime, for scripts/fuzz.sh.
        --fuzz) packages+=(clang libclang-rt-dev) ;;
        # R, Rcpp, testthat and the network package, for the R package, knitr and markdown for
        # its vignette (HTML without pandoc), and ccache for its compile when scripts/test-r.sh
        # builds it.
        --r) packages=(r-base-core r-base-dev r-cran-rcpp r-cran-testthat r-cran-network
                       r-cran-knitr r-cran-markdown ccache) ;;
        # pybind11, networkx, numpy, pandas, scipy, matplotlib and pytest for Debian's own
        # interpreter, for the Python module (scripts/test-python.sh); ccache for its compile.
        --python) packages=(python3-pybind11 python3-networkx python3-numpy python3-pandas
                            python3-scipy python3-matplotlib python3-pytest python3-pip ccache) ;;
        # OpenMPI, for the build that spreads chains over processes (scripts/test-mpi.sh).
        --mpi) packages+=(openmpi-bin libopenmpi-dev) ;;
        *) echo "setup: unknown option $option" >&2; exit 2 ;;
    esac
done
missing=()
for package in "${packages[@]}"; do
    case "$package" in
        # Any JDK with javac will do.
        default-jdk-headless) command -v javac >/dev/null 2>&1 && continue ;;
        cmake) command -v cmake >/dev/null 2>&1 && continue ;;
        g++) command -v g++ >/dev/null 2>&1 && continue ;;
        ninja-build) command -v ninja >/dev/null 2>&1 && continue ;;
        ccache) command -v ccache >/dev/null 2>&1 && continue ;;
        python3) command -v python3 >/dev/null 2>&1 && continue ;;
        clang-format) command -v clang-format >/dev/null 2>&1 && continue ;;
        clang-tidy) command -v clang-tidy >/dev/null 2>&1 && continue ;;
        clang) command -v clang++ >/dev/null 2>&1 && continue ;;
        # Any clang's runtime will do, once it has the fuzzer library.
        libclang-rt-dev)
            ls /usr/lib/llvm-*/lib/clang/*/lib/linux/libclang_rt.fuzzer-*.a >/dev/null 2>&1 && continue ;;
    esac
    dpkg -s "$package" >/dev/null 2>&1 || missing+=("$package")
done

if [ ${#missing[@]} -eq 0 ]; then
    exit 0
fi
echo "setup: installing ${missing[*]}"
sudo_cmd=()
if [ "$(id -u)" -ne 0 ]; then
    sudo_cmd=(sudo)
fi
export DEBIAN_FRONTEND=noninteractive
"${sudo_cmd[@]}" apt-get update -qq
"${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}"
