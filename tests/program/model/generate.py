"""Seeded random index directories and requests.

An index is coherent by default (lists, page text and page data agree); a share of the
directories is then damaged in one or two places. All randomness comes from one random.Random.
"""
import struct

from vela_index import INT_KEYS, STRING_KEYS

FEATURES = ("cats", "meta", "dates", "xml", "damage", "phrase", "context", "highlight",
            "spelling", "recommended", "autocomplete", "log", "stemming")

PLAIN = b"""cat cats dog Dog river art cart artist night nite knight gnome gnat apple Apple pear plum
house housing home run running tree green blue red Red white black stone c++ c# e-mail don't a b of
the and x1 3d 2010 mp3 search engine site page url word wordy words sword big small bigger thing
which watch match tough though laugh dodge edge scene science school church nation vision measure
xylo wheel wrong pneumo aerie phone queen fuzzy bomb jacket happy""".split()
UTF8_WORDS = ["été", "Été", "naïve", "straße", "ΣΟΦΟΣ", "σοφος", "мир", "Мир", "İzmir", "πρ", "ǅ",
              "日本", "Ⅷ", "𐐀x", "Ⱥb"]
LATIN_WORDS = [b"\xe9t\xe9", b"\xc9t\xe9", b"na\xefve", b"\xff\xfe"]
RESERVED = [b",", b".", b";", b"(", b"[", b"$", b"-", b"/", b"'"]
TYPES = (0, 1, 2, 3, 4, 7)


def chance(r, p):
    return r.random() < p


class Index:
    """Files by name, and what the requests need to know about them."""


