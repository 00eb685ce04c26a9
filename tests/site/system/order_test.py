#!/usr/bin/env python3
"""The order of results on small sites that are made for one question each."""

import shutil
import unittest

import support

FILLER = ("heron weir lantern garden bridge river meadow willow otter kettle barrel ladder "
          "window carpet basket feather").split()


def filler(words, start=0):
    """So many words, which say nothing to any of the questions."""
    return " ".join(FILLER[(start + i) % len(FILLER)] for i in range(words))


def page(title, body, heading=None):
    return (f"<!DOCTYPE html><html lang=en><title>{title}</title>"
            f"<h1>{heading or title}</h1>{body}</html>")


class Order(unittest.TestCase):
    def first(self, name, pages, query, others="Chapter {}", **parameters):
        """The addresses of the results, best first."""
        site = support.WORK / f"site_{name}"
        shutil.rmtree(site, ignore_errors=True)
        site.mkdir(parents=True)
        for path, content in pages.items():
            (site / path).write_text(content, encoding="utf-8")
        # Others, so that words of the pages above are rare.
        for number in range(20):
            text = f"<p>Read this about the file: {filler(60, number)}."
            (site / f"z{number:02}.html").write_text(page(others.format(FILLER[number % 16]), text),
                                                     encoding="utf-8")
        index = support.build_index(site, f"index_{name}")
        results = support.search(index, query, **parameters)
        return [address.partition("#")[0] for address, _ in results]

    def test_the_command_before_those_that_begin_like_it(self):
        body = "<p>To merge, run it; a merge joins. Merge again, merge more. " + filler(80)
        pages = {
            "git-merge-base.html": page("git-merge-base(1)", body),
            "git-merge-file.html": page("git-merge-file(1)", body + "<p>merge merge merge"),
            "git-merge.html": page("git-merge(1)", "<p>Joins two lines. " + filler(90)),
            "git-mergetool.html": page("git-mergetool(1)", body),
            "git-rebase.html": page("git-rebase(1)", body),
        }
        for query, expected in (("merge", "/git-merge.html"), ("git merge", "/git-merge.html"),
                                ("git-merge", "/git-merge.html"),
                                ("merge file", "/git-merge-file.html")):
            found = self.first("command", pages, query, others="git-{}(1)")
            self.assertEqual(found[0], expected, query)

    def test_a_rare_word_decides(self):
        pages = {
            "common.html": page("Notes", "<p>Read the file. Read this file. " + filler(50)),
            "rare.html": page("More", "<p>The zlib header. " + filler(56)),
        }
        self.assertEqual(self.first("rare", pages, "read file zlib")[0], "/rare.html")

    def test_the_number_of_words_found_is_a_factor(self):
        pages = {
            "a.html": page("One", "<p>quartz quartz quartz " + filler(60)),
            "b.html": page("Two", "<p>quartz, feldspar " + filler(61)),
            "c.html": page("Three", "<p>feldspar feldspar feldspar " + filler(60)),
        }
        self.assertEqual(self.first("number", pages, "quartz feldspar")[0], "/b.html")

    def test_a_title_counts_by_how_much_of_it_is_asked_for(self):
        body = "<p>pewter " + filler(60)
        pages = {
            "a.html": page("Pewter in the villages along the upper valley", body),
            "b.html": page("Pewter", body),
            "c.html": page("Tin", "<p>pewter pewter pewter pewter " + filler(60)),
        }
        self.assertEqual(self.first("title", pages, "pewter"), ["/b.html", "/a.html", "/c.html"])

    def test_words_near_each_other(self):
        pages = {
            "a.html": page("One", f"<p>{filler(50)} quartz {filler(200)} feldspar {filler(50)}"),
            "b.html": page("Two", f"<p>{filler(100)} quartz feldspar {filler(200)}"),
        }
        self.assertEqual(self.first("near", pages, "quartz feldspar"), ["/b.html", "/a.html"])

    def test_the_page_that_says_so_in_its_first_lines(self):
        pages = {
            "a.html": page("One", f"<p>{filler(100)} quartz {filler(100)}"),
            "b.html": page("Two", f"<p>How to grind quartz. {filler(200)}"),
        }
        self.assertEqual(self.first("lines", pages, "quartz"), ["/b.html", "/a.html"])

    def test_the_page_that_others_call_so(self):
        pages = {
            "a.html": page("Pewter objects", f"<p>{filler(100)} pewter"),
            "b.html": page("Metals", f"<p>{filler(80)}<h2>Pewter</h2><p>" + "Pewter. " * 9),
        }
        for number in range(6):
            link = "<a href=b.html#pewter>pewter</a>" if number else "<a href=a.html>pewter</a>"
            pages[f"l{number}.html"] = page(f"Cup {number}",
                                            f"<p>{filler(40, number)} Made of {link}.")
        self.assertEqual(self.first("links", pages, "pewter")[0], "/b.html")
        pages = {name: content.replace("<a ", "<a rel=nofollow ")
                 for name, content in pages.items()}
        self.assertEqual(self.first("no_links", pages, "pewter")[0], "/a.html")

    def test_lists_of_links_stand_back(self):
        words = filler(60).split() + ["quartz"]
        links = " ".join(f"<li><a href=x{i}.html>{word}</a>" for i, word in enumerate(words))
        pages = {
            "a.html": page("Everything", f"<ul>{links}</ul>"),
            "b.html": page("Stones", f"<p>{filler(60)} quartz"),
        }
        self.assertEqual(self.first("lists", pages, "quartz"), ["/b.html", "/a.html"])

    def test_dates_still_order(self):
        def dated(day, body):
            return page("Stone", body).replace(
                "<title>", f'<meta name="date" content="2025-03-0{day}"><title>')

        pages = {
            "a.html": dated(1, "<p>quartz quartz quartz"),
            "b.html": dated(3, "<p>" + filler(40) + " quartz"),
            "c.html": dated(2, "<p>quartz"),
        }
        found = self.first("dates", pages, "quartz", vela_sort=1)
        self.assertEqual(found, ["/b.html", "/c.html", "/a.html"])


if __name__ == "__main__":
    unittest.main()
