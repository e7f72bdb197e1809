#!/usr/bin/env python3
"""Runs a session file: types into the client, compares what it prints and what it asks of the
device library. README.md beside this file describes the format."""

import argparse
import difflib
import fcntl
import os
import pathlib
import re
import selectors
import shlex
import signal
import subprocess
import sys
import tempfile
import termios
import time

from recording import capture

LIFE_CYCLE = ("OpenWiMAXDevice", "RegisterCallback", "CloseWiMAXDevice")
SANITIZERS = {
    "ASAN_OPTIONS": "detect_leaks=1:exitcode=99",
    "UBSAN_OPTIONS": "print_stacktrace=1:halt_on_error=1",
    "TSAN_OPTIONS": "exitcode=98:halt_on_error=0",
}
# On an emulator everything takes longer: a wait may take this many times as long.
EMULATOR_PATIENCE = 6
# How much of what was seen before stands above a difference.
CONTEXT_LINES = 3
# How long a client that goes on printing is read when the session has failed.
SETTLE_SECONDS = 2


class Failure(Exception):
    """The session did not go as written."""


class FormatError(Exception):
    """The session file cannot be understood."""


def unescape(text):
    """C escapes: \\n \\t \\r \\\\ \\xHH \\0."""
    return re.sub(
        rb"\\(x[0-9A-Fa-f]{2}|.)",
        lambda match: bytes([int(match[1][1:], 16)])
        if len(match[1]) == 3
        else {b"n": b"\n", b"t": b"\t", b"r": b"\r", b"0": b"\0"}.get(match[1], match[1]),
        text,
    )


def parse_bytes(text):
    """Bytes as the scripted library's commands write them."""
    result = b""
    for word in re.findall(r'"[^"]*"(?:\*\d+)?|\S+', text):
        if word == "|":
            continue
        match = re.fullmatch(r'(?P<item>"[^"]*"|[^*]+)(?:\*(?P<times>\d+))?', word)
        if not match:
            raise FormatError(f"these are no bytes: {word}")
        item = match["item"]
        try:
            if item.startswith('"'):
                data = item[1:-1].encode("latin-1")
            elif "/" in item:
                data = b"".join(int(half).to_bytes(2, "little") for half in item.split("/"))
            elif ":" in item:
                value, width = (int(half) for half in item.split(":"))
                data = (value % (1 << (8 * width))).to_bytes(width, "little")
            else:
                data = bytes.fromhex(item)
        except (ValueError, OverflowError) as error:
            raise FormatError(f"these are no bytes: {word}") from error
        result += data * int(match["times"] or 1)
    return result


def format_bytes(data):
    """Hexadecimal, four or more equal bytes in a row as 00*12, as the record has it."""
    words = []
    for match in re.finditer(rb"(.)\1*", data, re.DOTALL):
        run = len(match[0])
        words += [f"{match[1][0]:02x}*{run}"] if run >= 4 else [f"{match[1][0]:02x}"] * run
    return " ".join(words)


def normal_call(text):
    """A call line with its bytes written as the record writes them."""
    match = re.fullmatch(r"([^|]*?)\s*(?:\|\s*(.*?))?(?:\s*->\s*(\S+))?", text.strip())
    head, data, result = match.groups()
    line = " ".join(head.split())
    if data:
        line += " | " + format_bytes(parse_bytes(data))
    return f"{line} -> {result or 0}"


def sent_call(text):
    """The short form of a send: handle 1, the length that its bytes have, accepted."""
    match = re.fullmatch(r"(\d+/\d+)\s*(?:\|\s*(.*?))?(?:\s*->\s*(\S+))?", text.strip())
    if not match:
        raise FormatError(f"not TYPE/SUBTYPE | BYTES: {text}")
    length = 4 + len(parse_bytes(match[2] or ""))
    payload = f" | {match[2]}" if match[2] else ""
    return normal_call(f"SendWiMAXMessage 1 {length} {match[1]}{payload} -> {match[3] or 0}")


