#!/bin/bash
# Installs what is missing, builds and starts the program; ./run.sh --help tells the ways.
set -euo pipefail
called_from=$PWD
cd "$(dirname "$(readlink --canonicalize "$0")")"
source packaging/setup.sh

show_help()
{
    cat <<'END'
./run.sh                     the demo: the program with simulated instruments, in time lapse
./run.sh --app               the program itself, for instruments on serial ports
./run.sh --unattended [DIR]  the demo without a hand on it or a display: a whole test of two
                             cycles in about two minutes, which leaves its logs and a screenshot
                             in DIR (by default a new folder below build/unattended-demo)
./run.sh --help              this text

All but --help first install the Debian packages that are missing (as root or by sudo), then build.
Without a display ./run.sh does what ./run.sh --unattended does.
END
}

has_display()
{
    [[ -n ${DISPLAY:-} || -n ${WAYLAND_DISPLAY:-} ]]
}

# Starts a program and switches its instruments off if it dies.
guard=(build/release/programs/guard/kest-guard)
# A minute of the demo is a second, for which a window may well be busy: it is frozen after a real minute.
demo_time=(--speed 60 --frozen 3600)

# start_in_window FILE TARGET...: builds the targets and becomes the guard of build/release/FILE.
start_in_window()
{
    local file=build/release/$1
    shift
    if [[ -n ${DISPLAY:-} ]]; then
        require_packages build
    else
        require_packages build wayland
    fi
    build release kest-guard "$@"
    exec "${guard[@]}" -- "$file"
}

start_app()
{
    has_display || fail "The program needs a display, and neither DISPLAY nor WAYLAND_DISPLAY is set.
Start it from a desktop session. ./run.sh without --app runs a demo that needs no display."
    start_in_window kest-battery-tester kest-battery-tester
}

# start_unattended DIR: preferably on a virtual X server, which shows the window as a real one would.
start_unattended()
{
    mkdir -p "$1" || fail "The folder $1 cannot be made."
    require_packages build
    build release kest-demo kest-simulator kest-guard
    echo "Running a whole test of two cycles, about two minutes. Its files go to $1"
    guard+=("${demo_time[@]}")
    local demo=("${guard[@]}" -- build/release/tools/demo/kest-demo --unattended "$1")
    if command -v xvfb-run >/dev/null && command -v xauth >/dev/null; then
        export QT_QPA_PLATFORM=xcb
        exec xvfb-run --auto-servernum --server-args="-screen 0 1600x1000x24" "${demo[@]}"
    fi
    export QT_QPA_PLATFORM=offscreen
    exec "${demo[@]}"
}

# The full path of the folder named by the caller, or of a new one: old logs would raise questions.
unattended_folder()
{
    if [[ -n $1 ]]; then
        (cd "$called_from" && realpath --canonicalize-missing -- "$1")
    else
        printf '%s/build/unattended-demo/%s\n' "$PWD" "$(date +%Y-%m-%d_%H-%M-%S)"
    fi
}

start_demo()
{
    if has_display; then
        guard+=("${demo_time[@]}")
        start_in_window tools/demo/kest-demo kest-demo kest-simulator
    fi
    echo "There is no display (neither DISPLAY nor WAYLAND_DISPLAY is set): the demo runs unattended."
    start_unattended "$(unattended_folder "")"
}

wrong_arguments()
{
    show_help >&2
    fail "These arguments mean nothing to me: $*"
}

case "$#:${1:-}" in
    0:) start_demo ;;
    1:--app) start_app ;;
    1:--unattended | 2:--unattended) start_unattended "$(unattended_folder "${2:-}")" ;;
    1:--help | 1:-h) show_help ;;
    *) wrong_arguments "$@" ;;
esac
