#!/bin/bash
# Installs the packages of build/packages, or of the folder named, on a bare Debian 12 made for that,
# uses them there, and purges them. Needs root and the network, and some two minutes. What the demo left
# is kept in build/bare-system.
set -euo pipefail
called_from=$PWD
cd "$(dirname "$(readlink --canonicalize "$0")")/.."
source packaging/setup.sh

[[ $(id -u) == 0 ]] || fail "Only root can make a bare system: sudo $0"
packages=$PWD/build/packages
[[ $# == 0 ]] || packages=$(cd "$called_from" && realpath -- "$1")
compgen -G "$packages/*.deb" >/dev/null ||
    fail "There are no packages in $packages: packaging/build_packages.sh builds them."
require_packages bare

kept=$PWD/build/bare-system
rm -rf "$kept"
mkdir -p "$kept"
log=$kept/log.txt
# The tools that look at the window come with the system, so that the packages alone bring the rest.
mmdebstrap --variant=apt --components=main --format=null --aptopt='Acquire::Languages "none"' \
    --include=xvfb,xauth,x11-utils,procps \
    --customize-hook="mkdir \"\$1/packages\" && cp '$packages'/*.deb \"\$1/packages\"" \
    --customize-hook="cp packaging/use_packages.sh \"\$1/\"" \
    --customize-hook='chroot "$1" bash /use_packages.sh' \
    --customize-hook="cp -r \"\$1/kept/.\" '$kept'" \
    bookworm /dev/null >"$log" 2>&1 || {
    tail --lines=40 "$log" >&2
    fail "The packages do not stand their test; all words: $log"
}
grep '^use_packages: ' "$log"
