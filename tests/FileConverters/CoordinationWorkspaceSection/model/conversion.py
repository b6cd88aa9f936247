"""A second opinion of the section conversion, written from its rules and not from its C++ code.

It is made to be compared with the converter, so it takes the shortest way to each rule and knows
nothing of speed. The command-line half (which bytes are read as which text, what goes to which
stream) is here too: see run().
"""

import enum
import re

from document import Element, NotWellFormed, QT_SPACES, Text, read, write

PROFILE_NAMES = {"robust": "Robust", "median": "Standard", "quantity": "More Frequencies"}
SPACINGS = ["ch_ch", "imd_2t3o", "imd_2t5o", "imd_2t7o", "imd_2t9o", "imd_3t3o"]
CLEARABLE = SPACINGS[1:]  # a document cannot disable the channel-to-channel spacing
KEY_FIELDS = {
    "zone": "zone",
    "series": "series",
    "band": "band",
    "tx_profile": "tx_profile",
    "mode": "tx_profile",
    "incl_group": "incl_group",
}
KEY_ORDER = ["zone", "series", "band", "tx_profile", "incl_group"]
WRITTEN_ORDER = ["band", "series", "tx_profile", "zone", "incl_group"]
FILTER_EDGES = ["filter_start", "filter_end", "filter_center"]
FILTER_WITH_CENTER_LIST = 2


class BadUuid(Exception):
    pass


def to_int(text):
    """QString::toInt: one sign, ASCII digits, white space around; anything else counts as 0."""
    match = re.fullmatch(
        f"[{QT_SPACES}]*([+\N{MINUS SIGN}-]?)([0-9]+)[{QT_SPACES}]*", text
    )
    if not match:
        return 0
    value = int(match[2]) * (1 if match[1] in ("", "+") else -1)
    return value if -(2**31) <= value < 2**31 else 0


def read_uuid(text):
    """Boost.Uuid's string form: 32 digits, four dashes or none, optionally in braces."""
    match = re.fullmatch(
        "([{]?)([0-9a-fA-F]{8})(-?)([0-9a-fA-F]{4})(-?)([0-9a-fA-F]{4})(-?)"
        "([0-9a-fA-F]{4})(-?)([0-9a-fA-F]{12})([}]?)",
        text,
    )
    if not match or (match[1] == "{") != (match[11] == "}"):
        raise BadUuid(text)
    if len({match[3], match[5], match[7], match[9]}) != 1:
        raise BadUuid(text)
    return "-".join(match[i] for i in (2, 4, 6, 8, 10)).lower()


class Profile:
    def __init__(self):
        self.id = "00000000-0000-0000-0000-000000000000"
        self.name = ""
        self.imd_source = True
        self.synthesizable = True
        self.spacing = dict.fromkeys(SPACINGS, 0)
        self.filter_type = -1
        self.edges = dict.fromkeys(FILTER_EDGES, 0)
        self.centers = []

    @staticmethod
    def imported(element):
        profile = Profile()
        profile.id = read_uuid(element.attributes.get("id", ""))
        profile.name = element.attributes.get("name", "")
        if "imd_source" in element.attributes:
            profile.imd_source = to_int(element.attributes["imd_source"]) != 0
        if "synthesizable" in element.attributes:
            profile.synthesizable = to_int(element.attributes["synthesizable"]) != 0
        for spacing in element.elements("spacing")[:1]:
            for child in spacing.elements():
                if child.tag in SPACINGS:
                    profile.spacing[child.tag] = to_int(child.text())
        for band_filter in element.elements("filter")[:1]:
            profile._import_filter(band_filter)
        return profile

    def _import_filter(self, band_filter):
        self.filter_type = to_int(band_filter.attributes.get("type", ""))
        for child in band_filter.elements():
            if child.tag in FILTER_EDGES:
                self.edges[child.tag] = to_int(child.text())
            elif child.tag == "filter_center_list" and self.filter_type == FILTER_WITH_CENTER_LIST:
                self.centers += [to_int(center.text()) for center in child.elements()]

    def exported(self, disabled):
        element = Element("compat_profile")
        element.attributes = {
            "version": "0.0.0.1",
            "id": self.id,
            "name": self.name,
            "imd_source": str(int(self.imd_source)),
            "synthesizable": str(int(self.synthesizable)),
        }
        spacing = Element("spacing", {"freq_units": "KHz"})
        element.append(spacing)
        for name, value in self.spacing.items():
            spacing.append(leaf(name, str(0 if name in disabled else value)))
        band_filter = Element("filter", {"type": str(self.filter_type)})
        element.append(band_filter)
        for name, value in self.edges.items():
            band_filter.append(leaf(name, str(value)))
        if self.filter_type == FILTER_WITH_CENTER_LIST:
            centers = Element("filter_center_list", {"count": str(len(self.centers))})
            band_filter.append(centers)
            for center in self.centers:
                centers.append(leaf("freq", str(center)))
        return element


