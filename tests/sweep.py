#!/usr/bin/env python3
"""Plays session files again and again, each time with one thing going wrong: a device call, a
console call or an allocation that fails, the input that ends, a signal. README.md beside this
file says what must come of it."""

import argparse
import collections
import concurrent.futures
import contextlib
import errno
import mmap
import os
import pathlib
import signal
import struct
import sys
import tempfile
import time
import zlib

from run_session import (
    Client, Failure, FormatError, InputClosed, Session, check_all, play, play_steps,
)

CALLS = (
    "OpenWiMAXDevice",
    "RegisterCallback",
    "SendWiMAXMessage",
    "CloseWiMAXDevice",
    "rdm ",
    "wrm ",
)
MOST_NEGATIVE = -(1 << 31)
DEVICE_RESULTS = (-1, -27, -76, 1, MOST_NEGATIVE)
SIGNALS = ("INT", "TERM", "HUP")
LONGEST_END = 0.5  # seconds from a signal to the end of the client

# How a run that something went wrong in must go on.
UNCHANGED = "unchanged"  # as if nothing had been
INPUT_GONE = "input gone"  # ends as at the end of the input
OUTPUT_GONE = "output gone"  # ends as without a reader
LOG_LOST = "log lost"  # ends, and may say in a line what the log of the EEPROM test has lost
ANY_END = "any end"  # ends, in whatever way the client has for it

# A write of one byte only, in place of an error.
SHORT = "short"

# What each call can fail with, by the descriptor it is made on. A call that is not here, or not
# on this descriptor, is left alone: an event's write fails only when 2^64 events are waiting.
READ_ERRORS = {"EINTR": UNCHANGED, "EAGAIN": UNCHANGED, "EIO": INPUT_GONE, "EBADF": INPUT_GONE}
WRITE_ERRORS = {
    "EINTR": UNCHANGED,
    "EAGAIN": UNCHANGED,
    SHORT: UNCHANGED,
    "EIO": OUTPUT_GONE,
    "EPIPE": OUTPUT_GONE,
    "ENOSPC": OUTPUT_GONE,
    "EBADF": OUTPUT_GONE,
}
TARGETS = ("0", "1", "2", "file", "other")


def on_any(name, *errors):
    """The errors of a call that the client can do without, on whatever it is made."""
    return {f"{name} {target}": dict.fromkeys(errors, UNCHANGED) for target in TARGETS}


CONSOLE_ERRORS = {
    **on_any("fcntl", "EBADF", "EINTR", "ENOMEM"),
    **on_any("fstat", "EBADF", "ENOMEM"),
    **on_any("isatty", "EIO", "ENOTTY"),
    **on_any("ioctl", "EIO", "ENOTTY"),
    **on_any("tcgetattr", "EIO", "ENOTTY"),
    **on_any("close", "EINTR", "EIO"),
    **on_any("dup", "EMFILE"),
    **on_any("poll", "EINTR", "ENOMEM"),
    **on_any("ppoll", "EINTR", "ENOMEM"),
    **on_any("epoll_wait", "EINTR"),
    **on_any("epoll_create1", "EMFILE", "ENOMEM"),
    **on_any("epoll_ctl", "ENOMEM", "ENOSPC"),
    **on_any("eventfd", "EMFILE", "ENOMEM"),
    **on_any("pipe2", "EMFILE"),
    **on_any("nanosleep", "EINTR"),
    **on_any("clock_nanosleep", "EINTR"),
    **on_any("open", "EINTR", "EMFILE", "ENOENT", "EACCES", "ENXIO"),
    "read 0": READ_ERRORS,
    "recv 0": READ_ERRORS,
    "read other": {"EAGAIN": UNCHANGED, "EINTR": UNCHANGED},
    "write 1": WRITE_ERRORS,
    "writev 1": WRITE_ERRORS,
    "send 1": WRITE_ERRORS,
    **on_any("select", "EINTR", "ENOMEM"),
    "open file": dict.fromkeys(("EINTR", "EMFILE", "EACCES", "ENOSPC"), LOG_LOST),
    "write file": dict.fromkeys(("EINTR", "ENOSPC", "EIO", SHORT), LOG_LOST),
    "fopen file": dict.fromkeys(("ENOMEM", "EACCES", "EMFILE"), LOG_LOST),
    "fwrite file": dict.fromkeys(("ENOSPC", "EIO"), LOG_LOST),
    "fflush file": dict.fromkeys(("ENOSPC", "EIO"), LOG_LOST),
    "fclose file": dict.fromkeys(("ENOSPC", "EIO"), LOG_LOST),
}
# Of calls, bytes and waits without number those at both ends are taken, and some between: as many
# as a session's length allows. The sessions that go round as often as they like have the last row.
SLOW = 1.0  # seconds
BOUNDS = {"quick": (200, 100), "slow": (2, 1), "free": (6, 0)}  # at each end, between
# Threads race, and so a call may be made once less than before; and a loaded machine is late.
TRIES = 3
CASES_A_TASK = 40

