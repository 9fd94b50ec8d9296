#!/usr/bin/env python3
"""Runs every bundled run file with a pinned seed and compares every file it writes, and what
it prints, with the outputs recorded as text in tests/golden/expected.

A case is either a directory of tests/golden/cases (its run.txt, with the bundled networks and
the case's own files beside it) or one run file of examples/. Each runs in a fresh scratch
directory, so the update files it writes into the working directory are caught too.

The record of a case is the directory expected/<case>: every file the run wrote, under its
path relative to the working directory (out/estimation_x.txt, stupdate.vexa), beside
stdout.txt (the console, byte for byte) and exit-status.txt (the exit status and a newline).
The program never writes those two names (its outputs are named suffix_network.ext or
*update.vexa); a run that did would fail. A change of output shows in the git diff of these
files, and a failed check prints a unified diff of each differing file.

  goldens.py --vexa build/vexa --check     fail on any difference, with a diff of each file
  goldens.py --vexa build/vexa --update    record the current outputs (on purpose only;
                                           scripts/update-goldens.sh builds and runs this)
  goldens.py ... --keep DIR                leave each case's outputs in DIR/<case> to inspect
  goldens.py ... --check --store sparse    every case again on the sparse stores (graph and
                                           digraph), which must write the very same bytes
  goldens.py --vexa vexa.exe --runner scripts/wine-run.sh --windows --check
                                           a Windows build under Wine, against the same records

A Windows run is held to the recorded POSIX run with two differences aside: its output names
join directory and file with a backslash (which the SPSS syntax files quote), and its console
ends lines with CR LF.

Numbers are compared exactly, byte for byte, unless --tolerant is given; a Windows run
(--windows) is always tolerant, since another compiler and C runtime may round a last digit
the other way. In the tolerant mode a file whose bytes differ is compared line by line: the
files must have as many lines, and each pair of lines, split into tokens at tabs and blanks,
as many tokens. A token that is not a number must be the same. A number (optional sign,
digits with an optional decimal point, optional exponent; bare, or after a label ending in a
colon as in parameter:-1.609438, or before a percent sign as in 12.80%, where label and sign
must be the same) may differ from the recorded one by at most one unit in the recorded
token's last printed digit: 0.1234 admits 0.1233 to 0.1235, 47 admits 46 to 48, 1.5e-05
admits 1.4e-05 to 1.6e-05. The exit status is always exact. The Linux runs stay exact: the
engine is built without contraction of floating-point operations and without fast-math, so
the same platform gives the same bytes.
"""
import argparse
import concurrent.futures
import decimal
import difflib
import os
import re
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
STDOUT = "stdout.txt"
STATUS = "exit-status.txt"
# A failed check shows at most this many diff lines of one file, and of all files together;
# beyond them it names the files that differ.
DIFF_LINES_PER_FILE = 40
DIFF_LINES_IN_ALL = 400
DIFF_LINE_WIDTH = 240
# A number token of the tolerant mode: label, number, percent sign.
NUMBER = re.compile(r"([^:]*:)?([+-]?(?:[0-9]+\.?[0-9]*|\.[0-9]+)(?:[eE][+-]?[0-9]+)?)(%?)")
TOKEN_SEPARATOR = re.compile(r"[ \t]+")


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


def run_case(name, command, setup, work, failures, store=None):
    """The case's outputs by record name: the files it wrote, its console and exit status."""
    run_file = setup(work)
    before = set(os.listdir(work))
    os.makedirs(os.path.join(work, "out"), exist_ok=True)
    arguments = ["--seed", SEED] + (["--store", store] if store else []) + [run_file]
    result = subprocess.run(command + arguments, cwd=work, capture_output=True, timeout=900)
    outputs = {}
    for directory, _, files in os.walk(work):
        for file in files:
            path = os.path.join(directory, file)
            relative = os.path.relpath(path, work).replace(os.sep, "/")
            if directory == work and file in before:
                continue
            if relative in (STDOUT, STATUS):
                failures.append("%s: writes %s, the name of the console's record" % (name, relative))
                continue
            with open(path, "rb") as handle:
                outputs[relative] = handle.read()
    outputs[STDOUT] = result.stdout
    outputs[STATUS] = b"%d\n" % result.returncode
    return outputs


