#!/bin/bash
# Makes the pictures of the README, the manual and the metainfo anew, from a whole test of the demo on a virtual
# screen of 1600x1000. Takes some two minutes; needs xvfb, xauth and poppler-utils.
set -euo pipefail
cd "$(dirname "$(readlink --canonicalize "$0")")/.."

for program in xvfb-run xauth pdftoppm; do
    command -v "$program" >/dev/null || { echo "$0: there is no $program." >&2; exit 1; }
done
folder=$(mktemp --directory)
trap 'rm -r "$folder"' EXIT
./run.sh --unattended "$folder"

cp "$folder/screenshot.png" docs/screenshot.png
cp "$folder/screenshot.png" docs/manual/window.png
pdftoppm -r 80 -png -singlefile "$folder"/Demo*.pdf docs/manual/page
echo "docs/screenshot.png, docs/manual/window.png, docs/manual/page.png"
