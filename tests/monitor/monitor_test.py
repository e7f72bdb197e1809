#!/usr/bin/env python3
"""The monitor as a program: what it shows of recordings that are written here byte by byte, from
files, pipes and files that grow, on terminals and elsewhere, whole and damaged."""

import sys

sys.dont_write_bytecode = True  # the sources stay as they are

import argparse
import contextlib
import json
import os
import pathlib
import pty
import random
import re
import select
import signal
import stat
import struct
import subprocess
import tempfile
import time
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1]))
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "recording"))
from capture import Capture, Writer, file_head  # noqa: E402
from run_session import SANITIZERS  # noqa: E402

OPTIONS = argparse.Namespace()
PATIENCE = 60

SYNC_UP = bytes.fromhex("02000100 6c7b2700 10270000 ff000000") + bytes(52)
SYNC_STATUS = bytes.fromhex(
    "02000100 00000000 00 00 00120a000101 03000000 1d000000 01000000 c7ffffff 01000000"
    "6c7b2700 10270000 05000000 02000000"
)
DL_MAP = bytes.fromhex("15000100 00 58020000 02000000 03000000 ffff0000 01 0400ff")


def small():
    """A session with one thing of each kind."""
    writer = Writer()
    writer.begin()
    writer.send(SYNC_UP, after=1.0, lasts=0.00001)
    writer.message(SYNC_STATUS, after=0.25)
    writer.message(DL_MAP, after=0.5)
    writer.send(bytes.fromhex("11000100 e8030000"), result=-76)
    number = writer.add("read", word=0x8000, length=4)
    writer.add("read-result", belongs_to=number, word=0x8000, length=4, data=b"\1\2\3\4",
               duration=2_000_000)
    writer.message(bytes.fromhex("ffff0700 0102"))
    writer.message(bytes.fromhex("1900 0100"))
    return writer.end().bytes()


SMALL_TEXT = """\
> 2023-11-14 22:13:20.000000000 #1 session
    client=none
> 2023-11-14 22:13:20.000000000 #2 open
< 2023-11-14 22:13:20.000000000 #3 open (#2), handle 1, took 0.000 ms
> 2023-11-14 22:13:20.000000000 #4 register, context 0
< 2023-11-14 22:13:20.000000000 #5 register (#4), result 0, took 0.000 ms
> 2023-11-14 22:13:21.000000000 #6 sync_up 2/1, 68 bytes
    center_frequency: 2587500 kHz
    bandwidth: 10000 kHz
    preamble_id: 255
< 2023-11-14 22:13:21.000010000 #7 sync_up 2/1 (#6), result 0, took 0.010 ms
< 2023-11-14 22:13:21.250010000 #8 sync_status 2/1, 52 bytes, 250.010 ms after #6
    ~~~~~~~~~~ SYNC STATUS RESPONSE RECEIVED ~~~~~~~~~~

     SYNC STATUS  : PHY_SYNC ACHIEVED - NORMAL MAP
     BS ID  :00 12 0A 00 01 01
     PREAMBLE ID  : 3
     CINR MEAN : 29 dB
     CINR DEVIATION: 1 dB
     RSSI MEAN: -57 dBm
     RSSI DEVIATION: 1 dBm
     CENTER FREQUENCY: 2587500 kHz
     BANDWIDTH : 10000 kHz
     DCD change count : 5\x20
     NSP Change count : 2\x20

    ~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~
< 2023-11-14 22:13:21.750010000 #10 traced_message 21/1, 25 bytes
    ~~~~~~~~~~MAC MGMT INDICATION ~~~~~~~~~~

    FRAME NUMBER : 0x258
    MESSAGE DIRECTION : BS to MS
    MESSAGE : (CODE : 2) Downlink Access Definition\x20
    Data (3) bytes :
     0x04 0x00 0xff

    CID  :  0xFFFF
    CMAC OK  :  1

    ~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~
> 2023-11-14 22:13:21.750010000 #12 statistics_request 17/1, 8 bytes
    interval: 1000 ms
< 2023-11-14 22:13:21.750010000 #13 statistics_request 17/1 (#12), result -76, took 0.000 ms
> 2023-11-14 22:13:21.750010000 #14 read_memory
    address: 0x8000
    count: 4
< 2023-11-14 22:13:21.750010000 #15 read_memory (#14), result 0, took 2.000 ms
    address: 0x8000
    count: 4
    value: 67305985
< 2023-11-14 22:13:21.750010000 #16 unknown_message 65535/7, 6 bytes
    UNKNOWN type of message received in Callback func (65535)!!!
< 2023-11-14 22:13:21.750010000 #18 ignored25 25/1, 4 bytes
> 2023-11-14 22:13:21.750010000 #20 close
< 2023-11-14 22:13:21.750010000 #21 close (#20), result 0, took 0.000 ms
"""


