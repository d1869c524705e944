#!/bin/sh
# kovar in a real window, as a desktop user meets it: a 1920 x 1080 X server with a window manager,
# driven by the keyboard, the wheel and the window manager's own commands; the window's size and
# picture read back from the X server. Argument: the kovar program. Exit 77 (skipped) without the
# X tools.
kovar=$1
for tool in Xvfb openbox xdotool wmctrl xwininfo import compare; do
    command -v "$tool" >/dev/null || { echo "SKIP: $tool is not installed"; exit 77; }
done
work=$(mktemp -d)
display=''
for n in 91 92 93 94 95 96 97 98 99; do
    [ -e "/tmp/.X$n-lock" ] || [ -e "/tmp/.X11-unix/X$n" ] || { display=:$n; break; }
done
[ -n "$display" ] || { echo "SKIP: no free display number"; exit 77; }
export DISPLAY=$display
unset WAYLAND_DISPLAY QT_QPA_PLATFORM KOVAR_AD_SERVER
pids=''
cleanup() {
    for pid in $pids; do kill "$pid" 2>/dev/null; done
    for pid in $pids; do wait "$pid" 2>/dev/null; done
    rm -rf "$work"
}
trap cleanup EXIT
failed=0
check() { # check NAME GOT EXPECTED
    if [ "$2" = "$3" ]; then echo "PASS: $1 ($2)"; else echo "FAIL: $1: $2, expected $3"; failed=1; fi
}
# within SECONDS COMMAND...: polls COMMAND until it succeeds.
within() {
    limit=$(($(date +%s) + $1)); shift
    until "$@"; do
        [ "$(date +%s)" -lt "$limit" ] || return 1
        sleep 0.1
    done
}

Xvfb "$display" -screen 0 1920x1080x24 -nolisten tcp >"$work/xvfb.log" 2>&1 &
pids="$!"
within 10 xdpyinfo >/dev/null 2>&1 || within 10 xwininfo -root >/dev/null 2>&1 || { echo "FAIL: no X server"; exit 1; }
openbox >"$work/openbox.log" 2>&1 &
pids="$! $pids"
within 10 wmctrl -m >/dev/null 2>&1 || { echo "FAIL: no window manager"; exit 1; }
"$kovar" >"$work/kovar.log" 2>&1 &
kovar_pid=$!
pids="$kovar_pid $pids"

window=''
find_window() { window=$(xdotool search --onlyvisible --name '^KOVAR$' 2>/dev/null | head -n 1); [ -n "$window" ]; }
within 20 find_window || { echo "FAIL: no window"; cat "$work/kovar.log"; exit 1; }
size() { xwininfo -id "$window" | awk '/Width:/ { w = $2 } /Height:/ { h = $2 } END { print w "x" h }'; }
# settles_at SIZE: the window takes that size within a few seconds.
settles_at() { within 5 sh -c "[ \"\$(xwininfo -id $window | awk '/Width:/ { w = \$2 } /Height:/ { h = \$2 } END { print w \"x\" h }')\" = $1 ]"; size; }
picture() { import -window "$window" "$work/$1.png"; }
# differs A B: how many pixels of the two pictures differ.
differs() { compare -metric AE "$work/$1.png" "$work/$2.png" null: 2>&1 | cut -d' ' -f1; }

# 1920 x 1080 without a panel opens the phone at 175 %.
check "first size" "$(settles_at 560x840)" 560x840
xdotool windowactivate --sync "$window" >/dev/null 2>&1

# Maximised and full screen, the screen's height is filled and the picture centred on black.
wmctrl -i -r "$window" -b add,maximized_vert,maximized_horz
within 5 sh -c "[ \$(xwininfo -id $window | awk '/Width:/ { print \$2 }') = 1920 ]"
sleep 0.8
picture maximised
height=$(size | cut -dx -f2)
check "maximised fills the height" "$([ "$height" -ge 1000 ] && echo yes)" yes
# brightness PICTURE X: the mean brightness of a column 20 pixels wide from X, in thousandths.
brightness() { convert "$work/$1.png" -crop "20x1000+$2+40" +repage -format '%[fx:int(1000*mean)]' info:; }
check "maximised: black beside the screen" "$(brightness maximised 100)" 0
check "maximised: the screen in the middle" "$([ "$(brightness maximised 950)" -gt 20 ] && echo drawn)" drawn
wmctrl -i -r "$window" -b remove,maximized_vert,maximized_horz
check "restored" "$(settles_at 560x840)" 560x840
wmctrl -i -r "$window" -b add,fullscreen
check "full screen" "$(settles_at 1920x1080)" 1920x1080
wmctrl -i -r "$window" -b remove,fullscreen
check "restored from full screen" "$(settles_at 560x840)" 560x840

# The zoom keys: one step up, then back to 100 %.
xdotool key --window "$window" ctrl+plus
check "Ctrl+Plus" "$(settles_at 640x960)" 640x960
xdotool key --window "$window" ctrl+0
check "Ctrl+0" "$(settles_at 320x480)" 320x480
xdotool key --window "$window" ctrl+minus
check "Ctrl+Minus" "$(settles_at 240x360)" 240x360
xdotool key --window "$window" ctrl+0
settles_at 320x480 >/dev/null

# Every page scrolls by the wheel and by Down, and Up brings it back: a scroll moves much of the
# picture, a refresh tick only its figures.
eval "$(xdotool getwindowgeometry --shell "$window")"
xdotool mousemove $((X + WIDTH / 2)) $((Y + HEIGHT / 2))
for page in summary processes system network; do
    picture "$page-top"
    xdotool click --repeat 5 --delay 60 5
    sleep 0.6
    picture "$page-wheel"
    xdotool key --repeat 10 --delay 30 Up
    sleep 0.6
    picture "$page-up"
    xdotool key --repeat 10 --delay 30 Down
    sleep 0.6
    picture "$page-down"
    moved_wheel=$(differs "$page-top" "$page-wheel")
    moved_down=$(differs "$page-up" "$page-down")
    quarter=$((WIDTH * HEIGHT / 4))
    check "$page: the wheel scrolls" "$([ "$moved_wheel" -gt $quarter ] && echo scrolled || echo "$moved_wheel pixels")" scrolled
    check "$page: Down scrolls" "$([ "$moved_down" -gt $quarter ] && echo scrolled || echo "$moved_down pixels")" scrolled
    xdotool key --repeat 10 --delay 30 Up key Right
    sleep 0.8
done

# Ctrl+Q ends it with status 0 (a watchdog's SIGTERM after 10 s would give 143).
xdotool key ctrl+q
(sleep 10; kill "$kovar_pid" 2>/dev/null) &
watchdog=$!
wait "$kovar_pid"
check "Ctrl+Q ends kovar" "$?" 0
kill "$watchdog" 2>/dev/null
exit $failed
