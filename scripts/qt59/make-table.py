#!/usr/bin/python3
"""Writes newer-than-5.9.txt: what Qt's interface has gained after Qt 5.9, from two records of it.

One is Qt's documentation, which says of most declarations with which version they came. The other is the list of
symbols that Debian keeps for each library, which says since when a symbol has been exported; it knows what the
documentation forgot. Needs the documentation with its index files, of the same version as the installed headers
(qtbase5-doc-html, qtwebsockets5-doc-html), and libclang (python3-clang-14). Run it when the checked modules change:

    scripts/qt59/make-table.py /usr/share/qt5/doc
"""
import html
import pathlib
import re
import subprocess
import sys
import xml.etree.ElementTree as ElementTree

from clang.cindex import CursorKind

from interface import DECLARATIONS, TABLE, identity, macro_identity, parse, qualified_name

OLDEST = (5, 9)
# The name of a module in the documentation's directories, in headers' and in libraries' names.
MODULES = [("qtcore", "QtCore", "libqt5core5a"), ("qtgui", "QtGui", "libqt5gui5"),
           ("qtwidgets", "QtWidgets", "libqt5widgets5"), ("qtnetwork", "QtNetwork", "libqt5network5"),
           ("qtwebsockets", "QtWebSockets", "libqt5websockets5"), ("qtdbus", "QtDBus", "libqt5dbus5"),
           ("qttestlib", "QtTest", "libqt5test5")]
# Declared elsewhere than the documentation says.
ELSEWHERE = {
    "QAtomicInteger::loadRelaxed": "QBasicAtomicInteger::loadRelaxed",
    "QAtomicInteger::storeRelaxed": "QBasicAtomicInteger::storeRelaxed",
    "QAtomicPointer::loadRelaxed": "QBasicAtomicPointer::loadRelaxed",
    "QAtomicPointer::storeRelaxed": "QBasicAtomicPointer::storeRelaxed",
    "QSharedPointer::get": "QSharedPointer::get",
}
# A version in the text on an enumerator counts when the text says that the enumerator came with it.
ENUMERATOR_ROW = re.compile(r"<tr[^>]*>\s*<td[^>]*><code>([\w:]+)</code>(.*?)</tr>", re.DOTALL)
ENUMERATOR_SINCE = re.compile(r"(?:^|[^d] |\(|\[)(?:since|added in|introduced in|available since)"
                              r"(?: version)?(?: Qt)? (5\.\d+)", re.IGNORECASE)
SYMBOL_KINDS = {CursorKind.FUNCTION_DECL, CursorKind.CXX_METHOD, CursorKind.CONSTRUCTOR}
SYMBOL = re.compile(r"^ (\w+)@Qt_5 (\d\S*)$", re.MULTILINE)


def minor(version):
    """'5.12' of '5.12.4', or None when that is not newer than the oldest version that the project is built against."""
    number = re.match(r"(\d+)\.(\d+)", version)
    if not number or (int(number.group(1)), int(number.group(2))) <= OLDEST:
        return None
    return number.group(0)


def without_arguments(name):
    """The name as the documentation writes it: a template's constructor is called like the template."""
    return name if "operator" in name else name.split("<")[0]


def symbol(cursor):
    """The symbol of a function of its own or of an ordinary class; or None."""
    parent = cursor.semantic_parent
    while parent.kind in (CursorKind.NAMESPACE, CursorKind.CLASS_DECL, CursorKind.STRUCT_DECL):
        parent = parent.semantic_parent
    if parent.kind != CursorKind.TRANSLATION_UNIT or cursor.kind not in SYMBOL_KINDS:
        return None
    # A class that learns to move is copied by the same source in 5.9.
    if cursor.is_move_constructor() or cursor.is_copy_constructor() or cursor.spelling == "operator=":
        return None
    return cursor.mangled_name


