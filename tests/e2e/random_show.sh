#!/bin/bash
# A show of chance on a copy of the sample palettes: presses, palette changes and stops, with records, buttons and
# sound held against each other at each tick, and the device callbacks under guard.
#   random_show.sh BIN_FOLDER DATA_FOLDER SCRIPT
set -eu
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir "$work/home"
cp -r "$2/palette.ini" "$2/HotJingles.ini" "$2/Audio_Sample" "$work/home"
# Beds that duck, in every palette.
case $3 in
    *mix-*) sed -i 's/^Path_\([0-9]*[05]\)=.*/&\nAutoDuck_\1=1/' "$work/home/palette.ini"
        printf '[Settings]\r\nInputEnabled=1\r\n' >"$work/home/zv.ini" ;;
esac
guard=()
if [ -f "$1/librt_guard.so" ]; then
    guard=(env LD_PRELOAD="$(cd "$1" && pwd)/librt_guard.so" RT_GUARD_FAIL=1 RT_GUARD_TRACE=1)
fi
if ! "${guard[@]}" "$1/rehearse" "$3" --home "$work/home" --out "$work/out" --no-sound; then
    echo "random_show: the last of what happened:" >&2
    tail -40 "$work/out/events.log" >&2
    exit 1
fi
wanted=$(sed -n 's/.*\(random\|chaos\|mixing\) \([0-9]*\).*/\2/p' "$3" | head -n 1)
actions=$(grep -c "$(printf '\trandom\t')" "$work/out/events.log")
reports=$(grep -c "$(printf '\treport\t')" "$work/out/events.log" || true)
echo "random_show: $actions actions, $reports reports of errors"
[ "$actions" -eq "$wanted" ] && [ "$reports" -eq 0 ]
