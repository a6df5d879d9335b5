#!/bin/bash
# Builds the packages a second time, in another folder and at another time of day, and compares them byte for
# byte with those of build/packages.
set -euo pipefail
cd "$(dirname "$(readlink --canonicalize "$0")")/.."
source packaging/setup.sh

compgen -G "build/packages/*.deb" >/dev/null ||
    fail "There are no packages in build/packages: packaging/build_packages.sh builds them."
second=$(mktemp --directory --suffix=-in-another-place)
trap 'rm -rf "$second"' EXIT
TZ=Pacific/Auckland LC_ALL=C packaging/build_packages.sh "$second/packages" >/dev/null
for package in build/packages/*.deb; do
    cmp "$package" "$second/packages/$(basename "$package")" ||
        fail "$package comes out differently in another folder."
done
echo "Two builds in different folders are the same byte for byte."
