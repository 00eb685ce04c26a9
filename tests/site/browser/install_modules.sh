#!/usr/bin/env bash
# Installs the Node modules of package-lock.json into DIR/node_modules; says nothing and needs no
# network when they are there already.
#   tests/site/browser/install_modules.sh DIR
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
directory=$1

mkdir -p "$directory"
# The stamp is the lock file itself, written last: a run that was cut short is made again.
cmp -s "$here/package-lock.json" "$directory/node_modules/.installed" && exit 0
cp "$here/package.json" "$here/package-lock.json" "$directory"
# Certificates that the machine trusts count for npm as well.
export NODE_EXTRA_CA_CERTS=${NODE_EXTRA_CA_CERTS:-/etc/ssl/certs/ca-certificates.crt}
npm ci --prefix "$directory" --ignore-scripts --no-audit --no-fund --loglevel=error
cp "$here/package-lock.json" "$directory/node_modules/.installed"
