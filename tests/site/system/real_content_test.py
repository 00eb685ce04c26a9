#!/usr/bin/env python3
"""Searches of the kind that readers make, in several hundred pages of a real manual."""

import unittest

import support

# What is asked for, and the page that has to stand first.
QUERIES = [
    ("asyncio event loop", "/library/asyncio-eventloop.html"),
    ("asyncio streams", "/library/asyncio-stream.html"),
    ("regular expression operations", "/library/re.html"),
    ("regular expression howto", "/howto/regex.html"),
    ("json encoder decoder", "/library/json.html"),
    ("csv file reading and writing", "/library/csv.html"),
    ("sqlite3 database", "/library/sqlite3.html"),
    ("logging cookbook", "/howto/logging-cookbook.html"),
    ("logging handlers", "/library/logging.handlers.html"),
    ("unicode howto", "/howto/unicode.html"),
    ("thread based parallelism", "/library/threading.html"),
    ("process based parallelism multiprocessing", "/library/multiprocessing.html"),
    ("subprocess management", "/library/subprocess.html"),
    ("object oriented filesystem paths", "/library/pathlib.html"),
    ("argparse tutorial", "/howto/argparse.html"),
    ("heap queue algorithm", "/library/heapq.html"),
    ("bisection algorithm", "/library/bisect.html"),
    ("rational numbers fractions", "/library/fractions.html"),
    ("decimal fixed point arithmetic", "/library/decimal.html"),
    ("floating point arithmetic issues and limitations", "/tutorial/floatingpoint.html"),
    ("turtle graphics", "/library/turtle.html"),
    ("unit testing framework", "/library/unittest.html"),
    ("mock object library", "/library/unittest.mock.html"),
    ("gzip files", "/library/gzip.html"),
    ("zipfile", "/library/zipfile.html"),
    ("virtual environments creation", "/library/venv.html"),
    ("virtual environments", "/tutorial/venv.html"),  # "Virtual Environments and Packages"
    ("descriptor guide", "/howto/descriptor.html"),
    ("sorting how to", "/howto/sorting.html"),
    ("socket programming", "/howto/sockets.html"),
    ("base64 data encodings", "/library/base64.html"),
    ("secure hashes message digests", "/library/hashlib.html"),
    ("what's new in python 3.8", "/whatsnew/3.8.html"),
    ("errors and exceptions tutorial", "/tutorial/errors.html"),
    ("list comprehensions data structures", "/tutorial/datastructures.html"),
    ("garbage collector interface", "/library/gc.html"),
]

# Where another page answers as well and more links say so, it may stand before.
MAY_STAND_BEFORE = {
    "virtual environments": "/library/venv.html",  # "Creation of virtual environments"
    "errors and exceptions tutorial": "/tutorial/index.html",
}


def pages_found(*arguments, **parameters):
    """The results as support.search has them, by the addresses of their pages: a result may lead to
    a section."""
    return [(address.split("#")[0], *rest) for address, *rest in support.search(*arguments, **parameters)]


class RealContent(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.index = support.build_index(support.REAL_CONTENT, "index")

    def test_the_expected_page_stands_first(self):
        wrong = []
        for query, expected in QUERIES:
            addresses = [address for address, _ in pages_found(self.index, query)]
            if addresses[:1] == [MAY_STAND_BEFORE.get(query)]:
                addresses = addresses[1:]
            if addresses[:1] != [expected]:
                place = addresses.index(expected) + 1 if expected in addresses else "nowhere"
                wrong.append(f"{query!r}: {expected} is {place}, {addresses[:3]}")
        self.assertFalse(wrong, f"{len(wrong)} of {len(QUERIES)}:\n" + "\n".join(wrong))

    def test_a_phrase_finds_only_pages_that_hold_it(self):
        results = pages_found(self.index, '"global interpreter lock"', vela_per_page=100)
        self.assertGreaterEqual(len(results), 5)
        for address, _ in results:
            text = (support.REAL_CONTENT / address[1:]).read_text(encoding="utf-8")
            text = " ".join(support.text_of(text).lower().split())
            self.assertIn("global interpreter lock", text, address)

    def test_match_all_finds_only_pages_with_every_word(self):
        results = pages_found(self.index, "epoll kqueue", vela_and=1, vela_per_page=100)
        self.assertIn("/library/select.html", [address for address, _ in results])
        for address, _ in results:
            text = (support.REAL_CONTENT / address[1:]).read_text(encoding="utf-8").lower()
            self.assertIn("epoll", text, address)
            self.assertIn("kqueue", text, address)

    def test_a_word_that_no_page_holds_finds_nothing(self):
        self.assertEqual(pages_found(self.index, "xylophonequartet"), [])

    def test_pages_of_results_do_not_repeat(self):
        seen = []
        for page in range(1, 6):
            results = pages_found(self.index, "function", vela_page=page, vela_per_page=20)
            self.assertEqual(len(results), 20)
            seen += [address for address, _ in results]
        self.assertEqual(len(seen), len(set(seen)))


if __name__ == "__main__":
    unittest.main()
