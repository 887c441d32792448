#!/usr/bin/python3
"""Fails when the project uses interface of Qt that is newer than Qt 5.9, the oldest version it is built against.

    scripts/qt59/check.py BUILD-DIRECTORY [FILE...]

The build directory holds compile_commands.json and the generated sources; without files, all the project's sources
that it names are checked, with every header of the project they include. Clang says which declaration of Qt each
mention means, so the check sees overloads, implicit conversions and macros as the compiler does, and
newer-than-5.9.txt says which declarations are newer. Needs libclang (python3-clang-14).
"""
import concurrent.futures
import functools
import pathlib
import shlex
import sys

import clang.cindex
from clang.cindex import CursorKind

from interface import TABLE, identity, parse

ROOT = pathlib.Path(__file__).resolve().parents[2]
# The one place that may ask which Qt it is built with.
BRIDGE = ROOT / "base" / "QtCompat.h"
# Overloads that took over a call of an older one by their default arguments, and how many arguments that call has.
TOOK_OVER = {"QString::split": 1, "QString::splitRef": 1, "QStringRef::split": 1, "QThread::wait": 0,
             "QWaitCondition::wait": 1}
# Overloads that took over the calls with a QLatin1String, which Qt 5.9 turns into a QString by itself.
TOOK_LATIN1 = {"QJsonObject::insert", "QString::arg"}


def read_table():
    rows = (line.split(" ", 2) for line in TABLE.read_text().splitlines())
    return {key: (version, name) for version, name, key in rows}


def meant(cursor):
    """What a mention may mean: one declaration, or all of an overloaded name that a template leaves open."""
    if cursor.kind == CursorKind.MACRO_INSTANTIATION:
        return [cursor]
    if cursor.referenced is None:
        return []
    if cursor.referenced.kind == CursorKind.OVERLOADED_DECL_REF:
        count = clang.cindex.conf.lib.clang_getNumOverloadedDecls(cursor.referenced)
        return [clang.cindex.conf.lib.clang_getOverloadedDecl(cursor.referenced, index) for index in range(count)]
    return [cursor.referenced]


def newer(cursor, table):
    """The table's row of a declaration or of what it is a part of; or None."""
    while cursor is not None and cursor.kind != CursorKind.TRANSLATION_UNIT:
        template = clang.cindex.conf.lib.clang_getSpecializedCursorTemplate(cursor)
        while template:
            cursor = template
            template = clang.cindex.conf.lib.clang_getSpecializedCursorTemplate(cursor)
        row = table.get(identity(cursor))
        if row:
            return row
        cursor = cursor.semantic_parent
    return None


@functools.lru_cache(maxsize=None)
def checked_path(name, build):
    """The path in the project of a file to check, or None."""
    path = pathlib.Path(name).resolve()
    if not path.is_relative_to(ROOT) or path.is_relative_to(build) or path == BRIDGE:
        return None
    return path.relative_to(ROOT)


def place(cursor, build):
    """Where in the sources to check a cursor stands: 'file:line', or None."""
    location = cursor.location
    path = location.file and checked_path(location.file.name, build)
    return path and f"{path}:{location.line}"


def is_as_before(cursor, name):
    """Whether a mention of a newer overload means an older one when it is built with Qt 5.9."""
    if name in TOOK_LATIN1:
        return "QLatin1String" in [argument.type.spelling for argument in cursor.referenced.get_arguments()]
    if name not in TOOK_OVER:
        return False
    given = [argument for argument in cursor.get_arguments() if argument.extent.start.file]
    return cursor.kind != CursorKind.CALL_EXPR or len(given) <= TOOK_OVER[name]


def findings(source, flags, build):
    """Returns 'file:line: what' of each mention of newer interface in one source and the headers it includes."""
    table = read_table()
    found = []
    for part in parse(source, flags).cursor.get_children():
        for cursor in part.walk_preorder() if place(part, build) else ():
            rows = [newer(declaration, table) for declaration in meant(cursor)] if place(cursor, build) else []
            if rows and all(rows) and not is_as_before(cursor, rows[0][1]):
                found.append(f"{place(cursor, build)}: {rows[0][1]} came with Qt {rows[0][0]}")
    return found


def commands(build, chosen):
    """Yields (source, flags) of the project's sources that the build compiles, the chosen ones or all."""
    database = clang.cindex.CompilationDatabase.fromDirectory(str(build))
    for command in database.getAllCompileCommands():
        path = (pathlib.Path(command.directory) / command.filename).resolve()
        if path.is_relative_to(build) or not path.is_relative_to(ROOT) or (chosen and path not in chosen):
            continue
        words = [word for word in list(command.arguments)[1:] if word not in ("-c", "--", command.filename)]
        if "-o" in words:
            del words[words.index("-o"):words.index("-o") + 2]
        yield str(path), [word for word in words if word != "-Werror"]


def main():
    build = pathlib.Path(sys.argv[1]).resolve()
    work = list(commands(build, {pathlib.Path(name).resolve() for name in sys.argv[2:]}))
    if not work:
        raise SystemExit(f"{build} compiles none of the sources to check")
    with concurrent.futures.ProcessPoolExecutor() as pool:
        results = [pool.submit(findings, source, flags, build) for source, flags in work]
        found = sorted({line for result in results for line in result.result()})
    print("\n".join(found) if found else f"{len(work)} sources use nothing newer than Qt 5.9")
    raise SystemExit(1 if found else 0)


if __name__ == "__main__":
    main()
