"""Documents over the grammar of XML 1.0, well-formed and not, by name.

What is well-formed is Qt's to say, so no case tells: the test asks Qt. A case is either a whole
document or content for the workspace section. Line ends stand only where the grammar means them:
standard input loses them, which is a reading of its own and has its own cases.
"""

SECTION = "coordinated_data_root"


def inside(content):
    return f"<{SECTION}>{content}</{SECTION}>"


def _documents():
    empty = f"<{SECTION}/>"
    yield from {
        "an empty element": empty,
        "a start and an end tag": inside(""),
        "nothing": "",
        "white space alone": " \t ",
        "text alone": "text",
        "a blank first": " " + empty,
        "text first": "x" + empty,
        "text after": empty + "x",
        "white space after": empty + " \t\r ",
        "two elements": empty + empty,
        "an end tag too many": empty + f"</{SECTION}>",
        "an end tag first": f"</{SECTION}>" + empty,
        "no end tag": f"<{SECTION}>",
        "an end tag of another name": f"<{SECTION}></{SECTION}x>",
        "an end tag in another case": f"<{SECTION}></{SECTION.upper()}>",
        "overlapping elements": inside("<a><b></a></b>"),
        "a bare less-than": "<",
        "a bare ampersand": "&",
        "a comment alone": "<!-- c -->",
        "an instruction alone": "<?p i?>",
        "a document type alone": f"<!DOCTYPE {SECTION}>",
        "a character reference outside": "&#32;" + empty,
        "CDATA outside": "<![CDATA[x]]>" + empty,
        "comments around": "<!--a-->" + empty + "<!--b-->",
        "instructions around": "<?a?>" + empty + "<?b c?>",
    }.items()


def _declarations():
    declarations = {
        "plain": '<?xml version="1.0"?>',
        "in single quotes": "<?xml version='1.0'?>",
        "version 1.1": '<?xml version="1.1"?>',
        "version 1.9": '<?xml version="1.9"?>',
        "version 2.0": '<?xml version="2.0"?>',
        "no version": "<?xml?>",
        "an empty version": '<?xml version=""?>',
        "a version without quotes": "<?xml version=1.0?>",
        "quotes that differ": "<?xml version=\"1.0'?>",
        "an encoding": '<?xml version="1.0" encoding="UTF-8"?>',
        "an encoding that it is not": '<?xml version="1.0" encoding="UTF-16"?>',
        "an encoding of another kind": '<?xml version="1.0" encoding="ISO-8859-1"?>',
        "an unknown encoding": '<?xml version="1.0" encoding="none-such"?>',
        "an encoding without a name": '<?xml version="1.0" encoding=""?>',
        "an encoding with a blank": '<?xml version="1.0" encoding="UTF 8"?>',
        "an encoding first": '<?xml encoding="UTF-8" version="1.0"?>',
        "an encoding alone": '<?xml encoding="UTF-8"?>',
        "standalone": '<?xml version="1.0" standalone="yes"?>',
        "not standalone": '<?xml version="1.0" standalone="no"?>',
        "standalone perhaps": '<?xml version="1.0" standalone="perhaps"?>',
        "standalone before the encoding": (
            '<?xml version="1.0" standalone="yes" encoding="UTF-8"?>'
        ),
        "all three": '<?xml version="1.0" encoding="UTF-8" standalone="yes"?>',
        "something else": '<?xml version="1.0" colour="red"?>',
        "twice the version": '<?xml version="1.0" version="1.0"?>',
        "blanks around the equals": '<?xml version = "1.0" ?>',
        "no blank before the encoding": '<?xml version="1.0"encoding="UTF-8"?>',
        "in capitals": '<?XML version="1.0"?>',
        "in mixed case": '<?Xml version="1.0"?>',
        "twice": '<?xml version="1.0"?><?xml version="1.0"?>',
        "not closed": '<?xml version="1.0">',
        "after a comment": '<!--c--><?xml version="1.0"?>',
        "after a blank": ' <?xml version="1.0"?>',
        "a blank before the target": '<? xml version="1.0"?>',
    }
    for name, declaration in declarations.items():
        yield f"a declaration: {name}", declaration + f"<{SECTION}/>"
    yield "a declaration: inside", inside('<?xml version="1.0"?>')
    yield "a declaration: at the end", f'<{SECTION}/><?xml version="1.0"?>'
    yield "a declaration: alone", '<?xml version="1.0"?>'


