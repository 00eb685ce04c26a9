#!/usr/bin/env python3
"""Two manuals read as folders and crawled behind nginx: the same pages, the same index, the same
answers. What a crawl may not see is what no link leads to, and a sitemap or a list brings it."""

import shutil
import sys
import unittest

import support

sys.path.insert(0, str(support.PROJECT / "bench"))
import two_ways  # noqa: E402

# Folder beside the pages of python3.11-doc, first page, and what no page leads to.
SITES = {
    "html": ("", ["distutils/_setuptools_disclaimer.html", "distutils/packageindex.html",
                  "distutils/uploading.html", "includes/wasm-notavail.html"]),
    "git-doc": ("git.html", None),
}


class TwoWays(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.records = {}
        for name, (start, _) in SITES.items():
            folder = support.REAL_CONTENT.resolve().parent / name
            cls.records[name] = two_ways.compare_site(
                two_ways.Site(name, "", start), folder, support.BIN, support.WORK / name)

    def test_nothing_is_different_without_a_reason(self):
        self.assertEqual([fault for record in self.records.values()
                          for fault in two_ways.faults(record)], [])

    def test_what_no_link_leads_to_is_all_that_a_crawl_has_not(self):
        for name, (_, orphans) in SITES.items():
            with self.subTest(name):
                differences = self.records[name]["differences"]
                missing = differences["in the folder, not crawled"]
                self.assertEqual(list(missing), [two_ways.NO_LINK])
                if orphans is not None:
                    self.assertEqual(missing[two_ways.NO_LINK], orphans)
                self.assertEqual({what: why for what, why in differences.items() if why},
                                 {"in the folder, not crawled": missing})

    def test_every_page_that_links_lead_to_is_crawled(self):
        for name, record in self.records.items():
            with self.subTest(name):
                ways = record["ways"]
                self.assertGreater(record["reached"], 200)
                self.assertEqual(ways["crawl"]["pages"], record["reached"])
                self.assertEqual(ways["sitemap"]["pages"], ways["folder"]["pages"])
                self.assertEqual(ways["list"]["pages"], ways["folder"]["pages"])

    def test_no_page_is_asked_for_twice(self):
        for name, record in self.records.items():
            with self.subTest(name):
                crawl = record["ways"]["crawl"]
                # Beside the pages: robots.txt, and files that are none.
                self.assertLessEqual(sum(crawl["answers"].values()), crawl["pages"] + 5)


if __name__ == "__main__":
    unittest.main()
