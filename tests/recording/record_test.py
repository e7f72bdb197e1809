#!/usr/bin/env python3
"""The recorder: what it writes down, and everything that can go wrong with the file."""

import sys

sys.dont_write_bytecode = True  # the sources stay as they are

import os
import pathlib
import resource
import shutil
import signal
import stat
import subprocess
import time
import unittest

from clients import OPTIONS, PATIENCE, SessionTest, main  # it also says where the other modules are
from recording.capture import Capture, Damage


class RecordTest(SessionTest):
    """With a look at what was recorded."""

    def run_program(self, way, **options):
        process = self.start([OPTIONS.program, way], OPTIONS.scripted, **options)
        output, errors = process.communicate(b"", PATIENCE)
        self.assertEqual((process.returncode, errors), (0, b""))
        return output.decode()

    def recorded(self):
        return Capture(self.file).check()

    def foreign_programs(self):
        """For tests that load the recorder into other programs, too."""
        if OPTIONS.sanitized:
            self.skipTest("a sanitizer is in the recorder, but not in other programs")


class Contents(RecordTest):
    def test_a_session_from_open_to_close(self):
        self.run_client("5 1 -1", script="answer 21/3 | 1:4\n")
        recording = self.recorded()
        kinds = [event.kind for event in recording.events]
        self.assertEqual(kinds, [
            "session", "open", "open-result", "register", "register-result", "send", "message",
            "message-done", "send-result", "close", "close-result",
        ])
        opened, registered, sent, message, done = (
            recording.of(kind)[0]
            for kind in ("open-result", "register", "send", "message", "message-done")
        )
        self.assertEqual(opened.result, 1)
        self.assertEqual((registered.handle, registered.word, registered.flags), (1, 0, 0))
        self.assertEqual((sent.handle, sent.length, sent.data), (1, 4, b"\x15\0\1\0"))
        self.assertEqual((message.word, message.length), (0, 8))
        self.assertEqual(message.data, b"\x15\0\3\0\1\0\0\0")
        self.assertGreater(done.duration, 0)
        now = time.time_ns()
        self.assertTrue(all(now - 60e9 < event.time <= now for event in recording.events))

    def test_says_where_it_comes_from(self):
        self.run_client()
        recording = self.recorded()
        origin = recording.origin()
        for name, path in (("client", OPTIONS.client), ("library", OPTIONS.scripted)):
            checksum, size, _ = subprocess.check_output(["cksum", path], text=True).split(" ", 2)
            self.assertEqual(origin[name], os.path.realpath(path))
            self.assertEqual((origin[f"{name}-size"], origin[f"{name}-cksum"]), (size, checksum))
            # The head of the file says the same.
            code = {"client": 4, "library": 1}[name]
            for part in (os.path.realpath(path), size, checksum):
                self.assertIn(part, recording.section[code].decode())
        system = os.uname()
        self.assertEqual(origin["host"], system.nodename)
        self.assertEqual(origin["system"], f"{system.sysname} {system.release} {system.version}")
        self.assertEqual(origin["machine"], system.machine)
        self.assertEqual(origin["byte-order"], f"{sys.byteorder}-endian")
        self.assertEqual(recording.section[2].decode(), f"{system.machine}, {sys.byteorder}-endian")
        self.assertIn(system.release, recording.section[3].decode())

    def test_what_is_written_back_is_recorded_to_its_end(self):
        self.run_program("write-back", script="send 0\nreply 24/0 | 00*20 07\nsend -5\n")
        recording = self.recorded()
        sends, results = recording.of("send"), recording.of("send-result")
        self.assertEqual((sends[0].length, sends[0].data), (4, bytes(4)))
        self.assertEqual(results[0].data, b"\x18\0\0\0" + bytes(20) + b"\x07")
        self.assertEqual(results[0].length, 25)
        self.assertEqual((sends[1].length, sends[1].data, sends[1].flags), (8, b"", 1))
        self.assertEqual((results[1].result, results[1].data), (-5, b""))

    def test_what_stands_behind_the_received_length_is_recorded(self):
        self.run_client("5 1 -1", script='length 6\nanswer 21/1 | 00*40 09\nlength 300\n'
                                         "answer 21/3 | 1:4\nnull\n")  # null is delivered at once
        messages = self.recorded().of("message")
        self.assertEqual([(message.length, message.flags) for message in messages],
                         [(0, 1), (6, 0), (300, 0)])
        self.assertEqual(messages[1].data, b"\x15\0\1\0" + bytes(40) + b"\x09")
        self.assertEqual(messages[2].data, b"\x15\0\3\0\1" + bytes(295))

    def test_long_reads_of_memory_are_recorded_in_pieces(self):
        output = self.run_program("long-read", script="rdm 0 05 00*299998 06\n")
        self.assertEqual(output, "0 5 6\n")
        pieces = self.recorded().of("read-result")
        self.assertEqual([len(piece.data) for piece in pieces], [131072, 131072, 37856])
        self.assertEqual([piece.flags for piece in pieces], [2, 2, 0])
        self.assertEqual(b"".join(piece.data for piece in pieces), b"\5" + bytes(299998) + b"\6")
        self.assertTrue(all((piece.word, piece.length) == (0x1000, 300000) for piece in pieces))

    def test_management_messages_stand_behind_their_messages(self):
        down = 'answer 21/1 | 00 7:4 2:4 3:4 65535:4 01 "abc"\n'
        up = 'answer 21/1 | 01 7:4 4:4 0:4 0:4 01\n'
        cut = 'answer 21/1 | 00 7:4 300:4 3:4 0:4 01 "abc"\nanswer 21/1 | 00 7:4 4:4 -1:4 0:4 01\n'
        self.run_client("5 1 -1", script=down + up + cut + "answer 21/3 | 1:4\n")
        recording = self.recorded()
        numbers = [message.number for message in recording.of("message")]
        self.assertEqual(recording.management,
                         [(numbers[0], 1, b"\x02abc"), (numbers[1], 0, b"\x04")])

    def test_compressed_maps_have_a_decoder_of_their_own(self):
        maps = bytes.fromhex("d0 37 04 00 04 d2 05 0a 03 1d 02 00 10 00 42 97 05 00 18 78 05 00 00 21 "
                             "c8 12 00 11 80 50 ff ff c0 00 00 83 0f ff fc 02 00 04 34 00 00 e1 84 53 "
                             "c0 10 60 dd 36 96 b1")
        text = maps.hex(" ")
        down = f"answer 21/1 | 00 7:4 2:4 55:4 65535:4 00 {text}\n"
        up = f"answer 21/1 | 01 7:4 2:4 55:4 65535:4 00 {text}\n"
        self.run_client("5 1 -1", script=down + up + "answer 21/3 | 1:4\n")
        self.assertEqual([(direction, data) for _, direction, data in self.recorded().management],
                         [(1, maps), (0, b"\2" + maps)])
        if not OPTIONS.tshark:
            self.skipTest("there is no tshark")
        fields = subprocess.check_output(
            [OPTIONS.tshark, "-r", self.file, "-n", "-Y", "wmx.dlmapc.compr", "-T", "fields",
             "-e", "wmx.dlmap.phy_fnum", "-e", "wmx.dlmapc.opid", "-e", "wmx.dlmapc.secid",
             "-e", "_ws.malformed"],
            stderr=subprocess.DEVNULL, text=True)
        self.assertEqual(fields.split(), ["1234", "10", "3"])

    def test_each_callback_is_called_with_its_own_context(self):
        output = self.run_program("callbacks", script="send 0\nanswer 1/1\n" * 10)
        self.assertEqual(output.splitlines(),
                         [f"callback {i}, context {40 + i}, length 4" for i in range(10)])
        recording = self.recorded()
        registered = recording.of("register")
        self.assertEqual([event.word for event in registered], [*range(40, 50), 0])
        self.assertEqual([event.flags for event in registered], [0] * 10 + [1])
        # The recorder has places for eight; what it has none for is handed on all the same.
        done = recording.of("message-done")
        self.assertEqual([event.result for event in done], list(range(8)))

    def test_a_call_says_when_a_callback_made_it(self):
        process = self.start([OPTIONS.client], OPTIONS.scripted,
                             script="answer 36/2 | 1:4\nanswer 21/3 | 1:4\n")
        process.stdin.write(b"24\n")
        process.stdin.flush()
        self.wait_for(lambda: self.file.exists() and len(Capture(self.file).of("send")) == 2)
        process.communicate(b"-1\n", PATIENCE)
        recording = Capture(self.file)
        self.assertEqual([event.flags for event in recording.of("send")], [0, 4])
        self.assertEqual([event.flags for event in recording.of("close")], [0])

    def test_the_client_finds_its_errno_unchanged(self):
        self.assertEqual(self.run_program("errno"), "77\n")

    def test_without_a_file_nothing_is_recorded(self):
        output = self.run_client(environment={"QOR020_RECORDING": ""})
        self.assertEqual(output, self.run_client(recorder=False))
        self.assertFalse(self.file.exists())