def environment(**more):
    kept = {key: value for key, value in os.environ.items() if key not in ("NO_COLOR", "TERM")}
    return {**kept, **SANITIZERS, **more}


class MonitorTest(unittest.TestCase):
    def setUp(self):
        directory = tempfile.TemporaryDirectory(prefix="monitor.")
        self.addCleanup(directory.cleanup)
        self.top = pathlib.Path(directory.name)
        self.file = self.top / "session.pcapng"

    def monitor(self, *options, recording=None, status=0, error=b""):
        """What it prints about a recording, in a file."""
        if recording is not None:
            self.file.write_bytes(recording)
        process = subprocess.run([OPTIONS.monitor, *options, self.file], env=environment(),
                                 capture_output=True, timeout=PATIENCE, check=False)
        self.assertEqual((process.stderr, process.returncode), (error, status))
        return process.stdout.decode("utf-8", "surrogateescape")

    def objects(self, *options, **more):
        """The objects that --json prints: each on a line of its own, and valid JSON."""
        text = self.monitor("--json", *options, **more)
        self.assertTrue(text.endswith("\n") or text == "")
        # Numbers as they stand, and no member twice.
        return [json.loads(line, parse_float=str, object_pairs_hook=self.members)
                for line in text.splitlines()]

    def members(self, pairs):
        names = [name for name, _ in pairs]
        self.assertEqual(len(set(names)), len(names), names)
        return dict(pairs)

    def damage(self, text):
        return f"TarvelWiMAXMonitor: {self.file}: {text}\n".encode()


def one_message(data, **fields):
    writer = Writer()
    writer.message(data, **fields)
    return writer.bytes()


class Text(MonitorTest):
    def test_a_block_for_each_call_and_message(self):
        self.assertEqual(self.monitor(recording=small()), SMALL_TEXT)

    def test_fields_stand_behind_the_report(self):
        text = self.monitor("--fields", "--subtype", "sync_status", recording=small())
        self.assertEqual(text.split("~~~~~~~\n")[-1].splitlines(), [
            "    status: 0 (link_up_achieved)",
            "    compressed_map: 0",
            "    bsid: 00:12:0a:00:01:01",
            "    preamble_id: 3",
            "    cinr_mean: 29 dB",
            "    cinr_deviation: 1 dB",
            "    rssi_mean: -57 dBm",
            "    rssi_deviation: 1 dBm",
            "    center_frequency: 2587500 kHz",
            "    bandwidth: 10000 kHz",
            "    dcd_change_count: 5",
            "    nsp_change_count: 2",
        ])

    def test_raw_bytes_stand_behind_everything(self):
        text = self.monitor("--raw", "--type", "21", recording=small())
        self.assertEqual(text.splitlines()[-2:], [
            "    000000  15 00 01 00 00 58 02 00 00 02 00 00 00 03 00 00  .....X..........",
            "    000010  00 ff ff 00 00 01 04 00 ff                       .........",
        ])

    def test_decoders_that_wait_for_a_key_show_everything_at_once(self):
        # An attribute whose ten downlink and three uplink zones stand behind a key each.
        value = bytes(7000)
        record = struct.pack("<IB16xIb", 1625, 0, len(value), 0) + value
        text = self.monitor(recording=one_message(bytes.fromhex("18000200") + record))
        self.assertEqual(re.findall(r"(.L Zone \[\d+\]) Information", text),
                         [f"DL Zone [{i}]" for i in range(10)] +
                         [f"UL Zone [{i}]" for i in range(3)])

    def test_decoders_that_sleep_and_send_do_neither(self):
        writer = Writer()
        for _ in range(200):
            writer.message(bytes.fromhex("24000200"))
        began = time.monotonic()
        text = self.monitor(recording=writer.bytes())
        self.assertLess(time.monotonic() - began, PATIENCE / 2)
        self.assertEqual(text.count(
            "Application will send HMC Status message after interval of 1 second"), 200)

    def test_a_message_longer_than_any_buffer(self):
        body = bytes(10240 - 18)
        message = bytes.fromhex("15000100 00 00000000 02000000") + struct.pack("<i", len(body))
        text = self.monitor(recording=one_message(message + bytes(5) + body))
        self.assertEqual(text.count(" 0x00"), len(body))

    def test_controls_of_a_terminal_are_dots(self):
        # A name of a network service provider with an escape sequence in it.
        message = bytearray(bytes.fromhex("07000100") + bytes(177))
        message[16:24] = b"a\x1b[31mb\x7f"
        text = self.monitor(recording=one_message(bytes(message)))
        self.assertNotIn("\x1b", text)
        self.assertIn("a.[31mb.", text)

    def test_null_messages_and_those_without_a_whole_header(self):
        writer = Writer()
        writer.add("message", flags=1)
        writer.add("message", length=3, data=b"\2\0\1")
        text = self.monitor(recording=writer.bytes())
        self.assertEqual(text.splitlines()[2:], [
            "< 2023-11-14 22:13:20.000000000 #2 null message, 0 bytes",
            "< 2023-11-14 22:13:20.000000000 #3 cut message, 3 bytes",
        ])

    def test_answers_go_with_the_last_request(self):
        writer = Writer()
        for _ in range(3):
            writer.send(SYNC_UP, after=1.0)
        for _ in range(4):
            writer.message(SYNC_STATUS, after=0.125)
        text = self.monitor("--direction", "received", "--subtype", "sync_status",
                            recording=writer.bytes())
        self.assertEqual(re.findall(r"bytes(.*)", text), [
            ", 125.000 ms after #6", ", 1250.000 ms after #4", ", 2375.000 ms after #2", "",
        ])

    def test_a_request_that_was_refused_is_not_answered(self):
        writer = Writer()
        writer.send(SYNC_UP, result=-1)
        writer.message(SYNC_STATUS)
        self.assertNotIn(" after #", self.monitor(recording=writer.bytes()))

    def test_a_state_of_thousand_years_ago_and_hence(self):
        early = Writer()
        early.time = 1
        early.message(DL_MAP)
        self.assertIn("< 1970-01-01 00:00:00.000000001 #2", self.monitor(recording=early.bytes()))
        late = Writer()
        late.time = 9_000_000_000_000_000_000
        late.message(DL_MAP)
        self.assertIn("< 2255-03-14 16:00:00.000000000 #2", self.monitor(recording=late.bytes()))


