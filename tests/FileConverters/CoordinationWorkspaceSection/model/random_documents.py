"""Seeded random workspace documents, bent in every way that the conversion has to absorb."""

import random

from document import Comment, Element, Instruction, Text

CLEARABLE = ["imd_2t3o", "imd_2t5o", "imd_2t7o", "imd_2t9o", "imd_3t3o"]
KEY_TAGS = ["zone", "series", "band", "tx_profile", "mode", "incl_group"]
CONTAINERS = ["mic_channels", "compat_configs", "compat_profiles", "compatibility_levels"]

# Pieces that join into equal keys in several ways, need escaping, or sort differently as UTF-8
# and as UTF-16.
FIELD_TEXTS = [
    "", "", "a", "b", "ab", "bc", "c", "aba", "S1", "G50", "|", "é", "Ω", "\ufffd", "\U0001f3a4",
    "\ue000", "日本", " ", "  x ", "a b", "<&>\"'", "]]", "\xa0", "\u200b", "0", "A", "x\ty", "x\ny",
]  # fmt: skip
IDS = ["0", "7", "77", "id", "", "Ä", "\U0001f3a4", "\ufffd"]
NAMES = ["robust", "median", "quantity", "Robust", "Median", "Standard", "More Frequencies",
         "", "robust ", "ROBUST", "weit & breit", "schön"]  # fmt: skip
NUMBERS = [
    "0", "1", "-1", "350", "+5", " 5", "5 ", "\t5\n", "", " ", "no", "5.0", "1e3", "0x10", "010", "- 5",
    "+-5", "--5", "2147483647", "2147483648", "-2147483648", "-2147483649", "4294967296", "-0", "+0",
    "99999999999999999999999", "18446744073709551621", "5a", "5 6", "1,000", "\xa05", "5\u3000",
    "\u22125", "\uff15", "\u0665", "\u200b5", "0000000000000000000000009", "+", "-", "1\r",
]  # fmt: skip
TYPES = ["2", "2", "2", " 2 ", "+2", "02", "2.0", "1", "0", "-1", "3", "", "list", "2147483647", "-7"]
BAD_IDS = [
    "", "7", "{}", "{H4}x", "{H4", "H4}", "H4x", " H4", "H4 ", "(H4)", "urn:uuid:H4", "{{H4}}", "DASH3",
    "DASH1", "DASHES", "SHORT", "NOTHEX", "WIDE", "[H4]",
]  # fmt: skip


