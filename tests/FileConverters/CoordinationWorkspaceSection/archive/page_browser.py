#!/usr/bin/env python3
"""The page of an archive in a browser: what people see, do, hear and print.

    page_browser.py PROGRAM_FOLDER [--large | --picture FILE]

--large    also measures pages of 10 000 and 100 000 files
--picture  only makes the picture of a page
"""

import base64
import json
import os
import pathlib
import re
import resource
import subprocess
import sys
import tempfile
import time
import unittest

from selenium import webdriver
from selenium.common.exceptions import NoAlertPresentException
from selenium.webdriver.chrome.options import Options
from selenium.webdriver.chrome.service import Service
from selenium.webdriver.common.action_chains import ActionChains
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys
from selenium.webdriver.support.ui import WebDriverWait

from archives import BROKEN, CLEAN, LOSSY, NEWER, OLD, PROGRAM, STRANGER, Archive
import workspaces

PROGRAMS = pathlib.Path()
SAMPLES = pathlib.Path(__file__).resolve().parents[4] / "samples"
SECONDS = 20

HOSTILE = "</script><img src=x onerror=alert(1)>\"'&amp;"
HOSTILE_XML = HOSTILE.replace("&", "&amp;").replace("<", "&lt;").replace('"', "&quot;")
HOSTILE_NAME = f"{HOSTILE}\n\x1b\u202e\u2028.xml".replace("/", "_")
HOSTILE_SHOWN = HOSTILE_NAME.replace("\n\x1b\u202e\u2028", "⟨U+000A⟩⟨U+001B⟩⟨U+202E⟩⟨U+2028⟩")

# The ratio of WCAG 2.1 (1.4.3 and 1.4.11) for every visible text, and for what else tells
# something, against the nearest ground that is painted. Gives what falls short.
CONTRAST = r"""
const luminance = ([r, g, b]) => {
    const part = (v) => (v /= 255) <= 0.04045 ? v / 12.92 : ((v + 0.055) / 1.055) ** 2.4;
    return 0.2126 * part(r) + 0.7152 * part(g) + 0.0722 * part(b);
};
const parts = (colour) => colour.match(/[\d.]+/g).map(Number);
const ground = (element) => {
    for (; element; element = element.parentElement) {
        const colour = parts(getComputedStyle(element).backgroundColor);
        if (colour.length === 3 || colour[3] === 1) return colour;
        if (colour[3] !== 0) throw new Error("a ground that shines through");
    }
    throw new Error("no ground is painted");
};
const ratio = (one, other) => {
    const [low, high] = [luminance(one), luminance(other)].sort((a, b) => a - b);
    return (high + 0.05) / (low + 0.05);
};
const found = [], seen = {texts: 0, marks: 0};
const judge = (element, colour, behind, least, what) => {
    const value = ratio(parts(colour), ground(behind));
    if (value < least) found.push([what, element.outerHTML.slice(0, 80), value]);
};
const walker = document.createTreeWalker(document.body, NodeFilter.SHOW_TEXT);
while (walker.nextNode()) {
    const element = walker.currentNode.parentElement;
    if (walker.currentNode.data.trim() === "" || !element.checkVisibility()) continue;
    ++seen.texts;
    judge(element, getComputedStyle(element).color, element, 4.5, "text");
}
for (const mark of document.querySelectorAll(".mark")) {
    ++seen.marks;
    judge(mark, getComputedStyle(mark, "::before").borderTopColor, mark, 3, "mark");
}
for (const bar of document.querySelectorAll(".bar rect")) {
    judge(bar, getComputedStyle(bar).fill, bar.parentElement, 3, "bar");
}
for (const field of document.querySelectorAll("input[type=search], button, fieldset")) {
    judge(field, getComputedStyle(field).borderTopColor, field.parentElement, 3, "border");
}
return [found, seen, parts(getComputedStyle(document.body).backgroundColor)];
"""


