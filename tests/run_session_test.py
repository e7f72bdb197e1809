#!/usr/bin/env python3
"""Tests of the session runner: every kind of difference fails a session, and says where."""

import argparse
import contextlib
import io
import pathlib
import sys
import tempfile
import unittest

import run_session

OPTIONS = argparse.Namespace()
LEAVING = "= main-menu\n> -1\nexit 0\n"


def outcome(text):
    """Nothing when the session passes, else what it fails with."""
    with tempfile.TemporaryDirectory() as top:
        directory = pathlib.Path(top)
        (directory / "snippets").symlink_to(
            pathlib.Path(__file__).resolve().parent / "sessions" / "snippets"
        )
        path = directory / "a.session"
        path.write_text(text, "latin-1")
        try:
            with contextlib.redirect_stderr(io.StringIO()):
                run_session.run(run_session.Session(path), OPTIONS)
        except (run_session.Failure, run_session.FormatError) as failure:
            return str(failure)
    return None


class RunnerTest(unittest.TestCase):
    def fails(self, text, *words):
        failure = outcome(text)
        self.assertIsNotNone(failure, "the session passed")
        for word in words:
            self.assertIn(word, failure)

    def passes(self, text):
        self.assertIsNone(outcome(text))

    def test_what_is_as_written_passes(self):
        self.passes(LEAVING)
        self.passes(LEAVING + "call none\n")

    def test_other_output_fails_with_a_difference(self):
        self.fails("||\n|A MENU|\n...\nexit 0\n", "a.session:1", "-|A MENU|", "+|******** MAIN MENU")

    def test_a_trailing_blank_counts(self):
        menu = pathlib.Path(__file__).resolve().parent / "sessions/snippets/main-menu.txt"
        text = menu.read_text("latin-1").replace("|ENTER OPTION : |", "|ENTER OPTION :  |")
        self.fails("timeout 1\n" + text + "> -1\nexit 0\n", "timed out")

    def test_output_left_over_fails(self):
        self.fails("= main-menu\n> 0\n> -1\nexit 0\n", "that the session does not have", "SORRY")
        self.passes("= main-menu\n> 0\n> -1\n...\nexit 0\n")

    def test_output_that_does_not_come_fails(self):
        self.fails("timeout 1\n= main-menu\n|more|\n> -1\nexit 0\n", "timed out", "-|ENTER OPTION")
        self.fails("= main-menu\n> -1\n|more|\nexit 0\n", "the client ended")
        self.fails("timeout 1\n~ nowhere\nexit 0\n", "timed out", "MAIN MENU")

    def test_text_somewhere_is_skipped_to(self):
        self.passes("~ 22. TEST EEPROM\n\\|\\n-1. EXIT FROM APPLICATION|\n~ : \n> -1\nexit 0\n")

    def test_another_exit_status_fails(self):
        self.fails("= main-menu\n> -1\nexit 1\n", "exit status 0, expected 1")
        self.fails("= main-menu\nsignal KILL\nexit 0\n", "killed by SIGKILL")

    def test_a_client_that_does_not_end_fails(self):
        self.fails("timeout 1\n= main-menu\nexit 0\n", "timed out waiting for the client to end")

    def test_a_session_says_how_it_ends(self):
        self.fails("= main-menu\n> -1\n", "no exit status")

    def test_other_calls_fail(self):
        send = "= main-menu\n> 24\n= main-menu\n> -1\nexit 0\n"
        self.passes(send + "sent 36/1\n")
        self.passes(send + "call SendWiMAXMessage 1 4 36/1 -> 0\n")
        self.fails(send + "sent 36/2\n", "-SendWiMAXMessage 1 4 36/2", "+SendWiMAXMessage 1 4 36/1")
        self.fails(send + "sent 36/1 | 00\n", "other calls")
        self.fails(send + "sent 36/1 -> -1\n", "other calls")
        self.fails(send + "call none\n", "other calls")
        self.fails(send + "sent 36/1\nsent 36/1\n", "other calls")
        self.fails(send + "call OpenWiMAXDevice -> 1\nsent 36/1\n", "+RegisterCallback")

    def test_a_command_that_is_not_understood_fails(self):
        self.fails("@ opne 1\n" + LEAVING, "unknown command: opne 1")
        self.fails("= main-menu\n@ message xx\n> -1\nexit 0\n", "these are no bytes: xx")

    def test_a_line_that_is_not_understood_fails(self):
        self.fails("= main-menu\n- 1\nexit 0\n", "a.session:2", "unknown line")
        self.fails("|no bar\nexit 0\n", "a.session:1")
        self.fails("= no-such-snippet\nexit 0\n", "no snippet")

    def test_standard_error_fails(self):
        self.fails("stderr something\n" + LEAVING, "on standard error")

    def test_files_are_given_and_compared(self):
        given = "given a.txt 01 02\n" + LEAVING
        self.passes(given + "file a.txt 01 02\n")
        self.fails(given + "file a.txt 01 03\n", "another one")
        self.fails(LEAVING + "file b.txt 01\n", "not written")
        self.passes("given a.txt\n|two|\n|lines|\n" + LEAVING + 'file a.txt "two" 0a "lines"\n')

    def test_a_session_that_takes_another_time_fails(self):
        self.fails(LEAVING + "lasts 30 40\n", "expected (30.0, 40.0)")

    def test_bytes_are_read_in_every_form(self):
        for text, expected in {
            "01 ff 0aFF": b"\x01\xff\x0a\xff",
            "00*3 ab*1": b"\0\0\0\xab",
            '"a b" "c"*2': b"a bcc",
            "2670000:4 -1:2 -75:4*2": b"\xb0\xbd\x28\x00\xff\xff" + b"\xb5\xff\xff\xff" * 2,
            "19/3 | 05": b"\x13\0\x03\0\x05",
            "257/1": b"\x01\x01\x01\x00",
        }.items():
            self.assertEqual(run_session.parse_bytes(text), expected, text)
        self.assertEqual(run_session.format_bytes(b"\x01\0\0\0\x02\0\0\0\0"), "01 00 00 00 02 00*4")


if __name__ == "__main__":
    parser = argparse.ArgumentParser()
    run_session.add_options(parser)
    parser.add_argument("--verbose", action="store_true")
    OPTIONS, rest = parser.parse_known_args()
    unittest.main(argv=[sys.argv[0], *rest])