class Maker:
    def __init__(self, seed):
        self.random = random.Random(seed)
        # A few sober documents, a few wild ones, most in between.
        self.wildness = self.random.choice([0.0, 0.02, 0.05, 0.05, 0.1, 0.1, 0.2, 0.4])

    def seldom(self, times=1.0):
        return self.random.random() < min(0.95, self.wildness * times)

    def one_of(self, choices):
        return self.random.choice(choices)

    def number(self):
        return self.one_of(NUMBERS) if self.seldom(3) else str(self.random.randint(-500, 5000))

    # Identifiers -----------------------------------------------------------------------------

    def uuid(self):
        digits = "".join(self.one_of("0123456789abcdefABCDEF") for _ in range(32))
        parts = [digits[:8], digits[8:12], digits[12:16], digits[16:20], digits[20:]]
        return self.one_of(["-".join(parts), "-".join(parts).lower(), digits,
                            "{" + "-".join(parts) + "}", "{" + digits + "}"])  # fmt: skip

    def bad_uuid(self):
        good = "00112233-4455-6677-8899-aabbccddeeff"
        special = {
            "DASH3": "00112233-4455-6677-8899aabbccddeeff",
            "DASH1": "00112233-445566778899aabbccddeeff",
            "DASHES": "0011-2233-4455-6677-8899-aabbccddeeff",
            "SHORT": good[:-1],
            "NOTHEX": good[:-1] + "g",
            "WIDE": "\uff10" + good[1:],
        }
        form = self.one_of(BAD_IDS)
        return special.get(form, form.replace("H4", good))

    # The parts of a workspace ------------------------------------------------------------------

    def text_into(self, element, text):
        """Gives the element that text, whole or spread over other nodes."""
        if not self.seldom(2) or len(text) < 2:
            element.append(Text(text))
            return element
        cut = self.random.randrange(1, len(text))
        element.append(Text(text[:cut], is_cdata=self.seldom(4)))
        between = self.random.randrange(4)
        if between == 0:
            element.append(Comment(" beside "))
        elif between == 1:
            element.append(Instruction("beside", "it"))
        elif between == 2:
            inner = Element(self.one_of(["b", "zone", "profile"]))
            inner.append(Text(self.one_of(FIELD_TEXTS)))
            element.append(inner)
        element.append(Text(text[cut:], is_cdata=self.seldom(4)))
        return element

    def leaf(self, tag, text):
        if self.seldom(0.5):
            tag = self.one_of([tag.upper(), tag.capitalize(), tag + "s", "x:" + tag])
        return self.text_into(Element(tag), text)

    def key_fields(self):
        fields = {}
        for tag in KEY_TAGS:
            if tag in ("tx_profile", "mode"):
                continue
            if self.random.random() < 0.7:
                fields[tag] = self.one_of(FIELD_TEXTS)
        fields["tx_profile"] = self.one_of(FIELD_TEXTS)
        return fields

    def key_into(self, element, fields):
        tags = list(fields)
        if self.random.random() < 0.5:
            self.random.shuffle(tags)
        for tag in tags:
            name = "mode" if tag == "tx_profile" and self.random.random() < 0.5 else tag
            element.append(self.leaf(name, fields[tag]))
            if self.seldom():
                element.append(self.leaf(self.one_of(KEY_TAGS), self.one_of(FIELD_TEXTS)))
        if self.seldom():
            element.append(self.leaf("other", "x"))
        return element

    def channel(self, profile_id, fields):
        channel = Element(self.one_of(["mic_channel", "channel", "band", "compat_key"]))
        parts = [self.key_into(Element("compat_key"), fields)]
        if self.seldom():
            parts.append(self.key_into(Element("compat_key"), self.key_fields()))
        if not self.seldom():
            parts.append(self.leaf("compat_prof_id", profile_id))
        if self.seldom():
            parts.append(self.leaf("compat_prof_id", self.one_of(IDS)))
        if self.random.random() < 0.5:
            parts.append(self.leaf("name", self.one_of(FIELD_TEXTS)))
        if self.random.random() < 0.3:
            self.random.shuffle(parts)
        for part in parts:
            channel.append(part)
        return channel

    def configuration(self, fields):
        configuration = Element("compat_config")
        parts = [self.key_into(Element("profile"), fields)]
        for _ in range(1 + self.seldom()):
            flags = Element("compat_flags")
            for tag in CLEARABLE + (["ch_ch", "imd_5t5o"] if self.seldom(3) else []):
                if not self.seldom(2):
                    value = self.one_of(["0", "1"]) if self.random.random() < 0.8 else self.number()
                    flags.append(self.leaf(tag, value))
            parts.append(flags)
        if self.seldom():
            parts.append(self.key_into(Element("profile"), self.key_fields()))
        if self.random.random() < 0.2:
            self.random.shuffle(parts)
        for part in parts:
            configuration.append(part)
        return configuration

    def profile(self, profile_id):
        profile = Element("compat_profile", {"version": "0.0.0.1"})
        if not self.seldom(0.2):
            profile.attributes["id"] = profile_id
        if not self.seldom():
            profile.attributes["name"] = self.one_of(NAMES)
        for flag in ("imd_source", "synthesizable"):
            if self.random.random() < 0.7:
                flag_value = self.one_of(["0", "1"]) if not self.seldom(3) else self.number()
                profile.attributes[flag] = flag_value
        for _ in range(0 if self.seldom() else 1 + self.seldom()):
            spacing = Element("spacing", {"freq_units": self.one_of(["KHz", "MHz"])})
            for tag in ["ch_ch"] + CLEARABLE:
                if not self.seldom():
                    spacing.append(self.leaf(tag, self.number()))
                if self.seldom():
                    spacing.append(self.leaf(tag, self.number()))
            profile.append(spacing)
        for _ in range(0 if self.seldom() else 1 + self.seldom()):
            profile.append(self.filter())
        if self.seldom(0.3):
            profile.append(self.profile(self.uuid()))
        return profile

    def filter(self):
        result = Element("filter", {"type": self.one_of(TYPES)})
        if self.seldom():
            del result.attributes["type"]
        for tag in ("filter_start", "filter_end", "filter_center"):
            if not self.seldom():
                result.append(self.leaf(tag, self.number()))
        for _ in range(self.one_of([0, 0, 1, 1, 1, 2])):
            centers = Element("filter_center_list", {"count": self.number()})
            for _ in range(self.random.randrange(4)):
                centers.append(self.leaf(self.one_of(["freq", "freq", "f", "band"]), self.number()))
            result.append(centers)
        return result

    # The whole ---------------------------------------------------------------------------------

    def document(self):
        containers = self.containers()
        root = Element("coordinated_data_root", {"name": self.one_of(NAMES)})
        if self.random.random() < 0.7:
            root.attributes["version"] = self.one_of(["0.1", "0.2", "0.3", ""])
        order = list(CONTAINERS)
        if self.random.random() < 0.5:
            self.random.shuffle(order)
        for tag in order:
            if not self.seldom(0.5):
                root.append(containers[tag])
            if self.random.random() < 0.2:
                root.append(self.leaf("other", self.one_of(FIELD_TEXTS)))
        self.bend(root, containers)
        return self.around(root)

    def containers(self):
        containers = {tag: Element(tag) for tag in CONTAINERS}
        containers["compatibility_levels"].append(self.leaf("level", "3"))
        ids = [self.uuid() for _ in range(self.one_of([0, 1, 1, 2, 2, 3, 4, 6]))]
        keys = [self.key_fields() for _ in ids]
        if ids and self.seldom():
            self.one_of(keys).update(self.one_of(keys))
        if ids and self.random.random() < 0.1:  # two systems whose keys are one
            twin = self.one_of(keys)
            place = self.random.randint(0, len(ids))
            keys.insert(place, self.one_of([dict(twin), self.resplit(twin)]))
            ids.insert(place, self.uuid())
        if ids and self.seldom():
            ids[0] = self.one_of(ids)
        if ids and self.seldom(0.3):
            ids[self.random.randrange(len(ids))] = self.bad_uuid()
        for profile_id, fields in zip(ids, keys):
            if not self.seldom(0.3):
                channel_id = self.one_of(IDS) if self.seldom(0.3) else profile_id
                containers["mic_channels"].append(self.channel(channel_id, fields))
            if not self.seldom(0.3):
                fields = self.resplit(fields) if self.seldom() else fields
                containers["compat_configs"].append(self.configuration(fields))
            if not self.seldom(0.3):
                containers["compat_profiles"].append(self.profile(profile_id))
        if self.seldom():
            containers["compat_configs"].append(self.configuration(self.key_fields()))
        if self.random.random() < 0.4:
            for container in containers.values():
                self.random.shuffle(container.children)
        return containers

    def resplit(self, fields):
        """Other fields that join to the same key."""
        order = ["zone", "series", "band", "tx_profile", "incl_group"]
        joined = "".join(fields.get(tag, "") for tag in order)
        cuts = sorted(self.random.randint(0, len(joined)) for _ in range(4))
        pieces = [joined[a:b] for a, b in zip([0] + cuts, cuts + [len(joined)])]
        return dict(zip(order, pieces))

    def any_element(self, root):
        found = [root]
        element = root
        while element.elements() and self.random.random() < 0.7:
            element = self.one_of(element.elements())
            found.append(element)
        return self.one_of(found)

    def bend(self, root, containers):
        """Puts things where they are not expected."""
        strays = [
            lambda: self.configuration(self.key_fields()),
            lambda: self.profile(self.uuid()),
            lambda: self.channel(self.uuid(), self.key_fields()),
            lambda: Element("compatibility_profile_settings", {"count": "3"}),
            lambda: Comment(" a comment "),
            lambda: Instruction("target", "data"),
            lambda: Text(self.one_of(["loose text", " \n "]), is_cdata=self.seldom(3)),
        ] + [lambda tag=tag: Element(tag) for tag in CONTAINERS]
        while self.seldom(2):
            self.put(self.any_element(root), self.one_of(strays)())
        if self.seldom(0.5):  # one container in another, or in a wrapper
            inner = containers[self.one_of(CONTAINERS)]
            outer = self.one_of([containers[self.one_of(CONTAINERS)], Element("wrapper")])
            if outer is not inner and inner.parent is root:
                root.remove(inner)
                self.put(outer, inner)
                if outer.parent is None:
                    self.put(root, outer)

    def put(self, parent, child):
        parent.insert(self.random.randint(0, len(parent.children)), child)

    def around(self, root):
        """The section as the document, deeper in it, twice, or not at all."""
        top = root
        if self.random.random() < 0.2:
            top = Element("workspace")
            self.put(top, Element("inventory"))
            self.put(top, root)
            if self.seldom():
                self.put(top, self.profile("not below the section"))
            if self.seldom():
                self.put(top, Element("mic_channels"))
        if self.seldom(0.3):
            self.put(self.any_element(top), Element("coordinated_data_root"))
        if self.seldom(0.1):
            root.tag = self.one_of(["Coordinated_data_root", "coordinated_data_roots", "x:root"])
        return top


