#!/usr/bin/env bash
# Breaks a batch that works in place at random moments, in every way that systems have, and checks
# that each file is the old one or the new one, whole, and what is left behind.
#
#   breaks.sh PROGRAM [MOMENTS]    moments for each signal, 2 unless told otherwise
set -euo pipefail
program=$(realpath "$1")
moments=${2:-2}
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"

fail() {
  echo "FAIL: $*"
  exit 1
}
# The line with the sum of each file.
sums() { (cd "$1" && sha256sum ./*); }
left() { find "$1" -name '.orvo-*'; }

mkdir old new
convert -size 400x300 plasma:blue-yellow -depth 8 old/1.png
for file in 2.png 3.png 4.jpg 5.jpg; do convert old/1.png -swirl "${file%.*}0" -depth 8 "old/$file"; done
convert old/1.png old/2.png -compress LZW old/6.tif
cp old/* new
start=$(date +%s%N)
"$program" sharpen --level 4 --in-place new/* 2>/dev/null
milliseconds=$((($(date +%s%N) - start) / 1000000))
sums old >old.sums
sums new >new.sums

breaks=0 cleaned=0
for signal in INT TERM HUP KILL; do
  for ((i = 0; i < moments; ++i)); do
    rm -rf work
    cp -r old work
    # A shell has background programs ignore the interrupt; env gives it back.
    env --default-signal=INT "$program" sharpen --level 4 --in-place work/* 2>/dev/null &
    process=$!
    sleep "$(printf '0.%03d' $((RANDOM * milliseconds / 32768 % 1000)))"
    kill -s "$signal" "$process" 2>/dev/null || true
    status=0
    wait "$process" 2>/dev/null || status=$?
    breaks=$((breaks + 1))
    [ "$status" = 0 ] || [ "$status" = $((128 + $(kill -l "$signal"))) ] || fail "$signal ends with $status"
    while read -r line; do
      grep -qxF -- "$line" old.sums || grep -qxF -- "$line" new.sums || fail "$signal left a broken $line"
    done < <(sums work)
    [ "$(find work -type f -not -path '*/.orvo-*' | wc -l)" = 6 ] || fail "$signal lost a file"
    if [ "$signal" = KILL ]; then
      [ -z "$(left work)" ] || cleaned=$((cleaned + 1))
      "$program" invert --in-place work/1.png
    fi
    [ -z "$(left work)" ] || fail "$signal left $(left work)"
  done
done
echo "$breaks breaks, nothing lost; what $cleaned of them left was gone after the next run"

# Folders of others, of living processes and of other machines stay.
mkdir -p "work/.orvo-elsewhere-1-2" "work/.orvo-$(hostname | tr -c 'A-Za-z0-9.\n' _ | cut -c 1-12)-$$-3"
"$program" invert --in-place work/1.png
[ "$(left work | wc -l)" = 2 ] || fail "a folder that may be in use was removed"
rm -r work/.orvo-*

# A file beyond the limit of sizes is like a full disk.
cp old/2.png work
if (ulimit -f 50 && "$program" invert --in-place work/2.png 2>said); then fail "no failure told"; fi
grep -q 'while writing work/2.png' said || fail "said $(cat said)"
cmp old/2.png work/2.png
[ -z "$(left work)" ] || fail "a full disk left $(left work)"

# The rights of a file stay, and its result is on the disk before it takes the old one's place.
chmod 640 work/1.png
strace -f -e trace=fsync,rename -o calls "$program" invert --in-place work/1.png
[ "$(stat -c %a work/1.png)" = 640 ] || fail "the rights are $(stat -c %a work/1.png)"
[ "$(sed 's/(.*//; s/.* //' calls | tail -n 4 | grep -v '+++' | tr '\n' ' ')" = "fsync rename fsync " ] ||
  fail "the calls are $(cat calls)"

# A pipe is not waited for, and words that arrive nowhere are a failure.
mkfifo pipe.png
if timeout 10 "$program" info pipe.png 2>said; then fail "a pipe was read"; fi
grep -q 'it is no file' said || fail "said $(cat said)"
if "$program" info old/1.png 2>said >/dev/full; then fail "a full disk under the output"; fi
grep -q 'standard output could not be written' said || fail "said $(cat said)"
"$program" info $'line\nbreak\e[1m.png' 2>said && fail "no such file"
[ "$(head -n 1 said | cut -d: -f 2)" = ' line\nbreak\x1b[1m.png' ] || fail "said $(cat said)"
