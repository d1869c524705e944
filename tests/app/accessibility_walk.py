#!/usr/bin/python3
"""kovar as a screen reader sees it: started under Xvfb with a private D-Bus session and the AT-SPI
bus, its accessible tree walked and checked, per idiom and page, against one table; then a tab is
pressed through the reader's action, Tab is pressed on the keyboard (xdotool, where installed) and
a tick is awaited.

Usage: accessibility_walk.py KOVAR
Exits 77 (skipped) only where the tools are missing: Xvfb, dbus-run-session, at-spi2-core, pyatspi."""
import os, re, shutil, signal, subprocess, sys, time

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), '..'))
from script_checks import check, failures, until  # noqa: E402

KOVAR = sys.argv[1]
SKIP = 77

# (idiom, page, role, accessible name as a regular expression; a value range for value indicators)
TABLE = [
    ('phone', 'indicator', 'page tab list', r'Pages', None),
    ('phone', 'indicator', 'page tab', r'Summary', None),
    ('phone', 'indicator', 'page tab', r'Processes', None),
    ('phone', 'indicator', 'page tab', r'System', None),
    ('phone', 'indicator', 'page tab', r'Network', None),
    ('phone', 'Summary', 'panel', r'CPU Usage', None),
    ('phone', 'Summary', 'heading', r'CPU Usage', None),
    ('phone', 'Summary', 'label', r'User \d+\.\d%', None),
    ('phone', 'Summary', 'label', r'System \d+\.\d%', None),
    ('phone', 'Summary', 'label', r'Idle \d+\.\d%', None),
    ('phone', 'Summary', 'label', r'Usage \d+\.\d%', None),
    ('phone', 'Summary', 'label', r'Wired \d+\.\d% \d+(MB|GB)', None),
    ('phone', 'Summary', 'label', r'Free \d+\.\d% \d+(MB|GB)', None),
    ('phone', 'Summary', 'label', r'Physical Memory \d+(MB|GB)', None),
    ('phone', 'Summary', 'label', r'Total Disk Space [\d,]+\.\d\d(GB|MB|TB)', None),
    ('phone', 'Summary', 'label', r'Level (Unknown|\d+%)', None),
    ('phone', 'Summary', 'label', r'State (Unknown|Unplugged|Charging|Full)', None),
    ('phone', 'Summary', 'chart', r'CPU history, last \d+ (s|minutes?): user \d+%, system \d+%, idle \d+%; '
     r'peak \d+% busy (now|\d+ (s|minutes?) ago)', None),
    ('phone', 'Summary', 'chart', r'Memory: Wired \d+%, Active \d+%, Inactive \d+%, Free \d+%', None),
    ('phone', 'Summary', 'progress bar', r'Disk used', (0, 100)),
    ('phone', 'Summary', 'progress bar', r'Battery level', (0, 100)),
    ('phone', 'Processes', 'label', r'Total: *\d+', None),
    ('phone', 'Processes', 'heading', r'Processes', None),
    ('phone', 'Processes', 'table column header', r' ?PID', None),
    ('phone', 'Processes', 'table column header', r'Priority', None),
    ('phone', 'Processes', 'list item', r'PID {pid}, Process Name kovar, Started .+, Priority -?\d+', None),
    ('phone', 'System', 'list item', r'Device \S.*', None),
    ('phone', 'System', 'list item', r'Operating System', None),
    ('phone', 'Network', 'list item', r'Network Available (YES|NO)', None),
    ('phone', 'Network', 'list item', r'Active WLAN (YES|NO)', None),
    ('tablet', 'indicator', 'page tab list', r'Pages', None),
    ('tablet', 'indicator', 'page tab', r'System Information', None),
    ('tablet', 'indicator', 'page tab', r'Network Information', None),
    ('tablet', 'Summary', 'label', r'User \d+\.\d%', None),
    ('tablet', 'Summary', 'label', r'Inactive \d+\.\d% \d+(MB|GB)', None),
    ('tablet', 'Summary', 'label', r'Used \d+\.\d% +[\d,]+\.\d\d(GB|MB|TB)', None),
    ('tablet', 'Summary', 'chart', r'CPU history, last \d+ (s|minutes?): .*', None),
    ('tablet', 'Summary', 'chart', r'Memory: Wired \d+%, .*', None),
    ('tablet', 'Summary', 'progress bar', r'Disk used', (0, 100)),
    ('tablet', 'Processes', 'list item', r'PID {pid}, Process Name kovar, Started .+, Priority -?\d+', None),
    ('tablet', 'System', 'list item', r'Device \S.*', None),
    ('tablet', 'Network', 'list item', r'Active WLAN (YES|NO)', None),
]


