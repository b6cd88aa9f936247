#!/usr/bin/env python3
"""Converts every sample and compares with what the rules make of it.

usage: samples_test.py CONVERTER PROJECT_FOLDER

The expected documents in golden/ are written by hand and by the rules, not by the converter. The
order of attributes means nothing in XML, so documents are compared in their canonical form.
"""

import pathlib
import subprocess
import sys
import unittest
import xml.etree.ElementTree as ElementTree

CONVERTER = sys.argv[1]
PROJECT = pathlib.Path(sys.argv[2])
SAMPLES = sorted((PROJECT / "samples").glob("*.xml"))
GOLDEN = pathlib.Path(__file__).parent / "golden"


def convert(*arguments, **options):
    return subprocess.run([CONVERTER, *arguments], capture_output=True, timeout=60, **options)


def canonical(text: bytes) -> str:
    return ElementTree.canonicalize(text.decode("utf-8"), with_comments=True)


class Samples(unittest.TestCase):
    maxDiff = None

    def each_sample(self):
        self.assertGreaterEqual(len(SAMPLES), 3)
        for sample in SAMPLES:
            with self.subTest(sample=sample.name):
                yield sample

    def test_every_sample_converts_as_the_rules_say(self):
        for sample in self.each_sample():
            run = convert(sample)
            self.assertEqual((run.returncode, run.stderr), (0, b"\nPROGRESS"))
            self.assertEqual(canonical(run.stdout),
                             canonical((GOLDEN / sample.name).read_bytes()))

    def test_standard_input_gives_the_same_bytes_as_the_file(self):
        for sample in self.each_sample():
            run = convert(input=sample.read_bytes())
            self.assertEqual((run.returncode, run.stderr), (0, b"\nPROGRESS"))
            self.assertEqual(run.stdout, convert(sample).stdout)

    def test_every_run_gives_the_same_bytes(self):
        for sample in self.each_sample():
            self.assertEqual(len({convert(sample).stdout for _ in range(5)}), 1)

    def test_no_expected_document_is_without_its_sample(self):
        self.assertEqual([file.name for file in sorted(GOLDEN.glob("*.xml"))],
                         [sample.name for sample in SAMPLES])


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
