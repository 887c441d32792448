#!/usr/bin/env python3
"""Compares each document with its translation.

    tests/docs/translations.py --accept docs/install.md...

writes into the translation of each of them that it says what the document says now. Run it once it does.
"""
import argparse
import difflib
import hashlib
import os
import pathlib
import re
import shlex

from documents import Document

ROOT = pathlib.Path(__file__).resolve().parents[2]

# The English document and its Chinese one, from the top of the tree.
PAIRS = {
    "README.md": "README.zh-CN.md",
    "docs/api.md": "docs/zh/api.md",
    "docs/install.md": "docs/zh/install.md",
    "docs/integration.md": "docs/zh/integration.md",
    "docs/security.md": "docs/zh/security.md",
    "docs/virtual-pad.md": "docs/zh/virtual-pad.md",
}
MANUALS = {"packaging/mvsignctl.1": "packaging/mvsignctl.zh_CN.1"}

STATE = re.compile(r"translates: \S+ [0-9a-f]{16}")


def digest(path):
    """Of a text as it stands: a translation names it, so that a change of the prose alone is noticed too."""
    return hashlib.sha256(path.read_bytes()).hexdigest()[:16]


def state_of(original, root=ROOT):
    return f"translates: {original} {digest(root / original)}"


def accept(original, translation, root=ROOT):
    """Renews the comment in which the translation names the original and its digest."""
    path = root / translation
    text, count = STATE.subn(state_of(original, root), path.read_text(encoding="utf-8"))
    if count != 1:
        raise SystemExit(f"{translation}: no comment of the form \"{state_of(original, root)}\"")
    path.write_text(text, encoding="utf-8")


def stale(original, translation, root=ROOT):
    match = STATE.search((root / translation).read_text(encoding="utf-8"))
    if match and match.group(0) == state_of(original, root):
        return []
    return [f"{original} has changed since. Change the translation likewise, then run: "
            f"tests/docs/translations.py --accept {original}"]


class Pair:
    """One document, its translation, and how they differ."""

    def __init__(self, original, translation, root=ROOT, pairs=None):
        self.root = root
        self.pairs = PAIRS if pairs is None else pairs
        self.names = (original, translation)
        self.original = Document(root / original)
        self.translation = Document(root / translation)

    def differences(self):
        found = self._headings() + stale(*self.names, self.root)
        if not found:
            found = self._code() + self._tables() + self._spans() + self._links()
        return [f"{self.names[1]}: {text}" for text in found]

    def _section(self, number):
        return self.original.headings[number - 1][1] if number else "the beginning"

    def _headings(self):
        one, other = ([level for level, _ in document.headings] for document in (self.original, self.translation))
        return [] if one == other else [f"headings of levels {other} instead of {one}"]

    def _code(self):
        return self._unequal("code block", self.original.code, self.translation.code)

    def _tables(self):
        return self._unequal("table", self.original.tables, self.translation.tables)

    def _unequal(self, what, one, other):
        if len(one) != len(other):
            return [f"{len(other)} {what}s instead of {len(one)}"]
        return [f"{what} in \"{self._section(a[0])}\":\n  {b[1:]}\ninstead of\n  {a[1:]}"
                for a, b in zip(one, other) if a != b]

    def _spans(self):
        one, other = self.original.spans, self.translation.spans
        return [f"code in the text of \"{self._section(section)}\":\n  {other.get(section, [])}\ninstead of\n"
                f"  {one.get(section, [])}"
                for section in sorted({*one, *other}) if one.get(section, []) != other.get(section, [])]

    def _links(self):
        one = [(section, picture, self._expected(target)) for section, picture, target in self.original.links]
        other = [(section, picture, self._place(self.translation, target))
                 for section, picture, target in self.translation.links]
        found = [f"links {sorted(set(other) - set(one), key=str)} instead of {sorted(set(one) - set(other), key=str)}"] \
            if sorted(one, key=str) != sorted(other, key=str) else []
        return found + [f"no such place: {target}" for document in (self.original, self.translation)
                        for _, _, target in document.links if not self._exists(document, target)]

    def _expected(self, target):
        """Where the translation's link goes when the original's goes to the target."""
        place, anchor = self._place(self.original, target)
        if place == self.names[1]:
            return self.names[0], anchor
        return self.pairs.get(place, place), anchor

    def _place(self, document, target):
        """The file from the top of the tree (or the address as it is), and the number of the heading."""
        if "://" in target:
            return target, None
        path, _, anchor = target.partition("#")
        file = document.path.parent / path if path else document.path
        name = os.path.relpath(os.path.normpath(file), self.root)
        return name, self._heading(file, anchor) if anchor else None

    @staticmethod
    def _heading(file, anchor):
        anchors = Document(file).anchors() if file.is_file() else []
        return anchors.index(anchor) if anchor in anchors else anchor

    def _exists(self, document, target):
        place, anchor = self._place(document, target)
        return "://" in place or ((self.root / place).exists() and not isinstance(anchor, str))


class Manual:
    """What a translation of a manual page has in common with it: its requests with the words that are no prose."""

    PROSE = {".SH": 0, ".TH": 4}  # the arguments of these, up to that number, are the same in each language

    def __init__(self, path):
        self.requests = []
        verbatim = False
        for line in path.read_text(encoding="utf-8").splitlines():
            if line.startswith((".nf", ".fi")):
                verbatim = line.startswith(".nf")
            if line.startswith((".\\\"", "'", ".ad ")):  # comments, and how text without blanks is filled
                continue
            if line.startswith("."):
                self.requests.append(self._request(line))
            elif verbatim:
                self.requests.append(line)

    @classmethod
    def _request(cls, line):
        name, *arguments = shlex.split(line.replace("\\-", "-").replace("\\c", ""))
        words = re.findall(r"[\w./=-]*[A-Za-z0-9][\w./=-]*", " ".join(arguments[:cls.PROSE.get(name)]), re.ASCII)
        return [name, *words]


def manual_differences(original, translation, root=ROOT):
    one, other = Manual(root / original).requests, Manual(root / translation).requests
    lines = difflib.unified_diff([str(line) for line in one], [str(line) for line in other], original, translation,
                                 lineterm="")
    return stale(original, translation, root) + list(lines)


def main():
    pairs = {**PAIRS, **MANUALS}
    parser = argparse.ArgumentParser(description="Marks translations as saying what their documents say.")
    parser.add_argument("--accept", nargs="+", required=True, choices=pairs, metavar="DOCUMENT")
    for original in parser.parse_args().accept:
        accept(original, pairs[original])


if __name__ == "__main__":
    main()
