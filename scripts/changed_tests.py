#!/usr/bin/env python3
"""Which tests a change asks for: prints a line of build targets and a line with a pattern for ctest.

    scripts/changed_tests.py [FILE...]

Without files: what differs from where this branch left main (on main itself, from HEAD), and what
git does not know yet. A change that may touch anything asks for the tests of every room.
"""

import re
import subprocess
import sys
from pathlib import Path

PROJECT = Path(__file__).resolve().parents[1]
ROOMS = sorted(path.name for path in (PROJECT / "tests/unit").iterdir() if path.is_dir())
PROGRAMS = ["vela_search", "vela_index", "vela_inspect"]


def git(*arguments):
    done = subprocess.run(["git", *arguments], cwd=PROJECT, capture_output=True, text=True)
    return done.stdout.splitlines() if done.returncode == 0 else None


def changed_files():
    """None where git cannot tell."""
    for main in ("origin/main", "main"):
        base = git("merge-base", "HEAD", main)
        if base:
            break
    else:
        base = ["HEAD"]
    changed = git("diff", "--name-only", base[0])
    new = git("ls-files", "--others", "--exclude-standard")
    return None if changed is None or new is None else changed + new


def room_of(file):
    """The room that the file is of: "search", "words", "run" ...; None when it is of none."""
    found = re.match(r"(?:src|indexer|inspector|tests/unit)/(\w+)/", file)
    if found:
        return found[1] if found[1] in ROOMS else None
    return "run" if re.match(r"indexer/\w+\.(cc|h)$", file) else None


def selection(files):
    """(targets, patterns) for the changed files."""
    anything = files is None or any(
        re.search(r"(^|/)CMake|^tests/support/|^src/(text|format)/", file) for file in files)
    rooms = set(ROOMS) if anything else {room_of(file) for file in files} - {None}
    code = anything or any(re.match(r"src/|indexer/|inspector/|assets/", file) for file in files)
    targets = [*PROGRAMS]
    patterns = [r"check\.", r"system\.(docs|language_files)$"]
    for room in sorted(rooms):
        targets.append(f"{room}_tests")
        patterns.append(f"{room}_tests\\.")
    if code or any(file.startswith("tests/program/golden/") for file in files):
        targets.append("golden_tests")
        patterns.append(r"golden_tests\.")
    if code or any(file.startswith("tests/program/damage/") for file in files):
        targets.append("damage_tests")
        patterns.append(r"damage_tests\.")
    if code or any(re.match(r"examples/|tests/site/system/", file) for file in files):
        patterns.append(r"system\.(exact_titles|features|install|ranks|rss)$")
    if any(file.startswith("tests/program/model/") for file in files or ()):
        patterns.append(r"model\.")
    fuzzed = re.findall(r"tests/program/fuzz/(?:corpus/|indexer/)?(\w+?)(?:_fuzz\.cc|/)",
                        "\n".join(files or ()))
    for reader in sorted(set(fuzzed)):
        if any(PROJECT.glob(f"tests/program/fuzz/**/{reader}_fuzz.cc")):
            targets.append(f"{reader}_fuzz")
            patterns.append(f"fuzz\\.{reader}$")
    return targets, patterns


def main():
    files = sys.argv[1:] or changed_files()
    targets, patterns = selection(files)
    print(" ".join(targets))
    print("^(" + "|".join(patterns) + ")")


if __name__ == "__main__":
    main()