def as_on_posix(name, outputs, failures):
    """A Windows run's outputs as a POSIX run writes them. Each SPSS syntax file must name its
    data with the backslash separator, or the Windows names were not formed."""
    normal = {}
    for file, data in outputs.items():
        if file.endswith(".sps") and b"\\" not in data:
            failures.append("%s: %s names no file with a backslash separator" % (name, file))
        if file == STDOUT:
            data = data.replace(b"\r\n", b"\n")
        normal[file] = data.replace(b"\\", b"/")
    return normal


def read_expected(name):
    """The recorded outputs of a case by record name, or None when it has no record."""
    top = os.path.join(EXPECTED, name)
    if not os.path.isdir(top):
        return None
    recorded = {}
    for directory, _, files in os.walk(top):
        for file in files:
            path = os.path.join(directory, file)
            with open(path, "rb") as handle:
                recorded[os.path.relpath(path, top).replace(os.sep, "/")] = handle.read()
    return recorded


def write_expected(name, outputs):
    """Replaces the record of a case, so that files a run no longer writes leave it too."""
    top = os.path.join(EXPECTED, name)
    shutil.rmtree(top, ignore_errors=True)
    for file, data in outputs.items():
        path = os.path.join(top, *file.split("/"))
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "wb") as handle:
            handle.write(data)


def lines_of(data):
    """The lines of a file, each with its newline but a last one without."""
    # Outputs are UTF-8 text; a stray byte shows as a replacement character, not a crash.
    lines = [line + "\n" for line in data.decode("utf-8", errors="replace").split("\n")]
    lines[-1] = lines[-1][:-1]
    return lines if lines[-1] else lines[:-1]


def show(line):
    return line if len(line) <= DIFF_LINE_WIDTH else line[:DIFF_LINE_WIDTH] + " [...]"


def within_last_digit(recorded, value):
    """Whether the number value is within one unit in the last printed digit of recorded."""
    recorded, value = decimal.Decimal(recorded), decimal.Decimal(value)
    _, digits, exponent = recorded.as_tuple()
    unit = decimal.Decimal((0, (1,), exponent))
    # Exact: the bounds have the recorded number's digits and one more.
    with decimal.localcontext() as context:
        context.prec = len(digits) + 2
        return recorded - unit <= value <= recorded + unit


def tokens(line):
    return [token for token in TOKEN_SEPARATOR.split(line) if token]


def agree_within_last_digit(recorded, line):
    if recorded == line:
        return True
    if recorded.endswith("\n") != line.endswith("\n"):
        return False
    expected, actual = tokens(recorded.rstrip("\n")), tokens(line.rstrip("\n"))
    if len(expected) != len(actual):
        return False
    for want, got in zip(expected, actual):
        if want == got:
            continue
        number, other = NUMBER.fullmatch(want), NUMBER.fullmatch(got)
        if not number or not other or number.group(1, 3) != other.group(1, 3):
            return False
        if not within_last_digit(number.group(2), other.group(2)):
            return False
    return True


def as_recorded_within_last_digit(recorded, written):
    """The written lines with each one that agrees with its recorded line within the last digit
    replaced by that line. Lines pair up by position when the files have as many lines, else
    within each block of as many lines that the diff replaces."""
    def settle(wanted, got):
        return [want if agree_within_last_digit(want, line) else line
                for want, line in zip(wanted, got)]

    if len(recorded) == len(written):
        return settle(recorded, written)
    settled = []
    matcher = difflib.SequenceMatcher(None, recorded, written, autojunk=False)
    for tag, first, last, start, end in matcher.get_opcodes():
        if tag == "replace" and last - first == end - start:
            settled.extend(settle(recorded[first:last], written[start:end]))
        else:
            settled.extend(written[start:end])
    return settled


def differences(name, file, expected, actual, tolerant):
    """The diff lines between a recorded file and the run's, or [] when they agree. In the
    tolerant mode a line that agrees with its recorded line within the last digit counts as
    that line, so the diff shows only the lines that fail."""
    if expected == actual:
        return []
    recorded, written = lines_of(expected), lines_of(actual)
    if tolerant:
        written = as_recorded_within_last_digit(recorded, written)
        if written == recorded:
            return []
    diff = []
    for line in difflib.unified_diff(recorded, written, "expected/%s/%s" % (name, file),
                                     "this run's %s" % file, n=2, lineterm=""):
        if line.endswith("\n"):
            line = line[:-1]
        elif len(diff) >= 2 and not line.startswith("@@"):
            line += "   [no newline at the end of the file]"
        diff.append(show(line))
    if not diff:
        # The decoded text agrees although the bytes do not (an invalid byte changed).
        diff = ["(the files differ in bytes that are not UTF-8 text)"]
    return diff


