"""The second way to rank: what Ranking makes of the weights of words.

Integers throughout. Scores are in quarters of a weight, factors in 256ths.
"""
import math

TERMS = 32  # told apart
WHOLE = 127  # weight of a word that one page has
STEPS = 4
ONE = 256


def mass(with_word, pages):
    """How much a word on so many of the pages says."""
    pages = max(pages, 1)
    with_word = min(max(with_word, 1), pages)
    rarity = (math.log(1 + (pages - with_word + 0.5) / (with_word + 0.5))
              / math.log(1 + (pages - 0.5) / 1.5))
    return max(1, math.floor(WHOLE * rarity + 0.5))


class Weighed:
    """What is gathered of one page."""

    __slots__ = ("terms", "title", "near", "blocks", "heaviest")

    def __init__(self):
        self.terms = self.title = self.near = self.blocks = self.heaviest = 0

    def add(self, number, byte, flags, weight, is_pattern, term_count):
        """Notes a record of a term; what the page gains by it."""
        if number >= TERMS:
            return weight
        bit = 1 << number
        again = bool(self.terms & bit)
        self.terms |= bit
        if byte & 1:
            self.title |= bit
        if term_count > 1:
            if again:
                self.blocks |= flags
            else:
                self.near += bool(self.blocks & flags)
                self.blocks = flags
        if not is_pattern:
            return weight
        before = self.heaviest if again else 0  # of a pattern's words the heaviest counts
        self.heaviest = max(before, weight)
        return self.heaviest - before


class Query:
    def __init__(self, terms, effective, pages):
        self.masses = [0] * TERMS
        for i, term in enumerate(terms[:TERMS]):
            if not term.text.startswith(b"-") and term.hits > 0:
                self.masses[i] = term.mass or mass(min(term.hits, pages), pages)
        self.total = sum(self.masses)
        self.effective = min(max(effective, 1), TERMS)

    def score(self, words, page, title_mass):
        """Of a page on which the words weigh so much together."""
        n = self.effective
        # Four fifths without any of the terms; a tenth more where each is near the one before.
        found = 204 + 52 * min(page.terms.bit_count(), n) // n
        near = ONE
        if n > 1:
            near += 25 * min(page.near, n - 1) // (n - 1)
        score = words * found * near * STEPS // (ONE * ONE)
        if page.title and title_mass:
            matched = sum(m for i, m in enumerate(self.masses) if page.title >> i & 1)
            cover = min(ONE, matched * ONE // title_mass)
            score += matched * STEPS * cover * (ONE + cover) // (2 * ONE * ONE)
            if matched == self.total:
                if page.title.bit_count() > 1:
                    score += matched * STEPS * cover // ONE
                if matched >= title_mass:
                    score += 4 * self.total * STEPS
        return min(max(score, 1), 2**32 - 1)

    def highest(self, words):
        """No page whose words weigh so much, or less, has more."""
        most = words * STEPS * (ONE + 25) // ONE + self.total * STEPS * 6
        return min(most, 2**32 - 1)
