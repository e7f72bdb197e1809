#!/usr/bin/env python3
"""Holds the order of the folders of the simulated modem: each may include itself and those below."""
import pathlib
import re
import sys

# From the ground up.
FLOORS = ["time", "scenario", "air", "modem", "link", "host", "library"]

INCLUDE = re.compile(r'^\s*#\s*include\s*"([^"]+)"', re.MULTILINE)


def findings(sim, outside):
    """What is wrong in the folder sim; outside holds the headers that it may include besides its own."""
    wrong = []
    for path in sorted(sim.rglob("*")):
        if not re.search(r"\.(h|cpp|cpp\.in)$", path.name):
            continue
        place = path.relative_to(sim)
        if len(place.parts) != 2 or place.parts[0] not in FLOORS:
            wrong.append(f"{place} stands on no floor")
            continue
        height = FLOORS.index(place.parts[0])
        for name in INCLUDE.findall(path.read_text()):
            floor = name.split("/")[0]
            if "/" not in name and (outside / name).is_file():
                continue
            if floor not in FLOORS or not (sim / name).is_file():
                wrong.append(f"{place} includes {name}, which is on no floor")
            elif FLOORS.index(floor) > height:
                wrong.append(f"{place} includes {name}, which is above it")
    return wrong


def main():
    root = pathlib.Path(__file__).resolve().parent.parent
    wrong = findings(root / "sim", root / "device")
    print("\n".join(wrong) or "nobody includes upwards")
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
