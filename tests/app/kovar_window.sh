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
within 20 wmctrl -m >/dev/null 2>&1 || { echo "FAIL: no window manager on $display"; cat "$work/openbox.log" "$work/xvfb.log"; exit 1; }
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
# place: X, Y, WIDTH and HEIGHT of the window's inside on the screen (xdotool's own figure
# counts in the frame's title bar under some window managers).
place() {
    eval "$(xwininfo -id "$window" | awk '/Absolute upper-left X:/ { print "X=" $4 } /Absolute upper-left Y:/ { print "Y=" $4 }
        /Width:/ { print "WIDTH=" $2 } /Height:/ { print "HEIGHT=" $2 }')"
}
# differs A B: how many pixels of the two pictures differ.
differs() { compare -metric AE "$work/$1.png" "$work/$2.png" null: 2>&1 | cut -d' ' -f1; }

# scroll_each_page PREFIX SHARE PAGE...: on each page in turn (Right between them), the wheel and
# Down each move at least 1/SHARE of the window's pixels; Up brings the page back between them.
scroll_each_page() {
    prefix=$1 share=$2
    shift 2
    for page in "$@"; do
        name="$prefix$page"
        picture top
        xdotool click --repeat 5 --delay 60 5
        sleep 0.6
        picture wheel
        xdotool key --repeat 10 --delay 30 Up
        sleep 0.6
        picture up
        xdotool key --repeat 10 --delay 30 Down
        sleep 0.6
        picture down
        least=$((WIDTH * HEIGHT / share))
        for way in "wheel top" "down up"; do
            moved=$(differs $way)
            check "$name: ${way%% *} scrolls" "$([ "$moved" -gt $least ] && echo scrolled || echo "$moved pixels")" scrolled
        done
        xdotool key --repeat 10 --delay 30 Up key Right
        sleep 0.8
    done
}

# 1920 x 1080 without a panel opens the phone at 175 %.
check "first size" "$(settles_at 560x840)" 560x840
xdotool windowactivate --sync "$window" >/dev/null 2>&1

# Maximised and full screen, the screen's height is filled and the picture centred on black.
wmctrl -i -r "$window" -b add,maximized_vert,maximized_horz
within 5 sh -c "[ \$(xwininfo -id $window | awk '/Width:/ { print \$2 }') = 1920 ]"
height=$(size | cut -dx -f2)
check "maximised fills the height" "$([ "$height" -ge 1000 ] && echo yes)" yes
# brightness PICTURE X: the mean brightness of a column 20 pixels wide from X, in thousandths.
brightness() { convert "$work/$1.png" -crop "20x1000+$2+40" +repage -format '%[fx:int(1000*mean)]' info:; }
# The zoomed picture follows the new size within a few seconds.
limit=$(($(date +%s) + 5))
while picture maximised && ! { [ "$(brightness maximised 100)" -eq 0 ] && [ "$(brightness maximised 950)" -gt 20 ]; } \
    && [ "$(date +%s)" -lt "$limit" ]; do
    sleep 0.2
done
check "maximised: black beside the screen" "$(brightness maximised 100)" 0
check "maximised: the screen in the middle" "$([ "$(brightness maximised 950)" -gt 20 ] && echo drawn)" drawn
wmctrl -i -r "$window" -b remove,maximized_vert,maximized_horz
check "restored" "$(settles_at 560x840)" 560x840
wmctrl -i -r "$window" -b add,fullscreen
check "full screen" "$(settles_at 1920x1080)" 1920x1080
wmctrl -i -r "$window" -b remove,fullscreen
check "restored from full screen" "$(settles_at 560x840)" 560x840

# Which page the titles mark at 175 %: the marked title is drawn orange, the others white.
titles="92 208 326 443"
marked() {
    picture titles
    i=0
    for x in $titles; do
        printf '%s %s\n' "$i" "$(convert "$work/titles.png" -crop "112x24+$x+40" +repage -format '%[fx:int(1000*(mean.r-mean.b))]' info:)"
        i=$((i + 1))
    done | sort -k2 -n | tail -n 1 | cut -d' ' -f1
}
# marks PAGE: the titles mark that page within 5 s (a turn glides, slower on a busy machine).
marks() {
    limit=$(($(date +%s) + 5))
    while page=$(marked) && [ "$page" != "$1" ] && [ "$(date +%s)" -lt "$limit" ]; do sleep 0.2; done
    echo "$page"
}
check "first page" "$(marks 0)" 0
place
cx=$((X + WIDTH / 2)) cy=$((Y + HEIGHT / 2))
# A brisk flick, 150 pixels in 80 ms, turns exactly one page at any zoom.
xdotool mousemove $((cx + 75)) $cy mousedown 1 sleep 0.02 mousemove $((cx + 25)) $cy sleep 0.02 \
    mousemove $((cx - 25)) $cy sleep 0.02 mousemove $((cx - 75)) $cy sleep 0.02 mouseup 1
sleep 1
check "a brisk flick turns one page" "$(marks 1)" 1
# A slow, short drag springs back.
xdotool mousemove $((cx + 20)) $cy mousedown 1 sleep 0.3 mousemove $cx $cy sleep 0.3 mousemove $((cx - 20)) $cy sleep 0.3 mouseup 1
sleep 1
check "a slow short drag springs back" "$(marks 1)" 1
# Shift with the wheel turns one page per notch.
xdotool keydown shift click 5 keyup shift
sleep 1
check "Shift+wheel turns one page" "$(marks 2)" 2
# A tap on a title shows its page.
xdotool mousemove $((X + 148)) $((Y + 52)) click 1
sleep 1
check "a tap on Summary" "$(marks 0)" 0
xdotool mousemove $cx $cy

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
place
xdotool mousemove $((X + WIDTH / 2)) $((Y + HEIGHT / 2))
scroll_each_page "" 4 summary processes system network

# Ctrl+Q ends it with status 0, and so does the window manager closing the window (a
# watchdog's SIGTERM after 10 s would give 143).
ends() {
    (sleep 10; kill "$kovar_pid" 2>/dev/null) &
    watchdog=$!
    wait "$kovar_pid"
    check "$1" "$?" 0
    kill "$watchdog" 2>/dev/null
}
xdotool key ctrl+q
ends "Ctrl+Q ends kovar"

# The tablet, which 1080 pixels hold at 100 % with its frame: its System and Network lists
# (a third of the window) scroll by the wheel and by Down.
"$kovar" --idiom tablet >"$work/kovar.log" 2>&1 &
kovar_pid=$!
pids="$kovar_pid $pids"
within 20 find_window || { echo "FAIL: no tablet window"; exit 1; }
check "tablet size" "$(settles_at 768x1024)" 768x1024
xdotool windowactivate --sync "$window" >/dev/null 2>&1
place
xdotool mousemove $((X + 580)) $((Y + 750))
scroll_each_page "tablet " 10 system network
wmctrl -i -c "$window"
ends "closing the window ends kovar"
exit $failed
