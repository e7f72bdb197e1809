#!/usr/bin/env python3
"""Plays recordings: the client, typed into as it was when it was recorded, prints what it printed.
Arguments: recordings; beside each NAME.pcapng stand NAME.input and NAME.output."""

import argparse
import difflib
import os
import pathlib
import subprocess
import sys
import tempfile

sys.dont_write_bytecode = True  # the sources stay as they are
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1]))
from recording.capture import Capture  # noqa: E402
from run_session import SANITIZERS, bars  # noqa: E402

PATIENCE = 100


def run(recording, typed, options, settings):
    """Runs the recorded program on the recording; it stands beside the client."""
    name = pathlib.Path(Capture(recording).origin()["client"]).name
    program = options.client.resolve().with_name(name)
    with tempfile.TemporaryDirectory(prefix="play.") as directory:
        os.symlink(options.library.resolve(), os.path.join(directory, "libqor020.so"))
        environment = {**os.environ, **SANITIZERS, "QOR020_REPLAY": os.path.abspath(recording),
                       "QOR020_REPLAY_SPEED": "0", **settings}
        return subprocess.run([program], cwd=directory, env=environment, timeout=PATIENCE,
                              input=typed.read_bytes(), capture_output=True, check=False)


def play(recording, options):
    """What the recorded program prints."""
    done = run(recording, recording.with_suffix(".input"), options, {"QOR020_REPLAY_STRICT": "1"})
    if done.returncode != 0 or done.stderr:
        raise SystemExit(f"{recording}: exit status {done.returncode}\n{done.stderr.decode()}")
    return done.stdout


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("recording", nargs="+", type=pathlib.Path)
    parser.add_argument("--client", type=pathlib.Path, required=True)
    parser.add_argument("--library", type=pathlib.Path, required=True,
                        help="the libqor020.so that plays recordings")
    parser.add_argument("--write", action="store_true", help="freezes what is printed now")
    options = parser.parse_args()
    failed = False
    for recording in options.recording:
        got = play(recording, options)
        if options.write:
            recording.with_suffix(".output").write_bytes(got)
        expected = recording.with_suffix(".output").read_bytes()
        if got != expected:
            failed = True
            print(f"{recording}: another output")
            print("\n".join(difflib.unified_diff(bars(expected), bars(got), "expected", "got",
                                                 lineterm="")))
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
