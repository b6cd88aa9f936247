"""Compares two XML texts by lxml: attributes unordered, white space between elements ignored."""

import re

from lxml import etree

from document import QT_SPACES


def _surrogates_joined(text):
    """The text with a character beyond 16 bits for each two references to its halves.

    Qt writes such references where the declaration names an encoding without the character.
    """

    def character(match):
        halves = bytes.fromhex(match[1] + match[2])
        return f"&#x{ord(halves.decode('utf-16-be')):x};"

    return re.sub("&#x(d[89ab][0-9a-f]{2});&#x(d[c-f][0-9a-f]{2});", character, text)


def parsed(text):
    # A converted document is UTF-8 whatever its declaration says.
    parser = etree.XMLParser(
        encoding="utf-8", resolve_entities=False, load_dtd=False, no_network=True, huge_tree=True
    )
    return etree.fromstring(_surrogates_joined(text).encode("utf-8", "surrogatepass"), parser)


def _line_ends(text):
    return text.replace("\r\n", "\n").replace("\r", "\n")


def _run(text, follows_instruction):
    """One run of text; what an indenting serialiser may add to it is taken off."""
    text = _line_ends(text or "")
    if follows_instruction:
        text = text.lstrip("\n")
    return text if text.strip(QT_SPACES) else ""


def _attribute(value):
    # XML 1.0 reads a literal tab or line end in an attribute as a blank; Qt keeps it.
    return _line_ends(value).replace("\n", " ").replace("\t", " ")


def _kind(node):
    if node.tag is etree.Comment:
        # Qt's serialiser ends a comment's "--" with a blank, as XML 1.0 demands.
        return "comment", _line_ends(node.text).rstrip(" ")
    if node.tag is etree.ProcessingInstruction:
        return "instruction", node.target, _line_ends(node.text or "").strip()
    if node.tag is etree.Entity:
        return "reference", node.name
    attributes = {name: _attribute(value) for name, value in node.attrib.items()}
    return "element", node.tag, attributes


def _difference(left, right, path):
    if _kind(left) != _kind(right):
        return f"{path}: {_kind(left)} against {_kind(right)}"
    if not isinstance(left.tag, str):
        return None
    if _run(left.text, False) != _run(right.text, False):
        return f"{path}: text {left.text!r} against {right.text!r}"
    left_children, right_children = list(left), list(right)
    for index, (one, other) in enumerate(zip(left_children, right_children)):
        name = one.tag if isinstance(one.tag, str) else "node"
        found = _difference(one, other, f"{path}/{name}[{index}]")
        if found:
            return found
        instruction = one.tag is etree.ProcessingInstruction
        if _run(one.tail, instruction) != _run(other.tail, instruction):
            return f"{path}/{name}[{index}]: {one.tail!r} follows, against {other.tail!r}"
    if len(left_children) != len(right_children):
        return f"{path}: {len(left_children)} children against {len(right_children)}"
    return None


def _beside(root, step):
    beside = []
    node = step(root)
    while node is not None:
        # The XML declaration is an instruction to Qt, and nothing to lxml.
        beside.append(_kind(node))
        node = step(node)
    return beside


def difference(left_text, right_text):
    """Where the two differ, as a line for people, or None."""
    left, right = parsed(left_text), parsed(right_text)
    for step in (lambda node: node.getprevious(), lambda node: node.getnext()):
        if _beside(left, step) != _beside(right, step):
            return f"beside the root: {_beside(left, step)} against {_beside(right, step)}"
    return _difference(left, right, left.tag)
