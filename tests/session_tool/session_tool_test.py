#!/usr/bin/env python3
"""tarvel-session: every option, every way to fail, and files that are none."""

import argparse
import contextlib
import os
import pathlib
import random
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest
import xml.etree.ElementTree as xml
from unittest import mock

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "tools/session"))
from tarvel_session import engine, tool  # noqa: E402
from tarvel_session.files import FormatError, Session  # noqa: E402

TOOL = ROOT / "tools/session/tarvel-session"
RECORDING = ROOT / "tests/recordings/simulated-network-entry"
PATIENCE = 60
OPTIONS = argparse.Namespace()

LEAVING = "~ MAIN MENU\n> -1\n...\nexit 0\n"
SYNC = """~ MAIN MENU
> 1
~ LOW POWER SCAN MODE
{}> 2
> 2587.5
> 0
> 10000
~ SYNC STATUS  : PHY_SYNC ACHIEVED
{}~ NSP Change count
"""
QUICK = "scenario quick.toml\n"
# The stepped clock, and nothing that goes to the answers by itself.
STEPPED = """given still.toml
|seed = 1|
|[clock]|
|kind = "stepped"|
|[[station]]|
|bsid = "00 12 0A 00 01 01"|
|frequency = 2587500|
|bandwidth = 10000|
|preamble = 3|
|rssi = -58|
|cinr = 28|

scenario still.toml
"""
REAL = STEPPED.replace("stepped", "real").replace("still", "real")


class ToolTest(unittest.TestCase):
    def setUp(self):
        directory = tempfile.TemporaryDirectory(prefix="tool.")
        self.addCleanup(directory.cleanup)
        self.top = pathlib.Path(directory.name)

    def file(self, text, name="a.session"):
        path = self.top / name
        path.write_bytes(text if isinstance(text, bytes) else text.encode("latin-1"))
        return path

    def start(self, *arguments, **more):
        return subprocess.Popen(
            [TOOL, "--programs", OPTIONS.programs, *map(str, arguments)], cwd=self.top, text=True,
            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE, **more)

    def tool(self, *arguments, **more):
        """Its exit status, and what it wrote on both streams, without times of day."""
        process = self.start(*arguments, **more)
        try:
            output, errors = process.communicate(timeout=PATIENCE)
        finally:
            process.kill()
        return process.returncode, re.sub(r"\(\d+\.\d\d s\)", "(T)", output), errors

    def play(self, text, *options):
        """What the tool says of a session with this text, a.session."""
        self.file(text)
        return self.tool(*options, "a.session")

    def fails(self, text, *words, options=()):
        status, output, errors = self.play(text, *options)
        self.assertEqual((status, errors), (1, ""), output)
        for word in words:
            self.assertIn(word, output)
        return output

    def wrong(self, text, complaint, options=()):
        status, output, errors = self.play(text, *options)
        self.assertEqual((status, output, errors), (2, "", f"tarvel-session: {complaint}\n"))