def _document_types():
    subsets = {
        "empty": "",
        "blank": "  ",
        "an element, any": "<!ELEMENT a ANY>",
        "an element, empty": "<!ELEMENT a EMPTY>",
        "an element, text": "<!ELEMENT a (#PCDATA)>",
        "an element, mixed": "<!ELEMENT a (#PCDATA|b|c)*>",
        "an element, mixed without star": "<!ELEMENT a (#PCDATA|b)>",
        "an element, sequence": "<!ELEMENT a (b,c?,d*,e+)>",
        "an element, choice": "<!ELEMENT a (b|c)>",
        "an element, nested": "<!ELEMENT a ((b|c),(d,e)*)+>",
        "an element, comma and bar": "<!ELEMENT a (b,c|d)>",
        "an element, not closed": "<!ELEMENT a (b",
        "an element without content": "<!ELEMENT a>",
        "an element without a name": "<!ELEMENT>",
        "an attribute, text": "<!ATTLIST a b CDATA #IMPLIED>",
        "an attribute, default": "<!ATTLIST a b CDATA 'x'>",
        "an attribute, fixed": "<!ATTLIST a b CDATA #FIXED 'x'>",
        "an attribute, required": "<!ATTLIST a b CDATA #REQUIRED>",
        "an attribute, identifier": "<!ATTLIST a b ID #IMPLIED c IDREF #IMPLIED d IDREFS #IMPLIED>",
        "an attribute, tokens": "<!ATTLIST a b NMTOKEN #IMPLIED c NMTOKENS #IMPLIED>",
        "an attribute, entities": "<!ATTLIST a b ENTITY #IMPLIED c ENTITIES #IMPLIED>",
        "an attribute, choice": "<!ATTLIST a b (x|y|z) 'x'>",
        "an attribute, notation": "<!ATTLIST a b NOTATION (n) #IMPLIED>",
        "an attribute of no known kind": "<!ATTLIST a b TEXT #IMPLIED>",
        "an attribute without a kind": "<!ATTLIST a b>",
        "no attribute": "<!ATTLIST a>",
        "a less-than in a default": "<!ATTLIST a b CDATA '<'>",
        "an entity": "<!ENTITY e 'x'>",
        "an entity without a value": "<!ENTITY e>",
        "an entity without quotes": "<!ENTITY e x>",
        "an entity declared twice": "<!ENTITY e 'x'><!ENTITY e 'y'>",
        "an entity, file": "<!ENTITY e SYSTEM 'x.xml'>",
        "an entity, public": "<!ENTITY e PUBLIC 'p' 'x.xml'>",
        "an entity, public only": "<!ENTITY e PUBLIC 'p'>",
        "an entity, not parsed": "<!ENTITY e SYSTEM 'x.gif' NDATA gif>",
        "a parameter entity": "<!ENTITY % p '<!ELEMENT a ANY>'>%p;",
        "a parameter entity, not declared": "%p;",
        "a parameter entity, file": "<!ENTITY % p SYSTEM 'x.dtd'>%p;",
        "a parameter entity inside a declaration": "<!ENTITY % p 'ANY'><!ELEMENT a %p;>",
        "a notation": "<!NOTATION n SYSTEM 's'>",
        "a notation, public": "<!NOTATION n PUBLIC 'p'>",
        "a notation without an identifier": "<!NOTATION n>",
        "a comment": "<!-- c -->",
        "an instruction": "<?p i?>",
        "text": "text",
        "an element of the content": "<a/>",
        "CDATA": "<![CDATA[x]]>",
        "a conditional section": "<![INCLUDE[<!ELEMENT a ANY>]]>",
        "a declaration in small letters": "<!element a ANY>",
        "an unknown declaration": "<!UNKNOWN a>",
        "a percent in a value": "<!ENTITY e '%'>",
        "an ampersand in a value": "<!ENTITY e '&'>",
    }
    for name, subset in subsets.items():
        yield f"a document type: {name}", f"<!DOCTYPE {SECTION} [{subset}]><{SECTION}/>"
    forms = {
        "name only": f"<!DOCTYPE {SECTION}>",
        "another name": "<!DOCTYPE other>",
        "no name": "<!DOCTYPE>",
        "in small letters": f"<!doctype {SECTION}>",
        "system": f"<!DOCTYPE {SECTION} SYSTEM 's.dtd'>",
        "system without identifier": f"<!DOCTYPE {SECTION} SYSTEM>",
        "public": f"<!DOCTYPE {SECTION} PUBLIC 'p' 's.dtd'>",
        "public without system": f"<!DOCTYPE {SECTION} PUBLIC 'p'>",
        "public with a bad character": f"<!DOCTYPE {SECTION} PUBLIC '{{' 's'>",
        "system and a subset": f"<!DOCTYPE {SECTION} SYSTEM 's.dtd' [<!ENTITY e 'x'>]>",
        "not closed": f"<!DOCTYPE {SECTION}",
        "subset not closed": f"<!DOCTYPE {SECTION} [",
        "twice": f"<!DOCTYPE {SECTION}><!DOCTYPE {SECTION}>",
        "blanks": f"<!DOCTYPE   {SECTION}   [ ]   >",
        "no blank before the subset": f"<!DOCTYPE {SECTION}[]>",
    }
    for name, form in forms.items():
        yield f"a document type: {name}", f"{form}<{SECTION}/>"
    yield "a document type: after", f"<{SECTION}/><!DOCTYPE {SECTION}>"
    yield "a document type: inside", inside(f"<!DOCTYPE {SECTION}>")


