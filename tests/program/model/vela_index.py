"""What is stored: the settings file and the index files, as plain tables."""
import os

from vela_text import (SPACES, INT_MAX, atoi, atoll, cstr, hand_decimal, pieces, read_number,
                       trim_whitespace, wrap32, wrap64)

INT_KEYS = {
    "UseUTF8": 0, "Codepage": 0, "UseStemming": 0, "StemmingAlgo": 2, "NoCharset": 0,
    "MinWordLen": 0, "Highlighting": 0, "HighlightLimit": 30, "GotoHighlight": 0,
    "PdfHighlight": 0, "FormFormat": 0, "DisplayMetaDesc": 0, "DisplayMetaFields": 0,
    "DotNetUseFormTags": 1, "DotNetUsePostBacks": 0, "UseDateTime": 0, "DisplayDate": 0,
    "DefaultSort": 0, "DateRangeSearch": 0, "DateRangeFormat": 0, "UseAutoComplete": 0,
    "DisplayContext": 0, "DisplayNumber": 0, "DisplayTitle": 0, "DisplayTerms": 0,
    "DisplayScore": 0, "DisplayURL": 0, "TruncateShowURL": 0, "DisplayFilesize": 0,
    "UseVelaImage": 0, "DisplayCatSummary": 0, "Logging": 0, "MaxKeyWordLineLen": 32,
    "OutputVariantBufferSize": 0, "OutputBasewordBufferSize": 0, "DictIDLen": 0,
    "DictReservedLimit": 0, "DictReservedPrefixes": 0, "DictReservedSuffixes": 0,
    "DictReservedNoSpaces": 0, "UseBigPageInfoData": 0, "PluginOpenNewWindow": 0,
    "FileTypePluginStart": 4, "WordSplit": 0, "VelaInfo": 1, "Timing": 0,
    "SearchAsSubstring": 0, "ToLowerSearchWords": 0, "ContextSize": 0, "MaxContextKeywords": 0,
    "MaxResultsPerQuery": 1000, "WeightProximity": 0, "AllowExactPhrase": 0,
    "MaxContextSeeks": 0, "PhraseSigns": 0, "MaxMatches": 0, "MaxSearchTime": 30, "UseLinkTarget": 0,
    "Spelling": 0, "SpellingWhenLessThan": 0, "NumSpellings": 0, "Recommended": 0,
    "NumRecommended": 0, "RecommendedMax": 0, "UseCats": 0, "SearchMultiCats": 0,
    "NumKeywords": 0, "NumPages": 0, "NumVariants": 0, "PageInfoSize": 0, "DefaultToAnd": 0,
    "UseXML": 0, "XMLHighlight": 0, "NumCats": 0, "NumCatBytes": 0, "UseMetaFields": 0,
    "NumMetaFields": 0, "MetaMoneyShowDec": 0, "MapAccents": 0,
    "CutSigns": 0, "PlainQueries": 0, "AmendedAnswers": 0, "Ranking": 0,
    "Synonyms": 0, "OfferWords": 0,
}
TEXT_KEYS = {  # longest text kept
    "Charset": 1023, "DatePickerPath": 2083, "Version": 1023, "LogFileName": 255,
    "LinkTarget": 2047, "WordJoinChars": 1023, "LinkBackURL": 2047, "XMLTitle": 1024,
    "XMLDesc": 2000, "XMLURL": 2083, "XMLXSLTURL": 2083, "XMLOpenSearchDescURL": 2083,
    "MetaMoneyCurrency": 63, "StopWords": 2000,
}
EMPTIED_FIRST = ("XMLTitle", "XMLDesc", "XMLURL", "XMLXSLTURL", "XMLOpenSearchDescURL")

