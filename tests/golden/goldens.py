#!/usr/bin/env python3
"""Runs every bundled run file with a pinned seed and compares every file it writes, and what
it prints, with the recorded fingerprints in tests/golden/expected.

A case is either a directory of tests/golden/cases (its run.txt, with the bundled networks and
the case's own files beside it) or one run file of examples/. Each runs in a fresh scratch
directory, so the update files it writes into the working directory are caught too.

  goldens.py --vexa build/vexa --check     fail on any difference, naming the files
  goldens.py --vexa build/vexa --update    record the current outputs (on purpose only)
  goldens.py ... --keep DIR                leave each case's outputs in DIR/<case> to inspect
  goldens.py ... --check --store sparse    every case again on the sparse stores (graph and
                                           digraph), which must write the very same bytes
  goldens.py --vexa vexa.exe --runner scripts/wine-run.sh --windows --check
                                           a Windows build under Wine, against the same records

A Windows run must give the same bytes as the recorded POSIX run, with two differences aside:
its output names join directory and file with a backslash (which the SPSS syntax files quote),
and its console ends lines with CR LF.
"""
import argparse
import concurrent.futures
import hashlib
import os
import shutil
import subprocess
import sys
import tempfile

HERE = os.path.dirname(os.path.abspath(__file__))
ROOT = os.path.dirname(os.path.dirname(HERE))
DATA = os.path.join(ROOT, "tests", "data")
EXAMPLES = os.path.join(ROOT, "examples")
EXPECTED = os.path.join(HERE, "expected")
SEED = "7"
NETWORKS = ["flomarriage.txt", "faux.mesa.high.txt", "samplike.txt"]


def cases():
    """(name, setup) pairs; setup fills a scratch directory and returns the run file's name."""
    found = []
    for name in sorted(os.listdir(os.path.join(HERE, "cases"))):
        source = os.path.join(HERE, "cases", name)

        def setup(work, source=source):
            for network in NETWORKS:
                if os.path.exists(os.path.join(DATA, network)):
                    shutil.copy(os.path.join(DATA, network), work)
            for entry in os.listdir(source):
                shutil.copy(os.path.join(source, entry), work)
            return "run.txt"

        found.append((name, setup))
    for entry in sorted(os.listdir(EXAMPLES)):
        path = os.path.join(EXAMPLES, entry)
        if not os.path.isfile(path):
            continue
        with open(path, "rb") as handle:
            if not handle.read(13).startswith(b"network_name"):
                continue  # a network or attribute file, not a run file

        def setup(work, entry=entry):
            for other in os.listdir(EXAMPLES):
                # Run files and the networks and attributes they name; not what runs left here.
                if other.endswith((".txt", ".tsv")) and os.path.isfile(os.path.join(EXAMPLES, other)):
                    shutil.copy(os.path.join(EXAMPLES, other), work)
            return entry

        found.append(("example_" + os.path.splitext(entry)[0], setup))
    return found


def run_case(command, setup, work, store=None):
    run_file = setup(work)
    before = set(os.listdir(work))
    os.makedirs(os.path.join(work, "out"), exist_ok=True)
    arguments = ["--seed", SEED] + (["--store", store] if store else []) + [run_file]
    result = subprocess.run(command + arguments, cwd=work, capture_output=True, timeout=900)
    outputs = {"(stdout)": result.stdout, "(exit status)": str(result.returncode).encode()}
    for directory, _, files in os.walk(work):
        for name in files:
            path = os.path.join(directory, name)
            relative = os.path.relpath(path, work)
            if directory == work and name in before:
                continue
            with open(path, "rb") as handle:
                outputs[relative] = handle.read()
    return outputs


def as_on_posix(name, outputs, failures):
    """A Windows run's outputs as a POSIX run writes them. Each SPSS syntax file must name its
    data with the backslash separator, or the Windows names were not formed."""
    normal = {}
    for file, data in outputs.items():
        if file.endswith(".sps") and b"\\" not in data:
            failures.append("%s: %s names no file with a backslash separator" % (name, file))
        if file == "(stdout)":
            data = data.replace(b"\r\n", b"\n")
        normal[file] = data.replace(b"\\", b"/")
    return normal


