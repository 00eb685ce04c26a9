#!/usr/bin/env python3
"""Measures how well the search ranks, on a test collection with judged answers.

    bench/relevance.py COLLECTION [--bin build/release/bin] [--keywords] [--all-words]

COLLECTION is a folder with three files in the Cranfield layout: cran.all.1400 (documents: .I number,
.T title, .A author, .B source, .W text), cran.qry (questions; they count from 1 in file order) and
cranqrel (question, document, degree). Each document becomes one small page of a site, the site is
indexed, every question is asked of the search program as a web server would, and the order of the
answers is compared with the judgements: nDCG@10 and mean average precision over all questions.
"""
import argparse
import html
import math
import os
import re
import subprocess
import sys
import tempfile
from pathlib import Path

# Degrees of the judgements, best first; everything else counts as not relevant.
GAINS = {1: 4, 2: 3, 3: 2, 4: 1}


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


def ask(search, index, query, all_words):
    """The numbers of the documents that the search program lists, best first."""
    text = re.sub(r"[^a-z0-9]+", " ", query.lower()).strip().replace(" ", "+")
    environment = {
        "REQUEST_METHOD": "GET",
        "QUERY_STRING": f"vela_query={text}&vela_per_page=1000&vela_and={int(all_words)}",
        "SCRIPT_NAME": "/search.cgi",
        "PATH": os.environ["PATH"],
    }
    answer = subprocess.run(
        [search, "/I", index], env=environment, capture_output=True, check=True
    ).stdout.decode("utf-8", "replace")
    links = re.findall(r'<div class="result_title">.*?<a href="([^"]*)"', answer)
    return [int(re.search(r"(\d+)\.html", link)[1]) for link in links]


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


STOP = set("a an and any are as at be been being by can could do does for from had has have how if in "
           "into is it its of on or such than that the their there these they this to under upon was "
           "we were what when where which who will with would you".split())


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("collection", type=Path)
    parser.add_argument("--bin", type=Path, default=Path("build/release/bin"))
    parser.add_argument("--all-words", action="store_true", help="pages must hold every word")
    parser.add_argument("--keywords", action="store_true",
                        help="ask for the questions' words without articles, prepositions and such")
    arguments = parser.parse_args()

    documents = list(records(arguments.collection / "cran.all.1400", "TABW"))
    questions = [r["W"] for r in records(arguments.collection / "cran.qry", "W")]
    judged = {}
    for line in (arguments.collection / "cranqrel").read_text().splitlines():
        question, document, degree = (int(n) for n in line.split()[:3])
        if degree in GAINS:
            judged.setdefault(question, {})[document] = GAINS[degree]

    with tempfile.TemporaryDirectory() as temporary:
        site, index = Path(temporary) / "site", Path(temporary) / "index"
        site.mkdir()
        write_site(documents, site)
        subprocess.run(
            [arguments.bin / "vela_index", "--site", site, "--base-url", "/", "--out", index,
             "--quiet"],
            check=True,
        )
        scores = []
        for number, question in enumerate(questions, 1):
            if number not in judged:
                continue
            if arguments.keywords:
                words = re.sub(r"[^a-z0-9]+", " ", question.lower()).split()
                question = " ".join(w for w in words if w not in STOP)
            ranked = ask(arguments.bin / "vela_search", index, question, arguments.all_words)
            scores.append((ndcg(ranked, judged[number]), average_precision(ranked, judged[number])))
    print(f"documents {len(documents)}, questions {len(scores)}")
    print(f"nDCG@10 {sum(s[0] for s in scores) / len(scores):.4f}")
    print(f"MAP     {sum(s[1] for s in scores) / len(scores):.4f}")
    return 0


if __name__ == "__main__":
    sys.exit(main())
