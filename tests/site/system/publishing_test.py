#!/usr/bin/env python3
"""A new index takes the place of the old one while searches go on: each is answered from the one or
the other, whatever happens to the run that brings it."""

import ctypes
import os
import pathlib
import random
import re
import shutil
import signal
import subprocess
import threading
import time
import unittest

import support

PAGES = 40
QUERY = "vela_query=harbour+lighthouse+keper&vela_per_page=10"
SECONDS = re.compile(rb"\b\d+\.\d{3}\b")

CLONE_NEWNS = 0x20000
MS_BIND, MS_REC, MS_PRIVATE = 0x1000, 0x4000, 0x40000
LIBC = ctypes.CDLL(None, use_errno=True)


def enter_own_mounts():
    """Mounts made from now on are seen by nobody else and go with the process. Raises OSError."""
    if LIBC.unshare(CLONE_NEWNS) != 0:
        raise OSError(ctypes.get_errno(), "unshare")
    mount("none", "/", "", MS_REC | MS_PRIVATE)


def mount(source, target, kind, flags=0, data=""):
    if LIBC.mount(str(source).encode(), str(target).encode(), kind.encode(), flags,
                  data.encode()) != 0:
        raise OSError(ctypes.get_errno(), f"mount {target}")


def make_site(name):
    """A site of which every page, and so every file of its index, holds the site's name."""
    site = support.WORK / ("site_" + name)
    shutil.rmtree(site, ignore_errors=True)
    site.mkdir(parents=True)
    for page in range(PAGES):
        text = f"harbour keeper lighthouse {name} " * (page % 7 + 1) + f"w{page} " * 40
        if name == "longer":
            text += " ".join(f"further{page}x{i}" for i in range(300))
        file = site / f"{name}_{page}.html"
        file.write_text(f"<title>{name} {page}</title><p>{text}")
        os.utime(file, (1_700_000_000, 1_700_000_000))
    return site


def asked_environment():
    return {"REQUEST_METHOD": "GET", "QUERY_STRING": QUERY, "SCRIPT_NAME": "/search/search.cgi",
            "REMOTE_ADDR": "127.0.0.1", "PATH": os.environ["PATH"],
            # It cannot look for leaks in a process that is traced.
            "ASAN_OPTIONS": "detect_leaks=0"}


def search(index):
    """The page of one search, its one changing figure left out."""
    done = subprocess.run([index / "search.cgi"], env=asked_environment(), cwd="/",
                          stdin=subprocess.DEVNULL, capture_output=True, timeout=60)
    if done.returncode != 0 or done.stderr:
        raise AssertionError(f"exit status {done.returncode}: {done.stderr!r}")
    return SECONDS.sub(b"", done.stdout)


class Searches:
    """Asks the search over and over from several threads."""

    def __init__(self, index, threads=3):
        self.index = index
        self.pages = set()
        self.failures = []
        self.count = 0
        self._end = threading.Event()
        self._threads = [threading.Thread(target=self._ask) for _ in range(threads)]

    def _ask(self):
        while not self._end.is_set():
            try:
                self.pages.add(search(self.index))
                self.count += 1
            except (AssertionError, OSError) as failure:
                self.failures.append(repr(failure))

    def __enter__(self):
        for thread in self._threads:
            thread.start()
        return self

    def __exit__(self, *_):
        self._end.set()
        for thread in self._threads:
            thread.join()


