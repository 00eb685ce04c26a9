#!/usr/bin/env python3
"""Compares whole searches with those of other programs on the same pages; see compare.sh.

Everything goes into the folder of --keep: the indexes, what making them took, the queries. What is
there from an earlier run is used again, but for our own index when its program is newer.
"""
import argparse
import json
import math
import os
import platform
import shutil
import statistics
import subprocess
import sys
import tempfile
import time
from dataclasses import asdict
from datetime import datetime, timezone
from pathlib import Path

import chart
from peers import LOOKUP_FILE, Namazu, Omega, PlainVela, SqliteFts, SwishE, Vela
from queries import KINDS, Query, choose_queries

HERE = Path(__file__).resolve().parent
SEED = 7
BASELINE = "omega"


def size_of(paths):
    files = [file for path in paths for file in ([path] if path.is_file() else path.rglob("*"))]
    return sum(file.stat().st_size for file in files if file.is_file())


def run_timed(command):
    """CPU and wall seconds and peak memory (kB) of a command and all that it starts."""
    with tempfile.NamedTemporaryFile("r") as figures:
        started = time.monotonic()
        done = subprocess.run(["/usr/bin/time", "-f", "%U %S %M", "-o", figures.name, *command],
                              stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, check=False)
        wall = time.monotonic() - started
        last = figures.read().splitlines()[-1].split()
    if done.returncode != 0:
        sys.exit(f"{command[0]} failed:\n{done.stderr.decode('utf-8', 'replace')[-2000:]}")
    return float(last[0]) + float(last[1]), wall, int(last[2])


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


def time_requests(timer, runs, empty, programs, queries):
    """(program key, query number) -> median, lower quartile (ms), peak memory (kB), page faults."""
    lines = [f"empty\t/\t--\t{empty}"]
    for number, query in enumerate(queries):
        for program in programs:
            command = program.command(query)
            lines.append("\t".join([f"{program.key}/{number}", str(command.folder),
                                    *(f"{name}={value}"
                                      for name, value in command.variables.items()),
                                    "--", *command.arguments]))
    done = subprocess.run([timer, str(runs)], input="\n".join(lines) + "\n", text=True, check=True,
                          stdout=subprocess.PIPE)
    figures = {}
    for line in done.stdout.splitlines():
        name, median, lower, peak, faults, _ = line.split("\t")
        figures[name] = {"ms": float(median) / 1000, "lower_ms": float(lower) / 1000,
                         "peak_kb": int(peak), "faults": int(faults)}
    return figures


