#!/usr/bin/env python3
"""One web server with its configuration from deploy/: the answers of the search are those of the
program run by hand, what the page of results links to is delivered, and nothing else is.

  server_test.py apache|nginx|lighttpd|caddy|demo"""

import concurrent.futures
import http.client
import os
import pwd
import re
import subprocess
import sys
import unittest

from asked import BAD_REQUESTS, DISGUISES, FORM, REQUESTS, SEARCH, choosing_another_index
from places import BIN, SERVER_USER, Place, change_settings, run_by_hand
from servers import START, Server

SERVER = None  # the server's name, from the command line

# What servers refuse by themselves, each with the status of its own way to say so; None: they let
# the program answer.
REFUSES_METHOD = {"apache": 405, "nginx": 405, "lighttpd": 403, "caddy": 405, "demo": None}
REFUSES_LONG_ADDRESS = {"apache": 414, "nginx": 414, "lighttpd": 431, "caddy": None, "demo": 431}
REFUSES_LARGE_BODY = {"apache": 413, "nginx": 413, "lighttpd": 413, "caddy": 413, "demo": None}
REFUSES_UNKNOWN_LENGTH = {"apache": 411, "nginx": None, "lighttpd": None, "caddy": 411,
                          "demo": None}

HEADERS = {
    "Content-Security-Policy":
        "default-src 'none'; script-src 'self' 'unsafe-inline'; style-src 'self' 'unsafe-inline'; "
        "img-src 'self' data:; font-src 'self'; connect-src 'self'; form-action 'self'; "
        "base-uri 'none'; frame-ancestors 'self'",
    "X-Content-Type-Options": "nosniff",
    "Referrer-Policy": "same-origin",
    "X-Robots-Tag": "noindex",
}

# Files beside the index: (name, bytes, content type).
LINKED = [
    ("harbour.css", "main::before { content: '⚓'; }\n".encode(), "text/css; charset=utf-8"),
    ("harbour-2.js", "const anchor = '⚓';\n".encode(), "text/javascript; charset=utf-8"),
    ("harbour_feed.xsl", b'<xsl:stylesheet version="1.0" '
     b'xmlns:xsl="http://www.w3.org/1999/XSL/Transform"/>\n', "application/xml"),
    ("vela_opensearch.xml", b'<OpenSearchDescription '
     b'xmlns="http://a9.com/-/spec/opensearch/1.1/"/>\n',
     "application/opensearchdescription+xml"),
]
DENIED = {"other.xml": b"<secret/>", "harbour.css.bak": b"secret", ".css": b"secret",
          "notes.txt": b"secret", "logs/searches.css": b"secret"}


class ServerTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.place = Place()
        cls.addClassCleanup(cls.place.remove)
        # The index folder is a link, as it is where new indexes are put in place by a rename.
        cls.place.folder("indexes")
        first = cls.prepare("indexes/first")
        cls.index = cls.place.root / "search"
        cls.index.symlink_to(first)
        cls.log = cls.place.folder("indexes/first/logs") / "searchwords.log"
        for name, content in DENIED.items():
            (cls.index / name).write_bytes(content)
        # The same index for the program run by hand, with a log of its own.
        cls.by_hand = cls.prepare("by_hand")
        (cls.by_hand / "logs").mkdir()
        template = cls.place.root / "other.html"
        template.write_text("<html><body>OTHER INDEX <!--VELASEARCH--></body></html>\n")
        cls.other = cls.place.build_index("other", "--template", template)
        cls.server = Server(START[SERVER], cls.place.folder("server"), cls.place.site, cls.index)
        cls.addClassCleanup(cls.server.stop)

    @classmethod
    def prepare(cls, name):
        index = cls.place.build_index(name)
        # No search time on the page, so that two answers can be equal to the last byte.
        change_settings(index, Timing=0, Logging=1, UseAutoComplete=1)
        (index / "vela_autocomplete.vdat").write_text(
            "harbour\nlighthouse\nlight of the harbour\nCafé at the harbour\n", encoding="utf-8")
        for file, content, _ in LINKED:
            (index / file).write_bytes(content)
        return index

    def ask(self, method, address, content_type=None, body=b"", chunked=False):
        connection = http.client.HTTPConnection("127.0.0.1", self.server.port, timeout=60)
        try:
            headers = {} if content_type is None else {"Content-Type": content_type}
            if method == "POST" and not chunked:
                headers["Content-Length"] = str(len(body))
            elif chunked:
                headers["Transfer-Encoding"] = "chunked"
                body = [body[:5], body[5:]]
            connection.request(method, address, body or None, headers, encode_chunked=chunked)
            answer = connection.getresponse()
            return answer, answer.read()
        finally:
            connection.close()

    def search(self, method, query, content_type=None, body=b"", **options):
        return self.ask(method, SEARCH + ("?" + query if query else ""), content_type, body,
                        **options)

    def assert_from_program(self, answer, page, by_hand):
        _, header, expected = by_hand
        self.assertEqual(answer.status, 200)
        self.assertEqual("Content-type: " + answer.headers["Content-Type"], header.decode())
        self.assertEqual(page, expected)
        self.assert_headers(answer, "no-cache")

    def assert_headers(self, answer, cache_control):
        if SERVER == "demo":  # whose configuration is only for trying out
            return
        for name, value in HEADERS.items():
            self.assertEqual(answer.headers.get_all(name), [value])
        self.assertEqual(answer.headers.get_all("Cache-Control"), [cache_control])

    def test_answers_are_those_of_a_run_by_hand(self):
        for log in (self.log, self.by_hand / "logs/searchwords.log"):
            log.unlink(missing_ok=True)
        for what, method, query, content_type, body in REQUESTS:
            with self.subTest(what):
                answer, page = self.search(method, query, content_type, body)
                by_hand = run_by_hand(self.by_hand, method, query, content_type, body)
                self.assertEqual(by_hand[0], 0)
                self.assert_from_program(answer, page, by_hand)
        # The searches were logged, with the visitor's address, by the server's user.
        lines = [re.sub(rb"^\S+, \S+, |Time = [\d.]+", b"", path.read_bytes(), flags=re.M)
                 for path in (self.log, self.by_hand / "logs/searchwords.log")]
        self.assertEqual(*lines)
        self.assertIn(b'127.0.0.1, "seals", Matches = 1, AND', lines[0])
        if SERVER_USER is not None and SERVER != "demo":
            self.assertEqual(pwd.getpwuid(os.stat(self.log).st_uid).pw_name, SERVER_USER)

    def test_bad_requests_get_the_program_s_message(self):
        for what, method, query, content_type, body in BAD_REQUESTS:
            with self.subTest(what):
                answer, page = self.search(method, query, content_type, body)
                by_hand = run_by_hand(self.by_hand, method, query, content_type, body)
                self.assertEqual(by_hand[0], 1)
                self.assertEqual(by_hand[2], b"<H3>MIME content type error</H3>\n")
                self.assert_from_program(answer, page, by_hand)

    def test_head_has_the_header_alone(self):
        answer, page = self.search("HEAD", "vela_query=harbour")
        _, header, _ = run_by_hand(self.by_hand, "HEAD", "vela_query=harbour")
        self.assertEqual(answer.status, 200)
        self.assertEqual("Content-type: " + answer.headers["Content-Type"], header.decode())
        self.assertEqual(page, b"")

    def test_other_methods_are_refused(self):
        for method in ("PUT", "DELETE"):
            answer, page = self.search(method, "vela_query=harbour")
            if REFUSES_METHOD[SERVER]:
                self.assertEqual(answer.status, REFUSES_METHOD[SERVER])
            else:
                self.assertEqual(page, b"<H3>Request method error</H3>\n")

    def test_a_visitor_cannot_choose_the_index(self):
        chosen = subprocess.run([self.by_hand / "search.cgi", "/I", self.other],
                                env={"REQUEST_METHOD": "GET"}, capture_output=True, check=True)
        self.assertIn(b"OTHER INDEX", chosen.stdout)
        for query in choosing_another_index(self.other):
            with self.subTest(query=query):
                answer, page = self.search("GET", query)
                self.assertNotIn(b"OTHER INDEX", page)
                # Some servers refuse a NUL themselves.
                if "%00" not in query or answer.status == 200:
                    self.assert_from_program(answer, page, run_by_hand(self.by_hand, query=query))

    def test_a_body_in_pieces_of_unknown_length(self):
        answer, page = self.search("POST", "", FORM, b"vela_query=seals", chunked=True)
        if REFUSES_UNKNOWN_LENGTH[SERVER]:
            self.assertEqual(answer.status, REFUSES_UNKNOWN_LENGTH[SERVER])
        else:
            self.assert_from_program(
                answer, page, run_by_hand(self.by_hand, "POST", "", FORM, b"vela_query=seals"))

    def test_requests_have_a_limit(self):
        answer, page = self.search("GET", "vela_query=" + "harbour+" * 5000)
        if REFUSES_LONG_ADDRESS[SERVER]:
            self.assertEqual(answer.status, REFUSES_LONG_ADDRESS[SERVER])
        else:
            self.assert_from_program(answer, page, run_by_hand(
                self.by_hand, query="vela_query=" + "harbour+" * 5000))
        if REFUSES_LARGE_BODY[SERVER]:
            try:
                answer, _ = self.search("POST", "", FORM, b"vela_query=" + b"seals+" * 30000)
            except (BrokenPipeError, ConnectionResetError):
                return  # refused before the body was sent
            self.assertEqual(answer.status, REFUSES_LARGE_BODY[SERVER])

    def test_linked_files_are_delivered(self):
        for name, content, content_type in LINKED:
            with self.subTest(name):
                answer, body = self.ask("GET", "/search/" + name)
                self.assertEqual(answer.status, 200)
                self.assertEqual(body, content)
                self.assertEqual(answer.headers["Content-Type"], content_type)
                self.assert_headers(answer, "max-age=3600")
        for path in self.by_hand.glob("vela_*.[cjx]s*"):  # what vela_index wrote
            answer, body = self.ask("GET", "/search/" + path.name)
            self.assertEqual((answer.status, body), (200, path.read_bytes()), path.name)
        answer, _ = self.ask("GET", "/search/missing.css")
        self.assertEqual(answer.status, 404)

    def test_nothing_else_of_the_index_folder_is_delivered(self):
        linked = {name for name, _, _ in LINKED} | {"search.cgi"}
        names = [path.relative_to(self.index).as_posix() for path in self.index.rglob("*")]
        names = [name for name in names if name not in linked
                 and ("/" in name or not name.endswith((".css", ".js", ".xsl")))]
        names += list(DENIED)  # whatever rglob thinks of links and hidden files
        self.assertIn("settings.vdat", names)
        self.assertIn("logs/searches.css", names)
        for name in sorted(set(names)):
            path = self.index / name
            content = path.read_bytes() if path.is_file() else b""
            for disguise in DISGUISES:
                with self.subTest(disguise.format(name)):
                    answer, body = self.ask("GET", disguise.format(name))
                    self.assertIn(answer.status, (400, 403, 404))
                    if content:
                        self.assertNotIn(content[:40], body)
        for address in ("/search/logs/", "/search/search.cgi/"):
            answer, _ = self.ask("GET", address)
            self.assertIn(answer.status, (403, 404), address)
        answer, _ = self.ask("GET", "/search/.")  # some servers read it as the folder
        self.assertIn(answer.status, (301, 403, 404))

    def test_other_spellings_lead_nowhere(self):
        for address in ("/search/SEARCH.CGI", "/search/Search.cgi", "/search/search.cgi.",
                        "/search/search.cgi%20", "/search/search.cgi%0a", "/search/harbour.css%0a",
                        "/search/vela_opensearch.xml%0a", "/search/harbour.css%20"):
            with self.subTest(address):
                answer, body = self.ask("GET", address + "?vela_query=harbour")
                self.assertIn(answer.status, (400, 403, 404))
                self.assertNotIn(b"vela_searchform", body)

    def test_the_site_is_served(self):
        answer, body = self.ask("GET", "/walks/cliffs.html")
        self.assertEqual(answer.status, 200)
        self.assertEqual(body, (self.place.site / "walks/cliffs.html").read_bytes())

    def test_the_folder_leads_to_the_search(self):
        for address in ("/search", "/search/"):
            for query in ("", "?vela_query=steep+cliffs&vela_and=1"):
                with self.subTest(address=address, query=query):
                    answer, _ = self.ask("GET", address + query)
                    self.assertEqual(answer.status, 301)
                    # Without "http://": the visitor may have come to a balancer by https.
                    self.assertEqual(answer.headers["Location"], SEARCH + query)

    def test_searches_at_one_time_get_their_own_answers(self):
        queries = ["lighthouse", "harbour", "seals", "dogs", "crème", "steep", "spring", "maps"] * 5
        expected = {query: run_by_hand(self.by_hand, "POST", "", FORM,
                                       b"vela_query=" + query.encode())[2] for query in queries}
        self.assertEqual(len(set(expected.values())), 8)
        with concurrent.futures.ThreadPoolExecutor(len(queries)) as pool:
            answers = pool.map(lambda query: self.search(
                "POST", "", FORM, b"vela_query=" + query.encode())[1], queries)
            for query, page in zip(queries, answers):
                self.assertEqual(page, expected[query], query)

    def test_a_new_index_answers_at_once(self):
        if SERVER == "demo":
            self.skipTest("the demo serves the folder that the link led to")
        first = self.index.readlink()
        self.addCleanup(self.link_index, first)
        self.link_index(self.place.build_index("indexes/second", site=self.new_site()))
        _, page = self.search("GET", "vela_query=puffin")
        self.assertIn(b"/puffins.html", page)

    def test_an_index_folder_that_holds_generations(self):
        """As where it is the root of a mounted file system: web servers follow links to its files."""
        if SERVER == "demo":
            self.skipTest("the demo serves the folder that the link led to")
        volume = self.place.root / "indexes/volume"
        (volume / ".generations").mkdir(parents=True)
        (volume / ".generations/current").symlink_to("none")  # a folder with it keeps to them
        first = self.index.readlink()
        self.addCleanup(self.link_index, first)
        for run, site in enumerate((self.place.site, self.new_site())):
            self.place.build_index("indexes/volume", "--program", BIN / "vela_search", site=site)
            change_settings(volume, Timing=0)
            if run == 0:
                self.link_index(volume)
            query = "vela_query=" + ("harbour", "puffin")[run]
            answer, page = self.search("GET", query)
            self.assert_from_program(answer, page, run_by_hand(volume, query=query))
            self.assertIn((b"/walks/cafe.html", b"/puffins.html")[run], page)
        self.assertTrue((volume / "search.cgi").is_symlink())
        answer, body = self.ask("GET", "/search/vela_search.css")
        self.assertEqual((answer.status, body), (200, (volume / "vela_search.css").read_bytes()))
        for name in ("settings.vdat", ".generations/current/vela_search.css",
                     ".generations/current/search.cgi", ".generations/1/settings.vdat"):
            answer, _ = self.ask("GET", "/search/" + name)
            self.assertIn(answer.status, (403, 404), name)

    def link_index(self, folder):
        new = self.place.root / "search.new"
        new.symlink_to(folder)
        new.rename(self.index)

    def new_site(self):
        site = self.place.folder("new_site")
        (site / "puffins.html").write_text(
            "<html><head><title>Puffin season</title></head><body>A puffin at last.</body></html>")
        return site


if __name__ == "__main__":
    SERVER = sys.argv.pop(1)
    unittest.main()