def fingerprints(outputs):
    return {name: "%s %d" % (hashlib.sha256(data).hexdigest(), len(data))
            for name, data in outputs.items()}


def read_expected(name):
    path = os.path.join(EXPECTED, name + ".txt")
    if not os.path.exists(path):
        return None
    recorded = {}
    with open(path) as handle:
        for line in handle:
            digest, size, file = line.rstrip("\n").split(" ", 2)
            recorded[file] = digest + " " + size
    return recorded


def write_expected(name, prints):
    os.makedirs(EXPECTED, exist_ok=True)
    with open(os.path.join(EXPECTED, name + ".txt"), "w") as handle:
        for file in sorted(prints):
            handle.write("%s %s\n" % (prints[file], file))


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--vexa", required=True)
    mode = parser.add_mutually_exclusive_group(required=True)
    mode.add_argument("--check", action="store_true")
    mode.add_argument("--update", action="store_true")
    parser.add_argument("--keep")
    parser.add_argument("--only", help="run only the cases whose name contains this")
    parser.add_argument("--skip", action="append", default=[],
                        help="leave out the cases whose name contains this (repeatable)")
    parser.add_argument("--store", choices=["dense", "sparse"],
                        help="run every case on this store")
    parser.add_argument("--runner", help="the program that runs VEXA (Wine for a Windows build)")
    parser.add_argument("--windows", action="store_true",
                        help="VEXA is a Windows build: compare as a POSIX run would write")
    parser.add_argument("--jobs", type=int, default=1, help="cases to run at once")
    args = parser.parse_args()
    command = [os.path.abspath(args.vexa)]
    if args.runner:
        # Cases run in scratch directories: a runner named by a relative path is found first.
        runner = os.path.abspath(args.runner) if os.sep in args.runner else args.runner
        command.insert(0, runner)
    failures = []

    def run(name, setup):
        with tempfile.TemporaryDirectory() as work:
            outputs = run_case(command, setup, work, args.store)
            if args.keep:
                kept = os.path.join(args.keep, name)
                shutil.rmtree(kept, ignore_errors=True)
                shutil.copytree(work, kept)
                with open(os.path.join(kept, "(stdout)"), "wb") as handle:
                    handle.write(outputs["(stdout)"])
        return outputs

    chosen = [(name, setup) for name, setup in cases()
              if (not args.only or args.only in name)
              and not any(part in name for part in args.skip)]
    # Cases run side by side (each in its own directory, as a process of its own); their
    # results are taken in order.
    with concurrent.futures.ThreadPoolExecutor(max_workers=max(1, args.jobs)) as pool:
        runs = [(name, pool.submit(run, name, setup)) for name, setup in chosen]
    for name, done in runs:
        outputs = done.result()
        if args.windows:
            outputs = as_on_posix(name, outputs, failures)
        prints = fingerprints(outputs)
        if args.update and args.store:
            parser.error("record goldens on the default store")
        if args.update:
            write_expected(name, prints)
            print("recorded %s: %d files" % (name, len(prints)))
            continue
        expected = read_expected(name)
        if expected is None:
            failures.append("%s: no recorded outputs (run with --update on purpose)" % name)
            continue
        for file in sorted(set(expected) | set(prints)):
            if file not in prints:
                failures.append("%s: %s was not written" % (name, file))
            elif file not in expected:
                failures.append("%s: %s is new" % (name, file))
            elif expected[file] != prints[file]:
                failures.append("%s: %s differs" % (name, file))
        print("%s: %s" % (name, "ok" if not any(f.startswith(name + ":") for f in failures)
                          else "DIFFERS"))
    if failures:
        print("\n".join(failures[:200]))
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
