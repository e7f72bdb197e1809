#!/usr/bin/env python3
"""Puts small faults into app/, ext/ and device/, one at a time, and counts those that the tests
notice. The faults are drawn at random, the same for the same seed. Works on copies in
build/mutate/; README.md beside this file says how to read what it prints."""

import argparse
import collections
import concurrent.futures
import hashlib
import itertools
import json
import os
import pathlib
import queue
import random
import re
import resource
import shlex
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import types
import xml.etree.ElementTree

import run_session

ROOT = pathlib.Path(__file__).resolve().parent.parent
TOP = ROOT / "build" / "mutate"
EQUIVALENT = ROOT / "tests" / "equivalent-mutants.txt"
MUTATED = ("app", "ext", "device")
PROGRAMS = ("TarvelWiMAXApp", "VendorSpecificMessageApp")
SLOW_TEST = 0.05  # seconds; such unit tests run behind all the others
SESSION_SECONDS = 120
GOAL = 0.99

# ---------------------------------------------------------------- the faults

TOKEN = re.compile(
    r"""(?P<blank>\s+|//[^\n]*|/\*.*?\*/)
      | (?P<directive>(?<![^\n])[ \t]*\#(?:\\\n|[^\n])*)
      | (?P<string>"(?:\\.|[^"\\\n])*")
      | (?P<char>'(?:\\.|[^'\\\n])+')
      | (?P<number>\.?\d(?:[\w.]|(?<=[eE])[+-]|'(?=\w))*)
      | (?P<word>[A-Za-z_]\w*)
      | (?P<sign><<=|>>=|<=>|\.\.\.|->\*|::|->|\+\+|--|<<|>>|<=|>=|==|!=|&&|\|\||[-+*/%&|^]=|\[\[|\]\]|.)
    """,
    re.VERBOSE | re.DOTALL,
)
Token = collections.namedtuple("Token", "kind text start end")
# A fault: the bytes from start to end of a file are replaced.
Mutant = collections.namedtuple("Mutant", "file operator start end text")

RELATIONS = {
    "==": ("!=",),
    "!=": ("==",),
    "<": ("<=", ">="),
    "<=": ("<", ">"),
    ">": (">=", "<="),
    ">=": (">", "<"),
}
ARITHMETIC = {
    "+": "-", "-": "+", "*": "/", "/": "*", "%": "/", "<<": ">>", ">>": "<<", "&": "|", "|": "&",
    "^": "|", "+=": "-=", "-=": "+=", "|=": "&=", "&=": "|=", "^=": "|=", "<<=": ">>=", ">>=": "<<=",
    "*=": "/=", "/=": "*=",
}  # fmt: skip
LOGIC = {"&&": "||", "||": "&&"}
# The sign of 32 bits is the conversion's business.
FIELD_TYPES = {
    "U8": ("I8", "U16"), "I8": ("U8", "I16"), "U16": ("I16", "U8", "U32"),
    "I16": ("U16", "I8", "I32"), "U32": ("U16", "U8"), "I32": ("I16", "I8"),
}  # fmt: skip
PIECE = re.compile(r"%%|%[-0 #+]*\d*\w|\\x[0-9A-Fa-f]{2}|\\.|.")
OPENING = {"(": ")", "[": "]", "{": "}"}
NO_STATEMENT = frozenset(
    """return if for while do switch case default else using namespace template typedef struct enum
    union class static const constexpr inline extern auto throw try catch goto void bool char int
    unsigned signed long short float double thread_local public private protected explicit operator
    static_assert friend""".split()
)


def tokens_of(text):
    tokens = []
    for match in TOKEN.finditer(text):
        if match.lastgroup not in ("blank", "directive"):
            tokens.append(Token(match.lastgroup, match[0], match.start(), match.end()))
    return tokens


def partners_of(tokens):
    """Index of the closing bracket by the index of the opening one."""
    partners, open_ones = {}, []
    for index, token in enumerate(tokens):
        if token.kind != "sign":
            continue
        if token.text in OPENING:
            open_ones.append(index)
        elif token.text in OPENING.values() and open_ones:
            partners[open_ones.pop()] = index
    return partners