def _entities():
    declared = {
        "text": ("<!ENTITY e 'word'>", "a&e;b"),
        "twice": ("<!ENTITY e 'word'>", "&e;&e;"),
        "empty": ("<!ENTITY e ''>", "a&e;b"),
        "blank": ("<!ENTITY e ' '>", "&e;"),
        "an element": ("<!ENTITY e '<b>w</b>'>", "a&e;c"),
        "half an element": ("<!ENTITY e '<b>'>", "&e;</b>"),
        "an end tag": ("<!ENTITY e '</b>'>", "<b>&e;"),
        "two elements": ("<!ENTITY e '<b/><b/>'>", "&e;"),
        "a comment": ("<!ENTITY e '<!--c-->'>", "a&e;b"),
        "CDATA": ("<!ENTITY e '<![CDATA[<]]>'>", "a&e;b"),
        "an instruction": ("<!ENTITY e '<?p i?>'>", "a&e;b"),
        "in another": ("<!ENTITY e 'x'><!ENTITY f '&e;&e;'>", "&f;"),
        "in another declared later": ("<!ENTITY f '&e;'><!ENTITY e 'x'>", "&f;"),
        "in itself": ("<!ENTITY e '&e;'>", "&e;"),
        "in itself through another": ("<!ENTITY e '&f;'><!ENTITY f '&e;'>", "&e;"),
        "an escaped less-than": ("<!ENTITY e '&#60;'>", "&e;"),
        "a doubly escaped less-than": ("<!ENTITY e '&#38;#60;'>", "a&e;b"),
        "an escaped ampersand": ("<!ENTITY e '&#38;'>", "&e;"),
        "a predefined one declared": ("<!ENTITY lt '&#38;#60;'>", "&lt;"),
        "a predefined one declared otherwise": ("<!ENTITY amp 'x'>", "&amp;"),
        "in an attribute": ("<!ENTITY e 'x'>", "<a b='&e;'/>"),
        "a less-than in an attribute": ("<!ENTITY e '<'>", "<a b='&e;'/>"),
        "quotes in an attribute": ("<!ENTITY e '\"'>", '<a b="&e;"/>'),
        "a file in an attribute": ("<!ENTITY e SYSTEM 'x.xml'>", "<a b='&e;'/>"),
        "not parsed, in text": ("<!NOTATION n SYSTEM 's'><!ENTITY e SYSTEM 'x' NDATA n>", "&e;"),
        "a file in text": ("<!ENTITY e SYSTEM 'x.xml'>", "a&e;b"),
        "a parameter entity in text": ("<!ENTITY % e 'x'>", "%e;"),
        "a parameter entity as a general one": ("<!ENTITY % e 'x'>", "&e;"),
        "in a comment": ("<!ENTITY e 'x'>", "<!-- &e; -->"),
        "in CDATA": ("<!ENTITY e 'x'>", "<![CDATA[&e;]]>"),
        "in a tag": ("<!ENTITY e 'a'>", "<&e;/>"),
        "a second declaration": ("<!ENTITY e 'x'><!ENTITY e 'y'>", "&e;"),
    }
    for name, (subset, content) in declared.items():
        document = f"<!DOCTYPE {SECTION} [{subset}]>" + inside(content)
        yield f"an entity: {name}", document
    undeclared = {
        "in text": "a&e;b",
        "in an attribute": "<a b='x&e;y'/>",
        "beside elements": "<a/>&e;<b/>",
        "alone": "&e;",
        "without a name": "&;",
        "without an end": "&e",
        "with a blank": "& e;",
        "with a blank before the end": "&e ;",
        "a digit first": "&1e;",
        "a colon": "&a:b;",
        "HTML's": "&nbsp;&copy;",
        "in capitals": "&LT;",
    }
    for name, content in undeclared.items():
        yield f"an entity not declared: {name}", inside(content)
        outside = f"<!DOCTYPE {SECTION} SYSTEM 's.dtd'>" + inside(content)
        yield f"an entity declared elsewhere perhaps: {name}", outside


