#!/usr/bin/env python3
"""The completion scripts of vela_index, asked in the shells themselves."""
import re
import shlex
import shutil
import subprocess
import sys
import unittest

import support

PROGRAM = support.BIN / "vela_index"
PLACE = support.WORK / "place"


def setUpModule():
    shutil.rmtree(PLACE, ignore_errors=True)
    (PLACE / "my site").mkdir(parents=True)
    (PLACE / "mine.vlang").write_text("", encoding="utf-8")


def script(shell):
    return subprocess.run([PROGRAM, "--completion", shell], capture_output=True, text=True,
                          check=True).stdout


def options_of_help():
    told = subprocess.run([PROGRAM, "--help"], capture_output=True, text=True, check=True).stdout
    return set(re.findall(r"^  (?:-\w,)?(--[\w-]+)", told, re.M))


LANGUAGES = {path.stem for path in (support.PROJECT / "assets/languages").glob("*.vlang")}


class Bash(unittest.TestCase):
    def offers(self, *words):
        """What bash offers for the last of the words behind the program's name."""
        line = ["vela_index", *words]
        ask = (f'{script("bash")}\nCOMP_WORDS=({shlex.join(line)})\nCOMP_CWORD={len(words)}\n'
               "_vela_index\nprintf '%s\\n' \"${COMPREPLY[@]}\"")
        run = subprocess.run(["bash", "--norc", "-c", ask], capture_output=True, text=True,
                             check=True, cwd=PLACE)
        self.assertEqual(run.stderr, "")
        return set(filter(None, run.stdout.split("\n")))

    def test_options(self):
        self.assertEqual(self.offers(""), options_of_help())
        self.assertEqual(self.offers("--quiet", "--ba"), {"--base-url"})
        self.assertEqual(self.offers("--site", "--te"), {"--template"})

    def test_values(self):
        everything = {"my site", "mine.vlang"}
        for words, offered in (
                (["--config", ""], everything),
                (["--init", "mi"], {"mine.vlang"}),
                (["--site", ""], {"my site"}),
                (["--out", "my"], {"my site"}),
                (["--base-url", ""], set()),
                (["--memory", ""], set()),
                (["--exclude", ""], set()),
                (["--template", ""], {"default", "minimal", "embed"} | everything),
                (["--template", "mi"], {"minimal", "mine.vlang"}),
                (["--language", ""], LANGUAGES | everything),
                (["--language", "=", "ger"], {"german"}),
                (["--template", "="], {"default", "minimal", "embed"} | everything),
                (["--completion", ""], {"bash", "zsh", "fish"})):
            with self.subTest(words):
                self.assertEqual(self.offers(*words), offered)

    def test_it_is_asked_for_the_program(self):
        run = subprocess.run(
            ["bash", "--norc", "-c", 'source <("$0" --completion bash); complete -p vela_index',
             PROGRAM], capture_output=True, text=True, check=True)
        self.assertEqual(run.stdout, "complete -F _vela_index vela_index\n")


@unittest.skipUnless(shutil.which("zsh"), "no zsh here")
class Zsh(unittest.TestCase):
    def test_it_is_defined_and_well_formed(self):
        run = subprocess.run(
            ["zsh", "-f", "-c", "autoload -U compinit; compinit -D; "
             'source <("$0" --completion zsh); print $_comps[vela_index]; which _vela_index',
             PROGRAM], capture_output=True, text=True, check=True)
        self.assertEqual(run.stderr, "")
        self.assertEqual(run.stdout.split("\n")[0], "_vela_index")
        self.assertEqual(set(re.findall(r"'\*?(--[\w-]+)", run.stdout)), options_of_help())


@unittest.skipUnless(shutil.which("fish"), "no fish here")
class Fish(unittest.TestCase):
    def offers(self, line):
        run = subprocess.run(
            ["fish", "--no-config", "-c",
             f"{script('fish')}\ncomplete -C {shlex.quote('vela_index ' + line)}"],
            capture_output=True, text=True, check=True, cwd=PLACE)
        self.assertEqual(run.stderr, "")
        return {offer.split("\t")[0] for offer in run.stdout.splitlines()}

    def test_options_and_values(self):
        self.assertEqual(self.offers("--"), options_of_help())
        self.assertEqual(self.offers("--template mi"), {"minimal", "mine.vlang"})
        self.assertEqual(self.offers("--completion "), {"bash", "zsh", "fish"})
        self.assertEqual(self.offers("--site "), {"my site/"})
        self.assertLessEqual(LANGUAGES, self.offers("--language "))
        self.assertEqual(self.offers("--memory "), set())


class Usage(unittest.TestCase):
    def test_what_does_not_go(self):
        for arguments, message in (
                (["--completion", "tcsh"], 'no completion for "tcsh". Give one of bash, zsh, fish.'),
                (["--completion", "bash", "--quiet"], "it does not go with --quiet. Give "
                                                      "--completion alone.")):
            run = subprocess.run([PROGRAM, *arguments], capture_output=True, text=True)
            self.assertEqual(run.returncode, 2)
            self.assertIn(message, run.stderr)


if __name__ == "__main__":
    sys.exit(unittest.main(verbosity=2))