STRING_KEYS = """
STR_FORM_SEARCHFOR STR_FORM_SUBMIT_BUTTON STR_FORM_RESULTS_PER_PAGE STR_FORM_CATEGORY
STR_FORM_CATEGORY_ALL STR_FORM_MATCH STR_FORM_ANY_SEARCH_WORDS STR_FORM_ALL_SEARCH_WORDS
STR_NO_QUERY STR_RESULTS_FOR STR_RESULTS_IN_ALL_CATEGORIES STR_RESULTS_IN_CATEGORY STR_POWEREDBY
STR_NO_RESULTS STR_RESULT STR_RESULTS STR_PHRASE_CONTAINS_COMMON_WORDS
STR_SKIPPED_FOLLOWING_WORDS STR_SKIPPED_PHRASE STR_SUMMARY_NO_RESULTS_FOUND
STR_SUMMARY_FOUND_CONTAINING_ALL_TERMS STR_SUMMARY_FOUND_CONTAINING_SOME_TERMS STR_SUMMARY_FOUND
STR_PAGES_OF_RESULTS STR_POSSIBLY_GET_MORE_RESULTS STR_ANY_OF_TERMS STR_ALL_CATS
STR_SORTBY_RELEVANCE STR_SORTEDBY_DATE STR_SORTEDBY_RELEVANCE STR_SORTBY_DATE
STR_RESULT_TERMS_MATCHED STR_RESULT_SCORE STR_RESULT_URL STR_RESULT_PAGES
STR_RESULT_PAGES_PREVIOUS STR_RESULT_PAGES_NEXT STR_SEARCH_TOOK STR_SECONDS STR_DIDYOUMEAN STR_OR
STR_RECOMMENDED STR_MAX_RESULTS STR_MORETHAN STR_CAT_SUMMARY STR_SORTEDBY_DATE_ASC
STR_FORM_DATE_FROM STR_FORM_DATE_TO STR_FORM_DATE_BUTTON""".split()
assert len(STRING_KEYS) == 49


class MetaField:
    pass


class Settings:
    def __init__(self, link_back):
        for key, value in INT_KEYS.items():
            setattr(self, key, value)
        for key in TEXT_KEYS:
            setattr(self, key, b"")
        self.LogFileName = b".//logs//searchwords.log"
        self.MetaMoneyCurrency = b"&#36;"
        self.LinkBackURL = link_back
        self.separator = b"?"
        self.cats = []
        self.meta = []
        self.accents = None  # list of (accented, plain), None until a table was read
        self.strings = dict.fromkeys(STRING_KEYS, b"")
        self.string_count = 0

    @property
    def cat_count(self):
        return min(self.NumCats, len(self.cats))

    def text(self, key):
        return self.strings["STR_" + key]


def read_file(path):
    """The whole file, or None when it cannot be opened; a directory cannot."""
    try:
        with open(path, "rb") as stream:
            return stream.read()
    except OSError:
        return None


def skip_ws(line, at):
    while at < len(line) and line[at] in SPACES:
        at += 1
    return at


def after_equals(line, key):
    """Where the value begins after `key` and "=", or None."""
    if not line.startswith(key):
        return None
    at = skip_ws(line, len(key))
    if line[at : at + 1] != b"=":
        return None
    return skip_ws(line, at + 1)


def quoted_value(line, at):
    """The text between double quotes at `at`; None when it is missing or empty."""
    if at is None or line[at : at + 1] != b'"':
        return None
    end = line.find(b'"', at + 1)
    value = line[at + 1 :] if end < 0 else line[at + 1 : end]
    return value or None


def quoted_items(text):
    parts = text.split(b'"')
    return [parts[i] for i in range(1, len(parts) - 1, 2)]


def rest_of_line(line, key):
    at = after_equals(line, key)
    return b"" if at is None else line[at:].split(b"\n")[0]


