#!/usr/bin/env python3
"""vela_inspect on the sample library: what it explains is what the search program answers, with and
without Ranking; what it shows is what the pages say; how it ends."""

import json
import re
import shutil
import subprocess
import unittest
import urllib.parse

import sample_library
import support

PLAIN = [("settings", "Highlighting = 0"), ("settings", "DisplayScore = 1")]
# As the program answers without any extension.
WITHOUT = [*PLAIN, ("search", "extensions = false")]

QUERIES = (
    "library",
    "opening hours",
    "library opening hours",
    "how do I renew a book",
    "children story time",
    '"story time"',
    '"opening hours" central',
    "read*",
    "*history* local",
    "computer -printing",
    "library -branch -hours",
    "site:events library",
    "site:events",
    "oeffnungszeiten",
    "Öffnungszeiten bibliothek",
    "atelier d'écriture",
    "wifi e-mail",
    "libary oppening",
    "reading list the of and",
    "xyzzy",
    "-library",
)


def inspect(index, *arguments, status=0):
    """What the inspector writes; fails when it ends otherwise."""
    done = subprocess.run([support.BIN / "vela_inspect", index, *arguments], capture_output=True,
                          text=True)
    if done.returncode != status:
        raise AssertionError(f"{arguments}: status {done.returncode}\n{done.stdout}{done.stderr}")
    return done.stdout


def explain(index, query, *arguments):
    done = subprocess.run([support.BIN / "vela_inspect", index, "--json", "--limit", "1000",
                           "--explain", query, *arguments], capture_output=True, text=True)
    if done.returncode not in (0, 1):
        raise AssertionError(f"{arguments}: status {done.returncode}\n{done.stdout}{done.stderr}")
    return json.loads(done.stdout), done.returncode


def answer(index, query, **parameters):
    """The (score, address) pairs of all results, as the search program gives them."""
    status, _, page = support.run_cgi(index, urllib.parse.urlencode(
        {"vela_query": query, "vela_xml": 1, "vela_per_page": 1000, **parameters}, doseq=True))
    assert status == 0
    pairs = []
    for item in re.findall(r"<item>.*?</item>", page.decode("utf-8"), re.S):
        score = re.search(r"<vela:score>(\d+)</vela:score>", item)
        if score:  # recommended pages have none
            link = re.search(r"<link>([^<]*)</link>", item)[1]
            pairs.append((int(score[1]), link.partition("#")[0]))  # behind it, a section
    return pairs


