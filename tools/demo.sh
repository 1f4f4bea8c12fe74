#!/usr/bin/env bash
# Runs the client's operations on sample pictures, or on files of the user's own, and writes the
# pictures and a page that shows before and after side by side.
#
#   tools/demo.sh BUILD_FOLDER OUTPUT_FOLDER [FILES...]
set -euo pipefail

build=$1
out=$2
shift 2
orvo=$build/bin/orvo
page=$out/index.html

mkdir -p "$out/pictures"

# What is shown of each sample: title | sample | options of the client | extension of the result
rows='
Sharpness by size | photo.jpg | sharpen --level 8 | png
Histogram, tones stretched | photo.jpg | histogram --level 6 | png
Exposure, equalised locally | photo.jpg | exposure --level 8 | png
Contrast | photo.jpg | contrast --change 250 | png
Saturation | photo.jpg | saturation --change 400 | png
Intensity | photo.jpg | intensity --change -150 | png
Hue | photo.jpg | hue --degrees 60 | png
Gamma | photo.jpg | gamma --gamma 0.6 | png
Invert | photo.jpg | invert | png
Gray | photo.jpg | gray | png
Remap, six tones | photo.jpg | remap --posterize 6 | png
A converter of the caller'"'"'s own | portrait.jpg | convert-rgb --converter CONVERTER | png
Soft focus | portrait.jpg | unsharp --change -800 | png
Sixteen colours, dithered | photo.jpg | depth --bits 4 --dither stucki | png
Black and white, dithered | gray.png | depth --bits 1 --dither floyd-steinberg | png
Descreen | halftone.png | descreen --level 2 --sharpen 20 | png
Red eyes, found and corrected | portrait.jpg | redeye | png
Red eyes, outlined | portrait.jpg | redeye --mark MARKED | png
The red eye that is pointed at | portrait.jpg | redeye --at 482,645 | png
Whiteness | page.tif | whiten --threshold 225 | png
Auto-trim | page_bw.tif | trim --auto | png
Trim to a rectangle | bed.png | trim --rect 90,80,820,630 | png
Rotate | portrait.jpg | rotate --angle -8 | png
Resize | photo.jpg | resize --width 400 | png
Half the resolution | photo.jpg | resolution --dpi 150 | png
Thumbnail | portrait.jpg | thumbnail --size 160x160 | png
A straight page | page.tif | deskew | png
Items on a scanner bed, outlined | bed.png | regions --reach 10 --mark MARKED | png
From TIFF to JPEG | page.tif | convert --quality 80 | jpg
'
# What files of the user's own are put through.
own_rows='
Sharpness by size | sharpen --level 8
Histogram, tones stretched | histogram --level 5
Exposure, equalised locally | exposure --level 6
Red eyes | redeye
Gray | gray
Auto-trim | trim --auto
A straight page | deskew
'

