#!/usr/bin/env python3
"""Measures how well the search ranks, beside other programs on the same pages.

    bench/relevance.py judged COLLECTION
    bench/relevance.py known PAGES [--samples 500] [--seed 1]
    bench/relevance.py questions LIST PAGES [--half tune|report] [--show]

judged: COLLECTION is a folder in the Cranfield layout: cran.all.1400 (documents: .I number, .T title,
.A author, .B source, .W text), cran.qry (questions; they count from 1 in file order) and cranqrel
(question, document, degree). Each document becomes a small page of a site. Asked for are the
questions and the one, two and three of their words that the fewest documents have; told are nDCG@10
and, of whole questions, mean average precision.

known: pages that a visitor knows, asked for by their main heading without one of its words; told is
the mean reciprocal rank of the page. Drawn are headings of three to eight words that no other page
has, without a word that leaves others which no other heading holds together.

questions: LIST is one of bench/questions; told is for how many of its questions a page that answers
them is the first, and among the first three. Its lines are taken in turn: one to tune by, the next
to report.

Of every kind: --bin build/release/bin, --ours to leave the others out, --options for the TOML lines
that the site is indexed with, --plain to leave function words out of what is asked.
"""
import argparse
import html
import math
import random
import re
import sys
import tempfile
from collections import Counter
from pathlib import Path

import rankers

# Degrees of the judgements, best first; everything else counts as not relevant.
GAINS = {1: 4, 2: 3, 3: 2, 4: 1}
FUNCTION_WORDS = set(
    "a about an and any are as at be been being but by can could do does for from had has have how i"
    " if in into is it its may me must my of on or shall should so some such than that the their"
    " them then there these they this to under upon was we were what when where which who whose why"
    " will with would you your".split())


def records(path, fields):
    """The records of a file in the Cranfield layout, as dicts from field letter to text."""
    record, field = None, None
    for line in path.read_text(encoding="latin-1").splitlines():
        mark = re.match(r"\.([A-Z])(?: (\d+))?\s*$", line)
        if mark and mark[1] == "I":
            if record is not None:
                yield record
            record, field = {letter: "" for letter in fields}, None
            record["I"] = mark[2]
        elif mark and mark[1] in fields:
            field = mark[1]
        elif field is not None:
            record[field] += line + "\n"
    if record is not None:
        yield record


def write_site(documents, folder):
    for document in documents:
        title = " ".join(document["T"].split()).rstrip(" .")
        body = document["W"].strip()
        # The text repeats the title; it is the page's heading instead.
        if " ".join(body.split()).startswith(title):
            words = len(title.split())
            body = " ".join(body.split()[words:]).lstrip(" .")
        page = (
            f"<!DOCTYPE html><html lang=en><head><meta charset=utf-8><title>{html.escape(title)}"
            f"</title></head><body><h1>{html.escape(title)}</h1><p>{html.escape(body)}</p>"
            f"<p>{html.escape(document['A'].strip())}, {html.escape(document['B'].strip())}</p>"
            "</body></html>\n"
        )
        (folder / f"{document['I']}.html").write_text(page, encoding="utf-8")


def ndcg(ranked, judged, depth=10):
    def total(gains):
        return sum((2**gain - 1) / math.log2(place + 2) for place, gain in enumerate(gains))

    best = total(sorted(judged.values(), reverse=True)[:depth])
    return total([judged.get(page, 0) for page in ranked[:depth]]) / best


def average_precision(ranked, judged):
    found, precision = 0, 0.0
    for place, page in enumerate(ranked, 1):
        if page in judged:
            found += 1
            precision += found / place
    return precision / len(judged)


def mean(numbers):
    numbers = list(numbers)
    return sum(numbers) / max(1, len(numbers))


class Session:
    """The programs that are there, each with an index of the pages."""

    def __init__(self, arguments, pages, work):
        self.plain = arguments.plain
        everyone = rankers.all_rankers(arguments.bin.resolve(), work, arguments.options)
        self.rankers = []
        for ranker in everyone[:2] if arguments.ours else everyone:
            if ranker.missing() is None:
                ranker.build(pages)
                self.rankers.append(ranker)
            else:
                print(f"{ranker.title} left out: needs {ranker.missing()}", file=sys.stderr)

    def ask(self, ranker, text, most):
        if self.plain:
            kept = [word for word in text.split() if word.lower() not in FUNCTION_WORDS]
            text = " ".join(kept) or text
        return ranker.ask(text, most)


def measure_judged(arguments, work):
    documents = list(records(arguments.collection / "cran.all.1400", "TABW"))
    questions = [r["W"] for r in records(arguments.collection / "cran.qry", "W")]
    judged = {}
    for line in (arguments.collection / "cranqrel").read_text().splitlines():
        question, document, degree = (int(n) for n in line.split()[:3])
        if degree in GAINS:
            judged.setdefault(question, {})[document] = GAINS[degree]
    on_pages = Counter()
    for document in documents:
        on_pages.update(set(re.findall(r"[a-z0-9]+", " ".join(document[f] for f in "TABW").lower())))
    site = work / "site"
    site.mkdir()
    write_site(documents, site)
    session = Session(arguments, site, work)
    print(f"{len(documents)} documents, {len(judged)} questions; nDCG@10")
    print(f"{'':18}{'1 word':>8}{'2 words':>8}{'3 words':>8}{'whole':>8}{'MAP':>8}"
          f"{'half 1':>8}{'half 2':>8}")
    for ranker in session.rankers:
        columns = []
        for most in (1, 2, 3, None):
            scores = []
            for number in sorted(judged):
                words = re.findall(r"[a-z0-9]+", questions[number - 1].lower())
                if most is not None:
                    known = sorted({w for w in words if on_pages[w]}, key=lambda w: (on_pages[w], w))
                    words = [w for w in words if w in known[:most]]
                found = session.ask(ranker, " ".join(words), 1000)
                numbers = [int(re.search(r"(\d+)\.html", address)[1]) for address in found]
                scores.append((ndcg(numbers, judged[number]),
                               average_precision(numbers, judged[number])))
            columns.append(mean(s[0] for s in scores))
        columns.append(mean(s[1] for s in scores))
        columns.append(mean(s[0] for s in scores[::2]))
        columns.append(mean(s[0] for s in scores[1::2]))
        print(f"{ranker.title:18}" + "".join(f"{column:8.3f}" for column in columns), flush=True)


