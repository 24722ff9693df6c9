#!/usr/bin/env bash
# tools/screenshots.sh: makes the pictures in docs/images from the real windows, without a screen: light, dark, and at 200 %.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

tools/build dev screenshots
mkdir -p docs/images
export QT_QPA_PLATFORM=offscreen QT_LOGGING_RULES="qt.qpa.*=false"
program=build/dev/tests/screenshots
"$program" docs/images ""
"$program" docs/images "-dark" dark
QT_SCALE_FACTOR=2 "$program" docs/images "-200"