# Steps behind which the end of a session is on its way.
ENDING_STEPS = ("signal", "close output", "eof")

# How long a client may take to end by itself before it is helped along.
ENDING_PATIENCE = 0.5
# The request for the configuration file, which the client waits behind as long as the device
# needs, and the calls of the register test, which repeats them for 15 seconds.
LONG_CALLS = (" 16/2 | 00*4 ", "rdm ", "wrm ")

# In the library's record, where a planned failure came to pass.
FAILED_LINE = "failed a call"

SHOWN_LINES = 12
SHOWN_COLUMNS = 300

REPORT_HEAD = 4
REPORT_ROW = struct.Struct("<16s5I")
REPORT_ROWS = 64


class Fired(Exception):
    """The planned failure has come to pass: what the session expects no longer holds."""


class Bench:
    """What a worker keeps from run to run: the library's pipes, the report of the faults."""

    def __init__(self, options):
        self.options = options
        self.top = pathlib.Path(tempfile.mkdtemp(dir=options.top))
        for name in ("control", "record"):
            os.mkfifo(self.top / name)
        self.control = os.open(self.top / "control", os.O_RDWR | os.O_NONBLOCK)
        self.record = os.open(self.top / "record", os.O_RDWR | os.O_NONBLOCK)
        report = self.top / "report"
        report.write_bytes(bytes(REPORT_HEAD + REPORT_ROWS * REPORT_ROW.size))
        with open(report, "r+b") as file:
            self.report = mmap.mmap(file.fileno(), 0)
        self.sessions = {}

    def session(self, path):
        if path not in self.sessions:
            self.sessions[path] = Session(path)
        return self.sessions[path]

    def begin(self):
        """Nothing of the run before may reach the next one."""
        self.report[:] = bytes(len(self.report))
        for pipe in (self.control, self.record):
            try:
                while os.read(pipe, 65536):
                    pass
            except BlockingIOError:
                pass

    def counts(self):
        """How often the client made each call: {"read 0": 12}."""
        counts = {}
        for row in range(REPORT_ROWS):
            offset = REPORT_HEAD + row * REPORT_ROW.size
            name, *numbers = REPORT_ROW.unpack_from(self.report, offset)
            for target, number in zip(TARGETS, numbers):
                if number:
                    counts[f"{name.rstrip(bytes(1)).decode()} {target}"] = number
        return counts