def _attributes():
    contents = {
        "in double quotes": '<a b="c"/>',
        "in single quotes": "<a b='c'/>",
        "without quotes": "<a b=c/>",
        "without a value": "<a b/>",
        "without a value after the equals": "<a b=/>",
        "without a name": "<a ='c'/>",
        "empty": "<a b=''/>",
        "quotes that differ": "<a b='c\"/>",
        "twice": "<a b='1' b='2'/>",
        "in two cases": "<a b='1' B='2'/>",
        "no blank between": "<a b='1'c='2'/>",
        "blanks around the equals": "<a b = 'c' />",
        "a tab between": "<a\tb='c'\tc='d'/>",
        "a carriage return between": "<a\rb='c'/>",
        "in an end tag": "<a></a b='c'>",
        "a less-than": "<a b='<'/>",
        "a greater-than": "<a b='>'/>",
        "an ampersand": "<a b='&'/>",
        "the other quotes": "<a b='\"' c=\"'\"/>",
        "references": "<a b='&lt;&gt;&amp;&quot;&apos;&#9;&#10;&#13;'/>",
        "a tab": "<a b='x\ty'/>",
        "a carriage return": "<a b='x\ry'/>",
        "a comment": "<a b='<!--c-->'/>",
        "a digit first": "<a 1b='c'/>",
        "a dash first": "<a -b='c'/>",
        "a colon": "<a x:b='c'/>",
        "a colon alone": "<a :='c'/>",
        "two colons": "<a x:y:z='c'/>",
        "a namespace": "<a xmlns='u' xmlns:x='v' x:b='c'/>",
        "an empty prefix's namespace": "<a xmlns:x=''/>",
        "two names of one namespace": "<a xmlns:x='u' xmlns:y='u' x:b='1' y:b='2'/>",
        "the language": "<a xml:lang='de'/>",
        "white space kept": "<a xml:space='preserve'> <b/> </a>",
        "white space perhaps": "<a xml:space='perhaps'/>",
        "a long name": f"<a {'b' * 5000}='c'/>",
        "a long value": f"<a b='{'c' * 100000}'/>",
        "letters of other scripts": "<a größe='ü' 名='日' имя='я'/>",
        "not closed": "<a b='c",
        "an equals twice": "<a b=='c'/>",
    }
    for name, content in contents.items():
        yield f"an attribute: {name}", inside(content)
    many = " ".join(f"a{number}='{number}'" for number in range(200_000))
    yield "an attribute: two hundred thousand", inside(f"<a {many}/>")
    yield "an attribute: a thousand of one name", inside("<a " + "b='c' " * 1000 + "/>")


