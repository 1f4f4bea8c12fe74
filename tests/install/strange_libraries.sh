#!/usr/bin/env bash
# Libraries that strangers leave where a program happens to run are not loaded, whatever they are
# called; what lies beside the toolkit under a module's name and is none costs what needs it.
#
#   strange_libraries.sh BUILD_FOLDER COMPILER
set -euo pipefail
build=$(realpath "$1") compiler=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
status=0
fail() {
  echo "$*"
  status=1
}

# Tells in a file that it was loaded, and from where.
export LOADED=$work/loaded
cat >stranger.cpp <<'END'
#include <dlfcn.h>
#include <cstdio>
#include <cstdlib>
[[gnu::constructor]] static void Tell() {
  Dl_info self;
  dladdr(reinterpret_cast<void*>(&Tell), &self);
  std::FILE* const file = std::fopen(std::getenv("LOADED"), "a");
  std::fprintf(file, "%s\n", self.dli_fname);
  std::fclose(file);
}
END
"$compiler" -shared -fPIC stranger.cpp -o stranger

# An installed tree, in a path that is longer than a module's may be, and one that is not.
own=(ltkrn13n.dll ltimg13n.dll ltfil13n.dll PdfLib.dll orvo_pages.so orvo_documents.so)
long=$work/$(printf '%0120d/' 1 2)tree
mkdir -p tree/bin tree/lib files strangers "$long"
cp "$build"/bin/orvo tree/bin
for file in "${own[@]}" liborvo.so.1 liborvo_platform.so.1; do cp "$build/lib/$file" tree/lib; done
cp -r tree/* "$long"
# Those of others that are linked, and those whose names are kept for later.
foreign=$(grep -aoEh 'lib[A-Za-z0-9+_-]+\.so\.[0-9.]+' tree/bin/orvo tree/lib/* | sort -u)

# A file for each library that comes late; some hold no more than the mark that calls for it.
(
  cd files
  convert -size 40x30 -seed 7 plasma: photo.jpg
  for kind in pcx gif webp; do convert photo.jpg "of_$kind.$kind"; done
  printf '\0\0\0\30ftypheic\0\0\0\0mif1heic' >mark.heic
  printf '\377\12\177' >spot.jxl
  "$work/tree/bin/orvo" pdf photo.jpg -o page.pdf
)

# Runs the client of a tree over all of that, in a folder.
visit() {
  local orvo=$1/bin/orvo result
  cd "$2"
  rm -rf "$LOADED" out
  for command in formats version "info $work/files/page.pdf" "pdf $work/files/photo.jpg -o out/a.pdf" \
    "pdf $work/files/of_gif.gif -o out/b.pdf" "convert --to png $(echo "$work"/files/[!p]*.*) -o out/"; do
    result=0
    # shellcheck disable=SC2086
    "$orvo" $command >/dev/null 2>"$work/messages" || result=$?
    [ $result -lt 126 ] || fail "orvo $command ends with $result: $(<"$work/messages")"
  done
  cd "$work"
}
nobody_came() { [ ! -e "$LOADED" ] || fail "$1: loaded $(sort -u "$LOADED")"; }

# In the working folder and beside the program.
for name in "${own[@]}" $foreign; do
  cp stranger "strangers/$name"
  cp stranger "tree/bin/$name"
done
visit "$work/tree" strangers
nobody_came "the working folder, and beside the program"
[ "$(find strangers/out -name '*.png' | wc -l)" = 3 ] || fail "the work is not done"

# On the way up from a toolkit that lies too deep for its modules' paths.
folder=$long
while [ "$folder" != "$work" ]; do
  folder=$(dirname "$folder")
  for name in "${own[@]}"; do cp stranger "$folder/$name"; done
done
visit "$long" files
nobody_came "folders above the toolkit"

# In the loader's own list of folders: of no use for what is ours, and all that is needed for others.
rm -rf strangers/*
for name in "${own[@]}"; do cp stranger "strangers/$name"; done
LD_LIBRARY_PATH=$work/strangers visit "$work/tree" files
nobody_came "LD_LIBRARY_PATH"
cp stranger strangers/libGraphicsMagick-Q16.so.3
LD_LIBRARY_PATH=$work/strangers visit "$work/tree" files
[ "$(sort -u "$LOADED")" = "$work/strangers/libGraphicsMagick-Q16.so.3" ] || fail "the stranger does not tell"

# Beside the toolkit, and no module: a text, nothing, a folder, a library without the entries.
for name in "${own[@]}"; do
  for kind in text nothing folder stranger; do
    rm -rf tree/lib/"$name"
    case $kind in
      text) echo 'not a library' >"tree/lib/$name" ;;
      nothing) : >"tree/lib/$name" ;;
      folder) mkdir "tree/lib/$name" ;;
      stranger) cp stranger "tree/lib/$name" ;;
    esac
    visit "$work/tree" files
    # Loading needs three of the modules, and a missing one has a status of its own.
    result=0 expected=0
    tree/bin/orvo contrast --change 100 files/photo.jpg -o made.png 2>messages || result=$?
    [[ $name != lt* ]] || expected=3
    [ $result = $expected ] || fail "with $name a $kind: $result, $(<messages)"
  done
  rm -r "tree/lib/$name"
  cp "$build/lib/$name" tree/lib
done
exit $status
