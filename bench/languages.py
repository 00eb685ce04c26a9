#!/usr/bin/env python3
"""Measures how well the search finds in languages that are written without blanks between words.

    bench/languages.py CORPUS [--bin build/release/bin] [--off]

CORPUS is a folder that is filled once with the pages of Debian packages (apt-get download). Each
language is indexed and asked the questions of bench/questions/debian-*.txt. Shown for each: how many
questions have an answer among the first three results, how many find exactly the pages that hold
the text, how large the index is and how long indexing and a search take. --off measures without the
extensions.
"""
import argparse
import html
import os
import re
import statistics
import subprocess
import tempfile
import time
import unicodedata
from pathlib import Path
from urllib.parse import quote_plus

HERE = Path(__file__).resolve().parent
# The packages of a language, and the folders of theirs that become folders of the site.
SITES = {
    "ja": {
        "debian-reference-ja": ("usr/share/debian-reference", "reference"),
        "debian-faq-ja": ("usr/share/doc/debian/FAQ/ja", "faq"),
        "debian-policy-ja": ("usr/share/doc/debian-policy/ja/policy.html", "policy"),
    },
    "zh-cn": {
        "debian-reference-zh-cn": ("usr/share/debian-reference", "reference"),
        "debian-faq-zh-cn": ("usr/share/doc/debian/FAQ/zh-cn", "faq"),
    },
    "zh-tw": {"debian-reference-zh-tw": ("usr/share/debian-reference", "reference")},
}


def fetch(corpus, language):
    site = corpus / language
    if site.exists():
        return site
    for package, (folder, name) in SITES[language].items():
        with tempfile.TemporaryDirectory() as scratch:
            subprocess.run(["apt-get", "download", "-q", package], cwd=scratch, check=True,
                           capture_output=True)
            archive = next(Path(scratch).glob("*.deb"))
            subprocess.run(["dpkg-deb", "-x", archive, scratch + "/files"], check=True)
            (site / name).parent.mkdir(parents=True, exist_ok=True)
            subprocess.run(["cp", "-rL", f"{scratch}/files/{folder}", site / name], check=True)
    return site


def questions(language):
    path = HERE / "questions" / f"debian-{language}.txt"
    for line in path.read_text(encoding="utf-8").splitlines():
        if not line.startswith("#"):
            query, pages = line.split(" | ")
            yield query, pages.split()


def plain(text):
    """Text as it is compared to tell which pages hold a query: without blanks, folded."""
    return re.sub(r"[\s\u200b]+", "", unicodedata.normalize("NFKC", text)).lower()


def texts(site):
    """The visible text of every page, by its address without ending."""
    pages = {}
    for path in site.rglob("*.html"):
        text = path.read_text(encoding="utf-8", errors="replace")
        text = re.sub(r"<!--.*?-->|<(script|style)\b.*?</\1>", " ", text, flags=re.S)
        text = html.unescape(re.sub(r"<[^>]*>", " ", text))
        pages[str(path.relative_to(site))[: -len(".html")]] = plain(text)
    return pages


def build(binaries, site, work, config):
    """Indexes the site in the folder `work`; returns the index."""
    index = work / "index"
    (work / "site.toml").write_text(config, encoding="utf-8")
    subprocess.run([binaries / "vela_index", "--config", work / "site.toml", "--site", site,
                    "--base-url", "http://x.example/", "--out", index, "--quiet"],
                   check=True, capture_output=True)
    return index


def ask(binaries, index, query):
    environment = {
        "REQUEST_METHOD": "GET",
        "QUERY_STRING": f"vela_query={quote_plus(query)}&vela_xml=1&vela_per_page=1000",
        "SCRIPT_NAME": "/search.cgi",
        "PATH": os.environ["PATH"],
    }
    begin = time.perf_counter()
    answer = subprocess.run([binaries / "vela_search", "/I", index], env=environment,
                            capture_output=True, check=True).stdout.decode("utf-8", "replace")
    seconds = time.perf_counter() - begin
    links = re.findall(r"<item>.*?<link>([^<]*)</link>", answer, re.S)
    return [re.sub(r".*?example/|\.html.*", "", link) for link in links], seconds


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n", 1)[0])
    parser.add_argument("corpus", type=Path)
    parser.add_argument("--bin", type=Path, default=Path("build/release/bin"))
    parser.add_argument("--off", action="store_true", help="without the extensions")
    parser.add_argument("--missed", action="store_true", help="name the questions that fail")
    options = parser.parse_args()
    binaries = options.bin.resolve()
    print("language  questions  first  in three  exact  words of index  bytes  indexing  search")
    for language in ("ja", "zh-cn", "zh-tw"):
        site = fetch(options.corpus, language)
        pages = texts(site)
        with tempfile.TemporaryDirectory() as work:
            config = f"[search]\nextensions = {'false' if options.off else 'true'}\n"
            begin = time.perf_counter()
            index = build(binaries, site, Path(work), config)
            indexing = time.perf_counter() - begin
            first = three = exact = count = 0
            seconds = []
            for query, wanted in questions(language):
                found, _ = ask(binaries, index, query)
                seconds.append(min(ask(binaries, index, query)[1] for _ in range(5)))
                count += 1
                first += found[:1] != [] and found[0] in wanted
                is_near = any(page in wanted for page in found[:3])
                three += is_near
                words = [plain(word) for word in query.split()]
                holding = {page for page, text in pages.items() if any(w in text for w in words)}
                is_exact = set(found) == holding
                exact += is_exact
                if options.missed and not (is_near and is_exact):
                    print(f"  {query}: {found[:3]}, missing {sorted(holding - set(found))[:4]}, "
                          f"beside {sorted(set(found) - holding)[:4]}")
            words = sum(1 for _ in (index / "vela_dictionary.vdat").open("rb"))
            size = sum(f.stat().st_size for f in index.glob("*.vdat"))
            print(f"{language:8} {count:10} {first:6} {three:9} {exact:6} {words:15} {size:6} "
                  f"{indexing:8.2f}s {statistics.median(seconds) * 1000:6.2f}ms")


if __name__ == "__main__":
    main()
