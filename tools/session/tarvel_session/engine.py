"""Plays a session: the client as a process, typed into, and compared with what the file says."""

import collections
import fcntl
import os
import pathlib
import selectors
import signal
import subprocess
import tempfile
import termios
import time

from .files import DAY, FormatError

LIFE_CYCLE = ("OpenWiMAXDevice", "RegisterCallback", "CloseWiMAXDevice")
SANITIZERS = {
    "ASAN_OPTIONS": "detect_leaks=1:exitcode=99",
    "UBSAN_OPTIONS": "print_stacktrace=1:halt_on_error=1",
    "TSAN_OPTIONS": "exitcode=98:halt_on_error=0",
}
STEERED = ("SCRIPT", "CONTROL", "RECORD", "SCENARIO", "CONTROL_SOCKET", "RECORDING", "REPLAY",
           "REPLAY_SPEED", "REPLAY_STRICT")
# On an emulator everything takes longer: a wait may take this many times as long.
EMULATOR_PATIENCE = 6
# How much of what was seen before stands above a difference.
CONTEXT_LINES = 3
# A difference of longer texts would take minutes; so many lines of each are compared.
COMPARED_LINES = 1000
SEEN_LINES = 100
# Of an endless output so much is kept.
MOST_UNMATCHED = 128 << 20
# How long a client that goes on printing is read when the session has failed.
SETTLE_SECONDS = 2
# How long a killed process is waited for: a device's driver may hold it.
KILL_SECONDS = 5
# The steps in which the stepped clock is let go while something is waited for, in parts of the
# limit, and at least (seconds); before the first one the client must have been quiet so long.
STEPS_OF_A_LIMIT = 1000
LEAST_STEP = 0.01
QUIET_SECONDS = 0.05
# What the loader says of a program whose libraries are not there.
LOADER_STATUS = 127
LOADER_WORDS = b"error while loading shared libraries"

REAL, MODEM = "real time", "modem time"

Sample = collections.namedtuple("Sample", "name seconds clock")


class Failure(Exception):
    """The session did not go as written."""

    errors = b""  # what the client wrote to standard error
    record = ()  # the scripted library's record


class CannotStart(Failure):
    """There is no client to speak of."""


class InputClosed(Failure):
    """The client, or all of it but its output, has gone."""


def bars(text):
    """Output as session lines, to be read and compared."""
    shown = []
    for line in text.split(b"\n"):
        plain = all(32 <= byte < 127 or byte == 9 for byte in line)
        escaped = line.decode("latin-1").encode("unicode_escape").decode("ascii")
        shown.append(f"|{line.decode('ascii')}|" if plain else f"\\|{escaped}|")
    return shown


def unified(expected, got, names=("expected", "got"), context=CONTEXT_LINES):
    import difflib  # only failures need it

    behind = ""
    if max(len(expected), len(got)) > COMPARED_LINES:
        equal = len(os.path.commonprefix([expected, got]))
        behind = f"(behind {equal} equal lines)\n" if equal else ""
        expected, got = (lines[equal : equal + COMPARED_LINES] for lines in (expected, got))
    return behind + "\n".join(difflib.unified_diff(expected, got, *names, n=context, lineterm=""))


def difference(expected, got):
    return unified(bars(expected), bars(got))


def heed_signals():
    """A signal that was ignored where the tests were started (nohup) is not ignored in them."""
    for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
        if signal.getsignal(number) == signal.SIG_IGN:
            signal.signal(number, signal.SIG_DFL)


