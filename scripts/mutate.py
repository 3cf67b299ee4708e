#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Changes the library or its host in one place at a time and asks the tests whether they notice.

A mutant is the program with one operator, constant, condition, statement or string changed, with two statements
swapped, or with one call made twice. It is built in a copy of the tree (build/mutate), and the tests of the folder that
mirrors its source are run on it, those of the file itself first, until one fails: the mutant is killed. One that passes
them all is run on the host contract and on the tests in which everything beneath it fails in turn: the calls of the
library, the memory of the host. What passes these, too, survives: a test is missing, or the change makes no difference.
The latter are listed in tests/mutants/equivalent.txt, one per line, and are not run:

    src/room/file.cpp | old -> new | the text of the source line | why nobody can tell

Where a file has the same change on the same text several times, "#2" behind the change means the second. An entry that
no longer stands for any mutant is an error.

A mutant that does not compile is none and does not count. Tests that take longer than five times what they took on
the unchanged library, and at least ten seconds, have noticed, too.

Exit status: 0 when at least --floor percent were killed, 1 when fewer were, 2 when nothing could be said. The floor is
100: what survives and is not listed is a test that is missing.

    scripts/mutate.py                                   every mutant of the library: takes an hour or two
    MUTANTS=200 SEED=1 scripts/mutate.py                a sample of 200, the same one each time
    scripts/mutate.py src/reeldb/renaming.cpp           of one file
    scripts/mutate.py standalone/model standalone/store of these folders: the host is changed only when it is named
    scripts/mutate.py --kinds swap,double,choice src    with these kinds of changes alone
    scripts/mutate.py --list src/reeldb/renaming.cpp    what would be changed, without running anything