class Session:
    """A session file, read: settings and steps."""

    def __init__(self, path):
        self.path = pathlib.Path(path)
        self.pty = False
        self.program = None  # None: the client
        self.scenario = None  # None: the scripted library
        self.timeout = 10.0
        self.status = None
        self.stderr = b""
        self.lasts = None
        self.environment = {}
        self.given = {}  # file name -> content before the start
        self.files = {}  # file name -> expected content
        self.held = []  # (file name, text that it holds)
        self.calls = []
        self.checks_calls = False
        self.script = []
        self.steps = []  # (kind, value, line number)
        self.sink = None  # list of pieces that bar lines go to
        self.file_sink = False  # whether that is a file's
        for number, line in enumerate(self.path.read_bytes().split(b"\n"), 1):
            try:
                self.read_line(line, number)
            except (FormatError, ValueError, OSError) as error:
                raise FormatError(f"{self.path}:{number}: {error}") from error
        if self.status is None:
            raise FormatError(f"{self.path}: no exit status given")

    def step(self, kind, value, number):
        self.sink, self.file_sink = None, False
        self.steps.append((kind, value, number))

    def add_piece(self, piece, number):
        """Pieces are (joins, text): lines join with a line end, snippets with nothing."""
        is_snippet = not piece[0]
        if self.sink is None or (self.file_sink and is_snippet):
            self.sink, self.file_sink = [], False
            self.steps.append(("output", self.sink, number))
        self.sink.append(piece)

    def read_line(self, line, number):
        if not line.strip() and self.file_sink:
            self.sink, self.file_sink = None, False
        if not line.strip() or line.startswith(b"#"):
            return
        if line.startswith((b"|", b"\\|")):
            self.add_piece((True, self.output_line(line)), number)
            return
        word, _, rest = line.partition(b" ")
        text = rest.decode("latin-1")
        name = word.decode("latin-1")
        if name == "=":
            self.add_piece((False, self.snippet(text.strip())), number)
        elif name == ">":
            self.step("type", rest + b"\n", number)
        elif name == ">>":
            self.step("type", unescape(rest), number)
        elif name == "repeat":
            times, _, repeated = rest.partition(b" ")
            self.step("type", unescape(repeated) * int(times), number)
        elif name == "~":
            self.step("await", unescape(rest), number)
        elif name == "@":
            if self.steps:
                self.step("command", text.strip(), number)
            else:
                self.script.append(text.strip())
        elif name == "signal":
            self.step("signal", getattr(signal, "SIG" + text.strip()), number)
        elif name in ("eof", "..."):
            self.step(name, None, number)
        elif line.strip() == b"close output":
            self.step("close output", None, number)
        elif name == "call":
            self.checks_calls = True
            if text.strip() != "none":
                self.calls.append(normal_call(text))
        elif name == "sent":
            self.checks_calls = True
            self.calls.append(sent_call(text))
        elif name == "exit":
            self.status = int(text)
        elif name == "pty":
            self.pty = True
        elif name == "scenario":
            self.scenario = text.strip()
        elif name == "program":
            self.program = text.strip()
        elif name == "timeout":
            self.timeout = float(text)
        elif name == "stderr":
            self.stderr += unescape(rest) + b"\n"
        elif name == "lasts":
            self.lasts = tuple(float(part) for part in text.split())
        elif name == "env":
            key, _, value = text.strip().partition("=")
            self.environment[key] = value
        elif name == "holds":
            file_name, _, part = rest.partition(b" ")
            self.held.append((file_name.decode("latin-1"), unescape(part)))
        elif name in ("given", "file"):
            file_name, _, data = text.strip().partition(" ")
            content = [(False, parse_bytes(data))]
            (self.given if name == "given" else self.files)[file_name] = content
            self.sink, self.file_sink = (None, False) if data else (content, True)
        else:
            raise FormatError(f"unknown line: {line.decode('latin-1')}")

    @staticmethod
    def output_line(line):
        escaped = line.startswith(b"\\")
        line = line.lstrip(b"\\").rstrip(b"\r")
        if len(line) < 2 or not line.endswith(b"|"):
            raise FormatError("an output line ends with a bar")
        return unescape(line[1:-1]) if escaped else line[1:-1]

    def snippet(self, name):
        for directory in [self.path.parent, *self.path.parents]:
            path = directory / "snippets" / (name + ".txt")
            if path.is_file():
                lines = path.read_bytes().split(b"\n")
                return b"\n".join(
                    self.output_line(line) for line in lines if line.startswith((b"|", b"\\|"))
                )
        raise FormatError(f"no snippet {name}")

    @staticmethod
    def joined(pieces):
        """Neighbouring lines join with a line end; snippets join as they are."""
        text = b""
        after_line = False
        for is_line, piece in pieces:
            text += (b"\n" if is_line and after_line else b"") + piece
            after_line = is_line
        return text


