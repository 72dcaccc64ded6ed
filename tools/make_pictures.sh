#!/usr/bin/env bash
# Makes the pictures of the manual and of the window's many faces anew: each is a rehearsal on a fresh copy of the
# sample folder.
# Usage: tools/make_pictures.sh [PRESET]; the pictures go to docs/pictures/, those that nothing shows to build/pictures/.
set -euo pipefail
cd "$(dirname "$0")/.."
rehearse=build/${1:-release}/bin/rehearse
[ -x "$rehearse" ] || { echo "error: $rehearse is not built" >&2; exit 1; }
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
pictures=docs/pictures
mkdir -p "$pictures" build/pictures

# A palette of long names, marks of all kinds, a missing file, one that is no sound.
all_kinds() {
    local home=$1 sound
    for sound in "A very long name of a jingle that nobody could ever read while on air" \
                 "Nachrichtensendungserkennungsmelodie am Donnerstagnachmittag"; do
        cp "$home/Audio_Sample/Stadium Organ.mp3" "$home/Audio_Sample/$sound.mp3"
    done
    printf 'no sound at all' > "$home/Audio_Sample/Broken.mp3"
    cat >> "$home/palette.ini" <<EOF
[Long names]
Path_0=Audio_Sample\\A very long name of a jingle that nobody could ever read while on air.mp3
Path_1=Audio_Sample\\Nachrichtensendungserkennungsmelodie am Donnerstagnachmittag.mp3
BTNCol_1=FF6633
Path_2=Audio_Sample\\Lost on the way.wav
Path_3=Audio_Sample\\Broken.mp3
Path_4=Audio_Sample\\Whistle.wav
Loop_4=1
PlayMod_4=1
FadeOut_4=2000
Path_5=Audio_Sample\\Backtime Bed.mp3
Path_6=Audio_Sample\\Weather Bed.ogg
Loop_6=1
PlayMod_6=2
BTNCol_6=000080
Path_7=Audio_Sample\\Vibes Sting.flac
PlayMod_7=3
Path_8=Audio_Sample\\Promo Tag.flac
PlayMod_8=4
BTNCol_8=FFFF99
Path_9=Audio_Sample\\Brush Loop.ogg
Seq_9=1
BTNCol_9=99CCFF
EOF
}

# home NAME SETTINGS: a fresh program folder; settings as "Key=value Key=value".
home() {
    local home=$work/$1 pair
    mkdir -p "$home"
    cp -r data/. "$home/"
    cp data/first_start.ini "$home/zv.ini"
    for pair in $2; do printf '%s\r\n' "$pair" >> "$home/zv.ini"; done
}

