#!/usr/bin/env python3
"""simctl, on the modem of a client that runs, and on scenarios."""

import argparse
import os
import pathlib
import pty
import select
import signal
import stat
import subprocess
import sys
import tempfile
import time
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1]))
from run_session import SANITIZERS  # noqa: E402

PATIENCE = 60
OPTIONS = argparse.Namespace()

STEPPED = """seed = 5
[clock]
kind = "stepped"
[[station]]
bsid = "00 12 0A 00 01 01"
frequency = 2587500
bandwidth = 10000
preamble = 3
rssi = -58
cinr = 28
"""


class ProgramTest(unittest.TestCase):
    def setUp(self):
        directory = tempfile.TemporaryDirectory(prefix="simctl.")
        self.addCleanup(directory.cleanup)
        self.top = pathlib.Path(directory.name)
        self.scenario = self.top / "scenario.toml"
        self.socket = self.top / "socket"

    def simctl(self, *words, text=""):
        """Its exit status, and what it wrote on both streams."""
        result = subprocess.run([OPTIONS.simctl, *map(str, words)], input=text, text=True,
                                env={**os.environ, **SANITIZERS}, capture_output=True,
                                timeout=PATIENCE, check=False)
        return result.returncode, result.stdout, result.stderr

    def start_client(self, scenario=STEPPED):
        """The client on a modem that can be steered; it waits in its main menu."""
        self.scenario.write_text(scenario)
        if not (self.top / "libqor020.so").exists():
            (self.top / "libqor020.so").symlink_to(OPTIONS.simulated)
        environment = {**os.environ, **SANITIZERS, "QOR020_SCENARIO": str(self.scenario),
                       "QOR020_CONTROL_SOCKET": str(self.socket)}
        client = subprocess.Popen([OPTIONS.client], cwd=self.top, env=environment,
                                  stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                  stderr=subprocess.PIPE)
        self.addCleanup(self.end, client)
        return client

    @staticmethod
    def end(client):
        if client.poll() is None:
            client.kill()
        client.communicate()

    def wait_for_menu(self, client, menus=1):
        """Until the client has opened the modem, registered, and asks for so many options."""
        deadline, seen = time.monotonic() + PATIENCE, b""
        while not seen.endswith(b"ENTER OPTION : ") or seen.count(b"ENTER OPTION : ") < menus:
            left = deadline - time.monotonic()
            self.assertTrue(select.select([client.stdout], [], [], max(left, 0))[0], seen)
            seen += os.read(client.stdout.fileno(), 4096)


