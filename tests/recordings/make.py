#!/usr/bin/env python3
"""Makes the recordings in this directory again, from sessions, with their input and their output.
Whoever does so says in the commit why the recordings or the outputs are other ones. Arguments: the
names of those to make; without any, all."""

import argparse
import collections
import pathlib
import re
import sys
import tempfile

sys.dont_write_bytecode = True  # the sources stay as they are
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1]))
import run_session  # noqa: E402
from play import play  # noqa: E402
from recording import capture  # noqa: E402

HERE = pathlib.Path(__file__).resolve().parent
SESSIONS = HERE.parent / "sessions"

# Recording and session: at least one of each subsystem, without signals, and without requests made of
# random numbers.
TABLE = {
    "console": "console/types-of-messages",
    "connection": "connection/requests-without-questions",
    "link": "link/entry-into-the-network",
    "half-mini-card": "console/decoder-that-sends",
    "search": "search/nsp-search-after-a-search",
    "options": "options/get-all",
    "idle-mode": "idle/requests",
    "service-flows": "service-flows/indications",
    "service-flow-change": "service-flows/change-everything",
    "sleep-mode": "sleep-mode/default-definition",
    "handover": "handover/indications",
    "antennas": "antennas/infinite-scan-and-abort",
    "mib": "mib/multiple-get-380",
    "mib-keys": "mib/step-through-bursts",
    "security-parameters": "sim/security-parameters",
    "station-information": "station-information/reports",
    "statistics": "device-configuration/statistics-reset",
    "chipset": "chipset/download-after-a-failure",
    "device-configuration": "device-configuration/mac-address",
    "management-trace": "diagnostics/management-trace",
    "loggers": "diagnostics/logging-control",
    "gpio": "diagnostics/led-behaviour",
    "registers": "diagnostics/register-read-and-write",
    "oma-dm": "oma-dm/tests",
    "vendor-specific": "vendor-specific/requests",
    "authentication": "authentication/eap-requests",
    "authentication-responses": "authentication/responses",
    "simulated-device-control": "sim/device-control",
    "simulated-weak-station": "sim/too-weak-to-enter",
    "simulated-network-entry": "sim/network-entry-traced",
    "simulated-link": "sim/life-of-a-link",
}

# Through the menus: what is typed, by subsystem.
TOUR = """
    1 1 1 0 2 0  5 1  5 3  1 2 2587.5 0 10000  1 3  1 4  5 2  1 8  4 1 0  2 1  2 2  2 3  4 1 0
    11 1 400 1 1494 -1  13 1 2  13 2 15 -80  7 1 1000 10 2 0x0F000010 deadBEEF 1 4 4 -1
    9 1 1  18 1  18 2  19 1  19 2  10 1 217 8  10 3  12 02-aa-bb-cc-dd-ee  14 1  14 2  4 1 0
    15 0  15 1 1 1 0 1 0 0 32 8 4 5 0 0 1 4  16 1  16 2  16 3 30  16 4  20 4 3 1 -1 -1  8 5
    17 2 7 2 10 3 1 2 3 100  17 2 0  4 1 0  1 5  1 6  1 9  3 3  3 2  1 7  -1
"""
# Recording and scenario: the tour, on the stepped clock, so that it goes the same way each time.
TOURS = {"simulated-tour": "default.toml", "simulated-hostile": "hostile.toml"}
STEPPED = '\n[clock]\nkind = "stepped"\njump = true\n'


class Listener(run_session.Client):
    """Keeps everything that the client prints."""

    seen = b""

    def pump(self, seconds):
        before = len(self.output)
        came = super().pump(seconds)
        self.seen += self.output[before:]
        return came


def tour(scenario, options, directory):
    """The session file of a tour."""
    given = (pathlib.Path(options.scenarios) / scenario).read_text(encoding="utf-8")
    given = re.sub("^time-scale .*$", "", given, flags=re.MULTILINE) + STEPPED
    lines = [f"scenario {scenario}", f"given {scenario}", *(f"|{line}|" for line in given.splitlines()),
             "", *(f"> {words}" for words in TOUR.strip().splitlines()), "...", "exit 0"]
    path = directory / "tour.session"
    path.write_text("\n".join(lines) + "\n", encoding="utf-8")
    return path


def record(path, options):
    """Runs a session; returns what was typed, what was printed if that is known, the recording."""
    session = run_session.Session(path)
    typed = b"".join(value for kind, value, _ in session.steps if kind == "type")
    with tempfile.TemporaryDirectory(prefix="make.") as top:
        directory = pathlib.Path(top) / "work"
        directory.mkdir()
        client = Listener(session, options, directory)
        try:
            status = run_session.play(session, client)
            run_session.check_all(session, client, directory, status)
            # On a terminal what was typed stands in the output as well.
            printed = None if session.pty else client.seen
            return typed, printed, capture.Capture(client.recording).check()
        finally:
            client.close()


def neutral(recording):
    """The file without what says where and by whom it was made."""
    origin = recording.origin()
    origin.update(client=pathlib.Path(origin["client"]).name, library="libqor020.so", host="bench",
                  system="Linux")
    recording.events[0].data = "".join(f"{name}={value}\n" for name, value in origin.items()).encode()
    texts = {4: origin["client"], 2: f"{origin['machine']}, {origin['byte-order']}", 1: "libqor020.so"}
    data = capture.file_head(capture.section(texts))
    messages = iter(recording.management)
    management = next(messages, None)
    for event in recording.events:
        data += capture.packet(event)
        while management is not None and management[0] == event.number:
            data += capture.management_packet(event.time, *management[1:])
            management = next(messages, None)
    return data


def lines(output):
    return collections.Counter(output.split(b"\n"))


def make(name, options):
    with tempfile.TemporaryDirectory(prefix="make.") as directory:
        session = tour(TOURS[name], options, pathlib.Path(directory)) if name in TOURS \
            else SESSIONS / f"{TABLE.get(name, name)}.session"
        typed, printed, recording = record(session, options)
    name = name.replace("/", "-")
    path = options.into / f"{name}.pcapng"
    path.write_bytes(neutral(recording))
    path.with_suffix(".input").write_bytes(typed)
    outputs = [play(path, options) for _ in range(5)]
    if len(set(outputs)) != 1:
        raise SystemExit(f"{name}: another output each time")
    # Reports stand elsewhere than in the session, but they are the same.
    if printed is not None and lines(outputs[0]) != lines(printed):
        raise SystemExit(f"{name}: {lines(outputs[0]) - lines(printed)} instead of "
                         f"{lines(printed) - lines(outputs[0])}")
    path.with_suffix(".output").write_bytes(outputs[0])
    print(f"{name}: {len(recording.events)} events, {path.stat().st_size} bytes")


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("name", nargs="*")
    parser.add_argument("--library", type=pathlib.Path, required=True,
                        help="the libqor020.so that plays recordings")
    parser.add_argument("--into", type=pathlib.Path, default=HERE)
    run_session.add_options(parser)
    options = parser.parse_args()
    options.client = pathlib.Path(options.client)
    for name in options.name or [*TABLE, *TOURS]:
        make(name, options)


if __name__ == "__main__":
    main()
