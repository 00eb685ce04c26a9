#!/usr/bin/env python3
"""Compares what dump_page and reference.mjs take out of the same pages: the words in their order,
the levels of headings, and title, links, metas and time.

  compare.py DUMP_PAGE FOLDER_OF_NODE_MODULES FOLDER...
"""
import collections
import difflib
import json
import os
import subprocess
import sys
import tempfile

HERE = os.path.dirname(os.path.abspath(__file__))
FIELDS = ("title", "canonical", "base", "time", "noindex", "metas")
BATCH = 200


def pages_below(folders):
    for folder in folders:
        for where, folders_in, files in os.walk(folder):
            folders_in.sort()
            for name in sorted(files):
                if name.endswith((".html", ".htm")):
                    path = os.path.join(where, name)
                    if not os.path.islink(path):
                        yield path


def as_utf8(paths, folder):
    """Character sets are another matter: a page in any other is read as Latin-1 by both."""
    for i, path in enumerate(paths):
        with open(path, "rb") as file:
            data = file.read()
        try:
            data.decode()
            yield path
        except UnicodeDecodeError:
            copy = os.path.join(folder, f"{i}.html")
            with open(copy, "w", encoding="utf-8", newline="") as file:
                file.write(data.decode("latin-1"))
            yield copy


def read_with(command, paths):
    done = subprocess.run(command, input="\n".join(paths) + "\n", capture_output=True, text=True)
    lines = done.stdout.splitlines()
    if done.returncode != 0 or len(lines) != len(paths):
        sys.exit(f"{command[0]}: {done.returncode}, {len(lines)} of {len(paths)} pages\n{done.stderr}")
    return [json.loads(line) for line in lines]


def words_of(page):
    return [(level, word) for level, text in page["body"] for word in text.split(" ") if word]


def compare(path, ours, theirs, totals):
    """Counts into `totals`; returns lines that tell the differences."""
    told = []
    for field in FIELDS:
        if ours[field] != theirs[field]:
            totals["fields"] += 1
            told.append(f"{path}: {field}: {ours[field]!r} for {theirs[field]!r}")
    mine, reference = words_of(ours), words_of(theirs)
    totals["pages"] += 1
    totals["words"] += len(reference)
    if mine == reference:
        return told
    totals["pages that differ"] += 1
    matcher = difflib.SequenceMatcher(None, mine, reference, autojunk=False)
    for kind, a, b, c, d in matcher.get_opcodes():
        if kind == "equal":
            continue
        totals["words that differ"] += max(b - a, d - c)
        told.append(f"{path}: {mine[a:b][:12]} for {reference[c:d][:12]}")
    return told


def main():
    dump_page, modules, *folders = sys.argv[1:]
    totals = collections.Counter()
    paths = list(pages_below(folders))
    reference = ["node", os.path.join(HERE, "reference.mjs"), modules]
    for at in range(0, len(paths), BATCH):
        with tempfile.TemporaryDirectory() as folder:
            batch = list(as_utf8(paths[at:at + BATCH], folder))
            ours, theirs = read_with([dump_page], batch), read_with(reference, batch)
        for path, one, other in zip(paths[at:at + BATCH], ours, theirs):
            for line in compare(path, one, other, totals)[:20]:
                print(line)
    equal = totals["words"] - totals["words that differ"]
    print(", ".join(f"{count} {what}" for what, count in totals.items()))
    print(f"{100 * equal / max(totals['words'], 1):.4f} % of words in the same order")


if __name__ == "__main__":
    main()