class Stock(RecordTest):
    def tshark(self, *arguments):
        if not OPTIONS.tshark:
            self.skipTest("there is no tshark")
        return subprocess.check_output([OPTIONS.tshark, "-r", self.file, "-n", *arguments],
                                       stderr=subprocess.DEVNULL, text=True)

    def test_tshark_decodes_the_management_messages(self):
        scenario = self.file.with_suffix(".toml")
        default = pathlib.Path(__file__).resolve().parents[2] / "sim/scenarios/default.toml"
        scenario.write_text(default.read_text().replace("time-scale = 1.0", "time-scale = 20.0"))
        process = self.start([OPTIONS.client], OPTIONS.simulated,
                             environment={"QOR020_SCENARIO": str(scenario)})
        process.stdin.write(b"5 1 1 2 2587.5 0 10000 ")
        process.stdin.flush()
        self.wait_for(lambda: self.decoded() > 8)
        process.stdin.write(b"1 3 ")
        process.stdin.flush()
        self.wait_for(lambda: self.decoded() > 60)
        process.communicate(b"-1\n", PATIENCE)
        recording = self.recorded()
        times = self.tshark("-T", "fields", "-e", "frame.time_epoch").split()
        expected = sorted([event.time for event in recording.events] +
                          [recording.events[number - 1].time
                           for number, _, _ in recording.management])
        self.assertEqual(times, [f"{time // 10**9}.{time % 10**9:09}" for time in expected])
        summary = [line for line in self.tshark().splitlines() if "Exported PDU" not in line]
        self.assertEqual(len(summary), len(recording.management))
        # Stock hands on the list of suites in an SA-TEK request two bytes too early.
        malformed = [data[:2] for (_, _, data), line in zip(recording.management, summary)
                     if "alformed" in line]
        self.assertLessEqual(set(malformed), {bytes([9, 21])})
        for (_, _, data), line in zip(recording.management, summary):
            names = {0: "UCD", 1: "DCD", 2: "DL-MAP", 3: "UL-MAP", 4: "RNG-REQ", 5: "RNG-RSP",
                     26: "SBC-REQ", 27: "SBC-RSP", 6: "REG-REQ", 7: "REG-RSP"}
            self.assertIn(names.get(data[0], ""), line)
        self.assertLess({0, 1, 2, 3, 5, 6, 7, 26, 27},
                        {data[0] for _, _, data in recording.management})

    def decoded(self):
        try:
            return len(Capture(self.file).management)
        except (OSError, Damage):
            return 0


