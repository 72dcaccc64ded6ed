# For measurements: an X server with a window manager and a sound server of their own, gone when the script ends.
# To be sourced; sets `work`, a folder for the run, and `pids`. What is started in the background goes into `pids`.
work=$(mktemp -d)
pids=()
cleanup() {
    for pid in "${pids[@]}"; do kill "$pid" 2>/dev/null; done
    for pid in "${pids[@]}"; do wait "$pid" 2>/dev/null; done
    rm -rf "$work"
}
trap cleanup EXIT

await() {
    for _ in $(seq 200); do "$@" >/dev/null 2>&1 && return; sleep 0.1; done
    echo "$0: waited in vain for: $*" >&2
    exit 1
}

# own_servers OUTPUTS [SIZE]: so many sound outputs, a screen of that size
own_servers() {
    export XDG_RUNTIME_DIR=$work/run HOME=$work/user PULSE_SERVER=unix:$work/run/native
    mkdir -m 700 -p "$XDG_RUNTIME_DIR" "$HOME"
    unset WAYLAND_DISPLAY DBUS_SESSION_BUS_ADDRESS
    local sinks=() n
    for n in $(seq "$1"); do
        sinks+=(--load="module-null-sink sink_name=out$n rate=44100 format=float32le norewinds=1")
    done
    pulseaudio -n --daemonize=no --exit-idle-time=-1 --disallow-exit --use-pid-file=no \
        --load="module-native-protocol-unix auth-anonymous=1 socket=$work/run/native" "${sinks[@]}" \
        >"$work/pulse.log" 2>&1 &
    pids+=($!)
    await pactl info
    mkfifo "$work/display"
    Xvfb -displayfd 3 -screen 0 "${2:-1280x900}x24" -nolisten tcp 3>"$work/display" >"$work/xvfb.log" 2>&1 &
    pids+=($!)
    local number
    read -r number <"$work/display"
    export DISPLAY=:$number
    openbox >"$work/openbox.log" 2>&1 &
    pids+=($!)
    await sh -c "xprop -root _NET_SUPPORTING_WM_CHECK | grep -q '#'"
}
