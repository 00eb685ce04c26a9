#!/usr/bin/env python3
"""Every language file is whole and in the right form, is built into the indexer, and its texts reach
the page unchanged."""

import re
import shutil
import subprocess
import unicodedata
import unittest

import support

FOLDER = support.PROJECT / "assets/languages"
KEYS_HEADER = support.PROJECT / "src/settings/language_strings.h"
TEMPLATES = sorted((support.PROJECT / "assets").glob("search_template*.html"))
LINE = re.compile(r'((?:STR|TEMPLATE)_[A-Z_]+) = "([^"]*)"')
LANGUAGES = sorted(path.stem for path in FOLDER.glob("*.vlang"))

# Single-byte encodings that a site may have instead of UTF-8, by script; without the typographic
# signs of the windows sets.
ENCODINGS = ["iso-8859-1", "iso-8859-2", "iso-8859-3", "iso-8859-4", "iso-8859-5", "iso-8859-7",
             "iso-8859-8", "iso-8859-9", "iso-8859-15"]

# Words may be the same in two languages ("Score:"); a text of more bytes than this is a sentence or
# a phrase, and the same only when it was left untranslated.
LONGEST_SHARED = 10


def program_keys():
    source = KEYS_HEADER.read_text(encoding="utf-8")
    table = source[source.index("kLanguageKeys = {"):]
    return re.findall(r'"(STR_[A-Z_]+)"', table[:table.index("};")])


def further_keys():
    """Those that a file of the site's own need not have."""
    source = KEYS_HEADER.read_text(encoding="utf-8")
    table = source[source.index("kFurtherTexts[] = {"):]
    return re.findall(r'{"(STR_[A-Z_]+)"', table[:table.index("};")])


def template_keys():
    """What the built-in templates leave open, in the order in which it is first met."""
    pages = "".join(path.read_text(encoding="utf-8") for path in TEMPLATES)
    return list(dict.fromkeys(re.findall(r"\{\{([^}]*)\}\}", pages)))


def letters_lacking(encoding, text):
    return {c for c in text if not c.encode(encoding, errors="ignore")}


def pairs(language):
    lines = (FOLDER / f"{language}.vlang").read_bytes().decode("utf-8").splitlines()
    return [match.groups() for match in map(LINE.fullmatch, lines) if match]


class LanguageFiles(unittest.TestCase):
    def test_there_are_languages(self):
        self.assertIn("english", LANGUAGES)
        self.assertGreaterEqual(len(LANGUAGES), 10)

    def test_there_are_49_keys_and_those_of_the_templates(self):
        self.assertEqual(len(set(program_keys())), 49)
        self.assertIn("STR_CORRECTED_TO", further_keys())
        self.assertEqual(template_keys(), ["TEMPLATE_LANG", "TEMPLATE_DIR", "TEMPLATE_SEARCH",
                                           "TEMPLATE_REMOVE", "TEMPLATE_NO_SUCH_PAGE",
                                           "TEMPLATE_FIRST_PAGE", "TEMPLATE_OPTIONS"])

    def test_lines_are_utf8_and_of_one_form(self):
        for language in LANGUAGES:
            content = (FOLDER / f"{language}.vlang").read_bytes()
            self.assertFalse(content.startswith(b"\xEF\xBB\xBF"), language)
            self.assertTrue(content.endswith(b"\n"), language)
            # Decoding is strict: it raises at the first byte that is no UTF-8.
            for number, line in enumerate(content.decode("utf-8")[:-1].split("\n"), 1):
                with self.subTest(f"{language}.vlang:{number}"):
                    self.assertRegex(line, LINE.pattern + r"\Z")
                    # The longest line that the search program's reader keeps whole.
                    self.assertLessEqual(len(line.encode()), 2046)

    def test_every_key_stands_once_in_the_order_of_the_programs(self):
        for language in LANGUAGES:
            with self.subTest(language):
                self.assertEqual([key for key, _ in pairs(language)],
                                 program_keys() + further_keys() + template_keys())

    def test_a_single_byte_encoding_has_all_letters(self):
        for language in LANGUAGES:
            with self.subTest(language):
                text = "".join(value for _, value in pairs(language))
                lacking = min((letters_lacking(encoding, text) for encoding in ENCODINGS), key=len)
                # A script that no such encoding has lacks most of its letters in each.
                if len(lacking) < len(set(text)) / 2:
                    self.assertEqual(lacking, set())

    def test_the_languages_of_the_pages_differ(self):
        codes = [dict(pairs(language))["TEMPLATE_LANG"] for language in LANGUAGES]
        self.assertEqual(len(set(codes)), len(codes))
        for code in codes:
            self.assertRegex(code, r"^[a-z]{2,3}(-[A-Za-z0-9]+)*$")

    def test_values(self):
        for language in LANGUAGES:
            for key, value in pairs(language):
                with self.subTest(language, key=key):
                    # The program puts the blanks between the pieces itself.
                    self.assertEqual(value, value.strip())
                    self.assertNotEqual(value, "")
                    self.assertNotRegex(value, r"[<>&\x00-\x1f\x7f-\x9f]")
                    self.assertNotIn("  ", value)

    def test_nothing_was_left_in_english(self):
        english = dict(pairs("english"))
        for language in set(LANGUAGES) - {"english"}:
            same = [key for key, value in pairs(language)
                    if value == english[key] and len(value.encode()) > LONGEST_SHARED]
            self.assertEqual(same, [], language)

    def test_colons_and_stops_are_as_in_english(self):
        # A label ends in a colon and a sentence in a full stop in every language; what the program
        # continues does not.
        english = dict(pairs("english"))
        for language in LANGUAGES:
            for key, value in pairs(language):
                if key == "STR_SEARCH_TOOK":
                    continue  # "Duration: 0.012 s." is as good.
                with self.subTest(language, key=key):
                    value = value.replace("\uff1a", ":").replace("\u3002", ".")
                    for mark in ":.":
                        if key == "STR_RESULTS" and mark == ".":
                            continue  # May be an abbreviation.
                        if key == "STR_CORRECTED_TO" and mark == ":":
                            continue  # The query may have to stand apart from the sentence.
                        self.assertEqual(value.endswith(mark), english[key].endswith(mark), value)

    def test_the_direction_is_that_of_the_script(self):
        for language in LANGUAGES:
            texts = dict(pairs(language))
            letters = [unicodedata.bidirectional(c) for c in "".join(texts.values()) if c.isalpha()]
            right = sum(kind in ("R", "AL") for kind in letters) > len(letters) / 2
            self.assertEqual(texts["TEMPLATE_DIR"], "rtl" if right else "ltr", language)

    def test_french_colons_follow_a_space_that_does_not_break(self):
        for key, value in pairs("french"):
            self.assertNotRegex(value, r"[^\u00a0][:;?!]", key)


