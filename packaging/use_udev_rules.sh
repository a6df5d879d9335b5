#!/bin/bash
# Runs inside a bare Debian, as root, for use_packages.sh: shows udev adapters that are not there, and looks
# what the installed rules make of them, and kest-doctor.
set -euo pipefail

RULES=/etc/udev/rules.d/99-kest-adapters.rules
ADAPTER=/devices/pci0000:00/0000:00:14.0/usb1/1-4
PORT=$ADAPTER/1-4:1.0/ttyUSB0/tty/ttyUSB0
description=$(mktemp)

fail()
{
    printf 'use_udev_rules: FAILED: %s\n' "$1"
    exit 1
}

# plug_in VENDOR PRODUCT: describes an adapter with a port.
plug_in()
{
    cat >"$description" <<END
P: $ADAPTER
N: bus/usb/001/004
E: DEVTYPE=usb_device
E: DEVNAME=/dev/bus/usb/001/004
E: MAJOR=189
E: MINOR=3
E: SUBSYSTEM=usb
A: dev=189:3\\n
A: idVendor=$1\\n
A: idProduct=$2\\n
A: manufacturer=Maker\\n
A: product=Adapter\\n
A: serial=A50285BI\\n

P: $ADAPTER/1-4:1.0
E: DEVTYPE=usb_interface
E: SUBSYSTEM=usb
A: bInterfaceNumber=00\\n

P: $ADAPTER/1-4:1.0/ttyUSB0
E: SUBSYSTEM=usb-serial

P: $PORT
N: ttyUSB0
E: DEVNAME=/dev/ttyUSB0
E: MAJOR=188
E: MINOR=0
E: SUBSYSTEM=tty
A: dev=188:0\\n
L: device=../../../ttyUSB0
END
}

# with_it COMMAND...: that machine has the adapter for this command.
with_it()
{
    umockdev-run --device="$description" -- "$@" 2>&1
}

# What udev makes of a device that comes.
made_of()
{
    with_it udevadm test --action=add "/sys$1"
}

is_left_alone()
{
    local made
    made=$(made_of "$ADAPTER")
    grep --quiet '^ID_MM_DEVICE_IGNORE=1$' <<<"$made" && ! grep --quiet '^SYSTEMD_WANTS=.*brltty' <<<"$made"
}

# As brltty's own rules do it for adapters that they know.
echo 'SUBSYSTEM=="usb", ENV{DEVTYPE}=="usb_device", ENV{SYSTEMD_WANTS}+="brltty-device@.service"' \
    >/etc/udev/rules.d/85-brltty.rules
cp "$RULES" /tmp/as-installed

plug_in 0403 6001
made=$(made_of "$PORT")
grep --quiet '^TAGS=.*:uaccess:' <<<"$made" || fail "A port is not given to whoever sits at the computer:
$made"
# What udev does not understand it says with the file's name and the line's number.
! grep -E 'kest[a-z-]*\.rules:[0-9]+ .*(Invalid|Unknown|Failed)' <<<"$made" || fail "udev does not understand a rule."
! is_left_alone || fail "A rule counts that nobody has taken."

adapters=$(sed --quiet 's/^#ACTION.*idVendor}=="\(....\)", ATTR{idProduct}=="\(....\)".*/\1:\2/p' "$RULES")
for ids in $adapters; do
    plug_in "${ids%:*}" "${ids#*:}"
    ! is_left_alone || fail "$ids is left alone before its line is taken."
    sed "/\"${ids%:*}\".*\"${ids#*:}\"/s/^#//" /tmp/as-installed >"$RULES"
    is_left_alone || fail "$ids is not left alone by its line: $(made_of "$ADAPTER")"
    plug_in "${ids%:*}" ffff
    ! is_left_alone || fail "The line of $ids keeps everything away from other adapters, too."
    cp /tmp/as-installed "$RULES"
done

# ModemManager runs, as far as its name tells, and the doctor has the line for an adapter of no known family.
bash -c 'exec -a /usr/sbin/ModemManager sleep 600' &
trap 'kill %1' EXIT
plug_in 2341 0043
made_of "$ADAPTER" >/dev/null
told=$(with_it kest-doctor --no-listen) || [[ $? == 1 ]] || fail "kest-doctor fails: $told"
command=$(grep --after-context=1 'ModemManager runs' <<<"$told" | sed --quiet '2s/^ *//p')
[[ $command == echo* ]] || fail "kest-doctor tells no line to take: $told"
grep --quiet 'ttyUSB0: Maker Adapter, number A50285BI (2341:0043).' <<<"$told" ||
    fail "kest-doctor does not know the adapter: $told"
# Nothing here listens to udevadm.
bash -c "sudo() { \"\$@\"; }; udevadm() { :; }; $command" >/dev/null
is_left_alone || fail "What kest-doctor had added does not count: $command"
told=$(with_it kest-doctor --no-listen) || [[ $? == 1 ]] || fail "kest-doctor fails: $told"
! grep --quiet 'ModemManager runs' <<<"$told" || fail "kest-doctor does not see that the line counts: $told"

cp /tmp/as-installed "$RULES"
rm -r /etc/udev/rules.d/85-brltty.rules "$description" /run/udev/data /run/udev/tags
echo "use_udev_rules: $(wc --words <<<"$adapters") adapters' lines and the doctor's own keep programs away," \
    "and whoever sits at the computer has the port."
