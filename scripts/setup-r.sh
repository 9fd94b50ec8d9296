#!/usr/bin/env bash
# Installs what the R package needs to build and check on Debian (R, Rcpp, testthat, the
# network package, and knitr and markdown for the vignette), skipping what is already there.
exec bash "$(cd "$(dirname "$0")" && pwd)/setup.sh" --r
