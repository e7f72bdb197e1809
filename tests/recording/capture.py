"""Reads and writes recorded sessions, independently of the programs under test: what a file holds is
taken apart by the description in docs/recording.md and nothing else."""

import dataclasses
import pathlib
import struct

SECTION_HEADER, INTERFACE, PACKET = 0x0A0D0D0A, 1, 6
OURS = b"qor020\0\0"
MANAGEMENT = b"wmx_mac_mgmt_msg_decoder"
MAPS = b"wimax_pdu_burst_handler\0"  # compressed ones, which have no type
HEADER = struct.Struct("<BBHIIiQIII")

KINDS = (
    "session open open-result register register-result send send-result message message-done read "
    "read-result write write-result close close-result"
).split()
CALLS = ("open", "register", "send", "read", "write", "close")
RECEIVED = ("message",) + tuple(f"{call}-result" for call in CALLS)
NULL, MORE = 1, 2


class Damage(Exception):
    """The file is not what it should be."""


@dataclasses.dataclass
class Event:
    kind: str
    flags: int = 0
    number: int = 0
    belongs_to: int = 0
    result: int = 0
    duration: int = 0
    handle: int = 0
    word: int = 0
    length: int = 0
    data: bytes = b""
    time: int = 0

    def without_times(self):
        return dataclasses.replace(self, time=0, duration=0)


def padded(data):
    return data + bytes(-len(data) % 4)


def options(data):
    """The options of a block, by code."""
    found = {}
    while data:
        code, length = struct.unpack_from("<HH", data)
        if code == 0:
            break
        found[code] = data[4 : 4 + length]
        data = data[4 + length + -length % 4 :]
    return found


class Capture:
    """A file, read: its head, its events, and what it holds for stock decoders."""

    def __init__(self, source):
        data = source if isinstance(source, bytes) else pathlib.Path(source).read_bytes()
        self.events = []
        self.management = []  # (number of the message's event, direction, bytes)
        self.section = None
        self.interface = None
        offset = 0
        while offset < len(data):
            if len(data) - offset < 12:
                raise Damage(f"byte {offset}: half a block")
            kind, size = struct.unpack_from("<II", data, offset)
            block = data[offset : offset + size]
            if size % 4 or len(block) != size or struct.unpack_from("<I", block, size - 4)[0] != size:
                raise Damage(f"byte {offset}: half a block")
            self.take_block(kind, block[8:-4], offset)
            offset += size

    def take_block(self, kind, block, offset):
        if kind == SECTION_HEADER:
            if block[:16] != bytes.fromhex("4d3c2b1a 0100 0000 ffffffffffffffff"):
                raise Damage("another section header")
            self.section = options(block[16:])
        elif kind == INTERFACE:
            self.interface = (*struct.unpack_from("<HHI", block), options(block[8:]))
        elif kind == PACKET:
            _, high, low, captured, length = struct.unpack_from("<IIIII", block)
            if captured != length or len(block) != 20 + length + -length % 4:
                raise Damage(f"byte {offset}: a packet of other lengths")
            self.take_packet(high << 32 | low, block[20 : 20 + length], offset)
        else:
            raise Damage(f"byte {offset}: a block of type {kind}")

    def take_packet(self, time, data, offset):
        tags = {}
        while True:
            tag, length = struct.unpack_from(">HH", data)
            value, data = data[4 : 4 + length], data[4 + length :]
            if tag == 0:
                break
            tags[tag] = value
        if set(tags) != {12, 35}:
            raise Damage(f"byte {offset}: tags {sorted(tags)}")
        direction = int.from_bytes(tags[35], "big")
        if tags[12] in (MANAGEMENT, MAPS):
            self.management.append((self.events[-1].number, direction, data))
            return
        if tags[12] != OURS:
            raise Damage(f"byte {offset}: decoder {tags[12]}")
        version, kind, *fields = HEADER.unpack_from(data)
        if version != 1 or not 1 <= kind <= len(KINDS):
            raise Damage(f"byte {offset}: version {version}, kind {kind}")
        event = Event(KINDS[kind - 1], *fields, data[HEADER.size :], time)
        if direction != int(event.kind in RECEIVED):
            raise Damage(f"byte {offset}: {event.kind} with direction {direction}")
        if event.number != len(self.events) + 1:
            raise Damage(f"byte {offset}: number {event.number} behind {len(self.events)}")
        self.events.append(event)

    def of(self, *kinds):
        return [event for event in self.events if event.kind in kinds]

    def origin(self):
        """What the first event says about client, library and host."""
        lines = self.events[0].data.decode().splitlines()
        return dict(line.split("=", 1) for line in lines)

    def check(self):
        """What holds for every recording, whatever happened in it."""
        if self.interface != (252, 0, 262144, {9: b"\x09"}):
            raise Damage(f"interface {self.interface}")
        if not self.events or self.events[0].kind != "session":
            raise Damage("no session at the beginning")
        open_calls = {}
        times = [event.time for event in self.events]
        if times != sorted(times):
            raise Damage("times that go back")
        for event in self.events[1:]:
            if event.kind in CALLS or event.kind == "message":
                open_calls[event.number] = event.kind
            elif event.flags & MORE:
                if event.belongs_to not in open_calls:
                    raise Damage(f"event {event.number} belongs to none")
            else:
                begun = open_calls.pop(event.belongs_to, None)
                if event.kind != ("message-done" if begun == "message" else f"{begun}-result"):
                    raise Damage(f"event {event.number}, {event.kind}, ends {begun}")
        return self