class Steering(ProgramTest):
    def test_a_command_is_carried_out(self):
        self.wait_for_menu(self.start_client())
        self.assertEqual(self.simctl(self.socket, "seed"), (0, "5\n", ""))
        self.assertEqual(self.simctl(self.socket, "fade", "station=00 12 0A 00 01 01", "by=10"),
                         (0, "", ""))
        status, state, errors = self.simctl(self.socket, "state")
        self.assertEqual((status, errors), (0, ""))
        self.assertIn('"rssi":-68.0,', state)

    def test_a_refusal_is_an_error(self):
        self.wait_for_menu(self.start_client())
        self.assertEqual(self.simctl(self.socket, "fade", "by=10"),
                         (1, "", 'simctl: error "station" is missing\n'))

    def test_without_a_modem_there_is_nothing_to_talk_to(self):
        self.assertEqual(self.simctl(self.socket, "seed"),
                         (2, "", f"simctl: {self.socket}: No such file or directory\n"))

    def test_commands_come_from_the_standard_input(self):
        self.wait_for_menu(self.start_client())
        self.assertEqual(self.simctl(self.socket, text="advance 1\n\ndance\nseed\n"),
                         (1, "1.001000\n5\n",
                          'simctl: error there is no command "dance" (help tells all)\n'))
        self.assertEqual(self.simctl(self.socket, text="seed\nquit\nseed\n"), (0, "5\n", ""))

    def test_a_terminal_has_a_prompt(self):
        self.wait_for_menu(self.start_client())
        ours, its = pty.openpty()
        process = subprocess.Popen([OPTIONS.simctl, self.socket], stdin=its, stdout=its,
                                   stderr=its, env={**os.environ, **SANITIZERS, "TERM": "dumb"})
        os.close(its)
        os.write(ours, b"seed\nquit\n")
        shown = b""
        while process.poll() is None or b"5\r\n" not in shown:
            shown += os.read(ours, 4096)
            if b"5\r\n" in shown:
                break
        self.assertEqual(process.wait(PATIENCE), 0)
        os.close(ours)
        self.assertIn(b"simctl> ", shown)

    def test_a_session_is_taken_up_in_another_process(self):
        """What the second client hears after a load is what the first one hears after the save."""
        saved = self.top / "saved"
        first = self.start_client()
        self.wait_for_menu(first)
        # Synchronising: the answer is on its way when the modem is saved.
        first.stdin.write(b"1\n2\n2587.5\n0\n10000\n")
        first.stdin.flush()
        self.wait_for_menu(first, 2)
        self.assertEqual(self.simctl(self.socket, "seed", "77"), (0, "77\n", ""))
        self.assertEqual(self.simctl(self.socket, "save", saved), (0, "", ""))
        self.assertEqual(stat.filemode(saved.stat().st_mode), "-rw-------")
        _, state, _ = self.simctl(self.socket, "state")
        status, time_then, errors = self.simctl(self.socket, "until", "2/1")
        self.assertEqual((status, errors), (0, ""))
        output, _ = first.communicate(b"-1\n", PATIENCE)
        report = output[output.index(b"~~~~~~~~~~ SYNC STATUS"):output.index(b"DCD change count")]

        second = self.start_client(STEPPED.replace("seed = 5", "seed = 6"))
        self.wait_for_menu(second)
        status, loaded, errors = self.simctl(self.socket, "load", saved)
        self.assertEqual((status, errors), (0, ""))
        self.assertIn(f'"time":{loaded.strip()},', state)
        self.assertEqual(self.simctl(self.socket, "state"), (0, state, ""))
        self.assertEqual(self.simctl(self.socket, "until", "2/1"), (0, time_then, ""))
        output, errors = second.communicate(b"-1\n", PATIENCE)
        self.assertEqual((second.returncode, errors), (0, b""))
        self.assertEqual(output.count(b"SYNC STATUS RESPONSE"), 1)
        self.assertIn(report, output)

    def test_a_file_that_is_no_saved_modem_is_refused(self):
        self.wait_for_menu(self.start_client())
        bad = self.top / "bad"
        bad.write_text("qor020-journal 1\nscenario x\n")
        self.assertEqual(self.simctl(self.socket, "load", bad),
                         (1, "", f"simctl: error {bad}:3: the rest is missing\n"))
        self.assertEqual(self.simctl(self.socket, "seed"), (0, "5\n", ""))

    def test_a_watcher_sees_the_state_until_the_modem_goes(self):
        client = self.start_client()
        self.wait_for_menu(client)
        watcher = subprocess.Popen([OPTIONS.simctl, "--watch", self.socket], text=True,
                                   stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                                   env={**os.environ, **SANITIZERS})
        lines = [watcher.stdout.readline() for _ in range(10)]
        client.communicate(b"-1\n", PATIENCE)
        _, errors = watcher.communicate(timeout=PATIENCE)
        self.assertEqual("".join(lines), """\
time: 0.001000
clock: stepped
seed: 5
link: state unsynchronised  serving null
stations: 
  bsid 00:12:0A:00:01:01  frequency 2587500  bandwidth 10000  preamble 3  on-air true  heard true  \
rssi -58.0  cinr 28.0  serving false
flows: 
counters: downlink-bytes 0  downlink-packets 0  uplink-bytes 0  uplink-packets 0  packets-lost 0  \
bandwidth-requests 0  messages-waiting 0  messages-lost 0
faults: 

""")
        self.assertEqual((watcher.returncode, errors),
                         (2, f"simctl: {self.socket}: the modem is gone\n"))

    def test_the_client_shows_what_a_command_brings_about(self):
        client = self.start_client()
        self.wait_for_menu(client)
        self.assertEqual(self.simctl(self.socket, "device-unload"), (0, "", ""))
        self.assertEqual(self.simctl(self.socket, "until", "12/2"), (0, "0.021000\n", ""))
        output, errors = client.communicate(b"-1\n", PATIENCE)
        self.assertEqual((client.returncode, errors), (0, b""))
        self.assertIn(b"\nDEVICE IS UNLOADED\n", output)

    def test_the_socket_goes_with_the_device_and_one_left_behind_is_replaced(self):
        client = self.start_client()
        self.wait_for_menu(client)
        client.communicate(b"-1\n", PATIENCE)
        self.assertFalse(self.socket.exists())
        client = self.start_client()
        self.wait_for_menu(client)
        client.send_signal(signal.SIGKILL)
        client.communicate()
        self.assertTrue(self.socket.exists())
        client = self.start_client()
        deadline = time.monotonic() + PATIENCE
        while self.simctl(self.socket, "seed") != (0, "5\n", ""):
            self.assertLess(time.monotonic(), deadline)
        client.communicate(b"-1\n", PATIENCE)
        self.assertEqual(client.returncode, 0)

    def test_a_path_where_something_else_stands_ends_the_client(self):
        self.socket.write_text("precious")
        client = self.start_client()
        output, errors = client.communicate(b"-1\n", PATIENCE)
        self.assertEqual((client.returncode, output, errors.decode()),
                         (2, b"", f"libqor020: {self.socket}: cannot be the control socket: "
                                  "something else stands there\n"))
        self.assertEqual(self.socket.read_text(), "precious")


class Checking(ProgramTest):
    def test_a_good_scenario_is_passed_over_in_silence(self):
        for scenario in sorted(pathlib.Path(OPTIONS.scenarios).glob("*.toml")):
            self.assertEqual(self.simctl("--check", scenario), (0, "", ""))

    def test_a_mistake_is_told(self):
        self.scenario.write_text("seed = 1\nsede = 2\n")
        self.assertEqual(self.simctl("--check", self.scenario),
                         (1, "", f'{self.scenario}:2: "sede" is not known here\n'))

    def test_what_nobody_can_mean_is_a_warning(self):
        self.scenario.write_text(STEPPED.replace("2587500", "2587"))
        self.assertEqual(self.simctl("--check", self.scenario),
                         (0, "", f'{self.scenario}:6: "frequency" is 2587 kHz: is that the unit '
                                 "that is meant? (warning)\n"))

    def test_wrong_arguments_are_told_how_it_goes(self):
        for words in ((), ("--check",), ("--watch",), ("--dance", "x")):
            status, output, errors = self.simctl(*words)
            self.assertEqual((status, output, errors.splitlines()[0]),
                             (2, "", "Usage: simctl SOCKET [COMMAND...]"))
        status, output, errors = self.simctl("--help")
        self.assertEqual((status, output.splitlines()[0], errors),
                         (0, "Usage: simctl SOCKET [COMMAND...]", ""))


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    for name in ("simctl", "client", "simulated", "scenarios"):
        parser.add_argument(f"--{name}", required=True)
    parser.add_argument("tests", nargs="*")
    parser.parse_args(namespace=OPTIONS)
    unittest.main(argv=[sys.argv[0], *OPTIONS.tests])


if __name__ == "__main__":
    main()
