#!/usr/bin/env python3
"""Puts the HTML pages of a folder into a full-text table of SQLite, for compare.py.

    bench/sqlite_index.py PAGES DATABASE BASE_URL

The least that somebody would write who has SQLite and a folder of pages: tags are cut out with
regular expressions, the text of a page stands in one column.
"""
import html
import re
import sqlite3
import sys
from pathlib import Path
from urllib.parse import quote

UNSEEN = re.compile(rb"<!--.*?-->|<(script|style|template)\b.*?</\1\s*>", re.I | re.S)
TITLE = re.compile(rb"<title[^>]*>(.*?)</title", re.I | re.S)
TAG = re.compile(rb"<[^>]*>")
BLANKS = re.compile(r"\s+")


def text_of(markup):
    return BLANKS.sub(" ", html.unescape(markup.decode("utf-8", "replace"))).strip()


def rows(pages, base_url):
    """Address, title and text of every page."""
    for path in sorted(pages.rglob("*.html")):
        markup = UNSEEN.sub(b" ", path.read_bytes())
        title = TITLE.search(markup)
        yield (base_url + quote(str(path.relative_to(pages))),
               text_of(title.group(1)) if title else "",
               text_of(TAG.sub(b" ", markup)))


def main():
    pages, database, base_url = sys.argv[1:4]
    Path(database).unlink(missing_ok=True)
    connection = sqlite3.connect(database)
    connection.execute("CREATE VIRTUAL TABLE pages USING fts5(url UNINDEXED, title, body)")
    connection.executemany("INSERT INTO pages VALUES (?, ?, ?)", rows(Path(pages), base_url))
    connection.execute("INSERT INTO pages(pages) VALUES ('optimize')")
    connection.commit()
    connection.execute("VACUUM")


if __name__ == "__main__":
    main()
