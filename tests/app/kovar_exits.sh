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
# A web configuration kovar cannot follow is refused at start, naming the file and the problem.
configs=$(mktemp -d)
printf 'tls_server_config: [cert_file\n' >"$configs/unparsable.yml"
printf 'tls_server_config:\n  cert_file: missing.crt\n  key_file: missing.key\n' >"$configs/missing.yml"
printf 'basic_auth_users:\n  alice: secret\n' >"$configs/plain.yml"
printf 'http_server_config:\n  http2: false\n' >"$configs/unsupported.yml"
expect 2 "kovar: --web-config $configs/unparsable.yml: " "$kovar" --serve-metrics 0 --web-config "$configs/unparsable.yml"
expect 2 "kovar: --web-config $configs/missing.yml: cert_file missing.crt: " \
    "$kovar" --serve-metrics 0 --web-config "$configs/missing.yml"
expect 2 "kovar: --web-config $configs/plain.yml: the password hash of alice is not bcrypt" \
    "$kovar" --serve-metrics 0 --web-config "$configs/plain.yml"
expect 2 "kovar: --web-config $configs/unsupported.yml: the file has http_server_config, which kovar does not support" \
    "$kovar" --serve-metrics 0 --web-config "$configs/unsupported.yml"
expect 2 "kovar: --web-config configures --serve-metrics, which is not asked for" "$kovar" --web-config "$configs/plain.yml"
rm -r "$configs"

# --snapshot as a script reads it: valid against the published schema in every locale, the
# same members of the same types in each, and a write that fails is an error of status 1.
schema=$(cd "$(dirname "$0")/../.." && pwd)/docs/snapshot.schema.json
python=python3
python3 -c 'import jsonschema' 2>/dev/null || python=/usr/bin/python3
out=$(mktemp -d)
for locale in C.UTF-8 de_DE.UTF-8 fr_FR.UTF-8; do
    env -u DISPLAY -u WAYLAND_DISPLAY LC_ALL=$locale "$kovar" --snapshot >"$out/$locale.json" 2>/dev/null \
        || { printf 'FAIL: kovar --snapshot under %s: status %s\n' "$locale" "$?"; failed=1; }
done
if "$python" - "$schema" "$out"/*.json <<'CHECK'
import json, sys, jsonschema

def shape(value):
    # Members and types, not values: the figures move between two samples.
    if isinstance(value, dict):
        return {key: shape(member) for key, member in value.items()}
    if isinstance(value, list):
        return sorted({json.dumps(shape(item), sort_keys=True) for item in value})
    return "number" if isinstance(value, (int, float)) and not isinstance(value, bool) else type(value).__name__

schema = json.load(open(sys.argv[1]))
shapes, systems = {}, {}
for path in sys.argv[2:]:
    snapshot = json.load(open(path))
    jsonschema.validate(snapshot, schema)
    shapes[path] = json.dumps(shape(snapshot), sort_keys=True)
    systems[path] = json.dumps(snapshot["systemInfo"], sort_keys=True)
    print("PASS: snapshot valid against its schema: " + path.rsplit("/", 1)[1])
if len(set(shapes.values())) != 1:
    sys.exit("the snapshots differ in members or types from one locale to another")
# The machine's facts do not change between the runs, nor may their texts ("2.10 GHz").
if len(set(systems.values())) != 1:
    sys.exit("the system facts read differently from one locale to another: " + " / ".join(set(systems.values())))
print("PASS: snapshots alike in every locale")
CHECK
then :; else printf 'FAIL: kovar --snapshot against %s\n' "$schema"; failed=1; fi
rm -r "$out"
said=$(env -u DISPLAY -u WAYLAND_DISPLAY "$kovar" --snapshot 2>&1 >/dev/full)
got=$?
if [ "$got" -ne 1 ] || [ "$(printf '%s\n' "$said" | wc -l)" -ne 1 ] \
    || ! printf '%s\n' "$said" | grep -qF "kovar: cannot write the snapshot"; then
    printf 'FAIL: kovar --snapshot >/dev/full: status %s, said:\n%s\n' "$got" "$said"
    failed=1
else
    printf 'PASS: kovar --snapshot >/dev/full\n'
fi
exit $failed