def checked_at_compile_time(tokens, partners):
    """Indices of the tokens in a static_assert: a fault there is no fault of the program."""
    inside = set()
    for index, token in enumerate(tokens[:-1]):
        if token.text == "static_assert" and index + 1 in partners:
            inside.update(range(index, partners[index + 1] + 1))
    return inside


def other_number(text):
    """The number one larger and one smaller, in its own notation."""
    match = re.fullmatch(r"(0[xX])?([0-9a-fA-F']+?)([uUlL]*)", text)
    if not match:
        match = re.fullmatch(r"(\d+)(\.\d+)", text)
        return [f"{int(match[1]) + 1}{match[2]}"] if match else []
    prefix, digits, suffix = match[1] or "", match[2].replace("'", ""), match[3]
    value = int(digits, 16 if prefix else 10)
    changed = [value + 1] + ([value - 1] if value > 0 else [])
    if prefix:
        return [f"{prefix}{number:0{len(digits)}X}{suffix}" for number in changed]
    return [f"{number}{suffix}" for number in changed]


def other_conversion(piece):
    kind, rest = piece[-1], piece[:-1]
    changed = [rest + {"d": "u", "u": "d", "x": "X", "X": "x"}[kind]] if kind in "duxX" else []
    width = rest.lstrip("%").lstrip("0")
    if kind in "duxX" and rest.startswith("%0"):
        changed += [f"%{width}{kind}"]
    if kind in "duxX":
        changed += ["%" + kind] if width else ["%2" + kind]
    return changed


def other_character(piece):
    if piece.startswith("\\"):
        return "" if piece in ("\\n", "\\t") else piece
    if piece.isdigit():
        return str((int(piece) + 1) % 10)
    if piece.isalpha():
        return piece.swapcase()
    return {" ": "", ":": ";", "~": "-", "*": "#"}.get(piece, "")


def split_at_commas(tokens, partners, opening):
    """The elements between a bracket and its partner, as pairs of token indices."""
    elements, first, index = [], opening + 1, opening + 1
    while index < partners[opening]:
        if tokens[index].text == ",":
            elements.append((first, index))
            first = index + 1
        index = partners.get(index, index) + 1
    if first < partners[opening]:
        elements.append((first, partners[opening]))
    return elements


def looks_declared(tokens, first, last):
    """Whether the tokens are a parameter: a type and a name, or a basic type alone."""
    words = [token for token in tokens[first:last]]
    texts = [token.text for token in words]
    words = words[: texts.index("=")] if "=" in texts else words
    if not words or words[0].text in NO_STATEMENT:
        return True
    if len(words) < 2 or words[-1].kind != "word":
        return False
    if words[-2].kind == "word":
        return True
    return (
        len(words) > 2
        and words[-2].text in ("*", "&", "&&")
        and words[-2].end == words[-1].start
        and words[-3].end < words[-2].start
    )


def statement_end(tokens, partners, index):
    """Index of the semicolon that ends the statement, None when it is no plain expression."""
    first = tokens[index]
    if first.text in ("break", "continue"):
        return index + 1
    if first.text == "return":
        return index + 1 if tokens[index + 1].text == ";" else None
    if first.kind == "word" and first.text not in NO_STATEMENT:
        following = tokens[index + 1]
        if following.kind == "word" or (
            following.text in ("*", "&") and tokens[index + 2].start == following.end
        ):
            return None
    elif first.text not in ("*", "++", "--"):
        return None
    while index < len(tokens) and tokens[index].text != ";":
        body = tokens[index].text == "{" and tokens[index - 1].text == ")"
        if body or tokens[index].text in ("}", ")", ":"):
            return None
        index = partners.get(index, index) + 1
    return index if index < len(tokens) else None


