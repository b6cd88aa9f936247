#!/usr/bin/env python3
"""Holds the schemas of documents against samples and against what the library and the converter
write: they take all of it, and demand each element, attribute and number form of it.

usage: schemas_test.py PROJECT_FOLDER CONVERTER WRITER_OF_RECORDS
"""

import copy
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

from lxml import etree

PROJECT = pathlib.Path(sys.argv[1])
CONVERTER, WRITER = sys.argv[2:4]
SCHEMAS = PROJECT / "docs/schemas"
CASES = PROJECT / "tests/FileConverters/CoordinationWorkspaceSection/cases"
RNG = "{http://relaxng.org/ns/structure/1.0}"

# Elements of records that need not be there, and those that may come again.
OPTIONAL = {"filter_center_list", "freq", "range", "freq_list", "sub_range_list", "sub_range"}
REPEATED = {"freq", "sub_range"}


def verdicts(schema, documents):
    """Of each document, a name and a text, whether xmllint finds it valid."""
    with tempfile.TemporaryDirectory() as folder:
        paths = []
        for number, (_, text) in enumerate(documents):
            paths.append(pathlib.Path(folder, f"{number}.xml"))
            paths[-1].write_bytes(text if isinstance(text, bytes) else text.encode())
        ran = subprocess.run(["xmllint", "--noout", "--relaxng", SCHEMAS / schema, *paths],
                             capture_output=True, encoding="utf-8", timeout=120)
        said = dict(re.findall(r"/(\d+)\.xml (validates|fails to validate)$", ran.stderr,
                               re.MULTILINE))
    assert len(said) == len(documents), ran.stderr
    return [(name, said[str(number)] == "validates")
            for number, (name, _) in enumerate(documents)]


def names_of_schema(name):
    """Every element and attribute that the schema names, those of its parts included."""
    tree = etree.parse(SCHEMAS / name)
    names = {(place.tag.removeprefix(RNG), place.get("name"))
             for kind in ("element", "attribute") for place in tree.iter(RNG + kind)
             if place.get("name")}
    for part in tree.iter(RNG + "include"):
        names |= names_of_schema(part.get("href"))
    return names


def names_of_document(root):
    return ({("element", element.tag) for element in root.iter(etree.Element)}
            | {("attribute", name) for element in root.iter(etree.Element)
               for name in element.attrib})


def mutants(root):
    """The document with one thing wrong, each with what that is. Every one must be refused."""
    for place in range(len([*root.iter(etree.Element)])):
        def fresh():
            tree = copy.deepcopy(root)
            return tree, [*tree.iter(etree.Element)][place]

        element = fresh()[1]
        path, parent = element.getroottree().getpath(element), element.getparent()
        for name in element.attrib:
            tree, changed = fresh()
            del changed.attrib[name]
            yield f"{path} without {name}", tree
        tree, changed = fresh()
        changed.set("unknown", "1")
        yield f"{path} with an unknown attribute", tree
        tree, changed = fresh()
        etree.SubElement(changed, "unknown")
        yield f"{path} with an unknown child", tree
        tree, changed = fresh()
        changed.tag = changed.tag.upper()
        yield f"{path} in upper case", tree
        if parent is None:
            continue
        if element.tag not in OPTIONAL:
            tree, changed = fresh()
            changed.getparent().remove(changed)
            yield f"without {path}", tree
        if element.tag not in REPEATED:
            tree, changed = fresh()
            changed.addnext(copy.deepcopy(changed))
            yield f"{path} twice", tree
        following = element.getnext()
        if following is not None and following.tag != element.tag:
            tree, changed = fresh()
            changed.getnext().addnext(changed)
            yield f"{path} behind the next", tree
        if not len(element) and re.fullmatch(r"-?\d+", element.text or ""):
            for text in ("", "x", "1.5", "+1", "01", "-0", "1 000", "2147483648"):
                tree, changed = fresh()
                changed.text = text
                yield f"{path} with the text '{text}'", tree