class SweptClient(Client):
    """A client that something goes wrong for."""

    def __init__(self, session, bench, directory, faults):
        self.bench = bench
        self.faults = faults  # environment that plans them
        self.heeds_failure = False
        self.failed_behind = None  # number of calls before the failure
        self.terminated = False
        self.commanded = 0
        bench.begin()
        super().__init__(session, bench.options, directory)

    def set_up_library(self, session, directory, environment):
        script = "".join(line + "\n" for line in session.script)
        (self.bench.top / "script").write_text(script, "latin-1")
        self.control = self.bench.control
        self.selector.register(self.bench.record, 1, "record")
        for name in ("script", "control", "record"):
            environment["QOR020_" + name.upper()] = str(self.bench.top / name)
        environment.update(self.faults)
        if self.bench.options.faults:
            environment["LD_PRELOAD"] = os.path.abspath(self.bench.options.faults)
            environment["FAULTS_REPORT"] = str(self.bench.top / "report")
            environment["ASAN_OPTIONS"] += ":verify_asan_link_order=0"

    def calls(self):
        return [line for line in self.record_lines if line.startswith(CALLS)]

    def take_record(self, chunk):
        super().take_record(chunk)
        if FAILED_LINE in self.record_lines:
            at = self.record_lines.index(FAILED_LINE)
            del self.record_lines[at]
            self.failed_behind = sum(line.startswith(CALLS) for line in self.record_lines[:at])

    def pump(self, seconds):
        came = super().pump(seconds)
        if self.heeds_failure and self.failed_behind is not None:
            raise Fired
        return came

    def end_input(self):
        if self.session.pty:
            self.type(b"\x04\x04")  # the first one ends a line that was begun
        else:
            super().end_input()

    def command(self, text):
        self.commanded += 1
        super().command(text)

    def play_rest(self):
        """Types and commands what is left, all at once, ends the input and waits for the end."""
        self.heeds_failure = False
        typed, commanded = self.typed, self.commanded
        for kind, value, _ in self.session.steps:
            if kind == "type":
                rest, typed = value[typed:], max(typed - len(value), 0)
                with contextlib.suppress(InputClosed):
                    self.type(rest)
            elif kind == "command":
                if commanded == 0:
                    os.write(self.control, value.encode("latin-1") + b"\n")
                commanded = max(commanded - 1, 0)
        self.end_input_and_output()
        return self.finish()

    def end_input_and_output(self):
        """Ends the input, and what else ends the session when that does not end the client."""
        try:
            self.end_input()
        except InputClosed:
            return
        for kind, value, _ in self.session.steps:
            if kind in ("signal", "close output") and self.stays(ENDING_PATIENCE):
                if kind == "signal":
                    self.process.send_signal(value)
                elif self.reads_output:
                    self.close_output()

    def stays(self, seconds):
        """Whether the client is still there after that many seconds."""
        deadline = time.monotonic() + seconds
        while self.running() and time.monotonic() < deadline:
            self.pump(deadline - time.monotonic())
        return self.running()

    def finish(self):
        """What goes on although the input has ended is ended by a signal."""
        last = self.calls()[-1:] if self.stays(ENDING_PATIENCE) else []
        if any(part in call for part in LONG_CALLS for call in last):
            self.terminated = True
            self.process.send_signal(signal.SIGTERM)
        return super().finish()


class Case:
    """One session with one thing going wrong. Its text names it, and brings it back."""

    def __init__(self, path, text):
        self.path = path
        self.text = text
        self.kind, *self.rest = text.split(":")

    def environment(self):
        if self.kind == "device":
            return {"QOR020_FAIL": ":".join(self.rest)}
        if self.kind == "console":
            name, target, number, error = self.rest
            code = -1 if error == SHORT else getattr(errno, error)
            return {"FAULTS_PLAN": f"{name} {target} {number} {code}"}
        if self.kind == "allocation":
            return {"FAULTS_PLAN": f"malloc other {self.rest[0]} {errno.ENOMEM}"}
        return {}

    def outcome(self, session):
        if self.kind != "console":
            return ANY_END
        outcome = CONSOLE_ERRORS[" ".join(self.rest[:2])][self.rest[3]]
        # In the EEPROM test the key that ends it is seen a round later.
        return ANY_END if outcome == UNCHANGED and session.program is not None else outcome

    def no_later_than(self, counts):
        """How many looks it takes depends on time: the last one there was, if it is one or two
        before."""
        name, target, number, error = self.rest
        last = counts.get(f"{name} {target}", 0)
        if name not in ("poll", "ppoll") or not 0 < int(number) - last <= 2:
            return self
        return Case(self.path, f"console:{name}:{target}:{last}:{error}")

    def sampled(self, every):
        """Whether it is in a sample of about one in so many; the same ones each time."""
        name = f"{self.path.parent.name}/{self.path.stem} {self.text}"
        return zlib.crc32(name.encode()) % every == 0