def start_browser(home, picture=False):
    options = Options()
    options.binary_location = "/usr/bin/chromium"
    options.add_argument("--headless=new")
    options.add_argument("--window-size=1200,1200")
    options.add_argument("--disable-dev-shm-usage")
    options.add_argument("--disable-gpu")
    if picture:
        options.add_argument("--hide-scrollbars")
        options.add_argument("--force-device-scale-factor=0.75")
    if os.geteuid() == 0:
        # Chromium refuses to run its sandbox as root.
        options.add_argument("--no-sandbox")
    # A dialog that opened stays open and is found.
    options.set_capability("unhandledPromptBehavior", "ignore")
    options.set_capability("goog:loggingPrefs", {"browser": "ALL", "performance": "ALL"})
    # It leaves files behind, which go with this folder.
    environment = {**os.environ, "HOME": str(home), "XDG_CONFIG_HOME": str(home),
                   "TMPDIR": str(home)}
    return webdriver.Chrome(
        options=options, service=Service("/usr/bin/chromedriver", env=environment))


def convert(archive, *options):
    page = archive.folder / "page.html"
    run = archive.run(f"--html={page}", *options)
    assert page.exists(), run.stderr
    return page


LINE = json.dumps({
    "format": 1, "path": "{}/a show.xml", "outcome": "lossy", "verified": True,
    "seconds": 0.02, "source": {"size": 12345, "sha256": "0" * 64},
    "target": {"size": 12345, "sha256": "0" * 64}, "losses": [
        {"kind": "profile-name-emptied", "count": 2, "line": 17, "path": "/a/b",
         "text": "The name \"Robust\" is none of the old names and becomes empty."}],
    "systems": [{"zone": "Hall", "series": "S", "band": "G", "tx_profile": "T",
                 "incl_group": "2", "name": {"before": "median", "after": "Standard"},
                 "spacings": {"imd_2t3o": {"before": 150, "after": 0}}}] * 2}) + "\n"


def write_report(archive, count):
    """A report of so many documents that are gone, whose targets are kept: a page tells of them as of
    the others."""
    report = archive.folder / "report.jsonl"
    with open(report, "w") as file:
        for number in range(count):
            file.write(LINE.replace("{}", f"{number:06}", 1))
            target = archive.target / f"{number:06}" / "a show.xml"
            target.parent.mkdir(parents=True)
            target.touch()
    return report


def setUpModule():
    """One browser and one archive with every outcome, for all tests."""
    folder = tempfile.TemporaryDirectory()
    unittest.addModuleCleanup(folder.cleanup)
    archive = Archive(folder.name, PROGRAMS / PROGRAM)
    current = subprocess.run(
        [PROGRAMS / "CoordWorkSpaceSectionConverter0_3", archive.add("current.xml", CLEAN)],
        capture_output=True, check=True).stdout
    hostile = CLEAN.replace('name="robust"', f'name="{HOSTILE_XML}"').replace(
        "<zone>Zone é</zone>", f"<zone>{HOSTILE_XML}&#x202e;&#x2028;</zone>")
    for path, document in {
        "show 2.xml": CLEAN, "show 10.xml": workspaces.workspace(10), "2019/lossy.xml": LOSSY,
        "2019/old.xml": OLD, "newer.xml": NEWER, "broken.xml": BROKEN, "slow.xml": "<",
        "stranger.xml": STRANGER, "large.xml": workspaces.workspace(260), HOSTILE_NAME: hostile,
        "current.xml": current, "היום.xml": CLEAN,
    }.items():
        archive.add(path, document)
    with open(archive.source / "slow.xml", "r+b") as file:
        file.truncate(2_200_000_000)  # more than is read
    BrowserTest.page = convert(archive)
    BrowserTest.driver = start_browser(folder.name)
    unittest.addModuleCleanup(BrowserTest.driver.quit)


