#!/usr/bin/env bash
# Objects of the vector levels above the plain one leave the linker nothing outside their namespace:
# it would keep one copy for all processors, with instructions that some have not.
#
#   level_objects.sh BUILD_FOLDER
set -euo pipefail
status=0
while IFS= read -r object; do
  level=$(sed -E 's/.*_objects_(v[0-9]+)\.dir.*/\1/' <<<"$object")
  shared=$(nm -C --defined-only "$object" | grep -E '^[0-9a-f]* [WT] ' |
    grep -vE " orvo::$level::" || true)
  [ -z "$shared" ] || {
    echo "$object leaves to the linker: $shared"
    status=1
  }
done < <(find "$1" -name '*.o' -path '*_objects_v[0-9]*')
exit $status
