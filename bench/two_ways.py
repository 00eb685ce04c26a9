#!/usr/bin/env python3
"""Indexes real sites twice, as a folder and as a web server shows it, and compares what was found.

    bench/two_ways.py [--build build/release] [--corpora DIR] [--results DIR] [SITE...]

A site is the HTML of a Debian package, served by nginx on this machine. It is indexed

- as a folder,
- by a crawl from its first page,
- by a crawl that has a sitemap of the folder's pages besides,
- by a list of the folder's addresses, on standard input.

Every page that one way has and another has not is explained: a page that no link leads to is told so
by a reader of links of its own, which knows nothing of the indexer. What nothing explains is an error,
and so are searches that are answered in two ways. Needs `scripts/install_packages.sh bench site`.
"""

import argparse
import collections
import gzip
import hashlib
import html
import json
import os
import posixpath
import random
import re
import shutil
import signal
import socket
import subprocess
import sys
import time
import urllib.parse
import xml.etree.ElementTree
from dataclasses import dataclass, field
from pathlib import Path

from measure import cgi, circumstances, markdown_table, run_timed

HERE = Path(__file__).resolve().parent
CONNECTIONS = 8
WAYS = ("folder", "crawl", "sitemap", "list")
NO_LINK = "no link leads there"
READ_AND_LEFT_OUT = {"copy", "equal", "similar", "refresh", "noindex", "no_text"}
UNEXPLAINED = "UNEXPLAINED"


@dataclass(frozen=True)
class Site:
    package: str
    root: str      # of the site in the package
    start: str = ""  # the first page, below root; "": what the server has for the folder


SITES = [
    Site("git-doc", "usr/share/doc/git-doc", "git.html"),
    Site("python3.11-doc", "usr/share/doc/python3.11/html", "index.html"),
    Site("sqlite3-doc", "usr/share/doc/sqlite3"),
    Site("postgresql-doc-15", "usr/share/doc/postgresql-doc-15/html", "index.html"),
    Site("apache2-doc", "usr/share/doc/apache2-doc/manual"),
    Site("linux-doc-6.1", "usr/share/doc/linux-doc-6.1/html"),
    Site("libboost1.81-doc", "usr/share/doc/libboost1.81-doc", "doc/html/index.html"),
    Site("openjdk-17-doc", "usr/share/doc/openjdk-17-jre-headless/api"),
]


# ---- The site and its server


def unpack(site, corpora):
    """The folder of a site: what its package has there, links followed, packed pages unpacked."""
    folder = corpora / "sites" / site.package
    if folder.exists():
        return folder
    packages = corpora / "packages"
    packages.mkdir(parents=True, exist_ok=True)
    if not list(packages.glob(f"{site.package}_*.deb")):
        subprocess.run(["apt-get", "download", "-qq", site.package], cwd=packages, check=True)
    unpacked = corpora / "sites" / "unpacked"
    shutil.rmtree(unpacked, ignore_errors=True)
    (package,) = packages.glob(f"{site.package}_*.deb")
    subprocess.run(["dpkg-deb", "-x", package, unpacked], check=True)
    # Links inside of the package are files of the site, too; those that lead out of it are none.
    for path in sorted(unpacked.rglob("*")):
        if path.is_symlink():
            target = Path(os.path.realpath(path))
            path.unlink()
            if target.is_file() and unpacked.resolve() in target.parents:
                shutil.copy2(target, path)
    for packed in list(unpacked.rglob("*.html.gz")):
        packed.with_suffix("").write_bytes(gzip.decompress(packed.read_bytes()))
        os.utime(packed.with_suffix(""), (packed.stat().st_mtime,) * 2)
        packed.unlink()
    shutil.move(unpacked / site.root, folder)
    shutil.rmtree(unpacked)
    return folder


