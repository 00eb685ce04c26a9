#!/usr/bin/env python3
"""Compares whole searches with those of other programs on the same pages; see compare.sh.

Everything goes into the folder of --keep: the indexes, what making them took, the queries. What is
there from an earlier run is used again, but for our own index when its program is newer.
"""
import argparse
import json
import math
import shutil
import statistics
import sys
from dataclasses import asdict
from pathlib import Path

import chart
from measure import (circumstances, count_instructions, markdown_table, read_anew, run_timed,
                     time_commands)
from peers import LOOKUP_FILE, Namazu, Omega, PlainVela, SqliteFts, SwishE, Vela
from queries import KINDS, Query, choose_queries

SEED = 7
BASELINE = "omega"
COLOURS = dict(zip(("ours", "plain", "omega", "swish", "namazu", "sqlite"), chart.COLOURS))


def files_of(paths):
    files = [file for path in paths for file in ([path] if path.is_file() else path.rglob("*"))]
    return [file for file in files if file.is_file()]


def size_of(paths):
    return sum(file.stat().st_size for file in files_of(paths))


def make_index(program, pages, keep, newer_than):
    """Makes the index unless there is one; what it took and its size, as a record."""
    kept = keep / f"index-{program.key}.json"
    if kept.exists() and kept.stat().st_mtime > newer_than:
        return json.loads(kept.read_text())
    print(f"indexing: {program.title} ...", file=sys.stderr, flush=True)
    cpu = wall = 0.0
    peak = 0
    for command in program.index_commands(pages):
        one_cpu, one_wall, one_peak = run_timed(command)
        cpu, wall, peak = cpu + one_cpu, wall + one_wall, max(peak, one_peak)
    made = {"cpu_seconds": round(cpu, 2), "wall_seconds": round(wall, 2), "peak_kb": peak,
            "bytes": size_of(program.index_files())}
    kept.write_text(json.dumps(made))
    return made


def geometric_mean(values):
    return math.exp(statistics.fmean(math.log(value) for value in values))


def by_kind(queries, values, summary):
    """kind -> summary of the values of its queries, for the kinds that have any."""
    found = {}
    for kind in KINDS:
        of_kind = [value for query, value in zip(queries, values) if query.kind == kind]
        if of_kind:
            found[kind] = summary(of_kind)
    return found


def table_by_kind(programs, field, form="{:.2f}", rest=()):
    """A row a kind of query, a column a program, numbers as `form` says."""
    kinds = [kind for kind in KINDS if kind in programs[0][field]]
    rows = [[kind, *(form.format(program[field][kind]) for program in programs)]
            for kind in kinds]
    return markdown_table(["", *(program["title"] for program in programs)], [*rows, *rest])


