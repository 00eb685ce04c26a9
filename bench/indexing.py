#!/usr/bin/env python3
"""Compares indexing with that of other programs on the same pages; see compare.sh --indexing.

In one run, by turns: every program makes its index anew, then those that can take over what they had
are run on the same pages again, and once more when one page in a hundred has changed. Nothing that an
earlier run left is used.
"""
import argparse
import json
import os
import random
import shutil
import statistics
import subprocess
import sys
from pathlib import Path

from compare import size_of
from measure import circumstances, markdown_table, run_timed
from peers import Namazu, Omega, SqliteFts, SwishE, Vela

SEED = 7
RUNS = {"made": "from nothing", "same": "again, nothing changed", "changed": "again, 1 % changed"}
CHANGED_SHARE = 0.01
FIELDS = ("cpu_seconds", "wall_seconds", "peak_kb")


class OneThread(Vela):
    key, title = "one-thread", "ours, one thread"

    def index_commands(self, pages):
        return [[*command, "--jobs", "1"] for command in super().index_commands(pages)]


class WithState(Vela):
    """Keeps what it made of pages, which takes room and some time in the first run."""
    key, title = "with-state", "ours, --state"

    def __init__(self, binaries, work):
        super().__init__(binaries, work)
        self.state = work / "state"

    def index_commands(self, pages):
        shutil.rmtree(self.state, ignore_errors=True)
        return self.update_commands(pages)

    def update_commands(self, pages):
        return [[*command, "--state", str(self.state)] for command in super().index_commands(pages)]

    def index_files(self):
        return [*super().index_files(), self.state]


def copy_site(pages, site):
    """The pages again, as links to the same files."""
    shutil.rmtree(site, ignore_errors=True)
    subprocess.run(["cp", "-al", pages, site], check=True)


def change_pages(site):
    """Puts a paragraph at the end of one page in a hundred; how many that are."""
    files = sorted(site.rglob("*.html"))
    chosen = random.Random(SEED).sample(files, max(1, int(len(files) * CHANGED_SHARE)))
    for number, file in enumerate(chosen):
        text = file.read_bytes()
        file.unlink()  # the other links to it stay as they are
        file.write_bytes(text.replace(b"</body>", b"<p>changed number%d</p></body>" % number))
        file.touch()
    return len(chosen)


def run_all(commands):
    """What running them one by one took, as a record."""
    figures = [run_timed(command) for command in commands]
    return {"cpu_seconds": round(sum(one[0] for one in figures), 2),
            "wall_seconds": round(sum(one[1] for one in figures), 2),
            "peak_kb": max(one[2] for one in figures)}


def measure_round(programs, pages, site):
    """(program, run) -> what it took, and sizes."""
    found = {}
    copy_site(pages, site)
    for program in programs:
        print(f"{program.title} ...", file=sys.stderr, flush=True)
        found[program.key, "made"] = {**run_all(program.index_commands(site)),
                                      "bytes": size_of(program.index_files())}
    for run in ("same", "changed"):
        if run == "changed":
            change_pages(site)
        for program in programs:
            if hasattr(program, "update_commands"):
                print(f"{program.title}, {run} ...", file=sys.stderr, flush=True)
                found[program.key, run] = {**run_all(program.update_commands(site)),
                                           "bytes": size_of(program.index_files())}
    return found


def report(result):
    programs = result["programs"]
    parts = [f"# Indexing {result['pages']:,} pages ({result['corpus']}, "
             f"{result['page_bytes'] / 1e6:,.0f} MB)", "",
             f"{result['date']}, commit {result['commit']}, {result['machine']}, load "
             f"{result['load']}. `{result['command']}`", "",
             f"All in one run, {result['rounds']} round(s) by turns, the median of each figure. CPU "
             "seconds are of all processes and threads together, the peak is that of the largest "
             "process; files are in the system's cache, and nothing waits for the disk. Our own "
             "program takes both cores unless it says otherwise, the others take one. What \"--state\" "
             "keeps is counted as part of the index."]
    for run, title in RUNS.items():
        those = [program for program in programs if run in program["runs"]]
        figures = [program["runs"][run] for program in those]
        rows = [["CPU seconds", *(f"{one['cpu_seconds']:.1f}" for one in figures)],
                ["wall seconds", *(f"{one['wall_seconds']:.1f}" for one in figures)],
                ["pages a CPU second", *(f"{result['pages'] / max(one['cpu_seconds'], 0.01):,.0f}"
                                         for one in figures)],
                ["peak memory, MB", *(f"{one['peak_kb'] / 1024:.0f}" for one in figures)],
                ["MB on disk", *(f"{one['bytes'] / 1e6:.1f}" for one in figures)]]
        parts += ["", f"## {title[0].upper()}{title[1:]}", "",
                  markdown_table(["", *(program["title"] for program in those)], rows)]
    return "\n".join(parts) + "\n"


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--corpus", required=True)
    parser.add_argument("--runs", type=int, default=1, help="rounds")
    parser.add_argument("--without", default="", metavar="KEY,...")
    parser.add_argument("--build", type=Path, required=True)
    parser.add_argument("--pages", type=Path, required=True)
    parser.add_argument("--keep", type=Path, required=True)
    parser.add_argument("--results", type=Path, required=True)
    arguments = parser.parse_args()

    work = arguments.keep.resolve() / "indexing"
    binaries = arguments.build.resolve() / "bin"
    programs = [Vela(binaries, work), OneThread(binaries, work / "one"), WithState(binaries, work / "kept"),
                Omega(work), SwishE(work), Namazu(work), SqliteFts(work)]
    without = arguments.without.split(",")
    programs = [program for program in programs if program.key not in without]
    missing = [program.missing() for program in programs if program.missing()]
    if missing:
        sys.exit("missing: " + " ".join(missing))

    rounds = []
    for _ in range(arguments.runs):
        shutil.rmtree(work, ignore_errors=True)
        for folder in (work / "one", work / "kept"):
            folder.mkdir(parents=True)
        rounds.append(measure_round(programs, arguments.pages.resolve(), work / "site"))
    pages = list(arguments.pages.rglob("*.html"))
    result = {**circumstances(), "corpus": arguments.corpus, "pages": len(pages),
              "page_bytes": sum(os.stat(page).st_size for page in pages), "rounds": arguments.runs,
              "command": f"bench/compare.sh --indexing --corpus {arguments.corpus} --runs "
                         f"{arguments.runs}",
              "programs": [
                  {"key": program.key, "title": program.title,
                   "runs": {run: {field: statistics.median(one[program.key, run][field]
                                                           for one in rounds)
                                  for field in (*FIELDS, "bytes")}
                            for run in RUNS if (program.key, run) in rounds[0]}}
                  for program in programs]}
    name = f"indexing-{arguments.corpus}"
    (arguments.results / f"{name}.json").write_text(json.dumps(result, indent=1) + "\n")
    (arguments.results / f"{name}.md").write_text(report(result))
    print(report(result))
    shutil.rmtree(work)


if __name__ == "__main__":
    main()