def block(kind, content):
    size = len(content) + 12
    return struct.pack("<II", kind, size) + content + struct.pack("<I", size)


def packet_block(time, decoder, received, data):
    tags = struct.pack(f">HH{len(decoder)}sHHIHH", 12, len(decoder), decoder, 35, 4, received, 0, 0)
    data = tags + data
    head = struct.pack("<IIIII", 0, time >> 32, time & 0xFFFFFFFF, len(data), len(data))
    return block(PACKET, head + padded(data))


def packet(event, version=1):
    kind = KINDS.index(event.kind) + 1
    data = HEADER.pack(version, kind, event.flags, event.number, event.belongs_to, event.result,
                       event.duration, event.handle, event.word, event.length) + event.data
    return packet_block(event.time, OURS, int(event.kind in RECEIVED), data)


def management_packet(time, received, data):
    return packet_block(time, MANAGEMENT, received, data)


def section(texts):
    """The options of a section header, by code."""
    return b"".join(struct.pack("<HH", code, len(text)) + padded(text.encode())
                    for code, text in texts.items()) + bytes(4)


def file_head(section=b""):
    magic = bytes.fromhex("4d3c2b1a 0100 0000 ffffffffffffffff")
    interface = struct.pack("<HHIHHB3xHH", 252, 0, 262144, 9, 1, 9, 0, 0)
    return block(SECTION_HEADER, magic + section) + block(INTERFACE, interface)


class Writer:
    """Puts a recording together: calls with their results and messages, each a while after the last."""

    def __init__(self):
        self.events = []
        self.time = 1_700_000_000_000_000_000
        self.add("session", data=b"client=none\n")

    def add(self, kind, after=0.0, **fields):
        self.time += int(after * 1e9)
        event = Event(kind, number=len(self.events) + 1, time=self.time, **fields)
        self.events.append(event)
        return event.number

    def call(self, kind, result=0, after=0.0, lasts=0.0, back=b"", messages=(), **fields):
        """A call with its result; the messages come while it lasts."""
        number = self.add(kind, after, **fields)
        for message in messages:
            self.message(message)
        self.add(f"{kind}-result", lasts, belongs_to=number, result=result,
                 duration=int(lasts * 1e9), data=back)

    def begin(self):
        self.call("open", 1)
        self.call("register", handle=1)

    def send(self, data, **fields):
        self.call("send", handle=1, length=len(data), data=data, **fields)

    def message(self, data, after=0.0, done=True, **fields):
        number = self.add("message", after, length=len(data), data=data, **fields)
        if done:
            self.add("message-done", belongs_to=number)

    def end(self, after=0.0):
        self.call("close", after=after)
        return self

    def bytes(self):
        return file_head() + b"".join(packet(event) for event in self.events)