def report(result):
    """The tables of a result as Markdown."""
    programs = result["programs"]
    titles = [program["title"] for program in programs]
    empty = result["empty"]
    parts = [f"# Searches of {result['pages']:,} pages ({result['corpus']})", "",
             f"{result['date']}, commit {result['commit']}, {result['machine']}, load "
             f"{result['load']}. `{result['command']}`", "",
             f"One fresh process a request, all indexes read into the cache just before, "
             f"{result['runs']} rounds by turns; the "
             f"median of each query, then the median of a kind's queries. An empty program takes "
             f"{empty['ms']:.2f} ms, {empty['cpu_ms']:.2f} ms of CPU, {empty['peak_kb']} kB.", "",
             "## Milliseconds a request", "", table_by_kind(programs, "ms_by_kind"), "",
             "## CPU milliseconds a request", "",
             "What the process had of a processor: hardly depends on what else the machine does.",
             "", table_by_kind(programs, "cpu_ms_by_kind")]
    if "ratio" in programs[0]:
        everything = ["all queries", *(f"{program['ratio']:.2f}" for program in programs)]
        cpu = ["all queries, CPU", *(f"{program['cpu_ratio']:.2f}" for program in programs)]
        parts += ["", "## Time against Omega's", "", "The geometric mean over the queries of a "
                  "kind, of the whole request; below 1 is faster than Omega.", "",
                  table_by_kind(programs, "ratio_by_kind", rest=[everything, cpu])]
    parts += ["", "## Memory of a request", "",
              markdown_table(["", *titles],
                             [["peak, MB", *(f"{p['peak_kb'] / 1024:.1f}" for p in programs)],
                              ["page faults, median", *(f"{p['faults']:.0f}" for p in programs)]])]
    made = [program["index"] for program in programs]
    parts += ["", "## The index", "",
              markdown_table(["", *titles],
                             [["MB on disk", *(f"{one['bytes'] / 1e6:.1f}" for one in made)],
                              ["CPU seconds", *(f"{one['cpu_seconds']:.1f}" for one in made)],
                              ["wall seconds", *(f"{one['wall_seconds']:.1f}" for one in made)],
                              ["peak memory, MB", *(f"{one['peak_kb'] / 1024:.0f}"
                                                    for one in made)]])]
    counted = [program for program in programs if "instructions_by_kind" in program]
    if counted:
        parts += ["", "## Instructions a request", "",
                  table_by_kind(counted, "instructions_by_kind", "{:,.0f}")]
    parts += ["", "## Pages found", "", "Programs cut words differently, so some difference is "
              "right; a program that finds nothing where the others find hundreds did not do the "
              "work.", "",
              markdown_table(["query", "kind", *titles],
                             [[f"`{query['text']}`", query["kind"],
                               *(f"{program['found'][number]:,}" for program in programs)]
                              for number, query in enumerate(result["queries"])])]
    return "\n".join(parts) + "\n"


def draw(result):
    programs = result["programs"]
    kinds = [kind for kind in KINDS if kind in programs[0]["ms_by_kind"]]
    rows = [(kind, {p["title"]: p["ms_by_kind"][kind] for p in programs}) for kind in kinds]
    return chart.dot_rows(f"One search of {result['pages']:,} pages, as a process of its own",
                          f"Medians; an empty program takes {result['empty']['ms']:.1f} ms. "
                          f"Logarithmic: each step to the right is a multiple.",
                          "milliseconds", {p["title"]: COLOURS[p["key"]] for p in programs}, rows)


def parse_arguments():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--corpus", choices=("small", "medium", "large"), default="small")
    parser.add_argument("--runs", type=int, default=15, help="rounds over all queries")
    parser.add_argument("--only", choices=("vela",), help="none of the other programs")
    parser.add_argument("--without", default="", metavar="KEY,...",
                        help="leave out some: swish, namazu, sqlite")
    parser.add_argument("--instructions", action="store_true",
                        help="count ours with callgrind as well")
    parser.add_argument("--build", type=Path, required=True, help="a build directory")
    parser.add_argument("--pages", type=Path, required=True, help="the folder of the pages")
    parser.add_argument("--keep", type=Path, required=True, help="where the indexes are kept")
    parser.add_argument("--results", type=Path, required=True,
                        help="folder for compare.json, .md and .svg")
    return parser.parse_args()


def choose_programs(arguments, binaries, keep):
    ours = Vela(binaries, keep)
    if arguments.only == "vela":
        return ours, [ours]
    others = [Omega(keep), SwishE(keep), Namazu(keep), SqliteFts(keep)]
    left_out = arguments.without.split(",")
    others = [program for program in others if program.key not in left_out]
    missing = [program.missing() for program in others if program.missing()]
    if missing:
        sys.exit(f"compare.sh: needs the packages {' '.join(missing)}: "
                 "scripts/install_packages.sh bench")
    return ours, [ours, *others]


def load_queries(keep, pages):
    """Chosen once for a folder, and kept with its indexes."""
    kept = keep / "queries.json"
    if not kept.exists():
        sqlite = SqliteFts(keep)
        make_index(sqlite, pages, keep, 0)
        chosen = choose_queries(sqlite.database, SEED)
        kept.write_text(json.dumps([asdict(query) for query in chosen], indent=1))
    return [Query(query["kind"], tuple(query["words"]))
            for query in json.loads(kept.read_text())]


