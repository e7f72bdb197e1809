"""The client under a storm: a process whose every stream, signal and library thread a test holds
in its hand."""

import array
import contextlib
import fcntl
import os
import pathlib
import pty
import re
import resource
import select
import signal
import socket
import subprocess
import sys
import tempfile
import termios
import time

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1]))
from run_session import SANITIZERS, Session  # noqa: E402

# A wait that lasts so long has failed.
PATIENCE = 20.0
# What the client may take to end, and what a machine with too much to do may make of it: some have
# kept a terminal's output waiting for seconds.
SOON = 0.5
LATE = PATIENCE

TRACE_HEAD = b"\n~~~~~~~~~~MAC MGMT INDICATION ~~~~~~~~~~\n"
TRACE_TAIL = b"\n\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n"


def trace(thread, number, most):
    """The report of a traced message, as the storm's threads send it."""
    count = number * 37 % (most + 1)
    text = TRACE_HEAD + b"\nFRAME NUMBER : 0x%X\nMESSAGE DIRECTION : BS to MS" % number
    text += b"\nMESSAGE : (CODE : 4) Ranging Request "
    if count:
        text += b"\nData (%d) bytes :\n" % count + b" 0x%02x" % (number & 0xFF) * count + b"\n"
    return text + b"\nCID  :  0x%X\nCMAC OK  :  1" % thread + TRACE_TAIL


def snippet(name):
    """A text of the sessions."""
    path = pathlib.Path(__file__).resolve().parents[1] / "sessions" / "snippets" / f"{name}.txt"
    lines = [line for line in path.read_bytes().split(b"\n") if line.startswith((b"|", b"\\|"))]
    return b"\n".join(Session.output_line(line) for line in lines)


MAIN_MENU = snippet("main-menu")
INVALID = b"\nSORRY!! INVALID OPTION!!"
PROMPT = b"\nENTER OPTION : "


class Broken(AssertionError):
    """The client did something else than it should."""


class Stream:
    """An output, parted: trace reports, each of which must be whole, and what is left."""

    def __init__(self, output, most):
        self.numbers = {}  # of the reports, by thread
        self.places = []  # in the rest, where reports stood
        pieces, position = [], 0
        for start in iter(lambda: output.find(TRACE_HEAD, position), -1):
            pieces.append(output[position:start])
            self.places.append((self.places or [0])[-1] + start - position)
            position = start + self.report(output, start, most)
        self.rest = b"".join(pieces) + output[position:]

    def report(self, output, start, most):
        """Checks the report that begins there; returns its length."""
        match = re.compile(rb"\nFRAME NUMBER : 0x([0-9A-F]+)\n").match(
            output, start + len(TRACE_HEAD)
        )
        number = int(match[1], 16) if match else 0
        length = len(trace(0, number, most))
        match = re.search(rb"\nCID  :  0x([0-9A-F]+)\n", output[start : start + length + 8])
        thread = int(match[1], 16) if match else 0
        expected = trace(thread, number, most)
        if not output.startswith(expected, start):
            raise Broken(f"a report that is not whole: {output[start:start + len(expected)]!r}")
        before = self.numbers.setdefault(thread, [])
        if before and before[-1] >= number:
            raise Broken(f"report {number} of thread {thread} behind {before[-1]}")
        before.append(number)
        return len(expected)


def sanitized(options):
    """Whether this build finds its own faults: it is slower, and wants much address space."""
    return b"__asan_init" in options.client_bytes or b"__tsan_init" in options.client_bytes


