# shellcheck shell=bash
# Shared by run.sh, test.sh and .ci/run, which source it from the top folder.

PACKAGE_LIST=packaging/debian-packages.txt
CMAKE_NEEDED=3.25

fail()
{
    printf '%s: %s\n' "${0##*/}" "$1" >&2
    exit 1
}

# packages_of build check: the names in these sections of the list, one per line.
packages_of()
{
    awk -v wanted=" $* " '
        /^\[/ { section = substr($1, 2, length($1) - 2); next }
        NF && !/^#/ && index(wanted, " " section " ") { print $1 }' "$PACKAGE_LIST"
}

# Those of the packages named that are not installed. One query for all, as a start takes seconds.
missing_of()
{
    local installed
    # dpkg-query ends with 1 for a name it has never heard of: just another missing package.
    installed=$(dpkg-query --show --showformat='${db:Status-Status} ${Package}\n' "$@" 2>/dev/null) ||
        true
    for package in "$@"; do
        grep --quiet --line-regexp --fixed-strings "installed $package" <<<"$installed" ||
            printf '%s\n' "$package"
    done
}

# apt_get update: apt-get as root or by sudo, asking nothing.
apt_get()
{
    local as_root=(sudo)
    [[ $(id -u) == 0 ]] && as_root=()
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
        apt-get --quiet --option DPkg::Lock::Timeout=300 "$@" </dev/null
}

install_packages()
{
    if [[ $(id -u) == 0 ]]; then
        echo "Installing the missing Debian packages as root: $*"
    elif command -v sudo >/dev/null; then
        echo "Installing the missing Debian packages by sudo, which may ask for your password: $*"
    else
        fail "These Debian packages are missing: $*
This is not root and there is no sudo. Have root run:
    apt-get install --no-install-recommends $*"
    fi

    # Another archive of this machine may be out of reach: whether ours is, the installation tells.
    apt_get update || echo "apt-get update failed; trying with the package lists that are here."
    apt_get install --yes --no-install-recommends "$@" ||
        fail "apt-get could not install: $*
Its own words are above. The network must be up, and the main archive of Debian 12 (or newer)
must be among the package sources of this machine (/etc/apt/sources.list)."
}

# require_packages build check: installs what is missing of these sections of the list.
require_packages()
{
    if ! command -v dpkg-query >/dev/null || ! command -v apt-get >/dev/null; then
        fail "This is no Debian system: dpkg-query or apt-get is not here.
Install what Debian calls: $(packages_of "$@" | paste --serial --delimiters=' ')
and then build by hand: docs/development.md tells how."
    fi

    local packages missing
    mapfile -t packages < <(packages_of "$@")
    mapfile -t missing < <(missing_of "${packages[@]}")
    [[ ${#missing[@]} == 0 ]] && return
    install_packages "${missing[@]}"

    mapfile -t missing < <(missing_of "${packages[@]}")
    [[ ${#missing[@]} == 0 ]] || fail "Still not installed: ${missing[*]}"
}

require_cmake()
{
    command -v cmake >/dev/null || fail "There is no cmake in the PATH ($PATH)."
    local version
    version=$(cmake --version | awk 'NR == 1 { print $3 }')
    printf '%s\n%s\n' "$CMAKE_NEEDED" "$version" | sort --check=silent --version-sort ||
        fail "$(command -v cmake) is version $version, but $CMAKE_NEEDED or newer is needed.
Debian 12 has it; an older cmake earlier in the PATH must make way."
}

# configure release: only if the folder is new, was moved, or the presets have changed since.
# Changes in the CMakeLists.txt files are noticed by the build itself.
configure()
{
    local folder=build/$1
    if [[ -f $folder/CMakeCache.txt ]] &&
        ! grep --quiet --line-regexp --fixed-strings "CMAKE_HOME_DIRECTORY:INTERNAL=$PWD" \
            "$folder/CMakeCache.txt"; then
        echo "$folder was made elsewhere; configuring it anew."
        rm -rf "$folder"
    fi

    local stamp=$folder/configured
    [[ -f $stamp && -f $folder/build.ninja && ! CMakePresets.json -nt $stamp ]] && return
    cmake --preset "$1" || fail "Configuring the preset $1 failed; cmake's own words are above."
    touch "$stamp"
}

# build release kest-demo: configures when needed, and builds these targets, or all.
build()
{
    local preset=$1
    shift
    local targets=()
    [[ $# == 0 ]] || targets=(--target "$@")
    require_cmake
    configure "$preset"
    cmake --build --preset "$preset" --parallel "$(nproc)" "${targets[@]}" ||
        fail "Building the preset $preset failed; the compiler's words are above."
}
