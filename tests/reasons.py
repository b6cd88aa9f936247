"""Lists of reasons why something in the sources stays as it is, one a line:

    source | what | place | reason

What it is about the place may be left out, where a list always means the same. Lines that begin with
a # are for the reader.
"""

import pathlib


def reasons(path, tells_what=True):
    """The reason of each (source, what, place), or of each (source, place)."""
    found = {}
    for line in pathlib.Path(path).read_text(encoding="utf-8").splitlines():
        if line and not line.startswith("#"):
            *head, rest = line.split(" | ", 2 if tells_what else 1)
            place, reason = rest.rsplit(" | ", 1)
            found[(*head, place)] = reason
    return found