class Processes(RecordTest):
    def test_children_leave_the_file_to_their_parent(self):
        self.run_program("children")
        types = [event.data[0] for event in self.recorded().of("send")]
        self.assertEqual(types, [103])

    def test_a_program_in_the_place_of_the_client_leaves_the_file_alone(self):
        self.run_program("replaced")
        self.assertEqual(len(self.recorded().of("open")), 1)

    def test_programs_without_a_device_hand_the_recorder_on(self):
        self.foreign_programs()
        process = self.start(["/bin/sh", "-c", f"/bin/true; exec {OPTIONS.client}"],
                             OPTIONS.scripted)
        process.communicate(b"-1\n", PATIENCE)
        self.assertEqual(process.returncode, 0)
        self.assertEqual(len(self.recorded().of("close")), 1)

    def test_the_file_is_closed_in_programs_that_are_started(self):
        self.foreign_programs()
        listing = self.run_program("descriptors")
        self.assertIn("->", listing)
        self.assertNotIn("session.pcapng", listing)

    def test_a_killed_session_leaves_a_whole_file(self):
        for delay in (0.05, 0.1, 0.2, 0.4):
            self.file.unlink(missing_ok=True)
            process = self.start([OPTIONS.client], OPTIONS.storm,
                                 environment={"STORM_THREADS": "4", "STORM_BODY": "1500"})
            self.wait_for(self.file.exists)
            # Somebody reads what the client prints, or it would come to rest.
            with open(os.devnull, "wb") as nowhere:
                reader = subprocess.Popen(["cat"], stdin=process.stdout, stdout=nowhere)
                time.sleep(delay)
                process.send_signal(signal.SIGKILL)
                process.communicate()
                reader.wait()
            recording = Capture(self.file)
            self.assertEqual([event.number for event in recording.events],
                             list(range(1, len(recording.events) + 1)))
        self.assertGreater(len(recording.of("message")), 10)

    def test_a_call_that_hangs_stands_in_the_file(self):
        process = self.start([OPTIONS.client], OPTIONS.storm,
                             environment={"STORM_MESSAGES": "none", "STORM_HANGS": "send"})
        process.stdin.write(b"5 1\n")
        process.stdin.flush()
        self.wait_for(lambda: self.file.exists() and Capture(self.file).of("send"))
        process.kill()
        process.communicate()
        self.assertEqual(Capture(self.file).events[-1].kind, "send")

    def test_many_threads_write_whole_events_in_order(self):
        threads, count = 8, 600
        process = self.start([OPTIONS.client], OPTIONS.storm, environment={
            "STORM_THREADS": str(threads), "STORM_COUNT": str(count), "STORM_BODY": "200"})
        with open(os.devnull, "wb") as nowhere:
            reader = subprocess.Popen(["cat"], stdin=process.stdout, stdout=nowhere)
            self.wait_for(lambda: self.messages() == threads * count)
            _, errors = process.communicate(b"-1\n", PATIENCE)
            reader.wait()
        self.assertEqual((process.returncode, errors), (0, b""))
        recording = self.recorded()
        seen = {}
        for message in recording.of("message"):
            payload = message.data[4:].ljust(18, b"\0")
            thread = int.from_bytes(payload[13:17], "little")
            seen.setdefault(thread, []).append(int.from_bytes(payload[1:5], "little"))
        self.assertEqual(len(seen), threads)
        for numbers in seen.values():
            self.assertEqual(numbers, list(range(numbers[0], numbers[0] + count)))
        self.assertEqual(len(recording.management), threads * count)

    def test_threads_that_are_cancelled_keep_nothing_locked(self):
        if OPTIONS.sanitized:
            self.skipTest("threads are cancelled at once, in the sanitizer's own code, too")
        process = self.start([OPTIONS.client], OPTIONS.storm, environment={
            "STORM_THREADS": "4", "STORM_CLOSE": "cancels", "STORM_CANCELS_AT_ONCE": "1"})
        self.wait_for(lambda: self.messages() > 100)
        process.stdin.write(b"100\n" + b"200\n100\n" * 5 + b"-1\n")
        _, errors = process.communicate(timeout=PATIENCE)
        self.assertEqual((process.returncode, errors), (0, b""))
        self.assertEqual(len(Capture(self.file).of("close")), 7)

    def messages(self):
        """How many there are so far."""
        try:
            return len(Capture(self.file).of("message"))
        except (OSError, Damage):  # it is being written
            return 0


