#!/usr/bin/env python3
"""What vela_index says of one page: of the sample sites, of a crawl and of an archive."""

import os
import re
import shutil
import subprocess
import unittest

import support

LIBRARY = support.PROJECT / "examples/library/vela_index.toml"
CONTENT = support.PROJECT / "examples/content"
TAKEN, FAILED, USAGE, LEFT_OUT = 0, 1, 2, 8


def explain(page, *options, folder=None):
    done = subprocess.run([support.BIN / "vela_index", *options, "--explain-page", page],
                          cwd=folder, capture_output=True, text=True)
    return done.returncode, done.stdout, done.stderr


def lines_of(said):
    """The lines of each label, its own first."""
    lines, label = {}, None
    for line in said.splitlines()[1:]:
        if line[:16].strip():
            label = line[:16].strip()
        lines.setdefault(label, []).append(line[16:])
    return lines


class Explain(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        shutil.rmtree(support.WORK, ignore_errors=True)
        support.WORK.mkdir(parents=True)

    def test_a_page_with_categories_and_fields(self):
        status, said, errors = explain("/events/genealogy-morning.html", "--config", LIBRARY)
        self.assertEqual((status, errors), (TAKEN, ""))
        self.assertEqual(said.splitlines()[0],
                         "events/genealogy-morning.html: in the index as "
                         "/events/genealogy-morning.html")
        self.assertNotIn("\033", said)
        lines = lines_of(said)
        self.assertEqual(lines["Categories"], ["Events, Local history"])
        self.assertEqual(lines["Characters"], ["utf-8: the page says so"])
        self.assertEqual(lines["Language"], ["en: the page says so"])
        self.assertTrue(any(re.search("^- age: ", line) for line in lines["Fields"]))
        self.assertTrue(any("<nav>, navigation" in line for line in lines["Not its text"]))

    def test_what_the_owner_calls_no_content(self):
        shutil.copytree(CONTENT, support.WORK / "content")
        config = support.WORK / "content/vela_index.toml"
        _, said, _ = explain("index.html", "--config", config, folder=support.WORK / "content")
        lines = lines_of(said)["Not its text"]
        self.assertTrue(any('exclude_elements ".cookie-notice"' in line for line in lines), said)
        self.assertTrue(any("data-vela-ignore" in line for line in lines), said)
        _, said, _ = explain("shop/lamp.html", "--config", config, folder=support.WORK / "content")
        self.assertEqual(lines_of(said)["Content"],
                         ["chosen elements alone (only_elements, data-vela-body)"])
        self.assertFalse((support.WORK / "content/search").exists())

    def test_all_is_told_on_request(self):
        # More words than eight lines of them.
        page = "privacy.html"
        _, some, _ = explain(page, "--config", LIBRARY)
        _, everything, _ = explain(page, "--config", LIBRARY, "--verbose")
        self.assertIn("more (--verbose)", some)
        self.assertNotIn("--verbose", everything)
        self.assertGreater(len(everything), len(some))

    def test_left_out(self):
        status, said, _ = explain("style.css", "--config", LIBRARY)
        self.assertEqual((status, said), (LEFT_OUT, "style.css: no page of the index: "
                                                    "of a kind that is not read (.css)\n"))
        status, said, _ = explain("https://elsewhere.example/", "--config", LIBRARY)
        self.assertEqual(status, LEFT_OUT)
        self.assertIn("not below /, the address of the site", said)
        site = support.WORK / "site"
        site.mkdir()
        (site / "sealed.pdf").write_bytes(
            (support.PROJECT / "tests/site/system/sealed.pdf").read_bytes())
        status, said, _ = explain("sealed.pdf", "--site", site, "--base-url", "/")
        self.assertEqual(status, LEFT_OUT)
        self.assertIn("left out: ", said.splitlines()[0])

    def test_an_archive(self):
        page = b"<title>Kept</title><p>Words of the archive."
        answer = (b"HTTP/1.1 200 OK\r\nContent-Type: text/html\r\n\r\n" + page)
        record = (b"WARC/1.1\r\nWARC-Type: response\r\n"
                  b"WARC-Target-URI: https://x.example/kept\r\n"
                  b"WARC-Date: 2026-03-05T10:00:00Z\r\n"
                  b"Content-Type: application/http;msgtype=response\r\n"
                  b"Content-Length: %d\r\n\r\n%s\r\n\r\n" % (len(answer), answer))
        archive = support.WORK / "pages.warc"
        archive.write_bytes(record)
        passing = support.WORK / "passing"
        passing.mkdir()
        environment = dict(os.environ, TMPDIR=str(passing))
        done = subprocess.run([support.BIN / "vela_index", "--warc", archive, "--base-url",
                               "https://x.example/", "--explain-page", "/kept"],
                              env=environment, capture_output=True, text=True)
        self.assertEqual(done.returncode, TAKEN, done.stderr)
        self.assertEqual(lines_of(done.stdout)["Title"], ['"Kept": its own title'])
        self.assertEqual(list(passing.iterdir()), [])

    def test_a_crawl_that_never_was(self):
        status, said, errors = explain("/", "--crawl", "https://x.example/", "--out",
                                       support.WORK / "none")
        self.assertEqual((status, said), (FAILED, ""))
        self.assertIn("No page of the site has been fetched yet", errors)

    def test_usage(self):
        for options in (["--dry-run"], ["--rollback"], ["--check-links"], ["--part", "1/2"]):
            with self.subTest(options):
                status, _, errors = explain("hours.html", "--config", LIBRARY, *options)
                self.assertEqual(status, USAGE)
        done = subprocess.run([support.BIN / "vela_index", "--config", LIBRARY, "--verbose"],
                              capture_output=True, text=True)
        self.assertEqual((done.returncode, done.stderr),
                         (USAGE, "vela_index: --verbose goes with --explain-page.\n"))


if __name__ == "__main__":
    unittest.main(verbosity=2)