def bars(text):
    """Output as session lines, to be read and compared."""
    shown = []
    for line in text.split(b"\n"):
        plain = all(32 <= byte < 127 or byte == 9 for byte in line)
        escaped = line.decode("latin-1").encode("unicode_escape").decode("ascii")
        shown.append(f"|{line.decode('ascii')}|" if plain else f"\\|{escaped}|")
    return shown


def difference(expected, got):
    return "\n".join(
        difflib.unified_diff(bars(expected), bars(got), "expected", "got", n=CONTEXT_LINES, lineterm="")
    )


def heed_signals():
    """A signal that was ignored where the tests were started (nohup) is not ignored in them."""
    for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
        if signal.getsignal(number) == signal.SIG_IGN:
            signal.signal(number, signal.SIG_DFL)


class Client:
    """The client as a process, its output and the library's record read as they come."""

    def __init__(self, session, options, directory):
        self.session = session
        self.timeout = session.timeout * (EMULATOR_PATIENCE if options.emulator else 1)
        self.output = b""
        self.errors = b""
        self.record = b""
        self.record_lines = []
        self.done = 0
        self.master = None
        self.control = None
        self.reads_output = True
        self.recording = None
        self.descriptors = []
        self.selector = selectors.DefaultSelector()
        environment = {**os.environ, **SANITIZERS, **session.environment}
        for key in ("QOR020_SCRIPT", "QOR020_CONTROL", "QOR020_RECORD", "QOR020_SCENARIO"):
            environment.pop(key, None)
        scripted = session.scenario is None
        library = options.scripted if scripted else options.simulated
        os.symlink(os.path.abspath(library), directory / "libqor020.so")
        for name, pieces in session.given.items():
            (directory / name).write_bytes(session.joined(pieces))
        if scripted:
            self.set_up_library(session, directory, environment)
        elif session.scenario:
            environment["QOR020_SCENARIO"] = str(self.find_scenario(session, options))
        self.start(session, options, directory, environment)

    @staticmethod
    def find_scenario(session, options):
        if session.scenario in session.given:
            return session.scenario
        for directory in (session.path.parent, pathlib.Path(options.scenarios or ".")):
            path = directory / session.scenario
            if path.exists():
                return path.resolve()
        raise FormatError(f"no scenario {session.scenario}")

    def set_up_library(self, session, directory, environment):
        outside = pathlib.Path(tempfile.mkdtemp(dir=directory.parent, prefix="library."))
        (outside / "script").write_text("".join(line + "\n" for line in session.script), "latin-1")
        for name in ("control", "record"):
            os.mkfifo(outside / name)
        # Opened for both directions neither pipe has an end while the client comes and goes.
        self.control = os.open(outside / "control", os.O_RDWR)
        record = os.open(outside / "record", os.O_RDWR | os.O_NONBLOCK)
        self.descriptors += [self.control, record]
        self.selector.register(record, selectors.EVENT_READ, "record")
        environment["QOR020_SCRIPT"] = str(outside / "script")
        environment["QOR020_CONTROL"] = str(outside / "control")
        environment["QOR020_RECORD"] = str(outside / "record")

    def start(self, session, options, directory, environment):
        common = dict(cwd=directory, env=environment, stderr=subprocess.PIPE, close_fds=True)
        client = pathlib.Path(options.client).absolute()
        heed_signals()
        program = client.with_name(session.program) if session.program else client
        command = [*options.emulator, program]
        if getattr(options, "recorder", None):
            command = self.recorded(command, options, directory, environment)
        if session.pty:
            self.master, slave = os.openpty()
            self.process = subprocess.Popen(
                command,
                stdin=slave,
                stdout=slave,
                start_new_session=True,
                preexec_fn=lambda: fcntl.ioctl(0, termios.TIOCSCTTY, 0),
                **common,
            )
            os.close(slave)
            self.descriptors.append(self.master)
            self.input = self.master
            self.screen = self.master
        else:
            self.process = subprocess.Popen(
                command, stdin=subprocess.PIPE, stdout=subprocess.PIPE, bufsize=0, **common
            )
            self.input = self.process.stdin.fileno()
            self.screen = self.process.stdout.fileno()
        self.selector.register(self.screen, selectors.EVENT_READ, "output")
        self.selector.register(self.process.stderr.fileno(), selectors.EVENT_READ, "errors")

    def recorded(self, command, options, directory, environment):
        """The command with the recorder in front of the library."""
        recorder = os.path.abspath(options.recorder)
        self.recording = directory.parent / "session.pcapng"
        environment["QOR020_RECORDING"] = str(self.recording)
        environment["ASAN_OPTIONS"] = SANITIZERS["ASAN_OPTIONS"] + ":verify_asan_link_order=0"
        if options.emulator:
            return [*command[:-1], "-E", f"LD_PRELOAD={recorder}", command[-1]]
        environment["LD_PRELOAD"] = recorder
        return command

    def pump(self, seconds):
        """Takes what has come; waits for something at most that long. False: nothing came."""
        events = self.selector.select(seconds)
        for key, _ in events:
            try:
                chunk = os.read(key.fd, 65536)
            except OSError:  # a pseudo-terminal ends like this
                chunk = b""
            if not chunk:
                self.selector.unregister(key.fd)
            elif key.data == "output":
                self.output += chunk.replace(b"\r\n", b"\n") if self.session.pty else chunk
            elif key.data == "errors":
                self.errors += chunk
            else:
                self.take_record(chunk)
        return bool(events)

    def take_record(self, chunk):
        self.record += chunk
        *lines, self.record = self.record.split(b"\n")
        for line in lines:
            text = line.decode("latin-1")
            self.record_lines.append(text)
            self.done += text.startswith("done ")

    def running(self):
        """Whether the client still holds its output, or its errors when we closed the output."""
        streams = {key.data for key in self.selector.get_map().values()}
        return ("output" if self.reads_output else "errors") in streams

    def wait_for(self, condition, what):
        deadline = time.monotonic() + self.timeout
        while not condition():
            rest = deadline - time.monotonic()
            if rest <= 0:
                raise Failure(f"timed out waiting for {what}")
            if not self.running():
                self.settle()
                if not condition():
                    raise Failure(f"the client ended while waiting for {what}")
                return
            self.pump(rest)

    def settle(self):
        """Reads the rest of what an ended client left, or what comes next for a failure: not all
        that a client prints which never stops."""
        deadline = time.monotonic() + SETTLE_SECONDS
        while time.monotonic() < deadline and self.pump(0.3 if self.running() else 0):
            pass

    def type(self, data):
        try:
            while data:
                data = data[os.write(self.input, data[:4096]) :]
                while self.pump(0):
                    pass
        except BrokenPipeError as error:
            raise Failure("the client does not read its input any more") from error

    def end_input(self):
        if self.session.pty:
            self.type(b"\x04")
        else:
            self.process.stdin.close()

    def close_output(self):
        self.selector.unregister(self.screen)
        self.process.stdout.close()
        self.reads_output = False

    def command(self, text):
        if self.control is None:
            raise Failure("commands are for the scripted library")
        before = self.done + sum(line.startswith("error ") for line in self.record_lines)
        os.write(self.control, text.encode("latin-1") + b"\n")
        self.wait_for(
            lambda: self.done + sum(line.startswith("error ") for line in self.record_lines)
            > before,
            f"the library to do: {text}",
        )

    def expect(self, expected):
        def decided():
            return len(self.output) >= len(expected) or not expected.startswith(self.output)

        try:
            self.wait_for(decided, "output")
        except Failure as failure:
            raise Failure(f"{failure}\n{difference(expected, self.output)}") from failure
        if not self.output.startswith(expected):
            self.settle()
            raise Failure("other output than expected\n" + difference(expected, self.output))
        self.output = self.output[len(expected) :]

    def expect_somewhere(self, text):
        try:
            self.wait_for(lambda: text in self.output, repr(text))
        except Failure as failure:
            seen = "\n".join(bars(self.output))
            raise Failure(f"{failure}; since the last match there came\n{seen}") from failure
        self.output = self.output[self.output.index(text) + len(text) :]

    def finish(self):
        """Waits for the end; returns the exit status."""
        deadline = time.monotonic() + self.timeout
        while {"output", "errors"} & {key.data for key in self.selector.get_map().values()}:
            rest = deadline - time.monotonic()
            if rest <= 0:
                raise Failure("timed out waiting for the client to end")
            self.pump(rest)
        try:
            status = self.process.wait(max(deadline - time.monotonic(), 1))
        except subprocess.TimeoutExpired as error:
            raise Failure("timed out waiting for the client to end") from error
        while self.pump(0):
            pass
        return status

    def kill(self):
        if self.process.poll() is None:
            self.process.kill()
            self.process.wait()

    def close(self):
        self.kill()
        self.selector.close()
        for stream in (self.process.stdin, self.process.stdout, self.process.stderr):
            if stream:
                stream.close()
        for descriptor in self.descriptors:
            os.close(descriptor)


