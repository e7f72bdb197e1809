"""The program tarvel-session: options, runs, verdicts. docs/sessions.md describes it."""

import argparse
import os
import pathlib
import re
import signal
import sys
import time
import types

from . import engine, report
from .files import NAME, SCRIPTED_WORDS, SIMULATED_WORDS, FormatError, Session, duration

PASSED, FAILED, WRONG, NO_CLIENT = 0, 1, 2, 3
LONGEST_SESSION = 600  # seconds, when neither the session nor an option says otherwise
ENDING = (signal.SIGINT, signal.SIGTERM, signal.SIGHUP)
HERE = pathlib.Path(__file__).resolve().parents[1]


class Wrong(Exception):
    """Something in the arguments or in a session file."""


class Ended(BaseException):
    """A signal has come."""

    def __init__(self, number):
        super().__init__(number)
        self.number = number


class Parser(argparse.ArgumentParser):
    def error(self, message):
        raise Wrong(message)


def times(text):
    if not re.fullmatch(r"\d{1,9}", text) or int(text) == 0:
        raise argparse.ArgumentTypeError(f"not a number from 1 on: {text}")
    return int(text)


def speed(text):
    if not re.fullmatch(r"\d{1,6}(\.\d{1,6})?", text):
        raise argparse.ArgumentTypeError(f"not a speed: {text}")
    return text


def limit(text):
    try:
        return duration(text if re.search("[a-z]", text) else text + " s")
    except FormatError as error:
        raise argparse.ArgumentTypeError(str(error)) from error


def value(text):
    name, equals, word = text.partition("=")
    if not equals or not re.fullmatch(NAME, name) or "\n" in word:
        raise argparse.ArgumentTypeError(f"not NAME=VALUE: {text}")
    return name, os.fsencode(word)


def options_of(arguments):
    parser = Parser(
        prog="tarvel-session", allow_abbrev=False,
        usage="tarvel-session [OPTION...] FILE...",
        description="Types sessions into the client and says whether they went as written.",
        epilog="Exit status: 0 all passed, 1 one failed, 2 something is wrong with a session file or "
               "an option, 3 the client cannot be started, 128 + N ended by signal N.")
    parser.add_argument("sessions", metavar="FILE", nargs="+", help="session files")
    modem = parser.add_argument_group("the modem (the simulated one, when none is named)")
    modem = modem.add_mutually_exclusive_group()
    modem.add_argument("--scenario", metavar="FILE",
                       help="the simulated modem with this scenario, whatever the session names")
    modem.add_argument("--replay", metavar="FILE", help="a recording, played back")
    modem.add_argument("--device", metavar="DIR",
                       help="the real modem: the folder whose libqor020.so is used")
    modem.add_argument("--scripted", action="store_true",
                       help="the scripted library, for sessions that name no scenario")
    parser.add_argument("--speed", type=speed, metavar="N",
                        help="how many times faster than recorded a replay is; 0, which is taken "
                             "otherwise: at once")
    parser.add_argument("--repeat", type=times, default=1, metavar="N", help="runs of each session")
    parser.add_argument("--set", type=value, action="append", default=[], metavar="NAME=VALUE",
                        help="what ${NAME} stands for")
    parser.add_argument("--limit", type=limit, metavar="TIME",
                        help="how long a run may take in real time: 90 s, 5 min, 2 h; otherwise "
                             "what the session says, or ten minutes")
    parser.add_argument("--junit", metavar="FILE", help="the verdicts in JUnit's form")
    parser.add_argument("--record", metavar="DIR",
                        help="a recording of each run, kept when it failed")
    parser.add_argument("--keep", action="store_true", help="keeps those that passed as well")
    parser.add_argument("--programs", metavar="DIR",
                        help="where the client and its libraries are: a build, or an installation's "
                             "private folder")
    options = parser.parse_args(arguments)
    if options.keep and not options.record:
        parser.error("--keep is for --record")
    if options.speed and not options.replay:
        parser.error("--speed is for --replay")
    return options


def folder_of_programs(options):
    if options.programs:
        return pathlib.Path(options.programs)
    installed = HERE.parent
    return installed if (installed / "TarvelWiMAXApp").exists() else HERE.parents[1] / "build/release"


def folder_of_scenarios(programs):
    for folder in (HERE.parents[1] / "sim/scenarios",
                   *(parent / "share" / HERE.parent.name / "scenarios" for parent in HERE.parents)):
        if folder.is_dir():
            return folder
    return programs


def existing(path):
    """What must be there for the client to start."""
    if not path.exists():
        raise engine.CannotStart(f"{path} is not there")
    return path


def bench_of(options):
    """What is run on what, as the engine has it."""
    programs = folder_of_programs(options)
    bench = types.SimpleNamespace(
        client=programs / "TarvelWiMAXApp", scripted=None, simulated=programs / "libqor020.so",
        scenarios=folder_of_scenarios(programs), emulator=[], recorder=None, recording=None,
        replay=None, device=None)
    existing(bench.client)
    if options.device:
        bench.device = options.device
        existing(pathlib.Path(options.device) / "libqor020.so")
    elif options.replay:
        library = existing(programs / "replay/libqor020.so")
        bench.replay = (library, options.replay, options.speed or "0")
    else:
        existing(bench.simulated)
    if options.scripted:
        bench.scripted = existing(programs / "scripted/libqor020.so")
    if options.record:
        bench.recorder = existing(programs / "libqor020record.so")
    return bench


