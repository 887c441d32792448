"""Reads Markdown documents as far as two of them can be compared: headings, code, tables, links, pictures."""
import pathlib
import re

FENCE = re.compile(r"^\s*```(\S*)\s*$")
HEADING = re.compile(r"^(#{1,6}) (.+?)\s*$")
TABLE_RULE = re.compile(r"^\|(?:\s*:?-+:?\s*\|)+\s*$")
CODE_SPAN = re.compile(r"`([^`]+)`")
LINK = re.compile(r"(!?)\[(?:[^\]]*)\]\(([^)\s]+)\)")
COMMENT = re.compile(r"(?:^|\s+)(?:#|//)(?:\s.*)?$|\s*/\*.*?\*/|\s*<!--.*?-->")


def slug(heading):
    """The anchor that a heading gets where Markdown is shown."""
    return re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", "-")


def cells(row):
    """The cells of one row of a table; a "|" that is escaped or within code is none of its borders."""
    kept = CODE_SPAN.sub(lambda match: match.group(0).replace("|", "\0"), row.strip().replace(r"\|", "\0"))
    return [cell.strip().replace("\0", "|") for cell in kept.strip("|").split("|")]


def without_comments(line):
    return COMMENT.sub("", line).rstrip()


class Document:
    """What a translation of a document has in common with it, by the section it stands in."""

    def __init__(self, path):
        self.path = pathlib.Path(path)
        self.headings = []   # (level, text)
        self.code = []       # (section, language, lines without their comments)
        self.tables = []     # (section, [[code spans of a cell] of a row])
        self.links = []      # (section, is a picture, target)
        self.spans = {}      # section: sorted code spans of its prose
        self._read(self.path.read_text(encoding="utf-8").splitlines())

    def anchors(self):
        return [slug(text) for _, text in self.headings]

    def _read(self, lines):
        prose = {}
        number = 0
        while number < len(lines):
            line = lines[number]
            section = len(self.headings)
            if FENCE.match(line):
                number = self._read_code(lines, number, section)
                continue
            if line.startswith("    "):
                self.code.append((section, "", [line.strip()]))
                number += 1
                continue
            if HEADING.match(line):
                marks, text = HEADING.match(line).groups()
                self.headings.append((len(marks), text))
                section += 1
            elif line.startswith("|") and number + 1 < len(lines) and TABLE_RULE.match(lines[number + 1]):
                number = self._read_table(lines, number, section)
                continue
            prose.setdefault(section, []).append(line)
            number += 1
        for section, text in prose.items():
            joined = " ".join(text)
            self.spans[section] = sorted(CODE_SPAN.findall(joined))
            self._read_links(joined, section)

    def _read_code(self, lines, number, section):
        language = FENCE.match(lines[number]).group(1)
        end = number + 1
        while end < len(lines) and lines[end].strip() != "```":
            end += 1
        kept = [without_comments(line) for line in lines[number + 1:end]]
        self.code.append((section, language, [line for line in kept if line]))
        return end + 1

    def _read_table(self, lines, number, section):
        rows = []
        while number < len(lines) and lines[number].startswith("|"):
            if not TABLE_RULE.match(lines[number]):
                rows.append([sorted(CODE_SPAN.findall(cell)) for cell in cells(lines[number])])
                self._read_links(lines[number], section)
            number += 1
        self.tables.append((section, rows))
        return number

    def _read_links(self, text, section):
        for picture, target in LINK.findall(CODE_SPAN.sub("", text)):
            self.links.append((section, bool(picture), target))
