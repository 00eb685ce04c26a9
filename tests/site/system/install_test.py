#!/usr/bin/env python3
"""`cmake --install` into an empty folder: what is needed is there and works from there."""

import os
import re
import shutil
import subprocess
import unittest
from pathlib import Path

import support

BUILD = Path(os.environ.get("VELA_BUILD", support.BIN.parent))
PREFIX = support.WORK / "prefix"
DOCUMENTS = PREFIX / "share/doc/vela_search"
PAGES = {"vela_index": "1", "vela_inspect": "1", "vela_search": "1", "vela_index.toml": "5"}


def version():
    text = (support.PROJECT / "CMakeLists.txt").read_text(encoding="utf-8")
    return re.search(r"project\(\w+ VERSION ([\d.]+)", text)[1]


class Install(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        shutil.rmtree(support.WORK, ignore_errors=True)
        subprocess.run(["cmake", "--install", BUILD, "--prefix", PREFIX], check=True,
                       stdout=subprocess.DEVNULL)

    def test_the_programs_work_from_there(self):
        said = subprocess.run([PREFIX / "bin/vela_index", "--version"], check=True,
                              capture_output=True, text=True).stdout
        self.assertEqual(said, f"vela_index {version()}\n")
        index = support.WORK / "index"
        subprocess.run([PREFIX / "bin/vela_index", "--out", index, "--quiet",
                        "--config", DOCUMENTS / "examples/library/vela_index.toml"], check=True)
        subprocess.run([PREFIX / "bin/vela_inspect", index], check=True,
                       stdout=subprocess.DEVNULL)
        shutil.copy2(PREFIX / "bin/vela_search", index / "search.cgi")
        self.assertEqual(support.search(index, "opening hours")[0][0], "/hours.html")
        self.assertIn(f'Version = "{version()}"', (index / "settings.vdat").read_text("utf-8"))

    def test_man_finds_the_pages(self):
        for name, section in PAGES.items():
            page = PREFIX / f"share/man/man{section}/{name}.{section}"
            self.assertIn(f'"Vela Search {version()}"', page.read_text(encoding="utf-8"))
            self.assertEqual(page.read_text(encoding="utf-8").count(version()), 1)
            if shutil.which("man"):
                found = subprocess.run(["man", "-M", PREFIX / "share/man", "-w", section, name],
                                       check=True, capture_output=True, text=True).stdout
                self.assertEqual(Path(found.strip()).resolve(), page.resolve())

    def test_assets_and_server_configurations_are_there(self):
        for folder, installed in (("assets", PREFIX / "share/vela_search"),
                                  ("deploy", DOCUMENTS / "deploy"),
                                  ("examples", DOCUMENTS / "examples")):
            for path in (support.PROJECT / folder).rglob("*"):
                if path.is_file():
                    copy = installed / path.relative_to(support.PROJECT / folder)
                    self.assertEqual(copy.read_bytes(), path.read_bytes())
                    self.assertEqual(copy.stat().st_mode & 0o111, path.stat().st_mode & 0o111)

    def test_links_between_the_documents_hold(self):
        sources = ("src/", "indexer/", "inspector/", "tests/", "bench/", "tools/", "scripts/", "assets/", "man/",
                   "test.sh", "demo.sh")
        for document in (DOCUMENTS / "README.md", *sorted((DOCUMENTS / "docs").glob("*.md"))):
            for link in re.findall(r"\]\(([^)#\s]+)", document.read_text(encoding="utf-8")):
                target = (document.parent / link).resolve()
                below = str(target.relative_to(DOCUMENTS)) if target.is_relative_to(DOCUMENTS) else ""
                if "://" in link or below.startswith(sources):
                    continue
                self.assertTrue(target.exists(), f"{document.name}: {link}")

    def test_the_licences_of_what_is_linked_are_there(self):
        if not Path("/usr/share/doc/libc6/copyright").exists():
            self.skipTest("this system keeps no licences beside its packages")
        names = {path.name for path in (DOCUMENTS / "licences").iterdir()}
        listed = re.findall(r"^\| `([\w.+-]+)` \|", (DOCUMENTS / "docs/licences.md").read_text("utf-8"),
                            re.M)
        self.assertGreater(len(listed), 6)
        self.assertLessEqual(set(listed), names)
        self.assertIn("LGPL-2.1", names)


if __name__ == "__main__":
    unittest.main()
