#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Runs clang-tidy over the sources of rooms, and over the headers they include: tidy.py BUILD [ROOM...]. Without a
name these are all rooms but tests and fuzz. A room without sources, such as base, is checked with those that include
its headers. A header that only another room includes is checked with a source of that room; one that no source includes
is an error.

BUILD is a folder that cmake has configured with the preset tidy; nothing needs to be built in it. A source that several
targets compile is checked once, and a finding in a header is printed once. .clang-tidy in the root has the checks, and
says what is left out.

A source without findings is checked again only after it, a header of it, its command or the checks have changed: BUILD
keeps what was read in tidy/.

Exit status: 0 without findings, 1 with findings, 2 when a room could not be checked.
"""
import argparse
import concurrent.futures
import hashlib
import json
import os
import pathlib
import re
import shlex
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
ROOMS = ("include", "src", "standalone", "base", "lists", "app", "cli", "tools", "bench", "examples")
FINDING = re.compile(r"^(?P<file>/.*?):(?P<line>\d+:\d+): (?:error|warning): (?P<text>.*)$")


def fail(message):
    print(f"tidy: {message}", file=sys.stderr)
    sys.exit(2)


def digest_of(texts):
    digest = hashlib.sha256()
    for text in texts:
        digest.update(len(text).to_bytes(8, "little") + text)
    return digest.hexdigest()


class Checker:
    """clang-tidy with one command for each source, and the sources it found clean before."""

    def __init__(self, build, tidy, compiler):
        self.tidy = tidy
        self.compiler = compiler
        self.folder = build / "tidy"
        self.kept = self.folder / "clean"
        self.kept.mkdir(parents=True, exist_ok=True)
        self.read = set()  # by the sources without findings
        try:
            commands = json.loads((build / "compile_commands.json").read_text())
        except FileNotFoundError:
            fail(f"{build}: no compile_commands.json (cmake --preset tidy)")
        self.commands = {}
        for command in commands:
            self.commands.setdefault(str(pathlib.Path(command["file"]).resolve()), command)
        (self.folder / "compile_commands.json").write_text(json.dumps(list(self.commands.values())))
        version = subprocess.run([tidy, "--version"], stdout=subprocess.PIPE, check=True).stdout
        checks = [path.read_bytes() for path in sorted(ROOT.rglob(".clang-tidy")) if "build" not in path.parts]
        self.common = digest_of([version, *checks])

    def sources_of(self, room):
        found = [name for name in self.commands if pathlib.Path(name).is_relative_to(ROOT / room)]
        missing = [path for kind in ("*.cpp", "*.c") for path in (ROOT / room).rglob(kind)
                   if str(path) not in self.commands]
        for path in sorted(missing):
            print(f"tidy: {path.relative_to(ROOT)}: no target compiles it, so it is not checked", file=sys.stderr)
        return sorted(found), not missing

    def state(self, source, read):
        """What the result for this source depends on, or nothing when a file is gone."""
        try:
            texts = [pathlib.Path(name).read_bytes() for name in read]
        except OSError:
            return None
        return digest_of([self.common.encode(), json.dumps(self.commands[source]).encode(), *texts])

    def record(self, source):
        return self.kept / hashlib.sha256(source.encode()).hexdigest()[:32]

    def is_known_clean(self, source):
        try:
            kept = json.loads(self.record(source).read_text())
        except (OSError, ValueError):
            return False
        if kept["state"] != self.state(source, kept["read"]):
            return False
        self.note_read(source, kept["read"])
        return True

    def note_read(self, source, names):
        folder = pathlib.Path(self.commands[source]["directory"])
        self.read.update((folder / name).resolve() for name in names)

    def unread_headers(self, room):
        return sorted(path.relative_to(ROOT) for path in (ROOT / room).rglob("*.h") if path.resolve() not in self.read)

    def includer(self, header):
        """A source of any room but the tests that names the header, or nothing."""
        line = re.compile(rf'^#include "(.*/)?{re.escape(header.name)}"', re.MULTILINE)
        for source in sorted(self.commands):
            if pathlib.Path(source).is_relative_to(ROOT / "tests"):
                continue
            if line.search(pathlib.Path(source).read_text(errors="replace")):
                return source
        return None

    def keep_clean(self, source):
        command = self.commands[source]
        words = shlex.split(command["command"])
        at = words.index("-o")
        del words[at:at + 2]
        listed = subprocess.run([self.compiler, *words[1:], "-M"], cwd=command["directory"], stdout=subprocess.PIPE,
                                stderr=subprocess.DEVNULL, check=False)
        if listed.returncode != 0:
            return
        names = listed.stdout.decode().split(":", 1)[1].replace("\\\n", " ").split()
        self.record(source).write_text(json.dumps({"state": self.state(source, names), "read": names}))
        self.note_read(source, names)

    def check(self, source):
        """The findings in one source and its headers; nothing when clang-tidy did not get through."""
        if self.is_known_clean(source):
            return set()
        done = subprocess.run([self.tidy, "--quiet", "-p", str(self.folder), source], stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, check=False)
        findings = set()
        for line in done.stdout.decode().splitlines():
            found = FINDING.match(line)
            if found:
                path = pathlib.Path(found["file"]).resolve()
                name = path.relative_to(ROOT) if path.is_relative_to(ROOT) else path
                findings.add(f"{name}:{found['line']}: {found['text']}")
        if done.returncode != 0 and not findings:
            print(done.stdout.decode(), file=sys.stderr)
            return None
        if not findings:
            self.keep_clean(source)
        return findings


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("build", type=pathlib.Path, help="folder configured with the preset tidy")
    parser.add_argument("rooms", nargs="*", help="rooms to check")
    parser.add_argument("--jobs", type=int, default=len(os.sched_getaffinity(0)), help="sources at a time")
    parser.add_argument("--clang-tidy", default="clang-tidy-14")
    parser.add_argument("--compiler", default="clang++-14", help="lists the headers that a source includes")
    arguments = parser.parse_args()

    checker = Checker(arguments.build.resolve(), arguments.clang_tidy, arguments.compiler)
    complete = True
    sources = []
    rooms = arguments.rooms or ROOMS
    for room in rooms:
        if not (ROOT / room).is_dir():
            fail(f"{room}: no such room")
        found, all_found = checker.sources_of(room)
        complete = complete and all_found
        sources += found

    findings = set()

    def check(wanted):
        passed = True
        with concurrent.futures.ThreadPoolExecutor(arguments.jobs) as pool:
            for source, found in zip(wanted, pool.map(checker.check, wanted)):
                if found is None:
                    print(f"tidy: {source}: clang-tidy failed", file=sys.stderr)
                    passed = False
                    continue
                for finding in sorted(found - findings):
                    print(finding, flush=True)
                findings.update(found)
        return passed

    def unread_headers():
        return [header for room in rooms for header in checker.unread_headers(room)]

    complete = check(sources) and complete
    if complete and not findings:
        others = sorted({checker.includer(header) for header in unread_headers()} - {None})
        complete = check(others)
        sources += others
    if complete and not findings:
        for header in unread_headers():
            print(f"tidy: {header}: no checked source includes it, so it is not checked", file=sys.stderr)
            complete = False
    print(f"tidy: {len(sources)} sources and the headers they include, {len(findings)} findings")
    if not sources or not complete:
        return 2
    return 1 if findings else 0


if __name__ == "__main__":
    sys.exit(main())