def take_step(session, client, kind, value):
    if kind == "output":
        client.expect(session.joined(value))
    elif kind == "await":
        client.expect_somewhere(value)
    elif kind == "type":
        client.type(value)
    elif kind == "command":
        client.command(value)
    elif kind == "signal":
        client.process.send_signal(value)
    elif kind == "eof":
        client.end_input()
    elif kind == "close output":
        client.close_output()


def play_steps(session, client, steps):
    for kind, value, number in steps:
        try:
            take_step(session, client, kind, value)
        except Failure as failure:
            raise Failure(f"{session.path}:{number}: {failure}") from failure


def play(session, client):
    play_steps(session, client, session.steps)
    status = client.finish()
    ignore_rest = any(kind == "..." for kind, _, _ in session.steps)
    if client.output and not ignore_rest:
        raise Failure("output that the session does not have\n" + "\n".join(bars(client.output)))
    return status


def check_status(session, status):
    if status < 0:
        raise Failure(f"the client was killed by {signal.Signals(-status).name}")
    if status != session.status:
        raise Failure(f"exit status {status}, expected {session.status}")


def check_calls(session, client):
    wrong = [line for line in client.record_lines if line.startswith("error ")]
    if wrong:
        raise Failure("the scripted library says: " + "; ".join(wrong))
    if not session.checks_calls:
        return
    leave_out = () if any(call.startswith(LIFE_CYCLE) for call in session.calls) else LIFE_CYCLE
    others = ("done ", "delivered ", "dropped ")
    got = [line for line in client.record_lines if not line.startswith(others + leave_out)]
    if got != session.calls:
        lines = difflib.unified_diff(session.calls, got, "expected", "got", n=99, lineterm="")
        raise Failure("other calls than expected\n" + "\n".join(lines))