"""
import argparse
import collections
import concurrent.futures
import dataclasses
import filecmp
import itertools
import json
import os
import pathlib
import random
import re
import resource
import shlex
import shutil
import signal
import subprocess
import sys
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent
LISTED = "tests/mutants/equivalent.txt"
LIBRARY = ("src/*/*.cpp", "src/*/*.h", "include/*.h")
HOST = ("standalone/model/*.cpp", "standalone/model/*.h", "standalone/store/*.cpp", "standalone/store/*.h")
KINDS = ("operator", "constant", "condition", "choice", "remove", "swap", "double")

# Tests of a folder of sources that does not mirror them by name.
ROOMS = {"host": ("standalone/values", "abi"), "include": ("abi", "reeldb", "reelrec")}
# What happens while the library is loaded is tried where programs are loaded.
ALSO = {"src/reeldb/lifecycle.cpp": ("reeltypes",)}
MEMORY = 8 << 30  # what a test program may ask for: a mutant may ask without end

# Run on what all tests of its folder have passed.
LAST = (("host_contract", "*"),)
LAST_OF_HOST = (("reeldb_test_faults", "HostMemory.*"),)
LAST_OF_LIBRARY = (("reeldb_test_faults", "Every/*:Operations.*"),)


def fail(message):
    print(f"mutate: {message}", file=sys.stderr)
    sys.exit(2)


# --- Finding what can be changed ---------------------------------------------------------------------------------

TOKENS = re.compile(
    r"""
      (?P<comment> //[^\n]* | /\*.*?\*/ )
    | (?P<line> ^[ \t]*\#(?:[^\n\\]|\\.|\\\n)* )
    | (?P<raw> (?:L|u8|u|U)?R"(?P<mark>[^(]*)\(.*?\)(?P=mark)" )
    | (?P<string> (?:L|u8|u|U)?"(?:[^"\\\n]|\\.)*" )
    | (?P<character> (?:L|u8|u|U)?'(?:[^'\\\n]|\\.)+' )
    | (?P<number> (?:0[xX][0-9a-fA-F']+ | \d[\d']*(?:\.\d*)?(?:[eE][+-]?\d+)?)[a-zA-Z]* )
    | (?P<word> [A-Za-z_]\w* )
    | (?P<sign> \.\.\. | <=> | <<= | >>= | ->\* | :: | -> | \+\+ | -- | && | \|\| | [<>=!+\-*/%&|^]= | << | >>
              | [][{}();:,.?~!<>=+\-*/%&|^@] )
    | (?P<space> \s+ )
    """,
    re.VERBOSE | re.DOTALL | re.MULTILINE,
)

SWAPS = {
    "==": ("!=",), "!=": ("==",), "<": ("<=", ">="), "<=": ("<", ">"), ">": (">=", "<="), ">=": (">", "<"),
    "&&": ("||",), "||": ("&&",), "+": ("-",), "-": ("+",), "*": ("/",), "/": ("*",), "%": ("*",), "&": ("|",),
    "|": ("&",), "++": ("--",), "--": ("++",), "+=": ("-=",), "-=": ("+=",),
}
BRACKETS = {"(": ")", "[": "]", "{": "}"}
# Statements of these are changed in other ways, or not at all.
KEPT = {"if", "for", "while", "else", "do", "switch", "case", "default", "try", "catch", "using", "static_assert",
        "typedef", "public", "private", "protected", "template", "friend", "namespace", "class", "struct", "enum",
        "extern", "static", "virtual", "explicit", "inline"}
# Nothing behind these is reached.
LEAVING = {"return", "throw", "break", "continue", "goto", "co_return"}
ASSIGNMENTS = {"=", "+=", "-=", "*=", "/=", "%=", "&=", "|=", "^=", "<<=", ">>="}
PASSIVE = {"__attribute__", "static_assert", "alignas", "sizeof", "noexcept"}
SCOPES = {"namespace", "class", "struct", "enum", "union", "extern"}


@dataclasses.dataclass
class Token:
    kind: str
    text: str
    start: int
    spaced: bool  # whether there is space before it

    @property
    def end(self):
        return self.start + len(self.text)


@dataclasses.dataclass(frozen=True)
class Mutant:
    file: str
    line: int
    text: str  # of the source line
    kind: str
    change: str
    start: int
    end: int
    replacement: str

    def apply(self, texts):
        source = texts[self.file]
        return source[: self.start] + self.replacement + source[self.end:]

    def __str__(self):
        return f"{self.file}:{self.line}: {self.change}\n    {self.text}"


def tokens_of(source, name):
    tokens = []
    at = 0
    spaced = True
    while at < len(source):
        found = TOKENS.match(source, at)
        if not found:
            fail(f"{name}: cannot be read at {source[at:at + 20]!r}")
        if found.lastgroup in ("comment", "line", "space"):
            spaced = True
        else:
            tokens.append(Token(found.lastgroup, found.group(), at, spaced))
            spaced = False
        at = found.end()
    return tokens


class Source:
    """The tokens of one file, and the changes that can be made to them."""

    def __init__(self, name, text):
        self.name = name
        self.source = text
        self.tokens = tokens_of(text, name)
        self.partner = self.pair_brackets()
        self.passive = self.find_passive()
        self.found = []
        self.kind = None  # of the changes that are being looked for

    def pair_brackets(self):
        partner, opened = {}, []
        for i, token in enumerate(self.tokens):
            if token.text in BRACKETS and token.kind == "sign":
                opened.append(i)
            elif token.text in BRACKETS.values() and token.kind == "sign" and opened:
                partner[opened[-1]] = i
                partner[i] = opened.pop()
        return partner

    def text(self, i):
        return self.tokens[i].text if 0 <= i < len(self.tokens) else ""

    def find_passive(self):
        """What is no code that runs: attributes, assertions of the compiler, what is passed on to it."""
        passive = set()
        for i, token in enumerate(self.tokens):
            if token.text in PASSIVE and self.text(i + 1) == "(":
                passive.update(range(i, self.partner.get(i + 1, i + 1) + 1))
            if token.text == "[" and self.text(i + 1) == "[":
                passive.update(range(i, self.partner.get(i, i) + 1))
            if token.text == "extern" and i + 1 < len(self.tokens) and self.tokens[i + 1].kind == "string":
                passive.add(i + 1)
        return passive

    # --- Recording

    def change(self, first, last, replacement, old=None, new=None):
        """The tokens from first to last become the replacement."""
        start, end = self.tokens[first].start, self.tokens[last].end
        before = re.sub(r"\s+", " ", self.source[start:end] if old is None else old)
        after = re.sub(r"\s+", " ", replacement if new is None else new)
        line = self.source.count("\n", 0, start) + 1
        text = self.source.splitlines()[line - 1].strip()
        self.found.append(Mutant(self.name, line, text, self.kind, f"{before} -> {after}", start, end, replacement))

    def mutants(self):
        for i in range(len(self.tokens)):
            if i in self.passive:
                continue
            for self.kind in ("operator", "constant", "condition", "choice"):
                getattr(self, self.kind)(i)
        self.statements()
        ordered = sorted(self.found, key=lambda m: (m.start, m.end, m.change))
        seen = collections.Counter()
        numbered = []
        for mutant in ordered:
            key = (mutant.text, mutant.change)
            seen[key] += 1
            if seen[key] > 1:
                mutant = dataclasses.replace(mutant, change=f"{mutant.change} #{seen[key]}")
            numbered.append(mutant)
        return numbered

    # --- Operators and constants

    def operator(self, i):
        token = self.tokens[i]
        if token.kind != "sign" or self.text(i - 1) == "operator":
            return
        following = self.tokens[i + 1] if i + 1 < len(self.tokens) else None
        if token.text == "!" and following and not following.spaced:
            self.change(i, i, "", new="(nothing)")
        elif token.text == "-" and following and following.kind == "number" and not following.spaced:
            self.change(i, i, "", new="(nothing)")
        elif token.text in ("++", "--"):
            self.change(i, i, SWAPS[token.text][0])
        elif token.text in SWAPS and token.spaced and following and following.spaced:
            # Types are written without space on one side at least: `T* p`, `T&& r`, `vector<T>`.
            for other in SWAPS[token.text]:
                self.change(i, i, other)

    def constant(self, i):
        token = self.tokens[i]
        if token.kind == "number":
            self.number(i)
        elif token.kind == "string":
            prefix, quote, rest = token.text.partition('"')
            self.change(i, i, f'{prefix}{quote}{rest[:-1]}~"')
            if rest != '"':
                self.change(i, i, f'{prefix}""')
        elif token.kind == "character":
            self.change(i, i, "'~'" if token.text != "'~'" else "'!'")
        elif token.text == "true":
            self.change(i, i, "false")
        elif token.text == "false":
            self.change(i, i, "true")

    def number(self, i):
        text = self.tokens[i].text
        if self.text(i - 1) == "=" and self.text(i - 2) in (")", "const", "override"):
            return  # a pure virtual function
        digits = re.match(r"0[xX][0-9a-fA-F']+|[\d']+", text).group()
        suffix = text[len(digits):]
        value = int(digits.replace("'", ""), 0 if digits[:2] in ("0x", "0X") else 10)
        self.change(i, i, f"{value + 1}{suffix}")
        if value > 1:
            self.change(i, i, f"0{suffix}")

    # --- Conditions and choices

    def condition(self, i):
        word = self.text(i)
        if self.tokens[i].kind != "word" or word not in ("if", "while", "for"):
            return
        opening = i + 1 if self.text(i + 1) == "(" else i + 2  # if constexpr
        if self.text(opening) != "(":
            return
        first, last = opening + 1, self.partner[opening] - 1
        parts = [first]
        for j in self.level(first, last):
            if self.text(j) == ";":
                parts.append(j + 1)
        if word == "for":
            if len(parts) != 3 or self.text(parts[1]) == ";":
                return
            first, last = parts[1], parts[2] - 2
        elif len(parts) == 2:
            first = parts[1]
        declares = any(self.text(j) == "=" for j in self.level(first, last))
        kept = self.source[self.tokens[first].start: self.tokens[last].end] + "; " if declares else ""
        self.change(first, last, f"{kept}false", new="false")
        if word == "if":
            self.change(first, last, f"{kept}true", new="true")

    def level(self, first, last):
        """The tokens from first to last that no bracket between them encloses."""
        i = first
        while i <= last:
            yield i
            i = self.partner[i] + 1 if self.text(i) in BRACKETS and i in self.partner else i + 1

    def choice(self, i):
        if self.text(i) != "?":
            return
        colon = end = None
        depth = 0
        for j in self.level(i + 1, len(self.tokens) - 1):
            text = self.text(j)
            depth += text == "?"
            if text == ":" and depth == 0 and colon is None:
                colon = j
            elif text == ":":
                depth -= 1
            if text in (";", ",", ")", "}", "]"):
                end = j
                break
        if colon is None or end is None:
            return
        yes = self.text_of(i + 1, colon - 1)
        no = self.text_of(colon + 1, end - 1)
        if "?" not in no:
            self.change(i + 1, end - 1, f"{no} : {yes}")
        # The condition is still asked: what it does besides is not what is changed.
        self.change(i + 1, end - 1, f"{yes} : {yes}")
        self.change(i + 1, end - 1, f"{no} : {no}")

    def text_of(self, first, last):
        return self.source[self.tokens[first].start: self.tokens[last].end]

    # --- Statements

    def statements(self):
        """Walks the bodies of functions: takes out a statement, makes its call twice, puts it behind the next one."""
        for i, token in enumerate(self.tokens):
            if token.text == "{" and token.kind == "sign" and self.is_body(i):
                self.body(i + 1, self.partner.get(i, i))

    def is_body(self, i):
        before = self.text(i - 1)
        if before in (")", "else", "do", "try", "const", "noexcept", "override"):
            return not self.opens_scope(i)
        return before in ("{", "}", ";", ":", "]") and not self.opens_scope(i) and self.inside_body(i)

    def inside_body(self, i):
        return any(self.text(j) == "{" and j < i < self.partner.get(j, -1) and self.is_body(j) for j in range(i))

    def opens_scope(self, i):
        j = i - 1
        while j >= 0 and self.text(j) not in (";", "{", "}"):
            if self.text(j) in SCOPES and self.tokens[j].kind == "word":
                return True
            j = self.partner[j] - 1 if self.text(j) in (")", "]") and j in self.partner else j - 1
        return False

    def body(self, first, end):
        i = first
        while i < end:
            i = self.statement(i, end)

    def statement(self, i, end):
        """Handles the statement that begins at i; answers where the next one does."""
        word = self.text(i)
        if word == "{":
            return self.partner[i] + 1  # a body of its own
        if word in ("if", "for", "while", "switch", "catch"):
            opening = i + 1 if self.text(i + 1) == "(" else i + 2
            return self.partner.get(opening, opening) + 1
        if word in ("else", "do", "try"):
            return i + 1
        if word in ("case", "default"):
            while i < end and self.text(i) != ":":
                i += 1
            return i + 1
        last = self.end_of(i, end)
        if self.is_plain(i, last, end):
            self.kind = "remove"
            self.take_out(i, last)
            self.kind = "double"
            self.make_twice(i, last)
            self.kind = "swap"
            self.swap_with_next(i, last, end)
        return last + 1

    def end_of(self, i, end):
        return next((j for j in self.level(i, end) if self.text(j) == ";"), end)

    def is_plain(self, first, last, end):
        """Whether this is a statement by itself, which holds no other but in lambdas."""
        return last < end and first < last and self.text(first) not in KEPT | {"{"} and first not in self.passive

    def make_twice(self, first, last):
        if self.text(first) in LEAVING or self.text(last - 1) != ")" or self.declared(first, last):
            return
        if any(self.text(j) in ASSIGNMENTS for j in self.level(first, last)):
            return
        call = self.text_of(first, last)
        self.change(first, last, f"{{ {call} {call} }}", old="one call", new="two")

    def swap_with_next(self, first, last, end):
        if self.text(first - 1) not in (";", "{", "}", ":"):
            return  # it depends on a condition, which the next one does not
        following = last + 1
        final = self.end_of(following, end) if following < end else end
        if not self.is_plain(following, final, end):
            return
        if self.text(first) in LEAVING or self.text(following) in LEAVING:
            return  # as good as taking the other one out
        name = self.declared(first, last)
        if name and any(self.tokens[j].text == name for j in range(following, final)):
            return
        between = self.source[self.tokens[last].end: self.tokens[following].start]
        swapped = self.text_of(following, final) + between + self.text_of(first, last)
        self.change(first, final, swapped, old="this, next", new="next, this")

    def take_out(self, first, last):
        if self.text(first) == "return":
            if self.text(first + 1) not in (";", "{", "true", "false", "nullptr") and last > first + 1:
                if not (last == first + 2 and self.tokens[first + 1].kind == "number"):
                    self.change(first, last, "return {};")
            elif last == first + 1:
                self.change(first, last, ";", new="(nothing)")
            return
        name = self.declared(first, last)
        if name and sum(token.text == name for token in self.tokens) > 1:
            return
        self.change(first, last, ";", new="(nothing)")

    def declared(self, first, last):
        """The name that the statement declares, or nothing."""
        name = None
        for j in self.level(first, last):
            token, after = self.tokens[j], self.text(j + 1)
            if token.text in ("=", ".", "->") or (token.text == "(" and name is None):
                break
            before = self.tokens[j - 1]
            follows_type = j > first and (before.kind == "word" or before.text in (">", ">>", "*", "&"))
            if token.kind == "word" and follows_type and before.text not in ("return", "throw", "operator", "new"):
                if after in ("=", "(", "{", ";", "["):
                    name = token.text
                    break
        return name


def all_mutants(texts):
    """The mutants of these files, given as name to text."""
    return [mutant for name, text in texts.items() for mutant in Source(name, text).mutants()]


def read_listed():
    """The mutants that make no difference, with the line of the list that says so."""
    listed = {}
    for number, line in enumerate((ROOT / LISTED).read_text().splitlines(), 1):
        if not line.strip() or line.startswith("#"):
            continue
        parts = line.split(" | ", 2)
        parts[2:] = parts[2].rsplit(" | ", 1) if len(parts) == 3 else []
        if len(parts) != 4 or not all(part.strip() for part in parts):
            fail(f"{LISTED}:{number}: not 'file | old -> new | text | reason'")
        listed[tuple(part.strip() for part in parts[:3])] = number
    return listed


def key_of(mutant):
    return (mutant.file, mutant.change, mutant.text)


# --- Building ----------------------------------------------------------------------------------------------------


class Workshop:
    """The copy of the tree, its build, and the library in it that the tests load."""

    def __init__(self, folder, jobs, texts):
        self.texts = texts  # of the sources, as the mutants are counted in them
        self.tree = folder / "tree"
        self.out = folder / "out"
        self.mutants = folder / "mutants"
        self.jobs = jobs
        for path in (self.tree, self.out, self.mutants, folder / "tmp"):
            path.mkdir(parents=True, exist_ok=True)
        self.tmp = folder / "tmp"
        self.copy_tree()
        self.configure()
        self.programs = self.find_programs()

    def copy_tree(self):
        """Makes the copy equal to the tree. What has not changed keeps its time, so that it is not built again."""
        wanted = set()
        for path in sorted(ROOT.rglob("*")):
            name = path.relative_to(ROOT)
            if name.parts[0] in ("build", ".git") or "__pycache__" in name.parts:
                continue
            wanted.add(name)
            copy = self.tree / name
            if path.is_symlink():
                if not copy.is_symlink():
                    copy.symlink_to(os.readlink(path))
            elif path.is_dir():
                copy.mkdir(exist_ok=True)
            elif not copy.exists() or not filecmp.cmp(path, copy, shallow=False):
                shutil.copyfile(path, copy)
                shutil.copymode(path, copy)
        for copy in sorted(self.tree.rglob("*"), reverse=True):
            if copy.relative_to(self.tree) not in wanted:
                copy.rmdir() if copy.is_dir() and not copy.is_symlink() else copy.unlink()

    def configure(self):
        query = self.out / ".cmake/api/v1/query/codemodel-v2"
        query.parent.mkdir(parents=True, exist_ok=True)
        query.touch()
        # Not optimised: what counts is how soon a mutant is built.
        self.run("cmake", "-S", self.tree, "-B", self.out, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Mutants",
                 "-DCMAKE_CXX_FLAGS=-O0", "-DCMAKE_C_FLAGS=-O0", "-DREELDB_TESTS=ON",
                 "-DCMAKE_LINK_DEPENDS_NO_SHARED=ON")

    def run(self, *command):
        done = subprocess.run([str(part) for part in command], stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                              check=False)
        if done.returncode != 0:
            fail(f"{' '.join(str(part) for part in command)}: exit status {done.returncode}\n{done.stdout.decode()}")
        return done.stdout.decode()

    def build(self, *targets):
        self.run("ninja", "-C", self.out, "-j", self.jobs, *targets)

    def try_build(self, *targets):
        done = subprocess.run(["ninja", "-C", str(self.out), "-j", str(self.jobs), *targets],
                              stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=False)
        return done.returncode == 0

    def find_programs(self):
        """The test programs: name of the target to its file and its sources."""
        replies = self.out / ".cmake/api/v1/reply"
        programs = {}
        for index in sorted(replies.glob("target-*.json")):
            target = json.loads(index.read_text())
            sources = [source["path"] for source in target.get("sources", [])]
            if target["type"] == "EXECUTABLE" and any(re.search(r"_(test|contract)\.cpp$", name) for name in sources):
                programs[target["name"]] = (self.out / target["artifacts"][0]["path"], sources)
        return programs

    # --- One mutant of a .cpp, beside the build

    def commands(self):
        """How the library's sources are compiled, by name, and how they are linked."""
        lines = self.run("ninja", "-C", self.out, "-t", "commands", "reeldb").splitlines()
        compiling = {}
        linking = None
        for line in lines:
            words = shlex.split(line)
            if "-c" in words:
                source = pathlib.Path(words[words.index("-c") + 1])
                if source.is_relative_to(self.tree / "src"):
                    compiling[str(source.relative_to(self.tree))] = words
            elif "-shared" in words and "libreeldb" in line:
                linking = line
        if not compiling or not linking:
            fail("the library's commands were not found in its build")
        return compiling, linking

    def make(self, mutant, number, commands):
        """Builds the library with this change; its file, or nothing when it does not compile."""
        compiling, linking = commands
        words = list(compiling[mutant.file])
        source = self.mutants / f"{number}.cpp"
        made = self.mutants / f"{number}.o"
        library = self.mutants / f"{number}.so"
        source.write_text(mutant.apply(self.texts))
        original = words[words.index("-o") + 1]
        words[words.index("-o") + 1] = str(made)
        words[words.index("-c") + 1] = str(source)
        for option in ("-MT", "-MF"):
            if option in words:
                at = words.index(option)
                del words[at:at + 2]
        words = [word for word in words if word not in ("-MD", "-MMD")]
        quiet = {"stdout": subprocess.DEVNULL, "stderr": subprocess.DEVNULL, "cwd": self.out, "check": False}
        built = subprocess.run(words, **quiet).returncode == 0
        if built:
            command = linking.replace(f" {original} ", f" {shlex.quote(str(made))} ")
            command = re.sub(r"-o \S*libreeldb\S*", f"-o {shlex.quote(str(library))}", command)
            built = subprocess.run(command, shell=True, **quiet).returncode == 0
        source.unlink()
        made.unlink(missing_ok=True)
        if not built:
            library.unlink(missing_ok=True)
        return library if built else None

    def library(self):
        return next(path for path in (self.out / "lib").glob("libreeldb.so.*") if not path.is_symlink())