def compare(name, expected, outputs, failures, report, tolerant):
    """Adds a failure for each file that differs, is new or was not written, and the diffs of
    the differing ones to report (a list of lines, capped in length)."""
    for file in sorted(set(expected) | set(outputs)):
        if file not in outputs:
            failures.append("%s: %s was not written" % (name, file))
        elif file not in expected:
            failures.append("%s: %s is new (%d bytes)" % (name, file, len(outputs[file])))
        else:
            diff = differences(name, file, expected[file], outputs[file],
                               tolerant and file != STATUS)
            if not diff:
                continue
            failures.append("%s: %s differs" % (name, file))
            room = DIFF_LINES_IN_ALL - len(report)
            if room <= 0:
                continue
            shown = diff[:min(DIFF_LINES_PER_FILE, room)]
            report.extend(shown)
            if len(shown) < len(diff):
                report.append("[... %d more diff lines of %s/%s]" % (len(diff) - len(shown),
                                                                    name, file))


def main():
    parser = argparse.ArgumentParser(
        description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
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
                        help="VEXA is a Windows build: compare as a POSIX run would write, "
                        "numbers within the last digit (--tolerant)")
    parser.add_argument("--tolerant", action="store_true",
                        help="numbers may differ by one unit in their last printed digit")
    parser.add_argument("--jobs", type=int, default=1, help="cases to run at once")
    args = parser.parse_args()
    if args.update and args.store:
        parser.error("record goldens on the default store")
    command = [os.path.abspath(args.vexa)]
    if args.runner:
        # Cases run in scratch directories: a runner named by a relative path is found first.
        runner = os.path.abspath(args.runner) if os.sep in args.runner else args.runner
        command.insert(0, runner)
    failures = []

    def run(name, setup):
        with tempfile.TemporaryDirectory() as work:
            outputs = run_case(name, command, setup, work, failures, args.store)
            if args.keep:
                kept = os.path.join(args.keep, name)
                shutil.rmtree(kept, ignore_errors=True)
                shutil.copytree(work, kept)
                for file in (STDOUT, STATUS):
                    with open(os.path.join(kept, file), "wb") as handle:
                        handle.write(outputs[file])
        return outputs

    every = cases()
    chosen = [(name, setup) for name, setup in every
              if (not args.only or args.only in name)
              and not any(part in name for part in args.skip)]
    # Cases run side by side (each in its own directory, as a process of its own); their
    # results are taken in order.
    with concurrent.futures.ThreadPoolExecutor(max_workers=max(1, args.jobs)) as pool:
        runs = [(name, pool.submit(run, name, setup)) for name, setup in chosen]
    report = []
    for name, done in runs:
        outputs = done.result()
        if args.windows:
            outputs = as_on_posix(name, outputs, failures)
        if args.update:
            write_expected(name, outputs)
            print("recorded %s: %d files, %d bytes" % (name, len(outputs),
                                                     sum(map(len, outputs.values()))))
            continue
        expected = read_expected(name)
        if expected is None:
            failures.append("%s: no recorded outputs (run with --update on purpose)" % name)
            continue
        compare(name, expected, outputs, failures, report, args.tolerant or args.windows)
        print("%s: %s" % (name, "ok" if not any(f.startswith(name + ":") for f in failures)
                          else "DIFFERS"))
    if args.update and len(chosen) == len(every) and os.path.isdir(EXPECTED):
        # A full update leaves no record of a case that is gone.
        names = {name for name, _ in every}
        for entry in sorted(os.listdir(EXPECTED)):
            if entry not in names and os.path.isdir(os.path.join(EXPECTED, entry)):
                shutil.rmtree(os.path.join(EXPECTED, entry))
                print("removed the record of %s, no case any more" % entry)
    if report:
        print("\n".join(report))
    if failures:
        print("\n".join(failures[:200]))
        if len(failures) > 200:
            print("... and %d more" % (len(failures) - 200))
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