def converted(text):
    ran = subprocess.run([CONVERTER], input=text, capture_output=True, timeout=60)
    assert (ran.returncode, ran.stderr) == (0, b"\nPROGRESS"), ran
    return ran.stdout


class Records(unittest.TestCase):
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        subprocess.run([WRITER, folder.name], check=True, timeout=60)
        cls.written = {path.name: path.read_bytes()
                       for path in sorted(pathlib.Path(folder.name).iterdir())}

    def of(self, *kinds):
        found = [(name, text) for name, text in self.written.items()
                 if name.rsplit("-", 1)[0] in kinds]
        self.assertEqual(len(found), 7 * len(kinds))
        return found

    def check(self, schema, *kinds):
        documents = self.of(*kinds)
        self.assertEqual(verdicts(schema, documents), [(name, True) for name, _ in documents])
        roots = [(name, etree.fromstring(text, etree.XMLParser(remove_blank_text=True)))
                 for name, text in documents]
        written = set().union(*(names_of_document(root) for _, root in roots))
        self.assertEqual(names_of_schema(schema), written)
        wrong = [(f"{name}: {what}", etree.tostring(tree))
                 for name, root in roots for what, tree in mutants(root)]
        self.assertGreater(len(wrong), 300)
        accepted = [what for what, is_valid in verdicts(schema, wrong) if is_valid]
        self.assertEqual(accepted, [])

    def test_profiles(self):
        self.check("compat_profile.rng", "profile", "light-profile")

    def test_tuning_capabilities(self):
        self.check("tuning_capability.rng", "tuning")

    def test_values_that_are_never_written(self):
        profile = self.written["profile-2.xml"].decode()
        tuning = self.written["tuning-2.xml"].decode()
        for schema, text, before, after in (
                ("compat_profile.rng", profile, "0.0.0.1", "0.0.0.2"),
                ("compat_profile.rng", profile, "KHz", "kHz"),
                ("compat_profile.rng", profile, 'imd_source="1"', 'imd_source="true"'),
                ("compat_profile.rng", profile, 'type="2"', 'type="1"'),
                ("compat_profile.rng", profile, 'type="2"', 'type=" 2"'),
                ("compat_profile.rng", profile, "-0000-", "-00000-"),
                ("compat_profile.rng", profile, "00000000-", "{00000000-"),
                ("tuning_capability.rng", tuning, "<step>25", "<step>0"),
                ("tuning_capability.rng", tuning, "<step>25", "<step>-25"),
                ("tuning_capability.rng", tuning, "</range>",
                 '</range><freq_list freq_units="KHz"><freq>1</freq></freq_list>')):
            with self.subTest(before=before, after=after):
                self.assertIn(before, text)
                changed = text.replace(before, after, 1)
                self.assertEqual(verdicts(schema, [("", text), ("", changed)]),
                                 [("", True), ("", False)])


