#!/usr/bin/env bash
# Installs what tools/packages.txt lists and is not there yet. Sourced or run by the commands at the top.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

missing=()
while read -r package; do
    case "$package" in ''|'#'*) continue ;; esac
    [ "$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null)" = installed ] || missing+=("$package")
done < tools/packages.txt
[ ${#missing[@]} -eq 0 ] && exit 0

as_root=()
if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || { echo "error: missing packages and no sudo to install them: ${missing[*]}" >&2; exit 1; }
    as_root=(sudo)
fi
command -v apt-get >/dev/null || { echo "error: apt-get is not here; please install: ${missing[*]}" >&2; exit 1; }

echo "Installing ${#missing[@]} packages: ${missing[*]}"
log=$(mktemp)
install() { DEBIAN_FRONTEND=noninteractive "${as_root[@]}" apt-get install -y --no-install-recommends "${missing[@]}" >"$log" 2>&1; }
"${as_root[@]}" apt-get update >"$log" 2>&1 || true
if ! install; then
    tail -n 15 "$log" >&2
    for package in "${missing[@]}"; do
        [ "$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null)" = installed ] || echo "error: package could not be installed: $package" >&2
    done
    exit 1
fi
rm -f "$log"
