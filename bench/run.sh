#!/bin/bash
# usage: run.sh BUILD-FOLDER
# Prints a table: the work and its size, the best of fifteen runs of ours and of the bare one in
# microseconds, and their ratio. Both run in turns, so that what else the machine does hits both.
set -euo pipefail
TMPDIR=$(mktemp -d /tmp/bench.XXXXXX) # DEFAULT_SEARCH_PATH cannot hold a blank
export TMPDIR
trap 'rm -rf "$TMPDIR"' EXIT
WB_TRIAL=$1/wb-trial "$1/workbench-int-bench" --benchmark_format=json --benchmark_repetitions=15 \
    --benchmark_enable_random_interleaving=true --benchmark_min_time=0.05 |
    jq -r '
        [.benchmarks[] | select(.run_type == "iteration") |
            (.run_name | capture("(?<work>.*)_(?<side>ours|bare)/(?<size>[0-9]+)")) + {time: .real_time}] |
        group_by([.work, (.size | tonumber)])[] |
        (map(select(.side == "ours").time) | min) as $ours |
        (map(select(.side == "bare").time) | min) as $bare |
        [.[0].work, .[0].size, ($ours / 10 | round / 100), ($bare / 10 | round / 100),
            ($ours / $bare * 1000 | round / 1000)] | @tsv' |
    awk 'BEGIN { printf "%-20s %10s %12s %12s %7s\n", "work", "size", "ours, us", "bare, us", "ratio" }
        { printf "%-20s %10s %12.2f %12.2f %7.3f\n", $1, $2, $3, $4, $5 }'
