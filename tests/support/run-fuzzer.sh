#!/usr/bin/env bash
# Runs a libFuzzer harness on a fresh copy of its seeds: every seed once, then
# new inputs for the rest of the time given.
# Usage: run-fuzzer.sh FUZZER SEED_DIR [SECONDS]
set -eu
fuzzer=$1
seeds=$2
seconds=${3:-${TK_FUZZ_SECONDS:-45}}
# The harness runs in a directory of its own, beside the corpus: the program's
# code may write files (an error log) into the working directory, and those
# must not become inputs.
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir "$work/corpus"
if [ -d "$seeds" ]; then cp -r "$seeds"/. "$work/corpus"/; fi
cd "$work"
"$fuzzer" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 \
  -print_final_stats=1 corpus 2>&1 | tail -n 40
exit "${PIPESTATUS[0]}"
