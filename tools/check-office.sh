#!/usr/bin/env bash
# tools/check-office.sh [BUILD FOLDER]: writes values to a CSV and to both kinds of spreadsheets, lets LibreOffice open each and save it
# again, reads what it saved, and names every value that is not the same. Needs libreoffice-calc, which is large, so this is no part of
# ./test and .ci/run. To be run by hand after a change in src/dataview/sheets or src/dataview/files.
set -euo pipefail
top=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
values=${1:-$top/build/dev}/tools/office_values

command -v soffice >/dev/null || { echo "LibreOffice is not there. Install libreoffice-calc-nogui." >&2; exit 2; }
[ -x "$values" ] || { echo "$values is not there. Build it with tools/build dev office_values." >&2; exit 2; }
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

"$values" write "$folder" "$top/runtime/Templates/DataTypes_Tmp"
saved=()
for pair in xls:xls xls:xlsx xlsx:xls xlsx:xlsx csv:csv; do # a CSV has a line for each type, so it is no sheet saved otherwise
  from=${pair%:*} to=${pair#*:}
  soffice -env:UserInstallation="file://$folder/profile" --headless --convert-to "$to" --outdir "$folder/out" "$folder/values.$from" >/dev/null 2>&1
  mv "$folder/out/values.$to" "$folder/$from-saved-as.$to"
  saved+=("$folder/$from-saved-as.$to")
done
"$values" check "${saved[@]}"
