#!/usr/bin/env bash
# Figures of the house: lines of code and tests, lengths of functions and files, what the built
# libraries export and where they look for others. ./run figures builds first and adds the time that
# the last ./run test took.
#
#   tools/figures.sh BUILD_FOLDER
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
built=$1

sources() { git ls-files "$@" | grep -E '\.(cpp|h|c)$'; }

# Lines that are neither blank nor comment.
code_lines() {
  sources "$@" | xargs cat | awk '
    inside { if (/\*\//) inside = 0; next }
    /^[ \t]*$/ || /^[ \t]*\/\// { next }
    /^[ \t]*\/\*/ { if (!/\*\//) inside = 1; next }
    { ++lines }
    END { print lines + 0 }'
}

# One length a function: a rough count of braces, after formatting.
function_lengths() {
  sources src modules apps | while read -r file; do
    awk '
      function braces(text, side) { return gsub(side, "", text) }
      {
        line = $0
        gsub(/"([^"\\]|\\.)*"|\x27([^\x27\\]|\\.)*\x27|\/\/.*/, "", line)
        if (line ~ /^[ \t]*#/ || line ~ /^[ \t]*$/) { if (inside) ++length_; next }
        opened = braces(line, "{"); closed = braces(line, "}")
        if (!inside) {
          head = head " " line
          if (opened > 0 && head ~ /\(/ && head !~ /^ *(namespace|struct|class|enum|union|extern)/ &&
              head !~ /=[^=(]*\{/) {
            inside = 1; depth = 0; length_ = 0
          } else if (line ~ /[;{}] *$/ || line ~ /: *$/) head = ""
        }
        if (inside) {
          ++length_; depth += opened - closed
          if (depth <= 0) { print length_; inside = 0; head = "" }
        }
      }' "$file"
  done
}

# Median, 90th percentile and largest of the numbers on standard input.
spread() {
  sort -n | awk '{ n[NR] = $1 }
    END { printf "median %d, 90th percentile %d, longest %d (%d in all)", n[int((NR + 1) / 2)], \
          n[int(NR * 0.9 + 0.5)], n[NR], NR }'
}

echo "lines (neither blank nor comment)"
for room in apps include src/* modules/* tests/*; do
  [ -d "$room" ] && printf '  %-28s %6d\n' "$room" "$(code_lines "$room/*")"
done
code=$(code_lines src modules apps)
tests=$(code_lines tests)
printf '  %-28s %6d\n' "src, modules and apps" "$code" "tests" "$tests"
awk -v t="$tests" -v c="$code" 'BEGIN { printf "  tests to code                 %5.1f %%\n", 100 * t / c }'
echo "functions: $(function_lengths | spread)"
echo "files: $(sources src modules apps | xargs -n1 wc -l | awk '{ print $1 }' | spread)"

echo "exports of liborvo.so"
nm -DC --defined-only "$built/lib/liborvo.so" | cut -d' ' -f3- | sed -E 's/@@.*//' |
  awk '/^(typeinfo|vtable)/ { next } /COrvoCS::/ { ++own; next } /CLeadTools::/ { ++bound; next } { print "  " $0 }
       END { printf "  COrvoCS (%d members)\n  CLeadTools (%d members)\n", own, bound }'
echo "search paths"
for file in "$built"/lib/*.so "$built"/lib/*.dll "$built"/bin/orvo; do
  printf '  %-28s %s\n' "$(basename "$file")" \
    "$(readelf -d "$file" | sed -nE 's/.*R(UN)?PATH.*\[(.*)\].*/\2/p')"
done