class Explained(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.indexes = {"with Ranking": sample_library.build_library("with", PLAIN),
                       "without extensions": sample_library.build_library("without", WITHOUT)}

    def both(self):
        for name, index in self.indexes.items():
            with self.subTest(index=name):
                yield index

    def check_pages(self, index, told, query, *arguments):
        """The sums of the first pages and of the last are those of the results."""
        places = sorted({1, 2, 3, len(told["results"])} & set(range(1, len(told["results"]) + 1)))
        for place in places:
            result = told["results"][place - 1]
            whole, status = explain(index, query, "--page", str(result["page"]), *arguments)
            page = whole["page"]
            self.assertEqual(status, 0)
            self.assertEqual((page["rank"], page["score"]), (place, result["score"]))
            if "words_score" in page:
                self.assertEqual(page["words_score"] + page["title_score"], page["score"])
            sums = [(0, 0)] + [(term["before"], term["after"]) for term in page["terms"]]
            for (_, after), (before, _) in zip(sums, sums[1:]):
                self.assertEqual(after, before)
            self.assertEqual(sums[-1][1], page["sum"])
            if place > 1:
                former = told["results"][place - 2]
                self.assertEqual(whole["before"]["page"], former["page"])
                self.assertEqual(whole["before"]["score"], former["score"])
                self.assertGreaterEqual(former["score"], result["score"])

    def test_order_and_scores_are_those_of_the_search_program(self):
        found = 0
        for index in self.both():
            for query in QUERIES:
                with self.subTest(query=query):
                    told, _ = explain(index, query)
                    self.assertEqual([(row["score"], row["address"]) for row in told["results"]],
                                     answer(index, query))
                    found += len(told["results"])
                    if not query.startswith("site:"):
                        self.check_pages(index, told, query)
        self.assertGreater(found, 300)

    def test_choices_of_the_visitor_are_kept(self):
        for index in self.both():
            for arguments, parameters in (
                    (["--and"], {"vela_and": 1}),
                    (["--category", "1", "--category", "3"], {"vela_cat[]": [1, 3]}),
                    (["--from", "1/1/2024", "--to", "31/12/2025"],
                     {"vela_datefrom": "1/1/2024", "vela_dateto": "31/12/2025"})):
                for query in ("library opening hours", "children story"):
                    with self.subTest(query=query, arguments=arguments):
                        told, _ = explain(index, query, *arguments)
                        self.assertEqual(
                            [(row["score"], row["address"]) for row in told["results"]],
                            answer(index, query, **parameters))
                        self.check_pages(index, told, query, *arguments)

    def test_every_page_that_is_not_found_has_a_reason(self):
        for index in self.both():
            pages = json.loads(inspect(index, "--json"))["summary"]["pages"]
            told, _ = explain(index, "library -hours", "--category", "1")
            found = {row["page"] for row in told["results"]}
            reasons = {}
            for page in range(pages):
                whole, status = explain(index, "library -hours", "--category", "1", "--page",
                                        str(page))
                self.assertEqual(status, 0 if page in found else 1)
                self.assertEqual(whole["page"]["found"], page in found)
                reasons.setdefault(whole["page"].get("reason"), []).append(page)
            self.assertEqual(set(reasons), {None, "no_term", "excluded", "category"})

    def reason(self, index, query, page, *arguments):
        return explain(index, query, "--page", page, *arguments)[0]["page"]["reason"]

    def test_reasons(self):
        for index in self.both():
            self.assertEqual(self.reason(index, "xyzzy", "/hours.html"), "no_term")
            self.assertEqual(self.reason(index, "opening -hours", "/hours.html"), "excluded")
            self.assertEqual(self.reason(index, "site:events opening", "/hours.html"), "site")
            self.assertEqual(self.reason(index, "opening xyzzy", "/hours.html", "--and"),
                             "not_all_terms")
            self.assertEqual(self.reason(index, "opening", "/hours.html", "--from", "1/1/1990",
                                         "--to", "2/1/1990"), "date")
            gone = subprocess.run([support.BIN / "vela_inspect", index, "--explain", "x", "--page",
                                   "/nowhere.html"], capture_output=True, text=True)
            self.assertEqual(gone.returncode, 1)
            self.assertIn("no page of the address", gone.stderr)

    def test_corrected_queries_are_explained_as_corrected(self):
        told, _ = explain(self.indexes["with Ranking"], "libary oppening")
        self.assertEqual(told["corrected"], "library opening")


class Shown(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.index = sample_library.build_library("shown", PLAIN)

    def test_the_index_is_sound(self):
        told = json.loads(inspect(self.index, "--json"))
        self.assertEqual((told["sound"], told["usable"], told["findings"]), (True, True, []))
        self.assertEqual(told["summary"]["pages"], 63)
        self.assertIn("nothing is wrong", inspect(self.index))

    def test_a_word_and_its_pages(self):
        told = json.loads(inspect(self.index, "--json", "--word", "Hours"))
        self.assertEqual(told["word"], "hours")
        self.assertIn("/hours.html", [page["address"] for page in told["pages"]])
        text = inspect(self.index, "--word", "hours")
        self.assertEqual(len(re.findall(r"^page \d+, ", text, re.M)), len(told["pages"]))
        inspect(self.index, "--word", "xyzzy", status=1)

    def test_a_page_by_number_and_address(self):
        told = json.loads(inspect(self.index, "--json", "--page", "/hours.html"))
        self.assertEqual(told["address"], "/hours.html")
        self.assertIn("hours", [word["word"] for word in told["words"]])
        by_number = json.loads(inspect(self.index, "--json", "--page", str(told["page"])))
        self.assertEqual(by_number, told)
        inspect(self.index, "--page", "63", status=1)
        inspect(self.index, "--page", ".html", status=1)  # of many pages

    def test_the_text_of_a_page(self):
        text = inspect(self.index, "--text", "/about/vacancies.html")
        self.assertIn("Thirty hours a week, salary 29,800 pounds pro rata.", text)


class Ends(unittest.TestCase):
    def setUp(self):
        self.index = sample_library.build_library("ends", PLAIN)

    def test_findings(self):
        words = self.index / "vela_wordmap.vdat"
        words.write_bytes(words.read_bytes() + b"x")
        text = inspect(self.index, status=1)
        self.assertIn("vela_wordmap.vdat, byte ", text)
        told = json.loads(inspect(self.index, "--json", status=1))
        self.assertEqual([found["fault"] for found in told["findings"]], ["unclaimed"])
        self.assertTrue(told["findings"][0]["remedy"])

    def test_an_index_that_answers_nothing(self):
        (self.index / "vela_pageinfo.vdat").write_bytes(b"")
        self.assertIn("vela_pageinfo.vdat", inspect(self.index, status=2))
        inspect(self.index, "--explain", "library", status=2)
        shutil.rmtree(self.index)
        self.assertIn("settings.vdat", inspect(self.index, status=2))

    def test_wrong_arguments(self):
        inspect(self.index, "--nothing", status=3)
        inspect(self.index, "--and", status=3)
        inspect(self.index, "--word", "a", "--page", "1", status=3)
        done = subprocess.run([support.BIN / "vela_inspect"], capture_output=True)
        self.assertEqual(done.returncode, 3)


if __name__ == "__main__":
    unittest.main()
