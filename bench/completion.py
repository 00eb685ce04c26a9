#!/usr/bin/env python3
"""What the search box offers for the beginnings of words.

    bench/completion.py --program build/release/bin/vela_search INDEX BEGINNING ...

Asks for each beginning as the search box does and counts how many get no suggestion at all, and of
the eight that the box shows how many carry what templates put around a text: a link sign, the number
of a chapter, a dash or bar with what many titles end in. Then counts how many titles of the index's
pages are among all suggestions, in lower case and without such additions.
"""

import argparse
import collections
import html
import os
import re
import subprocess
import tempfile
import urllib.parse

SHOWN = 8
NUMBERED = re.compile(r"^(\d+\.)+ |^(chapter|kapitel|anhang) \w+\. ", re.I)


def plain(text, endings):
    text = NUMBERED.sub("", html.unescape(text).strip().rstrip("\u00b6#").strip())
    for ending in endings:
        text = text.removesuffix(ending)
    return text.lower()[:60]


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--program", required=True)
    parser.add_argument("index")
    parser.add_argument("beginnings", nargs="+", metavar="BEGINNING")
    options = parser.parse_args()
    with open(os.path.join(options.index, "vela_pagedata.vdat"), encoding="utf-8") as file:
        titles = [line.split("|")[1] for line in file if line.count("|") > 1]
    ends = collections.Counter(m[1] for t in titles if (m := re.search(r"( [\u2014|-] [^\u2014|]*)$", t)))
    endings = [end for end, count in ends.items() if count * 2 > len(titles)]
    with tempfile.TemporaryDirectory() as folder:
        for name in os.listdir(options.index):
            if name != "search.cgi":
                os.symlink(os.path.abspath(os.path.join(options.index, name)), os.path.join(folder, name))
        os.symlink(os.path.abspath(options.program), os.path.join(folder, "search.cgi"))
        nothing = shown = cluttered = 0
        for beginning in options.beginnings:
            query = "vela_ac=1&vela_query=" + urllib.parse.quote_plus(beginning)
            environment = {"REQUEST_METHOD": "GET", "SCRIPT_NAME": "/search.cgi", "QUERY_STRING": query}
            page = subprocess.run([os.path.join(folder, "search.cgi")], env=environment,
                                  capture_output=True, check=True).stdout.decode()
            items = [html.unescape(item) for item in re.findall(r'_self">([^<]*)</a>', page)]
            items.sort(key=lambda item: not item.lower().startswith(beginning.lower()))
            nothing += not items
            shown += len(items[:SHOWN])
            cluttered += sum(bool(NUMBERED.search(item)) or item.endswith("\u00b6") or
                             any(item.endswith(end) for end in endings) for item in items[:SHOWN])
    with open(os.path.join(options.index, "vela_autocomplete.vdat"), encoding="utf-8") as file:
        offered = {plain(line, endings) for line in file}
    known = sum(plain(title, endings) in offered for title in titles)
    print(f"beginnings {len(options.beginnings)}, without a suggestion {nothing}; shown {shown}, "
          f"with additions {cluttered}; titles offered {known} of {len(titles)}")


if __name__ == "__main__":
    main()
