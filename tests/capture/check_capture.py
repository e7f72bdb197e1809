#!/usr/bin/env python3
"""Has tshark read the capture of simulated management messages and compares what it
finds with what the modem says that it sent."""

import argparse
import pathlib
import shlex
import subprocess
import sys
import tempfile

# As tshark names them, by code.
NAMES = {
    0: "UCD", 1: "DCD", 2: "DL-MAP", 3: "UL-MAP", 4: "RNG-REQ", 5: "RNG-RSP", 6: "REG-REQ",
    7: "REG-RSP", 9: "PKM-REQ", 10: "PKM-RSP", 11: "DSA-REQ", 12: "DSA-RSP", 13: "DSA-ACK",
    14: "DSC-REQ", 15: "DSC-RSP", 16: "DSC-ACK", 17: "DSD-REQ", 18: "DSD-RSP", 25: "RES-CMD",
    26: "SBC-REQ", 27: "SBC-RSP", 29: "DREG-CMD", 30: "DSX-RVD", 36: "REP-REQ", 37: "REP-RSP",
    49: "DREG-REQ", 50: "MOB-SLP-REQ", 51: "MOB-SLP-RSP", 52: "MOB-TRF-IND", 53: "MOB-NBR-ADV",
    54: "MOB-SCN-REQ", 55: "MOB-SCN-RSP", 56: "MOB-BSHO-REQ", 57: "MOB-MSHO-REQ",
    58: "MOB-BSHO-RSP", 59: "MOB-HO-IND", 60: "MOB-SCN-REP", 61: "MOB-PAG-ADV",
}

# Direction of each code: 0 from the base station, 1 to it. Service flows and their
# answers go either way.
DOWN = {0, 1, 2, 3, 5, 7, 10, 25, 27, 29, 30, 36, 51, 52, 53, 55, 56, 58, 61}
UP = {4, 6, 9, 26, 37, 49, 50, 54, 57, 59, 60}

# Where messages travel: on well-known CIDs, basic or primary ones.
BROADCAST = {2: 0xFFFF, 3: 0xFFFF, 0: 0xFFFD, 1: 0xFFFD, 52: 0xFFFF, 53: 0xFFFF, 61: 0xFFFF,
             4: 0, 5: 0}
BASIC = {25, 26, 27, 29, 36, 37, 49, 50, 51, 54, 55, 56, 57, 58, 59}
PRIMARY = {6, 7, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 30, 60}

PKM_REQ = 9
SA_TEK_REQUEST = 21  # the first byte of the body

# What a network entry consists of behind the ranging, in its order.
ENTRY = [26, 27, 9, 10, 9, 10, 9, 10, 10, 9, 10, 6, 7, 9, 10]


def fail(text):
    print(text)
    sys.exit(1)