class JSON(MonitorTest):
    def test_an_object_for_each_event(self):
        objects = self.objects(recording=small())
        self.assertEqual([each["event"] for each in objects], [
            "session", "open", "open_result", "register", "register_result", "send", "send_result",
            "message", "message_done", "message", "message_done", "send", "send_result",
            "read_memory", "read_memory_result", "message", "message_done", "message",
            "message_done", "close", "close_result",
        ])
        self.assertEqual([each["number"] for each in objects], list(range(1, 22)))
        self.assertEqual(objects[0], {
            "number": 1, "time": "2023-11-14T22:13:20.000000000Z", "event": "session",
            "direction": "sent", "session": {"client": "none"},
        })
        self.assertEqual(objects[2], {
            "number": 3, "time": "2023-11-14T22:13:20.000000000Z", "event": "open_result",
            "direction": "received", "belongs_to": 2, "result": 1, "duration_ns": 0,
        })
        self.assertEqual(objects[3]["context"], 0)
        self.assertEqual(objects[5], {
            "number": 6, "time": "2023-11-14T22:13:21.000000000Z", "event": "send",
            "direction": "sent", "type": 2, "subtype": 1, "name": "sync_up", "handle": 1,
            "length": 68,
            "fields": {"center_frequency": 2587500, "bandwidth": 10000, "preamble_id": 255},
        })
        self.assertEqual(objects[7], {
            "number": 8, "time": "2023-11-14T22:13:21.250010000Z", "event": "message",
            "direction": "received", "type": 2, "subtype": 1, "name": "sync_status", "context": 0,
            "length": 52, "answers": 6, "latency_ns": 250010000,
            "fields": {
                "status": 0, "status_name": "link_up_achieved", "compressed_map": 0,
                "bsid": "00:12:0a:00:01:01", "preamble_id": 3, "cinr_mean": 29,
                "cinr_deviation": 1, "rssi_mean": -57, "rssi_deviation": 1,
                "center_frequency": 2587500, "bandwidth": 10000, "dcd_change_count": 5,
                "nsp_change_count": 2,
            },
        })
        self.assertEqual(objects[9]["fields"]["body"], "0400ff")
        self.assertEqual((objects[12]["result"], objects[12]["failed"]), (-76, True))
        self.assertEqual(objects[14]["fields"], {"address": 32768, "count": 4, "value": 67305985})
        self.assertEqual(objects[15]["payload"], "0102")
        self.assertNotIn("fields", objects[15])

    def test_raw_bytes_are_hexadecimal(self):
        objects = self.objects("--raw", "--type", "65535", recording=small())
        self.assertEqual(objects[0]["raw"], "ffff07000102")

    def test_lists_and_records_are_nested(self):
        station = bytes.fromhex("01 00 00120a000101 03000000 6c7b2700 10270000 c4ffffff 14000000"
                                "05000000 02000000")
        # The second one breaks off.
        message = bytes.fromhex("01000100 02000000 01000000") + station + station[:10]
        found = self.objects(recording=one_message(message))[1]
        self.assertTrue(found["wrong_size"])
        whole = {
            "compressed_map": 1, "wake_up_bsid": 0, "bsid": "00:12:0a:00:01:01",
            "preamble_index": 3, "center_frequency": 2587500, "bandwidth": 10000,
            "signal_strength": -60, "cinr": 20, "dcd_change_count": 5, "nsp_change_count": 2,
        }
        cut = {name: whole[name] for name in list(whole)[:4]}
        self.assertEqual(found["fields"], {
            "num_stations": 2, "search_status": 1, "search_status_name": "search_complete",
            "stations": [whole, cut],
        })

    def test_fractions_are_exact_decimals(self):
        # The mean of an idle indication is in quarters.
        message = bytes.fromhex("13000100 01000000 000000000000 1dffffff") + bytes(12)
        fields = self.objects(recording=one_message(message))[1]["fields"]
        self.assertEqual(fields["rssi_mean"], "-56.75")

    def test_texts_of_any_bytes_are_valid(self):
        dice = random.Random(1)
        texts = [bytes(range(1, 65)), bytes(range(128, 192)), bytes(range(192, 256)),
                 '"\\\u00e4\u20ac\U0001f600'.encode(), b"\xed\xa0\x80\xc0\x80\xf4\x90\x80\x80\xff"]
        texts += [bytes(dice.randrange(1, 256) for _ in range(64)) for _ in range(200)]
        writer = Writer()
        for text in texts:
            message = bytearray(bytes.fromhex("07000100") + bytes(177))
            message[16 : 16 + len(text)] = text
            writer.message(bytes(message), done=False)
        objects = self.objects("--type", "ss_info", recording=writer.bytes())
        found = [each["fields"]["driver_version"] for each in objects]
        self.assertEqual(len(found), len(texts))
        self.assertEqual(found[0], bytes(range(1, 65)).decode())
        self.assertEqual(found[1], "\ufffd" * 64)
        self.assertEqual(found[3], '"\\\u00e4\u20ac\U0001f600')
        self.assertEqual(found[4], "\ufffd" * 10)

    def test_origins_of_any_bytes_are_valid(self):
        writer = Writer()
        writer.events.clear()
        writer.add("session", data=b'a="\xff\n\n=x\nb\nc=d=e')
        text = self.monitor("--json", recording=writer.bytes())
        self.assertIn('"session":{"a":"\\"\ufffd","":"","":"x","b":"","c":"d=e"}', text)
        json.loads(text)