class Verdicts(ToolTest):
    def test_what_goes_as_written_passes(self):
        self.assertEqual(self.play(LEAVING), (0, "passed: a.session (T)\n", ""))

    def test_other_output_fails_with_the_difference(self):
        output = self.fails("||\n|A MENU|\n...\nexit 0\n")
        self.assertTrue(output.startswith(
            "FAILED: a.session: a.session:1: other output than expected\n--- expected\n+++ got\n"
            "@@ -1,2 +1,30 @@\n ||\n-|A MENU|\n+|******** MAIN MENU ********|\n+||\n"), output)

    def test_a_text_that_does_not_come_fails(self):
        self.fails("timeout 2\n~ nowhere\nexit 0\n",
                   "a.session:2: timed out waiting for b'nowhere'; since the last match there came",
                   "|ENTER OPTION : |")

    def test_output_left_over_fails(self):
        self.fails("~ ENTER OPTION : \n> 99\n> -1\nexit 0\n", "output that the session does not have")

    def test_another_status_fails(self):
        self.fails("~ MAIN MENU\n> -1\n...\nexit 7\n", "exit status 0, expected 7")
        self.fails("~ MAIN MENU\nsignal KILL\n...\nexit 0\n", "the client was killed by SIGKILL")

    def test_standard_error_fails_and_is_shown(self):
        output = self.fails('given bad.toml\n|sed = 1|\n\nscenario bad.toml\n...\nexit 2\n',
                            "on standard error")
        self.assertRegex(output, r"on standard error:\n\|libqor020: bad.toml:1: ")

    def test_a_client_that_does_not_end_fails(self):
        self.fails("timeout 2\n~ MAIN MENU\n...\nexit 0\n", "timed out waiting for the client to end")

    def test_a_client_that_has_ended_fails(self):
        self.fails("~ MAIN MENU\n> -1\n~ more\nexit 0\n", "a.session:3: the client ended while")

    def test_a_client_that_does_not_read_fails(self):
        self.fails("timeout 2\n~ MAIN MENU\nsignal STOP\nrepeat 100000 0\\n\nexit 0\n",
                   "a.session:4: timed out waiting for the client to read its input")
        self.fails("~ MAIN MENU\neof\n> 1\nexit 0\n", "a.session:3: the client does not read")

    def test_files_are_compared(self):
        self.fails("given a.txt 01\nfile a.txt 02\n" + LEAVING, "the file a.txt is another one",
                   "-\\|\\x02|", "+\\|\\x01|")

    def test_one_of_many_is_enough(self):
        self.file(LEAVING, "good.session")
        self.file(LEAVING.replace("exit 0", "exit 3"), "bad.session")
        self.assertEqual(
            self.tool("good.session", "bad.session", "good.session"),
            (1, "passed: good.session (T)\nFAILED: bad.session: exit status 0, expected 3\n"
                "passed: good.session (T)\n2 of 3 runs passed\n", ""))

    def test_a_difference_of_many_lines_takes_no_time(self):
        began = time.monotonic()
        lines = "".join(f"|line {number % 7}|\n" for number in range(20000))
        self.fails("timeout 5\n" + lines + "exit 0\n", "-|line 1|", "+|******** MAIN MENU")
        self.assertLess(time.monotonic() - began, 20)


    def test_an_output_without_end_is_not_kept(self):
        client = self.file("#!/bin/sh\nexec yes\n", "endless")
        client.chmod(0o755)
        bench = argparse.Namespace(client=client, simulated="/dev/null", emulator=[])
        for text in ("~ nowhere\nexit 0\n", "...\nexit 0\n"):
            session = Session(self.file("scenario\ntimeout 60\n" + text))
            with mock.patch.object(engine, "MOST_UNMATCHED", 1 << 20):
                with self.assertRaisesRegex(engine.Failure, "more than 1048576 bytes of output"):
                    engine.run(session, bench)


