#!/usr/bin/env python3
"""The library that plays a recording: what it answers and says, when, and what it tells about a
client that asks something else."""

import sys

sys.dont_write_bytecode = True  # the sources stay as they are

import os
import pathlib
import select
import struct
import time
import unittest

from clients import OPTIONS, PATIENCE, SessionTest, main  # it also says where the other modules are
from recording.capture import Capture, Damage, Event, Writer, file_head, packet

TRACE_ON = b"\x15\0\1\0"
TRACE_OFF = b"\x15\0\2\0"
TRACE_STATUS = b"\x15\0\3\0"
ENABLED = b"\x15\0\3\0\1\0\0\0"
DISABLED = b"\x15\0\3\0\0\0\0\0"
ON = "\nMAC MGMT MESSAGES TO HOST IS ENABLED"
OFF = "\nMAC MGMT MESSAGES TO HOST IS DISABLED"
# What a machine with too much to do may add to a time, in seconds.
LATE = 4
DIFFERS = "libqor020: differs from the recording: "


class ReplayTest(SessionTest):
    def play(self, recording, words, speed="0", strict="", status=0, **options):
        """Types the words while the recording plays; returns output and standard error."""
        if not isinstance(recording, bytes):
            recording = recording.bytes()
        self.source = self.top / "source.pcapng"
        self.source.write_bytes(recording)
        environment = {"QOR020_REPLAY": str(self.source), "QOR020_REPLAY_SPEED": speed,
                       "QOR020_REPLAY_STRICT": strict}
        options.setdefault("recorder", False)
        output, errors = self.run_client(words, OPTIONS.replay, status, environment=environment,
                                         **options)
        return output.decode(), errors

    def begun(self):
        writer = Writer()
        writer.begin()
        return writer

    def reports(self, output):
        """The reports of the trace state in an output, in their order."""
        found = []
        while ON in output or OFF in output:
            places = {text: output.find(text) for text in (ON, OFF) if text in output}
            first = min(places, key=places.get)
            found.append("on" if first == ON else "off")
            output = output[places[first] + len(first) :]
        return found


class Answers(ReplayTest):
    def test_messages_come_between_the_calls_that_they_came_between(self):
        recording = self.begun()
        recording.send(TRACE_ON)
        recording.message(ENABLED, after=3600)
        recording.send(TRACE_STATUS, after=3600, messages=[DISABLED])
        recording.message(ENABLED, after=3600)
        output, errors = self.play(recording.end(), "5 1 5 3 -1")
        self.assertEqual(errors, "")
        self.assertEqual(self.reports(output), ["on", "off", "on"])
        # What came behind a request stands before the next menu, as often as it is played.
        first, second, third = output.split("******** MAIN MENU ********")[1:]
        self.assertEqual([self.reports(part) for part in (first, second, third)],
                         [["on"], ["off", "on"], []])
        for _ in range(5):
            self.assertEqual(self.play(recording, "5 1 5 3 -1")[0], output)

    def test_results_are_those_of_the_recording(self):
        recording = self.begun()
        recording.send(b"\x1e\0\1\0" + bytes(0), result=-76)
        recording.end()
        output, errors = self.play(recording, "1 7 -1")
        self.assertIn("\n\n Error Code Received as: [-76]", output)

    def test_what_was_written_back_is_written_back(self):
        recording = self.begun()
        request = b"\x10\0\3\0"
        recording.send(request, back=request + b"\x01")
        plain = self.play(recording.end(), "3 3 -1")[0]
        recording = self.begun()
        recording.send(request, back=request + b"\x02")
        self.assertNotEqual(self.play(recording.end(), "3 3 -1")[0], plain)

    def test_memory_is_read_as_it_was(self):
        recording = self.begun()
        recording.call("read", word=0x1000, length=3, back=b"\x07\x08\x09")
        recording.call("write", word=0x2000, length=4, data=b"\x78\x56\x34\x12", result=-1)
        output, errors = self.play(recording.end(), "7 1 1000 3 2 2000 12345678 -1 -1")
        self.assertEqual(errors, "")
        self.assertIn("\n 0x00001000 :  0x07 0x08 0x09", output)
        self.assertIn("\nERROR!! WRM FAILED!!", output)

    def test_a_long_read_of_memory_is_put_together(self):
        recording = self.begun()
        call = recording.add("read", word=0x1000, length=200000)
        for flags, data in ((2, b"\x11" * 131072), (0, b"\x22" * 68928)):
            recording.add("read-result", belongs_to=call, word=0x1000, length=200000, flags=flags,
                          data=data)
        output, errors = self.play(recording.end(), "7 1 1000 200000 -1 -1")
        self.assertEqual(errors, "")
        self.assertEqual((output.count(" 0x11"), output.count(" 0x22")), (131072, 68928))

    def test_a_device_that_came_late_comes_late(self):
        recording = Writer()
        for result in (-1, -1, 7):
            recording.call("open", result)
        recording.call("register", handle=7)
        output, errors = self.play(recording.end(), "100 200 -1", speed="0")
        self.assertIn("\n Opening device handle...  Failed\n Opening device handle...  Success",
                      output)

    def test_a_null_message_and_a_length_are_handed_over(self):
        recording = self.begun()
        recording.send(TRACE_STATUS)
        recording.message(b"", flags=1)
        output, errors = self.play(recording.end(), "5 3 -1")
        self.assertEqual(errors, "")
        self.assertIn("\nAppcallback called with null buffer !!!", output)

    def test_a_callback_may_send(self):
        recording = self.begun()
        request = b"\x24\0\1\0"
        recording.send(request)
        # The answer's decoder waits for a second and asks again.
        number = recording.add("message", length=8, data=b"\x24\0\2\0\1\0\0\0")
        recording.send(request, after=1, flags=4)
        recording.add("message-done", belongs_to=number)
        started = time.monotonic()
        output, errors = self.play(recording.end(), "24 -1")
        self.assertEqual(errors, "")
        self.assertIn("HALF MINI CARD", output)
        self.assertGreater(time.monotonic() - started, 0.9)


