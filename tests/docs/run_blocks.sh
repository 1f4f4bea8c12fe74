#!/usr/bin/env bash
# Runs the code blocks of a text, from top to bottom in one shell and an empty folder:
#
#   console    lines that begin with "$ " are run; what they print, and a status other than 0 in
#              brackets, has to be what the text shows below them
#   sh         is run line by line, nothing may fail; "./run WORD" has to be a word of ./run
#   any other  is written to the file that its first line names in a comment
#
#   run_blocks.sh SOURCE_FOLDER BUILD_FOLDER TEXT [--write]
#
# --write puts what the commands print into the text. Commands find the client on their path, and
# $SAMPLE, a picture of 1200 x 650 pixels.
set -uo pipefail
source=$(realpath "$1") build=$(realpath "$2") text=$(realpath "$3")

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export HOME=$work/home SAMPLE=$source/docs/before_after.png PATH=$build/bin:$PATH LC_ALL=C
mkdir -p "$work/home" "$work/files/build"
ln -s "$build" "$work/files/build/release"
ln -s "$source/examples" "$work/files/examples"
cd "$work/files" || exit 1
failed=0

# Output and status of one command.
run_command() {
  eval "$1" >"$work/output" 2>&1 </dev/null
  status=$?
}

console_block() {
  local line command=
  while IFS= read -r line && [ "$line" != '```' ]; do
    [[ $line == '$ '* ]] || continue
    command=${line#'$ '}
    printf '%s\n' "$line"
    run_command "$command"
    cat "$work/output"
    [ "$status" -eq 0 ] || printf '[%s]\n' "$status"
  done
  printf '%s\n' "$line"
}

sh_block() {
  local line word
  while IFS= read -r line && printf '%s\n' "$line" && [ "$line" != '```' ]; do
    if [[ $line =~ ^\./run\ ([a-z]+) ]]; then
      word=${BASH_REMATCH[1]}
      grep -q "^  $word)" "$source/run" && continue
      echo "$text: ./run knows no $word" >&2
    else
      run_command "$line"
      [ "$status" -eq 0 ] && continue
      { echo "$text: this fails: $line" && cat "$work/output"; } >&2
    fi
    failed=1
  done
}

file_block() {
  local line file=
  while IFS= read -r line && printf '%s\n' "$line" && [ "$line" != '```' ]; do
    [ -n "$file" ] || { file=${line#* } && : >"$file"; }
    printf '%s\n' "$line" >>"$file"
  done
}

while IFS= read -r line; do
  printf '%s\n' "$line"
  case $line in
    '```console') console_block ;;
    '```sh') sh_block ;;
    '```'*) file_block ;;
  esac
done <"$text" >"$work/text"

if [ "${4:-}" = --write ]; then cp "$work/text" "$text"; fi
diff -u "$text" "$work/text" || failed=1
exit $failed
