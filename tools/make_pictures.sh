#!/usr/bin/env bash
# Makes the pictures of the manual and of the window's many faces anew: each is a rehearsal on a fresh copy of the
# sample folder. Usage: tools/make_pictures.sh [PRESET]; the pictures go to docs/pictures/.
set -euo pipefail
cd "$(dirname "$0")/.."
rehearse=build/${1:-release}/bin/rehearse
[ -x "$rehearse" ] || { echo "error: $rehearse is not built" >&2; exit 1; }
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p docs/pictures

# face NAME SETTINGS SIZE SCALE: the window with jingles sounding, settings as "Key=value Key=value".
face() {
    local name=$1 settings=$2 size=$3 scale=$4 home=$work/$1
    mkdir -p "$home"
    cp -r data/. "$home/"
    cp data/first_start.ini "$home/zv.ini"
    [ "$name" = long-captions ] && long_captions "$home"
    local pair
    for pair in $settings; do printf '%s\r\n' "$pair" >> "$home/zv.ini"; done
    cat > "$work/$name.txt" <<EOF
at 0 resize ${size/x/ }
at 0 time 2026-11-21 10:59:30
at 500 press 1
at 700 press 2
at 900 press H4
at 1200 press 14
at 2000 shot $name.png
at 2100 end
EOF
    QT_SCALE_FACTOR=$scale "$rehearse" "$work/$name.txt" --home "$home" --out "$work/out" >/dev/null
    mv "$work/out/$name.png" docs/pictures/
}

# Long names in many buttons, a missing file, one that is no sound.
long_captions() {
    local home=$1 sound
    for sound in "A very long name of a jingle that nobody could ever read while on air" \
                 "Nachrichtensendungserkennungsmelodie am Donnerstagnachmittag"; do
        cp "$home/Audio_Sample/Whistle.wav" "$home/Audio_Sample/$sound.wav"
    done
    printf 'no sound at all' > "$home/Audio_Sample/Broken.mp3"
    cat >> "$home/palette.ini" <<EOF
[Long names]
Path_0=Audio_Sample\\A very long name of a jingle that nobody could ever read while on air.wav
Path_1=Audio_Sample\\Nachrichtensendungserkennungsmelodie am Donnerstagnachmittag.wav
BTNCol_1=0066FF
Path_2=Audio_Sample\\Lost on the way.wav
Path_3=Audio_Sample\\Broken.mp3
Path_4=Audio_Sample\\Whistle.wav
EOF
    printf 'PaletteIndex=Long names\r\n' >> "$home/zv.ini"
}

face main "" 1280x800 1
face main-1920 "" 1920x1080 1
face dark "DarkMode=1" 1280x800 1
face scale-150 "" 1280x800 1.5
face scale-200 "DarkMode=1" 1280x800 2
face grid-16 "JinglesRows=4 JinglesCols=4" 1280x800 1
face grid-96 "JinglesRows=8 JinglesCols=12" 1920x1080 1
face joined-hot-above "JoinedJButtons=1 HotJinglesPos=1 HotJinglesRows=1 JNumbPos=1" 1280x800 1
face long-captions "" 1280x800 1
face francais "Sealed=1 Language=Français" 1280x800 1
face deutsch "Sealed=1 Language=Deutsch DarkMode=1" 1280x800 1
face espanol "Sealed=1 Language=Español" 1280x800 1

# The scenes of the manual.
home=$work/manual
mkdir -p "$home"
cp -r data/. "$home/"
cp data/first_start.ini "$home/zv.ini"
cat > "$work/manual.txt" <<EOF
at 0 resize 1280 800
at 0 time 2026-11-21 10:59:30
at 300 press 18
at 900 press 1
at 1500 press 3
at 2000 shot playing.png
at 9000 pick Jazz Hour
at 9600 shot palettes.png
at 10000 pick Sample Radio
at 12000 click ckTab(3)
at 12200 click ckTouchI
at 12600 shot options.png
at 12800 click ckTouchI
at 13000 end
EOF
"$rehearse" "$work/manual.txt" --home "$home" --out "$work/out" >/dev/null
mv "$work"/out/{playing,palettes,options}.png docs/pictures/
ls docs/pictures
