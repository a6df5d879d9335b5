#!/bin/bash
# Makes the PNG files of resources/ and the menu's icons anew from their SVG sources. Needs librsvg2-bin and DejaVu Sans.
set -euo pipefail
cd "$(dirname "$(readlink --canonicalize "$0")")/../resources"

for package in librsvg2-bin fonts-dejavu-core; do
    dpkg-query --show "$package" >/dev/null || exit 1
done

# make NAME.svg WIDTH HEIGHT BACKGROUND NAME.png
make()
{
    rsvg-convert --width "$2" --height "$3" --background-color "$4" --output "$5" "$1"
    echo "resources/$5: $2 x $3"
}

make battery_tester_logo.svg 1068 268 none battery_tester_logo.png
make battery_tester_logo.svg 267 67 none battery_tester_logo_267x67.png
# White as the paper: a page then needs no mask of transparency beside the image.
make kest_pdf_header.svg 2400 240 white kest_pdf_header.png

# The menu's icon, in the sizes that desktops ask for.
for size in 16 22 24 32 48 64 128 256 512; do
    make ../packaging/kest-battery-tester.svg $size $size none \
        ../packaging/icons/kest-battery-tester-$size.png
done
