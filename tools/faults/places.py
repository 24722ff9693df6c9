"""Finds the places of a source file that a small fault can be put into, with libclang."""
import json
import re
import shlex
import zlib
from collections import Counter
from multiprocessing import Pool
from pathlib import Path

from clang.cindex import CursorKind as K, Index, TranslationUnit, TypeKind

SWAPPED = {"<": "<=", "<=": "<", ">": ">=", ">=": ">", "==": "!=", "!=": "==", "&&": "||", "||": "&&",
           "+": "-", "-": "+", "*": "/", "/": "*"}
OPERATORS = {**dict.fromkeys(("<", "<=", ">", ">=", "==", "!="), "relation"), **dict.fromkeys(("&&", "||"), "logic"),
             **dict.fromkeys("+-*/", "arithmetic")}
# What the compiler has to know, and what is no code of its own: nothing below these is changed.
FIXED = {K.STATIC_ASSERT, K.ENUM_DECL, K.PARM_DECL, K.TYPE_ALIAS_DECL, K.TYPEDEF_DECL, K.CXX_UNARY_EXPR,
         K.TEMPLATE_NON_TYPE_PARAMETER, K.TEMPLATE_TYPE_PARAMETER, K.ANNOTATE_ATTR, K.UNEXPOSED_ATTR}
FUNCTIONS = {K.FUNCTION_DECL, K.CXX_METHOD, K.CONSTRUCTOR, K.DESTRUCTOR, K.CONVERSION_FUNCTION, K.FUNCTION_TEMPLATE}
BODY_LAST = {K.FOR_STMT, K.WHILE_STMT, K.CXX_FOR_RANGE_STMT, K.CASE_STMT, K.DEFAULT_STMT}
# Precompiled headers: incomplete, with the record that the files are read with, and for serialization, of which the binding has no name.
FOR_HEADERS = TranslationUnit.PARSE_INCOMPLETE | TranslationUnit.PARSE_DETAILED_PROCESSING_RECORD | 0x10


class Places:
    """Walks one file. A place: where, what stands there, what the fault makes of it, and the type that both are cast to."""

    def __init__(self, unit, name, text):
        self.name, self.text, self.found = name, text, {}
        here = [c for c in unit.cursor.get_children() if c.location.file is not None and c.location.file.name == name]
        self.macros = [(c.extent.start.offset, c.extent.end.offset) for c in here if c.kind == K.MACRO_INSTANTIATION]
        for cursor in here:
            if not cursor.kind.is_preprocessing():
                self.visit(cursor, None)

    def of(self, cursor):
        return self.between(cursor.extent.start.offset, cursor.extent.end.offset)

    def between(self, start, end):
        return self.text[start:end].decode("utf-8", "replace")

    def coin(self, cursor):
        """The same for the same place, in whatever folder the tree lies."""
        return zlib.crc32(f"{Path(self.name).name}{cursor.extent.start.offset}".encode()) & 1

    def add(self, cursor, operator, changed, cast=""):
        start, end = cursor.extent.start.offset, cursor.extent.end.offset
        original = self.of(cursor)
        if end > start and not any(a < end and start < b for a, b in self.macros) and "#" not in original:
            self.found[start, end, operator, changed] = {
                "start": start, "end": end, "line": cursor.extent.start.line, "operator": operator,
                "original": original, "changed": changed, "cast": cast}

    def visit(self, cursor, parent):
        head = self.head_of(cursor)
        if cursor.kind in FIXED or re.search(r"\bconst(expr|eval|init)\b", head):
            return
        children = list(cursor.get_children())
        condition = self.condition_of(cursor, children)
        if condition is not None and re.match(r"if\s+constexpr", self.of(cursor)):
            children.remove(condition)
        elif condition is not None and self.of(condition) != "true":
            # An endless loop is found by every test.
            self.add(condition, "condition", "true" if cursor.kind == K.IF_STMT and self.coin(condition) else "false", "bool")
        self.expression(cursor, children, parent)
        statements = children if cursor.kind in (K.COMPOUND_STMT, K.IF_STMT) else children[-1:] if cursor.kind in BODY_LAST else []
        for child in statements:
            if condition is None or child != condition:
                self.statement(child)
        for child in children[1:] if cursor.kind == K.CASE_STMT else children:
            self.visit(child, cursor)

    def head_of(self, cursor):
        """A declaration up to its name or body, where it says that it is constant."""
        if cursor.kind in FUNCTIONS:
            return self.between(cursor.extent.start.offset, cursor.location.offset)
        return self.of(cursor).split("=")[0].split("{")[0] if cursor.kind in (K.VAR_DECL, K.FIELD_DECL) else ""

    def condition_of(self, cursor, children):
        if cursor.kind == K.DO_STMT:
            return children[-1]
        if cursor.kind in (K.IF_STMT, K.WHILE_STMT):
            for child in children:
                rest = self.text[child.extent.end.offset:cursor.extent.end.offset].lstrip()
                if child.kind.is_expression() and rest.startswith(b")"):
                    return child
        return None

    def expression(self, cursor, children, parent):
        text = self.of(cursor)
        if cursor.kind == K.INTEGER_LITERAL:
            self.number(cursor, text, parent)
        elif cursor.kind == K.CXX_BOOL_LITERAL_EXPR:
            self.add(cursor, "bool", "false" if text == "true" else "true")
        elif cursor.kind == K.UNARY_OPERATOR and re.match("!(?!=)", text) and children:
            self.add(cursor, "not", self.of(children[0]), "bool")
        elif cursor.kind == K.RETURN_STMT and children:
            value = children[0]
            if value.type.get_canonical().kind == TypeKind.BOOL and not re.match(r"(!.*|true|false)$", self.of(value), re.S):
                self.add(value, "return", f"!({self.of(value)})", "bool")
        elif cursor.kind == K.CALL_EXPR and re.match(r"std::(ranges::)?(min|max)\b", text):
            swap = {"min": "max", "max": "min"}
            self.add(cursor, "min-max", re.sub(r"\b(min|max)\b", lambda m: swap[m[0]], text, count=1))
        elif len(children) >= 2:
            self.two_sides(cursor, children)

    def number(self, cursor, text, parent):
        match = re.fullmatch(r"(0[xX][0-9a-fA-F']+|0[bB][01']+|[0-9']+)([uUlLzZ]*)", text)
        before = self.text[:cursor.extent.start.offset].rstrip()[-1:]
        is_type = parent.kind in (K.DECL_REF_EXPR, K.MEMBER_REF_EXPR) or \
            parent.kind in (K.VAR_DECL, K.FIELD_DECL) and before not in b"=({"
        if match is None or is_type:
            return
        digits = match[1].replace("'", "")
        value = int(digits, 8 if re.fullmatch("0[0-7]+", digits) else 0)
        self.add(cursor, "number", f"{value + (-1 if value > 0 and self.coin(cursor) else 1)}{match[2]}")

    def two_sides(self, cursor, children):
        """a OP b, also where the operator is a function."""
        is_call = cursor.kind == K.CALL_EXPR and cursor.spelling.startswith("operator") and len(children) == 3
        left, right = (children[0], children[2]) if is_call else children[-2:]
        if len(children) != 2 and not is_call:
            return
        sign = self.between(left.extent.end.offset, right.extent.start.offset).strip()
        if sign not in SWAPPED:
            return
        if OPERATORS[sign] == "arithmetic" and (is_call or not self.is_number(left) or not self.is_number(right)):
            return
        self.add(cursor, OPERATORS[sign], f"{self.of(left)} {SWAPPED[sign]} {self.of(right)}")

    @staticmethod
    def is_number(cursor):
        kind = cursor.type.get_canonical().kind
        return kind.value in range(TypeKind.BOOL.value, TypeKind.LONGDOUBLE.value + 1)

    def statement(self, cursor):
        """A call or an assignment that stands alone is left out."""
        if not self.text[cursor.extent.end.offset:].lstrip().startswith(b";"):
            return  # the condition of if (const auto kept = Read())
        inner = cursor
        while inner.kind in (K.UNEXPOSED_EXPR, K.CSTYLE_CAST_EXPR, K.CXX_STATIC_CAST_EXPR) and list(inner.get_children()):
            inner = list(inner.get_children())[-1]
        is_assignment = inner.kind == K.COMPOUND_ASSIGNMENT_OPERATOR or inner.kind == K.BINARY_OPERATOR or \
            inner.kind == K.CALL_EXPR and re.fullmatch(r"operator.?=", inner.spelling)
        if is_assignment or inner.kind == K.CALL_EXPR:
            self.add(cursor, "assignment" if is_assignment else "call", "void()", "void")


