#!/usr/bin/env bash
# Puts real sites for the tests into FOLDER: html, the pages of Debian's package python3.11-doc, and
# git-doc, those of that package. Does nothing for what is there.
#   scripts/fetch_real_content.sh FOLDER
set -euo pipefail
folder=$1
mkdir -p "$folder"
cd "$folder"

unpack() {  # PACKAGE
  rm -rf unpacked
  # The package lists may be older than the archive, or not be there at all.
  if ! apt-get download -qq "$1" >fetch.log 2>&1; then
    as_root=()
    [ "$(id -u)" -eq 0 ] || as_root=(sudo)
    if ! { "${as_root[@]}" apt-get update -qq && apt-get download -qq "$1"; } >>fetch.log 2>&1; then
      cat fetch.log >&2
      exit 1
    fi
  fi
  dpkg-deb -x "$1"_*.deb unpacked
  rm "$1"_*.deb
}

if [ ! -e .complete ]; then
  rm -rf html
  echo "Fetching the pages of python3.11-doc ..." >&2
  unpack python3.11-doc
  # The sources of the pages repeat their text and are no part of the site.
  rm -rf unpacked/usr/share/doc/python3.11/html/_sources
  mv unpacked/usr/share/doc/python3.11/html html
  touch .complete
fi

if [ ! -d git-doc ]; then
  echo "Fetching the pages of git-doc ..." >&2
  unpack git-doc
  # All but the pages are sources of theirs, and links to files of other packages.
  find unpacked/usr/share/doc/git-doc ! -type d ! \( -type f -name '*.html' \) -delete
  mv unpacked/usr/share/doc/git-doc git-doc
fi
rm -rf unpacked