class Nginx:
    """Serves a folder on a free port of this machine, as a site's owner would: no listings."""

    def __init__(self, folder, work):
        self.work = work
        self.log = work / "access.log"
        work.mkdir(parents=True, exist_ok=True)
        with socket.socket() as probe:
            probe.bind(("127.0.0.1", 0))
            self.port = probe.getsockname()[1]
        self.origin = f"http://127.0.0.1:{self.port}"
        program = shutil.which("nginx", path=os.environ["PATH"] + ":/usr/sbin")
        if program is None:
            sys.exit("nginx is missing: scripts/install_packages.sh site")
        (work / "nginx.conf").write_text(f"""
daemon off; pid {work}/nginx.pid; error_log {work}/error.log; worker_processes 1;
{"user root;" if os.getuid() == 0 else ""}
events {{ worker_connections 64; }}
http {{
  include /etc/nginx/mime.types; default_type application/octet-stream;
  log_format one '$status $request_uri'; access_log {self.log} one;
  client_body_temp_path {work}; proxy_temp_path {work}; fastcgi_temp_path {work};
  uwsgi_temp_path {work}; scgi_temp_path {work};
  server {{
    listen 127.0.0.1:{self.port}; root {folder}; autoindex off; index index.html;
    location = /sitemap.xml {{ root {work}; }}
  }}
}}
""")
        self.process = subprocess.Popen([program, "-p", work, "-c", work / "nginx.conf"],
                                        stderr=subprocess.DEVNULL, start_new_session=True)
        for _ in range(200):
            try:
                socket.create_connection(("127.0.0.1", self.port)).close()
                return
            except OSError:
                time.sleep(0.05)
        sys.exit("nginx does not start: " + (work / "error.log").read_text())

    def answers(self):
        """Status -> how many answers since the last call."""
        self.process.send_signal(signal.SIGUSR1)  # opens the log again, so that it is all there
        statuses = collections.Counter(line.split()[0]
                                       for line in self.log.read_text().splitlines())
        self.log.write_text("")
        return statuses

    def stop(self):
        self.process.send_signal(signal.SIGQUIT)
        self.process.wait()


# ---- Which pages links lead to, told without the indexer


NO_MARKUP = re.compile(r"<!--.*?-->|<(script|style)\b.*?</\1\s*>", re.S | re.I)
TAG = re.compile(r"""<(a|area|base|frame|iframe|link|meta)\b((?:[^>"']|"[^"]*"|'[^']*')*)>""", re.I)
ATTRIBUTE = re.compile(r"""([\w-]+)\s*=\s*(?:"([^"]*)"|'([^']*)'|([^\s"'>]+))""")
PLACES = {"a": "href", "area": "href", "frame": "src", "iframe": "src"}
LINKED_PAGES = {"next", "prev", "canonical", "alternate"}


def links_of(text):
    """The addresses that a page leads to, as they are written, and its base address."""
    found = set()
    base = ""
    for tag, inside in TAG.findall(NO_MARKUP.sub("", text)):
        tag = tag.lower()
        attributes = {name.lower(): html.unescape(a or b or c)
                      for name, a, b, c in ATTRIBUTE.findall(inside)}
        relations = set(attributes.get("rel", "").lower().split())
        if tag == "base":
            base = base or attributes.get("href", "")
        elif tag in PLACES and "nofollow" not in relations:
            found.add(attributes.get(PLACES[tag]))
        elif tag == "link" and relations & LINKED_PAGES and "stylesheet" not in relations:
            found.add(attributes.get("href"))
        elif tag == "meta" and attributes.get("http-equiv", "").lower() == "refresh":
            target = re.search(r"url\s*=\s*['\"]?([^'\"]*)", attributes.get("content", ""), re.I)
            found.add(target and target.group(1))
        elif tag == "meta" and attributes.get("name", "").lower() == "robots":
            if "nofollow" in attributes.get("content", "").lower():
                return set(), base
    return {link.strip().partition("#")[0] for link in found if link}, base


def file_of(folder, path):
    """The file that the server has for the path of an address, as its path below the folder."""
    if not path.isprintable() or "\0" in path:
        return None
    file = folder / path.lstrip("/")
    try:
        if file.is_dir():
            file = file / "index.html"
        return file.relative_to(folder).as_posix() if file.is_file() else None
    except OSError:  # a name longer than any file's
        return None