def make_index(r, features):
    x = Index()
    x.files = {}
    x.utf8 = chance(r, 0.4)
    s = x.settings = {}

    def setting(key, *values):
        s[key] = r.choice(values)

    s["UseUTF8"] = int(x.utf8)
    s["Charset"] = b'"utf-8"' if x.utf8 else b'"iso-8859-1"'
    if "phrase" in features:
        setting("AllowExactPhrase", 0, 1, 1, 1, 2 if chance(r, 0.3) else 1)
    if "context" in features:
        setting("DisplayContext", 0, 1)
    setting("ContextSize", 0, 1, 3, 6, 10, 20, 33, 100)
    setting("MaxContextKeywords", 0 if chance(r, 0.2) else 2, 1, 2, 3, 3, 5)
    setting("MaxContextSeeks", 0 if chance(r, 0.3) else 2, 3, 20, 500, 500, 500, 500)
    setting("PhraseSigns", 0, 0, 1, 1, 2, 0 if chance(r, 0.8) else -1)
    s["MaxSearchTime"] = 0 if chance(r, 0.03) else 30
    if "highlight" in features:
        setting("Highlighting", 0, 1, 1, 1, 2 if chance(r, 0.2) else 1)
        setting("GotoHighlight", 0, 0, 1)
        setting("XMLHighlight", 0, 1)
    setting("PdfHighlight", 0, 0, 1)
    setting("MinWordLen", 0, 1, 1, 1, 1, 2, 3)
    setting("FormFormat", 0, 1, 2, 2, 2, 3, -1)
    for key in ("DisplayMetaDesc", "DisplayNumber", "DisplayTitle", "DisplayTerms",
                "DisplayScore", "DisplayURL", "DisplayFilesize", "UseVelaImage", "UseDateTime",
                "DisplayDate", "PluginOpenNewWindow", "UseLinkTarget", "DefaultToAnd",
                "ToLowerSearchWords", "NoCharset", "Timing", "VelaInfo", "UseBigPageInfoData"):
        setting(key, 0, 1)
    s["ToLowerSearchWords"] = int(chance(r, 0.7))
    setting("SearchAsSubstring", 0, 0, 0, 1)
    setting("TruncateShowURL", 0, 5, 20, -1)
    setting("DefaultSort", 0, 0, 1, 2, 3)
    setting("MaxResultsPerQuery", *[1000] * 6, 100, 20, 12, 5, 1, 0 if chance(r, 0.2) else 7)
    setting("WeightProximity", 0, 0, 1, 5, 20)
    setting("MaxMatches", 0 if chance(r, 0.3) else 5, 3, 10, *[1000] * 12)
    setting("FileTypePluginStart", 4, 0, 2)
    s["LinkTarget"] = r.choice((b'"_blank"', b'"main"', b'""'))
    s["WordJoinChars"] = r.choice((b'"-"', b'".-_\'"', b'""', b'".-_\',:&/\\@#+$"', b'"[;!]-"',
                                   b'"&#;"', b'"\xe9-"', b'"."'))
    s["Version"] = b'"1.2"'
    if chance(r, 0.7):
        s["LinkBackURL"] = r.choice((b'"search.cgi"', b'"page.php?x=1"', b'""',
                                     b'"' + b"L" * r.choice((1000, 1990, 2047)) + b'"'))
    if "xml" in features:
        setting("UseXML", 0, 0, 0, 1)
        s["XMLTitle"] = b'"The title"'
        s["XMLDesc"] = r.choice((b'"About"', b'""'))
        s["XMLURL"] = b'"http://site.example/"'
        s["XMLXSLTURL"] = r.choice((b'""', b'"style.xsl"'))
        s["XMLOpenSearchDescURL"] = r.choice((b'""', b'"http://site.example/os.xml"'))
    if "dates" in features:
        setting("DateRangeSearch", 0, 1)
        setting("DateRangeFormat", 0, 1)
    if "autocomplete" in features:
        setting("UseAutoComplete", 0, 0, 1)
    if "log" in features:
        setting("Logging", 0, 1)
        s["LogFileName"] = r.choice((b'"log.txt"', b'"./logs/words.log"', b'"none/words.log"',
                                     b'"log.txt"', b'"logs"' if chance(r, 0.2) else b'"log.txt"'))
    if chance(r, 0.3):
        s["DatePickerPath"] = b'"picker/"'
    for key in ("LinkTarget", "Charset", "Version", "WordJoinChars", "XMLTitle", "XMLDesc",
                "XMLURL", "LogFileName", "MetaMoneyCurrency"):
        if chance(r, 0.02) and (key != "LogFileName" or "log" in features):
            length = r.choice((62, 64, 254, 256, 1022, 1024, 1025, 2000, 2001, 2030))
            s[key] = b'"' + (b"k-" * 1100)[:length] + r.choice((b'"', b"", b'" tail "x"'))
    x.accents = []
    if chance(r, 0.3):
        setting("MapAccents", 1, 1, 1, 2)
        x.accents = [(b"\xc3\xa9", b"e"), (b"\xc3\xaf", b"i")] if x.utf8 else [
            (b"\xe9", b"e"), (b"\xef", b"ii"), (b"&#233;", b"e")]
        if chance(r, 0.2):
            x.accents = []
    typed_extensions(r, x)
    if "Ranking" in s:
        s["DisplayScore"] = 1

    # Words: reserved entries first, then the vocabulary in random order.
    k = r.choice((3, 6, 9))
    reserved = [b"\x01", b"\x02"] + RESERVED[:k]
    s["DictReservedLimit"] = len(reserved) - 1
    s["DictReservedSuffixes"] = min(4, len(reserved) - 1)
    s["DictReservedPrefixes"] = min(7, len(reserved) - 1)
    s["DictReservedNoSpaces"] = len(reserved) - 1
    if chance(r, 0.1):
        setting("DictReservedLimit", 0, 1, 4)
        setting("DictReservedNoSpaces", 0, 3, 40)
    words = r.sample(PLAIN, r.randint(8, len(PLAIN)))
    if x.utf8:
        words += [w.encode() for w in r.sample(UTF8_WORDS, r.randint(1, len(UTF8_WORDS)))]
    else:
        words += r.sample(LATIN_WORDS, 2)
    r.shuffle(words)
    x.words = words
    x.used = []  # words that stand on a page
    all_words = reserved + words
    s["DictIDLen"] = r.choice((2, 3, 4, 5))
    if len(all_words) > 250:
        s["DictIDLen"] = max(3, s["DictIDLen"])
    x.variants = {}
    for word in words:
        if chance(r, 0.3):
            x.variants[word] = r.sample([word.upper(), word.capitalize(), word + b"s",
                                         b"v" * r.choice((3, 120, 200, 399, 400)), word + b"&#39;"],
                                        r.randint(1, 3))

    # Meta fields and categories.
    x.cats = [b"News", b"Help & <b>FAQ</b>", b"Shop", b"Old stuff", b"Misc", b"f", b"g", b"h",
              b"Ninth", b"Tenth"][: r.choice((1, 3, 5, 10))]
    use_cats = "cats" in features and chance(r, 0.6)
    if use_cats:
        s["UseCats"] = 1
        s["NumCats"] = len(x.cats)
        s["NumCatBytes"] = (len(x.cats) + 7) // 8 + (1 if chance(r, 0.2) else 0)
        setting("SearchMultiCats", 0, 1)
        setting("DisplayCatSummary", 0, 1)
    elif chance(r, 0.2):
        s["NumCats"] = len(x.cats)
    x.meta = []
    use_meta = "meta" in features and chance(r, 0.4)
    if use_meta:
        for i in range(r.randint(0, 4)):
            kind = r.choice(TYPES)
            values = [b"Red", b"Dark <i>blue</i>", b"Green", b"x", b"y"][: r.randint(0, 5)]
            x.meta.append((b"field%d" % i if chance(r, 0.8) else b"vela_f%d" % i, kind,
                           r.randint(0, 2), values if kind in (2, 3) else []))
        s["UseMetaFields"] = 1
        s["NumMetaFields"] = len(x.meta)
        setting("DisplayMetaFields", 0, 1, 1)
        setting("MetaMoneyShowDec", 0, 1)
        if chance(r, 0.5):
            s["MetaMoneyCurrency"] = b'"EUR "'

    # Pages.
    pages = r.choice((1, 3, 8, 30, 30, 60))
    id_len = s["DictIDLen"]
    text = bytearray()
    data = bytearray()
    lists = {w: [] for w in words}
    info = bytearray()
    x.urls = []
    for page in range(pages):
        if chance(r, 0.9):
            text += bytes([r.choice((0, 0, 1))]).ljust(id_len - 1, b"\0") + b"\0"
        seen = {}
        length = r.choice((3, 20, 60, 60))
        common = r.sample(words, min(len(words), 6))
        for _ in range(length):
            if chance(r, 0.2):
                number = r.randrange(2, len(reserved))
                variant = 0
            else:
                word = r.choice(common) if chance(r, 0.7) else r.choice(words)
                number = len(reserved) + words.index(word)
                variant = r.choice((0, 0, 0, 1, 2, 3, 255))
                first, flags, count = seen.get(word, (len(text), 0, 0))
                seen[word] = (first, flags | 1 << (len(text) // id_len % 8), count + 1)
            if chance(r, 0.004):
                number = r.choice((0, 1, len(all_words), len(all_words) + 1, 200))
            if (number >> 8 * (id_len - 1)) == 0:
                text += number.to_bytes(id_len - 1, "little") + bytes([variant])
        for word, (first, flags, count) in seen.items():
            if chance(r, 0.1):
                flags = r.randrange(256)
            score = min(255, count * r.choice((1, 5, 20, 60)))
            if chance(r, 0.03):
                score = 0
            lists[word].append((score, flags, page, first))
            if chance(r, 0.05):
                lists[word].append((r.randrange(256), r.randrange(256), page, first))
        x_url = r.choice((b"http://site.example/p%d.html", b"/docs/Manual%d.PDF", b"a%d.pdf#top",
                          b"https://o.example/?id=%d&amp;x=1", b"http://s.example/p%d#frag",
                          b"http://long.example/" + b"u" * 2000 + b"%d")) % page
        if not chance(r, 0.97):
            x_url = b""
        x.urls.append(x_url)
        line = b"|".join((x_url, some_text(r, x, 5), some_text(r, x, r.choice((0, 1, 12, 40))),
                          r.choice((b"", b"", b"/img/%d.png" % page)))) + b"|\n"
        if chance(r, 0.01):
            line = line.replace(b"|\n", b"\n")
        if chance(r, 0.03):
            length = r.choice((3000, 7259, 7260)) - len(line)
            line = line.replace(b"|", b"|" + (b"long " * 2000)[: max(0, length)], 1)
        offset = len(data)
        data += line
        record = offset.to_bytes(5, "little")
        record += struct.pack("<I", r.choice((0, 1000, 5000, 123456, 3000000000)))
        record += struct.pack("<i", r.choice((0, 0, 1000, 1268000000, 1268000000 + page * 86400,
                                              r.randrange(1, 2**31), -5, 1269907199, 1269907200)))
        record += bytes((r.choice((0, 0, 10, 15, 1, 255)), r.randrange(8)))
        if use_cats:
            record += bytes(r.randrange(256) for _ in range(s["NumCatBytes"]))
        if use_meta:
            meta = b""
            for _, kind, _, values in x.meta:
                if kind in (0, 4):
                    meta += struct.pack("<i", r.choice((-2147483648, 0, 5, 1250, -350, 99, 100)))
                elif kind == 2:
                    meta += bytes([r.choice((255, 0, 1, 2, 9))])
                elif kind == 3:
                    chosen = [r.randrange(6) for _ in range(r.randrange(4))]
                    meta += bytes([len(chosen)]) + bytes(chosen)
                else:
                    meta += r.choice((b"", b"Blue", b"blue whale", b"x", b"Y" * r.choice(
                        (9, 10300)) if chance(r, 0.1) else b"z")) + b"\0"
            record += meta if chance(r, 0.9) else meta[: r.randrange(len(meta) + 1)]
        if "Ranking" in s:
            # Of a title of so many words: some that the query has, and some more.
            record += struct.pack("<H", r.choice((0, 1, 60, 127, 200, 254, 500, 65535)))
        if s["UseBigPageInfoData"]:
            info += struct.pack("<I", len(record) + 4) + record
        else:
            info += struct.pack("<H", len(record) + 2) + record
    x.used = [w for w in words if lists[w]]
    s["NumPages"] = pages
    s["PageInfoSize"] = len(info)
    if chance(r, 0.8):
        text += bytes(id_len)

    # Word map and dictionary.
    wordmap = bytearray()
    dictionary = []
    used = variant_used = 0
    ends = b"\r\n" if chance(r, 0.2) else b"\n"
    for word in all_words:
        offset = -1
        records = lists.get(word, [])
        if records or chance(r, 0.02):
            offset = len(wordmap)
            wordmap += struct.pack("<i", len(records))
            for score, flags, page, position in records:
                wordmap += bytes((score, flags)) + page.to_bytes(3, "little")
                wordmap += position.to_bytes(5, "little")
        variants = x.variants.get(word, [])
        dictionary.append(b"%s %d %d" % (word, offset, len(variants)) if variants or chance(r, 0.5)
                          else b"%s %d" % (word, offset))
        dictionary += variants
        used += len(word) + 1
        variant_used += sum(len(v) + 2 for v in variants)
    s["NumKeywords"] = len(all_words) + r.choice((0, 0, 0, 5))
    s["OutputBasewordBufferSize"] = used + r.choice((0, 100))
    s["OutputVariantBufferSize"] = variant_used + r.choice((0, 100))
    s["NumVariants"] = variant_used // 10 + 1
    if not variant_used and chance(r, 0.5):
        s["OutputVariantBufferSize"] = 0
    x.files["vela_dictionary.vdat"] = ends.join(dictionary) + ends
    x.files["vela_wordmap.vdat"] = bytes(wordmap)
    x.files["vela_pageinfo.vdat"] = bytes(info)
    x.files["vela_pagedata.vdat"] = bytes(data)
    x.files["vela_pagetext.vdat"] = bytes(text)

    if chance(r, 0.3):
        synonyms(r, x, lists)
    if "spelling" in features and chance(r, 0.5):
        from vela_search import sound_key
        s["Spelling"] = 1
        setting("SpellingWhenLessThan", 0, 1, 2, 5, 1000)
        by_key = {}
        for i, word in enumerate(words):
            by_key.setdefault(sound_key(word), []).append(len(reserved) + i)
        lines = []
        for key in sorted(k for k in by_key if k):
            numbers = by_key[key]
            for at in range(0, len(numbers), 3):
                lines.append(b" ".join([key] + [b"%d" % n for n in numbers[at : at + 3]]))
        s["NumSpellings"] = len(lines) + r.choice((0, 0, 3))
        x.files["vela_spelling.vdat"] = b"".join(line + ends for line in lines)
    if "recommended" in features and chance(r, 0.5):
        s["Recommended"] = 1
        setting("RecommendedMax", 0, 1, 2, 5)
        lines = []
        starts = [0]
        for line in bytes(data).split(b"\n")[:-1]:
            starts.append(starts[-1] + len(line) + 1)
        for _ in range(r.randint(0, 8)):
            keyword = r.choice((r.choice(words), r.choice(words) + b"," + r.choice(words),
                                r.choice(words)[:2] + b"*", r.choice(words) + b" " +
                                r.choice(words), b" , ", b"?" + r.choice(words)[1:]))
            where = r.choice(starts[:-1]) if chance(r, 0.97) else r.choice((-1, len(data), 3))
            lines.append(b"%s %s%d" % (keyword, b"+" if chance(r, 0.03) and where > 0 else b"",
                                       where))
        if chance(r, 0.2):
            lines.append(b"noblank")
        s["NumRecommended"] = len(lines) + r.choice((0, 0, -1, 2))
        s["NumRecommended"] = max(0, s["NumRecommended"])
        x.files["vela_recommended.vdat"] = b"".join(line + ends for line in lines)
    s["MaxKeyWordLineLen"] = r.choice((32, 64, 500, 500, 8, 2, 0) if chance(r, 0.3) else (600,))
    if "autocomplete" in features:
        lines = [some_text(r, x, 3) for _ in range(r.randint(0, 12))] + [b""]
        body = ends.join(lines)
        x.files["vela_autocomplete.vdat"] = body if chance(r, 0.3) else body + ends
        for name in ("vela_autocomplete.js", "vela_autocomplete.css"):
            if chance(r, 0.9):
                x.files[name] = b"/* " + name.encode() + b" */\n" + b"z" * r.choice((0, 1500))
    for name in ("vela_datepicker.js", "vela_datepicker.css"):
        if chance(r, 0.9):
            x.files[name] = b"/* " + name.encode() + b" */\n"
    x.files["search_template.html"] = make_template(r)
    x.files["settings.vdat"] = make_settings(r, x)
    x.damage = []
    if "damage" in features and chance(r, 0.2):
        for _ in range(r.choice((1, 1, 2))):
            damage(r, x, features)
    return x


def typed_extensions(r, x):
    """The extensions that change what is made of a query, and small faults."""
    for key in ("CutSigns", "PlainQueries", "AmendedAnswers", "Ranking", "OfferWords"):
        if chance(r, 0.3):
            x.settings[key] = r.choice((1, 1, 1, 2))
    if chance(r, 0.2):
        x.settings["StopWords"] = r.choice((b'"a of the and"', b'"the"', b'"of  a cat "', b'"-a the"'))


def synonyms(r, x, lists):
    """Words for words, at whole and at lesser weights, and words apart with pages of their own."""
    x.synonym_keys = sorted({b" ".join(r.sample(x.words, r.choice((1, 1, 1, 2, 3))))
                             for _ in range(r.randint(1, 8))})
    keys, alternatives, records, texts = b"", b"", b"", b"".join(x.synonym_keys)
    count = at = 0
    for key in x.synonym_keys:
        keys += struct.pack("<II", at, count)
        at += len(key)
        for _ in range(r.randint(1, 3)):
            text = r.choice(x.words)
            of = len(records) // 10
            if chance(r, 0.3):
                text += b" " + r.choice(x.words)
                for score, flags, page, position in lists[text.split(b" ")[0]]:
                    records += bytes((score, flags)) + page.to_bytes(3, "little")
                    records += position.to_bytes(5, "little")
            alternatives += struct.pack("<III", len(texts), of, r.choice((100, 60, 60, 1)))
            texts += text
            count += 1
    keys += struct.pack("<II", at, count)
    alternatives += struct.pack("<III", len(texts), len(records) // 10, 0)
    x.settings["Synonyms"] = len(x.synonym_keys)
    x.settings["DisplayScore"] = 1
    x.files["vela_synonyms.vdat"] = (b"synonym\0" + struct.pack(
        "<4I", len(x.synonym_keys), count, len(records) // 10, len(texts))
        + keys + alternatives + records + texts)


def some_text(r, x, count):
    parts = []
    for _ in range(r.randint(0, count)):
        word = r.choice(x.words)
        if chance(r, 0.2):
            word = r.choice((word.upper(), word.capitalize(), word + b",", b"(" + word + b")",
                             word + b".", b"&#39;" + word, word.replace(b"-", b"&#45;"),
                             b"a-b", b"&#;", b"don&#39;t", b"- x", b"&#x2d;", b"&amp;",
                             b"w" * 401 if chance(r, 0.1) else b"ww"))
        parts.append(word)
    return b" ".join(parts)


def make_template(r):
    markers = [b"<!--VELASEARCH-->", b"<!--VELA_SHOW_SEARCHFORM-->", b"<!--VELA_SHOW_RESULTS-->",
               b"<!--VELA_SHOW_QUERY-->"]
    from vela_page import MARKERS
    lines = [b"<html><head><title>T</title>", b"</head>" if chance(r, 0.8) else b"", b"<body>"]
    if chance(r, 0.4):
        lines.append(b"<!--VELASEARCH-->")
    else:
        lines += [b"<p>%d %s</p>" % (i, m) for i, m in enumerate(MARKERS)]
        lines.append(b"[<!--VELA_SHOW_RESULTS-->]")
    for _ in range(r.randrange(4)):
        lines.insert(r.randint(0, len(lines)), b"".join(
            r.choice((b"text ", b"<!-- no -->", r.choice(markers + MARKERS), b"<!--VELA_UNKNOWN-->",
                      b"<!--vela_show_query-->", b"p" * r.choice((5, 1000, 1020)), b"</head>"))
            for _ in range(r.randint(1, 5))))
    text = b"\n".join(lines)
    return text if chance(r, 0.3) else text + b"\n"


def make_settings(r, x):
    lines = []
    tail = []
    for key, value in x.settings.items():
        name = key.encode()
        form = b"%s = %s" if chance(r, 0.9) else r.choice((b"%s  =   %s", b"%s =%s", b"%s\t=\t%s"))
        lines.append(form % (name, b"%d" % value if isinstance(value, int) else value))
    for key in STRING_KEYS:
        name = key.encode()
        value = b"[%s]" % name[4:].lower()
        if key in ("STR_SEARCH_TOOK", "STR_SECONDS"):
            value = name[4:].lower()
        elif chance(r, 0.05):
            value = r.choice((b"<b>x</b>", b"", b"%s %d", b"S" * 300))
        lines.append(b'%s = "%s"' % (name, value))
    if chance(r, 0.2):
        lines.append(r.choice((b"Unknown = 3", b"", b"STR_OTHER = \"x\"", b" MinWordLen = 9",
                               b"MinWordLen = x", b"HighlightLimit = 99999999999",
                               b"Codepage = -5 trailing", b'  STR_OR = "other"')))
    r.shuffle(lines)
    if x.settings.get("NumCats"):
        tail.append([b"catnames"] + [b" " + c if chance(r, 0.1) else c for c in x.cats])
    if x.meta:
        block = [b"metafields"]
        for name, kind, method, values in x.meta:
            block += [b"%d" % kind, name, b"Label of " + name, b"extra", b"%d" % method,
                      b"%d" % len(values)] + values
        tail.append(block)
    if x.settings.get("MapAccents") and chance(r, 0.9):
        lines = [line for line in lines if not line.startswith(b"MapAccents")]
        tail.append([b"MapAccents = %d" % x.settings["MapAccents"],
                     b"AccentChars = " + b", ".join(b'"%s"' % a for a, _ in x.accents),
                     b"NormalChars = " + b", ".join(b'"%s"' % p for _, p in x.accents)])
    r.shuffle(tail)
    for block in tail:
        lines += block
    if chance(r, 0.1):
        lines.insert(r.randrange(len(lines)), r.choice((
            b"STR_OR = unquoted", b"z" * 2047, b"z" * 2046 + b" MinWordLen = 2",
            b"\0hidden", b"UseCats = 1\0", b'STR_OR = "cut\0here"', b'STR_OR "x"',
            b'Version = ""', b"UseXML=1", b"NumCats = 3", b"catnames", b"MapAccents = 0")))
    ends = b"\r\n" if chance(r, 0.2) else b"\n"
    return ends.join(lines) + (ends if chance(r, 0.9) else b"")


def damage(r, x, features):
    """Breaks the index in one place; x.damage tells how."""
    names = sorted(name for name in x.files if name != "vela_synonyms.vdat")
    kind = r.randrange(8)
    name = r.choice(names)
    body = x.files[name]
    if kind == 0:
        del x.files[name]
    elif kind == 1:
        if chance(r, 0.5):
            name = r.choice(("vela_wordmap.vdat", "vela_pagetext.vdat", "vela_pagedata.vdat"))
            body = x.files.get(name) or b""
        x.files[name] = body[: r.randrange(len(body) + 1)]
    elif kind == 2 and name.endswith((".html", ".js", ".css")):
        x.files[name] = None  # a directory in its place
    elif kind in (3, 4):
        name = r.choice(("vela_wordmap.vdat", "vela_pageinfo.vdat", "vela_pagetext.vdat"))
        body = bytearray(x.files.get(name) or b"")
        for _ in range(r.randint(1, 4)):
            if body:
                body[r.randrange(len(body))] = r.choice((0, 1, 255, 128, r.randrange(256)))
        x.files[name] = bytes(body)
    elif kind == 5:
        x.files[name] = (body or b"") + bytes([r.choice((0x41, 0x0A, 0x20, 1))]) * r.randint(1, 3)
    elif kind == 6 and x.files.get("settings.vdat"):
        key = r.choice(("NumCatBytes", "NumCatBytes", "NumKeywords", "NumPages", "PageInfoSize",
                        "OutputBasewordBufferSize",
                        "OutputVariantBufferSize", "NumVariants", "NumCats", "NumCatBytes",
                        "NumMetaFields", "DictIDLen", "NumSpellings", "NumRecommended",
                        "StemmingAlgo", "UseBigPageInfoData", "DictReservedLimit", "NumKeywords"))
        value = r.choice((-1, 0, 1, 2, 5, 6, 7, 100, 99999, 107374181, 107374182, 134217726,
                          134217727, 214748364, 214748365, 2147483647, -2147483648, 99999999999))
        if key == "NumCats":
            value = r.choice((10, 100, 99999))
        name = "settings.vdat"
        x.files[name] += b"%s = %d\n" % (key.encode(), value)
        if key == "StemmingAlgo" and "stemming" in features:
            x.files[name] += b"UseStemming = 1\nStemmingAlgo = %d\n" % r.choice((-1, 16))
    elif kind == 7:
        name = "vela_dictionary.vdat"
        lines = (x.files.get(name) or b"\n").split(b"\n")
        lines.insert(r.randrange(len(lines)), r.choice((
            b"lonely", b"", b" ", b"word", b"word -1", b"word 99999999999 3", b"word -2",
            b"word 0 -1", b"  word  5  2", b"w" * 500 + b" 0", b"word 0 2")))
        x.files[name] = b"\n".join(lines)
    x.damage.append((kind, name))


# ---- requests -----------------------------------------------------------------------------------


def make_query(r, x, features):
    parts = []
    count = r.choice((0, 1, 1, 1, 2, 2, 3, 4))
    if chance(r, 0.01):
        count = r.choice((60, 600))
    if chance(r, 0.01):
        return r.choice((b"<", b"'", b"&x", b"ab<", b"*")) * r.choice((400, 425, 430, 700, 2085,
                                                                     2086))
    if getattr(x, "synonym_keys", None) and chance(r, 0.4):
        parts.append(r.choice(x.synonym_keys))
    for _ in range(count):
        word = r.choice(x.used if chance(r, 0.8) and x.used else x.words)
        dice = r.random()
        if dice < 0.35:
            pass
        elif dice < 0.42:
            word = word.upper()
        elif dice < 0.50:
            at = r.randint(0, len(word))
            word = r.choice((word[:at] + b"*", b"*" + word[at:], word[:at] + b"?" + word[at + 1 :],
                             b"*", b"?*", word[:1] + b"*" + word[-1:]))
        elif dice < 0.60:
            word = b"-" + word
        elif dice < 0.64:
            word = r.choice((b"site:", b"url:", b"-site:", b"x:", b"[#@!]")) + r.choice(
                (b"example", b"pdf", b"Manual", word, b"http://site", b""))
        elif dice < 0.80 and "phrase" in features:
            word = r.choice((b'"%s"', b'-"%s"', b'"%s', b'x"%s"', b'"%s"y', b'" %s "')) % b" ".join(
                r.choice(x.words) for _ in range(r.randint(0, 3)))
            if chance(r, 0.5):
                pair = phrase_from(r, x)
                if pair:
                    word = b'"%s"' % pair
            if chance(r, 0.1):
                at = r.randrange(len(word))
                word = word[:at] + r.choice((b"*", b"?")) + word[at + 1 :]
        elif dice < 0.88:
            word = r.choice((b"c++", b"c#", b"e-mail", b"a-b-c", b"--x", b"+", b"a+b", b"&", b"<b>",
                             b"' onx", b"%", b"a.b", b".", b"$5", b"a_b", b"a, b", b"()", b"[;!]",
                             b"##", b"x++y", b"\t", b"&#39;", b'""', b"don't", b"a:b", b"\x01",
                             b"caf\xe9", b"\xc3", b"\xe2\x82", "İ".encode(), "É".encode(),
                             b"12345678901234567890"))
        elif dice < 0.90:
            word = r.choice(("“%s”", "“%s %s\"", "«%s %s»", "« %s »", "‘%s %s’", "‘%s’", "-“%s %s”",
                             "„%s %s“", "「%s %s」", "%s…", "%s–%s", "%s;", "<%s>", "%s~2", "%s\u3000%s",
                             "%s🚀", "🚀", "👨\u200d👩", "%s\u00ad%s", "%s\u2011%s", "--%s", "\"--%s %s\"",
                             "ﺏ%s", "ﻼ", "ﭘ %s", "%s?", "%s??", "(%s-)", "[-%s]", "n=-%s", "-%s?", "%s.?", "...%s...", "-",
                             "--", "?", "* %s", "%s’s", "24” %s")).encode().replace(b"%s", word)
        elif dice < 0.92:
            word = word[:-1] + bytes([r.randrange(97, 123)])
        elif dice < 0.94:
            word = word * r.choice((3, 100))
        parts.append(word)
    query = b" ".join(parts)
    if chance(r, 0.1):
        query = r.choice((b" ", b"  ", b"")) + query + r.choice((b" ", b",", b"/", b"."))
    return query


def phrase_from(r, x):
    """Two or three words that follow each other in the page text."""
    text = x.files.get("vela_pagetext.vdat")
    size = x.settings["DictIDLen"]
    if not text or len(text) < 8 * size:
        return None
    at = r.randrange(len(text) // size - 4)
    first = len((x.files.get("vela_dictionary.vdat") or b"").split(b"\n")) and 0
    reserved = x.settings["DictReservedLimit"]
    out = []
    for i in range(at, at + r.randint(2, 4)):
        number = int.from_bytes(text[i * size : (i + 1) * size - 1], "little")
        if number > reserved and number - reserved - 1 < len(x.words):
            out.append(x.words[number - reserved - 1 + first])
    return b" ".join(out) or None


SAFE = frozenset(b"abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-_.*~\"")


def encode(r, text):
    out = bytearray()
    for byte in text:
        if byte == 0x20 and chance(r, 0.8):
            out += b"+"
        elif byte in SAFE and chance(r, 0.98):
            out.append(byte)
        else:
            out += (b"%%%02X" if chance(r, 0.9) else b"%%%02x") % byte
    return bytes(out)


def make_request(r, x, features):
    """(environment, arguments after the program, standard input)."""
    params = []

    def add(name, value, p):
        if chance(r, p):
            params.append((name, value))

    if chance(r, 0.97):
        params.append((b"vela_query" if chance(r, 0.98) else b"vela%5Fquery",
                       make_query(r, x, features)))
    add(b"vela_per_page", b"%d" % r.choice((1, 2, 3, 5, 10, 20, 100, 0, -3)), 0.4)
    add(b"vela_page", r.choice((b"1", b"2", b"2", b"3", b"0", b"-1", b"9", b"x", b"99999999999")),
        0.25)
    add(b"vela_and", r.choice((b"0", b"1", b"1", b"2")), 0.5)
    add(b"vela_sort", r.choice((b"0", b"1", b"2", b"3", b"-1", b"x")), 0.4)
    if "xml" in features:
        add(b"vela_xml", r.choice((b"0", b"1", b"1", b"2", b"")), 0.35)
        add(b"masternode", r.choice((b"1", b"1", b"2")), 0.2)
    if "autocomplete" in features:
        add(b"vela_ac", r.choice((b"1", b"1", b"0", b"-1")), 0.06)
    if "dates" in features and chance(r, 0.2):
        dates = (b"1/3/2010", b"31/03/2010", b"3/31/2010", b"1/1/1971", b"30/12/2037", b"0/5/2010",
                 b"x", b"1/2", b"29/03/2010", b"3/29/2010", b"1/1/2010<", b"5/6/7", b"1/13/2010",
                 b"1/1/1970'a", b"1/1/1960&x", b"31/12/1969", b"1/1/1960")
        add(b"vela_datefrom", r.choice(dates), 0.9)
        add(b"vela_dateto", r.choice(dates), 0.9)
        add(b"vela_ltimefrom", r.choice((b"0", b"1000", b"1268000000")), 0.2)
        add(b"vela_ltimeto", r.choice((b"0", b"2000000000")), 0.2)
    if "cats" in features and chance(r, 0.4):
        name = r.choice((b"vela_cat[]", b"vela_cat%5B%5D", b"vela_cat"))
        for _ in range(r.choice((1, 1, 2, 3))):
            params.append((name, r.choice((b"-1", b"0", b"1", b"2", b"4", b"%d" % len(x.cats),
                                           b"", b"z") if chance(r, 0.3) else (b"0", b"1", b"2"))))
    for name, kind, _, _ in x.meta:
        if chance(r, 0.2):
            if kind == 3:
                spelled = name + r.choice((b"[]", b"%5B%5D", b""))
                for _ in range(r.randint(1, 3)):
                    params.append((spelled, r.choice((b"0", b"1", b"2", b"-1", b"255", b"7"))))
            elif kind == 2:
                params.append((name, r.choice((b"0", b"1", b"2", b"-1", b"", b"9", b"x"))))
            elif kind in (0, 4):
                params.append((name, r.choice((b"5", b" 5 ", b"100", b"12.50", b"-3.5", b"x", b"",
                                               b"1.256", b"0", b"5abc", b"0.99"))))
            else:
                params.append((name, r.choice((b"blue", b"BLUE", b"x", b"", b"  ", b"<\">", b"e w",
                                               b"b" * 40, b"<" * r.choice(
                                                   (2000, 2040, 10300, 13118, 65535, 65536))
                                               if chance(r, 0.1) else b"lu"))))
    add(b"junk", b"1&2", 0.05)
    if chance(r, 0.3):
        r.shuffle(params)
    body = b"&".join(n + b"=" + encode(r, v) for n, v in params)
    if chance(r, 0.04):
        body += r.choice((b"%", b"%4", b"&", b"&&x", b"%3Dz", b"%26a%3Db", b"=", b"%G1%-1", b"%00x",
                          b"&vela_page=2&vela_page=3"))
    env = {b"SCRIPT_NAME": r.choice((b"/cgi-bin/search.cgi", b"/s.cgi", b"/a'b\"<c>&\\d\x01.cgi",
                                     b"/" + b"s" * r.choice((2046, 2047)), b"")),
           b"TZ": r.choice((b"UTC", b"UTC", b"XST-3", b"YST5"))}
    if chance(r, 0.8):
        env[b"REMOTE_ADDR"] = r.choice((b"10.0.0.1", b"::1", b"9" * 40))
    stdin = b""
    arguments = []
    if chance(r, 0.05):
        arguments = r.choice(([b"/i"], [b"/I", b"d" * 260], [b"-x", b"/i"], [b"I", b"/none"],
                              [b"/index", b"/none/such place"], [b"/I", b"/i", b"/none"]))
    dice = r.random()
    if dice < 0.75 and len(body) < 60000:
        env[b"REQUEST_METHOD"] = b"GET"
        env[b"QUERY_STRING"] = body.replace(b"\0", b"")
        if chance(r, 0.01):
            env[b"QUERY_STRING"] = r.choice((b"/I+/usr", b"%2fI+/none", b"a"))
            arguments = r.choice(([b"/I", b"/usr"], [b"/I", b"/none"], [b"a"]))
    elif dice < 0.97:
        env[b"REQUEST_METHOD"] = b"POST"
        env[b"CONTENT_TYPE"] = b"application/x-www-form-urlencoded"
        env[b"CONTENT_LENGTH"] = b"%d" % len(body)
        stdin = body
        if chance(r, 0.1):
            env[b"CONTENT_LENGTH"] = r.choice((b"0", b"x", b"-1", b"%d" % (len(body) + 1), b"5",
                                               b" 5"))
        if chance(r, 0.03):
            env[b"CONTENT_TYPE"] += b"; charset=UTF-8"
    else:
        env[b"REQUEST_METHOD"] = r.choice((b"HEAD", b"get", b"", b"PUT"))
        if chance(r, 0.5):
            del env[b"REQUEST_METHOD"]
    return env, arguments, stdin


assert all(key in INT_KEYS for key in ("NumKeywords", "NumPages"))
