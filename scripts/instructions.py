#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Counts the instructions of the library's operations under callgrind and compares them with the stored counts.

Instructions repeat where times do not: more than 3 % above the stored count is a failure. The counts are those of one
compiler and one libc, which are stored with them, and the processor's own choice of string functions is switched off.
With another compiler or libc nothing is compared, and that is said. --renew stores what is counted now.

Exit status: 0 nothing grew, 1 something grew, 2 could not be counted.
"""
import argparse
import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile

SCENARIOS = ["lookup", "list", "compatible", "create", "rename", "notify", "type-file"]
GROWTH = 0.03
BASELINE = pathlib.Path(__file__).resolve().parent.parent / "bench/instructions.json"


def toolchain(build):
    cache = (build / "CMakeCache.txt").read_text()
    compiler = re.search(r"^CMAKE_CXX_COMPILER:[A-Z]+=(.*)$", cache, re.M).group(1)
    version = subprocess.run([compiler, "--version"], stdout=subprocess.PIPE, check=True, text=True).stdout
    return {"compiler": version.splitlines()[0].partition(" ")[2], "libc": " ".join(os.confstr("CS_GNU_LIBC_VERSION").split())}


def count(program, scenario):
    with tempfile.TemporaryDirectory() as folder:
        out = pathlib.Path(folder) / "callgrind.out"
        environment = dict(os.environ, GLIBC_TUNABLES="glibc.cpu.hwcaps=-AVX2,-AVX,-SSE4_2")
        done = subprocess.run(
            ["valgrind", "--tool=callgrind", "--collect-atstart=no", f"--callgrind-out-file={out}", program, scenario],
            stdout=subprocess.PIPE, stderr=subprocess.STDOUT, env=environment, check=False, text=True)
        if done.returncode != 0:
            print(done.stdout, file=sys.stderr)
            raise SystemExit(2)
        return int(re.search(r"^totals: (\d+)", out.read_text(), re.M).group(1))


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("build", type=pathlib.Path, help="folder of the bench build")
    parser.add_argument("--renew", action="store_true", help="store what is counted now")
    arguments = parser.parse_args()

    here = toolchain(arguments.build)
    counts = {name: count(arguments.build / "bin/count_once", name) for name in SCENARIOS}
    if arguments.renew:
        BASELINE.write_text(json.dumps({"toolchain": here, "instructions": counts}, indent=2) + "\n")
        print(f"instructions: stored in {BASELINE.name}")
        return 0

    stored = json.loads(BASELINE.read_text())
    comparable = stored["toolchain"] == here
    grown = 0
    for name, now in counts.items():
        before = stored["instructions"].get(name)
        if before is None:
            print(f"{name:<12} {now:>12}  not stored (renew with --renew)")
            grown += 1
            continue
        change = (now - before) / before
        verdict = "GREW" if change > GROWTH else "ok"
        print(f"{name:<12} {now:>12}  before {before:>12}  {change:+.2%}  {verdict if comparable else 'not compared'}")
        grown += comparable and change > GROWTH
    if not comparable:
        print(f"instructions: not compared: counted with {here}, stored with {stored['toolchain']}")
        return 0
    print(f"{grown} of {len(counts)} grew by more than {GROWTH:.0%}")
    return 1 if grown else 0


if __name__ == "__main__":
    sys.exit(main())
