#!/usr/bin/env bash
# What the linker made of the build: what the libraries export, where they look for others, how they
# are hardened.
#
#   binaries.sh BUILD_FOLDER HARDENED      HARDENED: 1 where the compiler optimises and guards
set -euo pipefail
# No grep -q below: it ends at the first match, and a pipe that breaks counts as a failure.
build=$1 hardened=$2
status=0
fail() {
  echo "$*"
  status=1
}

# exports FILE EXPRESSION: each dynamic symbol, as C++ writes it, matches.
exports() {
  local odd
  odd=$(nm -DC --defined-only "$build/lib/$1" | cut -d' ' -f3- | grep -vE "^($2)" || true)
  [ -z "$odd" ] || fail "$1 exports more than its interface: $odd"
}
class='COrvoCS|CLeadTools'
exports liborvo.so "(CreateORVOInstance|DestroyORVOInstance)$|($class)::|(vtable|typeinfo( name)?) for ($class)$"
exports liborvo_platform.so '[A-Za-z_]\w*$'
exports ltkrn13n.dll '(L_|Kernel)\w+$'
exports ltimg13n.dll 'L_\w+$'
exports ltfil13n.dll 'L_\w+$'
exports orvo_pages.so 'OpenPdfFile$'
[ ! -e "$build/lib/PdfLib.dll" ] || exports PdfLib.dll 'PDF_\w+$'
[ ! -e "$build/lib/orvo_documents.so" ] || exports orvo_documents.so 'NewDocumentMaker$'

binaries=()
while IFS= read -r file; do
  [ "$(head -c 4 "$file" | tail -c 3)" != ELF ] || binaries+=("$file")
done < <(find "$build/lib" "$build/bin" -type f)
shipped=("$build"/lib/liborvo{,_platform}.so "$build"/lib/*.dll "$build"/lib/orvo_documents.so "$build"/lib/orvo_pages.so "$build"/bin/orvo)

for file in "${binaries[@]}"; do
  paths=$(readelf -d "$file" | sed -nE 's/.*R(UN)?PATH.*\[(.*)\]/\2/p')
  # Each path of the list is absolute or begins at the file itself; an empty one is the working folder.
  [[ -z $paths || :$paths: =~ ^:((/|\$ORIGIN)[^:]*:)+$ ]] || fail "$file looks for libraries in '$paths'"
done

if [ "$hardened" = 1 ]; then
  for file in "${shipped[@]}"; do
    readelf -lW "$file" | grep GNU_RELRO >/dev/null || fail "$file: tables of addresses stay writable"
    readelf -dW "$file" | grep -E 'BIND_NOW|FLAGS_1.*NOW' >/dev/null || fail "$file: bound late"
    readelf -hW "$file" | grep 'Type:.*DYN' >/dev/null || fail "$file: lies at a fixed address"
  done
  for file in "$build"/lib/liborvo.so "$build"/lib/{ltfil13n,ltkrn13n}.dll "$build"/bin/orvo; do
    nm -D "$file" | grep __stack_chk_fail >/dev/null || fail "$file: stacks are not guarded"
  done
  nm -D "$build"/bin/orvo "$build"/lib/*.dll | grep '__[a-z]*_chk@' >/dev/null || fail "copies are not checked"
fi

"$(dirname "${BASH_SOURCE[0]}")/level_objects.sh" "$build" || status=1
exit $status
