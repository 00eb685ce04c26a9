"""Worked examples that hold the model itself to account; run with python3 model_test.py."""
import unittest

import vela_index
import vela_page
import vela_query
import vela_ranking
import vela_search
import vela_text
from vela_index import Settings


class Settled(Settings):
    def __init__(self, **values):
        super().__init__(b"x")
        for key, value in values.items():
            setattr(self, key, value)


class Texts(unittest.TestCase):
    def test_escape(self):
        self.assertEqual(vela_text.html_escape(b"a<b & 'c'"), b"a&#60;b &#38; &#39;c&#39;")
        self.assertEqual(vela_text.html_escape(b"ab<", 7), b"ab")
        self.assertEqual(vela_text.html_escape(b"ab<", 8), b"ab&#60;")

    def test_url_encode(self):
        self.assertEqual(vela_text.url_encode(b"a b/c"), b"a+b%2Fc")
        self.assertEqual(vela_text.url_encode(b"x\ty"), b"x%9")

    def test_wildcard(self):
        match = vela_text.wildcard
        self.assertFalse(match(b"Ca*", b"cat", False))
        self.assertTrue(match(b"Ca*", b"cat", True))
        self.assertTrue(match(b"c?t", b"cut", False))
        self.assertFalse(match(b"c?t", b"cart", False))
        self.assertTrue(match(b"*art*", b"artist", False))
        self.assertTrue(match(b"*a*b", b"aaab", False))
        self.assertFalse(match(b"*a*b", b"aaabc", False))

    def test_lower(self):
        self.assertEqual(vela_text.lower_utf8("ÉΣЖ".encode()), "éσж".encode())
        self.assertEqual(vela_text.lower_utf8("İx".encode()), b"i\xb0x")
        self.assertEqual(vela_text.lower_utf8("πр".encode()), "πр".encode())
        self.assertEqual(vela_text.lower_utf8(b"\xc3A"), b"\xc3A")
        self.assertEqual(vela_text.lower_utf8(b"\xe9AB\xff C"), b"\xe9AB\xff c")
        self.assertEqual(vela_text.lower(False, b"\xc9A"), b"\xc9a")

    def test_join_characters(self):
        self.assertEqual(vela_text.encode_join(b"a-b", b"-"), b"a&#45;b")
        self.assertEqual(vela_text.decode_join(b"a&#45;b", b"-"), b"a-b")
        self.assertEqual(vela_text.encode_join(b"\xe9", b"\xe9"), b"&#-23;")
        self.assertEqual(vela_text.decode_join(b"a&#;b", b"-"), b"a")
        self.assertEqual(vela_text.decode_join(b"a&#x2d;b", b"-"), b"a-b")
        self.assertEqual(vela_text.decode_join(b"a&#x2g;b", b"-"), b"a")
        self.assertEqual(vela_text.encode_join(b"&#45;", b"&#"), b"&#45;")


class Forms(unittest.TestCase):
    def pairs(self, raw):
        form = vela_query.Form(raw)
        return [(form.text(n), form.text(v)) for n, v in form.pairs]

    def test_split(self):
        self.assertEqual(self.pairs(b"q=a%3Db"), [(b"q", b"a"), (b"a", b"b")])
        self.assertEqual(self.pairs(b"x&y=1"), [(b"x&y", b"1")])
        self.assertEqual(self.pairs(b"nothing"), [])
        self.assertEqual(self.pairs(b"a=1&a=2"), [(b"a", b"1"), (b"a", b"2")])
        self.assertEqual(self.pairs(b"a=%4"), [(b"a", b"@")])
        self.assertEqual(self.pairs(b"a=x%&b=1"), [(b"a", b"x"), (b"b", b"1")])
        self.assertEqual(self.pairs(b"a=%G1"), [(b"a", b"\x01")])

    def test_numbers(self):
        form = vela_query.Form(b"a=++-7&b=-&c=7+days&d=abc&e=%2B5&f=99999999999")
        found = [form.integer(n, None) for n in (b"a", b"b", b"c", b"d", b"e", b"f", b"g")]
        self.assertEqual(found, [-7, None, 7, None, 5, 2147483647, None])

    def test_list(self):
        form = vela_query.Form(b"c[]=2&c[]=9&c[]=3")
        self.assertEqual(form.integers(b"c[]", 5, 5), [2, 3])
        self.assertIsNone(vela_query.Form(b"c[]=9&c[]=3").integers(b"c[]", 5, 5))