class Writer:
    """Writes a tree in one of the many ways to write it."""

    def __init__(self, seed):
        self.random = random.Random(f"writer {seed}")
        self.style = self.random.choice(["pretty", "pretty", "compact", "odd"])
        self.line_end = self.random.choice(["\n", "\n", "\n", "\r\n"])
        self.dtd = self.random.choice([None] * 6 + ["internal", "outside"])

    def chance(self, probability):
        return self.style == "odd" and self.random.random() < probability

    def document(self, top):
        parts = []
        if self.random.random() < 0.5:
            encoding = self.random.choice(["UTF-8", "utf-8", "ISO-8859-1", "UTF-16"])
            parts.append(f'<?xml version="1.0" encoding="{encoding}"?>' + self.line_end)
        if self.chance(0.3):
            parts.append("<!-- before --><?before it?>")
        if self.dtd == "internal":
            parts.append(f'<!DOCTYPE {top.tag} [<!ENTITY word "a"><!ENTITY blank " ">]>')
        elif self.dtd == "outside":
            parts.append(f'<!DOCTYPE {top.tag} SYSTEM "nowhere.dtd">')
        parts.append(self.element(top, 0))
        if self.chance(0.3):
            parts.append("<!-- after -->")
        return "".join(parts)

    def element(self, element, depth):
        attributes = list(element.attributes.items())
        if depth == 0:
            attributes.append(("xmlns:x", "urn:x"))
        self.random.shuffle(attributes)
        tag = element.tag + "".join(f" {name}={self.quoted(value)}" for name, value in attributes)
        if self.chance(0.1):
            tag += self.random.choice([" ", "\n", "\t"])
        if not element.children and self.random.random() < 0.5:
            return f"<{tag}/>"
        return f"<{tag}>{self.content(element, depth)}</{element.tag}>"

    def content(self, element, depth):
        has_text = any(isinstance(child, Text) for child in element.children)
        indents = self.style == "pretty" and not has_text and element.children
        parts = []
        for child in element.children:
            if indents:
                parts.append(self.line_end + "  " * (depth + 1))
            elif self.chance(0.05) and not has_text:
                parts.append(self.random.choice([" ", "\n\n", "\t", "&#32;", "\xa0"]))
            parts.append(self.node(child, depth + 1))
        if indents:
            parts.append(self.line_end + "  " * depth)
        return "".join(parts)

    def node(self, node, depth):
        if isinstance(node, Element):
            return self.element(node, depth)
        if isinstance(node, Comment):
            return f"<!--{node.value}-->"
        if isinstance(node, Instruction):
            return f"<?{node.target} {node.data}?>"
        if node.is_cdata or self.chance(0.1):
            return f"<![CDATA[{node.value}]]>"
        return self.text(node.value)

    def text(self, value):
        text = "".join(self.character(c, "<&>\r") for c in value)
        if self.dtd == "internal" and self.random.random() < 0.1:
            return text + self.random.choice(["&word;", "&blank;"])
        if self.dtd == "outside" and self.random.random() < 0.1:
            return text + "&undeclared;"
        return text

    def quoted(self, value):
        quote = self.random.choice("'\"")
        return quote + "".join(self.character(c, '<&\t\r\n' + quote) for c in value) + quote

    def character(self, character, special):
        if character in special or (self.chance(0.05) and ord(character) < 0xD800):
            names = {"<": "&lt;", "&": "&amp;", ">": "&gt;", '"': "&quot;", "'": "&apos;"}
            forms = [f"&#{ord(character)};", f"&#x{ord(character):X};"]
            return self.random.choice([names.get(character, forms[0])] + forms)
        return character


def make(seed):
    """The bytes of a document, and whether it is to come from a file (else standard input)."""
    choice = random.Random(f"encoding {seed}")
    text = Writer(seed).document(Maker(seed).document())
    if choice.random() < 0.01:
        text = text[: choice.randrange(len(text))]
    from_file = choice.random() < 0.5
    encoding = choice.choice(["utf-8"] * 6 + ["utf-8-sig", "utf-16-le", "marked-le", "marked-be"])
    if encoding.startswith("utf-8"):
        data = text.encode(encoding)
    elif not from_file:
        data = text.encode("utf-8")
    elif encoding == "utf-16-le":
        data = text.encode("utf-16-le")
    else:
        mark = "\ufeff"
        data = (mark + text).encode("utf-16-le" if encoding == "marked-le" else "utf-16-be")
    return data, from_file
