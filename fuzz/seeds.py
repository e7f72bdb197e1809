#!/usr/bin/env python3
"""Writes inputs for the fuzz targets into a directory: what the session files and the unit tests
go through, as steps; the scenarios and what the tests say in the scripted library's words."""

import argparse
import pathlib
import re
import struct
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
sys.path.insert(0, str(ROOT / "tests"))
from run_session import FormatError, Session, parse_bytes  # noqa: E402

# As in Steps.h.
KINDS = (
    "type message signal pause output error turns send answer open register close read write "
    "streams extended silent aside"
).split()
SIGNALS = {2: 0, 15: 1, 1: 2}
GONE = 1


def step(kind, data=b""):
    return bytes([KINDS.index(kind)]) + struct.pack("<H", len(data)) + data


def message(kind, data, stated=None):
    return step(kind, struct.pack("<BI", 0, len(data) if stated is None else stated) + data)


def numbers(text):
    """NUMBER or NUMBER*TIMES, as packed numbers."""
    number, _, times = text.partition("*")
    value = -1 if number == "fail" else int(number, 0)
    return [struct.pack("<I", value % (1 << 32))] * int(times or 1)


class Script:
    """The scripted library's commands as steps: those of the calls, and those that happen."""

    def __init__(self):
        self.calls = b""
        self.sends = []
        self.stated = None

    def planned(self, fresh):
        if not self.sends or fresh:
            self.sends.append([struct.pack("<I", 0), b"", b""])
        return self.sends[-1]

    def run(self, command, fresh):
        """Returns the steps that happen at once."""
        name, _, rest = command.partition(" ")
        if name in ("open", "register", "close", "wrm"):
            kind = "write" if name == "wrm" else name
            self.calls += b"".join(step(kind, number) for number in numbers(rest))
        elif name == "rdm":
            count, _, data = rest.partition(" ")
            for number in numbers(count):
                self.calls += step("read", number + parse_bytes(data))
        elif name == "send":
            self.sends += [[number, b"", b""] for number in numbers(rest or "0")]
        elif name == "reply":
            self.planned(fresh)[1] = parse_bytes(rest)
        elif name == "answer":
            self.planned(fresh)[2] += message("answer", parse_bytes(rest), self.take_stated())
        elif name in ("message", "post"):
            return message("message", parse_bytes(rest), self.take_stated())
        elif name == "null":
            return message("message", b"")
        elif name == "length":
            self.stated = int(rest, 0)
        return b""

    def take_stated(self):
        stated, self.stated = self.stated, None
        return stated

    def steps(self):
        return self.calls + b"".join(
            step("send", result + reply) + answers for result, reply, answers in self.sends
        )


def steps_of(session):
    script = Script()
    events = b"".join(script.run(command, False) for command in session.script)
    typed_since = True
    for kind, value, _ in session.steps:
        if kind == "type":
            events += b"".join(step("type", value[i : i + 60000]) for i in range(0, len(value), 60000))
            typed_since = True
        elif kind == "command":
            events += script.run(value, typed_since)
            typed_since = False
        elif kind == "signal":
            events += step("signal", bytes([SIGNALS.get(value, 0)]))
        elif kind == "close output":
            events += step("output", bytes([GONE, 0]))
    extended = step("extended") if session.program else b""
    return extended + script.steps() + events


def requests_of(session):
    """What the session expects to be sent, as steps: a tenth of a second lies between requests."""
    for call in session.calls:
        sent = re.fullmatch(r"SendWiMAXMessage \d+ \d+ (\d+/\d+.*) -> \S+", call)
        if sent:
            yield message("message", parse_bytes(sent[1])) + step("pause", b"\1")


def messages_in(source):
    """The messages that a unit test writes as text."""
    joined = re.sub(r'"\s*\n\s*"', "", source)
    for text in re.findall(r'"(\d+/\d+(?: \|[^"]*)?)"', joined):
        try:
            yield parse_bytes(text)
        except FormatError:
            pass


# Attributes with a decoder of their own, and values that fill it.
ATTRIBUTES = {
    1448: 16, 1467: 4, 1468: 4, 1479: 16, 1482: 16, 1494: 60, 1503: 276, 1575: 108, 1608: 2520,
    1612: 40, 1619: 36, 1625: 6868, 1631: 32, 1633: 3, 1634: 16, 1649: 16, 1654: 32,
}  # fmt: skip


