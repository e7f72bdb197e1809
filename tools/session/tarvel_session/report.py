"""What comes of the runs: lines on standard output, and a file in JUnit's form."""

import sys
import statistics

PASSED, FAILED, ERROR = "passed", "FAILED", "ERROR"


class Result:
    """One run of a session."""

    def __init__(self, path, number=1, runs=1):
        self.path = path
        self.number = number
        self.runs = runs
        self.verdict = ERROR
        self.text = "interrupted"
        self.seconds = 0.0
        self.samples = []
        self.recording = None

    def name(self):
        return f"run {self.number} of {self.runs}"


def say(result):
    run = f", {result.name()}" if result.runs > 1 else ""
    reason = f" ({result.seconds:.2f} s)" if result.verdict == PASSED else f": {result.text}"
    print(f"{result.verdict}: {result.path}{run}{reason}")
    if result.recording:
        print(f"recorded in {result.recording}")
    sys.stdout.flush()


def measures(results):
    """(name, clock) -> seconds, in the order in which they were measured first."""
    found = {}
    for result in results:
        for sample in result.samples:
            found.setdefault((sample.name, sample.clock), []).append(sample.seconds)
    return found


def by_file(results):
    files = {}
    for result in results:
        files.setdefault(str(result.path), []).append(result)
    return files


def figures(seconds):
    return {"least": min(seconds), "median": statistics.median(seconds), "most": max(seconds)}


def summarise(results, runs):
    files = by_file(results)
    for path, of_file in files.items():
        before = f"{path}: " if len(files) > 1 else ""
        for (name, clock), seconds in measures(of_file).items():
            shown = ", ".join(f"{key} {time:.3f} s" for key, time in figures(seconds).items())
            times = "once" if len(seconds) == 1 else f"{len(seconds)} times"
            print(f"{before}{name}: {times}, {shown} ({clock})")
    if runs > 1:
        passed = sum(result.verdict == PASSED for result in results)
        left = runs - len(results)
        print(f"{passed} of {runs} runs passed" + (f", {left} not begun" if left else ""))


def legal(text):
    """What XML cannot hold is shown as an escape."""
    return "".join(
        char if char in "\t\n\r" or 0x20 <= ord(char) <= 0xD7FF or 0xE000 <= ord(char) <= 0xFFFD
        or 0x10000 <= ord(char) else ascii(char)[1:-1] for char in text)


def write_junit(path, results):
    import xml.etree.ElementTree as xml

    def add(parent, tag, text=None, **attributes):
        element = xml.SubElement(parent, tag, {key: legal(str(value))
                                               for key, value in attributes.items()})
        element.text = legal(text) if text else None
        return element

    def counts(some):
        return {"tests": len(some),
                "failures": sum(result.verdict == FAILED for result in some),
                "errors": sum(result.verdict == ERROR for result in some),
                "time": f"{sum(result.seconds for result in some):.3f}"}

    root = xml.Element("testsuites", {key: str(value) for key, value in counts(results).items()})
    for file, of_file in by_file(results).items():
        suite = add(root, "testsuite", name=file, skipped=0, **counts(of_file))
        found = measures(of_file)
        properties = add(suite, "properties") if found else None
        for (name, clock), seconds in found.items():
            add(properties, "property", name=f"{name}.clock", value=clock)
            add(properties, "property", name=f"{name}.times", value=len(seconds))
            for key, time in figures(seconds).items():
                add(properties, "property", name=f"{name}.{key}", value=f"{time:.6f}")
        for result in of_file:
            case = add(suite, "testcase", classname=file, name=result.name(),
                       time=f"{result.seconds:.3f}")
            if result.verdict != PASSED:
                add(case, "failure" if result.verdict == FAILED else "error", result.text,
                    message=result.text.partition("\n")[0])
            lines = [f"{sample.name}: {sample.seconds:.6f} s ({sample.clock})"
                     for sample in result.samples]
            lines += [f"recorded in {result.recording}"] if result.recording else []
            if lines:
                add(case, "system-out", "\n".join(lines))
    tree = xml.ElementTree(root)
    xml.indent(tree)
    tree.write(path, encoding="utf-8", xml_declaration=True)
