"""What the system tests share: the programs, building an index, one request, reading its page."""

import html.parser
import os
import pathlib
import re
import shutil
import subprocess
import urllib.parse

PROJECT = pathlib.Path(__file__).resolve().parents[3]
BIN = pathlib.Path(os.environ.get("VELA_BIN", PROJECT / "build/release/bin"))
WORK = pathlib.Path(os.environ.get("VELA_WORK", PROJECT / "build/system_tests"))
REAL_CONTENT = pathlib.Path(
    os.environ.get("VELA_REAL_CONTENT", PROJECT / "build/real_content/html"))
SAMPLE_SITE = PROJECT / "examples/library/site"
SAMPLE_TEMPLATE = PROJECT / "examples/library/search_template.html"


def build_index(site, name, template="default", base_url="/"):
    """Indexes a folder and puts the search program beside the index, as on a server.

    Returns the index directory, with the program in it as search.cgi.
    """
    index = WORK / name
    shutil.rmtree(index, ignore_errors=True)
    index.parent.mkdir(parents=True, exist_ok=True)
    subprocess.run(
        [BIN / "vela_index", "--site", site, "--base-url", base_url, "--out", index,
         "--template", template],
        check=True, stdout=subprocess.DEVNULL)
    inspect(index)
    shutil.copy2(BIN / "vela_search", index / "search.cgi")
    return index


def inspect(index):
    """Fails where the inspector finds anything wrong with the index."""
    found = subprocess.run([BIN / "vela_inspect", index], capture_output=True, text=True)
    if found.returncode != 0:
        raise AssertionError(found.stdout[-4000:] + found.stderr)


def query_string(query, **parameters):
    return urllib.parse.urlencode({"vela_query": query, **parameters})


def run_cgi(index, query="", body=b"", **environment):
    """One request, as a web server makes it. Returns (exit status, header bytes, body bytes)."""
    variables = {
        "GATEWAY_INTERFACE": "CGI/1.1",
        "REQUEST_METHOD": "GET",
        "QUERY_STRING": query,
        "SCRIPT_NAME": "/search/search.cgi",
        "REMOTE_ADDR": "127.0.0.1",
        "PATH": "/usr/bin:/bin",
    }
    variables.update(environment)
    done = subprocess.run([index / "search.cgi"], input=body, env=variables, cwd=index,
                          capture_output=True, timeout=60)
    if done.stderr:
        raise AssertionError("on standard error: " + done.stderr.decode(errors="replace"))
    header, separator, page = done.stdout.partition(b"\n\n")
    if not separator:
        raise AssertionError(f"no header in {done.stdout[:200]!r}")
    return done.returncode, header, page


class _Results(html.parser.HTMLParser):
    """Collects (address, title) of each result block of a results page."""

    def __init__(self):
        super().__init__()
        self.results = []
        self._in_title = False
        self._in_link = False

    def handle_starttag(self, tag, attributes):
        attributes = dict(attributes)
        if tag == "div" and attributes.get("class") == "result_title":
            self._in_title = True
        elif tag == "a" and self._in_title:
            self.results.append([attributes.get("href"), ""])
            self._in_link = True

    def handle_data(self, data):
        if self._in_link:
            self.results[-1][1] += data

    def handle_endtag(self, tag):
        if tag == "a":
            self._in_title = self._in_link = False


def results_of(page):
    """The (address, title) pairs of a results page, in order. Addresses lose their parameters."""
    parser = _Results()
    parser.feed(page.decode("utf-8"))
    return [(address.partition("?")[0], title) for address, title in parser.results]


def search(index, query, **parameters):
    status, _, page = run_cgi(index, query_string(query, **parameters))
    if status != 0:
        raise AssertionError(f"exit status {status} for {query!r}")
    return results_of(page)


class _Title(html.parser.HTMLParser):
    def __init__(self):
        super().__init__()
        self.title = None
        self.noindex = False
        self._inside = False

    def handle_starttag(self, tag, attributes):
        attributes = dict(attributes)
        if tag == "title" and self.title is None:
            self._inside = True
            self.title = ""
        elif tag == "meta" and attributes.get("name", "").lower() == "robots":
            self.noindex |= "noindex" in attributes.get("content", "").lower()

    def handle_data(self, data):
        if self._inside:
            self.title += data

    def handle_endtag(self, tag):
        if tag == "title":
            self._inside = False


def titles_of(site):
    """The title of every HTML page of a folder that may be indexed: {address: title}."""
    titles = {}
    for path in sorted(site.rglob("*.html")):
        parser = _Title()
        parser.feed(path.read_text(encoding="utf-8"))
        if parser.title and not parser.noindex:
            titles["/" + path.relative_to(site).as_posix()] = " ".join(parser.title.split())
    return titles


def words_of(text):
    """The words of a title as somebody would type them, without marks between them."""
    return re.findall(r"\w+(?:[-.'’]\w+)*", text)


class _Text(html.parser.HTMLParser):
    def __init__(self):
        super().__init__()
        self.pieces = []
        self._hidden = 0

    def handle_starttag(self, tag, attributes):
        self._hidden += tag in ("script", "style")

    def handle_endtag(self, tag):
        self._hidden -= tag in ("script", "style")

    def handle_data(self, data):
        if not self._hidden:
            self.pieces.append(data)


def text_of(page):
    """The text of an HTML page, its pieces joined as they stand."""
    parser = _Text()
    parser.feed(page)
    return "".join(parser.pieces)