def read_sessions(options):
    given = dict(options.set)
    sessions = [Session(path, given) for path in options.sessions]
    for name in given:
        if not any(name in session.names for session in sessions):
            raise Wrong(f"--set {name}: no session file has ${{{name}}}")
    for session in sessions:
        session.limit = options.limit or session.limit or LONGEST_SESSION
        if options.scenario:
            session.scenario = os.path.abspath(options.scenario)
        elif session.scenario is None and not options.scripted:
            session.scenario = ""
        refuse_misplaced(session, options)
    return sessions


def refuse_misplaced(session, options):
    """What only another modem understands is wrong before anything is started."""
    simulated = session.scenario is not None and not options.device and not options.replay
    wrong = []
    if session.scenario is not None:
        wrong += [(word, "the scripted library (--scripted)") for word in SCRIPTED_WORDS]
    if not simulated:
        wrong += [(word, "the simulated modem") for word in SIMULATED_WORDS]
    for word, where in wrong:
        if word in session.words:
            raise FormatError(f"{session.path}:{session.words[word]}: {word} is for {where}")


def prepare_files(options):
    """What is read and written is there, before anything is started."""
    try:
        for path in (options.scenario, options.replay):
            if path and not os.path.isfile(path):
                raise Wrong(f"no such file: {path}")
        if options.device and not os.path.isdir(options.device):
            raise Wrong(f"no such folder: {options.device}")
        if options.record:
            os.makedirs(options.record, exist_ok=True)
        if options.junit:
            with open(options.junit, "ab"):
                pass
    except OSError as error:
        raise Wrong(f"{error.filename}: {error.strerror}") from error


def recording_names(sessions):
    """A name for each session, different ones for files of the same name."""
    names, taken = [], set()
    for session in sessions:
        name, number = session.path.stem, 1
        while name in taken:
            number += 1
            name = f"{session.path.stem}-{number}"
        taken.add(name)
        names.append(name)
    return names


def play_once(session, bench, result):
    began = time.monotonic()
    try:
        engine.run(session, bench, result.samples)
        result.verdict = report.PASSED
    except engine.CannotStart as failure:
        result.verdict, result.text = report.ERROR, str(failure)
    except engine.Failure as failure:
        result.verdict, result.text = report.FAILED, str(failure)
        if failure.errors:
            result.text += "\non standard error:\n" + "\n".join(engine.bars(failure.errors))
    except Ended:
        result.verdict, result.text = report.ERROR, "interrupted"
        raise
    finally:
        result.seconds = time.monotonic() - began


def heed_recording(bench, result, keep):
    if bench.recording is None or not os.path.exists(bench.recording):
        return
    if result.verdict == report.PASSED and not keep:
        os.unlink(bench.recording)
    else:
        result.recording = bench.recording


def play_all(sessions, bench, options, results):
    """Adds a result for each run, and says how it went. False: the client does not start."""
    names = recording_names(sessions)
    for session, name in zip(sessions, names):
        for number in range(1, options.repeat + 1):
            result = report.Result(session.path, number, options.repeat)
            if options.record:
                bench.recording = os.path.join(options.record, f"{name}.{number}.pcapng")
            try:
                play_once(session, bench, result)
            finally:
                heed_recording(bench, result, options.keep)
                results.append(result)
                report.say(result)
            if result.verdict == report.ERROR:
                return False
    return True


def heed_signals():
    """The first one ends what goes on, cleanly; one that was ignored at the start stays so, but not
    in the client."""

    def end(number, _frame):
        for other in ENDING:
            signal.signal(other, lambda *_: None)
        raise Ended(number)

    for number in ENDING:
        ignored = signal.getsignal(number) == signal.SIG_IGN
        signal.signal(number, (lambda *_: None) if ignored else end)


def run(arguments):
    options = options_of(arguments)
    sessions = read_sessions(options)
    prepare_files(options)
    bench = bench_of(options)
    for session in sessions:
        if session.scenario and not options.device and not options.replay:
            engine.Client.find_scenario(session, bench)
    results = []
    status = None
    try:
        started = play_all(sessions, bench, options, results)
    except Ended as ended:
        status = 128 + ended.number
    runs = len(sessions) * options.repeat
    report.summarise(results, runs)
    if options.junit:
        report.write_junit(options.junit, results)
    if status is None and not started:
        return NO_CLIENT
    if status is None:
        status = PASSED if all(result.verdict == report.PASSED for result in results) else FAILED
    return status


def complain(text):
    print(f"tarvel-session: {text}", file=sys.stderr)


def main(arguments):
    heed_signals()
    try:
        return run(arguments)
    except (Wrong, FormatError) as error:
        complain(error)
        return WRONG
    except engine.CannotStart as error:
        complain(error)
        return NO_CLIENT
    except BrokenPipeError:
        os.dup2(os.open(os.devnull, os.O_WRONLY), sys.stdout.fileno())
        return FAILED
    except Ended as ended:
        return 128 + ended.number