class Times(ReplayTest):
    def recording(self, distance):
        recording = self.begun()
        recording.send(TRACE_STATUS)
        for _ in range(4):
            recording.message(ENABLED, after=distance)
        recording.send(TRACE_ON, lasts=0.2)
        return recording.end()

    def run_slowly(self, recording, speed):
        self.source = self.top / "source.pcapng"
        self.source.write_bytes(recording.bytes())
        process = self.start([OPTIONS.client], OPTIONS.replay, environment={
            "QOR020_REPLAY": str(self.source), "QOR020_REPLAY_SPEED": speed})
        process.stdin.write(b"5 3 ")
        process.stdin.flush()
        # What is typed sooner brings the messages sooner.
        self.read_until(process, lambda seen: seen.count(ON) == 4)
        _, errors = process.communicate(b"5 1 -1 ", PATIENCE)
        self.assertEqual((process.returncode, errors), (0, b""))
        played = Capture(self.file).check()
        sent = played.of("send")
        return [(message.time - sent[0].time) / 1e9 for message in played.of("message")], sent, played

    def read_until(self, process, condition):
        seen = ""
        while not condition(seen):
            self.assertTrue(select.select([process.stdout], [], [], PATIENCE)[0], seen)
            seen += os.read(process.stdout.fileno(), 4096).decode()

    def check_times(self, got, expected):
        self.assertEqual(len(got), len(expected))
        for took, seconds in zip(got, expected):
            self.assertGreaterEqual(took, seconds - 0.001)
            self.assertLess(took, seconds + LATE)

    def test_messages_come_at_their_distance(self):
        times, sent, played = self.run_slowly(self.recording(0.25), "1")
        self.check_times(times, [0.25, 0.5, 0.75, 1.0])
        last = played.of("send-result")[-1]
        self.check_times([last.duration / 1e9], [0.2])

    def test_ten_times_as_fast(self):
        times, _, _ = self.run_slowly(self.recording(5), "10")
        self.check_times(times, [0.5, 1.0, 1.5, 2.0])

    def test_a_slow_callback_does_not_shift_what_comes_behind_it(self):
        recording = self.begun()
        recording.send(b"\x24\0\1\0")
        number = recording.add("message", 0.1, length=8, data=b"\x24\0\2\0\1\0\0\0")
        recording.send(b"\x24\0\1\0", after=0.2, flags=4)
        recording.add("message-done", belongs_to=number)
        recording.message(ENABLED, after=0.3)
        recording.message(ENABLED, after=0.3)
        self.source = self.top / "source.pcapng"
        self.source.write_bytes(recording.end(after=1).bytes())
        process = self.start([OPTIONS.client], OPTIONS.replay,
                             environment={"QOR020_REPLAY": str(self.source)})
        process.stdin.write(b"24 ")
        process.stdin.flush()
        self.read_until(process, lambda seen: seen.count(ON) == 2)
        _, errors = process.communicate(b"-1\n", PATIENCE)
        self.assertEqual((process.returncode, errors), (0, b""))
        played = Capture(self.file).check()
        # The decoder waits a whole second, not the recorded part of one; what follows is counted
        # from the call that it makes then.
        second = played.of("send")[1]
        self.check_times([(message.time - second.time) / 1e9 for message in played.of("message")[1:]],
                         [0.3, 0.6])

    def test_a_request_that_comes_early_pulls_forward_what_came_before_it(self):
        recording = self.begun()
        recording.send(TRACE_STATUS)
        recording.message(ENABLED, after=3600)
        recording.message(DISABLED, after=3600)
        recording.send(TRACE_ON, after=1, messages=[ENABLED])
        started = time.monotonic()
        output, errors = self.play(recording.end(after=3600), "5 3 5 1 -1", "1")
        self.assertLess(time.monotonic() - started, 30)
        self.assertEqual((errors, self.reports(output)), ("", ["on", "off", "on"]))

    def test_leaving_does_not_wait_for_what_would_have_come(self):
        recording = self.begun()
        recording.send(TRACE_STATUS)
        recording.message(ENABLED, after=3600)
        started = time.monotonic()
        output, errors = self.play(recording.end(after=3600), "5 3 -1", "1")
        self.assertLess(time.monotonic() - started, 30)
        self.assertEqual((errors, self.reports(output)), ("", []))

    def test_a_speed_that_is_none(self):
        for speed in ("fast", "-1", "1x", "inf", "nan"):
            _, errors = self.play(self.begun().end(), "-1", speed)
            self.assertEqual(errors,
                             f"libqor020: QOR020_REPLAY_SPEED is no speed, 1 is taken: {speed}\n")


