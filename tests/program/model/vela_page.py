"""What is answered: writers, header and form, template, results page, highlighting, log."""
import os
import time

import vela_index
import vela_query
from vela_text import (atoi, build_url, cstr, decode_join, encode_join, find_no_case, html_escape,
                       percent_encode, pieces, replace_all, script_url_text, url_encode, wildcard,
                       word_equal, wrap32)

HOME = b"https://vela-search.example/"
OPENSEARCH = b"http://a9.com/-/spec/opensearch/1.1/"
ATOM = b"http://www.w3.org/2005/Atom"
VELA = b"https://vela-search.example/ns/response/1.0/"
LONGEST = 10239  # of one formatted call
LINK = 2083

MARKERS = [b"<!--VELA_SHOW_%s-->" % name for name in (
    b"FORMSTART", b"FORMEND", b"SEARCHBOX", b"SEARCHBUTTON", b"RESULTSPERPAGE", b"MATCHOPTIONS",
    b"CATEGORIES", b"CUSTOMMETAOPTIONS", b"HEADING", b"SUMMARY", b"SUGGESTION", b"PAGESCOUNT",
    b"SORTING", b"SEARCHTIME", b"RECOMMENDED", b"PAGENUMBERS", b"CATSUMMARY", b"JAVASCRIPTS",
    b"DATERANGE")]
FORM_ORDER = (17, 0, 2, 3, 4, 5, 6, 7, 18, 1)
MONTHS = b"Jan Feb Mar Apr May Jun Jul Aug Sep Oct Nov Dec".split()
DAYS = b"Mon Tue Wed Thu Fri Sat Sun".split()


class RequestOver(Exception):
    def __init__(self, status=0):
        super().__init__(status)
        self.status = status


class Context:
    def __init__(self):
        self.out = bytearray()
        self.sections = [bytearray() for _ in range(19)]
        self.results = bytearray()
        self.xml = 0
        self.display = b""
        self.log_line = None  # what the run appended to the log
        self.recommended_shown = 0

    def write(self, text):
        self.out += text[:LONGEST]

    def section(self, k, text):
        self.sections[k] += text[:LONGEST]

    def result(self, text):
        self.results += text[:LONGEST]

    def both(self, text):
        """To the results in HTML, to the output in XML."""
        (self.write if self.xml else self.result)(text)

    def path(self, name):
        return self.directory + b"/" + name

    def message(self, text, wrapped=True, line_feed=True):
        if self.xml and wrapped:
            text = b"<vela:error>" + text + b"</vela:error>" + (b"\n" if line_feed else b"")
        self.out += text

    def end(self, status=0):
        fill_template(self)
        raise RequestOver(status)

    def fail(self, text, wrapped=True, line_feed=True, status=0):
        self.message(text, wrapped, line_feed)
        self.end(status)


# ---- template -----------------------------------------------------------------------------------


def include(c, name):
    data = vela_index.read_file(c.path(name))
    if data is None:
        c.write(b"Error: Failed to include file: %s\n<br \\>" % name)
        return
    for piece in pieces(data, 1024):
        c.out += cstr(piece)


def head_scripts(c):
    script = b'<script language="javascript" type="text/javascript">\n'
    if c.s.UseAutoComplete == 1:
        handler = b"function() { VelaAutoComplete_OnLoad('vela_searchbox');}"
        c.write(script)
        c.write(b'var VelaAutoComplete_URL = "%s?vela_ac=1";\n' % script_url_text(c.script_url))
        include(c, b"vela_autocomplete.js")
        c.out += b"if (window.addEventListener) window.addEventListener('load', " + handler
        c.out += b", false);" + b" else if (window.attachEvent) window.attachEvent('onload', "
        c.out += handler + b");" + b" else window['onload'] = " + handler + b"</script>\n"
        c.out += b"<style>\n"
        include(c, b"vela_autocomplete.css")
        c.out += b"</style>\n"
    if c.s.DateRangeSearch == 1:
        c.out += b"<style>\n"
        include(c, b"vela_datepicker.css")
        c.out += b"</style>\n" + script
        include(c, b"vela_datepicker.js")
        c.out += b"</script>\n"


def search_form(c):
    for k in FORM_ORDER:
        c.out += c.sections[k]


def marker_at(c, text):
    """Length of the marker that begins `text`, after writing what it stands for; 0 for none."""
    if text.startswith(b"<!--VELASEARCH-->"):
        search_form(c)
        for k in (8, 9, 16, 10, 11, 14, 12):
            c.out += c.sections[k]
        c.out += c.results + c.sections[15] + c.sections[13]
        return 17
    if text.startswith(b"<!--VELA_SHOW_SEARCHFORM-->"):
        search_form(c)
        return 27
    if text.startswith(b"<!--VELA_SHOW_RESULTS-->"):
        c.out += c.results
        return 24
    if text.startswith(b"<!--VELA_SHOW_QUERY-->"):
        c.out += c.display
        return 22
    for k, marker in enumerate(MARKERS):
        if text.startswith(marker):
            c.out += c.sections[k]
            return len(marker)
    return 0