class Filters(MonitorTest):
    def numbers(self, *options):
        return [each["number"] for each in self.objects(*options, recording=small())]

    def test_by_type(self):
        self.assertEqual(self.numbers("--type", "2"), [6, 7, 8, 9])
        self.assertEqual(self.numbers("--type", "network_entry"), [6, 7, 8, 9])
        self.assertEqual(self.numbers("--type=0x15"), [10, 11])

    def test_by_subtype(self):
        self.assertEqual(self.numbers("--subtype", "7"), [16, 17])
        self.assertEqual(self.numbers("--subtype", "sync_status"), [8, 9])
        self.assertEqual(self.numbers("--subtype", "SyncUp"), [6, 7])
        self.assertEqual(self.numbers("--type", "2", "--subtype", "2"), [])

    def test_by_direction(self):
        self.assertEqual(self.numbers("--direction", "received", "--type", "2"), [7, 8])
        self.assertEqual(self.numbers("--direction", "sent", "--type", "2"), [6, 9])

    def test_by_time(self):
        self.assertEqual(self.numbers("--from", "1", "--to", "1.25"), [6, 7])
        self.assertEqual(self.numbers("--from", "2023-11-14T22:13:21.25", "--to",
                                      "2023-11-14 22:13:21.5Z"), [8, 9])

    def test_by_result(self):
        self.assertEqual(self.numbers("--result", "failed"), [13])
        self.assertEqual(self.numbers("--result", "-76"), [13])
        self.assertEqual(self.numbers("--result", "ok"), [3, 5, 7, 15, 21])

    def test_wrong_arguments_are_refused(self):
        for options, text in (
            (["--type", "sync"], "--type does not go with sync"),
            (["--type", "65536"], "--type does not go with 65536"),
            (["--subtype", "sync"], "--subtype does not go with sync"),
            (["--direction", "up"], "--direction does not go with up"),
            (["--from", "noon"], "--from does not go with noon"),
            (["--to", "2023-02-29T00:00:00"], "--to does not go with 2023-02-29T00:00:00"),
            (["--to", "1.1234567890"], "--to does not go with 1.1234567890"),
            (["--result", "bad"], "--result does not go with bad"),
            (["--raw=1"], "unknown option: --raw=1"),
            (["--json", "--summary"], "only one of --json, --summary and --scrub"),
            (["-x"], "unknown option: -x"),
            (["other"], f"more than one file: {self.file}"),
        ):
            error = f"TarvelWiMAXMonitor: {text} (--help explains)\n".encode()
            self.assertEqual(self.monitor(*options, status=2, error=error), "")

    def test_help(self):
        self.assertTrue(self.monitor("--help", recording=b"").startswith("Usage: "))


