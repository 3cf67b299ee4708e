#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""The names of real lists in projects: sample_names_test.py REELDB LIST_NAMES

For each list of the folder REELDB_SAMPLES: after every third reel was renamed, the same list and a version of it with
other bytes add no shot and no reel. LIST_NAMES, which is list_names.py, checks each cut list alone, and all together; with
REELDB_LONG_TESTS also all pairs. Exit code 77: skipped, with the reason.
"""
import itertools
import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile

reeldb, list_names = sys.argv[1:]
folder = os.environ.get("REELDB_SAMPLES")
lists = sorted(path for path in pathlib.Path(folder).iterdir() if path.suffix in (".edl", ".ale")) if folder else []
if not lists:
    print("skipped: REELDB_SAMPLES names no folder with lists")
    sys.exit(77)
work = tempfile.TemporaryDirectory()
facility = os.path.join(work.name, "facility")
subprocess.run([reeldb, "init", facility], check=True, capture_output=True)
numbers = itertools.count(1)
faults = []


def run(project, *words, codes=(0,)):
    done = subprocess.run([reeldb, "-C", facility, "-p", project, *words], capture_output=True, text=True)
    assert done.returncode in codes, (words, done.returncode, done.stderr)
    return done.stdout


def new_project():
    project = f"p{next(numbers)}"
    run("main", "project", "new", project)
    return project


def imported(project, *paths):
    return json.loads(run(project, "import", "--json", *map(str, paths), codes=(0, 4)))


def renamed(path):
    """Fails if a list whose reels were renamed brings anything new. Returns how many were renamed."""
    project = new_project()
    imported(project, path)
    reels = [reel["id"] for reel in json.loads(run(project, "list", "--json"))][::3]
    for number, reel in enumerate(reels):
        run(project, "rename", "--", reel, f"RENAMED {number}")
    other = pathlib.Path(work.name, path.name)
    other.write_bytes(path.read_bytes().rstrip(b"\x00\x1a\r\n") + b"\r\n\r\n")
    for again in (path, other):
        file = imported(project, again)["files"][0]
        if file["shots_added"] or file["created"]:
            faults.append(f"{path.name}: {file['shots_added']} shots, {len(file['created'])} reels new after renames")
    return len(reels)


def checked(paths):
    project = new_project()
    imported(project, *paths)
    export = os.path.join(work.name, "export.json")
    pathlib.Path(export).write_text(run(project, "export", "--json"), encoding="utf-8")
    done = subprocess.run([sys.executable, list_names, "check", export, *map(str, paths)], capture_output=True, text=True)
    counts = re.match(r"(\d+) clips found, (\d+) not found alone, (\d+) faults", done.stdout)
    if not counts or counts[3] != "0":
        faults.append(f"{[path.name for path in paths]}: {done.stdout}{done.stderr}")
    return (int(counts[1]), int(counts[2])) if counts else (0, 0)


renames = sum(renamed(path) for path in lists)
assert renames > len(lists), "hardly any reel was renamed"
cut_lists = [path for path in lists if path.suffix == ".edl"]
alone = [checked([path]) for path in cut_lists]
assert sum(found for found, _ in alone) > 9 * sum(lost for _, lost in alone), "hardly any clip was found"
checked(cut_lists)
pairs = list(itertools.combinations(cut_lists, 2)) if os.environ.get("REELDB_LONG_TESTS") else []
for pair in pairs:
    checked(pair)
print(f"{len(lists)} lists, {renames} reels renamed; {len(cut_lists)} cut lists alone, {len(pairs)} pairs, all together")
for fault in faults[:10]:
    print(fault)
sys.exit(1 if faults else 0)
