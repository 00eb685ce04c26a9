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
read -r first second rare _ <"$work/words"
echo "two frequent words: $first $second"
"$bin/stages_bench" "$work/large" "$first+$second"
"$bin/process_bench" 100 "$bin/empty_program" "$bin/vela_search" "$work/large" "$first+$second"
echo "one rare word: $rare"
"$bin/process_bench" 100 "$bin/empty_program" "$bin/vela_search" "$work/large" "$rare"
echo "a pattern: ba*"
"$bin/process_bench" 100 "$bin/empty_program" "$bin/vela_search" "$work/large" "ba*"

echo "== context, highlighting and phrases on the same pages"
marked=$work/marked
mkdir -p "$marked"
ln -sf "$work"/large/vela_*.vdat "$work/large/search_template.html" "$marked"
{
  cat "$work/large/settings.vdat"
  printf '%s = 1\n' DisplayContext Highlighting AllowExactPhrase
} >"$marked/settings.vdat"
read -r _ _ _ common next _ <"$work/words"
phrase="%22$common+$next%22"
"$bin/process_bench" 100 "$bin/empty_program" "$bin/vela_search" "$work/large" "$first+$second" \
  "$marked" "$first+$second" "$marked" "$phrase"
echo "the phrase by stages:"
"$bin/stages_bench" "$marked" "$phrase"
echo "== completion from 10000 suggestions"
completion=$work/completion
mkdir -p "$completion"
{
  cat "$work/large/settings.vdat"
  printf '%s\n' 'UseAutoComplete = 1' 'MaxKeyWordLineLen = 256'
} >"$completion/settings.vdat"
# Two words of the dictionary each, from behind its reserved ones.
awk 'NF > 1 && NR > 20 { print before, $1; before = $1; if (++lines == 10000) exit }' \
  "$work/large/vela_dictionary.vdat" >"$completion/vela_autocomplete.vdat"
"$bin/process_bench" 300 "$bin/empty_program" "$bin/vela_search" \
  "$completion" "ba&vela_ac=1" "$completion" "b&vela_ac=1"

echo "== bytes of the index files"
(cd "$work/large" && wc -c -- *.vdat)
