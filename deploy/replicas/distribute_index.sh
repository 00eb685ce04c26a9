#!/usr/bin/env bash
# Copies an index to several web servers, then puts it in place on all of them.
#   distribute_index.sh [--keep N] [--rsh COMMAND] INDEXDIR TARGET...
#   distribute_index.sh --rollback [--rsh COMMAND] TARGET...
#     INDEXDIR    the folder that vela_index wrote, with search.cgi in it
#     TARGET      [USER@]HOST:/PATH or /PATH: the index folder that a web server serves. It is a
#                 link to the newest of the indexes in /PATH.versions/, where the search log is kept,
#                 too, when there is a folder /PATH.versions/logs.
#     --keep      how many indexes stay on each server, at least 2 (default: 2)
#     --rollback  puts the index before the present one back in place; the next distribution deletes
#                 the one that was taken back
#     --rsh       how other hosts are reached (default: ssh -o BatchMode=yes -o ConnectTimeout=10)
# The new index is tried out on every server before the first one is switched to it: when a server
# cannot be reached or its search does not answer, all of them keep the index they have.
# Exit status: 0 done, 1 a server could not be changed, 2 wrong arguments.
set -euo pipefail

keep=2
rsh="ssh -o BatchMode=yes -o ConnectTimeout=10"
rollback=

usage() {
  sed -n '2,/^[^#]/s/^# \{0,1\}//p' "$0"
}
wrong() {
  echo "distribute_index.sh: $*" >&2
  exit 2
}
while [ $# -gt 0 ]; do
  case $1 in
    --keep | --rsh)
      [ $# -ge 2 ] || wrong "$1 needs a value"
      case $1 in
        --keep) keep=$2 ;;
        --rsh) rsh=$2 ;;
      esac
      shift
      ;;
    --rollback) rollback=1 ;;
    -h | --help) usage; exit 0 ;;
    --) shift; break ;;
    -*) wrong "there is no option $1; --help tells the options" ;;
    *) break ;;
  esac
  shift
