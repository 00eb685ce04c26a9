#!/usr/bin/env python3
"""Random pages made of tags that get into each other's way, read by dump_page and reference.mjs.
Prints those that differ, made as small as can be.

  fuzz.py DUMP_PAGE FOLDER_OF_NODE_MODULES [SEED] [PAGES]
"""
import os
import random
import sys
import tempfile

import compare

NAMES = """a b i nobr font span p div li ul ol dl dt dd table tbody thead tr td th caption colgroup
col select option optgroup button form h1 h2 template svg math mi desc foreignObject title
annotation-xml ruby rt rp rb rtc object applet marquee br hr img input textarea pre header footer
nav main article aside section x-y x head body html frameset noframes style script plaintext xmp
label time center address path mglyph""".split()
RARE = {"plaintext", "frameset", "html", "body", "head", "template", "title", "xmp", "textarea",
        "script", "style", "noframes", "nav"}
# Where attributes lead to the differences that README.md argues.
NO_ATTRIBUTES = {"a", "b", "i", "font", "nobr", "html", "body"}
ATTRIBUTES = ["hidden", "role=main", "role=banner", "style='display:none'", "encoding=text/html",
              "alt=alt", "href=#x", "color=red", "aria-hidden=true", "type=hidden"]
TEXTS = [" ", "\n", "&amp;", "&notit;", "&#x41", "<!-- c -->", "<![CDATA[cd]]>", "</>", "<?pi?>",
         "&ampx", "<", "&"]


def snippet(rng, names):
    count = rng.randint(3, 40)
    # Of few names, so that they meet.
    names = rng.sample(names, rng.randint(4, 20))
    parts = []
    for i in range(count):
        what = rng.random()
        name = rng.choice(names)
        if name in RARE and rng.random() < 0.7:
            name = rng.choice(names)
        if what < 0.45:
            attribute = ""
            if name not in NO_ATTRIBUTES and rng.random() < 0.08:
                attribute = " " + rng.choice(ATTRIBUTES)
            closing = "/" if rng.random() < 0.04 else ""
            parts.append(f"<{name}{attribute}{closing}>")
        elif what < 0.7:
            parts.append(f"</{name}>")
        elif what < 0.95:
            parts.append(f"w{i}")
        else:
            parts.append(rng.choice(TEXTS))
    return parts


class Readers:
    def __init__(self, dump_page, modules, folder):
        self.commands = [[dump_page], ["node", os.path.join(compare.HERE, "reference.mjs"), modules]]
        self.folder = folder

    def differing(self, pages):
        paths = []
        for i, parts in enumerate(pages):
            paths.append(os.path.join(self.folder, f"{i}.html"))
            with open(paths[-1], "w", encoding="utf-8") as file:
                file.write("<!doctype html>" + "".join(parts))
        ours, theirs = (compare.read_with(command, paths) for command in self.commands)

        def told(page):
            return [compare.words_of(page)] + [page[field] for field in compare.FIELDS]
        return [(i, told(a), told(b)) for i, (a, b) in enumerate(zip(ours, theirs))
                if told(a) != told(b)]


def smallest(readers, parts):
    while True:
        fewer = [parts[:i] + parts[i + 1:] for i in range(len(parts))]
        differing = readers.differing(fewer) if fewer else []
        if not differing:
            return parts
        parts = fewer[differing[0][0]]


def main():
    dump_page, modules, *rest = sys.argv[1:]
    seed = int(rest[0]) if rest else 1
    count = int(rest[1]) if len(rest) > 1 else 5000
    rng = random.Random(seed)
    names = [n for n in NAMES if n not in os.environ.get("WITHOUT", "").split()]
    with tempfile.TemporaryDirectory() as folder:
        readers = Readers(dump_page, modules, folder)
        pages = [snippet(rng, names) for _ in range(count)]
        differing = readers.differing(pages)
        print(f"{len(differing)} of {count} pages differ")
        for i, _, _ in differing[:15]:
            small = smallest(readers, pages[i])
            _, ours, theirs = readers.differing([small])[0]
            print("".join(small).replace("\n", "\\n"))
            for a, b in zip(ours, theirs):
                if a != b:
                    print("   ", a, "for", b)


if __name__ == "__main__":
    main()
