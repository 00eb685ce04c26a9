#!/usr/bin/env python3
"""A query of all the words of a page's title puts that page first, for every page."""

import unittest

import sample_library
import support


class ExactTitles(unittest.TestCase):
    def check_site(self, site, index, least):
        titles = support.titles_of(site)
        self.assertGreaterEqual(len(titles), least)
        wrong = []
        for address, title in titles.items():
            words = support.words_of(title)
            results = support.search(index, " ".join(words), vela_per_page=10)
            # Several pages may carry one title; any of them is right.
            first = results[0] if results else ("nothing", "")
            expected = sorted(word.lower() for word in words)
            page = first[0].partition("#")[0]  # the result may lead to a section of it
            found = sorted(word.lower() for word in support.words_of(titles.get(page, "")))
            if found != expected:
                wrong.append(f"{title!r} of {address}: {first[0]} {first[1]!r} stands first")
        self.assertFalse(wrong, f"{len(wrong)} of {len(titles)}:\n" + "\n".join(wrong))

    def test_sample_site(self):
        site = support.SAMPLE_SITE
        self.check_site(site, support.build_index(site, "sample"), 40)

    def test_sample_site_as_configured(self):
        self.check_site(support.SAMPLE_SITE, sample_library.build_library("library"), 60)

    def test_real_content(self):
        site = support.REAL_CONTENT
        self.check_site(site, support.build_index(site, "real"), 500)


if __name__ == "__main__":
    unittest.main()