# --- Testing -----------------------------------------------------------------------------------------------------


@dataclasses.dataclass
class Stage:
    """One run of a test program."""

    program: str
    filter: str
    limit: float = 0.0


def suites_in(path):
    """The suites of the cases in a test file, as a filter takes them."""
    names = dict.fromkeys(re.findall(r"^TEST(?:_[FP])?\(\s*(\w+)\s*,", path.read_text(), re.MULTILINE))
    return ":".join(pattern for name in names for pattern in (f"{name}.*", f"*/{name}.*"))


class Tests:
    """Which tests belong to a source, and whether they pass."""

    def __init__(self, workshop):
        self.workshop = workshop
        self.taken = {}

    def rooms_of(self, name):
        parts = pathlib.PurePath(name).parts
        room = {"include": "include", "standalone": "/".join(parts[:2])}.get(parts[0], parts[1])
        return ROOMS.get(room, (room,)) + ALSO.get(name, ())

    def programs_of(self, name):
        """Test programs of the source, those with the tests of the very file first."""
        stem = pathlib.PurePath(name).name.split(".")[0]
        own, others = [], []
        for program, (_, sources) in sorted(self.workshop.programs.items()):
            for room in self.rooms_of(name):
                # Programs that only borrow helpers of the folder do not count.
                if not any(re.fullmatch(f"tests/{room}/[^/]+_test\\.cpp", source) for source in sources):
                    continue
                has_own = any(pathlib.PurePath(source).name == f"{stem}_test.cpp" for source in sources)
                (own if has_own else others).append(program)
                break
        return own, others

    def stages(self, name):
        stem = pathlib.PurePath(name).name.split(".")[0]
        own, others = self.programs_of(name)
        stages = []
        for program in own:
            sources = self.workshop.programs[program][1]
            test = next(s for s in sources if pathlib.PurePath(s).name == f"{stem}_test.cpp")
            suites = suites_in(self.workshop.tree / test)
            stages += [Stage(program, suites), Stage(program, f"*-{suites}")]
        return stages + [Stage(program, "*") for program in others]

    def last_stages(self, name):
        last = LAST + (LAST_OF_HOST if name.startswith("standalone/") else LAST_OF_LIBRARY)
        return [Stage(program, suites) for program, suites in last]

    def targets(self, names):
        """The test programs of these sources."""
        return sorted({stage.program for name in names for stage in self.stages(name) + self.last_stages(name)})

    def passes(self, stage, limit):
        """Whether the tests of a stage pass in this time."""
        program = self.workshop.programs[stage.program][0]
        command = [str(program), f"--gtest_filter={stage.filter}", "--gtest_fail_fast", "--gtest_brief=1"]
        environment = dict(os.environ, TMPDIR=str(self.workshop.tmp))
        with subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                              cwd=self.workshop.tmp, env=environment, start_new_session=True) as process:
            try:
                resource.prlimit(process.pid, resource.RLIMIT_CORE, (0, 0))
                resource.prlimit(process.pid, resource.RLIMIT_AS, (MEMORY, MEMORY))
                return process.wait(timeout=limit) == 0
            except subprocess.TimeoutExpired:
                return False
            except ProcessLookupError:
                return process.wait() == 0  # it was done before it could be limited
            finally:
                try:
                    os.killpg(process.pid, signal.SIGKILL)  # and whatever it started
                except ProcessLookupError:
                    pass

    def measure(self, names):
        """Runs every stage on the unchanged library. It must pass; how long it takes decides what is too long."""
        for name in names:
            for stage in self.stages(name) + self.last_stages(name):
                key = (stage.program, stage.filter)
                if key in self.taken:
                    continue
                begun = time.monotonic()
                if not self.passes(stage, 600):
                    fail(f"{stage.program} --gtest_filter='{stage.filter}': fails on the unchanged library")
                self.taken[key] = time.monotonic() - begun

    def kills(self, stage):
        """Whether the stage notices the change."""
        return not self.passes(stage, max(10.0, 5 * self.taken[(stage.program, stage.filter)]))


