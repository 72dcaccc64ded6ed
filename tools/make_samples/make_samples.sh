#!/bin/sh
# Makes data/Audio_Sample anew. Needs g++ and the ffmpeg command.
set -e
here=$(cd "$(dirname "$0")" && pwd)
target=${1:-$here/../../data/Audio_Sample}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
g++ -std=c++20 -O2 -Wall -Wextra -o "$work/make_samples" "$here"/*.cpp
"$work/make_samples" "$target"
