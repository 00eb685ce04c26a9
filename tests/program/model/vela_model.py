"""One request, answered from the files of an index directory.

A plain second reading of how the search program behaves. It is compared byte for byte with the
program by compare.py; it is slow, short, and shares no code with it.
"""
import functools
import os

import vela_page
import vela_query
import vela_search
from vela_index import Settings, load_settings
from vela_page import Context, RequestOver

UTC_OFFSETS = {b"": 0, b"UTC": 0, b"UTC0": 0, b"XST-3": 3 * 3600, b"YST5": -5 * 3600}


def split_program(argument):
    at = argument.rfind(b"\\")
    if at < 0:
        at = argument.rfind(b"/")
    if at < 0:
        return None, argument[:2047]
    return argument[:at][:511], argument[at + 1 :][:2047]


def made_from_query(arguments, query):
    if not arguments or b"=" in query:
        return False
    words = [percent_decoded(word) for word in query.split(b"+")]
    return arguments == words


def percent_decoded(word):
    out = bytearray()
    i = 0
    while i < len(word):
        digits = word[i + 1 : i + 3]
        if word[i] == 0x25 and len(digits) == 2 and digits.isalnum():
            try:
                out.append(int(digits, 16))
                i += 3
                continue
            except ValueError:
                pass
        out.append(word[i])
        i += 1
    return bytes(out)


def index_directory(argv, env, working):
    directory, name = split_program(argv[0])
    if directory is None:
        directory = working[:511]
    arguments = argv[1:]
    if made_from_query(arguments, env.get(b"QUERY_STRING", b"")):
        arguments = []
    for argument, following in zip(arguments, arguments[1:]):
        if argument[:1] == b"/" and argument[1:2] in (b"i", b"I") and len(following) < 260:
            directory = following
    return directory, name


def run(index_dir, env, argv, stdin, now):
    """The finished Context and the exit status. `index_dir` is the working directory."""
    env = {k if isinstance(k, bytes) else k.encode(): v if isinstance(v, bytes) else v.encode()
           for k, v in env.items()}
    c = Context()
    c.now = now
    c.utc_offset = UTC_OFFSETS[env.get(b"TZ", b"")]
    named, name = index_directory(argv, env, os.fsencode(index_dir))
    c.directory = os.path.join(os.fsencode(index_dir), named) if named else named
    c.s = s = Settings(name)
    code = load_settings(c.path(b"settings.vdat"), s)
    if code:
        start = b"Content-type: text/html\n\n"
        if code == 6:
            c.write(start + b"Unable to open %s/settings.vdat.<br />Check file permissions and that"
                    b" file exists" % named)
            return c, 0
        if code == "missing":
            c.out += (b"Error: Missing text in the settings.vdat file. Check that your VLANG file"
                      b" is valid if you have modified it.<br />\n")
        c.out += start + (b"Unable to load settings.vdat file.<br />The file appears to be invalid"
                          b" and may have been corrupted.")
        return c, 0
    c.in_category = functools.partial(vela_search.in_category, c)
    c.snippets = functools.partial(vela_search.snippets, c)
    try:
        vela_query.read_params(c, env, stdin)
    except vela_query.Undecodable as reason:
        c.out += b"Content-type: text/html\n\n<H3>%s</H3>\n" % reason.args[0]
        return c, 1
    try:
        vela_page.start_response(c)
        c.query = vela_query.normalise(s, c.typed)
        c.display = vela_query.whole(s, vela_page.html_escape(c.query, 2135))
        c.term_texts, c.has_phrase = vela_query.split_terms(c.query)
        if c.autocomplete:
            vela_search.autocomplete(c)
        else:
            vela_search.open_index_files(c)
            vela_search.load_dictionary(c)
            vela_search.run_search(c)
    except RequestOver as over:
        return c, over.status
    return c, 0


def answer(index_dir, env, argv, stdin, now):
    c, status = run(index_dir, env, argv, stdin, now)
    return bytes(c.out), status
