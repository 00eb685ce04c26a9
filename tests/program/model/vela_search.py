"""What matches: the search driver, lookup, scoring, phrases, filters, snippets, suggestions."""
import math

import vela_index
import vela_page
import vela_ranking
from vela_query import drop_stop_words, is_site, substring_term
from vela_text import (DIGITS, INT_MAX, atoi, find_no_case, lower, read_number, strip_ws,
                       to_float, url_encode, wildcard, word_equal)

MISSING = (b"Can not find one or more of the Vela index files.<br />Please make sure the generated"
           b" index files are uploaded to the same path as this search script.<br />Also check file"
           b" permissions have been set to allow reading.<br />")
CHECK = b"<br />Check file permissions and that file exists"


# ---- opening ------------------------------------------------------------------------------------


def open_index_files(c):
    s = c.s
    data = vela_index.read_file(c.path(b"vela_pagedata.vdat"))
    if data is None:
        c.fail(b"Unable to open vela_pagedata.vdat" + CHECK)
    c.pagedata = vela_index.DataStream(data)
    c.recommended = []
    if s.Recommended == 1:
        data = vela_index.read_file(c.path(b"vela_recommended.vdat"))
        if data is None:
            c.fail(MISSING, wrapped=False)
        if s.NumRecommended < 0 or (s.NumRecommended + 1) * 512 > INT_MAX:
            c.fail(b"Error: out of memory", line_feed=False)
        c.recommended = vela_index.load_recommended(data, s)
    load_page_info(c)
    c.pagetext = None
    if s.DisplayContext == 1 or s.AllowExactPhrase == 1:
        data = vela_index.read_file(c.path(b"vela_pagetext.vdat"))
        if data is None:
            c.fail(b"Unable to open vela_pagetext.vdat" + CHECK)
        c.pagetext = vela_index.PageText(data, s.DictIDLen)
    c.wordmap = vela_index.read_file(c.path(b"vela_wordmap.vdat"))
    if c.wordmap is None:
        c.fail(MISSING + b"\n")
    c.spelling = None
    if s.Spelling == 1:
        data = vela_index.read_file(c.path(b"vela_spelling.vdat"))
        if data is None:
            c.fail(MISSING.replace(b"<br />", b" ").rstrip())
        c.spelling = vela_index.load_spelling(data, s)
        if c.spelling is None:
            c.fail(b"Error: Out of memory")


def load_page_info(c):
    s = c.s
    unable = b"Unable to open vela_pageinfo.vdat" + CHECK
    data = vela_index.read_file(c.path(b"vela_pageinfo.vdat"))
    if data is None or s.PageInfoSize < 0 or s.NumPages < 0:
        c.fail(unable)
    message = None
    if len(data) < s.PageInfoSize:
        message = b"Pageinfo file does not match PageInfoSize specified."
    elif s.NumPages * 4 > INT_MAX:
        c.fail(unable)  # the table of record positions, four bytes each, cannot be had
    else:
        c.info = vela_index.PageInfo(s, data[: s.PageInfoSize])
        message = c.info.walk()
    if message:
        c.message(message, wrapped=False)
        c.fail(unable)


def load_dictionary(c):
    try:
        c.dictionary = vela_index.load_dictionary(c.path(b"vela_dictionary.vdat"), c.s)
    except vela_index.Failure as failure:
        text, wrapped, ends = failure.args
        c.message(text, wrapped, line_feed=False)
        if not ends:
            c.message(b"Failed to load dictionary file.<br />\n", line_feed=False)
        c.end()


# ---- the driver ---------------------------------------------------------------------------------


class Term:
    """One query term: as listed, as searched, and what was found for it."""

    def __init__(self, text, wild):
        self.text = text
        self.wild = wild
        self.phrase = None  # its words, when it is a phrase
        self.alternatives = []  # other words that find its pages
        self.hits = 0
        self.mass = 0  # where it is not that of a word on as many pages as there are hits
        self.searched = text[1:] if text.startswith(b"-") else text


class Page:
    __slots__ = ("score", "mask", "terms", "first", "second", "third", "in_order", "weighed")

    def __init__(self):
        self.score = self.mask = self.terms = self.in_order = 0
        self.first = self.second = self.third = 0
        self.weighed = vela_ranking.Weighed()


class Entry:
    pass


STOP = "stop"