def tshark(program, capture, *arguments):
    done = subprocess.run([program, "-r", str(capture), "-n", *arguments], check=True,
                          stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
    return done.stdout


def is_misread(record):
    """tshark hands on the list of suites in the security capabilities two bytes too early."""
    return record[2] == PKM_REQ and record[5] == SA_TEK_REQUEST


def is_compressed(record):
    return record[2] == 2 and record[5] >> 5 == 6


def check_compressed_maps(sent, rows):
    """Each has the frame of its record, both halves of the station's ID and a right checksum; together
    they have everything that maps are there for."""
    numbers = [number for number, record in enumerate(sent, 1) if is_compressed(record)]
    read = {int(row[0]): row[1:] for row in (line.split("\t") for line in rows)}
    if len(numbers) < 500 or sorted(read) != numbers:
        fail(f"{len(numbers)} compressed maps sent, {len(read)} read")
    kinds = set()
    for number, (frame, operator, sector, status, uiucs) in read.items():
        if (int(frame), int(operator), int(sector), status) != (sent[number - 1][0], 10, 3, "1"):
            fail(f"message {number}: compressed maps of frame {frame}, {operator}, {sector}, {status}")
        kinds |= {"grant" if int(one) < 11 else one for one in uiucs.split(",")}
    if kinds != {"grant", "12", "14"}:
        fail(f"compressed maps have {sorted(kinds)}")


def check_record(number, frame, direction, code, cid, cmac):
    where = f"message {number}, {NAMES.get(code, code)}"
    if code not in NAMES:
        fail(f"{where}: unknown code")
    if (direction == 1 and code in DOWN) or (direction == 0 and code in UP):
        fail(f"{where}: wrong direction {direction}")
    if code in BROADCAST and cid != BROADCAST[code]:
        fail(f"{where}: CID {cid}")
    if code in BASIC and not 1 <= cid <= 511:
        fail(f"{where}: CID {cid} is no basic one")
    if code in PRIMARY and not 512 <= cid <= 1022:
        fail(f"{where}: CID {cid} is no primary one")
    if frame >= 1 << 24 or cmac not in (0, 1):
        fail(f"{where}: frame {frame}, CMAC result {cmac}")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--writer", required=True)
    parser.add_argument("--tshark", required=True)
    parser.add_argument("--emulator", type=shlex.split, default=[], help="what runs the writer")
    arguments = parser.parse_args()
    with tempfile.TemporaryDirectory() as directory:
        capture = pathlib.Path(directory) / "trace.pcap"
        writer = [*arguments.emulator, arguments.writer, str(capture)]
        listing = subprocess.run(writer, check=True, stdout=subprocess.PIPE, text=True).stdout
        sent = [[int(word) for word in line.split()] for line in listing.splitlines()]
        summary = tshark(arguments.tshark, capture).splitlines()
        details = tshark(arguments.tshark, capture, "-V")
        marked = tshark(arguments.tshark, capture, "-Y", "_ws.malformed", "-T", "fields", "-e",
                        "frame.number")
        maps = tshark(arguments.tshark, capture, "-Y", "wmx.dlmap.bsid", "-T", "fields", "-e",
                      "frame.number", "-e", "wmx.dlmap.phy_fdur", "-e", "wmx.dlmap.phy_fnum")
        compressed = tshark(arguments.tshark, capture, "-Y", "wmx.dlmapc.compr", "-T", "fields",
                            "-e", "frame.number", "-e", "wmx.dlmap.phy_fnum",
                            "-e", "wmx.dlmapc.opid", "-e", "wmx.dlmapc.secid",
                            "-e", "wmx.compress_dlmap_crc.status", "-e", "wmx.ulmap.ie.uiuc")

    if len(sent) < 500 or len(summary) != len(sent):
        fail(f"{len(sent)} messages sent, {len(summary)} read")
    marks = [int(number) for number in marked.split()]
    expected = [number for number, record in enumerate(sent, 1) if is_misread(record)]
    if marks != expected:
        fail(f"malformed messages {sorted(set(marks) ^ set(expected))}")
    for line in details.splitlines():
        if "Dissector bug" in line:
            fail(f"tshark: {line}")
    for number, (record, line) in enumerate(zip(sent, summary), 1):
        check_record(number, *record[:5])
        name = NAMES[record[2]]
        if is_compressed(record):
            name = "Compressed DL-MAP"
        if name not in line and not (record[2] in (9, 10) and " EAP " in line):
            fail(f"message {number}: {name} sent, but read: {line}")
    missing = set(NAMES) - {record[2] for record in sent}
    if missing:
        fail(f"never sent: {sorted(NAMES[code] for code in missing)}")

    # The maps' own frame numbers are those of their records, of frames of 5 ms.
    frames = {int(words[0]): words[1:] for words in
              (line.split("\t") for line in maps.splitlines())}
    if len(frames) < 100:
        fail(f"only {len(frames)} DL-MAPs were read")
    for number, words in frames.items():
        if words[-2].split(",")[0] not in ("4", "0x04") or int(words[-1], 0) != sent[number - 1][0]:
            fail(f"message {number}: the DL-MAP says frame {words}, the record {sent[number - 1]}")

    check_compressed_maps(sent, compressed.splitlines())

    # The first network entry, without the broadcasts beside it.
    entry = [record[2] for record in sent if record[2] in ENTRY][:len(ENTRY)]
    if entry != ENTRY:
        fail(f"network entry: {entry}")
    print(f"{len(sent)} messages of {len(NAMES)} kinds read, none malformed "
          f"but {len(expected)} SA-TEK requests")


if __name__ == "__main__":
    main()