class Queries(unittest.TestCase):
    def terms(self, query, **values):
        s = Settled(**values)
        return vela_query.split_terms(vela_query.normalise(s, query))[0]

    def test_terms(self):
        self.assertEqual(self.terms(b"g++ -cats e-mail"), [b"g++", b"e", b"mail", b"-cats"])
        self.assertEqual(self.terms(b"site:example time:now"), [b"site:example", b"time", b"now"])
        self.assertEqual(self.terms(b'"new york" x', AllowExactPhrase=1), [b"new york", b"x"])
        self.assertEqual(self.terms(b"   "), [])
        self.assertEqual(self.terms(b"word,", WordJoinChars=b","), [b"word"])
        self.assertEqual(self.terms(b'-"a b" c', AllowExactPhrase=1), [b"c", b"-a b"])
        self.assertEqual(self.terms(b"a--b"), [b"a", b"-b"])
        self.assertEqual(self.terms(b"c# d#e"), [b"c#", b"d", b"e"])
        self.assertEqual(self.terms(b'x""', AllowExactPhrase=1), [b""])


class Sounds(unittest.TestCase):
    def test_keys(self):
        keys = {b"gnome": b"NM", b"Wright": b"RT", b"school": b"SKL", b"nation": b"NXN",
                b"thing": b"0NK", b"xylo": b"SL", b"bomb": b"BM", b"edge": b"EJ",
                b"laugh": b"LK", b"fuzzy": b"FS", b"science": b"SNS", b"what": b"WT",
                b"12": b"", b"accept": b"AKSPT", b"aerial": b"ERL", b"sign": b"SN"}
        for word, key in keys.items():
            self.assertEqual(vela_search.sound_key(word), key, word)


class Tokens(unittest.TestCase):
    def all(self, text, join=b""):
        out, at = [], 0
        while True:
            kind, token, at = vela_page.next_token(text, at, join)
            if not kind:
                return out
            out.append(token)

    def test_tokens(self):
        self.assertEqual(self.all(b"The cat."), [b"The", b" ", b"cat", b"."])
        self.assertEqual(self.all(b"e-mail- x", b"-"), [b"e-mail", b"-", b" ", b"x"])
        self.assertEqual(self.all(b"a&#39;b"), [b"a", b"&#39;", b"b"])
        self.assertEqual(self.all(b"w" * 401 + b" x"), [b"w" * 400])


class Ranks:
    def __init__(self, text, hits):
        self.text, self.hits, self.mass = text, hits, 0


class Ranking(unittest.TestCase):
    def test_mass(self):
        self.assertEqual(vela_ranking.mass(1, 100), 127)
        self.assertEqual(vela_ranking.mass(100, 100), 1)
        # of 100, ten have it: ln(1 + 90.5 / 10.5) / ln(1 + 99.5 / 1.5) = 2.2644 / 4.2097, times 127
        self.assertEqual(vela_ranking.mass(10, 100), 68)
        self.assertEqual(vela_ranking.mass(5, 0), 127)

    def test_scores(self):
        query = vela_ranking.Query([Ranks(b"a", 1), Ranks(b"b", 10)], 2, 100)
        page = vela_ranking.Weighed()
        page.add(0, 0, 1, 50, False, 2)
        # 50 x 230/256 x 4 = 179.7: one of two terms
        self.assertEqual(query.score(50, page, 0), 179)
        page.add(1, 1, 3, 20, False, 2)
        # 70 x 256/256 x 281/256 x 4 = 307.3; the title has the 68 of b, a third of its 200: cover
        # 87 of 256, 68 x 4 x 87 x 343 / 131072 = 61.9
        self.assertEqual(query.score(70, page, 200), 307 + 61)
        page.title = 3
        # all of it: (127 + 68) x 4, the same again, and four times it
        self.assertEqual(query.score(70, page, 195), 307 + 6 * 780)

    def test_the_heaviest_word_of_a_pattern_counts(self):
        page = vela_ranking.Weighed()
        gains = [page.add(0, 0, 0, weight, True, 1) for weight in (30, 20, 45)]
        self.assertEqual(gains, [30, 0, 15])


class Word:
    def __init__(self, word, *variants):
        self.word, self.variants, self.offset = word, list(variants), 0


