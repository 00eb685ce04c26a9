#!/usr/bin/env python3
"""A site that wants more memory than --memory gives: the index is the same, the process stays small,
and a disk that cannot take the rest is told."""

import os
import resource
import shutil
import subprocess
import unittest

import support

MEGABYTE = 1 << 20
PAGES = 3000
# Beyond --memory, whatever the site: docs/scaling.md.
BEYOND = 64


def has_allocator():
    """Whether the program has the allocator that can take memory from a file; with sanitizers not."""
    libraries = subprocess.run(["ldd", support.BIN / "vela_index"], capture_output=True, text=True)
    return "jemalloc" in libraries.stdout


def make_site(folder):
    for number in range(PAGES):
        words = " ".join(f"w{number}x{i}" for i in range(40))
        page = folder / f"{number // 100:02}" / f"p{number}.html"
        page.parent.mkdir(parents=True, exist_ok=True)
        page.write_text(f"<title>Page {number}</title><a href='/00/p{number // 2}.html'>half {number}"
                        f"</a><p>the words of this page are {words}", encoding="utf-8")
        os.utime(page, (1_700_000_000, 1_700_000_000))


def files_of(index):
    return {path.name: path.read_bytes() for path in index.iterdir() if path.is_file()}


class Memory(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = support.WORK / "memory"
        shutil.rmtree(cls.folder, ignore_errors=True)
        make_site(cls.folder / "site")
        cls.index(cls, "usual", 256)
        cls.expected = files_of(cls.folder / "usual")

    def index(self, name, megabytes, *options, **process):
        """The exit status, what was said, and the most memory that the run held, in MB."""
        arguments = [support.BIN / "vela_index", "--site", self.folder / "site", "--base-url",
                     "https://x.example/", "--out", self.folder / name, "--memory", str(megabytes),
                     *options]
        with subprocess.Popen(arguments, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                              **process) as run:
            said = run.stdout.read().decode()
            _, status, usage = os.wait4(run.pid, 0)
            run.returncode = os.waitstatus_to_exitcode(status)
        return run.returncode, said, usage.ru_maxrss / 1024

    def test_the_index_is_the_same_for_any_memory(self):
        for megabytes in (1, 2, 8):
            for jobs in (1, 4):
                with self.subTest(memory=megabytes, jobs=jobs):
                    status, said, most = self.index("small", megabytes, "--jobs", str(jobs),
                                                    "--check-links")
                    self.assertEqual(status, 0, said)
                    self.assertEqual(files_of(self.folder / "small"), self.expected)
                    if has_allocator():
                        self.assertLess(most, megabytes + BEYOND)
        support.inspect(self.folder / "small")

    def test_parts_are_the_same_for_any_memory(self):
        for part in (1, 2):
            status, said, _ = self.index("parts", 1, "--part", f"{part}/2", "--state",
                                         self.folder / f"part{part}")
            self.assertEqual(status, 0, said)
        merged = subprocess.run(
            [support.BIN / "vela_index", "--base-url", "https://x.example/", "--out",
             self.folder / "merged", "--memory", "1", "--merge", self.folder / "part1",
             self.folder / "part2"], capture_output=True)
        self.assertEqual(merged.returncode, 0, merged.stdout + merged.stderr)
        self.assertEqual(files_of(self.folder / "merged"), self.expected)

    @unittest.skipUnless(has_allocator(), "linked with another allocator")
    def test_a_disk_that_takes_no_more_is_told(self):
        limit = (3 * MEGABYTE, resource.getrlimit(resource.RLIMIT_FSIZE)[1])
        limited = {"preexec_fn": lambda: resource.setrlimit(resource.RLIMIT_FSIZE, limit)}
        status, said, _ = self.index("refused", 1, **limited)
        self.assertEqual(status, 1, said)
        self.assertRegex(said, "Cannot write the temporary file .*memory: File too large")
        self.assertFalse((self.folder / "refused").exists())
        # With memory enough nothing is asked of the disk but the index.
        status, said, _ = self.index("refused", 256, **limited)
        self.assertEqual(status, 0, said)


if __name__ == "__main__":
    unittest.main()
