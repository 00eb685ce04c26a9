"""What was asked: the form, the parameters, the normalised query and its terms."""
import vela_signs
from vela_text import atoi, cstr, lower, read_number, saturate, strip_ws


class Undecodable(Exception):
    """The request cannot be decoded; the message is the argument."""


MESSAGES = {2: b"MIME content type error", 3: b"Request method error", 4: b"I/O error"}


def hex_digit(byte):
    signed = byte - 256 if byte >= 128 else byte
    return signed - 48 if signed < 65 else (signed & ~0x20) - 55


def decode_value(value):
    out = bytearray()
    value = value.replace(b"+", b" ")
    i = 0
    while i < len(value):
        if value[i] == 0x25:
            digits = value[i + 1 : i + 3]
            high = hex_digit(digits[0]) if len(digits) > 0 else 0
            low = hex_digit(digits[1]) if len(digits) > 1 else 0
            out.append((16 * high + low) & 0xFF)
            i += 3
        else:
            out.append(value[i])
            i += 1
    return bytes(out)


class Form:
    def __init__(self, raw):
        self.buffer = bytearray(cstr(raw)) + b"\0"
        self.pairs = []  # positions of name and value in the buffer
        self._split()

    def _end(self, at):
        return self.buffer.index(0, at)

    def text(self, at):
        return bytes(self.buffer[at : self._end(at)])

    def _split(self):
        b = self.buffer
        start = 0
        while True:
            equals = b.find(b"=", start, self._end(start))
            if equals < 0:
                return
            b[equals] = 0
            value = equals + 1
            stop = self._end(value)
            amp = b.find(b"&", value, stop)
            if amp >= 0:
                b[amp] = 0
                stop = amp
            decoded = decode_value(bytes(b[value:stop]))
            b[value : value + len(decoded)] = decoded
            if value + len(decoded) < len(b):
                b[value + len(decoded)] = 0
            self.pairs.append((start, value))
            start = amp + 1 if amp >= 0 else value

    def values(self, name):
        return [self.text(v) for n, v in self.pairs if self.text(n) == name]

    def first(self, name):
        found = self.values(name)
        return found[0] if found else None

    def integer(self, name, fallback):
        value = self.first(name)
        if not value:
            return fallback
        number, _ = read_number(value, 0, b" ")
        return fallback if number is None else number

    def string(self, name, limit):
        value = self.first(name)
        return b"" if value is None or len(value) > limit else value

    def integers(self, name, capacity, maximum):
        """The list, or None when the lookup fails."""
        found = self.values(name)
        if not found or not found[0]:
            return None
        number = atoi(found[0])
        if maximum and number > maximum:
            return None
        out = [number]
        for value in found[1:]:
            if len(out) >= capacity:
                break
            if value:
                number = atoi(value)
                if not maximum or number <= maximum:
                    out.append(number)
        return out


def read_form(env, stdin):
    method = env.get(b"REQUEST_METHOD", b"")
    if method == b"POST":
        if env.get(b"CONTENT_TYPE", b"") != b"application/x-www-form-urlencoded":
            raise Undecodable(MESSAGES[2])
        length = atoi(env.get(b"CONTENT_LENGTH", b""))
        if length == 0:
            return Form(b"")
        if length < 0 or len(stdin) < length:
            raise Undecodable(MESSAGES[4])
        return Form(stdin[:length])
    if method == b"GET":
        return Form(env.get(b"QUERY_STRING", b""))
    raise Undecodable(MESSAGES[3])


def read_params(c, env, stdin):
    s = c.s
    form = read_form(env, stdin)
    c.xml_param = form.integer(b"vela_xml", -1001)
    c.remote = env.get(b"REMOTE_ADDR", b"unknown")[:31]
    query = form.first(b"vela_query")
    if query is None:
        query = form.first(b"vela%5Fquery")
    c.query_given = query is not None
    c.typed = c.asked = (query or b"")[:2085]
    c.per_page = form.integer(b"vela_per_page", 10)
    page = form.integer(b"vela_page", None)
    c.page_defaulted = page is None
    c.page = 1 if page is None else page
    c.autocomplete = form.integer(b"vela_ac", 0)
    c.and_mode = form.integer(b"vela_and", -1001)
    c.sort = form.integer(b"vela_sort", s.DefaultSort)
    c.date_from = form.string(b"vela_datefrom", 10)
    c.date_to = form.string(b"vela_dateto", 10)
    c.ltime_from = form.integer(b"vela_ltimefrom", 0)
    c.ltime_to = form.integer(b"vela_ltimeto", 0)
    c.master = form.integer(b"masternode", 0)
    url = env.get(b"SCRIPT_NAME", b"")
    c.script_url = url if len(url) < 2048 else b""
    c.cats = [-1]
    if s.UseCats:
        for name in (b"vela_cat%5B%5D", b"vela_cat[]"):
            found = form.integers(name, s.NumCats, s.NumCats)
            if found is not None:
                c.cats = found
                break
        else:
            c.cats = [form.integer(b"vela_cat", -1)]
    c.meta_values = []
    if s.UseMetaFields:
        for field in s.meta:
            if field.type == 3:
                for name in (field.name + b"%5B%5D", field.name + b"[]"):
                    found = form.integers(name, 255, 255)
                    if found is not None:
                        break
                else:
                    found = [form.integer(field.name, -1)]
                kept = bytes(n & 0xFF for n in found if n < 255)
                count = len(found) % 256
                c.meta_values.append((count, kept.ljust(255, b"\0")))
            else:
                c.meta_values.append(form.string(field.name, 65535))


