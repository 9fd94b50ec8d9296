#!/usr/bin/env python3
"""Fails when a source folder includes from a layer above it, when a library links one it
does not use, or when a source file grows beyond 400 lines (a file that long holds more than
one thing; split it along its seams).

The layers are the subsystem libraries of the top CMakeLists.txt: vexa_subsystem(name deps...).
A file under src/<name>/ may include "<other>/..." only when <other> is <name> itself or a
library <name> reaches through its declared dependencies; and each declared dependency must be
included by at least one file of the library (else it should not be linked).

  check_layers.py [ROOT]      ROOT defaults to the repository holding this script
"""
import os
import re
import sys

ROOT = os.path.abspath(sys.argv[1]) if len(sys.argv) > 1 else \
    os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
SRC = os.path.join(ROOT, "src")
LONGEST_FILE = 400


def layers():
    with open(os.path.join(ROOT, "CMakeLists.txt")) as handle:
        text = handle.read()
    deps = {}
    for name, rest in re.findall(r"^vexa_subsystem\((\w+)([^)]*)\)", text, re.M):
        deps[name] = [d.replace("vexa_", "") for d in rest.split()]
    return deps


def reach(deps, name, seen=None):
    seen = set() if seen is None else seen
    for d in deps.get(name, []):
        if d not in seen:
            seen.add(d)
            reach(deps, d, seen)
    return seen


def main():
    deps = layers()
    faults = []
    used = {name: set() for name in deps}
    for folder in sorted(os.listdir(SRC)):
        if not os.path.isdir(os.path.join(SRC, folder)):
            continue
        if folder not in deps:
            faults.append("src/%s is no library of CMakeLists.txt" % folder)
            continue
        allowed = reach(deps, folder) | {folder}
        for directory, _, files in os.walk(os.path.join(SRC, folder)):
            for name in files:
                if not name.endswith((".h", ".cpp")):
                    continue
                path = os.path.join(directory, name)
                with open(path, encoding="utf-8", errors="replace") as handle:
                    lines = handle.readlines()
                if len(lines) > LONGEST_FILE:
                    faults.append("%s has %d lines, more than %d" %
                                  (os.path.relpath(path, ROOT), len(lines), LONGEST_FILE))
                for number, line in enumerate(lines, 1):
                    match = re.match(r'\s*#\s*include\s+"([\w.]+)/', line)
                    if not match:
                        continue
                    target = match.group(1)
                    if target not in deps:
                        continue
                    used[folder].add(target)
                    if target not in allowed:
                        faults.append("%s:%d includes %s/, which vexa_%s does not reach: an upward or sideways include" %
                                      (os.path.relpath(path, ROOT), number, target, folder))
    for name, direct in deps.items():
        for d in direct:
            if d not in used[name]:
                faults.append("vexa_%s links vexa_%s but includes nothing of it" % (name, d))
    for fault in faults:
        print(fault)
    if not faults:
        print("layers ok: %s" % ", ".join(deps))
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
