#!/bin/bash
# What a screen reader sees of the real program, through the accessibility bus: starts an X server, a session bus and
# the program on a copy of the sample data, and lets screen_reader.py walk the tree.
#   screen_reader.sh BIN_FOLDER DATA_FOLDER
set -u
bin=$(cd "$1" && pwd)
data=$(cd "$2" && pwd)
here=$(cd "$(dirname "$0")" && pwd)
. "$here/../../tools/own_servers.sh"
need Xvfb openbox dbus-run-session xprop
own_user
mkdir -p "$work/home"
cp -r "$data/palette.ini" "$data/HotJingles.ini" "$data/Audio_Sample" "$work/home"
printf '[Settings]\r\nConfirmExit=1\r\nCheckUpdate=0\r\nMIDIEnabled=0\r\nHotJinglesHeight=6\r\n' >"$work/home/zv.ini"

own_desktop
export QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1 QT_ACCESSIBILITY=1

# Without a sound server the program plays to its silent device: states change there as well.
timeout 90 dbus-run-session -- bash -c '
    bin=$1 work=$2 here=$3
    /usr/libexec/at-spi-bus-launcher --launch-immediately >"$work/bus.log" 2>&1 &
    bus=$!
    "$bin/zentrova" -t --home "$work/home" >"$work/zentrova.log" 2>&1 &
    program=$!
    for _ in $(seq 200); do
        [ -s "$work/home/Trace_start.log" ] && break
        sleep 0.1
    done
    timeout 60 /usr/bin/python3 "$here/screen_reader.py"
    status=$?
    kill $program $bus 2>/dev/null
    wait $program $bus 2>/dev/null
    exit $status
' screen_reader "$bin" "$work" "$here"
status=$?
[ $status -eq 0 ] || tail -n 20 "$work"/*.log >&2
exit $status
