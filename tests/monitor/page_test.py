#!/usr/bin/env python3
"""The page that the monitor draws: what is in it, and what a browser makes of it."""

import sys

sys.dont_write_bytecode = True  # the sources stay as they are

import argparse
import itertools
import json
import math
import pathlib
import re
import stat
import struct
import subprocess
import tempfile
import time
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "recording"))
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent))
import browser  # noqa: E402
from capture import Writer  # noqa: E402

OPTIONS = argparse.Namespace()
PATIENCE = 100
RECORDINGS = pathlib.Path(__file__).resolve().parents[1] / "recordings"
STATISTICS_SIZE = 952

SYNC_UP = bytes.fromhex("02000100 6c7b2700 10270000 ff000000") + bytes(52)
DL_MAP = bytes.fromhex("15000100 00 58020000 02000000 03000000 ffff0000 01 0400ff")
RNG_REQ = bytes.fromhex("15000100 01 59020000 04000000 03000000 01000000 01 000000")


def sync_status(station, cinr, rssi, state=0):
    return struct.pack("<HHIBB5sBIiiiiIIII", 2, 1, state, 0, 0, bytes([0, 0x12, 0xA, 0, 1]),
                       station, 3, cinr, 1, rssi, 1, 2587500, 10000, 5, 2)


def statistics(frames, errors, power, rssi=-60, cinr=25):
    data = bytearray(STATISTICS_SIZE)
    struct.pack_into("<III", data, 0, STATISTICS_SIZE, frames, errors)
    struct.pack_into("<ii", data, 24, rssi, cinr)
    struct.pack_into("<b", data, 234, power)
    data[244:250] = bytes([0, 0x12, 0xA, 0, 1, 1])
    return bytes.fromhex("11000100") + bytes(data)


def mib_value(attribute, value):
    return bytes.fromhex("18000200") + struct.pack("<IBII8xIb", attribute, 0, 0, 0, len(value), 0) + \
        value


def zone_statistics(grown):
    """Two schemes of a downlink zone and of an uplink zone count bursts, one of each PDUs."""
    value = bytearray(6868)
    downlink, uplink = 16, 5296
    for place, factor in ((downlink + 24, 1), (downlink + 528 + 192, 1), (downlink + 276, 1),
                          (uplink + 20, 2), (uplink + 524 + 188, 3), (uplink + 272, 4)):
        struct.pack_into("<I", value, place, 7 + grown * factor)
    return mib_value(1625, bytes(value))


def session(seconds=60, traced=1):
    """Two stations whose levels go up and down, losses of the link, a report each second."""
    writer = Writer()
    writer.begin()
    for second in range(seconds):
        wave = math.sin(second / 9)
        writer.send(SYNC_UP, after=0.25, lasts=0.0001)
        state = 13 if second % 20 == 10 else 0
        cinr, rssi = int(20 + 8 * wave), int(-70 + 12 * wave)
        writer.message(sync_status(1 + second % 2, cinr - second % 2 * 9, rssi - second % 2 * 9,
                                   state), after=0.02 + 0.01 * (second % 7))
        writer.message(statistics(1000 + second * 200, second * second // 10, 5 + second % 9, rssi,
                                  cinr), after=0.1)
        for _ in range(traced):
            writer.message(DL_MAP, after=0.2 / traced)
        writer.message(RNG_REQ, after=0.2)
    writer.send(bytes.fromhex("11000100 e8030000"), result=-76)
    return writer


def with_markup():
    writer = Writer()
    writer.add("session", data=b"client=</script><script>alert(1)</script><!--<img src=x "
                               b"onerror=alert(2)>\n")
    return writer


