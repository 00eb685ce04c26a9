#!/usr/bin/env python3
"""Behaviour that looks wrong but is wanted says so in the source, and names the tests that hold it:

    // Kept: a round decimal number, not 2^31 (unit seek_test).
    // Kept: the break tag has a backslash (golden output/template_include_missing).

Fails for every remark "Kept:" that names no test, or one that is not there. A golden case is a
folder of tests/program/golden, a unit test a file of tests/unit without its ending; several are
separated by commas.
"""

import re
import sys
from pathlib import Path

PROJECT = Path(__file__).resolve().parents[1]
GOLDEN = PROJECT / "tests/program/golden"
UNIT = {path.stem for path in (PROJECT / "tests/unit").glob("*/*_test.cc")}


def remarks(text):
    """(line number, text) of each remark: a comment from "Kept:" to its end or to the next one."""
    lines = text.splitlines()
    for number, line in enumerate(lines):
        _, comment, remark = line.partition("//")
        if not comment or "Kept:" not in remark:
            continue
        pieces = [remark]
        # It goes on in the comment lines right below.
        for below in lines[number + 1:]:
            if not below.lstrip().startswith("//"):
                break
            pieces.append(below.lstrip().removeprefix("//"))
        whole = " ".join(" ".join(pieces).split())
        for index, piece in enumerate(whole.split("Kept:")[1:]):
            if index < remark.count("Kept:"):
                yield number + 1, piece.strip()


def faults(remark):
    named = re.findall(r"\((golden|unit) ([^()]+)\)", remark)
    if not named:
        yield "names no test: (golden ROOM/CASE) or (unit FILE_test)"
    for kind, names in named:
        for name in (name.strip() for name in names.split(",")):
            there = (GOLDEN / name / "expected").is_file() if kind == "golden" else name in UNIT
            if not there:
                yield f"there is no {kind} test {name}"


def main():
    count = 0
    wrong = []
    for folder in ("src", "indexer", "inspector"):
        for path in sorted((PROJECT / folder).rglob("*")):
            if path.suffix not in (".h", ".cc", ".inc"):
                continue
            for line, remark in remarks(path.read_text(encoding="utf-8")):
                count += 1
                for fault in faults(remark):
                    wrong.append(f"{path.relative_to(PROJECT)}:{line}: {fault}: {remark[:60]}")
    print("\n".join(wrong) or f"{count} remarks, each with its test")
    return 1 if wrong or not count else 0


if __name__ == "__main__":
    sys.exit(main())
