#!/usr/bin/python3
"""Breaks random lines of the product, one at a time, and tells which of the changes the tests notice.

    scripts/mutate.py [--seed N] [--count N] [--jobs N] [--rooms ROOM...] [--work DIRECTORY]

Each change is one of the operators below, made in a copy of the sources that has a build folder of its own, so the
tree stays as it is. A change that does not compile (warnings are errors) does not count; the same seed draws the same
changes. The unit and SDK tests run until the first that fails, those first that look at the changed room. What nothing
noticed is listed at the end: a hole in the tests, or a change that changes nothing. The report and one line for each
change stand in DIRECTORY/report.txt.
"""
import argparse
import concurrent.futures
import json
import pathlib
import queue
import random
import re
import resource
import shutil
import subprocess
import sys
import threading

ROOT = pathlib.Path(__file__).resolve().parents[1]
ROOMS = ["app", "base", "device", "service", "tray"]
# Tests of other things, which link none of these rooms.
ELSEWHERE = re.compile(r"virtualpad|api(document|examples)|tst_recorder")
# What looks hardest at a room runs first, each row built and run as one.
FIRST = {
    "app": [["tst_main"]],
    "base": [["tst_runtimesettings", "tst_logging", "tst_jsontext", "tst_traysettings", "tst_wpssettings"]],
    "device": [["tst_devicelog", "tst_matrix"],
               ["tst_ink", "tst_control", "tst_wpspicture", "tst_decodesave", "tst_callbacks", "tst_binding",
                "tst_fingerprint"]],
    "service": [["tst_dispatch", "tst_servicelog", "tst_origingate", "tst_originanswers"],
                ["tst_requests", "tst_websocketservice", "tst_push", "tst_wpssettings", "tst_accesssettings",
                 "tst_askorigin", "tst_servicestatus", "tst_origintext", "tst_clientsocket", "tst_clientconnections",
                 "tst_urlparameters"]],
    "tray": [["tst_trayentries", "tst_traysettings", "tst_traymanager", "tst_detectsingleinstance", "tst_startover",
              "tst_statusnotifierhost", "tst_statusonbus", "tst_originwindows", "tst_originquestion", "tst_originlist",
              "tst_main"]],
}
TEST_SECONDS = 300
TEST_BYTES = 6 << 30  # of addresses; a change may ask for memory without end

PASSED_OVER = re.compile(r"\s*(#|//|/\*|\*|\"|static_assert|template\b|class\b|struct\b|enum\b|using\b|namespace\b|"
                         r"public:|private:|protected:|Q_OBJECT|extern\b|friend\b|case\b|default:|[{}()\[\];,\s]*$)")


def balanced(text):
    return all(text.count(a) == text.count(b) for a, b in ("()", "[]", "{}"))


def outside_texts(line):
    """The line with every text and comment blanked out, of the same length."""
    blank = lambda match: match.group(0)[0] + " " * (len(match.group(0)) - 2) + match.group(0)[-1]
    return re.sub(r"//.*", lambda match: " " * len(match.group(0)), re.sub(r'"(?:\\.|[^"\\])*"', blank, line))


def replacements(line, pattern, make):
    """The line with each match of the pattern outside texts replaced in its turn."""
    return [line[:match.start()] + make(match) + line[match.end():]
            for match in re.finditer(pattern, outside_texts(line))]


def negate(lines, at):
    match = re.match(r"(\s*(?:\} else )?(?:if|while) \()(.*)(\)(?: \{)?)$", lines[at])
    return [match.group(1) + "!(" + match.group(2) + ")" + match.group(3)] if match and balanced(match.group(2)) else []


def is_statement(lines, at):
    before = next((line.strip() for line in reversed(lines[:at]) if line.strip()), "")
    line = lines[at].strip()
    return (line.endswith(";") and balanced(line) and re.match(r"[\w:*>().\[\]-]+(\(| [-+|&]?= |\+\+)", line)
            and not re.match(r"(return|for|if|else|break|continue)\b", line)
            and (before.endswith((";", "{", "}", ":", ")")) or before == "else"))


def drop(lines, at):
    return [re.match(r"\s*", lines[at]).group(0) + ";"] if is_statement(lines, at) else []