def reached_files(folder, start):
    """The files that links lead to from the first page on, over any number of pages."""
    first = file_of(folder, start)
    reached = {first}
    waiting = [first]
    while waiting:
        file = waiting.pop()
        if not file.endswith((".html", ".htm", ".xhtml")):
            continue
        raw = (folder / file).read_bytes()
        try:
            text = raw.decode("utf-8")
        except UnicodeDecodeError:
            text = raw.decode("iso-8859-1")
        links, base = links_of(text)
        here = urllib.parse.urljoin("http://site/" + urllib.parse.quote(file), base)
        for link in links:
            try:
                target = urllib.parse.urlsplit(urllib.parse.urljoin(here, link))
            except ValueError:
                continue
            if target.scheme != "http" or target.netloc != "site":
                continue
            found = file_of(folder, posixpath.normpath(urllib.parse.unquote(target.path) or "/"))
            if found is not None and found not in reached:
                reached.add(found)
                waiting.append(found)
    return reached


# ---- One way to index the site


@dataclass
class Way:
    """One run of vela_index, its index and what it said."""

    folder: Path
    seconds: float = 0
    cpu_seconds: float = 0
    peak_mb: float = 0
    answers: collections.Counter = field(default_factory=collections.Counter)
    reasons: dict = field(default_factory=dict)  # file -> why it is no page
    pages: dict = field(default_factory=dict)    # file -> its address

    @property
    def index(self):
        return self.folder / "index"

    def bytes(self):
        return sum(file.stat().st_size for file in self.index.glob("*.vdat"))

    def files(self):
        """The files that it has read, copies of others among them, whose links count as well."""
        return sorted(self.pages.keys() | {name for name, why in self.reasons.items()
                                           if why in READ_AND_LEFT_OUT})

    def contents(self):
        """What the index says of pages, but for how and when it was made."""
        return {file.name: hashlib.sha256(file.read_bytes()).hexdigest()
                for file in self.index.glob("vela_*.vdat")}


def path_of(address):
    return urllib.parse.unquote(urllib.parse.urlsplit(address).path)


def run_way(folder, binaries, site, server, arguments, stdin=None):
    """Runs vela_index with `arguments` for `site`, a folder, and reads what it made."""
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
    way = Way(folder)
    server.answers()
    command = [str(binaries / "vela_index"), "--quiet", "--out", str(way.index),
               "--report", str(folder / "report.jsonl"), *map(str, arguments)]
    way.cpu_seconds, way.seconds, peak_kb = run_timed(command, stdin)
    way.peak_mb = peak_kb / 1024
    way.answers = server.answers()
    for line in (folder / "report.jsonl").read_text(encoding="utf-8").splitlines():
        entry = json.loads(line)
        if "reason" in entry:
            name = file_of(site, path_of(entry["path"])) or entry["path"]
            way.reasons[name] = entry["reason"]
    for line in (way.index / "vela_pagedata.vdat").read_bytes().split(b"\n")[:-1]:
        address = line.split(b"|")[0].decode("utf-8")
        name = file_of(site, path_of(address)) or address
        if urllib.parse.urlsplit(address).query:
            name = address
        if name in way.pages:
            sys.exit(f"{folder}: {name} is there twice, as {way.pages[name]} and {address}")
        way.pages[name] = address
    shutil.copy2(binaries / "vela_search", way.index / "search.cgi")
    return way


def crawl_configuration(folder, start, sitemap):
    """Its file. `start` may be None, for a list of addresses. Names that begin with a dot are hidden
    in a folder, and there is a manual with a page called .html."""
    folder.mkdir(parents=True, exist_ok=True)
    config = folder / "vela_index.toml"
    first = "" if start is None else f'start = ["{start}"]\n'
    config.write_text(f'[crawl]\n{first}state = "state"\ndelay = 0\n'
                      f"connections = {CONNECTIONS}\nexclude = ['.*', '*/.*']\n"
                      f"find_sitemaps = {str(sitemap).lower()}\n")
    return config


# ---- Comparing


def ask(way, words, binaries):
    """(score, file or address, what is shown of it) of the first results. Those of one score come in
    the order of pages, which is another where the site has a page at "/" and not at "/index.html":
    here they come in the order of names."""
    most = 100
    request = cgi(way.index, way.index / "search.cgi",
                  f"vela_query={urllib.parse.quote_plus(words)}&vela_xml=1&vela_per_page={most}")
    answer = xml.etree.ElementTree.fromstring(request.run().partition(b"\n\n")[2])
    told = subprocess.run([binaries / "vela_inspect", "--json", "--limit", "100000", "--explain", words,
                           way.index], stdout=subprocess.PIPE, check=False)
    scores = {page["address"]: page["score"] for page in json.loads(told.stdout)["results"]}
    names = {address: name for name, address in way.pages.items()}
    found = []
    for item in answer.iter("item"):
        address = item.findtext("link").split("#")[0]
        found.append((-scores[address], names[address],
                      [part.text for part in item if part.tag != "link"]))
    if [one[0] for one in found] != sorted(one[0] for one in found):
        sys.exit(f"{way.index}: not in the order of scores: {words}")
    if len(found) == most:  # more may have the score of the last one
        found = [one for one in found if one[0] != found[-1][0]]
    return sorted(found)


