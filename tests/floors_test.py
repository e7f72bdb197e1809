#!/usr/bin/env python3
"""Tests floors.py: what it must find, it finds."""
import pathlib
import tempfile
import unittest

import floors


class Floors(unittest.TestCase):
    def setUp(self):
        directory = tempfile.TemporaryDirectory()
        self.addCleanup(directory.cleanup)
        self.root = pathlib.Path(directory.name)
        self.write("device/Wire.h", "")
        self.write("sim/time/Random.h", "#include <vector>\n")
        self.write("sim/air/Radio.h", '#include "Wire.h"\n#include "time/Random.h"\n')

    def write(self, name, text):
        path = self.root / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text)

    def findings(self):
        return floors.findings(self.root / "sim", self.root / "device")

    def test_looking_down_is_right(self):
        self.write("sim/link/Link.cpp", '#include "air/Radio.h"\n#include "time/Random.h"\n')
        self.assertEqual(self.findings(), [])

    def test_looking_up_is_wrong(self):
        self.write("sim/link/Link.h", "")
        self.write("sim/air/Frame.cpp", '#include "Wire.h"\n#  include "link/Link.h"\n')
        self.assertEqual(self.findings(), ["air/Frame.cpp includes link/Link.h, which is above it"])

    def test_a_source_outside_the_floors_is_wrong(self):
        self.write("sim/Loose.cpp", "")
        self.write("sim/attic/Old.h", "")
        self.assertEqual(self.findings(),
                         ["Loose.cpp stands on no floor", "attic/Old.h stands on no floor"])

    def test_an_include_without_its_floor_is_wrong(self):
        self.write("sim/link/Link.cpp", '#include "Radio.h"\n#include "../air/Radio.h"\n')
        self.assertEqual(self.findings(),
                         ["link/Link.cpp includes Radio.h, which is on no floor",
                          "link/Link.cpp includes ../air/Radio.h, which is on no floor"])


if __name__ == "__main__":
    unittest.main()