class BrowserTest(unittest.TestCase):
    maxDiff = None
    OUTCOMES = {
        "show 2.xml": "converted", "show 10.xml": "converted", "2019/lossy.xml": "lossy",
        "2019/old.xml": "lossy", "newer.xml": "refused", "broken.xml": "failed",
        "stranger.xml": "no document", "large.xml": "converted", HOSTILE_SHOWN: "lossy",
        "current.xml": "current", "slow.xml": "limit", "היום.xml": "converted",
    }  # fmt: skip

    driver = None
    page = None

    def setUp(self):
        self.driver.execute_cdp_cmd("Emulation.setEmulatedMedia", {"features": []})
        self.driver.get(self.page.as_uri())
        self.loaded = [json.loads(entry["message"])["message"]
                       for entry in self.driver.get_log("performance")]
        self.console = []

    def tearDown(self):
        with self.assertRaises(NoAlertPresentException):
            self.driver.switch_to.alert.accept()
        self.assertEqual(self.driver.get_log("browser"), self.console)

    def run_script(self, script, *arguments):
        return self.driver.execute_script(script, *arguments)

    def shown(self):
        """The paths and outcomes of the files that show, in their order."""
        return [tuple(row) for row in self.run_script("""
            return Array.from(document.querySelectorAll("#documents > tbody"))
                .filter((body) => body.checkVisibility())
                .map((body) => [body.rows[0].cells[0].innerText, body.rows[0].cells[1].innerText])
            """)]

    def paths(self):
        return [path for path, _ in self.shown()]

    def status(self):
        return self.driver.find_element(By.ID, "status").text

    def header(self, name):
        return self.driver.find_element(
            By.XPATH, f"//table[@id='documents']/thead//button[contains(., '{name}')]")

    def box(self, outcome):
        return self.driver.find_element(By.CSS_SELECTOR, f"input[value='{outcome}']")

    def active(self):
        return self.driver.switch_to.active_element

    def press(self, *keys):
        ActionChains(self.driver).send_keys(*keys).perform()

    def printed(self):
        """The text of the page on paper."""
        pdf = base64.b64decode(self.driver.execute_cdp_cmd("Page.printToPDF", {})["data"])
        return subprocess.run(["pdftotext", "-layout", "-", "-"], input=pdf, capture_output=True,
                              check=True, timeout=60).stdout.decode()


class Seeing(BrowserTest):
    def test_every_file_shows_with_its_outcome(self):
        self.assertEqual(dict(self.shown()), self.OUTCOMES)
        self.assertEqual(self.status(), "12 of 12 files shown")

    def test_foreign_text_shows_as_text(self):
        self.assertIn(HOSTILE_SHOWN, self.paths())
        self.assertEqual(self.run_script("return document.images.length"), 0)
        self.assertEqual(self.run_script("return document.scripts.length"), 1)
        row = next(row for row in self.driver.find_elements(By.CSS_SELECTOR, "#documents > tbody")
                   if HOSTILE_SHOWN in row.text)
        row.find_element(By.TAG_NAME, "summary").click()
        self.assertIn(f"{HOSTILE}⟨U+202E⟩⟨U+2028⟩ · S0", row.text)
        self.assertIn(f"{HOSTILE} → (none)", row.text)

    def test_nothing_is_asked_of_anybody(self):
        urls = [message["params"]["request"]["url"] for message in self.loaded
                if message["method"] == "Network.requestWillBeSent"]
        self.assertEqual(urls, [self.page.as_uri()])

    def test_what_would_slip_through_is_stopped(self):
        """As if a text had become markup: it neither runs nor loads."""
        for way in ('document.body.innerHTML += "<p>x</p>"',
                    'document.body.setAttribute("onclick", "alert(1)")'):
            self.assertEqual(self.run_script(
                f"try {{ {way}; return 'done'; }} catch (error) {{ return error.name; }}"),
                "TypeError")
        self.run_script("""
            const image = document.createElement("img");
            image.src = "https://localhost:9/x.png";
            document.body.append(image);
            const style = document.createElement("style");
            style.textContent = "body { color: red }";
            document.body.append(style);""")
        self.assertNotEqual(self.run_script("return getComputedStyle(document.body).color"),
                            "rgb(255, 0, 0)")
        WebDriverWait(self.driver, SECONDS).until(lambda _: self.collect() >= 4)
        self.assertEqual([entry for entry in self.seen if entry["source"] != "security"], [])
        sent = [json.loads(entry["message"])["message"]
                for entry in self.driver.get_log("performance")]
        self.assertEqual([message for message in sent
                          if message["method"] == "Network.responseReceived"], [])

    seen = ()

    def collect(self):
        self.seen = [*self.seen, *self.driver.get_log("browser")]
        return len(self.seen)

    def test_contrast_in_light_and_dark(self):
        self.run_script("document.querySelectorAll('details').forEach((e) => { e.open = true; })")
        grounds = []
        for scheme in ("light", "dark"):
            with self.subTest(scheme=scheme):
                self.driver.execute_cdp_cmd("Emulation.setEmulatedMedia", {
                    "features": [{"name": "prefers-color-scheme", "value": scheme}]})
                found, seen, ground = self.run_script(CONTRAST)
                self.assertEqual(found, [])
                self.assertGreater(seen["texts"], 2000)
                self.assertEqual(seen["marks"], 12 + 8)
                grounds.append(sum(ground))
        self.assertGreater(grounds[0], 700)
        self.assertLess(grounds[1], 100)

    def test_what_is_told_to_those_who_do_not_see(self):
        nodes = self.driver.execute_cdp_cmd("Accessibility.getFullAXTree", {})["nodes"]
        told = [(node["role"]["value"], node.get("name", {}).get("value", ""),
                 {each["name"]: each["value"].get("value") for each in node["properties"]})
                for node in nodes if not node.get("ignored") and "role" in node
                and "properties" in node]
        named = [(role, name) for role, name, _ in told]
        for each in (("button", "File"), ("button", "Bytes before"), ("button", "Show all"),
                     ("columnheader", "Outcome"), ("rowheader", "newer.xml"),
                     ("searchbox", "With the text"), ("checkbox", "failed (1)")):
            self.assertIn(each, named)
        for role, name in named:
            if role in ("button", "checkbox", "searchbox", "table", "heading", "columnheader"):
                self.assertNotEqual(name.strip(), "", (role, named))
        levels = [properties["level"] for role, _, properties in told if role == "heading"]
        self.assertEqual(levels, [1, 2, 2, 2])
        live = [properties for role, _, properties in told if role == "status"]
        self.assertEqual([properties["live"] for properties in live], ["polite"])

    def test_a_narrow_window_hides_nothing(self):
        self.driver.set_window_size(500, 900)
        self.addCleanup(self.driver.set_window_size, 1200, 1200)
        self.assertEqual(len(self.shown()), 12)
        # Only the table may be wider than the window; it scrolls.
        self.assertLessEqual(self.run_script(
            "return document.querySelector('.overview').getBoundingClientRect().right"), 500)


