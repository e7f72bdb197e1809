"""Session files: what is typed into the client, what it prints, what is asked of the device library.
docs/sessions.md describes the format."""

import math
import pathlib
import re
import signal
import stat

# What a session may take in memory, so that no file of a few lines takes all of it.
MOST_FILE_BYTES = 4 << 20
MOST_BYTES = 64 << 20
MOST_NESTED = 16
SHOWN_OF_A_LINE = 80

DAY = 24 * 60 * 60
UNITS = {"ms": 0.001, "s": 1, "min": 60, "h": 60 * 60}
# What only some of the modems can do, by the word that asks for it.
SCRIPTED_WORDS = ("@", "call", "sent")
SIMULATED_WORDS = ("modem",)
NAME = "[A-Za-z0-9_-]{1,64}"
# Settings whose blanks count.
UNSTRIPPED = ("stderr", "holds")


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


def repeated(data, times):
    if len(data) * times > MOST_BYTES:
        raise FormatError("too many bytes")
    return data * times


def parse_bytes(text):
    """Bytes as the scripted library's commands write them."""
    result = bytearray()
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
                if not 1 <= width <= 8:
                    raise ValueError
                data = (value % (1 << (8 * width))).to_bytes(width, "little")
            else:
                data = bytes.fromhex(item)
            result += repeated(data, int(match["times"] or 1))
        except (ValueError, OverflowError) as error:
            raise FormatError(f"these are no bytes: {word}") from error
        if len(result) > MOST_BYTES:
            raise FormatError("too many bytes")
    return bytes(result)


def format_bytes(data):
    """Hexadecimal, four or more equal bytes in a row as 00*12, as the record has it."""
    words = []
    for match in re.finditer(rb"(.)\1*", data, re.DOTALL):
        run = len(match[0])
        words += [f"{match[1][0]:02x}*{run}"] if run >= 4 else [f"{match[1][0]:02x}"] * run
    return " ".join(words)


def split_call(text):
    """A call's words, its bytes, its result ("0" when it has none)."""
    head, arrow, result = text.rpartition("->")
    if not arrow or len(result.split()) != 1:
        head, result = text, "0"
    words, _, data = head.partition("|")
    return words.split(), data.strip(), result.strip()


def normal_call(text):
    """A call line with its bytes written as the record writes them."""
    words, data, result = split_call(text)
    payload = f" | {format_bytes(parse_bytes(data))}" if data else ""
    return f"{' '.join(words)}{payload} -> {result}"


def sent_call(text):
    """The short form of a send: handle 1, the length that its bytes have, accepted."""
    words, data, result = split_call(text)
    if len(words) != 1 or not re.fullmatch(r"\d+/\d+", words[0]):
        raise FormatError(f"not TYPE/SUBTYPE | BYTES: {text}")
    length = 4 + len(parse_bytes(data))
    payload = f" | {data}" if data else ""
    return normal_call(f"SendWiMAXMessage 1 {length} {words[0]}{payload} -> {result}")


def number(text, least, most):
    if not re.fullmatch(r"\d{1,10}", text) or not least <= int(text) <= most:
        raise FormatError(f"not a number from {least} to {most}: {text}")
    return int(text)


def seconds(text):
    try:
        value = float(text)
    except ValueError:
        value = math.nan
    if not 0 <= value <= DAY:
        raise FormatError(f"not a number of seconds: {text}")
    return value


def duration(text):
    """5 s, 200 ms, 2 min, 1 h; at most a day."""
    match = re.fullmatch(r"(\d{1,9}(?:\.\d{1,9})?)\s*(ms|s|min|h)", text)
    value = float(match[1]) * UNITS[match[2]] if match else 0
    if not 0 < value <= DAY:
        raise FormatError(f"not a time such as 5 s, 200 ms, 2 min: {text}")
    return value


def plain_name(text):
    if not re.fullmatch(NAME, text):
        raise FormatError(f"not a name of letters, digits, - and _: {text}")
    return text


def file_name(text):
    """A file in the session's own folder, and not the library that lies there."""
    if not text or "/" in text or "\0" in text or text in (".", "..", "libqor020.so"):
        raise FormatError(f"not the name of a file in the working directory: {text}")
    return text


def shown(text):
    """A message on one line, whatever the file has in it."""
    line = "".join(char if 32 <= ord(char) < 127 else ascii(char)[1:-1] for char in text)
    return line if len(line) <= 4 * SHOWN_OF_A_LINE else line[: 4 * SHOWN_OF_A_LINE] + "..."


