#!/usr/bin/env python3
"""deploy/replicas/distribute_index.sh: what it puts where, what it keeps, and that a server that
fails changes nothing."""

import os
import shutil
import subprocess
import unittest

from places import DEPLOY, Place, change_settings, run_by_hand

SCRIPT = DEPLOY / "replicas/distribute_index.sh"

# In the place of ssh: the host is a folder, and the command goes through a shell as ssh's does.
REMOTE_SHELL = """\
#!/bin/sh
if [ "$1" = -l ]; then shift 2; fi
host=${1#*@}
shift
[ -d "{root}/hosts/$host" ] || { echo "no host $host" >&2; exit 255; }
echo "$host" >>"{root}/reached"
exec sh -c "$*"
"""


class DistributeTest(unittest.TestCase):
    def setUp(self):
        self.place = Place()
        self.addCleanup(self.place.remove)
        self.shell = self.place.root / "remote_shell"
        self.shell.write_text(REMOTE_SHELL.replace("{root}", str(self.place.root)))
        self.shell.chmod(0o755)
        for host in ("web1", "web2"):
            (self.place.root / "hosts" / host).mkdir(parents=True)
        # Names that a careless command line would take apart.
        self.first = self.place.root / "hosts/web1/site's search"
        self.second = self.place.root / "hosts/web2/search $(touch injected) \"2\""
        self.third = self.place.root / "third"
        self.targets = [f"web1:{self.first}", f"me@web2:{self.second}", str(self.third)]
        self.links = [self.first, self.second, self.third]
        self.index = self.place.build_index("new index")
        (self.index / "logs").mkdir()
        (self.index / "logs/searchwords.log").write_text("of the indexing machine\n")

    def run_script(self, *arguments):
        return subprocess.run([SCRIPT, *arguments], capture_output=True, text=True, timeout=60,
                              cwd=self.place.root)

    def distribute(self, *arguments, index=None, status=0):
        done = self.run_script(*arguments, "--rsh", str(self.shell), "--",
                               *([] if "--rollback" in arguments else [index or self.index]),
                               *self.targets)
        self.assertEqual(done.returncode, status, done.stderr)
        if status == 0:
            self.assertEqual(done.stderr, "")
        return done

    def versions(self, link):
        return sorted(path.name for path in (link.parent / (link.name + ".versions")).iterdir())

    def pages_found(self, link):
        return run_by_hand(link, query="vela_query=lighthouse&vela_xml=1")[2].count(b"<item>")

    def add_page(self, text):
        (self.place.site / "more.html").write_text(
            f"<html><head><title>More</title></head><body>{text}</body></html>")
        shutil.rmtree(self.index)
        self.place.build_index("new index")

    def test_help(self):
        done = self.run_script("--help")
        self.assertEqual(done.returncode, 0)
        self.assertTrue(done.stdout.startswith("Copies an index to several web servers"))
        self.assertIn("--rollback", done.stdout)

    def test_wrong_arguments(self):
        empty = self.place.folder("empty")
        no_program = self.place.build_index("no_program")
        (no_program / "search.cgi").unlink()
        for arguments, message in [
            ([], "at least one target"),
            ([self.index], "at least one target"),
            (["--rollback"], "at least one target"),
            (["--keep", "1", self.index, "/x"], "--keep needs a number from 2 on"),
            (["--keep", "many", self.index, "/x"], "--keep needs a number from 2 on"),
            (["--keep"], "--keep needs a value"),
            (["--sideways", self.index, "/x"], "there is no option --sideways"),
            ([empty, "/x"], "settings.vdat is missing"),
            ([no_program, "/x"], "no program search.cgi"),
            ([self.index, "relative/path"], "relative/path is no target"),
            ([self.index, "web1:relative"], "web1:relative is no target"),
            ([self.index, "/x/"], "/x/ is no target"),
            ([self.index, ":/x"], ":/x is no target"),
            ([self.index, "/x", "/y", "/x"], "/x is named twice"),
            ([self.index, "web1:/x", "me@web1:/x"], "me@web1:/x is named twice"),
            (["--rollback", "/x@y", "/x@y"], "/x@y is named twice"),
        ]:
            with self.subTest(arguments):
                done = self.run_script(*arguments)
                self.assertEqual(done.returncode, 2)
                self.assertIn(message, done.stderr)

    def test_every_target_gets_the_index(self):
        self.distribute()
        self.assertEqual((self.place.root / "reached").read_text().split().count("web1"), 4)
        for link in self.links:
            self.assertTrue(link.is_symlink())
            self.assertEqual(self.pages_found(link), 2)
            self.assertFalse((link / "logs").exists())
            for path in self.index.iterdir():
                if path.name != "logs":
                    self.assertEqual((link / path.name).read_bytes(), path.read_bytes())
                    self.assertEqual((link / path.name).stat().st_mode & 0o777,
                                     0o755 if path.name == "search.cgi" else 0o644)
        self.assertFalse(list(self.place.root.rglob("injected")))
        self.assertFalse(list(self.place.root.rglob(".incoming*")))

    def test_the_search_log_stays(self):
        change_settings(self.index, Logging=1)
        logs = [link.parent / (link.name + ".versions") / "logs" for link in self.links]
        for log in logs:
            log.mkdir(parents=True)
        for _ in range(2):
            self.distribute()
            for link in self.links:
                self.assertEqual(self.pages_found(link), 2)
        for log in logs:
            # The visitors' two searches, and not those that tried the index out.
            self.assertEqual((log / "searchwords.log").read_text().count("lighthouse"), 2)
            self.assertEqual(len((log / "searchwords.log").read_text().splitlines()), 2)

    def test_the_last_two_stay_and_one_goes_back(self):
        for number in range(3):
            self.add_page("lighthouse " * (number == 1) + "and so on")
            self.distribute()
        for link in self.links:
            self.assertEqual(len(self.versions(link)), 2)
            self.assertEqual(self.pages_found(link), 2)
        self.distribute("--rollback")
        for link in self.links:
            self.assertEqual(self.pages_found(link), 3)
        done = self.distribute("--rollback", status=1)
        self.assertIn("there is no index before", done.stderr)
        for link in self.links:
            self.assertEqual(self.pages_found(link), 3)
        for _ in range(2):
            self.distribute("--keep", "3")
        for link in self.links:
            self.assertEqual(len(self.versions(link)), 3)

    def test_an_index_that_was_taken_back_does_not_return(self):
        self.distribute()
        good = [link.readlink() for link in self.links]
        self.add_page("a bad lighthouse")
        self.distribute()
        self.distribute("--rollback")
        self.assertEqual([link.readlink() for link in self.links], good)
        self.add_page("nothing")
        self.distribute()
        for link, first in zip(self.links, good):
            self.assertEqual(self.versions(link),
                             [first.name, link.readlink().name])
            self.assertEqual(self.pages_found(link), 2)
        self.distribute("--rollback")
        self.assertEqual([link.readlink() for link in self.links], good)

    def test_a_log_outside_is_left_to_the_visitors(self):
        outside = self.place.root / "searches.log"
        for file in (outside, "../searches.log"):
            change_settings(self.index, Logging=1, LogFileName=f'"{file}"')
            self.distribute()
        self.assertEqual(list(self.place.root.rglob("searches.log")), [])
        self.assertFalse(list(self.place.root.rglob("trial")))
        self.pages_found(self.first)
        self.assertEqual([path.name for path in self.place.root.rglob("searches.log")],
                         ["searches.log"])

    def test_what_is_the_same_takes_no_space(self):
        self.distribute()
        self.distribute()
        for link in self.links:
            self.assertEqual(os.stat(link / "vela_dictionary.vdat").st_nlink, 2)

    def assert_nothing_changed(self, before):
        self.assertEqual([link.readlink() for link in self.links], before)
        self.assertEqual([len(self.versions(link)) for link in self.links], [1, 1, 1])
        for link in self.links:
            self.assertEqual(self.pages_found(link), 2)

    def test_a_broken_index_is_put_nowhere(self):
        self.distribute()
        before = [link.readlink() for link in self.links]
        (self.index / "vela_wordmap.vdat").unlink()
        done = self.distribute(status=1)
        self.assertIn("the search does not answer with the new index", done.stderr)
        self.assertIn("every server keeps the one it has", done.stderr)
        self.assert_nothing_changed(before)

    def test_a_program_that_does_not_run_is_put_nowhere(self):
        self.distribute()
        before = [link.readlink() for link in self.links]
        for program in ("#!/bin/sh\nexit 1\n", "#!/bin/sh\nexit 0\n"):
            (self.index / "search.cgi").write_text(program)
            self.distribute(status=1)
            self.assert_nothing_changed(before)

    def test_a_server_that_is_away_keeps_all_as_they_are(self):
        self.distribute()
        before = [link.readlink() for link in self.links]
        (self.place.root / "hosts/web2").rename(self.place.root / "away")
        done = self.distribute(status=1)
        self.assertIn("me@web2", done.stderr)
        self.assertIn("every server keeps the one it has", done.stderr)
        (self.place.root / "away").rename(self.place.root / "hosts/web2")
        self.assert_nothing_changed(before)

    def test_a_folder_is_not_replaced(self):
        self.third.mkdir()
        (self.third / "kept").write_text("kept")
        done = self.distribute(status=1)
        self.assertIn("is no link to an index", done.stderr)
        self.assertEqual((self.third / "kept").read_text(), "kept")
        self.assertFalse(self.first.exists())


if __name__ == "__main__":
    unittest.main()
