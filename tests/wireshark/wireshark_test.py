#!/usr/bin/env python3
"""What stock tshark shows of recordings with wireshark/qor020.lua. Every start of tshark takes a
second: a test starts it once, for everything that it looks at."""

import sys

sys.dont_write_bytecode = True  # the sources stay as they are

import argparse
import json
import pathlib
import random
import re
import shlex
import struct
import subprocess
import tempfile
import unittest

HERE = pathlib.Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parent))
from recording import capture  # noqa: E402

ANTENNA_SWITCH = 1631
RECORDINGS = sorted((HERE.parent / "recordings").glob("*.pcapng"))
OPTIONS = argparse.Namespace()

# Where stock decoders see something malformed that is right, or that recordings have wrong on purpose.
STOCK_MARKS = {
    "WiMax RNG-RSP",  # an item of one byte that announces two, in management-trace
    "PKM-REQ/RSP",  # the suites in security capabilities are read two bytes too early
    "WiMax PKM-REQ/RSP (pkm)",  # the same in the messages that have a code of their own, SA TEK
    "WiMax DCD",  # thresholds of one byte are read as numbers of four
}


def tshark(*arguments, dissector=True):
    command = [OPTIONS.tshark, *arguments]
    if dissector:
        command += ["-X", f"lua_script:{OPTIONS.dissector}"]
    done = subprocess.run(command, capture_output=True, timeout=170)
    errors = [line for line in done.stderr.decode().splitlines() if "Running as user" not in line]
    if done.returncode or errors:
        raise AssertionError(f"status {done.returncode}: {errors}")
    return done.stdout.decode(errors="replace")


def read(data, *arguments):
    """What tshark makes of a file with these bytes."""
    with tempfile.TemporaryDirectory(prefix="wireshark.") as directory:
        file = pathlib.Path(directory) / "session.pcapng"
        file.write_bytes(data)
        return tshark("-r", str(file), "-n", *arguments)