class Files(RecordTest):
    def check_refused(self, reason, path=None):
        """The session goes on as without the recorder; one line says why it is not recorded."""
        output, errors = self.run_client("5 1 -1", recording=path)
        path = path or self.file
        self.assertEqual(errors, f"libqor020record: {path}: {reason}; the session is not recorded\n")
        self.assertEqual(output, self.run_client("5 1 -1", recorder=False)[0])

    def mode(self):
        return stat.S_IMODE(self.file.stat().st_mode)

    def test_only_the_owner_can_read_it(self):
        for mask in (0, 0o077, 0o777):
            self.run_client(preexec_fn=lambda mask=mask: os.umask(mask) and None)
            self.assertEqual(self.mode(), 0o600)

    def test_an_older_recording_is_replaced(self):
        self.file.write_bytes(b"older" * 10000)
        self.file.chmod(0o644)
        os.link(self.file, self.top / "other-name")
        self.run_client()
        self.recorded()
        self.assertEqual(self.mode(), 0o600)
        self.assertEqual((self.top / "other-name").read_bytes(), b"older" * 10000)

    def test_no_directory(self):
        self.check_refused("No such file or directory", self.top / "none" / "session.pcapng")

    def test_a_directory(self):
        self.file.mkdir()
        self.check_refused("is no regular file")

    def test_a_link_is_not_followed(self):
        target = self.top / "target"
        self.file.symlink_to(target)
        self.check_refused("is no regular file")
        self.assertFalse(target.exists())
        target.write_text("kept")
        self.check_refused("is no regular file")
        self.assertEqual(target.read_text(), "kept")

    def test_a_pipe_and_a_device(self):
        os.mkfifo(self.file)
        self.check_refused("is no regular file")
        self.assertTrue(stat.S_ISFIFO(self.file.stat().st_mode))
        self.check_refused("is no regular file", "/dev/full")

    def test_a_file_that_another_session_is_recorded_into(self):
        first = self.start([OPTIONS.client], OPTIONS.scripted)
        while not self.file.exists() or not self.file.stat().st_size:
            time.sleep(0.02)
        self.check_refused("another session is being recorded into it")
        first.communicate(b"-1\n", PATIENCE)
        self.assertEqual(len(self.recorded().of("close")), 1)

    def test_without_standard_streams_nothing_is_printed_into_the_file(self):
        process = self.start([OPTIONS.program, "one-send"], OPTIONS.scripted,
                             preexec_fn=lambda: [os.close(number) for number in (0, 1, 2)])
        process.communicate(timeout=PATIENCE)
        self.assertEqual(len(self.recorded().of("send")), 1)

    def check_full(self, errors, reason, limit):
        self.assertEqual(errors, f"libqor020record: {self.file}: {reason}; "
                                 "the recording ends here, the session goes on\n")
        recording = Capture(self.file)
        self.assertGreater(len(recording.events), 20)
        self.assertLessEqual(self.file.stat().st_size, limit)
        return recording

    def test_a_file_that_must_not_grow_further(self):
        words = "5 1 " * 200 + "-1"
        limit = 10000
        output, errors = self.run_client(words, preexec_fn=lambda: resource.setrlimit(
            resource.RLIMIT_FSIZE, (limit, limit)))
        self.assertEqual(output, self.run_client(words, recorder=False)[0])
        self.check_full(errors, "File too large", limit)

    @unittest.skipUnless(shutil.which("unshare") and subprocess.run(
        ["unshare", "-rm", "true"], stderr=subprocess.DEVNULL, check=False).returncode == 0,
        "no file system of its own can be made here")
    def test_a_full_disk(self):
        self.foreign_programs()
        words = "5 1 " * 400 + "-1"
        place = self.top / "small"
        place.mkdir()
        self.file = place / "session.pcapng"
        kept = self.top / "kept.pcapng"
        command = (f"mount -t tmpfs -o size=16k none {place} && {OPTIONS.client}; status=$?; "
                   f"cp {self.file} {kept}; exit $status")
        process = self.start(["unshare", "-rm", "/bin/sh", "-c", command], OPTIONS.scripted)
        output, errors = process.communicate(words.encode() + b"\n", PATIENCE)
        self.assertEqual(process.returncode, 0, errors)
        self.assertEqual(output, self.run_client(words, recorder=False)[0])
        full = self.file
        self.file = kept
        errors = errors.decode().replace(str(full), str(kept))
        self.check_full(errors, "No space left on device", 16384)


if __name__ == "__main__":
    main("scripted", "simulated", "storm", "program")
