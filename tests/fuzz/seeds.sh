#!/usr/bin/env bash
# Inputs for the fuzzers to start from: what our own writers make, and the kinds, depths and
# compressions that other programs write.
#
#   seeds.sh SEEDS_PROGRAM FOLDER
set -euo pipefail
program=$1
folder=$2
rm -rf "$folder"
mkdir -p "$folder"
"$program" "$folder"
cd "$folder"/format
mkdir -p gif webp dcx pcd heic avif jxl wmf wpg ../metadata # besides those we write

# Bytes that words of hexadecimal digits tell.
bytes() { printf '%b' "$(sed 's/ //g; s/../\\x&/g' <<<"$*")"; }

# A picture turned on its side, with a camera's directory and a preview's behind it.
bytes 45786966 0000 49492A00 08000000 0300 0F01 0200 06000000 50000000 1201 0300 01000000 06000000 \
  6987 0400 01000000 32000000 56000000 0200 01A0 0300 01000000 01000000 7C92 0700 08000000 68000000 \
  00000000 4D616B657200 0100 0102 0400 01000000 68000000 00000000 4D616B6572203120 >../photo.exif
echo "<x:xmpmeta xmlns:x='adobe:ns:meta/' xmlns:tiff='http://ns.adobe.com/tiff/1.0/'" \
  "tiff:Orientation='6'><a>b</a></x:xmpmeta>" >../photo.xmp
bytes 3842494D 0404 0000 00000008 1C0278 0003 616263 >../photo.8bim
told=(-profile app1:../photo.exif -profile ../photo.xmp -profile ../photo.8bim -profile ../profile.icc
  -density 300x150 -units PixelsPerInch -set comment words)

# Each line of the rest: options, and the file.
write() {
  local line
  while read -r line; do
    printf '( -clone 0 %s -write %s +delete ) ' "${line% *}" "${line##* }"
  done
}
kinds=$(write <<'LINES'
-quality 80 jpg:jpg/plain
-interlace JPEG jpg:jpg/progressive
-colorspace Gray jpg:jpg/gray
-colorspace CMYK jpg:jpg/inks
-sampling-factor 2x2 jpg:jpg/halved
-interlace PNG png64:png/sixteen
-interlace PNG png24:png/interlaced
-alpha on png32:png/opacity
-colors 9 png8:png/palette
-monochrome png:png/one
-compress JPEG tif:tif/jpeg
-compress RLE -colors 9 tif:tif/runs
-monochrome -compress Group4 tif:tif/group4
-monochrome -compress Fax tif:tif/group3
-colorspace CMYK -compress None tif:tif/inks
-depth 16 -compress LZW tif:tif/sixteen
-alpha on -compress LZW tif:tif/opacity
-colorspace Lab -compress None tif:tif/lab
-compress LZW -define tiff:endian=msb -interlace Plane tif:tif/planes
-compress LZW -interlace none -define tiff:tile-geometry=16x16 tif:tif/tiles
-compress Zip -define tiff:predictor=2 tif:tif/zip
-compress RLE psd:psd/runs
-colorspace CMYK psd:psd/inks
-depth 16 -compress None psd:psd/sixteen
-monochrome psd:psd/one
-alpha on psd:psd/opacity
-colors 9 -compress RLE bmp:bmp/runs
-alpha on bmp:bmp/opacity
-colors 9 bmp3:bmp/palette
-depth 8 bmp2:bmp/old
-colors 9 -transparent black gif:gif/plain
-interlace GIF gif:gif/interlaced
-define webp:lossless=true webp:webp/lossless
-alpha on -quality 40 webp:webp/opacity
-depth 8 pcx:pcx/color
-monochrome pcx:pcx/one
-depth 8 dcx:dcx/color
-compress RLE tga:tga/runs
-compress None -alpha on tga:tga/opacity
-colors 9 tga:tga/palette
-depth 8 pict:pct/color
-colors 9 pict:pct/palette
-monochrome sun:ras/one
-colors 9 sun:ras/palette
-depth 8 pcd:pcd/color
LINES
)
# shellcheck disable=SC2086 # the words are options
convert -size 24x18 -seed 1 plasma: -depth 8 $kinds null:
convert -size 24x18 -seed 2 plasma: -depth 8 "${told[@]}" -write jpg:jpg/told -write png:png/told \
  -write tif:tif/told -write psd:psd/told -write webp:webp/told -write gif:gif/told \
  -write heic:heic/told null:
convert -size 24x18 -seed 3 plasma: -depth 8 \( -clone 0 -negate \) -compress LZW tif:tif/pages
truncate -s 8K pcd/color # they are of 768 KiB at least
# Drawings, which nobody here writes, and what needs another writer.
gm convert png/told jxl:jxl/color
bytes D7CDC69A 0000 0000 0000 6400 3200 4800 00000000 0F57 0100 0900 0003 44000000 0300 08000000 \
  0000 05000000 0B02 0000 0000 05000000 0C02 3200 6400 08000000 FA02 0500 0000 0000 0000 0000 \
  04000000 2D01 0000 07000000 FC02 0000 0000 FF00 0000 04000000 2D01 0100 07000000 1B04 3200 \
  6400 0000 0000 07000000 FC02 0000 FF00 0000 0000 04000000 2D01 0200 07000000 1B04 3200 3200 \
  0000 0000 03000000 0000 >wmf/drawing
bytes FF575043 10000000 01160100 00000000 0F06 0100 E803E803 0E34 0000 1000 \
  000000 0000AA 00AA00 00AAAA AA0000 AA00AA AA5500 AAAAAA 555555 5555FF 55FF55 55FFFF FF5555 \
  FF55FF FFFF55 FFFFFF 0B10 04000200 0400 4B004B00 02123402 5678 1000 >wpg/picture
for kind in jpg png tif psd webp gif heic jxl; do
  for file in "$kind"/*; do
    case $file in */told | */inks | */1 | */24 | */color) cp "$file" "../metadata/${file/\//-}" ;; esac
  done
done
qpdf --qdf ../pdf/tif24 ../pdf/plain
qpdf --object-streams=generate ../pdf/jpg24 ../pdf/packed