class Sorting(BrowserTest):
    def column(self, index):
        return self.run_script(
            "return Array.from(document.getElementById('documents').tBodies,"
            " (body) => body.rows[0].cells[arguments[0]].innerText)", index)

    def sorts(self):
        return self.run_script(
            "return Array.from(document.querySelectorAll('[aria-sort]'),"
            " (each) => [each.innerText.trim(), each.getAttribute('aria-sort')])")

    def test_by_name_with_numbers_as_numbers(self):
        known = ["2019/lossy.xml", "2019/old.xml", "broken.xml", "current.xml", "large.xml",
                 "newer.xml", "show 2.xml", "show 10.xml", "slow.xml", "stranger.xml"]
        self.assertEqual(self.sorts(), [])
        self.header("File").click()
        self.assertEqual([path for path in self.paths() if path in known], known)
        self.assertEqual(self.sorts(), [["File", "ascending"]])
        self.header("File").click()
        self.assertEqual([path for path in self.paths() if path in known], known[::-1])
        self.assertEqual(self.sorts(), [["File", "descending"]])
        self.assertEqual(len(self.shown()), 12)

    def test_by_numbers_with_none_at_the_end(self):
        for name, index in (("Bytes before", 3), ("Bytes after", 4), ("Seconds", 5)):
            for reverse in (False, True):
                with self.subTest(column=name, reverse=reverse):
                    self.header(name).click()
                    cells = self.column(index)
                    numbers = [float(re.sub(r"[^\d.]", "", cell)) for cell in cells if cell != "–"]
                    self.assertEqual(numbers, sorted(numbers, reverse=reverse))
                    self.assertEqual(cells[len(numbers):], ["–"] * (12 - len(numbers)))
                    self.assertEqual(len(self.sorts()), 1)
        self.assertIn("–", self.column(4))

    def test_by_outcome_in_the_order_of_the_chart(self):
        order = ["converted", "current", "lossy", "refused", "limit", "failed", "no document"]
        self.header("Outcome").click()
        self.assertEqual(self.column(1),
                         sorted(self.OUTCOMES.values(), key=order.index))

    def test_by_losses(self):
        self.header("Lost").click()
        self.header("Lost").click()
        self.assertEqual({outcome for _, outcome in self.shown()[:3]}, {"lossy"})

    def test_what_belongs_to_a_file_goes_with_it(self):
        self.header("Bytes before").click()
        for body in self.driver.find_elements(By.CSS_SELECTOR, "#documents > tbody"):
            caption = body.find_elements(By.TAG_NAME, "caption")
            if caption:
                path = body.find_element(By.TAG_NAME, "th").text
                self.assertTrue(caption[0].get_attribute("textContent").endswith(f"of {path}"))