class Differences(ReplayTest):
    def sync_up(self, bandwidth):
        payload = struct.pack("<II", 2587500, bandwidth) + b"\xff" + bytes(55)
        return b"\2\0\1\0" + payload

    def words(self, bandwidth):
        return f"1 2 2587.5 0 {bandwidth}"

    def test_the_first_field_that_differs_is_told_with_both_requests(self):
        recording = self.begun()
        recording.send(self.sync_up(10000), messages=[ENABLED])
        output, errors = self.play(recording.end(), self.words(7000) + " -1")
        self.assertEqual(errors, DIFFERS + (
            "event 6, qor020.sync_up.bandwidth\n"
            "  recorded: SendWiMAXMessage 1 68 2/1 | 6c 7b 27 00 10 27 00 00 ff 00*55\n"
            "  now:      SendWiMAXMessage 1 68 2/1 | 6c 7b 27 00 58 1b 00 00 ff 00*55\n"
        ))
        # It is answered all the same.
        self.assertEqual(self.reports(output), ["on"])

    def test_strict_ends_at_the_first_difference(self):
        recording = self.begun()
        recording.send(self.sync_up(10000), messages=[ENABLED])
        output, errors = self.play(recording.end(), self.words(7000) + " -1", strict="1", status=3)
        self.assertTrue(errors.startswith(DIFFERS))
        self.assertEqual(errors.count(DIFFERS), 1)
        self.assertEqual(self.reports(output), [])

    def test_strict_says_nothing_when_nothing_differs(self):
        recording = self.begun()
        recording.send(self.sync_up(10000), messages=[ENABLED])
        output, errors = self.play(recording.end(), self.words(10000) + " -1", strict="1")
        self.assertEqual((errors, self.reports(output)), ("", ["on"]))

    def test_a_request_that_was_not_made_then_is_answered_like_one_of_its_kind(self):
        recording = self.begun()
        recording.send(b"\x1e\0\1\0", result=-76)
        recording.send(TRACE_STATUS, messages=[ENABLED])
        output, errors = self.play(recording.end(), "1 7 1 7 5 3 -1")
        self.assertEqual(output.count("\n\n Error Code Received as: [-76]"), 2)
        self.assertEqual(self.reports(output), ["on"])
        self.assertEqual(errors, DIFFERS + (
            "event 8, another call\n"
            "  recorded: SendWiMAXMessage 1 4 21/3\n"
            "  now:      SendWiMAXMessage 1 4 30/1\n"))

    def test_a_request_of_a_kind_that_was_never_made_is_accepted(self):
        recording = self.begun()
        recording.send(TRACE_STATUS, messages=[ENABLED])
        output, errors = self.play(recording.end(), "1 7 5 3 -1")
        self.assertNotIn("Error Code Received", output)
        self.assertEqual(self.reports(output), ["on"])
        self.assertIn(DIFFERS + "event 6, another call\n"
                      "  recorded: SendWiMAXMessage 1 4 21/3\n"
                      "  now:      SendWiMAXMessage 1 4 30/1\n", errors)

    def test_memory_that_was_never_read_cannot_be_read(self):
        recording = self.begun()
        recording.call("read", word=0x1000, length=1, back=b"\x07")
        output, errors = self.play(recording.end(), "7 1 1000 1 1 2000 1 1 1000 1 -1 -1")
        self.assertEqual(output.count("\nERROR!! RDM FAILED!!"), 1)
        self.assertEqual(output.count("\n 0x00001000 :  0x07"), 2)
        self.assertEqual(errors.count(DIFFERS), 2)

    def test_requests_that_are_left_out_are_told(self):
        recording = self.begun()
        recording.send(TRACE_ON)
        recording.message(DISABLED)
        recording.send(TRACE_OFF, messages=[DISABLED])
        recording.send(TRACE_STATUS, messages=[ENABLED])
        output, errors = self.play(recording.end(), "5 1 5 3 -1")
        self.assertEqual(self.reports(output), ["off", "on"])
        self.assertEqual(errors, DIFFERS + (
            "event 10, a call was left out\n"
            "  recorded: SendWiMAXMessage 1 4 21/2\n"))

    def test_the_order_is_kept_when_the_same_request_comes_again_and_again(self):
        recording = self.begun()
        for message in (ENABLED, DISABLED, DISABLED, ENABLED):
            recording.send(TRACE_STATUS, messages=[message])
        output, errors = self.play(recording.end(), "5 3 " * 4 + "-1")
        self.assertEqual((errors, self.reports(output)), ("", ["on", "off", "off", "on"]))

    def test_leaving_early_is_told(self):
        recording = self.begun()
        recording.send(TRACE_STATUS)
        recording.send(TRACE_ON)
        _, errors = self.play(recording.end(), "-1")
        self.assertEqual(errors, DIFFERS + (
            "event 6, closed with 2 calls not made\n"
            "  recorded: SendWiMAXMessage 1 4 21/3\n"
            "  now:      CloseWiMAXDevice\n"))

    def test_calls_behind_the_end_are_told(self):
        recording = self.begun()
        recording.send(TRACE_STATUS, result=-5)
        _, errors = self.play(recording.end(), "5 3 100 5 3 -1")
        self.assertEqual(errors.count(DIFFERS + "a call behind its end\n"
                                      "  now:      SendWiMAXMessage 1 4 21/3\n"), 1)


