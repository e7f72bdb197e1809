#!/usr/bin/env python3
"""Writes the seeds of the fuzz targets into corpus/. To add one, add a line and run this again."""

import pathlib
import struct

CORPUS = pathlib.Path(__file__).parent / "corpus"

# Payloads that begin with a plausible count, status or length, for every type and subtype.
PAYLOADS = {
    "zeroes": bytes(64),
    "count": struct.pack("<II", 2, 1) + bytes(range(1, 121)),
    "wild-count": b"\xff" * 64,
}
LONG = bytes(range(256)) * 8
LONG_TYPES = (1, 6, 7, 10, 17, 24, 28)
TYPES = {
    1: (1, 4, 6), 2: (1, 2), 4: (1, 2, 3, 5, 6, 8, 10), 6: (1, 2, 3, 4), 7: (1, 2, 3),
    8: range(1, 9), 10: (1, 3, 4), 11: (1,), 12: (2,), 13: (5, 6), 16: (1, 2, 3), 17: (1, 2),
    19: (1, 2, 3, 4, 7), 21: (1, 3), 22: (1, 2, 3, 4), 23: (1,), 24: (1, 2, 3, 4), 25: (1,),
    26: (1, 2), 27: (2,), 28: (1, 2, 5), 29: (1, 2, 3), 30: (1, 2, 3, 4, 5), 31: (2, 3),
    34: (1, 2, 3, 4), 36: (2, 3), 257: (1,),
}  # fmt: skip

CONSOLE = {
    "leave": b"-1\n",
    "invalid": b"abc\n21\n0\n999\n-1\n",
    "reopen": b"100\n200\n24\n-1\n",
    "search": b"1\n1\n1\n2500\n5\n2690\n1\n10000\n0\n10\n1\n-1\n",
    "sync-up": b"1\n2\n3576.5\n1\n17\n10000\n-1\n",
    "entry": b"1\n3\n1\n4\n1\n13\n1\n4660\n-1\n",
    "shutdown": b"1\n7\n1\n8\n1\n11\n-1\n",
    "options": b"1\n12\n1\n1\n1\n-1\n",
    "low-power-scan": b"1\n14\n5\n-1\n",
    "idle": b"16\n1\n16\n2\n16\n3\n30\n16\n4\n-1\n",
    "mib-get": b"11\n1\n1142\n1\n2\n3\n2\n1612\n1617\n1\n5\n-1\n-1\n",
    "mib-set": b"11\n2\n23\n4\n1\n7\n2\n1\n6\n1-2-3-4-5-6\n2\n509\n1\n2\n2\n999\n2\n507\n-1\n-1\n",
    "mib-multiple-set": b"11\n4\n3\n5\n2\n7\n900\n804\n1\n6\n10000\n1\n4\n0\n-1\n-1\n",
    "flow-add": b"6\n1\n7\n1\n3\n1\n0\n1\n20\n1\n256000\n128000\n40\n6\n9\n11\n1\n1\n2\na\nff\n1\n33\n"
    b"1\n-1\n0\n1\n4\n1\n2\n3\n4\n0\n-1\n",
    "flow-change-and-delete": b"6\n2\n0\n7\n1\n300\n0\n1\n5\n0\n0\n1\n4\n40\n256000\n3\n0\n1\n0\n1\n9\n0\n0\n"
    b"0\n0\n0\n0\n0\n6\n3\n0\n-1\n",
    "flow-grant": b"6\n4\n7\n-1\n1000\n3\n-1\n",
    "sleep-mode": b"15\n0\n15\n1\n2\n3\n255\n1\n0\n1\n9\n1\n2\n3\n4\n5\n6\n-1\n",
    "antennas": b"17\n1\n2\n2\n3\n3\n4\n1\n5\n17\n2\n2\n1\n2\n3\n4\n5\n6\n"
    b"17\n3\n1\n1\n1\n2\n3\n1\n4\n5\n6\n7\n8\n-1\n",
    "download": b"3\n2\n3\n3\n3\n1\n4\n1\n100\n2\n9\n-1\n",
    "device-configuration": b"12\n00-1a-2b-3c-4d-5e\n12\n-1-00\n13\n1\n2\n13\n2\n5\n-90\n-1\n",
    "failing-device": b"1\n7\n1\n1\n-1\n\x00\xff",
    **{f"choice-{choice}": f"{choice}\n1\n1\n1\n1\n1\n1\n1\n-1\n".encode() for choice in range(1, 21)},
}


def framed(*messages):
    return b"".join(struct.pack("<H", len(message)) + message for message in messages)


def message(kind, subtype, payload):
    return struct.pack("<HH", kind, subtype) + payload


def main():
    for kind, subtypes in TYPES.items():
        for name, payload in PAYLOADS.items():
            seed = framed(*(message(kind, subtype, payload) for subtype in subtypes))
            write("callback", f"type-{kind}-{name}", seed)
    for kind in LONG_TYPES:
        write("callback", f"type-{kind}-long", framed(message(kind, TYPES[kind][0], LONG)))
    write("callback", "short", framed(b"", b"\x01", b"\x01\x00", b"\x13\x00\x07"))
    for name, seed in CONSOLE.items():
        write("console", name, seed)


def write(target, name, seed):
    directory = CORPUS / target
    directory.mkdir(parents=True, exist_ok=True)
    (directory / name).write_bytes(seed)


if __name__ == "__main__":
    main()
