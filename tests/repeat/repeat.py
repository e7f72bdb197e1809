#!/usr/bin/env python3
"""Runs long sessions with the stepped clock again and again on a busy machine: one checksum each.

Several --program compare builds, and machines: --emulator stands before the programs that follow
it ("" ends that)."""

import argparse
import os
import pathlib
import shlex
import signal
import subprocess
import sys
import time

HERE = pathlib.Path(__file__).resolve().parent
SCENARIOS = ("answered", "watched", "faulty")


class Program(argparse.Action):
    """A program with the emulator that was named before it."""

    def __call__(self, parser, options, value, option=None):
        program = str(pathlib.Path(value).resolve())
        options.programs.append(shlex.split(options.emulator) + [program])


def start(command, scenario, calls, *arguments):
    environment = dict(os.environ, QOR020_SCENARIO=str(HERE / f"{scenario}.toml"))
    # Programs look for the library in the working directory first.
    return subprocess.Popen([*command, str(calls), "1", *arguments], env=environment, text=True,
                            stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                            cwd=pathlib.Path(command[-1]).parent)


def end(process):
    """What the session says of itself."""
    output, errors = process.communicate()
    return output.strip() if process.returncode == 0 and not errors \
        else f"status {process.returncode}: {errors.strip() or output.strip()}"


def once(command, scenario, calls):
    return end(start(command, scenario, calls))


def stopped(command, scenario, calls, seconds):
    """The same when the process stands still in the middle of a callback that a call waits for."""
    process = start(command, scenario, calls, "300")
    os.waitid(os.P_PID, process.pid, os.WSTOPPED | os.WEXITED | os.WNOWAIT)
    time.sleep(seconds)
    process.send_signal(signal.SIGCONT)
    return end(process)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.set_defaults(programs=[])
    parser.add_argument("--program", action=Program, required=True, help="long_session of a build")
    parser.add_argument("--emulator", default="")
    parser.add_argument("--runs", type=int, default=200)
    parser.add_argument("--calls", type=int, default=2000)
    parser.add_argument("--session", choices=SCENARIOS, help="this one alone")
    parser.add_argument("--busy", type=int, default=4, help="processes that keep the machine busy")
    parser.add_argument("--stopped", type=float, default=0, metavar="SECONDS",
                        help="one more run of each that stands still for so long")
    options = parser.parse_args()
    busy = [subprocess.Popen([sys.executable, "-c", "while True: pass"])
            for _ in range(options.busy)]
    good = True
    try:
        for scenario in [options.session] if options.session else SCENARIOS:
            seen = {}
            began = time.monotonic()
            for command in options.programs:
                for _ in range(options.runs):
                    outcome = once(command, scenario, options.calls)
                    seen[outcome] = seen.get(outcome, 0) + 1
                if options.stopped:
                    outcome = stopped(command, scenario, options.calls, options.stopped)
                    seen[outcome] = seen.get(outcome, 0) + 1
            took = time.monotonic() - began
            good = good and len(seen) == 1 and " messages, checksum " in next(iter(seen))
            for outcome, times in seen.items():
                print(f"{scenario}: {times} times {outcome} ({took:.1f} s)")
    finally:
        for process in busy:
            process.kill()
            process.wait()
    return 0 if good else 1


if __name__ == "__main__":
    sys.exit(main())
