#!/usr/bin/env python3
"""Runs with --state: what has not changed is not opened; a run that is killed anywhere leaves a state
from which the next one makes the index of a run from nothing."""

import os
import pathlib
import random
import shutil
import signal
import subprocess
import time
import unittest

import support

BASE = "https://x.example/"
PAGES = 400
WORDS = [f"word{i}" for i in range(900)]


class Incremental(unittest.TestCase):
    def setUp(self):
        self.folder = support.WORK / self._testMethodName
        shutil.rmtree(self.folder, ignore_errors=True)
        self.site = self.folder / "site"
        self.index = self.folder / "index"
        self.state = self.folder / "state"
        chance = random.Random(5)
        for number in range(PAGES):
            page = self.site / f"f{number % 7}" / f"p{number}.html"
            page.parent.mkdir(parents=True, exist_ok=True)
            page.write_text(f"<title>Page {number}</title><a href='../f1/p1.html'>one</a><p>" +
                            " ".join(chance.choices(WORDS, k=200)))
            os.utime(page, (1_600_000_000 + number * 100_000,) * 2)

    def command(self, *options, out=None):
        return [support.BIN / "vela_index", "--site", self.site, "--base-url", BASE,
                "--out", out or self.index, *options]

    def run_index(self, *options):
        done = subprocess.run(self.command("--state", self.state, *options), capture_output=True,
                              text=True, check=True)
        self.assertNotIn("Warning", done.stdout)
        return done.stdout

    def expect_index_of_a_run_from_nothing(self):
        other = self.folder / "other"
        subprocess.run(self.command("--quiet", out=other), check=True)
        self.assertEqual(self.files(self.index), self.files(other))

    @staticmethod
    def files(folder):
        return {path.relative_to(folder): path.read_bytes()
                for path in folder.rglob("*") if path.is_file()}

    def test_what_has_not_changed_is_not_opened(self):
        if shutil.which("strace") is None:
            self.skipTest("strace is not installed")
        time.sleep(3)  # times that a file may be changed in again are not trusted
        self.run_index()
        trace = self.folder / "trace"
        changed = self.site / "f3" / "p3.html"
        for text, opened in ((None, []), ("<title>Page 3</title>changed", [str(changed)])):
            if text is not None:
                changed.write_text(text)
            # A sanitizer's search for leaks ends a program that is traced.
            done = subprocess.run(["strace", "-f", "-qq", "-e", "trace=open,openat", "-o", trace,
                                   *self.command("--state", self.state)], capture_output=True,
                                  text=True, check=False,
                                  env={**os.environ, "ASAN_OPTIONS": "detect_leaks=0"})
            if not trace.exists() or not trace.read_text():
                self.skipTest(f"strace may not trace: {done.stderr}")
            self.assertEqual(done.returncode, 0, done.stderr)
            pages = {line.split('"')[1] for line in trace.read_text().splitlines()
                     if '.html"' in line and str(self.site) in line}
            self.assertEqual(sorted(pages), opened)
            self.assertEqual("Nothing has changed" in done.stdout, text is None)
        self.expect_index_of_a_run_from_nothing()

    def test_runs_that_are_killed(self):
        begun = time.monotonic()
        self.run_index()
        took = time.monotonic() - begun
        chance = random.Random(3)
        for number in range(24):
            page = self.site / f"f{number % 7}" / f"p{number}.html"
            page.write_text(f"<title>Other {number}</title>" + " ".join(chance.choices(WORDS, k=50)))
            (self.site / "f2" / f"new{number}.html").write_text(f"<title>New {number}</title>new")
            process = subprocess.Popen(self.command("--state", self.state, "--quiet", "--jobs",
                                                    str(number % 3 + 1)))
            time.sleep(took * 1.2 * number / 24)
            process.send_signal(signal.SIGKILL if number % 4 else signal.SIGTERM)
            process.wait()
            if number % 6 == 5:
                self.run_index()
                self.expect_index_of_a_run_from_nothing()
        support.inspect(self.index)

    def test_the_state_is_for_its_owner_alone(self):
        self.run_index()
        self.assertEqual(self.state.stat().st_mode & 0o777, 0o700)
        for file in self.state.iterdir():
            self.assertEqual(file.stat().st_mode & 0o077, 0, file)
        names = {path.name for path in self.index.rglob("*")}
        self.assertNotIn("vela_pages.db", names)

    def test_two_runs_do_not_use_one_state(self):
        self.run_index()
        site = pathlib.Path(self.site)
        for number in range(PAGES, PAGES * 6):
            (site / f"more{number}.html").write_text(f"<title>More {number}</title>" +
                                                     " ".join(WORDS[:200]))
        first = subprocess.Popen(self.command("--state", self.state, "--quiet"))
        lock = self.state / "vela_state.lock"
        while not lock.exists() and first.poll() is None:
            time.sleep(0.001)
        second = subprocess.run(self.command("--state", self.state, out=self.folder / "index2"),
                                capture_output=True, text=True, check=False)
        if first.poll() is None:
            self.assertEqual(second.returncode, 5, second.stderr)
            self.assertIn("Another run is using", second.stderr)
        self.assertEqual(first.wait(), 0)


if __name__ == "__main__":
    unittest.main()
