#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Reports what the tests of a coverage build ran, and fails where that is less than promised.

Promised are every line and every branch of the library (include/ and src/), and a share of the lines of the host
(standalone/), the readers of lists (lists/) and the command (cli/).
Exit status: 0 met, 1 not met or not measured.
"""
import argparse
import collections
import json
import pathlib
import subprocess
import sys

WHOLE = ("include", "src")
WITHOUT_CODE = {"src/reelrec/field_names.cpp"}  # names alone
LINES_FLOOR = {"base": 92.0, "standalone": 92.0, "lists": 92.0, "app": 92.0, "cli": 92.0}


def run(*command):
    done = subprocess.run([str(part) for part in command], stdout=subprocess.PIPE, check=False)
    if done.returncode != 0:
        raise SystemExit(f"coverage: {pathlib.Path(command[0]).name}: exit status {done.returncode}")
    return done.stdout.decode()


def objects_of(build):
    """Every program and shared library of the build."""
    found = []
    for folder in ("bin", "lib", "tests"):
        for path in sorted((build / folder).rglob("*")):
            if path.is_file() and not path.is_symlink():
                with path.open("rb") as file:
                    head = file.read(18)
                if head[:4] == b"\x7fELF" and head[16] in (2, 3):  # an executable or a shared object
                    found.append(path)
    return found


class Source:
    """What was run of one source file: counts by line, and the two counts of each branch by its place."""

    def __init__(self):
        self.lines = {}
        self.branches = collections.defaultdict(lambda: [0, 0])


def measure(build, root, tools):
    profiles = sorted((build / "profiles").glob("*.profraw"))
    if not profiles:
        raise SystemExit(f"coverage: {build / 'profiles'}: no profiles (run the tests of the coverage preset first)")
    merged = build / "tests.profdata"
    listing = build / "profiles.txt"
    listing.write_text("".join(f"{path}\n" for path in profiles))
    run(tools["profdata"], "merge", "-sparse", "-f", listing, "-o", merged)

    objects = objects_of(build)
    common = [tools["cov"], "export", f"-instr-profile={merged}", objects[0]]
    for path in objects[1:]:
        common += ["-object", path]
    def name_of(path):
        """The name below the root; None for a file of the system. A compiler cache makes paths relative to the build,
        and headers are known by the links through which a room sees them."""
        resolved = (build / path).resolve()
        return str(resolved.relative_to(root)) if resolved.is_relative_to(root) else None

    sources = collections.defaultdict(Source)
    name = None
    for line in run(*common[:2], "-format=lcov", *common[2:]).splitlines():
        tag, _, rest = line.partition(":")
        if tag == "SF":
            name = name_of(rest)
        elif tag == "DA":
            number, count = rest.split(",")[:2]
            lines = sources[name].lines  # those of None are not asked for
            lines[int(number)] = lines.get(int(number), 0) + int(count)
    for file in json.loads(run(*common[:2], "-format=text", *common[2:]))["data"][0]["files"]:
        source = sources[name_of(file["filename"])]
        for first, column, last, end, taken, not_taken, *_ in file["branches"]:
            counts = source.branches[(first, column, last, end)]
            counts[0] += taken
            counts[1] += not_taken
    sources.pop(None, None)
    for room in WHOLE + tuple(LINES_FLOOR):
        for path in sorted((root / room).rglob("*.cpp")):
            if str(path.relative_to(root)) not in sources.keys() | WITHOUT_CODE:
                raise SystemExit(f"coverage: {path.relative_to(root)}: not measured (no program of the build has it)")
    return sources


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("build", type=pathlib.Path, help="folder of the coverage build, its tests run")
    parser.add_argument("--llvm-cov", default="llvm-cov-14")
    parser.add_argument("--llvm-profdata", default="llvm-profdata-14")
    parser.add_argument("--json", type=pathlib.Path, help="write the figures to this file, too")
    arguments = parser.parse_args()

    root = pathlib.Path(__file__).resolve().parent.parent
    build = arguments.build.resolve()
    sources = measure(build, root, {"cov": arguments.llvm_cov, "profdata": arguments.llvm_profdata})
    failed = False
    figures = {}

    for room in WHOLE + tuple(LINES_FLOOR):
        lines = covered_lines = branches = covered_branches = 0
        missed = []
        for name, source in sorted(sources.items()):
            if not name.startswith(room + "/"):
                continue
            for number, count in sorted(source.lines.items()):
                lines += 1
                covered_lines += count > 0
                if count == 0:
                    missed.append(f"{name}:{number}: line never runs")
            for (number, column, _, _), counts in sorted(source.branches.items()):
                for taken, count in zip(("true", "false"), counts):
                    branches += 1
                    covered_branches += count > 0
                    if count == 0 and room in WHOLE:
                        missed.append(f"{name}:{number}:{column}: branch is never {taken}")
        if not lines and room != "include":  # whose headers hold declarations alone
            raise SystemExit(f"coverage: {room}: no lines measured")
        percent = 100.0 * covered_lines / lines if lines else 100.0
        branch_percent = 100.0 * covered_branches / branches if branches else 100.0
        print(f"{room:<12} lines {covered_lines}/{lines} ({percent:.2f} %), branches {covered_branches}/{branches} "
              f"({branch_percent:.2f} %)")
        figures[room] = {"lines": lines, "covered_lines": covered_lines, "branches": branches,
                         "covered_branches": covered_branches}
        if room in WHOLE:
            for text in missed:
                print(f"  {text}")
            failed = failed or bool(missed)
        elif percent < LINES_FLOOR[room]:
            print(f"  {room}: below the floor of {LINES_FLOOR[room]} % of lines")
            for text in missed:
                print(f"  {text}")
            failed = True

    if arguments.json:
        arguments.json.write_text(json.dumps(figures, indent=2) + "\n")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
