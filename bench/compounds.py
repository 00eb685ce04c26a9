#!/usr/bin/env python3
"""Measures how much of a site is found however a word is written.

    bench/compounds.py SITE [--bin build/release/bin] [--language german] [--pairs 'a=b, c=d']

SITE is a folder of pages; it is indexed without the extensions and with them. Both words of each
pair are asked for, all words of a term being wanted: how many of the pages that have either are
found by each, before and after. The pairs are those of PAIRS, or those given.
"""
import argparse
import re
import subprocess
import tempfile
from pathlib import Path

PAIRS = """
filename=file name, newline=new line, e-mail=email, f-string=f-strings, startup=start-up,
toplevel=top level, popup=pop-up, named tuple=namedtuple, subpackages=sub-packages,
linefeed=line feed, codepage=code page, non-empty=nonempty, thread-safety=thread safety,
scrollbar=scroll bar, read-only=read only, case-insensitive=case insensitive
"""


def index(arguments, folder, extensions):
    out = folder / ("with" if extensions else "without")
    config = folder / "vela_index.toml"
    config.write_text(f'[site]\nfolder = "{Path(arguments.site).resolve()}"\nout = "{out}"\n'
                      'base_url = "https://site.example/"\n'
                      f'language = "{arguments.language}"\n'
                      # The first index is like the second in all but the compounds.
                      f"[search]\nextensions = {'true' if extensions else 'false'}\n")
    binaries = Path(arguments.bin).resolve()
    subprocess.run([binaries / "vela_index", "--config", config, "--quiet"], check=True)
    program = out / "search.cgi"
    program.unlink(missing_ok=True)
    program.symlink_to(binaries / "vela_search")
    return program


def pages(program, query):
    """The addresses of all results."""
    found = set()
    for page in range(1, 11):
        text = query.replace(" ", "+")
        environment = {"REQUEST_METHOD": "GET", "QUERY_STRING":
                       "vela_xml=1&vela_literal=1&vela_and=1&vela_per_page=100"
                       f"&vela_page={page}&vela_query={text}"}
        answer = subprocess.run([program], env=environment, capture_output=True,
                                check=False).stdout.decode("utf-8", errors="replace")
        links = re.findall("<link>https://site.example/([^<#]*)", answer[answer.find("<item>"):])
        if not links or "<item>" not in answer:
            break
        found |= set(links)
    return found


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("site")
    parser.add_argument("--bin", default="build/release/bin")
    parser.add_argument("--language", default="english")
    parser.add_argument("--pairs", default=PAIRS)
    arguments = parser.parse_args()
    with tempfile.TemporaryDirectory() as folder:
        before = index(arguments, Path(folder), False)
        after = index(arguments, Path(folder), True)
        shares = [0.0, 0.0]
        queries = 0
        for pair in arguments.pairs.replace("\n", " ").split(","):
            words = pair.strip().split("=")
            # Written apart, the words have to stand side by side.
            either = set().union(*(pages(before, f'%22{word}%22' if " " in word else word)
                                   for word in words))
            if not either:
                continue
            line = f"{pair.strip():36}"
            for word in words:
                counts = []
                for i, program in enumerate((before, after)):
                    found = len(pages(program, word) & either)
                    shares[i] += found / len(either)
                    counts.append(found)
                queries += 1
                line += f"  {word}: {counts[0]} -> {counts[1]} of {len(either)}"
            print(line)
        print(f"{queries} queries: {100 * shares[0] / queries:.0f} % of the pages found before, "
              f"{100 * shares[1] / queries:.0f} % after")


if __name__ == "__main__":
    main()