class Flow(ToolTest):
    def test_a_loop_goes_round(self):
        text = "~ MAIN MENU\nrepeat 2\nrepeat 3\n> 99\n~ SORRY\nend\n~ MAIN MENU\nend\n> -1\n...\nexit 0\n"
        self.assertEqual(self.play(text)[0], 0)
        self.assertEqual(self.play("call none\n" + text, "--scripted")[0], 0)

    def test_a_loop_says_in_which_round_it_failed(self):
        self.fails("timeout 2\n~ MAIN MENU\n> 99\nrepeat 3\n~ MAIN MENU\nend\n...\nexit 0\n",
                   "a.session:5: (round 2 of 3) timed out")
        self.fails("timeout 2\n~ MAIN MENU\nrepeat 2\nrepeat 3\n~ MAIN MENU\nend\nend\n...\nexit 0\n",
                   "a.session:5: (round 1 of 2) (round 1 of 3) timed out")

    def test_a_loop_types_what_it_says(self):
        text = "~ MAIN MENU\nrepeat 4\n> 24\n~ MAIN MENU\nend\n> -1\n...\nexit 0\n"
        self.assertEqual(self.play(text + "sent 36/1\n" * 4, "--scripted")[0], 0)
        self.fails(text + "sent 36/1\n" * 5, "-SendWiMAXMessage 1 4 36/1 -> 0", options=["--scripted"])

    def test_a_value_stands_where_its_name_is(self):
        text = "set word=MAIN\nset key=-1\n~ ${word} MENU\n> ${key}\n...\nexit ${status}\n"
        self.assertEqual(self.play(text, "--set", "status=0")[0], 0)
        self.fails(text, "exit status 0, expected 4", options=["--set", "status=4"])
        self.fails("timeout 2\n" + text, "b'SIDE MENU'",
                   options=["--set", "status=0", "--set", "word=SIDE"])
        self.fails("timeout 2\n~ $${word}\nexit 0\n", "b'${word}'")
        self.wrong(text, "a.session:6: ${status} has no value")
        self.wrong(LEAVING, "--set word: no session file has ${word}", ["--set", "word=1"])

    def test_the_modem_can_be_steered(self):
        text = QUICK + SYNC.format("", "") + """> 1
~ LOW POWER SCAN MODE
> 3
~ LINKUP_ACHIEVED
modem link-loss
within 1 s
~ NETENTRY STATUS  : BS_OUT_OF_REACH
> -1
...
exit 0
"""
        self.assertEqual(self.play(text)[1:], ("passed: a.session (T)\n", ""))
        self.fails(text.replace("link-loss", "link-los"), "the modem refused: link-los: ", "a.session:15:")

    def test_a_session_has_a_limit(self):
        endless = "~ MAIN MENU\nrepeat 1000000000\n> 99\n~ SORRY\nend\n> -1\n...\nexit 0\n"
        for text, options in ((endless, ["--limit", "0.5"]), ("limit 500 ms\n" + endless, [])):
            began = time.monotonic()
            self.fails(text, "the session takes longer than 0.5 s", options=options)
            self.assertLess(time.monotonic() - began, 20)
        self.fails("timeout 50\n~ nowhere\nexit 0\n", "takes longer than 0.5 s", options=["--limit", "500 ms"])


class Times(ToolTest):
    def test_times_are_in_modem_time_with_the_stepped_clock(self):
        text = QUICK + SYNC.format("start sync\nwithin 1 s\n", "stop sync < 1 s\n") + "> -1\n...\nexit 0\n"
        self.assertEqual(
            self.play(text, "--repeat", "2")[1],
            "passed: a.session, run 1 of 2 (T)\npassed: a.session, run 2 of 2 (T)\n"
            "sync: 2 times, least 0.336 s, median 0.336 s, most 0.336 s (modem time)\n"
            "2 of 2 runs passed\n")

    def test_a_time_that_is_too_long_fails_and_counts(self):
        text = QUICK + SYNC.format("start sync\n", "stop sync < 300 ms\n") + "> -1\n...\nexit 0\n"
        self.fails(text, "a.session:11: sync took 0.336 s (modem time), not less than 0.3 s",
                   "sync: once, least 0.336 s")

    def test_a_limit_holds_in_modem_time(self):
        text = QUICK + SYNC.format("within 300 ms\n", "") + "> -1\n...\nexit 0\n"
        self.fails(text, "a.session:10: not within 0.3 s (modem time), but after 0.336 s: b'SYNC")
        self.assertEqual(self.play(text.replace("300", "400"))[0], 0)

    def test_the_stepped_clock_goes_while_something_is_waited_for(self):
        prompt = "> 10000\n~ MAIN MENU\nstart sync\nwithin {}\n"
        text = STEPPED + SYNC.format("", "stop sync\n").replace("> 10000\n", prompt)
        text += "> -1\n...\nexit 0\n"
        status, output, _ = self.play(text.format("1 s"))
        self.assertEqual(status, 0, output)
        took = float(re.search(r"least ([\d.]+) s.*\(modem time\)", output)[1])
        self.assertTrue(0.3 <= took <= 0.35, output)
        self.fails(text.format("200 ms"), "not within 0.2 s (modem time): b'SYNC STATUS")

    def test_times_are_real_otherwise(self):
        text = REAL + SYNC.format("start sync\nwithin {}\n", "stop sync\n") + "> -1\n...\nexit 0\n"
        status, output, _ = self.play(text.format("5 s"))
        self.assertEqual(status, 0, output)
        took = float(re.search(r"least ([\d.]+) s.*\(real time\)", output)[1])
        self.assertTrue(0.3 <= took <= 3, output)
        self.fails(text.format("100 ms"), "not within 0.1 s (real time): b'SYNC STATUS")

    def test_a_median_is_in_the_middle(self):
        text = QUICK + "~ MAIN MENU\n" + "".join(
            f"start t\nmodem advance {seconds}\nstop t\n" for seconds in (5, 1, 3)) + "> -1\n...\nexit 0\n"
        self.assertIn("t: 3 times, least 1.000 s, median 3.000 s, most 5.000 s (modem time)\n",
                      self.play(text)[1])

    def test_a_time_is_stopped_once(self):
        self.fails("start t\nrepeat 2\nstop t\nend\n" + LEAVING, "a.session:3: (round 2 of 2) t has not")


