#!/usr/bin/env bash
# Runs clang-tidy with the settings of .clang-tidy over the search program and the indexer.
#   scripts/check_tidy.sh BUILD_FOLDER [FILE...]
# BUILD_FOLDER holds compile_commands.json; without files, all of src/ and indexer/ are read.
set -euo pipefail
build=$(realpath "$1")
shift
cd "$(dirname "$0")/.."

[ -e "$build/compile_commands.json" ] || { echo "no compile_commands.json in $build"; exit 1; }
if [ $# -gt 0 ]; then
  files=("$@")
else
  mapfile -t files < <(find src indexer -name '*.cc' | sort)
fi
[ ${#files[@]} -gt 0 ] || { echo "no files to read"; exit 1; }
# The compile commands are those of another compiler; and clang-tidy counts on standard error what
# it found in the system's headers.
printf '%s\0' "${files[@]}" |
  xargs -0 -n 1 -P "$(nproc)" clang-tidy --quiet -p "$build" \
    --extra-arg=-Wno-unknown-warning-option 2>&1 |
  sed -E '/^[0-9]+ warnings?( and [0-9]+ errors?)? generated\.$/d'
echo "${#files[@]} files read"