def fill_template(c):
    if c.xml:
        c.out += b"</channel>\n</rss>"
        return
    needed = c.s.UseAutoComplete == 1 or c.s.DateRangeSearch == 1
    data = vela_index.read_file(c.path(b"search_template.html"))
    if data is None:
        c.out += b"Error: Could not open template file."
        return
    for piece in pieces(data, 1024):
        text = cstr(piece)
        while True:
            if needed and b"</head>" in text:
                head_scripts(c)
                needed = False
            at = text.find(b"<!--VELA")
            if at < 0:
                c.out += text
                break
            c.out += text[:at]
            text = text[at:]
            length = marker_at(c, text)
            if not length:
                c.out += text
                break
            text = text[length:]
    if needed:
        head_scripts(c)


# ---- header and form ----------------------------------------------------------------------------


def start_response(c):
    s = c.s
    c.xml = c.xml_param
    if c.xml == -1001:
        c.xml = 1 if s.UseXML == 1 else 0
    kind = b"text/xml" if c.xml else b"text/html"
    if s.NoCharset:
        c.write(b"Content-type: %s;\n\n" % kind)
    else:
        c.write(b"Content-type: %s; charset=%s\n\n" % (kind, s.Charset))
    c.per_page = min(c.per_page, s.MaxResultsPerQuery)
    c.step = c.per_page if c.per_page >= 1 else 10
    if c.and_mode == -1001:
        c.and_mode = 1 if s.DefaultToAnd == 1 else 0
    c.target = b'target="%s"' % s.LinkTarget if s.UseLinkTarget == 1 else b""
    banner = b"<!--Vela Search Engine %s-->\n" % s.Version
    if c.xml:
        c.write(b'<?xml version="1.0" encoding="%s"?>\n' % s.Charset)
        if s.XMLXSLTURL:
            c.write(b'<?xml-stylesheet type="text/xsl" href="%s"?>\n' % s.XMLXSLTURL)
        c.write(banner)
        c.out += (b'<rss version="2.0" xmlns:opensearch="' + OPENSEARCH + b'" xmlns:atom="' + ATOM
                  + b'" xmlns:vela="' + VELA + b'">\n')
        c.out += b"<channel>\n"
        c.write(b"<title>%s</title>\n" % s.XMLTitle)
        c.write(b"<description>%s</description>\n" % s.XMLDesc)
        c.write(b"<link>%s</link>\n" % s.XMLURL)
        if s.XMLOpenSearchDescURL:
            c.write(b'<opensearch:link rel="search" href="%s" type="application/'
                    b'opensearchdescription+xml" />\n' % s.XMLOpenSearchDescURL)
        if c.master == 1:
            settings_dump(c)
        if s.XMLHighlight == 1:
            s.Highlighting = 1
    else:
        c.result(banner)
    if s.AmendedAnswers == 1:
        c.typed = vela_query.shown_bytes(s, c.typed)
    c.display = vela_query.whole(s, html_escape(c.typed, 2135))
    if s.FormFormat > 0 and not c.xml:
        search_form_sections(c)
    c.meta_only = False
    if not c.typed:
        if s.UseMetaFields and c.query_given:
            c.meta_only = True
        else:
            if not s.UseMetaFields and c.query_given:
                c.section(9, b'<div class="summary">%s</div>\n' % s.text("NO_QUERY"))
            powered_by(c)
            c.end()
    if (c.page - 1) * c.step >= s.MaxResultsPerQuery:
        if c.xml:
            c.write(b"<vela:error>%s</vela:error>" % s.text("MAX_RESULTS"))
        else:
            c.result(b"%s<br />" % s.text("MAX_RESULTS"))
        c.end()


def powered_by(c):
    if c.s.VelaInfo == 1:
        c.section(15, b'\n<center><p><small>%s <a href="' % c.s.text("POWEREDBY"))
        c.section(15, HOME)
        c.section(15, b'" target="_blank"><b>Vela Search Engine</b></a></small></p></center>\n')


DUMP = """UseUTF8 MinWordLen Highlighting HighlightLimit GotoHighlight PdfHighlight
PluginOpenNewWindow DisplayMetaDesc DisplayCatSummary UseDateTime DisplayDate DisplayContext
DisplayTitle DisplayTerms DisplayScore DisplayURL DisplayFilesize LinkTarget UseVelaImage Version
WordSplit SearchAsSubstring ToLowerSearchWords ContextSize MaxContextKeywords AllowExactPhrase
MaxContextSeeks MaxSearchTime WordJoinChars Spelling SpellingWhenLessThan Recommended
RecommendedMax UseCats SearchMultiCats XMLHighlight""".split()


