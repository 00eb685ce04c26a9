#!/usr/bin/env python3
"""What pages say about themselves and what a site repeats, on sites made by hand: the index, the
report, and what a visitor gets."""

import html
import json
import re
import shutil
import subprocess
import unittest

import support


class Facts(unittest.TestCase):
    def setUp(self):
        self.folder = support.WORK / self._testMethodName
        shutil.rmtree(self.folder, ignore_errors=True)
        self.site = self.folder / "site"
        self.site.mkdir(parents=True)

    def write(self, pages):
        for name, markup in pages.items():
            path = self.site / name
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text(markup, encoding="utf-8")

    def index(self, configuration="", *options):
        """Indexes the site. Returns the index folder, the report and the summary."""
        file = self.folder / "vela_index.toml"
        file.write_text(configuration, encoding="utf-8")
        index = self.folder / "index"
        report = self.folder / "report.json"
        done = subprocess.run(
            [support.BIN / "vela_index", "--config", file, "--site", self.site, "--base-url",
             "https://x.example/", "--out", index, "--report", report, *options],
            capture_output=True, text=True)
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)
        support.inspect(index)
        shutil.copy2(support.BIN / "vela_search", index / "search.cgi")
        return index, json.loads(report.read_text(encoding="utf-8")), done.stdout + done.stderr

    def page_of(self, index, query, **parameters):
        status, _, page = support.run_cgi(index, support.query_string(query, **parameters))
        self.assertEqual(status, 0)
        results = page.decode().partition('<div class="results">')[2]  # none: nothing was found
        return html.unescape(results)

    def titles(self, index, query, **parameters):
        page = self.page_of(index, query, **parameters)
        found = re.findall(r'<div class="result_title">.*?<a [^>]*>(.*?)</a>', page, re.DOTALL)
        return [re.sub("<[^>]*>", "", title).strip() for title in found]

    def test_facts_of_json_ld_and_others(self):
        self.write({
            "a.html": """<title>Knots</title><script type="application/ld+json">
                {"@graph": [{"@type": "Organization", "name": "Harbour", "description": "no",
                             "logo": "/logo.png"},
                 {"@type": "TechArticle", "description": "All about the bowline.",
                  "author": [{"@type": "Person", "name": "Ann Rope"}],
                  "image": {"@type": "ImageObject", "url": "/knot.png"},
                  "dateModified": "2024-05-06T07:08:09Z", "datePublished": "2020-01-01"}]}
                </script><p>rope""",
            "b.html": """<title>Sails</title><meta property="og:description" content="Of canvas.">
                <meta name="DC.creator" content="Bob Sail"><meta name="dcterms.issued"
                content="2021-02-03T00:00:00Z"><p>rope""",
            "c.html": """<title>Broken</title><script type="application/ld+json">
                {"description": "Before.", "dateModified": "2022-03-04T00:00:00Z",, "author": "No"}
                </script><p>rope""",
        })
        index, report, _ = self.index(
            '[[field]]\nname = "author"\nmeta = "page:author"\n'
            '[[field]]\nname = "type"\nmeta = "json-ld:type"\n')
        dates = {each["title"]: each["date"] for each in report["documents"]}
        self.assertEqual(dates, {"Knots": "2024-05-06T07:08:09Z", "Sails": "2021-02-03T00:00:00Z",
                                 "Broken": "2022-03-04T00:00:00Z"})
        page = self.page_of(index, "rope")
        for text in ("All about the bowline.", "Of canvas.", "Before.",
                     "https://x.example/knot.png", "TechArticle"):
            self.assertIn(text, page)
        self.assertNotIn("logo.png", page)
        self.assertEqual(self.titles(index, "rope", author="Ann Rope"), ["Knots"])
        self.assertEqual(self.titles(index, "rope", author="Bob"), ["Sails"])

    def test_languages(self):
        english = "The sail is hoisted by a rope which runs over the top of the mast to the deck. "
        german = "Das Segel wird mit einem Seil gesetzt, das zur Spitze des Mastes l\u00e4uft. "
        self.write({
            "declared.html": f"<html lang=fr-CA><title>Declared</title><p>Nadir. {english}",
            "content.html": "<meta http-equiv=content-language content=pt-BR><title>Content</title>"
                            f"<p>Nadir. {english}",
            "english.html": f"<title>English</title><p>Nadir. {english}",
            "german.html": f"<title>German</title><p>Nadir. {german}",
            "german.txt": f"Text\n\nNadir. {german}{german}",
            "none.html": "<title>None</title><p>Nadir.",
        })
        index, report, _ = self.index(
            '[[category]]\nname = "Deutsche Texte"\nlanguages = ["de"]\npages = ["*.txt"]\n'
            '[[category]]\nname = "Romance"\nlanguages = ["fr", "pt"]\n')
        languages = {each["path"]: each.get("language") for each in report["documents"]}
        self.assertEqual(languages, {"declared.html": "fr", "content.html": "pt",
                                     "english.html": "en", "german.html": "de",
                                     "german.txt": "de", "none.html": None})
        self.assertEqual(self.titles(index, "nadir", vela_cat="0"), ["Text"])
        self.assertEqual(set(self.titles(index, "nadir", vela_cat="1")), {"Content", "Declared"})

        languages.update({"english.html": None, "german.html": None, "german.txt": None})
        _, report, _ = self.index()
        self.assertEqual({each["path"]: each.get("language") for each in report["documents"]},
                         languages)
        languages.update({"english.html": "en", "german.html": "de", "german.txt": "de"})
        _, report, _ = self.index("[index]\nrecognise_languages = true\n")
        self.assertEqual({each["path"]: each.get("language") for each in report["documents"]},
                         languages)

        index, _, _ = self.index("[index]\nlanguage_categories = true\n")
        _, _, page = support.run_cgi(index, support.query_string("nadir"))
        for number, name in enumerate(("Deutsch", "English", "Fran\u00e7ais")):
            self.assertRegex(page.decode(), f'value="{number}"[^>]*>\\s*{name}')
    def numbered(self, count, markup):
        """`count` pages that `markup` makes of a number, each with some words of its own."""
        self.write({f"p{i:02}.html": markup(i) for i in range(count)})

    def test_the_name_of_the_site(self):
        self.numbered(8, lambda i: f"<title>Knot {i} | The Loft - Harbour</title><h1>Bowline {i}</h1>"
                                   "<p>Text about rope")
        self.write({"home.html": "<title>Harbour</title><p>Text of the front page"})
        index, report, summary = self.index()
        self.assertIn("Knot 3 | The Loft - Harbour", self.titles(index, "knot"))
        self.assertNotIn("site", report)
        index, report, summary = self.index('[site]\nsite_name = "auto"\n')
        self.assertEqual(report["site"], {"names": ["Harbour", "The Loft"], "repeated": []})
        self.assertIn("Taken off titles (site_name): Harbour.", summary)
        self.assertEqual(sorted(self.titles(index, "knot")), [f"Knot {i}" for i in range(8)])
        # By its name the site is still found, its front page before the others.
        found = self.titles(index, "harbour")
        self.assertEqual(found[0], "Harbour")
        self.assertEqual(len(found), 9)
        index, _, _ = self.index('[site]\nsite_name = "Harbour"\n')
        self.assertIn("Knot 3 | The Loft", self.titles(index, "knot"))

    def test_titles_that_are_all_alike(self):
        self.numbered(8, lambda i: f"<title>Untitled</title><h1>Bowline {i}</h1><p>Text about rope")
        self.write({"other.html": "<title>Other</title><h1>Heading</h1><p>Text about rope"})
        index, report, _ = self.index('[site]\nsite_name = "auto"\n')
        self.assertEqual(report["site"]["shared_title"], "Untitled")
        self.assertEqual(sorted(self.titles(index, "rope")),
                         [f"Bowline {i}" for i in range(8)] + ["Other"])

    def test_text_that_most_pages_have(self):
        banner = "This harbour uses biscuits to keep its visitors fed."
        self.numbered(12, lambda i: f"<title>P{i}</title><p>{banner}<p>Page{i} has no more")
        self.write({"about.html": "<title>About</title><h1>This harbour uses biscuits to keep its "
                                  "visitors fed.</h1><p>Why there are biscuits."})
        index, _, _ = self.index()
        self.assertEqual(len(self.titles(index, "biscuits", vela_per_page="100")), 13)
        setting = '[index]\nrepeated_text = "leave_out"\n'
        index, report, summary = self.index(setting)
        self.assertEqual(report["site"], {"names": [], "repeated": [banner]})
        self.assertIn("Left out of most pages (repeated_text): " + banner, summary)
        self.assertEqual(self.titles(index, "biscuits"), ["About"])
        self.assertEqual(self.titles(index, "page7"), ["P7"])
        # The same for any number of threads.
        files = {path.name: path.read_bytes() for path in index.glob("vela_*.vdat")}
        self.index(setting, "--jobs", "3")
        self.assertEqual({path.name: path.read_bytes() for path in index.glob("vela_*.vdat")}, files)

    def test_pages_that_say_nearly_the_same(self):
        text = " ".join(f"word{i}" for i in range(2000))
        self.write({"a.html": f"<title>A</title><p>{text} one",
                    "b.html": f"<title>B</title><p>{text} two",
                    "c.html": "<title>C</title><p>another text"})
        index, report, summary = self.index()
        similar = {each["path"]: each.get("similar") for each in report["documents"]}
        self.assertEqual(similar, {"a.html": None, "b.html": "https://x.example/a.html",
                                   "c.html": None})
        self.assertIn("1  nearly the same text as another page: b.html", summary)
        self.assertEqual(sorted(self.titles(index, "word7")), ["A", "B"])
        index, report, _ = self.index('[index]\nnear_duplicates = "leave_out"\n')
        left_out = [each for each in report["documents"] if each["outcome"] == "left_out"]
        self.assertEqual([(each["path"], each["code"], each["other"]) for each in left_out],
                         [("b.html", "similar", "https://x.example/a.html")])
        self.assertEqual(self.titles(index, "word7"), ["A"])
        index, report, summary = self.index('[index]\nnear_duplicates = "keep"\n')
        self.assertNotIn("nearly the same", summary)
        self.assertEqual(len(self.titles(index, "word7")), 2)

if __name__ == "__main__":
    unittest.main()
