#!/usr/bin/env python3
"""Measures how well misspelled words are answered on a site.

    bench/spelling.py SITE [--bin build/release/bin] [--stemming english] [--off] [--show]
                           [--absent OTHER_SITE]

SITE is a folder of pages; it is indexed, and the search program is asked as a web server would ask
it, in XML. Three lists are tried:

- the 50 misspellings of COMMON, of words that any documentation of a program has;
- 500 words of four letters and more with one slip each, from the 2,000 of the site that are on the
  most pages: a letter dropped, doubled or swapped with the next, a key beside the right one, one
  vowel for another (seeded, the same list for the same site; slips that give a word of the site are
  passed over);
- 500 words of the site as they are, which must not be answered with another.

With --absent, 500 of the 12,000 most frequent words of another site that this one lacks are asked
for as well: for how many another word is offered, and the results of one shown at once.

"right" is the word itself as the first offer, "wrong" another one. With --stemming, the right word
is one of its stem. --off indexes without the extensions.
"""
import argparse
import random
import re
import subprocess
import tempfile
from pathlib import Path

SEED = 20
COMMON = """
adress address, algoritm algorithm, alredy already, arguement argument, atribute attribute,
avaliable available, begining beginning, calender calendar, charachter character, collumn column,
comand command, conection connection, defualt default, definately definitely, dictonary dictionary,
diffrent different, enviroment environment, exeption exception, exmaple example, expresion expression,
fucntion function, funtion function, grammer grammar, heigth height, imediately immediately,
immutible immutable, implemention implementation, independant independent, inheritence inheritance,
instal install, interger integer, intsall install, iterater iterator, lamda lambda, lenght length,
libary library, maintainance maintenance, messege message, modul module, neccessary necessary,
occured occurred, paramater parameter, persistant persistent, pyton python, recieve receive,
refrence reference, seperate separate, strign string, sucess success, varaible variable
"""
NEIGHBOURS = {}
for row, shift in (("qwertyuiop", 0.0), ("asdfghjkl", 0.3), ("zxcvbnm", 0.8)):
    for at, key in enumerate(row):
        NEIGHBOURS[key] = at + shift, row
ROWS = ["qwertyuiop", "asdfghjkl", "zxcvbnm"]


def keys_beside(key):
    place, row = NEIGHBOURS[key]
    return [other for other, (at, of) in sorted(NEIGHBOURS.items())
            if other != key and abs(at - place) <= 1 and abs(ROWS.index(of) - ROWS.index(row)) <= 1]


def with_slip(word, rng):
    kind = rng.choice(["dropped", "doubled", "swapped", "neighbour", "vowel"])
    at = rng.randrange(1, len(word))  # the first letter is seldom wrong
    if kind == "dropped":
        return word[:at] + word[at + 1:]
    if kind == "doubled":
        return word[:at] + word[at] + word[at:]
    if kind == "swapped":
        at = rng.randrange(len(word) - 1)
        return word[:at] + word[at + 1] + word[at] + word[at + 2:]
    if kind == "neighbour":
        return word[:at] + rng.choice(keys_beside(word[at])) + word[at + 1:]
    vowels = [i for i in range(1, len(word)) if word[i] in "aeiou"]
    if not vowels:
        return word
    at = rng.choice(vowels)
    return word[:at] + rng.choice([v for v in "aeiou" if v != word[at]]) + word[at + 1:]


