#!/usr/bin/env python3
"""The search behind a real web server: answers are those of the program run by hand, and the
server gives away nothing of the index."""

import http.client
import os
import re
import shutil
import socket
import subprocess
import time
import unittest

import sample_library
import support

FORM = "application/x-www-form-urlencoded"
SEARCH = "/search/search.cgi"

# What is asked: (what, method, query string, content type, body).
REQUESTS = [
    ("one word", "GET", "vela_query=library", None, b""),
    ("two words, matching all", "GET", "vela_query=opening+hours&vela_and=1", None, b""),
    ("a phrase", "GET", "vela_query=%22reading+room%22", None, b""),
    ("an excluded word", "GET", "vela_query=library+-branch", None, b""),
    ("a wildcard", "GET", "vela_query=lighthouse*", None, b""),
    ("letters beyond ASCII", "GET", "vela_query=M%C3%A4rchenstunde", None, b""),
    ("the second page of many", "GET", "vela_query=library&vela_page=2&vela_per_page=5", None, b""),
    ("newest first", "GET", "vela_query=library&vela_sort=1", None, b""),
    ("markup in the query", "GET", "vela_query=%3Cscript%3Ealert(1)%3C/script%3E", None, b""),
    ("no parameters", "GET", "", None, b""),
    ("words without a parameter name", "GET", "/I+/etc", None, b""),
    ("a query beyond the longest", "GET", "vela_query=" + "library+" * 400, None, b""),
    ("a form sent as a body", "POST", "", FORM, b"vela_query=poetry+evening"),
    ("a long body", "POST", "", FORM, b"vela_query=" + b"chess+" * 5000),
    ("an XML answer", "GET", "vela_query=library&vela_xml=1", None, b""),
    ("categories, a date range and a fact", "GET",
     "vela_query=lighthouse&vela_cat%5B%5D=1&vela_cat%5B%5D=8&vela_datefrom=1%2F1%2F2025"
     "&vela_dateto=31%2F12%2F2025&price=10", None, b""),
    ("facts alone, as a form sends them", "POST", "", FORM,
     b"vela_query=&when=november&topics%5B%5D=0&topics%5B%5D=4"),
    ("a misspelt word", "GET", "vela_query=geneology", None, b""),
    ("completion", "GET", "vela_query=poe&vela_ac=1", None, b""),
    ("the settings", "GET", "vela_query=library&vela_xml=1&masternode=1", None, b""),
]
# Requests that cannot be decoded, and the message that says so.
BAD_REQUESTS = [
    ("another content type", "POST", "", "text/plain", b"vela_query=library",
     b"<H3>MIME content type error</H3>\n"),
    ("another method", "PUT", "vela_query=library", None, b"",
     b"<H3>Request method error</H3>\n"),
]

# What the server delivers of the index folder.
PUBLIC = {
    "vela_autocomplete.js": "text/javascript",
    "vela_autocomplete.css": "text/css",
    "vela_datepicker.js": "text/javascript",
    "vela_datepicker.css": "text/css",
    "vela_search.css": "text/css",
    "vela_search.js": "text/javascript",
    "vela_results.xsl": "application/xml",
    "vela_opensearch.xml": "application/opensearchdescription+xml",
}

# The one figure of a page that differs from run to run.
SECONDS = re.compile(rb"\b\d+\.\d{3}\b")


def free_port():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


