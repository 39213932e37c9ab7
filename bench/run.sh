#!/bin/sh
# usage: run.sh BUILD-FOLDER
# Prints a table: the work and its size, the best of nine runs of the plug-in and of the bare calls
# in microseconds, and their ratio. Both run in turns, so that what else the machine does hits both.
set -eu
"$1/workbench-int-bench" --benchmark_format=json --benchmark_repetitions=9 \
    --benchmark_enable_random_interleaving=true --benchmark_min_time=0.05 |
    jq -r '
        [.benchmarks[] | select(.run_type == "iteration") |
            (.run_name | capture("(?<work>.*)_(?<side>plug_in|bare)/(?<size>[0-9]+)")) + {time: .real_time}] |
        group_by([.work, (.size | tonumber)])[] |
        (map(select(.side == "plug_in").time) | min) as $plug_in |
        (map(select(.side == "bare").time) | min) as $bare |
        [.[0].work, .[0].size, ($plug_in / 10 | round / 100), ($bare / 10 | round / 100),
            ($plug_in / $bare * 100 | round / 100)] | @tsv' |
    awk 'BEGIN { printf "%-20s %10s %12s %12s %7s\n", "work", "size", "plug-in", "bare", "ratio" }
        { printf "%-20s %10s %12.2f %12.2f %7.2f\n", $1, $2, $3, $4, $5 }'
