#!/usr/bin/env python3
"""Makes mistakes in converted samples and checks that coordworkspace-inspect --verify finds each.

usage: mistakes_test.py INSPECT CONVERTER SAMPLES [--count N] [--seed FIRST]

Each mistake is one small change, drawn by a seed. Changes that mean nothing (two equal neighbours
that changed places) are drawn again.
"""

import argparse
import collections
import copy
import json
import pathlib
import random
import subprocess
import sys
import tempfile
import xml.etree.ElementTree as ElementTree

OLD_CONTAINERS = ["compat_configs", "compat_profiles", "compatibility_levels"]


def parse(data):
    builder = ElementTree.TreeBuilder(insert_comments=True)
    return ElementTree.fromstring(data, ElementTree.XMLParser(target=builder))


def written(root, converted):
    """The tree as a document, with what stands before the root left as the converter wrote it."""
    head = converted[:converted.index(f"<{root.tag.rstrip('_')}".encode())]
    return head + ElementTree.tostring(root, encoding="unicode").encode()


def meaning(element):
    """All that has a meaning: names, attributes, texts that are not blank, children in order."""
    def text(value):
        return value if value and value.strip() else ""
    tag = "comment" if callable(element.tag) else element.tag
    return (tag, sorted(element.attrib.items()), text(element.text),
            [(meaning(child), text(child.tail)) for child in element])


class NothingToDo(Exception):
    pass


class Mistakes:
    """The ways to go wrong. Each changes the tree, or raises NothingToDo."""

    def __init__(self, root, before, chance):
        self.root = root
        self.before = before
        self.chance = chance
        self.parents = {child: parent for parent in root.iter() for child in parent}
        self.elements = [element for element in root.iter() if not callable(element.tag)]

    def pick(self, wanted):
        found = [element for element in self.elements if wanted(element)]
        if not found:
            raise NothingToDo
        return self.chance.choice(found)

    def pick_text(self):
        return self.pick(lambda element: element.text and element.text.strip())

    def pick_inner(self):
        return self.pick(lambda element: element is not self.root)

    def pick_attributed(self):
        element = self.pick(lambda element: element.attrib)
        return element, self.chance.choice(sorted(element.attrib))

    # Texts

    def text_grows(self):
        self.pick_text().text += self.chance.choice("01xÄ ")

    def text_shrinks(self):
        element = self.pick_text()
        element.text = element.text[:-1]

    def text_goes(self):
        self.pick_text().text = ""

    def number_is_one_off(self):
        element = self.pick(lambda element: (element.text or "").strip().lstrip("-").isdigit())
        element.text = str(int(element.text) + self.chance.choice([-1, 1]))

    def zero_is_a_number(self):
        element = self.pick(lambda element: element.text == "0")
        element.text = str(self.chance.randint(1, 500))

    def number_is_a_zero(self):
        element = self.pick(lambda element: (element.text or "").isdigit() and element.text != "0")
        element.text = "0"

    def texts_change_places(self):
        one, other = self.pick_text(), self.pick_text()
        one.text, other.text = other.text, one.text

    def text_comes_in(self):
        element = self.pick(len)
        element.text = "x"

    def empty_element_has_a_text(self):
        element = self.pick(lambda element: not element.text and not len(element))
        element.text = "x"

    # Attributes

    def attribute_changes(self):
        element, name = self.pick_attributed()
        element.set(name, element.get(name) + self.chance.choice("01xÄ"))

    def attribute_is_emptied(self):
        element, name = self.pick_attributed()
        element.set(name, "")

    def attribute_goes(self):
        element, name = self.pick_attributed()
        del element.attrib[name]

    def attribute_comes_in(self):
        self.pick_inner().set("extra", "1")

    def attributes_change_places(self):
        one, name = self.pick_attributed()
        other = self.pick(lambda element: name in element.attrib and element is not one)
        first, second = one.get(name), other.get(name)
        one.set(name, second)
        other.set(name, first)

    def old_name_stays(self):
        names = {"Robust": "robust", "Standard": "median", "More Frequencies": "quantity"}
        element = self.pick(lambda element: element.get("name") in names)
        element.set("name", names[element.get("name")])

    # Elements

    def element_goes(self):
        element = self.pick_inner()
        self.parents[element].remove(element)

    def element_comes_twice(self):
        element = self.pick_inner()
        parent = self.parents[element]
        parent.insert(list(parent).index(element), copy.deepcopy(element))

    def element_is_renamed(self):
        self.pick_inner().tag += "_"

    def element_comes_in(self):
        element = self.pick(lambda element: not (element.text or "").strip())
        element.append(ElementTree.Element("extra"))

    def neighbours_change_places(self):
        parent = self.pick(lambda element: len(element) > 1)
        at = self.chance.randrange(len(parent) - 1)
        one, other = parent[at], parent[at + 1]
        parent[at], parent[at + 1] = other, one

    def element_moves_away(self):
        element = self.pick_inner()
        below = set(element.iter())
        place = self.pick(lambda other: other not in below and not (other.text or "").strip())
        self.parents[element].remove(element)
        place.append(element)

    def old_container_stays(self):
        stays = self.before.find(self.chance.choice(OLD_CONTAINERS))
        if stays is None:
            raise NothingToDo
        self.root.insert(self.chance.randrange(len(self.root) + 1), copy.deepcopy(stays))

    def comment_comes_in(self):
        self.pick(len).insert(0, ElementTree.Comment("extra"))

    def settings_come_twice(self):
        settings = self.root.find("compatibility_profile_settings")
        self.root.append(ElementTree.Element(settings.tag, {"version": "1.0", "count": "0"}))

    def settings_come_out_empty(self):
        settings = self.root.find("compatibility_profile_settings")
        if not len(settings):
            raise NothingToDo
        for profile in list(settings):
            settings.remove(profile)
        settings.set("count", "0")


