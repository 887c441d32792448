#!/bin/sh
# Draws the icons from mvsignpadsdk_wssvr.svg: the .ico that lies beside the program and the .png for desktops that
# show no SVG. Run it after a change of the drawing and check in the results.
# Needs rsvg-convert (librsvg2-bin) and icotool (icoutils).
set -eu

name=mvsignpadsdk_wssvr
cd "$(dirname "$0")"
images=$(mktemp -d)
trap 'rm -rf "$images"' EXIT

for size in 016 022 024 032 048 064 128 256; do
    rsvg-convert --width "$size" --height "$size" --output "$images/$size.png" "$name.svg"
done

# The largest image is stored as PNG, as readers of the format expect; the others as plain bitmaps.
icotool --create --output "$name.ico" --raw "$images/256.png" \
    "$images/016.png" "$images/022.png" "$images/024.png" "$images/032.png" \
    "$images/048.png" "$images/064.png" "$images/128.png"
cp "$images/048.png" "$name.png"