def load_settings(path, settings):
    """0, or the code of the failure: 1 invalid, 'missing' texts, 5 identifier size, 6 no file."""
    s = settings
    data = read_file(path)
    if data is None:
        return 6
    lines = pieces(data, 2048)

    def next_line():
        piece = next(lines, None)
        return None if piece is None else cstr(piece)

    while True:
        line = next_line()
        if line is None:
            break
        words = line.split()
        if not words:
            continue
        key_bytes = words[0]
        try:
            key = key_bytes.decode("ascii")
        except UnicodeDecodeError:
            continue
        if key in INT_KEYS:
            at = after_equals(line, key_bytes)
            if at is not None:
                value, _ = read_number(line, at)
                if value is not None:
                    setattr(s, key, value)
            if key == "DictIDLen" and s.DictIDLen >= 6:
                return 5
            if key == "MapAccents" and s.MapAccents == 1:
                accent_line = next_line()
                if accent_line is None:
                    break
                items = quoted_items(rest_of_line(accent_line, b"AccentChars"))
                plain = []
                normal_line = next_line()
                if normal_line is not None:
                    plain = quoted_items(rest_of_line(normal_line, b"NormalChars"))
                plain += [b""] * len(items)
                s.accents = [(a[:9], p[:4]) for a, p in zip(items, plain)]
        elif key in TEXT_KEYS:
            if key in EMPTIED_FIRST:
                setattr(s, key, b"")
            if key in ("DatePickerPath", "LinkBackURL"):
                s.LinkBackURL = b""
            value = quoted_value(line, after_equals(line, key_bytes))
            if value is not None:
                setattr(s, key, value[: TEXT_KEYS[key]])
            if key == "LinkBackURL" and b"?" in s.LinkBackURL:
                s.separator = b"&amp;"
        elif key.startswith("STR_"):
            if key in s.strings:
                at = skip_ws(line, 0) + len(key_bytes)
                at = skip_ws(line, at)
                value = None
                if line[at : at + 1] == b"=":
                    value = quoted_value(line, skip_ws(line, at + 1))
                s.strings[key] = value or b""
                s.string_count += 1
        elif key == "catnames":
            if s.NumCats >= 1:
                s.cats = []
                for _ in range(s.NumCats):
                    piece = next(lines, None)
                    if piece is None or piece[0] == 0:
                        break
                    s.cats.append(trim_whitespace(cstr(piece)))
        elif key == "metafields":
            if s.NumMetaFields >= 1:
                s.meta = []
                for _ in range(s.NumMetaFields):
                    six = [next_line() for _ in range(6)]
                    if None in six:
                        return 1
                    field = MetaField()
                    field.type = atoi(six[0])
                    field.name = trim_whitespace(six[1])[:103]
                    field.label = trim_whitespace(six[2])[:100]
                    field.extra = trim_whitespace(six[3])[:102]
                    field.method = atoi(six[4])
                    field.count = atoi(six[5])
                    field.values = []
                    if field.count > 0 and field.type in (2, 3):
                        for _ in range(field.count):
                            value = next_line()
                            if value is None:
                                return 1
                            field.values.append(trim_whitespace(value)[:64])
                    s.meta.append(field)
    return 0 if s.string_count >= 49 else "missing"


# ---- index files --------------------------------------------------------------------------------


class Failure(Exception):
    """A loader's message: text, how it is wrapped for XML, and what stands after it."""


class PageInfo:
    """The page-info image; every read beyond its end gives 0."""

    def __init__(self, settings, image):
        self.s = settings
        self.image = image
        self.starts = []
        self.fixed = 19 if settings.UseBigPageInfoData == 1 else 17
        self.length_size = self.fixed - 15

    def number(self, at, size):
        return int.from_bytes(self.image[at : at + size].ljust(size, b"\0"), "little")

    def walk(self):
        """None, or the message why the records do not fill the image."""
        s = self.s
        at = 0
        for _ in range(s.NumPages):
            if at + self.length_size > s.PageInfoSize:
                return b"Pageinfo file and PageInfoSize does not match NumPages specified."
            self.starts.append(at)
            at += self.number(at, self.length_size)
            if at > s.PageInfoSize:
                return b"Pageinfo file and PageInfoSize does not match NumPages specified."
        if at < s.PageInfoSize:
            return b"Warning: Pageinfo file and PageInfoSize does not match NumPages specified."
        return None

    def field(self, page, offset, size):
        return self.number(self.starts[page] + self.length_size + offset, size)

    def data_offset(self, page):
        return self.field(page, 0, 5)

    def file_size(self, page):
        return self.field(page, 5, 4)

    def date(self, page):
        return wrap32(self.field(page, 9, 4))

    def boost(self, page):
        return self.field(page, 13, 1)

    def file_type(self, page):
        return self.field(page, 14, 1)

    def title_mass(self, page):
        """The last two bytes of the record."""
        length = self.number(self.starts[page], self.length_size)
        return self.number(self.starts[page] + length - 2, 2) if length >= 2 else 0

    def category_byte(self, page, index):
        return self.number(self.starts[page] + self.fixed + index, 1)

    def meta_data(self, page):
        start = self.starts[page]
        at = start + self.fixed
        if self.s.UseCats == 1 and self.s.NumCatBytes > 0:
            at += self.s.NumCatBytes
        end = min(start + self.number(start, self.length_size), len(self.image))
        return self.image[at:end] if at < end else b""

    def meta_values(self, page):
        """One value a field, None for a field without one."""
        data = self.meta_data(page)
        at = 0
        values = []
        for field in self.s.meta:
            value = None
            if field.type in (0, 4):
                if at + 4 <= len(data):
                    value = int.from_bytes(data[at : at + 4], "little", signed=True)
                    if value == -2147483648:
                        value = None
                at += 4
            elif field.type == 2:
                if at < len(data):
                    value = data[at] if data[at] < len(field.values) else None
                at += 1
            elif field.type == 3:
                if at < len(data):
                    count = data[at]
                    if at + 1 + count <= len(data):
                        value = [i for i in data[at + 1 : at + 1 + count] if i < len(field.values)]
                        value = value or None
                    at += 1 + count
            else:
                end = data.find(b"\0", at) if at <= len(data) else -1
                if end >= 0:
                    value = data[at:end] or None
                    at = end + 1
                else:
                    at = len(data) + 1
            values.append(value)
        return values