class Summary(MonitorTest):
    def test_of_a_small_session(self):
        self.assertEqual(self.monitor("--summary", recording=small()), """\
21 events from 2023-11-14 22:13:20.000000000 to 2023-11-14 22:13:21.750010000

messages                   number  bytes  a second  bytes a second
> sync_up 2/1                   1     68       0.6            38.9
> statistics_request 17/1       1      8       0.6             4.6
< sync_status 2/1               1     52       0.6            29.7
< traced_message 21/1           1     25       0.6            14.3
< ignored25 25/1                1      4       0.6             2.3
< unknown_message 65535/7       1      6       0.6             3.4

answer times in ms  answers    least   median     99 %     most
< sync_status 2/1         1  250.010  250.010  250.010  250.010

call times in ms  calls  least  median   99 %   most  failed
> open                1  0.000   0.000  0.000  0.000       0
> register            1  0.000   0.000  0.000  0.000       0
> send                2  0.000   0.000  0.010  0.010       1
> read_memory         1  2.000   2.000  2.000  2.000       0
> close               1  0.000   0.000  0.000  0.000       0

failed calls                    result  number
> send statistics_request 17/1     -76       1
""")

    def test_requests_without_an_answer(self):
        writer = Writer()
        for _ in range(20):
            writer.send(SYNC_UP)
        writer.message(SYNC_STATUS)
        text = self.monitor("--summary", recording=writer.bytes())
        self.assertIn("\nunanswered requests, waiting for  number\n"
                      "< sync_status 2/1                     19\n", text)

    def test_of_nothing(self):
        self.assertEqual(self.monitor("--summary", "--type", "36", recording=small()), "0 events\n")

    def test_memory_does_not_grow_with_the_file(self):
        writer = Writer()
        dice = random.Random(2)
        for i in range(20000):
            writer.send(struct.pack("<HH", dice.randrange(65536), i), result=i)
        recording = writer.bytes()
        with subprocess.Popen([OPTIONS.monitor, "--summary", "-"], env=environment(),
                              stdin=subprocess.PIPE, stdout=subprocess.PIPE) as process:
            memory = []
            head, events = len(file_head()), len(recording) // 4
            process.stdin.write(recording[:head])
            for part in range(4):
                process.stdin.write(recording[head:][part * events : (part + 1) * events])
                process.stdin.flush()
                time.sleep(0.2)
                status = pathlib.Path(f"/proc/{process.pid}/status").read_text()
                memory.append(int(re.search(r"VmHWM:\s+(\d+) kB", status)[1]))
            process.stdin.write(recording[head:][4 * events :])
            process.stdin.close()
            output = process.stdout.read()
            self.assertEqual(process.wait(PATIENCE), 0)
        self.assertLess(output.count(b"\n"), 3000)
        self.assertIn(b"\nothers ", output)
        self.assertLess(memory[3] - memory[1], 512, memory)


MAC = bytes.fromhex("020000200001")


def told(message, recording):
    """What a message holds in a scrubbed recording."""
    return recording.of("message")[message].data


