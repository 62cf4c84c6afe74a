# Looks for copies between the files of items: eight lines in a row that are equal when each file's item is called X.
#
# What items have in common by design does not count: includes, the rows of a description (".name = ..."), declarations, and
# functions that only hand their arguments on to a shared one. Nor do blank lines, comments, and the case of letters.

BEGIN { run = 8 }

FNR == 1 { finish() }
{ line[FNR] = $0; count = FNR; file = FILENAME }
END { finish(); exit bad }

function finish(    i, text, item, window, place, kept, k, key) {
  item = namePattern(file)
  kept = 0
  for (i = 1; i <= count; i++) {
    if (line[i] ~ /^[a-z].*\{$/ && line[i + 1] ~ /^ +return .*;$/ && line[i + 2] == "}") {
      i += 2
      continue
    }
    if (line[i] ~ /^[A-Za-z].*(;|\{ return .*; \})$/ || line[i] ~ /^ *\.[A-Za-z]+ = /) continue
    text = tolower(line[i])
    sub(/[ \t]*\/\/.*/, "", text)
    gsub(/[ \t]+/, " ", text)
    sub(/^ /, "", text)
    if (text == "" || text ~ /^#(include|pragma)/) continue
    gsub(item, "x", text)

    window[kept % run] = text
    place[kept % run] = i
    if (++kept < run) continue
    key = ""
    for (k = 0; k < run; k++) key = key window[(kept + k) % run] "\n"
    compare(key, file, place[kept % run])
  }
  count = 0
}

# The first line of a run that was seen before is told; the lines that go on with it are not.
function compare(key, file, begin) {
  if (!(key in seen)) {
    seen[key] = file
    where[key] = begin
    told = 0
  } else if (seen[key] != file) {
    if (!told) print file ":" begin ": " run " lines from here stand at " seen[key] ":" where[key] " too"
    told = bad = 1
  }
}

# "voiceMD5.cpp" is the item voiceMD5, also written voice md5, VOICE_MD5 or voicemd5.
function namePattern(file) {
  sub(/.*\//, "", file)
  sub(/\..*/, "", file)
  while (match(file, /[a-z0-9][A-Z]/)) file = substr(file, 1, RSTART) " " substr(file, RSTART + 1)
  gsub(/[ _-]+/, "[ _-]?", file)
  return tolower(file)
}