def settings_dump(c):
    s = c.s

    def setting(name):
        value = getattr(s, name)
        c.write(b'<vela:setting name="%s" value="%s" />\n'
                % (name.encode(), b"%d" % value if isinstance(value, int) else value))

    for name in DUMP:
        setting(name)
    if s.UseCats == 1:
        setting("NumCats")
        for name in s.cats[: s.cat_count]:
            c.write(b"<vela:category>%s</vela:category>\n" % name)
    setting("MapAccents")
    if s.accents is not None:
        for name, k in ((b"AccentChars", 0), (b"NormalChars", 1)):
            c.out += b'<vela:setting name="%s">' % name
            c.out += b"".join(pair[k] for pair in s.accents) + b"</vela:setting>\n"


def search_form_sections(c):
    s = c.s
    app = c.section
    all_cats = s.text("FORM_CATEGORY_ALL")
    app(0, b'<form method="get" action="%s" class="vela_searchform">\n'
        % script_url_text(c.script_url))
    app(1, b"</form>\n")
    app(2, b'<label for="vela_searchbox">%s</label><input type="text" name="vela_query" size="20"'
        b' value="%s" id="vela_searchbox" class="vela_searchbox" />\n'
        % (s.text("FORM_SEARCHFOR"), c.display))
    app(3, b'<input type="submit" value="%s" class="vela_button" />\n'
        % s.text("FORM_SUBMIT_BUTTON"))
    hidden = b'<input type="hidden" name="%s" value="%d" />\n'
    if s.FormFormat != 2:
        for name, value in ((b"vela_per_page", c.per_page), (b"vela_and", c.and_mode),
                            (b"vela_sort", c.sort), (b"vela_xml", c.xml)):
            app(0, hidden % (name, value))
        return
    app(4, b'<span class="vela_results_per_page"><label for="vela_per_page">%s</label>\n'
        % s.text("FORM_RESULTS_PER_PAGE"))
    app(4, b'<select name="vela_per_page" id="vela_per_page">\n')
    for choice in (10, 20, 50, 100):
        mark = b' selected="selected"' if choice == c.per_page else b""
        app(4, b"<option%s>%d</option>\n" % (mark, choice))
    app(4, b"</select><br /><br /></span>\n")
    if s.UseCats:
        app(6, b'<span class="vela_categories"><label for="vela_cat">%s</label>'
            % s.text("FORM_CATEGORY"))
        if s.SearchMultiCats:
            app(6, b'<ul>\n<li><input type="checkbox" name="vela_cat[]" id="vela_cat-1"'
                b' value="-1"')
            if c.cats[0] == -1:
                app(6, b' checked="checked"')
            app(6, b'><label for="vela_cat-1">%s</label></input></li>\n' % all_cats)
            for i in range(s.cat_count):
                app(6, b'<li><input type="checkbox" name="vela_cat[]" id="vela_cat%d" value="%d"'
                    % (i, i))
                if c.cats[0] != -1:
                    app(6, b' checked="checked"' * c.cats.count(i))
                app(6, b' /><label for="vela_cat%d">%s</label></li>\n' % (i, s.cats[i]))
            app(6, b"</ul><br /><br /></span>\n")
        else:
            app(6, b'<select name="vela_cat[]" id="vela_cat"><option value="-1">%s</option>'
                % all_cats)
            for i in range(s.cat_count):
                mark = b' selected="selected"' if c.cats[0] == i else b""
                app(6, b'<option value="%d"%s>%s</option>' % (i, mark, s.cats[i]))
            app(6, b"</select>&nbsp;&nbsp;\n")
        app(6, b"</span>\n")
    if s.UseMetaFields:
        app(7, b'<span class="vela_metaform">\n')
        for field, value in zip(s.meta, c.meta_values):
            meta_form_field(c, field, value)
        app(7, b"</span>\n")
    marks = (b"", b' checked="checked"') if c.and_mode else (b' checked="checked"', b"")
    app(5, b'<span class="vela_match"><label for="vela_match">%s</label>\n' % s.text("FORM_MATCH"))
    app(5, b'<label for="vela_match_any"><input type="radio" id="vela_match_any" name="vela_and"'
        b' value="0"%s />%s</label>\n' % (marks[0], s.text("FORM_ANY_SEARCH_WORDS")))
    app(5, b'<label for="vela_match_all"><input type="radio" id="vela_match_all" name="vela_and"'
        b' value="1"%s />%s</label>\n' % (marks[1], s.text("FORM_ALL_SEARCH_WORDS")))
    app(0, hidden % (b"vela_sort", c.sort))
    app(0, hidden % (b"vela_xml", c.xml))
    app(5, b"<br /><br /></span>\n")
    if s.DateRangeSearch == 1:
        order = b"mdy" if s.DateRangeFormat == 1 else b"dmy"
        app(18, b'<span class="vela_daterange">\n')
        for name, label, value in ((b"vela_datefrom", "FORM_DATE_FROM", c.date_from),
                                   (b"vela_dateto", "FORM_DATE_TO", c.date_to)):
            app(18, b'<label for="%s">%s </label><input id="%s" name="%s" value="%s"><input'
                b' type="button" value="%s" onclick="displayDatePicker(\'%s\', false, \'%s\');" />'
                % (name, s.text(label), name, name, html_escape(value),
                   s.text("FORM_DATE_BUTTON"), name, order))
        app(18, b"</span>\n")


