#!/bin/bash
# Ends with 1, naming the places, if clang-tidy finds something. Build the preset "sanitize" first.
#
#   tools/check_tidy.sh          # what differs from origin/main; on main itself, from the last commit
#   tools/check_tidy.sh BASE     # what differs from this commit
#   tools/check_tidy.sh --all    # all sources, which takes the better part of an hour
set -euo pipefail
cd "$(dirname "$(readlink --canonicalize "$0")")/.."

BUILD=build/sanitize

# The folder may be another user's.
of_git()
{
    git -c safe.directory="$PWD" "$@"
}

# The commit to compare with; nothing in a clone so shallow that there is none.
default_base()
{
    local head base
    head=$(of_git rev-parse HEAD)
    base=$(of_git merge-base origin/main HEAD 2>/dev/null) || base=$head
    if [[ $base == "$head" ]] && of_git diff --quiet HEAD; then
        base=$(of_git rev-parse --quiet --verify HEAD~1) || true
    fi
    printf '%s\n' "$base"
}

# changed_files BASE: those that are there; new ones count before they are tracked.
changed_files()
{
    of_git diff --name-only --diff-filter=d "$1" -- '*.cpp' '*.h'
    of_git ls-files --others --exclude-standard '*.cpp' '*.h'
}

# A header is read through its own source, or else through one that includes it, if any does.
source_of_header()
{
    if [[ -f ${1%.h}.cpp ]]; then
        printf '%s\n' "${1%.h}.cpp"
    else
        of_git grep --files-with-matches "include \".*\b${1##*/}\"" -- '*.cpp' | head -n 1 || true
    fi
}

sources_of()
{
    local file
    while IFS= read -r file; do
        case $file in
            *.cpp) printf '%s\n' "$file" ;;
            *) source_of_header "$file" ;;
        esac
    done
}

# The commands of the build, without the precompiled header of another compiler.
write_commands()
{
    mkdir -p "$BUILD/tidy"
    sed 's/ -Winvalid-pch//; s/ -include [^ ]*cmake_pch.hxx//' "$BUILD/compile_commands.json" \
        >"$BUILD/tidy/compile_commands.json"
}

# What no command of the build names (fuzz/ is built apart) is left out.
known_to_the_build()
{
    local file
    while IFS= read -r file; do
        ! grep --quiet --fixed-strings "\"file\": \"$PWD/$file\"" "$BUILD/compile_commands.json" ||
            printf '%s\n' "$file"
    done
}

if [[ ${1:-} == --all ]]; then
    files=$(of_git ls-files '*.cpp')
else
    base=${1:-$(default_base)}
    [[ -z $base ]] || files=$(changed_files "$base" | sources_of)
fi
write_commands
sort --unique <<<"${files:-}" | known_to_the_build |
    xargs --no-run-if-empty --max-procs="$(nproc)" --max-args=1 \
        clang-tidy -p "$BUILD/tidy" --quiet --warnings-as-errors='*' 2> >(
            grep --invert-match 'warnings* generated' >&2)
echo "clang-tidy finds nothing."