class Workspaces(unittest.TestCase):
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        cls.samples = [(path.name, path.read_bytes())
                       for path in sorted((PROJECT / "samples").glob("*.xml"))]
        cls.samples += [(name, (CASES / name / "input.xml").read_bytes())
                        for name in ("one_system", "counts_differ")]
        page = (PROJECT / "docs/formats.md").read_text(encoding="utf-8")
        cls.samples.append(("the page", re.search(r"```xml\n(.*?)```", page,
                                                  re.DOTALL).group(1).encode()))

    def check_all(self, schema, documents, expected):
        self.assertEqual(verdicts(schema, documents), [(name, expected) for name, _ in documents])

    def test_samples_are_valid_before_and_after(self):
        self.assertEqual(len(self.samples), 6)
        after = [(name, converted(text)) for name, text in self.samples]
        self.check_all("workspace_before.rng", self.samples, True)
        self.check_all("workspace_after.rng", after, True)
        # The two do not take each other's documents.
        self.check_all("workspace_before.rng", after, False)
        self.check_all("workspace_after.rng", self.samples, False)

    def test_the_new_element_is_demanded_as_it_is_written(self):
        text = converted(dict(self.samples)["the page"])
        root = etree.fromstring(text, etree.XMLParser(remove_blank_text=True))
        settings = "/coordinated_data_root/compatibility_profile_settings"
        wrong = []
        for what, tree in mutants(root):
            path = what.removeprefix("without ")
            # A list of systems may be of any length, and so may its only profile be missing.
            if (path.startswith(settings) and path != f"{settings}/profile"
                    and what != f"{settings}/profile twice"):
                wrong.append((what, etree.tostring(tree)))
        self.assertGreater(len(wrong), 100)
        self.check_all("workspace_after.rng", wrong, False)

    def test_every_name_of_the_new_element_is_written(self):
        text = converted(dict(self.samples)["festival.xml"])
        element = etree.fromstring(text).find("compatibility_profile_settings")
        parts = names_of_schema("workspace_parts.rng")
        own = names_of_schema("workspace_after.rng") - parts - {("element", "coordinated_data_root")}
        written = names_of_document(element)
        self.assertLessEqual(own, written)
        self.assertLessEqual(written - parts, own)

    def test_documents_that_are_not_regular(self):
        page = dict(self.samples)["the page"].decode()
        profile_id = 'id="386bd965-234b-4a83-b5a9-4a6f38b47e63"'
        for before, after in (
                ('version="0.2"', 'version="0.3"'),
                ('version="0.2"', 'version="0.0"'),
                ('<coordinated_data_root version="0.2">', "<coordinated_data_root>"),
                (profile_id, ""),
                (profile_id, 'id="7"'),
                ("<compat_prof_id>386bd965-234b-4a83-b5a9-4a6f38b47e63</compat_prof_id>", ""),
                ("<mode>Analog</mode>", "<mode>Analog</mode><tx_profile>B</tx_profile>"),
                ("<imd_2t3o>1</imd_2t3o>", "<imd_2t3o>no</imd_2t3o>"),
                ("<imd_2t3o>1</imd_2t3o>", "<imd_2t11o>1</imd_2t11o>"),
                ("<ch_ch>400</ch_ch>", "<ch_ch>400</ch_ch><ch_ch>1</ch_ch>"),
                ("<ch_ch>400</ch_ch>", "<ch_ch>0.4 MHz</ch_ch>"),
                ("KHz", "MHz"),
                ('type="2"', 'type="1"'),
                ("<compatibility_levels/>", "<deeper><mic_channels/></deeper>"),
                ("<compatibility_levels/>", "<compat_configs/>"),
                ("<compatibility_levels/>", "<deeper><compat_profile/></deeper>"),
                ("<compatibility_levels/>", "<compatibility_profile_settings/>")):
            with self.subTest(before=before, after=after):
                self.assertIn(before, page)
                changed = page.replace(before, after, 1)
                self.check_all("workspace_before.rng", [("", changed)], False)

    def test_regular_documents_of_other_shapes(self):
        page = dict(self.samples)["the page"].decode()
        for before, after in (
                ('version="0.2"', 'version="0.1" show="2"'),
                ("<mic_channel>", '<channel place="left"><note>any <b>text</b></note>'),
                ('version="0.0.0.1" ', ""),
                (' name="quantity"', ' name="of my own"'),
                ("386bd965-234b-4a83-b5a9-4a6f38b47e63\" name",
                 "{386BD965234B4A83B5A94A6F38B47E63}\" name"),
                ("<ch_ch>400</ch_ch>", "<ch_ch> +400 </ch_ch>"),
                ("<filter_start>0</filter_start>", ""),
                ("<freq>634000</freq>", "<centre>634000</centre>"),
                ("<compatibility_levels/>", "<scan_data>1 <x y='z'/></scan_data>")):
            with self.subTest(before=before, after=after):
                self.assertIn(before, page)
                changed = page.replace(before, after, 1).replace(
                    "</mic_channel>", "</channel>" if after.startswith("<channel") else
                    "</mic_channel>")
                self.check_all("workspace_before.rng", [("", changed)], True)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
