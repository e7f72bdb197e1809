#!/usr/bin/env python3
"""Prints what the tests reach of app/, ext/ and device/: lines and branches of each file, then
every line and branch that is not reached. Fails when one of these is not in the list of those that
cannot be, or the list has one that is reached."""

import argparse
import collections
import concurrent.futures
import json
import os
import pathlib
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
LISTED = "tests/unreached.txt"
COUNTED = ("app/", "ext/", "device/")
# Objects whose counters count: not the simulated modem's, which uses device/ too.
OBJECTS = ("CMakeFiles/*/app", "CMakeFiles/*/ext", "tests/unit/CMakeFiles/*")
COLUMNS = "{:<34}{:>7} {:>7} {:>7}   {:>8} {:>7} {:>7}"


def counters_of(notes, build):
    """What gcov says of an object: pairs of a file of ours and one of its lines."""
    run = subprocess.run(
        ["gcov", "--branch-probabilities", "--json-format", "--stdout", notes],
        cwd=build, stdout=subprocess.PIPE, stderr=subprocess.PIPE, check=True)
    found = []
    for file in json.loads(run.stdout)["files"]:
        name = os.path.relpath(os.path.join(build, file["file"]), ROOT)
        if name.startswith(COUNTED):
            found += [(name, line) for line in file["lines"]]
    return found


def collect(build):
    """Counts of lines and of branches, summed over all objects and instantiations.

    A call that can throw has a branch for that, which no line of the source shows: left out."""
    lines = collections.Counter()  # (file, number) -> count
    branches = collections.Counter()  # (file, number, branches in that function, index) -> count
    notes = sorted(path for where in OBJECTS for path in build.glob(f"{where}/*.gcno"))
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as threads:
        for found in threads.map(lambda path: counters_of(path, build), notes):
            for file, line in found:
                lines[file, line["line_number"]] += line["count"]
                shown = [branch["count"] for branch in line["branches"] if not branch["throw"]]
                if len(shown) > 1:
                    for index, count in enumerate(shown):
                        branches[file, line["line_number"], len(shown), index] += count
    return lines, branches


def read_list():
    """FILE: TEXT, then the reason, indented. TEXT stands somewhere in the line not reached."""
    entries = []
    for line in (ROOT / LISTED).read_text().splitlines():
        if line and not line.startswith(("#", " ")):
            file, _, text = line.partition(": ")
            entries.append((file, text))
    return entries


def percent(reached, of):
    return f"{100 * reached / of:.1f}%" if of else "-"


def print_figures(name, figures):
    lines, reached, branches, taken = figures
    print(COLUMNS.format(name, lines, reached, percent(reached, lines), branches, taken,
                         percent(taken, branches)))  # fmt: skip


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("build", help="build directory of the preset coverage, the tests run")
    build = pathlib.Path(parser.parse_args().build).resolve()
    lines, branches = collect(build)
    sources = {file: (ROOT / file).read_text().splitlines() for file, _ in lines}
    figures = collections.defaultdict(lambda: [0, 0, 0, 0])
    missing = {}  # (file, number) -> what is not reached
    for (file, number), count in lines.items():
        figures[file][0] += 1
        figures[file][1] += count > 0
        if count == 0:
            missing[file, number] = "line"
    for (file, number, _, _), count in branches.items():
        figures[file][2] += 1
        figures[file][3] += count > 0
        if count == 0:
            missing.setdefault((file, number), "branch")
    print(COLUMNS.format("", "lines", "reached", "", "branches", "reached", ""))
    for file in sorted(figures):
        print_figures(file, figures[file])
    print_figures("all", [sum(column) for column in zip(*figures.values())])

    entries = read_list()
    used = set()
    texts = {True: [], False: []}
    for (file, number), what in sorted(missing.items()):
        text = sources[file][number - 1].strip()
        known = [entry for entry in entries if entry[0] == file and entry[1] in text]
        used.update(known)
        texts[bool(known)].append(f"  {file}:{number}: {what}: {text}")
    stale = [f"  {file}: {text}" for file, text in entries if (file, text) not in used]
    for heading, shown in (
        (f"Not reached, for the reasons in {LISTED}", texts[True]),
        (f"Not reached, and not in {LISTED}", texts[False]),
        (f"Reached, or gone, but in {LISTED}", stale),
    ):
        if shown:
            print(f"\n{heading}:", *shown, sep="\n")
    return 1 if texts[False] or stale else 0


if __name__ == "__main__":
    sys.exit(main())
