#!/usr/bin/env python3
"""A run that is killed or stopped, wherever it stands, leaves a whole index: the one before or the
new one. The next run then succeeds and clears up, and the index before is still the right one."""

import random
import re
import shutil
import subprocess
import unittest

import publishing_test as publishing
import support

# What changes something that others see: each of these calls is a point of its own.
CHANGING = ("rename", "renameat", "renameat2", "link", "linkat", "symlink", "symlinkat", "unlink",
            "unlinkat", "rmdir", "mkdir", "mkdirat", "chmod", "fchmodat", "chown", "utimensat",
            "flock", "fsync", "fdatasync", "ftruncate")


def traced(command, trace, *options):
    return subprocess.run(["strace", "-f", "-qq", "-o", trace, *options, *command],
                          capture_output=True, text=True, timeout=120)


def calls_of(trace):
    """The system calls of a traced run: (name, which of that name in its thread)."""
    calls = []
    counts = {}
    for line in trace.read_text(errors="replace").splitlines():
        match = re.match(r"(\d+) +(\w+)\(", line)
        if match:
            counts[match.groups()] = counts.get(match.groups(), 0) + 1
            calls.append((match[2], counts[match.groups()]))
    return calls


class Killed:
    """The ways to end a run too early."""

    POINTS = 100

    def setUp(self):
        if shutil.which("strace") is None:
            self.skipTest("strace is not installed")
        super().setUp()
        self.trace = self.folder.parent / (self.folder.name + ".trace")

    def points(self, command, count):
        """Places in the run of `command`, which is made whole for it: those that change something
        and others by chance, `count` in all."""
        whole = traced(command, self.trace)
        if not self.trace.exists() or not self.trace.read_text():
            self.skipTest(f"strace may not trace: {whole.stderr}")
        self.assertEqual(whole.returncode, 0, whole.stderr)
        calls = [call for call in calls_of(self.trace) if call[0] not in ("execve", "exit_group")]
        changing = [call for call in calls if call[0] in CHANGING]
        others = [call for call in calls if call[0] not in CHANGING]
        chance = random.Random(11)
        chosen = chance.sample(changing, min(len(changing), count * 2 // 3))
        return chosen + chance.sample(others, min(len(others), count - len(chosen)))

    def end_at(self, point, command, signal):
        name, number = point
        return traced(command, self.trace, "-e", f"trace={name}", "-e",
                      f"inject={name}:signal={signal}:when={number}").returncode

    def present(self):
        """The site of the index that is there; fails unless it is whole."""
        page = publishing.search(self.index)
        names = [name for name, answer in self.answers.items() if answer == page]
        self.assertEqual(len(names), 1)
        inspected = subprocess.run([support.BIN / "vela_inspect", self.index],
                                   capture_output=True, text=True)
        self.assertEqual(inspected.returncode, 0, inspected.stdout + inspected.stderr)
        return names[0]

    def rollback(self):
        return [support.BIN / "vela_index", "--rollback", "--out", self.index, "--quiet"]

    def check_runs(self, signal, count):
        self.publish("first")
        points = self.points(self.command("longer"), count)
        self.publish("first")
        ended = 0
        for point in points:
            with self.subTest(signal=signal, point=point):
                status = self.end_at(point, self.command("longer"), signal)
                ended += status != 0
                present = self.present()
                if status == 0:
                    self.assertEqual(present, "longer")
                self.publish("first")
                self.assertEqual(self.present(), "first")
                self.assertEqual(self.left_behind(), [])
                # An index that was made and never put into place is not the one before.
                subprocess.run(self.rollback(), check=True)
                self.assertEqual(self.present(), present)
                subprocess.run(self.rollback(), check=True)
                self.assertEqual(self.present(), "first")
        return ended

    def test_a_killed_run(self):
        self.assertGreater(self.check_runs("KILL", self.POINTS), self.POINTS // 2)

    def test_a_run_that_is_stopped(self):
        self.check_runs("TERM", self.POINTS // 4)

    def test_a_killed_rollback(self):
        points = self.points(self.rollback(), self.POINTS // 2)
        ended = 0
        for point in points:
            with self.subTest(point=point):
                self.publish("first")
                self.publish("longer")
                ended += self.end_at(point, self.rollback(), "KILL") != 0
                before = self.present()
                subprocess.run(self.rollback(), check=True)
                self.assertEqual(self.left_behind(), [])
                self.assertEqual(self.present(), "first" if before == "longer" else "longer")
        self.assertGreater(ended, len(points) // 2)


class KilledInAnIndexFolder(Killed, publishing.IndexFolder):
    pass


class KilledInAMountedFolder(Killed, publishing.MountedFolder):
    POINTS = 30


if __name__ == "__main__":
    unittest.main()
