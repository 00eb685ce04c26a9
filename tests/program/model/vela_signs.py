"""What CutSigns and PlainQueries make of a query."""
import pathlib
import re
import unicodedata

TABLE = pathlib.Path(__file__).parents[3] / "src/text/sign_table.inc"
PLAIN = ";<=>`~"
LETTERS = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789"
# Openers and closers of quotes.
DOUBLE = ("“”„‟〝＂", "“”‟〞〟＂\"")
GUILLEMETS = ("«»‹›", "«»‹›")
CORNERS = ("「『", "」』")
SINGLE = ("‘‚‛", "‘’")

_KINDS = {}


def kind(char):
    if not _KINDS:
        row = re.compile(r"\{0x([0-9A-F]+), (\d+), CharacterKind::k(\w+)\}")
        for first, more, name in row.findall(TABLE.read_text(encoding="utf-8")):
            for code in range(int(first, 16), int(first, 16) + int(more) + 1):
                _KINDS[chr(code)] = name
    if char < "\x80":
        if char in LETTERS:
            return "Word"
        return "Blank" if char <= " " or char == "\x7f" else "Symbol"
    return _KINDS.get(char, "Word")


class Character:
    def __init__(self, char, raw, known):
        self.char = char
        self.raw = raw
        self.kind = kind(char) if known else "Word"
        self.is_sign = self.kind in ("Symbol", "Picture", "Dropped")
        self.is_hyphen = self.kind == "Hyphen" or char == "-"
        if self.kind == "Word" or (self.kind == "Symbol" and char < "\x80" and char not in PLAIN):
            self.out = raw
        elif self.kind == "Invisible":
            self.out = b""
        else:
            self.out = b"-" if self.kind == "Hyphen" else b" "
        self.quote = ""


def read(text, utf8):
    found = []
    at = 0
    while at < len(text):
        raw, char = text[at : at + 1], "\ufffd"
        known = utf8 or raw < b"\x80"
        if not utf8:
            char = raw.decode("latin-1")
        for length in (1, 2, 3, 4) if utf8 else ():
            try:
                char = text[at : at + length].decode("utf-8")
                raw = text[at : at + length]
                break
            except UnicodeDecodeError:
                pass
        found.append(Character(char, raw, known))
        at += len(raw)
    return found


FORMS = re.compile("[\ufb50-\ufbb1\ufbd3-\ufbdc\ufbde-\ufbe9\ufbfc-\ufbff\ufe80-\ufefc]")


def letters_of_forms(query):
    """Arabic letters for the shapes that they take inside a word, up to the room of a query."""
    out = b""
    for char in read(query, True):
        letters = unicodedata.normalize("NFKC", char.char) if FORMS.match(char.char) else ""
        piece = letters.encode() or char.raw
        if len(out) + len(piece) > 2085:
            break
        out += piece
    return out


def goes_with(before, char):
    """Whether the character is part of the picture that the others make."""
    if before[0] < "\x80" or len("".join(before).encode()) > 64:
        return False
    if char in "\ufe0e\ufe0f\u20e3\u200d" or "\U0001f3fb" <= char <= "\U0001f3ff":
        return True
    if "\U000e0020" <= char <= "\U000e007f":
        return True
    if "\U0001f1e6" <= char <= "\U0001f1ff":
        return len(before) == 1 and "\U0001f1e6" <= before[0] <= "\U0001f1ff"
    return before[-1] == "\u200d" and kind(char) in ("Symbol", "Picture")


def keep_pictures(chars):
    start = 0
    while start < len(chars):
        stop = start
        while stop < len(chars) and chars[stop].kind != "Blank":
            stop += 1
        groups = []
        for c in chars[start:stop]:
            joins = groups and groups[-1][0].kind != "Word"
            # Two signs of ASCII are no picture, and what is invisible begins none.
            if joins and goes_with([g.char for g in groups[-1]], c.char):
                groups[-1].append(c)
            else:
                groups.append([c])
        words = any(g[0].kind == "Word" for g in groups)
        for group in groups:
            if not words and group[0].kind == "Picture":
                group[0].out = group[0].raw
            for c in group[1:]:
                c.out = c.raw if group[0].out == group[0].raw else group[0].out
        start = stop + 1


