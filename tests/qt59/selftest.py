#!/usr/bin/python3
"""Shows that the check for interface newer than Qt 5.9 finds what it should, and nothing else.

    tests/qt59/selftest.py BUILD-DIRECTORY
"""
import json
import pathlib
import re
import subprocess
import sys
import tempfile

HERE = pathlib.Path(__file__).resolve().parent
ROOT = HERE.parents[1]
CHECK = ROOT / "scripts" / "qt59" / "check.py"


def check(source, command):
    """The check's status and its findings as (line, version), with the source compiled like the program's main.cpp."""
    with tempfile.TemporaryDirectory() as build:
        command = dict(command, file=str(source), command=command["command"].replace(command["file"], str(source)))
        (pathlib.Path(build) / "compile_commands.json").write_text(json.dumps([command]))
        run = subprocess.run([CHECK, build], stdout=subprocess.PIPE, encoding="utf-8")
    findings = re.findall(rf"^{source.relative_to(ROOT)}:(\d+): .* came with Qt (5\.\d+)$", run.stdout, re.MULTILINE)
    return run.returncode, {(int(line), version) for line, version in findings}, run.stdout


def main():
    commands = json.loads((pathlib.Path(sys.argv[1]) / "compile_commands.json").read_text())
    command = next(entry for entry in commands if entry["file"] == str(ROOT / "app" / "main.cpp"))

    newer = HERE / "newer.cpp"
    expected = {(number, version) for number, line in enumerate(newer.read_text().splitlines(), 1)
                for version in re.findall(r"// Qt (5\.\d+)", line)}
    status, findings, output = check(newer, command)
    if status != 1 or findings != expected:
        raise SystemExit(f"status {status}; missed {sorted(expected - findings)}, "
                         f"reported too much {sorted(findings - expected)}\n{output}")

    status, findings, output = check(HERE / "older.cpp", command)
    if status != 0 or findings:
        raise SystemExit(f"status {status} for interface that Qt 5.9 has:\n{output}")
    print(f"{len(expected)} newer mentions found, the older ones passed")


main()
