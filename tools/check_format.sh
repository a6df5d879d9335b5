#!/bin/bash
# Ends with 1, naming the places, if clang-format would change a source file.
set -euo pipefail
cd "$(dirname "$(readlink --canonicalize "$0")")/.."

# New files count before they are tracked; deleted ones do no more. The folder may be another user's.
git -c safe.directory="$PWD" ls-files -z --cached --others --exclude-standard '*.h' '*.cpp' |
    while IFS= read -r -d '' file; do [[ ! -f $file ]] || printf '%s\0' "$file"; done |
    xargs --null --no-run-if-empty clang-format --dry-run --Werror
echo "All sources are as clang-format would have them."
