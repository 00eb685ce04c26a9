#!/bin/sh
# Reads a site in parts with GNU parallel and makes the index from them.
#
#     PARTS=8 HOSTS=web1,web2,: CONFIG=/etc/vela/vela_index.toml STATE=/srv/vela/parts parallel.sh
#
# HOSTS are names for ssh with "," between them, ":" is this machine; without it all is done here.
# Site, configuration and state must lie under the same names on all of them, as on a shared disk,
# and the program and its libraries must be of the same versions. A part that fails on one host is
# read on another, twice at most. PARALLEL_SSH may name another command than "ssh", such as one with
# a configuration of its own ("ssh -F FILE").
set -eu

config=${CONFIG:-vela_index.toml}
parts=${PARTS:-4}
state=${STATE:-parts}
program=${VELA_INDEX:-vela_index}

mkdir -p "$state"
# shellcheck disable=SC2086  # HOSTS is one word or none
seq "$parts" | parallel ${HOSTS:+--sshlogin "$HOSTS" --retries 3} --halt now,fail=1 --line-buffer \
  "$program" --quiet --config "$config" --jobs 1 --part "{}/$parts" --state "$state/{}"

set --
for number in $(seq "$parts"); do set -- "$@" --merge "$state/$number"; done
exec "$program" --config "$config" "$@"