class Client:
    """The client as a process, its output and the library's record read as they come.

    options says what is run on what: client, scripted, simulated, scenarios, recorder, emulator, and
    in place of scripted and simulated replay (library and recording) or device (a folder)."""

    def __init__(self, session, options, directory, samples=None):
        self.session = session
        self.timeout = session.timeout * (EMULATOR_PATIENCE if options.emulator else 1)
        self.ends_at = time.monotonic() + (session.limit or DAY)
        self.output = b""
        self.errors = b""
        self.record = b""
        self.record_lines = []
        self.done = 0
        self.typed = 0
        self.master = None
        self.control = None
        self.reads_output = True
        self.recording = None
        self.arrived = 0  # bytes of output
        self.matched = 0
        self.arrivals = collections.deque()  # (bytes so far, when)
        self.moment = time.monotonic()  # of the last step
        self.samples = [] if samples is None else samples
        self.begun = {}  # measure -> when
        self.limit = None  # of the next wait: seconds, and since when
        self.modem = None
        self.modem_path = None
        self.modem_answer = b""
        self.clock = None  # unknown as yet
        self.process = None
        self.descriptors = []
        self.selector = selectors.DefaultSelector()
        environment = {**os.environ, **SANITIZERS}
        for key in STEERED:
            environment.pop("QOR020_" + key, None)
        environment.update(session.environment)
        for name, pieces in session.given.items():
            (directory / name).write_bytes(session.joined(pieces))
        self.set_up_device(session, options, directory, environment)
        self.start(session, options, directory, environment)

    def set_up_device(self, session, options, directory, environment):
        device, replay = getattr(options, "device", None), getattr(options, "replay", None)
        if device:
            # Found by its own name, so that it finds what lies beside it.
            folders = [os.path.abspath(device), environment.get("LD_LIBRARY_PATH")]
            environment["LD_LIBRARY_PATH"] = ":".join(filter(None, folders))
            return
        if replay:
            library, recording, speed = replay
            environment["QOR020_REPLAY"] = os.path.abspath(recording)
            environment["QOR020_REPLAY_SPEED"] = str(speed)
        elif session.scenario is None:
            library = options.scripted
            self.set_up_library(session, directory, environment)
        else:
            library = options.simulated
            if session.scenario:
                environment["QOR020_SCENARIO"] = str(self.find_scenario(session, options))
            if session.words.keys() & {"within", "start", "stop", "modem"}:
                self.modem_path = str(directory.parent / "modem")
                environment["QOR020_CONTROL_SOCKET"] = self.modem_path
        os.symlink(os.path.abspath(library), directory / "libqor020.so")

    @staticmethod
    def find_scenario(session, options):
        if session.scenario in session.given:
            return session.scenario
        for directory in (session.path.parent, pathlib.Path(options.scenarios or ".")):
            path = directory / session.scenario
            if path.exists():
                return path.resolve()
        raise FormatError(f"{session.path}: no scenario {session.scenario}")

    def set_up_library(self, session, directory, environment):
        outside = pathlib.Path(tempfile.mkdtemp(dir=directory.parent, prefix="library."))
        (outside / "script").write_text("".join(line + "\n" for line in session.script), "latin-1")
        for name in ("control", "record"):
            os.mkfifo(outside / name)
        # Opened for both directions neither pipe has an end while the client comes and goes.
        self.control = os.open(outside / "control", os.O_RDWR | os.O_NONBLOCK)
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
            self.descriptors.append(self.master)
            common.update(stdin=slave, stdout=slave, start_new_session=True,
                          preexec_fn=lambda: fcntl.ioctl(0, termios.TIOCSCTTY, 0))
        else:
            common.update(stdin=subprocess.PIPE, stdout=subprocess.PIPE, bufsize=0)
        try:
            self.process = subprocess.Popen(command, **common)
        except (OSError, subprocess.SubprocessError, ValueError) as error:
            raise CannotStart(f"{program} cannot be started: {error}") from error
        finally:
            if session.pty:
                os.close(slave)
        self.input = self.master if session.pty else self.process.stdin.fileno()
        self.screen = self.master if session.pty else self.process.stdout.fileno()
        os.set_blocking(self.input, False)
        self.selector.register(self.screen, selectors.EVENT_READ, "output")
        self.selector.register(self.process.stderr.fileno(), selectors.EVENT_READ, "errors")

    def recorded(self, command, options, directory, environment):
        """The command with the recorder in front of the library."""
        recorder = os.path.abspath(options.recorder)
        self.recording = pathlib.Path(
            getattr(options, "recording", None) or directory.parent / "session.pcapng")
        environment["QOR020_RECORDING"] = os.path.abspath(self.recording)
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
                self.take_output(chunk.replace(b"\r\n", b"\n") if self.session.pty else chunk)
            elif key.data == "errors":
                self.errors += chunk
            elif key.data == "modem":
                self.modem_answer += chunk
            else:
                self.take_record(chunk)
        return bool(events)

    def take_output(self, chunk):
        self.output += chunk
        self.arrived += len(chunk)
        self.arrivals.append((self.arrived, time.monotonic()))

    def take_record(self, chunk):
        self.record += chunk
        *lines, self.record = self.record.split(b"\n")
        for line in lines:
            text = line.decode("latin-1")
            self.record_lines.append(text)
            self.done += text.startswith("done ")

    def match(self, length):
        """So many bytes of the output are what was waited for, and what stood before it."""
        self.output = self.output[length:]
        self.matched += length
        while self.arrivals and self.arrivals[0][0] < self.matched:
            self.arrivals.popleft()
        if length and self.arrivals:
            self.moment = self.arrivals[0][1]

    def running(self):
        """Whether the client still holds its output, or its errors when we closed the output."""
        streams = {key.data for key in self.selector.get_map().values()}
        return ("output" if self.reads_output else "errors") in streams

    def rest_of(self, deadline, late):
        """The seconds until then; fails when there are none, or when the session's are over, or when
        more comes than anybody waits for."""
        now = time.monotonic()
        if len(self.output) > MOST_UNMATCHED:
            raise Failure(f"more than {MOST_UNMATCHED} bytes of output behind the last match")
        if now >= self.ends_at:
            raise Failure(f"the session takes longer than {self.session.limit:g} s")
        if now >= deadline:
            raise Failure(late)
        return min(deadline, self.ends_at) - now

    def wait_for(self, condition, what, heed_limit=False):
        deadline = time.monotonic() + self.timeout
        late = f"timed out waiting for {what}"
        limit = self.limit if heed_limit else None
        stepped = limit and self.clock == MODEM
        if limit and not stepped:
            deadline = limit[1] + limit[0]
            late = f"not within {limit[0]:g} s ({REAL}): {what}"
        elif limit:
            deadline = self.ends_at
        quiet = False
        while not condition():
            rest = self.rest_of(deadline, late)
            if not self.running():
                self.settle()
                if not condition():
                    raise Failure(f"the client ended while waiting for {what}")
                return
            if not stepped:
                self.pump(rest)
            elif not quiet:
                quiet = not self.pump(QUIET_SECONDS)
            else:
                self.let_time_go(limit, what)

    def let_time_go(self, limit, what):
        """A step of the stepped clock towards the limit."""
        left = limit[1] + limit[0] - self.modem_time()
        if left <= 0:
            raise Failure(f"not within {limit[0]:g} s ({MODEM}): {what}")
        step = min(max(limit[0] / STEPS_OF_A_LIMIT, LEAST_STEP), left)
        self.ask_modem(f"advance {step:.6f}")
        while self.pump(0):
            pass

    def end_limit(self, what):
        """What was waited for is there: was it in time?"""
        if not self.limit:
            return
        (seconds, since), self.limit = self.limit, None
        took = self.now() - since
        if took > seconds:
            raise Failure(f"not within {seconds:g} s ({self.clock}), but after {took:.3f} s: {what}")

    def settle(self):
        """Reads the rest of what an ended client left, or what comes next for a failure: not all
        that a client prints which never stops."""
        deadline = time.monotonic() + SETTLE_SECONDS
        while time.monotonic() < deadline and self.pump(0.3 if self.running() else 0):
            pass

    def write(self, descriptor, data, what):
        """All of it, as long as somebody goes on taking it. Yields how much was taken."""
        deadline = time.monotonic() + self.timeout
        while data:
            try:
                written = os.write(descriptor, data[:4096])
            except BlockingIOError:
                written = 0
            if written:
                data = data[written:]
                deadline = time.monotonic() + self.timeout
                yield written
            self.rest_of(deadline, f"timed out waiting for {what}")
            while self.pump(0 if written else 0.01):
                pass

    def type(self, data):
        try:
            for written in self.write(self.input, data, "the client to read its input"):
                self.typed += written
        except OSError as error:
            raise InputClosed("the client does not read its input any more") from error
        self.moment = time.monotonic()

    def end_input(self):
        if self.session.pty:
            self.type(b"\x04")
        else:
            self.process.stdin.close()
            self.input = -1  # its number may be another one's by now

    def close_output(self):
        if self.reads_output and self.running():
            self.selector.unregister(self.screen)
        self.reads_output = False
        if not self.session.pty:
            self.process.stdout.close()

    def command(self, text):
        if self.control is None:
            raise Failure("commands are for the scripted library")

        def answers():
            return self.done + sum(line.startswith("error ") for line in self.record_lines)

        before = answers()
        for _ in self.write(self.control, text.encode("latin-1") + b"\n", "the library to listen"):
            pass
        self.wait_for(lambda: answers() > before, f"the library to do: {text}")

    def reach_modem(self):
        """The control socket, which is there while the device is open."""
        import socket  # few sessions need it

        deadline = time.monotonic() + self.timeout
        while self.modem is None:
            self.rest_of(deadline, "timed out waiting for the simulated modem to listen")
            self.modem = socket.socket(socket.AF_UNIX)
            try:
                self.modem.connect(self.modem_path)
            except OSError:
                self.modem.close()
                self.modem = None
                if not self.running():
                    raise Failure("the client has ended, and with it the modem") from None
                self.pump(0.01)
        self.selector.register(self.modem, selectors.EVENT_READ, "modem")

    def leave_modem(self):
        if self.modem is not None:
            if self.modem.fileno() in self.selector.get_map():
                self.selector.unregister(self.modem)
            self.modem.close()
            self.modem = None

    def ask_modem(self, command):
        """What the simulated modem answers."""
        if self.modem_path is None:
            raise Failure("only the simulated modem takes such commands")
        if self.modem is not None and self.modem.fileno() not in self.selector.get_map():
            self.leave_modem()  # the device was closed, and perhaps opened again
        if self.modem is None:
            self.reach_modem()
        self.modem_answer = b""
        try:
            self.modem.sendall(command.encode("latin-1") + b"\n")
        except OSError as error:
            raise Failure("the simulated modem does not listen any more") from error
        while not self.modem_answer.endswith(b"\n"):
            if self.modem.fileno() not in self.selector.get_map():
                raise Failure(f"the modem went away at: {command}")
            self.pump(self.rest_of(self.ends_at, ""))
        answer = self.modem_answer.decode("utf-8", "replace").rstrip("\n")
        if answer.startswith("error"):
            raise Failure(f"the modem refused: {command}: {answer.partition(' ')[2]}")
        return answer.partition(" ")[2]

    def modem_state(self):
        import json

        return json.loads(self.ask_modem("state"))

    def modem_time(self):
        return self.modem_state()["time"]

    def now(self):
        """When the last step was: in modem time if that stands still between the client's calls."""
        if self.clock is None:
            stepped = self.modem_path and self.modem_state()["clock"] == "stepped"
            self.clock = MODEM if stepped else REAL
        return self.modem_time() if self.clock == MODEM else self.moment

    def begin_limit(self, seconds):
        self.limit = (seconds, self.now())

    def start_measure(self, name):
        self.begun[name] = self.now()

    def stop_measure(self, name, most):
        if name not in self.begun:
            raise Failure(f"{name} has not been started")
        took = self.now() - self.begun.pop(name)
        self.samples.append(Sample(name, took, self.clock))
        if most is not None and took >= most:
            raise Failure(f"{name} took {took:.3f} s ({self.clock}), not less than {most:g} s")

    def expect(self, expected):
        def decided():
            return len(self.output) >= len(expected) or not expected.startswith(self.output)

        try:
            self.wait_for(decided, "output", heed_limit=True)
        except Failure as failure:
            raise Failure(f"{failure}\n{difference(expected, self.output)}") from failure
        if not self.output.startswith(expected):
            self.settle()
            raise Failure("other output than expected\n" + difference(expected, self.output))
        self.match(len(expected))
        self.end_limit("output")

    def expect_somewhere(self, text):
        searched = 0

        def found():
            nonlocal searched
            begin = max(searched - len(text), 0)
            searched = len(self.output)
            return self.output.find(text, begin) >= 0

        try:
            self.wait_for(found, repr(text), heed_limit=True)
        except Failure as failure:
            seen = "\n".join(bars(self.output)[-SEEN_LINES:])
            raise Failure(f"{failure}; since the last match there came\n{seen}") from failure
        self.match(self.output.index(text) + len(text))
        self.end_limit(repr(text))

    def finish(self):
        """Waits for the end; returns the exit status."""
        deadline = time.monotonic() + self.timeout
        late = "timed out waiting for the client to end"
        while {"output", "errors"} & {key.data for key in self.selector.get_map().values()}:
            self.pump(self.rest_of(deadline, late))
        try:
            status = self.process.wait(max(deadline - time.monotonic(), 1))
        except subprocess.TimeoutExpired as error:
            raise Failure(late) from error
        while self.pump(0):
            pass
        return status

    def kill(self):
        if self.process is not None and self.process.poll() is None:
            self.process.kill()
            try:
                self.process.wait(KILL_SECONDS)
            except subprocess.TimeoutExpired:
                pass

    def close(self):
        self.kill()
        self.leave_modem()
        self.selector.close()
        if self.process is not None:
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
    elif kind == "modem":
        client.ask_modem(value.decode("latin-1"))
    elif kind == "within":
        client.begin_limit(value)
    elif kind == "start":
        client.start_measure(value)
    elif kind == "stop":
        client.stop_measure(*value)
    elif kind == "signal":
        client.process.send_signal(value)
    elif kind == "eof":
        client.end_input()
    elif kind == "close output":
        client.close_output()


