#!/usr/bin/env python3
"""Starts the example that shows a field for a frequency, without a screen.

usage: frequency_field_test.py EXAMPLE PROJECT_FOLDER
"""

import os
import subprocess
import sys
import tempfile
import unittest

EXAMPLE = sys.argv[1]
# Qt says so when there is no folder of the session.
SESSION = tempfile.TemporaryDirectory()
ENVIRONMENT = {**os.environ, "QT_QPA_PLATFORM": "offscreen", "LC_ALL": "C.UTF-8",
               "XDG_RUNTIME_DIR": SESSION.name}


class FrequencyField(unittest.TestCase):
    def test_shows_the_frequency_that_it_is_given(self):
        with subprocess.Popen([EXAMPLE, "470.125"], stdout=subprocess.PIPE, encoding="utf-8",
                              env=ENVIRONMENT) as process:
            self.addCleanup(process.kill)
            self.assertEqual(process.stdout.readline(), "470.125 MHz\n")
            process.terminate()

    def test_tells_how_it_is_used(self):
        for arguments in (["abc"], ["1", "2"]):
            ran = subprocess.run([EXAMPLE, *arguments], capture_output=True, timeout=60,
                                 encoding="utf-8", env=ENVIRONMENT)
            self.assertEqual((ran.returncode, ran.stdout, ran.stderr),
                             (2, "", "usage: frequency_field [FREQUENCY]\n"))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
