#!/usr/bin/env python3
"""Measures how many pages with some form of a word are found by its other forms.

    bench/inflections.py CORPUS [--bin build/release/bin]

CORPUS is a folder that is filled once with the Debian FAQ (apt-get download) in English, German and
French, which are one site here, and in Korean. Each form of each word of bench/questions/forms-*.txt
is asked for; shown is the share of the pages with any form of the word, of those in its language,
that is found, and how many others were, for each stemming of the site. Of Korean words the pages
count on which a word of the text begins with them.
"""
import argparse
import html
import re
import shutil
import tempfile
from pathlib import Path

import languages

FAQ = "usr/share/doc/debian/FAQ"
languages.SITES |= {
    "faq": {
        "debian-faq": (FAQ, "all"),
        "debian-faq-de": (FAQ + "/de", "de"),
        "debian-faq-fr": (FAQ + "/fr", "fr"),
    },
    "ko": {"debian-faq-ko": (FAQ + "/ko", "ko")},
}


def words(language):
    path = languages.HERE / "questions" / f"forms-{language}.txt"
    for line in path.read_text(encoding="utf-8").splitlines():
        if not line.startswith("#"):
            yield line.split()


def texts(site):
    pages = {}
    for path in site.rglob("*.html"):
        text = re.sub(r"<(script|style)\b.*?</\1>", " ",
                      path.read_text(encoding="utf-8", errors="replace"), flags=re.S)
        name = str(path.relative_to(site))[: -len(".html")]
        pages[name] = html.unescape(re.sub(r"<[^>]*>", " ", text)).lower()
    return pages


def measure(binaries, site, config, language, pages):
    begins = r"(?<![\w])"
    ends = "" if language == "ko" else r"(?!\w)"
    found = wanted = others = 0
    with tempfile.TemporaryDirectory() as work:
        index = languages.build(binaries, site, Path(work), config)
        for forms in words(language):
            pattern = re.compile("|".join(begins + re.escape(f.lower()) + ends for f in forms))
            holding = {page for page, text in pages.items() if pattern.search(text)}
            for form in forms:
                links = set(languages.ask(binaries, index, form)[0]) & pages.keys()
                found += len(links & holding)
                others += len(links - holding)
                wanted += len(holding)
    return found, wanted, others


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n", 1)[0])
    parser.add_argument("corpus", type=Path)
    parser.add_argument("--bin", type=Path, default=Path("build/release/bin"))
    options = parser.parse_args()
    binaries = options.bin.resolve()
    korean = languages.fetch(options.corpus, "ko")
    found, wanted, others = measure(binaries, korean, "", "ko", texts(korean))
    print(f"ko: {found} of {wanted} pages, {others} others")
    faq = languages.fetch(options.corpus, "faq")
    all_pages = faq / "all"
    if all_pages.exists():  # the package has the English pages beside folders of other languages
        (faq / "en").mkdir()
        for page in all_pages.glob("*.en.html"):
            page.rename(faq / "en" / page.name)
        shutil.rmtree(all_pages)
    pages = texts(faq)
    for stemming in ("off", "english", "german", "french"):
        config = f'[index]\nstemming = "{stemming}"\n'
        shares = []
        for language in ("en", "de", "fr"):
            own = {page: text for page, text in pages.items() if page.startswith(language + "/")}
            found, wanted, others = measure(binaries, faq, config, language, own)
            shares.append(f"{language} {100 * found / wanted:.0f} %, {others} others")
        print(f"{stemming}: " + "; ".join(shares))


if __name__ == "__main__":
    main()