class Modems(ToolTest):
    def test_the_built_in_environment_is_what_there_is_otherwise(self):
        text = SYNC.format("", "") + "> -1\n...\nexit 0\n"
        self.assertEqual(self.play(text)[0], 0)

    def test_a_scenario_can_be_another_one(self):
        scenario = self.top / "other.toml"
        scenario.write_text((ROOT / "sim/scenarios/quick.toml").read_text() + "[link]\nsync-time = 0.9\n")
        text = SYNC.format("start t\n", "stop t\n") + "> -1\n...\nexit 0\n"
        for session in (QUICK + text, text):
            self.assertIn("t: once, least 0.936 s",
                          self.play(session, "--scenario", scenario)[1])

    def test_a_session_of_the_tests_runs_on_the_scripted_library(self):
        session = ROOT / "tests/sessions/link/entry-into-the-network.session"
        self.assertEqual(self.tool("--scripted", session)[0], 0)
        self.assertEqual(self.tool(session),
                         (2, "", f"tarvel-session: {session}:3: @ is for the scripted library (--scripted)\n"))
        self.fails("sent 36/1\n" + LEAVING, "-SendWiMAXMessage 1 4 36/1 -> 0", options=["--scripted"])

    def test_a_recording_is_played(self):
        typed = RECORDING.with_suffix(".input").read_text()
        session = "\n".join([f">> {line}\\n" for line in typed.splitlines()])
        text = QUICK + session + "\n~ LINKUP_ACHIEVED\n...\neof\nexit 0\n"
        recording = RECORDING.with_suffix(".pcapng")
        self.assertEqual(self.play(text, "--replay", recording)[1:], ("passed: a.session (T)\n", ""))
        self.fails(text.replace(">> 10000", ">> 7000"), "differs from the recording",
                   "qor020.sync_up.bandwidth", options=["--replay", recording])
        self.assertEqual(self.play(text, "--replay", recording, "--speed", "1000")[0], 0)
        self.wrong("modem state\n" + LEAVING, "a.session:1: modem is for the simulated modem",
                   ["--replay", recording])

    def test_a_real_modem_is_a_folder_with_a_library(self):
        device = self.top / "device"
        device.mkdir()
        shutil.copy(pathlib.Path(OPTIONS.programs) / "scripted/libqor020.so", device)
        (self.top / "script").write_text("rdm 0 78 56 34 12\n")
        text = (QUICK + f"env QOR020_SCRIPT={self.top}/script\nenv QOR020_RECORD={self.top}/record\n"
                "~ MAIN MENU\n> 7\n~ ENTER OPTION\n> 1\n> 1000\n> 4\n"
                "~ 0x00001000 :  0x78 0x56 0x34 0x12\n> -1\n> -1\n...\nexit 0\n")
        status, output, errors = self.play(text, "--device", "device")
        self.assertEqual((status, errors), (0, ""), output)
        self.assertIn("\nOpenWiMAXDevice -> 1\nRegister", (self.top / "record").read_text())
        self.wrong("modem state\n" + LEAVING, "a.session:1: modem is for the simulated modem",
                   ["--device", "device"])

    def test_a_client_that_cannot_start_has_a_status_of_its_own(self):
        self.file(LEAVING)
        empty = self.top / "empty"
        empty.mkdir()
        status, output, errors = self.tool("--device", "empty", "a.session")
        self.assertEqual((status, output, errors),
                         (3, "", "tarvel-session: empty/libqor020.so is not there\n"))
        status, output, errors = self.tool("--programs", "empty", "a.session")
        self.assertEqual((status, output, errors),
                         (3, "", "tarvel-session: empty/TarvelWiMAXApp is not there\n"))
        (empty / "libqor020.so").write_text("no library")
        status, output, errors = self.tool("--device", "empty", "--junit", "out.xml", "a.session")
        self.assertEqual((status, errors), (3, ""))
        self.assertIn("libqor020.so", output)
        self.assertEqual(len(xml.parse(self.top / "out.xml").findall(".//testcase/error")), 1)
        (empty / "TarvelWiMAXApp").write_text("no program")
        shutil.copy(pathlib.Path(OPTIONS.programs) / "libqor020.so", empty)
        status, output, errors = self.tool("--programs", "empty", "a.session")
        self.assertEqual((status, errors), (3, ""))
        self.assertIn("cannot be started", output)


