#!/bin/bash
# Checks the forms of what surrounds the programs: menu entries, metainfo, man pages, shell scripts, and
# that the version is told alike.
set -euo pipefail
cd "$(dirname "$(readlink --canonicalize "$0")")/.."
source packaging/setup.sh

require_packages forms
desktop-file-validate packaging/*.desktop

version=$(dpkg-parsechangelog --show-field Version)
day=$(date --utc --date="$(dpkg-parsechangelog --show-field Date)" +%F)
grep --quiet --fixed-strings --line-regexp "## [$version] - $day" CHANGELOG.md ||
    fail "CHANGELOG.md has no heading \"## [$version] - $day\", as debian/changelog says."

folder=$(mktemp --directory)
trap 'rm -r "$folder"' EXIT
metainfo=$folder/example.distributor.kest_battery_tester.metainfo.xml
sed "s/@PROJECT_VERSION@/$version/; s/@KEST_RELEASE_DATE@/$day/" packaging/metainfo.xml.in >"$metainfo"
appstreamcli validate --pedantic --no-net "$metainfo"

# size_of FILE.png: as metainfo tells it.
size_of()
{
    od --address-radix=n --endian=big --format=u4 --skip-bytes=16 --read-bytes=8 "$1" |
        sed 's/^ *\([0-9]*\) *\([0-9]*\)$/width="\1" height="\2"/'
}

for picture in docs/screenshot.png docs/manual/page.png; do
    grep --quiet --fixed-strings "$(size_of "$picture")>https://www.distributor.example/product-info/${picture##*/}<" \
        packaging/metainfo.xml.in || fail "packaging/metainfo.xml.in does not show $picture, or not as large as it is."
done

for page in docs/man/*.1; do
    words=$(man --warnings --encoding=UTF-8 --local-file --troff-device=utf8 "$page" 2>&1 >/dev/null)
    [[ -z $words ]] || fail "$page: $words"
done
for script in packaging/*.sh packaging/completion/* tools/*.sh debian/*.sh .ci/run ./*.sh; do
    [[ ! -f $script ]] || bash -n "$script"
done
echo "Menu entries, metainfo, man pages and scripts are in form; the version is $version."
