# Checks every #include of the C++ files against layers.txt and headers.txt.
# Input, in this order: layers.txt, headers.txt, a list of all files of the tree, then the C++ files.

function Fail(text) { printf "%s:%d: %s\n", FILENAME, FNR, text; failed = 1 }

# The folders that a row of the table names, groups taken apart, as " a b c ".
function Folders(text,   words, count, i, result) {
  count = split(text, words, " ")
  result = " "
  for (i = 1; i <= count; ++i) result = result ((words[i] in group) ? substr(group[words[i]], 2) : words[i] " ")
  return result
}

# The library of a file: the longest folder of the table that contains it; below it a ui/ folder is a library of its own.
function LibraryOf(file,   folder) {
  folder = file
  while (sub(/\/[^\/]*$/, "", folder)) {
    if (folder in arrows) return folder
    if (folder ~ /\/ui$/ && (substr(folder, 1, length(folder) - 3) in arrows || folder == "src/desktop/ui")) return folder
  }
  return ""
}

function MayInclude(library, other,   parent, allowed) {
  if (library == other) return 1
  if (library ~ /\/ui$/) {
    parent = substr(library, 1, length(library) - 3)
    allowed = arrows[parent] parent " src/desktop src/base src/desktop/ui "
  } else {
    allowed = arrows[library]
  }
  return index(allowed, " all ") || index(allowed, " " other " ")
}

# The file that a header's name means, "" when there is none: from the include roots only; a test may also name the helper beside it.
function Resolve(name,   i, beside) {
  for (i = 1; i <= 3; ++i) if ((roots[i] name) in exists) return roots[i] name
  beside = FILENAME
  sub(/[^\/]*$/, name, beside)
  return beside ~ /^tests\// && name !~ /\// && beside in exists ? beside : ""
}

BEGIN { roots[1] = "src/"; roots[2] = "libs/"; roots[3] = "" }

FNR == 1 { ++inputs }
inputs <= 2 && (/^#/ || NF == 0) { next }

inputs == 1 {
  if ($2 == "=") { name = $1; $1 = $2 = ""; group[name] = Folders($0) }
  else { library = $1; sub(/:$/, "", library); $1 = ""; arrows[library] = Folders($0) }
  next
}
inputs == 2 { ++libraries; header[libraries] = "^(" $1 ")$"; place[libraries] = "^" $2; next }
inputs == 3 { exists[$0] = 1; next }

/^[ \t]*#[ \t]*include[ \t]*[<"]/ {
  name = $0
  sub(/^[^<"]*[<"]/, "", name)
  sub(/[>"].*$/, "", name)

  if ($0 ~ /^[^"]*</) {
    for (i = 1; i <= libraries; ++i)
      if (name ~ header[i] && FILENAME !~ place[i]) Fail("<" name "> may be included only in " substr(place[i], 2))
    next
  }

  library = LibraryOf(FILENAME)
  target = Resolve(name)
  if (library == "") Fail("this folder is no library of tools/lint/layers.txt")
  else if (target == "") Fail("\"" name "\" is no header of this tree; headers are named by their library, from src/, libs/ or the top")
  else if (LibraryOf(target) == "") Fail("\"" name "\" is in no library of tools/lint/layers.txt")
  else if (!MayInclude(library, LibraryOf(target))) Fail(library " may not include " LibraryOf(target) " (\"" name "\")")
}

END { exit failed }