class KeyMap:
    """A map ordered by the fields' joined bytes; keys that join alike are one entry.

    An entry keeps the key it was first made with and takes the value it was last given.
    """

    def __init__(self):
        self._entries = {}

    @staticmethod
    def _joined(key):
        return "".join(key[field] for field in KEY_ORDER).encode("utf-8", "surrogatepass")

    def insert(self, key, value):
        joined = self._joined(key)
        first_key = self._entries[joined][0] if joined in self._entries else dict(key)
        self._entries[joined] = (first_key, value)

    def get(self, key, default):
        return self._entries.get(self._joined(key), (None, default))[1]

    def __len__(self):
        return len(self._entries)

    def items(self):
        return [self._entries[joined] for joined in sorted(self._entries)]


def leaf(tag, text):
    element = Element(tag)
    element.append(Text(text))
    return element


def read_key(element, key):
    for child in element.elements():
        if child.tag in KEY_FIELDS:
            key[KEY_FIELDS[child.tag]] = child.text()


def channel_keys(mic_channels):
    keys = {}
    for channel in mic_channels.elements() if mic_channels else []:
        key = dict.fromkeys(KEY_ORDER, "")
        profile_id = ""
        for child in channel.elements():
            if child.tag == "compat_key":
                read_key(child, key)
            elif child.tag == "compat_prof_id":
                profile_id = child.text()
        keys[profile_id] = key
    return keys


def disabled_products(configurations):
    result = KeyMap()
    for configuration in configurations:
        key = dict.fromkeys(KEY_ORDER, "")
        disabled = set()
        for child in configuration.elements():
            if child.tag == "profile":
                read_key(child, key)
            elif child.tag == "compat_flags":
                disabled |= {
                    flag.tag
                    for flag in child.elements()
                    if flag.tag in CLEARABLE and to_int(flag.text()) == 0
                }
        result.insert(key, disabled)
    return result


def imported_profiles(elements):
    profiles = {}
    for element in elements:
        element.attributes["name"] = PROFILE_NAMES.get(element.attributes.get("name", ""), "")
        profiles[element.attributes.get("id", "")] = Profile.imported(element)
    return profiles


def join(keys, profiles):
    joined = KeyMap()
    if len(keys) == len(profiles):
        for profile_id in sorted(keys, key=lambda text: text.encode("utf-16-be", "surrogatepass")):
            joined.insert(keys[profile_id], profiles.get(profile_id, Profile()))
    return joined


def settings_element(disabled_by_key, profile_by_key):
    settings = Element("compatibility_profile_settings", {"version": "1.0", "count": "0"})
    if len(disabled_by_key) != len(profile_by_key):
        return settings
    settings.attributes["count"] = str(len(disabled_by_key))
    for key, disabled in disabled_by_key.items():
        entry = Element("profile")
        for field in WRITTEN_ORDER:
            entry.append(leaf(field, key[field]))
        entry.append(profile_by_key.get(key, Profile()).exported(disabled))
        settings.append(entry)
    return settings


def convert(document):
    """Converts in place; False when there is not exactly one workspace section."""
    roots = document.descendants("coordinated_data_root")
    if len(roots) != 1:
        return False
    root = roots[0]
    root.attributes["version"] = "0.3"

    def first(tag):
        return next(iter(root.descendants(tag)), None)

    mic_channels = first("mic_channels")
    old_containers = [
        first(tag) for tag in ("compat_profiles", "compatibility_levels", "compat_configs")
    ]
    keys = channel_keys(mic_channels)
    disabled_by_key = disabled_products(root.descendants("compat_config"))
    profiles = imported_profiles(root.descendants("compat_profile"))
    settings = settings_element(disabled_by_key, join(keys, profiles))
    if mic_channels is None:
        root.append(settings)
    elif mic_channels.parent is root:
        root.insert(root.children.index(mic_channels) + 1, settings)
    for container in old_containers:
        if container is not None and container.parent is root:
            root.remove(container)
    return True


class Outcome(enum.Enum):
    SILENCE = "status 1, nothing written"
    FAILURE = "status 1, the word FAILURE"
    ABORT = "an abort, nothing on standard output, no word"
    PROGRESS = "status 0, the document, the word PROGRESS"


def text_of_standard_input(data):
    """Line by line, the line feeds dropped; each line is decoded by itself, its mark included."""
    return "".join(
        line.removeprefix(b"\xef\xbb\xbf").decode("utf-8", "replace")
        for line in data.split(b"\n")
    )


def text_of_file(data):
    """By its byte-order mark; else UTF-16 when the first line is one character up to a NUL."""
    for mark, codec in ((b"\xff\xfe", "utf-16-le"), (b"\xfe\xff", "utf-16-be")):
        if data.startswith(mark):
            return data[2:].decode(codec, "replace")
    data = data.removeprefix(b"\xef\xbb\xbf")
    first_line = data.split(b"\n")[0].removesuffix(b"\r")
    if len(first_line.split(b"\0")[0]) == 1:
        return data.decode("utf-16-le", "replace")
    return data.decode("utf-8", "replace")


def run(data, from_file):
    """What the converter is to make of these bytes: the outcome and the document, or None."""
    text = text_of_file(data) if from_file else text_of_standard_input(data)
    try:
        document = read(text)
    except NotWellFormed:
        return Outcome.SILENCE, None
    try:
        if not convert(document):
            return Outcome.FAILURE, None
    except BadUuid:
        return Outcome.ABORT, None
    return Outcome.PROGRESS, write(document)
