#!/usr/bin/env python3
"""Checks that includes point one way: a file includes only its own room's rank or a lower one,
and no files include each other in a circle.

    scripts/check_includes.py [ROOT]

The ranks follow the way of a request through the program. The writers of output and the ending
of a request are open to everyone, so they stand low and include little themselves.
"""

import pathlib
import re
import sys

RANK_OF_ROOM = {"text": 0, "settings": 2, "index": 3, "search": 4, "output": 5, "request": 6}
WRITERS = {"output/grow_text", "output/response", "output/sections", "output/markup"}
WRITER_RANK = 1
OPEN_TO_ALL = {"output/ending.h"}
# What leads a search from the query to the finished page: it calls across all rooms, and is
# itself called from request alone.
RANK_OF_FILE = {"search/driver.h": 5.5, "search/driver.cc": 7}

# Programs beside the search program use the formats, hardly the search.
OUTSIDE = ("indexer", "tools")
OUTSIDE_ROOMS = {"text", "settings", "index"}
OUTSIDE_FILES = {"search/query_terms.h"}

INCLUDE = re.compile(r'^\s*#\s*include\s*"([^"]+)"', re.MULTILINE)


def rank(name):
    """The rank of a file given as "room/file.h"; None for a file of no room."""
    stem = name.rsplit(".", 1)[0]
    if stem in WRITERS:
        return WRITER_RANK
    if name in RANK_OF_FILE:
        return RANK_OF_FILE[name]
    return RANK_OF_ROOM.get(name.split("/", 1)[0])


def find_circle(graph):
    """The names along one circle of the graph, or an empty list."""
    done = set()
    for start in sorted(graph):
        trail = []  # (name, what is left to visit from it)
        if start not in done:
            trail.append((start, iter(sorted(graph[start]))))
        on_trail = [start]
        while trail:
            name, rest = trail[-1]
            following = next(rest, None)
            if following is None:
                trail.pop()
                on_trail.pop()
                done.add(name)
            elif following in on_trail:
                return on_trail[on_trail.index(following):] + [following]
            elif following in graph and following not in done:
                trail.append((following, iter(sorted(graph[following]))))
                on_trail.append(following)
    return []


def main():
    root = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else pathlib.Path(__file__).parents[1])
    source = root / "src"
    problems = []
    graph = {}
    count = 0

    for path in sorted(source.rglob("*")):
        if path.suffix not in {".h", ".cc", ".inc"}:
            continue
        name = path.relative_to(source).as_posix()
        own_rank = rank(name)
        if own_rank is None:
            problems.append(f"src/{name}: stands in no room")
            continue
        count += 1
        graph[name] = set()
        for included in INCLUDE.findall(path.read_text(encoding="utf-8")):
            if not (source / included).is_file():
                problems.append(f'src/{name}: "{included}" is not named from src/')
                continue
            graph[name].add(included)
            if included not in OPEN_TO_ALL and rank(included) > own_rank:
                problems.append(f"src/{name}: includes {included}, which stands above it")

    for folder in OUTSIDE:
        for path in sorted((root / folder).rglob("*")):
            if path.suffix not in {".h", ".cc"}:
                continue
            count += 1
            for included in INCLUDE.findall(path.read_text(encoding="utf-8")):
                room = included.split("/", 1)[0]
                if not (source / included).is_file() or room in OUTSIDE_ROOMS:
                    continue
                if rank(included) > WRITER_RANK and included not in OUTSIDE_FILES:
                    problems.append(f"{path.relative_to(root)}: includes {included}")

    circle = find_circle(graph)
    if circle:
        problems.append("a circle: " + " -> ".join(circle))
    if count == 0:
        problems.append(f"no source files under {source}")
    for problem in problems:
        print(problem)
    print(f"{count} files, {len(problems)} problems")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
