"""What the table of newer interface and the check that uses it share: how a declaration of Qt is named."""
import pathlib

import clang.cindex
from clang.cindex import CursorKind

TABLE = pathlib.Path(__file__).with_name("newer-than-5.9.txt")

DECLARATIONS = {
    CursorKind.CLASS_DECL, CursorKind.STRUCT_DECL, CursorKind.CLASS_TEMPLATE, CursorKind.UNION_DECL,
    CursorKind.ENUM_DECL, CursorKind.ENUM_CONSTANT_DECL, CursorKind.TYPEDEF_DECL, CursorKind.TYPE_ALIAS_DECL,
    CursorKind.TYPE_ALIAS_TEMPLATE_DECL, CursorKind.FUNCTION_DECL, CursorKind.FUNCTION_TEMPLATE,
    CursorKind.CXX_METHOD, CursorKind.CONSTRUCTOR, CursorKind.DESTRUCTOR, CursorKind.CONVERSION_FUNCTION,
    CursorKind.VAR_DECL, CursorKind.FIELD_DECL, CursorKind.NAMESPACE,
}


def parse(path, flags, unsaved=None):
    """Parses one source file, macros included; stops the script when clang finds an error in it."""
    unit = clang.cindex.Index.create().parse(
        path, args=flags, unsaved_files=unsaved,
        options=clang.cindex.TranslationUnit.PARSE_DETAILED_PROCESSING_RECORD)
    errors = [str(note) for note in unit.diagnostics if note.severity >= clang.cindex.Diagnostic.Error]
    if errors:
        raise SystemExit("\n".join(errors))
    return unit


def qualified_name(cursor):
    name = cursor.spelling
    parent = cursor.semantic_parent
    while parent is not None and parent.kind != CursorKind.TRANSLATION_UNIT:
        # Enumerators of an unscoped enumeration are named by what holds the enumeration.
        if parent.spelling and not (parent.kind == CursorKind.ENUM_DECL and not parent.is_scoped_enum()):
            name = f"{parent.spelling}::{name}"
        parent = parent.semantic_parent
    return name


def macro_identity(name):
    return "macro:" + name


def identity(cursor):
    """Clang's stable name of a declaration, the same for every overload's every mention and in every build."""
    return macro_identity(cursor.spelling) if cursor.kind == CursorKind.MACRO_INSTANTIATION else cursor.get_usr()
