#!/usr/bin/env python3
"""Installs the build, component by component, into folders with a blank in their names, moves them,
and looks at what is there. Programs that use the installed library are built by a long check.

usage: install_test.py PROJECT_FOLDER BUILD_FOLDER CMAKE LIBRARY_FOLDER HELPERS PROGRAM_NAME...

HELPERS are the programs that others run, below the prefix, with commas between them.
"""

import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

PROJECT, BUILD = map(pathlib.Path, sys.argv[1:3])
sys.path.insert(0, str(PROJECT / "tests/FileConverters/CoordinationWorkspaceSection/archive"))
import machines  # noqa: E402

CMAKE, LIBRARIES = sys.argv[3:5]
HELPERS = sys.argv[5].split(",")
PROGRAMS = sys.argv[6:]
COMPONENTS = ("programs", "development", "documentation")
CONVERTER = "CoordWorkSpaceSectionConverter0_3"
LINK = re.compile(r"\[[^\]]+\]\(([^)\s#]+)[^)]*\)")


def run(*command, **options):
    return subprocess.run([*map(str, command)], check=True, capture_output=True,
                          encoding="utf-8", timeout=120, **options).stdout


def files(folder):
    return sorted(str(path.relative_to(folder)) for path in folder.rglob("*") if path.is_file())


