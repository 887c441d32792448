#!/usr/bin/python3
"""Fails when a built file needs a library newer than the oldest desktop has, and names each symbol that is too new.

    scripts/check-symbols.py [--qt-only] FILE...

Prints a table of the newest version of each library that each file needs. The symbols of the C and C++ runtime carry their
versions; those of Qt do not, so the symbols files of the Qt packages that are installed for the file's architecture say
with which release each one came. --qt-only leaves out the runtime, which is as new as the system that a file is built on.
"""
import argparse
import pathlib
import re
import subprocess

# NeoKylin 7: the oldest runtime and the oldest Qt of the desktops.
NEWEST_ALLOWED = {"GLIBC": "2.17", "GLIBCXX": "3.4.19", "CXXABI": "1.3.7", "GCC": "4.8", "Qt": "5.9"}
SYMBOLS_FILES = pathlib.Path("/var/lib/dpkg/info")
ARCHITECTURES = {"Advanced Micro Devices X86-64": "amd64", "AArch64": "arm64"}
UNKNOWN = "999"


def readelf(option, file):
    return subprocess.run(["readelf", option, "--wide", file], stdout=subprocess.PIPE, encoding="utf-8", check=True,
                          env={"PATH": "/usr/bin:/bin", "LC_ALL": "C"}).stdout


def comparable(version):
    return [int(number) for number in version.split(".")]


def qt_releases(file):
    """With which release of Qt each of its symbols came, for the architecture of the file."""
    architecture = ARCHITECTURES[re.search(r"Machine: +(.+)", readelf("--file-header", file))[1].strip()]
    releases = {}
    for path in SYMBOLS_FILES.glob(f"libqt5*:{architecture}.symbols"):
        releases.update(re.findall(r"^ (\w+)@Qt_5 (\d+\.\d+)", path.read_text(), re.MULTILINE))
    if not releases:
        raise SystemExit(f"{file}: no Qt is installed here for {architecture}")
    return releases


def requirements(file):
    """What a file takes from the libraries in question, as (library, version, symbol)."""
    releases = qt_releases(file)
    for symbol, node in re.findall(r" UND (\w+)@(\w[\w.]*)", readelf("--dyn-syms", file)):
        library, version = node.split("_", 1)
        if library == "Qt":
            # Any other node than Qt_5 belongs to a single release.
            yield library, releases.get(symbol, UNKNOWN) if node == "Qt_5" else UNKNOWN, symbol
        elif library in NEWEST_ALLOWED:
            yield library, version, symbol


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--qt-only", action="store_true")
    parser.add_argument("files", nargs="+", metavar="FILE")
    arguments = parser.parse_args()
    libraries = ["Qt"] if arguments.qt_only else list(NEWEST_ALLOWED)
    row = "{:<60}" + " {:>8}" * len(libraries)
    lines, too_new = [row.format("", *libraries)], []
    for file in arguments.files:
        newest = {}
        for library, version, symbol in requirements(file):
            newest[library] = max(newest.get(library, "0"), version, key=comparable)
            if library in libraries and comparable(version) > comparable(NEWEST_ALLOWED[library]):
                too_new.append(f"{file}: {symbol} came with {library} {version.replace(UNKNOWN, '(unknown)')}")
        lines.append(row.format(file[-60:], *(newest.get(library, "-") for library in libraries)))
    print("\n".join(lines + too_new))
    raise SystemExit(1 if too_new else 0)


main()