def shown_bytes(s, typed):
    """What was typed without what no answer can show."""
    out = b""
    for char in vela_signs.read(typed, s.UseUTF8 == 1):
        shown = char.raw
        if char.raw in b"\t\n\v\f\r":
            shown = b" "
        elif char.raw < b" " or char.raw == b"\x7f":
            shown = "\ufffd".encode() if s.UseUTF8 == 1 else b" "
        elif s.UseUTF8 == 1 and char.char in "\ufffd\ufffe\uffff":
            shown = "\ufffd".encode()
        if len(out) + len(shown) > 2085:
            break
        out += shown
    return out


def whole(s, display):
    """Without the part of a character at the end."""
    if s.AmendedAnswers != 1 or s.UseUTF8 != 1:
        return display
    for length in (1, 2, 3, 4):
        tail = display[-length:]
        if tail[:1] < b"\x80":
            return display
        if tail[:1] >= b"\xc0":
            try:
                tail.decode("utf-8")
            except UnicodeDecodeError:
                return display[:-length]
            return display
    return display


# ---- the query ----------------------------------------------------------------------------------


def normalise(s, query):
    join = s.WordJoinChars

    def swap(old, new):
        nonlocal query
        if old and old != new:
            result = query.replace(old, new)
            if len(result) <= 2085:
                query = result

    if s.CutSigns == 1:
        if s.UseUTF8 == 1:
            query = vela_signs.letters_of_forms(query)
        query = vela_signs.cut(query, s.UseUTF8 == 1)
    if s.MapAccents == 1:
        for accented, plain in s.accents or ():
            swap(accented, plain)
    if s.PlainQueries == 1:
        query = vela_signs.plain(query)
    if s.ToLowerSearchWords == 1:
        query = lower(s.UseUTF8 == 1, query)
    if s.AllowExactPhrase == 0:
        swap(b'"', b" ")
    if b"." not in join:
        swap(b".", b" ")
    if b"-" not in join:
        text = bytearray(query)
        for i in range(1, len(text)):
            if text[i] == 0x2D and text[i - 1] != 0x20:
                text[i] = 0x20
        query = bytes(text)
    if b"#" not in join:
        text = bytearray(query)
        for i in range(len(text) - 2, -1, -1):
            if text[i] == 0x23 and text[i + 1] != 0x20:
                text[i] = 0x20
        query = bytes(text)
    if b"+" not in join:
        text = bytearray(query)
        for i in range(len(text) - 1, -1, -1):
            if text[i] != 0x2B:
                continue
            if i + 1 == len(text) or text[i + 1] == 0x20:
                keep = i > 0 and text[i - 1] == 0x2B
            else:
                keep = text[i + 1] == 0x2B
            if not keep:
                text[i] = 0x20
        query = bytes(text)
    for char in (b"_", b"'", b"$", b","):
        if char not in join:
            swap(char, b" ")
    if b":" not in join:
        swap(b"site:", b"[#@!]")
        swap(b"url:", b"[#@]")
        swap(b":", b" ")
        swap(b"[#@!]", b"site:")
        swap(b"[#@]", b"url:")
    for char in (b"&", b"/", b"\\", b"@"):
        if char not in join:
            swap(char, b" ")
    for char in b"()^[]|{}%!":
        swap(bytes([char]), b" ")
    for char in b"_'$.,:&/\\":
        swap(bytes([char]) + b" ", b" ")
    if query and query[-1] in b"_'$.,:&/\\":
        query = query[:-1]
    return strip_ws(query)


def split_terms(query):
    """(terms with exclusions last, whether a character lay inside quotes)."""
    terms = []
    current = bytearray()
    inside = has_phrase = False
    for i, byte in enumerate(query):
        if byte == 0x22:
            if inside:
                inside = False
            else:
                inside = True
                if i == 0 or query[i - 1] != 0x2D:
                    current.clear()
        elif byte == 0x20 and not inside:
            if current:
                terms.append(bytes(current))
                current.clear()
        else:
            current.append(byte)
        has_phrase = has_phrase or inside
    if query:
        terms.append(bytes(current))
    if b"-" in query:
        terms.sort(key=lambda t: t.startswith(b"-"))
    return terms, has_phrase


def drop_stop_words(s, terms, query):
    """The terms kept, and for each place between them, first and last included, what was dropped."""
    listed = s.StopWords.split(b" ")

    def is_stop_word(term):
        return term != b"" and term in listed and b'"%s"' % term not in query

    def is_searched(term):
        return (term and not term.startswith(b"-") and not is_site(term)
                and len(term) >= s.MinWordLen and not is_stop_word(term))

    if any(is_searched(term) for term in terms):
        kept, dropped = [], [[]]
        for term in terms:
            if is_stop_word(term):
                dropped[-1].append(term)
            else:
                kept.append(term)
                dropped.append([])
        return kept, dropped
    return terms, [[] for _ in range(len(terms) + 1)]


def is_site(term):
    body = term[1:] if term.startswith(b"-") else term
    return body.startswith(b"site:") or body.startswith(b"url:")


def substring_term(s, term):
    if is_site(term) or (s.AllowExactPhrase == 1 and b" " in term):
        return term
    minus, body = (b"-", term[1:]) if term.startswith(b"-") else (b"", term)
    if not body:
        return term
    if not body.startswith(b"*"):
        body = b"*" + body
    if not body.endswith(b"*"):
        body += b"*"
    return minus + body
