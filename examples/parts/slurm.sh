#!/bin/bash
# Reads a site in parts as an array job of Slurm, and makes the index when all have ended well:
#
#     CONFIG=/shared/vela_index.toml STATE=/shared/vela/parts slurm.sh 16
#
# The number is that of the parts. Site, configuration, state and the place of the index lie on a file
# system that all nodes share.
set -eu

config=${CONFIG:-vela_index.toml}
state=${STATE:-parts}
program=${VELA_INDEX:-vela_index}

# As a task of the array.
if [ -n "${SLURM_ARRAY_TASK_ID:-}" ]; then
  exec "$program" --quiet --config "$config" --jobs "${SLURM_CPUS_PER_TASK:-1}" \
    --part "$SLURM_ARRAY_TASK_ID/$SLURM_ARRAY_TASK_COUNT" --state "$state/$SLURM_ARRAY_TASK_ID"
fi

parts=${1:?the number of parts}
mkdir -p "$state"
export CONFIG=$config STATE=$state VELA_INDEX=$program
array=$(sbatch --parsable --job-name=vela_parts --array="1-$parts" --cpus-per-task=2 \
  --mem=2G --time=2:00:00 "$0")

merge=("$program" --config "$config")
for number in $(seq "$parts"); do merge+=(--merge "$state/$number"); done
sbatch --parsable --job-name=vela_merge --dependency="afterok:$array" --cpus-per-task=1 \
  --mem=4G --time=2:00:00 --wrap="$(printf '%q ' "${merge[@]}")"
