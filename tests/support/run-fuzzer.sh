#!/usr/bin/env bash
# Runs a libFuzzer harness for a bounded time on a fresh copy of its seeds.
# Usage: run-fuzzer.sh FUZZER SEED_DIR [SECONDS]
set -eu
fuzzer=$1
seeds=$2
seconds=${3:-${TK_FUZZ_SECONDS:-45}}
corpus=$(mktemp -d)
trap 'rm -rf "$corpus"' EXIT
if [ -d "$seeds" ]; then cp -r "$seeds"/. "$corpus"/; fi
cd "$corpus"
"$fuzzer" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 \
  -print_final_stats=1 "$corpus" 2>&1 | tail -n 25
exit "${PIPESTATUS[0]}"