# --- The run -----------------------------------------------------------------------------------------------------


class Run:
    def __init__(self, workshop, tests, planned, verbose):
        self.workshop = workshop
        self.tests = tests
        self.planned = planned
        self.verbose = verbose
        self.killed = 0
        self.unbuilt = 0
        self.survivors = []

    def judge(self, mutant, build=lambda program: True):
        """Counts the mutant. Each test program is built when it is its turn."""
        noticed = None
        for stage in self.tests.stages(mutant.file) + self.tests.last_stages(mutant.file):
            if not build(stage.program):
                self.unbuilt += 1
                return
            if self.tests.kills(stage):
                noticed = stage
                break
        if noticed:
            self.killed += 1
        else:
            self.survivors.append(mutant)
        if self.verbose or not noticed:
            print(f"{'killed' if noticed else 'SURVIVED'}  {mutant}", flush=True)
            if noticed:
                print(f"    by {noticed.program} {noticed.filter[:60]}", flush=True)
        self.report_progress()

    def report_progress(self):
        done = self.killed + len(self.survivors) + self.unbuilt
        if done % 50 == 0:
            print(f"mutate: {done} of {self.planned}, {len(self.survivors)} survive", file=sys.stderr, flush=True)

    def sources(self, mutants, jobs):
        """Mutants of the library's .cpp files: the next ones are compiled while one is tested."""
        commands = self.workshop.commands()
        library = self.workshop.library()
        kept = self.workshop.mutants / "unchanged.so"
        shutil.copy2(library, kept)
        waiting = collections.deque()
        numbered = enumerate(mutants)

        def compile_next():
            for number, mutant in itertools.islice(numbered, 1):
                waiting.append((mutant, pool.submit(self.workshop.make, mutant, number, commands)))

        try:
            with concurrent.futures.ThreadPoolExecutor(jobs) as pool:
                for _ in range(4 * jobs):
                    compile_next()
                while waiting:
                    mutant, future = waiting.popleft()
                    compile_next()
                    built = future.result()
                    if built:
                        os.replace(built, library)
                        self.judge(mutant)
                    else:
                        self.unbuilt += 1
        finally:
            shutil.copy2(kept, library)

    def others(self, mutants):
        """Mutants of headers and of the host: changed in the copy of the tree, built like any change."""
        for mutant in mutants:
            copy = self.workshop.tree / mutant.file
            try:
                copy.write_text(mutant.apply(self.workshop.texts))
                self.judge(mutant, self.workshop.try_build)
            finally:
                copy.write_text(self.workshop.texts[mutant.file])


