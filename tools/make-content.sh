#!/usr/bin/env bash
# Regenerates the shipped data/ directory: builds and runs the content
# generator (models, textures, catalogues, pictures, cues), then renders the
# thumbnails from the models on a virtual display.
# Usage: tools/make-content.sh [build-directory]
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
build=$(realpath -m "${1:-$here/build}")
cmake -S "$here" -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build "$build" --target make_content -j2 >/dev/null
stage=$(mktemp -d)
trap 'rm -rf "$stage"' EXIT
"$build/tools/content/make_content" "$stage"
rm -rf "$here/data"
cp -r "$stage/data" "$here/data"
cp "$stage/Tumblekin.txt" "$here/Tumblekin.txt"
cmake --build "$build" --target make_thumbnails -j2 >/dev/null
(cd "$here" && "$here/tests/support/xvfb-run.sh" "$build/tools/thumbnails/make_thumbnails" data)
echo "data/ regenerated"
