#!/usr/bin/env bash
# Draws the contact sheets of the shipped content into docs/contact-sheets/:
# every body in a few outfits, every part on the first body, and a strip of
# frames of every body's and every moving part's animation, through the
# game's own drawing, on a virtual display.
# Usage: tools/make-contact-sheets.sh [build-directory]
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
build=$(realpath -m "${1:-$here/build}")
cmake -S "$here" -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
# The game directory brings the datafiles and a fresh copy of data/.
cmake --build "$build" --target make_contact_sheets game_directory -j2 >/dev/null
out=$here/docs/contact-sheets
mkdir -p "$out"
(cd "$build/game" && "$here/tests/support/xvfb-run.sh" "$build/tools/contactsheet/make_contact_sheets" "$out")
echo "contact sheets written to docs/contact-sheets/"