def with_client(bench, session, faults, act):
    """Runs a client in a directory of its own and returns what act(client, directory) does."""
    with tempfile.TemporaryDirectory(prefix="run.", dir=bench.top) as top:
        directory = pathlib.Path(top)
        client = SweptClient(session, bench, directory, faults)
        try:
            return act(client, directory)
        except Failure as failure:
            client.heeds_failure = False
            client.kill()
            client.settle()
            said = client.errors.decode("utf-8", "replace").strip()
            raise Failure(f"{failure}; it said: {said}" if said else str(failure)) from failure
        finally:
            client.kill()
            client.close()


def shape(call, exact):
    """What is compared of a call: all of it but its result, or no bytes where they are random."""
    call = call.partition(" -> ")[0]
    return call if exact else call.partition(" |")[0]


def runs_freely(session):
    """Whether it is not the session that says how often the client goes round."""
    interrupted = any(kind in ENDING_STEPS for kind, _, _ in session.steps)
    return not session.checks_calls and (session.program is not None or interrupted)


def typed_text(session):
    return b"".join(value for kind, value, _ in session.steps if kind == "type")


class Reference:
    """The session as it goes when nothing goes wrong."""

    def __init__(self, bench, session):
        def act(client, directory):
            status = play(session, client)
            check_all(session, client, directory, status)
            return client.calls()

        began = time.monotonic()
        self.calls = with_client(bench, session, {}, act)
        self.took = time.monotonic() - began
        self.counts = bench.counts()

    def check_calls(self, session, calls, before):
        """The calls before the failure are the session's, and the device is closed at the end."""
        exact = session.checks_calls
        known = self.calls[:-1] if runs_freely(session) else self.calls
        for number, (call, expected) in enumerate(zip(calls[:before], known), 1):
            if shape(call, exact) != shape(expected, exact):
                raise Failure(f"call {number} is {call}, expected {expected}")
        if before > len(known) and not runs_freely(session):
            raise Failure(f"a call too many: {calls[len(known)]}")
        opened = any(
            call.startswith("OpenWiMAXDevice") and not call.endswith(" fail") for call in calls
        )
        closes = sum(call.startswith("CloseWiMAXDevice") for call in calls)
        if opened and not calls[-1].startswith("CloseWiMAXDevice"):
            raise Failure(f"the device stays open; the last call is {calls[-1]}")
        if b"100" not in typed_text(session).split() and closes != int(opened):
            raise Failure(f"closed {closes} times")


def check_end(session, client, status, allowed, may_say=False):
    if status < 0:
        raise Failure(f"killed by {signal.Signals(-status).name}")
    lines = client.errors.count(b"\n")
    if client.terminated:
        allowed = {128 + signal.SIGTERM}
    if status not in allowed:
        raise Failure(f"exit status {status}, expected one of {sorted(allowed)}")
    is_line = lines == 1 and client.errors.endswith(b"\n") and len(client.errors) < 200
    if status == 1 and not is_line:
        raise Failure("exit status 1 without one line on standard error")
    if not (status == 1 or may_say and is_line) and client.errors not in (b"", session.stderr):
        raise Failure("on standard error")
    wrong = [line for line in client.record_lines if line.startswith("error ")]
    if wrong:
        raise Failure("the scripted library says: " + "; ".join(wrong))