def is_product(name):
    return re.match(r"(src|libs|apps|simulator)/.*\.cpp$", name) is not None and not name.startswith("apps/kvselftest/")


def arguments(command):
    """What libclang needs of a compiler's command."""
    words = shlex.split(command)
    kept = [w for w in words if re.match(r"-(I|D|std)", w) and not w.startswith("-DQT_")]
    return kept + [w for i, v in enumerate(words[:-1]) if v == "-isystem" for w in (v, words[i + 1])] + ["-w", "-xc++"]


def common_headers(tree, entries, folder):
    """One precompiled header with the system's headers for all files, another one for those with windows: parsing takes a third."""
    result = {}
    for kind in (False, True):
        group = [e for e in entries if ("-DQT_" in e["command"]) == kind]
        if not group:
            continue
        files = {f for e in group for f in Path(e["file"]).parent.glob("*.[ch]*")}
        names = Counter(n for f in files for n in re.findall(r"^#include (<\w+>)", f.read_text(), re.M))
        header = folder / f"common{int(kind)}.h"
        header.write_text("".join(f"#include {n}\n" for n in sorted(names) if names[n] >= 4))
        flags = [a for a in arguments(group[0]["command"]) if not a.startswith("-D")][:-1] + ["-xc++-header"]
        Index.create().parse(str(header), args=flags, options=FOR_HEADERS).save(str(header) + ".pch")
        result[kind] = str(header) + ".pch"
    return result


def places_of(job):
    tree, entry, header = job
    unit = Index.create(excludeDecls=True).parse(entry["file"], args=arguments(entry["command"]) + ["-include-pch", header],
                                options=TranslationUnit.PARSE_DETAILED_PROCESSING_RECORD)
    errors = [str(d) for d in unit.diagnostics if d.severity >= 3]
    places = Places(unit, entry["file"], Path(entry["file"]).read_bytes()).found
    name = str(Path(entry["file"]).relative_to(tree))
    return name, [{"file": name, **places[key]} for key in sorted(places)], errors


def collect(tree, build, folder, jobs):
    """All places of the product's sources, in the order of files and lines."""
    entries = {e["file"]: e for e in json.loads((build / "compile_commands.json").read_text())}
    entries = [e for f, e in sorted(entries.items()) if f.startswith(f"{tree}/") and is_product(f[len(str(tree)) + 1:])]
    headers = common_headers(tree, entries, folder)
    found = []
    with Pool(jobs) as pool:
        work = [(tree, e, headers["-DQT_" in e["command"]]) for e in entries]
        for name, places, errors in pool.imap(places_of, work):
            for error in errors[:1]:
                print(f"{name} is not read to its end: {error}")
            found += places
    return found
