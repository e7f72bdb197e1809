#!/usr/bin/env python3
"""Holds the manual and the completion for shells against the programs, in both directions: options,
environment variables, what simctl takes, kinds of events and faults, keys of scenarios, exit
statuses."""

import argparse
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import time
import unittest

ROOT = pathlib.Path(__file__).resolve().parent.parent
sys.path.insert(0, str(ROOT / "man"))
import expand

OPTIONS = argparse.Namespace()
PATIENCE = 30

# Whose sources read variables of the environment, and the page that tells of them.
PAGE_OF_FOLDER = {
    "app": "TarvelWiMAXApp.1",
    "ext": "VendorSpecificMessageApp.1",
    "monitor": "TarvelWiMAXMonitor.1",
    "recording": "libqor020.7",
    "replay": "libqor020.7",
    "sim": "libqor020.7",
    "tools/bench": "tarvel-bench.1",
    "tools/session": "tarvel-session.1",
    "tools/simctl": "simctl.1",
}
# Texts in the simulated modem's sources that could be keys or values of a scenario and are none:
# names in the state file, what chance is drawn for, a file's mode, a visibility, answers.
NO_KEYS = {
    *("eap-aka", "leds", "mib-mru", "table"),
    *("eap", "encryption", "modem", "example"),
    *("rb", "wb", "default", "ok", "error"),
    *("configuration", "firmware"),  # the beginnings of keys
    *("true", "false"),
}


def page(name):
    """A page as scdoc gets it, without the backslashes that keep its marks from being marks."""
    return re.sub(r"\\(.)", r"\1", "\n".join(expand.expanded(ROOT / "man" / (name + ".scd"))))


def names(text):
    """The words that stand in bold letters, which is how names are written."""
    bold = re.findall(r"\*([^*\n]+)\*", text)
    return {word.strip('[]"') for words in bold for word in re.split(r"[ =,|]+", words)}


def part(text, heading):
    """What stands below a heading of a page, up to the next one."""
    return re.search(rf"\n#+ {re.escape(heading)}\n(.*?)(?=\n#|\Z)", text, re.S)[1]


def heads(text):
    """What the entries of a list explain: bold names with nothing, or an explanation, behind them."""
    found = re.findall(r"(?m)^(\*[^\n(]*\*)(?: \([^\n]*)?\n(?=\t|\n)", text)
    return set().union(*(names(head) for head in found if not head.startswith("*[")))


def options_in(text):
    return set(re.findall(r"(?<![\w-])--[a-z][a-z-]*", text))


def completion(file, pattern):
    return re.search(pattern, (ROOT / "completion" / file).read_text(), re.S)[1]


def completed_in_bash():
    rows = completion("tarvel.bash", r"<<'TABLE'\n(.*?)\nTABLE").splitlines()
    return {program: options_in(options) for program, _, options in (row.partition(" ") for row in rows)}


def completed_in_fish():
    found = {}
    for path in (ROOT / "completion/fish").glob("*.fish"):
        options = re.findall(rf"(?m)^complete -c {path.stem} (?:.* )?-l ([a-z-]+)", path.read_text())
        found[path.stem] = {"--" + option for option in options}
    return found


def fish_list(name):
    """A list of words in the file for simctl, which may go over several lines."""
    return set(completion("fish/simctl.fish", rf"set -l {name} ((?:[^\\\n]|\\\n)*)").replace("\\", "").split())


def sources(folder):
    for path in sorted((ROOT / folder).rglob("*")):
        if path.is_file() and (path.suffix in (".cpp", ".h", ".in", ".py") or path.parent.name == "session"):
            yield path, path.read_text()


