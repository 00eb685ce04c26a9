#!/usr/bin/env python3
"""How much of a request is nothing but bringing in the memory that it looks at.

    bench/floor.py INDEXDIR [--program FILE] [--runs N] QUERY...

Records which pages of which files a request touches first (perf, event page-faults), makes a C
program that opens and maps the same files, touches the same places and as much fresh memory and
writes 20 kB, and runs both in turn. What the second takes no change of the search can save but by
looking at less. Prints milliseconds: the fastest twentieth of the runs, and the quarter.
"""

import argparse
import os
import pathlib
import re
import subprocess
import tempfile
import time
import urllib.parse

PROJECT = pathlib.Path(__file__).resolve().parents[1]
MAPPED = re.compile(r"PERF_RECORD_MMAP2? .*?\[0x([0-9a-f]+)\(0x([0-9a-f]+)\) @ \S+ .*: \S+ (\S+)")
TOUCHED = re.compile(r"\s*([0-9a-f]+)\s*$")


def environment(query):
    return {"REQUEST_METHOD": "GET", "SCRIPT_NAME": "/search.cgi",
            "QUERY_STRING": "vela_query=" + urllib.parse.quote_plus(query)}


def touched_by(program, index, query, folder):
    """({file: [offset]}, pages of other memory) of one request."""
    data = folder / "perf.data"
    subprocess.run(["perf", "record", "-q", "-d", "-e", "page-faults", "-c", "1", "-o", data,
                    program, "/I", index], env={**os.environ, **environment(query)}, check=True,
                   stdout=subprocess.DEVNULL)
    told = subprocess.run(["perf", "script", "-i", data, "-F", "addr", "--show-mmap-events"],
                          capture_output=True, text=True, check=True).stdout
    mappings, files, others = [], {}, 0
    for line in told.splitlines():
        if mapping := MAPPED.search(line):
            mappings.append((int(mapping[1], 16), int(mapping[2], 16), pathlib.Path(mapping[3])))
        elif touched := TOUCHED.match(line):
            place = int(touched[1], 16)
            inside = [(start, path) for start, size, path in mappings
                      if start <= place < start + size]
            if inside and inside[-1][1].suffix == ".vdat":
                start, path = inside[-1]
                files.setdefault(path.resolve(), []).append(place - start)
            elif not inside or inside[-1][1].resolve() != program.resolve():
                others += 1
    return files, others


def make_replay(files, others, folder):
    """The program that touches the same and does nothing else."""
    lines = ["#include <fcntl.h>", "#include <sys/mman.h>", "#include <sys/stat.h>",
             "#include <unistd.h>", "static char page[20000];", "int main(void) {",
             "  volatile char sum = 0;", "  struct stat info;"]
    for path, places in files.items():
        lines += [f'  {{ int f = open("{path}", O_RDONLY); fstat(f, &info);',
                  "    const char* p = mmap(0, info.st_size, PROT_READ, MAP_PRIVATE, f, 0);",
                  f"    static const unsigned long at[] = {{{','.join(map(str, places))}}};",
                  "    for (unsigned long i = 0; i < sizeof at / sizeof *at; ++i) sum += p[at[i]];",
                  "    close(f); }"]
    lines += [f"  char* fresh = mmap(0, 4096L * {others + 1}, PROT_READ | PROT_WRITE,",
              "                     MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);",
              f"  for (long i = 0; i < {others}; ++i) fresh[i * 4096] = 1;",
              "  page[0] = sum;", "  return write(1, page, sizeof page) < 0;", "}"]
    source = folder / "replay.c"
    source.write_text("\n".join(lines) + "\n")
    subprocess.run(["gcc", "-O2", "-static", "-o", folder / "replay", source], check=True)
    return folder / "replay"


def milliseconds(command, variables):
    begun = time.perf_counter()
    process = subprocess.Popen(command, env=variables, stdout=subprocess.DEVNULL)
    process.wait()
    return (time.perf_counter() - begun) * 1000


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("index", type=pathlib.Path)
    parser.add_argument("queries", nargs="+")
    parser.add_argument("--program", type=pathlib.Path,
                        default=PROJECT / "build/release/bin/vela_search")
    parser.add_argument("--runs", type=int, default=100)
    options = parser.parse_args()
    for query in options.queries:
        with tempfile.TemporaryDirectory() as name:
            folder = pathlib.Path(name)
            files, others = touched_by(options.program, options.index, query, folder)
            replay = make_replay(files, others, folder)
            commands = {"request": [options.program, "/I", options.index], "replay": [replay]}
            times = {name: [] for name in commands}
            for _ in range(options.runs):
                for name, command in commands.items():
                    times[name].append(milliseconds(command, environment(query)))
            told = ", ".join(f"{path.name} {len(places)}" for path, places in files.items())
            print(f"{query}: {told}, other memory {others}")
            for name, taken in times.items():
                taken.sort()
                print(f"  {name}: {taken[len(taken) // 20]:.2f} {taken[len(taken) // 4]:.2f}")


if __name__ == "__main__":
    main()
