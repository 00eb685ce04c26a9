#!/usr/bin/env bash
# Compares the C++ files with what clang-format would make of them; --fix rewrites them.
#   scripts/check_format.sh [--fix]
set -euo pipefail
cd "$(dirname "$0")/.."

mode=(--dry-run --Werror)
[ "${1:-}" = --fix ] && mode=(-i)
folders=()
for folder in src indexer inspector tools tests bench; do
  [ -d $folder ] && folders+=("$folder")
done
find "${folders[@]}" -type f \( -name '*.cc' -o -name '*.h' \) -print0 |
  xargs -0 clang-format "${mode[@]}" --style=file
