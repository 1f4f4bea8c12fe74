#!/usr/bin/env bash
# The rooms of the house and the arrows between them: who may include whom. Prints the arrows, and
# fails when a file includes a header of a room that its own may not know, when an arrow is no longer
# used, or when docs/architecture.md shows other arrows than these.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

# room: the rooms whose headers it may include beside its own. The public headers of a room belong to
# it; records, codes and export marks (<orvo/records.h>, <orvo/result_codes.h>, <orvo/export.h>) are
# words that everybody knows.
arrows='
table: methods binding dib platform
methods: binding imaging imaging/adjust imaging/descreen imaging/redeye imaging/regions imaging/trim dib
binding: contract dib platform
contract: dib platform
imaging: platform
imaging/adjust: imaging platform
imaging/descreen: imaging platform
imaging/redeye: imaging/adjust imaging platform
imaging/regions: platform
imaging/trim: platform
dib: platform
platform:
modules/common: contract dib platform
modules/pictures: modules/common platform
modules/ltkrn13n: modules/common contract platform
modules/ltimg13n: modules/common contract
modules/ltfil13n: modules/pictures modules/common contract platform
modules/documents: modules/pictures modules/common
modules/pdflib: modules/documents modules/pictures contract platform
apps/orvo: table dib platform modules/documents modules/pictures modules/common
examples: table dib
'

includes() {
  grep -rnE --include='*.h' --include='*.cpp' --include='*.c' '^ *# *include *["<]' \
    src modules apps examples include/orvo
}

includes | awk -v arrows="$arrows" '
function room_of(path) {
  if (path ~ /^src\/binding\/module_contract\.h$/) return "contract"
  if (match(path, /^src\/imaging\/[a-z]+\//)) return substr(path, 5, RLENGTH - 5)
  if (match(path, /^src\/[a-z]+\//)) return substr(path, 5, RLENGTH - 5)
  if (match(path, /^modules\/[a-z0-9]+\//)) return substr(path, 1, RLENGTH - 1)
  if (path ~ /^apps\/orvo\//) return "apps/orvo"
  if (path ~ /^examples\//) return "examples"
  if (path ~ /^include\/orvo\//) return header_room[substr(path, 14)]
}
# The room of an included header; empty for what is outside the house.
function target_of(from, form, header) {
  if (form == "<") return substr(header, 1, 5) == "orvo/" ? header_room[substr(header, 6)] : ""
  if (header !~ /\//) return from
  if (header ~ /^(common|pictures|documents|ltkrn13n|ltimg13n|ltfil13n|pdflib)\//) header = "modules/" header
  else if (header !~ /^modules\//) header = "src/" header
  return room_of(header)
}
BEGIN {
  words["records.h"]; words["result_codes.h"]; words["export.h"]
  for (word in words) header_room[word] = "words"
  header_room["platform.h"] = header_room["file_limits.h"] = "platform"
  header_room["dib.h"] = header_room["dib_block.h"] = "dib"
  header_room["CLeadTools.h"] = "binding"
  header_room["COrvoCS.h"] = "methods"
  header_room["instance.h"] = header_room["raii.h"] = header_room["orvo.h"] = "table"
  count = split(arrows, lines, "\n")
  for (i = 1; i <= count; ++i) {
    if (lines[i] == "") continue
    room = lines[i]; sub(/:.*/, "", room)
    known[room]
    targets = lines[i]; sub(/[^:]*: */, "", targets)
    n = split(targets, names, " ")
    for (j = 1; j <= n; ++j) allowed[room, names[j]]
  }
}
{
  split($0, place, ":")
  text = $0; sub(/.*# *include *(["<])/, "&\001", text); split(text, parts, "\001")
  form = substr(parts[1], length(parts[1])); header = parts[2]; sub(/[">].*/, "", header)
  from = room_of(place[1])
  to = target_of(from, form, header)
  if (form == "<" && substr(header, 1, 5) == "orvo/" && to == "") {
    print place[1] ":" place[2] ": the room of <" header "> is not known"; bad = 1
  }
  if (to == "" || to == from || to == "words" || from == "words") next
  if (!(from in known)) { print place[1] " lies in no room"; bad = 1; next }
  if (!((from, to) in allowed)) {
    print place[1] ":" place[2] ": " from " includes " header ", which belongs to " to; bad = 1
  }
  used[from, to]
}
END {
  for (pair in allowed) if (!(pair in used)) {
    split(pair, ends, SUBSEP); print "no file goes from " ends[1] " to " ends[2]; bad = 1
  }
  exit bad
}'

picture=$(sed -E '/^$/d; s/: */ -> /; s/ -> $//' <<<"$arrows")
shown=$(awk '/^<!-- arrows -->/ { begun = 1; next } begun && /^```$/ { ++fences; next } fences == 1' docs/architecture.md)
if [ "$picture" != "$shown" ]; then
  echo "docs/architecture.md shows other arrows:"
  diff <(echo "$shown") <(echo "$picture") || true
  exit 1
fi
echo "$picture"
