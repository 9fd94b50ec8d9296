# shellcheck shell=bash
# Sourced by the scripts that configure a build, after they set $root: every compiler call goes
# through ccache, so a configuration compiles only what no earlier build on this machine has
# compiled the same way. Paths under the source root are hashed relative to it and the build's
# own directory is left out of the hash, so a clone in another directory (CI's) hits what an
# earlier clone left; a debug build's objects may then name the earlier clone's build directory,
# which costs a sanitizer report nothing (it names file and line). The cache is ccache's own,
# ~/.cache/ccache unless CCACHE_DIR says otherwise.
command -v ccache >/dev/null 2>&1 || bash "$root/scripts/setup.sh"
export CCACHE_BASEDIR="$root"
export CCACHE_NOHASHDIR=true
ccache_launcher=(-DCMAKE_C_COMPILER_LAUNCHER=ccache -DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
