#!/usr/bin/env bash
# Web radio on this machine: milliseconds from the first byte of a station's sound until it is heard, for each format, from a real streaming
# server (the middle and the worst of ROUNDS openings), and what the whole program holds in memory while a stream plays
# for HOURS of virtual time (resident megabytes at ten moments).
#   tools/measure_stream.sh BIN [ROUNDS [HOURS]]
set -euo pipefail
bin=$(cd "$1" && pwd)
rounds=${2:-10}
hours=${3:-0}
root=$(cd "$(dirname "$0")/.." && pwd)
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

echo "load $(cut -d' ' -f1 /proc/loadavg)"
if [ "$rounds" -gt 0 ]; then
    ZV_ROUNDS=$rounds "$bin/test_sound" --gtest_filter='Icecast.*' >"$folder/times" || { cat "$folder/times"; exit 1; }
    for format in mp3 aac vorbis opus flac; do
        grep "sound, $format:" "$folder/times" | grep -o '[0-9]* ms' | sort -n |
            awk -v format=$format '{ ms[NR] = $1 } END { printf "%s: middle of %d %d ms, worst %d ms\n", format, NR, ms[int((NR + 1) / 2)], ms[NR] }'
    done
fi
if [ "$hours" -gt 0 ]; then
    cp -r "$root/data" "$folder/home"
    printf '[Settings]\r\nConfirmExit=0\r\nActiveTab=2\r\nVolLive=100\r\n' >"$folder/home/zv.ini"
    ffmpeg -v error -y -f lavfi -i anoisesrc=d=20:a=0.3:r=44100 -ac 2 "$folder/noise.mp3"
    cat >"$folder/script" <<END
at 0 web http://radio/ $folder/noise.mp3 200 audio/mpeg;live
at 0 set cmbStream http://radio/
at 100 click ckPlayStream
END
    for part in 1 2 3 4 5 6 7 8 9 10; do
        at=$((hours * 360000 * part))
        echo "at $at expect ckPlayStream.caption Stop" >>"$folder/script"
        echo "at $at shot $part.png" >>"$folder/script"
    done
    echo "at $((hours * 3600000 + 100)) end" >>"$folder/script"
    export QT_QPA_PLATFORM=offscreen
    "$bin/rehearse" "$folder/script" --home "$folder/home" --out "$folder/out" --no-sound &
    program=$!
    part=1
    while kill -0 $program 2>/dev/null; do
        if [ -e "$folder/out/$part.png" ]; then
            echo "$((hours * 6 * part)) min: $(awk '/VmRSS/ { print int($2 / 1024) }' /proc/$program/status 2>/dev/null || true) MB"
            part=$((part + 1))
        fi
        sleep 0.1
    done
    wait $program
fi