class Filtering(BrowserTest):
    def wait_for(self, status):
        WebDriverWait(self.driver, SECONDS).until(lambda _: self.status() == status, self.status())

    def only(self, outcome):
        self.driver.find_element(By.ID, "reset").click()
        for box in self.driver.find_elements(By.CSS_SELECTOR, "#controls input[type=checkbox]"):
            if box.get_attribute("value") != outcome:
                box.click()

    def test_by_outcome(self):
        for outcome in ("converted", "current", "lossy", "refused", "limit", "failed",
                        "no document", "gone"):
            with self.subTest(outcome=outcome):
                self.only(outcome.replace(" ", "-"))
                expected = {path for path, of in self.OUTCOMES.items() if of == outcome}
                self.assertEqual(set(self.paths()), expected)
                self.assertEqual(self.status(), f"{len(expected)} of 12 files shown")

    def test_by_text_of_a_name_a_loss_or_a_system(self):
        field = self.driver.find_element(By.ID, "find")
        for text, paths in ((" SHOW ", {"show 2.xml", "show 10.xml"}),
                            ("profile-name-emptied", {"2019/lossy.xml", HOSTILE_SHOWN}),
                            ("g000258", set()),  # not among the first 200 of its document
                            ("g000009", {"show 10.xml", "large.xml"}),
                            ("onerror=", {HOSTILE_SHOWN}), ("u+202e", {HOSTILE_SHOWN}),
                            ("nowhere", set())):
            with self.subTest(text=text):
                field.clear()
                field.send_keys(text)
                WebDriverWait(self.driver, SECONDS).until(
                    lambda _, paths=paths: set(self.paths()) == paths, text)
                self.assertEqual(self.status(), f"{len(paths)} of 12 files shown")

    def test_both_at_once_and_back(self):
        self.only("lossy")
        self.driver.find_element(By.ID, "find").send_keys("2019")
        self.wait_for("2 of 12 files shown")
        self.header("File").click()
        self.assertEqual(self.paths(), ["2019/lossy.xml", "2019/old.xml"])
        self.driver.find_element(By.ID, "reset").click()
        self.wait_for("12 of 12 files shown")
        self.assertEqual(len(self.shown()), 12)


class ManyFiles(BrowserTest):
    """Of 2 100 files, one has failed."""

    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        archive = Archive(folder.name, PROGRAMS / PROGRAM)
        archive.add("broken.xml", BROKEN)
        cls.page = convert(archive, "--dry-run", f"--report={write_report(archive, 2099)}")

    def test_a_thousand_at_a_time(self):
        more = self.driver.find_element(By.ID, "more")
        self.assertEqual((len(self.shown()), self.status()), (
            1000, "1\u202f000 of 2\u202f100 files shown, 1\u202f100 more match"))
        more.click()
        self.assertEqual(self.status(), "2\u202f000 of 2\u202f100 files shown, 100 more match")
        more.send_keys(Keys.ENTER)
        self.assertEqual((len(self.shown()), self.status()),
                         (2100, "2\u202f100 of 2\u202f100 files shown"))
        self.assertFalse(more.is_displayed())
        self.assertEqual(self.active().get_attribute("id"), "status")

    def test_all_are_sorted_and_found(self):
        self.header("File").click()
        self.header("File").click()
        self.assertEqual(self.paths()[:2], ["broken.xml", "002098/a show.xml"])
        self.assertEqual(len(self.shown()), 1000)
        self.box("gone").click()
        self.assertEqual(self.paths(), ["broken.xml"])
        self.assertEqual(self.status(), "1 of 2\u202f100 files shown")
        self.assertFalse(self.driver.find_element(By.ID, "more").is_displayed())

    def test_all_of_what_is_chosen_is_printed(self):
        # Hundreds of sheets would take minutes: the browser is only told that it will print.
        for outcomes, chosen in (((), "2\u202f100"), (("failed",), "2\u202f099"),
                                 (("gone",), "0")):
            for outcome in outcomes:
                self.box(outcome).click()
            self.run_script("dispatchEvent(new Event('beforeprint'))")
            self.assertEqual(self.status(), f"{chosen} of 2\u202f100 files shown")
            self.assertEqual(len(self.shown()), int(chosen.replace("\u202f", "")))
            self.run_script("dispatchEvent(new Event('afterprint'))")
            self.assertLessEqual(len(self.shown()), 1000)


