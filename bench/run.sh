#!/usr/bin/env bash
# Runs the benchmarks on the programs of a build directory: bench/run.sh build/release
# Figures are for comparing within one run; machines are noisy.
set -euo pipefail
build=$(cd "$1" && pwd)
bin=$build/bin
here=$(cd "$(dirname "$0")" && pwd)
work=$build/bench-data
mkdir -p "$work"

echo "== sample site, whole process"
"$bin/vela_index" --quiet --site "$here/../examples/library/site" --base-url http://127.0.0.1/ \
  --out "$work/sample" >/dev/null
"$bin/process_bench" 300 "$bin/empty_program" "$bin/vela_search" "$work/sample" "opening+hours"

echo "== 20000 pages, 200000 words"
if [ ! -e "$work/words" ]; then
  "$bin/make_bench_index" "$work/large" 20000 200000 >"$work/words"
fi
read -r first second rare <"$work/words"
echo "two frequent words: $first $second"
"$bin/stages_bench" "$work/large" "$first+$second"
"$bin/process_bench" 100 "$bin/empty_program" "$bin/vela_search" "$work/large" "$first+$second"
echo "one rare word: $rare"
"$bin/process_bench" 100 "$bin/empty_program" "$bin/vela_search" "$work/large" "$rare"
echo "a pattern: ba*"
"$bin/process_bench" 100 "$bin/empty_program" "$bin/vela_search" "$work/large" "ba*"
echo "== bytes of the index files"
(cd "$work/large" && wc -c -- *.vdat)
