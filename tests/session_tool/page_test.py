#!/usr/bin/env python3
"""Types a page: its sh blocks, in the order of the page, in a copy of the source tree whose build is
this one, and compares what comes with the text blocks behind them."""

import argparse
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
# Copied, because these look for others beside themselves; of all else a link will do.
COPIED = ("run.sh", ".ci", "tools")
LEFT_OUT = ("build", ".git")
PATIENCE = 120
OPTIONS = argparse.Namespace()


def steps(page):
    """(line number, what is typed, what is shown) of each sh block."""
    found = []
    for match in re.finditer(r"^```(\w*)\n(.*?)^```$", page, re.MULTILINE | re.DOTALL):
        kind, text = match[1], match[2]
        if kind == "sh":
            found.append([page.count("\n", 0, match.start()) + 1, text, ""])
        elif kind == "text":
            found[-1][2] = text
    return found


def pattern(text):
    """The text, of which ... is any line or lines, and in a line anything."""
    parts = []
    for line in text.splitlines():
        if line == "...":
            parts.append(r"(?:[^\n]*\n)*?")
        else:
            parts.append("[^\n]*".join(map(re.escape, line.rstrip().split("..."))) + "\n")
    return "".join(parts)


def shows(text, output):
    plain = "".join(line.rstrip() + "\n" for line in output.splitlines())
    return re.fullmatch(pattern(text), plain) is not None


class PageTest(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        directory = tempfile.TemporaryDirectory(prefix="page.")
        self.addCleanup(directory.cleanup)
        self.top = pathlib.Path(directory.name) / "tree"
        (self.top / "build").mkdir(parents=True)
        (self.top / "build/release").symlink_to(OPTIONS.build)
        for path in ROOT.iterdir():
            if path.name in COPIED:
                copy = shutil.copytree if path.is_dir() else shutil.copy
                copy(path, self.top / path.name)
            elif path.name not in LEFT_OUT:
                (self.top / path.name).symlink_to(path)
        # What a page builds is what is being tested.
        tools = self.top.parent / "bin"
        tools.mkdir()
        (tools / "cmake").write_text("#!/bin/sh\n")
        (tools / "cmake").chmod(0o755)
        self.environment = {**os.environ, "PATH": f"{tools}:{os.environ['PATH']}"}
        for name in [name for name in self.environment if name.startswith("QOR020_")]:
            del self.environment[name]

    def type(self, commands):
        """The exit status, and what came on the terminal."""
        done = subprocess.run(["bash", "-euo", "pipefail", "-c", commands], cwd=self.top,
                              env=self.environment, stdin=subprocess.DEVNULL, timeout=PATIENCE,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False)
        return done.returncode, done.stdout.decode("utf-8", "replace")

    def test_every_command_of_the_front_page_shows_what_it_says(self):
        found = steps((ROOT / "docs/README.md").read_text())
        self.assertGreater(len(found), 8)
        for number, commands, text in found:
            status, output = self.type(commands)
            place = f"docs/README.md:{number}\n{commands}"
            self.assertEqual(status, 0, place + output)
            if not shows(text, output):
                self.assertEqual(output, text, place)

    def test_every_link_of_the_front_page_leads_somewhere(self):
        links = re.findall(r"\]\(([^)#]+)", (ROOT / "docs/README.md").read_text())
        self.assertGreater(len(links), 8)
        for link in links:
            self.assertTrue((ROOT / "docs" / link).exists(), link)

    def test_what_is_shown_must_come(self):
        self.assertTrue(shows("a\n...\nb 1 ... s\n", "a \nx\ny\nb 1 2.5 s\n"))
        self.assertTrue(shows("", ""))
        for output in ("a\nb 1 s\n", "a\nx\nb 1 2.5 s\nmore\n", "x\na\nb 1 2 s\n", "", "a\nb 2 3 s\n"):
            self.assertFalse(shows("a\n...\nb 1 ... s\n", output), output)
        self.assertFalse(shows("", "something\n"))


if __name__ == "__main__":
    parser = argparse.ArgumentParser()
    parser.add_argument("--build", required=True, type=os.path.abspath, help="the build's folder")
    OPTIONS, rest = parser.parse_known_args()
    unittest.main(argv=[sys.argv[0], *rest])
