#!/usr/bin/env bash
# The client while the system refuses it something: memory, room on the disk, files, names. It ends
# by itself and says so in words; the file that it was to replace is the old one or the new one,
# whole; nothing lies beside it.
#
#   faulty_client.sh PROGRAM SHIM [STEP [KINDS]]   each STEP-th call of a kind fails; the first of each
#                                                  always; memory for these kinds of files, or for all
set -euo pipefail
program=$(realpath "$1") shim=$(realpath "$2") step=${3:-1}
kinds='png jpg tif psd bmp webp tga pcx pct ras eps pdf'
without_memory=${4:-$kinds}
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"
mkdir old new work
faults=0

fail() {
  echo "FAIL: $*: $(cat said 2>/dev/null)"
  exit 1
}
# Runs a command line whose call $1 of a kind fails, and looks at what is left of work/a.$kind.
refused() {
  local what=$1 status=0
  shift
  cp "old/a.$kind" "work/a.$kind"
  "$@" "${line[@]}" >/dev/null 2>said || status=$?
  faults=$((faults + 1))
  # GraphicsMagick ends the process when it writes without memory; the next run takes away what is left.
  if [ "$status" = 134 ] && grep -qs 'magick/.*Assertion' said; then
    "$program" invert source.png -o work/next.png && rm work/next.png
    status=3
  fi
  [ "$status" -le 3 ] || [ "$status" = 127 ] || fail "$what of $kind: ends with $status"
  [ "$(ls -A work)" = "a.$kind" ] || fail "$what of $kind: leaves $(ls -A work)"
  whole new || { [ "$status" != 0 ] && whole old; } || fail "$what of $kind: neither old nor new, status $status"
  [ "$status" = 0 ] || [ -s said ] || grep -qs 'write(2, .*INJECTED' calls || fail "$what of $kind: no word"
}
# Whether the target is that file. Documents and PostScript tell the time at which they were made.
whole() {
  case $kind in
    pdf | eps) cmp -s <(timeless "$1/a.$kind") <(timeless "work/a.$kind") ;;
    *) cmp -s "$1/a.$kind" "work/a.$kind" ;;
  esac
}
timeless() { grep -avE 'Date|/ID ' "$1"; }
memory() { env FAILING_COUNT=count LD_PRELOAD="$shim" "$@" >/dev/null 2>&1; cat count; }
traced() { strace -f -qq -o calls -e trace="$1" "${@:2}"; }

convert -size 24x18 plasma:blue-yellow -depth 8 -strip source.png
convert -size 20x15 plasma:red-green -depth 8 -strip older.png
# Reading the command line takes thousands of calls, which are all alike.
start=$(($(memory "$program" invert none.png -o none.png || true) - 30))
for kind in $kinds; do
  rm -f work/*
  "$program" invert older.png -o "old/a.$kind" 2>/dev/null
  "$program" invert source.png -o "new/a.$kind" 2>/dev/null
  line=("$program" invert source.png -o "work/a.$kind")
  cp "old/a.$kind" "work/a.$kind"
  last=0
  [[ " $without_memory " != *" $kind "* ]] || last=$(memory "${line[@]}")
  for ((call = start + faults % step; call <= last; call += step)); do
    rm -f calls
    refused "memory $call" env FAILING_CALL="$call" LD_PRELOAD="$shim"
  done
  [ "$last" = 0 ] || refused "memory from $((start + 99))" env FAILING_CALL="$((start + 99))" FAILING_LASTS=1 LD_PRELOAD="$shim"

  for set in write,pwrite64,writev:ENOSPC fsync:EIO rename,renameat,renameat2:EIO mkdir:ENOSPC openat:ENOSPC; do
    traced "${set%:*}" "${line[@]}" 2>/dev/null
    # Of the files only those that are to be written.
    mapfile -t numbers < <(grep -n . calls | { [ "$set" = openat:ENOSPC ] && grep -E 'O_WRONLY|O_RDWR' || cat; } | cut -d: -f1)
    for ((i = 0; i < ${#numbers[@]}; i += step > 9 ? 4 : 1)); do
      call=${numbers[i]}
      for when in "$call" "$call+"; do
        refused "${set%:*} $when" strace -f -qq -o calls -e trace="${set%:*}" -e inject="${set/:/:error=}:when=$when"
      done
    done
  done
done

# Files beyond the limit of sizes, and a disk of its own that is full.
rm -f work/*
kind=tif line=("$program" rotate --angle 45 big.png -o work/a.tif)
convert -size 300x300 plasma: -depth 8 -strip big.png
"${line[@]}" && mv work/a.tif new
limited() { (ulimit -f 60 && trap '' XFSZ && exec "$@"); }
refused "the limit of sizes" limited
if unshare -rm true 2>/dev/null; then
  full() {
    unshare -rm sh -c 'cp -r work kept && mount -t tmpfs -o size=64k none work && cp kept/* work && status=0
      "$@" || status=$?; ls -A work >listed; rm -r kept; exit $status' sh "$@"
  }
  cp old/a.tif work/a.tif
  if full "${line[@]}" 2>said; then fail "a full disk: no failure"; fi
  [ "$(cat listed)" = a.tif ] && [ -s said ] || fail "a full disk: leaves $(cat listed)"
  faults=$((faults + 1))
else
  echo "no disk of its own can be mounted here; that trial is left out"
fi
echo "$faults refusals to the client: nothing lost"
