"""The sample library as its configuration sets it up, and as it would be with something changed."""

import re
import shutil
import subprocess

import support

FOLDER = support.PROJECT / "examples/library"
CONFIG = FOLDER / "vela_index.toml"


def set_key(config, table, line):
    """The configuration with `line` ("key = value") in [table], in place of the one that is there."""
    key = line.partition("=")[0].strip()
    head, bracket, rest = config.partition(f"\n[{table}]\n")
    if not bracket:
        raise ValueError(f"no table [{table}]")
    body, end, tail = rest.partition("\n[")
    lines = [old for old in body.split("\n") if not re.match(rf"{re.escape(key)}\s*=", old)]
    return head + bracket + "\n".join([line, *lines]) + end + tail


def build_library(name, changes=()):
    """Indexes the sample library into a folder of its own, with the search program beside the index.

    `changes` are (table, "key = value"). Returns the index folder.
    """
    work = support.WORK / name
    shutil.rmtree(work, ignore_errors=True)
    work.mkdir(parents=True)
    config = CONFIG.read_text(encoding="utf-8")
    for table, line in changes:
        config = set_key(config, table, line)
    (work / "vela_index.toml").write_text(config, encoding="utf-8")
    for file in ("recommended.txt", "search_template.html"):
        shutil.copy2(FOLDER / file, work)
    index = work / "index"
    subprocess.run([support.BIN / "vela_index", "--config", work / "vela_index.toml",
                    "--site", support.SAMPLE_SITE, "--out", index],
                   check=True, stdout=subprocess.DEVNULL)
    support.inspect(index)
    shutil.copy2(support.BIN / "vela_search", index / "search.cgi")
    return index