def build_index(site, language):
    index = support.WORK / language
    shutil.rmtree(index, ignore_errors=True)
    subprocess.run([support.BIN / "vela_index", "--site", site, "--base-url", "/", "--out", index,
                    "--language", language], check=True, stdout=subprocess.DEVNULL)
    shutil.copy2(support.BIN / "vela_search", index / "search.cgi")
    return index


class LanguagesOnThePage(unittest.TestCase):
    def test_texts_reach_the_page(self):
        site = support.WORK / "site"
        site.mkdir(parents=True, exist_ok=True)
        for number in range(12):
            (site / f"{number}.html").write_text(
                f"<html><head><title>Page {number}</title></head>"
                f"<body><p>lighthouse {'keeper' if number else 'rocks and a lonely keeper'}</p>"
                "</body></html>", encoding="utf-8")
        for language in LANGUAGES:
            index = build_index(site, language)
            texts = {key.removeprefix("STR_"): value for key, value in pairs(language)}

            def page(query, **parameters):
                status, _, body = support.run_cgi(
                    index, support.query_string(query, **parameters))
                self.assertEqual(status, 0)
                return body.decode("utf-8")

            with self.subTest(language):
                many = page("lighthouse")
                self.assertIn(f'<html lang="{texts["TEMPLATE_LANG"]}" '
                              f'dir="{texts["TEMPLATE_DIR"]}"', many)
                self.assertIn(f"<title>{texts['TEMPLATE_SEARCH']} lighthouse</title>", many)
                self.assertIn(f"<summary>{texts['TEMPLATE_OPTIONS']}</summary>", many)
                self.assertIn(f"{texts['RESULTS_FOR']} lighthouse", many)
                self.assertIn(f"12 {texts['RESULTS']} {texts['SUMMARY_FOUND']} ", many)
                self.assertIn(f"2 {texts['PAGES_OF_RESULTS']}", many)
                self.assertIn(f"{texts['RESULT_PAGES_NEXT']} &gt;&gt;", many)
                self.assertIn(f"value=\"{texts['FORM_SUBMIT_BUTTON']}\"", many)

                one = page("lonely rocks", vela_and=1)
                self.assertIn(
                    f"1 {texts['RESULT']} {texts['SUMMARY_FOUND_CONTAINING_ALL_TERMS']} ", one)
                self.assertRegex(one, re.escape(texts["POSSIBLY_GET_MORE_RESULTS"])
                                 + ' <a href="[^"]*">' + re.escape(texts["ANY_OF_TERMS"])
                                 + r"</a>\.")

                some = page("lonely keeper", vela_and=0)
                self.assertIn(
                    f"11 {texts['RESULTS']} {texts['SUMMARY_FOUND_CONTAINING_SOME_TERMS']} ", some)

                none = page("submarine")
                self.assertIn(texts["SUMMARY_NO_RESULTS_FOUND"], none)


if __name__ == "__main__":
    unittest.main()
