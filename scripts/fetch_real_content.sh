#!/usr/bin/env bash
# Puts the HTML pages of Debian's package python3.11-doc into FOLDER/html, as a real site for the
# tests. Does nothing when they are there.
#   scripts/fetch_real_content.sh FOLDER
set -euo pipefail
folder=$1
package=python3.11-doc
[ -e "$folder/.complete" ] && exit 0

rm -rf "$folder"
mkdir -p "$folder"
cd "$folder"
echo "Fetching the pages of $package ..." >&2
# The package lists may be older than the archive, or not be there at all.
if ! apt-get download -qq $package >fetch.log 2>&1; then
  as_root=()
  [ "$(id -u)" -eq 0 ] || as_root=(sudo)
  if ! { "${as_root[@]}" apt-get update -qq && apt-get download -qq $package; } >>fetch.log 2>&1; then
    cat fetch.log >&2
    exit 1
  fi
fi
dpkg-deb -x ${package}_*.deb unpacked
# The sources of the pages repeat their text and are no part of the site.
mv unpacked/usr/share/doc/python3.11/html html
rm -rf html/_sources unpacked ${package}_*.deb
touch .complete