SWAPS = {"==": "!=", "!=": "==", "<": "<=", ">": ">=", "<=": "<", ">=": ">", "&&": "||", "||": "&&", "+": "-", "-": "+",
         "+=": "-="}


def swap_operator(lines, at):
    return replacements(lines[at], r"(?<= )(==|!=|<=|>=|<|>|&&|\|\||\+=|\+|-)(?= )", lambda match: SWAPS[match.group(1)])


def swap_constant(lines, at):
    other = {"true": "false", "false": "true", "nullptr": None}
    return replacements(lines[at], r"\b(true|false)\b", lambda match: other[match.group(1)]) + replacements(
        lines[at], r"(?<![\w.])\d+(?![\w.])", lambda match: str(int(match.group(0)) + 1))


def change_text(lines, at):
    return [lines[at][:match.start() + 1] + "X" + lines[at][match.start() + 2:]
            for match in re.finditer(r'"(?:\\.|[^"\\])*"', lines[at]) if match.group(0)[1] not in '"\\%']


def return_constant(lines, at):
    match = re.match(r"(\s*)return (?!(?:false|0|nullptr|QString\(\)|.*\{\});)[^;]+;$", lines[at])
    return [match.group(1) + "return {};"] if match else []


def drop_negation(lines, at):
    return replacements(lines[at], r"(?<=[( ])!(?=\w)", lambda match: "")


def swap_arguments(lines, at):
    changed = []
    for match in re.finditer(r"\w\(([^()]+), ([^(),]+)(?=[,)])", outside_texts(lines[at])):
        first, second = (lines[at][match.start(group):match.end(group)] for group in (1, 2))
        is_declaration = re.search(r"\b(const|int|bool|char|auto)\b|\w [&*]*\w", first.replace(", ", ","))
        if first.count('"') % 2 == 0 and first != second and not is_declaration:
            changed.append(lines[at][:match.start(1)] + second + ", " + first + lines[at][match.end(2):])
    return changed


def swap_lines(lines, at):
    if at + 1 < len(lines) and is_statement(lines, at) and is_statement(lines, at + 1):
        return [lines[at + 1] + "\n" + lines[at]]
    return []


OPERATORS = [negate, drop, swap_operator, swap_constant, change_text, return_constant, drop_negation, swap_arguments,
             swap_lines]


def draw(generator, files):
    """Endless changes: (file, index of the line, operator's name, changed line)."""
    places = [(file, at) for file, lines in files.items() for at, line in enumerate(lines)
              if not PASSED_OVER.match(line)]
    generator.shuffle(places)
    for file, at in places:
        lines = files[file]
        choices = [(operator.__name__, changed) for operator in OPERATORS for changed in operator(lines, at)]
        if choices:
            operator, changed = generator.choice(choices)
            yield file, at, operator, changed


