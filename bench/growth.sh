#!/usr/bin/env bash
# Measures time, memory and instructions of a request, for each kind of query, against the number of
# pages (a thousand to a million, their vocabulary growing by Heaps' law) and against the vocabulary.
#   bench/growth.sh [--runs N] [--most-pages N] [--instructions] [--build DIR] [--corpora DIR]
#                   [--results DIR]
# The indexes are made of made-up words (make_bench_index) and kept below the corpora folder, 6 GB
# with the largest; see compare.sh. Instructions need valgrind, and minutes.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
build=$here/../build/release
corpora=${VELA_CORPORA:-$here/../build/corpora}
results=$here/results
others=()
while [ $# -gt 0 ]; do
  case $1 in
    --build) build=$2 && shift 2 ;;
    --corpora) corpora=$2 && shift 2 ;;
    --results) results=$2 && shift 2 ;;
    --instructions) others+=("$1") && shift ;;
    --runs | --most-pages) others+=("$1" "$2") && shift 2 ;;
    *)
      sed -n '2,/^set/ { /^set/d; s/^# \{0,1\}//; p }' "$0" >&2
      exit 2
      ;;
  esac
done

cmake --build "$build" --target vela_search make_bench_index time_commands empty_program >/dev/null
exec python3 "$here/growth.py" --build "$build" --keep "$corpora/growth" --results "$results" \
  "${others[@]}"
