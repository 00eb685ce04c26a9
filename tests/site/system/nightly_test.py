#!/usr/bin/env python3
"""The files of deploy/nightly/ and what docs/nightly.md says of the log, tried with the programs."""

import os
import re
import shutil
import subprocess
import unittest

import sample_library
import support

NIGHTLY = support.PROJECT / "deploy/nightly"
DOCUMENT = (support.PROJECT / "docs/nightly.md").read_text(encoding="utf-8")


def sample_line():
    return re.search(r"```\n(\d{4}-\d\d-\d\d, .*)\n```", DOCUMENT).group(1)


class Nightly(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.index = sample_library.build_library("nightly")
        cls.work = cls.index.parent

    def run_of(self, command):
        """Runs the command of a unit or of cron with the program and the configuration of the
        sample in place of those of a site. Returns what it printed."""
        words = command.split()
        self.assertEqual(words[0].rpartition("/")[2], "vela_index")
        self.assertEqual(words[-2:], ["--config", "/etc/vela/vela_index.toml"])
        result = subprocess.run(
            [support.BIN / "vela_index", *words[1:-1], self.work / "vela_index.toml",
             "--site", support.SAMPLE_SITE, "--out", self.index], capture_output=True, check=True)
        return result.stdout + result.stderr

    def test_the_command_of_the_service(self):
        service = (NIGHTLY / "vela-index.service").read_text(encoding="utf-8")
        command = re.search(r"^ExecStart=/usr/local/bin/(.*)$", service, re.MULTILINE).group(1)
        before = (self.index / "settings.vdat").stat().st_ino
        self.assertEqual(self.run_of(command), b"")
        self.assertNotEqual((self.index / "settings.vdat").stat().st_ino, before)

    def test_the_line_of_cron(self):
        lines = [line for line in (NIGHTLY / "cron").read_text(encoding="utf-8").splitlines()
                 if line and not line.startswith("#") and "=" not in line.split()[0]]
        self.assertEqual(len(lines), 1)
        fields = lines[0].split(None, 6)
        for field in fields[:5]:
            self.assertRegex(field, r"^(\*|\d+)$")
        self.assertEqual(fields[5], "vela")
        self.assertTrue(fields[6].startswith("nice -n 15 "))
        self.assertEqual(self.run_of(fields[6].removeprefix("nice -n 15 ")), b"")

    @unittest.skipUnless(shutil.which("systemd-analyze"), "no systemd here")
    def test_systemd_takes_the_units(self):
        folder = self.work / "units"
        folder.mkdir(exist_ok=True)
        for name in ("vela-index.service", "vela-index.timer"):
            unit = (NIGHTLY / name).read_text(encoding="utf-8")
            unit = unit.replace("/usr/local/bin/vela_index", str(support.BIN / "vela_index"))
            (folder / name).write_text(unit, encoding="utf-8")
        result = subprocess.run(
            ["systemd-analyze", "verify", "--man=no", folder / "vela-index.service",
             folder / "vela-index.timer"], capture_output=True, text=True, check=False)
        self.assertEqual((result.returncode, result.stdout + result.stderr), (0, ""))

    @unittest.skipUnless(shutil.which("logrotate"), "no logrotate here")
    def test_logrotate_takes_the_file(self):
        log = self.work / "searchwords.log"
        log.write_bytes(b"line\r\n" * 100)
        name = self.work / "logrotate.conf"
        text = (NIGHTLY / "logrotate").read_text(encoding="utf-8")
        text = text.replace("/var/log/vela/searchwords.log", str(log))
        name.write_text(re.sub(r"^ *(su|create) .*\n", "", text, flags=re.MULTILINE),
                        encoding="utf-8")
        os.chmod(name, 0o644)
        os.chmod(self.work, 0o755)
        subprocess.run(["logrotate", "--force", "--state", self.work / "state", name],
                       capture_output=True, check=True)
        self.assertTrue((self.work / "searchwords.log.1").exists())

    def test_the_line_of_the_document_is_one_of_the_program(self):
        log = self.work / "searches.log"
        log.unlink(missing_ok=True)
        subprocess.run([self.index / "search.cgi"], check=True, stdout=subprocess.DEVNULL,
                       env={"REQUEST_METHOD": "GET", "REMOTE_ADDR": "192.0.2.7",
                            "QUERY_STRING": "vela_query=opening+hours"})
        line = log.read_bytes().decode().removesuffix("\r\n")
        numbers = re.compile(r"\d+")
        shape = numbers.sub("0", sample_line().replace("No cats", '"Cat = All"'))
        self.assertEqual(numbers.sub("0", line), shape)

    def test_what_was_not_found_can_be_counted(self):
        command = re.search(r"^awk .*$", DOCUMENT, re.MULTILINE).group(0)
        log = self.work / "counted.log"
        found = sample_line()
        lost = found.replace("Matches = 3", "Matches = 0")
        log.write_bytes("".join(line + "\r\n" for line in [
            found, lost, lost.replace("opening hours", "Parking"),
            lost.replace("opening hours", "parking")]).encode())
        command = command.replace("/var/log/vela/searchwords.log", str(log))
        result = subprocess.run(["sh", "-c", command], capture_output=True, text=True, check=True)
        self.assertEqual([line.split(None, 1) for line in result.stdout.splitlines()],
                         [["2", "parking"], ["1", "opening hours"]])

    def test_addresses_can_be_taken_out(self):
        text = (NIGHTLY / "logrotate").read_text(encoding="utf-8")
        command = re.search(r"# +(sed .*) /var/log", text).group(1)
        log = self.work / "private.log"
        log.write_text(sample_line() + "\r\n", encoding="utf-8")
        subprocess.run(["sh", "-c", f"{command} '{log}'"], check=True)
        self.assertEqual(log.read_text(encoding="utf-8").strip(),
                         sample_line().replace("192.0.2.7", "-"))


if __name__ == "__main__":
    unittest.main()
