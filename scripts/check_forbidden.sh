#!/usr/bin/env bash
# Looks through src/ for calls that have no place in the search program: unbounded copies, number
# readers whose result depends on the width of long, functions that follow the locale or keep
# hidden state, and ways out of the program below main.
#   scripts/check_forbidden.sh [ROOT]
set -euo pipefail
cd "${1:-$(dirname "$0")/..}"

forbidden='strcpy|strcat|stpcpy|sprintf|vsprintf|gets|scanf|sscanf|fscanf'
forbidden+='|atoi|atol|atoll|atof|strtol|strtoul|strtoll|strtoull|stoi|stol|stoul'
forbidden+='|strtok|strtok_r|tolower|toupper|isalpha|isalnum|isspace|isupper|islower|ispunct'
forbidden+='|setlocale|strcasecmp|strncasecmp|strcoll|rand|tmpnam|system|popen'
forbidden+='|exit|_exit|quick_exit|abort|alloca|setjmp|longjmp|ctime|asctime'

status=0
files=0
while IFS= read -r -d '' file; do
  files=$((files + 1))
  # Comments and the text between quotes may name anything.
  found=$(sed -e 's/\\"//g' -e 's/"[^"]*"//g' -e 's@//.*@@' "$file" |
    grep -nP "(?<![A-Za-z0-9_])($forbidden)\s*\(" || true)
  # Only main may choose how the program ends.
  if [ "$file" = src/request/main.cc ]; then
    found=$(grep -vP '(?<![A-Za-z0-9_])_?exit\s*\(' <<<"$found" || true)
  fi
  if [ -n "$found" ]; then
    while IFS= read -r line; do echo "$file:$line"; done <<<"$found"
    status=1
  fi
done < <(find src -type f \( -name '*.cc' -o -name '*.h' \) -print0 | sort -z)

[ $files -gt 0 ] || { echo "no source files under src/"; exit 1; }
[ $status -eq 0 ] && echo "$files files, no forbidden call"
exit $status