def special_steps():
    """What no session has."""
    keys = step("type", b"\n" * 13)
    for attribute, size in ATTRIBUTES.items():
        value = struct.pack("<I", 2) + bytes(i % 251 for i in range(size - 4)) if size > 4 else b"\1\2\3\4"[:size]
        record = struct.pack("<IB16xIb", attribute, 0, size, 0) + value
        yield message("message", struct.pack("<HH", 24, 2) + record) + keys
        yield message("message", struct.pack("<HHH", 24, 4, 2) + record * 2) + keys
    for aside in range(9):
        yield step("aside", bytes([aside]) + bytes(range(128))) + step("type", b"1\n3\n2500000\n2600000\n7\n")
        yield step("aside", bytes([aside, 1])) + step("type", b"2\n1\n-1\n")
    for kind in range(5):
        for first, second in ((1, 2), (2, 40), (3, 200)):
            yield (
                step("streams", bytes([kind, kind])) + step("type", b"1\n") + step("output", bytes([2, 255]))
                + step("signal", bytes([0, first])) + step("signal", bytes([1, second])) + step("type", b"2\n-1\n")
            )  # fmt: skip
    for call in range(6):
        for error in range(7):
            yield step("error", bytes([call, error])) + step("type", b"20\n7\n-1\n20\n-1\n-1\n")
            yield (
                step("extended") + step("type", b"2\n") + step("pause", b"\3")
                + step("error", bytes([call, error])) + step("type", b"\n-1\n")
            )  # fmt: skip


def byte_texts():
    for path in sorted((ROOT / "tests").glob("**/*")):
        if path.suffix in (".session", ".cpp"):
            for text in re.findall(r'(?:^@ \w+ |")([0-9][^"\n]* \| [^"\n]*)', path.read_text(errors="replace"), re.M):
                yield text.encode()


def control_texts():
    """The commands of each of the tests of steering, and what a saved modem looks like."""
    source = (ROOT / "tests/unit_sim/ControlTest.cpp").read_text()
    joined = re.sub(r'"\s*\n\s*"', "", source).replace("00120A010203", "00120A000101")
    for test in joined.split("TEST_F")[1:]:
        said = [(at.start(), at[1]) for at in re.finditer(r'Say\("((?:\\.|[^"\\])*)"', test)]
        said += [(at.start(), "> " + at[1]) for at in re.finditer(r'Send\("([^"]*)"', test)]
        said += [(at.start(), at[1]) for at in re.finditer(r'\{"((?:\\.|[^"\\])*)", "error', test)]
        lines = [text for _, text in sorted(said)]
        if lines:
            yield "\n".join(lines).encode().decode("unicode_escape").encode("latin-1")
    saved = (ROOT / "docs/control.md").read_text().split("```\n")
    for text in saved:
        if text.startswith("qor020-journal"):
            yield re.sub(r"(?m) {4,}.*$", "", text).encode()
    yield (b"qor020-journal 1\nscenario x\n|[clock]\n|kind = \"stepped\"\n|\njournal\ncallback on\n"
           b"send 0 24000100\nlive 5000000\ncommand seed 5\ntook 1\nlistener off\ncall\n"
           b"read 251658240 4\nwrite 251723776 5A\nend 1 313A285B4F76FDD5\n")


def seeds():
    for path in sorted((ROOT / "tests/sessions").glob("**/*.session")):
        session = Session(path)
        if session.scenario is None:
            data = steps_of(session)
            if len(data) < 20000:
                yield "console", data
                yield "callback", data
            requests = b"".join(requests_of(session))
            if 0 < len(requests) < 20000:
                yield "requests", requests
    for data in special_steps():
        yield "console", data
        yield "callback", data
    yield "state", b"oma-dm 1.4/0.1 A5A55A5A\nvendor 0 00FF\n"
    for path in sorted((ROOT / "tests/unit").glob("*.cpp")):
        for data in messages_in(path.read_text()):
            if len(data) >= 4:
                yield "callback", message("message", data) + step("type", b"\n" * 13)
                yield "console", message("message", data) + step("type", b"\n" * 13 + b"-1\n")
    for path in sorted((ROOT / "sim/scenarios").glob("*.toml")):
        yield "scenario", path.read_bytes()
    for text in re.findall(r'"((?:\\.|[^"\\])*\\n)"', (ROOT / "tests/unit_sim/ScenarioTest.cpp").read_text()):
        yield "scenario", text.encode().decode("unicode_escape").encode("latin-1")
    for text in control_texts():
        yield "control", text
    for text in byte_texts():
        yield "bytes", text


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("directory", type=pathlib.Path)
    directory = parser.parse_args().directory
    for number, (target, data) in enumerate(seeds()):
        (directory / target).mkdir(parents=True, exist_ok=True)
        (directory / target / f"seed-{number}").write_bytes(data)


if __name__ == "__main__":
    main()
