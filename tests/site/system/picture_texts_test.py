#!/usr/bin/env python3
"""Pictures that are pages are found by the alternative texts of the pages that show them, and the index
is the same however it is made."""

import os
import shutil
import struct
import subprocess
import unittest

import support

LEFT_OUT = 8
SILENT = b"\xFF\xD8\xFF\xDA"
CONFIG = '[site]\nfolder = "site"\nbase_url = "/"\nout = "{}"\npictures = ["jpg"]\n'


def described(description):
    """A JPEG file that says this of itself (EXIF, one field)."""
    text = description + b"\0"
    exif = (b"Exif\0\0II*\0" + struct.pack("<IHHHIII", 8, 1, 0x010E, 2, len(text), 26, 0) + text)
    return b"\xFF\xD8\xFF\xE1" + struct.pack(">H", len(exif) + 2) + exif + b"\xFF\xDA"


class PictureTexts(unittest.TestCase):
    def setUp(self):
        self.folder = support.WORK / self._testMethodName
        shutil.rmtree(self.folder, ignore_errors=True)
        # Pictures stand before, between and behind the pages in the order of their paths.
        self.add("a.jpg", SILENT)
        self.add("img/bridge.jpg", described(b"A footbridge at dawn"))
        self.add("img/heron one.jpg", SILENT)
        self.add("z.jpg", SILENT + b"another")
        self.add("index.html", b"<title>Home</title><p>Text <img src='img/heron%20one.jpg?v=2' "
                               b"alt='A heron in shallow water'><img src=a.jpg alt=''>")
        self.add("more/p.html", b"<title>More</title><p>Text "
                                b"<a href=../img/bridge.jpg><img src=s.jpg alt='The old crossing'></a>"
                                b"<img src='../img/heron one.jpg' alt='Grey bird'>"
                                b"<nav><img src=../z.jpg alt=menu></nav>")
        for number in range(40):
            self.add(f"n/{number}.html", b"<title>N%d</title><p>Text %d <img src=/z.jpg alt='View %d'>"
                     % (number, number, number))

    def add(self, path, content):
        file = self.folder / "site" / path
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_bytes(content)

    def run_index(self, out, *options, status=0):
        config = self.folder / f"{out}.toml"
        config.write_text(CONFIG.format(out))
        done = subprocess.run([support.BIN / "vela_index", "--config", config, *options],
                              cwd=self.folder, capture_output=True, text=True)
        self.assertEqual(done.returncode, status, done.stderr)
        return done.stdout

    def build(self, out, *options):
        self.run_index(out, *options)
        support.inspect(self.folder / out)
        return self.files(self.folder / out)

    def found(self, query, out="index"):
        index = self.folder / out
        shutil.copy2(support.BIN / "vela_search", index / "search.cgi")
        results = support.search(index, query)
        (index / "search.cgi").unlink()
        return {address: title for address, title in results if address.endswith(".jpg")}

    @staticmethod
    def files(folder):
        return {path.relative_to(folder): path.read_bytes()
                for path in folder.rglob("*") if path.is_file()}

    def test_pictures_are_found(self):
        said = self.run_index("index")
        support.inspect(self.folder / "index")
        self.assertIn("no text: a.jpg", said)
        heron = {"/img/heron%20one.jpg": "A heron in shallow water"}
        for query, pictures in (
                ("heron", heron),
                ("grey", heron),
                ('"heron in shallow"', heron),
                ("footbridge", {"/img/bridge.jpg": "bridge.jpg"}),
                ("crossing", {"/img/bridge.jpg": "bridge.jpg"}),
                ("menu", {}),
                ("17", {"/z.jpg": "View 0"}),
                ("18", {})):  # the first ten texts count, in the order of paths: 0, 1, 10 to 17
            with self.subTest(query):
                self.assertEqual(self.found(query), pictures)

    def test_the_index_is_the_same_however_it_is_made(self):
        whole = self.build("index", "--jobs", "1")
        for name, options in (("two", ("--jobs", "2")), ("five", ("--jobs", "5")),
                              ("small", ("--jobs", "3", "--memory", "1"))):
            with self.subTest(name):
                self.assertEqual(self.build(name, *options), whole)
        parts = [str(self.folder / f"part{number}") for number in (1, 2, 3)]
        for number, part in enumerate(parts, 1):
            self.run_index("none", "--part", f"{number}/3", "--state", part)
        merged = self.folder / "merged.toml"
        merged.write_text('[site]\nbase_url = "/"\nout = "merged"\npictures = ["jpg"]\n')
        subprocess.run([support.BIN / "vela_index", "--config", merged, "--quiet",
                        *[f"--merge={part}" for part in parts]], cwd=self.folder, check=True)
        self.assertEqual(self.files(self.folder / "merged"), whole)

    def test_another_text_of_a_page_changes_its_picture(self):
        state = ("--state", str(self.folder / "state"))
        for change in (
                lambda: None,
                lambda: self.add("index.html", b"<title>Home</title><img src='img/heron one.jpg' "
                                               b"alt='An egret'>Text<img src=a.jpg alt='A boat'>"),
                lambda: (self.folder / "site/more/p.html").unlink(),
                lambda: (self.folder / "site/img/heron one.jpg").write_bytes(described(b"By itself")),
                lambda: (self.folder / "site/a.jpg").unlink()):
            change()
            self.assertEqual(self.build("index", *state), self.build("fresh"))
            self.assertIn("Nothing has changed", self.run_index("index", *state))
        self.assertEqual(self.found("egret"), {"/img/heron%20one.jpg": "heron one.jpg"})
        self.assertEqual(self.found("heron"), {"/img/heron%20one.jpg": "heron one.jpg"})
        self.assertEqual(self.found("shallow"), {})

    def test_without_pictures_as_pages_their_addresses_say_nothing(self):
        made = []
        for name in (b"z.jpg", b"a.jpg"):
            self.add("index.html", b"<title>Home</title><p>Text <img src=%s alt='A heron'>" % name)
            os.utime(self.folder / "site/index.html", (1_600_000_000, 1_600_000_000))
            subprocess.run([support.BIN / "vela_index", "--site", self.folder / "site",
                            "--base-url", "/", "--out", self.folder / "index", "--quiet"], check=True)
            made.append(self.files(self.folder / "index"))
        self.assertEqual(made[0], made[1])

    def test_what_a_page_says_is_explained(self):
        said = self.run_index("index", "--explain-page", "img/heron one.jpg")
        self.assertIn("in the index as /img/heron%20one.jpg", said)
        self.assertIn('2 texts of pages that show it', said)
        self.assertIn('- "A heron in shallow water"', said)
        self.assertIn('- "Grey bird"', said)
        said = self.run_index("index", "--explain-page", "a.jpg", status=LEFT_OUT)
        self.assertIn("left out: no text", said)
        self.assertIn("no page has one for it", said)


if __name__ == "__main__":
    unittest.main()
