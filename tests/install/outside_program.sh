#!/usr/bin/env bash
# Installs the build to a fresh prefix and builds the examples against it, once by the CMake package
# and once by pkg-config, and runs both.
set -euo pipefail
build=$1 source=$2 libdir=$3 compiler=$4

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
prefix=$work/prefix
cmake --install "$build" --prefix "$prefix" >/dev/null

for file in "$libdir/liborvo.so.1" "$libdir/liborvo_platform.so.1" "$libdir/ltkrn13n.dll" \
  "$libdir/ltimg13n.dll" "$libdir/ltfil13n.dll" "$libdir/PdfLib.dll" include/orvo/orvo.h bin/orvo; do
  [ -e "$prefix/$file" ] || {
    echo "not installed: $file"
    exit 1
  }
done

# Away from the source tree, so that nothing of it is found by chance.
cp -r "$source/examples" "$work/outside"
"$build/bin/make_samples" "$work/samples" >/dev/null

cmake -G Ninja -S "$work/outside" -B "$work/by-cmake" -DCMAKE_PREFIX_PATH="$prefix" >/dev/null
cmake --build "$work/by-cmake" >/dev/null
"$work/by-cmake/fix_photo" "$work/samples/photo.jpg" "$work/by-cmake.png"

export PKG_CONFIG_PATH=$prefix/$libdir/pkgconfig
read -ra flags <<<"$(pkg-config --cflags --libs orvo)"
"$compiler" -std=c++20 "$work/outside/fix_photo.cpp" -o "$work/by-pkg-config" "${flags[@]}" \
  -Wl,-rpath,"$prefix/$libdir"
"$work/by-pkg-config" "$work/samples/photo.jpg" "$work/by-pkg-config.png"

cmp "$work/by-cmake.png" "$work/by-pkg-config.png"
"$prefix/bin/orvo" info "$work/by-cmake.png" >/dev/null
echo "both outside programs wrote the same picture"
