#!/usr/bin/env python3
"""The XML answers of the sample library as a feed reader sees them: a real parser reads them, and
the elements that RSS 2.0 and OpenSearch 1.1 ask for are there and lead to pages of the site."""

import email.utils
import unittest
import urllib.parse
import xml.etree.ElementTree as ElementTree

import sample_library
import support

OPENSEARCH = "{http://a9.com/-/spec/opensearch/1.1/}"
VELA = "{https://vela-search.example/ns/response/1.0/}"

QUERIES = [
    "vela_query=library",
    "vela_query=library&vela_page=3&vela_per_page=10",
    "vela_query=site:news&vela_sort=1",
    "vela_query=%22reading+room%22",
    "vela_query=Grünau+bibliothèque",
    "vela_query=d%E2%80%99Alderwick",
    "vela_query=&price=5",
    "vela_query=bookbinding",
    "vela_query=opening+times",
    "vela_query=geneology",
    "vela_query=nothing-like-this",
    "vela_query=%3Cb%3E%26amp;%22%27]]%3E",
    "vela_query=umbrella&vela_cat%5B%5D=0&vela_cat%5B%5D=7",
    "vela_query=library&masternode=1",
    "vela_query=library&vela_page=500",
    "",
]


class Feed(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.index = sample_library.build_library("library")

    def ask(self, query):
        status, header, body = support.run_cgi(self.index, (query + "&vela_xml=1").lstrip("&"))
        self.assertEqual(status, 0)
        self.assertEqual(header, b"Content-type: text/xml; charset=utf-8")
        root = ElementTree.fromstring(body)
        self.assertEqual(root.tag, "rss")
        self.assertEqual(root.get("version"), "2.0")
        self.assertEqual(len(root), 1)
        return root.find("channel")

    def test_every_answer_is_well_formed(self):
        for query in QUERIES:
            with self.subTest(query):
                channel = self.ask(urllib.parse.quote(query, safe="%&=+:*'"))
                for name in ("title", "description", "link"):
                    self.assertTrue(channel.findtext(name), name)
                self.assertEqual(channel.findtext("link"),
                                 "http://127.0.0.1:8080/search/search.cgi")
                link = channel.find(OPENSEARCH + "link")
                self.assertEqual(link.get("rel"), "search")
                self.assertTrue(link.get("href").endswith("vela_opensearch.xml"))

    def test_items_are_what_a_reader_shows(self):
        channel = self.ask("vela_query=site:news&vela_sort=1")
        items = channel.findall("item")
        self.assertEqual(len(items), 9)
        links = [item.findtext("link") for item in items]
        self.assertEqual(len(links), len(set(links)))
        for item in items:
            with self.subTest(item.findtext("link")):
                page = support.SAMPLE_SITE / item.findtext("link").lstrip("/")
                source = page.read_text(encoding="utf-8")
                self.assertIn(f"<title>{item.findtext('title')}</title>", source)
                self.assertIn(f'name="description" content="{item.findtext("description")}"', source)
                date = email.utils.parsedate_to_datetime(item.findtext("pubDate"))
                self.assertIn(f'name="date" content="{date:%Y-%m-%d}"', source)
                self.assertIn("News", [category.text for category in item.findall("category")])
        dates = [email.utils.parsedate_to_datetime(item.findtext("pubDate")) for item in items]
        self.assertEqual(dates, sorted(dates, reverse=True))

    def test_counts_agree_with_the_items(self):
        seen = []
        page = 1
        while True:
            channel = self.ask(f"vela_query=library&vela_per_page=10&vela_page={page}")
            items = channel.findall("item")
            total = int(channel.findtext(OPENSEARCH + "totalResults"))
            self.assertEqual(channel.findtext(OPENSEARCH + "itemsPerPage"), "10")
            self.assertEqual(int(channel.findtext(OPENSEARCH + "startIndex")), len(seen) + 1)
            seen += [item.findtext("link") for item in items]
            if len(seen) >= total:
                break
            self.assertEqual(len(items), 10)
            page += 1
        self.assertGreaterEqual(page, 3)
        self.assertEqual(len(seen), len(set(seen)))

    def test_facts_have_an_element_each(self):
        item = self.ask("vela_query=bookbinding").find("item")
        facts = {name: item.findtext(VELA + name)
                 for name in ("when", "where", "price", "audience", "topics", "age")}
        facts["topics"] = sorted(facts["topics"].split(", "))
        self.assertEqual(facts, {
            "when": "8 November 2025, 13:00", "where": "Riverside, Heron room",
            "price": "£18.00", "audience": "Adults", "topics": ["Books", "Crafts"], "age": "16"})

    def test_the_description_for_browsers(self):
        root = ElementTree.parse(self.index / "vela_opensearch.xml").getroot()
        self.assertEqual(root.tag, OPENSEARCH + "OpenSearchDescription")
        self.assertLessEqual(len(root.findtext(OPENSEARCH + "ShortName")), 16)
        self.assertLessEqual(len(root.findtext(OPENSEARCH + "Description")), 1024)
        kinds = {}
        for url in root.findall(OPENSEARCH + "Url"):
            kinds[url.get("type")] = url.get("template")
            self.assertTrue(url.get("template").startswith("http://127.0.0.1:8080/search/"))
        self.assertIn("{searchTerms}", kinds["text/html"])
        # What a feed reader does with the other template: put words in and read the answer.
        template = kinds.get("application/rss+xml")
        self.assertIsNotNone(template)
        filled = template.replace("{searchTerms}", "marigolds")
        while "{" in filled:  # the parameters that it may leave out
            head, _, rest = filled.partition("{")
            filled = head + "1" + rest.partition("}")[2]
        query = urllib.parse.urlsplit(filled).query
        status, header, body = support.run_cgi(self.index, query)
        self.assertEqual((status, header), (0, b"Content-type: text/xml; charset=utf-8"))
        items = ElementTree.fromstring(body).findall("channel/item")
        self.assertEqual([item.findtext("link") for item in items], ["/news/seed-exchange.html"])


if __name__ == "__main__":
    unittest.main()
