#!/usr/bin/env bash
# Installs what the R package needs to build and check on Debian (R, Rcpp, testthat and the
# network package), skipping what is already there.
set -euo pipefail

packages=(r-base-core r-base-dev r-cran-rcpp r-cran-testthat r-cran-network)
missing=()
for package in "${packages[@]}"; do
    dpkg -s "$package" >/dev/null 2>&1 || missing+=("$package")
done
if [ ${#missing[@]} -eq 0 ]; then
    exit 0
fi
echo "setup-r: installing ${missing[*]}"
sudo_cmd=()
if [ "$(id -u)" -ne 0 ]; then
    sudo_cmd=(sudo)
fi
export DEBIAN_FRONTEND=noninteractive
"${sudo_cmd[@]}" apt-get update -qq
"${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}"