def main_heading(markup):
    found = re.search(rb"<h1\b[^>]*>(.*?)</h1", markup, re.I | re.S)
    if not found:
        return []
    # Links to the heading itself hold a sign.
    text = re.sub(rb"<a class=\"(?:headerlink|anchor)\".*?</a>|<[^>]*>", b" ", found[1])
    return re.findall(r"\w+", html.unescape(text.decode("utf-8", "replace")).lower())


def known_pages(folder, samples, seed):
    """What to ask for and the address of the page that is meant."""
    draw = random.Random(seed)
    headings = [(main_heading(path.read_bytes()), path) for path in sorted(folder.rglob("*.html"))]
    holders = {}
    for number, (words, _) in enumerate(headings):
        for word in words:
            holders.setdefault(word, set()).add(number)
    known = []
    for number, (words, path) in enumerate(headings):
        if not 3 <= len(words) <= 8:
            continue
        rest = list(words)
        del rest[draw.randrange(len(rest))]
        if set.intersection(*(holders[word] for word in rest)) == {number}:
            known.append((" ".join(rest), rankers.address_of(path, folder)))
    return draw.sample(known, min(samples, len(known)))


def measure_known(arguments, work):
    asked = known_pages(arguments.pages, arguments.samples, arguments.seed)
    session = Session(arguments, arguments.pages, work)
    print(f"{len(asked)} pages")
    print(f"{'':18}{'mean reciprocal rank':>22}{'first':>8}")
    for ranker in session.rankers:
        ranks, missed = [], []
        for text, address in asked:
            found = session.ask(ranker, text, 100)
            ranks.append(1 / (found.index(address) + 1) if address in found else 0)
            if ranks[-1] < 1 and arguments.show:
                missed.append(f"    {text}: {address} at {ranks[-1]:.2f}, first {found[:2]}")
        print(f"{ranker.title:18}{mean(ranks):22.3f}{sum(r == 1 for r in ranks):8}", flush=True)
        print("\n".join(missed), end="\n" if missed else "")


def read_questions(path, half):
    lines = [line for line in path.read_text().splitlines() if line and not line.startswith("#")]
    lines = {None: lines, "tune": lines[::2], "report": lines[1::2]}[half]
    for line in lines:
        text, answers = line.split(" | ")
        yield text, answers.split()


def measure_questions(arguments, work):
    questions = list(read_questions(arguments.list, arguments.half))
    session = Session(arguments, arguments.pages, work)
    print(f"{len(questions)} questions of {arguments.list.name}")
    print(f"{'':18}{'first':>8}{'in three':>10}")
    for ranker in session.rankers:
        first, in_three, missed = 0, 0, []
        for text, answers in questions:
            found = session.ask(ranker, text, 10)
            places = [place for place, address in enumerate(found)
                      if any(address.endswith(f"/{answer}.html") for answer in answers)]
            first += bool(places and places[0] == 0)
            in_three += bool(places and places[0] < 3)
            if arguments.show and not (places and places[0] < 3):
                missed.append(f"    {text}: {places[0] + 1 if places else '-'}; "
                              + " ".join(re.sub(r".*/html/|\.html$", "", a) for a in found[:4]))
        print(f"{ranker.title:18}{first:8}{in_three:10}", flush=True)
        print("\n".join(missed), end="\n" if missed else "")


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    kinds = parser.add_subparsers(dest="kind", required=True)
    judged = kinds.add_parser("judged")
    judged.add_argument("collection", type=Path)
    known = kinds.add_parser("known")
    known.add_argument("pages", type=Path)
    known.add_argument("--samples", type=int, default=500)
    known.add_argument("--seed", type=int, default=1)
    questions = kinds.add_parser("questions")
    questions.add_argument("list", type=Path)
    questions.add_argument("pages", type=Path)
    questions.add_argument("--half", choices=["tune", "report"])
    for kind in (judged, known, questions):
        kind.add_argument("--bin", type=Path, default=Path("build/release/bin"))
        kind.add_argument("--ours", action="store_true", help="leave the other programs out")
        kind.add_argument("--options", default='[index]\nstemming = "english"',
                          help="TOML lines that the site is indexed with")
        kind.add_argument("--plain", action="store_true",
                          help="leave function words out of what is asked")
        kind.add_argument("--show", action="store_true", help="tell what was missed")
    arguments = parser.parse_args()
    with tempfile.TemporaryDirectory() as folder:
        measures = {"judged": measure_judged, "known": measure_known,
                    "questions": measure_questions}
        measures[arguments.kind](arguments, Path(folder))
    return 0


if __name__ == "__main__":
    sys.exit(main())
