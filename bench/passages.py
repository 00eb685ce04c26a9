#!/usr/bin/env python3
"""What the passages of a search say, without and with the setting Passages.

    bench/passages.py --program build/release/bin/vela_search --index INDEX [QUERY ...]

Asks each query for its first ten results, in a copy of the index's settings without the key and in
one with it, and counts over all results how many words of the query their passages have, how many
results have all of them in one piece, and how many pieces begin as sentences do.
"""

import argparse
import html
import os
import re
import subprocess
import tempfile
import urllib.parse

QUERIES = [
    "read json file", "asyncio gather", "sort list by key", "open file encoding",
    "convert string to datetime", "how to create a virtual environment", "regular expression groups",
    "logging to file", "parse command line arguments", "thread pool executor",
    "dictionary merge operator", "subprocess capture output",
]


def answer(program, folder, query):
    environment = {"REQUEST_METHOD": "GET", "SCRIPT_NAME": "/search.cgi",
                   "QUERY_STRING": "vela_query=" + urllib.parse.quote_plus(query)}
    return subprocess.run([os.path.join(folder, "search.cgi")], env=environment,
                          capture_output=True, check=True).stdout.decode("utf-8", "replace")


def copy_index(program, index, folder, passages):
    for name in os.listdir(index):
        if name not in ("settings.vdat", "search.cgi"):
            os.symlink(os.path.join(os.path.abspath(index), name), os.path.join(folder, name))
    os.symlink(os.path.abspath(program), os.path.join(folder, "search.cgi"))
    with open(os.path.join(index, "settings.vdat"), encoding="utf-8") as file:
        lines = [line for line in file if not line.startswith("Passages")]
    lines.insert(1, f"Passages = {passages}\n")
    with open(os.path.join(folder, "settings.vdat"), "w", encoding="utf-8") as file:
        file.writelines(lines)


def words_in(text, wanted):
    marked = " ".join(re.findall(r'<span class="highlight">(.*?)</span>', text)).lower()
    return {word for word in wanted if word in marked}


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--program", required=True)
    parser.add_argument("--index", required=True)
    parser.add_argument("queries", nargs="*", default=QUERIES, metavar="QUERY")
    options = parser.parse_args()
    print("| | results | words of the query shown | all in one piece | pieces | "
          "begin as a sentence | nothing shown | lead to a section |")
    print("|---|---|---|---|---|---|---|---|")
    for passages in (0, 1):
        results = shown = wanted_words = whole = pieces = sentences = empty = led = 0
        with tempfile.TemporaryDirectory() as folder:
            copy_index(options.program, options.index, folder, passages)
            for query in options.queries:
                wanted = set(query.lower().split())
                page = answer(options.program, folder, query)
                led += len(re.findall(r'<div class="result_title">(?:<b>.*?)?<a href="[^"]*#', page))
                for context in re.findall(r'<div class="context">\n(.*?)</div>', page, re.S):
                    results += 1
                    parts = [part for part in re.split(r"<b>\.\.\.</b>", context) if part.strip()]
                    empty += not parts
                    pieces += len(parts)
                    shown += len(words_in(context, wanted))
                    wanted_words += len(wanted)
                    whole += any(words_in(part, wanted) == wanted for part in parts)
                    for part in parts:
                        text = html.unescape(re.sub(r"<[^>]*>", "", part)).strip()
                        sentences += text[:1].isupper()
        print(f"| `Passages = {passages}` | {results} | {100 * shown / wanted_words:.0f} % | "
              f"{100 * whole / results:.0f} % | {pieces} | {100 * sentences / pieces:.0f} % | {empty} | {led} |")


if __name__ == "__main__":
    main()
