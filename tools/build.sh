#!/usr/bin/env bash
# Installs what is missing, then configures and builds Tumblekin into build/.
# The game directory is build/game. Extra arguments go to the configure step.
set -eu
cd "$(dirname "$0")/.."
tools/install-deps.sh
cmake -S . -B build -DCMAKE_BUILD_TYPE=RelWithDebInfo "$@" >/dev/null
cmake --build build -j"$(nproc)"