class Options(ToolTest):
    def test_runs_are_repeated(self):
        status, output, _ = self.play(LEAVING, "--repeat", "3")
        self.assertEqual(status, 0)
        self.assertEqual(output.splitlines(), [f"passed: a.session, run {number} of 3 (T)"
                                               for number in (1, 2, 3)] + ["3 of 3 runs passed"])

    def test_junit_has_every_run(self):
        self.file(QUICK + SYNC.format("start t\n", "stop t\n") + "> -1\n...\nexit 0\n", "good.session")
        self.file("~ \\x1b]0;<&>\\xff\ntimeout 2\nexit 0\n", "bad <&>.session")
        status, _, _ = self.tool("--repeat", "2", "--junit", "out.xml", "good.session", "bad <&>.session")
        self.assertEqual(status, 1)
        root = xml.parse(self.top / "out.xml").getroot()
        self.assertEqual(root.tag, "testsuites")
        self.assertEqual([root.get(key) for key in ("tests", "failures", "errors")], ["4", "2", "0"])
        good, bad = root
        self.assertEqual([(suite.tag, suite.get("name"), suite.get("tests"), suite.get("failures"))
                          for suite in root],
                         [("testsuite", "good.session", "2", "0"),
                          ("testsuite", "bad <&>.session", "2", "2")])
        self.assertEqual([(case.get("classname"), case.get("name")) for case in good.iter("testcase")],
                         [("good.session", "run 1 of 2"), ("good.session", "run 2 of 2")])
        self.assertEqual({item.get("name"): item.get("value") for item in good.iter("property")},
                         {"t.clock": "modem time", "t.times": "2", "t.least": "0.336000",
                          "t.median": "0.336000", "t.most": "0.336000"})
        self.assertEqual([case.findtext("system-out") for case in good.iter("testcase")],
                         ["t: 0.336000 s (modem time)"] * 2)
        failures = list(bad.iter("failure"))
        self.assertEqual(len(failures), 2)
        self.assertIn("timed out waiting for b'\\x1b]0;<&>\\xff'", failures[0].get("message"))
        self.assertIn("|ENTER OPTION : |", failures[0].text)
        for case in root.iter("testcase"):
            self.assertGreaterEqual(float(case.get("time")), 0)

    def test_a_recording_is_kept_when_it_failed(self):
        self.file(QUICK + SYNC.format("", "") + "> -1\n...\nexit 0\n", "good.session")
        self.file(LEAVING.replace("exit 0", "exit 3"), "bad.session")
        _, output, _ = self.tool("--record", "kept", "--repeat", "2", "good.session", "bad.session")
        self.assertEqual(sorted(os.listdir(self.top / "kept")), ["bad.1.pcapng", "bad.2.pcapng"])
        self.assertIn("recorded in kept/bad.1.pcapng\n", output)
        self.assertNotIn("good.1", output)
        self.assertEqual(self.tool("--record", "all", "--keep", "good.session")[0], 0)
        self.assertEqual(self.tool("--replay", "all/good.1.pcapng", "good.session")[0], 0)
        self.assertEqual(os.listdir(self.top / "all"), ["good.1.pcapng"])

    def test_files_of_the_same_name_have_recordings_of_their_own(self):
        (self.top / "other").mkdir()
        self.file(LEAVING)
        self.file(LEAVING, "other/a.session")
        self.tool("--record", "all", "--keep", "a.session", "other/a.session")
        self.assertEqual(sorted(os.listdir(self.top / "all")), ["a-2.1.pcapng", "a.1.pcapng"])

    def test_nothing_is_left_behind(self):
        self.file(LEAVING)
        self.file("timeout 2\n~ nowhere\nexit 0\n", "bad.session")
        folder = self.top / "tmp"
        folder.mkdir()
        before = sorted(os.listdir(self.top))
        self.tool("a.session", "bad.session", env={**os.environ, "TMPDIR": str(folder)})
        self.assertEqual((os.listdir(folder), sorted(os.listdir(self.top))), ([], before))

    def test_wrong_options_are_told_in_one_line(self):
        self.file(LEAVING)
        for options, complaint in (
            (["--no-such"], "unrecognized arguments: --no-such"),
            (["--repeat", "0"], "argument --repeat: not a number from 1 on: 0"),
            (["--repeat", "many"], "argument --repeat: not a number from 1 on: many"),
            (["--limit", "soon"], "argument --limit: not a time such as 5 s, 200 ms, 2 min: soon"),
            (["--set", "word"], "argument --set: not NAME=VALUE: word"),
            (["--keep"], "--keep is for --record"),
            (["--speed", "1"], "--speed is for --replay"),
            (["--replay", "none"], "no such file: none"),
            (["--scenario", "none"], "no such file: none"),
            (["--device", "none"], "no such folder: none"),
            (["--junit", "none/out.xml"], "none/out.xml: No such file or directory"),
            (["--record", "a.session/x"], "a.session/x: Not a directory"),
            (["--scripted", "--replay", "none"], "argument --replay: not allowed with argument --scripted"),
        ):
            with self.subTest(options), contextlib.chdir(self.top):
                with self.assertRaises(tool.Wrong) as caught:
                    tool.run([*options, "a.session"])
                self.assertEqual(str(caught.exception), complaint)
        self.wrong(LEAVING, "--keep is for --record", ["--keep"])
        status, _, errors = self.tool()
        self.assertEqual((status, errors),
                         (2, "tarvel-session: the following arguments are required: FILE\n"))

    def test_help_names_every_option(self):
        status, output, _ = self.tool("--help")
        self.assertEqual(status, 0)
        page = (ROOT / "docs/sessions.md").read_text()
        options = set(re.findall(r"--[a-z]+", output.split("options:")[1]))
        self.assertEqual(options, set(re.findall(r"^\| `(--[a-z]+)", page, re.MULTILINE)))

    def test_every_word_of_the_format_stands_in_the_table(self):
        from tarvel_session.files import SETTINGS, STEPS
        page = (ROOT / "docs/sessions.md").read_text()
        rows = re.compile(r"^\| `([a-z]+|[^a-z\s\\|`]+)[ `][^|]*\| (?:step|check|setting) \|", re.M)
        words = set(rows.findall(page.replace("\\|", "!")))
        self.assertEqual({word for word in words if not word.startswith(("!", "|"))},
                         set(STEPS) | set(SETTINGS))

    def test_an_interrupt_ends_with_what_was_measured(self):
        self.file(QUICK + "~ MAIN MENU\nrepeat 1000000\nstart t\nmodem advance 2\nstop t\n> 5 3\n~ MAIN MENU\nend\n"
                  "> -1\n...\nexit 0\n")
        for number, status in ((signal.SIGINT, 130), (signal.SIGTERM, 143)):
            folder = self.top / "tmp"
            folder.mkdir(exist_ok=True)
            process = self.start("--junit", "out.xml", "--record", "kept", "--repeat", "3", "a.session",
                                 env={**os.environ, "TMPDIR": str(folder)}, start_new_session=True)
            deadline = time.monotonic() + PATIENCE
            while time.monotonic() < deadline and not any(  # some times round
                    path.stat().st_size > 20000 for path in self.top.glob("kept/*")):
                time.sleep(0.01)
            process.send_signal(number)
            output, errors = process.communicate(timeout=PATIENCE)
            self.assertEqual((process.returncode, errors), (status, ""))
            self.assertIn("ERROR: a.session, run 1 of 3: interrupted\n", output)
            self.assertRegex(output, r"t: \d+ times, least 2.000 s, median 2.000 s, most 2.000 s")
            self.assertIn("0 of 3 runs passed, 2 not begun\n", output)
            root = xml.parse(self.top / "out.xml").getroot()
            self.assertEqual(root.find(".//error").get("message"), "interrupted")
            self.assertEqual(os.listdir(folder), [])
            shutil.rmtree(self.top / "kept")

    def test_an_output_that_nobody_reads_ends_it_quietly(self):
        self.file(LEAVING)
        process = self.start("--repeat", "1000000", "a.session")
        process.stdout.readline()
        process.stdout.close()
        self.assertEqual(process.wait(PATIENCE), 1)
        self.assertEqual(process.stderr.read(), "")
        process.stderr.close()