def _names():
    characters = {
        "a letter": "a", "a capital": "Z", "an underscore": "_", "a colon": ":", "a digit": "1",
        "a dash": "-", "a full stop": ".", "a middle dot": "\xb7", "a letter with a mark": "é",
        "the multiplication sign": "×", "the division sign": "÷", "Greek": "Ω", "Han": "日",
        "Hangul": "한", "an ideographic space": "\u3000", "a combining mark": "\u0301",
        "the undertie": "\u203f", "a dollar": "$", "an at": "@", "a blank": " ", "a slash": "/",
        "a no-break space": "\xa0", "a zero-width joiner": "\u200d", "a private one": "\ue000",
        "beyond sixteen bits": "\U00010000", "an emoji": "\U0001f3a4", "a quote": "'", "a tab": "\t",
        "the replacement character": "\ufffd", "an equals": "=", "a plus": "+", "a NUL": "\0",
    }  # fmt: skip
    for name, character in characters.items():
        yield f"a name: {name} first", inside(f"<{character}b/>")
        yield f"a name: {name} later", inside(f"<a{character}b/>")
    yield "a name: long", inside(f"<{'n' * 50000}/>")
    yield "a name: xml", inside("<xml/>")
    yield "a name: a prefix nobody declared", inside("<x:a/>")
    yield "a name: a prefix declared", inside("<x:a xmlns:x='u'/>")
    yield "a name: a blank in an end tag", inside("<a></a >")
    yield "a name: a blank in a start of an end tag", inside("<a></ a>")
    yield "a name: a blank before the slash's end", inside("<a / >")


def _characters():
    numbers = [
        0x0, 0x1, 0x8, 0x9, 0xA, 0xB, 0xC, 0xD, 0xE, 0x1B, 0x1F, 0x20, 0x7F, 0x80, 0x85, 0x9F, 0xA0, 0x2028,
        0xD7FF, 0xE000, 0xFDD0, 0xFEFF, 0xFFFD, 0xFFFE, 0xFFFF, 0x10000, 0x1F3A4, 0x10FFFF,
    ]  # fmt: skip
    for number in numbers:
        if number != 0xA:  # standard input loses it, a reading of its own
            yield f"character {number:X} in text", inside(f"a{chr(number)}b")
            yield f"character {number:X} in an attribute", inside(f"<a b='a{chr(number)}b'/>")
        yield f"a reference to character {number:X}", inside(f"a&#{number};b")
        yield f"a hexadecimal reference to character {number:X}", inside(f"<a b='&#x{number:x};'/>")
    references = {
        "a half of a pair": "&#xD800;", "two halves": "&#xD83C;&#xDFA4;", "beyond Unicode": "&#x110000;",
        "a huge number": "&#99999999999999999999;", "no number": "&#;", "no hexadecimal number": "&#x;",
        "a capital X": "&#X41;", "no end": "&#65", "a letter": "&#a;", "a minus": "&#-65;",
        "a blank": "&# 65;", "leading zeros": "&#0000000065;", "hexadecimal in capitals": "&#x1F;",
    }  # fmt: skip
    for name, content in references.items():
        yield f"a character reference: {name}", inside(content)
    text = {
        "the end of CDATA": "a]]>b", "two brackets": "a]]b", "a greater-than": "a>b", "a blank": " ",
        "an ampersand": "a & b", "a less-than": "a < b", "quotes": "\"'", "references": "&lt;&gt;&amp;",
        "a carriage return": "a\rb", "blanks around": "  a  ", "a million": "x" * 1_000_000,
    }  # fmt: skip
    for name, content in text.items():
        yield f"text: {name}", inside(content)


