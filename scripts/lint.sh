#!/usr/bin/env bash
# Runs clang-tidy with the checks of .clang-tidy over every source file of src/, using the
# compile commands of a build (default build/). Any finding fails.
#
# A file that clang-tidy passed is not analysed again while nothing it reads has changed: its
# text with every header it includes, comments kept (NOLINT lives there), as clang preprocesses
# it under its compile command, together with that command, the .clang-tidy files and
# clang-tidy's version. The passes are remembered in ~/.cache/vexa-lint (VEXA_LINT_CACHE), with
# the source root's path taken out, so a clone in another directory finds them; a finding is
# never remembered.
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
build="${1:-$root/build}"
cd "$root"
command -v clang-tidy >/dev/null 2>&1 || bash scripts/setup.sh
[ -f "$build/compile_commands.json" ] || bash scripts/build.sh "$build"
cache="${VEXA_LINT_CACHE:-${XDG_CACHE_HOME:-${HOME:-/tmp}/.cache}/vexa-lint}"
mkdir -p "$cache"
# The MPI build's one file needs MPI's headers, which only that build's commands name.
mapfile -t files < <(git ls-files 'src/*.cpp' |
    grep -v -e '^src/entry/export/jni_export.cpp$' -e '^src/sampler/cluster/cluster_mpi.cpp$')

# "KEY FILE" for every file without a remembered pass.
mapfile -t pending < <(python3 - "$root" "$build" "$cache" "${files[@]}" <<'PY'
import concurrent.futures, hashlib, json, os, shlex, subprocess, sys
root, build, cache, files = sys.argv[1], sys.argv[2], sys.argv[3], sys.argv[4:]
common = hashlib.sha256()
common.update(subprocess.run(["clang-tidy", "--version"], capture_output=True).stdout)
for config in subprocess.run(["git", "ls-files", ".clang-tidy", "*/.clang-tidy"], cwd=root,
                             capture_output=True, text=True).stdout.split():
    common.update(config.encode() + b"\0" + open(os.path.join(root, config), "rb").read())
commands = {os.path.realpath(entry["file"]): entry
            for entry in json.load(open(os.path.join(build, "compile_commands.json")))}

def key(file):
    entry = commands.get(os.path.realpath(os.path.join(root, file)))
    if entry is None:
        return None  # not in this build: always analysed
    args = entry["arguments"] if "arguments" in entry else shlex.split(entry["command"])
    kept, skip = [], False
    for arg in args[1:]:  # the compiler itself is left out: clang preprocesses
        if skip:
            skip = False
        elif arg in ("-o", "-MF", "-MT", "-MQ"):
            skip = True
        elif arg not in ("-c", "-MD", "-MMD"):
            kept.append(arg)
    text = subprocess.run(["clang++", "-E", "-C", "-Wno-unknown-warning-option"] + kept,
                          cwd=entry["directory"], capture_output=True)
    if text.returncode != 0:
        return None
    digest = common.copy()
    for part in (" ".join(kept).encode(), text.stdout):
        digest.update(part.replace(root.encode(), b"@ROOT@").replace(build.encode(), b"@BUILD@"))
        digest.update(b"\0")
    return digest.hexdigest()

with concurrent.futures.ThreadPoolExecutor(os.cpu_count() or 2) as pool:
    for file, found in zip(files, pool.map(key, files)):
        if found is None or not os.path.exists(os.path.join(cache, found)):
            print(f"{found or 'none'} {file}")
PY
)

if [ ${#pending[@]} -gt 0 ]; then
    # Each file alone, so that a pass is remembered for exactly the file that passed.
    export VEXA_LINT_BUILD="$build" VEXA_LINT_PASSES="$cache"
    printf '%s\n' "${pending[@]}" | tr ' ' '\n' | xargs -P "$(nproc)" -n 2 sh -c '
        clang-tidy -p "$VEXA_LINT_BUILD" --quiet "$2" 2>/dev/null || exit 1
        [ "$1" = none ] || touch "$VEXA_LINT_PASSES/$1"' lint
fi
echo "lint ok: ${#files[@]} files, $((${#files[@]} - ${#pending[@]})) unchanged since they passed"