def arguments_of(argv):
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("sources", nargs="*", help="source files or folders; the library when none is named")
    parser.add_argument("--kinds", default=",".join(KINDS), help=f"kinds of changes, of {', '.join(KINDS)}")
    parser.add_argument("--mutants", type=int, default=int(os.environ.get("MUTANTS") or 0),
                        help="run so many, chosen at random; 0: all (MUTANTS)")
    parser.add_argument("--seed", type=int, default=int(os.environ.get("SEED") or 1), help="of the choice (SEED)")
    parser.add_argument("--jobs", type=int, default=max(1, (os.cpu_count() or 2) - 1), help="compilers at a time")
    parser.add_argument("--floor", type=float, default=100.0, help="percentage that must be killed")
    parser.add_argument("--build", type=pathlib.Path, default=ROOT / "build/mutate", help="folder to work in")
    parser.add_argument("--list", action="store_true", help="print the mutants and stop")
    parser.add_argument("--verbose", action="store_true", help="name those that are killed, too")
    return parser.parse_args(argv)


def chosen_sources(named):
    def matching(patterns):
        return sorted(str(path.relative_to(ROOT)) for pattern in patterns for path in ROOT.glob(pattern))

    if not named:
        return matching(LIBRARY)
    known = matching(LIBRARY + HOST)
    chosen = []
    for name in named:
        path = pathlib.Path(name).resolve()
        found = [source for source in known if (ROOT / source).is_relative_to(path)]
        if not found:
            fail(f"{name}: neither a source of the library or its host nor a folder of some")
        chosen += [source for source in found if source not in chosen]
    return chosen