class Keyboard(BrowserTest):
    def test_every_control_is_reached_in_order_and_shows_it(self):
        reached = []
        for _ in range(60):
            self.press(Keys.TAB)
            element = self.active()
            if element.tag_name == "body":
                break
            self.assertEqual(self.run_script(
                "const style = getComputedStyle(arguments[0]);"
                "return [style.outlineStyle, style.outlineWidth]", element), ["solid", "3px"])
            reached.append(element.get_attribute("value") or element.get_attribute("id")
                           or element.text)
        self.assertEqual(reached[:16], [
            "converted", "current", "lossy", "refused", "limit", "failed", "no-document", "gone",
            "find", "reset", "File", "Outcome", "Lost, or why not", "Bytes before", "Bytes after",
            "Seconds"])
        self.assertEqual([text for text in reached[16:] if "change" not in text], [])
        self.assertEqual(len(reached[16:]), 7)

    def test_keys_do_what_the_mouse_does(self):
        self.run_script("arguments[0].focus()", self.box("converted"))
        self.press(Keys.SPACE)
        self.assertNotIn("converted", dict(self.shown()).values())
        self.press(Keys.SPACE)
        self.run_script("arguments[0].focus()", self.header("File"))
        for key, order in ((Keys.ENTER, "ascending"), (Keys.SPACE, "descending")):
            self.press(key)
            self.assertEqual(self.header("File").find_element(By.XPATH, "..")
                             .get_attribute("aria-sort"), order)
            self.assertIn("File", self.active().text)
        summary = self.driver.find_element(By.TAG_NAME, "summary")
        self.run_script("arguments[0].focus()", summary)
        self.press(Keys.ENTER)
        self.assertTrue(summary.find_element(By.XPATH, "..").get_attribute("open"))


class Printing(BrowserTest):
    def assert_all_is_printed(self, text):
        squeezed = re.sub(r"\s", "", text)
        for path in self.OUTCOMES:
            if path.isascii():
                self.assertIn(re.sub(r"\s", "", path), squeezed)
        for folded in ("G000009", "150→0", "52moreareinthereport"):
            self.assertIn(folded, squeezed)
        for control in ("Withthetext", "Showall"):
            self.assertNotIn(control, squeezed)

    def test_all_is_printed_and_no_control(self):
        text = self.printed()
        self.assert_all_is_printed(text)
        # Afterwards it is folded as it was.
        self.assertEqual(self.driver.find_elements(By.CSS_SELECTOR, "details[open]"), [])

    def test_without_script_too(self):
        self.driver.execute_cdp_cmd("Emulation.setScriptExecutionDisabled", {"value": True})
        self.addCleanup(self.driver.execute_cdp_cmd, "Emulation.setScriptExecutionDisabled",
                        {"value": False})
        self.driver.get(self.page.as_uri())
        self.assert_all_is_printed(self.printed())

    def test_with_a_filter_what_shows_is_printed(self):
        for box in self.driver.find_elements(By.CSS_SELECTOR, "#controls input[type=checkbox]"):
            if box.get_attribute("value") != "failed":
                box.click()
        text = self.printed()
        self.assertIn("1 of 12 files shown", text)
        self.assertIn("broken.xml", text)
        self.assertNotIn("newer.xml", text)

    def test_paper_is_white_in_the_dark(self):
        self.driver.execute_cdp_cmd("Emulation.setEmulatedMedia", {
            "media": "print", "features": [{"name": "prefers-color-scheme", "value": "dark"}]})
        self.addCleanup(self.driver.execute_cdp_cmd, "Emulation.setEmulatedMedia", {"media": ""})
        self.assertEqual(self.run_script(
            "const style = getComputedStyle(document.body);"
            "return [style.backgroundColor, style.color]"),
            ["rgb(255, 255, 255)", "rgb(22, 32, 43)"])


