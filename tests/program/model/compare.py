#!/usr/bin/env python3
"""Runs the search program and the model on random requests and compares every byte.

    compare.py --program build/release/bin/vela_search --seed 1 --cases 5000

Only the measured times are masked. On a difference the seed, the request and the first differing
place are printed and the index directory is kept. Exit status 1 when anything differed.
"""
import argparse
import os
import pathlib
import random
import re
import shutil
import subprocess
import sys
import tempfile
import time

import generate
import vela_model

PER_INDEX = 40
PER_INDEX_DIFFERENCES = 2
LOOKUP = "vela_lookup.vdat"
MASKS = ((re.compile(rb"search_took \d+\.\d{3} "), b"search_took T "),
         (re.compile(rb"<vela:searchtime>\d+\.\d{3}<"), b"<vela:searchtime>T<"))
LOG_MASKS = ((re.compile(rb"^\d+-\d\d-\d\d, \d\d:\d\d:\d\d, "), b"DATE, "),
             (re.compile(rb", Time = \d+\.\d{3}, Rec"), b", Time = T, Rec"))


def masked(text, masks=MASKS):
    for pattern, new in masks:
        text = pattern.sub(new, text)
    return text


def write_index(directory, index):
    shutil.rmtree(directory, ignore_errors=True)
    os.makedirs(os.path.join(directory, "logs"))
    for name, body in index.files.items():
        path = os.path.join(directory, name)
        if body is None:
            os.makedirs(path)
        else:
            with open(path, "wb") as stream:
                stream.write(body)


def take_logs(directory, index):
    """What was appended to any file that is not the index's own; such files are removed."""
    text = b""
    for folder, _, names in os.walk(directory):
        for name in names:
            path = os.path.join(folder, name)
            inside = os.path.relpath(path, directory)
            if inside not in index.files and name not in ("vela.cgi", LOOKUP):
                with open(path, "rb") as stream:
                    text += stream.read()
                os.unlink(path)
    return text


def around(text, at):
    return text[max(0, at - 160) : at + 160]


def first_difference(a, b):
    for i, (x, y) in enumerate(zip(a, b)):
        if x != y:
            return i
    return min(len(a), len(b))


def report(what, seed, number, index, env, argv, stdin, expected, got, keep):
    at = first_difference(expected, got)
    print(f"\n=== difference: {what}, seed {seed}, case {number}, damage {index.damage}")
    print("directory:", keep)
    for name in sorted(env):
        print("  ", name.decode(), "=", repr(env[name]))
    print("   argv:", argv)
    print("   stdin:", stdin)
    print(f"at offset {at} of {len(expected)} (model) and {len(got)} (program)")
    print("model:  ", around(expected, at))
    print("program:", around(got, at), flush=True)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--program", required=True)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--cases", type=int, default=2000)
    parser.add_argument("--features", default=",".join(generate.FEATURES))
    parser.add_argument("--seconds", type=float, default=1e9, help="stop after this time")
    parser.add_argument("--only", type=int, help="run only this case of the seed")
    parser.add_argument("--stop-after", type=int, default=10)
    parser.add_argument("--keep", default=None, help="where directories of differences are kept")
    parser.add_argument("--add-lookup", help="program that gives every other index its lookup file")
    parser.add_argument("--model-only", action="store_true", help="run the model alone")
    options = parser.parse_args()
    features = [f for f in options.features.split(",") if f]
    unknown = set(features) - set(generate.FEATURES)
    if unknown:
        parser.error("unknown features: " + ", ".join(sorted(unknown)))
    program = os.fsencode(os.path.abspath(options.program))
    work = tempfile.mkdtemp(prefix="vela_model_")
    keep_root = options.keep or os.path.join(tempfile.gettempdir(), "vela_model_differences")
    differences = 0
    started = time.time()
    index = directory = None
    ran = here = 0
    for number in range(options.cases):
        if time.time() - started > options.seconds:
            break
        if number % PER_INDEX == 0:
            block = number // PER_INDEX
            here = 0
            skip = options.only is not None and options.only // PER_INDEX != block
            if not skip:
                index = generate.make_index(random.Random(f"{options.seed}/{block}"), features)
                directory = os.path.join(work, "index")
                write_index(directory, index)
                if options.add_lookup and block % 2 == 0:
                    subprocess.run([options.add_lookup, directory], check=True)
        if options.only is not None and number != options.only:
            continue
        if here >= PER_INDEX_DIFFERENCES:
            continue  # one cause mostly shows in many requests of an index
        r = random.Random(f"{options.seed}/request/{number}")
        env, extra, stdin = generate.make_request(r, index, features)
        env = {k: v for k, v in env.items() if b"\0" not in v}
        place = os.fsencode(directory)
        argv = [program, b"/I", place] + extra
        if env.get(b"QUERY_STRING", b"=").find(b"=") < 0 and extra:
            argv = [program] + extra
        if r.random() < 0.1:
            # The program found beside its index, as a web server would start it.
            linked = os.path.join(place, b"vela.cgi")
            if not os.path.lexists(linked):
                os.symlink(program, linked)
            argv = [linked] + extra
        context, status = vela_model.run(directory, env, argv, stdin, int(time.time()))
        expected = bytes(context.out)
        ran += 1
        if options.model_only:
            continue
        try:
            done = subprocess.run(argv, env=env, input=stdin, capture_output=True, timeout=20,
                                  cwd=directory)
            got, code, errors = done.stdout, done.returncode, done.stderr
        except subprocess.TimeoutExpired as late:
            got, code, errors = late.stdout or b"", "timeout", b""
        logged = masked(take_logs(directory, index), LOG_MASKS)
        expected_log = masked(context.log_line or b"", LOG_MASKS)
        found = []
        if masked(expected) != masked(got):
            found.append(("output", masked(expected), masked(got)))
        if status != code:
            found.append(("exit status", str(status).encode(), str(code).encode() + errors[-3000:]))
        if expected_log != logged:
            found.append(("log", expected_log, logged))
        if found:
            differences += 1
            here += 1
            keep = os.path.join(keep_root, f"{options.seed}_{number}")
            shutil.rmtree(keep, ignore_errors=True)
            shutil.copytree(directory, keep, symlinks=True)
            pathlib.Path(keep, "model.out").write_bytes(expected)
            pathlib.Path(keep, "program.out").write_bytes(got)
            for what, a, b in found:
                report(what, options.seed, number, index, env, argv, stdin, a, b, keep)
            if differences >= options.stop_after:
                break
    seconds = time.time() - started
    print(f"{ran} cases, {differences} differences, {ran / max(seconds, 0.001):.0f} cases a second")
    shutil.rmtree(work, ignore_errors=True)
    return 1 if differences else 0


if __name__ == "__main__":
    sys.exit(main())
