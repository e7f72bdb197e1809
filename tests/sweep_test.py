#!/usr/bin/env python3
"""Tests of the sweep: what does not come to pass, and what comes of it otherwise, fails a case."""

import argparse
import pathlib
import sys
import tempfile
import unittest
from unittest import mock

import run_session
import sweep

OPTIONS = argparse.Namespace()
SENDING = "= main-menu\n> 24\n= main-menu\n> -1\nexit 0\nsent 36/1\n"


class SweepTest(unittest.TestCase):
    def setUp(self):
        top = tempfile.TemporaryDirectory()
        self.addCleanup(top.cleanup)
        OPTIONS.top = top.name
        self.top = pathlib.Path(top.name)
        (self.top / "snippets").symlink_to(
            pathlib.Path(__file__).resolve().parent / "sessions" / "snippets"
        )
        self.bench = sweep.Bench(OPTIONS)

    def outcome(self, case, text=SENDING, reference=None):
        """Nothing when the case passes, else what it fails with."""
        path = self.top / "a.session"
        path.write_text(text, "latin-1")
        session = run_session.Session(path)
        reference = reference or sweep.Reference(self.bench, session)
        case = sweep.Case(path, case)
        try:
            fired = sweep.RUNNERS[case.kind](self.bench, session, reference, case)
        except run_session.Failure as failure:
            return str(failure)
        return None if fired else "did not fire"

    def reference(self, *calls):
        reference = sweep.Reference.__new__(sweep.Reference)
        reference.calls = list(calls)
        return reference

    def test_every_kind_passes_where_nothing_is_wrong(self):
        for case in (
            "device:3:-27",
            "console:read:0:3:EINTR",
            "console:read:0:3:EIO",
            "console:write:1:2:short",
            "console:write:1:2:EPIPE",
            "end:2",
            "end:3",
            "signal:2:TERM:behind",
        ):
            self.assertIsNone(self.outcome(case), case)

    def test_the_library_is_asked_and_fails(self):
        path = self.top / "a.session"
        path.write_text(
            "= main-menu\n> 24\n||\n|HALF MINI Card status request returned # -27|\n||\n"
            "= main-menu\n> -1\nexit 0\n",
            "latin-1",
        )
        session = run_session.Session(path)

        def act(client, _):
            run_session.play(session, client)
            return client.calls(), client.failed_behind

        calls, behind = sweep.with_client(self.bench, session, {"QOR020_FAIL": "3:-27"}, act)
        self.assertEqual(calls[2], "SendWiMAXMessage 1 4 36/1 -> -27")
        self.assertEqual(behind, 2)

    def test_what_does_not_fire_is_told(self):
        self.assertEqual(self.outcome("device:9:-1"), "did not fire")
        self.assertEqual(self.outcome("console:read:0:900:EIO"), "did not fire")
        self.assertEqual(self.outcome("console:read:0:900:EINTR"), "did not fire")
        self.assertEqual(self.outcome("allocation:900"), "did not fire")

    def test_a_look_that_was_not_needed_is_the_one_before(self):
        path = self.top / "a.session"
        case = sweep.Case(path, "console:poll:other:27:EINTR")
        for count, number in ((25, 25), (26, 26), (24, 27), (30, 27), (0, 27)):
            self.assertEqual(
                case.no_later_than({"poll other": count}).text,
                f"console:poll:other:{number}:EINTR",
            )
        read = sweep.Case(path, "console:read:0:27:EIO")
        self.assertEqual(read.no_later_than({"read 0": 26}).text, "console:read:0:27:EIO")

    def test_another_exit_status_fails(self):
        with mock.patch.dict(sweep.CONSOLE_ERRORS, {"read 0": {"EIO": sweep.OUTPUT_GONE}}):
            failure = self.outcome("console:read:0:1:EIO")
        self.assertIn("exit status 0, expected one of [141]", failure)

    def test_a_change_that_is_to_be_none_fails(self):
        with mock.patch.dict(sweep.CONSOLE_ERRORS, {"read 0": {"EIO": sweep.UNCHANGED}}):
            self.assertIn("the client ended", self.outcome("console:read:0:1:EIO"))

    def test_other_calls_before_the_failure_fail(self):
        reference = self.reference("OpenWiMAXDevice -> 1", "SendWiMAXMessage 1 4 36/1 -> 0")
        failure = self.outcome("device:4:-1", reference=reference)
        self.assertIn("call 2 is RegisterCallback", failure)

    def test_a_call_too_many_behind_the_end_of_the_input_fails(self):
        reference = self.reference("OpenWiMAXDevice -> 1", "RegisterCallback 1 0 -> 0")
        self.assertIn("a call too many", self.outcome("end:3", reference=reference))

    def test_a_device_that_stays_open_fails(self):
        with self.assertRaisesRegex(run_session.Failure, "stays open"):
            session = mock.Mock(checks_calls=True, steps=[], program=None)
            self.reference().check_calls(session, ["OpenWiMAXDevice -> 1"], 0)

    def test_an_end_that_takes_too_long_fails(self):
        with mock.patch.object(sweep, "LONGEST_END", 0):
            self.assertIn("after the signal", self.outcome("signal:0:INT:behind"))

    def test_a_client_that_stays_fails(self):
        with mock.patch.object(sweep.SweptClient, "end_input", lambda client: None):
            failure = self.outcome("end:3", "timeout 1\n" + SENDING)
        self.assertIn("timed out waiting for the client to end", failure)

    def test_a_crash_fails(self):
        self.assertIn("killed by SIGKILL", self.outcome("signal:0:KILL:behind"))

    def test_a_word_on_standard_error_fails(self):
        client = mock.Mock(errors=b"oh\n", terminated=False, record_lines=[])
        session = mock.Mock(stderr=b"")
        for status, text in ((0, b"oh\n"), (1, b""), (1, b"a\nb\n"), (1, b"oh")):
            client.errors = text
            with self.assertRaises(run_session.Failure):
                sweep.check_end(session, client, status, {0, 1})
        for status, text in ((0, b""), (1, b"oh\n")):
            client.errors = text
            sweep.check_end(session, client, status, {0, 1})

    def test_samples_are_the_same_each_time(self):
        path = pathlib.Path("sessions/a/b.session")
        chosen = [number for number in range(100) if sweep.Case(path, f"end:{number}").sampled(10)]
        self.assertEqual(chosen, [14, 21, 42, 43, 48, 57, 75, 76, 80, 81, 95])


if __name__ == "__main__":
    parser = argparse.ArgumentParser()
    for name in ("client", "scripted", "faults"):
        parser.add_argument("--" + name)
    OPTIONS, rest = parser.parse_known_args()
    OPTIONS.simulated = OPTIONS.scenarios = None
    OPTIONS.emulator = []
    unittest.main(argv=[sys.argv[0], *rest])
