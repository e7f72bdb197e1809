#!/usr/bin/env python3
"""A recording through everything: every form of the monitor, a scrubbed copy, and the client that
plays it while it is recorded again. Arguments: recordings, with what was typed in NAME.input."""

import argparse
import dataclasses
import json
import pathlib
import re
import subprocess
import sys
import tempfile

sys.dont_write_bytecode = True  # the sources stay as they are
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1]))
from play import run  # noqa: E402
from recording.capture import CALLS, Capture  # noqa: E402

PATIENCE = 60
FORMS = ([], ["--raw"], ["--fields"], ["--json"], ["--summary"])
DIFFERENCE = re.compile("libqor020: differs from the recording: event ([0-9]+), qor020\\.[a-z_.0-9]+")


class Failure(Exception):
    """What was seen is not what should be."""


def check(good, what):
    if not good:
        raise Failure(what)


def bare(event):
    return dataclasses.replace(event.without_times(), number=0, belongs_to=0)


def happened(recording):
    """Calls and messages as they began, each with its ends: played at once, messages come while a
    call lasts that came behind it."""
    ends = {}
    for event in recording.events:
        ends.setdefault(event.belongs_to, []).append(bare(event))
    began = [event for event in recording.events if event.kind in (*CALLS, "message")]
    return [(bare(event), ends.get(event.number)) for event in began]


def changed(recording, copy):
    """The numbers of the calls that the copy has otherwise."""
    return {event.number for event, other in zip(recording.events, copy.events, strict=True)
            if event.kind in CALLS and event.data != other.data}


class Monitor:
    def __init__(self, program, directory):
        self.program = program
        self.directory = directory

    def show(self, *arguments):
        done = subprocess.run([self.program, *arguments], capture_output=True, timeout=PATIENCE,
                              check=False)
        check((done.returncode, done.stderr) == (0, b""),
              f"{arguments}: status {done.returncode}, {done.stderr.decode()}")
        return done.stdout

    def check_forms(self, path, recording):
        for form in FORMS:
            check(self.show(*form, path), f"{form}: nothing is shown")
        entries = [json.loads(line) for line in self.show("--json", path).splitlines()]
        check([entry["number"] for entry in entries] == [event.number for event in recording.events],
              "--json has other events")
        page = self.directory / "page.html"
        self.show("--page", page, path)
        check(page.read_bytes().endswith(b"</html>\n"), "the page is not whole")

    def scrub(self, path):
        copy = self.directory / path.name
        self.show("--scrub", copy, path)
        return copy


def check_again(path, recording, options, directory):
    """Played and recorded, it is the same recording."""
    again = directory / "again.pcapng"
    done = run(path, path.with_suffix(".input"), options, {
        "LD_PRELOAD": str(options.recorder.resolve()), "QOR020_RECORDING": str(again),
        "QOR020_REPLAY_STRICT": "1"})
    check((done.returncode, done.stderr) == (0, b""), f"played: {done.stderr.decode()}")
    second = Capture(again).check()
    for first, other in zip(happened(recording), happened(second), strict=True):
        check(first == other, f"recorded again:\n{first}\n{other}")
    check([message[1:] for message in second.management]
          == [message[1:] for message in recording.management], "other management messages")


def check_copy(path, recording, copy, options):
    """The copy is played by the same client; what differs is what was replaced in its requests."""
    done = run(copy, path.with_suffix(".input"), options, {})
    check(done.returncode == 0, f"the copy: status {done.returncode}, {done.stderr.decode()}")
    told = [int(match[1]) for match in DIFFERENCE.finditer(done.stderr.decode())]
    check(done.stderr.count(b"libqor020: ") == len(told), done.stderr.decode())
    expected = changed(recording, Capture(copy).check())
    check(set(told) == expected, f"the copy differs in {told}, replaced was {expected}")


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("recording", nargs="+", type=pathlib.Path)
    for name, what in (("client", "the client's executable"), ("recorder", "libqor020record.so"),
                       ("library", "the libqor020.so that plays recordings"),
                       ("monitor", "TarvelWiMAXMonitor")):
        parser.add_argument(f"--{name}", type=pathlib.Path, required=True, help=what)
    options = parser.parse_args()
    failed = False
    for path in options.recording:
        recording = Capture(path).check()
        with tempfile.TemporaryDirectory(prefix="through.") as directory:
            monitor = Monitor(options.monitor.resolve(), pathlib.Path(directory))
            try:
                monitor.check_forms(path, recording)
                check_again(path, recording, options, monitor.directory)
                check_copy(path, recording, monitor.scrub(path), options)
            except Failure as failure:
                failed = True
                print(f"{path}: {failure}")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