class Workplace:
    """A copy of the sources with a build folder of its own."""

    def __init__(self, directory):
        self.source, self.build = directory / "source", directory / "build"

    def run(self, *command, **options):
        return subprocess.run([*map(str, command)], stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                              text=True, errors="replace", **options)

    def prepare(self, test):
        names = subprocess.run(["git", "-C", ROOT, "ls-files", "--cached", "--others", "--exclude-standard", "-z"],
                               check=True, stdout=subprocess.PIPE, text=True).stdout.split("\0")
        for name in filter(None, names):
            old, new = ROOT / name, self.source / name
            if old.is_file() and not (new.is_file() and new.read_bytes() == old.read_bytes()):
                new.parent.mkdir(parents=True, exist_ok=True)
                shutil.copy(old, new)
        configured = self.run("cmake", "-S", self.source, "-B", self.build, "-G", "Ninja", "-DBUILD_TESTING=ON",
                              "-DCMAKE_BUILD_TYPE=Debug", "-DCMAKE_CXX_FLAGS_DEBUG=-O0",
                              "-DCMAKE_COMPILE_WARNING_AS_ERROR=ON")
        if configured.returncode:
            sys.exit(configured.stdout)
        self.tests = [test["name"] for test in self.listed()]
        built, failed = self.compile(self.tests), None
        if built.returncode == 0:
            failed = self.failing(self.tests) if test else None
        if built.returncode or failed:
            sys.exit(f"without any change: {failed or built.stdout[-3000:]}")
        self.programs = {test["name"]: pathlib.Path(test["command"][-1]) for test in self.listed()}

    def listed(self):
        """What ctest knows of the tests; the command only of those that are built."""
        known = json.loads(self.run("ctest", "--test-dir", self.build, "--show-only=json-v1", "-L",
                                    "^(unit|sdk)$").stdout)
        return [test for test in known["tests"] if not ELSEWHERE.search(test["name"])]

    def compile(self, tests):
        return self.run("cmake", "--build", self.build, "--target", *tests)

    def failing(self, tests):
        """The first of the tests that fails, or None."""
        result = self.run("ctest", "--test-dir", self.build, "--stop-on-failure", "--timeout", TEST_SECONDS, "-R",
                          f"^({'|'.join(tests)})$",
                          preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_AS, (TEST_BYTES, TEST_BYTES)))
        failed = re.search(r"Test +#\d+: (\S+) .*\*\*\*", result.stdout)
        return failed.group(1) if failed else None if result.returncode == 0 else "ctest"

    def ages(self, tests):
        return {test: self.programs[test].stat().st_mtime_ns for test in tests}

    def rows(self, room):
        first = [[test for test in row if test in self.tests] for row in FIRST[room]]
        rest = [test for test in self.tests if not any(test in row for row in first)]
        return [row for row in [*first, rest] if row]

    def verdict(self, file, at, changed):
        """The test that notices the change, "" when none does, None when it does not compile."""
        path = self.source / file
        original = path.read_text()
        lines = original.split("\n")
        if "\n" in changed:
            lines[at:at + 2] = [changed]
        else:
            lines[at] = changed
        path.write_text("\n".join(lines))
        try:
            room = file.split("/")[0]
            for row in self.rows(room):
                before = self.ages(row)
                if self.compile(row).returncode:
                    return None
                # The last row holds tests of everything: what was not linked anew is not affected.
                after = self.ages(row)
                affected = row if row[0] in sum(FIRST[room], []) else [test for test in row
                                                                       if before[test] != after[test]]
                failed = self.failing(affected) if affected else None
                if failed:
                    return failed
            return ""
        finally:
            path.write_text(original)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--count", type=int, default=100, help="changes that compile (100)")
    parser.add_argument("--jobs", type=int, default=2, help="changes tried at a time (2)")
    parser.add_argument("--rooms", nargs="+", choices=ROOMS, default=ROOMS)
    parser.add_argument("--work", type=pathlib.Path, default=ROOT / "build-mutation")
    options = parser.parse_args()

    files = {str(path.relative_to(ROOT)): path.read_text().split("\n") for room in options.rooms
             for path in sorted((ROOT / room).iterdir()) if path.suffix in (".cpp", ".h")}
    changes = draw(random.Random(options.seed), files)
    workplaces = queue.SimpleQueue()
    for job in range(options.jobs):
        workplace = Workplace(options.work.resolve() / str(job))
        workplace.prepare(test=job == 0)
        workplaces.put(workplace)

    lock = threading.Lock()
    results, uncompiled = [], 0
    report = (options.work / "report.txt").open("w")

    def say(text):
        print(text, flush=True)
        print(text, file=report, flush=True)

    def work():
        nonlocal uncompiled
        workplace = workplaces.get()
        while True:
            with lock:
                change = next(changes, None) if len(results) < options.count else None
            if change is None:
                return
            file, at, operator, changed = change
            test = workplace.verdict(file, at, changed)
            with lock:
                if test is None:
                    uncompiled += 1
                elif len(results) < options.count:
                    results.append(test)
                    say(f"{test or 'SURVIVED'}: {file}:{at + 1} {operator}\n    - {files[file][at].strip()}\n"
                        f"    + {changed.strip()}")

    with concurrent.futures.ThreadPoolExecutor(options.jobs) as pool:
        for job in [pool.submit(work) for _ in range(options.jobs)]:
            job.result()
    survived = results.count("")
    say(f"seed {options.seed}: {len(results)} changes, {len(results) - survived} noticed, {survived} survived; "
        f"{uncompiled} more did not compile")


if __name__ == "__main__":
    main()
