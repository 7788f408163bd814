#!/usr/bin/env bash
# Sets up, builds and runs the whole test suite: unit tests, GL tests and
# end-to-end tests on virtual displays, and the fuzz harnesses for a bounded
# time in an address- and undefined-behaviour-sanitizer build.
set -eu
cd "$(dirname "$0")/.."
FUZZ_BUDGET_SECONDS=60
tools/install-deps.sh

# The fuzz harnesses need clang's libFuzzer; they are built apart, sanitized.
fuzzers=$(ls tests/fuzz/*_fuzz.cpp 2>/dev/null | xargs -r -n1 basename | sed 's/\.cpp$//' | tr '\n' ' ')
fuzz_args=()
if [ -n "$fuzzers" ]; then
  echo "== Building the fuzz harnesses (clang, ASan + UBSan)"
  # Light optimisation and line tables only: quick to build, still readable reports.
  CC=clang CXX=clang++ cmake -S . -B build-fuzz -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DCMAKE_CXX_FLAGS_RELWITHDEBINFO="-O1 -gline-tables-only" \
    -DTUMBLEKIN_SANITIZE=ON -DTUMBLEKIN_FUZZ=ON >/dev/null
  # shellcheck disable=SC2086
  cmake --build build-fuzz -j"$(nproc)" --target $fuzzers
  fuzz_args=(-DTUMBLEKIN_FUZZ_BUILD_DIR="$PWD/build-fuzz")
fi

echo "== Building"
tools/build.sh "${fuzz_args[@]}"

echo "== Testing"
# All harnesses together get about a minute: each replays its seeds and then
# fuzzes for its share of it.
count=$(echo "$fuzzers" | wc -w)
if [ "$count" -gt 0 ]; then
  export TK_FUZZ_SECONDS=$(( FUZZ_BUDGET_SECONDS / count > 2 ? FUZZ_BUDGET_SECONDS / count : 2 ))
fi
ctest --test-dir build -j"$(nproc)" --output-on-failure
