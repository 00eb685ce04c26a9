#!/usr/bin/env python3
"""Runs clang-tidy with the settings of .clang-tidy over the three programs.

    scripts/check_tidy.py BUILD_FOLDER [--all] [FILE...]

BUILD_FOLDER holds compile_commands.json; without files, all of src/, indexer/ and inspector/ are
meant. A file that passed is not read again until something that it is compiled from changes, be it a header or
.clang-tidy: BUILD_FOLDER/tidy keeps a mark for it. --all (or VELA_CHECK_ALL=1) reads every file.
"""

import argparse
import hashlib
import json
import os
import re
import shlex
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

PROJECT = Path(__file__).resolve().parents[1]


def commands_of(build):
    """{source: its compile command} of the files below src/, indexer/ and inspector/."""
    path = build / "compile_commands.json"
    if not path.is_file():
        sys.exit(f"no compile_commands.json in {build}")
    commands = {}
    for entry in json.loads(path.read_text(encoding="utf-8")):
        source = Path(entry["directory"], entry["file"]).resolve()
        below = source.relative_to(PROJECT) if source.is_relative_to(PROJECT) else Path()
        if below.parts[:1] in (("src",), ("indexer",), ("inspector",)):
            commands[source] = (entry["directory"], shlex.split(entry["command"]))
    return commands


def mark_of(command, settings):
    """What tells one state of a file, its headers, its options and the settings from another."""
    directory, arguments = command
    output = arguments.index("-o")
    arguments = arguments[:output] + arguments[output + 2:]
    text = subprocess.run([*arguments, "-E", "-C", "-o", "-"], cwd=directory,
                          capture_output=True, check=True).stdout
    return hashlib.sha256(settings + text).hexdigest()


def findings(source, build):
    """What clang-tidy says, without its count of what it found in the system's headers."""
    # The compile commands are those of another compiler.
    done = subprocess.run(["clang-tidy", "--quiet", "-p", build,
                           "--extra-arg=-Wno-unknown-warning-option", source],
                          cwd=PROJECT, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
    text = re.sub(r"^\d+ warnings?( and \d+ errors?)? generated\.\n", "", done.stdout, flags=re.M)
    return text or ("" if done.returncode == 0 else f"{source}: clang-tidy failed\n")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("build", type=Path)
    parser.add_argument("--all", action="store_true")
    parser.add_argument("files", nargs="*", type=Path)
    arguments = parser.parse_args()
    build = arguments.build.resolve()
    commands = commands_of(build)
    sources = sorted(file.resolve() for file in arguments.files) or sorted(commands)
    unknown = [str(source) for source in sources if source not in commands]
    if unknown or not sources:
        sys.exit("not built there: " + " ".join(unknown))

    marks = build / "tidy"
    marks.mkdir(exist_ok=True)
    read_all = arguments.all or os.environ.get("VELA_CHECK_ALL") == "1"
    version = subprocess.run(["clang-tidy", "--version"], capture_output=True, check=True).stdout
    settings = version + (PROJECT / ".clang-tidy").read_bytes()

    def check(source):
        mark = marks / (str(source.relative_to(PROJECT)).replace("/", "."))
        state = mark_of(commands[source], settings)
        if not read_all and mark.is_file() and mark.read_text() == state:
            return None
        text = findings(source, build)
        if text:
            mark.unlink(missing_ok=True)
        else:
            mark.write_text(state)
        return text

    with ThreadPoolExecutor(os.cpu_count()) as pool:
        results = list(pool.map(check, sources))
    read = [text for text in results if text is not None]
    print("".join(read), end="")
    print(f"{len(read)} files read, {len(results) - len(read)} unchanged since they passed")
    return 1 if any(read) else 0


if __name__ == "__main__":
    sys.exit(main())
