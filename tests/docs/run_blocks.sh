#!/usr/bin/env bash
# Runs the code blocks of a text, from top to bottom in one shell and an empty folder:
#
#   console    lines that begin with "$ " are run; what they print, and a status other than 0 in
#              brackets, has to be what the text shows below them
#   sh         is run line by line, nothing may fail; "./run WORD" has to be a word of ./run
#   others     are written to the file that the first line names in a comment; without a language
#              they are left alone
#
#   run_blocks.sh SOURCE_FOLDER BUILD_FOLDER TEXT [--write]
#
# --write puts what the commands print into the text. Commands find the client on their path, and in
# their folder photo.jpg, a picture of 1200 x 393 pixels, examples, tools and build/release.
set -uo pipefail
source=$(realpath "$1") build=$(realpath "$2") text=$(realpath "$3")

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export HOME=$work/home PATH=$build/bin:$PATH LC_ALL=C CMAKE_GENERATOR=Ninja
mkdir -p "$work/home" "$work/files/build"
ln -s "$build" "$work/files/build/release"
ln -s "$source/examples" "$source/tools" "$work/files"
cd "$work/files" || exit 1
orvo depth --bits 24 "$source/docs/before_after.png" -o photo.jpg
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
      grep -q "^#   ./run $word\b" "$source/run" && continue
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
    [ -n "$file" ] || { [[ $line =~ ^[^A-Za-z]*([A-Za-z_.]*[a-z]) ]] && file=${BASH_REMATCH[1]} && : >"$file"; }
    printf '%s\n' "$line" >>"$file"
  done
}

while IFS= read -r line; do
  printf '%s\n' "$line"
  case $line in
    '```console') console_block ;;
    '```sh') sh_block ;;
    '```') while IFS= read -r line && printf '%s\n' "$line" && [ "$line" != '```' ]; do :; done ;;
    '```'*) file_block ;;
  esac
done <"$text" >"$work/text"

if [ "${4:-}" = --write ]; then cp "$work/text" "$text"; fi
diff -u "$text" "$work/text" || failed=1
exit $failed
