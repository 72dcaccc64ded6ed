#!/bin/sh
# Builds the fuzzers and lets each run for a while, one after the other; what one finds lies in its folder "found".
#   tools/fuzz.sh MINUTES [FUZZER...]
# Needs clang and libclang-rt-dev. Folder of the build and of what was learnt: $FUZZ_FOLDER, else build/fuzz.
set -eu
minutes=$1
shift
root=$(cd "$(dirname "$0")/.." && pwd)
folder=${FUZZ_FOLDER:-$root/build/fuzz}
[ $# -gt 0 ] || set -- decoder_fuzz operations_fuzz ini_fuzz midi_fuzz stream_text_fuzz
cmake -S "$root" -B "$folder" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_COMPILER=clang++ -DZENTROVA_FUZZ=ON \
    >"$folder.log" 2>&1 || { tail "$folder.log"; exit 1; }
ninja -C "$folder" "$@"
bad=0
for fuzzer in "$@"; do
    work=$folder/$fuzzer
    mkdir -p "$work/corpus" "$work/found" "$work/seeds" "$work/tmp"
    if [ -d "$root/tests/fuzz/found/$fuzzer" ]; then cp "$root/tests/fuzz/found/$fuzzer"/* "$work/seeds"; fi
    [ "$fuzzer" != decoder_fuzz ] || python3 "$root/tools/make_sound_seeds.py" "$work/seeds"
    length=40000
    [ "$fuzzer" = decoder_fuzz ] || length=1500
    TMPDIR=$work/tmp "$folder/bin/$fuzzer" "$work/corpus" "$work/seeds" -max_total_time=$((minutes * 60)) \
        -max_len=$length -timeout=20 -rss_limit_mb=3000 -malloc_limit_mb=800 -print_final_stats=1 \
        -artifact_prefix="$work/found/" >"$work/log" 2>&1 || bad=1
    tail -n 7 "$work/log"
done
exit $bad