def play_steps(session, client, steps, rounds=""):
    for kind, value, number in steps:
        if kind == "loop":
            times, body = value
            for turn in range(1, times + 1):
                play_steps(session, client, body, f"{rounds} (round {turn} of {times})")
            continue
        try:
            client.rest_of(client.ends_at, "")
            take_step(session, client, kind, value)
        except Failure as failure:
            raise Failure(f"{session.path}:{number}:{rounds} {failure}") from failure


def ignores_rest(steps):
    return any(ignores_rest(value[1]) if kind == "loop" else kind == "..."
               for kind, value, _ in steps)


def play(session, client):
    play_steps(session, client, session.steps)
    status = client.finish()
    if client.output and not ignores_rest(session.steps):
        raise Failure("output that the session does not have\n"
                      + "\n".join(bars(client.output)[:SEEN_LINES]))
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
        raise Failure("other calls than expected\n" + unified(session.calls, got, context=99))


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


def check_all(session, client, directory, status):
    check_calls(session, client)
    check_files(session, directory)
    if client.errors != session.stderr:
        raise Failure("on standard error")
    check_status(session, status)


def run(session, options, samples=None, check=check_all):
    """Plays a session in a folder of its own. What it measures is put into samples."""
    with tempfile.TemporaryDirectory(prefix="session.") as top:
        directory = pathlib.Path(top) / "work"
        directory.mkdir()
        began = time.monotonic()
        client = Client(session, options, directory, samples)
        try:
            status = play(session, client)
            took = time.monotonic() - began
            check(session, client, directory, status)
            if session.lasts and not session.lasts[0] <= took <= session.lasts[1]:
                raise Failure(f"took {took:.1f} s, expected {session.lasts}")
        except Failure as failure:
            client.kill()
            client.settle()
            failure.errors = client.errors
            failure.record = client.record_lines
            if client.process.returncode == LOADER_STATUS and LOADER_WORDS in client.errors:
                raise CannotStart(client.errors.decode("utf-8", "replace").strip()) from failure
            raise
        finally:
            client.close()