def run_failure(bench, session, reference, case):
    """A call or an allocation fails. Returns whether it came to that."""
    outcome = case.outcome(session)

    def act(client, directory):
        if outcome == UNCHANGED:
            status = play(session, client)
            check_all(session, client, directory, status)
            return client.failed_behind is not None
        client.heeds_failure = True
        try:
            status = play(session, client)
        except Fired:
            status = client.play_rest()
        except Failure:
            # The output ends before the news of the failure is here.
            client.heeds_failure = False
            client.settle()
            if client.failed_behind is None:
                raise
            status = client.play_rest()
        if client.failed_behind is None:
            return False
        allowed = {0, session.status}
        if outcome == OUTPUT_GONE:
            allowed = {141} | ({session.status} if session.status > 128 else set())
        elif outcome == ANY_END and case.kind == "allocation":
            allowed |= {1}
        may_say = outcome == LOG_LOST or case.kind == "allocation"
        check_end(session, client, status, allowed, may_say)
        reference.check_calls(session, client.calls(), client.failed_behind)
        return True

    return with_client(bench, session, case.environment(), act)


def play_until_byte(session, client, count, tail):
    """Plays the session up to this number of typed bytes, types the tail and ends the input."""
    for step in session.steps if count else [("type", b"", 0)]:
        kind, value, _ = step
        if kind == "type" and client.typed + len(value) >= count:
            client.type(value[: count - client.typed] + tail)
            client.end_input()
            return client.finish()
        play_steps(session, client, [step])
    raise Failure(f"the session types less than {count} bytes")


def is_inside_a_word(text, count):
    around = text[count - 1 : count + 1] if count else b""
    return len(around) == 2 and len(around.split()) == 1 and around == around.strip()


def run_end(bench, session, reference, case):
    """The input ends behind a byte."""
    count = int(case.rest[0])
    text = typed_text(session)

    def cut(tail):
        def act(client, _):
            status = play_until_byte(session, client, count, tail)
            check_end(session, client, status, {0, 255} & {0, session.status})
            return client.calls()

        return with_client(bench, session, {}, act)

    calls = cut(b"")
    # Of a cut word the session says nothing, so that its last calls are looked at below only.
    inside_a_word = is_inside_a_word(text, count)
    reference.check_calls(session, calls, 0 if inside_a_word else len(calls) - 1)
    if inside_a_word and not runs_freely(session):
        whole = cut(b"\n")
        if calls != whole:
            raise Failure(f"calls {calls}, but {whole} when the cut word has a line end")
    return True


def run_signal(bench, session, reference, case):
    """A signal comes in a step that waits, at its beginning or at its end."""
    index, name, position = int(case.rest[0]), case.rest[1], case.rest[2]
    number = getattr(signal, "SIG" + name)

    def act(client, _):
        play_steps(session, client, session.steps[: index + (position == "behind")])
        began = time.monotonic()
        client.process.send_signal(number)
        status = client.finish()
        times.append(time.monotonic() - began)
        check_end(session, client, status, {128 + number})
        reference.check_calls(session, client.calls(), len(client.calls()) - 1)
        return True

    times = []
    while not times or times[-1] > LONGEST_END:
        if len(times) == 4:  # on a machine with too much to do the odd one is late
            raise Failure("ended " + ", ".join(f"{took:.1f}" for took in times) + " s after the signal")
        with_client(bench, session, {}, act)
    return True


RUNNERS = {
    "device": run_failure,
    "console": run_failure,
    "allocation": run_failure,
    "end": run_end,
    "signal": run_signal,
}


