#!/bin/bash
# Installs the packages of build/packages, or of the folder named, on a bare Debian 12 made for that,
# uses them there, and purges them. Needs root and the network, and some four minutes. What the demo left
# is kept in build/bare-system.
#
# Ends with 77, and says why, where this machine cannot make a bare system or cannot reach the archive.
set -euo pipefail
called_from=$PWD
cd "$(dirname "$(readlink --canonicalize "$0")")/.."
source packaging/setup.sh

CANNOT=77
MOST_SECONDS=1800
ARCHIVE=http://deb.debian.org/debian

cannot()
{
    printf '%s: SKIPPED, the packages were not tried on a bare system: %s\n' "${0##*/}" "$1" >&2
    exit $CANNOT
}

# What mmdebstrap does first, in a namespace that ends with the command.
may_mount_and_change_root()
{
    unshare --mount sh -c 'mount -t tmpfs none /mnt && mkdir /mnt/pts &&
        mount -t devpts none /mnt/pts && mknod /mnt/null c 1 3 && chroot / true' 2>/dev/null
}

reaches_archive()
{
    local release status=0
    release=$(mktemp)
    /usr/lib/apt/apt-helper -o Acquire::Retries=5 download-file "$ARCHIVE/dists/bookworm/InRelease" \
        "$release" >/dev/null 2>&1 || status=1
    rm -f "$release"
    return $status
}

# The lines in which apt says that a download failed.
failed_downloads()
{
    grep -E '^(E: Failed to fetch|Err:)|Temporary failure resolving|Could not connect' "$log" | tail -n 3
}

# mmdebstrap of Debian 12 gives all pseudo-terminals to user 5, where it means group 5. The tools that look
# at windows and devices come with the system, so that the packages alone bring the rest.
try_packages()
{
    timeout --kill-after=60 $MOST_SECONDS unshare --mount \
        mmdebstrap --variant=apt --components=main --format=null --aptopt='Acquire::Languages "none"' \
        --aptopt='Acquire::Retries "5"' --aptopt='Acquire::http::Timeout "60"' \
        --include=xvfb,xauth,x11-utils,procps,udev,umockdev \
        --customize-hook='mount -o remount,noexec,nosuid,gid=5,mode=620,ptmxmode=666 none "$1/dev/pts"' \
        --customize-hook="mkdir \"\$1/packages\" && cp '$packages'/*.deb \"\$1/packages\"" \
        --customize-hook='cp packaging/use_packages.sh packaging/use_udev_rules.sh "$1/"' \
        --customize-hook='chroot "$1" bash /use_packages.sh' \
        --customize-hook="cp -r \"\$1/kept/.\" '$kept'" \
        bookworm /dev/null >"$log" 2>&1
}

packages=$PWD/build/packages
[[ $# == 0 ]] || packages=$(cd "$called_from" && realpath -- "$1")
compgen -G "$packages/*.deb" >/dev/null ||
    fail "There are no packages in $packages: packaging/build_packages.sh builds them."

[[ $(id -u) == 0 ]] || cannot "only root can make one: sudo $0"
may_mount_and_change_root || cannot "this machine lets root neither mount nor change the root."
reaches_archive || cannot "$ARCHIVE is out of reach."
require_packages bare

kept=$PWD/build/bare-system
rm -rf "$kept"
mkdir -p "$kept"
log=$kept/log.txt
status=0
try_packages || status=$?
if [[ $status != 0 ]]; then
    lost=$(failed_downloads)
    [[ -z $lost ]] || cannot "downloads failed.
$lost"
    tail --lines=40 "$log" >&2
    [[ $status != 124 ]] || fail "The packages are not through after $MOST_SECONDS seconds; all words: $log"
    fail "The packages do not stand their test; all words: $log"
fi
grep '^use_[a-z_]*: ' "$log"
