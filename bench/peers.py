"""The programs that compare.py measures: how each is made an index for, asked, and read.

Every peer is set up as its manual says for a site, with what makes the work the same: no stemming,
all words of a query wanted, ten results a page with a piece of the text where the program can show
one, and no cap on what it may find.
"""
import os
import re
import shutil
import sqlite3
import sys
from pathlib import Path
from urllib.parse import quote_plus

from measure import Command, cgi

HERE = Path(__file__).resolve().parent
BASE_URL = "http://127.0.0.1/"
LOOKUP_FILE = "vela_lookup.vdat"


def in_quotes(query):
    """The query as all but SQLite write it: "a phrase", begin*, word word."""
    return str(query)


def first_number(pattern, answer):
    found = re.search(pattern, answer.decode("utf-8", "replace"))
    return int(found.group(1).replace(",", "")) if found else 0


# A program that can take over what is unchanged has `update_commands`, which bring its index up to
# date with the pages.
class Vela:
    """This project: the CGI program beside its index."""
    key, title = "ours", "ours"

    def __init__(self, binaries, work):
        self.binaries = binaries
        self.index = work / "ours"

    def missing(self):
        return None

    def index_commands(self, pages):
        return [[str(self.binaries / "vela_index"), "--quiet", "--site", str(pages), "--base-url",
                 BASE_URL, "--out", str(self.index)]]

    def index_files(self):
        return [self.index]

    def prepare(self):
        shutil.copy(self.binaries / "vela_search", self.index / "search.cgi")

    def command(self, query, extra=""):
        return cgi(self.index, self.index / "search.cgi",
                   f"vela_query={quote_plus(in_quotes(query))}&vela_and=1&vela_per_page=10{extra}")

    def count(self, query):
        return first_number(r"totalResults>(\d+)<", self.command(query, "&vela_xml=1").run())


class PlainVela(Vela):
    """The same index without the file that only saves time."""
    key, title = "plain", "ours, plain"

    def __init__(self, whole, work):
        super().__init__(whole.binaries, work)
        self.whole = whole
        self.index = work / "plain"

    def index_commands(self, pages):
        return None  # has no index of its own

    def prepare(self):
        shutil.rmtree(self.index, ignore_errors=True)
        shutil.copytree(self.whole.index, self.index, copy_function=os.link,
                        ignore=shutil.ignore_patterns(LOOKUP_FILE))


class Omega:
    key, title = "omega", "Omega"
    PROGRAM = "/usr/lib/cgi-bin/omega/omega"
    TEMPLATES = "/usr/share/xapian-omega/templates"
    SETTINGS = "$set{flag_wildcard,true}$set{stemmer,none}"

    def __init__(self, work):
        self.folder = work / "omega"

    def missing(self):
        return None if Path(self.PROGRAM).exists() and shutil.which("omindex") else "xapian-omega"

    def index_commands(self, pages):
        self.folder.mkdir(parents=True, exist_ok=True)
        return [["omindex", "--overwrite", "--stemmer=none", "--url=" + BASE_URL,
                 f"--db={self.folder}/default", str(pages)]]

    def update_commands(self, pages):
        return [[argument for argument in command if argument != "--overwrite"]
                for command in self.index_commands(pages)]

    def index_files(self):
        return [self.folder / "default"]

    def prepare(self):
        templates = self.folder / "templates"
        shutil.copytree(self.TEMPLATES, templates, dirs_exist_ok=True)
        # Its own page of results; and the exact number of results alone.
        (templates / "page").write_text(self.SETTINGS + "$include{query}")
        (templates / "count").write_text(
            "$httpheader{Content-Type,text/plain}" + self.SETTINGS + "results: $msize\n")
        (self.folder / "omega.conf").write_text(
            f"database_dir {self.folder}\ntemplate_dir {templates}\nlog_dir {self.folder}\n"
            f"cdb_dir {self.folder}\n")

    def command(self, query, template="page", extra=""):
        return cgi(self.folder, self.PROGRAM,
                   f"P={quote_plus(in_quotes(query))}&DB=default&FMT={template}&DEFAULTOP=and"
                   f"&HITSPERPAGE=10{extra}", OMEGA_CONFIG_FILE=str(self.folder / "omega.conf"))

    def count(self, query):
        return first_number(r"results: ([\d,]+)",
                            self.command(query, "count", "&MINHITS=100000000").run())


