# Who includes whom. Input: lines "FILE:LINE:#include "NAME"" of all sources.
# A folder's files may include the headers of their own folder, and those of the folders listed for it here.

BEGIN {
  FS = ":"
  allow("platform/include/platform", "platform/")
  allow("platform/include/host", "platform/ host/")
  allow("platform/src", "platform/ host/ msan/")
  allow("include/msan", "platform/")
  allow("src", "platform/ msan/")
  allow("node", "platform/ host/ msan/")
  # The lists in which items are put in: the frame's, and the table of attributes.
  isList["src/common/msan_init.cpp"] = isList["src/common/obj_attributes.cpp"] = 1
  while (("git ls-files -- 'src/*.h'" | getline file) > 0) ofModule[substr(file, 5)] = 1
}

function allow(folder, prefixes) { allowed[folder] = prefixes }

function ruleOf(file,    folder) {
  for (folder = file; sub(/\/[^\/]*$/, "", folder);) if (folder in allowed) return folder
  return ""  # tests and benchmarks may see everything
}

function complain(why) {
  print $1 ":" $2 ": " name " " why
  bad = 1
}

{
  split($3, quoted, "\"")
  name = quoted[2]
  folder = ruleOf($1)
  if (name !~ /\.h$/) complain("is no header")
  if (folder == "") next

  prefix = name
  if (sub(/\/.*/, "/", prefix) && prefix ~ /^(platform|host|msan)\/$/) {
    if (index(" " allowed[folder], " " prefix) == 0) complain("may not be included by " folder)
  } else if (folder == "src") {
    fromCommon = $1 ~ /^src\/([^\/]*\/)?common\// && !($1 in isList)
    if (fromCommon && name !~ /(^|\/)common\// && name ~ /\//) complain("belongs to an item, common code knows none")
  } else if (name in ofModule) {
    complain("is the module\047s own")
  }
  if (name ~ /\.\.\//) complain("leaves its folder")
}

END { exit bad }
