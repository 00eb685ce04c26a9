#!/usr/bin/env python3
"""What the owner of examples/content calls the content of its pages is found, and nothing else."""

import json
import shutil
import subprocess
import unittest

import support

FOLDER = support.PROJECT / "examples/content"

FOUND = {
    "granite": ["/index.html", "/sitemap.html"],
    "wick": ["/shop/lamp.html"],
    "soot": ["/shop/lamp.html"],
    "coal": ["/beacons.html"],
    "chandlery": ["/sitemap.html"],  # in the navigation of a page that is nothing else
}
NOT_FOUND = {
    "biscuits": ".cookie-notice",
    "drizzle": "#sidebar",
    "umbrellas": "[data-advert]",
    "acquaintances": "data-vela-ignore",
    "shipwrecks": "vela:off",
    "towers": "outside of data-vela-body",
    "ghost": "vela:off without an end",
    "tuesdays": "outside of only_elements",
    "verdict": "no child of .reviews that is a p",
}


class Content(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = support.WORK / "content"
        shutil.rmtree(cls.folder, ignore_errors=True)
        shutil.copytree(FOLDER, cls.folder)
        cls.index = cls.folder / "search"
        done = cls.run_indexer("vela_index.toml", "--report", "report.json")
        cls.summary = done.stdout
        support.inspect(cls.index)
        shutil.copy2(support.BIN / "vela_search", cls.index / "search.cgi")

    @classmethod
    def run_indexer(cls, config, *options):
        return subprocess.run([support.BIN / "vela_index", "--config", config, *options],
                              cwd=cls.folder, capture_output=True, text=True, check=True)

    def addresses(self, query):
        return [address for address, _ in support.search(self.index, query)]

    def test_what_is_content_is_found(self):
        for query, pages in FOUND.items():
            with self.subTest(query):
                self.assertEqual(sorted(self.addresses(query)), pages)

    def test_what_is_none_is_not(self):
        for query, why in NOT_FOUND.items():
            with self.subTest(why):
                self.assertEqual(self.addresses(query), [])

    def test_words_of_more_weight_count_more(self):
        # Both have the word once in their text, and the other page is the shorter one.
        self.assertEqual(self.addresses("beacon"), ["/index.html", "/hill.html"])

    def test_the_summary_and_the_report_tell_of_it(self):
        self.assertIn("Not content, as you say: 6 parts of 2 pages.\n", self.summary)
        self.assertIn("Of 2 pages only the parts that you chose are in the index.\n", self.summary)
        self.assertIn('"vela:off" without "vela:on": all behind it is left out: hill.html',
                      self.summary)
        self.assertNotIn("Warning: the selector", self.summary)
        report = json.loads((self.folder / "report.json").read_text(encoding="utf-8"))
        counts = report["counts"]
        self.assertEqual((counts["excluded_parts"], counts["excluding_pages"],
                          counts["chosen_pages"]), (6, 2, 2))
        self.assertEqual([(remark["code"], remark["path"]) for remark in report["remarks"]],
                         [("left_off", "hill.html")])

    def test_a_selector_without_use_is_named(self):
        config = self.folder / "other.toml"
        text = (FOLDER / "vela_index.toml").read_text(encoding="utf-8")
        config.write_text(text.replace("#sidebar", "#side bar"), encoding="utf-8")
        done = self.run_indexer("other.toml", "--dry-run")
        self.assertIn('Warning: the selector "#side bar" fits nothing that is content otherwise.',
                      done.stdout)

    def test_a_wrong_selector_is_refused_with_its_place(self):
        config = self.folder / "wrong.toml"
        config.write_text('[index]\nexclude_elements = ["h2 + p"]\n', encoding="utf-8")
        done = subprocess.run([support.BIN / "vela_index", "--config", config],
                              capture_output=True, text=True)
        self.assertEqual(done.returncode, 2)
        self.assertIn('line 2: exclude_elements in [index] holds "h2 + p", which is no selector from '
                      '"+ p" on.', done.stderr)


if __name__ == "__main__":
    unittest.main(verbosity=2)
