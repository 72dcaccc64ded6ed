# An X server with a window manager and a sound server of their own, gone when the script ends.
# To be sourced; sets `work`, a folder for the run, and `pids`. What is started in the background goes into `pids`.
work=$(mktemp -d)
pids=()
cleanup() {
    for pid in "${pids[@]}"; do kill "$pid" 2>/dev/null; done
    for pid in "${pids[@]}"; do wait "$pid" 2>/dev/null; done
    rm -rf "$work"
}
trap cleanup EXIT

# Ends the script with what is wrong and the ends of the logs.
fail() {
    echo "$(basename "$0" .sh): $*" >&2
    local log
    for log in "$work"/*.log "$work"/home/*.log; do echo "--- $log" >&2; tail -n 20 "$log" >&2; done
    exit 1
}

# Waits up to 20 seconds until a command succeeds.
await() {
    for _ in $(seq 200); do "$@" >/dev/null 2>&1 && return; sleep 0.1; done
    fail "waited in vain for: $*"
}

need() {
    local tool
    for tool in "$@"; do command -v "$tool" >/dev/null || fail "$tool is not installed"; done
}

# A user of its own: nothing of the real one's is read or written.
own_user() {
    export XDG_RUNTIME_DIR=$work/run HOME=$work/user
    mkdir -m 700 -p "$XDG_RUNTIME_DIR" "$XDG_RUNTIME_DIR/pulse" "$HOME"
    unset WAYLAND_DISPLAY DBUS_SESSION_BUS_ADDRESS AT_SPI_BUS_ADDRESS
    export PULSE_SERVER=unix:$work/run/pulse/native
}

# own_screen [SIZE]: the X server chooses a free display and tells its number. One that is just going can take the
# socket of that number along; then another is started.
own_screen() {
    local number server
    for _ in 1 2 3 4 5; do
        rm -f "$work/display"
        mkfifo "$work/display"
        Xvfb -displayfd 3 -screen 0 "${1:-1280x900}x24" -nolisten tcp 3>"$work/display" >"$work/xvfb.log" 2>&1 &
        server=$!
        pids+=($server)
        read -r -t 20 number <"$work/display" || continue
        export DISPLAY=:$number
        for _ in $(seq 20); do
            xprop -root >/dev/null 2>&1 && return
            sleep 0.1
        done
        kill $server
    done
    fail "no X server came"
}

# own_sound OUTPUTS: a sound server with so many outputs, out1 and up; PipeWire instead of PulseAudio where SOUND_SERVER
# says so. Like a desktop's it has a stand-in output while there is no other. `servers` are its processes.
own_sound() {
    local n
    servers=()
    "own_${SOUND_SERVER:-pulseaudio}"
    await pactl info
    for n in $(seq "$1"); do plug_output "out$n"; done
}

own_pulseaudio() {
    pulseaudio -n --daemonize=no --exit-idle-time=-1 --disallow-exit --use-pid-file=no --load=module-always-sink \
        --load="module-native-protocol-unix auth-anonymous=1 socket=$work/run/pulse/native" >"$work/pulse.log" 2>&1 &
    servers+=($!)
    pids+=($!)
}

# Its session manager asks for a session bus.
own_pipewire() {
    local part
    export DBUS_SESSION_BUS_ADDRESS=unix:path=$work/run/bus
    if [ ! -S "$work/run/bus" ]; then
        dbus-daemon --session --nofork --address="$DBUS_SESSION_BUS_ADDRESS" >"$work/bus.log" 2>&1 &
        pids+=($!)
        await test -S "$work/run/bus"
    fi
    for part in pipewire wireplumber pipewire-pulse; do
        "$part" >"$work/$part.log" 2>&1 &
        servers+=($!)
        pids+=($!)
        [ $part != pipewire ] || await test -S "$work/run/pipewire-0"
    done
}

plug_output() { pactl load-module module-null-sink "sink_name=$1" rate=44100 format=float32le norewinds=1 >/dev/null; }
unplug_output() { pactl unload-module "$(pactl list short modules | awk -v name="sink_name=$1" 'index($0, name) {print $1}')"; }

# own_desktop [SIZE]: a screen with a window manager. What answered first may have been a server that was just going:
# then both are started again.
own_desktop() {
    local manager
    for _ in 1 2 3; do
        own_screen "${1:-}"
        openbox >"$work/openbox.log" 2>&1 &
        manager=$!
        pids+=($manager)
        while kill -0 $manager 2>/dev/null; do
            xprop -root _NET_SUPPORTING_WM_CHECK 2>/dev/null | grep -q '#' && return
            sleep 0.1
        done
    done
    fail "no window manager came"
}

# own_servers OUTPUTS [SIZE]: user, sound, screen and a window manager.
own_servers() {
    need Xvfb openbox xprop pulseaudio pactl
    own_user
    own_sound "$1"
    own_desktop "${2:-}"
}