def bits(text):
    """Bytes from numbers with their widths, most significant bit first: 8:2 1:1 7:0."""
    digits = ""
    for word in text.split():
        width, value = word.split(":")
        digits += format(int(value, 0), f"0{width}b")
    assert len(digits.lstrip()) % 8 == 0, text
    return int("1" + digits, 2).to_bytes(len(digits) // 8 + 1, "big")[1:]


def air(*messages):
    """A file of management messages."""
    return capture.file_head() + b"".join(
        capture.management_packet(1_700_000_000_000_000_000 + number, 1, message)
        for number, message in enumerate(messages))


def own_layers(text):
    """What the dissector said in JSON, frame by frame; what stands there more than once is a list."""
    frames = (packet["_source"]["layers"] for packet in json.loads(text))
    return [{name: layer for name, layer in frame.items() if name.startswith("qor020")}
            for frame in frames]


def message(type, subtype, *parts):
    return struct.pack("<HH", type, subtype) + b"".join(parts)


def sync_status():
    return message(2, 1, struct.pack("<IBB6sIiiiiIIII", 0, 1, 0, bytes.fromhex("0012c1000001"), 12,
                                     21, -2, -67, 3, 2587500, 10000, 3, 4))


def station():
    return struct.pack("<BB6sIIIiiII", 0, 0, bytes.fromhex("0012c2000002"), 13, 3590500, 7000, -70,
                       20, 5, 6)


def mib(attribute, value, status=0, length=None):
    return struct.pack("<IBII8xIb", attribute, 0, 0, 0,
                       len(value) if length is None else length, status) + (value or bytes(1))


def nsp_discovery():
    name = "Größe \"5\" <b>".encode()
    head = struct.pack("<BI2x6sIIi", 0, 1, bytes(6), 1, 2, 1)
    nsp = struct.pack("<II128s", 77, 200, name)  # longer than there is room for
    return message(1, 4, head, nsp, bytes(9 * 136), struct.pack("<IIIII", 1, 2500000, 5000, 60, 20))


def sleep_mode():
    classes = struct.pack("<BBBBBBHBB2x2H28xBI", 1, 2, 1, 4, 3, 2, 512, 1, 0, 0x1234, 0x2345, 3, 2)
    return struct.pack("<I", 5) + classes + bytes(98 + 49)  # there is room for three


def whole_session():
    """Something of every kind that the dissector shows."""
    writer = capture.Writer()
    writer.begin()
    writer.send(message(2, 1, struct.pack("<III", 2587500, 10000, 12), bytes(52)), after=1,
                messages=[sync_status()], lasts=0.25)
    writer.send(message(1, 3))
    writer.send(message(1, 3), after=0.5)  # asked again: the answer is to this one
    writer.message(message(1, 1, struct.pack("<II", 2, 1), station()), after=0.5)
    writer.message(nsp_discovery())
    writer.send(message(24, 2, struct.pack("<IB21xB", 1633, 0, 0)), after=0.125, result=-5)
    writer.send(message(26, 1, sleep_mode()))
    records = [mib(1633, bytes([1, 2, 9])), mib(1234, bytes([1, 0, 0, 0])), mib(5, b"", -3),
               mib(1467, bytes([255] * 4)), mib(6, b"ab", length=9)]
    writer.message(message(24, 4, struct.pack("<H", len(records)), *records))
    switch = struct.pack("<IIIIiiII", 256, 768, 1, 2, -1000, 8, 0, 1)
    writer.message(message(24, 2, mib(ANTENNA_SWITCH, switch)))
    writer.message(message(21, 1, struct.pack("<BIIiIB", 0, 77, 60, 4, 0xFFFF, 1),
                           bytes.fromhex("08000000")))
    writer.message(message(99, 3, b"abc"))
    writer.message(message(2, 1, bytes(7)))
    writer.message(b"ab", flags=capture.NULL)
    memory = {"word": 0xFF000010, "length": 4}
    number = writer.add("read", **memory)
    writer.add("read-result", belongs_to=number, data=b"\x01\x02\x03\x04", **memory)
    writer.call("write", handle=1, word=0x10, length=2, data=b"\x05\x06", result=-1)
    return writer.end().bytes()


CMAC = bytes([141, 13]) + bits("4:0 4:7 32:5") + bytes(range(8))
AIR_MESSAGES = [
    # RNG-RSP: timing -5, power -1 dB, frequency, status, paging controller, frame, threshold.
    bytes.fromhex("0500 0104fffffffb 0201fc 030400000010 040103 1906010203040506 1a020123 1c02000a")
    + CMAC,
    # DREG-CMD: idle mode, with everything.
    bytes.fromhex("1d05 01050200110123 020150 03060a0b0c0d0e0f 040117 0502000c 3402 0064") + CMAC,
    # DREG-REQ: idle mode, with an unknown item and one that is too long.
    bytes.fromhex("3101 34020100 6301aa 02020001"),
    # MOB_SLP-REQ: one class defined and activated, one deactivated.
    b"\x32" + bits("8:2 1:1 1:1 6:5 6:33 2:0 2:1 2:2 1:1 3:0 8:4 8:2 10:513 3:3 3:2 16:0x1234"
                   " 16:0x2345 1:0 1:0 6:9"),
    # MOB_SLP-RSP: one approved, one refused; padding.
    b"\x33" + bits("8:2 7:9 1:1 1:1 1:1 6:5 6:10 1:1 1:0 2:0 2:1 8:2 8:3 10:16 3:2 1:1 1:1 1:0"
                   " 10:700 2:0 4:1 16:0x1234 7:2 1:0 1:0 1:0 6:6 8:20 4:0"),
    # MOB_TRF-IND: two groups; a list of three.
    b"\x34" + bits("1:0 7:0 32:0x80000001 32:0xff 32:0x1"),
    b"\x34" + bits("1:1 7:3 10:1 10:1023 10:512 2:0") + bytes([1, 2, 3, 4]),
    # MOB_NBR-ADV without BS IDs: FA index, EIRP, frequency, PHY mode, trigger; as little as can be.
    b"\x35" + bits("8:2 24:0x123456 8:7 4:0 4:1 8:2")
    + bits("8:30 8:0x1a 8:3 8:226 8:44 8:1 8:31 4:5 4:6")
    + bytes.fromhex("01060c0400277ac4 03021234 0409 010129 02012e 030105")
    + bits("8:5 8:0 8:45 8:0 8:3 4:1 4:2"),
    # MOB_SCN-REQ: two by index, one by BS ID, which begins inside a byte.
    b"\x36" + bits("8:10 8:20 8:2 8:2 8:9 8:0 3:1 8:4 3:0 8:1 48:0x001122334455 3:0 7:0"),
    # MOB_SCN-RSP: one with rendezvous; refused.
    b"\x37" + bits("8:10 2:1 6:0 8:4 8:3 4:3 1:0 8:20 8:2 3:0 8:1 8:9 8:2 3:2 8:1 8:2 8:3 8:0 5:0"),
    b"\x37" + bits("8:0 2:3 6:0 8:0 8:15"),
    # MOB_BSHO-REQ and MOB_BSHO-RSP: one station with HO ID; rejected.
    b"\x38" + bits("1:1 3:0 4:0 1:1 1:1 6:0 8:1 48:0x001122334455 8:44 8:2 8:0x83 1:1 1:1 1:0 5:0 8:7"
                   " 8:12"),
    b"\x3a" + bits("3:6 5:0"),
    # MOB_MSHO-REQ: CINR and RSSI of one by index and one by BS ID, of the serving one.
    b"\x39" + bits("8:3 8:1 8:9 8:2 8:44 8:0x2e 8:0x9b 1:1 4:5 8:1 48:0x001122334455 8:45 8:0xfe 8:0"
                   " 1:0 4:1 4:0 8:0x2e 8:0x9b 2:0"),
    # MOB_HO-IND to a station; cancelled.
    b"\x3b" + bits("6:0 2:0 2:0 2:2 4:0 48:0x001122334455 8:44") + CMAC,
    b"\x3b" + bits("6:0 2:0 2:1 2:0 4:0 8:0"),
    # MOB_SCN-REP: everything of the serving station, one by BS ID; short BS IDs.
    b"\x3c" + bits("1:1 1:0 3:1 3:0 8:15 4:0 4:0 8:0x2e 8:0x9b 8:0xff 8:3 8:0 8:1 48:0x001122334455"
                   " 8:1 8:2 8:3"),
    b"\x3c" + bits("1:0 1:1 3:0 3:0 8:2 8:0 8:1 24:0xabcdef 8:255"),
    # MOB_PAG-ADV: two groups, one station.
    b"\x3d" + bits("16:2 16:291 16:292 8:1 24:0xabcdef 2:1 6:0"),
]
OUR_CODES = [5, 29, *range(49, 62)]


class Golden(unittest.TestCase):
    maxDiff = None

    def check(self, name, data):
        text = read(data, "-T", "json", "--no-duplicate-keys")
        found = json.dumps(own_layers(text), indent=1, ensure_ascii=False) + "\n"
        golden = HERE / f"{name}.json"
        if OPTIONS.write:
            golden.write_text(found)
        self.assertEqual(found, golden.read_text())

    def test_a_session(self):
        self.check("session", whole_session())

    def test_management_messages(self):
        self.check("management", air(*AIR_MESSAGES))


class Filters(unittest.TestCase):
    def test_each_selects_what_it_should(self):
        wanted = {
            "qor020": 39,
            "qor020.kind == 8": 9,
            "qor020.result < 0": 2,
            "qor020.failed": 2,
            "qor020.wrong_length": 2,
            "qor020.unknown_message": 2,
            "qor020.flags.null == 1": 1,
            "qor020.duration > 0.2": 1,
            "qor020.request_in == 6": 1,
            "qor020.request_in == 12": 1,
            "qor020.answer_in == 7": 1,
            "qor020.missing": 6,
            "qor020.call_in == 6": 1,
            "qor020.result_in == 9": 1,
            "qor020.sync_status": 2,
            "qor020.sync_status.cinr_mean > 20": 1,
            "qor020.sync_status.rssi_mean < -60": 1,
            "qor020.sync_status.bsid == 00:12:c1:00:00:01": 1,
            "qor020.network_search_result.stations.signal_strength == -70": 1,
            'qor020.nsp_discovery.nsps.name contains "5"': 1,
            "qor020.sleep_mode_request.psc_definition.cid == 0x2345": 1,
            "qor020.multiple_mib_get.records.trigger_status.intra_fa == 2": 1,
            "qor020.multiple_mib_get.records.status < 0": 1,
            "qor020.mib_get.antenna_switch.smooth_rssi1 < -62.4": 1,
            "qor020.register_read.address == 0xff000010": 2,
            "qor020.mob_scn_rep": 1,
            "wmx.mgmt": 1,
        }
        # With a second pass a frame knows those behind it, as in the window of Wireshark.
        table = read(whole_session(), "-2", "-q", f"-zio,stat,0,{','.join(wanted)}")
        row = next(line for line in table.splitlines() if "<>" in line and "Interval" not in line)
        frames = [int(cell) for cell in row.split("|")[2:-1:2]]
        self.assertEqual(dict(zip(wanted, frames)), wanted)


class Maps(unittest.TestCase):
    def test_compressed_maps_in_the_trace_are_shown(self):
        maps = bytes.fromhex("d0 2b 04 00 00 14 05 0a 03 1d 02 00 10 00 42 97 05 00 18 78 05 00 00 21 "
                             "c8 12 ff ff c0 00 00 83 0f ff fc 02 00 04 34 de d1 60 3a")
        writer = capture.Writer()
        writer.begin()
        for direction in (0, 1):
            writer.message(message(21, 1, struct.pack("<BIIiIB", direction, 20, 2, 43, 0xFFFF, 0), maps))
        text = read(writer.end().bytes(), "-Y", "wmx.dlmapc.compr", "-T", "fields",
                    "-e", "qor020.traced_message.direction", "-e", "wmx.dlmap.phy_fnum",
                    "-e", "wmx.compress_dlmap_crc.status", "-e", "wmx.ulmap.ie.uiuc")
        self.assertEqual(text, "0\t20\t1\t12,12\n")


class Recordings(unittest.TestCase):
    def test_nothing_goes_wrong_in_any_recording(self):
        text = read(b"".join(file.read_bytes() for file in RECORDINGS), "-V")
        self.assertEqual(len(re.findall("^Frame ", text, re.M)),
                         sum(len(c.events) + len(c.management)
                             for c in map(capture.Capture, RECORDINGS)))
        self.assertNotIn("Lua Error", text)
        self.assertLessEqual(set(re.findall(r"\[Malformed Packet: (.*)\]", text)), STOCK_MARKS)


def damaged(data, dice):
    """The same, cut off, longer, or with other bytes."""
    way = dice.randrange(4)
    if way == 0:
        return data[: dice.randrange(len(data) + 1)]
    if way == 1:
        return data + dice.randbytes(dice.randrange(1, 40))
    data = bytearray(data)
    for _ in range(dice.randrange(1, 6)):
        if data:
            data[dice.randrange(len(data))] = dice.choice((0, 1, 0x7F, 0x80, 0xFF, dice.randrange(256)))
    return bytes(data)


def hostile_events(dice):
    """Packets of all recordings with their events damaged, and such as nobody writes."""
    number = 0
    for recording in map(capture.Capture, RECORDINGS):
        for event in recording.events:
            number += 1
            if way := dice.randrange(3):
                event.data = damaged(event.data, dice)
            if way == 2:
                event.length = dice.choice((0, 3, len(event.data), 0xFFFFFFFF))
            event.number = dice.choice((0, number, 0xFFFFFFFF))
            event.duration = dice.choice((0, 1, 1 << 63, (1 << 64) - 1))
            yield capture.packet(event)
    for length in range(48):
        yield capture.packet_block(1, capture.OURS, 1, dice.randbytes(length))


def event_in(block):
    """What stands behind the head of a packet's block and the tags."""
    length = struct.unpack_from("<I", block, 20)[0]
    return block[52 : 28 + length]


def hostile_air(dice):
    for _ in range(12):
        for good in AIR_MESSAGES:
            yield good[:1] + damaged(good[1:], dice)
    for code in OUR_CODES:
        for length in (0, 1, 2, 3, 5, 8, 13, 21, 200):
            yield bytes([code]) + dice.randbytes(length)
            yield bytes([code]) + b"\xff" * length


class Hostile(unittest.TestCase):
    def test_damaged_events_raise_no_error(self):
        dice = random.Random(1)
        packets = list(hostile_events(dice))
        text = read(capture.file_head() + b"".join(packets), "-V")
        self.assertEqual(len(re.findall("^Frame ", text, re.M)), len(packets))
        self.assertNotIn("Lua Error", text)
        self.assertNotIn("[Malformed Packet: QOR020", text)

    def test_damaged_management_messages_raise_no_error(self):
        messages = list(hostile_air(random.Random(2)))
        text = read(air(*messages), "-V")
        self.assertEqual(len(re.findall("^Frame ", text, re.M)), len(messages))
        self.assertNotIn("Lua Error", text)
        # The one that a stock decoder has a look at, too.
        self.assertLessEqual(set(re.findall(r"\[Malformed Packet: (.*)\]", text)), {"WiMax RNG-RSP"})


class Versions(unittest.TestCase):
    """Without tshark, which brings one version of Lua."""

    def setUp(self):
        if not OPTIONS.lua:
            self.skipTest("there is no Lua")
        session = [capture.packet(event) for event in capture.Capture(whole_session()).events]
        lines = [f"qor020 {event_in(block).hex()}"
                 for block in (*session, *hostile_events(random.Random(3)))]
        lines += [f"wmx_mac_mgmt_msg_decoder {message.hex()}"
                  for message in (*AIR_MESSAGES, *hostile_air(random.Random(4)))]
        packets = tempfile.NamedTemporaryFile("w", prefix="wireshark.")
        self.addCleanup(packets.close)
        packets.write("\n".join(lines) + "\n")
        packets.flush()
        self.packets, self.count = packets.name, len(lines)

    def run_on(self, lua, numbers):
        done = subprocess.run([lua, HERE / "stand_in.lua", OPTIONS.dissector, self.packets],
                              capture_output=True, timeout=170, env={"NUMBERS": numbers})
        self.assertEqual((done.returncode, done.stderr), (0, b""), f"{lua}, {numbers}")
        return done.stdout

    def test_every_version_of_lua_shows_the_same(self):
        first, *others = [self.run_on(lua, numbers)
                          for lua in OPTIONS.lua for numbers in ("float", "own")]
        self.assertEqual(len(re.findall(b"^frame ", first, re.M)), self.count)
        self.assertIn(b"qor020.sync_status.cinr_mean 21\n", first)
        for other in others:
            self.assertTrue(first == other)


class Names(unittest.TestCase):
    def test_every_name_of_the_catalogue_can_be_filtered_by(self):
        wanted = subprocess.check_output([*OPTIONS.emulator, OPTIONS.writer, "--names"], text=True)
        lines = [line.split("\t") for line in tshark("-G", "fields").splitlines()]
        fields = [line[2] for line in lines if line[0] == "F" and line[2].startswith("qor020.")]
        self.assertEqual(set(wanted.split()) - set(fields), set())
        self.assertEqual(len(fields), len(set(fields)))


if __name__ == "__main__":
    parser = argparse.ArgumentParser()
    for name in ("tshark", "dissector", "writer"):
        parser.add_argument(f"--{name}", required=True)
    parser.add_argument("--emulator", type=shlex.split, default=[])
    parser.add_argument("--lua", action="append", help="a Lua to run the dissector on")
    parser.add_argument("--write", action="store_true", help="the golden files are written")
    parser.add_argument("tests", nargs="*")
    parser.parse_args(namespace=OPTIONS)
    unittest.main(argv=[sys.argv[0], *OPTIONS.tests])
