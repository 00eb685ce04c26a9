#!/usr/bin/env python3
"""The sample site is a sound one: every link leads somewhere, every page has what a page needs,
and the templates keep their markers whole."""

import html.parser
import posixpath
import tomllib
import unittest
import urllib.parse

import sample_library
import support


# What a server has beside the site's own files.
SERVED = {f"search/{name}" for name in ("search.cgi", "vela_opensearch.xml", "vela_autocomplete.js",
                                        "vela_autocomplete.css")}

# What every event tells of itself; examples/library/vela_index.toml makes fields of it.
FACTS = {"start", "place", "price", "audience", "topics", "age"}


class _Page(html.parser.HTMLParser):
    def __init__(self):
        super().__init__()
        self.links = []
        self.missing_alt = 0
        self.headings = []
        self.canonical = ""
        self.language = ""
        self.names = {}  # of meta elements
        self.image = ""

    def handle_starttag(self, tag, attributes):
        attributes = dict(attributes)
        if tag == "html":
            self.language = attributes.get("lang", "")
        elif tag in ("h1", "h2", "h3"):
            self.headings.append(tag)
        elif tag == "meta" and "name" in attributes:
            self.names[attributes["name"]] = attributes["content"]
        elif tag == "meta" and attributes.get("property") == "og:image":
            self.image = attributes["content"]
            self.links.append(self.image)
        elif tag == "link" and attributes.get("rel") == "canonical":
            self.canonical = attributes["href"]
        elif tag == "img":
            self.missing_alt += not attributes.get("alt")
        for name in ("href", "src"):
            if name in attributes and attributes.get("rel") != "canonical":
                self.links.append(attributes[name])


class SampleSite(unittest.TestCase):
    def setUp(self):
        self.pages = {}
        for path in sorted(support.SAMPLE_SITE.rglob("*.html")):
            page = _Page()
            page.feed(path.read_text(encoding="utf-8"))
            self.pages[path.relative_to(support.SAMPLE_SITE).as_posix()] = page
        self.assertGreaterEqual(len(self.pages), 40)

    def test_every_link_leads_to_a_file(self):
        for name, page in self.pages.items():
            for link in page.links:
                parts = urllib.parse.urlsplit(link)
                if parts.scheme or not parts.path:
                    continue
                target = posixpath.normpath(posixpath.join(posixpath.dirname(name), parts.path))
                if target in SERVED:
                    continue
                self.assertTrue((support.SAMPLE_SITE / target).is_file(), f"{name}: {link}")

    def test_every_page_can_be_reached(self):
        reached = set()
        waiting = ["index.html"]
        while waiting:
            name = waiting.pop()
            if name in reached or name not in self.pages:
                continue
            reached.add(name)
            for link in self.pages[name].links:
                path = urllib.parse.urlsplit(link).path
                waiting.append(posixpath.normpath(posixpath.join(posixpath.dirname(name), path)))
        # The staff's own page is linked nowhere.
        self.assertEqual(set(self.pages) - reached, {"staff/rota.html"})

    def test_every_page_has_what_a_page_needs(self):
        for name, page in self.pages.items():
            with self.subTest(name):
                self.assertEqual(page.headings.count("h1"), 1)
                self.assertGreater(len(page.names["description"]), 20)
                self.assertRegex(page.names["date"], r"\A20[0-9]{2}-[0-9]{2}-[0-9]{2}\Z")
                self.assertEqual(page.missing_alt, 0)
                self.assertEqual(page.language, name[:2] if name[2:3] == "/" else "en")
                self.assertTrue(page.canonical.startswith("https://library.alderwick.example/"))

    def test_every_event_tells_its_facts(self):
        config = tomllib.loads(sample_library.CONFIG.read_text(encoding="utf-8"))
        fields = {field.get("meta", field["name"]): field for field in config["field"]}
        self.assertEqual(set(fields), FACTS)
        events = [name for name in self.pages
                  if name.startswith("events/") and name != "events/index.html"]
        self.assertGreaterEqual(len(events), 8)
        for name, page in self.pages.items():
            told = FACTS & set(page.names)
            if name not in events and not told:
                continue
            with self.subTest(name):
                self.assertEqual(told, FACTS)
                self.assertTrue(page.image)
                self.assertIn(page.names["audience"], fields["audience"]["values"])
                for topic in page.names["topics"].split(", "):
                    self.assertIn(topic, fields["topics"]["values"])
                self.assertRegex(page.names["price"], r"\A[0-9]+(\.[0-9]{2})?\Z")
                self.assertRegex(page.names["age"], r"\A[0-9]+\Z")

    def test_every_kind_of_field_is_there(self):
        config = tomllib.loads(sample_library.CONFIG.read_text(encoding="utf-8"))
        self.assertEqual({field["kind"] for field in config["field"]},
                         {"text", "number", "money", "choice", "choices"})
        self.assertGreater(len(config["category"]), 8)

    def test_titles_are_distinct(self):
        titles = [tuple(sorted(word.lower() for word in support.words_of(title)))
                  for title in support.titles_of(support.SAMPLE_SITE).values()]
        self.assertEqual(len(titles), len(set(titles)))


class Templates(unittest.TestCase):
    # The program reads a template in lines of at most this many bytes and knows no marker across
    # two of them.
    LONGEST_LINE = 1023

    def test_lines_fit(self):
        for path in (support.SAMPLE_TEMPLATE, support.PROJECT / "assets/search_template.html"):
            lines = path.read_bytes().splitlines(keepends=True)
            self.assertTrue(any(b"<!--VELA" in line for line in lines), path)
            for number, line in enumerate(lines, 1):
                self.assertLessEqual(len(line), self.LONGEST_LINE, f"{path}:{number}")

    def test_nothing_comes_from_elsewhere(self):
        for path in (support.SAMPLE_TEMPLATE, support.PROJECT / "assets/search_template.html"):
            text = path.read_text(encoding="utf-8")
            for foreign in ("http://", "https://", "//cdn", "@import"):
                self.assertNotIn(foreign, text, path)


if __name__ == "__main__":
    unittest.main()
