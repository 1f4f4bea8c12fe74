#!/usr/bin/env bash
# Files of rare kinds that lie or hold files of other kinds start no program and open nothing that
# they name, and the library behind them is loaded for them alone.
#
#   rare_files.sh BUILD_FOLDER
set -euo pipefail
orvo=$(realpath "$1")/bin/orvo
command -v strace >/dev/null && strace -o /dev/null true 2>/dev/null || {
  echo "skipped: strace is missing, or this system lets no process watch another"
  exit 77
}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"

# What may be opened beside the files asked for, the libraries and what the kernel tells of itself:
# the rare library's lists of fonts, colour names and programs that it may not start, and fonts.
allowed='/etc/ld\.so\.cache|/(proc|sys)/.*|.*\.(so|dll)(\.[0-9.]+)?'
allowed+='|/usr/(share|lib)/GraphicsMagick-[0-9.]+/config/(type|type-[a-z]+|colors|delegates)\.mgk'
allowed+='|/usr/share/fonts/.*|/usr/(lib|share)/locale/.*|/dev/null'

zeros() { head -c "$1" /dev/zero; }
# WordPerfect graphics with one record, 200 bytes long: the version, then what the record begins with.
wordperfect() { printf "\\377WPC\\20\\0\\0\\0\\1\\26\\$1\\0\\0\\0\\0\\0$2\\310"; }
script='%!PS-Adobe-3.0
(/etc/passwd) (r) file (%pipe%touch out/run) (w) file showpage'
pages='<?xml version="1.0"?><svg xmlns="http://www.w3.org/2000/svg"><image href="/etc/passwd"/></svg>'
drawing="viewbox 0 0 9 9 image Over 0,0 9,9 '/etc/passwd' text 0,0 '@/etc/passwd'"
commands='<?xml version="1.0"?><image><read filename="/etc/passwd"/></image>'

# 60 bytes stand before the file that the second kind of record holds, 8 before that of the first.
for inside in "$script" $'\x89PNG\r\n\x1a\n' 'id=ImageMagick' "$pages" "push graphic-context $drawing"; do
  n=$((${n:-0} + 1))
  { wordperfect 1 '\21' && zeros 8 && printf %s "$inside" && zeros 200; } >"level1_$n.wpg"
  { wordperfect 1 '\33' && zeros 60 && printf %s "$inside" && zeros 200; } >"later1_$n.wpg"
  { wordperfect 2 '\1\22\0' && zeros 2 && printf %s "$inside" && zeros 200; } >"level2_$n.wpg"
done
# A picture by QuickTime, with a JPEG inside.
{
  zeros 512 && printf '\0\0\0\0\0\0\0\11\0\11\0\21\2\377\14\0\377\376' && zeros 22
  printf '\202\0\0\0\1\0' && zeros 24 && printf '\0\0\0\0\0\11\0\11' && zeros 122
  printf '\377\330\377\340\0\20JFIF\0' && zeros 400
} >quicktime.pct
# A metafile: text that names a file, in a font that does.
{
  printf '\327\315\306\232\0\0\0\0\0\0\144\0\62\0\110\0\0\0\0\0\17\127'
  printf '\1\0\11\0\0\3\100\0\0\0\2\0\26\0\0\0\0\0\5\0\0\0\13\2\0\0\0\0\5\0\0\0\14\2\62\0\144\0'
  printf '\26\0\0\0\373\2\24\0\0\0\0\0\0\0\220\1\0\0\0\0\0\0\0\0@%s' /etc/shadow && zeros 14
  printf '\4\0\0\0\55\1\0\0\14\0\0\0\41\5\14\0@/etc/passwd\24\0\12\0\3\0\0\0\0\0'
} >text.wmf
for text in "$script" "$pages" "$drawing" "$commands" 'https://localhost/a.png'; do
  n=$((n + 1))
  for extension in pcx dcx tga ras pct pict pcd wmf wpg eps msl mvg svg ps url; do
    printf '%s%600s' "$text" '' >"text$n$extension.$extension"
  done
done
convert -size 40x30 plasma: sound.pcx
convert -size 40x30 plasma: sound.jpg

status=0
fail() {
  echo "$*"
  status=1
}
# Converts files, watched; leaves the client's exit status in $result and what it opened in $opened.
watch() {
  result=0
  rm -rf out
  strace -f -qq -o trace -e trace=execve,execveat,open,openat,openat2,creat \
    "$orvo" convert "$@" -o out/ --to png 2>messages || result=$?
  [ "$(grep -c exec trace)" = 1 ] || fail "$1 starts a program: $(grep exec trace)"
  opened=$(sed -nE 's/^[0-9]+ +(open|openat|openat2|creat)\([^"]*"([^"]*)".*/\2/p' trace)
  grep -vxE "$allowed|out(/.*)?" <<<"$opened" | grep -vxFf <(printf '%s\n' "$@") >odd || true
  [ ! -s odd ] || fail "$1 opens $(<odd)"
  grep -v '^orvo: ' messages >odd || true
  [ ! -s odd ] || fail "$1: $(<odd)"
}
for file in *_*.wpg quicktime.pct; do
  watch "$file"
  [[ $result = 1 && ! -e out/${file%.*}.png ]] || fail "$file is not refused: $result"
done
for text in text*pcx.pcx; do
  watch "${text%pcx.*}"*
  [[ $result = 1 && -z $(ls out) ]] || fail "$text and the like are not refused: $result"
done
watch text.wmf
[ $result -le 1 ] || fail "text.wmf ends the process with $result"
watch sound.jpg
[[ $result = 0 && $opened != *GraphicsMagick* ]] || fail "the library is loaded for a JPEG"
watch sound.pcx
[[ $result = 0 && $opened = *.mgk* ]] || fail "the library starts unseen"
# Without the library the rare formats are missing, nothing else.
mkdir none && touch none/libGraphicsMagick-Q16.so.3
export LD_LIBRARY_PATH=none
watch sound.pcx
[ $result = 1 ] || fail "without the library sound.pcx gives $result"
watch sound.jpg
[ $result = 0 ] || fail "without the library sound.jpg gives $result"
exit $status
