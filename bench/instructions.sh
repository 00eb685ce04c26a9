#!/usr/bin/env bash
# Counts the instructions of ten requests with callgrind: figures that do not depend on what else
# the machine does, for judging a change.
#   bench/instructions.sh INDEXDIR PROGRAM...
# INDEXDIR is an index of examples/library; each PROGRAM gets a column, in thousands of
# instructions. Needs valgrind.
set -euo pipefail
index=$(realpath "$1")
shift
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
# The programs answer from the index that lies beside them.
cp "$index"/*.vdat "$index/search_template.html" "$work"

printf '%-40s' request
printf ' %12s' "$@"
printf '\n'
for query in '' 'vela_query=library' 'vela_query=opening+hours' 'vela_query=%22opening+hours%22' \
  'vela_query=lib*' 'vela_query=nothingofthekind' 'vela_query=books+-children&vela_and=1' \
  'vela_query=library&vela_xml=1' 'vela_query=reading&vela_cat=1&vela_sort=1' \
  'vela_query=lib&vela_ac=1'; do
  printf '%-40s' "$query"
  for program in "$@"; do
    install "$program" "$work/search.cgi"
    env -i REQUEST_METHOD=GET QUERY_STRING="$query" TZ=UTC valgrind --tool=callgrind \
      --callgrind-out-file="$work/out" "$work/search.cgi" >"$work/answer" 2>"$work/log"
    count=$(awk '/^(summary|totals):/ { n = $2 } END { print n }' "$work/out")
    printf ' %12d' $((count / 1000))
  done
  printf '\n'
done
