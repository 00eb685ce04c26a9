#!/usr/bin/env python3
"""Writes the table of HTML's named character references, from the one that comes with Python.

  scripts/make_named_references.py >indexer/extract/named_references.inc
"""
import html.entities


def main():
    print("// named_references.inc: the named character references of HTML, without their \"&\", in")
    print("// order of the bytes, and what they stand for, in UTF-8. Made by")
    print("// scripts/make_named_references.py. VELA_REFERENCE(name, text)")
    for name, text in sorted(html.entities.html5.items(), key=lambda item: item[0].encode()):
        code = "".join(f"\\{byte:03o}" for byte in text.encode())
        print(f'VELA_REFERENCE("{name}", "{code}")')


if __name__ == "__main__":
    main()
