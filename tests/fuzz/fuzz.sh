#!/usr/bin/env bash
# Runs the fuzzers of a build one after the other, each for so many seconds, and tells for each how
# often, and how many inputs broke something: they lie in BUILD/finds.
#
#   fuzz.sh BUILD TARGET SECONDS
#
# TARGET: block, metadata, pdf or region, the extension of a kind of picture file, or all.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
build=$(cd "$1" && pwd)
wanted=$2
seconds=$3

export TMPDIR=$build/fuzz-files ASAN_OPTIONS=allocator_may_return_null=1
rm -rf "$TMPDIR"
mkdir -p "$build/finds" "$TMPDIR"
"$here/seeds.sh" "$build/bin/fuzz_seeds" "$build/seeds"
if [ "$wanted" = all ]; then
  targets="region block metadata pdf $(cd "$build/seeds" && echo format/*)"
else
  targets=$wanted
  [ -x "$build/bin/${wanted}_fuzz" ] || targets=format/$wanted
fi

# What every file is fed with words of its kind; metadata travel between all.
words_of() {
  case $1 in
    metadata) cat "$here"/{jpg,png,tif,psd,webp}.dict ;;
    *) cat "$here/$1.dict" 2>/dev/null || printf '%s\n' '"\xFF\xFF"' ;;
  esac
}

# MiB and seconds.
limits=(-max_len=65536 -rss_limit_mb=4096 -malloc_limit_mb=2048 -timeout=20
  -verbosity=0 -print_funcs=0 -print_final_stats=1)
printf '%-10s %12s %8s\n' target executions finds
for target in $targets; do
  name=$(basename "$target")
  folders=("$build/corpus/$target" "$build/seeds/$target" "$here/crashers/$target")
  mkdir -p "${folders[@]:0:2}"
  [ -d "${folders[2]}" ] || unset 'folders[2]'
  words_of "$name" >"$build/words"
  log=$build/fuzz-$name.log
  : >"$log"
  finds=0
  end=$((SECONDS + seconds))
  # It stops at a find and goes on from there.
  while left=$((end - SECONDS)) && [ $left -gt 0 ] && [ $finds -lt 10 ]; do
    FUZZ_KIND=$name "$build/bin/${target%%/*}_fuzz" "${limits[@]}" -max_total_time=$left \
      -dict="$build/words" -artifact_prefix="$build/finds/$name-" "${folders[@]}" >>"$log" 2>&1 ||
      finds=$((finds + 1))
  done
  executions=$(awk '/^stat::number_of_executed_units/ { all += $2 } END { print all + 0 }' "$log")
  printf '%-10s %12s %8s\n' "$name" "$executions" "$finds"
done
