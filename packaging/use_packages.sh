#!/bin/bash
# Runs inside a bare Debian, as root, for test_packages.sh: installs the packages in /packages, starts
# them as their menu entries do, runs a test to Done, and purges them.
set -euo pipefail
export DEBIAN_FRONTEND=noninteractive LC_ALL=C.UTF-8

say()
{
    printf 'use_packages: %s\n' "$1"
}

fail()
{
    say "FAILED: $1"
    exit 1
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
        env HOME=/home/tester USER=tester DISPLAY=:7 bash -c "cd; $1"
}

# Waits until a window with that title is there; a minute at most.
window_comes()
{
    for ((i = 0; i < 600; ++i)); do
        # Whole first: a pipe that ends early would count as a failure.
        windows=$(DISPLAY=:7 xwininfo -root -tree 2>/dev/null) || windows=
        [[ $windows != *"$1"* ]] || return 0
        sleep 0.1
    done
    fail "No window \"$1\" comes."
}

# starts NAME TITLE: the menu entry shows its window, and SIGTERM closes it as its button does.
starts()
{
    as_tester "exec $(exec_of "$1")" &
    local program=$!
    window_comes "$2"
    kill "$program" || fail "$1 does not run."
    wait "$program" || fail "$1 ends with $?."
    say "the menu entry $1 starts, shows \"$2\", and closes."
}

useradd --create-home tester
mkdir /kept
find / -xdev -iname '*kest*' -not -path '/proc/*' -not -path '/packages*' >/tmp/before

apt-get install --yes --no-install-recommends /packages/*.deb
say "installed: $(dpkg-query --show --showformat='${Package} ${Version}, ' 'kest-*')"
dpkg-query --listfiles $(dpkg-query --show --showformat='${Package} ' 'kest-*') | sort --unique |
    while IFS= read -r file; do [[ -d $file ]] || printf '%s\n' "$file"; done >/tmp/files

for program in /usr/bin/kest-*; do
    ! ldd "$program" | grep 'not found' || fail "$program misses a library."
    "$program" --help >/dev/null 2>&1 </dev/null || [[ $program == */kest-battery-tester ]] ||
        fail "$program has no --help."
done
say "no program misses a library: $(cd /usr/bin && echo kest-*)"

Xvfb :7 -screen 0 1600x1000x24 >/dev/null 2>&1 &
screen=$!
starts kest-battery-tester "Kestrometer Suite"
starts kest-demo "Demo, 60 times as fast"

(as_tester "$(exec_of kest-demo) --unattended demo --speed 300") >/kept/demo.txt ||
    fail "The demo's test does not come to its end."
cp -r /home/tester/demo/. /kept
grep --quiet 'Switching to phase Done' /kept/"Demo Pack"*.txt || fail "The test is not done."
head --bytes=5 /kept/"Demo Pack"*.pdf | grep --quiet '%PDF-' || fail "There is no page."
say "the demo's test is done, with logs, page and screenshot."

# The machine below may have ports; an empty folder has none.
(as_tester "kest-doctor --root /srv") >/kept/doctor.txt || [[ $? == 1 ]] || fail "kest-doctor fails."
say "kest-doctor says: $(head --lines=1 /kept/doctor.txt)"
kill "$screen"

apt-get purge --yes $(dpkg-query --show --showformat='${Package} ' 'kest-*')
while IFS= read -r file; do
    [[ ! -e $file && ! -L $file ]] || fail "$file is left."
done </tmp/files
rm -r /home/tester
find / -xdev -iname '*kest*' -not -path '/proc/*' -not -path '/packages*' -not -path '/kept/*' |
    diff /tmp/before - || fail "Something is left."
say "purged, and nothing is left of $(wc --lines </tmp/files) files."