class PageTest(unittest.TestCase):
    def setUp(self):
        directory = tempfile.TemporaryDirectory(prefix="page.")
        self.addCleanup(directory.cleanup)
        self.top = pathlib.Path(directory.name)
        self.out = self.top / "out.html"

    def draw(self, writer, *options, name="session.pcapng"):
        recording = self.top / name
        recording.write_bytes(writer.end().bytes())
        process = subprocess.run([OPTIONS.monitor, "--page", self.out, *options, recording],
                                 capture_output=True, timeout=PATIENCE, check=False)
        self.assertEqual((process.stdout, process.stderr, process.returncode), (b"", b"", 0))
        return self.out.read_text()

    def script(self, text, name):
        return re.search(rf'<script type="application/json" id="{name}">(.*?)</script>', text,
                         re.DOTALL).group(1)

    def data(self, text):
        return json.loads(self.script(text, "data"))

    def rows(self, data):
        """The rows of the table: number, time, name, flags, link, how long it took."""
        columns = data["rows"]
        return list(zip(itertools.accumulate(columns["number"]),
                        itertools.accumulate(columns["time"]),
                        [data["names"][name] for name in columns["name"]],
                        columns["flags"], columns["link"], columns["took"], strict=True))

    def points(self, data, title):
        chart = [chart for chart in data["charts"] if chart["title"] == title][0]
        return {curve["name"]: [list(point) for point in
                                zip(itertools.accumulate(curve["time"]), curve["value"],
                                    strict=True)]
                for curve in chart["curves"]}


class Structure(PageTest):
    def test_values_stand_in_the_charts_by_station(self):
        writer = Writer()
        writer.message(sync_status(1, 29, -57))
        writer.message(sync_status(2, -3, -91), after=1)
        data = self.data(self.draw(writer))
        self.assertEqual(self.points(data, "RSSI"), {"00:12:0a:00:01:01": [[0, -57]],
                                                     "00:12:0a:00:01:02": [[1000000, -91]]})
        self.assertEqual(self.points(data, "CINR"), {"00:12:0a:00:01:01": [[0, 29]],
                                                     "00:12:0a:00:01:02": [[1000000, -3]]})

    def test_counters_are_rates_and_begin_anew_when_cleared(self):
        writer = Writer()
        for frames in (100, 300, 50, 60):
            writer.message(statistics(frames, 0, -7), after=2)
        data = self.data(self.draw(writer))
        self.assertEqual(self.points(data, "Counters")["frames_received"],
                         [[4000000, 100], [8000000, 5]])
        self.assertEqual(self.points(data, "Transmit power")["tx_power"],
                         [[2000000, -7], [4000000, -7], [6000000, -7], [8000000, -7]])

    def test_bursts_and_pdus_are_rates_of_all_zones_and_schemes_together(self):
        writer = Writer()
        for grown in (0, 10, 40):
            writer.message(zone_statistics(grown), after=10)
        writer.message(zone_statistics(90)[:-1], after=10)  # not all there
        data = self.data(self.draw(writer))
        self.assertEqual(self.points(data, "Bursts and PDUs"), {
            "downlink bursts": [[20000000, 2], [30000000, 6]],
            "downlink PDUs": [[20000000, 1], [30000000, 3]],
            "uplink bursts": [[20000000, 5], [30000000, 15]],
            "uplink PDUs": [[20000000, 4], [30000000, 12]]})

    def test_errors_have_a_chart_of_their_own(self):
        writer = Writer()
        for errors in (5, 25):
            writer.message(statistics(1000, errors, 0), after=2)
            writer.message(mib_value(1482, struct.pack("<4i", errors, 0, 0, 3 * errors)), after=2)
        points = self.points(self.data(self.draw(writer)), "Errors")
        self.assertEqual(points["frames_in_error"], [[6000000, 5]])
        self.assertEqual(points["submap_errors"], [[8000000, 20]])

    def test_the_band_has_the_changes_of_the_link_state(self):
        writer = Writer()
        for state in (0, 0, 13, 0, 77):
            writer.message(sync_status(1, 0, 0, state), after=1)
        self.assertEqual([change[1] for change in self.data(self.draw(writer))["states"]],
                         ["link_up_achieved", "wait_for_network_entry_command",
                          "link_up_achieved", "state 77"])

    def test_answer_times_and_messages_a_second(self):
        writer = Writer()
        writer.send(SYNC_UP)
        writer.message(sync_status(1, 0, 0), after=0.25)
        writer.message(DL_MAP, after=2)
        data = self.data(self.draw(writer))
        self.assertEqual(self.points(data, "Answer times"), {"sync_status": [[250000, 250]]})
        self.assertEqual(self.points(data, "Messages"),
                         {"sent": [[0, 1]], "received": [[0, 1], [1000000, 0], [2000000, 1]]})

    def test_rows_and_objects_belong_together(self):
        text = self.draw(session(3))
        rows = self.rows(self.data(text))
        objects = [json.loads(line) for line in self.script(text, "objects").splitlines()]
        self.assertEqual([row[0] for row in rows], [entry["number"] for entry in objects])
        self.assertNotIn("message_done", [entry["event"] for entry in objects])

    def test_markup_in_a_message_is_text(self):
        text = self.draw(with_markup(), name="<script>x.pcapng")
        self.assertNotIn("<script>alert", text)
        self.assertNotIn("<img", text)
        self.assertEqual(self.data(text)["title"], "<script>x.pcapng")

    def test_filters_choose_what_is_drawn(self):
        rows = self.rows(self.data(self.draw(session(3), "--subtype", "sync_status")))
        self.assertEqual(len(rows), 3)

    def test_a_session_of_nothing_is_a_page(self):
        self.assertEqual(len(self.rows(self.data(self.draw(Writer())))), 3)

    def test_times_of_any_kind(self):
        writer = Writer()
        for moment in (2**62, 0, 2**61, 5):
            writer.message(sync_status(1, 0, 0))
            writer.message(statistics(moment % 1000, 0, 0))
            for event in writer.events[-4:]:
                event.time = moment
        self.assertEqual(len(self.rows(self.data(self.draw(writer)))), 11)

    def test_nothing_is_fetched(self):
        text = self.draw(session(1))
        self.assertIn("default-src 'none'", text)
        self.assertEqual(re.findall(r"<(?:link|img|iframe)\b|<script[^>]*\bsrc=|@import|url\(",
                                    text), [])

    def test_only_the_owner_can_read_it(self):
        self.draw(Writer())
        self.assertEqual(stat.S_IMODE(self.out.stat().st_mode), 0o600)

    def test_of_long_sessions_the_frequent_messages_are_thinned_out(self):
        text = self.draw(session(600, traced=200))
        data = self.data(text)
        self.assertGreater(data["all"], 120_000)
        names = [row[2] for row in self.rows(data)]
        self.assertLess(len(names), data["all"])
        self.assertLess(len(text), 40_000_000)
        self.assertEqual(names.count("sync_status"), 600)
        self.assertLess(names.count("traced_message"), 100_000)