class Damaged(ToolTest):
    def test_what_cannot_be_understood_is_told_with_its_place(self):
        for text, complaint in (
            ("", "a.session: no exit status given"),
            ("exit 0\nwhat is this\n", "a.session:2: unknown line: what is this"),
            ("\x00\x1b[2J\xff\n", "a.session:1: unknown line: \\x00\\x1b[2J\\xff"),
            ("|no bar\n", "a.session:1: an output line ends with a bar"),
            ("= no-such\n", "a.session:1: no snippet no-such"),
            ("= ../../x\n", "a.session:1: no snippet ../../x"),
            ("exit 256\n", "a.session:1: not a number from 0 to 255: 256"),
            ("exit\n", "a.session:1: not a number from 0 to 255: "),
            ("signal _DFL\n", "a.session:1: no signal _DFL"),
            ("timeout nan\n", "a.session:1: not a number of seconds: nan"),
            ("timeout 1e300\n", "a.session:1: not a number of seconds: 1e300"),
            ("lasts 1\n", "a.session:1: not two numbers of seconds"),
            ("within 5\n", "a.session:1: not a time such as 5 s, 200 ms, 2 min: 5"),
            ("within 0 s\n", "a.session:1: not a time such as 5 s, 200 ms, 2 min: 0 s"),
            ("limit 25 h\n", "a.session:1: not a time such as 5 s, 200 ms, 2 min: 25 h"),
            ("stop t\n", "a.session:1: t has not been started"),
            ("start a b\n", "a.session:1: not a name of letters, digits, - and _: a b"),
            ("repeat 3\n> 1\n", "a.session:1: the loop has no end"),
            ("repeat 3\nend\n", "a.session:2: nothing to repeat"),
            ("repeat 0\n", "a.session:1: not a number from 1 to 1000000000: 0"),
            ("repeat -1 x\n", "a.session:1: not a number from 1 to 1000000000: -1"),
            ("repeat 999999999 xx\n", "a.session:1: too many bytes"),
            ("end\n", "a.session:1: no loop to end"),
            ("repeat 2\n" * 17, "a.session:17: more than 16 loops in each other"),
            ("close input\n", "a.session:1: what is closed is the output"),
            ("given ../x 00\n", "a.session:1: not the name of a file in the working directory: ../x"),
            ("given libqor020.so 00\n",
             "a.session:1: not the name of a file in the working directory: libqor020.so"),
            ("given x 00*99999999999\n", "a.session:1: too many bytes"),
            ("given x 1:99999999999\n", "a.session:1: these are no bytes: 1:99999999999"),
            ("program ../sh\n", "a.session:1: not the name of a file in the working directory: ../sh"),
            ("env =x\n", "a.session:1: not NAME=VALUE"),
            ("set a\n", "a.session:1: not NAME=VALUE"),
            ("> ${b c}\n", "a.session:1: not ${name}, of letters, digits, - and _"),
            ("> ${open\n", "a.session:1: not ${name}, of letters, digits, - and _"),
            ("set a=" + "x" * 1000000 + "\n" + "> ${a}\n" * 70, "a.session:69: too many bytes"),
            ("#" * ((4 << 20) + 1), "a.session: longer than 4194304 bytes"),
        ):
            with self.subTest(text[:40]):
                with self.assertRaises(FormatError) as caught:
                    Session(self.file(text))
                self.assertEqual(str(caught.exception), f"{self.top}/{complaint}")
        self.wrong("\x00\x1b[2J\xff\n", "a.session:1: unknown line: \\x00\\x1b[2J\\xff")
        self.wrong("scenario nowhere.toml\nexit 0\n", "a.session: no scenario nowhere.toml")

    def test_nothing_but_a_file_is_read(self):
        os.mkfifo(self.top / "pipe")
        for name, complaint in (("pipe", "pipe: not a regular file"), (".", ".: not a regular file"),
                                ("none", "none: No such file or directory"),
                                ("/dev/zero", "/dev/zero: not a regular file")):
            self.assertEqual(self.tool(name), (2, "", f"tarvel-session: {complaint}\n"))

    def test_nothing_starts_when_one_file_is_wrong(self):
        self.file(LEAVING, "good.session")
        self.file("exit 0\nwhat\n", "bad.session")
        self.assertEqual(self.tool("good.session", "bad.session"),
                         (2, "", "tarvel-session: bad.session:2: unknown line: what\n"))

    def test_arbitrary_bytes_are_a_session_or_one_line(self):
        draw = random.Random(7)
        path = self.top / "a.session"
        (self.top / "snippets").symlink_to(ROOT / "tests/sessions/snippets")
        originals = [file.read_bytes() for file in sorted(ROOT.glob("acceptance/*.session"))
                     + sorted(ROOT.glob("tests/sessions/s*/*.session"))]
        # Beside any bytes, what the format is made of.
        words = [line.split(b" ")[0] for text in originals for line in text.split(b"\n")]
        words += [b"${", b"}", b"->", b"|", b"\\x", b"*9999999", b'"', b"\n", b" ", b"within 1 s", b"end"]
        understood = refused = 0
        for _ in range(500):
            data = bytearray(draw.choice(originals)[:4000])
            for _ in range(draw.randint(0, 6)):
                at = draw.randrange(len(data) + 1)
                piece = draw.choice((bytes([draw.randrange(256)]), draw.choice(words),
                                     draw.randbytes(draw.randrange(30))))
                data[at : at + draw.choice((0, 0, len(piece), 40))] = piece
            path.write_bytes(data)
            try:
                Session(path)
                understood += 1
            except FormatError as error:
                refused += 1
                self.assertRegex(str(error), r"\A[ -~]+\Z")
                self.assertTrue(str(error).startswith(str(path) + ":"), error)
        self.assertGreater(understood, 30)
        self.assertGreater(refused, 30)

    def test_long_lines_take_no_time(self):
        for line in ("call " + "a " * 100000 + "|", "sent 1/1 " + " " * 200000 + "x",
                     "> " + "${" * 100000, "given x " + '"' * 200001, "> " + "\\" * 200000,
                     "stop " + "<" * 200000, "within " + "1" * 200000):
            began = time.monotonic()
            path = self.file(line + "\nexit 0\n")
            try:
                Session(path)
            except FormatError as error:
                self.assertLess(len(str(error)), 1000)
            self.assertLess(time.monotonic() - began, 10, line[:20])


if __name__ == "__main__":
    parser = argparse.ArgumentParser()
    parser.add_argument("--programs", required=True, type=os.path.abspath, help="the folder of the client")
    OPTIONS, rest = parser.parse_known_args()
    unittest.main(argv=[sys.argv[0], *rest])