def choose_searches(way, count=14):
    """Two words of titles, words and a phrase of it, drawn with a fixed seed."""
    draw = random.Random(7)
    titles = []
    for line in (way.index / "vela_pagedata.vdat").read_bytes().decode("utf-8").splitlines():
        words = re.findall(r"[A-Za-z]{3,}", line.split("|")[1])
        if len(words) >= 2:
            titles.append(words)
    chosen = draw.sample(sorted(titles), min(count, len(titles)))
    forms = ("{0} {1}", '"{0} {1}"', "{0}", "{1}", "{0} -{1}", "{1:.4}*", "+{0} +{1}")
    return [forms[number % len(forms)].format(*words[:2]) for number, words in enumerate(chosen)]


def different_searches(one, other, searches, binaries):
    return [words for words in searches
            if ask(one, words, binaries) != ask(other, words, binaries)]


def missing(have, want, reached=None):
    """Why pages of `want` are not in `have`: reason -> files. `reached`: those that a crawl can see."""
    reasons = collections.defaultdict(list)
    for name in sorted(want.pages.keys() - have.pages.keys()):
        if name in have.reasons:
            reasons[have.reasons[name]].append(name)
        elif reached is not None and name not in reached:
            reasons[NO_LINK].append(name)
        else:
            reasons[UNEXPLAINED].append(name)
    return dict(reasons)


def compare_site(site, folder, binaries, work):
    """All four ways of a site, as a record for the tables."""
    shutil.rmtree(work, ignore_errors=True)
    server = Nginx(folder, work / "server")
    try:
        base = ["--base-url", server.origin + "/"]
        start = f"{server.origin}/{site.start}"
        ways = {"folder": run_way(work / "folder", binaries, folder, server,
                                  ["--site", folder, *base])}
        addresses = [f"{server.origin}/{urllib.parse.quote(name)}" for name in ways["folder"].files()]
        for name in ("crawl", "sitemap"):
            if name == "sitemap":
                (work / "server" / "sitemap.xml").write_text(
                    '<urlset xmlns="http://www.sitemaps.org/schemas/sitemap/0.9">'
                    + "".join(f"<url><loc>{html.escape(one)}</loc></url>" for one in addresses)
                    + "</urlset>", encoding="utf-8")
            config = crawl_configuration(work / (name + "-config"), start, name == "sitemap")
            ways[name] = run_way(work / name, binaries, folder, server, ["--config", config])
        config = crawl_configuration(work / "list-config", None, False)
        ways["list"] = run_way(work / "list", binaries, folder, server,
                               ["--config", config, *base, "--list", "-"],
                               stdin="\n".join(addresses) + "\n")
        # The folder again, with the files that the crawl found: nothing may be different then.
        ways["same"] = run_way(work / "same", binaries, folder, server,
                               ["--site", folder, *base, "--list", "-"],
                               stdin="\n".join(ways["crawl"].files()) + "\n")
    finally:
        server.stop()

    reached = reached_files(folder, site.start)
    whole, crawl = ways["folder"], ways["crawl"]
    searches = choose_searches(crawl)
    record = {"site": site.package,
              "reached": len(reached & whole.pages.keys()),
              "ways": {name: {"pages": len(way.pages), "seconds": round(way.seconds, 2),
                              "cpu_seconds": round(way.cpu_seconds, 2),
                              "peak_mb": round(way.peak_mb), "index_mb": way.bytes() / 1e6,
                              "answers": dict(way.answers)} for name, way in ways.items()},
              "differences": {
                  "in the folder, not crawled": missing(crawl, whole, reached),
                  "crawled, not in the folder": missing(whole, crawl),
                  "in the folder, not with a sitemap": missing(ways["sitemap"], whole),
                  "with a sitemap, not in the folder": missing(whole, ways["sitemap"]),
                  "in the folder, not by the list": missing(ways["list"], whole),
                  "by the list, not in the folder": missing(whole, ways["list"]),
                  "crawled, not in the folder's list": missing(ways["same"], crawl)},
              "other order": list(crawl.pages) != list(ways["same"].pages),
              "other bytes": sorted(name for name, digest in crawl.contents().items()
                                    if ways["same"].contents().get(name) != digest),
              "searches": len(searches),
              "other answers": different_searches(crawl, ways["same"], searches, binaries)
              + different_searches(whole, ways["list"], searches, binaries)}
    return record