def meta_form_field(c, field, value):
    s = c.s
    ident = b"vela_metaform_" + field.name
    everything = b'<option value="-1">%s</option>' % s.text("FORM_CATEGORY_ALL")
    if field.type == 3:
        c.section(7, b'<label for="%s">%s: </label><select multiple id="%s" name="%s[]"'
                  b' class="vela_metaform_multi">\n' % (ident, field.label, ident, field.name))
        c.section(7, everything)
        count, chosen = value
        for j, text in enumerate(field.values):
            marks = b' selected="selected"' * (chosen[:count].count(j) if j < 256 else 0)
            c.section(7, b'<option value="%d"' % j)
            for _ in range(len(marks) // 20):
                c.section(7, b' selected="selected"')
            c.section(7, b">%s</option>" % text)
        c.section(7, b"</select>&nbsp;&nbsp;\n")
        return
    shown = html_escape(value, 65585)
    if field.type == 2:
        c.section(7, b'<label for="%s">%s: </label><select name="%s" id="%s"'
                  b' class="vela_metaform_dropdown">\n' % (ident, field.label, field.name, ident))
        c.section(7, everything)
        selected = atoi(value) if value else -1
        for j, text in enumerate(field.values):
            mark = b' selected="selected"' if j == selected else b""
            c.section(7, b'<option value="%d"%s>%s</option>' % (j, mark, text))
        c.section(7, b"</select>\n")
    elif field.type == 4:
        c.section(7, b'<label for="%s">%s: </label>%s<input type="text" id="%s" name="%s" size="7"'
                  b' value="%s" class="vela_metaform_money" />\n'
                  % (ident, field.label, s.MetaMoneyCurrency, ident, field.name, shown))
    else:
        c.section(7, b'<label for="%s">%s: </label><input type="text" id="%s" name="%s" size="20"'
                  b' value="%s" class="vela_metaform_%s" />\n'
                  % (ident, field.label, ident, field.name, shown,
                     b"numeric" if field.type == 0 else b"text"))


# ---- highlighting -------------------------------------------------------------------------------

PUNCTUATION = frozenset(b"!\"#$%&'()*+,-./:;<=>?@[\\]^_`{|}~")
ALNUM = frozenset(b"abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789")


def next_token(text, at, join):
    """(result, token, where to go on); the place is None when nothing is left after it."""
    if at is None or at >= len(text):
        return 0, b"", None
    start = i = at
    while i < len(text):
        if i - start == 400:
            return 1, text[start:i], None
        byte = text[i]
        stop = byte == 0x20
        if byte in PUNCTUATION:
            stop = True
            if byte == 0x26 and text[i + 1 : i + 2] == b"#":
                end = text.find(b";", i)
                if 0 <= end and end + 1 - i < 8:
                    if i == start:
                        return 2, text[i : end + 1], end + 1
                    return 1, text[start:i], i
            if byte in join:
                after = text[i + 1 : i + 2]
                stop = not (not after or after[0] in ALNUM or after in join)
        if stop:
            if i > start:
                return 1, text[start:i], i
            return 2, text[i : i + 1], i + 1
        i += 1
    return 1, text[start:i], None


def term_matches(s, term, text):
    if term.wild:
        return wildcard(term.text, text, s.ToLowerSearchWords != 0)
    return word_equal(s, term.text, text)


def highlight(c, text):
    s = c.s
    if s.Highlighting == 0 or not text:
        return text
    join = s.WordJoinChars
    source = decode_join(text, join)
    out = bytearray()
    at = 0
    while True:
        kind, token, at = next_token(source, at, join)
        if kind == 0:
            break
        marked = False
        if token != b" ":
            for term in c.highlights:
                if term.phrase is None:
                    if term_matches(s, term, token) or word_equal(s, term.text, token):
                        out += b"[;!]" + token + b"[!;]"
                        marked = True
                        break
                    continue
                collected, after = phrase_at(s, source, term.phrase, token, at, join)
                if collected is not None:
                    out += b"[;!]" + collected + b"[!;]"
                    at = after
                    marked = True
                    break
        if not marked:
            out += token
    done = encode_join(bytes(out), join)
    return done.replace(b"[;!]", b'<span class="highlight">').replace(b"[!;]", b"</span>")


def phrase_at(s, source, words, token, at, join):
    if not words or not word_equal(s, words[0], token):
        return None, None
    collected = bytearray(token)
    for word in words[1:]:
        while True:
            kind, token, at = next_token(source, at, join)
            if kind == 0:
                return None, None
            collected += token
            if kind == 1:
                break
        if not word_equal(s, word, token):
            return None, None
    return bytes(collected), at


# ---- results page -------------------------------------------------------------------------------


def heading(c):
    s = c.s
    c.cat_text = b""
    real = s.UseCats and c.cats[0] != -1
    names = []
    if real:
        for number in c.cats:
            if 0 <= number < s.cat_count:
                names.append(s.cats[number])
                c.cat_text = (c.cat_text + b"&amp;vela_cat%%5B%%5D=%d" % number)[:LINK]
    if c.xml:
        c.write(b"<vela:searchquery>%s</vela:searchquery>\n" % c.display)
        if real:
            for name in names:
                c.write(b"<vela:searchcategory>%s</vela:searchcategory>\n" % name)
        elif s.UseCats:
            c.write(b"<vela:searchcategory>All</vela:searchcategory>\n")
        return
    c.section(8, b'<div class="searchheading">')
    c.section(8, b"%s %s" % (s.text("RESULTS_FOR"), c.display))
    if real:
        c.section(8, b" %s " % s.text("RESULTS_IN_CATEGORY"))
        for i, name in enumerate(names):
            if i:
                c.section(8, b", ")
            c.section(8, b'"%s"' % name)
    elif s.UseCats:
        c.section(8, b" %s" % s.text("RESULTS_IN_ALL_CATEGORIES"))
    c.section(8, b"<br /><br /></div>\n")
    c.result(b'<div class="results">\n')


def count_phrase(c, count, label):
    s = c.s
    text = s.text(label)
    if count == 0:
        c.section(9, b"%s %s " % (s.text("NO_RESULTS"), text))
    elif count == 1:
        c.section(9, b"%d %s %s " % (1, s.text("RESULT"), text))
    else:
        if c.limit_reached:
            c.section(9, b"%s " % s.text("MORETHAN"))
        c.section(9, b"%d %s %s " % (count, s.text("RESULTS"), text))


def summary(c):
    s = c.s
    c.section(9, b'<div class="summary">\n')
    if c.skipped_terms:
        c.section(9, s.text("SKIPPED_FOLLOWING_WORDS") + b" ")
        for i, term in enumerate(c.skipped_terms):
            c.section(9, (b", " if i else b"") + b'"' + html_escape(term) + b'"')
        c.section(9, b"<br /><br />")
        if c.has_phrase and s.AllowExactPhrase == 1:
            c.section(9, b"%s<br /><br />" % s.text("SKIPPED_PHRASE"))
    if c.limit_reached:
        c.section(9, b"%s<br /><br />" % s.text("PHRASE_CONTAINS_COMMON_WORDS"))
    if c.total > 0:
        if len(c.terms) > 1:
            count_phrase(c, c.full_match, "SUMMARY_FOUND_CONTAINING_ALL_TERMS")
            if c.and_mode != 1 and c.total - c.full_match > 0:
                count_phrase(c, c.total - c.full_match, "SUMMARY_FOUND_CONTAINING_SOME_TERMS")
        else:
            count_phrase(c, c.total, "SUMMARY_FOUND")
    else:
        c.section(9, s.text("SUMMARY_NO_RESULTS_FOUND"))
        finding = [term for term in c.terms if not vela_query.is_site(term.text)]
        if s.PlainQueries == 1 and finding and all(t.text.startswith(b"-") for t in finding):
            c.section(9, b" This search only says what to leave out. Please add a word to look for.")
    c.section(9, b"<br />\n</div>\n")


def link(c, query):
    return (c.s.LinkBackURL + c.s.separator + query[:LINK])[:LINK]


def broadening(c):
    s = c.s
    if c.total >= 3:
        return
    if c.and_mode == 1 and len(c.terms) > 1:
        query = (b"vela_query=%s%s&amp;vela_per_page=%d%s%s&amp;vela_xml=%d&amp;vela_and=0"
                 b"&amp;vela_sort=%d" % (c.encoded, c.cat_text, c.per_page, c.date_text,
                                         c.meta_text, c.xml, c.sort))
        text = s.text("ANY_OF_TERMS")
    elif s.UseCats and c.cats[0] != -1:
        query = (b"vela_query=%s%s&amp;vela_per_page=%d&amp;vela_cat=-1%s&amp;vela_xml=%d"
                 b"&amp;vela_and=%d&amp;vela_sort=%d" % (c.encoded, c.date_text, c.per_page,
                                                         c.meta_text, c.xml, c.and_mode, c.sort))
        text = s.text("ALL_CATS")
    else:
        return
    c.section(10, b'<div class="suggestion"><br />%s <a href="%s">%s</a>.</div>'
              % (s.text("POSSIBLY_GET_MORE_RESULTS"), link(c, query), text))


def category_summary(c):
    s = c.s
    if c.cat_totals is None or c.total == 0:
        return
    if c.xml:
        for name, count in zip(s.cats, c.cat_totals):
            if count > 0 and count != c.total:
                c.write(b"<vela:categorySummary>\n")
                c.write(b"<vela:categoryName>%s</vela:categoryName>\n" % name)
                c.write(b"<vela:categoryCount>%d</vela:categoryCount>\n" % count)
                c.write(b"</vela:categorySummary>\n")
        return
    c.section(16, b'<div class="cat_summary"><br />%s<ul>' % s.text("CAT_SUMMARY"))
    for i, count in enumerate(c.cat_totals):
        if count > 0:
            query = (b"vela_query=%s%s&amp;vela_cat=%d%s&amp;vela_per_page=%d&amp;vela_xml=%d"
                     b"&amp;vela_and=%d&amp;vela_sort=%d"
                     % (c.encoded, c.date_text, i, c.meta_text, c.per_page, c.xml, c.and_mode,
                        c.sort))
            c.section(16, b'<li><a href="%s">%s</a>' % (link(c, query), s.cats[i]))
            c.section(16, b" (%d)</li>" % count)
    c.section(16, b"</ul></div>")


def spelling_links(c):
    s = c.s
    if not c.suggestions:
        return
    if c.xml:
        for text in c.suggestions:
            if c.suggested_as_typed:
                text = html_escape(text)
            c.write(b"<vela:spelling>%s</vela:spelling>\n" % text)
        return
    for i, text in enumerate(c.suggestions):
        mode = 0 if len(c.terms) > 1 else c.and_mode
        asked = url_encode(text) if c.suggested_as_typed else text.replace(b" ", b"+")
        if c.suggested_as_typed:
            text = html_escape(text)
        query = (b"vela_query=%s%s&amp;vela_per_page=%d%s%s&amp;vela_and=%d&amp;vela_sort=%d"
                 % (asked, c.cat_text, c.per_page, c.date_text, c.meta_text,
                    mode, c.sort))
        form = b' %s <a href="%s">%s</a>'
        if i == 0:
            form = b'<div class="suggestion"><br />%s <a href="%s">%s</a>'
        c.section(10, form % (s.text("OR" if i else "DIDYOUMEAN"), link(c, query), text))
    c.section(10, b"?</div>")


def sorting_links(c):
    s = c.s
    if c.total <= 1 or c.xml or s.UseDateTime != 1:
        return

    def to(sort):
        return link(c, b"vela_query=%s%s&amp;vela_page=%d&amp;vela_per_page=%d%s%s&amp;vela_and=%d"
                    b"&amp;vela_xml=%d&amp;vela_sort=%d"
                    % (c.encoded, c.cat_text, c.page, c.per_page, c.date_text, c.meta_text,
                       c.and_mode, c.xml, sort))

    c.section(12, b'<div class="sorting">')
    if c.sort < 1:
        c.section(12, b'<b>%s</b> / <a href="%s">%s</a>'
                  % (s.text("SORTEDBY_RELEVANCE"), to(1), s.text("SORTBY_DATE")))
    else:
        c.section(12, b'<a href="%s">%s</a> / ' % (to(0), s.text("SORTBY_RELEVANCE")))
        label = "SORTEDBY_DATE" if c.sort == 1 else "SORTEDBY_DATE_ASC"
        c.section(12, b'<a href="%s">%s</a>' % (to(wrap32(c.sort + 1)), s.text(label)))
    c.section(12, b"</div>\n")


def navigation(c, pages):
    s = c.s
    if c.xml or pages <= 1:
        return

    def to(page):
        return link(c, b"vela_query=%s%s&amp;vela_page=%d&amp;vela_per_page=%d%s%s&amp;vela_and=%d"
                    b"&amp;vela_sort=%d&amp;vela_xml=%d"
                    % (c.encoded, c.cat_text, page, c.per_page, c.date_text, c.meta_text,
                       c.and_mode, c.sort, c.xml))

    first = max(1, c.page - 10)
    last = min(c.page + 10, pages, pages_within_limit(c))
    c.section(15, b'<div class="result_pages">%s ' % s.text("RESULT_PAGES"))
    if c.page > 1:
        c.section(15, b'<a href="%s">&lt;&lt; %s</a> '
                  % (to(c.page - 1), s.text("RESULT_PAGES_PREVIOUS")))
    for page in range(first, last + 1):
        if page == c.page:
            c.section(15, b"%d " % page)
        else:
            c.section(15, b'<a href="%s">%d</a> ' % (to(page), page))
    if c.page != last:
        c.section(15, b'<a href="%s">%s &gt;&gt;</a> '
                  % (to(wrap32(c.page + 1)), s.text("RESULT_PAGES_NEXT")))
    c.section(15, b"</div>")


def pages_within_limit(c):
    if c.s.AmendedAnswers == 1:
        return -(-c.s.MaxResultsPerQuery // c.step)
    return int(c.s.MaxResultsPerQuery / c.step)


def split_page_line(line):
    """URL, title, description, image of a line, or None."""
    if line is None:
        return None
    parts = line.split(b"|", 4)
    return parts[:4] if len(parts) == 5 else None


def pdf_url(c, url):
    query = percent_encode(c.query.replace(b'"', b""), b"<>&'")
    return b"%s#search=%%22%s%%22" % (url, query)


def highlight_part(c):
    sub = b"vela_highlightsub=" if c.s.SearchAsSubstring == 1 else b"vela_highlight="
    return sub


def categories_of(c, page):
    return [i for i in range(c.s.cat_count) if c.in_category(page, i)]


def result_block(c, index, entry):
    s = c.s
    page = entry.page
    c.pagedata.at = c.info.data_offset(page)
    texts = split_page_line(c.pagedata.line())
    if texts is None:
        c.fail(b"Error: Corrupted or invalid index files. Please re-index and try again.")
    url, title, description, image = texts
    url, image = url[:LINK], image[:LINK]
    target = url
    if s.GotoHighlight == 1:
        target = build_url(url, highlight_part(c), c.encoded)
    if s.PdfHighlight == 1 and find_no_case(s, url, b".pdf") >= 0:
        target = pdf_url(c, url)
    target = target[:LINK]
    attribute = c.target
    if s.PluginOpenNewWindow == 1 and c.info.file_type(page) >= s.FileTypePluginStart:
        attribute = b'target="_blank"'
    shows_context = s.DisplayContext == 1 and not c.site_only and not c.meta_only
    if c.xml:
        xml_item(c, entry, texts, url, target, image, shows_context)
        return
    put = c.result
    anchor = b'<a href="%s" %s>' % (target, attribute)
    put(b'<div class="result_altblock">\n' if index % 2 else b'<div class="result_block">\n')
    if s.UseVelaImage == 1 and image:
        put(b'<div class="result_image">')
        put(anchor)
        put(b'<img src="%s" alt="" class="result_image" />' % image)
        put(b"</a></div>")
    put(b'<div class="result_title">')
    if s.DisplayNumber == 1:
        put(b"<b>%d.</b>&nbsp;" % (index + 1))
    put(anchor)
    put(highlight(c, title) if s.DisplayTitle == 1 else url)
    put(b"</a>")
    if s.UseCats:
        put(b'<span class="category">')
        for i in range(s.cat_count):
            if c.in_category(page, i):
                put(b" [%s]" % s.cats[i])
        put(b"</span>")
    put(b"</div>\n")
    if s.UseMetaFields == 1 and s.DisplayMetaFields == 1:
        for field, value in zip(s.meta, c.info.meta_values(page)):
            if value is None:
                continue
            put(b'<div class="result_custommeta">')
            put(b'<span class="result_metaname_%s">%s: </span>' % (field.name, field.name))
            put(b'<span class="result_metavalue_%s">%s</span>'
                % (field.name, meta_text(s, field, value)))
            put(b"</div>")
    if s.DisplayMetaDesc == 1 and len(description) > 2:
        put(b'<div class="description">')
        put(highlight(c, description))
        put(b"</div>\n")
    if shows_context:
        c.snippets(entry, title)
    parts = []
    if s.DisplayTerms == 1:
        parts.append(b"%s %d" % (s.text("RESULT_TERMS_MATCHED"), wrap32(entry.terms)))
    if s.DisplayScore == 1:
        parts.append(b"%s %d" % (s.text("RESULT_SCORE"), entry.score))
    date = c.info.date(page)
    if s.DisplayDate == 1 and date >= 1:
        t = time.gmtime(date)
        parts.append(b"%02d %s %04d" % (t.tm_mday, MONTHS[t.tm_mon - 1], t.tm_year))
    if s.DisplayFilesize == 1:
        parts.append(b"%dk" % max(1, c.info.file_size(page) >> 10))
    if s.DisplayURL == 1:
        shown = url
        if 0 < s.TruncateShowURL < len(url):
            shown = url[: s.TruncateShowURL] + b"..."
        parts.append(b"%s %s" % (s.text("RESULT_URL"), shown))
    put(b'<div class="infoline">%s</div>\n' % b"&nbsp; - &nbsp;".join(parts))
    put(b"</div>\n")


def money_text(s, value):
    if s.MetaMoneyShowDec:
        return b"%s%01.2f" % (s.MetaMoneyCurrency, value / 100.0)
    return b"%s%d" % (s.MetaMoneyCurrency, abs(value) // 100 * (1 if value >= 0 else -1))


def meta_text(s, field, value):
    if field.type == 0:
        return b"%d" % value
    if field.type == 2:
        return field.values[value]
    if field.type == 3:
        return b", ".join(field.values[i] for i in value)
    if field.type == 4:
        return money_text(s, value)
    return value


def xml_item(c, entry, texts, url, target, image, shows_context):
    s = c.s
    page = entry.page
    title, description = texts[1], texts[2]
    put = c.write
    put(b"<item>\n")
    if s.UseVelaImage == 1 and image:
        put(b"<vela:imageURL>%s</vela:imageURL>" % image)
    put(b"<title>%s</title>\n" % title)
    put(b"<link>%s</link>\n" % target)
    if s.UseCats:
        for i in range(s.cat_count):
            if c.in_category(page, i):
                put(b"<category>%s</category>\n" % s.cats[i])
    put(b"<vela:filetype>%d</vela:filetype>\n" % c.info.file_type(page))
    if s.UseMetaFields == 1 and s.DisplayMetaFields == 1:
        for field, value in zip(s.meta, c.info.meta_values(page)):
            if value is not None:
                put(b"<vela:%s>%s</vela:%s>\n"
                    % (field.name, meta_text(s, field, value), field.name))
    if s.DisplayMetaDesc == 1 and len(description) > 2:
        put(b"<description>%s</description>\n" % description)
    if shows_context:
        c.snippets(entry, title)
    if s.DisplayTerms == 1:
        put(b"<vela:termsMatched>%d</vela:termsMatched>\n" % wrap32(entry.terms))
    if s.DisplayScore == 1:
        put(b"<vela:score>%d</vela:score>\n" % entry.score)
    date = c.info.date(page)
    if s.DisplayDate == 1 and date >= 1:
        t = time.gmtime(date)
        put(b"<pubDate>%s, %02d %s %04d %02d:%02d:%02d UTC</pubDate>\n"
            % (DAYS[t.tm_wday], t.tm_mday, MONTHS[t.tm_mon - 1], t.tm_year, t.tm_hour, t.tm_min,
               t.tm_sec))
        if c.master == 1:
            put(b"<vela:datetime>%d</vela:datetime>\n" % date)
    if s.DisplayFilesize == 1:
        put(b"<vela:fileSize>%dk</vela:fileSize>\n" % 
            (c.info.file_size(page) if s.AmendedAnswers == 1 else wrap32(c.info.file_size(page))))
    put(b"</item>\n")


def results_page(c, entries):
    s = c.s
    if c.xml:
        start = 1
        if c.page >= 2 and c.total > 0:
            start = c.step * (c.page - 1) + 1
        c.write(b"<opensearch:totalResults>%d</opensearch:totalResults>\n" % c.total)
        c.write(b"<opensearch:startIndex>%d</opensearch:startIndex>\n" % wrap32(start))
        c.write(b"<opensearch:itemsPerPage>%d</opensearch:itemsPerPage>\n" % c.per_page)
        category_summary(c)
        spelling_links(c)
    else:
        summary(c)
        broadening(c)
        category_summary(c)
        spelling_links(c)
    pages = -(-c.total // c.step)
    if pages > 1 and not c.xml:
        c.section(11, b'<div class="result_pagescount"><br />%d %s</div>\n'
                  % (pages, s.text("PAGES_OF_RESULTS")))
    sorting_links(c)
    first = c.step * (c.page - 1) if c.page > 1 else 0
    for index in range(first, min(len(entries), first + c.step)):
        result_block(c, index, entries[index])
    navigation(c, pages)
    powered_by(c)
    if not c.xml:
        c.result(b"</div>\n")


# ---- search time and log ------------------------------------------------------------------------

ERRORS = {2: b"No such file or directory. ", 9: b"Bad file number. ",
          12: b"Not enough memory for operation. ", 13: b"Permission denied. ",
          17: b"File exists. ", 18: b"Cross device link. ", 22: b"Invalid argument. ",
          24: b"Too many open files. ", 28: b"No space left on device. ",
          35: b"Resource deadlock. "}


def open_error(path):
    """The error number that opening `path` for appending would give, 0 when it would open."""
    try:
        # Not created here: the program under test is the one that writes.
        if os.path.isdir(path):
            return 21
        parent = os.path.dirname(path) or b"."
        os.stat(parent + b"/.")
        if path.endswith(b"/"):
            return 21
        if len(os.path.basename(path)) > 255:
            return 36
        return 0
    except OSError as error:
        return error.errno


def finish(c):
    s = c.s
    if s.Timing == 1:
        if c.xml:
            c.write(b"<vela:searchtime>%.3f</vela:searchtime>\n" % 0.0)
        else:
            c.section(13, b'<div class="searchtime"><br /><br />%s %.3f %s</div>\n'
                      % (s.text("SEARCH_TOOK"), 0.0, s.text("SECONDS")))
    if s.Logging == 1:
        log(c)
    fill_template(c)


def log(c):
    s = c.s
    query, fits = replace_all(c.asked, b'"', b'""', 2085)
    if not fits:
        return
    query = bytes(0x20 if b < 0x20 or b == 0x7F else b for b in query)
    t = time.gmtime(c.now)
    line = b"%d-%02d-%02d, %02d:%02d:%02d, %s, \"%s\", Matches = %d" % (
        t.tm_year, t.tm_mon, t.tm_mday, t.tm_hour, t.tm_min, t.tm_sec, c.remote, query, c.total)
    line += b", AND" if c.and_mode == 1 else b", OR"
    line += b", PerPage = %d, PageNum = %d" % (c.per_page, 0 if c.page_defaulted else c.page)
    if not s.UseCats:
        line += b", No cats"
    elif c.cats[0] == -1:
        line += b', "Cat = All"'
    else:
        names = [s.cats[i] for i in c.cats if 0 <= i < s.cat_count]
        line += b', "Cat = ' + b"; ".join(names) + b'"'
    line += b", Time = %.3f, Rec = %d\r\n" % (0.0, c.recommended_shown)
    error = open_error(c.path(s.LogFileName))
    if error:
        text = ERRORS.get(error, b"Unknown file error: %d. " % error)
        c.message(text + b"Log filename and path not found (%s). Check that you specified the"
                  b" correct log filename in your Indexer settings.<br />" % s.LogFileName)
    else:
        c.log_line = line