def check_files(session, directory):
    for name, pieces in session.files.items():
        path = directory / name
        if not path.is_file():
            raise Failure(f"the file {name} was not written")
        expected, got = session.joined(pieces), path.read_bytes()
        if got != expected:
            raise Failure(f"the file {name} is another one\n{difference(expected, got)}")
    for name, text in session.held:
        path = directory / name
        if not path.is_file() or text not in path.read_bytes():
            raise Failure(f"the file {name} does not hold {text!r}")


def recorded_call(call, result):
    """A recorded call as the scripted library's record has it."""
    null = call.flags & capture.NULL
    data = f" | {format_bytes(call.data)}" if call.data else ""
    if call.kind == "open":
        return f"OpenWiMAXDevice -> {'fail' if result.result == -1 else result.result}"
    if call.kind == "close":
        return f"CloseWiMAXDevice -> {result.result}"
    if call.kind == "register":
        null = "null " if null else ""
        return f"RegisterCallback {call.handle} {null}{call.word} -> {result.result}"
    if call.kind == "send":
        sent = "null" if null else message_text(call.data)
        return f"SendWiMAXMessage {call.handle} {call.length} {sent} -> {result.result}"
    name = "rdm" if call.kind == "read" else "wrm"
    null = " null" if null else ""
    return f"{name} 0x{call.word:08x} {call.length}{null}{data} -> {result.result}"