class SwishE:
    key, title = "swish", "Swish-e"

    def __init__(self, work):
        self.folder = work / "swish"

    def missing(self):
        return None if shutil.which("swish-e") else "swish-e"

    def index_commands(self, pages):
        self.folder.mkdir(parents=True, exist_ok=True)
        (self.folder / "swish.conf").write_text(
            f"IndexDir {pages}\nIndexFile {self.folder}/swish.index\nIndexOnly .html\n"
            f"DefaultContents HTML2\nStoreDescription HTML2 <body> 300\n"
            f"ReplaceRules replace {pages}/ {BASE_URL}\nIndexReport 0\n")
        return [["swish-e", "-c", str(self.folder / "swish.conf")]]

    def index_files(self):
        return [self.folder / "swish.index", self.folder / "swish.index.prop"]

    def prepare(self):
        pass

    def command(self, query):
        words = f'"{" ".join(query.words)}"' if query.is_phrase else " and ".join(query.words)
        return Command(self.folder, {}, [
            shutil.which("swish-e"), "-f", str(self.folder / "swish.index"), "-m", "10",
            "-x", "%r\\t%p\\t%t\\t%d\\n", "-w", words + ("*" if query.kind == "prefix" else "")])

    def count(self, query):
        return first_number(r"Number of hits: (\d+)", self.command(query).run())


class Namazu:
    key, title = "namazu", "Namazu"
    PROGRAM = "/usr/lib/cgi-bin/namazu.cgi"

    def __init__(self, work):
        self.folder = work / "namazu"

    def missing(self):
        both = Path(self.PROGRAM).exists() and shutil.which("mknmz")
        return None if both else "namazu2 namazu2-index-tools"

    def index_commands(self, pages):
        shutil.rmtree(self.folder / "index", ignore_errors=True)
        (self.folder / "index").mkdir(parents=True)
        return self.update_commands(pages)

    def update_commands(self, pages):
        return [["mknmz", "--norc", "--quiet", "--output-dir=" + str(self.folder / "index"),
                 "--indexing-lang=C", f"--replace=s#{pages}/#{BASE_URL}#", str(pages)]]

    def index_files(self):
        return [self.folder / "index"]

    def prepare(self):
        # It looks for its settings where it lies.
        shutil.copy(self.PROGRAM, self.folder)
        (self.folder / ".namazurc").write_text(
            f"Index {self.folder}/index\nMaxHit 10000000\nMaxMatch 10000000\nLogging off\nLang C\n")

    def command(self, query):
        return cgi(self.folder, self.folder / "namazu.cgi",
                   f"query={quote_plus(in_quotes(query))}&max=10")

    def count(self, query):
        return first_number(r"Total (?:<!--.*?-->)?\s*([\d,]+)", self.command(query).run())


class SqliteFts:
    key, title = "sqlite", "SQLite FTS5"
    SELECT = ("SELECT url, title, snippet(pages, 2, '<b>', '</b>', '...', 30) FROM pages "
              "WHERE pages MATCH '{}' ORDER BY rank LIMIT 10")

    def __init__(self, work):
        self.database = work / "sqlite" / "pages.db"

    def missing(self):
        return None if shutil.which("sqlite3") else "sqlite3"

    def index_commands(self, pages):
        self.database.parent.mkdir(parents=True, exist_ok=True)
        return [[sys.executable, str(HERE / "sqlite_index.py"), str(pages), str(self.database),
                 BASE_URL]]

    def index_files(self):
        return [self.database]

    def prepare(self):
        pass

    @staticmethod
    def match(query):
        words = " ".join(query.words)
        if query.is_phrase:
            return f'"{words}"'
        return " AND ".join(f'"{word}"' for word in query.words) + \
            (" *" if query.kind == "prefix" else "")

    def command(self, query):
        return Command(self.database.parent, {}, [
            shutil.which("sqlite3"), "-readonly", str(self.database),
            self.SELECT.format(self.match(query))])

    def count(self, query):
        connection = sqlite3.connect(f"file:{self.database}?mode=ro", uri=True)
        return connection.execute("SELECT count(*) FROM pages WHERE pages MATCH ?",
                                  (self.match(query),)).fetchone()[0]