class Large(unittest.TestCase):
    """Prints how long pages of many files take; a person judges."""

    def test_pages_of_many_files(self):
        for count in (10_000, 100_000):
            with self.subTest(files=count), tempfile.TemporaryDirectory() as folder:
                self.measure(Archive(folder, PROGRAMS / PROGRAM), count)

    def measure(self, archive, count):
        report = write_report(archive, count)
        seconds = []
        for options in ([], [f"--html={archive.folder / 'page.html'}"]):
            begin = time.monotonic()
            run = archive.run("--dry-run", f"--report={report}", *options)
            seconds.append(time.monotonic() - begin)
            self.assertEqual(run.returncode, 0, run.stderr)
        memory = resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss / 1000
        page = archive.folder / "page.html"
        print(f"{count} files: page of {page.stat().st_size / 1e6:.1f} MB written in"
              f" {seconds[1] - seconds[0]:.2f} s (run without {seconds[0]:.2f} s), {memory:.0f} MB")
        self.browse(archive.folder, page, count)

    def browse(self, folder, page, count):
        driver = start_browser(folder)
        self.addCleanup(driver.quit)
        driver.set_page_load_timeout(300)
        driver.set_script_timeout(300)
        begin = time.monotonic()
        driver.get(page.as_uri())
        loaded = time.monotonic() - begin
        steps = {}
        box = "document.querySelector('input[value=lossy]').click()"
        for name, step in (("sort", "document.querySelector('#documents button').click()"),
                           ("filter", box),
                           ("first search", f"document.getElementById('find').value = '99'; {box}"),
                           ("more", "document.getElementById('more').click()")):
            steps[name] = driver.execute_script(
                f"const begin = performance.now(); {step};"
                "document.body.offsetHeight; return performance.now() - begin") / 1000
        print(f"{count} files: loaded in {loaded:.1f} s, " +
              ", ".join(f"{name} {seconds:.2f} s" for name, seconds in steps.items()))
        driver.quit()


def make_picture(file):
    with tempfile.TemporaryDirectory() as folder:
        archive = Archive(folder, PROGRAMS / PROGRAM)
        archive.source = archive.source.rename(archive.folder / "shows")
        archive.target = archive.folder / "converted"
        shows = ["Arena tour", "Club night", "Harbour festival", "Opera gala", "Quiz final"]
        for year in (2017, 2018, 2019):
            for number, show in enumerate(shows):
                archive.add(f"{year}/{show}.xml", workspaces.workspace(3 + (year + number) % 7))
        archive.add("2017/Harbour festival.xml", (SAMPLES / "festival.xml").read_bytes())
        archive.add("2019/Club night.xml", (SAMPLES / "club-show.xml").read_bytes())
        archive.add("2018/Quiz final.xml", OLD)
        archive.add("2018/Club night.xml", BROKEN)
        archive.add("2019/Harbour festival.xml", NEWER)
        archive.add("2019/Set list.html", STRANGER)
        page = convert(archive, "--verify")
        # Where it was made is nobody's business.
        page.write_text(page.read_text().replace(folder, "/home/crew"))
        driver = start_browser(folder, picture=True)
        try:
            driver.get(page.as_uri())
            driver.set_window_size(1180, 1250)
            for _ in range(2):
                driver.find_element(By.CSS_SELECTOR, "[data-sort=losses] button").click()
            driver.find_element(By.CSS_SELECTOR, ".shown summary").click()
            pathlib.Path(file).write_bytes(driver.get_screenshot_as_png())
        finally:
            driver.quit()


if __name__ == "__main__":
    PROGRAMS = pathlib.Path(sys.argv.pop(1)).absolute()
    if "--picture" in sys.argv:
        make_picture(sys.argv[-1])
        sys.exit()
    if "--large" in sys.argv:
        sys.argv.remove("--large")
    else:
        del Large
    unittest.main()