def mutants_of(file, text):
    """All faults that the operators know for a file."""
    tokens = tokens_of(text)
    partners = partners_of(tokens)
    opened_by = {closing: opening for opening, closing in partners.items()}
    at_compile_time = checked_at_compile_time(tokens, partners)
    found = []

    def add(operator, start, end, replacement):
        if text[start:end] != replacement:
            found.append(Mutant(file, operator, start, end, replacement))

    def between(first, last):
        return text[tokens[first].start : tokens[last - 1].end]

    def swap(operator, one, other):
        middle = text[tokens[one[1] - 1].end : tokens[other[0]].start]
        add(operator, tokens[one[0]].start, tokens[other[1] - 1].end,
            between(*other) + middle + between(*one))

    for index, token in enumerate(tokens):
        if index in at_compile_time:
            continue
        binary = (
            text[token.start - 1 : token.start].isspace()
            and text[token.end : token.end + 1].isspace()
        )
        before = tokens[index - 1].text if index else ";"
        if token.kind == "sign" and binary:
            for other in RELATIONS.get(token.text, ()):
                add("relation", token.start, token.end, other)
            if token.text in ARITHMETIC:
                add("arithmetic", token.start, token.end, ARITHMETIC[token.text])
            if token.text in LOGIC:
                add("logic", token.start, token.end, LOGIC[token.text])
        if token.text == "!" and not binary:
            add("negation", token.start, token.end, "")
        if token.text in ("++", "--"):
            add("arithmetic", token.start, token.end, "--" if token.text == "++" else "++")
        if token.kind == "number":
            for other in other_number(token.text):
                add("number", token.start, token.end, other)
        if token.kind == "char" and re.fullmatch(r"'[0-9A-Za-z]'", token.text):
            add("number", token.start, token.end, f"'{chr(ord(token.text[1]) + 1)}'")
        if token.kind == "string":
            at = token.start + 1
            for piece in PIECE.findall(token.text[1:-1]):
                if piece.startswith("%") and piece != "%%" and len(piece) > 1:
                    for other in other_conversion(piece):
                        add("conversion", at, at + len(piece), other)
                else:
                    add("text", at, at + len(piece), other_character(piece))
                at += len(piece)
        if token.text in ("true", "false"):
            add("truth", token.start, token.end, "false" if token.text == "true" else "true")
        if token.kind == "word" and before == "::" and tokens[index - 2].text == "FieldType":
            for other in FIELD_TYPES.get(token.text, ()):
                add("field type", token.start, token.end, other)
        if token.text in ("if", "while") and tokens[index + 1].text == "(":
            closing = partners[index + 1]
            add("condition", tokens[index + 1].end, tokens[closing].start,
                f"!({between(index + 2, closing)})")
        if token.text == "?":
            colon = index + 1
            while tokens[colon].text != ":":
                colon = partners.get(colon, colon) + 1
            end = colon + 1
            while tokens[end].text not in (";", ",", ")", "]", "}", ":"):
                end = partners.get(end, end) + 1
            swap("condition", (index + 1, colon), (colon + 1, end))
        if token.text == "return" and tokens[index + 1].text != ";":
            end = index + 1
            while tokens[end].text != ";":
                end = partners.get(end, end) + 1
            if between(index + 1, end) not in ("{}", "0", "nullptr", "true", "false"):
                add("result", tokens[index + 1].start, tokens[end].start, "{}")
        if token.text in ("(", "{") and index in partners:
            call = token.text == "(" and tokens[index - 1].kind == "word"
            elements = split_at_commas(tokens, partners, index)
            if token.text == "(" and (not call or any(
                    looks_declared(tokens, *element) for element in elements)):
                elements = []
            for one, other in zip(elements, elements[1:]):
                if token.text == "(" or tokens[one[0]].kind == tokens[other[0]].kind:
                    swap("order", one, other)
        starts = before in (";", "{", "}", "else") or (
            before == ")" and tokens[opened_by.get(index - 1, 1) - 1].text in ("if", "for", "while"))
        if starts and (token.kind == "word" or token.text in ("*", "++", "--")):
            end = statement_end(tokens, partners, index)
            if end is not None:
                add("statement", token.start, tokens[end].end, ";")
    return found


def draw(seed, sources):
    """All faults in the order in which they are tried: an operator, then one of its faults."""
    by_operator = collections.defaultdict(list)
    for file, text in sorted(sources.items()):
        for mutant in mutants_of(file, text):
            by_operator[mutant.operator].append(mutant)
    generator = random.Random(seed)
    for mutants in by_operator.values():
        generator.shuffle(mutants)
    while by_operator:
        operator = generator.choice(sorted(by_operator))
        yield by_operator[operator].pop()
        if not by_operator[operator]:
            del by_operator[operator]