WAYS = sorted(name for name in vars(Mistakes) if not name.startswith(("_", "pick")))


def mistaken(converted, before, chance, way):
    """A converted document with one mistake; None when this way leads to none in it."""
    for _ in range(20):
        root = parse(converted)
        try:
            getattr(Mistakes(root, before, chance), way)()
        except NothingToDo:
            return None
        if meaning(root) != meaning(parse(converted)):
            return written(root, converted)
    return None


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("inspect")
    parser.add_argument("converter")
    parser.add_argument("samples", type=pathlib.Path)
    parser.add_argument("--count", type=int, default=300)
    parser.add_argument("--seed", type=int, default=1)
    options = parser.parse_args()

    made = collections.Counter()
    missed = []
    samples = sorted(options.samples.glob("*.xml"))
    conversions = {sample: subprocess.run([options.converter, sample], capture_output=True).stdout
                   for sample in samples}
    with tempfile.TemporaryDirectory() as folder:
        after = pathlib.Path(folder, "after.xml")

        def verify(sample, document):
            after.write_bytes(document)
            run = subprocess.run([options.inspect, "--json", "--verify", sample, after],
                                 capture_output=True, timeout=120)
            return run.returncode, json.loads(run.stdout).get("differences", [])

        for sample, converted in conversions.items():
            # Else the way of writing would be the mistake that is found.
            if verify(sample, written(parse(converted), converted)) != (0, []):
                missed.append(f"{sample.name}: a mistake is found where there is none")

        seed = options.seed
        while sum(made.values()) < options.count:
            chance = random.Random(seed)
            sample = samples[seed % len(samples)]
            way = WAYS[seed % len(WAYS)]
            document = mistaken(conversions[sample], parse(sample.read_bytes()), chance, way)
            seed += 1
            if document is None:
                continue
            made[way] += 1
            status, differences = verify(sample, document)
            if status != 2 or not differences:
                missed.append(f"seed {seed - 1}: {way} in {sample.name}, status {status}")
    for way in WAYS:
        print(f"{made[way]:5} mistakes: {way.replace('_', ' ')}")
    print(f"{sum(made.values())} mistakes, {len(missed)} not found", *missed, sep="\n")
    return 1 if missed or min(made[way] for way in WAYS) == 0 else 0


if __name__ == "__main__":
    sys.exit(main())
