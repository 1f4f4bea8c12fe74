#!/usr/bin/env bash
# The table of sizes and times in docs/formats.md: what the client writes of a drawn photograph and
# of a drawn page, gray and in black and white. A ratio is to a PNG file as libpng makes it by itself,
# level 6; a time is the processor's for the whole command, the median of some runs.
#
#   tools/format_sizes.sh BUILD_FOLDER [RUNS [WIDTH]]
#
# With a width the pictures are brought to it, for a quick try.
set -euo pipefail
built=$(realpath "$1") runs=${2:-5} width=${3:-}
export LC_ALL=C
TIMEFORMAT='%U %S'
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
mkdir samples
"$built/bin/make_samples" samples >/dev/null

# write PICTURE TARGET OPTIONS...: leaves bytes and milliseconds.
write() {
  local picture=$1 target=$2
  shift 2
  rm -f "$target" spent
  for ((run = 0; run < runs; ++run)); do
    { time "$built/bin/orvo" convert "$picture.bmp" -o "$target" "$@" 2>errors || true; } 2>>spent
  done
  bytes=-
  [ -f "$target" ] || return 0
  bytes=$(stat -c %s "$target")
  milliseconds=$(awk '{ print 1000 * ($1 + $2) }' spent | sort -n |
    awk -v n="$runs" 'NR == int((n + 1) / 2)')
}

declare -A peer
# row WORDS TARGET OPTIONS...
row() {
  local words=$1
  shift
  printf '| %s |' "$words"
  for picture in photo page bits; do
    write "$picture" "$@"
    if [ "$bytes" = - ]; then
      printf ' - | - | - |'
    else
      awk -v b="$bytes" -v p="${peer[$picture]:-$bytes}" -v t="$milliseconds" \
        'BEGIN { printf " %.0f | %.2f | %d |", b / 1000, b / p, t }'
    fi
  done
  echo
}

reading=(convert)
[ -z "$width" ] || reading=(resize --method nearest --width "$width")
for picture in photo:photo.jpg page:page.tif bits:page_bw.tif; do
  "$built/bin/orvo" "${reading[@]}" \
    "samples/${picture#*:}" -o "${picture%:*}.bmp" 2>errors
done
for picture in photo page bits; do
  write "$picture" peer.png --png-level 6
  peer[$picture]=$bytes
done

echo '| Written as | Photograph, kB | ratio | ms | Gray page, kB | ratio | ms | Black and white, kB | ratio | ms |'
echo '|---|---|---|---|---|---|---|---|---|---|'
row 'BMP: starting, reading, copying' x.bmp
row 'PNG' x.png
row 'PNG, libpng by itself: `--png-level 6`' x.png --png-level 6
row 'TIFF' x.tif
for way in none lzw packbits g4 jpeg; do row "TIFF, \`--compression $way\`" x.tif --compression $way; done
row 'WebP' x.webp
row 'WebP, `--compression lossless`' x.webp --compression lossless
row 'JPEG' x.jpg
row 'PDF' x.pdf
