#!/usr/bin/env python3
"""The order and the scores of the first results of the sample library, query by query, as
ranks_expected.txt records them, so that a change of the scores does not go unseen.

Unlike the golden answers, this file is written by the program: it says how things are, not how they
have to be. After a change of the scores that is meant, read the difference that this test shows,
search by search, and when each one is for the better, accept it and commit the file with the change:

    VELA_BIN=build/release/bin tests/site/system/ranks_test.py --accept
"""

import difflib
import re
import sys
import unittest

import sample_library
import support

EXPECTED = support.PROJECT / "tests/site/system/ranks_expected.txt"
FIRST = 5  # results of each query

# What visitors of a library ask for: single words, several, phrases, patterns, exclusions, other
# languages, a whole title, part of an address.
QUERIES = (
    "library",
    "opening hours",
    "book",
    "books",
    "membership",
    "library card",
    "renew a book",
    "borrow music",
    "children",
    "story time",
    '"story time"',
    "summer reading challenge",
    "lighthouse keeper",
    "local history",
    "newspaper archive",
    "puppet theatre",
    "printing and photocopying",
    "computers",
    "computer -printing",
    "wifi",
    "accessibility wheelchair",
    "privacy",
    "donations",
    "jobs",
    "mobile library van",
    "northgate",
    "central library opening hours",
    "read*",
    "*history*",
    "site:events library",
    "oeffnungszeiten",
    "Öffnungszeiten",
    "kinderbibliothek",
    "horaires",
    "atelier d'écriture",
    "reading list",
)


def ranks():
    """The lines of the file: of each query its first results, the score before the address."""
    # A link that carries the words to mark would change with the query.
    index = sample_library.build_library("ranks", [("settings", "Highlighting = 0")])
    lines = []
    for query in QUERIES:
        status, _, page = support.run_cgi(
            index, support.query_string(query, vela_xml=1, vela_per_page=10))
        assert status == 0, f"exit status {status} for {query!r}"
        answer = page.decode("utf-8")
        total = re.search(r"<opensearch:totalResults>(-?\d+)<", answer)
        lines.append(f"{query}: {total[1] if total else 'no'} results")
        for item in re.findall(r"<item>.*?</item>", answer, re.S)[:FIRST]:
            link = re.search(r"<link>([^<]*)</link>", item)[1]
            if link.startswith("http"):
                link = "/" + link.partition("//")[2].partition("/")[2]
            score = re.search(r"<vela:score>(-?\d+)</vela:score>", item)
            if score:
                lines.append(f"{int(score[1]):8}  {link}")
        lines.append("")
    return lines


class Ranks(unittest.TestCase):
    maxDiff = None

    def test_order_and_scores_are_as_recorded(self):
        recorded = EXPECTED.read_text(encoding="utf-8").splitlines()
        found = ranks()
        if found != recorded:
            difference = difflib.unified_diff(recorded, found, "recorded", "found", n=6,
                                              lineterm="")
            self.fail("the ranks have changed; what to do about it stands in ranks_test.py\n" +
                      "\n".join(difference))

    def test_every_query_finds_something(self):
        recorded = EXPECTED.read_text(encoding="utf-8")
        self.assertEqual(len(re.findall(r"^.+: \d+ results$", recorded, re.M)), len(QUERIES))
        self.assertNotIn(": 0 results", recorded)


if __name__ == "__main__":
    if sys.argv[1:] == ["--accept"]:
        EXPECTED.write_text("\n".join(ranks()) + "\n", encoding="utf-8")
        sys.exit(0)
    unittest.main()
