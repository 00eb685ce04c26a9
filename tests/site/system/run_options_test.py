#!/usr/bin/env python3
"""What an owner asks of a run beside the index: the report as JSON, a dry run, the links of the site,
the index before. The site has names, titles and links that are made to break all of it."""

import json
import os
import pathlib
import shutil
import subprocess
import unittest

import support

BASE = "https://x.example/a/"
LONG = "Words that make this page long enough to be told from all the others of the site. " * 4

PAGES = {
    b"index.html": b"<title>Home \"quoted\" & more</title><a href='second.html'>next</a> "
                   b"<a href=second.html#there>there</a> <a href='#own'>own</a><p id=own>home",
    b"second.html": b"<title>Second</title><h2 id=there>There</h2><a name=old></a>"
                    b"<a href='index.html#old'>not there</a> <a href='./'>up</a> "
                    b"<a href='gone.html?x=1&amp;y=2'>the <b>gone</b> page</a> "
                    b"<a href='#old'>old</a> <a href='#top'>top</a> <a href=picture.png>picture</a> "
                    b"<a href='https://other.example/gone.html'>other</a> <a href='/b/gone.html'>b</a>"
                    b"<a href='mailto:a@x.example'>mail</a> <a href='sub/'>sub</a>",
    b"sub/copy.html": b"<title>A copy</title><link rel=canonical href=../second.html><p>same",
    b"sub/equal1.html": b"<title>Equal</title><p>" + LONG.encode(),
    b"sub/equal2.html": b"<title>Equal</title><p>" + LONG.encode(),
    b"sub/hidden.html": b"<title>Hidden</title><meta name=robots content=noindex><p id=h>x",
    b"bad\xff\"\\\n\x01name.html": b"<title>Bad name</title><p>has a name that is no text",
    b"document.xyz": b"not read",
    b"picture.png": b"picture",
}


def make_site(folder, pages):
    shutil.rmtree(folder, ignore_errors=True)
    for name, content in pages.items():
        path = os.path.join(os.fsencode(folder), name)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        pathlib.Path(os.fsdecode(path)).write_bytes(content)
        os.utime(path, (1_700_000_000, 1_700_000_000))


