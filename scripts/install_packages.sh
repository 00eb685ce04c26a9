#!/usr/bin/env bash
# Installs the packages of the named groups of packages.txt that are missing; says nothing and
# needs no network when all are there.
#   scripts/install_packages.sh GROUP...
set -euo pipefail
cd "$(dirname "$0")"

find_missing() {
  missing=()
  for group in "$@"; do
    while read -r package command; do
      if [ -n "$command" ] && command -v "$command" >/dev/null; then continue; fi
      state=$(dpkg-query -W -f '${db:Status-Abbrev}' "$package" 2>/dev/null || true)
      [[ $state == ii* ]] || missing+=("$package")
    done < <(awk -v group="$group" '$1 == group { print $2, $3 }' packages.txt)
  done
  [ ${#missing[@]} -gt 0 ]
}
find_missing "$@" || exit 0

# One at a time: two would meet at the package system's own lock, where the second one fails. This
# folder is there on every machine that has the package system, and only locked.
exec 9</etc/apt
if ! flock --nonblock 9; then
  echo "Waiting for another installation ..." >&2
  flock 9
fi
find_missing "$@" || exit 0

as_root=()
if [ "$(id -u)" -ne 0 ]; then
  command -v sudo >/dev/null || {
    echo "Please install these packages (as root): apt-get install ${missing[*]}" >&2
    exit 1
  }
  as_root=(sudo)
fi

# A server package starts its service when it is installed; only its program is wanted here.
# Debian asks this file first, and 101 means no.
policy=/usr/sbin/policy-rc.d
if [ ! -e $policy ]; then
  trap '"${as_root[@]}" rm -f $policy' EXIT
  printf '#!/bin/sh\nexit 101\n' | "${as_root[@]}" tee $policy >/dev/null
  "${as_root[@]}" chmod 755 $policy
fi

echo "Installing ${missing[*]} ..." >&2
log=$(mktemp)
if ! { "${as_root[@]}" apt-get update -qq &&
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get install -y -qq --no-install-recommends -o DPkg::Lock::Timeout=600 "${missing[@]}"; } >"$log" 2>&1; then
  tail -20 "$log" >&2
  rm -f "$log"
  exit 1
fi
rm -f "$log"
