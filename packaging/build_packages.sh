#!/bin/bash
# Builds the Debian packages into build/packages, or into the folder named: from a copy of the tracked
# files, so that nothing of this checkout's own builds gets into them.
set -euo pipefail
called_from=$PWD
cd "$(dirname "$(readlink --canonicalize "$0")")/.."
source packaging/setup.sh

target=$PWD/build/packages
if [[ $# == 0 ]]; then
    rm -rf "$target"
else
    target=$(cd "$called_from" && realpath --canonicalize-missing -- "$1")
    [[ -z $(ls -A "$target" 2>/dev/null) ]] || fail "$target is not empty."
fi

require_packages build package programs
source_folder=$target/source
mkdir -p "$source_folder"

# The folder may be another user's.
git -c safe.directory="$PWD" ls-files -z --cached --others --exclude-standard |
    while IFS= read -r -d '' file; do [[ ! -f $file ]] || printf '%s\0' "$file"; done |
    tar --create --null --files-from=- | tar --extract --directory="$source_folder"

cd "$source_folder"
DEB_BUILD_OPTIONS="parallel=$(nproc)" dpkg-buildpackage --build=binary --no-sign \
    >"$target/build.log" 2>&1 || {
    tail --lines=40 "$target/build.log" >&2
    fail "The packages cannot be built; all words of the build: $target/build.log"
}
cd "$target"
rm -rf "$source_folder"
echo "Built into $target:"
sha256sum -- *.deb