class RunOptions(unittest.TestCase):
    def setUp(self):
        self.folder = support.WORK / self._testMethodName
        shutil.rmtree(self.folder, ignore_errors=True)
        self.folder.mkdir(parents=True)
        self.site = self.folder / "site"
        self.index = self.folder / "index"
        make_site(self.site, PAGES)

    def run_index(self, *options, status=0):
        done = subprocess.run([support.BIN / "vela_index", "--site", self.site, "--base-url", BASE,
                               "--out", self.index, *options], capture_output=True)
        self.assertEqual(done.returncode, status, done.stdout + done.stderr)
        self.assertNotIn(b"\033", done.stdout + done.stderr)  # no colours but on a terminal
        return (done.stdout + done.stderr).decode()

    def report(self, *options, status=0):
        file = self.folder / "report.json"
        self.run_index("--report", file, *options, status=status)
        return json.loads(file.read_bytes().decode("utf-8"))

    def test_the_report_says_what_became_of_every_document(self):
        report = self.report()
        documents = {each["path"]: each for each in report["documents"]}
        self.assertEqual(len(documents), len(report["documents"]))
        outcomes = {path: (each["outcome"], each.get("code", ""), each.get("other", ""))
                    for path, each in documents.items()}
        self.assertEqual(outcomes, {
            "index.html": ("indexed", "", ""),
            "second.html": ("indexed", "", ""),
            "sub/copy.html": ("left_out", "copy", BASE + "second.html"),
            "sub/equal1.html": ("indexed", "", ""),
            "sub/equal2.html": ("left_out", "equal", BASE + "sub/equal1.html"),
            "sub/hidden.html": ("left_out", "noindex", ""),
            "bad\ufffd\"\\\n\x01name.html": ("indexed", "", ""),
            "document.xyz": ("not_read", "other_kind", ""),
        })
        second = documents["second.html"]
        self.assertEqual(second["address"], BASE + "second.html")
        self.assertEqual(second["indexed_as"], BASE + "second.html")
        self.assertEqual(second["title"], "Second")
        self.assertEqual(second["type"], "html")
        self.assertEqual(second["bytes"], len(PAGES[b"second.html"]))
        numbers = [each["number"] for each in report["documents"] if each["outcome"] == "indexed"]
        self.assertEqual(numbers, [0, 1, 2, 3])
        self.assertEqual(report["form"], 1)
        self.assertEqual(report["counts"]["pages"], 4)
        self.assertEqual(report["counts"]["left_out"], 3)
        self.assertEqual(report["end"]["result"], "published")
        self.assertEqual(report["end"]["status"], 0)
        self.assertNotIn("changes", report)
        self.assertIn("Reading pages", report["seconds"])

    def test_the_report_of_a_run_that_fails_is_whole(self):
        make_site(self.site, {b"a.html": PAGES[b"sub/hidden.html"]})
        report = self.report(status=3)
        self.assertEqual([each["code"] for each in report["documents"]], ["noindex"])
        self.assertEqual(report["end"]["result"], "failed")
        self.assertEqual(report["end"]["status"], 3)
        self.assertIn("No page to index was found", report["end"]["message"])

    def test_the_form_of_the_report(self):
        lines = self.folder / "report.json"
        self.run_index("--report", lines, "--report-format", "lines")
        reasons = [json.loads(line).get("reason") for line in lines.read_text().splitlines()]
        self.assertEqual(sorted(filter(None, reasons)), ["copy", "equal", "noindex", "other_kind"])
        document = self.folder / "report"
        self.run_index("--report", document, "--report-format", "json")
        self.assertEqual(json.loads(document.read_text())["form"], 1)
        self.assertIn("lines or json", self.run_index("--report", lines, "--report-format", "xml",
                                                      status=2))
        self.assertIn("--report FILE", self.run_index("--report-format", "json", status=2))

    def test_a_dry_run_says_what_would_change(self):
        said = self.run_index("--dry-run")
        self.assertIn("There is no index to compare with", said)
        self.assertFalse(self.index.exists())
        self.run_index()
        before = {path.name: (path.stat().st_ino, path.read_bytes())
                  for path in self.index.iterdir() if path.is_file()}
        self.assertIn("none has changed", self.run_index("--dry-run"))
        pages = dict(PAGES)
        del pages[b"index.html"]
        pages[b"second.html"] = PAGES[b"second.html"].replace(b"Second", b"Sec0nd")
        pages[b"new.html"] = b"<title>New</title>new"
        pages[b"b&w.html"] = b"<title>Black and white</title>pictures"
        make_site(self.site, pages)
        said = self.run_index("--dry-run")
        self.assertIn("was not changed", said)
        self.assertIn(f"  2 new pages: {BASE}b%26w.html, {BASE}new.html\n", said)
        self.assertIn(f"  1 page gone: {BASE}index.html\n", said)
        self.assertIn(f"  1 page changed: {BASE}second.html\n", said)
        changes = self.report("--dry-run")
        self.assertEqual(changes["end"]["result"], "dry_run")
        self.assertEqual(changes["changes"]["gone"],
                         {"count": 1, "examples": [BASE + "index.html"]})
        self.assertEqual({path.name: (path.stat().st_ino, path.read_bytes())
                          for path in self.index.iterdir() if path.is_file()}, before)
        self.assertEqual(sorted(path.name for path in self.folder.iterdir()),
                         ["index", "report.json", "site"])

    def test_links_that_lead_nowhere(self):
        report = self.report("--check-links")
        self.assertEqual(
            [(each["path"], each["address"], each["link"], each["code"])
             for each in report["broken_links"]],
            [("second.html", BASE + "index.html#old", "not there", "no_place"),
             ("second.html", BASE + "gone.html?x=1&y=2", "the gone page", "broken_link")])
        # Those to other sites, other parts of this one and by mail are not among them.
        self.assertEqual(report["counts"]["links"], 10)
        inode = (self.index / "settings.vdat").stat().st_ino
        said = self.run_index("--check-links=fail", status=7)
        self.assertIn("Of 10 links between pages 2 lead nowhere:", said)
        self.assertIn(f"second.html -> {BASE}index.html#old (not there), no such place", said)
        self.assertEqual((self.index / "settings.vdat").stat().st_ino, inode)
        self.assertIn("--check-links=fail", self.run_index("--check-links=maybe", status=2))
        self.assertNotIn("broken_links", self.report())

    def test_the_index_before(self):
        roll_back = [support.BIN / "vela_index", "--rollback", "--out", self.index]
        none = subprocess.run(roll_back, capture_output=True, text=True)
        self.assertEqual(none.returncode, 3)
        self.assertIn("There is no index before", none.stderr)
        self.run_index()
        pages = dict(PAGES)
        del pages[b"index.html"]
        make_site(self.site, pages)
        self.run_index()
        for count in (4, 3):
            done = subprocess.run(roll_back, capture_output=True, text=True, check=True)
            self.assertRegex(done.stdout, f"^The index of [-0-9]* [:0-9]* with {count} pages is in ")
            inspected = subprocess.run([support.BIN / "vela_inspect", self.index], check=True,
                                       capture_output=True, text=True)
            self.assertIn(f"NumPages = {count}", (self.index / "settings.vdat").read_text(
                "utf-8", "replace"), inspected.stdout)


if __name__ == "__main__":
    unittest.main()
