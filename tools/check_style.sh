#!/usr/bin/env bash
# check_style.sh          every file stands as clang-format writes it
# check_style.sh tidy     clang-tidy has nothing to say on the sources changed since the base commit: ZENTROVA_BASE, else where
#                         this branch left origin/main, else ten commits back. Newest first, TIDY_SECONDS (90) at most; what is
#                         not reached is counted and is no failure. Needs build/dev/compile_commands.json.
set -euo pipefail
cd "$(dirname "$0")/.."

if [ "${1:-format}" = format ]; then
    # What was as it should be at the last run and has not been touched since still is.
    mkdir -p build && touch build/formatting
    [ build/formatted -nt .clang-format ] || rm -f build/formatted
    git ls-files --cached --others --exclude-standard '*.cpp' '*.h' |
        while read -r file; do [ ! "$file" -nt build/formatted ] || echo "$file"; done |
        xargs -d '\n' -r -P 2 -n 100 clang-format --dry-run -Werror || { echo "error: run clang-format -i on these files" >&2; exit 1; }
    mv build/formatting build/formatted
    exit 0
fi

base=${ZENTROVA_BASE:-}
[ -n "$base" ] || base=$(git merge-base HEAD origin/main 2>/dev/null || true)
if [ -z "$base" ] || [ "$base" = "$(git rev-parse HEAD)" ]; then
    base=$(git rev-list --max-count=11 HEAD | tail -n 1)
fi
mapfile -t changed < <(git log --name-only --format= "$base..HEAD" -- '*.cpp' | awk '!seen[$0]++')
present=()
for file in "${changed[@]}"; do [ ! -e "$file" ] || present+=("$file"); done
log=$(mktemp -d)
trap 'rm -rf "$log"' EXIT
export log until=$(($(date +%s) + ${TIDY_SECONDS:-90}))
# The precompiled headers are another compiler's.
sed -E 's/ -Winvalid-pch//; s/ -fpch-preprocess//; s/ -include [^ ]*cmake_pch[^ ]*//' build/dev/compile_commands.json >"$log/compile_commands.json"
printf '%s\0' "${present[@]}" | xargs -0 -r -P 2 -n 1 bash -c '
    left=$((until - $(date +%s)))
    [ "$left" -gt 0 ] || exit 0
    name=$log/$(echo "$1" | tr / _)
    if timeout "$left" nice clang-tidy -p "$log" --extra-arg=-Wno-unknown-pragmas --quiet "$1" >"$name" 2>/dev/null; then echo "$1" >>"$log/clean"
    elif [ -s "$name" ]; then cat "$name"; echo "$1" >>"$log/bad"; fi' _
count() { [ ! -e "$log/$1" ] || wc -l <"$log/$1"; }
clean=$(count clean) bad=$(count bad)
echo "clang-tidy: ${#present[@]} sources changed since ${base:0:9}, ${clean:-0} clean, ${bad:-0} not, $((${#present[@]} - ${clean:-0} - ${bad:-0})) not reached"
[ -z "$bad" ]
