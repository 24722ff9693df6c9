# Sourced by the scripts of this folder, with `top` set: their folders, steps with a log and a time, sources of the system's packages.
# shellcheck shell=bash disable=SC2154,SC2034  # top is the caller's
work=$top/build/windows
prefix=$work/prefix
mkdir -p "$work/sources" "$work/logs" "$prefix/lib/pkgconfig" "$prefix/include"

# Of everything that is packaged: a guarded stack, marked targets of jumps, no folder of this machine, no time, Windows 10 and newer. The preset `windows` says the same.
no_folders=-ffile-prefix-map=$work=.
safe_flags() { printf '%s\n' -fstack-protector-strong -fcf-protection=full "$no_folders"; }
link_flags=--no-insert-timestamp,--major-subsystem-version,10,--minor-subsystem-version,0

say() { printf '%s\n' "$*" >&2; }

# step NAME COMMAND...: runs the command with its output in a log, and notes how long it took.
step() {
  local name=$1 begin=$SECONDS
  shift
  say "$name ..."
  if ! "$@" </dev/null >"$work/logs/$name.log" 2>&1; then
    tail -30 "$work/logs/$name.log" >&2
    say "$name failed; the whole output is in $work/logs/$name.log"
    return 1
  fi
  printf '%5d s  %s\n' "$((SECONDS - begin))" "$name" | tee -a "$work/times.txt" >&2
}

# The system's own list of packages names where their sources are, too; nothing of the system is changed.
source_lists() {
  local state=$work/apt
  mkdir -p "$state/parts" "$state/lists/partial" "$state/cache/archives/partial"
  local file
  for file in /etc/apt/sources.list.d/*.sources; do
    [ -e "$file" ] && grep -q 'debian' "$file" && sed 's/^Types:.*/Types: deb-src/' "$file" >"$state/parts/$(basename "$file")"
  done
  [ -s /etc/apt/sources.list ] && sed -n 's/^deb /deb-src /p' /etc/apt/sources.list >"$state/parts/all.list"
  sources_by_apt update -q
}

sources_by_apt() {
  local state=$work/apt
  apt-get -o Dir::Etc::sourcelist=/dev/null -o "Dir::Etc::sourceparts=$state/parts" -o "Dir::State::lists=$state/lists" -o "Dir::Cache=$state/cache" "$@"
}

# fetch PACKAGE: its source, unpacked and patched, as build/windows/sources/PACKAGE. An update of which the mirror has no source gives way to the
# version that the release came with.
fetch() {
  local package=$1 folder release
  folder=$(mktemp -d "$work/sources/.$package.XXXX")
  release=$(sed -n "s/^VERSION_CODENAME=//p" /etc/os-release)
  (cd "$folder" && { sources_by_apt source -q "$package" || sources_by_apt source -q "$package/$release"; }) || return 1
  rm -rf "${work:?}/sources/$package"
  mv "$(find "$folder" -mindepth 1 -maxdepth 1 -type d)" "$work/sources/$package" || return 1
  rm -rf "$folder"
}

# Qt for Windows is built without its reader of drawings, which no source package has. Pictures that are as before stay, so that nothing is linked anew.
pictures() {
  local sizes new=$work/icons.new
  sizes=$(sed -nE 's/^set\(sizes ([0-9 ]+)\).*/\1/p' "$top/src/desktop/ui/CMakeLists.txt")
  rm -rf "$new"
  "$top/build/release/tools/icon_pictures" "$new" "${sizes// /,}" "$top"/src/desktop/ui/icons/*.svg &&
    "$top/build/release/tools/icon_pictures" "$new" --program "$top/packaging/telepanel-tools.svg" || return 1
  diff -rq "$new" "$work/icons" || { rm -rf "$work/icons" && mv "$new" "$work/icons"; }
}

# For the help: a library of its own, which whoever has the programs may replace, as its licence asks for. It hands out its interface and nothing else.
# The linker makes its address of the name that it is given, so that is one without a folder.
libchm() {
  local -a flags
  local sources=$work/sources/chmlib/src
  mapfile -t flags < <(safe_flags)
  mkdir -p "$work/shared" && cd "$work/shared" &&
    { echo EXPORTS && printf 'chm_%s\n' open close set_param resolve_object retrieve_object enumerate enumerate_dir; } >libchm.def &&
    x86_64-w64-mingw32-gcc-posix -O2 "${flags[@]}" -DWIN32 -shared -static -o libchm.dll "$sources/chm_lib.c" "$sources/lzx.c" libchm.def \
      "-Wl,--out-implib,libchm.dll.a,$link_flags"
}

# What the windows stand on.
window_parts() {
  "$top/tools/build" release icon_pictures
  "$top/tools/windows/build" --libraries
  "$top/tools/windows/build-qt"
  [ -e "$work/shared/libchm.dll.a" ] || (step libchm libchm)
  step pictures pictures
}