class Programs(unittest.TestCase):
    def test_options_of_help_manual_and_completion_are_the_same(self):
        programs = {"tarvel-bench": ROOT / "run.sh"}
        programs |= {pathlib.Path(path).name: path for path in OPTIONS.programs}
        self.assertEqual(set(completed_in_bash()), set(programs))
        self.assertEqual(set(completed_in_fish()), set(programs))
        for name, path in programs.items():
            with self.subTest(name):
                ran = subprocess.run([path, "--help"], capture_output=True, check=True, text=True)
                told = options_in(ran.stdout)
                # Other programs are named with their options.
                own = re.sub(rf"\*(?!{re.escape(name)})[\w-]+ --[a-z]+\*", "", page(name + ".1"))
                self.assertGreater(len(told), 2)
                self.assertEqual(options_in(own), told)
                self.assertEqual(completed_in_bash()[name], told)
                self.assertEqual(completed_in_fish()[name], told)

    def test_options_of_help_are_those_that_are_read(self):
        script = (ROOT / "tools/bench/tarvel-bench.in").read_text()
        cases = re.findall(r"(?m)^ +(--[a-z |-]+)\)", script)
        read = {"tarvel-bench": {option for case in cases for option in case.split(" | ")}}
        for name, source in (("TarvelWiMAXMonitor", "monitor/Options.cpp"), ("simctl", "tools/simctl/Main.cpp")):
            read[name] = set(re.findall(r'"(--[a-z-]+)"', (ROOT / source).read_text()))
        tool = (ROOT / "tools/session/tarvel_session/tool.py").read_text()
        read["tarvel-session"] = set(re.findall(r'add_argument\([^)]*?"(--[a-z-]+)"', tool)) | {"--help"}
        for name, options in read.items():
            with self.subTest(name):
                self.assertEqual(options, completed_in_bash()[name])

    def test_exit_statuses_stand_in_the_manual(self):
        status = r"(?m)^constexpr int i(?:Good|Refused|Unusable|Damaged|WrongArguments|StrictExitStatus) = (\d+);"
        read = {
            "simctl.1": [("tools/simctl/Main.cpp", status)],
            "TarvelWiMAXMonitor.1": [("monitor/Main.cpp", status), ("monitor/Main.cpp", r"\breturn (0);")],
            "libqor020.7": [("sim/library/Library.cpp", status), ("replay/Player.cpp", status)],
            "tarvel-bench.1": [("tools/bench/tarvel-bench.in", r"\bexit ([1-9])")],
            "tarvel-session.1": [("tools/session/tarvel_session/tool.py", r"\bNO_CLIENT = ([\d, ]+)\n")],
        }
        everywhere = ("TarvelWiMAXMonitor.1", "tarvel-session.1")
        for name, places in read.items():
            with self.subTest(name):
                found = [re.findall(pattern, (ROOT / source).read_text()) for source, pattern in places]
                self.assertTrue(all(found))
                found = {status for matches in found for match in matches for status in match.split(", ")}
                text = page(name)
                told = heads(text if name in everywhere else part(text, "EXIT STATUS"))
                told = {word for word in told if re.fullmatch(r"\d+", word) and int(word) < 128}
                self.assertEqual(told, found)

    def test_exit_statuses_of_the_client_stand_in_the_manual(self):
        told = heads(part(page("TarvelWiMAXApp.1"), "EXIT STATUS"))
        read = {"0"}
        for _, text in sources("app"):
            for status in re.findall(r"EndClient\((\d+|iOutputGone|128 \+ iSignal)\)|bOpen \? 0 : (-1)", text):
                read |= set(filter(None, status))
        means = {"iOutputGone": {"141"}, "128 + iSignal": {"128", "+", "N"}, "-1": {"255"}}
        self.assertEqual(told, set().union(*(means.get(status, {status}) for status in read)))


@unittest.skipUnless(shutil.which("fish"), "no fish")
class Fish(unittest.TestCase):
    def offered(self, line):
        script = f"source {ROOT}/completion/fish/{line.split()[0]}.fish; complete -C $argv[1]"
        ran = subprocess.run(["fish", "--no-config", "-c", script, line], capture_output=True, text=True)
        self.assertEqual((ran.returncode, ran.stderr), (0, ""))
        return {offer.partition("\t")[0] for offer in ran.stdout.splitlines()}

    def test_every_option_is_offered(self):
        for name, options in completed_in_fish().items():
            with self.subTest(name):
                self.assertEqual(self.offered(name + " --"), options)

    def test_values_are_offered_where_they_are_taken(self):
        self.assertEqual(self.offered("TarvelWiMAXMonitor --direction "), {"sent", "received"})
        self.assertEqual(self.offered("TarvelWiMAXMonitor --type "), set())
        self.assertIn(f"{ROOT}/sim/scenarios/", self.offered(f"tarvel-bench --scenario {ROOT}/sim/scen"))

    def test_simctl_is_offered_commands_and_faults_behind_the_socket(self):
        self.assertEqual(self.offered("simctl socket "), fish_list("commands") | fish_list("events"))
        self.assertEqual(self.offered("simctl socket fault "), fish_list("faults"))
        self.assertEqual(self.offered("simctl socket until "), {"idle"})
        self.assertEqual(self.offered(f"simctl socket save {ROOT}/READ"), {f"{ROOT}/README.md"})
        self.assertEqual(self.offered("simctl --watch socket "), set())
        self.assertNotIn("--watch", self.offered("simctl socket --"))


