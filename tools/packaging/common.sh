# Sourced by tools/package and the scripts of this folder, with `top` set: the release, and what all packages have in common.
# shellcheck shell=bash disable=SC2154,SC2034  # top is the caller's, who uses what stands here
out=$top/build/packages
stage=$out/stage
heading=$(grep -m1 -E '^## [0-9]' "$top/CHANGELOG.md")
version=$(sed -E 's/^## ([0-9.]+) .*/\1/' <<<"$heading")
release_date=$(sed -E 's/.*\(([0-9-]+)\)$/\1/' <<<"$heading")
# The same input gives the same bytes: every time in a package is that of the release.
SOURCE_DATE_EPOCH=$(date -u -d "$release_date 12:00" +%s)
export SOURCE_DATE_EPOCH LC_ALL=C TZ=UTC
umask 022

say() { printf '%s\n' "$*" >&2; }

fail() {
  say "tools/package: $1"
  exit 1
}

# with_release FILE: the text, with version and date of the release put in
with_release() { sed -e "s/@VERSION@/$version/g" -e "s/@DATE@/$release_date/g" "$1"; }

# one_time FOLDER: everything in it, and itself, is of the time of the release
one_time() { find "$1" -exec touch -h -d "@$SOURCE_DATE_EPOCH" {} +; }

# shipped FOLDER [HELP]: what all packages have beside their programs
shipped() {
  mkdir -p "$1"
  cp -r "$top/runtime/." "$1/"
  cp "$top/CHANGELOG.md" "$1/CHANGES.md"
  [ -z "${2:-}" ] || cp -r "$2" "$1/help"
}