def without_listed(mutants, names):
    """The mutants that are to be run. The list may not speak of any that are not there."""
    listed = read_listed()
    keys = {key_of(mutant) for mutant in mutants}
    stale = [(number, key) for key, number in listed.items() if key[0] in names and key not in keys]
    for number, key in stale:
        print(f"mutate: {LISTED}:{number}: stands for no mutant: {' | '.join(key)}", file=sys.stderr)
    if stale:
        sys.exit(2)
    return [mutant for mutant in mutants if key_of(mutant) not in listed]


def main(argv):
    arguments = arguments_of(argv)
    kinds = arguments.kinds.split(",")
    for kind in kinds:
        if kind not in KINDS:
            fail(f"{kind}: no kind of change ({', '.join(KINDS)})")
    names = chosen_sources(arguments.sources)
    texts = {name: (ROOT / name).read_text() for name in names}
    everything = all_mutants(texts)
    mutants = without_listed(everything, names)
    mutants = [mutant for mutant in mutants if mutant.kind in kinds]
    equivalent = sum(mutant.kind in kinds for mutant in everything) - len(mutants)
    if arguments.mutants and arguments.mutants < len(mutants):
        chosen = random.Random(arguments.seed).sample(range(len(mutants)), arguments.mutants)
        mutants = [mutants[i] for i in sorted(chosen)]
    if arguments.list:
        for mutant in mutants:
            print(mutant)
        print(f"{len(mutants)} mutants, {equivalent} more are listed as equivalent")
        return 0

    workshop = Workshop(arguments.build.resolve(), arguments.jobs, texts)
    tests = Tests(workshop)
    files = sorted({mutant.file for mutant in mutants})
    workshop.build("reeldb", *tests.targets(files))
    tests.measure(files)
    print(f"{len(mutants)} mutants in {len(files)} files", flush=True)

    run = Run(workshop, tests, len(mutants), arguments.verbose)
    apart = [mutant for mutant in mutants if mutant.file.startswith("src/") and mutant.file.endswith(".cpp")]
    if apart:
        run.sources(apart, arguments.jobs)
    run.others([mutant for mutant in mutants if mutant not in apart])

    total = run.killed + len(run.survivors)
    percent = 100.0 * run.killed / total if total else 100.0
    print(f"did not compile: {run.unbuilt}; listed as equivalent, not run: {equivalent}")
    print(f"killed: {run.killed} of {total} ({percent:.1f} %)")
    return 0 if percent >= arguments.floor else 1


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
