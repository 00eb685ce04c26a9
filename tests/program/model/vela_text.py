"""How text and numbers behave: C strings as bytes, 32-bit numbers, case, patterns, escapes.

Every text here is a bytes object without its terminator. A text that may hold a NUL byte is
passed through cstr() where it becomes a C string.
"""
import re
import struct

SPACES = b" \t\n\v\f\r"
DIGITS = b"0123456789"
INT_MIN, INT_MAX = -2147483648, 2147483647


def cstr(data):
    end = data.find(b"\0")
    return data if end < 0 else data[:end]


def saturate(number):
    return max(INT_MIN, min(INT_MAX, number))


def wrap32(number):
    return (number + 2**31) % 2**32 - 2**31


def wrap64(number):
    return (number + 2**63) % 2**64 - 2**63


def to_float(number):
    return struct.unpack("<f", struct.pack("<f", number))[0]


def read_number(text, at=0, skip=SPACES):
    """(value, end) of the decimal number at `at`, or (None, at) when there is none."""
    i = at
    while i < len(text) and text[i] in skip:
        i += 1
    start = i
    if i < len(text) and text[i] in b"+-":
        i += 1
    first = i
    while i < len(text) and text[i] in DIGITS:
        i += 1
    if i == first:
        return None, at
    return saturate(int(text[start:i])), i


def atoi(text):
    value, _ = read_number(text)
    return 0 if value is None else value


def atoll(text):
    i = 0
    while i < len(text) and text[i] in SPACES:
        i += 1
    start = i
    if i < len(text) and text[i] in b"+-":
        i += 1
    first = i
    while i < len(text) and text[i] in DIGITS:
        i += 1
    if i == first:
        return 0
    return max(-(2**63), min(2**63 - 1, int(text[start:i])))


def hand_decimal(text, wrap):
    """The readers of the dictionary and spelling files: blanks, one minus, digits; wraps."""
    i = 0
    while i < len(text) and text[i] == 0x20:
        i += 1
    sign = 1
    if i < len(text) and text[i] == 0x2D:
        sign, i = -1, i + 1
    value = 0
    while i < len(text) and text[i] in DIGITS:
        value = value * 10 + text[i] - 48
        i += 1
    return wrap(sign * value)


def pieces(data, size):
    """What a line-oriented read with a buffer of `size` bytes delivers, one after the other."""
    at = 0
    while at < len(data):
        end = data.find(b"\n", at, at + size - 1)
        end = min(len(data), at + size - 1) if end < 0 else end + 1
        yield data[at:end]
        at = end


def strip_ws(text):
    return text.strip(b" \t\r\n")


def trim_whitespace(text):
    """Trimmed, but a text of blanks alone stays as it is."""
    return strip_ws(text) or text


# ---- case -------------------------------------------------------------------------------------


def _lower_table():
    table = {}
    for code in range(0x110000):
        if 0xD800 <= code <= 0xDFFF:
            continue
        lower = chr(code).lower()
        if len(lower) != 1 or ord(lower) == code:
            continue
        a, b = chr(code).encode(), lower.encode()
        if len(a) == len(b):
            table[a] = b
    table[b"\xc4\xb0"] = b"i"
    return table


_LOWER = None


def utf8_length(lead):
    if lead < 0xC0 or lead >= 0xF8:
        return 1
    return 2 if lead < 0xE0 else 3 if lead < 0xF0 else 4


def lower_utf8(text):
    global _LOWER
    if text.isascii():
        return text.lower()
    if _LOWER is None:
        _LOWER = _lower_table()
    out = bytearray(text)
    i = 0
    while i < len(out):
        n = utf8_length(out[i])
        char = bytes(out[i : i + n])
        if len(char) == n and char not in (b"\xcf\x80", b"\xd1\x80"):
            char = _LOWER.get(char, char)
            n = len(char)
            out[i : i + n] = char
        i += n
    return bytes(out)


def lower(utf8, text):
    return lower_utf8(text) if utf8 else text.lower()  # bytes.lower() changes A-Z alone


