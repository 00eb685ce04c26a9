"""Chooses the queries of compare.py from the words of the pages themselves.

The vocabulary is SQLite's, so that none of what is measured against each other beside it has a say
in what it is asked. Words are of lower-case ASCII letters alone: there every program cuts alike.
"""
import random
import re
import sqlite3
from collections import Counter
from dataclasses import dataclass

KINDS = ("everywhere", "common", "rare", "two words", "phrase", "phrase of common words", "prefix",
         "not found")
WORD = re.compile(r"[a-z]{3,15}")
STRETCH = re.compile(r"[a-z]+(?: [a-z]+)+")
SAMPLED_PAGES = 600


@dataclass(frozen=True)
class Query:
    kind: str    # of KINDS
    words: tuple  # one; two for "two words" (all are wanted) and phrases; of a prefix its letters

    @property
    def is_phrase(self):
        return self.kind.startswith("phrase")

    def __str__(self):
        text = " ".join(self.words)
        if self.is_phrase:
            return f'"{text}"'
        return text + "*" if self.kind == "prefix" else text


def page_counts(connection):
    """On how many pages each word stands."""
    connection.execute("CREATE VIRTUAL TABLE temp.vocabulary USING fts5vocab(main, pages, row)")
    found = connection.execute("SELECT term, doc FROM temp.vocabulary WHERE doc > 2")
    return {term: pages for term, pages in found if WORD.fullmatch(term)}


def sampled_pairs(connection, pages, draw):
    """How many of some hundred pages hold two words side by side, and which pages' words."""
    numbers = draw.sample(range(1, pages + 1), min(SAMPLED_PAGES, pages))
    pairs = Counter()
    word_sets = []
    for number in numbers:
        (body,) = connection.execute("SELECT body FROM pages WHERE rowid = ?", (number,)).fetchone()
        found = set()
        words_of_page = set()
        # Words at a sign or a figure are left out, as programs differ in what they make of those.
        for stretch in STRETCH.findall(re.sub(r"\S*[^a-z\s]\S*", "|", body)):
            words = stretch.split(" ")
            found.update(zip(words, words[1:]))
            words_of_page.update(words)
        pairs.update(found)
        word_sets.append(words_of_page)
    return pairs, word_sets


def choose_queries(database, seed):
    """About 37 queries, the same for the same pages and seed, in the order of KINDS."""
    draw = random.Random(seed)
    connection = sqlite3.connect(database)
    (pages,) = connection.execute("SELECT count(*) FROM pages").fetchone()
    on_pages = page_counts(connection)
    pairs, word_sets = sampled_pairs(connection, pages, draw)

    def between(least, most):
        """Words on this share of the pages."""
        return sorted(word for word, count in on_pages.items()
                      if least * pages <= count <= most * pages)

    everywhere = between(0.5, 1)
    common = between(0.05, 0.25)
    rare = sorted(word for word, count in on_pages.items() if 3 <= count <= 20)
    chosen = [Query("everywhere", (word,)) for word in draw.sample(everywhere, 3)]
    chosen += [Query("common", (word,)) for word in draw.sample(common, 6)]
    chosen += [Query("rare", (word,)) for word in draw.sample(rare, 6)]

    both = set()
    while len(both) < 6:
        on_page = sorted(draw.choice(word_sets) & set(common))
        if len(on_page) >= 2:
            both.add(tuple(draw.sample(on_page, 2)))
    chosen += [Query("two words", words) for words in sorted(both)]

    middling = set(between(0.01, 0.3))
    frequent = set(between(0.3, 1))
    phrases = sorted(pair for pair, count in pairs.items()
                     if count >= 2 and middling.issuperset(pair) and pair[0] != pair[1])
    chosen += [Query("phrase", words) for words in draw.sample(phrases, 5)]
    phrases = sorted(pair for pair, count in pairs.items()
                     if count >= 2 and frequent.issuperset(pair) and pair[0] != pair[1])
    chosen += [Query("phrase of common words", words)
               for words in draw.sample(phrases, min(4, len(phrases)))]
    beginnings = sorted({word[:4] for word in common if len(word) > 4})
    chosen += [Query("prefix", (letters,)) for letters in draw.sample(beginnings, 4)]
    while sum(query.kind == "not found" for query in chosen) < 3:
        word = "".join(draw.choice("bcdfghjklmnpqrstvwxz") + draw.choice("aeiou") for _ in range(4))
        if not any(known.startswith(word) for known in on_pages):
            chosen.append(Query("not found", (word,)))
    return chosen