class Files(ReplayTest):
    def test_a_recording_that_breaks_off_is_played_as_far_as_it_goes(self):
        recording = self.begun()
        recording.send(TRACE_STATUS, messages=[ENABLED])
        whole = recording.bytes()
        recording.send(TRACE_ON)
        output, errors = self.play(recording.bytes()[: len(whole) + 50], "5 3 -1")
        self.assertEqual(self.reports(output), ["on"])
        self.assertRegex(errors, rf"^libqor020: {self.source}: byte {len(whole)}: truncated .*\n$")

    def test_a_recording_that_ends_inside_a_call(self):
        recording = self.begun()
        recording.add("send", handle=1, length=4, data=TRACE_STATUS)
        output, errors = self.play(recording, "5 3 -1")
        self.assertEqual(errors, "libqor020: the recording ends inside a call\n")

    def test_a_file_that_is_none(self):
        output, errors = self.play(b"nothing of the kind", "-1", status=255)
        self.assertEqual(errors, f"libqor020: {self.source}: byte 0: unknown file format\n")
        self.assertIn("\n Error opening device handle !!!, exiting...", output)

    def test_no_file(self):
        environment = {"QOR020_REPLAY": str(self.top / "none.pcapng")}
        _, errors = self.run_client("-1", OPTIONS.replay, 255, recorder=False,
                                    environment=environment)
        self.assertEqual(errors, f"libqor020: {self.top}/none.pcapng: cannot be opened: "
                                 "No such file or directory\n")

    def test_no_name(self):
        _, errors = self.run_client("-1", OPTIONS.replay, 255, recorder=False,
                                    environment={"QOR020_REPLAY": ""})
        self.assertEqual(errors, "libqor020: QOR020_REPLAY names no recording\n")


class Again(ReplayTest):
    def test_a_replayed_session_makes_the_same_recording(self):
        # On this scenario's clock each call comes back with its answers, however slow the machine is.
        scenario = pathlib.Path(__file__).resolve().parents[2] / "sim/scenarios/quick.toml"
        first = self.record_tour(OPTIONS.simulated, {"QOR020_SCENARIO": str(scenario)})
        recording = self.file.rename(self.top / "first.pcapng")
        second = self.record_tour(OPTIONS.replay, {"QOR020_REPLAY": str(recording)})
        self.assertEqual(second, first)
        events = [Capture(path).check() for path in (recording, self.file)]
        self.assertGreater(len(events[0].events), 60)
        self.assertEqual(*[[event.without_times() for event in one.events[1:]] for one in events])
        self.assertEqual(*[one.management for one in events])

    def record_tour(self, library, environment):
        return self.run_client("5 1 1 2 2587.5 0 10000 1 3 4 7 1 1000 16 -1 16 2 -1", library,
                               environment=environment)


if __name__ == "__main__":
    main("simulated", "replay")
