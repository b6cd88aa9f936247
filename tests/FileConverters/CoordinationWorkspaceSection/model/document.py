"""Reads XML the way the converter sees it, into a tree small enough to be obviously right.

The tree keeps apart what the conversion tells apart: text, CDATA sections and references to
entities that nobody declared. Standard library only, so that it shares nothing with Qt's reader.
"""

import xml.parsers.expat
from xml.sax.saxutils import escape, quoteattr

# The characters that Qt calls white space (Unicode's White_Space, as of the classes Zs, Zl, Zp and
# the controls among them). Qt drops a run of text that holds nothing else.
QT_SPACES = (
    "\t\n\v\f\r \x85\xa0\u1680\u2000\u2001\u2002\u2003\u2004\u2005\u2006\u2007\u2008\u2009\u200a"
    "\u2028\u2029\u202f\u205f\u3000"
)


class Text:
    def __init__(self, value, is_cdata=False):
        self.value = value
        self.is_cdata = is_cdata


class Comment:
    def __init__(self, value):
        self.value = value


class Instruction:
    def __init__(self, target, data):
        self.target = target
        self.data = data


class Reference:
    """A reference to an entity that is not declared; it stays in the document."""

    def __init__(self, name):
        self.name = name


class Element:
    def __init__(self, tag, attributes=None):
        self.tag = tag
        self.attributes = dict(attributes or {})
        self.children = []
        self.parent = None

    def append(self, child):
        self.insert(len(self.children), child)

    def insert(self, index, child):
        child.parent = self
        self.children.insert(index, child)

    def remove(self, child):
        self.children.remove(child)
        child.parent = None

    def elements(self, tag=None):
        """The element children, in document order."""
        return [c for c in self.children if isinstance(c, Element) and tag in (None, c.tag)]

    def descendants(self, tag):
        """Every element of that name below this one, in document order."""
        found = []
        for child in self.elements():
            if child.tag == tag:
                found.append(child)
            found.extend(child.descendants(tag))
        return found

    def text(self):
        """All the text below, CDATA included, in document order."""
        parts = []
        for child in self.children:
            if isinstance(child, Text):
                parts.append(child.value)
            elif isinstance(child, Element):
                parts.append(child.text())
        return "".join(parts)


class NotWellFormed(Exception):
    pass


class _Reader:
    def __init__(self):
        self.document = Element("#document")
        self.node = self.document
        self.run = []
        self.cdata = None
        self.doctype = None

    def read(self, text):
        parser = xml.parsers.expat.ParserCreate(encoding="utf-8")
        parser.StartElementHandler = self.start
        parser.EndElementHandler = self.end
        parser.CharacterDataHandler = self.characters
        parser.StartCdataSectionHandler = self.start_cdata
        parser.EndCdataSectionHandler = self.end_cdata
        parser.CommentHandler = lambda data: self.add(Comment(data))
        parser.ProcessingInstructionHandler = lambda target, data: self.add(
            Instruction(target, data)
        )
        parser.SkippedEntityHandler = self.skipped_entity
        parser.StartDoctypeDeclHandler = self.start_doctype
        try:
            parser.Parse(text.encode("utf-8", "surrogatepass"), True)
        except xml.parsers.expat.ExpatError as error:
            raise NotWellFormed(str(error)) from error
        return self.document

    def flush(self):
        run = "".join(self.run)
        self.run = []
        if run.strip(QT_SPACES):
            self.node.append(Text(run))

    def add(self, node):
        self.flush()
        self.node.append(node)

    def start(self, tag, attributes):
        element = Element(tag, attributes)
        self.add(element)
        self.node = element

    def end(self, _tag):
        self.flush()
        self.node = self.node.parent

    def characters(self, data):
        (self.run if self.cdata is None else self.cdata).append(data)

    def start_cdata(self):
        self.flush()
        self.cdata = []

    def end_cdata(self):
        self.node.append(Text("".join(self.cdata), is_cdata=True))
        self.cdata = None

    def skipped_entity(self, name, is_parameter_entity):
        if not is_parameter_entity:
            self.add(Reference(name))

    def start_doctype(self, name, system_id, public_id, _has_internal_subset):
        self.document.doctype = (name, system_id, public_id)


def read(text):
    """The document element tree of a text, below a "#document" element."""
    return _Reader().read(text)


def write(document):
    """The document as XML text without added white space; for comparing, not for people."""
    parts = []
    doctype = getattr(document, "doctype", None)
    if doctype and doctype[1] is not None:
        # References that nobody declared are well-formed only where a declaration may stand outside.
        name, system_id, public_id = doctype
        outside = f'PUBLIC "{public_id}"' if public_id is not None else "SYSTEM"
        parts.append(f'<!DOCTYPE {name} {outside} "{system_id}">')
    for child in document.children:
        _write(child, parts)
    return "".join(parts)


def _write(node, parts):
    if isinstance(node, Text):
        parts.append(escape(node.value, {"\r": "&#13;"}))
    elif isinstance(node, Comment):
        parts.append(f"<!--{node.value}-->")
    elif isinstance(node, Instruction):
        parts.append(f"<?{node.target} {node.data}?>")
    elif isinstance(node, Reference):
        parts.append(f"&{node.name};")
    else:
        attributes = "".join(
            f" {name}={quoteattr(value)}" for name, value in node.attributes.items()
        )
        parts.append(f"<{node.tag}{attributes}>")
        for child in node.children:
            _write(child, parts)
        parts.append(f"</{node.tag}>")
