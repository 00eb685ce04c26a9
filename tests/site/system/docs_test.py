#!/usr/bin/env python3
"""Keeps the documents in step with the programs: settings, markers, options, keys, links."""
import os
import re
import subprocess
import sys
import tempfile
import tomllib
import unittest
from pathlib import Path

PROJECT = Path(__file__).resolve().parents[3]
DOCS = PROJECT / "docs"
BIN = Path(os.environ["VELA_BIN"])


def text(*parts):
    return PROJECT.joinpath(*parts).read_text(encoding="utf-8")


def settings_rows():
    """The rows of docs/settings.md: key, default, meaning and example; a row may name two keys."""
    rows = {}
    for line in text("docs", "settings.md").splitlines():
        cells = [cell.strip() for cell in line.strip("|").split(" | ")]
        keys = re.findall(r"`(\w+)`", cells[0])
        if not line.startswith("| `") or len(cells) != 4:
            continue
        defaults = [value.strip() for value in cells[1].split(",")]
        for index, key in enumerate(keys):
            default = defaults[min(index, len(defaults) - 1)].strip("`")
            rows[key] = (default, cells[2], cells[3])
    return rows


class Settings(unittest.TestCase):
    def test_every_key_has_a_row_and_every_row_a_key(self):
        source = text("src", "settings", "setting_keys.h")
        rows = re.findall(r'\{"(\w+)", &Settings::(\w+)\}', source)
        rows += [(key, field) for field, key in
                 re.findall(r'TextSettingOf<&Settings::(\w+)>\("(\w+)"', source)]
        for key, field in rows:
            self.assertEqual(key, field, "a field is spelled as in the file")
        keys = {key for key, _ in rows}
        self.assertGreater(len(keys), 80)
        self.assertEqual(set(settings_rows()), keys | {"catnames", "metafields"})

    def test_every_row_tells_meaning_and_example(self):
        for key, (_, meaning, example) in settings_rows().items():
            with self.subTest(key=key):
                self.assertTrue(meaning)
                self.assertIn("`", example)

    def test_the_defaults_of_numbers(self):
        rows = settings_rows()
        fields = re.findall(r"int32_t (\w+) = (-?\d+);", text("src", "settings", "settings.h"))
        checked = 0
        for key, value in fields:
            if key in rows:
                self.assertEqual(rows[key][0], value, key)
                checked += 1
        self.assertGreater(checked, 70)


def format_headers():
    """The headers of the format by their names."""
    return {path.name: path.read_text(encoding="utf-8")
            for path in sorted(PROJECT.joinpath("src", "format").glob("*.h"))}


class Formats(unittest.TestCase):
    def test_the_files_and_their_headers(self):
        rows = {}
        for line in text("docs", "formats.md").splitlines():
            cells = [re.findall(r"`([\w.]+)`", cell) for cell in line.strip("|").split(" | ")]
            if len(cells) == 4 and cells[0] and cells[0][0].endswith((".vdat", ".html")):
                rows[cells[0][0]] = cells[1]
        names = {}
        for header, source in format_headers().items():
            for name in re.findall(r'FileName\[\] = "([^"]+)"', source):
                names[name] = header
        self.assertEqual(len(names), 15)
        self.assertEqual({name: headers[0] for name, headers in rows.items()}, names)
        for headers in rows.values():
            self.assertEqual([each for each in headers if each not in format_headers()], [])

    def test_the_limits(self):
        found = {}
        for source in format_headers().values():
            found |= dict(re.findall(r"inline constexpr size_t (k\w+Limit) = (\d+);", source))
        told = dict(re.findall(r"^\| `(k\w+)` \| (\d+) \|", text("docs", "formats.md"), re.M))
        self.assertGreater(len(found), 5)
        self.assertEqual(told, found)


class Template(unittest.TestCase):
    def test_every_marker_is_described(self):
        source = text("src", "output", "template.cc") + text("src", "output", "sections.h")
        markers = set(re.findall(r"VELA_SHOW_\w+|VELASEARCH", source))
        self.assertGreater(len(markers), 15)
        page = text("docs", "template.md")
        self.assertEqual([name for name in sorted(markers) if name not in page], [])