@unittest.skipUnless(browser.installed(), "no Chromium")
class InABrowser(PageTest):
    """Everything on one start of the browser."""

    def test_a_session_is_looked_at_with_mouse_and_keyboard(self):
        self.draw(session(60))
        page = browser.Browser()
        self.addCleanup(page.close)
        page.open(self.out)

        def chosen():
            return page.run("document.querySelector('#details h2')?.textContent")

        def count():
            return page.run("document.getElementById('count').textContent")

        with self.subTest("charts are drawn"):
            self.assertEqual(
                page.run("[...document.querySelectorAll('#charts h2')].map(e => e.textContent)"),
                ["RSSI dBm 00:12:0a:00:01:01 00:12:0a:00:01:02",
                 "CINR dB 00:12:0a:00:01:01 00:12:0a:00:01:02", "Transmit power dBm tx_power",
                 "Counters per second bandwidth_requests cqich_transmitted frames_received",
                 "Errors per second crc_errors frames_in_error hcs_errors",
                 "Messages per second sent received", "Answer times ms sync_status"])
        with self.subTest("a click into the table"):
            page.click("#table .row:nth-child(10)")
            self.assertEqual(chosen(), "#10 statistics")
            self.assertIn("frames_received", page.run(
                "document.getElementById('details').textContent"))
        with self.subTest("the arrow keys"):
            page.key("ArrowUp")
            self.assertEqual(chosen(), "#8 sync_status")
            self.assertIn("-70", page.run("document.getElementById('details').textContent"))
        with self.subTest("the request of an answer"):
            page.click("#details button")
            self.assertEqual(chosen(), "#6 sync_up")
        with self.subTest("a click into the ladder"):
            page.click("#ladder .row:nth-child(5)")
            self.assertEqual(chosen(), "#12 traced_message")
        with self.subTest("a click into a chart"):
            page.click("#charts .chart", 0.6, 0.4)
            self.assertRegex(chosen(), "^#[0-9]+ (sync_status|statistics)$")
        with self.subTest("a click into the band"):
            page.click("#band button:nth-child(2)")
            self.assertIn("wait_for_network_entry_command", page.run(
                "document.getElementById('details').textContent"))
        with self.subTest("search"):
            everything = count()
            page.click("#search")
            page.type('"result":-76')
            deadline = time.monotonic() + PATIENCE
            while count().split()[0] != "1":  # it searches when the typing has come to rest
                self.assertLess(time.monotonic(), deadline)
                time.sleep(0.05)
            page.run("(document.getElementById('search').value = '', filter())")
            self.assertEqual(count(), everything)
        with self.subTest("filters"):
            page.run("(() => { const e = document.getElementById('kind'); e.value = 'air';"
                     " e.dispatchEvent(new Event('change')); })()")
            self.assertEqual(count().split()[0], "120")
            page.run("(document.getElementById('kind').value = '', filter())")
        with self.subTest("zoom"):
            page.click("[data-zoom=in]")
            self.assertLess(int(count().split()[0]), int(everything.split()[0]) * 0.6)
            page.run("document.querySelector('.chart').focus()")
            page.key("0")
            self.assertEqual(count(), everything)
        with self.subTest("dark and light"):
            backs = []
            for scheme in ("dark", "light"):
                page.prefer(scheme)
                backs.append(page.run("getComputedStyle(document.body).backgroundColor"))
            self.assertEqual(backs, ["rgb(20, 24, 31)", "rgb(255, 255, 255)"])
        with self.subTest("on paper"):
            page.run("addEventListener('beforeprint', () => { window.onPaper = ['.row', 'p'].map("
                     "part => document.querySelectorAll('#table ' + part)).map("
                     "found => [found.length, found[found.length - 1].textContent]); })")
            before = page.run("document.querySelectorAll('#table .row').length")
            self.assertTrue(page.call("Page.printToPDF")["data"])
            (lines, _), (_, rest) = page.run("onPaper")
            self.assertEqual((lines, rest), (200, f"and {int(everything.split()[0]) - 200} more"))
            self.assertEqual(page.run("document.querySelectorAll('#table .row').length"), before)
        with self.subTest("markup is text"):
            self.draw(with_markup())
            page.open(self.out)
            page.click("#table .row:nth-child(3)")
            self.assertIn("</script><script>alert(1)", page.run(
                "document.getElementById('details').textContent"))
            self.assertEqual(page.run("document.querySelectorAll('img').length"), 0)
        for name in ("simulated-tour", "simulated-hostile", "mib"):
            with self.subTest(f"the recording {name}"):
                subprocess.run([OPTIONS.monitor, "--page", self.out, RECORDINGS / f"{name}.pcapng"],
                               timeout=PATIENCE, check=True)
                page.open(self.out)
                page.click("#table .row:nth-child(9)")
                self.assertTrue(chosen().startswith("#"))
        self.assertEqual(page.troubles, [])
        self.assertEqual({url.split(":")[0] for url in page.requests}, {"file"})


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--monitor", required=True,
                        type=lambda path: pathlib.Path(path).resolve())
    parser.add_argument("tests", nargs="*")
    parser.parse_args(namespace=OPTIONS)
    unittest.main(argv=[sys.argv[0], *OPTIONS.tests])


if __name__ == "__main__":
    main()
