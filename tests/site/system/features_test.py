#!/usr/bin/env python3
"""Every row of docs/features.md is true: its address is asked of the sample library, set up as the
row says, and the answer holds what features_expected.py worked out from the site's texts."""

import re
import unittest

import features_expected
import sample_library
import support

DOCUMENT = support.PROJECT / "docs/features.md"
SEARCH = "/search/search.cgi"
HEADINGS = ("In the demo as it is", "Switched off in the demo")


class Row:
    def __init__(self, cells, is_on):
        self.feature, switch, address, _ = cells
        self.key = (self.feature, address.strip("`"))
        self.changes = [] if is_on else _changes(switch)


def _changes(switch):
    """[(table, "key = value")] of a cell such as `[index] images = false`, `stemming = "off"`."""
    changes = []
    table = None
    for text in re.findall(r"`([^`]*)`", switch):
        found = re.fullmatch(r"(?:\[(\w+)\] )?(\w+ = .*)", text)
        table = found[1] or table
        changes.append((table, found[2]))
    return changes


def rows():
    document = DOCUMENT.read_text(encoding="utf-8")
    _, first, second = re.split("|".join(f"^## {heading}$" for heading in HEADINGS), document,
                                flags=re.M)
    found = []
    for text, is_on in ((first, True), (second, False)):
        for line in text.splitlines():
            cells = [cell.strip() for cell in line.strip().strip("|").split(" | ")]
            if line.startswith("|") and cells[0] != "Feature" and not cells[0].startswith("---"):
                found.append(Row(cells, is_on))
    return found


class Answer:
    """What came back: the text of header and page, and the addresses of the results in order."""

    def __init__(self, index, address):
        path, _, query = address.partition("?")
        if path == SEARCH:
            status, header, page = support.run_cgi(index, query)
            assert status == 0, f"exit status {status}"
            charset = re.search(rb"charset=([\w-]+)", header)
            self.header = header.decode("ascii")
            # A query in one set, shown on a page in another, is no text.
            self.text = page.decode(charset[1].decode() if charset else "utf-8", errors="replace")
            self.results = [found for found, _ in support.results_of(self.text.encode())]
        else:  # a file that the server delivers
            self.header = ""
            self.text = (index / path.rpartition("/")[2]).read_text(encoding="utf-8")
            self.results = []
        log = index.parent / "searches.log"
        self.logged = log.read_text(encoding="utf-8", errors="replace").splitlines() if log.exists() else []


class Features(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.library = sample_library.build_library("library")
        cls.rows = rows()

    def test_rows_and_expectations_are_in_step(self):
        documented = [row.key for row in self.rows]
        self.assertEqual(len(documented), len(set(documented)))
        self.assertEqual(set(documented), set(features_expected.EXPECTED))

    def test_every_row(self):
        for number, row in enumerate(self.rows):
            with self.subTest(row.feature):
                index = self.library
                if row.changes:
                    index = sample_library.build_library(f"changed_{number}", row.changes)
                self.check(features_expected.EXPECTED[row.key], Answer(index, row.key[1]))

    def test_every_switch_makes_a_difference(self):
        # What a row of the second table expects must not hold for the library as it is.
        for row in self.rows:
            if not row.changes:
                continue
            with self.subTest(row.feature):
                answer = Answer(self.library, row.key[1])
                with self.assertRaises(AssertionError):
                    self.check(features_expected.EXPECTED[row.key], answer)

    def check(self, expected, answer):
        if expected.finds is not None:
            self.assertEqual(sorted(answer.results), sorted(expected.finds))
        if expected.order is not None:
            self.assertEqual(answer.results[:len(expected.order)], list(expected.order))
        # The messages leave the page out, which is long.
        for text in expected.shows:
            self.assertTrue(text in answer.text, f"not there: {text}")
        for text in expected.hides:
            self.assertFalse(text in answer.text, f"there: {text}")
        for pattern in expected.matches:
            self.assertTrue(re.search(pattern, answer.text), f"does not match: {pattern}")
        if expected.header is not None:
            self.assertEqual(answer.header, expected.header)
        if expected.logged is not None:
            self.assertRegex(answer.logged[-1] if answer.logged else "", expected.logged)
        if expected.is_logged is not None:
            self.assertEqual(bool(answer.logged), expected.is_logged)


if __name__ == "__main__":
    unittest.main()