def change_of(mutant, sources):
    """The changed lines before and after, each as one line of text."""
    text = sources[mutant.file]
    first = text.rfind("\n", 0, mutant.start) + 1
    last = text.find("\n", mutant.end)
    before = text[first:last]
    after = text[first : mutant.start] + mutant.text + text[mutant.end : last]
    return " ".join(before.split()), " ".join(after.split())


def read_equivalent():
    """Faults that change nothing anybody could see: file, line before, line after."""
    known, file, before = set(), None, None
    for number, line in enumerate(EQUIVALENT.read_text().splitlines(), 1):
        if not line or line.startswith(("#", "  ")):
            continue
        if line.startswith("- "):
            before = line[2:]
        elif line.startswith("+ ") or line == "+":
            known.add((file, before, line[2:]))
        elif re.fullmatch(r"(app|ext|device)/\S+", line):
            file = line
        else:
            sys.exit(f"{EQUIVALENT}:{number}: not understood: {line}")
    return known


# ---------------------------------------------------------------- building


def run_quietly(command, **options):
    done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, **options)
    if done.returncode:
        sys.exit(f"{' '.join(map(str, command))}\n{done.stdout.decode('utf-8', 'replace')}")
    return done.stdout.decode()


class Build:
    """The optimised build without a fault: what there is to compile and to link, and which file
    needs what."""

    def __init__(self, jobs, targets):
        # Apart from the release build, whose objects hold many sources each and whose precompiled
        # headers would hide a fault in a header.
        self.directory = ROOT / "build" / "mutate-base"
        run_quietly(["cmake", "--preset", "release", "-B", self.directory, "-DWIMAX_BUNDLES=OFF",
                     "-DCMAKE_DISABLE_PRECOMPILE_HEADERS=ON"], cwd=ROOT)
        run_quietly(["cmake", "--build", self.directory, "-j", str(jobs), "--target", *targets])
        self.commands = {}  # object -> command
        for entry in json.loads((self.directory / "compile_commands.json").read_text()):
            command = shlex.split(entry["command"])
            if command[0].endswith("ccache"):
                command = command[1:]
            # A fault need not please the linter in the compiler, nor be fast.
            command = [word for word in command if word != "-Werror"]
            self.commands[command[command.index("-o") + 1]] = [*command, "-w", "-O0"]
        self.needs = collections.defaultdict(set)  # file -> objects
        target = None
        for line in run_quietly(["ninja", "-C", self.directory, "-t", "deps"]).splitlines():
            if line.startswith("    "):
                path = os.path.normpath(self.directory / line.strip())
                if path.startswith(f"{ROOT}/"):
                    self.needs[os.path.relpath(path, ROOT)].add(target)
            elif ": #deps" in line:
                target = line.split(":")[0]
        self.client_objects = sorted(
            name for name in self.commands if name.startswith("CMakeFiles/client.dir/")
        )
        self.precompile_standard_headers()
        self.links = {}
        for name in ("tests/unit/unit_tests", *PROGRAMS):
            line = run_quietly(["ninja", "-C", self.directory, "-t", "commands", "-s", name])
            words = shlex.split(line.strip().splitlines()[-1])
            words = words[words.index("&&") + 1 :]
            words = words[: words.index("&&")]
            if words[0].endswith("ccache"):
                words = words[1:]
            self.links[name] = words

    def precompile_standard_headers(self):
        """Most of the time for an object goes into these."""
        headers = {
            header
            for part in MUTATED
            for path in (ROOT / part).glob("*")
            for header in re.findall(r"^#include (<[^>]+>)", path.read_text(), re.MULTILINE)
        }
        standard = TOP / "standard.h"
        standard.write_text("".join(f"#include {header}\n" for header in sorted(headers)))
        command = list(self.commands[self.client_objects[0]])
        command[command.index("-o") + 1] = f"{standard}.gch"
        source = command.index("-c")
        command[source : source + 2] = ["-x", "c++-header", str(standard)]
        run_quietly(command, cwd=self.directory)
        for name in self.client_objects:
            self.commands[name] += ["-include", str(standard)]

    def objects_for(self, file):
        """The objects of the client, and those of the unit tests, that a file goes into."""
        objects = [name for name in self.needs[file] if name in self.commands]
        own = [name for name in objects if "/client.dir/" in name or
               any(f"CMakeFiles/{program}.dir/" in name for program in PROGRAMS)]
        tests = [name for name in objects if name.startswith("tests/unit/")]
        return sorted(own), sorted(tests)


