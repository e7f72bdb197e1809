#!/usr/bin/env python3
"""How fast the monitor shows traced messages, in one run beside stock tshark on the same messages
and beside a plain write of what the monitor printed. Run it in the build directory. Figures are
processor time, user and system, the best of so many runs; output goes to a file."""

import argparse
import os
import pathlib
import subprocess
import tempfile
import time


def processor_seconds(command, output):
    """What the command takes."""
    with open(output, "wb") as file:
        before = os.times()
        subprocess.run(command, stdout=file, stderr=subprocess.DEVNULL, check=True)
        after = os.times()
    return after.children_user + after.children_system - before.children_user - before.children_system


def write_seconds(data, piece, output):
    """What writing these bytes takes, a piece with each call."""
    view = memoryview(data)
    file = os.open(output, os.O_WRONLY | os.O_CREAT | os.O_TRUNC)
    before = time.process_time()
    for i in range(0, len(view), piece):
        os.write(file, view[i : i + piece])
    taken = time.process_time() - before
    os.close(file)
    return taken


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--count", type=int, default=1_000_000)
    parser.add_argument("--runs", type=int, default=3)
    parser.add_argument("--tshark-runs", type=int, default=1)
    parser.add_argument("--tshark", default="tshark")
    options = parser.parse_args()
    with tempfile.TemporaryDirectory() as directory:
        top = pathlib.Path(directory)
        recording, air, output = top / "recording", top / "air", top / "output"
        processor_seconds(["./bench_trace_recording", str(options.count)], recording)
        # Stock tools are given nothing but what they decode.
        processor_seconds(["./bench_trace_recording", "--air", str(options.count)], air)
        rows = []

        def measure(name, command, runs):
            taken = min(processor_seconds(command, output) for _ in range(runs))
            size = output.stat().st_size
            rows.append((name, taken, size))

        for name, extra in (("text", []), ("JSON", ["--json"])):
            measure(f"monitor, {name}", ["./TarvelWiMAXMonitor", *extra, recording], options.runs)
            data = output.read_bytes()
            piece = len(data) // options.count
            for each, what in ((65536, "64 KiB"), (piece, "a message")):
                taken = min(write_seconds(data, each, output) for _ in range(options.runs))
                rows.append((f"write of the same bytes, {what} at a time", taken, len(data)))
            del data
        measure("monitor, summary", ["./TarvelWiMAXMonitor", "--summary", recording], options.runs)
        for name, extra in (("-V", ["-V"]), ("-T json", ["-T", "json"])):
            measure(f"tshark {name}", [options.tshark, *extra, "-r", air], options.tshark_runs)
    print("| What | Processor time (s) | Messages a second | Output (MB) |\n|---|---|---|---|")
    for name, taken, size in rows:
        print(f"| {name} | {taken:.2f} | {options.count / taken:.0f} | {size / 1e6:.0f} |")


if __name__ == "__main__":
    main()
