"""Finds places in C++ sources for small mistakes, by their syntax trees."""

import dataclasses
import pathlib
import re
import sys

from clang import cindex

sys.path.insert(0, str(pathlib.Path(__file__).parent.parent))
import places  # noqa: E402

TURNED = {
    "<": "<=", "<=": "<", ">": ">=", ">=": ">", "==": "!=", "!=": "==",
    "&&": "||", "||": "&&", "+": "-", "-": "+", "+=": "-=", "-=": "+=",
}  # fmt: skip
CONDITIONAL = (
    cindex.CursorKind.IF_STMT,
    cindex.CursorKind.WHILE_STMT,
    cindex.CursorKind.CONDITIONAL_OPERATOR,
)
LEFT_OUT = (
    cindex.CursorKind.CALL_EXPR,
    cindex.CursorKind.BINARY_OPERATOR,
    cindex.CursorKind.COMPOUND_ASSIGNMENT_OPERATOR,
    cindex.CursorKind.UNARY_OPERATOR,
    cindex.CursorKind.UNEXPOSED_EXPR,
    cindex.CursorKind.CONTINUE_STMT,
    cindex.CursorKind.BREAK_STMT,
    cindex.CursorKind.RETURN_STMT,
)
BRANCHES = (
    cindex.CursorKind.IF_STMT,
    cindex.CursorKind.FOR_STMT,
    cindex.CursorKind.WHILE_STMT,
    cindex.CursorKind.CXX_FOR_RANGE_STMT,
)
INTEGER = re.compile(r"(0[xX][0-9a-fA-F]+|\d+)([uUlL]*)$")


@dataclasses.dataclass(frozen=True, order=True)
class Mistake:
    """The bytes from start to end of a file, replaced."""

    path: str
    start: int
    end: int
    replacement: str
    line: int
    kind: str
    before: str  # the line as it stands, without the blanks around it
    place: str  # tells this line from others of the source

    def in_text(self, text):
        return text[: self.start] + self.replacement.encode() + text[self.end :]

    def __str__(self):
        return f"{self.path}:{self.line}: {self.kind}: {self.place}"


class Finder:
    """The mistakes that can be made in one source."""

    def __init__(self, project, path, arguments):
        self.path = path
        self.source = str(project / path)
        self.text = pathlib.Path(self.source).read_bytes()
        self.lines = self.text.decode(errors="replace").split("\n")
        self.places = places.places(self.lines)
        unit = cindex.Index.create().parse(self.source, args=arguments)
        errors = [d for d in unit.diagnostics if d.severity >= cindex.Diagnostic.Error]
        if errors:
            raise RuntimeError(f"{path}: {errors[0].spelling}")
        self.found = set()
        for cursor in unit.cursor.get_children():
            if cursor.location.file and cursor.location.file.name == self.source:
                self.visit(cursor, None)

    def visit(self, cursor, parent):
        kind = cursor.kind
        if kind in (cindex.CursorKind.BINARY_OPERATOR, cindex.CursorKind.COMPOUND_ASSIGNMENT_OPERATOR):
            self.turn(cursor, list(cursor.get_children()))
        elif kind == cindex.CursorKind.CALL_EXPR and cursor.spelling.startswith("operator"):
            self.turn(cursor, list(cursor.get_arguments()))
        elif kind == cindex.CursorKind.INTEGER_LITERAL:
            self.shift(cursor)
        elif kind == cindex.CursorKind.CXX_BOOL_LITERAL_EXPR:
            other = {b"true": "false", b"false": "true"}.get(self.text_of(cursor))
            if other:
                self.add(*self.span(cursor), other, f"{other} for the other truth")
        elif kind == cindex.CursorKind.COMPOUND_STMT:
            self.leave_out(cursor, parent)
        if kind in CONDITIONAL:
            self.negate(cursor)
        for child in cursor.get_children():
            self.visit(child, cursor)

    def turn(self, cursor, operands):
        if len(operands) != 2:
            return
        start, end = self.span(operands[0])[1], self.span(operands[1])[0]
        operator = self.text[start:end].strip().decode(errors="replace")
        if operator in TURNED:
            start = self.text.index(operator.encode(), start)
            self.add(start, start + len(operator), TURNED[operator], f"{TURNED[operator]} for {operator}")

    def shift(self, cursor):
        match = INTEGER.match(self.text_of(cursor).decode(errors="replace"))
        if match:
            is_octal = match[1].isdigit() and match[1].startswith("0")
            value = int(match[1], 8 if is_octal else 0)
            self.add(*self.span(cursor), f"{value + 1}{match[2]}", f"{value + 1} for {value}")

    def negate(self, cursor):
        children = list(cursor.get_children())
        if children and children[0].kind.is_expression():
            condition = self.text_of(children[0]).decode(errors="replace")
            # The parentheses of an overloaded operator's operands may stand outside its extent.
            if condition and condition.count("(") == condition.count(")"):
                self.add(*self.span(children[0]), f"!({condition})", "condition negated")

    def leave_out(self, block, parent):
        in_branch = parent is not None and parent.kind in BRANCHES
        for statement in block.get_children():
            if statement.kind not in LEFT_OUT:
                continue
            if statement.kind == cindex.CursorKind.RETURN_STMT and not in_branch:
                continue  # the end of a function
            start, end = self.span(statement)
            if self.text[end : end + 1] == b";" and not self.text[start:end].startswith(b"Q_"):
                self.add(start, end, "", "statement left out")

    def span(self, cursor):
        return cursor.extent.start.offset, cursor.extent.end.offset

    def text_of(self, cursor):
        start, end = self.span(cursor)
        return self.text[start:end]

    def add(self, start, end, replacement, kind):
        line = self.text.count(b"\n", 0, start) + 1
        before = self.lines[line - 1].strip()
        if before.startswith(("static_assert", "#")):
            return
        self.found.add(Mistake(self.path, start, end, replacement, line, kind, before,
                               self.places[line]))
