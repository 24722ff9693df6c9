#!/usr/bin/env bash
# tools/screenshots.sh: makes the pictures in docs/images from the real windows, without a screen: light, dark, and at 200 %. Then it tells
# which of them are others than before, and leaves those in build/pictures, with what has changed in red.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

tools/build dev screenshots
mkdir -p docs/images
# A screen on which every window has its full size; the toolkit's own is 800 pixels wide.
screen=$(mktemp)
before=$(mktemp -d)
state=$(mktemp -d)
trap 'rm -rf "$screen" "$before" "$state"' EXIT
export XDG_STATE_HOME=$state  # the journals of the pictures keep their heads as everywhere
cp docs/images/*.png "$before" 2>/dev/null || true
echo '{"screens": [{"name": "wide", "x": 0, "y": 0, "width": 3840, "height": 2400}]}' >"$screen"
export QT_QPA_PLATFORM=offscreen:configfile=$screen QT_LOGGING_RULES="qt.qpa.*=false"
program=build/dev/tools/screenshots
"$program" docs/images ""
"$program" docs/images "-dark" dark
QT_SCALE_FACTOR=2 "$program" docs/images "-200"
# Of which release they are: the tests of the help hold it against the programs' own.
sed -nE '/^## [0-9]/{s/^## ([0-9.]+) .*/\1/p;q}' CHANGELOG.md >docs/images/release.txt
rm -rf build/pictures
mkdir -p build/pictures
"$program" compare "$before" docs/images build/pictures