def free_display():
    for number in range(57, 91):  # 91 and up are the real-window test's
        if not os.path.exists(f'/tmp/.X{number}-lock') and not os.path.exists(f'/tmp/.X11-unix/X{number}'):
            return number
    return None


def walk(node, found, depth=0):
    """Every object under node, depth first, as (role name, name, object)."""
    if node is None or depth > 40:
        return found
    try:
        found.append((node.getRoleName(), node.name or '', node))
        children = [node.getChildAtIndex(i) for i in range(node.childCount)]
    except Exception:
        return found
    for child in children:
        walk(child, found, depth + 1)
    return found


def application(pyatspi, pid):
    desktop = pyatspi.Registry.getDesktop(0)
    for i in range(desktop.childCount):
        app = desktop.getChildAtIndex(i)
        try:
            if app is not None and app.get_process_id() == pid:
                return app
        except Exception:
            continue
    return None


def value_of(node):
    try:
        return node.queryValue().currentValue
    except Exception:
        return None


def check_idiom(pyatspi, idiom, display):
    env = dict(os.environ, DISPLAY=f':{display}', QT_QPA_PLATFORM='xcb', QT_LINUX_ACCESSIBILITY_ALWAYS_ON='1',
               QT_ACCESSIBILITY='1')
    kovar = subprocess.Popen([KOVAR, '--idiom', idiom], env=env, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
    try:
        app = until(lambda: application(pyatspi, kovar.pid), 20)
        check(app is not None, f'{idiom}: kovar is on the accessibility bus')
        if app is None:
            return
        # A few ticks, so that the CPU figures and the history hold samples.
        time.sleep(5)
        # What a reader reads: the window's tree (the screen shown through it may also stand
        # beside it as a top level of its own, a duplicate nobody navigates to).
        frames = [app.getChildAtIndex(i) for i in range(app.childCount)]
        frames = [f for f in frames if f is not None and f.getRoleName() == 'frame'] or [app]
        app = frames[0]
        found = walk(app, [])
        speaking = [f for f in found if f[1].strip()]
        print(f'{idiom}: {len(speaking)} of {len(found)} objects say something', flush=True)
        if os.environ.get('KOVAR_WALK_DUMP'):
            for role, name, _ in found:
                print(f'  {role}: {name!r}')
        for row_idiom, page, role, pattern, bounds in TABLE:
            if row_idiom != idiom:
                continue
            regex = re.compile(pattern.replace('{pid}', str(kovar.pid)))
            matches = [f for f in found if f[0] == role and regex.fullmatch(f[1])]
            what = f'{idiom} {page}: a {role} reads "{pattern}"'
            if matches and bounds:
                value = value_of(matches[0][2])
                check(value is not None and bounds[0] <= value <= bounds[1], f'{what} with a value in {bounds}: {value}')
            else:
                check(bool(matches), what if matches else what + '; names of that role: '
                      + repr(sorted({f[1] for f in found if f[0] == role})[:12]))

        tabs = [f[2] for f in found if f[0] == 'page tab']
        selected = [t.name for t in tabs if t.getState().contains(pyatspi.STATE_SELECTED)]
        check(len(selected) == 1 and selected[0] in ('Summary', 'System Information'),
              f'{idiom}: the first page\'s tab alone is selected: {selected}')
        target = tabs[-1]
        action = target.queryAction()
        names = [action.getName(i).lower() for i in range(action.nActions)]
        check('press' in names, f'{idiom}: a tab can be pressed: {names}')
        if 'press' in names:
            action.doAction(names.index('press'))
            check(until(lambda: target.getState().contains(pyatspi.STATE_SELECTED), 5),
                  f'{idiom}: pressing the "{target.name}" tab shows and selects its page')
            check(until(lambda: any(f[1] == target.name and f[0] in ('filler', 'scroll pane')
                                    for f in walk(app, [])), 5),
                  f'{idiom}: the pager is named after the page it shows, "{target.name}"')

        if idiom == 'phone' and shutil.which('xdotool'):
            # The keys start on the pager; Tab goes round to the page indicator and back (no
            # banner is shown here).
            def focused():
                return [f'{f[0]} {f[1]}' for f in walk(app, [])
                        if f[0] != 'frame' and f[2].getState().contains(pyatspi.STATE_FOCUSED)]
            order = [focused()]
            for _ in range(2):
                subprocess.run(['xdotool', 'key', 'Tab'], env=env)
                time.sleep(0.5)
                order.append(focused())
            # The pager's viewport says it is focused along with the pager: the pager comes first.
            expected = [[f'filler {target.name}'], ['page tab list Pages'], [f'filler {target.name}']]
            check([o[:1] for o in order] == expected,
                  f'{idiom}: Tab moves from the page shown to the page indicator and back: {order}')

        history = [f[2] for f in found if f[0] == 'chart' and f[1].startswith('CPU history')]
        figure = [f[2] for f in found if f[0] == 'label' and f[1].startswith('User ')]
        before = (history[0].name, figure[0].name) if history and figure else None
        time.sleep(4.5)  # two ticks
        after = (history[0].name, figure[0].name) if history and figure else None
        check(before is not None and before[0] != after[0],
              f'{idiom}: after a tick the CPU history reads anew: {before} -> {after}')
    finally:
        kovar.terminate()
        try:
            kovar.wait(10)
        except subprocess.TimeoutExpired:
            kovar.kill()
            kovar.wait()


def main():
    if os.environ.get('KOVAR_WALK_BUS') != '1':
        missing = [tool for tool in ('Xvfb', 'dbus-run-session') if not shutil.which(tool)]
        if not os.path.exists('/usr/libexec/at-spi-bus-launcher'):
            missing.append('at-spi2-core')
        if subprocess.run(['/usr/bin/python3', '-c', 'import pyatspi'], capture_output=True).returncode != 0:
            missing.append('python3-pyatspi')
        if missing:
            print('SKIP: missing ' + ', '.join(missing))
            return SKIP
        env = dict(os.environ, KOVAR_WALK_BUS='1')
        return subprocess.run(['dbus-run-session', '--', '/usr/bin/python3', __file__, KOVAR], env=env).returncode

    display = free_display()
    if display is None:
        check(False, 'a free X display number')
        return 1
    xvfb = subprocess.Popen(['Xvfb', f':{display}', '-screen', '0', '1280x1024x24', '-nolisten', 'tcp'],
                            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    try:
        if not until(lambda: os.path.exists(f'/tmp/.X11-unix/X{display}'), 10):
            check(False, f'Xvfb on :{display} started')
            return 1
        # A window manager, so that the window is activated and the Network page filled.
        wm = subprocess.Popen(['openbox'], env=dict(os.environ, DISPLAY=f':{display}'),
                              stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL) if shutil.which('openbox') else None
        time.sleep(1)  # for it to take the screen before the first window maps
        import pyatspi
        for idiom in ('phone', 'tablet'):
            check_idiom(pyatspi, idiom, display)
    finally:
        if 'wm' in locals() and wm:
            wm.terminate()
            wm.wait(10)
        xvfb.send_signal(signal.SIGTERM)
        xvfb.wait(10)
    print(f'{len(failures)} failed' if failures else 'all passed')
    return 1 if failures else 0


if __name__ == '__main__':
    sys.exit(main())
