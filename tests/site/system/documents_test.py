#!/usr/bin/env python3
"""The documents of examples/documents, one of each kind, are found by what stands in them, with their
titles; what cannot be read costs nothing but itself, and is told."""

import io
import json
import shutil
import struct
import subprocess
import unittest
import zipfile

import support

FOLDER = support.PROJECT / "examples/documents"
SEALED = support.PROJECT / "tests/site/system/sealed.pdf"  # one of them, behind a password

# Words of one document alone, its address, its title.
FOUND = [
    ("lemonade", "/house_rules.docx", "House rules of the library"),
    ("projector", "/rooms.xlsx", "Rooms to rent"),
    ("otter", "/reading_list.odt", "Books about rivers"),
    ("floods", "/reading_list.odt", "Books about rivers"),
    ("\"reading room has\"", "/letter.rtf", "Letter to the members"),
    ("café", "/letter.rtf", "Letter to the members"),
    ("\"good morning\"", "/film.vtt", "A day in the library"),
    ("subtitles", "/welcome.md", "Welcome to the library"),
]
FOUND_IN_PDF = ("\"return box\"", "/opening_hours.pdf", "Opening hours of the library")


def bomb():
    """A docx of some kilobytes that unpacks to 400 MB."""
    packed = io.BytesIO()
    with zipfile.ZipFile(packed, "w", zipfile.ZIP_DEFLATED) as archive:
        archive.writestr("_rels/.rels", "<r/>")
        with archive.open("word/document.xml", "w") as part:
            for _ in range(400):
                part.write(b" " * (1 << 20))
    return packed.getvalue()


def picture(description):
    """A JPEG file that says this of itself (EXIF, one field)."""
    text = description + b"\0"
    exif = (b"Exif\0\0II*\0" + struct.pack("<IHHHIII", 8, 1, 0x010E, 2, len(text), 26, 0) + text)
    return b"\xFF\xD8\xFF\xE1" + struct.pack(">H", len(exif) + 2) + exif + b"\xFF\xDA"


class Documents(unittest.TestCase):
    def test_each_is_found_by_its_words(self):
        index = support.build_index(FOLDER, "documents")
        found = list(FOUND)
        if shutil.which("pdftotext"):
            found.append(FOUND_IN_PDF)
        for query, address, title in found:
            with self.subTest(query):
                self.assertEqual(support.search(index, query), [(address, title)])

    def test_what_cannot_be_read_is_left_out_with_its_reason(self):
        site = support.WORK / "hostile"
        shutil.rmtree(site, ignore_errors=True)
        site.mkdir(parents=True)
        whole = (FOLDER / "house_rules.docx").read_bytes()
        (site / "a.html").write_text("<title>A page</title>text", encoding="utf-8")
        (site / "whole.docx").write_bytes(whole)
        (site / "cut.docx").write_bytes(whole[:-100])
        (site / "bomb.docx").write_bytes(bomb())
        (site / "sealed.xlsx").write_bytes(
            b"\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1" + "EncryptedPackage".encode("utf-16-le"))
        (site / "nonsense.rtf").write_bytes(b"no rich text")
        (site / "zeros.epub").write_bytes(bytes(10000))
        expected = {"cut.docx": "damaged", "bomb.docx": "document_too_large",
                    "sealed.xlsx": "encrypted", "nonsense.rtf": "damaged",
                    "zeros.epub": "damaged", "plain.xls": "damaged", "plain.ppt": "damaged",
                    "zeros.ppt": "damaged"}
        (site / "plain.xls").write_bytes(b"a,b")
        (site / "plain.ppt").write_bytes(b"slides")
        (site / "zeros.ppt").write_bytes(b"\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1" + bytes(10000))
        if shutil.which("pdftotext"):
            shutil.copy2(SEALED, site)
            (site / "empty.pdf").write_bytes(b"%PDF-1.7\n")
            expected |= {"sealed.pdf": "encrypted", "empty.pdf": "damaged"}
        report = support.WORK / "report"
        subprocess.run([support.BIN / "vela_index", "--site", site, "--base-url", "/", "--quiet",
                        "--out", support.WORK / "hostile_index", "--report", report], check=True)
        told = [json.loads(line) for line in report.read_text(encoding="utf-8").splitlines()]
        self.assertEqual({line["path"]: line["reason"] for line in told if "path" in line},
                         expected)

    def test_pictures_are_pages_on_request(self):
        folder = support.WORK / "pictures"
        shutil.rmtree(folder, ignore_errors=True)
        (folder / "site").mkdir(parents=True)
        (folder / "site/index.html").write_text("<title>A page</title>text", encoding="utf-8")
        (folder / "site/bridge.jpg").write_bytes(picture(b"A footbridge at dawn"))
        (folder / "site/silent.jpg").write_bytes(b"\xFF\xD8\xFF\xDA")
        config = folder / "vela_index.toml"
        for wanted, pages in (("", 1), ('pictures = ["jpg"]\n', 2)):
            config.write_text(f'[site]\nfolder = "site"\nbase_url = "/"\nout = "index"\n{wanted}',
                              encoding="utf-8")
            report = folder / "report.json"
            subprocess.run([support.BIN / "vela_index", "--config", config, "--report", report],
                           cwd=folder, check=True, stdout=subprocess.DEVNULL)
            support.inspect(folder / "index")
            told = json.loads(report.read_text(encoding="utf-8"))
            self.assertEqual(told["counts"]["pages"], pages)
        self.assertEqual([page["code"] for page in told["documents"]
                          if page["path"] == "silent.jpg"], ["no_text"])
        shutil.copy2(support.BIN / "vela_search", folder / "index/search.cgi")
        self.assertEqual(support.search(folder / "index", "footbridge"),
                         [("/bridge.jpg", "bridge.jpg")])

    def test_without_the_program_beside_it_pages_are_indexed_all_the_same(self):
        alone = support.WORK / "alone"
        alone.mkdir(parents=True, exist_ok=True)
        shutil.copy2(support.BIN / "vela_index", alone)
        report = alone / "report"
        subprocess.run([alone / "vela_index", "--site", FOLDER, "--base-url", "/", "--quiet",
                        "--out", alone / "index", "--report", report], check=True)
        told = [json.loads(line) for line in report.read_text(encoding="utf-8").splitlines()]
        left_out = {line["path"]: line["reason"] for line in told if "path" in line}
        self.assertEqual(left_out["house_rules.docx"], "reader_missing")
        self.assertNotIn("welcome.md", left_out)


if __name__ == "__main__":
    unittest.main()
