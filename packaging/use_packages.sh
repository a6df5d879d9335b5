#!/bin/bash
# Runs inside a bare Debian, as root, for test_packages.sh: installs the packages in /packages, starts
# them as their menu entries do, runs a test to Done, and purges them.
set -euo pipefail
export DEBIAN_FRONTEND=noninteractive LC_ALL=C.UTF-8

SAMPLES=/usr/share/kest-battery-tester/samples

say()
{
    printf 'use_packages: %s\n' "$1"
}

fail()
{
    say "FAILED: $1"
    exit 1
}

# What runs in the background would keep the output open, and whoever waits for its end waiting.
end_all()
{
    local process
    for process in $(jobs -p) ${screen:-}; do
        kill "$process" 2>/dev/null || true
    done
}
trap end_all EXIT

# installed_packages FORMAT: those that these packages are, each in this form.
installed_packages()
{
    dpkg-query --show --showformat="$1" 'kest-*'
}

# exec_of NAME: the command of a menu entry.
exec_of()
{
    sed --quiet 's/^Exec=//p' "/usr/share/applications/$1.desktop"
}

# as_tester COMMAND: becomes a shell of an ordinary user, on a virtual screen. Call it in a subshell, whose
# process is then the command's own: processes are told apart by number here, as those of the machine around
# this system are in sight, too.
as_tester()
{
    exec setpriv --reuid tester --regid tester --init-groups \
        env HOME=/home/tester USER=tester DISPLAY="$display" bash -c "cd; $1"
}

# wait_until WORDS COMMAND...: five minutes at most, as the machine may be busy.
wait_until()
{
    local words=$1
    shift
    for ((i = 0; i < 3000; ++i)); do
        ! "$@" || return 0
        sleep 0.1
    done
    fail "$words"
}

has_window()
{
    # Whole first: a pipe that ends early would count as a failure.
    local windows
    windows=$(DISPLAY=$display xwininfo -root -tree 2>/dev/null) || windows=
    [[ $windows == *"$1"* ]]
}

# A free number, which the screen writes when it is ready: screens of the machine around are in sight, too.
start_screen()
{
    local number
    exec 3< <(exec Xvfb -displayfd 1 -nolisten tcp -screen 0 1600x1000x24 2>/dev/null)
    screen=$!
    read -r -t 300 -u 3 number || fail "No virtual screen comes."
    display=:$number
}

# starts NAME TITLE: the menu entry shows its window, and SIGTERM closes it as its button does.
starts()
{
    (as_tester "exec $(exec_of "$1")") &
    local program=$!
    wait_until "No window \"$2\" comes." has_window "$2"
    kill "$program" || fail "$1 does not run."
    wait "$program" || fail "$1 ends with $?."
    say "the menu entry $1 starts, shows \"$2\", and closes."
}

install_all()
{
    apt-get install --yes --no-install-recommends /packages/*.deb
    say "installed: $(installed_packages '${Package} ${Version}, ')"
    # shellcheck disable=SC2046  # one word a package
    dpkg-query --listfiles $(installed_packages '${Package} ') | sort --unique |
        while IFS= read -r file; do [[ -d $file ]] || printf '%s\n' "$file"; done >/tmp/files
}

# Each program finds its libraries, and tells of itself; the application has no options and is started below.
look_at_programs()
{
    local program
    for program in /usr/bin/kest-*; do
        ! ldd "$program" | grep 'not found' || fail "$program misses a library."
        [[ $program == */kest-battery-tester ]] || "$program" --help >/dev/null </dev/null ||
            fail "$program has no --help."
        [[ -f /usr/share/man/man1/${program##*/}.1.gz ]] || fail "$program has no manual page."
    done
    say "no program misses a library or a page: $(cd /usr/bin && echo kest-*)"
}

run_test_to_done()
{
    (as_tester "$(exec_of kest-demo) --unattended demo") >/kept/demo.txt 2>&1 || {
        cat /kept/demo.txt
        fail "The demo's test does not come to its end."
    }
    cp -r /home/tester/demo/. /kept
    grep --quiet 'Switching to phase Done' /kept/"Demo Pack"*.txt || fail "The test is not done."
    head --bytes=5 /kept/"Demo Pack"*.pdf | grep --quiet '%PDF-' || fail "There is no page."
    say "the demo's test is done, with logs, page and screenshot."
}

# kest-log reads the demo's log and the samples, which have to be the reader's own, and makes a workbook.
use_logs()
{
    local told logs="demo/'Demo Pack'*.csv"
    told=$(as_tester "cp -r $SAMPLES . && kest-log check $logs samples/*.csv") || [[ $? == 1 ]] ||
        fail "kest-log fails."
    [[ $(grep --count ': loads$' <<<"$told") == 3 ]] || fail "kest-log says: $told"
    (as_tester "kest-log export --format xlsx $logs") || fail "kest-log makes no workbook."
    [[ $(cd /home/tester/demo && head --bytes=2 ./*.xlsx) == PK ]] || fail "There is no workbook."
    say "kest-log reads the demo's log and the samples, and makes a workbook."
}

# An empty folder has no ports; the machine around may have some, which the menu entry's own command finds.
ask_doctor()
{
    local told
    told=$(as_tester "kest-doctor --root /srv") || [[ $? == 1 ]] || fail "kest-doctor fails."
    [[ $told == *"There is no USB serial port"* ]] || fail "kest-doctor says: $told"
    told=$(as_tester "$(exec_of kest-doctor)" </dev/null) || true
    [[ $told == *"Press Enter to close this window."* && $told == *[a-z].* ]] ||
        fail "The menu entry kest-doctor says: $told"
    say "kest-doctor finds no instrument, by its menu entry, too."
}

# The unit starts the program that is there, and nobody has switched it on.
look_at_watch()
{
    local unit=/usr/lib/systemd/user/kest-watch.service
    [[ $("$(sed --quiet 's/^ExecStart=//p' "$unit")" --version) == "kest-watch "* ]] || fail "$unit starts nothing."
    [[ -z $(find /etc/systemd -name 'kest-watch*') ]] || fail "kest-watch is switched on for all."
    say "the service kest-watch waits for a user who wants it."
}

purge_all()
{
    # shellcheck disable=SC2046
    apt-get purge --yes $(installed_packages '${Package} ')
    local file
    while IFS= read -r file; do
        [[ ! -e $file && ! -L $file ]] || fail "$file is left."
    done </tmp/files
    rm -r /home/tester
    names_of_ours | diff /tmp/before - || fail "Something is left."
    say "purged, and nothing is left of $(wc --lines </tmp/files) files."
}

names_of_ours()
{
    find / -xdev -iname '*kest*' -not -path '/proc/*' -not -path '/packages*' -not -path '/kept/*' | sort
}

useradd --create-home tester
mkdir /kept
names_of_ours >/tmp/before
install_all
look_at_programs
start_screen
starts kest-battery-tester "Kestrometer Suite"
starts kest-demo "Demo, 60 times as fast"
run_test_to_done
use_logs
look_at_watch
ask_doctor
kill "$screen"
bash /use_udev_rules.sh
purge_all
