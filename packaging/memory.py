#!/usr/bin/env python3
"""What of the client is resident on a target, in KiB: its file, and the memory behind it, while the
link is up on the simulated modem. Arguments: the machine (packaging/target.sh has built for it), and
the emulator if it needs one. An emulator maps the client's pages as a kernel does, so that they can
be counted apart from its own."""

import os
import pathlib
import re
import subprocess
import sys
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent
PROGRAM = "TarvelWiMAXApp"
# Synchronising, and entering the network.
TYPED = b"1\n2\n2587.5\n0\n10000\n1\n3\n"
LINK_IS_UP = b"LINKUP_ACHIEVED"


def resident(process):
    """Of each mapping its name and its resident KiB; memory right behind a file has its name."""
    found = {}
    end = name = ""
    for line in pathlib.Path(f"/proc/{process.pid}/smaps").read_text().splitlines():
        mapping = re.match(r"([0-9a-f]+)-([0-9a-f]+) \S+ \S+ \S+ \S+ *(.*)", line)
        if mapping:
            behind = not mapping[3] and mapping[1] == end and name.startswith(PROGRAM)
            name = PROGRAM + ", memory" if behind else os.path.basename(mapping[3])
            end = mapping[2]
        elif line.startswith("Rss:"):
            found[name] = found.get(name, 0) + int(line.split()[1])
    return found


machine, *emulator = sys.argv[1:]
build = ROOT / "build" / f"target-{machine}"
client = subprocess.Popen(
    [*emulator, build / f"tarvelwimaxapp-{machine}" / PROGRAM],
    cwd=build,
    env={**os.environ, "QOR020_SCENARIO": str(ROOT / "sim/scenarios/quick.toml")},
    stdin=subprocess.PIPE,
    stdout=subprocess.PIPE,
)
client.stdin.write(TYPED)
client.stdin.flush()
seen = b""
while LINK_IS_UP not in seen:
    seen += os.read(client.stdout.fileno(), 65536)
time.sleep(1)
for name, size in resident(client).items():
    if name.startswith(PROGRAM):
        print(f"{machine}: {name}: {size} KiB")
client.communicate(b"-1\n")
