#!/usr/bin/env bash
# Strangers use the library: by the CMake package, by pkg-config, and with its sources as a part of
# their own project. The installed client runs from where it lies.
set -euo pipefail
build=$1 source=$2 libdir=$3 compiler=$4

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
prefix=$work/prefix
cmake --install "$build" --prefix "$prefix" >/dev/null

for file in "$libdir/liborvo.so.1" "$libdir/liborvo_platform.so.1" "$libdir/ltkrn13n.dll" \
  "$libdir/ltimg13n.dll" "$libdir/ltfil13n.dll" "$libdir/PdfLib.dll" "$libdir/orvo_documents.so" "$libdir/orvo_pages.so" \
  include/orvo/orvo.h bin/orvo; do
  [ -e "$prefix/$file" ] || {
    echo "not installed: $file"
    exit 1
  }
done

# Away from the source tree, so that nothing of it is found by chance; the installed tree is moved,
# which it has to bear.
cp -r "$source/examples" "$work/outside"
convert -size 300x200 -seed 7 plasma: "$work/photo.jpg"
mv "$prefix" "$work/moved"
prefix=$work/moved

cmake -G Ninja -S "$work/outside" -B "$work/by-cmake" -DCMAKE_PREFIX_PATH="$prefix" \
  -DCMAKE_CXX_COMPILER="$compiler" >/dev/null
cmake --build "$work/by-cmake" >/dev/null
"$work/by-cmake/fix_photo" "$work/photo.jpg" "$work/by-cmake.png"

export PKG_CONFIG_PATH=$prefix/$libdir/pkgconfig
read -ra flags <<<"$(pkg-config --cflags --libs orvo)"
"$compiler" -std=c++17 "$work/outside/fix_photo.cpp" -o "$work/by-pkg-config" "${flags[@]}" \
  -Wl,-rpath,"$prefix/$libdir"
"$work/by-pkg-config" "$work/photo.jpg" "$work/by-pkg-config.png"
cmp "$work/by-cmake.png" "$work/by-pkg-config.png"

(cd / && "$prefix/bin/orvo" info "$work/by-cmake.png" >/dev/null)

# A project that takes the sources in gets the libraries, and nothing of its own is changed.
mkdir "$work/parent"
cat >"$work/parent/CMakeLists.txt" <<END
cmake_minimum_required(VERSION 3.25)
project(parent LANGUAGES C CXX)
enable_testing()
set(BUILD_TESTING ON)
add_subdirectory("$source" orvo)
add_executable(by_position "$source/examples/table_by_position.c")
target_link_libraries(by_position PRIVATE orvo::orvo)
foreach(name CMAKE_BUILD_TYPE CMAKE_CXX_VISIBILITY_PRESET CMAKE_LIBRARY_OUTPUT_DIRECTORY)
  if(NOT "\${\${name}}" STREQUAL "")
    message(FATAL_ERROR "\${name} was set to \${\${name}}")
  endif()
endforeach()
END
cmake -G Ninja -S "$work/parent" -B "$work/parent/build" -DCMAKE_CXX_COMPILER="$compiler" >/dev/null
targets=$(ninja -C "$work/parent/build" -t targets all)
if grep -E '(_test|_bench|orvo_client|make_samples|fix_photo):' <<<"$targets"; then
  echo "a part of another project builds more than the libraries"
  exit 1
fi
cmake --build "$work/parent/build" --target by_position >/dev/null
"$work/parent/build/by_position" | grep '^version 1' >/dev/null
# Without optimisation the levels are told from each other just as well.
"$(dirname "${BASH_SOURCE[0]}")/level_objects.sh" "$work/parent/build"
cmake --install "$work/parent/build" --prefix "$work/parent/prefix" >/dev/null
[ ! -e "$work/parent/prefix" ] || {
  echo "a part of another project installs itself"
  exit 1
}
echo "outside programs run"
