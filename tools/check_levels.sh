#!/usr/bin/env bash
# Every level of vector instructions gives the same bytes, and a processor without AVX runs them too:
# the client on sample pictures, and the adjustments of every size on such a processor.
#
#   tools/check_levels.sh BUILD_FOLDER     a build with tests
set -euo pipefail
build=$1
old_processor=(qemu-x86_64 -cpu Nehalem)

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
"$build/bin/make_samples" "$work/samples" >/dev/null

# run NAME COMMAND...: the pictures that the client makes, called as the command says, in a folder.
run() {
  local out=$work/$1
  shift
  mkdir "$out"
  "$@" sharpen --level 8 "$work/samples/photo.jpg" -o "$out/sharp.png"
  "$@" sharpen --level 8 "$work/samples/gray.png" -o "$out/sharp-gray.png"
  "$@" exposure --level 8 "$work/samples/photo.jpg" -o "$out/exposure.png"
  "$@" exposure --level 8 "$work/samples/gray.png" -o "$out/exposure-gray.png"
  "$@" histogram --level 6 "$work/samples/photo.jpg" -o "$out/histogram.png"
  "$@" descreen --level 2 "$work/samples/halftone.png" -o "$out/descreen.png"
  "$@" redeye "$work/samples/portrait.jpg" -o "$out/eyes.png"
  "$@" trim --auto "$work/samples/page.tif" -o "$out/trim.png"
  "$@" deskew "$work/samples/page.tif" -o "$out/deskew.png"
}

run best "$build/bin/orvo"
for level in 1 3; do
  run "level-$level" env ORVO_VECTOR_LEVEL="$level" "$build/bin/orvo"
  diff -r "$work/best" "$work/level-$level"
done
run old "${old_processor[@]}" "$build/bin/orvo"
diff -r "$work/best" "$work/old"
echo "the same pictures at each level and on a processor without AVX"

"${old_processor[@]}" "$build/bin/imaging_test" --gtest_brief=1 --gtest_filter='Adjust.*'