class Scrub(MonitorTest):
    def scrub(self, recording, **more):
        copy = self.top / "copy.pcapng"
        self.assertEqual(self.monitor("--scrub", copy, recording=recording, **more), "")
        return Capture(copy)

    def test_nothing_but_values_changes(self):
        before = Capture(small())
        after = self.scrub(small())
        self.assertEqual([(event.kind, event.number, event.time, event.length, len(event.data))
                          for event in before.events],
                         [(event.kind, event.number, event.time, event.length, len(event.data))
                          for event in after.events])
        same = [old.data == new.data for old, new in zip(before.events, after.events)]
        # What nobody describes may be anything.
        self.assertEqual([i + 1 for i, equal in enumerate(same) if not equal], [16])
        self.assertEqual(after.management, [(10, 1, bytes.fromhex("02 0400ff"))])

    def test_an_address_becomes_the_same_one_everywhere(self):
        writer = Writer()
        information = bytearray(bytes.fromhex("07000100") + bytes(177))
        information[172:178] = MAC
        ranging = bytes.fromhex("00 0206") + MAC + bytes.fromhex("94 01 05")
        register = bytes.fromhex("1206") + MAC
        writer.message(bytes(information))
        for code, body in ((4, ranging), (6, register), (5, b"\0\x08\x06" + MAC)):
            writer.message(bytes.fromhex("15000100 01 00000000") + struct.pack("<IiIB", code,
                           len(body), 1, 0) + body)
        recording = self.scrub(writer.bytes())
        found = [told(0, recording)[172:178], told(1, recording)[4 + 18 + 3 :][:6], told(2, recording)[4 + 18 + 2 :][:6],
                 told(3, recording)[4 + 18 + 3 :][:6]]
        self.assertEqual(len(set(found)), 1)
        self.assertNotEqual(found[0], MAC)
        self.assertEqual(found[0][0] & 3, 2)
        # Lengths, tags and what tells nothing are as they were, for stock decoders, too.
        self.assertEqual([data for _, _, data in recording.management], [
            b"\x04\0\2\6" + found[0] + bytes.fromhex("940105"),
            b"\x06\x12\6" + found[0],
            b"\x05\0\x08\6" + found[0],
        ])

    def test_keys_and_identities_of_the_air_go(self):
        eap = b"\x02\x01\x00\x15\x01alice@example.org"
        transfer = bytes([18, 7, 28, len(eap)]) + eap
        reply = bytes([24, 8, 10, 1, 5, 12, 2, 0, 1, 13, 24, 8, 16]) + bytes(range(16, 32)) + \
            bytes([9, 4, 0, 0, 14, 16]) + bytes([29, 8]) + b"ABCDEFGH"
        # The last digest of a message whose layout is its own.
        leave = bytes(9) + bytes([141, 13]) + bytes(range(1, 14))
        writer = Writer()
        for code, body in ((9, transfer), (10, reply), (59, leave)):
            writer.message(bytes.fromhex("15000100 01 00000000") + struct.pack("<IiIB", code,
                           len(body), 1, 0) + body)
        recording = self.scrub(writer.bytes())
        bodies = [data[1:] for _, _, data in recording.management]
        self.assertEqual(bodies[0][:4], transfer[:4])
        self.assertNotIn(b"alice", bodies[0])
        self.assertEqual((bodies[1][:13], bodies[1][29:37]), (reply[:13], reply[29:37]))
        self.assertNotEqual(bodies[1][13:29], reply[13:29])
        self.assertNotEqual(bodies[1][37:], reply[37:])
        self.assertEqual(bodies[2][:11], leave[:11])
        self.assertNotEqual(bodies[2][11:], leave[11:])
        self.assertEqual([len(body) for body in bodies], [len(transfer), len(reply), len(leave)])

    def test_paths_and_the_host_go(self):
        origin = (b"client=/home/alice/bin/TarvelWiMAXApp\nclient-size=7\n"
                  b"library=/home/alice/lib/libqor020.so\nhost=alices-box\nmachine=x86_64\n")
        writer = Writer()
        writer.events.clear()
        writer.add("session", data=origin)
        recording = self.scrub(writer.bytes())
        found = recording.origin()
        home = re.fullmatch(r"(/\w{4}/\w{5})/(\w{3})/TarvelWiMAXApp", found["client"])
        self.assertTrue(found["library"].startswith(home[1] + "/"), found)
        self.assertTrue(found["library"].endswith("/libqor020.so"), found)
        self.assertNotIn(b"alice", (self.top / "copy.pcapng").read_bytes())
        self.assertEqual((found["client-size"], found["machine"]), ("7", "x86_64"))
        self.assertEqual(len(found["host"]), len("alices-box"))
        self.assertEqual(recording.section[2], b"x86_64")

    def test_only_the_owner_can_read_the_copy(self):
        self.scrub(small())
        mode = (self.top / "copy.pcapng").stat().st_mode
        self.assertEqual(stat.S_IMODE(mode), 0o600)

    def test_a_copy_is_as_good_as_the_recording(self):
        self.scrub(small())
        text = self.monitor(recording=(self.top / "copy.pcapng").read_bytes())
        self.assertEqual(text, SMALL_TEXT)

    def test_another_time_another_replacement(self):
        message = bytes.fromhex("ffff0100 01020304")
        first, second = (told(0, self.scrub(one_message(message))) for _ in range(2))
        self.assertNotEqual(first, second)

    def test_of_a_damaged_recording_what_is_whole(self):
        data = small()
        copy = self.top / "copy.pcapng"
        self.file.write_bytes(data[:-1])
        process = subprocess.run([OPTIONS.monitor, "--scrub", copy, self.file], env=environment(),
                                 capture_output=True, check=False)
        self.assertEqual(process.returncode, 1)
        self.assertEqual(process.stderr.count(b"\n"), 1)
        self.assertEqual(len(Capture(copy).events), 20)

    def test_the_recording_itself_is_not_written_over(self):
        data = small()
        self.file.write_bytes(data)
        process = subprocess.run([OPTIONS.monitor, "--scrub", self.file, self.file],
                                 env=environment(), capture_output=True, check=False)
        self.assertEqual(process.returncode, 2)
        self.assertEqual(self.file.read_bytes(), data)

    def test_a_copy_that_cannot_be_written(self):
        self.file.write_bytes(small())
        for path, status in (("/dev/full", b"No space left on device"),
                             (self.top / "no" / "copy", b"No such file or directory")):
            process = subprocess.run([OPTIONS.monitor, "--scrub", path, self.file],
                                     env=environment(), capture_output=True, check=False)
            self.assertEqual(process.returncode, 1)
            self.assertIn(status, process.stderr)


