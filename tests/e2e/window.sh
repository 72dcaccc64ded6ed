# The real program's window, for scripts that have sourced own_servers.sh. `program` is its process.

# start_program BIN [VARIABLE=VALUE...]: until its palette is open and it plays into a sound server.
start_program() {
    local folder=$1
    shift
    # The trace of the start is written when the palette is open.
    env "$@" "$folder/zentrova" -t --home "$work/home" >"$work/zentrova.log" 2>&1 &
    program=$!
    pids+=($program)
    await test -s "$work/home/Trace_start.log"
}

# The window is the largest of the program's.
largest_window() {
    for id in $(xdotool search --onlyvisible --pid $program --name '^Zentrova' 2>/dev/null); do
        eval "$(xdotool getwindowgeometry --shell "$id" 2>/dev/null)" && echo "$WIDTH $HEIGHT $id"
    done | sort -n | tail -1
}

# find_window: sets `window`, and x, y of its first button, once its size has come to rest.
find_window() {
    local before=none now=
    for _ in $(seq 40); do
        now=$(largest_window)
        [ -n "$now" ] && [ "$now" = "$before" ] && break
        before=$now
        sleep 0.5
    done
    [ -n "$now" ] || fail "the window did not come"
    read -r WIDTH HEIGHT window <<<"$now"
    # The first button stands at the left of the grid, right under the control strip.
    read -r x y < <(python3 "$here/tone.py" button "$WIDTH" "$HEIGHT")
}

# record SINK: begins to record what it sends into $work/SINK.raw; `recorder` is the process.
record() {
    rm -f "$work/$1.raw"
    parec -d "$1.monitor" --rate=44100 --format=float32le --channels=2 --raw --latency-msec=20 >"$work/$1.raw" 2>"$work/parec-$1.log" &
    recorder=$!
    pids+=($recorder)
    await test -s "$work/$1.raw"
}