def count_instructions(program, query, work):
    """Of one request, with callgrind; a figure that does not depend on what else runs."""
    out = work / "callgrind.out"
    command = program.command(query)
    subprocess.run(["valgrind", "--tool=callgrind", f"--callgrind-out-file={out}",
                    *command.arguments], cwd=command.folder, env=command.variables, check=True,
                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    for line in out.read_text().splitlines():
        if line.startswith(("summary:", "totals:")):
            return int(line.split()[1])
    sys.exit("callgrind counted nothing")


def machine():
    model = "unknown processor"
    for line in Path("/proc/cpuinfo").read_text().splitlines():
        if line.startswith("model name"):
            model = line.split(":", 1)[1].strip()
            break
    return f"{model}, {os.cpu_count()} cores, Linux {platform.release()}"


def commit():
    done = subprocess.run(["git", "-C", str(HERE), "describe", "--always", "--dirty"], text=True,
                          stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, check=False)
    return done.stdout.strip() or "unknown"


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


def table(header, rows):
    lines = ["| " + " | ".join(header) + " |", "|" + " --- |" + " ---: |" * (len(header) - 1)]
    lines += ["| " + " | ".join(str(cell) for cell in row) + " |" for row in rows]
    return "\n".join(lines)


def report(result):
    """The tables of a result as Markdown."""
    programs = result["programs"]
    titles = [program["title"] for program in programs]
    times = {program["key"]: program["ms_by_kind"] for program in programs}
    kinds = [kind for kind in KINDS if kind in programs[0]["ms_by_kind"]]
    parts = [f"# Searches of {result['pages']:,} pages ({result['corpus']})", "",
             f"{result['date']}, commit {result['commit']}, {result['machine']}, load "
             f"{result['load']}. `{result['command']}`", "",
             f"One fresh process a request, warm cache, {result['runs']} rounds by turns; the "
             f"median of each query, then the median of a kind's queries. An empty program takes "
             f"{result['empty']['ms']:.2f} ms.", "", "## Milliseconds a request", "",
             table(["", *titles], [[kind, *(f"{times[p['key']][kind]:.2f}" for p in programs)]
                                   for kind in kinds])]
    if any("ratio_by_kind" in program for program in programs):
        parts += ["", "## Time against Omega's", "", "The geometric mean over the queries of a "
                  "kind, of the whole request; below 1 is faster than Omega.", "",
                  table(["", *titles],
                        [[kind, *(f"{p['ratio_by_kind'][kind]:.2f}" for p in programs)]
                         for kind in kinds] +
                        [["all queries", *(f"{p['ratio']:.2f}" for p in programs)]])]
    parts += ["", "## Memory of a request", "",
              table(["", *titles],
                    [["peak, MB", *(f"{p['peak_kb'] / 1024:.1f}" for p in programs)],
                     ["page faults, median", *(f"{p['faults']:.0f}" for p in programs)]])]
    indexed = [program for program in programs if program["index"]]
    parts += ["", "## The index", "",
              table(["", *(program["title"] for program in indexed)],
                    [["MB on disk", *(f"{p['index']['bytes'] / 1e6:.1f}" for p in indexed)],
                     ["CPU seconds", *(f"{p['index']['cpu_seconds']:.1f}" for p in indexed)],
                     ["wall seconds", *(f"{p['index']['wall_seconds']:.1f}" for p in indexed)],
                     ["peak memory, MB",
                      *(f"{p['index']['peak_kb'] / 1024:.0f}" for p in indexed)]])]
    if "instructions_by_kind" in programs[0]:
        counted = [program for program in programs if "instructions_by_kind" in program]
        parts += ["", "## Million instructions a request", "",
                  table(["", *(program["title"] for program in counted)],
                        [[kind, *(f"{p['instructions_by_kind'][kind] / 1e6:.2f}" for p in counted)]
                         for kind in kinds])]
    parts += ["", "## Pages found", "", "Programs cut words differently, so some difference is "
              "right; a program that finds nothing where the others find hundreds did not do the "
              "work.", "",
              table(["query", "kind", *titles],
                    [[f"`{query['text']}`", query["kind"],
                      *(f"{p['found'][number]:,}" for p in programs)]
                     for number, query in enumerate(result["queries"])])]
    return "\n".join(parts) + "\n"


def draw(result):
    programs = result["programs"]
    kinds = [kind for kind in KINDS if kind in programs[0]["ms_by_kind"]]
    rows = [(kind, {p["title"]: p["ms_by_kind"][kind] for p in programs}) for kind in kinds]
    return chart.dot_rows(f"One search of {result['pages']:,} pages, as a process of its own",
                          f"Medians; an empty program takes {result['empty']['ms']:.1f} ms. "
                          f"Logarithmic: each step to the right is a multiple.",
                          "milliseconds", [p["title"] for p in programs], rows)


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

    print(f"timing {len(queries)} queries, {arguments.runs} rounds ...", file=sys.stderr,
          flush=True)
    load = f"{os.getloadavg()[0]:.1f}"
    figures = time_requests(binaries / "time_commands", arguments.runs, binaries / "empty_program",
                            programs, queries)
    result = {"corpus": arguments.corpus, "pages": sum(1 for _ in pages.rglob("*.html")),
              "date": datetime.now(timezone.utc).strftime("%Y-%m-%d"), "commit": commit(),
              "machine": machine(), "load": load, "runs": arguments.runs, "seed": SEED,
              "command": f"bench/compare.sh --corpus {arguments.corpus} --runs {arguments.runs}",
              "empty": figures["empty"],
              "queries": [{"kind": query.kind, "text": str(query)} for query in queries],
              "programs": []}
    baseline = [figures[f"{BASELINE}/{number}"]["ms"] for number in range(len(queries))] \
        if f"{BASELINE}/0" in figures else None
    for program in programs:
        own = [figures[f"{program.key}/{number}"] for number in range(len(queries))]
        times = [one["ms"] for one in own]
        record = {"key": program.key, "title": program.title, "index": made[program.key],
                  "ms": times, "ms_by_kind": by_kind(queries, times, statistics.median),
                  "lower_ms": [one["lower_ms"] for one in own],
                  "peak_kb": max(one["peak_kb"] for one in own),
                  "faults": statistics.median(one["faults"] for one in own),
                  "found": [program.count(query) for query in queries]}
        if baseline:
            ratios = [time / base for time, base in zip(times, baseline)]
            record["ratio_by_kind"] = by_kind(queries, ratios, geometric_mean)
            record["ratio"] = geometric_mean(ratios)
        if arguments.instructions and isinstance(program, Vela):
            counts = [count_instructions(program, query, keep) for query in queries]
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