done
[[ $keep =~ ^[0-9]{1,4}$ && $((10#$keep)) -ge 2 ]] || wrong "--keep needs a number from 2 on"
keep=$((10#$keep))
read -ra rsh_words <<<"$rsh"
[ ${#rsh_words[@]} -gt 0 ] || wrong "--rsh needs a command"

if [ -z "$rollback" ]; then
  [ $# -ge 2 ] || wrong "an index folder and at least one target are needed; --help tells more"
  index=$1
  shift
  [ -f "$index/settings.vdat" ] || wrong "there is no index in $index (settings.vdat is missing)"
  [ -x "$index/search.cgi" ] || wrong "there is no program search.cgi in $index that can be run"
else
  [ $# -ge 1 ] || wrong "at least one target is needed; --help tells more"
fi
places=()
for target in "$@"; do
  path=$target
  [[ $target == /* ]] || path=${target#*:}
  [[ $path == /?* && $path != */ && $path != *$'\n'* && $target != -* && $target != :* ]] ||
    wrong "$target is no target: [USER@]HOST:/PATH or /PATH is needed, without a slash at its end"
  place=$path
  [[ $target == /* ]] || { place=${target%%:*}; place=${place#*@}:$path; }
  for other in ${places[@]+"${places[@]}"}; do
    [ "$place" != "$other" ] || wrong "$target is named twice"
  done
  places+=("$place")
done

# Runs the shell script of standard input on the target's host, with the target's path and the
# further arguments as its arguments.
on_target() {
  local target=$1 argument command="sh -s --"
  shift
  if [[ $target == /* ]]; then
    sh -s -- "$target" "$@"
    return
  fi
  for argument in "${target#*:}" "$@"; do
    command+=" '${argument//\'/\'\\\'\'}'"
  done
  "${rsh_words[@]}" "${target%%:*}" "$command"
}

# The steps on a web server. Each is a script for a plain "sh", which gets the path of the link as
# its first argument and the name of the version as its second.
prepare_step='
set -eu
if [ -e "$1" ] && [ ! -L "$1" ]; then
  echo "$1 is no link to an index but a folder or file of its own: move it away first" >&2
  exit 1
fi
mkdir -p "$1.versions/.incoming-$2"
if [ -e "$1" ]; then echo present; fi
'
try_step='
set -eu
cd "$1.versions/.incoming-$2"
# Without the log, which may lie anywhere and is there for the searches of visitors.
mkdir trial
cd trial
ln -s ../* .
rm trial settings.vdat
sed "s/^Logging *=.*/Logging = 0/" ../settings.vdat >settings.vdat
answer=$(REQUEST_METHOD=GET QUERY_STRING="vela_query=search&vela_xml=1" SCRIPT_NAME=/search.cgi \
  REMOTE_ADDR=127.0.0.1 ./search.cgi </dev/null)
cd ..
rm -rf trial
good=
case $answer in
  *"<vela:error>"*) ;;
  *"</rss>"*) good=1 ;;
esac
if [ -z "$good" ]; then
  echo "the search does not answer with the new index:" >&2
  printf "%s\n" "$answer" | tail -5 >&2
  exit 1
fi
if [ -d ../logs ]; then ln -s ../logs logs; fi
cd ..
mv -T ".incoming-$2" "$2"
'
# "mv -T" replaces the link in one step.
switch_step='
set -eu
versions=$(basename "$1").versions
before=
if [ -L "$1" ]; then before=$(basename "$(readlink "$1")"); fi
ln -s "$versions/$2" "$1.next-$2"
mv -T "$1.next-$2" "$1"
cd "$1.versions"
present=$(basename "$(readlink "$1")")
# What lies between the two was taken back with --rollback, which must not lead to it again.
ls -1 | grep "^[0-9]*T[0-9.]*Z$" | sed -n "/^$before\$/,/^$present\$/p" |
  grep -vx -e "$before" -e "$present" | while IFS= read -r old; do
  rm -rf "./$old" || echo "$1.versions/$old stays" >&2
done
ls -1r | grep "^[0-9]*T[0-9.]*Z$" | tail -n "+$(($3 + 1))" | while IFS= read -r old; do
  if [ "$old" != "$present" ]; then rm -rf "./$old" || echo "$1.versions/$old stays" >&2; fi
done
'
rollback_step='
set -eu
if [ ! -L "$1" ]; then
  echo "$1 is no link" >&2
  exit 1
fi
versions=$(basename "$1").versions
present=$(basename "$(readlink "$1")")
before=$(ls -1 "$1.versions" | while IFS= read -r name; do
  if [ "$name" = "$present" ]; then break; fi
  if [ -f "$1.versions/$name/settings.vdat" ]; then echo "$name"; fi
done | tail -n 1)
if [ -z "$before" ]; then
  echo "there is no index before $present in $1.versions" >&2
  exit 1
fi
ln -s "$versions/$before" "$1.next-$$"
mv -T "$1.next-$$" "$1"
echo "$before"
'
discard_step='
rm -rf "$1.versions/.incoming-$2" "$1.versions/$2"
'

failed=0
fail() {
  echo "distribute_index.sh: $*" >&2
  failed=1
}

if [ -n "$rollback" ]; then
  for target in "$@"; do
    if before=$(on_target "$target" <<<"$rollback_step"); then
      echo "$target: back to $before"
    else
      fail "$target: could not go back"
    fi
  done
  exit $failed
fi

# Inside the folder, so that its replacement by a newer one cannot mix the two; and one at a time.
cd "$index"
exec 9<.
flock -n 9 || { fail "another distribution of $index is running"; exit 1; }
version=$(date -u +%Y%m%dT%H%M%S.%NZ)

# Copies and tries out. What is the same as in the present index is not sent again.
copy_to() {
  local target=$1 path=${1#*:} present same=()
  [[ $target != /* ]] || path=$target
  present=$(on_target "$target" "$version" <<<"$prepare_step") || return
  [ -z "$present" ] || same=(--link-dest="$path")
  rsync -rlt -s --checksum --chmod=D755,Fu+rw,Fgo+r,Fgo-w --exclude=/logs "${same[@]}" \
    -e "$rsh" ./ "$target.versions/.incoming-$version/" || return
  on_target "$target" "$version" <<<"$try_step"
}

for target in "$@"; do
  if ! copy_to "$target"; then
    fail "$target: the new index could not be made ready; every server keeps the one it has"
    for each in "$@"; do
      on_target "$each" "$version" <<<"$discard_step" 2>/dev/null || true
      [ "$each" != "$target" ] || break
    done
    exit 1
  fi
done
for target in "$@"; do
  if on_target "$target" "$version" "$keep" <<<"$switch_step"; then
    echo "$target: $version"
  else
    fail "$target: could not be switched to $version"
  fi
done
exit $failed
