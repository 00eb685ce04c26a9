#!/usr/bin/env python3
"""Every script runs from any directory: tests and tools say what they do, checks find the project."""

import os
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

PROJECT = Path(__file__).resolve().parents[3]
THIS = Path(__file__).resolve()
# Those that say what they do when they are asked, without doing it.
ASKED = ("test.sh", "demo.sh", "scripts/check_tidy.py")
CHECKS = ("scripts/check_includes.py", "scripts/check_kept.py", "scripts/check_forbidden.sh",
          "scripts/changed_tests.py")


def scripts(ending):
    """Those of the project, apart from what a build or an installation put there."""
    for folder, folders, files in os.walk(PROJECT):
        folders[:] = sorted(set(folders) - {"build", "node_modules", ".git", "__pycache__"})
        for name in sorted(files):
            if name.endswith(ending):
                yield Path(folder, name)


class Scripts(unittest.TestCase):
    def setUp(self):
        self.elsewhere = tempfile.TemporaryDirectory()
        self.addCleanup(self.elsewhere.cleanup)

    def run_in(self, folder, *command):
        """(exit status, output) of the command."""
        environment = {**os.environ, "PYTHONDONTWRITEBYTECODE": "1",
                       "VELA_BIN": str(PROJECT / "build/release/bin")}
        done = subprocess.run(command, cwd=folder, env=environment, text=True,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=120)
        return done.returncode, done.stdout

    def run_elsewhere(self, *command):
        status, output = self.run_in(self.elsewhere.name, *command)
        self.assertEqual(status, 0, output[-2000:])
        self.assertEqual(os.listdir(self.elsewhere.name), [])
        return output

    def test_tests_in_python(self):
        asked = 0
        for path in scripts(".py"):
            text = path.read_text(encoding="utf-8")
            understands = "unittest.main()" in text or "argparse" in text
            understands = understands and "sys.argv.pop" not in text  # a server to try comes first
            if path == THIS or "__main__" not in text or not understands:
                continue
            with self.subTest(path=str(path.relative_to(PROJECT))):
                self.assertIn("usage", self.run_elsewhere(sys.executable, path, "--help"))
                asked += 1
        self.assertGreater(asked, 8)

    def test_what_can_be_asked(self):
        for name in ASKED:
            with self.subTest(name):
                self.assertIn(Path(name).name, self.run_elsewhere(PROJECT / name, "--help"))

    def test_checks_say_the_same_from_anywhere(self):
        for name in CHECKS:
            with self.subTest(name):
                self.assertEqual(self.run_in(self.elsewhere.name, PROJECT / name),
                                 self.run_in(PROJECT, PROJECT / name))

    def test_shell_scripts_stop_at_the_first_fault(self):
        found = 0
        for path in scripts(".sh"):
            with self.subTest(path=str(path.relative_to(PROJECT))):
                self.run_elsewhere("bash", "-n", path)
                text = path.read_text(encoding="utf-8")
                self.assertTrue(text.startswith("#!"))
                self.assertIn("\nset -e", text)
                self.assertTrue(os.access(path, os.X_OK), "cannot be run")
                found += 1
        self.assertGreater(found, 8)


if __name__ == "__main__":
    unittest.main()
