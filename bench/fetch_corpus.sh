#!/usr/bin/env bash
# Puts real pages into FOLDER/SIZE: the HTML files of Debian's documentation packages, and nothing
# else of them. Does nothing for a size that is there.
#   bench/fetch_corpus.sh FOLDER small|medium|large
# small: one manual, 1,169 pages. medium: seven packages, 6,561. large: twelve, 37,209 pages of
# 0.6 GB. A larger size holds the smaller ones, as hard links to one copy. The packages stay in
# FOLDER/packages: delete them to fetch newer ones.
set -euo pipefail
if [ $# -ne 2 ]; then
  echo "usage: bench/fetch_corpus.sh FOLDER small|medium|large" >&2
  exit 2
fi
folder=$1
size=$2

packages=(postgresql-doc-15)
case $size in
  small) ;;
  medium | large)
    packages+=(python3.11-doc sqlite3-doc git-doc python-django-doc apache2-doc qtbase5-doc-html)
    ;;
  *)
    echo "fetch_corpus.sh: no such size: $size" >&2
    exit 2
    ;;
esac
if [ "$size" = large ]; then
  packages+=(openjdk-17-doc libboost1.81-doc linux-doc-6.1 python-scipy-doc libgtk-4-doc)
fi
[ -e "$folder/.complete-$size" ] && exit 0

mkdir -p "$folder/packages" "$folder/pages"
cd "$folder"
missing=()
for package in "${packages[@]}"; do
  [ -d "pages/$package" ] || compgen -G "packages/${package}_*.deb" >/dev/null ||
    missing+=("$package")
done
if [ ${#missing[@]} -gt 0 ]; then
  echo "Fetching ${missing[*]} ..." >&2
  # The package lists may be older than the archive, or not be there at all.
  if ! (cd packages && apt-get download -qq "${missing[@]}") >fetch.log 2>&1; then
    as_root=()
    [ "$(id -u)" -eq 0 ] || as_root=(sudo)
    if ! { "${as_root[@]}" apt-get update -qq &&
      (cd packages && apt-get download -qq "${missing[@]}"); } >>fetch.log 2>&1; then
      cat fetch.log >&2
      exit 1
    fi
  fi
fi

for package in "${packages[@]}"; do
  [ -d "pages/$package" ] && continue
  rm -rf unpacked
  dpkg-deb -x "packages/${package}"_*.deb unpacked
  find unpacked -type f -name '*.html.gz' -exec gunzip {} +
  # Links are dropped: what they lead to is there under its own name, and would count twice.
  find unpacked ! -type d ! \( -type f -name '*.html' \) -delete
  find unpacked -type d -empty -delete
  mv unpacked/usr/share "pages/$package"
  rm -rf unpacked
done

rm -rf "$size"
mkdir "$size"
for package in "${packages[@]}"; do
  cp -al "pages/$package" "$size/$package"
done
touch ".complete-$size"
echo "$folder/$size: $(find "$size" -type f | wc -l) pages" >&2