def pair_quotes(chars):
    def ends_word(i):
        return not 0 <= i < len(chars) or chars[i].kind != "Word"

    def may_open(family, i):
        if i + 1 >= len(chars):
            return False
        if family is CORNERS:
            return True
        if chars[i + 1].kind == "Blank" and chars[i].char not in "«‹":
            return False
        return ends_word(i - 1)

    def may_close(family, i):
        if family is CORNERS:
            return True
        if chars[i - 1].kind == "Blank" and chars[i].char not in "»›":
            return False
        return ends_word(i + 1)

    def closing(family, i):
        blank = False
        for k in range(i + 1, len(chars)):
            if chars[k].kind == "Blank":
                blank = True
            elif (k > i + 1 and chars[k].char in family[1] and may_close(family, k)
                  and (blank or family is not SINGLE)):
                return k
            elif chars[k].char == '"':
                return None
        return None

    i = 0
    while i < len(chars):
        end = None
        if chars[i].char == '"':
            straight = [k for k in range(i + 1, len(chars)) if chars[k].char == '"']
            end = straight[0] if straight else closing(DOUBLE, i)
        else:
            for family in (DOUBLE, GUILLEMETS, CORNERS, SINGLE):
                if chars[i].char in family[0] and may_open(family, i):
                    end = closing(family, i)
                    break
        if end is not None:
            wide = len(chars[i].raw) > 1
            before = b" " if wide and i > 0 and not chars[i - 1].is_hyphen else b""
            chars[i].out, chars[i].quote = before + b'"', "open"
            chars[end].out = b'" ' if len(chars[end].raw) > 1 else b'"'
            chars[end].quote = "close"
            i = end
        i += 1


def drop_hyphens(chars):
    def is_sign(i, ascii_signs):
        if not 0 <= i < len(chars) or not chars[i].is_sign:
            return False
        c = chars[i]
        if c.char < "\x80":
            return c.char in ascii_signs
        return c.quote != "" or c.out != c.raw

    i = 0
    while i < len(chars):
        end = i
        while end < len(chars) and chars[end].is_hyphen:
            end += 1
        if end > i:
            opens = end < len(chars) and chars[end].quote == "open"
            if is_sign(i - 1, "([{'=") or (not opens and is_sign(end, ")],';<=>`~")):
                for c in chars[i:end]:
                    c.out = b""
        i = end + 1


def blank(match):
    return b" " * len(match.group())


def cut(query, utf8):
    chars = read(query, utf8)
    keep_pictures(chars)
    pair_quotes(chars)
    drop_hyphens(chars)
    query = b"".join(c.out for c in chars)
    for alone in (b" -- ", b" - ", b" # ", b" * ", b" ? ", b" ++ "):
        at = query.find(alone)
        while at >= 0:
            query = query[:at] + b" " * len(alone) + query[at + len(alone) :]
            at = query.find(alone)
    goes_on = rb"(?![0-9A-Za-z*?])"
    query = re.sub(rb"_{3,}|(?<!_)__?(?!_)" + goes_on, blank, query)
    query = re.sub(rb"\.{2,}|(?<!\.)\.(?!\.)(?![0-9A-Za-z*?_])", blank, query)
    for _ in range(2):
        query = query.replace(b"- ", b"  ")
    return query


def plain(query):
    def goes_on(at):
        rest = query[at:].lstrip(b"?*-_.+#")
        return rest[:1].isalnum() or rest[:1] >= b"\x80"

    out = bytearray()
    quoted, starts, i = False, True, 0
    while i < len(query):
        char = query[i : i + 1]
        if char == b"-" and starts:
            end = i + len(query[i:]) - len(query[i:].lstrip(b"-"))
            behind = query[end : end + 1]
            opens = behind == b'"' and not quoted
            alone = behind in (b"", b" ", b'"') or (behind == b"?" and not goes_on(end))
            if end == i + 1 and not quoted and (opens or not alone):
                out += b"-"
            starts = opens
            i = end
        elif char == b"?" and not goes_on(i):
            while out[-1:] in (b".", b"_"):
                del out[-1:]
            i += len(query[i:]) - len(query[i:].lstrip(b"?"))
        else:
            out += char
            if char == b'"':
                quoted = not quoted
            starts = char == b" " or (char == b'"' and quoted)
            i += 1
    return bytes(out)