class Failed(Exception):
    """A command that did not end well."""


class Workshop:
    """A copy of the sources that one fault at a time is put into, and what is built of it."""

    def __init__(self, build, number):
        self.build = build
        self.top = TOP / f"worker{number}"
        self.source = self.top / "source"
        shutil.rmtree(self.top, ignore_errors=True)
        for name in MUTATED:
            shutil.copytree(ROOT / name, self.source / name)

    def compile(self, objects, more=()):
        for name in objects:
            target = self.top / name
            target.parent.mkdir(parents=True, exist_ok=True)
            command = list(self.build.commands[name])
            command[command.index("-o") + 1] = str(target)
            for part in MUTATED:
                old, new = f"{ROOT}/{part}", f"{self.source}/{part}"
                command = [word.replace(old, new) for word in command]
            self.command([*command, *more], "compiler")

    def link(self, name):
        """The client's objects stand in front: an inline function's changed copy is taken."""
        command = list(self.build.links[name])
        words = [word for word in command[1:] if word != "libclient.a"]
        words = [*self.build.client_objects, *words]
        words = [str(self.top / word) if (self.top / word).is_file() else word for word in words]
        target = self.top / pathlib.Path(name).name
        words[words.index("-o") + 1] = str(target)
        self.command([command[0], *words, "-Wl,--strip-debug", *LINKER], "linker")
        return target

    def command(self, command, what):
        done = subprocess.run(command, cwd=self.build.directory, stdout=subprocess.DEVNULL,
                              stderr=subprocess.DEVNULL)
        if done.returncode:
            raise Failed(what)

    def optimised(self, name):
        """What the optimising compiler makes of an object, as a hash."""
        self.compile([name], ("-O2", "-g0"))
        return hashlib.sha256((self.top / name).read_bytes()).digest()

    def clear(self):
        for path in self.top.rglob("*.o"):
            path.unlink()


LINKER = ["-fuse-ld=lld"] if shutil.which("ld.lld") else ["-fuse-ld=gold"]

# ---------------------------------------------------------------- the tests