class Session:
    """A session file, read: settings and steps. values are those that ${name} stands for."""

    def __init__(self, path, values=None):
        self.path = pathlib.Path(path)
        self.values = dict(values or {})
        self.names = set()  # that the file has values for, or uses
        self.pty = False
        self.program = None  # None: the client
        self.scenario = None  # None: the scripted library
        self.timeout = 10.0
        self.limit = None
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
        self.words = {}  # first word of a line -> the first line that has it
        self.loops = []  # steps around the open loop, and its times and line
        self.started = set()
        self.bytes = 0
        self.sink = None  # list of pieces that bar lines go to
        self.file_sink = False  # whether that is a file's
        try:
            lines = self.content().split(b"\n")
        except (OSError, ValueError) as error:
            reason = getattr(error, "strerror", None) or error
            raise FormatError(shown(f"{self.path}: {reason}")) from error
        for line_number, line in enumerate(lines, 1):
            try:
                self.read_line(line, line_number)
            except (FormatError, ValueError, OSError) as error:
                raise FormatError(shown(f"{self.path}:{line_number}: {error}")) from error
        if self.loops:
            raise FormatError(shown(f"{self.path}:{self.loops[-1][2]}: the loop has no end"))
        if self.status is None:
            raise FormatError(shown(f"{self.path}: no exit status given"))

    def content(self):
        """Of a regular file, so that no pipe is waited for."""
        if not stat.S_ISREG(self.path.stat().st_mode):
            raise ValueError("not a regular file")
        with open(self.path, "rb") as file:
            data = file.read(MOST_FILE_BYTES + 1)
        if len(data) > MOST_FILE_BYTES:
            raise ValueError(f"longer than {MOST_FILE_BYTES} bytes")
        return data

    def keep(self, data):
        """Counts what the session keeps in memory."""
        self.bytes += len(data)
        if self.bytes > MOST_BYTES:
            raise FormatError("too many bytes")
        return data

    def step(self, kind, value, line_number):
        self.sink, self.file_sink = None, False
        self.steps.append((kind, value, line_number))

    def add_piece(self, piece, line_number):
        """Pieces are (joins, text): lines join with a line end, snippets with nothing."""
        is_snippet = not piece[0]
        if self.sink is None or (self.file_sink and is_snippet):
            self.sink, self.file_sink = [], False
            self.steps.append(("output", self.sink, line_number))
        self.sink.append(piece)

    def substituted(self, line):
        """${name} is a value, $${ is ${."""

        def value(match):
            name, end = match[1], match[2]
            if name is None:
                return b"${"
            name = name.decode("latin-1")
            if not end or not re.fullmatch(NAME, name):
                raise FormatError("not ${name}, of letters, digits, - and _")
            self.names.add(name)
            if name not in self.values:
                raise FormatError(f"${{{name}}} has no value")
            return self.keep(self.values[name])

        return re.sub(rb"\$(?:\$\{|\{([^}]{0,64})(\}?))", value, line) if b"${" in line else line

    def read_line(self, line, line_number):
        if not line.strip() and self.file_sink:
            self.sink, self.file_sink = None, False
        if not line.strip() or line.startswith(b"#"):
            return
        line = self.substituted(line)
        if line.startswith((b"|", b"\\|")):
            self.add_piece((True, self.output_line(line)), line_number)
            return
        word, _, rest = line.partition(b" ")
        name = word.decode("latin-1").strip()
        self.words.setdefault(name, line_number)
        reader = STEPS.get(name)
        if reader:
            reader(self, rest, line_number)
            return
        reader = SETTINGS.get(name)
        if not reader:
            text = line.decode("latin-1")
            raise FormatError(f"unknown line: {text[:SHOWN_OF_A_LINE]}")
        text = rest.decode("latin-1")
        reader(self, text if name in UNSTRIPPED else text.strip())

    @staticmethod
    def output_line(line):
        escaped = line.startswith(b"\\")
        line = line.lstrip(b"\\").rstrip(b"\r")
        if len(line) < 2 or not line.endswith(b"|"):
            raise FormatError("an output line ends with a bar")
        return unescape(line[1:-1]) if escaped else line[1:-1]

    def snippet(self, name):
        if "/" not in name and "\0" not in name:
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

    def read_output(self, rest, line_number):
        piece = self.keep(self.snippet(rest.decode("latin-1").strip()))
        self.add_piece((False, piece), line_number)

    def read_repeat(self, rest, line_number):
        times, blank, text = rest.partition(b" ")
        times = number(times.decode("latin-1").strip(), 1, 10**9)
        if blank:
            self.step("type", self.keep(repeated(unescape(text), times)), line_number)
            return
        if len(self.loops) == MOST_NESTED:
            raise FormatError(f"more than {MOST_NESTED} loops in each other")
        self.sink, self.file_sink = None, False
        self.loops.append((self.steps, times, line_number))
        self.steps = []

    def read_end(self, rest, _):
        if rest.strip() or not self.loops:
            raise FormatError("no loop to end")
        if not self.steps:
            raise FormatError("nothing to repeat")
        body, (self.steps, times, line_number) = self.steps, self.loops.pop()
        self.step("loop", (times, body), line_number)

    def read_command(self, rest, line_number):
        text = rest.decode("latin-1").strip()
        if self.steps or self.loops:
            self.step("command", text, line_number)
        else:
            self.script.append(text)

    def read_signal(self, rest, line_number):
        name = rest.decode("latin-1").strip()
        if "SIG" + name not in signal.Signals.__members__:
            raise FormatError(f"no signal {name}")
        self.step("signal", signal.Signals["SIG" + name], line_number)

    def read_close(self, rest, line_number):
        if rest.strip() != b"output":
            raise FormatError("what is closed is the output")
        self.step("close output", None, line_number)

    def read_within(self, rest, line_number):
        self.step("within", duration(rest.decode("latin-1").strip()), line_number)

    def read_start(self, rest, line_number):
        name = plain_name(rest.decode("latin-1").strip())
        self.started.add(name)
        self.step("start", name, line_number)

    def read_stop(self, rest, line_number):
        name, less, most = rest.decode("latin-1").partition("<")
        name = plain_name(name.strip())
        if name not in self.started:
            raise FormatError(f"{name} has not been started")
        self.step("stop", (name, duration(most.strip()) if less else None), line_number)

    def set_calls(self, text):
        self.checks_calls = True
        if text != "none":
            self.calls.append(self.keep(normal_call(text)))

    def set_sent(self, text):
        self.checks_calls = True
        self.calls.append(self.keep(sent_call(text)))

    def set_scenario(self, text):
        if "\0" in text:
            raise FormatError("not a file's name")
        self.scenario = text

    def set_lasts(self, text):
        self.lasts = tuple(seconds(part) for part in text.split())
        if len(self.lasts) != 2:
            raise FormatError("not two numbers of seconds")

    def set_environment(self, text):
        key, equals, value = text.partition("=")
        if not key or not equals or "\0" in text:
            raise FormatError("not NAME=VALUE")
        self.environment[key] = value

    def set_held(self, text):
        name, _, part = text.partition(" ")
        self.held.append((file_name(name), unescape(part.encode("latin-1"))))

    def set_value(self, text):
        name, equals, value = text.partition("=")
        if not equals:
            raise FormatError("not NAME=VALUE")
        self.names.add(plain_name(name))
        self.values.setdefault(name, value.encode("latin-1"))

    def set_file(self, files, text):
        name, _, data = text.partition(" ")
        content = [(False, self.keep(parse_bytes(data)))]
        files[file_name(name)] = content
        self.sink, self.file_sink = (None, False) if data else (content, True)


