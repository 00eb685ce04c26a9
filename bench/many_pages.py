#!/usr/bin/env python3
"""Makes a site of very many small pages from the paragraphs of real ones, the same for a seed.

    bench/many_pages.py --from build/corpora/large --to DIR [--pages 1000000] [--words 150]

Each page has some paragraphs drawn from those of the real pages, a title of its first words and
links to a few other pages. A million pages take about 5 GB of disk and want as many inodes.
"""

import argparse
import pathlib
import random
import re

PARAGRAPH = re.compile(rb"<p>(.{40,2000}?)</p>", re.DOTALL)
TAG = re.compile(rb"<[^>]*>")
WORD = re.compile(rb"[A-Za-z][A-Za-z'-]{2,}")
PER_FOLDER = 1000
POOL_BYTES = 200_000_000


def paragraphs_of(root, random_numbers):
    """The paragraphs of the pages below `root`, without their markup, in an order of chance."""
    files = sorted(root.rglob("*.html"))
    random_numbers.shuffle(files)
    pool = []
    size = 0
    for file in files:
        for match in PARAGRAPH.finditer(file.read_bytes()):
            text = b" ".join(TAG.sub(b"", match.group(1)).split())
            if b"<" in text or len(text) < 40:
                continue
            pool.append(text)
            size += len(text)
        if size > POOL_BYTES:
            break
    return pool


def make_page(number, pages, pool, words, random_numbers):
    chosen = []
    have = 0
    while have < words:
        chosen.append(random_numbers.choice(pool))
        have += chosen[-1].count(b" ") + 1
    title = b" ".join(WORD.findall(chosen[0])[:6]) + b" %d" % number
    parts = [b"<!DOCTYPE html><html lang=en><head><meta charset=utf-8><title>", title,
             b"</title></head><body><h1>", title, b"</h1>\n"]
    parts += [b"<p>" + text + b"</p>\n" for text in chosen]
    for _ in range(3):
        other = random_numbers.randrange(pages)
        name = b" ".join(WORD.findall(random_numbers.choice(chosen))[:2])
        parts.append(b'<a href="/%04d/p%07d.html">%s</a>\n' % (other // PER_FOLDER, other, name))
    parts.append(b"</body></html>\n")
    return b"".join(parts)


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--from", dest="source", type=pathlib.Path, required=True)
    parser.add_argument("--to", type=pathlib.Path, required=True)
    parser.add_argument("--pages", type=int, default=1_000_000)
    parser.add_argument("--words", type=int, default=150, help="of a page, at least")
    parser.add_argument("--seed", type=int, default=1)
    options = parser.parse_args()
    random_numbers = random.Random(options.seed)
    pool = paragraphs_of(options.source, random_numbers)
    for number in range(options.pages):
        folder = options.to / f"{number // PER_FOLDER:04}"
        if number % PER_FOLDER == 0:
            folder.mkdir(parents=True, exist_ok=True)
        page = make_page(number, options.pages, pool, options.words, random_numbers)
        (folder / f"p{number:07}.html").write_bytes(page)


if __name__ == "__main__":
    main()
