#!/usr/bin/env bash
# Builds the search, indexes a site and serves it with its search on this machine.
#   ./demo.sh [--once] [--site DIR] [--port N] [--query Q]
#     --once     ask the server one search, print the page it answers and end
#     --site     the folder of pages and documents to index (default: the library of examples/,
#                with every part of the search switched on; docs/features.md tells what to try)
#     --port     the port to use when it is free (default: 8080)
#     --query    the words to search for with --once, or to open the search with
# Everything is built in build/; packages are installed only when they are missing.
set -euo pipefail
project=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)

example=$project/examples/library
site=$example/site
config=$example/vela_index.toml
query="summer reading"
port=8080
once=

usage() {
  sed -n '2,/^[^#]/s/^# \{0,1\}//p' "$0"
}
say() {
  echo "$@" >&2  # standard output is for the page of --once
}
while [ $# -gt 0 ]; do
  case $1 in
    --once) once=1 ;;
    --site | --port | --query)
      [ $# -ge 2 ] || { say "$1 needs a value"; exit 2; }
      case $1 in
        --site) site=$2 config= ;;
        --port) port=$2 ;;
        --query) query=$2 ;;
      esac
      shift
      ;;
    -h | --help) usage; exit 0 ;;
    *)
      say "demo.sh: $1 is no option."
      usage >&2
      exit 2
      ;;
  esac
  shift
done
[ -d "$site" ] || { say "There is no folder $site"; exit 2; }
site=$(realpath "$site")
[[ $port =~ ^[0-9]{1,5}$ && $((10#$port)) -ge 1024 && $((10#$port)) -le 65535 ]] || {
  say "The port must be a number from 1024 to 65535"
  exit 2
}
port=$((10#$port))

cd "$project"
scripts/install_packages.sh build serve

# Shows how far a build is from its own lines, "[ 45%] Building ...": on a terminal in one line that
# changes, elsewhere every tenth part.
show_progress() {
  local line part shown=-10
  while IFS= read -r line; do
    [[ $line =~ ^\[\ *([0-9]+)%\] ]] || continue
    part=${BASH_REMATCH[1]}
    if [ -t 2 ]; then
      printf '\rBuilding ... %3d %%' "$part" >&2
    elif [ "$part" -ge $((shown + 10)) ]; then
      shown=$part
      say "Building ... $part %"
    fi
  done
  [ ! -t 2 ] || printf '\r%30s\r' '' >&2
}

[ -e build/release/bin/vela_index ] || say "Building for the first time takes some minutes."
mkdir -p build/demo
log=build/demo/build.log
if ! { cmake --preset release &&
  cmake --build --preset release -j "$(nproc)" --target vela_search vela_index; } 2>&1 |
  tee $log | show_progress; then
  tail -40 $log >&2
  exit 1
fi

# The first free port from the wanted one on.
port_answers() {
  (exec 3<>"/dev/tcp/127.0.0.1/$1") 2>/dev/null
}
wanted=$port
while port_answers $port; do
  port=$((port + 1))
  if [ $port -gt 65535 ] || [ $port -ge $((wanted + 100)) ]; then
    say "No free port from $wanted on"
    exit 1
  fi
done
[ $port -eq $wanted ] || say "Port $wanted is taken; using $port."

say "Indexing $site ..."
work=build/demo/$port  # another demo may be running on another port
mkdir -p $work
index=$work/index
if [ -n "$config" ]; then
  # The configuration names the search's own address, with the port of a demo that found it free.
  sed "s|127\.0\.0\.1:8080|127.0.0.1:$port|" "$config" >$work/vela_index.toml
  cp "$example/recommended.txt" "$example/search_template.html" $work
  build/release/bin/vela_index --config $work/vela_index.toml --site "$site" --out $index \
    --program build/release/bin/vela_search >&2
else
  build/release/bin/vela_index --site "$site" --base-url / --out $index \
    --template default --program build/release/bin/vela_search >&2
fi

scripts/lighttpd_config.sh "$site" $index $port >$work/lighttpd.conf
server_log=$work/server.log
PATH=$PATH:/usr/sbin lighttpd -D -f $work/lighttpd.conf 2>"$server_log" &
server=$!
stop() {
  trap - EXIT INT TERM
  kill $server 2>/dev/null || true
  wait $server 2>/dev/null || true
}
trap stop EXIT
trap 'stop; say; say "Stopped."; exit 0' INT TERM

for _ in $(seq 100); do
  port_answers $port && break
  kill -0 $server 2>/dev/null || break
  sleep 0.05
done
if ! kill -0 $server 2>/dev/null || ! port_answers $port; then
  say "The web server did not start:"
  cat "$server_log" >&2
  exit 1
fi

address=http://127.0.0.1:$port
if [ -n "$once" ]; then
  say "Asking $address/search/search.cgi for: $query"
  curl -sS --fail --noproxy 127.0.0.1 --get --data-urlencode "vela_query=$query" \
    "$address/search/search.cgi"
  exit 0
fi
say
say "The site:    $address/"
say "Its search:  $address/search/search.cgi?vela_query=$(printf %s "$query" |
  sed 's/%/%25/g; s/+/%2B/g; s/ /+/g; s/&/%26/g; s/#/%23/g; s/"/%22/g')"
[ -z "$config" ] || {
  say "What to try: docs/features.md"
  say "Its log:     $work/searches.log"
}
say "Press Ctrl-C to stop."
wait $server || {
  say "The web server ended:"
  cat "$server_log" >&2
  exit 1
}
