"""The programs whose order of results relevance.py compares: each indexes a folder of pages, is
asked for words, and lists the addresses of the pages that it finds, best first.

All are set up to find pages with any of the words, inflected as they may be.
"""
import os
import re
import shutil
import sqlite3
import subprocess
from urllib.parse import quote, quote_plus, unquote

import sqlite_index

BASE = "http://x.example/"


def words_of(text):
    """The words of a question, without signs that mean something to one of the programs."""
    return re.findall(r"\w+(?:\.\w+)*", text.lower())


class Vela:
    """This project: the CGI program, asked as a web server would."""

    def __init__(self, binaries, work, options="[index]\nstemming = \"english\"", title="ours"):
        self.binaries, self.options, self.title = binaries, options, title
        self.index = work / re.sub(r"\W", "_", title)

    def missing(self):
        return None if (self.binaries / "vela_search").exists() else "a build"

    def build(self, pages):
        self.index.parent.mkdir(parents=True, exist_ok=True)
        config = self.index.with_suffix(".toml")
        config.write_text(self.options + "\n")
        subprocess.run(
            [self.binaries / "vela_index", "--config", config, "--site", pages, "--base-url", BASE,
             "--out", self.index, "--quiet"], check=True)

    def ask(self, text, most):
        environment = {
            "REQUEST_METHOD": "GET",
            "QUERY_STRING": f"vela_query={quote_plus(text)}&vela_xml=1&vela_per_page={most}",
            "SCRIPT_NAME": "/search.cgi",
            "PATH": os.environ["PATH"],
        }
        answer = subprocess.run(
            [self.binaries / "vela_search", "/I", self.index], env=environment,
            capture_output=True, check=True).stdout.decode("utf-8", "replace")
        # A result may lead to a section of its page.
        return [unquote(link) for link in re.findall(r"<item>.*?<link>([^<#]*)", answer, re.S)]


class Xapian:
    """omindex and quest, as they come: English stemming, any of the words, BM25."""
    title = "Xapian"

    def __init__(self, work):
        self.database = work / "xapian"

    def missing(self):
        both = shutil.which("omindex") and shutil.which("quest")
        return None if both else "xapian-omega xapian-tools"

    def build(self, pages):
        self.database.parent.mkdir(parents=True, exist_ok=True)
        subprocess.run(["omindex", "--overwrite", "--stemmer=english", "--url=" + BASE,
                        f"--db={self.database}", str(pages)], check=True, capture_output=True)

    def ask(self, text, most):
        answer = subprocess.run(
            ["quest", f"--db={self.database}", f"--msize={most}", "--stemmer=english", "--",
             " ".join(words_of(text))], capture_output=True, check=True)
        found = re.findall(r"^url=(.*)$", answer.stdout.decode("utf-8", "replace"), re.M)
        return [unquote(address) for address in found]


class Fts5:
    """SQLite's full-text table with its Porter stemmer, BM25; a title may weigh more."""

    def __init__(self, work, title_weight=1):
        self.title_weight = title_weight
        self.title = "FTS5" if title_weight == 1 else f"FTS5, title x {title_weight}"
        self.file = work / "fts5.db"
        self.connection = None

    def missing(self):
        return None

    def build(self, pages):
        self.file.parent.mkdir(parents=True, exist_ok=True)
        known = self.file.exists()
        self.connection = sqlite3.connect(self.file)
        if known:
            return  # by another one with another weight
        self.connection.execute(
            "CREATE VIRTUAL TABLE pages USING fts5(url UNINDEXED, title, body, tokenize=porter)")
        self.connection.executemany("INSERT INTO pages VALUES (?, ?, ?)",
                                    sqlite_index.rows(pages, BASE))
        self.connection.commit()

    def ask(self, text, most):
        words = " OR ".join(f'"{word}"' for word in words_of(text))
        found = self.connection.execute(
            "SELECT url FROM pages WHERE pages MATCH ? ORDER BY bm25(pages, 0, ?, 1) LIMIT ?",
            (words, self.title_weight, most))
        return [unquote(row[0]) for row in found]


def all_rankers(binaries, work, options):
    former = Vela(binaries, work, options + "\n[settings]\nRanking = 0", "Ranking = 0")
    return [Vela(binaries, work, options), former, Xapian(work), Fts5(work), Fts5(work, 10)]


def address_of(path, folder):
    """The address of a page, as the lists of results have it."""
    return unquote(BASE + quote(str(path.relative_to(folder))))
