#!/usr/bin/env python3
"""Runs a session file: types into the client, compares what it prints and what it asks of the
device library. ../docs/sessions.md describes the format."""

import argparse
import pathlib
import shlex
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "tools" / "session"))
from tarvel_session import engine  # noqa: E402
from tarvel_session.engine import (  # noqa: E402, F401
    SANITIZERS, Client, Failure, InputClosed, bars, play, play_steps,
)
from tarvel_session.files import (  # noqa: E402, F401
    FormatError, Session, format_bytes, parse_bytes,
)


def check_all(session, client, directory, status):
    if client.recording is not None:
        from recording import session_check  # most sessions are not recorded

        session_check.check_recording(client)
    engine.check_all(session, client, directory, status)


def run(session, options):
    try:
        engine.run(session, options, check=check_all)
    except Failure as failure:
        sys.stderr.write(failure.errors.decode("utf-8", "replace"))
        if options.verbose:
            print("\n".join(failure.record))
        raise


def add_options(parser):
    """What is run, and on what."""
    parser.add_argument("--client", required=True, help="the client's executable")
    parser.add_argument("--scripted", required=True, help="the scripted libqor020.so")
    parser.add_argument("--simulated", help="the simulated modem's libqor020.so")
    parser.add_argument("--scenarios", help="where scenario files are")
    parser.add_argument("--recorder", help="the recorder, to be put in front of the library")
    parser.add_argument("--emulator", type=shlex.split, default=[], metavar="COMMAND",
                        help="what runs the client of another machine")


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("session", nargs="+", help="session files")
    add_options(parser)
    parser.add_argument("-v", "--verbose", action="store_true", help="show the record of a failure")
    options = parser.parse_args()
    failed = 0
    for path in options.session:
        try:
            run(Session(path), options)
            print(f"passed: {path}")
        except (Failure, FormatError) as failure:
            failed += 1
            print(f"FAILED: {path}: {failure}")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