class Install(unittest.TestCase):
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.prefixes = {}
        for component in COMPONENTS:
            prefix = pathlib.Path(folder.name, f"before {component}")
            run(CMAKE, "--install", BUILD, "--component", component, "--prefix", prefix)
            moved = pathlib.Path(folder.name, "moved away", component)
            moved.parent.mkdir(exist_ok=True)
            cls.prefixes[component] = shutil.move(prefix, moved)

    def test_the_programs_come_with_their_pages_completions_and_schemas(self):
        expected = [f"share/coordworkspace/schemas/{path.name}"
                    for path in (PROJECT / "docs/schemas").iterdir()]
        expected += HELPERS
        for name in PROGRAMS:
            expected += [f"bin/{name}", f"share/man/man1/{name}.1",
                         f"share/bash-completion/completions/{name}",
                         f"share/zsh/site-functions/_{name}",
                         f"share/fish/vendor_completions.d/{name}.fish"]
        prefix = self.prefixes["programs"]
        self.assertEqual([name for name in files(prefix) if ".so" not in name], sorted(expected))
        for name in [*(f"bin/{name}" for name in PROGRAMS), *HELPERS]:
            self.assertTrue(os.access(prefix / name, os.X_OK))

    def test_an_installed_program_converts(self):
        sample = PROJECT / "samples/festival.xml"
        installed = self.prefixes["programs"] / "bin" / CONVERTER
        ran = subprocess.run([installed, sample], capture_output=True, timeout=120)
        self.assertEqual((ran.returncode, ran.stderr), (0, b"\nPROGRESS"))
        built = subprocess.run([BUILD / "bin" / CONVERTER, sample], capture_output=True, timeout=120)
        self.assertEqual(ran.stdout, built.stdout)

    def test_the_installed_archive_program_finds_what_it_runs(self):
        installed = self.prefixes["programs"] / "bin/coordworkspace-convert-archive"
        with tempfile.TemporaryDirectory() as folder:
            source, target = pathlib.Path(folder, "all shows"), pathlib.Path(folder, "converted")
            source.mkdir()
            shutil.copy(PROJECT / "samples/festival.xml", source)
            # A sanitizer reserves more address space than any limit allows.
            run(installed, "--memory=none", "--timeout=none", source, target)
            built = subprocess.run([BUILD / "bin" / CONVERTER, source / "festival.xml"],
                                   capture_output=True, timeout=120)
            self.assertEqual((target / "festival.xml").read_bytes(), built.stdout)

    def test_the_installed_archive_program_finds_what_runs_on_other_machines(self):
        if machines.missing():
            self.skipTest(machines.missing())
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        network = machines.Network(folder.name, folder.name)
        machine = network.machine("box")
        self.addCleanup(machine.stop)
        machine.start()
        login, source, target = (pathlib.Path(folder.name, name)
                                 for name in ("the machines", "all shows", "converted"))
        login.write_text("2/box\n")
        source.mkdir()
        shutil.copy(PROJECT / "samples/festival.xml", source)
        ran = subprocess.run(
            [self.prefixes["programs"] / "bin/coordworkspace-convert-archive", "--memory=none",
             "--timeout=none", f"--machines={login}", source, target],
            env=network.environment, capture_output=True, timeout=120)
        # It would be told that a machine has given nothing back.
        self.assertEqual((ran.returncode, ran.stderr), (0, b""))
        self.assertTrue((machine.home / ".parallel").is_dir())
        built = subprocess.run([BUILD / "bin" / CONVERTER, source / "festival.xml"],
                               capture_output=True, timeout=120)
        self.assertEqual((target / "festival.xml").read_bytes(), built.stdout)

    def test_the_development_files_are_those_of_the_library(self):
        names = files(self.prefixes["development"])
        headers = [name for name in names if name.endswith(".h")]
        self.assertIn("include/ZelMain/Frequency.h", headers)
        self.assertIn("include/ZelMain/FrequencyCompatibility/shared/CompatKey.h", headers)
        for name in headers:
            installed = self.prefixes["development"] / name
            source = PROJECT / name.removeprefix("include/")
            self.assertEqual(installed.read_bytes(), source.read_bytes())
        others = [name for name in names if name not in headers and ".so" not in name]
        configuration = [name for name in others if re.search(r"ZelMainTargets-\w+\.cmake$", name)]
        self.assertEqual(len(configuration), 1)
        self.assertEqual(sorted({*others} - {*configuration, f"{LIBRARIES}/libZelMain.a"}), sorted([
            f"{LIBRARIES}/cmake/ZelMain/ZelMainConfig.cmake",
            f"{LIBRARIES}/cmake/ZelMain/ZelMainConfigVersion.cmake",
            f"{LIBRARIES}/cmake/ZelMain/ZelMainTargets.cmake",
            f"{LIBRARIES}/pkgconfig/ZelMain.pc",
        ]))

    def test_installed_headers_need_installed_headers_only(self):
        prefix = self.prefixes["development"] / "include"
        for header in prefix.rglob("*.h"):
            for name in re.findall(r'^#include "(.*)"', header.read_text(), re.MULTILINE):
                with self.subTest(header=header.name, includes=name):
                    self.assertTrue((prefix / name).is_file())

    def test_a_shared_library_shows_what_public_headers_declare_only(self):
        """Of each installed header; a part of the library that is not installed says nothing."""
        installed = {*(self.prefixes["development"] / "include").rglob("*.h")}
        self.assertGreater(len(installed), 20)
        push = "\n#pragma GCC visibility push(default) // what a shared library shows\n"
        for header in installed:
            if header.name == "Version.h":
                continue
            with self.subTest(header=header.name):
                before, after = header.read_text().split(push)
                self.assertNotRegex(before, r"(?m)^(class|struct|namespace|enum) ")
                self.assertNotIn("\n#include", after)
                self.assertTrue(after.endswith("\n#pragma GCC visibility pop\n"))
        for header in (PROJECT / "ZelMain").rglob("*.h"):
            if header.name not in {path.name for path in installed}:
                self.assertNotIn("visibility", header.read_text())

    def test_only_the_same_minor_version_is_taken_for_compatible(self):
        version = self.prefixes["development"] / LIBRARIES / "cmake/ZelMain/ZelMainConfigVersion.cmake"
        major, minor, patch = re.search(r'PACKAGE_VERSION "(\d+)\.(\d+)\.(\d+)"',
                                        version.read_text()).groups()
        for wanted, compatible in ((f"{major}.{minor}", True), (f"{major}.{minor}.{patch}", True),
                                   (f"{major}.{minor}.{int(patch) + 1}", False),
                                   (f"{major}.{int(minor) + 1}", False),
                                   (f"{int(major) + 1}.{minor}", False)):
            with self.subTest(wanted=wanted):
                parts = dict(zip(("MAJOR", "MINOR", "PATCH"), wanted.split(".")))
                script = self.prefixes["development"] / "ask.cmake"
                script.write_text(
                    f"set(PACKAGE_FIND_VERSION {wanted})\n"
                    + "".join(f"set(PACKAGE_FIND_VERSION_{part} {number})\n"
                              for part, number in parts.items())
                    + f'include("{version}")\nmessage("${{PACKAGE_VERSION_COMPATIBLE}}")\n')
                self.addCleanup(script.unlink, missing_ok=True)
                told = subprocess.run([CMAKE, "-P", script], capture_output=True, timeout=60,
                                      encoding="utf-8", check=True).stderr.strip()
                self.assertEqual(told == "TRUE", compatible)

    def test_nothing_installed_knows_where_it_was_built(self):
        for component in ("development", "documentation"):
            for name in files(self.prefixes[component]):
                data = (self.prefixes[component] / name).read_bytes()
                if not name.endswith(".a") and ".so" not in name:
                    self.assertNotIn(str(BUILD).encode(), data, name)
                    self.assertNotIn(str(PROJECT).encode(), data, name)

    def test_pkg_config_knows_the_place_that_it_was_moved_to(self):
        prefix = self.prefixes["development"]
        environment = {**os.environ, "PKG_CONFIG_PATH": str(prefix / LIBRARIES / "pkgconfig")}
        told = run("sh", "-c", "eval set -- $(pkg-config --cflags --libs ZelMain);"
                               r" printf '%s\n' \"$@\"".replace(r'\"', '"'), env=environment)
        words = told.splitlines()
        includes = [os.path.realpath(word[2:]) for word in words if word.startswith("-I")]
        self.assertIn(os.path.realpath(prefix / "include"), includes)
        libraries = [os.path.realpath(word[2:]) for word in words if word.startswith("-L")]
        self.assertIn(os.path.realpath(prefix / LIBRARIES), libraries)
        self.assertIn("-lZelMain", words)
        self.assertIn("-lQt5Xml", words)
        self.assertIn("-ltinyxml2", words)

    def test_the_pages_come_with_what_they_link_to(self):
        prefix = self.prefixes["documentation"] / "share/doc/ZelMain"
        pages = [*prefix.rglob("*.md")]
        self.assertGreater(len(pages), 5)
        for page in pages:
            text = re.sub(r"^```.*?^```$", "", page.read_text(encoding="utf-8"),
                          flags=re.DOTALL | re.MULTILINE)
            for link in LINK.findall(text):
                if "://" not in link:
                    with self.subTest(page=page.name, link=link):
                        self.assertTrue((page.parent / link).exists())
        self.assertTrue((prefix / "COPYRIGHT").is_file())

    def test_components_share_no_file(self):
        seen = [name for component in COMPONENTS for name in files(self.prefixes[component])]
        self.assertEqual(len(seen), len(set(seen)))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
