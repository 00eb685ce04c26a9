#!/usr/bin/env python3
"""Checks that includes point one way, between the rooms and within them, and that the picture in
docs/architecture.md shows them as they are.

    scripts/check_includes.py [--picture] [ROOT]

A file may include its own room and the rooms below it; no files include each other in a circle.
There are no exceptions. --picture prints the picture of the code as it stands.
"""

import argparse
import pathlib
import re
import sys

# From the lowest to the highest. The indexer and the inspector stand on the search program's rooms
# and know nothing of each other; what lies in indexer/ and inspector/ themselves runs their rooms and
# is called "run" and "inspect".
SEARCH_ROOMS = ["text", "format", "settings", "index", "search", "output", "request"]
INDEXER_ROOMS = ["report", "memory", "words", "site", "source", "config", "extract", "documents", "crawl",
                 "collect", "explanation", "write", "publish", "state", "run"]
INSPECTOR_ROOMS = ["findings", "opened", "check", "show", "explain", "inspect"]
ROOMS_OF = {"src": SEARCH_ROOMS, "indexer": INDEXER_ROOMS, "inspector": INSPECTOR_ROOMS}
ALL_ROOMS = SEARCH_ROOMS + INDEXER_ROOMS + INSPECTOR_ROOMS
# What programs beside the search program may use of it: how words compare, what the files hold.
SHARED_ROOMS = ["text", "format", "settings", "index"]
# The inspector explains a search by running it.
INSPECTED_ROOMS = SHARED_ROOMS + ["search"]
TOOLS = ["tools", "bench"]

SOURCES = {".h", ".cc", ".inc"}
INCLUDE = re.compile(r'^\s*#\s*include\s*"([^"]+)"', re.MULTILINE)
PICTURE_BEGIN = "<!-- rooms: begin -->\n```\n"
PICTURE_END = "```\n<!-- rooms: end -->"


def room_of(name):
    """The room of a file given as "src/room/file.h" or "indexer/file.h"; None without one."""
    parts = name.split("/")
    if len(parts) == 2:
        return {"indexer": "run", "inspector": "inspect"}.get(parts[0])
    if len(parts) == 3 and parts[1] in ROOMS_OF.get(parts[0], []):
        return parts[1]
    return None


def may_include(folder, room, included_folder, included_room):
    if folder in TOOLS:
        return included_folder in TOOLS or included_room in ALL_ROOMS
    if included_folder == folder:
        rooms = ROOMS_OF[folder]
        return rooms.index(included_room) <= rooms.index(room)
    if included_folder != "src":
        return False
    return included_room in (INSPECTED_ROOMS if folder == "inspector" else SHARED_ROOMS)


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


def read_graph(root):
    """Every file with the files that it includes, both from the root on; and what is wrong."""
    graph = {}
    problems = []
    for folder in [*ROOMS_OF, *TOOLS]:
        for path in sorted((root / folder).rglob("*")):
            if path.suffix not in SOURCES:
                continue
            name = path.relative_to(root).as_posix()
            graph[name] = set()
            if folder not in TOOLS and room_of(name) is None:
                problems.append(f"{name}: stands in no room")
                continue
            for included in INCLUDE.findall(path.read_text(encoding="utf-8")):
                for full in ("src/" + included, included):
                    if (root / full).is_file():
                        graph[name].add(full)
                        break
                else:
                    problems.append(f'{name}: "{included}" is named neither from src/ nor from '
                                    "the project's folder")
    return graph, problems


def check_directions(graph):
    problems = []
    for name, includes in graph.items():
        folder = name.split("/", 1)[0]
        room = room_of(name)
        if folder not in TOOLS and room is None:
            continue
        for included in sorted(includes):
            included_folder = included.split("/", 1)[0]
            included_room = room_of(included)
            if included_folder not in TOOLS and included_room is None:
                continue
            if not may_include(folder, room, included_folder, included_room):
                problems.append(f"{name}: includes {included}, which stands above it")
    circle = find_circle(graph)
    if circle:
        problems.append("a circle: " + " -> ".join(circle))
    return problems


def picture(graph):
    """A line a room, a column for each room it may stand on: x where it includes from there."""
    uses = {room: set() for room in ALL_ROOMS}
    for name, includes in graph.items():
        room = room_of(name)
        if room is not None:
            uses[room] |= {room_of(included) for included in includes} - {None, room}
    lines = []

    def draw(rooms, columns):
        width = max(len(room) for room in ALL_ROOMS) + 1
        lines.append(" " * width + "".join(f" {column:^3}" for column in columns))
        for room in rooms:
            # Only what lies below a room can be in its line.
            below = columns[:columns.index(room)] if room in columns else columns
            lines.append(f"{room:<{width}}" + "".join(
                f" {'x' if column in uses[room] else '.':^{max(len(column), 3)}}"
                for column in below))

    draw(SEARCH_ROOMS, SEARCH_ROOMS[:-1])
    lines.append("")
    draw(INDEXER_ROOMS, SHARED_ROOMS + INDEXER_ROOMS[:-1])
    lines.append("")
    draw(INSPECTOR_ROOMS, INSPECTED_ROOMS + INSPECTOR_ROOMS[:-1])
    return "".join(line.rstrip() + "\n" for line in lines)


def check_picture(root, graph):
    text = (root / "docs" / "architecture.md").read_text(encoding="utf-8")
    _, begin, rest = text.partition(PICTURE_BEGIN)
    shown, end, _ = rest.partition(PICTURE_END)
    if not begin or not end:
        return ["docs/architecture.md: has no picture of the rooms"]
    if shown != picture(graph):
        return ["docs/architecture.md: the picture of the rooms is not that of the code; "
                "scripts/check_includes.py --picture prints it"]
    return []


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--picture", action="store_true")
    parser.add_argument("root", nargs="?", type=pathlib.Path,
                        default=pathlib.Path(__file__).resolve().parents[1])
    options = parser.parse_args()
    graph, problems = read_graph(options.root)
    if options.picture:
        print(picture(graph), end="")
        return 0
    problems += check_directions(graph)
    if not graph:
        problems.append(f"no source files under {options.root}")
    else:
        problems += check_picture(options.root, graph)
    for problem in problems:
        print(problem)
    print(f"{len(graph)} files, {len(problems)} problems")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
