"""How lists tell of a source's lines: lines above may come and go, so not by number."""

import collections

SHORT = 20  # characters of a line that does not tell its place


def place(lines, number, above=0):
    """The line of that number, from 1, without the blanks around it; before it so many lines above,
    and one more where it is short, as "return false;" is."""
    told = lines[number - 1].strip()
    above += len(told) < SHORT
    while above > 0 and number > 1:
        number -= 1
        text = lines[number - 1].strip()
        if text:
            told = f"{text} {told}"
            above -= 1
    return told


def places(lines):
    """The place of each line, by number. Where several would have the same, as many lines above
    tell them apart as it takes."""
    found = {number: place(lines, number) for number in range(1, len(lines) + 1)}
    for above in range(1, len(lines)):
        count = collections.Counter(found.values())
        same = [number for number in found if count[found[number]] > 1]
        if not same:
            break
        found.update((number, place(lines, number, above)) for number in same)
    return found
