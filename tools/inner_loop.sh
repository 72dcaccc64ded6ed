#!/usr/bin/env bash
# inner_loop.sh [FILE]...   what a small change costs: changes each file by one line that nothing reads (a constant of another
# value each time, so that no cache knows it), builds what ./test fast needs and runs its tests, and prints the seconds of both
# and the processor's. Without files: a source of ui/, one of engine/, and the header of a group of settings.
# Works on a copy of the working tree in build/inner_loop, built before with a warm cache; 60 s are what each should stay under
# on two quiet cores.
set -euo pipefail
cd "$(dirname "$0")/.."
[ $# -gt 0 ] || set -- ui/screen/layout.cpp engine/graph/graph.cpp startup/settings/grid_settings.h

copy=build/inner_loop
mkdir -p "$copy"
find "$copy" -mindepth 1 -maxdepth 1 ! -name build -exec rm -rf {} +  # what is gone from the tree goes here too
git ls-files -z --cached | tar --null --files-from=- -c | tar -x -C "$copy"  # with their times
cd "$copy"
cmake --preset dev >configure.log 2>&1 || { tail configure.log >&2; exit 1; }
cmake --build --preset dev >build.log 2>&1 || { tail build.log >&2; exit 1; }

TIMEFORMAT='%R %U %S'
measured() {  # seconds and processor seconds of a command, its output in inner.log
    local times
    times=$( { time "$@" >inner.log 2>&1; } 2>&1 ) || { tail -n 30 inner.log >&2; return 1; }
    awk '{ printf "%5.1f s (%5.1f s of processor)", $1, $2 + $3 }' <<<"$times"
}
for file in "$@"; do
    cp -p "$file" original
    printf 'namespace zv { [[maybe_unused]] inline constexpr long long changed%s = %s; }\n' "$RANDOM" "$(date +%s%N)" >>"$file"
    built=$(measured cmake --build --preset dev) || exit 1
    tested=$(measured ctest --test-dir build/dev --output-on-failure -j2 -LE slow) || exit 1
    cp original "$file"
    printf '%-28s build %s, fast tests %s\n' "$file" "$built" "$tested"
    cmake --build --preset dev >build.log 2>&1
done