def word_equal(s, a, b):
    if s.ToLowerSearchWords == 0:
        return a == b
    return lower(s.UseUTF8 == 1, a) == lower(s.UseUTF8 == 1, b)


def find_no_case(s, text, word):
    return lower(s.UseUTF8 == 1, text).find(lower(s.UseUTF8 == 1, word))


def wildcard(pattern, text, fold):
    if fold:
        pattern, text = pattern.lower(), text.lower()
    p = t = 0
    star = -1
    mark = 0
    while t < len(text):
        if p < len(pattern) and pattern[p] == 0x2A:
            p += 1
            star, mark = p, t
        elif p < len(pattern) and (pattern[p] == 0x3F or pattern[p] == text[t]):
            p += 1
            t += 1
        elif star >= 0:
            mark += 1
            p, t = star, mark
        else:
            return False
    while p < len(pattern) and pattern[p] == 0x2A:
        p += 1
    return p == len(pattern)


# ---- escapes ----------------------------------------------------------------------------------

_HTML = {0x26: b"&#38;", 0x3C: b"&#60;", 0x3E: b"&#62;", 0x22: b"&#34;", 0x27: b"&#39;"}


def html_escape(text, capacity=None):
    """The whole escape of the longest beginning of `text` that stays below `capacity` bytes."""
    out = bytearray()
    for byte in text:
        piece = _HTML.get(byte) or bytes([byte])
        if capacity is not None and len(out) + len(piece) >= capacity:
            break
        out += piece
    return bytes(out)


_KEPT = frozenset(b"abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-_")


def url_encode(text):
    out = bytearray()
    for byte in text:
        if byte in _KEPT:
            out.append(byte)
        elif byte == 0x20:
            out += b"+"
        else:
            out += b"%%%X" % byte
            if byte < 16:
                break
    return bytes(out)


def percent_encode(text, unsafe):
    out = bytearray()
    for byte in text:
        if byte < 0x20 or byte == 0x7F or byte in unsafe:
            out += b"%%%02X" % byte
        else:
            out.append(byte)
    return bytes(out)


def script_url_text(url):
    return percent_encode(url, b"\"'<>&\\")


def replace_all(text, old, new, capacity):
    """(text, fits): one pass from the left, refused when the result reaches the capacity."""
    if old == new:
        return text, True
    result = text.replace(old, new)
    return (result, True) if len(result) < capacity else (text, False)


def build_url(base, first, second):
    return base + (b"&amp;" if b"?" in base else b"?") + first + second


# ---- join characters around highlighting --------------------------------------------------------


def decode_join(text, join):
    out = bytearray()
    i = 0
    while i < len(text):
        if text[i] == 0x26 and len(text) - i - 1 >= 3 and text[i + 1] == 0x23:
            end = text.find(b";", i)
            if 0 <= end and end - i < 8:
                number = atoi(text[i + 2 :])
                if number == 0 and text[i + 2] == 0x78:
                    found = re.fullmatch(rb"[ \t-\r]*([+-]?)(?:0[xX])?([0-9a-fA-F]+)",
                                         text[i + 3 : end])
                    number = int(found[1] + found[2], 16) if found else 0
                byte = number & 0xFF
                if byte == 0 or byte in join:
                    out.append(byte)
                    i = end + 1
                    continue
        out.append(text[i])
        i += 1
    return cstr(bytes(out))


def encode_join(text, join):
    out = bytearray()
    for i, byte in enumerate(text):
        if byte not in join:
            out.append(byte)
            continue
        left = len(text) - i - 1
        part = False
        if byte == 0x26 and left >= 3 and text[i + 1] == 0x23:
            part = True
        elif byte == 0x23 and i > 0 and left >= 2 and text[i - 1] == 0x26:
            part = True
        if part:
            end = text.find(b";", i)
            part = end < 0 or end - i < 8
        if part:
            out.append(byte)
        else:
            out += b"&#%d;" % (byte - 256 if byte >= 128 else byte)
    return bytes(out)