# ---- Telling


def report(result):
    rows = []
    for record in result["sites"]:
        ways = record["ways"]
        crawl = ways["crawl"]
        rows.append([record["site"], *(f"{ways[name]['pages']:,}" for name in WAYS),
                     f"{sum(crawl['answers'].values()):,}", f"{ways['folder']['seconds']:.1f}",
                     f"{crawl['seconds']:.1f}", f"{crawl['cpu_seconds']:.1f}",
                     f"{crawl['peak_mb']:,}", f"{crawl['index_mb']:.1f}"])
    parts = ["# Sites as folders and as crawls", "",
             f"{result['date']}, commit {result['commit']}, {result['machine']}, load "
             f"{result['load']}. `bench/two_ways.py`", "",
             markdown_table(["pages", "folder", "crawl", "crawl with sitemap", "list of addresses",
                             "requests of the crawl", "s, folder", "s, crawl", "CPU s, crawl",
                             "peak MB, crawl", "MB of index"], rows), "",
             "## What is different, and why", ""]
    rows = [[record["site"], what, why, f"{len(names):,}",
             ", ".join(f"`{name}`" for name in names[:3]) + (", ..." if len(names) > 3 else "")]
            for record in result["sites"]
            for what, reasons in record["differences"].items()
            for why, names in sorted(reasons.items())]
    parts += [markdown_table(["site", "pages", "why", "how many", "such as"], rows), "",
              "## The index and its answers", "",
              markdown_table(["site", "files of the index with other bytes", "searches",
                              "answered otherwise"],
                             [[record["site"], "in another order" if record["other order"] else
                               ", ".join(record["other bytes"]) or "none",
                               record["searches"], ", ".join(record["other answers"]) or "none"]
                              for record in result["sites"]])]
    return "\n".join(parts) + "\n"


def faults(record):
    """What must not be: lines."""
    found = [f"{record['site']}: {what}: {name}"
             for what, reasons in record["differences"].items()
             for name in reasons.get(UNEXPLAINED, ())]
    if not record["other order"]:
        found += [f"{record['site']}: {name} has other bytes" for name in record["other bytes"]]
    return found + [f"{record['site']}: other answers to {words}"
                    for words in record["other answers"]]


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--build", type=Path, default=HERE.parent / "build/release")
    parser.add_argument("--corpora", type=Path,
                        default=os.environ.get("VELA_CORPORA", HERE.parent / "build/corpora"))
    parser.add_argument("--results", type=Path, default=HERE / "results")
    parser.add_argument("sites", nargs="*", metavar="SITE",
                        help="of " + ", ".join(site.package for site in SITES))
    arguments = parser.parse_args()
    arguments.corpora = arguments.corpora.resolve()
    result = {**circumstances(), "sites": []}
    for site in SITES:
        if arguments.sites and site.package not in arguments.sites:
            continue
        folder = unpack(site, arguments.corpora)
        print(f"{site.package} ...", file=sys.stderr, flush=True)
        result["sites"].append(compare_site(site, folder, arguments.build.resolve() / "bin",
                                            arguments.corpora / "two_ways" / site.package))
    text = report(result)
    print(text)
    if not arguments.sites:
        (arguments.results / "two_ways.json").write_text(json.dumps(result, indent=1) + "\n")
        (arguments.results / "two_ways.md").write_text(text)
    wrong = [line for record in result["sites"] for line in faults(record)]
    print("\n".join(wrong), file=sys.stderr)
    return bool(wrong)


if __name__ == "__main__":
    sys.exit(main())
