#!/usr/bin/env bash
# Compares whole searches, from the start of a process to its end, with those of other programs that
# index a folder of HTML pages: Omega (Xapian), Swish-e, Namazu, and SQLite's FTS5 asked from the
# command line. All get the same real pages (bench/fetch_corpus.sh) and the same queries, which are
# drawn from the pages' vocabulary with a fixed seed; the number of pages found stands beside the
# time. Our own column "plain" is the same index without the file that only saves time.
#   bench/compare.sh [--corpus small|medium|large] [--runs N] [--only vela] [--instructions]
#                    [--without KEY,...] [--build DIR] [--corpora DIR] [--keep DIR] [--results DIR]
#   bench/compare.sh --indexing ...
# With --indexing, what making the indexes takes, all in one run, and a nightly run after it.
# Needs what `scripts/install_packages.sh bench` installs, none of which is needed for the tests.
# Pages and indexes are kept: --corpora, else $VELA_CORPORA, else build/corpora. The other programs'
# indexes of the large corpus take an hour, most of it Namazu's (`--without namazu`), and 4 GB.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
build=$here/../build/release
corpora=${VELA_CORPORA:-$here/../build/corpora}
corpus=small
keep=
results=$here/results
others=()
compared=compare.py
while [ $# -gt 0 ]; do
  case $1 in
    --corpus) corpus=$2 && shift 2 ;;
    --build) build=$2 && shift 2 ;;
    --corpora) corpora=$2 && shift 2 ;;
    --keep) keep=$2 && shift 2 ;;
    --results) results=$2 && shift 2 ;;
    --indexing) compared=indexing.py && shift ;;
    --instructions) others+=("$1") && shift ;;
    --runs | --only | --without) others+=("$1" "$2") && shift 2 ;;
    *)
      sed -n '2,/^set/ { /^set/d; s/^# \{0,1\}//; p }' "$0" >&2
      exit 2
      ;;
  esac
done

cmake --build "$build" --target vela_search vela_index time_commands empty_program >/dev/null
"$here/fetch_corpus.sh" "$corpora" "$corpus"
exec python3 "$here/$compared" --corpus "$corpus" --build "$build" --pages "$corpora/$corpus" \
  --keep "${keep:-$corpora/compare/$corpus}" --results "$results" "${others[@]}"