class IndexFolder(unittest.TestCase):
    """An index folder among others, as on a server of its own."""

    @classmethod
    def setUpClass(cls):
        cls.sites = {name: make_site(name) for name in ("first", "longer")}

    def setUp(self):
        self.folder = support.WORK / self._testMethodName
        shutil.rmtree(self.folder, ignore_errors=True)
        self.folder.mkdir(parents=True)
        self.index = self.folder / "search"
        self.prepare()
        self.answers = {}
        for name in self.sites:
            self.publish(name, "--program", support.BIN / "vela_search")
            self.answers[name] = search(self.index)
            self.assertIn(f"/{name}_".encode(), self.answers[name])
        template = self.index / "search_template.html"
        template.write_text(template.read_text().replace("</body>", "<p>the owner's</p></body>"))
        for name in self.sites:
            self.publish(name)
            self.answers[name] = search(self.index)
            self.assertIn(b"the owner's", self.answers[name])
        self.assertNotEqual(*self.answers.values())

    def prepare(self):
        pass

    def command(self, name, *options):
        return [support.BIN / "vela_index", "--site", self.sites[name], "--base-url", "/",
                "--out", self.index, "--quiet", *options]

    def publish(self, name, *options):
        subprocess.run(self.command(name, *options), check=True)

    def left_behind(self):
        """What a run that ended well does not leave."""
        return [path.name for path in self.folder.iterdir()
                if path != self.index and not re.fullmatch(r"\.search\.old-\w{6}", path.name)]

    def check_whole(self):
        self.assertIn(search(self.index), self.answers.values())
        self.assertTrue((self.index / "vela_search.css").read_bytes())

    def locked(self):
        return (self.folder / ".search.lock").exists()

    def test_a_new_index_takes_the_place_of_the_old_one(self):
        for name in ("first", "longer"):
            self.publish(name)
            self.assertEqual(search(self.index), self.answers[name])
            self.check_whole()
            self.assertEqual(self.left_behind(), [])


class WhileSearching:
    """What may happen at one time: a search, a run, another run, the end of a run."""

    def test_a_search_that_has_begun_is_answered_from_its_index(self):
        """The search is stopped after each of its opens in turn, and the index replaced."""
        if shutil.which("strace") is None:
            self.skipTest("strace is not installed")
        self.publish("first")
        trace = self.folder / "trace"
        command = ["strace", "-qq", "-o", trace, "-e", "trace=openat"]
        counted = subprocess.run([*command, self.index / "search.cgi"], env=asked_environment(),
                                 stdin=subprocess.DEVNULL, capture_output=True)
        if counted.returncode != 0:
            self.skipTest(f"strace may not trace: {counted.stderr.decode()}")
        opens = [line for line in trace.read_text().splitlines() if line.startswith("openat(")]
        first = next(i for i, line in enumerate(opens) if f'"{self.index}/"' in line)
        self.assertGreater(len(opens) - first, 8)
        for stop in range(first + 1, len(opens) + 1):
            with self.subTest(stop=stop):
                self.publish("first")
                trace.write_text("")
                process = subprocess.Popen(
                    [*command, "-e", f"inject=openat:signal=STOP:when={stop}",
                     self.index / "search.cgi"],
                    env=asked_environment(), stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                    stderr=subprocess.STDOUT)
                while "stopped by SIGSTOP" not in trace.read_text():
                    self.assertIsNone(process.poll(), "it was not stopped")
                    time.sleep(0.005)
                for name in ("first", "longer"):
                    self.publish(name)
                children = pathlib.Path(f"/proc/{process.pid}/task/{process.pid}/children")
                os.kill(int(children.read_text()), signal.SIGCONT)
                page = SECONDS.sub(b"", process.communicate(timeout=60)[0])
                self.assertIn(page, self.answers.values())

    def test_no_search_fails_while_the_index_is_replaced(self):
        with Searches(self.index) as searches:
            for run in range(50):
                self.publish(("first", "longer")[run % 2])
        self.assertEqual(searches.failures, [])
        self.assertGreater(searches.count, 50)
        self.assertEqual(searches.pages, set(self.answers.values()))

    def test_no_search_fails_while_the_program_is_replaced(self):
        with Searches(self.index) as searches:
            for _ in range(20):
                self.publish("longer", "--program", support.BIN / "vela_search")
        self.assertEqual(searches.failures, [])
        self.assertEqual(searches.pages, {self.answers["longer"]})
        self.assertEqual((self.index / "search.cgi").stat().st_mode & 0o777, 0o755)

    def test_a_killed_run_does_no_harm(self):
        chance = random.Random(7)
        began = time.monotonic()
        self.publish("longer")
        whole_run = time.monotonic() - began
        killed = 0
        for run in range(40):
            name = ("first", "longer")[run % 2]
            process = subprocess.Popen(self.command(name))
            time.sleep(chance.uniform(0, whole_run * 1.1))
            process.kill()
            killed += process.wait() == -signal.SIGKILL
            self.check_whole()
        self.assertGreater(killed, 10)
        self.publish("first")
        self.assertEqual(search(self.index), self.answers["first"])
        self.assertEqual(self.left_behind(), [])

    def test_two_runs_at_once(self):
        first = self.stopped_run()
        second = subprocess.run(self.command("longer"), capture_output=True, text=True)
        self.assertEqual(second.returncode, 5)
        self.assertIn("Another run of vela_index is writing", second.stderr)
        waiting = subprocess.Popen(self.command("longer", "--wait"))
        interrupted = subprocess.Popen(self.command("longer", "--wait"), stderr=subprocess.DEVNULL)
        time.sleep(0.5)
        self.assertIsNone(waiting.poll())
        interrupted.send_signal(signal.SIGINT)
        self.assertEqual(interrupted.wait(), 4)
        first.send_signal(signal.SIGCONT)
        self.assertEqual(first.wait(), 0)
        self.assertEqual(waiting.wait(), 0)
        self.assertEqual(search(self.index), self.answers["longer"])
        self.assertEqual(self.left_behind(), [])

    def stopped_run(self):
        """A run that was stopped while it held the lock."""
        for _ in range(100):
            run = subprocess.Popen(self.command("first"))
            while run.poll() is None and not self.locked():
                time.sleep(0.001)
            run.send_signal(signal.SIGSTOP)
            time.sleep(0.05)
            if run.poll() is None and self.locked():
                return run
            run.kill()
            run.wait()
        raise AssertionError("every run was too quick")