class Environment(unittest.TestCase):
    def read(self):
        """Pairs of a page and a variable that its program reads."""
        for folder, name in PAGE_OF_FOLDER.items():
            for _, text in sources(folder):
                found = re.findall(r'\b(?:getenv|EnvironmentOf)\("([A-Z0-9_]+)"\)', text)
                found += re.findall(r'\bpcVariable = "([A-Z0-9_]+)"', text)
                found += re.findall(r'os\.environ(?:\.get\(|\[)"([A-Z0-9_]+)"', text)
                found += re.findall(r"\$\{([A-Z0-9_]+):?[+-]", text)
                for variable in found:
                    yield ("libqor020.7" if variable.startswith("QOR020_") else name), variable

    def test_every_variable_that_is_read_stands_in_the_manual(self):
        self.assertGreater(len(set(self.read())), 8)
        for name, variable in set(self.read()):
            with self.subTest(variable):
                self.assertIn(variable, names(page(name)))

    def test_every_variable_of_the_manual_is_read(self):
        pages = {path.stem: page(path.stem) for path in (ROOT / "man").glob("*.scd")}
        pages = {name: text for name, text in pages.items() if "# ENVIRONMENT" in text}
        self.assertGreater(len(pages), 2)
        for name, text in pages.items():
            with self.subTest(name):
                told = heads(part(text, "ENVIRONMENT"))
                self.assertTrue(told)
                self.assertEqual(told - {variable for at, variable in self.read() if at == name}, set())


class Scenarios(unittest.TestCase):
    def answers(self):
        """What the simulated modem says of its commands, and of its kinds of faults."""
        with tempfile.TemporaryDirectory() as folder:
            socket = folder + "/socket"
            variables = {"QOR020_CONTROL_SOCKET": socket, "LD_LIBRARY_PATH": os.path.dirname(OPTIONS.simulated)}
            client = subprocess.Popen([OPTIONS.client], stdin=subprocess.PIPE, stdout=subprocess.DEVNULL,
                                      cwd=folder, env={**os.environ, **variables})
            try:
                limit = time.monotonic() + PATIENCE
                while not os.path.exists(socket) and time.monotonic() < limit:
                    time.sleep(0.05)
                ask = lambda *words: subprocess.run([OPTIONS.simctl, socket, *words], capture_output=True, text=True)
                return ask("help").stdout, ask("fault", "nothing").stderr
            finally:
                client.stdin.close()
                client.wait(PATIENCE)

    def test_commands_events_and_faults_are_those_of_the_modem(self):
        helped, refused = self.answers()
        commands, events = helped.split("EVENT one of ")
        commands = set(re.findall(r"(?:^|; )([a-z-]+)", commands))
        events = set(events.split())
        faults = set(re.findall(r'"([a-z]+)"', refused)) - {"kind"}
        self.assertGreater(len(events), 10)
        self.assertEqual(len(faults), 7)
        scenario = page("tarvel-scenario.5")
        self.assertEqual(heads(part(scenario, "EVENTS")) | heads(part(scenario, "FURTHER EVENTS")), events)
        self.assertEqual(heads(part(scenario, "FAULTS")), faults)
        told = {word for word in heads(part(page("simctl.1"), "COMMANDS")) if re.fullmatch("[a-z-]+", word)}
        self.assertEqual(told - {"on", "off", "all", "idle", "limit"}, commands)
        in_bash = {name: set(completion("tarvel.bash", rf'_tarvel_{name}="([^"]*)"').split())
                   for name in ("commands", "faults")}
        self.assertEqual(in_bash, {"commands": commands | events, "faults": faults | {"on", "off"}})
        in_fish = {name: fish_list(name) for name in ("commands", "events", "faults")}
        self.assertEqual(in_fish, {"commands": commands, "events": events, "faults": faults | {"on", "off"}})

    def test_keys_and_values_are_those_that_the_modem_reads(self):
        read = set()
        for path, text in sources("sim"):
            if path.name in ("StateReport.cpp", "ControlCommands.cpp", "Journal.cpp",
                             "JournaledModem.cpp", "SavedModem.cpp"):  # read and write no scenario
                continue
            text = re.sub(r'#include "[^"]*"|\b(RandomFor|SeedFor)\([^"]*"[^"]*"', "", text)
            read |= set(re.findall(r'"([a-z][a-z0-9]*(?:-[a-z0-9]+)*)"', text))
            for end in re.findall(r'strName \+ "(-[a-z]+)"', text):
                read |= {start + end for start in ("configuration", "firmware")}
        scenario = page("tarvel-scenario.5")
        told = {word for name in names(scenario) for word in name.split(".")}
        self.assertGreater(len(read), 200)
        self.assertEqual(read - NO_KEYS - told, set())
        keys = re.findall(r"(?m)^\*\[+[a-z.-]+\]+\*.*$", scenario)
        told = {word for name in names("\n".join(keys)) for word in name.split(".")}
        told = {word for word in told if re.fullmatch(r"[a-z][a-z0-9-]+", word)}
        self.assertGreater(len(told), 150)
        self.assertEqual(told - read - {"true", "false"}, set())
        self.assertEqual(NO_KEYS - read, set())


if __name__ == "__main__":
    parser = argparse.ArgumentParser()
    parser.add_argument("--client")
    parser.add_argument("--simulated")
    parser.add_argument("--simctl")
    parser.add_argument("--programs", nargs="*", default=[], help="those that tell their options")
    OPTIONS, rest = parser.parse_known_args()
    unittest.main(argv=[sys.argv[0], *rest])