class Snippets(unittest.TestCase):
    """Five reserved entries (2 no blank before, 3 opening bracket, 4 no blanks), then words."""

    def context(self, tokens, **values):
        c = vela_page.Context()
        c.s = Settled(DictIDLen=2, NumKeywords=9, DictReservedLimit=4, DictReservedSuffixes=2,
                      DictReservedPrefixes=3, DictReservedNoSpaces=4, ContextSize=4,
                      MaxContextKeywords=3, MaxContextSeeks=100, Highlighting=1,
                      ToLowerSearchWords=1, **values)
        c.dictionary = [Word(w) for w in (b"\1", b"\2", b",", b"(", b"-", b"big", b"cat")]
        c.dictionary += [Word(b"dog", b"Dog", b"DOGS"), Word(b"red")]
        c.highlights = []
        c.seeks, c.limit_reached = 0, False
        c.pagetext = vela_index.PageText(
            b"".join(bytes(t if isinstance(t, tuple) else (t, 0)) for t in tokens), 2)
        return c

    def snippet(self, c, positions, title=b"title"):
        entry = vela_search.Entry()
        entry.terms = len(positions)
        entry.positions = tuple(positions) + (0,) * (3 - len(positions))
        vela_search.snippets(c, entry, title)
        return bytes(c.results)

    def test_spacing_and_mark(self):
        # red cat , dog ( red: the match is dog (offset 6), two tokens before it are shown.
        c = self.context([8, 6, 2, 7, 3, 8, 4, 5, 0])
        self.assertEqual(self.snippet(c, [6]), b'<div class="context">\n <b>...</b>  cat, '
                         b'<span class="highlight">dog</span> ( <b>...</b></div>\n')
        c = self.context([7, 3, 8, 4, 5, 0])
        self.assertEqual(piece(c, [(7, 1), (3, 0), (8, 0), (4, 0), (5, 0)]), b" Dog (red-big")
        self.assertEqual(piece(c, [(7, 2), (7, 3)]), b" DOGS dog")

    def test_page_before_is_left_out(self):
        c = self.context([5, 5, 0, 6, 7, 8, 5, 0])
        self.assertEqual(self.snippet(c, [6]), b'<div class="context">\n <b>...</b>  <span class='
                         b'"highlight">cat</span> dog red big <b>...</b></div>\n')

    def test_title_switches_off(self):
        c = self.context([0, 6, 7, 0])
        self.assertEqual(self.snippet(c, [2], b"cat dog "), b'<div class="context">\n</div>\n')

    def test_phrase_marks(self):
        c = self.context([])
        term = vela_search.Term(b"big cat", False)
        term.phrase = [b"big", b"cat"]
        c.highlights = [term]
        marks = [0] * 4
        vela_search.mark_terms(c, [(7, 0), (5, 0), (2, 0), (6, 0)], marks)
        self.assertEqual(marks, [0, 2, 0, 3])

    def verify(self, tokens, ids, record, lists=None):
        c = self.context(tokens)
        phrase = vela_search.Phrase()
        phrase.ids = ids
        phrase.lists = [[record]] + (lists or [[] for _ in ids[1:]])
        return vela_search.verify_phrase(c, phrase, record)

    def test_phrase(self):
        # score, flags, page, position
        record = (2, 1, 0, 0)
        self.assertEqual(self.verify([5, 2, 6, 0], [5, 6], record), (2, 1, 0, 0))
        self.assertIsNone(self.verify([6, 5, 0], [5, 6], record))
        self.assertEqual(self.verify([5, 5, 6, 0], [5, 6], record), (2, 1, 0, 2))
        # One occurrence more than the score byte says is not looked at: 3 > 2 ends.
        self.assertEqual(self.verify([5, 7, 5, 7, 5, 6, 0], [5, 6], record), (2, 1, 0, 8))
        self.assertIsNone(self.verify([5, 7, 5, 7, 5, 7, 5, 6, 0], [5, 6], record))
        # The identifier 1 ends a pass, 0 the verification.
        self.assertEqual(self.verify([5, 1, 5, 6, 0], [5, 6], record), (2, 1, 0, 4))
        self.assertIsNone(self.verify([5, 0, 5, 6, 0], [5, 6], record))
        # Neighbouring bits: 1 and 2 follow each other, 1 and 4 do not.
        near = [[(7, 1, 0, 2)]]
        self.assertEqual(self.verify([5, 6, 0], [5, 6], (2, 2, 0, 0), near), (9, 2, 0, 0))
        self.assertIsNone(self.verify([5, 6, 0], [5, 6], (2, 4, 0, 0), near))


def piece(c, slots):
    return vela_search.piece_text(c, slots, [0] * len(slots))[0]


class Scores(unittest.TestCase):
    def test_days(self):
        days = vela_search.days_from_civil
        self.assertEqual(days(1970, 1, 1), 0)
        self.assertEqual(days(2000, 3, 1), 11017)
        self.assertEqual(days(2010, 13, 1), days(2011, 1, 1))
        self.assertEqual(days(2010, 2, 31), days(2010, 3, 3))

    def test_money(self):
        self.assertEqual([vela_search.money(t) for t in (b"12.50", b"-3.5", b"1.256", b"7", b"5e3")],
                         [1250, -350, 126, 700, 500])

    def test_end_of_page_text(self):
        text = vela_index.PageText(bytes(range(1, 9)), 3)
        text.seek(0)
        self.assertEqual(text.token(), (3, 0x0201, 3))
        self.assertTrue(text.eof)
        self.assertEqual(text.token(), (3, 0x0504, 6))
        self.assertEqual(text.token(), (0, 0, 0))


if __name__ == "__main__":
    unittest.main()