def _sections():
    contents = {
        "CDATA": "<![CDATA[x]]>", "CDATA, empty": "<![CDATA[]]>", "CDATA, blank": "<![CDATA[ ]]>",
        "CDATA, markup": "<![CDATA[<a>&b;</a>]]>", "CDATA, brackets": "<![CDATA[]]]]>",
        "CDATA, brackets and more": "<![CDATA[]]]>", "CDATA, in another": "<![CDATA[<![CDATA[x]]>]]>",
        "CDATA, two": "<![CDATA[a]]><![CDATA[b]]>", "CDATA, in text": "a<![CDATA[b]]>c",
        "CDATA, not closed": "<![CDATA[x", "CDATA, small letters": "<![cdata[x]]>",
        "CDATA, a blank": "<![ CDATA[x]]>", "CDATA, split end": "<![CDATA[a]]]]><![CDATA[>b]]>",
        "a comment": "<!-- c -->", "a comment, empty": "<!---->", "a comment, one dash": "<!-- a-b -->",
        "a comment, two dashes": "<!-- a--b -->", "a comment, a dash at the end": "<!-- a --->",
        "a comment, not closed": "<!-- a", "a comment, wrong start": "<!- a -->",
        "a comment, markup": "<!-- <a>&b;</a> -->", "a comment, a blank": "<! -- a -->",
        "a comment, in another": "<!-- <!-- --> -->", "a comment in a tag": "<a <!-- c --> />",
        "an instruction": "<?p i?>", "an instruction, no data": "<?p?>", "an instruction, blank": "<?p ?>",
        "an instruction, no target": "<??>", "an instruction, a blank first": "<? p?>",
        "an instruction, markup": "<?p <a>&b;?>", "an instruction, not closed": "<?p i>",
        "an instruction, question marks": "<?p ??>", "an instruction, digits": "<?1 i?>",
        "an instruction in text": "a<?p i?>b", "an exclamation": "<!>", "an exclamation and a name": "<!a>",
    }  # fmt: skip
    for name, content in contents.items():
        yield f"a section: {name}", inside(content)


def _bytes():
    section = SECTION.encode()
    whole = b"<" + section + b">%s</" + section + b">"
    contents = {
        "a lone continuation": b"a\x80b", "an unfinished pair": b"a\xc3", "an overlong slash": b"\xc0\xaf",
        "an overlong NUL": b"\xc0\x80", "half of a pair of UTF-16": b"\xed\xa0\x80",
        "beyond Unicode": b"\xf4\x90\x80\x80", "five bytes": b"\xf8\x88\x80\x80\x80", "FF": b"\xff",
        "FE": b"\xfe", "Latin-1": b"M\xfcller", "a NUL": b"a\0b", "NULs": b"\0" * 100,
        "a mark inside": b"a\xef\xbb\xbfb", "in a name": b"<a\xff/>", "in an attribute": b"<a b='\xff'/>",
        "in a comment": b"<!-- \xff -->", "in CDATA": b"<![CDATA[\xff]]>", "a NUL in a name": b"<a\0/>",
        "a NUL in a tag": b"<a \0/>", "a NUL in a comment": b"<!-- \0 -->", "a NUL in CDATA": b"<![CDATA[\0]]>",
    }  # fmt: skip
    for name, content in contents.items():
        yield f"bytes: {name}", whole % content
    text = inside("<a b='ü'>日本</a>")
    yield "bytes: UTF-8 with its mark", text.encode("utf-8-sig")
    yield "bytes: two marks", b"\xef\xbb\xbf" + text.encode("utf-8-sig")
    yield "bytes: a mark alone", b"\xef\xbb\xbf"
    yield "bytes: UTF-16 with its mark", ("\ufeff" + text).encode("utf-16-le")
    yield "bytes: UTF-16 the other way with its mark", ("\ufeff" + text).encode("utf-16-be")
    yield "bytes: UTF-16 without a mark", text.encode("utf-16-le")
    yield "bytes: UTF-16 the other way without a mark", text.encode("utf-16-be")
    yield "bytes: UTF-16 and half a character", text.encode("utf-16-le") + b"\0"
    yield "bytes: UTF-32 with its mark", ("\ufeff" + text).encode("utf-32-le")
    yield "bytes: UTF-32 without a mark", text.encode("utf-32-le")
    yield "bytes: UTF-7", text.encode("utf-7")
    yield "bytes: a NUL first", b"\0" + text.encode()
    yield "bytes: a NUL last", text.encode() + b"\0"
    yield "bytes: one less-than in the first line", b"<\n" + text.encode()[1:]
    yield "bytes: an empty first line", b"\n" + text.encode()
    yield "bytes: carriage returns alone", inside("\r<a/>\r").encode()