def main():
    arguments = parse_arguments()
    binaries = arguments.build.resolve() / "bin"
    pages = arguments.pages.resolve()
    keep = arguments.keep.resolve()
    keep.mkdir(parents=True, exist_ok=True)
    arguments.results.mkdir(parents=True, exist_ok=True)
    if not Path("/usr/bin/time").exists():
        sys.exit("compare.sh: needs the package time")
    if arguments.instructions and not shutil.which("valgrind"):
        sys.exit("compare.sh: --instructions needs the package valgrind")

    ours, programs = choose_programs(arguments, binaries, keep)
    newest = (binaries / "vela_index").stat().st_mtime
    made = {program.key: make_index(program, pages, keep, newest if program is ours else 0)
            for program in programs}
    if (ours.index / LOOKUP_FILE).exists():
        plain = PlainVela(ours, keep)
        programs.insert(1, plain)
        whole = made[ours.key]
        made[plain.key] = {**whole,
                           "bytes": whole["bytes"] - (ours.index / LOOKUP_FILE).stat().st_size}
    for program in programs:
        program.prepare()
    queries = load_queries(keep, pages)
    for program in programs:
        read_anew(files_of(program.index_files()))

    print(f"timing {len(queries)} queries, {arguments.runs} rounds ...", file=sys.stderr,
          flush=True)
    measured = circumstances()
    figures = time_commands(binaries, arguments.runs,
                            {f"{program.key}/{number}": program.command(query)
                             for number, query in enumerate(queries) for program in programs})
    result = {"corpus": arguments.corpus, "pages": sum(1 for _ in pages.rglob("*.html")),
              **measured, "runs": arguments.runs, "seed": SEED,
              "command": f"bench/compare.sh --corpus {arguments.corpus} --runs {arguments.runs}",
              "empty": figures["empty"],
              "queries": [{"kind": query.kind, "text": str(query)} for query in queries],
              "programs": []}
    for program in programs:
        own = [figures[f"{program.key}/{number}"] for number in range(len(queries))]
        record = {"key": program.key, "title": program.title, "index": made[program.key]}
        for field in ("ms", "lower_ms", "cpu_ms"):
            record[field] = [one[field] for one in own]
        for field in ("ms", "cpu_ms"):
            record[f"{field}_by_kind"] = by_kind(queries, record[field], statistics.median)
        record["peak_kb"] = max(one["peak_kb"] for one in own)
        record["faults"] = statistics.median(one["faults"] for one in own)
        record["found"] = [program.count(query) for query in queries]
        if f"{BASELINE}/0" in figures:
            base = [figures[f"{BASELINE}/{number}"] for number in range(len(queries))]
            ratios = [one["ms"] / other["ms"] for one, other in zip(own, base)]
            record["ratio_by_kind"] = by_kind(queries, ratios, geometric_mean)
            record["ratio"] = geometric_mean(ratios)
            record["cpu_ratio"] = geometric_mean([one["cpu_ms"] / other["cpu_ms"]
                                                  for one, other in zip(own, base)])
        if arguments.instructions and isinstance(program, Vela):
            counts = [count_instructions(program.command(query)) for query in queries]
            record["instructions"] = counts
            record["instructions_by_kind"] = by_kind(queries, counts, statistics.median)
        result["programs"].append(record)

    name = "compare" if arguments.corpus == "large" else f"compare-{arguments.corpus}"
    if arguments.only:
        name += f"-{arguments.only}"
    (arguments.results / f"{name}.json").write_text(json.dumps(result, indent=1) + "\n")
    (arguments.results / f"{name}.md").write_text(report(result))
    (arguments.results / f"{name}.svg").write_text(draw(result))
    print(report(result))
    print(f"written to {arguments.results}/{name}.json, .md and .svg", file=sys.stderr)


if __name__ == "__main__":
    main()