def run_search(c):
    s = c.s
    if s.UseStemming == 1:
        start_stemmer(c)
    c.encoded = url_encode(c.query)
    vela_page.heading(c)
    c.pages = [Page() for _ in range(s.NumPages)]
    c.terms = []
    kept, c.dropped = drop_stop_words(s, c.term_texts, c.query)
    for text in kept:
        phrase = s.AllowExactPhrase == 1 and b" " in text
        if s.SearchAsSubstring == 1:
            text = substring_term(s, text)
        wild = b"*" in text or b"?" in text
        if s.SearchAsSubstring == 1 and not is_site(text) and not phrase and text not in (b"", b"-"):
            wild = True
        if s.SearchAsSubstring == 1 and phrase:
            wild = False
        c.terms.append(Term(text, wild))
    collect_alternatives(c)
    c.highlights = []
    for term in c.terms if s.Highlighting == 1 else ():
        if term.text.startswith(b"-") or is_site(term.text):
            continue
        shown = Term(term.text, term.wild)
        if s.AllowExactPhrase == 1 and b" " in term.text:
            shown.phrase = [w for w in term.text.split(b" ") if w]
        c.highlights.append(shown)
    for term in c.terms if s.Highlighting == 1 else ():
        for text, _, _ in term.alternatives:
            shown = Term(text, False)
            if b" " in text:
                shown.phrase = text.split(b" ")
            if shown.phrase is None or s.AllowExactPhrase == 1:
                c.highlights.append(shown)
    if s.Recommended == 1:
        recommended_links(c)

    c.limit_reached = c.site_only = c.term_cut = False
    c.restriction = None
    c.count = c.skipped = c.excluded = 0
    c.max_terms = c.max_score = c.key_max = c.key_min = 0
    c.matches = c.seeks = 0
    c.skipped_terms = []
    n = len(c.terms)
    c.budget = -(-s.MaxMatches // n) if n else s.MaxMatches
    for number, term in enumerate(c.terms):
        if not term.text or len(term.text) < s.MinWordLen:
            c.skipped += 1
            if len(term.text) < s.MinWordLen:
                c.skipped_terms.append(term.text)
            continue
        exclude = term.text.startswith(b"-")
        if is_site(term.text):
            c.excluded += 1
            c.restriction = term.searched.split(b":", 1)[1]
            if n == 1:
                c.site_only = True
                break
            continue
        if exclude:
            c.excluded += 1
        search_term(c, number, term, exclude)
        if not exclude and not c.limit_reached:
            add_alternatives(c, number, term)
    if c.term_cut and s.AmendedAnswers == 1:
        c.limit_reached = True
    if c.meta_only:
        c.site_only = True
    if c.sort < 1:
        c.key_max = c.max_terms * c.max_score
        c.key_min = 0
    c.effective = n - c.skipped - c.excluded
    read_date_range(c)
    meta_parameters(c)
    c.full_match = 0
    c.total = 0
    c.cat_totals = None
    if s.UseCats == 1 and s.DisplayCatSummary == 1 and (c.cats[0] == -1 or len(c.cats) >= 2):
        c.cat_totals = [0] * s.cat_count
    entries = rank(c)
    c.suggestions = suggest(c)
    vela_page.results_page(c, entries)
    vela_page.finish(c)


def collect_alternatives(c):
    """By each word, and by up to four side by side, which then are each found by them."""
    s = c.s
    data = vela_index.read_file(c.path(b"vela_synonyms.vdat")) if s.Synonyms > 0 else None
    known = vela_index.load_synonyms(data) if data else {}

    def is_plain(term):
        return (term.text and not term.text.startswith(b"-") and not term.wild
                and not set(b" *?") & set(term.text) and not is_site(term.text)
                and len(term.text) >= s.MinWordLen)

    for first in range(len(c.terms)):
        for end in range(first + 1, min(first + 4, len(c.terms)) + 1):
            if not is_plain(c.terms[end - 1]):
                break
            words = c.terms[first:end]
            for term in words:
                term.alternatives += known.get(b" ".join(word.text for word in words), [])


def find_word(c, word):
    """The records of a word, none where it cannot be searched for."""
    for index in range(c.s.DictReservedLimit + 1, min(c.s.NumKeywords, len(c.dictionary))):
        if index >= 0 and c.dictionary[index].word == word:
            offset = c.dictionary[index].offset
            head = c.wordmap[offset : offset + 4] if offset >= 0 else b""
            count = int.from_bytes(head, "little", signed=True) if len(head) == 4 else 0
            data = c.wordmap[offset + 4 : offset + 4 + 10 * max(count, 0)]
            return vela_index.word_records(data) if len(data) == 10 * count else []
    return []


def add_alternatives(c, number, term):
    """Pages that the term has not found itself, each once."""
    seen = {record[2] for record in find_word(c, term.searched)} if term.alternatives else set()
    for text, weight, records in term.alternatives:
        if not records and b" " not in text:
            records = find_word(c, text)
        for score, flags, page, position in records:
            if page >= c.s.NumPages or page in seen:
                continue
            seen.add(page)
            if weight < 100 and c.s.Ranking == 1:
                score = min(max((score >> 1) * weight // 100, 1), 127) << 1
            elif weight < 100:
                score = max(score * weight // 100, 1)
            add_record(c, number, False, (score, flags, page, position))
            term.hits += 1


def start_stemmer(c):
    s = c.s
    if not 0 <= s.StemmingAlgo <= 15:
        c.fail(b"Invalid stemming algorithm specified in settings file.<br />\n")
    if s.StemmingAlgo == 15 and not s.UseUTF8:
        c.fail(b"Failed to initialize stemmer.<br />\n")
    raise NotImplementedError("stemming is not modelled")


def expected_data_missing(c):
    c.fail(b"Error in wordmap file: expected data not found.")


def seek_error(c, offset):
    """Writes the message of a failed seek; the caller decides what follows."""
    offset %= 2**64
    text = b"Error seeking in file. This may be due to an incompatible CGI build for your" \
           b" operating system. Please contact Brantel for help."
    if offset > 2000000000:
        text = b"Error seeking in file. This CGI build does not support files larger than 2GB in" \
               b" size. Please contact Brantel for help."
    c.out += (b"<vela:error>" if c.xml else b"") + text


def read_word_list(c, entry):
    """Records (score, flags, page, position)."""
    if entry.offset < 0:
        seek_error(c, entry.offset)
        c.end()
    head = c.wordmap[entry.offset : entry.offset + 4]
    if len(head) < 4:
        expected_data_missing(c)
    count = int.from_bytes(head, "little", signed=True)
    if count <= 0:
        return []
    data = c.wordmap[entry.offset + 4 : entry.offset + 4 + 10 * count]
    if len(data) < 10 * count:
        expected_data_missing(c)
    return vela_index.word_records(data)


def search_term(c, number, term, exclude):
    s = c.s
    phrase = None
    if s.AllowExactPhrase == 1 and b" " in term.searched:
        phrase = prepare_phrase(c, term)
        if phrase is None:
            return
        words = [phrase.lists[phrase.ids.index(k)] for k in set(phrase.ids)]
        term.mass = sum(vela_ranking.mass(len(records), s.NumPages) for records in words)
    fold = s.ToLowerSearchWords == 1
    found = 0
    for index in range(s.DictReservedLimit + 1, min(s.NumKeywords, len(c.dictionary))):
        if c.limit_reached and not exclude:
            break
        if index < 0:
            continue
        entry = c.dictionary[index]
        if phrase:
            hit = index == phrase.ids[0]
        elif term.wild:
            hit = wildcard(term.searched, entry.word, fold) or any(
                wildcard(term.searched, v, fold) for v in entry.variants)
        else:
            hit = entry.word == term.searched
        if not hit:
            continue
        if entry.offset == -1:
            if (term.wild or s.SearchAsSubstring == 1) and not phrase:
                continue
            if not phrase:
                c.skipped_terms.append(term.text)
            return
        found += 1
        c.matches += 1
        if not exclude:
            if c.matches > s.MaxMatches:
                c.limit_reached = True
                return
            if found > c.budget:
                c.term_cut = True
                return
        records = phrase.lists[0] if phrase else read_word_list(c, entry)
        term.hits += len(records)
        for record in records:
            if phrase:
                record = verify_phrase(c, phrase, record)
                if record is STOP:
                    return
                if record is None:
                    continue
            add_record(c, number, exclude, record)
        if phrase or not (term.wild or s.SearchAsSubstring == 1):
            return


def add_record(c, number, exclude, record):
    s = c.s
    score, flags, number_of_page, position = record
    if number_of_page >= s.NumPages:
        c.fail(b"Error in wordmap: page number is invalid.")
    byte = score
    if s.Ranking == 1:
        score >>= 1
    boost = c.info.boost(number_of_page)
    if boost:
        score = (score * boost + 5) // 10
    if score == 0:
        return
    page = c.pages[number_of_page]
    if s.Ranking == 1:
        score = page.weighed.add(number, byte, flags, score, c.terms[number].wild, len(c.terms))
    amended = s.AmendedAnswers == 1
    if exclude:
        if page.score or not amended:
            c.count -= 1
        page.score = 0
    elif page.score:
        page.score += score if page.score <= 10000 else 1
        if 0 < page.terms < s.MaxContextKeywords:
            if page.second == 0:
                page.second = position
            elif page.third == 0:
                page.third = position
        page.mask &= flags
    else:
        c.count += 1
        page.score = score
        page.first = position
        page.mask = flags
    page.terms += 1
    if c.sort < 1:
        c.max_terms = max(c.max_terms, page.terms)
        c.max_score = max(c.max_score, page.score)
    else:
        date = c.info.date(number_of_page)
        c.key_max = max(c.key_max, date)
        if c.count == 1 or date < c.key_min:
            c.key_min = date
    in_order = number - c.skipped - c.excluded
    if page.in_order == in_order or (page.in_order == number and not amended):
        page.in_order += 1


# ---- filters ------------------------------------------------------------------------------------


def in_category(c, page, number):
    index = -(-(number + 1) // 8) - 1 if number >= 8 else 0
    if index >= c.s.NumCatBytes:
        c.fail(b"Error: Category number is invalid. Incorrect settings file used?", status=1)
    if number < 0:
        return False
    return bool(c.info.category_byte(page, index) >> (number % 8) & 1)


def days_from_civil(year, month, day):
    year += (month - 1) // 12
    month = (month - 1) % 12 + 1
    year -= month <= 2
    era = year // 400
    yoe = year - era * 400
    doy = (153 * (month + (-3 if month > 2 else 9)) + 2) // 5
    doe = yoe * 365 + yoe // 4 - yoe // 100 + doy
    return era * 146097 + doe - 719468 + day - 1


def read_date_range(c):
    s = c.s
    c.range = None
    c.date_text = b""
    if s.DateRangeSearch != 1:
        return
    if c.ltime_from > 0 and c.ltime_to > 0:
        c.range = (c.ltime_from, c.ltime_to)
    else:
        ends = []
        for text, seconds in ((c.date_from, 0), (c.date_to, 86399)):
            numbers = []
            at = 0
            for k in range(3):
                if k:
                    if text[at : at + 1] != b"/":
                        return
                    at += 1
                value, at = read_number(text, at)
                if value is None:
                    return
                numbers.append(value)
            if min(numbers) < 1:
                return
            day, month, year = numbers
            if s.DateRangeFormat == 1:
                day, month = month, day
            moment = days_from_civil(year, month, day) * 86400 + seconds - c.utc_offset
            if not -(2**31) <= moment < 2**31 or moment == -1:
                return
            ends.append(moment)
        c.range = tuple(ends)
    c.date_text = b"&amp;vela_datefrom=%s&amp;vela_dateto=%s" % (
        vela_page.html_escape(c.date_from, 15), vela_page.html_escape(c.date_to, 15))
    if s.AmendedAnswers == 1 and c.ltime_from > 0 and c.ltime_to > 0:
        c.date_text = b"&amp;vela_ltimefrom=%d&amp;vela_ltimeto=%d" % (c.ltime_from, c.ltime_to)
    c.date_text = c.date_text[: vela_page.LINK]


def trimmed(value):
    return strip_ws(value)


def starts_number(text):
    if text[:1] in (b"+", b"-"):
        text = text[1:]
    return bool(text) and text[0] in DIGITS


def starts_money(text):
    if text[:1] in (b"+", b"-"):
        text = text[1:]
    if text[:1] == b".":
        text = text[1:]
    return bool(text) and text[0] in DIGITS


def money(text):
    negative = text[:1] == b"-"
    if text[:1] in (b"+", b"-"):
        text = text[1:]
    end = 0
    while end < len(text) and text[end] in DIGITS:
        end += 1
    whole = int(text[:end] or b"0")
    digits = b""
    if text[end : end + 1] == b".":
        start = end = end + 1
        while end < len(text) and text[end] in DIGITS:
            end += 1
        digits = text[start:end]
    cents = whole * 100 + int((digits + b"00")[:2])
    if len(digits) > 2 and digits[2] >= 0x35:
        cents += 1
    cents = -cents if negative else cents
    return max(-(2**31), min(2**31 - 1, cents))


def constraints(c):
    """(field number, request value) of the fields that the request constrains."""
    out = []
    if not c.s.UseMetaFields:
        return out
    for i, (field, value) in enumerate(zip(c.s.meta, c.meta_values)):
        if field.type == 3:
            count, chosen = value
            if count > 0 and chosen[0] != 255:
                out.append((i, list(chosen[:count])))
        elif field.type == 2:
            if value and atoi(value) != -1:
                out.append((i, atoi(value)))
        else:
            text = trimmed(value)
            if not text:
                continue
            if field.type == 0:
                if starts_number(text):
                    out.append((i, atoi(text)))
            elif field.type == 4:
                if starts_money(text):
                    out.append((i, money(text)))
            else:
                out.append((i, text))
    return out


def meta_passes(c, field, wanted, value):
    s = c.s
    if value is None:
        return False
    if field.type in (0, 4):
        if field.method == 1:
            return value <= wanted
        if field.method == 2:
            return value >= wanted
        return value == wanted
    if field.type == 2:
        return value == wanted
    if field.type == 3:
        found = [w in value for w in wanted]
        return all(found) if field.method == 1 else any(found)
    if field.method == 1:
        return word_equal(s, value, wanted)
    at = find_no_case(s, value, wanted)
    return at == 0 if field.method == 2 else at >= 0


def meta_parameters(c):
    c.constraints = constraints(c)
    text = b""
    for i, _ in c.constraints:
        field, value = c.s.meta[i], c.meta_values[i]
        if field.type == 3:
            for chosen in value[1][: value[0]]:
                text += b"&amp;%s[]=%d" % (field.name, chosen)
        else:
            text += b"&amp;%s=%s" % (field.name, url_encode(value))
    c.meta_text = text[: vela_page.LINK]


def page_url(c, page):
    c.pagedata.at = c.info.data_offset(page)
    line = c.pagedata.line()
    if not line or b"|" not in line:
        return b""
    return line.split(b"|", 1)[0][: vela_page.LINK]


def accept(c, number, page):
    s = c.s
    if not c.site_only and (page.score == 0 or page.terms == 0):
        return False
    if c.restriction is not None:
        if find_no_case(s, page_url(c, number), c.restriction) < 0:
            return False
        if c.site_only:
            page.score += 1
            page.terms += 1
    if c.constraints:
        values = c.info.meta_values(number)
        for i, wanted in c.constraints:
            if not meta_passes(c, s.meta[i], wanted, values[i]):
                return False
            if c.site_only:
                page.score += 1
                page.terms += 1
    if c.meta_only and not c.constraints:
        return False
    if page.in_order < c.effective and c.and_mode == 1:
        return False
    if s.UseCats and c.cats[0] != -1:
        inside = False
        for cat in c.cats:
            if in_category(c, number, cat):
                inside = True
                if c.cat_totals is not None and cat < len(c.cat_totals):
                    c.cat_totals[cat] += 1
        if not inside:
            return False
    if c.range:
        if not c.range[0] <= c.info.date(number) <= c.range[1]:
            return False
    return True


def score32(s, score):
    return max(0, min(score, 2**32 - 1)) if s.AmendedAnswers == 1 else score % 2**32


def rank(c):
    s = c.s
    taken = None
    keys = {}
    if c.count == 0 and not c.site_only:
        # The pages keep their scores, but nothing of them is listed or counted.
        if c.cat_totals is not None and c.cats[0] == -1:
            for number, page in enumerate(c.pages):
                if page.score:
                    for cat in range(s.cat_count):
                        in_category(c, number, cat)
        return []
    weights = None
    if s.Ranking == 1 and not c.site_only:
        weights = vela_ranking.Query(c.terms, c.effective, s.NumPages)
        if c.sort < 1:
            c.key_max = weights.highest(c.max_score)
    span = c.key_max - c.key_min
    width = -(-span // 10000) if span > 9999 else 1
    buckets = [0] * 10000
    for number, page in enumerate(c.pages):
        if not accept(c, number, page):
            page.score = 0
            continue
        if page.in_order >= c.effective:
            c.full_match += 1
        if weights:
            page.score = weights.score(page.score, page.weighed, c.info.title_mass(number))
        elif c.sort < 1:
            page.score = score32(s, (page.terms - 1) * c.max_score + page.score)
        key = page.score if c.sort < 1 else c.info.date(number)
        bucket = max(0, min(9999, -(-(key - c.key_min) // width)))
        keys[number] = bucket
        buckets[bucket] += 1
        c.total += 1
    taken = set()
    running = 0
    for bucket in range(10000) if c.sort == 2 else range(9999, -1, -1):
        if running >= s.MaxResultsPerQuery:
            break
        taken.add(bucket)
        running += buckets[bucket]
    base = to_float(1.3)
    multiplier = to_float(1.7)
    if s.WeightProximity:
        multiplier = to_float(s.WeightProximity / 10.0 + multiplier)
    entries = []
    for number, page in enumerate(c.pages):
        if not page.score:
            continue
        if c.cat_totals is not None and c.cats[0] == -1:
            for cat in range(len(c.cat_totals)):
                if in_category(c, number, cat):
                    c.cat_totals[cat] += 1
        if keys[number] not in taken:
            continue
        factor = to_float(page.mask / 255.0 * multiplier + base)
        if page.terms > 1:
            if page.terms <= 10:
                factor = to_float(math.pow(factor, page.terms - 1))
            else:
                factor = to_float(to_float(math.pow(factor, 10)) + (page.terms - 10))
        entry = Entry()
        entry.page = number
        entry.score = page.score if weights else score32(s, int(page.score * factor + 0.5))
        entry.terms = page.terms
        entry.positions = (page.first, page.second, page.third)
        entries.append(entry)
    if c.total > 1:
        if s.UseDateTime == 1 and c.sort == 1:
            entries.sort(key=lambda e: (-c.info.date(e.page), -e.score, e.page))
        elif s.UseDateTime == 1 and c.sort == 2:
            entries.sort(key=lambda e: (c.info.date(e.page), -e.score, e.page))
        else:
            entries.sort(key=lambda e: (-e.score, e.page))
    return entries


# ---- phrases ------------------------------------------------------------------------------------


class Phrase:
    pass


def prepare_phrase(c, term):
    phrase = Phrase()
    phrase.ids = []
    words = [w for w in term.searched.split(b" ") if w]
    for word in words:
        for index, entry in enumerate(c.dictionary[: c.s.NumKeywords]):
            if entry.word == word:
                phrase.ids.append(index)
                break
        else:
            return None
    if not words:
        return None
    phrase.lists = []
    for index in phrase.ids:
        entry = c.dictionary[index]
        phrase.lists.append([] if entry.offset == -1 else read_word_list(c, entry))
    return phrase


def verify_phrase(c, phrase, record):
    """The record to add, None for a candidate that fails, STOP at a limit."""
    s = c.s
    score, flags, page, position = record
    total = score
    furthest, best = position, 0
    n = len(phrase.ids)
    size = s.DictIDLen
    for k in range(1, n):
        if not phrase.lists[k]:
            continue
        other = next((r for r in phrase.lists[k] if r[2] == page), None)
        if other is None:
            return None
        if not other[1] & flags and not flags & (2 * other[1]):
            return None
        if other[3] > furthest:
            furthest, best = other[3], k
        if s.Ranking == 1:  # weights add up; the title has the phrase when it has all words
            total = ((total >> 1) + (other[0] >> 1)) << 1 | (total & other[0] & 1)
        else:
            total += other[0]
    if c.seeks > s.MaxContextSeeks + 50 and position + size * (n + 3) <= furthest:
        return None
    c.seeks += 1
    if c.seeks > s.MaxContextSeeks:
        c.limit_reached = True
        return STOP
    if s.MaxSearchTime <= 0:
        c.limit_reached = True
        return STOP
    reach = best * (1 + min(s.PhraseSigns, 100)) if s.PhraseSigns > 0 else best + 3
    start = max(position, furthest - size * reach)
    c.pagetext.seek(start)
    at = start
    seen = 0
    phrase_start = 0
    while True:
        k = 0
        last = 0
        while k < n:
            while True:
                used, last, _ = c.pagetext.token()
                where = at
                at += used
                if used == 0 or last <= 1 or last > s.DictReservedLimit:
                    break
            if last <= 1 or last >= s.NumKeywords:
                break
            if last != phrase.ids[k]:
                if k == 0 or last != phrase.ids[0]:
                    break
                k = 0
            if k == 0:
                seen += 1
                phrase_start = where
            k += 1
        if k == n:
            return total, flags, page, phrase_start
        if last == 0 or (s.PhraseSigns <= 0 and s.Ranking != 1 and score < seen):
            return None


# ---- snippets -----------------------------------------------------------------------------------


def word_text(c, index, variant):
    if index >= len(c.dictionary):
        return b""
    entry = c.dictionary[index]
    if 1 <= variant <= len(entry.variants):
        return entry.variants[variant - 1]
    return entry.word


def mark_terms(c, slots, marks):
    s = c.s
    i = 0
    while i < len(slots):
        text = word_text(c, *slots[i])
        step = 1
        for term in c.highlights:
            if term.phrase is None:
                if vela_page.term_matches(s, term, text):
                    marks[i] = 1
                    break
                continue
            end = phrase_in_slots(c, slots, i, term.phrase)
            if end is not None:
                if end == i:
                    marks[i] = 1
                else:
                    marks[i], marks[end] = 2, 3
                    step = end - i + 1
                break
        i += step


def phrase_in_slots(c, slots, i, words):
    s = c.s
    end = None
    for k, word in enumerate(words):
        if k:
            while i < len(slots) and slots[i][0] <= s.DictReservedLimit:
                i += 1
        if i >= len(slots) or not word_equal(s, word, word_text(c, *slots[i])):
            return None
        end = i
        i += 1
    return end


def piece_text(c, slots, marks):
    """(text with marks, plain text)."""
    s = c.s
    prefixes, suffixes, no_spaces = (s.DictReservedPrefixes, s.DictReservedSuffixes,
                                     s.DictReservedNoSpaces)
    opening, closing = b"", b""
    if not c.xml:
        opening, closing = b'<span class="highlight">', b"</span>"
    elif s.XMLHighlight == 1:
        opening, closing = b"<vela:highlight>", b"</vela:highlight>"
    text, plain = b"", b""
    is_open = False
    glued = False
    previous = None
    for (index, variant), mark in zip(slots, marks):
        space = False
        if glued:
            glued = False
        elif index <= no_spaces:
            if suffixes < index <= prefixes:
                space = glued = True
            elif index > prefixes:
                glued = True
        else:
            space = previous is None or not prefixes < previous <= no_spaces
        previous = index
        word = word_text(c, index, variant)
        blank = b" " if space else b""
        added = blank
        if mark in (1, 2):
            added += opening
        added += word
        if mark in (1, 3):
            added += closing
        if len(text) + len(added) > 2048:
            break
        text += added
        plain += blank + word
        if mark in (2, 3):
            is_open = mark == 2
    if is_open:
        text += closing
    return text, plain


def snippets(c, entry, title):
    s = c.s
    c.both(b"<vela:context>" if c.xml else b'<div class="context">\n')
    count = min(entry.terms, s.MaxContextKeywords)
    size = s.DictIDLen
    written = False
    if count > 0:
        words = -(-s.ContextSize // count)
        back = size * (words // 2)
        first_start = previous_start = previous_end = 0
        stop = False
        for i in range(count):
            if stop or (i and c.pagetext.eof):
                break
            position = entry.positions[min(i, 2)]
            no_back = not position > back
            start = position if no_back else position - back
            if i and not (start <= previous_start and start <= first_start):
                start = max(start, previous_end)
            if i == 0:
                first_start = start
            previous_start = start
            c.pagetext.seek(start)
            at = start
            slots, marks = [], []
            last = 0
            while len(slots) < words:
                used, last, extra = c.pagetext.token()
                where = at
                at += used
                if used and last not in (0, 1) and last < s.NumKeywords:
                    slots.append((last, extra))
                    marks.append(1 if s.Highlighting == 1 and where == position else 0)
                elif used and last == s.NumKeywords and last not in (0, 1):
                    c.both(b"Critical error with pagetext file. Check that your files are from the"
                           b" same indexing session.")
                else:
                    if no_back or where > position:
                        stop = True
                        break
                    slots, marks = [], []
                    if not used:
                        stop = True
                        break
            if last != 0:
                previous_end = at
            if s.Highlighting == 1:
                mark_terms(c, slots, marks)
            text, plain = piece_text(c, slots, marks)
            if not written and plain.strip(b" ") == title.strip(b" "):
                break
            c.both(b" ... " if c.xml else b" <b>...</b> ")
            c.both(text)
            written = True
    if written:
        c.both(b" ..." if c.xml else b" <b>...</b>")
    c.both(b"</vela:context>\n" if c.xml else b"</div>\n")


# ---- recommended links --------------------------------------------------------------------------


def recommended_links(c):
    s = c.s
    c.last_offset = None
    for keyword, offset in c.recommended:
        for part in keyword.split(b","):
            if c.recommended_shown >= s.RecommendedMax:
                break
            part = strip_ws(part)
            if part and keyword_matches(c, part) and offset != c.last_offset:
                show_recommended(c, offset)
    if c.recommended_shown and not c.xml:
        c.section(14, b"</div>\n")


def keyword_matches(c, keyword):
    s = c.s
    fold = s.ToLowerSearchWords != 0
    for term in c.terms:
        if not term.text:
            continue
        if term.wild:
            hit = wildcard(term.text, keyword, fold)
        elif s.SearchAsSubstring == 1:
            hit = len(term.text) <= len(keyword) and find_no_case(s, keyword, term.text) >= 0
        else:
            hit = word_equal(s, keyword, term.text)
        if not hit and (b"*" in keyword or b"?" in keyword):
            hit = wildcard(keyword, term.text, fold)
        if hit:
            return True
    return word_equal(s, keyword, c.query)


def show_recommended(c, offset):
    s = c.s
    c.last_offset = offset
    if c.recommended_shown == 0 and not c.xml:
        c.section(14, b'<div class="recommended">\n')
        c.section(14, b'<div class="recommended_heading">%s</div>\n' % s.text("RECOMMENDED"))
    if offset < 0:
        seek_error(c, offset)
    else:
        c.pagedata.at = offset
    texts = vela_page.split_page_line(c.pagedata.line())
    if texts is None:
        c.fail(b"Error: Corrupted or invalid index files. Please re-index your and try again.",
               line_feed=False)
    url, title, description, image = texts
    url, image = url[: vela_page.LINK], image[: vela_page.LINK]
    target = url
    if s.GotoHighlight == 1:
        whole = url
        url, mark, fragment = url.partition(b"#")
        joined = b"&amp;" if b"?" in whole else b"?"
        target = url + joined + vela_page.highlight_part(c) + c.encoded + mark + fragment
    if s.PdfHighlight == 1 and find_no_case(s, url, b".pdf") >= 0:
        target = vela_page.pdf_url(c, url)
    target = target[: vela_page.LINK]
    if c.xml:
        c.out += b"<vela:recommended>\n"
        if s.UseVelaImage == 1 and image:
            c.write(b"<vela:imageURL>%s</vela:imageURL>" % image)
        c.write(b"<title>%s</title>\n" % title)
        c.write(b"<link>%s</link>\n" % target)
        c.write(b"<description>%s</description>\n" % description)
        c.out += b"</vela:recommended>\n"
    else:
        anchor = b'<a href="%s" %s>' % (target, c.target)
        c.section(14, b'<div class="recommend_block">\n')
        if s.UseVelaImage == 1 and image:
            c.section(14, b'<div class="recommend_image">')
            c.section(14, anchor)
            c.section(14, b'<img src="%s" alt="" class="recommend_image">' % image)
            c.section(14, b"</a></div>")
        c.section(14, b'<div class="recommend_title">')
        c.section(14, anchor)
        c.section(14, vela_page.highlight(c, title) if title else url)
        c.section(14, b"</a></div>\n")
        c.section(14, b'<div class="recommend_description">')
        c.section(14, vela_page.highlight(c, description))
        c.section(14, b"</div>\n")
        c.section(14, b'<div class="recommend_infoline">%s</div>\n' % url)
        c.section(14, b"</div>")
    c.recommended_shown += 1


# ---- spelling suggestions -----------------------------------------------------------------------

VOWELS = "AEIOU"


def sound_key(word):
    w = "".join(chr(b).upper() for b in word if chr(b) in
                "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ")
    if not w:
        return b""
    if w[:2] in ("AE", "GN", "KN", "PN", "WR"):
        w = w[1:]
    elif w[0] == "X":
        w = "S" + w[1:]
    elif w[:2] == "WH":
        w = "W" + w[2:]
    out = ""
    for i, ch in enumerate(w):
        if len(out) >= 6:
            break
        before = w[i - 1] if i else ""
        after = w[i + 1 : i + 2]
        two = w[i + 1 : i + 3]
        if ch == before and ch != "C":
            continue
        code = ""
        if ch in VOWELS:
            code = ch if i == 0 else ""
        elif ch == "B":
            code = "" if before == "M" and not after else "B"
        elif ch == "C":
            if two == "IA":
                code = "X"
            elif before == "S" and after and after in "IEY":
                code = ""
            elif after and after in "IEY":
                code = "S"
            elif after == "H":
                code = "K" if before == "S" else "X"
            else:
                code = "K"
        elif ch == "D":
            code = "J" if two in ("GE", "GI", "GY") else "T"
        elif ch == "G":
            if after == "H":
                beyond = w[i + 2 : i + 3]
                silent = not (not beyond or beyond in VOWELS)
            else:
                silent = w[i:] in ("GN", "GNED")
            if before == "D" and after and after in "EIY":
                silent = True
            if silent:
                code = ""
            elif after and after in "IEY" and before != "G":
                code = "J"
            else:
                code = "K"
        elif ch == "H":
            if before and before in "CSPTG":
                code = ""
            else:
                code = "H" if after and after in VOWELS else ""
        elif ch == "K":
            code = "" if before == "C" else "K"
        elif ch == "P":
            code = "F" if after == "H" else "P"
        elif ch == "Q":
            code = "K"
        elif ch == "S":
            code = "X" if after == "H" or two in ("IO", "IA") else "S"
        elif ch == "T":
            if two in ("IA", "IO"):
                code = "X"
            elif after == "H":
                code = "0"
            elif two == "CH":
                code = ""
            else:
                code = "T"
        elif ch == "V":
            code = "F"
        elif ch in "WY":
            code = ch if after and after in VOWELS else ""
        elif ch == "X":
            code = "KS"
        elif ch == "Z":
            code = "S"
        else:
            code = ch
        out += code
    return out[:6].encode()


def suggest(c):
    """The suggested query and the alternatives; empty when there is nothing to offer."""
    s = c.s
    limit = s.SpellingWhenLessThan
    c.suggested_as_typed = False

    def excluded(term):
        return s.PlainQueries == 1 and term.text.startswith(b"-")

    if s.Spelling != 1 or c.spelling is None or all(
            t.hits >= limit or excluded(t) for t in c.terms):
        return []
    text = b""
    offered = 0
    alternatives = []
    for i, term in enumerate(c.terms):
        searched, kept = term.searched, term.text if s.OfferWords == 1 else term.searched
        if s.AmendedAnswers == 1 and s.SearchAsSubstring == 1:
            searched, kept = searched.strip(b"*"), kept.strip(b"*")
        if excluded(term):
            piece = term.text
            if s.AllowExactPhrase == 1 and b" " in piece:
                piece = b'-"%s"' % piece[1:]
            c.suggested_as_typed = True
        elif term.hits >= limit:
            piece = kept
        else:
            piece = None
            key = sound_key(searched)
            for entry_key, slots in c.spelling if key else ():
                if entry_key < key:
                    continue
                if entry_key > key:
                    break
                for k, number in enumerate(slots):
                    word = spelling_word(c, number)
                    if word is None or word == searched:
                        continue
                    piece = word
                    if len(c.terms) == 1:
                        rest = [spelling_word(c, other) for other in slots[k + 1 :]]
                        alternatives = [w for w in rest if w is not None and w != searched]
                    break
                if piece is not None:
                    break
            if piece is None:
                continue
            offered += 1
        text += (b" " if i else b"") + b"".join(word + b" " for word in c.dropped[i]) + piece
    text += b"".join(b" " + word for word in c.dropped[-1])
    return [text] + alternatives if offered else []


def spelling_word(c, number):
    if number <= 0 or number >= min(c.s.NumKeywords, len(c.dictionary)):
        return None
    entry = c.dictionary[number]
    return lower(c.s.UseUTF8 == 1, entry.variants[0] if entry.variants else entry.word)


# ---- autocomplete -------------------------------------------------------------------------------


def autocomplete(c):
    s = c.s
    data = vela_index.read_file(c.path(b"vela_autocomplete.vdat"))
    if data is None:
        c.out += (b"Can not find the vela_autocomplete.vdat index file.<br />Please make sure the"
                  b" generated index files are uploaded to the same path as this search script."
                  b"<br />Also check file permissions have been set to allow reading.<br />")
        return
    utf8 = s.UseUTF8 == 1
    for piece in vela_index.pieces(data, max(2, s.MaxKeyWordLineLen)):
        line = vela_index.cstr(piece)[:-1]
        if not line:
            continue
        text = line.split(b"\r")[0].split(b"\n")[0]
        for word in c.term_texts:
            if lower(utf8, text[: len(word)]) == lower(utf8, word):
                c.write(b'<div class="vela_ac_item" onclick="VelaAutoComplete_UseSuggestion(&quot;'
                        b'%s&quot;);"><a class="vela_ac_item" href="#" target="_self">%s</a></div>'
                        b"\n" % (text, text))