def spread(session, reference, items):
    """The items, or those at the ends and some between when there are too many."""
    items = list(items)
    kind = "free" if runs_freely(session) else "slow" if reference.took > SLOW else "quick"
    ends, between = BOUNDS[kind]
    if kind == "free":
        return items[:ends]  # the next run may go round less often
    inner = len(items) - 2 * ends
    if inner <= between:
        return items
    chosen = {ends + inner * number // between for number in range(between)}
    return [
        item
        for at, item in enumerate(items)
        if at < ends or at in chosen or at >= len(items) - ends
    ]


def device_cases(session, reference):
    for number in spread(session, reference, range(1, len(reference.calls) + 1)):
        opens = reference.calls[number - 1].startswith("OpenWiMAXDevice")
        for result in (-1,) if opens else DEVICE_RESULTS:
            yield f"device:{number}:{result}"


def console_cases(session, reference):
    for call, count in sorted(reference.counts.items()):
        for error in CONSOLE_ERRORS.get(call, ()):
            for number in spread(session, reference, range(1, count + 1)):
                yield f"console:{call.replace(' ', ':')}:{number}:{error}"


def allocation_cases(session, reference):
    count = reference.counts.get("malloc other", 0)
    for number in spread(session, reference, range(1, count + 1)):
        yield f"allocation:{number}"


def end_cases(session, reference):
    yield "end:0"
    typed = 0
    for kind, value, _ in session.steps:
        if kind in ENDING_STEPS:
            return
        if kind == "type":
            ends = range(typed + 1, typed + len(value) + 1)
            yield from (f"end:{count}" for count in spread(session, reference, ends))
            typed += len(value)


def signal_cases(session, reference):
    # Behind the last of what the client waits for it may have ended by itself.
    kinds = [kind for kind, _, _ in session.steps]
    ending = [at for at, kind in enumerate(kinds) if kind in ENDING_STEPS]
    typing = [at for at, kind in enumerate(kinds) if kind == "type"]
    last = ending[0] if ending else max(typing, default=0)
    waits = [at for at in range(last) if kinds[at] in ("output", "await", "command")]
    for index in spread(session, reference, waits):
        for name in SIGNALS:
            # Before the first output the signals need not be caught yet.
            if index != waits[0]:
                yield f"signal:{index}:{name}:before"
            yield f"signal:{index}:{name}:behind"


PLANNERS = {
    "device": device_cases,
    "console": console_cases,
    "allocation": allocation_cases,
    "end": end_cases,
    "signal": signal_cases,
}

BENCH = None
REFERENCES = {}


def set_up_worker(options):
    global BENCH
    BENCH = Bench(options)


def reference_of(path):
    if path not in REFERENCES:
        REFERENCES[path] = Reference(BENCH, BENCH.session(path))
    return REFERENCES[path]


def plan(path, kinds):
    """The cases of a session, by kind, and how long it lasts; or why it cannot be played."""
    try:
        session = BENCH.session(path)
        reference = reference_of(path)
        again = Reference(BENCH, session) if "console" in kinds else reference
    except (Failure, FormatError) as failure:
        return path, str(failure), {}, None
    cases = {kind: list(PLANNERS[kind](session, reference)) for kind in kinds}
    if "console" in kinds:
        # A call that only one of two runs makes is made when time allows.
        always = set(PLANNERS["console"](session, again))
        cases["console"] = [case for case in cases["console"] if case in always]
    return path, None, cases, reference


def run_cases(path, reference, texts):
    """Runs cases of one session; returns (case, whether it fired, failure) of each."""
    session = BENCH.session(path)
    return path, [(text, *run_case(session, reference, Case(path, text))) for text in texts]


def run_case(session, reference, case):
    """Returns (whether it fired, failure)."""
    fired, failure = False, None
    for _ in range(TRIES):
        try:
            fired = RUNNERS[case.kind](BENCH, session, reference, case)
            failure = None if fired else "it did not come to that"
        except Failure as reason:
            fired, failure = True, str(reason)
        if failure is None or (fired and case.kind != "signal"):
            break
        if not fired and case.kind == "console":
            case = case.no_later_than(BENCH.counts())
    return fired, failure


def chunks(items, size):
    return (items[start : start + size] for start in range(0, len(items), size))


def shortened(text):
    """As much of a failure as says what is wrong."""
    lines = [line[:SHOWN_COLUMNS] for line in text.split("\n")]
    return "\n".join(lines[:SHOWN_LINES] + ["..."] * (len(lines) > SHOWN_LINES))


def left_out(session, options):
    """Why a session is not swept, or nothing."""
    if session.scenario is not None:
        return "on the simulated modem, which answers when it likes"
    if session.lasts is not None and session.lasts[0] > options.longest:
        return f"lasts more than {options.longest:g} s"
    if zlib.crc32(session.path.stem.encode()) % options.every_session:
        return "not in the sample of sessions"
    return None


class Sums:
    """What was planned, came to pass and failed, by kind."""

    def __init__(self, kinds):
        self.numbers = {kind: [0, 0, 0] for kind in kinds}
        self.unplayed = 0

    def planned(self, case):
        self.numbers[case.kind][0] += 1

    def done(self, case, fired, failure):
        self.numbers[case.kind][1] += fired
        if failure:
            self.numbers[case.kind][2] += 1
            print(f"FAILED: {case.path} --case {case.text}: {shortened(failure)}", flush=True)

    def not_played(self, path, failure):
        self.unplayed += 1
        print(f"FAILED: {path}: {shortened(failure)}", flush=True)

    def show(self):
        for kind, (planned, fired, failed) in self.numbers.items():
            print(f"{kind}: planned {planned}, fired {fired}, failed {failed}")

    def failed(self):
        return self.unplayed + sum(failed for _, _, failed in self.numbers.values())


def chosen_cases(path, planned, options):
    """The cases of a session that are run, by kind."""
    for kind, texts in planned.items():
        if options.case:
            yield [text for text in options.case if text.startswith(kind + ":")]
        else:
            yield [text for text in texts if Case(path, text).sampled(options.every)]


def sweep(paths, options):
    sums = Sums(options.kinds)
    with concurrent.futures.ProcessPoolExecutor(
        options.jobs, initializer=set_up_worker, initargs=(options,)
    ) as pool:
        tasks = []
        plans = [pool.submit(plan, path, options.kinds) for path in paths]
        for future in concurrent.futures.as_completed(plans):
            path, failure, planned, reference = future.result()
            if failure:
                sums.not_played(path, failure)
                continue
            for texts in chosen_cases(path, planned, options):
                for text in texts:
                    sums.planned(Case(path, text))
                if not options.plan:
                    tasks += [
                        pool.submit(run_cases, path, reference, part)
                        for part in chunks(texts, CASES_A_TASK)
                    ]
        for future in concurrent.futures.as_completed(tasks):
            path, results = future.result()
            for text, fired, failure in results:
                sums.done(Case(path, text), fired, failure)
    sums.show()
    return 1 if sums.failed() else 0


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument(
        "paths", nargs="+", type=pathlib.Path, help="session files, directories of them"
    )
    parser.add_argument("--client", required=True, help="the client's executable")
    parser.add_argument("--scripted", required=True, help="the scripted libqor020.so")
    parser.add_argument("--faults", help="libfaults.so, for console calls and allocations")
    parser.add_argument("--kinds", help="what goes wrong, of " + ",".join(PLANNERS))
    parser.add_argument("--case", action="append", help="only this case, as a failure names it")
    parser.add_argument("--every", type=int, default=1, help="a sample of the cases: 1 in so many")
    parser.add_argument("--every-session", type=int, default=1, help="a sample of the sessions")
    parser.add_argument("--longest", type=float, default=1e9, help="seconds a session may last")
    parser.add_argument("--plan", action="store_true", help="only count what would be run")
    parser.add_argument("--jobs", type=int, default=2 * (os.cpu_count() or 1))
    options = parser.parse_args()
    options.simulated = options.scenarios = None
    options.emulator = []
    options.kinds = options.kinds.split(",") if options.kinds else list(PLANNERS)
    if not {"console", "allocation"} & set(options.kinds):
        options.faults = None
    elif options.faults is None:
        parser.error("console calls and allocations need --faults")
    paths = []
    for path in options.paths:
        paths += sorted(path.rglob("*.session")) if path.is_dir() else [path]
    reasons = {path.absolute(): left_out(Session(path), options) for path in paths}
    swept = [path for path, reason in reasons.items() if reason is None]
    print(f"{len(swept)} of {len(paths)} sessions")
    for reason, count in sorted(collections.Counter(filter(None, reasons.values())).items()):
        print(f"left out, {reason}: {count}")
    with tempfile.TemporaryDirectory(prefix="sweep.") as options.top:
        return sweep(swept, options)


if __name__ == "__main__":
    sys.exit(main())