class DataStream:
    """The page-data file: a position, and lines read from it."""

    def __init__(self, data):
        self.data = data
        self.at = 0

    def line(self):
        if self.at >= len(self.data):
            return None
        piece = next(pieces(self.data[self.at : self.at + 7260], 7261))
        self.at += len(piece)
        return cstr(piece)


class PageText:
    """The page-text file behind a read-ahead of 128 bytes with its end-of-file flag."""

    def __init__(self, data, id_len):
        self.data = data
        self.id_len = id_len
        self.file_at = 0
        self.buffer = b""
        self.eof = False

    def seek(self, offset):
        self.file_at = offset
        self.buffer = b""
        self.eof = False

    def _read(self, count):
        got = self.data[self.file_at : self.file_at + count]
        self.file_at += len(got)
        if len(got) < count:
            self.eof = True
        return got

    def token(self):
        """(bytes consumed, word number, extra byte); (0, 0, 0) at the end of the data."""
        if len(self.buffer) < self.id_len:
            if not self.buffer:
                if self.eof:
                    return 0, 0, 0
                self.buffer = self._read(128)
            else:
                self.buffer += self._read(128 - len(self.buffer))
        if len(self.buffer) < self.id_len or self.id_len < 1:
            return 0, 0, 0
        token, self.buffer = self.buffer[: self.id_len], self.buffer[self.id_len :]
        return self.id_len, int.from_bytes(token[:-1], "little"), token[-1]


class DictEntry:
    __slots__ = ("word", "offset", "count", "variants")

    def __init__(self):
        self.word = None
        self.offset = 0
        self.count = 0
        self.variants = []


def tokens_of(line):
    """First token up to a blank, second likewise, third up to a blank or a line end."""
    out = []
    at = 0
    for stops in (b" ", b" ", b" \r\n"):
        while at < len(line) and line[at] in stops:
            at += 1
        start = at
        while at < len(line) and line[at] not in stops:
            at += 1
        if at == start:
            break
        out.append(line[start:at])
        at += 1
    return out


