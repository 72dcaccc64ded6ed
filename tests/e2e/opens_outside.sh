#!/bin/bash
# What the real program hands to the user's other programs: the manual to the browser, a jingle's folder to the file
# manager. A stand-in for the desktop's opener writes down what it is asked for.
#   opens_outside.sh BIN_FOLDER
. "$(dirname "$0")/window.sh"
need Xvfb xprop
own_user
own_screen
own_home
mkdir "$work/bin"
printf '#!/bin/sh\nprintf "%%s\\n" "$@" >>"%s/opened"\n' "$work" >"$work/bin/xdg-open"
chmod +x "$work/bin/xdg-open"
start_program PATH="$work/bin:$PATH"
find_window

# opened ENDING: what was asked for since the last call, as a path that exists and ends so.
opened() {
    await test -s "$work/opened"
    local target
    target=$(python3 -c 'import sys, urllib.parse as u; print(u.unquote(u.urlparse(sys.argv[1]).path))' "$(tail -n 1 "$work/opened")")
    case $target in *"$1") ;; *) fail "opened $target instead of $1" ;; esac
    [ -e "$target" ] || fail "$target is not there"
    rm "$work/opened"
    found=$target
}

xdotool mousemove --window "$window" $((WIDTH / 2)) $((HEIGHT - 60)) click 1
xdotool key F1
sleep 0.5
xdotool key F1
opened /Manual/Zentrova.html
grep -q '<title>Zentrova: manual</title>' "$found" || fail "$found is not the manual"
for picture in $(grep -o 'src="[^"]*"' "$found" | cut -d'"' -f2); do
    [ -s "$(dirname "$found")/$picture" ] || fail "the manual misses $picture"
done

# The last two items of a button's menu.
for item in 'Up Up' 'Up'; do
    sleep 0.3
    xdotool mousemove --window "$window" "$x" "$y" click 3
    sleep 0.5
    [ -n "${PICTURES:-}" ] && import -window root "$PICTURES/menu-${#item}.png"
    xdotool key $item Return
    opened /Audio_Sample
done
echo "the manual and both folders were opened"
close_program 10