# perform NAME [SCALE [OPTION...]]: the script of that name on the folder of that name.
perform() {
    ZENTROVA_SCALE=${2:-1} "$rehearse" "$work/$1.txt" --home "$work/$1" --out "$work/out" --no-sound "${@:3}" >/dev/null
    mv "$work"/out/*.png "$pictures/"
}

# scene NAME SETTINGS SIZE SCALE [OPTION...]: the script on standard input in a window of that size, at half a minute to
# eleven, on the folder of that name, which is made unless it is there.
scene() {
    [ -d "$work/$1" ] || home "$1" "$2"
    { printf 'at 0 resize %s\nat 0 time 2026-11-21 10:59:30\n' "${3/x/ }"; cat; } > "$work/$1.txt"
    perform "$1" "$4" "${@:5}"
}

# face NAME SETTINGS SIZE SCALE: the window with jingles sounding.
face() {
    scene "$@" <<EOF
at 500 press 2
at 700 press 10
at 900 press H4
at 1200 press 14
at 2000 shot $1.png
at 2100 end
EOF
}

# states NAME SETTINGS SIZE SCALE: sounding, sounding from another palette, at rest with and without marks, empty,
# missing, broken, names that are too long.
states() {
    home "$1" "$2"
    all_kinds "$work/$1"
    scene "$@" <<EOF
at 300 press 24
at 500 pick Long names
at 1500 press 5
at 1600 press 0
at 1800 press H0
at 2600 shot $1.png
at 2700 end
EOF
}

# carried NAME SETTINGS SIZE SCALE: two sound, and a jingle waits to be put down.
carried() {
    scene "$@" <<EOF
at 500 press 2
at 700 press 10
at 1000 mods ctrl
at 1200 press 1
at 1600 shot $1.png
at 1700 end
EOF
}

# question NAME SETTINGS SIZE SCALE: two sound, and a question waits over the grid.
question() {
    scene "$@" <<EOF
at 500 press 2
at 700 press 10
at 1000 mods alt
at 1200 press 1
at 1300 mods
at 1700 shot $1.png
at 1800 answer no
at 1900 end
EOF
}

# empty NAME SETTINGS SIZE: the first start of a program without a palette.
empty() {
    home "$1" "$2"
    rm -f "$work/$1/palette.ini" "$work/$1/HotJingles.ini"
    printf 'at 0 resize %s\nat 500 shot %s.png\nat 600 end\n' "${3/x/ }" "$1" > "$work/$1.txt"
    perform "$1"
}

face main "" 1280x800 1
carried carried "" 1280x800 1
carried carried-low "DarkMode=1" 1024x600 1
question question "" 1280x800 1
question question-low "DarkMode=1" 1024x600 1
empty empty "" 1280x800
face uhd-3840 "DarkMode=1" 3840x2160 1
face low-1024 "" 1024x600 1
face main-1920 "" 1920x1080 1
face dark "DarkMode=1" 1280x800 1
face scale-150 "" 1280x800 1.5
face scale-200 "DarkMode=1" 1280x800 2
face small-1024 "DarkMode=1" 1024x700 1
face large-2560 "" 2560x1440 1
face grid-16 "JinglesRows=4 JinglesCols=4" 1280x800 1
face grid-40 "JinglesRows=5 JinglesCols=8 JNumbPos=1 DarkMode=1" 1280x800 1
face grid-96 "JinglesRows=8 JinglesCols=12 JNumbPos=1" 1920x1080 1
face joined-hot-above "JoinedJButtons=1 HotJinglesPos=1 HotJinglesRows=1 JNumbPos=1" 1280x800 1
face joined-hot-below "JoinedJButtons=1 HotJinglesPos=2 JNumbPos=2 JRemLevPos=2 VUPos=l DarkMode=1" 1280x800 1
face no-hot "HotJinglesPos=0 JNumbPos=1 JRemLevTrBg=0 JRemLevColBg=12632256 JLabelFormat=2 VUPos=t" 1280x800 1
face francais "Sealed=1 Language=Français" 1280x800 1
face deutsch "Sealed=1 Language=Deutsch DarkMode=1" 1280x800 1
face espanol "Sealed=1 Language=Español" 1280x800 1
states states "JNumbPos=1" 1280x800 1
states states-dark "JNumbPos=1 DarkMode=1" 1280x800 1

# The scenes of the manual.
scene manual "" 1280x800 1 <<EOF
at 300 press 18
at 900 press 1
at 1500 press 3
at 2000 shot playing.png
at 9000 pick Jazz Hour
at 9600 shot palettes.png
at 10000 pick Sample Radio
at 12000 click ckTab(3)
at 12100 press 3
at 12150 press 24
at 12200 click ckTouchI
at 12600 shot options.png
at 12800 click ckTouchI
at 13000 click ckColorI
at 13100 press 10
at 13600 shot frmColPick colours.png
at 13700 click Color(12)
at 14000 key F1
at 14200 shot frmShortcuts keys.png
at 14400 key Escape
at 14600 key F3
at 14650 click frmSearchJing.ShowHideKb
at 14700 set frmSearchJing.txtJSearch hour
at 15300 shot frmSearchJing search.png
at 15400 key Escape
at 15500 press 24
at 15600 key F2
at 15800 click frmMixer.ckInputEnable
at 16500 shot frmMixer mixer.png
at 16600 key Escape
at 16700 end
EOF

# editor NAME SETTINGS SIZE SCALE: both pages of the jingle editor, a sequence that sounds; no text may be clipped.
editor() {
    scene "$@" <<EOF
at 300 rclick b_Jingle(2)
at 400 menu mnuSeq
at 500 rclick b_Jingle(2)
at 600 menu mnuFX
at 700 set frmFX.sldEQ(0) -5
at 720 set frmFX.sldEQ(1) -2
at 740 set frmFX.sldEQ(5) 3
at 800 set frmFX.TabFX 1
at 820 set frmFX.TxtPosSec 1
at 840 click frmFX.optStartEnd(1)
at 860 set frmFX.TxtPosSec 25
at 880 set frmFX.TxtLISec 6
at 900 set frmFX.TxtLOSec 18
at 910 click frmFX.ckLinkLILO
at 920 click frmFX.ckPlay
at 3900 set frmFX.SlidePos 900
at 3900 expect frmFX.lblPosSecVal 09
at 4000 expect frmFX.clipped
at 4100 shot frmFX $1-positions.png
at 4200 set frmFX.TabFX 0
at 5000 expect frmFX.clipped
at 5100 shot frmFX $1.png
at 5200 end
EOF
}
editor editor "" 1280x800 1
editor editor-dark "DarkMode=1" 1280x800 1
editor editor-200 "" 1280x800 2
editor editor-dark-200 "DarkMode=1" 1280x800 2
editor editor-francais "Sealed=1 Language=Français" 1280x800 1
editor editor-deutsch "Sealed=1 Language=Deutsch DarkMode=1" 1280x800 1
editor editor-espanol "Sealed=1 Language=Español" 1280x800 1
# The faces that the manual does not show: looked at in build/pictures.
pictures=build/pictures
for language in English Français Deutsch Español; do
    for dark in 0 1; do
        for scale in 1 2; do
            editor "editor-$language-$dark-$scale" "Sealed=1 Language=$language DarkMode=$dark" 1280x800 "$scale"
        done
    done
done
pictures=docs/pictures

# An edit taken back, a library that was moved.
home edits ""
mkdir -p "$work/edits/Moved/News" "$work/edits/Moved/Sport"
printf '[Moved]\r\n' >> "$work/edits/palette.ini"
for i in 1 2 3 4 5 6; do
    cp "$work/edits/Audio_Sample/Beep.wav" "$work/edits/Moved/News/Opener $i.wav"
    printf 'Path_%s=D:\\Studio\\News\\Opener %s.wav\r\n' "$i" "$i" >> "$work/edits/palette.ini"
done
cp "$work/edits/Audio_Sample/Beep.wav" "$work/edits/Moved/Sport/Opener 3.wav"
scene edits "" 1280x800 1 <<EOF
at 300 press 2
at 400 mods alt
at 500 answer yes
at 600 press 1
at 700 mods
at 900 mods ctrl
at 900 key Z
at 1000 mods
at 1400 shot undone.png
at 1500 pick Moved
at 2000 answer Moved
at 2000 rclick b_Jingle(3)
at 2000 menu mnuReloc
at 3000 shot frmSelFile find-missing.png
at 3100 key Escape
at 3200 drop lstPal Moved
at 3500 shot filling.png
at 3600 answer no
at 3700 end
EOF

scene duck "" 1280x800 1 <<EOF
at 0 pick Jazz Hour
at 500 press 0
at 2500 press 1
at 3300 shot duck.png
at 3400 end
EOF

home air "VolLive=80 StreamPoint=http://radio.example/live"
scene air "" 1280x800 1 <<EOF
at 0 web http://radio.example/live "$work/air/Time_Announce.wav" 200 audio/wav;live
at 0 time 2026-11-21 10:59:48
at 300 click ckTab(2)
at 500 click ckPlayStream
at 2500 click ckMixByTa
at 4000 shot live.png
at 4100 click ckTab(1)
at 4200 click ckTmAnn
at 4500 click b_tmAnJin
at 4700 press 1
at 9000 shot announcer.png
at 9100 end
EOF

home surface ""
printf 'MIDIDevice=Pad Controller\r\n' >> "$work/surface/zv.ini"
cat > "$work/surface/MIDI.ini" <<'INI'
[Pad Controller]
Jingle1=9024,802440,255
OutJingle1=902405,90241C,902400,902415
INI
scene surface "" 1280x800 1 --midi "Pad Controller" <<EOF
at 0 key F2
at 100 click frmMixer.btMIDI
at 200 shot frmMIDISettings midi-settings.png
at 300 key Escape
at 350 key Escape
at 400 rclick b_Jingle(1)
at 500 menu mnuMIDI
at 600 midi 90247F
at 700 midi 802440
at 800 midi 902464
at 900 shot frmMIDIButton midi-learn.png
at 1000 end
EOF
ls docs/pictures
