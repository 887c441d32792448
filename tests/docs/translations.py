#!/usr/bin/env python3
"""Compares each document with its translation.

    tests/docs/translations.py --accept docs/install.md...

writes into the translation of each of them that it says what the document says now. Run it once it does.
"""
import argparse
import hashlib
import os
import pathlib
import re

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

STATE = re.compile(r"<!-- translates: (\S+) ([0-9a-f]{16}) -->")


def digest(path):
    """Of a text as it stands: a translation names it, so that a change of the prose alone is noticed too."""
    return hashlib.sha256(path.read_bytes()).hexdigest()[:16]


def state_of(original, root=ROOT):
    return f"<!-- translates: {original} {digest(root / original)} -->"


def accept(original, translation, root=ROOT):
    """Renews the line that names the original's digest; a translation without one gets it below its title."""
    path = root / translation
    text = path.read_text(encoding="utf-8")
    state = state_of(original, root)
    renewed, count = STATE.subn(state, text)
    path.write_text(renewed if count else re.sub(r"(?m)^# .*\n", rf"\g<0>{state}\n", text, count=1), encoding="utf-8")


class Pair:
    """One document, its translation, and how they differ."""

    def __init__(self, original, translation, root=ROOT, pairs=None):
        self.root = root
        self.pairs = PAIRS if pairs is None else pairs
        self.names = (original, translation)
        self.original = Document(root / original)
        self.translation = Document(root / translation)

    def differences(self):
        found = self._headings() + self._state()
        if not found:
            found = self._code() + self._tables() + self._spans() + self._links()
        return [f"{self.names[1]}: {text}" for text in found]

    def _section(self, number):
        return self.original.headings[number - 1][1] if number else "the beginning"

    def _state(self):
        match = STATE.search((self.root / self.names[1]).read_text(encoding="utf-8"))
        if match and match.group(0) == state_of(self.names[0], self.root):
            return []
        return [f"{self.names[0]} has changed since. Change the translation likewise, then run: "
                f"tests/docs/translations.py --accept {self.names[0]}"]

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


def main():
    parser = argparse.ArgumentParser(description="Marks translations as saying what their documents say.")
    parser.add_argument("--accept", nargs="+", required=True, choices=PAIRS, metavar="DOCUMENT")
    for original in parser.parse_args().accept:
        accept(original, PAIRS[original])


if __name__ == "__main__":
    main()
