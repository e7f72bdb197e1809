"""What the tests of recorder and replay share: programs run in a directory with a device library."""

import argparse
import os
import pathlib
import signal
import subprocess
import sys
import tempfile
import time
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1]))
from run_session import SANITIZERS  # noqa: E402

PATIENCE = 60
OPTIONS = argparse.Namespace()


class SessionTest(unittest.TestCase):
    """A directory for recordings, and the client run on a library, recorded or not."""

    def setUp(self):
        directory = tempfile.TemporaryDirectory(prefix="recording.")
        self.addCleanup(directory.cleanup)
        self.top = pathlib.Path(directory.name)
        self.file = self.top / "session.pcapng"

    def start(self, command, library, recording=None, recorder=True, **options):
        """A program with pipes for its streams; recorder false: without one."""
        work = pathlib.Path(tempfile.mkdtemp(dir=self.top))
        (work / "libqor020.so").symlink_to(library)
        environment = {**os.environ, **SANITIZERS}
        environment["ASAN_OPTIONS"] += ":verify_asan_link_order=0"
        environment["QOR020_RECORDING"] = str(recording or self.file)
        if recorder:
            environment["LD_PRELOAD"] = str(OPTIONS.recorder)
        environment.update(options.pop("environment", {}))
        script = options.pop("script", None)
        if script is not None:
            (self.top / "script").write_text(script)
            environment["QOR020_SCRIPT"] = str(self.top / "script")
        return subprocess.Popen(command, cwd=work, env=environment, stdin=subprocess.PIPE,
                                stdout=subprocess.PIPE, stderr=subprocess.PIPE, **options)

    def run_client(self, words="-1", library=None, status=0, **options):
        """Types the words; returns what came on both streams."""
        process = self.start([OPTIONS.client], library or OPTIONS.scripted, **options)
        output, errors = process.communicate(words.encode() + b"\n", PATIENCE)
        self.assertEqual(process.returncode, status, errors)
        return output, errors.decode()

    def wait_for(self, condition):
        deadline = time.monotonic() + PATIENCE
        while not condition():
            self.assertLess(time.monotonic(), deadline)
            time.sleep(0.02)


def main(*names):
    """Runs the tests of the script; the names are those of the files that it needs."""
    parser = argparse.ArgumentParser()
    for name in ("client", "recorder", *names):
        parser.add_argument(f"--{name}", required=True, type=lambda path: pathlib.Path(path).resolve())
    parser.add_argument("--tshark", help="stock tshark, if there is one")
    parser.add_argument("--sanitized", action="store_true",
                        help="the recorder can be loaded by programs of the build only")
    parser.add_argument("tests", nargs="*")
    parser.parse_args(namespace=OPTIONS)
    # What a test starts may not ignore a signal that whoever started the tests ignores.
    for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
        signal.signal(number, signal.SIG_DFL)
    unittest.main(argv=[sys.argv[0], *OPTIONS.tests])