def step_with(kind, value):
    """A step whose value is made of the rest of the line."""
    return lambda session, rest, line_number: session.step(kind, value(session, rest), line_number)


def setting(attribute, value):
    return lambda session, text: setattr(session, attribute, value(session, text))


STEPS = {
    "=": Session.read_output,
    ">": step_with("type", lambda session, rest: rest + b"\n"),
    ">>": step_with("type", lambda session, rest: unescape(rest)),
    "repeat": Session.read_repeat,
    "end": Session.read_end,
    "~": step_with("await", lambda session, rest: unescape(rest)),
    "@": Session.read_command,
    "modem": step_with("modem", lambda session, rest: rest.strip()),
    "within": Session.read_within,
    "start": Session.read_start,
    "stop": Session.read_stop,
    "signal": Session.read_signal,
    "eof": step_with("eof", lambda session, rest: None),
    "...": step_with("...", lambda session, rest: None),
    "close": Session.read_close,
}
SETTINGS = {
    "call": Session.set_calls,
    "sent": Session.set_sent,
    "exit": setting("status", lambda session, text: number(text, 0, 255)),
    "pty": setting("pty", lambda session, text: True),
    "scenario": Session.set_scenario,
    "program": setting("program", lambda session, text: file_name(text)),
    "timeout": setting("timeout", lambda session, text: seconds(text)),
    "limit": setting("limit", lambda session, text: duration(text)),
    "stderr": setting(
        "stderr",
        lambda session, text: session.stderr + unescape(text.encode("latin-1")) + b"\n",
    ),
    "lasts": Session.set_lasts,
    "env": Session.set_environment,
    "holds": Session.set_held,
    "given": lambda session, text: session.set_file(session.given, text),
    "file": lambda session, text: session.set_file(session.files, text),
    "set": Session.set_value,
}