class UnitTests:
    """The unit tests in three steps: those of the changed file, the quick ones, the slow ones."""

    def __init__(self, build):
        self.suites = {}  # file's stem -> suites of its test file
        for path in sorted((ROOT / "tests" / "unit").glob("*Test.cpp")):
            names = re.findall(r"^TEST(?:_F|_P)?\((\w+),", path.read_text(), re.MULTILINE)
            self.suites[path.stem.removesuffix("Test")] = sorted(set(names))
        program = build.directory / "tests" / "unit" / "unit_tests"
        report = TOP / "unit.xml"
        with tempfile.TemporaryDirectory() as directory:
            began = time.monotonic()
            subprocess.run([program, "--gtest_brief=1", f"--gtest_output=xml:{report}"],
                           cwd=directory, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
            self.seconds = time.monotonic() - began
        self.slow = []
        for case in xml.etree.ElementTree.parse(report).iter("testcase"):
            name = f"{case.get('classname')}.{case.get('name')}"
            if float(case.get("time")) >= SLOW_TEST:
                self.slow.append(name)
            if case.find("failure") is not None and all(self.run(program, name) for _ in range(3)):
                sys.exit(f"it fails without any fault: {name}")

    def steps(self, stems):
        own = [f"{suite}.*" for stem in stems for suite in self.suites.get(stem, ())]
        if own:
            yield ":".join(own)
        yield "*-" + ":".join(own + self.slow)
        yield ":".join(self.slow) + "-" + ":".join(own)

    def failure(self, program, stems):
        """What notices the fault: a test's name, a crash, a hang; or None."""
        for tests in self.steps(stems):
            noticed = self.run(program, tests)
            # A test that failed for the load of the machine does not fail twice.
            if noticed and (noticed == "hangs" or self.run(program, tests)):
                return noticed
        return None

    def run(self, program, tests):
        limits = "ulimit -c 0 -f 131072 -t 60 -v 8000000; exec \"$@\""
        with tempfile.TemporaryDirectory() as directory:
            try:
                done = subprocess.run(
                    ["sh", "-c", limits, "sh", program, "--gtest_fail_fast", "--gtest_brief=1",
                     f"--gtest_filter={tests}"],
                    cwd=directory, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
                    stdin=subprocess.DEVNULL, timeout=3 * self.seconds + 20)
            except subprocess.TimeoutExpired:
                return "hangs"
        if done.returncode == 0:
            return None
        failed = re.search(rb"\[  FAILED  \] (\w+\.\w+)", done.stdout)
        if failed:
            return failed[1].decode()
        return "hangs" if done.returncode == -signal.SIGXCPU else "crashes"


def play_session(path, client, options):
    """In a process of the pool: what went wrong in the session, or None."""

    def give_up(_number, _frame):
        raise run_session.Failure("takes too long")

    signal.signal(signal.SIGALRM, give_up)
    signal.alarm(SESSION_SECONDS)
    arguments = types.SimpleNamespace(client=client, recorder=None, emulator=[],
                                      verbose=False, **options)
    try:
        with open(os.devnull, "w") as nothing:
            sys.stderr = nothing
            run_session.run(run_session.Session(path), arguments)
    except (run_session.Failure, run_session.FormatError, OSError, MemoryError) as failure:
        return str(failure) or "fails"
    finally:
        signal.alarm(0)
    return None


class Sessions:
    """The sessions, several at a time, the quick ones first."""

    def __init__(self, build, pool):
        self.pool = pool
        self.base = build.directory / "TarvelWiMAXApp"
        # A copy, so that the sessions can be worked on meanwhile.
        self.tests = TOP / "tests"
        shutil.rmtree(self.tests, ignore_errors=True)
        shutil.copytree(ROOT / "tests" / "sessions", self.tests / "sessions")
        self.options = {
            "scripted": str(build.directory / "scripted" / "libqor020.so"),
            "simulated": str(build.directory / "libqor020.so"),
            "scenarios": str(ROOT / "sim" / "scenarios"),
        }
        self.paths = sorted(map(str, (self.tests / "sessions").rglob("*.session")))
        long = re.compile(r"^(?:timeout|lasts) ", re.MULTILINE)
        self.paths.sort(key=lambda path: bool(long.search(pathlib.Path(path).read_text("latin-1"))))

    def submit(self, path, client):
        return self.pool.submit(play_session, path, str(client), self.options)

    def alone(self, path, client):
        return self.submit(path, client).result()

    def failure(self, client):
        """The session that notices the fault, or None."""
        futures = {self.submit(path, client): path for path in self.paths}
        try:
            for future in concurrent.futures.as_completed(futures):
                path = futures[future]
                # What fails twice, and not without the fault, has noticed it.
                if future.result() and self.alone(path, client) and not self.alone(path, self.base):
                    return os.path.relpath(path, self.tests).removesuffix(".session")
        finally:
            for future in futures:
                future.cancel()
        return None


class Storms:
    """The storms and the sweeps, for what the sessions do not notice."""

    def __init__(self, build):
        scripts = ROOT / "tests"
        sweep = [sys.executable, scripts / "sweep.py", "--longest", "1",
                 "--scripted", build.directory / "scripted" / "libqor020.so",
                 "--faults", build.directory / "tests" / "faults" / "libfaults.so"]
        self.base = build.directory / "TarvelWiMAXApp"
        self.commands = {
            "storms": [sys.executable, scripts / "storm" / "storm_test.py", "--failfast",
                       "--library", build.directory / "storm" / "libqor020.so"],
            "calls that fail": [*sweep, "--kinds", "device,console", "--every", "60",
                                scripts / "sessions"],
            "ends": [*sweep, "--kinds", "end,signal", "--every", "40", scripts / "sessions"],
        }

    def failure(self, client):
        for name, command in self.commands.items():
            if self.fails(command, client) and self.fails(command, client):
                if not self.fails(command, self.base):
                    return name
        return None

    def fails(self, command, client):
        done = subprocess.run([*command, "--client", client], stdin=subprocess.DEVNULL,
                              stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        return done.returncode != 0


# ---------------------------------------------------------------- the run

Outcome = collections.namedtuple("Outcome", "kind by")
NOTICED_BY = ("unit tests", "sessions", "storms")


class Trial:
    def __init__(self, build, unit_tests, sessions, storms, sources, known):
        self.build = build
        self.unit_tests = unit_tests
        self.sessions = sessions
        self.storms = storms
        self.sources = sources
        self.known = known
        self.workshops = queue.Queue()
        self.unchanged = {}  # object -> its hash without a fault

    def judge(self, mutant):
        if (mutant.file, *change_of(mutant, self.sources)) in self.known:
            return Outcome("equivalent", "the list")
        workshop = self.workshops.get()
        path = workshop.source / mutant.file
        text = self.sources[mutant.file]
        try:
            path.write_text(text[: mutant.start] + mutant.text + text[mutant.end :])
            return self.look(mutant, workshop)
        except Failed as failure:
            return Outcome("does not build", str(failure))
        finally:
            path.write_text(text)
            workshop.clear()
            self.workshops.put(workshop)

    def look(self, mutant, workshop):
        own, tests = self.build.objects_for(mutant.file)
        stems = [pathlib.Path(name).name.removesuffix(".cpp.o") for name in own]
        stems = stems if len(stems) <= 4 else [pathlib.Path(mutant.file).stem]
        workshop.compile(own)
        noticed = self.unit_tests.failure(workshop.link("tests/unit/unit_tests"), stems)
        if not noticed and tests:
            workshop.compile(tests)
            noticed = self.unit_tests.failure(workshop.link("tests/unit/unit_tests"), stems)
        if noticed:
            return Outcome("unit tests", noticed)
        if self.sessions is not None:
            for name in PROGRAMS:
                workshop.link(name)
        for kind, tests in (("sessions", self.sessions), ("storms", self.storms)):
            noticed = tests and tests.failure(workshop.top / "TarvelWiMAXApp")
            if noticed:
                return Outcome(kind, noticed)
        if self.same_code(mutant, workshop, own):
            return Outcome("equivalent", "the same code when optimised")
        return Outcome("not noticed", "")

    def same_code(self, mutant, workshop, own):
        path = workshop.source / mutant.file
        text = path.read_text()
        for name in own:
            changed = workshop.optimised(name)
            if name not in self.unchanged:
                path.write_text(self.sources[mutant.file])
                self.unchanged[name] = workshop.optimised(name)
                path.write_text(text)
            if changed != self.unchanged[name]:
                return False
        return True


def show(mutant, sources):
    """The fault as a difference, a line of its surroundings on each side."""
    text = sources[mutant.file]
    lines = text.splitlines()
    first = text.count("\n", 0, mutant.start)
    last = text.count("\n", 0, mutant.end)
    changed = (text[: mutant.start] + mutant.text + text[mutant.end :]).splitlines()
    shown = [f"{mutant.file}:{first + 1} ({mutant.operator})"]
    shown += ["      " + line for line in lines[max(first - 1, 0) : first]]
    shown += ["    - " + line for line in lines[first : last + 1]]
    shown += ["    + " + line for line in changed[first : last + 1 + len(changed) - len(lines)]]
    shown += ["      " + line for line in lines[last + 1 : last + 2]]
    return "\n".join(shown)


def as_listed(mutant, sources):
    before, after = change_of(mutant, sources)
    return f"{mutant.file}\n- {before}\n+ {after}\n"


def is_catalogue(path):
    """The client does without it; its rows are compared with the documents and the dissector."""
    return path.parent.name == "device" and ("Catalogue" in path.name or path.name == "Layouts.h")


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("count", type=int, help="faults to count")
    parser.add_argument("--seed", type=int, default=1, help="other faults for another number")
    parser.add_argument("--jobs", type=int, default=os.cpu_count(), help="faults at a time")
    parser.add_argument("--from", dest="first", type=int, default=1, metavar="N",
                        help="go on with the fault that has this number")
    parser.add_argument("--file", default="", help="faults only in files whose path holds this")
    parser.add_argument("--again", action="store_true", help="only those not noticed the last time")
    parser.add_argument("--no-sessions", action="store_true", help="only the unit tests")
    parser.add_argument("--storms", action="store_true",
                        help="storms and sweeps too, for what the sessions do not notice")
    parser.add_argument("--show", action="store_true", help="only show the faults, try none")
    options = parser.parse_args()

    sources = {
        str(path.relative_to(ROOT)): path.read_text()
        for part in MUTATED
        for path in sorted((ROOT / part).glob("*"))
        if options.file in str(path.relative_to(ROOT)) and not is_catalogue(path)
    }
    drawn = enumerate(draw(options.seed, sources), 1)
    drawn = itertools.islice(drawn, options.first - 1, None)
    survivors_file = TOP / "survivors.txt"
    if options.again:
        wanted = set(survivors_file.read_text().split("\n\n"))
        drawn = (one for one in drawn if as_listed(one[1], sources).strip() in wanted)
    if options.show:
        for number, mutant in itertools.islice(drawn, options.count):
            print(f"{number} {show(mutant, sources)}")
        return 0

    TOP.mkdir(parents=True, exist_ok=True)
    with concurrent.futures.ProcessPoolExecutor(options.jobs * 3) as pool:
        # The pool's processes are there before any thread is.
        concurrent.futures.wait([pool.submit(time.sleep, 0.2) for _ in range(options.jobs * 3)])
        targets = ["unit_tests"]
        if not options.no_sessions:
            targets += [*PROGRAMS, "qor020", "qor020_scripted", "qor020_storm", "faults"]
        build = Build(options.jobs, targets)
        sessions = None if options.no_sessions else Sessions(build, pool)
        storms = Storms(build) if options.storms else None
        trial = Trial(build, UnitTests(build), sessions, storms, sources, read_equivalent())
        for number in range(options.jobs):
            trial.workshops.put(Workshop(build, number))
        return count(options, trial, drawn, survivors_file)


def count(options, trial, drawn, survivors_file):
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    outcomes = collections.Counter()
    survivors = []
    waiting = collections.deque()
    counted = 0
    with concurrent.futures.ThreadPoolExecutor(options.jobs) as threads:
        while counted < options.count:
            while len(waiting) < options.jobs + 2:
                number, mutant = next(drawn, (0, None))
                if mutant is None:
                    break
                waiting.append((number, mutant, threads.submit(trial.judge, mutant)))
            if not waiting:
                break
            number, mutant, future = waiting.popleft()
            outcome = future.result()
            outcomes[outcome.kind] += 1
            counted += outcome.kind in (*NOTICED_BY, "not noticed")
            line = trial.sources[mutant.file].count("\n", 0, mutant.start) + 1
            print(f"{number:4} {mutant.file}:{line} {mutant.operator}: {outcome.kind}"
                  f"{': ' if outcome.by else ''}{outcome.by}", flush=True)
            if outcome.kind == "not noticed":
                survivors.append(mutant)
        for _, _, future in waiting:
            future.cancel()
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    survivors_file.write_text("\n".join(as_listed(one, trial.sources) for one in survivors))
    if survivors:
        print("\nNot noticed:\n")
        for mutant in survivors:
            print(show(mutant, trial.sources) + "\n")
    noticed = sum(outcomes[kind] for kind in NOTICED_BY)
    seconds = after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime
    print(f"{counted} faults, {noticed} noticed ({outcomes['unit tests']} by unit tests, "
          f"{outcomes['sessions']} by sessions, {outcomes['storms']} by storms and sweeps), "
          f"{outcomes['not noticed']} not noticed; besides "
          f"{outcomes['equivalent']} that change nothing and {outcomes['does not build']} that do "
          f"not build; {seconds / max(counted, 1):.1f} s of processor time a fault")
    return 0 if noticed >= GOAL * counted else 1


if __name__ == "__main__":
    sys.exit(main())