def _nesting():
    yield "nesting: a thousand deep", inside("<a>" * 1000 + "</a>" * 1000)
    yield "nesting: a thousand deep, one end missing", inside("<a>" * 1000 + "</a>" * 999)
    yield "nesting: a thousand deep, one end too many", inside("<a>" * 1000 + "</a>" * 1001)
    yield "nesting: ten thousand beside", inside("<a/>" * 10000)
    yield "nesting: itself", inside(f"<{SECTION}/>")
    yield "nesting: as a part", f"<workspace><{SECTION}/></workspace>"
    yield "nesting: nowhere", "<workspace/>"
    yield "nesting: twice", f"<workspace><{SECTION}/><{SECTION}/></workspace>"


def _bombs():
    def bomb(levels, width):
        entities = "<!ENTITY e0 'ha'>" + "".join(
            f"<!ENTITY e{level} '{f'&e{level - 1};' * width}'>" for level in range(1, levels + 1)
        )
        return f"<!DOCTYPE {SECTION} [{entities}]>" + inside(f"&e{levels};")

    yield "a bomb: a billion laughs", bomb(9, 10)
    yield "a bomb: thousands", bomb(3, 10)
    yield "a bomb: doubling", bomb(12, 2)
    yield "a bomb: doubling far", bomb(40, 2)
    quadratic = f"<!DOCTYPE {SECTION} [<!ENTITY e '{'x' * 3000}'>]>"
    yield "a bomb: quadratic", quadratic + inside("&e;" * 300)
    larger = f"<!DOCTYPE {SECTION} [<!ENTITY e '{'x' * 100000}'>]>"
    yield "a bomb: one large entity", larger + inside("&e;")
    parameters = (
        "<!ENTITY % a 'x'>"
        + "".join(f"<!ENTITY % a{i} '{'%a;' * 10}'>" for i in range(10))
        + "%a9;"
    )
    yield "a bomb: parameter entities", f"<!DOCTYPE {SECTION} [{parameters}]><{SECTION}/>"
    attributes = "<!ENTITY e0 'ha'>" + "".join(
        f"<!ENTITY e{level} '{f'&e{level - 1};' * 10}'>" for level in range(1, 10)
    )
    yield "a bomb: in an attribute", (
        f"<!DOCTYPE {SECTION} [{attributes}]>" + inside("<a b='&e9;'/>")
    )


def external(path):
    """References to a file whose content must not appear anywhere."""
    url = f"file://{path}"
    for name, place in {"path": path, "URL": url}.items():
        entity = f"<!ENTITY e SYSTEM '{place}'>"
        yield f"outside by {name}: in text", f"<!DOCTYPE {SECTION} [{entity}]>" + inside("a&e;b")
        yield (
            f"outside by {name}: in an attribute",
            f"<!DOCTYPE {SECTION} [{entity}]>" + inside("<a b='&e;'/>"),
        )
        yield (
            f"outside by {name}: through another",
            f"<!DOCTYPE {SECTION} [{entity}<!ENTITY f '&e;'>]>" + inside("&f;"),
        )
        yield (
            f"outside by {name}: public",
            f"<!DOCTYPE {SECTION} [<!ENTITY e PUBLIC 'p' '{place}'>]>" + inside("&e;"),
        )
        yield (
            f"outside by {name}: a parameter entity",
            f"<!DOCTYPE {SECTION} [<!ENTITY % e SYSTEM '{place}'>%e;]><{SECTION}/>",
        )
        yield (
            f"outside by {name}: a document type",
            f"<!DOCTYPE {SECTION} SYSTEM '{place}'>" + inside("&secret;"),
        )
        yield f"outside by {name}: inclusion", inside(
            f"<xi:include xmlns:xi='http://www.w3.org/2001/XInclude' href='{place}' parse='text'/>"
        )


def all_cases():
    """Name and bytes of every case but those of external()."""
    sources = [
        _documents, _declarations, _document_types, _entities, _attributes, _names, _characters, _sections,
        _bytes, _nesting, _bombs,
    ]  # fmt: skip
    for source in sources:
        for name, document in source():
            data = document if isinstance(document, bytes) else document.encode("utf-8")
            yield name, data
