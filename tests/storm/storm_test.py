#!/usr/bin/env python3
"""Everything that can go wrong around the client, on library threads that never rest. README.md in
tests/ says how to run it by hand."""

import sys

sys.dont_write_bytecode = True  # the sources stay as they are

import argparse
import contextlib
import fcntl
import os
import pathlib
import random
import re
import signal
import socket
import subprocess
import termios
import threading
import time
import unittest

from client import (
    INVALID,
    LATE,
    MAIN_MENU,
    PROMPT,
    SOON,
    TRACE_HEAD,
    Broken,
    Client,
    Stream,
    sanitized,
    trace,
)

SUCCESS = b"\n Success , handle : 0x1"
SIGNALS = (signal.SIGINT, signal.SIGTERM, signal.SIGHUP)
FLOOD = {"threads": 2, "body": 600}


def fewer(runs):
    """How often something is tried: under a sanitizer it takes several times as long."""
    return runs // 3 if sanitized(OPTIONS) else runs


class StormTest(unittest.TestCase):
    """What all of them use."""

    def setUp(self):
        self.random = random.Random(OPTIONS.seed)

    def soon(self, times):
        """Within half a second in the median, as one may be late on a machine that has too much to do."""
        shown = " ".join("never" if took is None else f"{took:.3f}" for took in times)
        soon = 2 * SOON if sanitized(OPTIONS) else SOON
        late = [took for took in times if took is None or took >= soon]
        print(f"seconds to the end: {shown} ({len(late)} of {len(times)} late)")
        self.assertLessEqual(len(late), len(times) // 2, shown)
        self.assertNotIn(None, times, shown)

    def ended_well(self, client, status):
        """The status is right, the device closed, and standard error empty."""
        statuses = {status} if isinstance(status, int) else status
        self.assertIn(client.process.wait(LATE), statuses, client.state())
        self.assertTrue(client.closed_in_order(), client.state())
        self.assertEqual(client.errors(), "")

    def ends(self, prepare, end, runs=10, **settings):
        """Prepares a client, ends it by what end does, which returns the status to expect; over
        and over. All have to end soon, in order."""
        times, wrong = [], []
        runs = fewer(runs)
        for _ in range(runs):
            with Client(**settings) as client:
                client.wait_record("register")
                prepare(client)
                began = time.monotonic()
                status = end(client)
                times.append(client.ended_after(began, LATE))
                if times[-1] is None:
                    print(f"does not end, told {status}: {client.waits()}")
                    continue
                try:
                    self.ended_well(client, status)
                except AssertionError as error:
                    wrong.append(str(error))
        if wrong:
            print(f"not in order: {len(wrong)} of {runs}")
        self.soon(times)
        self.assertEqual(wrong, [])

    def any_signal(self, client):
        number = self.random.choice(SIGNALS)
        client.signal(number)
        return 128 + number

    def at_any_moment(self, _client):
        time.sleep(self.random.random() * 0.2)


@contextlib.contextmanager
def reader(client, count=65536, pause=0.0):
    """Reads the client's output beside the test."""
    stop = threading.Event()

    def read():
        while not stop.is_set():
            with contextlib.suppress(Broken):
                if not client.read_some(count, seconds=0.05):
                    return
            time.sleep(pause)

    thread = threading.Thread(target=read)
    thread.start()
    try:
        yield
    finally:
        stop.set()
        thread.join()


def wait_for_zone(client):
    """Until a decoder waits for a key behind its fourth zone. The keys before that have sent the
    menus to wait for their turn."""
    for zone in range(4):
        client.read_until(b"Zone Is: [%d]" % zone)
        client.read_until(b"~NON MIMO ~")
        client.read_until(b"TvlBasebandBurstRcvCTC64Qam56: [0]\n")
        time.sleep(0.05)
        if zone < 3:
            client.type(b"\n")


def stop_terminal(client):
    """Control-S, as a person types it."""
    client.read_until(PROMPT)
    client.type(b"\x13")
    client.wait_until(lambda: client.waiting() == 0 or not client.read_some(), "silence")
    time.sleep(0.1)


class Signals(StormTest):
    """A signal ends the client at once, whatever its output is."""

    def test_terminal_that_nobody_reads(self):
        self.ends(Client.wait_stuck, self.any_signal, output="terminal", **FLOOD)

    def test_terminal_that_nobody_reads_behind_one_quick_thread(self):
        self.ends(Client.wait_stuck, self.any_signal, output="terminal", threads=1, body=10)

    def test_terminal_that_is_stopped(self):
        self.ends(stop_terminal, self.any_signal, output="terminal", **FLOOD, pause=1000)

    def test_terminal_that_another_user_owns(self):
        if os.getuid() != 0:
            self.skipTest("needs to be root")
        self.ends(Client.wait_stuck, self.any_signal, output="terminal", user=65534, **FLOOD)

    def test_pipe_that_nobody_reads(self):
        self.ends(Client.wait_stuck, self.any_signal, **FLOOD)

    def test_pipe_that_another_user_owns(self):
        if os.getuid() != 0:
            self.skipTest("needs to be root")
        self.ends(Client.wait_stuck, self.any_signal, user=65534, **FLOOD)

    def test_socket_that_nobody_reads(self):
        self.ends(Client.wait_stuck, self.any_signal, output="socket", input="socket", **FLOOD)

    def test_file_at_any_moment(self):
        self.ends(self.at_any_moment, self.any_signal, output="file", **FLOOD)

    def test_null_device_at_any_moment(self):
        self.ends(self.at_any_moment, self.any_signal, output="null", **FLOOD)

    def read_at_any_moment(self, output, **settings):
        times = []
        for _ in range(fewer(10)):
            with Client(output=output, **settings) as client:
                client.wait_record("register")
                with reader(client, count=1000, pause=0.001):
                    self.at_any_moment(client)
                    began = time.monotonic()
                    status = self.any_signal(client)
                    times.append(client.ended_after(began, LATE))
                if times[-1] is not None:
                    self.ended_well(client, status)
        self.soon(times)

    def test_slowly_read_pipe_at_any_moment(self):
        self.read_at_any_moment("pipe", **FLOOD)

    def test_slowly_read_terminal_at_any_moment(self):
        self.read_at_any_moment("terminal", **FLOOD)

    def test_slowly_read_socket_at_any_moment(self):
        self.read_at_any_moment("socket", **FLOOD)

    def test_pipe_that_somebody_else_keeps_full(self):
        def fill(client):
            """Another writer takes every byte of room, the client's last look notwithstanding."""
            other = subprocess.Popen(
                [
                    sys.executable,
                    "-c",
                    "import os\nwhile True: os.write(1, b'x' * 4096)",
                ],
                stdout=client.outside,
                stderr=subprocess.DEVNULL,
            )
            others.append(other)
            client.read_until(b"x" * 4096)
            deadline = time.monotonic() + 0.3
            while time.monotonic() < deadline:
                client.read_some(4096)
                time.sleep(0.005)
            client.wait_stuck()

        others = []
        try:
            self.ends(fill, self.any_signal, write_delay=3000, **FLOOD)
        finally:
            for other in others:
                other.kill()
                other.wait()

    def test_signals_that_library_threads_may_get(self):
        self.ends(self.at_any_moment, self.any_signal, output="null", blocks_signals=0, threads=4)

    def test_signals_that_library_threads_block(self):
        self.ends(self.at_any_moment, self.any_signal, output="null", blocks_signals=1, threads=4)

    def test_small_stacks(self):
        if sanitized(OPTIONS):
            self.skipTest("sanitizers need large stacks")
        self.ends(
            self.at_any_moment, self.any_signal, output="null", stack=65536, messages="any", threads=2
        )

    def test_half_mini_card_pause(self):
        def prepare(client):
            client.type(b"24\n")
            self.at_any_moment(client)

        self.ends(prepare, self.any_signal, output="file", threads=0)


class SignalsIgnored(StormTest):
    """Who started the client had a signal ignored."""

    def stays(self, number):
        with Client(ignored=[number], threads=0) as client:
            client.read_until(MAIN_MENU)
            client.signal(number)
            time.sleep(0.2)
            client.type(b"0\n")
            client.read_until(INVALID + MAIN_MENU)
            client.type(b"-1\n")
            client.reads_until_end()
            self.ended_well(client, 0)

    def test_hang_up_that_was_ignored_stays_ignored(self):
        self.stays(signal.SIGHUP)

    def test_interrupt_that_was_ignored_stays_ignored(self):
        self.stays(signal.SIGINT)

    def test_termination_that_was_ignored_stays_ignored(self):
        self.stays(signal.SIGTERM)


class SecondSignal(StormTest):
    """A library call that never returns."""

    def hangs(self, call, typed, first=signal.SIGTERM, second=signal.SIGTERM):
        times = []
        for _ in range(5):
            with Client(output="file", threads=1, pause=1000, hangs=call) as client:
                client.type(typed)
                client.wait_record(f"hangs {call}")
                client.signal(first)
                time.sleep(0.2)
                began = time.monotonic()
                client.signal(second)
                took = client.ended_after(began, 1)
                if took is None:  # two signals that wait for their handler together are one
                    client.signal(second)
                    took = client.ended_after(began, LATE)
                times.append(took)
                if took is not None:
                    self.assertIn(client.process.returncode, {128 + first, 128 + second})
                    self.assertEqual(client.errors(), "")
        self.soon(times)

    def test_ends_an_open_that_hangs(self):
        self.hangs("open", b"")

    def test_ends_a_registration_that_hangs(self):
        self.hangs("register", b"")

    def test_ends_a_send_that_hangs(self):
        self.hangs("send", b"2\n1\n")

    def test_ends_a_close_that_hangs(self):
        self.hangs("close", b"-1\n")

    def test_ends_a_close_in_the_menu_that_hangs(self):
        self.hangs("close", b"100\n")

    def test_ends_a_read_of_memory_that_hangs(self):
        self.hangs("rdm", b"7\n1\n0\n4\n")

    def test_of_another_kind_ends_it_too(self):
        self.hangs("send", b"2\n1\n", first=signal.SIGHUP, second=signal.SIGINT)

    def test_two_hang_ups_in_quick_succession_still_close_the_device(self):
        wrong = 0
        for run in range(20):
            with Client(output="file", close_takes=20000, **FLOOD) as client:
                client.wait_record("register")
                began = time.monotonic()
                client.signal(signal.SIGHUP)
                time.sleep((0, 0.0005, 0.002, 0.005)[run % 4])
                client.signal(signal.SIGHUP)
                self.assertIsNotNone(client.ended_after(began, LATE))
                # A slow machine hands over the second one when it is another event.
                quick = time.monotonic() < began + 0.1
                self.assertEqual(client.process.returncode, 128 + signal.SIGHUP)
                wrong += quick and not client.closed_in_order()
        self.assertEqual(wrong, 0, "devices left open, of 20")

    def test_first_signal_lets_a_slow_close_finish(self):
        with Client(output="file", close_takes=1000000, threads=1) as client:
            client.wait_record("register")
            client.signal(signal.SIGTERM)
            self.assertIsNotNone(client.ended_after(time.monotonic()))
            self.ended_well(client, 143)


class Terminals(StormTest):
    """Terminals that are flushed, and hung up."""

    def interrupted_paste(self, prepare, line, **settings):
        def paste(client):
            client.read_until(PROMPT)
            prepare(client)
            client.type(line)
            time.sleep(0.05 + self.random.random() * 0.2)

        def press(client):
            client.type(b"\x03")
            return 130

        self.ends(paste, press, output="terminal", read_delay=2000, **settings)

    def test_interrupt_key_while_a_pasted_line_is_read(self):
        self.interrupted_paste(lambda client: None, b"1" * 300 + b"\n", threads=0)

    def test_interrupt_key_while_a_decoder_takes_pasted_keys(self):
        self.interrupted_paste(
            wait_for_zone, b"1" * 300 + b"\n", messages="zones", delay=200000
        )

    def test_input_thrown_away_is_waited_for_again(self):
        with Client(output="terminal", read_delay=2000, threads=0) as client:
            for _ in range(5):
                client.read_until(MAIN_MENU)
                client.type(b"0 " * 100 + b"\n")
                time.sleep(0.1)
                termios.tcflush(client.outside, termios.TCIFLUSH)
                time.sleep(0.05)
                client.type(b"\n0\n")
                client.read_until(INVALID)
            client.type(b"\n-1\n")
            client.reads_until_end()
            self.ended_well(client, 0)

    def test_hung_up_while_it_waits(self):
        self.hung_up(lambda client: client.read_until(PROMPT), threads=0)

    def test_hung_up_under_a_flood(self):
        self.hung_up(lambda client: client.read_until(PROMPT), **FLOOD)

    def test_hung_up_unread(self):
        self.hung_up(Client.wait_stuck, **FLOOD)

    def test_hung_up_while_a_decoder_waits_for_a_key(self):
        self.hung_up(wait_for_zone, messages="zones")

    def hung_up(self, prepare, **settings):
        def hang_up(client):
            client.close_screen()
            return {129, 141}  # the signal, or the output that is gone, whichever it sees first

        self.ends(prepare, hang_up, output="terminal", **settings)

    def test_is_left_as_it_was(self):
        for output in ("terminal", "pipe", "socket"):
            with Client(output=output, input=output, **FLOOD) as client:
                flags = [fcntl.fcntl(end, fcntl.F_GETFL) for end in (client.inside, client.outside)]
                modes = termios.tcgetattr(client.inside) if client.terminal else None
                client.read_until(PROMPT)
                with reader(client):
                    client.type(b"-1\n")
                    client.process.wait(LATE)
                now = [fcntl.fcntl(end, fcntl.F_GETFL) for end in (client.inside, client.outside)]
                self.assertEqual(now, flags, output)
                if modes:
                    self.assertEqual(termios.tcgetattr(client.inside), modes)
                self.ended_well(client, 0)

    def test_is_not_made_non_blocking_for_others_meanwhile(self):
        for output in ("terminal", "pipe", "socket"):
            with Client(output=output, input=output, threads=0) as client:
                client.read_until(PROMPT)
                for end in (client.inside, client.outside):
                    flags = fcntl.fcntl(end, fcntl.F_GETFL)
                    self.assertEqual(flags & os.O_NONBLOCK, 0, output)
                client.type(b"-1\n")
                client.reads_until_end()
                self.ended_well(client, 0)


class Pipes(StormTest):
    """Readers that are gone, and inputs that end."""

    def reader_gone(self, prepare, **settings):
        def go(client):
            client.close_screen()
            return 141

        self.ends(prepare, go, **settings)

    def test_reader_gone_while_it_waits(self):
        self.reader_gone(lambda client: client.read_until(PROMPT), threads=0)

    def test_reader_gone_under_a_flood(self):
        self.reader_gone(lambda client: client.read_until(PROMPT), **FLOOD)

    def test_reader_gone_that_never_read(self):
        self.reader_gone(Client.wait_stuck, **FLOOD)

    def test_reader_of_a_socket_gone_under_a_flood(self):
        self.reader_gone(lambda client: client.read_until(PROMPT), output="socket", **FLOOD)

    def test_reader_of_a_socket_gone_while_it_waits(self):
        self.reader_gone(lambda client: client.read_until(PROMPT), output="socket", threads=0)

    def test_reader_gone_while_a_decoder_waits_for_a_key(self):
        self.reader_gone(wait_for_zone, messages="zones")

    def test_reader_of_a_socket_gone_while_a_decoder_waits_for_a_key(self):
        self.reader_gone(
            wait_for_zone, output="socket", messages="zones"
        )

    def test_reader_gone_during_the_half_mini_card_pause(self):
        def prepare(client):
            client.read_until(PROMPT)
            client.type(b"24\n")
            time.sleep(0.1)

        self.reader_gone(prepare, threads=0)

    def test_input_that_ends_under_a_flood(self):
        for kind in ("pipe", "socket"):
            for _ in range(3):
                with Client(input=kind, **FLOOD) as client:
                    client.read_until(PROMPT)
                    client.close_input()
                    self.assertEqual(Stream(client.reads_until_end(), 600).rest, b"")
                    self.ended_well(client, 0)

    def test_words_through_a_socket(self):
        with Client(output="socket", input="socket", threads=0) as client:
            for word in (b"0", b"99", b"abc"):
                client.read_until(MAIN_MENU)
                client.type(word + b"\n")
                client.read_until(INVALID)
            client.type(b"-1\n")
            self.assertEqual(client.reads_until_end(), MAIN_MENU)
            self.ended_well(client, 0)


class Turns(StormTest):
    """The menus' turn behind a flood."""

    def reports_before(self, text, reader_takes, pause, threads):
        """How many reports begin between a choice that was typed and the text that it brings,
        beyond those that were on their way already."""
        body = 600
        with Client(threads=threads, body=body) as client:
            client.read_until(PROMPT)
            client.wait_stuck()
            client.type(b"0\n")
            client.wait_until(lambda: client.untaken() == 0, "the choice to be read")
            time.sleep(0.3)
            under_way = len(client.seen) + client.waiting()
            limit = under_way + 400 * len(trace(0, 16, body))
            while text not in client.seen and len(client.seen) < limit:
                client.read_some(reader_takes)
                time.sleep(pause)
            found = client.seen.find(text)
            stream = client.seen[: found if found >= 0 else len(client.seen)]
            count = stream[under_way:].count(TRACE_HEAD)
            count = f"more than {count}" if found < 0 else count
            if found >= 0:
                with reader(client):
                    client.type(b"-1\n")
                    client.process.wait(LATE)
                self.ended_well(client, 0)
        return count

    def waits_for(self, threads, most):
        # Reads so slowly that a reader alone makes the flood wait.
        counts = [self.reports_before(INVALID + MAIN_MENU, 4096, 0.01, threads) for _ in range(3)]
        print(f"reports between the choice and the prompt, {threads} threads: {counts}")
        self.assertTrue(all(isinstance(count, int) and count <= most for count in counts), counts)

    def test_prompt_waits_for_one_report_at_most(self):
        self.waits_for(1, 1)

    def test_prompt_waits_for_one_report_of_each_thread_at_most(self):
        self.waits_for(4, 4)

    def test_prompt_waits_for_one_report_of_each_thread_at_most_of_many(self):
        self.waits_for(20, 20)

    def test_leaving_choice_is_read_behind_a_flood(self):
        """Typed ahead, so that menus stand between the choices."""
        body = 600
        with Client(threads=1, body=body) as client:
            client.read_until(PROMPT)
            client.wait_stuck()
            client.type(b"0\n0\n0\n-1\n")
            client.let_go()
            most = len(client.seen) + client.waiting() + 20 * len(trace(0, 16, body))
            read = len(client.seen)
            while read < 10 * most:
                chunk = client.read_some(4096)
                read += len(chunk)
                if not chunk:
                    break
                time.sleep(0.01)
            print(f"{'ended' if not chunk else 'goes on'} after {read} bytes, of {most} at most")
            self.assertLessEqual(read, most)
            self.ended_well(client, 0)
            self.assertEqual(client.seen.count(MAIN_MENU), 3)


class Cancelling(StormTest):
    """A library that cancels its threads."""

    def cancelled(self, **settings):
        """Closes and opens again under a flood; the console goes on."""
        if sanitized(OPTIONS):
            self.skipTest("the sanitizers do not bear it")
        broken = []
        runs = fewer(10)
        for _ in range(runs):
            with Client(close="cancels", body=600, **settings) as client:
                try:
                    with reader(client, count=3000):
                        for _ in range(4):
                            time.sleep(self.random.random() * 0.02)
                            before = client.record().count("closed")
                            client.type(b"100\n")
                            client.wait_until(
                                lambda: client.record().count("closed") > before, "the close", 5
                            )
                            client.type(b"200\n")
                        client.type(b"-1\n")
                        client.wait_until(
                            lambda: client.process.poll() is not None, "the end", 5
                        )
                except (Broken, BrokenPipeError) as error:
                    broken.append(f"{error}; {client.state()}")
                    continue
                rest = client.reads_until_end()
                menus = Stream(rest, 600).rest
                self.assertEqual(menus, MAIN_MENU + (MAIN_MENU + SUCCESS + MAIN_MENU) * 4)
                self.assertEqual(client.process.returncode, 0)
                self.assertEqual(client.errors(), "")
        print(f"hung or killed: {len(broken)} of {runs}")
        self.assertFalse(broken, broken[:1])

    def test_threads_cancelled_at_the_next_system_call(self):
        self.cancelled(threads=2)

    def test_threads_cancelled_at_once(self):
        self.cancelled(threads=2, cancels_at_once=1)

    def test_cancelled_thread_that_waits_for_a_key(self):
        with Client(close="cancels", messages="zones", delay=100000) as client:
            wait_for_zone(client)
            client.signal(signal.SIGTERM)
            with reader(client):
                took = client.ended_after(time.monotonic(), LATE)
            self.soon([took])
            self.ended_well(client, 143)


class LastReport(StormTest):
    """A close that does not wait for the callback."""

    def left(self, end, status, runs=40, **settings):
        cut = 0
        runs = fewer(runs)
        for _ in range(runs):
            with Client(close="leaves", threads=2, body=2000, **settings) as client:
                client.read_until(PROMPT)
                end(client)
                rest = b""
                client.let_go()
                while True:
                    chunk = client.read_some(2000)
                    if not chunk:
                        break
                    time.sleep(0.0005)
                rest = client.seen
                try:
                    self.assertEqual(Stream(rest, 2000).rest, b"")
                except Broken:
                    cut += 1
                self.ended_well(client, status)
        print(f"cut: {cut} of {runs}")
        self.assertEqual(cut, 0, f"cut off, of {runs}")

    def test_is_whole_after_the_leaving_choice(self):
        self.left(lambda client: client.type(b"-1\n"), 0)

    def test_is_whole_after_the_end_of_the_input(self):
        self.left(Client.close_input, 0)

    def test_does_not_hold_up_the_end_when_nobody_reads(self):
        def leave(client):
            client.type(b"-1\n")
            return 0

        times = []
        for _ in range(3):
            with Client(close="leaves", **FLOOD) as client:
                client.read_until(PROMPT)
                client.wait_stuck()
                leave(client)
                times.append(client.ended_after(time.monotonic(), LATE))
        print(f"seconds to the end: {times}")
        self.assertTrue(all(took is not None for took in times), times)
        self.assertLess(min(times), 2 * SOON + 0.5)


class Memory(StormTest):
    """Little memory, and words without end."""

    def short_of_memory(self, typed, limit):
        if sanitized(OPTIONS):
            self.skipTest("sanitizers need the address space")
        with Client(threads=0, limit=limit) as client:
            client.type(typed)
            text = client.reads_until_end(60)
            self.assertIn(client.process.returncode, {0, 1}, client.state())
            self.assertTrue(client.closed_in_order(), client.state())
            errors = client.errors()
            if client.process.returncode:
                self.assertRegex(errors, r"\A[^\n]+\n\Z")
            else:
                self.assertEqual(errors, "")
        return text, client.process.returncode

    def test_large_dump_is_whole_or_refused_in_a_line(self):
        typed = b"7\n1\n0\n4000000\n-1\n-1\n"
        for limit in range(8000 * 1024, 40000 * 1024, 10000 * 1024):
            try:
                text, status = self.short_of_memory(typed, limit)
            except Broken as broken:
                self.fail(f"with {limit}: {broken}")
            count = text.count(b" 0xa5")
            print(f"{limit >> 10} KiB: status {status}, {count} bytes shown")
            if b"Malloc failed" in text:
                self.assertEqual(count, 0)
            elif status == 0:
                self.assertEqual(count, 4000000, limit)

    def test_float_of_megabytes_takes_no_memory(self):
        def peak(client):
            status = pathlib.Path(f"/proc/{client.process.pid}/status").read_text()
            return int(re.search(r"VmHWM:\s+(\d+)", status)[1])

        with Client(threads=0) as client, reader(client):
            client.type(b"1\n2\n0.5")
            client.wait_until(lambda: client.untaken() == 0, "the beginning to be read")
            before = peak(client)
            client.type(b"7" * 2000000)
            client.wait_until(lambda: client.untaken() == 0, "the word to be read", 120)
            grown = peak(client) - before
            client.type(b"\n0\n10000\n-1\n")
            client.wait_until(lambda: client.process.poll() is not None, "the end")
            self.ended_well(client, 0)
            print(f"grown by {grown} KiB")
            # 0.5777... MHz in kHz
            self.assertIn("send 2/1 41020000" + "10270000" + "ff000000", "\n".join(client.record()))
            if not sanitized(OPTIONS):
                self.assertLess(grown, 256)


class Pauses(StormTest):
    """A pause that a signal of somebody else interrupts goes on."""

    def test_pauses_between_opens_last_a_second(self):
        with Client(output="file", opens_fail=4, tick=50000, threads=0) as client:
            client.wait_record("open")
            times = [int(line.split()[2]) for line in client.record() if "fails" in line]
            client.type(b"-1\n")
            client.process.wait(LATE)
            self.ended_well(client, 0)
        # The first failure is silent, and the second comes right behind it.
        pauses = [after - before for before, after in zip(times[1:], times[2:])]
        print(f"pauses: {pauses} ms")
        self.assertEqual(len(pauses), 2)
        self.assertTrue(all(pause >= 990 for pause in pauses), pauses)

    def test_menus_read_on(self):
        with Client(tick=200, threads=0) as client:
            for _ in range(50):
                client.read_until(PROMPT)
                client.type(b"0\n")
            client.read_until(PROMPT)
            client.type(b"-1\n")
            client.reads_until_end()
            self.ended_well(client, 0)


class Tables(StormTest):
    """Two threads fill the tables that the menus read."""

    def test_stations_are_never_torn(self):
        torn, seen = 0, 0
        runs = fewer(60)
        for run in range(runs):
            with Client(
                output="null", messages="stations", threads=3, delay=0, seed=run
            ) as client:
                client.wait_record("register")
                time.sleep(0.02 + self.random.random() * 0.03)
                client.type(b"1\n1\n4\n" + b"0\n" * 84 + b"-1\n")
                client.process.wait(10)
                sent = [line.split()[2] for line in client.record() if line.startswith("send 1/4")]
                self.ended_well(client, 0)
                request = bytes.fromhex(sent[0])
                for i in range(int.from_bytes(request[8:12], "little")):
                    station = request[20 + 16 * i : 32 + 16 * i]
                    numbers = {station[j : j + 4] for j in (0, 4, 8)}
                    seen += 1
                    torn += len(numbers) != 1
        print(f"torn: {torn} of {seen} stations")
        self.assertGreater(seen, 0)
        self.assertEqual(torn, 0)

    def test_service_flows_are_shown_whole(self):
        """The request empties the table and asks the modem, whose answers fill it inside the send."""
        flows = {1 + 100 * thread + i for thread in range(3) for i in range(3)}
        for _ in range(10):
            with Client(messages="flows", threads=3, send="answers") as client:
                client.read_until(PROMPT)
                client.type(b"6\n2\n")
                text = client.read_until(b"Enter SFID INDEX [0-15] : ")
                client.close_input()
                client.reads_until_end()
                self.ended_well(client, 0)
                table = text[text.rindex(b"\nValid SFIDs") :]
                shown = re.findall(rb"\nINDEX (\d+),  SF ID: (\d+)", table)
                self.assertEqual([int(index) for index, _ in shown], list(range(len(shown))), table)
                self.assertGreaterEqual(len(shown), 3)
                self.assertLessEqual({int(flow) for _, flow in shown}, flows)


# What a person types behind the prompts of a choice, by choice; elsewhere any of WORDS.
WORDS = b"0 1 2 3 4 5 7 10 16 40 255 -5 abc ff 0x10 3576.5 10000 99999999999 00-11-22-33-44-55".split()
WORDS_BEHIND = {
    3: [b"1", b"3", b"9"],  # not the firmware download, whose wait is long
    7: [b"1", b"2", b"-1", b"10", b"40", b"zz"],  # nothing a thousand times
    20: [*WORDS, b"-1"],
}
ENDS = ("input ends", "signal", "reader gone")
MAIN_CHOICES = [*range(1, 25), 99, 100, 200, 200, 0]


class Dialogue:
    """Random words for all menus, and what the client prints for them when nothing else comes."""

    def __init__(self, seed, words, without=()):
        chance = random.Random(seed)
        choices = [choice for choice in MAIN_CHOICES if choice not in without]
        self.words, self.places = [], {0}  # in the text, where one write ends and the next begins
        choice = 0
        with Client(threads=0, records_writes=1) as client:
            for _ in range(words):
                self.wait_for_input(client)
                if client.seen.endswith(MAIN_MENU):
                    choice = chance.choice(choices)
                    word = b"%d" % choice
                else:
                    word = chance.choice(WORDS_BEHIND.get(choice, WORDS))
                self.words.append(word + b"\n")
                client.type(self.words[-1])
            self.wait_for_input(client)
            client.close_input()
            self.text = client.reads_until_end()
            if client.process.returncode != 0 or client.errors():
                raise Broken(f"without a storm: {client.state()}")
            place = 0
            for line in client.record():
                if line.startswith("wrote "):
                    place += int(line[6:])
                    self.places.add(place)

    def wait_for_input(self, client):
        """Until it has read everything and sleeps."""

        def sleeps():
            if client.process.poll() is not None:
                raise Broken(f"without a storm: {client.state()}")
            status = pathlib.Path(f"/proc/{client.process.pid}/stat").read_text()
            return status.rsplit(")", 1)[1].split()[0] == "S" and client.untaken() == 0

        def is_quiet():
            while client.waiting():
                client.read_some()
            return sleeps() and not client.waiting() and sleeps()

        client.wait_until(is_quiet, "it to wait for input")


class Reports:
    """The reports of messages of all types, valid and corrupt, each learnt from the message alone."""

    MARK = b"\nUNKNOWN type of message received in Callback func (%d)!!!"

    def __init__(self, seed, different):
        self.different = different
        self.texts = set()
        with Client(messages="each", threads=1, seed=seed, count=2 * different + 1) as client:
            last = self.MARK % (40000 + different)
            text = client.read_until(last)
            if MAIN_MENU not in text:
                client.read_until(MAIN_MENU)
            text = text.replace(MAIN_MENU, b"")
            for i in range(different):
                before, _, text = text.partition(self.MARK % (40001 + i))
                self.texts.add(before.removeprefix(self.MARK % 40000))
            client.close_input()
            client.reads_until_end()
        self.texts.discard(b"")
        self.by_start = {}
        self.start = min(12, min(map(len, self.texts)))
        for text in sorted(self.texts, key=len, reverse=True):
            self.by_start.setdefault(text[: self.start], []).append(text)

    def part(self, stream, dialogue):
        """Takes the reports out of the stream; the dialogue must be left. Returns their number.
        Where a text begins like another, all ways to go on are tried, the longest first."""
        # Places to go on from: in the stream, in the dialogue, and the reports before.
        open_ways, tried, furthest = [(0, 0, 0)], set(), 0
        while open_ways:
            way = open_ways.pop()
            if way[:2] in tried:
                continue
            tried.add(way[:2])
            position, place, count = way
            furthest = max(furthest, position)
            if position == len(stream) and place == len(dialogue.text):
                return count
            # The dialogue goes on up to where a report may begin.
            end = position + 1
            while end < len(stream) and stream[end : end + self.start] not in self.by_start:
                end += 1
            piece = stream[position:end]
            if dialogue.text.startswith(piece, place):
                open_ways.append((end, place + len(piece), count))
            for text in reversed(self.by_start.get(stream[position : position + self.start], ())):
                if stream.startswith(text, position):
                    open_ways.append((position + len(text), place, count + 1))
        raise Broken(
            f"neither a report nor a menu: {stream[furthest - 100 : furthest]!r}"
            f" and then {stream[furthest : furthest + 300]!r}"
        )


class Storms(StormTest):
    """All menus run while the library's threads never rest."""

    def blow(self, dialogue, count=65536, pause=0.0, **settings):
        """Types the dialogue into a storm; returns the whole output."""
        with Client(**settings) as client:
            stop = threading.Event()

            def type_all():
                chance = random.Random(OPTIONS.seed)
                for word in dialogue.words:
                    if stop.is_set():
                        return
                    client.type(word)
                    time.sleep(chance.choice((0, 0, 0.001, 0.003)))
                client.close_input()

            typist = threading.Thread(target=type_all)
            typist.start()
            try:
                client.let_go()
                while client.read_some(count):
                    time.sleep(pause)
                stream = client.seen
            finally:
                stop.set()
                if client.process.poll() is None:
                    client.process.kill()
                typist.join()
            self.ended_well(client, 0)
            return stream

    def numbered(self, rounds=2, **settings):
        """Storms of reports that are known to the byte: each is whole, none is there twice, and
        what is left is what the client prints without a storm, cut only where it waits."""
        body = settings.setdefault("body", 200)
        deadline = time.monotonic() + OPTIONS.seconds
        reports, done = 0, 0
        while done < rounds or time.monotonic() < deadline:
            dialogue = Dialogue(OPTIONS.seed + done, 120)
            stream = self.blow(dialogue, **settings)
            parted = Stream(stream, body)
            self.assertEqual(parted.rest, dialogue.text)
            for place in set(parted.places) - dialogue.places:
                self.fail(f"a report behind {parted.rest[place - 50:place]!r}")
            reports += len(parted.places)
            done += 1
        print(f"{done} dialogues, {reports} reports whole")
        self.assertGreater(reports, 0)

    def repeated(self, **settings):
        """Storms of messages of all types: the output is made of reports that also come when each
        message comes alone, and of what the client prints without a storm."""
        reports = Reports(OPTIONS.seed, 400)
        deadline = time.monotonic() + OPTIONS.seconds
        seen, done = 0, 0
        while not done or time.monotonic() < deadline:
            # Those menus show what messages have left.
            dialogue = Dialogue(OPTIONS.seed + done, 80, without=(1, 6))
            stream = self.blow(
                dialogue, messages="any", different=reports.different, **settings
            )
            seen += reports.part(stream, dialogue)
            done += 1
        print(f"{done} dialogues, {seen} reports whole, of {len(reports.texts)} kinds")
        self.assertGreater(seen, 0)

    def wild(self, threads):
        """Anything at once, and any end. What it prints is not looked at; it has to end in order
        and soon."""
        deadline = time.monotonic() + OPTIONS.seconds
        ends, done = {}, 0
        while not done or time.monotonic() < deadline:
            chance = random.Random(f"{OPTIONS.seed} {threads} {done}")
            how = self.blow_wildly(chance, threads)
            ends[how] = ends.get(how, 0) + 1
            done += 1
        print(f"{done} storms: " + ", ".join(f"{end} {count}" for end, count in sorted(ends.items())))

    def blow_wildly(self, chance, threads):
        output = chance.choice(("pipe", "pipe", "terminal", "socket", "file"))
        settings = {
            "messages": chance.choice(("keys", "keys", "any", "trace", "stations")),
            "seed": chance.randrange(1000),
            "threads": threads,
            "send": chance.choice(("", "answers", "fails")),
            "close": chance.choice(("waits", "waits", "leaves", "cancels")),
            "blocks_signals": chance.choice((0, 1)),
            "tick": chance.choice((0, 0, 1000)),
            "pause": chance.choice((0, 0, 300)),
        }
        end = chance.choice(("input ends", "signal") if output == "file" else ENDS)
        words = [*WORDS, *(b"%d" % choice for choice in MAIN_CHOICES)]
        if end == "input ends":
            # It cuts neither the firmware download short nor a repeated register test.
            words = [word for word in words if word not in (b"3", b"7")]
        if sanitized(OPTIONS) and settings["close"] == "cancels":
            settings["close"] = "waits"  # the sanitizers do not bear it
        slow = chance.choice((0, 0.001, 0.005))
        with Client(output=output, input=chance.choice(("pipe", "socket")), **settings) as client:
            stop = threading.Event()

            def type_words():
                with contextlib.suppress(OSError, Broken):
                    while not stop.is_set():
                        client.type(chance.choice(words) + b"\n", 1)
                        time.sleep(chance.choice((0, 0.001)))

            client.wait_record("register")
            typist = threading.Thread(target=type_words)
            typist.start()
            what = f"{output} {end} {settings}"
            try:
                with reader(client, 4096, slow):
                    time.sleep(0.05 + chance.random() * 0.3)
                    if end == "input ends":
                        stop.set()
                        typist.join()
                        if client.terminal:
                            client.type(b"\n\x04")
                        else:
                            client.close_input()
                        took = client.ended_after(time.monotonic())
                        status = {0}
                    elif end == "signal":
                        began = time.monotonic()
                        status = {self.any_signal(client)}
                        took = client.ended_after(began, LATE)
                if end == "reader gone":
                    began = time.monotonic()
                    client.close_screen()
                    status = {141, 129}
                    took = client.ended_after(began, LATE)
            finally:
                stop.set()
                if client.process.poll() is None:
                    state = client.state()
                    client.process.kill()
                    client.process.wait()
                else:
                    state = client.state()
                typist.join()
            self.assertIsNotNone(took, f"does not end: {what}; {state}")
            self.assertIn(client.process.returncode, status, f"{what}; {state}")
            self.assertTrue(client.closed_in_order(), f"{what}; {state}")
            self.assertEqual(client.errors(), "", what)
        return f"{output} {end}"

    def test_one_thread(self):
        self.numbered(threads=1)

    def test_four_threads(self):
        self.numbered(threads=4)

    def test_reader_is_slow(self):
        self.numbered(threads=2, count=2000, pause=0.0005)

    def test_inside_sends(self):
        self.numbered(threads=2, send="answers")

    def test_signals_interrupt_everything(self):
        self.numbered(threads=2, tick=500)

    def test_all_messages_from_one_thread(self):
        self.repeated(threads=1)

    def test_all_messages_from_four_threads(self):
        self.repeated(threads=4)

    def test_anything_at_once_from_one_thread(self):
        self.wild(1)

    def test_anything_at_once_from_four_threads(self):
        self.wild(4)


def main():
    global OPTIONS
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--client", required=True, help="the client's executable")
    parser.add_argument("--library", required=True, help="the storm libqor020.so")
    parser.add_argument("--seconds", type=float, default=1, help="how long a storm lasts")
    parser.add_argument("--seed", type=int, default=1, help="what random choices are made from")
    OPTIONS, rest = parser.parse_known_args()
    OPTIONS.client_bytes = pathlib.Path(OPTIONS.client).read_bytes()
    OPTIONS.client = os.path.abspath(OPTIONS.client)
    Client.options = OPTIONS
    unittest.main(argv=[sys.argv[0], *rest])


if __name__ == "__main__":
    main()