class Manual(unittest.TestCase):
    def test_options_of_help_and_manual(self):
        told = subprocess.run([BIN / "vela_index", "--help"], capture_output=True, text=True,
                              check=True).stdout
        # An option and what the help calls its value: "--memory MB:UINT in [1 - 9]", "--quiet  No".
        of_help = re.findall(r"^  (?:-\w,)?(--[\w-]+(?: [A-Z[][A-Z|\]]*)?)", told, re.M)
        self.assertGreater(len(of_help), 10)
        page = subprocess.run(
            ["groff", "-man", "-Tlatin1", "-P-cbou", DOCS / "man" / "vela_index.1"],
            capture_output=True, encoding="latin-1", check=True).stdout.replace("\n\n", "\n")
        options = page.split("\nOPTIONS\n")[1].split("\nWHICH FILES ARE PAGES\n")[0]
        heads = re.findall(r"^       (--[a-z].*)$", options, re.M)
        # Where the option is short its text stands on the same line, behind blanks.
        of_manual = [option for head in heads
                     for option in re.split(r"  | (?=[A-Z][a-z])", head)[0].split(", ")]
        self.assertEqual(sorted(of_help), sorted(of_manual))
        for number in re.findall(r"\(default: (\d+)\)", told):
            self.assertIn(f"{number} by default", " ".join(options.split()))

    def test_exit_statuses_of_help_and_manual(self):
        told = subprocess.run([BIN / "vela_index", "--help"], capture_output=True, text=True,
                              check=True).stdout
        page = text("docs", "man", "vela_index.1").split(".SH EXIT STATUS")[1]
        self.assertEqual(re.findall(r" (\d) [a-z]", told.split("Exit status:")[1].split(".")[0]),
                         re.findall(r"^\.B (\d)$", page, re.M))

    def test_options_and_exit_statuses_of_the_inspector(self):
        told = subprocess.run([BIN / "vela_inspect", "--help"], capture_output=True, text=True,
                              check=True).stdout
        of_help = re.findall(r"^  (?:-\w,)?(--[\w-]+)", told, re.M)
        self.assertGreater(len(of_help), 10)
        page = text("docs", "man", "vela_inspect.1").replace("\\-", "-")
        options = page.split(".SH OPTIONS")[1].split(".SH EXIT STATUS")[0]
        heads = [line for line in options.split("\n.T") if line.startswith(("P\n", "Q\n"))]
        of_manual = [re.search(r"--[\w-]+", head)[0] for head in heads]
        self.assertEqual(sorted(of_help), sorted(of_manual))
        statuses = page.split(".SH EXIT STATUS")[1].split(".SH EXAMPLES")[0]
        self.assertEqual(re.findall(r" (\d) [a-z]", told.split("Exit status:")[1].split(".")[0]),
                         re.findall(r"^\.B (\d)$", statuses, re.M))

    def test_pages_are_well_formed(self):
        pages = sorted((DOCS / "man").iterdir())
        self.assertEqual([page.name for page in pages],
                         ["vela_index.1", "vela_index.toml.5", "vela_inspect.1", "vela_search.1"])
        for page in pages:
            run = subprocess.run(["groff", "-man", "-Tutf8", "-ww", page], capture_output=True,
                                 text=True, check=True)
            self.assertEqual(run.stderr, "", page.name)


