#!/usr/bin/env python3
"""Runs clang-tidy with the settings of .clang-tidy over the three programs.

    scripts/check_tidy.py BUILD_FOLDER [--all] [FILE...]

BUILD_FOLDER holds compile_commands.json; without files, all of src/, indexer/ and inspector/ are
meant. Files of one folder are read together, as most of the time goes into the headers they share;
those with findings are then read alone, and what is said of them alone counts.
A file that passed is not read again until something that it is compiled from changes, be it a header or
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
import tempfile
from bisect import bisect_left
from concurrent.futures import ThreadPoolExecutor
from itertools import accumulate
from pathlib import Path

PROJECT = Path(__file__).resolve().parents[1]
GROUP = 12  # files that are read together; with more of them the memory grows and little is gained


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


def own_options(command):
    """The options of a compile command: without the compiler, its input and its output."""
    _, arguments = command
    output = arguments.index("-o")
    return [option for option in arguments[1:output] + arguments[output + 2:]
            if option != "-c" and not option.endswith(".cc")]


def findings(source, command):
    """What clang-tidy says, without its count of what it found in the system's headers."""
    # The compile commands are those of another compiler.
    done = subprocess.run(["clang-tidy", "--quiet", f"--config-file={PROJECT / '.clang-tidy'}", source,
                           "--", *own_options(command), "-Wno-unknown-warning-option"],
                          cwd=PROJECT, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
    text = re.sub(r"^\d+ warnings?( and \d+ errors?)? generated\.\n", "", done.stdout, flags=re.M)
    return text or ("" if done.returncode == 0 else f"{source}: clang-tidy failed\n")


def groups_of(sources, commands):
    """The sources in lists of those that can be read together."""
    alike = {}
    for source in sources:
        alike.setdefault((source.parent, *own_options(commands[source])), []).append(source)
    for files in alike.values():
        count = -(-len(files) // GROUP)
        yield from (files[part::count] for part in range(count))


def with_findings(files, command):
    """Which of the files clang-tidy says something of when they stand one behind the other as one.

    Two files that give the same name to things of their own are no finding; the second is named, too.
    """
    ends = list(accumulate(file.read_text(encoding="utf-8").count("\n") for file in files))
    with tempfile.NamedTemporaryFile("w", suffix=".cc", encoding="utf-8") as together:
        for file in files:
            together.write(file.read_text(encoding="utf-8"))
        together.flush()
        text = findings(Path(together.name), command)
        lines = re.findall(rf"^{re.escape(together.name)}:(\d+):", text, flags=re.M)
    # What is said of a header alone may be due to any of them.
    named = {files[bisect_left(ends, int(line))] for line in lines}
    return named or (set(files) if text else set())


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

    def mark_place(source):
        return marks / (str(source.relative_to(PROJECT)).replace("/", "."))

    def changed(source):
        mark = mark_place(source)
        state = mark_of(commands[source], settings)
        same = not read_all and mark.is_file() and mark.read_text() == state
        return None if same else state

    def check_alone(source):
        text = findings(source, commands[source])
        if text:
            mark_place(source).unlink(missing_ok=True)
        else:
            mark_place(source).write_text(states[source])
        return text

    def check(files):
        if len(files) == 1:
            return check_alone(files[0])
        doubtful = with_findings(files, commands[files[0]])
        if doubtful:
            rest = [file for file in files if file not in doubtful]
            return "".join(map(check_alone, sorted(doubtful))) + (check(rest) if rest else "")
        for file in files:
            mark_place(file).write_text(states[file])
        return ""

    with ThreadPoolExecutor(os.cpu_count()) as pool:
        states = {source: state for source, state in zip(sources, pool.map(changed, sources)) if state}
        # The largest groups first, so that no core waits for the last one.
        groups = sorted(groups_of(states, commands), key=lambda files: -sum(f.stat().st_size for f in files))
        results = list(pool.map(check, groups))
    print("".join(results), end="")
    print(f"{len(states)} files read, {len(sources) - len(states)} unchanged since they passed")
    return 1 if any(results) else 0


if __name__ == "__main__":
    sys.exit(main())