class RealServer(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.index = sample_library.build_library("library")
        # Another program may take the free port before the server does.
        for _ in range(3):
            if cls.start(free_port()):
                return
            cls.tearDownClass()
        raise AssertionError((support.WORK / "server.log").read_text())

    @classmethod
    def start(cls, port):
        cls.port = port
        config = support.WORK / "lighttpd.conf"
        config.write_bytes(subprocess.run(
            [support.PROJECT / "scripts/lighttpd_config.sh", support.SAMPLE_SITE, cls.index,
             str(port)],
            check=True, stdout=subprocess.PIPE).stdout)
        program = shutil.which("lighttpd", path=os.environ["PATH"] + ":/usr/sbin")
        cls.log = open(support.WORK / "server.log", "wb")
        cls.server = subprocess.Popen([program, "-D", "-f", config], stderr=cls.log)
        while cls.server.poll() is None:
            time.sleep(0.05)
            try:
                socket.create_connection(("127.0.0.1", port)).close()
                return cls.server.poll() is None
            except OSError:
                pass
        return False

    @classmethod
    def tearDownClass(cls):
        cls.server.terminate()
        cls.server.wait()
        cls.log.close()

    def ask(self, method, address, content_type=None, body=b""):
        connection = http.client.HTTPConnection("127.0.0.1", self.port, timeout=60)
        headers = {} if content_type is None else {"Content-Type": content_type}
        connection.request(method, address, body or None, headers)
        answer = connection.getresponse()
        page = answer.read()
        connection.close()
        return answer, page

    def run_by_hand(self, method, query, content_type, body):
        environment = {"REQUEST_METHOD": method, "CONTENT_LENGTH": str(len(body))}
        if content_type is not None:
            environment["CONTENT_TYPE"] = content_type
        return support.run_cgi(self.index, query, body, **environment)

    def test_answers_are_those_of_a_direct_run(self):
        for what, method, query, content_type, body in REQUESTS:
            with self.subTest(what):
                answer, page = self.ask(method, SEARCH + ("?" + query if query else ""),
                                        content_type, body)
                status, header, expected = self.run_by_hand(method, query, content_type, body)
                self.assertEqual(status, 0)
                self.assertEqual(answer.status, 200)
                self.assertEqual(b"Content-type: " + answer.headers["Content-Type"].encode(),
                                 header)
                self.assertEqual(SECONDS.sub(b"0.000", page), SECONDS.sub(b"0.000", expected))
                if "vela_ac" not in query:
                    self.assertIn(b"</rss>" if b"xml" in header else b"</html>", page)

    def test_bad_requests_are_told_so(self):
        for what, method, query, content_type, body, message in BAD_REQUESTS:
            with self.subTest(what):
                _, page = self.ask(method, SEARCH + "?" + query, content_type, body)
                status, _, by_hand = self.run_by_hand(method, query, content_type, body)
                self.assertEqual(status, 1)
                self.assertEqual(by_hand, message)
                self.assertEqual(page, message)

    def test_the_search_finds_pages_that_the_server_has(self):
        _, page = self.ask("GET", SEARCH + "?vela_query=poetry+evening")
        results = support.results_of(page)
        self.assertTrue(results)
        for address, _ in results:
            answer, _ = self.ask("GET", address)
            self.assertEqual(answer.status, 200, address)

    def test_markup_in_a_query_stays_text(self):
        _, page = self.ask("GET", SEARCH + "?vela_query=%3Cscript%3Ealert(1)%3C/script%3E")
        self.assertNotIn(b"<script>alert", page)
        self.assertIn(b"&#60;script&#62;alert", page)

    def test_nothing_of_the_index_can_be_downloaded(self):
        self.ask("GET", SEARCH + "?vela_query=chess")  # so that there is a log to ask for
        self.assertTrue((self.index.parent / "searches.log").exists())
        files = [path.name for path in self.index.iterdir()
                 if path.is_file() and path.name != "search.cgi" and path.name not in PUBLIC]
        for name in ("settings.vdat", "vela_dictionary.vdat", "vela_spelling.vdat",
                     "search_template.html"):
            self.assertIn(name, files)
        for name in (*files, "../searches.log"):
            for address in ("/search/" + name, "/search//" + name, "/search/search.cgi/../" + name,
                            "/search/%2e/" + name):
                answer, page = self.ask("GET", address)
                self.assertIn(answer.status, (403, 404), address)
                self.assertNotIn((self.index / name).read_bytes()[:40] or b"-", page)

    def test_scripts_styles_and_the_description_are_delivered(self):
        for name, content_type in PUBLIC.items():
            with self.subTest(name):
                answer, content = self.ask("GET", "/search/" + name)
                self.assertEqual(answer.status, 200)
                self.assertEqual(answer.headers["Content-Type"].partition(";")[0], content_type)
                self.assertEqual(content, (self.index / name).read_bytes())

    def test_pictures_of_results_are_delivered(self):
        _, page = self.ask("GET", SEARCH + "?vela_query=&price=20")
        pictures = set(re.findall(rb'<img src="([^"]*)"', page))
        self.assertGreaterEqual(len(pictures), 5)
        for picture in pictures:
            answer, content = self.ask("GET", picture.decode())
            self.assertEqual(answer.status, 200, picture)
            self.assertEqual(answer.headers["Content-Type"], "image/svg+xml")
            self.assertIn(b"</svg>", content)

    def test_requests_at_one_time_get_their_own_answers(self):
        queries = ["library", "flood", "poetry", "seeds", "umbrella", "chess"] * 4
        connections = []
        for query in queries:
            connection = http.client.HTTPConnection("127.0.0.1", self.port, timeout=60)
            connection.request("GET", f"{SEARCH}?vela_query={query}")
            connections.append(connection)
        for query, connection in zip(queries, connections):
            page = connection.getresponse().read()
            connection.close()
            self.assertIn(f'value="{query}"'.encode(), page)
            self.assertTrue(support.results_of(page), query)


if __name__ == "__main__":
    unittest.main()