def documented(documents):
    """Yields what the documentation dates: (version as minor() gives it, element of the index)."""
    for directory, _, _ in MODULES:
        for element in ElementTree.parse(documents / directory / f"{directory}.index").iter():
            # A property is used through its functions, which have entries of their own; *_p.h is not interface.
            if (element.get("since") and element.tag != "property"
                    and not element.get("location", "").endswith("_p.h")):
                yield minor(element.get("since")), element


def documented_enumerators(documents):
    """Yields (version, name) of enumerators that came to an older enumeration."""
    for directory, _, _ in MODULES:
        for page in (documents / directory).glob("*.html"):
            for name, text in ENUMERATOR_ROW.findall(page.read_text(errors="replace")):
                plain = re.sub(r"\s+", " ", html.unescape(re.sub(r"<[^>]*>", " ", text)))
                since = ENUMERATOR_SINCE.search(plain)
                if since and minor(since.group(1)):
                    yield minor(since.group(1)), name


def output(*command):
    return subprocess.run(command, stdout=subprocess.PIPE, encoding="utf-8", check=True).stdout.strip()


def exported():
    """Maps each newer symbol of the libraries to the version it came with."""
    newer = {}
    for _, _, package in MODULES:
        package += ":" + output("dpkg", "--print-architecture")
        symbols = pathlib.Path(output("dpkg-query", "--control-path", package, "symbols"))
        for symbol, version in SYMBOL.findall(symbols.read_text()):
            if minor(version):
                newer[symbol] = minor(version)
    return newer


def declarations():
    """All that Qt's headers declare, macros aside."""
    headers = f"/usr/include/{output('cc', '-print-multiarch')}/qt5"
    source = "".join(f"#include <{module}/{module}>\n" for _, module, _ in MODULES)
    flags = ["-std=c++17", "-fPIC", f"-I{headers}"] + [f"-I{headers}/{module}" for _, module, _ in MODULES]
    unit = parse("modules.cpp", flags, [("modules.cpp", source)])
    return [cursor for cursor in unit.cursor.walk_preorder() if cursor.kind in DECLARATIONS
            and cursor.location.file and cursor.location.file.name.startswith(headers)]


def main():
    documents, symbols = pathlib.Path(sys.argv[1]), exported()
    places, names, rows, unknown = {}, {}, {}, []
    for cursor in declarations():
        name = without_arguments(qualified_name(cursor))
        places.setdefault((pathlib.Path(cursor.location.file.name).name, cursor.location.line), []).append(cursor)
        names.setdefault(name, []).append(cursor)
        if symbol(cursor) in symbols:
            rows[identity(cursor)] = (name, symbols[symbol(cursor)])

    def add(version, name, found):
        rows.update({identity(cursor): (name, version) for cursor in found})
        if not found:
            unknown.append(f"{version} {name}")

    for version, element in documented(documents):
        name = element.get("fullname") or element.get("name")
        if element.get("meta", "").startswith("macro"):
            if version:
                rows[macro_identity(name)] = (name, version)
            continue
        found = [cursor for cursor in places.get((element.get("location"), int(element.get("lineno", 0))), [])
                 if without_arguments(cursor.spelling) == name.split("::")[-1]]
        # Some lines are for the documentation tool alone; what the compiler sees in their place is a template.
        found = found or [cursor for cursor in names.get(name, []) if cursor.kind == CursorKind.FUNCTION_TEMPLATE]
        found = found or names.get(ELSEWHERE.get(name), [])
        if version:
            add(version, name, found)
        else: # a symbol can be newer than the function: it was inline before
            for cursor in found:
                rows.pop(identity(cursor), None)
    for version, name in documented_enumerators(documents):
        add(version, name, names.get(name, []))

    TABLE.write_text("".join(f"{version} {name} {key}\n" for key, (name, version)
                             in sorted(rows.items(), key=lambda row: (row[1][0], row[0]))))
    print(f"{len(rows)} declarations newer than Qt 5.9; {len(unknown)} documented, but not in the headers:")
    print("\n".join(unknown))


main()