class Streams(MonitorTest):
    def test_from_standard_input(self):
        process = subprocess.run([OPTIONS.monitor, "-"], env=environment(), input=small(),
                                 capture_output=True, timeout=PATIENCE, check=False)
        self.assertEqual((process.stdout.decode(), process.stderr, process.returncode),
                         (SMALL_TEXT, b"", 0))

    def read_until(self, stream, size):
        """So many bytes, or what comes in time."""
        found = b""
        deadline = time.monotonic() + PATIENCE
        while len(found) < size and select.select([stream], [], [], deadline - time.monotonic())[0]:
            part = os.read(stream.fileno(), size - len(found))
            if not part:
                break
            found += part
        return found

    def test_a_pipe_is_shown_as_far_as_it_has_come(self):
        data = small()
        half = data.index(DL_MAP) - 64
        shown = SMALL_TEXT[: SMALL_TEXT.index("< 2023-11-14 22:13:21.750010000 #10")].encode()
        with subprocess.Popen([OPTIONS.monitor, "-"], env=environment(), stdin=subprocess.PIPE,
                              stdout=subprocess.PIPE) as process:
            process.stdin.write(data[:half])
            process.stdin.flush()
            self.assertEqual(self.read_until(process.stdout, len(shown)), shown)
            process.stdin.write(data[half:])
            process.stdin.close()
            self.assertEqual(process.stdout.read().decode(), SMALL_TEXT[len(shown) :])
            self.assertEqual(process.wait(PATIENCE), 0)

    def test_a_file_that_grows_is_followed(self):
        data = small()
        half = data.index(DL_MAP) + 5
        shown = SMALL_TEXT[: SMALL_TEXT.index("< 2023-11-14 22:13:21.750010000 #10")].encode()
        self.file.write_bytes(data[:half])
        with subprocess.Popen([OPTIONS.monitor, "--follow", self.file], env=environment(),
                              stdout=subprocess.PIPE) as process:
            self.assertEqual(self.read_until(process.stdout, len(shown)), shown)
            with self.file.open("ab") as file:
                file.write(data[half:])
            rest = SMALL_TEXT[len(shown) :].encode()
            self.assertEqual(self.read_until(process.stdout, len(rest)), rest)
            process.send_signal(signal.SIGINT)
            self.assertEqual(process.stdout.read(), b"")
            self.assertEqual(process.wait(PATIENCE), 130)

    def wait_until_read(self, process):
        """Until it has read the whole file and waits for more."""
        deadline = time.monotonic() + PATIENCE
        size = self.file.stat().st_size
        place = pathlib.Path(f"/proc/{process.pid}")
        resting = 0
        while resting < 3:
            self.assertLess(time.monotonic(), deadline)
            time.sleep(0.05)
            with contextlib.suppress(FileNotFoundError):  # while it closes one
                reached = any(f"pos:\t{size}\n" in info.read_text()
                              for info in (place / "fdinfo").iterdir())
                asleep = "State:\tS" in (place / "status").read_text()
                resting = resting + 1 if reached and asleep else 0

    def test_a_summary_is_shown_when_following_ends(self):
        self.file.write_bytes(small())
        with subprocess.Popen([OPTIONS.monitor, "--follow", "--summary", self.file],
                              env=environment(), stdout=subprocess.PIPE) as process:
            self.wait_until_read(process)
            process.send_signal(signal.SIGTERM)
            self.assertIn(b"sync_status 2/1", process.stdout.read())
            self.assertEqual(process.wait(PATIENCE), 143)

    def test_an_output_that_is_full(self):
        self.file.write_bytes(small())
        with open("/dev/full", "wb") as full:
            process = subprocess.run([OPTIONS.monitor, self.file], env=environment(), stdout=full,
                                     stderr=subprocess.PIPE, check=False)
        self.assertEqual((process.stderr, process.returncode), (
            b"TarvelWiMAXMonitor: standard output: No space left on device\n", 1))