def load_dictionary(path, s):
    """The entry table. Raises Failure(text, wrapped, ends) - ends: the request ends at once."""
    data = read_file(path)
    if data is None:
        raise Failure(
            b"Can not find one or more of the Vela index files.<br />Please make sure the"
            b" generated index files are uploaded to the same path as this search script.<br />"
            b"Also check file permissions have been set to allow reading.<br />\n", False, False)
    if s.NumKeywords < 0 or (s.NumKeywords + 1) * 20 > INT_MAX:
        raise Failure(b"Error: out of memory", True, True)
    if s.OutputBasewordBufferSize <= 0:
        raise Failure(b"Error: Could not allocate memory for storing base words.<br />", False,
                      False)
    variant_size = s.OutputVariantBufferSize or s.NumVariants * 10
    if variant_size < 0 or variant_size > INT_MAX:
        raise Failure(b"Error: Out of memory for storing word variants.", True, False)
    entries = []
    used = variant_used = 0
    remaining = 0
    first_dropped = False
    for line in data.split(b"\n")[:-1]:
        line = cstr(line)
        if remaining < 1 or not entries:
            remaining = 0
            if b" " not in line:
                raise Failure(b"Error: Corrupted dictionary data. Invalid dictionary entry at"
                              b" record #%d<br />" % len(entries), True, True)
            parts = tokens_of(line)
            if not parts:
                continue
            if used + len(parts[0]) + 1 > s.OutputBasewordBufferSize:
                raise Failure(b"Error: Out of memory for storing base words. Settings file have"
                              b" been modified or invalid.", True, True)
            used += len(parts[0]) + 1
            entry = DictEntry()
            entry.word = parts[0]
            if len(parts) > 1:
                entry.offset = hand_decimal(parts[1], wrap64)
            if len(parts) > 2:
                entry.count = hand_decimal(parts[2], wrap32)
            remaining = entry.count
            first_dropped = False
            entries.append(entry)
            if len(entries) > s.NumKeywords:
                raise Failure(b"Error: Dictionary data (entry %d) does not match NumKeywords (%d)"
                              b" specified in settings.vdat<br />"
                              % (len(entries), s.NumKeywords), True, True)
        else:
            entry = entries[-1]
            variant = None
            at = 0
            while at < len(line) and line[at] in b" \r":
                at += 1
            end = at
            while end < len(line) and line[end] not in b" \r":
                end += 1
            if end > at and end - at + 1 <= 400:
                variant = line[at:end]
                if variant_used + len(variant) + 2 > variant_size:
                    raise Failure(b"Error: Out of memory for storing word variants. Settings file"
                                  b" have been modified or invalid.", True, True)
                variant_used += len(variant) + 2
            if remaining == entry.count and variant is None:
                first_dropped = True
            if variant is not None and not first_dropped:
                entry.variants.append(variant)
            remaining -= 1
    return entries


def load_spelling(data, s):
    """(key, [first, second, third]) in file order, or None when the table is refused."""
    if s.NumSpellings < 0 or (s.NumSpellings + 1) * 16 > INT_MAX:
        return None
    entries = []
    for piece in pieces(data, max(2, s.MaxKeyWordLineLen)):
        if len(entries) > s.NumSpellings:
            break
        fields = [f for f in cstr(piece).replace(b"\r", b" ").replace(b"\n", b" ").split(b" ")
                  if f]
        if len(fields) < 2:
            continue
        numbers = [hand_decimal(f, wrap32) for f in fields[1:4]]
        numbers += [0] * (3 - len(numbers))
        entries.append((fields[0][:6], numbers))
    return entries


def load_recommended(data, s):
    """(keyword, offset of the page's data) in file order."""
    entries = []
    for piece in pieces(data, max(2, s.MaxKeyWordLineLen)):
        if len(entries) >= s.NumRecommended:
            break
        line = cstr(piece)
        at = line.rfind(b" ")
        if at > 0:
            entries.append((line[:at][:500], atoll(line[at:])))
    return entries


def load_synonyms(data):
    """By key: (word, weight in hundredths, records of its pages). The file is whole."""
    keys, count, records, text_bytes = (int.from_bytes(data[at : at + 4], "little")
                                        for at in (8, 12, 16, 20))

    def numbers(at, rows, columns):
        row = 4 * columns
        return [[int.from_bytes(data[at + row * i + 4 * k : at + row * i + 4 * k + 4], "little")
                 for k in range(columns)] for i in range(rows)]

    key_rows = numbers(24, keys + 1, 2)
    at = 24 + 8 * (keys + 1)
    rows = numbers(at, count + 1, 3)
    at += 12 * (count + 1)
    texts = data[len(data) - text_bytes :]
    found = {}
    for (start, first), (end, after) in zip(key_rows, key_rows[1:]):
        found[texts[start:end]] = [
            (texts[rows[i][0] : rows[i + 1][0]], rows[i][2],
             word_records(data[at + 10 * rows[i][1] : at + 10 * rows[i + 1][1]]))
            for i in range(first, after)]
    return found


def word_records(data):
    """(score, flags, page, position) of each record of a list."""
    return [(data[i], data[i + 1], int.from_bytes(data[i + 2 : i + 5], "little"),
             int.from_bytes(data[i + 5 : i + 10], "little")) for i in range(0, len(data), 10)]


def exists(path):
    return os.path.exists(path)