class Site:
    def __init__(self, arguments, pages, folder):
        self.index = folder / "index"
        bin = Path(arguments.bin).resolve()
        config = folder / "vela_index.toml"
        text = (f'[site]\nfolder = "{Path(pages).resolve()}"\nout = "{self.index}"\n'
                'base_url = "https://site.example/"\n')
        text += f'[index]\nstemming = "{arguments.stemming}"\n' if arguments.stemming else ""
        text += "[search]\nextensions = false\n" if arguments.off else ""
        config.write_text(text)
        subprocess.run([bin / "vela_index", "--config", config, "--quiet"], check=True)
        program = self.index / "search.cgi"
        program.unlink(missing_ok=True)
        program.symlink_to(bin / "vela_search")
        self.program = program
        self.stems = bool(arguments.stemming)

    def words(self):
        """The words of letters alone, as pages write them, those on the most pages first."""
        lines = (self.index / "vela_dictionary.vdat").read_text(encoding="utf-8", errors="replace")
        found = {}
        variants = 0
        for line in lines.splitlines():
            if variants > 0:
                variants -= 1
                forms = [line.lower()] if self.stems else []
            else:
                base, _, *count = line.split(" ")
                variants = int(count[0]) if count else 0
                # A stem that is written in no other way is a word.
                forms = [base] if not self.stems or variants == 0 else []
            found |= {form: None for form in forms if re.fullmatch("[a-z]{4,}", form)}
        return list(found)

    def answer(self, query):
        environment = {"REQUEST_METHOD": "GET", "QUERY_STRING": f"vela_xml=1&vela_query={query}"}
        return subprocess.run([self.program], env=environment, capture_output=True,
                              check=False).stdout.decode("utf-8", errors="replace")

    def ask(self, query):
        """How many pages are found, and the words offered."""
        answer = self.answer(f"{query}&vela_literal=1")
        total = re.search(r"<opensearch:totalResults>(-?\d+)<", answer)
        offers = re.findall(r"<vela:spelling>([^<]*)<", answer)
        return int(total[1]) if total else 0, offers


def stem_like(a, b):
    """Whether two words differ in their ending alone."""
    common = 0
    while common < min(len(a), len(b)) and a[common] == b[common]:
        common += 1
    return common >= 4 and max(len(a), len(b)) - common <= 3


def try_list(site, name, pairs, arguments):
    found = right = wrong = none = 0
    for typed, meant in pairs:
        total, offers = site.ask(typed)
        is_right = bool(offers) and (offers[0] == meant or
                                     bool(arguments.stemming) and stem_like(offers[0], meant))
        found += total > 0
        right += is_right
        wrong += bool(offers) and not is_right
        none += not offers and total <= 0
        if arguments.show and not is_right and typed != meant:
            print(f"    {typed} ({meant}): {' '.join(offers) or ('found' if total > 0 else '-')}")
    print(f"{name}: {len(pairs)} words, {right} right, {wrong} wrong, {none} without an offer, "
          f"{found} found as they are")


def try_absent(site, other, arguments):
    known = set(site.words())
    lacking = [word for word in other.words()[:12000]
               if word not in known and site.ask(word)[0] <= 0]
    lacking = random.Random(SEED).sample(lacking, min(500, len(lacking)))
    offered = sum(bool(site.ask(word)[1]) for word in lacking)
    shown = [(word, match[1]) for word in lacking
             if (match := re.search("<vela:corrected>([^<]*)<", site.answer(word)))]
    if arguments.show:
        print("    " + ", ".join(f"{word} {correction}" for word, correction in shown))
    print(f"words of another site: {len(lacking)} words, {offered} with an offer, "
          f"{len(shown)} with other results")


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("site")
    parser.add_argument("--bin", default="build/release/bin")
    parser.add_argument("--stemming")
    parser.add_argument("--off", action="store_true")
    parser.add_argument("--show", action="store_true", help="name the words not answered")
    parser.add_argument("--absent", metavar="OTHER_SITE")
    arguments = parser.parse_args()
    with tempfile.TemporaryDirectory() as folder:
        site = Site(arguments, arguments.site, Path(folder))
        pairs = [tuple(pair.split()) for pair in COMMON.replace("\n", " ").split(",")]
        try_list(site, "common misspellings", pairs, arguments)
        words = site.words()
        known = set(words)
        frequent = words[:2000]
        rng = random.Random(SEED)
        slips = []
        while len(slips) < 500:
            word = rng.choice(frequent)
            typed = with_slip(word, rng)
            if typed not in known and site.ask(typed)[0] <= 0:
                slips.append((typed, word))
        try_list(site, "slips in frequent words", slips, arguments)
        right = [(word, word) for word in random.Random(SEED).sample(words, min(500, len(words)))]
        try_list(site, "words as they are", right, arguments)
        if arguments.absent:
            with tempfile.TemporaryDirectory() as other:
                try_absent(site, Site(arguments, arguments.absent, Path(other)), arguments)


if __name__ == "__main__":
    main()
