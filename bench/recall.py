#!/usr/bin/env python3
"""Measures how much of what stands on the pages of a site the search finds.

    bench/recall.py SITE [--bin build/release/bin] [--samples 400] [--seed 1] [--show 20]

SITE is a folder of HTML pages (build/real_content/html). It is indexed, and what an independent
reader of HTML (python3-bs4) takes for its text is cut at blanks. Of that, words and stretches of
three to six words are drawn at random, and asked for as a visitor would who copies them:

    words     one word, the signs at its ends taken off
    phrases   words side by side in quotes, the signs at both ends of the phrase taken off
    verbatim  words side by side in quotes, as they stand on the page

It counts as found when the answer holds the page that it came from. Signs that mean something in
a query (quotes, *, ?) and what begins with "-" are not drawn.

Some of what is drawn cannot be asked for, whatever the index holds: the share without that is told
beside the other, with the misses of each kind.

    less-than sign  the query keeps "<" as a part of its word, and no word may hold it
    half a name     taking off signs left "name__" of "__name__"
"""
import argparse
import os
import random
import re
import subprocess
import sys
import tempfile
from collections import Counter
from pathlib import Path
from urllib.parse import quote_plus

try:
    from bs4 import BeautifulSoup, Comment, Doctype, ProcessingInstruction
except ImportError:  # --help works without it; Debian has it as python3-bs4
    BeautifulSoup = Comment = Doctype = ProcessingInstruction = None

BASE = "https://x.example/"
HIDDEN = (
    "script style template noscript iframe noframes object canvas audio video select option datalist"
    " textarea button head nav rp header footer aside"
).split()
INLINE = (
    "a abbr acronym b bdi bdo big cite code data del dfn em font i ins kbd mark nobr q ruby s samp"
    " small span strike strong sub sup time tt u var wbr"
).split()
MEANT = set('"*?')
MARKS = (Comment, Doctype, ProcessingInstruction)


def is_surrounding(element):
    roles = " ".join([element.get("role") or ""]).lower().split()
    if {"navigation", "search", "menu", "toolbar", "banner", "contentinfo", "complementary"} & set(
        roles
    ):
        return True
    style = (element.get("style") or "").replace(" ", "").lower()
    return element.has_attr("hidden") or "display:none" in style or "visibility:hidden" in style


def text_of(page):
    """The stretches of text of a page, each a list of words; no block ends inside."""
    soup = BeautifulSoup(page, "html.parser")
    stretches, run = [], []

    def close():
        words = "".join(run).split()
        if words:
            stretches.append(words)
        run.clear()

    def walk(node):
        for child in node.children:
            if isinstance(child, MARKS):
                continue
            if isinstance(child, str):
                run.append(child)
                continue
            inline = child.name in INLINE
            if not inline:
                close()
            if child.name not in HIDDEN and not is_surrounding(child):
                walk(child)
            if not inline:
                close()

    walk(soup)
    close()
    return stretches


def bare(word):
    return re.sub(r"^[\W_]+|[\W_]+$", "", word)


def can_ask(text):
    return not MEANT & set(text) and not re.search(r"(^|\s)-", text) and re.search(r"\w", text)


def obstacle(written, asked):
    """Why `asked`, a part of what the page has, cannot be asked for; None when it can."""
    if "<" in asked:
        return "less-than sign"
    before, _, behind = written.partition(asked)
    return "half a name" if before.endswith("_") or behind.startswith("_") else None


def draw(pages, samples, seed):
    """For each kind, (path, what is asked for, why it cannot be)."""
    choice = random.Random(seed)
    paths = sorted(pages)
    kinds = {"words": [], "phrases": [], "verbatim": []}
    for kind, drawn in kinds.items():
        for _ in range(100 * samples):
            if len(drawn) == samples:
                break
            path = choice.choice(paths)
            if not pages[path]:
                continue
            words = choice.choice(pages[path])
            length = 1 if kind == "words" else choice.randint(3, 6)
            if len(words) < length:
                continue
            at = choice.randrange(len(words) - length + 1)
            written = " ".join(words[at : at + length])
            text = written if kind == "verbatim" else bare(written)
            if can_ask(text) and (kind == "words" or re.search(r"\w.*\s.*\w", text)):
                drawn.append((path, text, obstacle(written, text)))
    return kinds


def is_found(search, index, path, text, phrase):
    query = f'"{text}"' if phrase else text
    environment = {
        "REQUEST_METHOD": "GET",
        # The query first, as the form sends it: in the last parameter "=" ends a value.
        "QUERY_STRING": f"vela_query={quote_plus(query)}&vela_xml=1&vela_per_page=10000&vela_and=1",
        "SCRIPT_NAME": "/search.cgi",
        "PATH": os.environ["PATH"],
    }
    answer = subprocess.run(
        [search, "/I", index], env=environment, capture_output=True, check=True
    ).stdout.decode("utf-8", "replace")
    return f"<link>{BASE}{path}</link>" in answer


def share(missed, drawn):
    return f"{100 * (1 - missed / max(1, drawn)):6.2f} % of {drawn}"


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("site", type=Path)
    parser.add_argument("--bin", type=Path, default=Path("build/release/bin"))
    parser.add_argument("--samples", type=int, default=400)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--show", type=int, default=20, help="misses to print of each kind")
    options = parser.parse_args()
    if BeautifulSoup is None:
        parser.error("needs the Python module bs4: apt-get install python3-bs4, and /usr/bin/python3")
    pages = {}
    for file in sorted(options.site.rglob("*.html")):
        path = str(file.relative_to(options.site))
        pages[path] = text_of(file.read_bytes())
    with tempfile.TemporaryDirectory() as folder:
        index = Path(folder) / "index"
        command = [options.bin / "vela_index", "--site", options.site, "--base-url", BASE]
        result = subprocess.run(command + ["--out", index, "--quiet"], capture_output=True, text=True)
        if result.returncode != 0:
            sys.exit(result.stderr)
        for kind, drawn in draw(pages, options.samples, options.seed).items():
            missed = [
                (path, text, why)
                for path, text, why in drawn
                if not is_found(options.bin / "vela_search", index, path, text, kind != "words")
            ]
            askable = [why for _, _, why in drawn].count(None)
            mistakes = [why for _, _, why in missed].count(None)
            kinds = Counter(why for _, _, why in missed if why)
            print(
                f"{kind:9} {share(len(missed), len(drawn))}; {share(mistakes, askable)} that can be"
                " asked for" + "".join(f"; {why}: {count}" for why, count in kinds.items())
            )
            for path, text, why in missed[: options.show]:
                print(f"    {path}: {text}" + (f" ({why})" if why else ""))


if __name__ == "__main__":
    main()
