#!/usr/bin/env bash
# Prints the stripped size of the search program and how long a process of it takes that finds no
# settings: scripts/build_summary.sh PROGRAM
set -euo pipefail
program=$1
stripped=$(mktemp)
trap 'rm -f "$stripped"' EXIT
strip -o "$stripped" "$program"
size=$(stat -c %s "$stripped")
runs=50
start=$(date +%s%N)
for ((i = 0; i < runs; ++i)); do "$stripped.none" >/dev/null 2>&1 || true; done
none=$(date +%s%N)
chmod +x "$stripped"
for ((i = 0; i < runs; ++i)); do REQUEST_METHOD=GET QUERY_STRING='' "$stripped" >/dev/null; done
end=$(date +%s%N)
shell_us=$(((none - start) / runs / 1000))
run_us=$(((end - none) / runs / 1000))
echo "$(basename "$program"): $((size / 1024)) kB stripped; starts and answers without settings in" \
  "$run_us us, of which the shell takes about $shell_us us"
