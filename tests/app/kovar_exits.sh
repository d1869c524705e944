#!/bin/sh
# kovar started as a user would where it must stop before it opens a window: the exit status and
# what it says first. No case gets as far as the network. Argument: the kovar program.
kovar=$1
failed=0

# expect STATUS TEXT [NAME=VALUE ...] kovar [ARGUMENT ...]: run in an environment without any display.
expect() {
    status=$1 text=$2
    shift 2
    said=$(env -u DISPLAY -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM -u KOVAR_AD_SERVER "$@" 2>&1 >/dev/null)
    got=$?
    lines=$(printf '%s\n' "$said" | wc -l)
    # Without a display the user reads one line, Qt's own abort never.
    if [ "$got" -ne "$status" ] || ! printf '%s\n' "$said" | head -n 1 | grep -qF -- "$text" \
        || { [ "$status" -eq 1 ] && [ "$lines" -ne 1 ]; }; then
        printf 'FAIL: %s\n  status %s (expected %s), said:\n%s\n' "$*" "$got" "$status" "$said"
        failed=1
    else
        printf 'PASS: %s\n' "$*"
    fi
}

expect 1 "no display is set (neither DISPLAY nor WAYLAND_DISPLAY); without a display, kovar --snapshot" "$kovar"
expect 1 "display :4077 could not be opened" DISPLAY=:4077 QT_QPA_PLATFORM=xcb "$kovar" --idiom tablet
expect 2 "kovar: --snapshot shows no screen, so it cannot go with --screenshot" "$kovar" --snapshot --screenshot out
expect 2 "kovar: KOVAR_AD_SERVER \"localhost:8731\" is not an http or https address" KOVAR_AD_SERVER=localhost:8731 "$kovar"
expect 1 "kovar: cannot serve metrics on 198.51.100.77 port 9877" "$kovar" --serve-metrics 198.51.100.77:9877
expect 2 "kovar: --ad-server \"ftp://127.0.0.1/\" is not an http or https address" "$kovar" --ad-server ftp://127.0.0.1/
exit $failed
