#!/usr/bin/env python3
"""Documents that people and programs made, forty of each kind: each is read or left out for the right
reason, and found by words that another reader sees in it. Where fewer are free, other programs made the
rest of documents of another kind (docs/licences.md)."""

import json
import os
import resource
import shutil
import subprocess
import tarfile
import unittest
import urllib.parse

import support

HERE = support.PROJECT / "tests/site/system"
# A build with sanitizers takes many times as long: it reads so many of each kind.
OF_EACH_KIND = int(os.environ.get("VELA_DOCUMENTS_OF_A_KIND", "1000"))
SECONDS_AT_MOST = 60
MEGABYTES_AT_MOST = 400


def documents():
    """(name, why it is left out or None, words in it or "") of each document that is tried."""
    count = {}
    for line in (HERE / "real_documents.tsv").read_text(encoding="utf-8").splitlines():
        if line.startswith("#"):
            continue
        name, why, words = line.split("\t")
        kind = name.partition("/")[0]
        count[kind] = count.get(kind, 0) + 1
        if count[kind] <= OF_EACH_KIND:
            yield name, None if why == "-" else why, words


def subtitles(text):
    """The text as somebody would say it, ten words a cue."""
    words = text.split()
    cues = [f"{second // 60:02}:{second % 60:02}.000 --> {second // 60:02}:{second % 60:02}.900\n"
            f"<v Speaker>{' '.join(words[at:at + 10])}\n"
            for second, at in enumerate(range(0, len(words), 10))]
    return "WEBVTT\n\n" + "\n".join(cues)


class RealDocuments(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.documents = list(documents())
        shutil.rmtree(support.WORK, ignore_errors=True)
        site = support.WORK / "site"
        wanted = {name for name, _, _ in cls.documents}
        with tarfile.open(HERE / "real_documents.tar.xz") as archive:
            archive.extractall(site, [one for one in archive if one.name in wanted])
        # Few give subtitles away: the words of the Markdown files, said.
        for name, why, words in cls.documents[:]:
            if name.startswith("md/"):
                said = site / "vtt" / (name[3:-3] + ".vtt")
                said.parent.mkdir(exist_ok=True)
                text = (site / name).read_text(encoding="utf-8", errors="replace")
                # A part for each: the two would be copies of one another.
                plain = "".join(c if c.isalnum() else " " for c in text) + " said aloud"
                said.write_text(subtitles(plain), encoding="utf-8")
                cls.documents.append((f"vtt/{said.name}", why, words))
        cls.index = support.WORK / "index"
        report = support.WORK / "report"
        subprocess.run([support.BIN / "vela_index", "--site", site, "--base-url", "/", "--quiet",
                        "--out", cls.index, "--report", report], check=True,
                       timeout=SECONDS_AT_MOST * (10 if OF_EACH_KIND < 1000 else 1))
        cls.used = resource.getrusage(resource.RUSAGE_CHILDREN)
        told = [json.loads(line) for line in report.read_text(encoding="utf-8").splitlines()]
        cls.reasons = {line["path"]: line["reason"] for line in told if "reason" in line}
        support.inspect(cls.index)
        shutil.copy2(support.BIN / "vela_search", cls.index / "search.cgi")

    def finds(self, words, name):
        """Whether a search for the phrase has the document among its results."""
        for page in range(1, 20):
            results = support.search(self.index, f'"{words}"', vela_per_page=100, vela_page=page)
            addresses = [urllib.parse.unquote(result[0].partition("#")[0]) for result in results]
            if "/" + name in addresses:
                return True
            if len(addresses) < 100:
                return False
        return False

    def test_each_is_read_or_left_out_for_the_right_reason(self):
        expected = {name: why for name, why, _ in self.documents if why is not None}
        self.assertEqual(self.reasons, expected)

    def test_each_is_found_by_words_in_it(self):
        self.assertEqual([(name, words) for name, why, words in self.documents
                          if words and why is None and not self.finds(words, name)], [])

    def test_it_takes_no_more_than_it_may(self):
        if OF_EACH_KIND < 1000:
            self.skipTest("sanitizers take time and memory of their own")
        self.assertLess(self.used.ru_utime + self.used.ru_stime, SECONDS_AT_MOST)
        self.assertLess(self.used.ru_maxrss / 1024, MEGABYTES_AT_MOST)


if __name__ == "__main__":
    unittest.main()