def message_text(data):
    kind, subtype = (int.from_bytes(half, "little") for half in (data[:2], data[2:4]))
    return f"{kind}/{subtype}" + (f" | {format_bytes(data[4:])}" if data[4:] else "")


def check_recording(client):
    """The recording has the calls that the library has, and the messages."""
    recording = capture.Capture(client.recording).check()
    ends = {event.belongs_to: event for event in recording.events}
    calls = [recorded_call(event, ends[event.number])
             for event in recording.of(*capture.CALLS) if event.number in ends]
    others = ("done ", "delivered ", "dropped ", "error ")
    expected = [line for line in client.record_lines if not line.startswith(others)]
    if client.control is not None and calls != expected:
        lines = difflib.unified_diff(expected, calls, "library", "recording", n=3, lineterm="")
        raise Failure("other calls in the recording\n" + "\n".join(lines))
    delivered = [line.split(" ", 1)[1] for line in client.record_lines
                 if line.startswith("delivered ")]
    messages = recording.of("message")
    if client.control is not None and not 0 <= len(messages) - len(delivered) <= 1:
        raise Failure(f"{len(messages)} messages recorded, {len(delivered)} delivered")
    for text, message in zip(delivered, messages):
        data = b"" if text == "null" else parse_bytes(text)
        if (text == "null") != bool(message.flags & capture.NULL) or (
            message.data.rstrip(b"\0") != data.rstrip(b"\0")
        ):
            raise Failure(f"delivered {text}, but recorded {message}")


def check_all(session, client, directory, status):
    check_calls(session, client)
    if client.recording is not None:
        check_recording(client)
    check_files(session, directory)
    if client.errors != session.stderr:
        raise Failure("on standard error")
    check_status(session, status)


def run(session, options):
    with tempfile.TemporaryDirectory(prefix="session.") as top:
        directory = pathlib.Path(top) / "work"
        directory.mkdir()
        began = time.monotonic()
        client = Client(session, options, directory)
        try:
            status = play(session, client)
            took = time.monotonic() - began
            check_all(session, client, directory, status)
            if session.lasts and not session.lasts[0] <= took <= session.lasts[1]:
                raise Failure(f"took {took:.1f} s, expected {session.lasts}")
        except Failure:
            client.kill()
            client.settle()
            sys.stderr.write(client.errors.decode("utf-8", "replace"))
            if options.verbose:
                print("\n".join(client.record_lines))
            raise
        finally:
            client.close()


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
