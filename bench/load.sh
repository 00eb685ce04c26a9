#!/usr/bin/env bash
# Counts the requests a second that one lighttpd answers with the search as its CGI program, and with
# Omega: 50 clients that ask for a common word as fast as they get answers, on the machine's own
# network. The clients (ab) share the processor with the server, for all programs alike.
#   bench/load.sh [--sizes "small large"] [--clients N] [--seconds N] [--build DIR] [--corpora DIR]
#                 [--results DIR]
# Takes the indexes that bench/compare.sh has left for these sizes; writes load.md to the results.
# Needs what `scripts/install_packages.sh serve bench` installs.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
build=$here/../build/release
corpora=${VELA_CORPORA:-$here/../build/corpora}
sizes="small large"
clients=50
seconds=15
results=$here/results
while [ $# -gt 0 ]; do
  case $1 in
    --sizes) sizes=$2 ;;
    --clients) clients=$2 ;;
    --seconds) seconds=$2 ;;
    --build) build=$2 ;;
    --corpora) corpora=$2 ;;
    --results) results=$2 ;;
    *)
      sed -n '2,/^set/ { /^set/d; s/^# \{0,1\}//; p }' "$0" >&2
      exit 2
      ;;
  esac
  shift 2
done
corpora=$(realpath "$corpora")
for size in $sizes; do
  if [ ! -e "$corpora/compare/$size/queries.json" ]; then
    echo "load.sh: first run bench/compare.sh --corpus $size --runs 1" >&2
    exit 1
  fi
done
cmake --build "$build" --target vela_search >/dev/null
# lighttpd and ab, as Debian has them, lie where only the administrator looks.
PATH=$PATH:/usr/sbin

work=$(mktemp -d)
server=
trap '[ -z "$server" ] || kill "$server"; rm -rf "$work"' EXIT
port=$((20000 + RANDOM % 20000))
mkdir "$work/root"
{
  cat <<CONFIG
server.modules = ("mod_alias", "mod_cgi", "mod_setenv")
server.bind = "127.0.0.1"
server.port = $port
server.document-root = "$work/root"
server.errorlog = "$work/errors"
server.upload-dirs = ("$work")
server.max-connections = 1024
server.max-fds = 4096
cgi.assign = (".cgi" => "", "/omega" => "")
alias.url = (
CONFIG
  for size in $sizes; do
    echo "  \"/$size/ours/\" => \"$corpora/compare/$size/ours/\","
    echo "  \"/$size/plain/\" => \"$corpora/compare/$size/plain/\","
    echo "  \"/$size/omega/\" => \"/usr/lib/cgi-bin/omega/\","
  done
  echo ")"
  for size in $sizes; do
    cat <<CONFIG
\$HTTP["url"] =~ "^/$size/omega/" {
  setenv.set-environment = ("OMEGA_CONFIG_FILE" => "$corpora/compare/$size/omega/omega.conf")
}
CONFIG
  done
} >"$work/lighttpd.conf"
lighttpd -D -f "$work/lighttpd.conf" &
server=$!
for _ in $(seq 50); do
  curl -s -o "$work/answer" "http://127.0.0.1:$port/" && break
  sleep 0.1
done

# One row of the table: PAGES NAME ADDRESS WORD. An answer that is no page of results ends all.
measure() {
  local address="http://127.0.0.1:$port/$3"
  curl -s -f -o "$work/answer" "$address"
  if ! grep -q "$4" "$work/answer"; then
    echo "load.sh: $address does not answer with results" >&2
    exit 1
  fi
  ab -q -r -c "$clients" -t "$seconds" -n 10000000 "$address" >"$work/figures" 2>"$work/ab-errors"
  awk -v pages="$1" -v name="$2" -v word="$4" '
    /^Requests per second/ { rate = $4 }
    /^Non-2xx responses/ { refused = $3 }
    $1 == "50%" { median = $2 }
    $1 == "99%" { slow = $2 }
    END {
      printf "| %s | `%s` | %s | %.0f | %d | %d | %d |\n",
        pages, word, name, rate, median, slow, refused
    }' "$work/figures"
}

mkdir -p "$results"
{
  echo "# Requests a second behind one web server"
  echo
  echo "$(date -u +%Y-%m-%d), commit $(git -C "$here" describe --always --dirty), $(nproc) cores of" \
    "$(sed -n '/^model name/ { s/.*: //p; q }' /proc/cpuinfo), load $(cut -d' ' -f1 /proc/loadavg)" \
    "before. lighttpd with mod_cgi, $clients clients (ab) on the same machine, $seconds seconds each;" \
    "a fresh process for every request."
  echo
  echo "| corpus | word | program | requests/s | median, ms | 99 % within, ms | errors |"
  echo "| --- | --- | --- | ---: | ---: | ---: | ---: |"
  for size in $sizes; do
    # The first common word of the queries that compare.py has drawn.
    word=$(python3 -c '
import json, sys
print(next(q["words"][0] for q in json.load(open(sys.argv[1])) if q["kind"] == "common"))
' "$corpora/compare/$size/queries.json")
    install "$build/bin/vela_search" "$corpora/compare/$size/ours/search.cgi"
    measure "$size" ours "$size/ours/search.cgi?vela_query=$word&vela_and=1" "$word"
    if [ -d "$corpora/compare/$size/plain" ]; then
      install "$build/bin/vela_search" "$corpora/compare/$size/plain/search.cgi"
      measure "$size" "ours, plain" "$size/plain/search.cgi?vela_query=$word&vela_and=1" "$word"
    fi
    if [ -d "$corpora/compare/$size/omega" ]; then
      measure "$size" Omega "$size/omega/omega?P=$word&DB=default&FMT=page&HITSPERPAGE=10" "$word"
    fi
  done
} | tee "$work/load.md"
mv "$work/load.md" "$results/load.md"