trimmed() {
  local text=$1
  text=${text#"${text%%[![:space:]]*}"}
  printf '%s' "${text%"${text##*[![:space:]]}"}"
}

escaped() {
  local text=$1
  text=${text//&/&amp;}
  text=${text//</&lt;}
  printf '%s' "${text//>/&gt;}"
}

# A picture that a browser shows, at most 900 pixels wide or high.
shown() {
  local source=$1 name=$2 size width height
  size=$("$orvo" info --json "$source" |
    sed -nE '/"picture"/,/}/s/.*"(width|height)": ([0-9]+).*/\2/p' | head -n 2 | tr '\n' ' ')
  read -r width height <<<"$size"
  local target=pictures/$name.png
  if [ "$width" -gt 900 ] && [ "$width" -ge "$height" ]; then
    "$orvo" depth --bits 24 "$source" -o "$out/$target" 2>/dev/null || cp "$source" "$out/$target"
    "$orvo" resize --width 900 --in-place "$out/$target"
  elif [ "$height" -gt 900 ]; then
    "$orvo" depth --bits 24 "$source" -o "$out/$target" 2>/dev/null ||
      "$orvo" gray "$source" -o "$out/$target"
    "$orvo" resize --height 900 --in-place "$out/$target"
  else
    "$orvo" convert "$source" -o "$out/$target"
  fi
  printf '%s' "$target"
}

head_of_page() {
  cat <<'HTML'
<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>orvo: before and after</title>
<style>
  body { margin: 0 auto; max-width: 76rem; padding: 1.5rem; color: #222; background: #f6f5f2;
         font: 16px/1.5 system-ui, sans-serif; }
  h1 { font-weight: 600; margin-bottom: 0; }
  section { background: #fff; border: 1px solid #e2dfd8; border-radius: 8px; margin: 1.5rem 0;
            padding: 1rem 1.25rem; }
  h2 { font-size: 1.1rem; margin: 0 0 .25rem; }
  code { background: #f0eee9; border-radius: 4px; font-size: .85rem; padding: .1rem .35rem; }
  .pair { display: grid; gap: 1rem; grid-template-columns: repeat(auto-fit, minmax(18rem, 1fr));
          margin-top: .75rem; }
  figure { margin: 0; }
  img { background: #ddd; border: 1px solid #ccc; height: auto; max-width: 100%; }
  figcaption { color: #666; font-size: .85rem; }
</style>
</head>
<body>
<h1>Before and after</h1>
<p>Each picture on the right was made from the one on the left by the command above them.</p>
HTML
}

count=0
failures=0
refusals=0

# Adds an operation to the page: title, command and what stands below them.
add_section() {
  printf '<section>\n<h2>%s</h2>\n<code>%s</code>\n%s\n</section>\n' \
    "$(escaped "$1")" "$(escaped "$2")" "$3" >>"$page"
}

# A picture of the page with its caption.
figure() {
  printf '<figure><img loading="lazy" src="%s" alt="%s, %s"><figcaption>%s</figcaption></figure>' \
    "$1" "$(escaped "$2")" "$3" "$3"
}

# Runs one row and adds it to the page.
show() {
  local title=$1 source=$2 options=$3 extension=$4
  count=$((count + 1))
  local name result words
  name=$(printf '%02d_%s' "$count" "${options%% *}")
  result=$out/results/$name.$extension
  options=${options//CONVERTER/$build/lib/sepia_converter.dll}
  read -ra words <<<"$options"
  local target=(-o "$result")
  # Commands that find something write what they mark into a folder.
  if [[ $options == *MARKED* ]]; then
    words=("${words[@]//MARKED/$out/results/$name}")
    target=()
    result=$out/results/$name/$(basename "$source")
  fi
  local command told=$out/results/$name.txt
  command="orvo ${options//$build\/lib\//} $(basename "$source")"
  if [ ${#target[@]} -gt 0 ]; then
    command+=" -o $(basename "$result")"
  else
    command=${command//MARKED/marked/}
  fi
  if ! "$orvo" "${words[@]}" "$source" "${target[@]}" >"$told" 2>&1; then
    cat "$told" >&2
    # Not every operation takes every depth: a refusal is no failure.
    if grep -q ORVO_ERR_BAD_DEPTH "$told"; then
      refusals=$((refusals + 1))
      add_section "$title" "$command" "<p>$(escaped "$(<"$told")")</p>"
    else
      failures=$((failures + 1))
    fi
    return
  fi
  [ -e "$result" ] || result=$(find "$out/results/$name" -type f | sort | head -n 1)
  add_section "$title" "$command" "<div class=\"pair\">
$(figure "$(shown "$source" "${name}_before")" "$title" before)
$(figure "$(shown "$result" "${name}_after")" "$title" after)
</div>"
}

rm -rf "$out/results" "$out/pictures"
mkdir -p "$out/results" "$out/pictures"
head_of_page >"$page"

if [ $# -eq 0 ]; then
  echo "drawing sample pictures into $out/samples"
  "$build/bin/make_samples" "$out/samples"
  while IFS='|' read -r title sample options extension; do
    [ -n "$sample" ] || continue
    options=$(trimmed "$options")
    echo "orvo $options"
    show "$(trimmed "$title")" "$out/samples/$(trimmed "$sample")" "$options" \
      "$(trimmed "$extension")"
  done <<<"$rows"
else
  for file in "$@"; do
    while IFS='|' read -r title options; do
      [ -n "$options" ] || continue
      options=$(trimmed "$options")
      echo "orvo $options $file"
      show "$(trimmed "$title"): $(basename "$file")" "$file" "$options" png
    done <<<"$own_rows"
  done
fi

printf '</body>\n</html>\n' >>"$page"
echo
echo "$((count - failures - refusals)) of $count operations shown in $page"
[ "$refusals" -eq 0 ] || echo "$refusals refused the depth of their picture, as the page tells"
[ "$failures" -eq 0 ]