class MountedFolder(IndexFolder):
    """The root of a mounted file system, as a container's volume is."""

    @classmethod
    def setUpClass(cls):
        try:
            enter_own_mounts()
        except OSError as error:
            raise unittest.SkipTest(f"no right to mount: {error}")
        super().setUpClass()

    def prepare(self):
        self.index.mkdir()
        mount("none", self.index, "tmpfs")
        self.addCleanup(subprocess.run, ["umount", self.index], check=True)

    def left_behind(self):
        generations = [path.name for path in (self.index / ".generations").iterdir()]
        return ([path.name for path in self.folder.iterdir() if path != self.index]
                + [name for name in generations if name != "current" and not name.isdigit()]
                + [path.name for path in self.index.iterdir() if not path.exists()])

    def locked(self):
        return (self.index / ".generations/lock").exists()


class OverlaidFolder(MountedFolder):
    """A folder that comes with a container's image: it lies in a lower layer."""

    def prepare(self):
        # An overlay needs layers of another kind than its own.
        layers = self.folder / "layers"
        layers.mkdir()
        mount("none", layers, "tmpfs")
        self.addCleanup(subprocess.run, ["umount", layers], check=True)
        for name in ("lower/search", "upper", "work"):
            (layers / name).mkdir(parents=True)
        (layers / "lower/search/search.cgi").write_text("in the way")
        (layers / "lower/search/search_template.html").write_text("<!--VELASEARCH--></body>")
        self.folder = self.folder / "merged"
        self.folder.mkdir()
        try:
            mount("overlay", self.folder, "overlay", 0,
                  f"lowerdir={layers}/lower,upperdir={layers}/upper,workdir={layers}/work")
        except OSError as error:
            self.skipTest(f"no overlay: {error}")
        self.addCleanup(subprocess.run, ["umount", self.folder], check=True)
        self.index = self.folder / "search"


class BoundFolder(MountedFolder):
    """A mount point on the same file system as its parent."""

    def prepare(self):
        elsewhere = support.WORK / "elsewhere" / self._testMethodName
        shutil.rmtree(elsewhere, ignore_errors=True)
        elsewhere.mkdir(parents=True)
        self.index.mkdir()
        mount(elsewhere, self.index, "", MS_BIND)
        self.addCleanup(subprocess.run, ["umount", self.index], check=True)


class SearchesOfAnIndexFolder(WhileSearching, IndexFolder):
    pass


class SearchesOfAMountedFolder(WhileSearching, MountedFolder):
    pass


if __name__ == "__main__":
    unittest.main()