class Terminal(MonitorTest):
    def on_terminal(self, command, streams, more=None):
        """What comes on a terminal that takes the place of these streams, and on the others."""
        ours, theirs = pty.openpty()
        given = {name: theirs if name in streams else subprocess.DEVNULL
                 for name in ("stdout", "stderr")}
        with subprocess.Popen(command, env=environment(**(more or {"TERM": "xterm"})),
                              **given) as process:
            os.close(theirs)
            found = b""
            while True:
                try:
                    part = os.read(ours, 65536)
                except OSError:  # nobody has it open any more
                    break
                found += part
            self.assertEqual(process.wait(PATIENCE), 0)
        os.close(ours)
        return found.decode().replace("\r\n", "\n")

    def test_colours(self):
        self.file.write_bytes(small())
        text = self.on_terminal([OPTIONS.monitor, self.file], ["stdout"])
        self.assertIn("\x1b[1;32m> 2023-11-14 22:13:21.000000000 #6 sync_up 2/1, 68 bytes"
                      "\x1b[0m\n", text)
        self.assertIn("\x1b[1;34m< 2023-11-14 22:13:21.750010000 #13 statistics_request 17/1\x1b[0m"
                      " (#12)\x1b[1;31m, result -76\x1b[0m, took 0.000 ms\n", text)
        self.assertEqual(re.sub("\x1b\\[[0-9;]*m", "", text), SMALL_TEXT)

    def test_no_colours_where_they_are_not_wanted(self):
        self.file.write_bytes(small())
        for more in ({"TERM": "dumb"}, {"TERM": "xterm", "NO_COLOR": "1"}):
            text = self.on_terminal([OPTIONS.monitor, self.file], ["stdout"], more)
            self.assertEqual(text, SMALL_TEXT)

    def test_a_bar_for_long_files_only(self):
        long = Writer()
        for _ in range(2000):
            long.message(bytes.fromhex("1900 0100") + b"\1" * 10240, done=False)
        self.file.write_bytes(long.bytes())
        text = self.on_terminal([OPTIONS.monitor, self.file], ["stderr"])
        self.assertRegex(text, r"\r\[#+ +\] +\d+ %")
        self.assertTrue(text.endswith("\r\x1b[K"), text[-20:])
        self.file.write_bytes(small())
        self.assertEqual(self.on_terminal([OPTIONS.monitor, self.file], ["stderr"]), "")

    def test_no_bar_in_the_text(self):
        long = Writer()
        for _ in range(2000):
            long.message(bytes.fromhex("1900 0100") + b"\1" * 10240, done=False)
        self.file.write_bytes(long.bytes())
        text = self.on_terminal([OPTIONS.monitor, "--type", "2", self.file], ["stdout", "stderr"])
        self.assertEqual(text, "")


class Damage(MonitorTest):
    FORMS = ([], ["--fields", "--raw"], ["--json", "--raw"], ["--summary"])

    def test_what_is_whole_is_shown(self):
        data = small()
        cut = data.index(DL_MAP) + 10
        self.file.write_bytes(data[:cut])
        process = subprocess.run([OPTIONS.monitor, self.file], env=environment(),
                                 capture_output=True, check=False)
        shown = SMALL_TEXT[: SMALL_TEXT.index("< 2023-11-14 22:13:21.750010000 #10")]
        self.assertEqual((process.stdout.decode(), process.returncode), (shown, 1))
        self.assertRegex(process.stderr.decode(), r"^TarvelWiMAXMonitor: \S+: byte \d+: .*\n$")

    def test_foreign_files(self):
        for data, text in ((b"root:x:0:0\n" * 9, "byte 0: unknown file format"),
                           (file_head(), "byte 60: no event of a session")):
            for form in self.FORMS:
                self.monitor(*form[:1], recording=data, status=1, error=self.damage(text))

    def test_files_that_are_not_there(self):
        self.monitor(status=1, error=self.damage("cannot be opened: No such file or directory"))

    def test_any_bytes_at_all(self):
        dice = random.Random(3)
        whole = small()
        for _ in range(40):
            data = bytearray(whole)
            for _ in range(dice.randrange(1, 20)):
                data[dice.randrange(60, len(data))] = dice.choice((0, 1, 255, dice.randrange(256)))
            self.file.write_bytes(data)
            for form in (*self.FORMS, ["--scrub", self.top / "copy"]):
                process = subprocess.run([OPTIONS.monitor, *form, self.file], env=environment(),
                                         capture_output=True, timeout=PATIENCE, check=False)
                self.assertIn(process.returncode, (0, 1), process.stderr)
                self.assertEqual(process.stderr.count(b"\n"), process.returncode, process.stderr)

    def test_events_of_any_content(self):
        dice = random.Random(4)
        writer = Writer()
        for event in Capture(small()).events[1:] * 40:
            data = bytes(dice.choice((0, 0, 1, 2, 255, dice.randrange(256)))
                         for _ in range(dice.choice((0, 3, 4, 60, 10244))))
            if dice.random() < 0.5:
                data = event.data[:4] + data
            writer.add(event.kind, data=data, length=dice.choice((len(data), 0, 2**32 - 1)),
                       belongs_to=dice.choice((0, event.belongs_to, 2**32 - 1)),
                       flags=dice.randrange(4), word=dice.randrange(2**32),
                       duration=dice.choice((0, 2**64 - 1)), result=-dice.randrange(2**31))
        for form in self.FORMS[:2] + self.FORMS[3:]:
            self.monitor(*form, recording=writer.bytes())
        self.assertEqual(len(self.objects("--raw", recording=writer.bytes())), len(writer.events))
        self.monitor("--scrub", self.top / "copy", recording=writer.bytes())
        self.assertEqual(len(Capture(self.top / "copy").events), len(writer.events))


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--monitor", required=True,
                        type=lambda path: pathlib.Path(path).resolve())
    parser.add_argument("tests", nargs="*")
    parser.parse_args(namespace=OPTIONS)
    for number in (signal.SIGINT, signal.SIGTERM):
        signal.signal(number, signal.SIG_DFL)
    unittest.main(argv=[sys.argv[0], *OPTIONS.tests])


if __name__ == "__main__":
    main()