class Client:
    """The client with the storm library. Its output is a pipe, terminal, socket, file or null
    device; its input a pipe or socket, or the same terminal."""

    options = None

    def __init__(self, output="pipe", input=None, user=None, ignored=(), limit=None, **storm):
        self.directory = tempfile.TemporaryDirectory(prefix="storm.")
        place = pathlib.Path(self.directory.name)
        place.chmod(0o777)
        os.symlink(os.path.abspath(self.options.library), place / "libqor020.so")
        self.record_path = place / "record"
        self.record_path.touch()
        self.record_path.chmod(0o666)
        self.errors_path = place / "errors"
        self.file_path = place / "output"
        self.terminal = output == "terminal"
        self.kept = []  # our copies of the client's ends
        self.seen = b""
        environment = {**os.environ, **SANITIZERS, "STORM_RECORD": str(self.record_path)}
        environment["TSAN_OPTIONS"] += ":atexit_sleep_ms=0"  # the end is what is measured
        environment.update({"STORM_" + key.upper(): str(value) for key, value in storm.items()})
        self.screen, out = self.open_output(output)
        self.input, inside = (self.screen, out) if self.terminal else self.open_input(input)

        os.set_blocking(self.input, False)  # our end alone

        def prepare():
            for number in ignored:
                signal.signal(number, signal.SIG_IGN)
            if limit:
                resource.setrlimit(resource.RLIMIT_AS, (limit, limit))
            resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
            if self.terminal:
                fcntl.ioctl(0, termios.TIOCSCTTY, 0)

        with open(self.errors_path, "wb") as errors:
            self.process = subprocess.Popen(
                [self.options.client],
                stdin=inside,
                stdout=out,
                stderr=errors,
                cwd=place,
                env=environment,
                start_new_session=True,
                preexec_fn=prepare,
                restore_signals=True,
                user=user,
                group=user,
            )
        self.outside = out
        self.inside = inside

    def open_output(self, kind):
        if kind == "terminal":
            return pty.openpty()
        if kind == "socket":
            pair = socket.socketpair()
            return tuple(end.detach() for end in pair)
        if kind == "file":
            out = os.open(self.file_path, os.O_CREAT | os.O_WRONLY | os.O_TRUNC, 0o666)
            return os.open(self.file_path, os.O_RDONLY), out
        if kind == "null":
            return os.open("/dev/null", os.O_RDONLY), os.open("/dev/null", os.O_WRONLY)
        return os.pipe()

    @staticmethod
    def open_input(kind):
        if kind == "socket":
            pair = socket.socketpair()
            return tuple(end.detach() for end in pair)
        reader, writer = os.pipe()
        return writer, reader

    # What it says.

    def record(self):
        return self.record_path.read_text().splitlines()

    def errors(self):
        return self.errors_path.read_text(errors="replace")

    def waiting(self):
        """Bytes that the client has written and nobody has read."""
        count = array.array("i", [0])
        fcntl.ioctl(self.screen, termios.FIONREAD, count)
        return count[0]

    def untaken(self):
        """Bytes that were typed and that the client has not read."""
        count = array.array("i", [0])
        fcntl.ioctl(self.inside, termios.FIONREAD, count)
        return count[0]

    def wait_until(self, condition, what, seconds=PATIENCE):
        deadline = time.monotonic() + seconds
        while not condition():
            self.process.poll()
            if time.monotonic() > deadline:
                raise Broken(f"timed out waiting for {what}; {self.state()}")
            if self.process.returncode is not None and not condition():
                raise Broken(f"ended before {what}; {self.state()}")
            time.sleep(0.002)

    def state(self):
        return f"status {self.process.poll()}, record {self.record()[-3:]}, {self.errors()[-3000:]}"

    def waits(self):
        """What every thread waits for, as far as the kernel tells."""
        told = [self.state()]
        for task in sorted(pathlib.Path(f"/proc/{self.process.pid}/task").glob("*")):
            for part in ("wchan", "syscall"):
                with contextlib.suppress(OSError):
                    told.append(f"thread {task.name}: {part} {(task / part).read_text().strip()}")
        return "\n".join(told)

    def wait_record(self, line):
        self.wait_until(lambda: line in self.record(), f"{line!r} in the record")

    def wait_stuck(self):
        """Until no more goes into the unread output."""
        last, since = -1, time.monotonic()

        def is_stuck():
            nonlocal last, since
            if self.waiting() != last:
                last, since = self.waiting(), time.monotonic()
            return last > 0 and time.monotonic() - since > 0.3

        self.wait_until(is_stuck, "the output to be full")

    def read_some(self, count=65536, seconds=PATIENCE):
        """What has come; nothing at the end."""
        deadline = time.monotonic() + seconds
        while not select.select([self.screen], [], [], min(seconds, 0.2))[0]:
            if self.process.poll() is not None:
                return b""
            if time.monotonic() >= deadline:
                raise Broken(f"no output; seen {self.seen[-300:]!r}; {self.state()}")
        try:
            chunk = os.read(self.screen, count)
        except OSError:  # a terminal ends like this
            chunk = b""
        self.seen += chunk.replace(b"\r\n", b"\n") if self.terminal else chunk
        return chunk

    def read_until(self, text, count=65536, pause=0.0):
        """Reads on until the text stands in what was read since; returns the bytes up to its end
        and drops them."""
        while text not in self.seen:
            if not self.read_some(count):
                raise Broken(f"ended before {text[-60:]!r}: {self.seen[-300:]!r}; {self.state()}")
            time.sleep(pause)
        end = self.seen.index(text) + len(text)
        found, self.seen = self.seen[:end], self.seen[end:]
        return found

    def read_rest(self):
        """Everything up to the end of the output."""
        self.let_go()
        while self.read_some():
            pass
        rest, self.seen = self.seen, b""
        return rest

    # What is done to it.

    def type(self, text, seconds=PATIENCE):
        deadline = time.monotonic() + seconds
        while text:
            try:
                text = text[os.write(self.input, text) :]
            except BlockingIOError:
                if time.monotonic() > deadline:
                    raise Broken(f"it does not read its input; {self.state()}") from None
                time.sleep(0.001)

    def signal(self, number):
        self.process.send_signal(number)

    def let_go(self):
        """Gives our copies of its ends away, so that only the client holds them."""
        for name in ("outside", "inside"):
            descriptor = getattr(self, name)
            setattr(self, name, None)
            if descriptor is not None and (name == "outside" or not self.terminal):
                os.close(descriptor)

    def close_screen(self):
        self.let_go()
        os.close(self.screen)
        if self.input == self.screen:
            self.input = None
        self.screen = None

    def close_input(self):
        os.close(self.input)
        self.input = None

    def ended_after(self, began, limit=PATIENCE):
        """Seconds until it has ended, or None; reads nothing meanwhile. What this machine makes
        a short sleep last longer than it should is left out: the client's sleeps last longer, too."""
        try:
            waiter = os.pidfd_open(self.process.pid)
        except ProcessLookupError:  # ended and waited for already
            return time.monotonic() - began
        overslept = 0.0
        try:
            while not select.select([waiter], [], [], 0.01)[0]:
                before = time.monotonic()
                time.sleep(0.001)
                overslept += max(time.monotonic() - before - 0.003, 0)
                if time.monotonic() > began + limit:
                    return None
            took = time.monotonic() - began
        finally:
            os.close(waiter)
        self.process.wait()
        return max(took - overslept, 0)

    def reads_until_end(self, seconds=PATIENCE):
        """Reads all there is until it has ended; returns the text."""
        self.let_go()
        deadline = time.monotonic() + seconds
        while True:
            try:
                if not self.read_some(seconds=max(deadline - time.monotonic(), 0)):
                    break
            except Broken as broken:
                raise Broken(f"it does not end; {broken}") from None
        self.process.wait(PATIENCE)
        rest, self.seen = self.seen, b""
        return rest

    def closed_in_order(self):
        """Whether a close behind the last open was begun and finished."""
        life = [line for line in self.record() if line in ("open", "close", "closed")]
        return life[-1:] == ["closed"]

    def __enter__(self):
        return self

    def __exit__(self, *_):
        if self.process.poll() is None:
            self.process.kill()
        self.process.wait()
        self.let_go()
        for descriptor in {self.screen, self.input} - {None}:
            os.close(descriptor)
        self.directory.cleanup()
