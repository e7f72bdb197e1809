#!/usr/bin/env python3
"""Makes the recordings in this directory again, from sessions, with their input and their output.
Whoever does so says in the commit why the recordings or the outputs are other ones. Arguments: the
names of those to make; without any, all."""

import argparse
import collections
import pathlib
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


class Listener(run_session.Client):
    """Keeps everything that the client prints."""

    seen = b""

    def pump(self, seconds):
        before = len(self.output)
        came = super().pump(seconds)
        self.seen += self.output[before:]
        return came


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


def make(name, session, options):
    typed, printed, recording = record(SESSIONS / f"{session}.session", options)
    path = options.into / f"{name}.pcapng"
    path.write_bytes(neutral(recording))
    path.with_suffix(".input").write_bytes(typed)
    outputs = [play(path, options.client, options.library) for _ in range(5)]
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
    parser.add_argument("--library", required=True, help="the libqor020.so that plays recordings")
    parser.add_argument("--into", type=pathlib.Path, default=HERE)
    run_session.add_options(parser)
    options = parser.parse_args()
    for name in options.name or TABLE:
        make(name.replace("/", "-"), TABLE.get(name, name), options)


if __name__ == "__main__":
    main()