class Configuration(unittest.TestCase):
    # What a table must hold before its other keys are looked at.
    NEEDED = {"category": 'name = "n"\npages = ["a"]', "boost": 'factor = 2\npages = ["a"]',
              "content": 'pages = ["a"]', "field": 'name = "n"', "synonym": 'words = ["a", "b"]'}
    RECOMMENDED_PAGE = '[[recommended.page]]\nkeywords = "k"\naddress = "a"'

    def known(self, before):
        """The names that the indexer knows where it meets an unknown one behind `before`."""
        with tempfile.TemporaryDirectory() as folder:
            file = Path(folder, "a.toml")
            file.write_text(f"{before}\nno_such_key = 1\n", encoding="utf-8")
            told = subprocess.run([BIN / "vela_index", "--config", file], capture_output=True,
                                  text=True).stderr
        return told.split("Known there: ")[1].strip().rstrip(".").split(", ")

    def tables(self):
        """The keys of each table, by its heading."""
        tables = {}
        for name in self.known(""):
            needed = self.NEEDED.get(name)
            heading = f"[[{name}]]" if needed else f"[{name}]"
            tables[heading] = self.known(f"{heading}\n{needed or ''}")
        # Tables of their own, below one that has other keys.
        tables["[recommended]"] = [key for key in tables["[recommended]"]
                                   if key not in ("page", "pages")]
        tables["[[recommended.page]]"] = self.known(self.RECOMMENDED_PAGE)
        return tables

    def test_the_manual_has_every_key_in_its_table(self):
        page = text("docs", "man", "vela_index.toml.5").replace("\\-", "-")
        sections = {}
        for section in page.split("\n.SH ")[1:]:
            title, body = section.split("\n", 1)
            # Under .TP: .B folder, .BR html ", " text, .BR Timing " (1), " VelaInfo " (1)"
            heads = re.findall(r"^\.TP\n\.BR? (.*)$", body, re.M)
            sections[title] = re.findall(r"\w+", re.sub(r"\([^)]*\)", "", " ".join(heads)))
        self.assertIn("[recommended.pages]", sections)
        tables = self.tables()
        self.assertGreater(sum(map(len, tables.values())), 90)
        for heading, keys in tables.items():
            with self.subTest(heading):
                self.assertEqual(sorted(sections[heading]), sorted(keys))

    def test_the_defaults_of_the_manual_are_what_is_written(self):
        page = text("docs", "man", "vela_index.toml.5").replace("\\-", "-")
        told = re.findall(r'(\w+) " \((-?\d+)\)', page.split("\n.SH [settings]")[1])
        self.assertGreater(len(told), 40)
        with tempfile.TemporaryDirectory() as folder:
            Path(folder, "site").mkdir()
            Path(folder, "site/a.html").write_text("<title>A page</title>", encoding="utf-8")
            subprocess.run([BIN / "vela_index", "--site", "site", "--base-url", "/", "--out",
                            "index", "--quiet"], check=True, cwd=folder)
            written = Path(folder, "index/settings.vdat").read_text(encoding="utf-8")
        for key, value in told:
            with self.subTest(key):
                self.assertIn(f"\n{key} = {value}\n", written)

    def test_the_example_has_every_key_in_its_table(self):
        example = text("assets", "vela_index.example.toml")
        tomllib.loads(example)
        found, heading = {}, None
        for line in example.splitlines():
            if table := re.match(r"(?:# )?(\[+[\w.]+\]+)", line):
                heading = table[1]
                found.setdefault(heading, [])
            if key := re.match(r"(?:# )?(\w+) = ", line):
                found[heading].append(key[1])
        self.assertIn("[recommended.pages]", found)
        for heading, keys in self.tables().items():
            with self.subTest(heading):
                if heading == "[settings]":  # a choice of them
                    self.assertLessEqual(set(found[heading]), set(keys))
                else:
                    self.assertEqual(sorted(found[heading]), sorted(keys))


class Links(unittest.TestCase):
    def test_links_lead_somewhere(self):
        pages = [PROJECT / "README.md", *sorted(PROJECT.glob("*/**/*.md"))]
        pages = [page for page in pages
                 if not {"build", "node_modules"} & set(page.relative_to(PROJECT).parts)]
        links = 0
        for page in pages:
            plain = re.sub(r"```.*?```", "", page.read_text(encoding="utf-8"), flags=re.S)
            for link in re.findall(r"\]\(([^)#]+)[^)]*\)", plain):
                if "://" not in link:
                    links += 1
                    self.assertTrue((page.parent / link).exists(), f"{page.name}: {link}")
        self.assertGreater(links, 15)


if __name__ == "__main__":
    sys.exit(unittest.main(verbosity=2))
