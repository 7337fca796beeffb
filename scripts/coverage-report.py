#!/usr/bin/python3
"""Prints line and branch coverage per folder of the library from gcovr's
JSON summary, flags folders under the goal, and names the copy, comparison
and record functions that no test ran (from gcovr's full JSON report).

    coverage-report.py summary.json full.json
"""
import json
import os
import re
import sys

LINE_GOAL = 90.0
BRANCH_GOAL = 80.0
# Functions whose silence hides a fault no other test shows: a copy that
# takes too much, a comparison that ignores a field, a record that is never
# written or read.
WATCHED = re.compile(r"::(Copy|operator=|operator==|operator!=|Serialize|PostSerialize)\(|operator>>\(")


def percent(covered, total):
    return 100.0 * covered / total if total else 100.0


def main():
    summary_path, full_path = sys.argv[1], sys.argv[2]
    with open(summary_path) as f:
        summary = json.load(f)

    folders = {}
    for entry in summary["files"]:
        folder = os.path.dirname(entry["filename"])
        acc = folders.setdefault(folder, [0, 0, 0, 0])
        acc[0] += entry["line_covered"]
        acc[1] += entry["line_total"]
        acc[2] += entry["branch_covered"]
        acc[3] += entry["branch_total"]

    print(f"{'folder':40} {'lines':>16} {'branches':>16}")
    for folder in sorted(folders):
        lc, lt, bc, bt = folders[folder]
        lp, bp = percent(lc, lt), percent(bc, bt)
        below = " <" if lp < LINE_GOAL or bp < BRANCH_GOAL else ""
        print(f"{folder:40} {lp:6.1f}% {lc:4}/{lt:<5} {bp:6.1f}% {bc:4}/{bt:<5}{below}")
    print(f"{'total':40} {summary['line_percent']:6.1f}% {'':10} {summary['branch_percent']:6.1f}%")
    print(f"(< marks a folder under {LINE_GOAL:.0f}% of lines or {BRANCH_GOAL:.0f}% of branches)")

    with open(full_path) as f:
        full = json.load(f)
    # A template has one entry per instantiation; its source ran when any
    # instantiation at that line did.
    places = {}
    for entry in full["files"]:
        for fn in entry.get("functions", []):
            if WATCHED.search(fn["name"]):
                key = (entry["file"], fn["lineno"])
                ran, name = places.get(key, (False, fn["name"]))
                places[key] = (ran or fn.get("execution_count", 0) > 0, name)
    silent = [f"{f}:{line}: {name}" for (f, line), (ran, name) in places.items() if not ran]
    if silent:
        print(f"\n{len(silent)} copy, comparison or record functions never ran:")
        for line in sorted(silent):
            print("  " + line)


if __name__ == "__main__":
    main()
