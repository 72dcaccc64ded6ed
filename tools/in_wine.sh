#!/usr/bin/env bash
# in_wine.sh PROGRAM.exe [ARGUMENT]...   runs it under wine64, 60 s at most, in a prefix of its own: drive P: is the
# folder with the program, S: this checkout, T: a folder for temporary files, and no drive leads to the root.
set -euo pipefail
sources=$(cd "$(dirname "$0")/.." && pwd)
wine=/usr/lib/wine/wine64
bin=$(cd "$(dirname "$1")" && pwd)
name=$(basename "$1")
shift
prefix=$(printf %s "$name $*" | cksum)
export WINEPREFIX=$bin/wine-${prefix%% *} WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml=" DISPLAY=
if [ ! -e "$WINEPREFIX/ready" ]; then
    rm -rf "$WINEPREFIX"
    mkdir -p "$WINEPREFIX"
    timeout 120 "$wine" wineboot --init >"$WINEPREFIX/log" 2>&1 || { tail "$WINEPREFIX/log" >&2; exit 1; }
    rm -f "$WINEPREFIX/dosdevices/z:"
    touch "$WINEPREFIX/ready"
fi
memory=/dev/shm
[ -w "$memory" ] || memory=${TMPDIR:-/tmp}
temporary=$(mktemp -d "$memory/zv-wine-XXXXXX")
trap 'rm -rf "$temporary"' EXIT
ln -sfn "$bin" "$WINEPREFIX/dosdevices/p:"
ln -sfn "$sources" "$WINEPREFIX/dosdevices/s:"
ln -sfn "$temporary" "$WINEPREFIX/dosdevices/t:"
cd "$bin"
timeout --kill-after=5 "${IN_WINE_SECONDS:-60}" "$wine" "P:\\$name" "$@"
