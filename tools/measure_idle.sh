#!/bin/bash
# What the idle program costs: the window with the sample palette is shown on an X server and a sound server of its
# own, nothing sounds, and after a while of rest the processor time of SECONDS (60) is printed, whole and by thread, in
# per cent of one core, and how often a thread woke up in a second.
#   measure_idle.sh BIN_FOLDER [SECONDS] [OUTPUTS]
set -u
bin=$(cd "$1" && pwd)
seconds=${2:-60}
outputs=${3:-1}
here=$(cd "$(dirname "$0")" && pwd)
. "$here/own_servers.sh"
own_servers "$outputs"

mkdir -p "$work/home"
cp -r "$here/../data/." "$work/home/"
[ "$outputs" -gt 1 ] && aux=2 || aux=0
printf '[Settings]\r\nConfirmExit=0\r\nCheckUpdate=0\r\nDeviceAux=%s\r\n' "$aux" >"$work/home/zv.ini"
"$bin/zentrova" -t --home "$work/home" >"$work/program.log" 2>&1 &
program=$!
pids+=($program)
await test -s "$work/home/Trace_start.log"
sleep 8
/usr/bin/python3 - "$program" "$seconds" <<'PY'
import os, sys, time
pid, seconds = int(sys.argv[1]), float(sys.argv[2])
def threads():
    found = {}
    for tid in os.listdir(f"/proc/{pid}/task"):
        folder = f"/proc/{pid}/task/{tid}/"
        status = dict(line.split(":", 1) for line in open(folder + "status"))
        ran = int(open(folder + "schedstat").read().split()[0])
        found[int(tid)] = (status["Name"].strip(), ran, int(status["voluntary_ctxt_switches"]))
    return found
def ticks():
    fields = open(f"/proc/{pid}/stat").read().rsplit(")", 1)[1].split()
    return int(fields[11]) + int(fields[12])
before, ticked, began = threads(), ticks(), time.monotonic()
time.sleep(seconds)
after, took = threads(), time.monotonic() - began
whole = 100 * (ticks() - ticked) / os.sysconf("SC_CLK_TCK") / took
def share(tid):
    return 100 * (after[tid][1] - before[tid][1]) / 1e9 / took
for tid in sorted(set(before) & set(after), key=share, reverse=True):
    wakes = (after[tid][2] - before[tid][2]) / took
    if wakes > 0: print(f"{share(tid):6.2f} %  {wakes:6.1f} wakes/s  {after[tid][0]} ({tid - pid:+d})")
print(f"idle: {whole:.2f} % of a core over {took:.0f} s, by scheduler {sum(map(share, set(before) & set(after))):.2f} %")
PY
