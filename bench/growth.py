#!/usr/bin/env python3
"""Measures how a request grows with the pages and with the vocabulary; see growth.sh."""
import argparse
import json
import shutil
import subprocess
import sys
from pathlib import Path
from urllib.parse import quote_plus

import chart
from measure import cgi, circumstances, count_instructions, markdown_table, time_commands

PAGE_STEPS = (1_000, 3_000, 10_000, 30_000, 100_000, 300_000, 1_000_000)
WORD_STEPS = (10_000, 30_000, 100_000, 300_000, 1_000_000, 3_000_000)
WORD_PAGES = 20_000  # of all indexes that differ in their vocabulary
WORDS_PER_PAGE = 300  # make_bench_index
CONTEXT = ("DisplayContext", "Highlighting", "AllowExactPhrase")


def vocabulary_of(pages):
    """Heaps' law, between plain prose and the manuals of fetch_corpus.sh, which name more."""
    return round(10 * (pages * WORDS_PER_PAGE) ** 0.6)


class GrowingIndex:
    """A made-up index of one size, with the search program beside it."""

    def __init__(self, binaries, keep, pages, words):
        self.pages, self.words = pages, words
        self.folder = keep / f"{pages}-{words}"
        chosen = self.folder / "chosen_words"
        if not chosen.exists():
            print(f"making {pages:,} pages of {words:,} words ...", file=sys.stderr, flush=True)
            made = subprocess.run([binaries / "make_bench_index", self.folder, str(pages),
                                   str(words)], check=True, text=True, stdout=subprocess.PIPE)
            with open(self.folder / "settings.vdat", "a", encoding="utf-8") as settings:
                settings.writelines(f"{key} = 1\n" for key in CONTEXT)
            chosen.write_text(made.stdout)
        shutil.copy(binaries / "vela_search", self.folder / "search.cgi")
        first, second, rare, most, next_most, tenth, other_tenth = chosen.read_text().split()
        self.queries = {
            "everywhere": most, "common": tenth, "rare": rare,
            "two words": f"{tenth} {other_tenth}", "phrase": f'"{first} {second}"',
            "phrase of common words": f'"{most} {next_most}"', "prefix": tenth[:4] + "*",
            "not found": "qqqqqqqq"}

    def command(self, query):
        return cgi(self.folder, self.folder / "search.cgi",
                   f"vela_query={quote_plus(query)}&vela_and=1")

    def bytes(self):
        return sum(file.stat().st_size for file in self.folder.glob("*.vdat"))


def measure(index, binaries, runs, instructions):
    """kind of query -> figures of time_commands, and "instructions" when wanted."""
    figures = time_commands(binaries, runs, {kind: index.command(query)
                                             for kind, query in index.queries.items()})
    del figures["empty"]
    if instructions:
        for kind, query in index.queries.items():
            figures[kind]["instructions"] = count_instructions(index.command(query))
    return figures


def panels_of(steps, instructions):
    """What chart.line_panels draws; a step is (size, figures)."""
    wanted = [("CPU milliseconds", lambda one: one["cpu_ms"]),
              ("peak memory, MB", lambda one: one["peak_kb"] / 1024)]
    if instructions:
        wanted.insert(1, ("million instructions", lambda one: one["instructions"] / 1e6))
    kinds = list(steps[0][1])
    return [(name, {kind: [(size, value(figures[kind])) for size, figures in steps]
                    for kind in kinds}) for name, value in wanted]


def tables(name, steps, instructions):
    parts = []
    for title, lines in panels_of(steps, instructions):
        parts += [f"### {title[0].upper() + title[1:]}", "",
                  markdown_table([name, *lines],
                                 [[f"{size:,}", *(f"{line[row][1]:.2f}"
                                                  for line in lines.values())]
                                  for row, (size, _) in enumerate(steps)]), ""]
    return parts


def parse_arguments():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--runs", type=int, default=11)
    parser.add_argument("--most-pages", type=int, default=PAGE_STEPS[-1])
    parser.add_argument("--instructions", action="store_true")
    parser.add_argument("--build", type=Path, required=True)
    parser.add_argument("--keep", type=Path, required=True)
    parser.add_argument("--results", type=Path, required=True)
    return parser.parse_args()


def main():
    arguments = parse_arguments()
    binaries = arguments.build.resolve() / "bin"
    keep = arguments.keep.resolve()
    keep.mkdir(parents=True, exist_ok=True)
    arguments.results.mkdir(parents=True, exist_ok=True)
    measured = circumstances()
    instructions = arguments.instructions

    by_pages, by_words, sizes = [], [], []
    for pages in PAGE_STEPS:
        if pages <= arguments.most_pages:
            index = GrowingIndex(binaries, keep, pages, vocabulary_of(pages))
            by_pages.append((pages, measure(index, binaries, arguments.runs, instructions)))
            sizes.append([f"{pages:,}", f"{index.words:,}", f"{index.bytes() / 1e6:,.0f}"])
    for words in WORD_STEPS:
        index = GrowingIndex(binaries, keep, WORD_PAGES, words)
        by_words.append((words, measure(index, binaries, arguments.runs, instructions)))

    subtitle = "One search as a process of its own, by the kind of query. Both axes logarithmic."
    parts = ["# How a request grows", "",
             f"{measured['date']}, commit {measured['commit']}, {measured['machine']}, load "
             f"{measured['load']}. Made-up pages of {WORDS_PER_PAGE} words (make_bench_index), "
             f"with passages, highlighting and phrases; medians of {arguments.runs} runs, warm "
             f"cache. CPU time is what the process had of a processor: hardly depends on what else "
             f"the machine does.",
             "", "## With the pages", "", "![](growth-pages.svg)", "",
             *tables("pages", by_pages, instructions), "### The indexes", "",
             markdown_table(["pages", "words", "MB"], sizes), "",
             f"## With the vocabulary, on {WORD_PAGES:,} pages", "",
             "![](growth-words.svg)", "", *tables("words", by_words, instructions)]
    results = arguments.results
    (results / "growth.md").write_text("\n".join(parts).rstrip() + "\n")
    (results / "growth.json").write_text(
        json.dumps({**measured, "runs": arguments.runs, "pages": by_pages, "words": by_words},
                   indent=1) + "\n")
    (results / "growth-pages.svg").write_text(chart.line_panels(
        "A request against the number of pages", subtitle, "pages",
        panels_of(by_pages, instructions)))
    (results / "growth-words.svg").write_text(chart.line_panels(
        f"A request against the vocabulary, on {WORD_PAGES:,} pages", subtitle, "words",
        panels_of(by_words, instructions)))
    print(f"written to {results}/growth.md, .json and two charts", file=sys.stderr)


if __name__ == "__main__":
    main()
