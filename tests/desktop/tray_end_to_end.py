#!/usr/bin/env python3
"""End-to-end checks of the real program in a headless desktop with a real tray host.

Each check starts the program afresh (or reuses the one a previous step left running, where the
step says so), drives it the way a user or a tray host would, and looks at what the desktop
shows. Every wait polls with a generous timeout, so a slow machine only makes the run slower;
an overall alarm ends the whole run before the test runner's own limit, and every process the
run started is ended on the way out.

    tray_end_to_end.py --binary build/src/app/quelmo [--shots DIR] [--only NAME]
"""

import argparse
import os
import re
import signal
import subprocess
import sys
import time
import traceback

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from desktop_session import DesktopSession, SessionError, wait_until  # noqa: E402

SNI = "org.kde.StatusNotifierItem"
TITLE = re.compile(r"^(\d{1,3})% (\d{1,3})%$")
OVERALL_SECONDS = 540
POPOVER_SIZE = (320, 420)


class CheckFailed(AssertionError):
    pass


def expect(condition, message):
    if not condition:
        raise CheckFailed(message)


# -- what the desktop shows ----------------------------------------------------------------------

def popover_windows(session):
    found = session.run(["xdotool", "search", "--onlyvisible", "--class", "^quelmo$"])
    windows = []
    for window in found.stdout.split():
        geometry = session.window_geometry(window)
        if geometry and (geometry[2], geometry[3]) == POPOVER_SIZE:
            windows.append((window, geometry))
    return windows


def wait_popover(session, shown, timeout=20):
    if shown:
        return wait_until(lambda: popover_windows(session), timeout, "the popover to open")[0]
    try:
        wait_until(lambda: not popover_windows(session), timeout, "the popover to close")
    except SessionError as error:
        active = session.run(["xdotool", "getactivewindow"]).stdout.strip()
        pointer = session.run(["xdotool", "getmouselocation"]).stdout.strip()
        raise CheckFailed(f"{error} (active window {active or 'none'}, pointer {pointer})")
    return None


def wait_active(session, window, timeout=20):
    """Waits until `window` has the keyboard, as a user would before clicking elsewhere."""
    wait_until(lambda: session.run(["xdotool", "getactivewindow"]).stdout.strip() == window,
               timeout, "the popover to take the keyboard")


def open_by_click(session, x, y):
    click(session, x, y)
    window, geometry = wait_popover(session, True)
    wait_active(session, window)
    return window, geometry


def host_menu_open(session):
    found = session.run(["xdotool", "search", "--onlyvisible", "--name", "."])
    for window in found.stdout.split():
        kind = session.run(["xprop", "-id", window, "_NET_WM_WINDOW_TYPE"]).stdout
        if "POPUP_MENU" in kind or "DROPDOWN_MENU" in kind:
            return window
    return None


def item_on_panel(session):
    """The tray item's centre and its contrast with the panel, found by looking at the pixels.

    The panel holds nothing but the tray, so whatever differs from the panel's own colour in its
    right half is the item."""
    px, py, pw, ph = session.panel_window()
    crop = (px + pw // 2, py, pw - pw // 2, ph)
    rows = session.pixels(crop)
    counts = {}
    for row in rows:
        for rgb in row:
            counts[rgb] = counts.get(rgb, 0) + 1
    background = max(counts, key=counts.get)

    def distance(rgb):
        return sum(abs(a - b) for a, b in zip(rgb, background))

    hits = [(x, y, distance(rgb)) for y, row in enumerate(rows) for x, rgb in enumerate(row)
            if distance(rgb) > 60]
    # The panel's bottom edge line spans the whole width; an item is a compact blob.
    hits = [h for h in hits if 0 < h[1] < len(rows) - 2]
    if len(hits) < 8:
        return None
    xs, ys = [h[0] for h in hits], [h[1] for h in hits]
    centre = (crop[0] + (min(xs) + max(xs)) // 2, crop[1] + (min(ys) + max(ys)) // 2)
    return centre, max(h[2] for h in hits), (max(xs) - min(xs) + 1)


def sni_service(session):
    for entry in session.registered_items():
        name = entry.split("/")[0]
        if name.startswith(SNI):
            return name
    return None


def sni_property(session, service, name):
    return session.get_property(service, "/StatusNotifierItem", SNI, name)


def title_of(session, service):
    raw = sni_property(session, service, "XAyatanaLabel")
    match = re.search(r"<'([^']*)'>", raw or "")
    return match.group(1) if match else None


def docked_icon(session, timeout=30):
    """The program's XEmbed icon once it sits still in the tray: the panel lays its icons out
    again right after one docks, as a user sees before clicking."""
    last = [None]

    def settled():
        icons = xembed_icons(session)
        current = icons[0] if icons else None
        if current and current == last[0]:
            return current
        last[0] = current
        return None

    return wait_until(settled, timeout, "the icon to dock in the XEmbed tray", interval=0.5)


def xembed_icons(session):
    """XEmbed icons of the program docked in a tray: its small windows that are not top-level."""
    tree = session.run(["xwininfo", "-root", "-tree"]).stdout
    icons = []
    for line in tree.splitlines():
        match = re.match(r"^(\s*)(0x[0-9a-f]+) .*\(\"quelmo\" \"quelmo\"\)\s+(\d+)x(\d+)\+-?\d+\+-?\d+"
                         r"\s+\+(-?\d+)\+(-?\d+)", line)
        if not match:
            continue
        depth = len(match.group(1))
        w, h = int(match.group(3)), int(match.group(4))
        if depth > 5 and w <= 64 and h <= 64:
            icons.append((match.group(2), (int(match.group(5)), int(match.group(6)), w, h)))
    return icons


# -- the program ----------------------------------------------------------------------------------

class Program:
    def __init__(self, session, binary, env=None):
        self.session = session
        self.proc = session.spawn([binary], env=env)

    def exited(self):
        return self.proc.poll() is not None

    def wait_exit(self, timeout=20):
        try:
            return self.proc.wait(timeout)
        except subprocess.TimeoutExpired:
            raise CheckFailed(f"the program did not exit within {timeout} s")

    def end(self):
        if not self.exited():
            self.proc.terminate()
            try:
                self.proc.wait(10)
            except subprocess.TimeoutExpired:
                self.proc.kill()
                self.proc.wait(10)


def click(session, x, y, button=1):
    session.run(["xdotool", "mousemove", str(x), str(y), "click", str(button)])


def key(session, *keys):
    session.run(["xdotool", "key", *keys])


def sni_call(session, service, method, *args):
    return session.gdbus("--dest", service, "--object-path", "/StatusNotifierItem", "--method",
                         f"{SNI}.{method}", "--", *[str(a) for a in args])


# -- the checks -----------------------------------------------------------------------------------

def check_without_display(binary, _shots):
    base = {k: v for k, v in os.environ.items() if k not in ("DISPLAY", "WAYLAND_DISPLAY")}
    unused = next(n for n in range(917, 999) if not os.path.exists(f"/tmp/.X11-unix/X{n}"))
    cases = {"no session": {}, "unreachable display": {"DISPLAY": f":{unused}"},
             "Wayland without XWayland": {"WAYLAND_DISPLAY": "wayland-917"}}
    for label, extra in cases.items():
        result = subprocess.run([binary], env={**base, **extra}, capture_output=True, text=True,
                                timeout=30)
        lines = result.stderr.splitlines()
        expect(result.returncode != 0, f"{label}: exit status 0")
        expect(len(lines) == 1 and lines[0].startswith("quelmo: "),
               f"{label}: expected one line on stderr, got {result.stderr!r}")
        expect(result.stdout == "", f"{label}: unexpected output {result.stdout!r}")


def check_item_appears_when_panel_starts_later(session, binary, _shots):
    session.stop_panel()
    program = Program(session, binary)
    try:
        time.sleep(1.5)
        expect(not program.exited(), "the program ended while no tray was running")
        session.start_panel()
        service = wait_until(lambda: sni_service(session), 30, "the item to register")
        expect(service.startswith(f"{SNI}-{program.proc.pid}-"), f"unexpected name {service}")
        # Once the StatusNotifierItem is shown, the XEmbed stand-in must be gone: one item only.
        time.sleep(1.0)
        wait_until(lambda: not xembed_icons(session), 15, "the XEmbed icon to go away")
        expect(len(session.registered_items()) == 1, "more than one item registered")
    finally:
        program.end()


def check_title_follows_load(session, binary, shots):
    monitor_log = os.path.join(session.root, "labels.log")
    with open(monitor_log, "w") as log:
        monitor = session.spawn(["dbus-monitor", "--session",
                                 f"type='signal',interface='{SNI}',member='XAyatanaNewLabel'"],
                                stdout=log)
    program = Program(session, binary)
    burners = []
    try:
        service = wait_until(lambda: sni_service(session), 30, "the item to register")
        first = wait_until(lambda: title_of(session, service), 10, "a title")
        expect(TITLE.match(first), f"title {first!r} is not of the form 'N% M%'")
        tooltip = sni_property(session, service, "ToolTip")
        expect(re.search(r"'\d{1,3}% \d{1,3}%'", tooltip or ""),
               f"the tooltip {tooltip!r} does not carry the title")
        expect(all(int(n) <= 100 for n in TITLE.match(first).groups()), f"title {first!r}")

        seen = {first}
        highest = 0
        burners = [session.spawn([sys.executable, "-c", "while True: pass"])
                   for _ in range(os.cpu_count() or 2)]
        deadline = time.monotonic() + 12
        while time.monotonic() < deadline:
            title = title_of(session, service)
            if title and TITLE.match(title):
                seen.add(title)
                highest = max(highest, int(TITLE.match(title).group(1)))
                if highest >= 60 and len(seen) > 1:
                    break
            time.sleep(0.25)
        for burner in burners:
            burner.kill()
        expect(len(seen) > 1, f"the title never changed under load ({sorted(seen)})")
        expect(highest >= 60, f"CPU never read more than {highest}% with every core busy")
        if shots:
            session.screenshot(os.path.join(shots, "panel-light.png"),
                               crop=_panel_corner(session))
    finally:
        for burner in burners:
            burner.kill()
        program.end()
        monitor.terminate()
        monitor.wait(10)

    with open(monitor_log) as log:
        labels = re.findall(r'string "([^"]*)"\s*\n\s*string "100% 100%"', log.read())
    expect(len(labels) >= 2, f"only {len(labels)} label signals were seen")
    repeats = [a for a, b in zip(labels, labels[1:]) if a == b]
    expect(not repeats, f"unchanged titles were sent again: {repeats}")


def _panel_corner(session):
    px, py, pw, ph = session.panel_window()
    return (px + pw - 240, py, 240, ph)


def check_clicks_toggle_the_popover(session, binary, shots):
    # Another application's window, to click on when the popover should lose the focus.
    other = session.spawn(["xlogo", "-geometry", "300x300+100+300"])
    wait_until(lambda: session.run(["xdotool", "search", "--onlyvisible", "--class",
                                    "xlogo"]).stdout.strip(), 20, "another window")
    program = Program(session, binary)
    try:
        wait_until(lambda: sni_service(session), 30, "the item to register")
        (x, y), contrast, width = wait_until(lambda: item_on_panel(session), 15,
                                             "the icon to be drawn on the panel")
        expect(contrast >= 100, f"the icon barely stands out from the panel ({contrast})")
        expect(8 <= width <= 40, f"the icon is {width} pixels wide")

        window, (gx, gy, gw, gh) = open_by_click(session, x, y)
        panel = session.panel_window()
        expect(gy >= panel[1] + panel[3], f"the popover ({gy}) overlaps the panel")
        expect(gx <= x <= gx + gw, f"the popover at x={gx} is not under the click at {x}")
        expect(gx >= 0 and gx + gw <= session.width and gy + gh <= session.height,
               "the popover leaves the screen")
        state = session.run(["xprop", "-id", window, "_NET_WM_STATE"]).stdout
        expect("SKIP_TASKBAR" in state, f"the popover shows in taskbars: {state.strip()}")
        if shots:
            session.screenshot(os.path.join(shots, "popover-open.png"))

        click(session, x, y)
        wait_popover(session, False)

        open_by_click(session, x, y)
        key(session, "Escape")
        wait_popover(session, False)

        open_by_click(session, x, y)
        click(session, 250, 450)  # into the other window: the popover loses the focus
        wait_popover(session, False)

        # A host that passes the pointer position (KDE): the popover hangs under that point.
        # (Right after a focus-loss close a click is taken as the one that closed it: wait.)
        time.sleep(1)
        service = sni_service(session)
        sni_call(session, service, "Activate", 640, 300)
        _, (gx, gy, _, _) = wait_popover(session, True)
        expect((gx, gy) == (480, 304), f"the popover is at {(gx, gy)}, not under (640, 300)")
        sni_call(session, service, "Activate", 640, 300)
        wait_popover(session, False)
        expect(not program.exited(), "the program ended")
    finally:
        program.end()
        other.kill()


def check_second_launch_hands_over(session, binary, _shots):
    first = Program(session, binary)
    try:
        wait_until(lambda: sni_service(session), 30, "the item to register")
        expect(not popover_windows(session), "the popover is open before anyone asked")
        second = Program(session, binary)
        status = second.wait_exit(30)
        expect(status == 0, f"the second launch exited with {status}")
        wait_popover(session, True)
        expect(not first.exited(), "the first instance ended")
        expect(len(session.registered_items()) == 1, "a second item was registered")
    finally:
        first.end()


def check_host_menu_quits(session, binary, shots):
    program = Program(session, binary)
    try:
        wait_until(lambda: sni_service(session), 30, "the item to register")
        (x, y), _, _ = wait_until(lambda: item_on_panel(session), 15, "the icon")
        click(session, x, y, button=3)
        menu = wait_until(lambda: host_menu_open(session), 15, "the panel to show the menu")
        expect(not popover_windows(session), "a right click opened the popover")
        if shots:
            session.screenshot(os.path.join(shots, "menu-host.png"), crop=(
                session.width - 400, 0, 400, 120))
        # The panel draws this menu; its one entry fills it, so its middle is "Quit Nuvex".
        mx, my, mw, mh = session.window_geometry(menu)
        time.sleep(0.5)
        click(session, mx + mw // 2, my + mh // 2)
        status = program.wait_exit(20)
        expect(status == 0, f"quitting from the menu exited with {status}")
    finally:
        program.end()


def check_own_menu_quits_on_ctrl_q(session, binary, shots):
    program = Program(session, binary)
    try:
        service = wait_until(lambda: sni_service(session), 30, "the item to register")
        # A host that leaves the menu to the item (ContextMenu) gets the program's own menu.
        sni_call(session, service, "ContextMenu", session.width - 20, 14)
        menu = wait_until(lambda: _own_menu(session), 15, "the item's own menu")
        expect(menu, "no menu")
        if shots:
            session.screenshot(os.path.join(shots, "menu-own.png"), crop=(
                session.width - 400, 0, 400, 120))
        time.sleep(0.5)  # the menu takes the keyboard once it is mapped
        key(session, "ctrl+q")
        status = program.wait_exit(20)
        expect(status == 0, f"Ctrl+Q exited with {status}")
    finally:
        program.end()


def _own_menu(session):
    found = session.run(["xdotool", "search", "--onlyvisible", "--class", "^quelmo$"])
    for window in found.stdout.split():
        geometry = session.window_geometry(window)
        if geometry and geometry[3] < 100 and geometry[2] < 400:
            return window
    return None


def bus_without_tray(session):
    """A second session bus on which no StatusNotifierItem host runs."""
    read_end, write_end = os.pipe()
    session.spawn(["dbus-daemon", "--session", "--nofork", f"--print-address={write_end}"],
                  pass_fds=(write_end,))
    os.close(write_end)
    address = os.read(read_end, 512).decode().strip()
    os.close(read_end)
    return address


def check_xembed_fallback(session, binary, shots):
    """Without a StatusNotifierItem host on its bus, the program docks in the XEmbed tray."""
    program = Program(session, binary, env={"DBUS_SESSION_BUS_ADDRESS": bus_without_tray(session)})
    try:
        try:
            icon, (ix, iy, iw, ih) = docked_icon(session)
        except SessionError as error:
            tree = session.run(["xwininfo", "-root", "-tree"]).stdout
            ours = [line.strip() for line in tree.splitlines() if "quelmo" in line.lower()]
            raise CheckFailed(f"{error}; the program's windows: {ours}")
        if shots:
            session.screenshot(os.path.join(shots, "panel-xembed.png"),
                               crop=_panel_corner(session))
        open_by_click(session, ix + iw // 2, iy + ih // 2)
        click(session, ix + iw // 2, iy + ih // 2)
        wait_popover(session, False)
        click(session, ix + iw // 2, iy + ih // 2, button=3)
        wait_until(lambda: _own_menu(session), 15, "the item's menu")
        time.sleep(0.5)
        key(session, "ctrl+q")
        status = program.wait_exit(20)
        expect(status == 0, f"Ctrl+Q exited with {status}")
    finally:
        program.end()


def check_icon_on_dark_panel(session, binary, shots):
    program = Program(session, binary)
    try:
        wait_until(lambda: sni_service(session), 30, "the item to register")
        _, contrast, _ = wait_until(lambda: item_on_panel(session), 15, "the icon")
        expect(contrast >= 100, f"the icon barely stands out from the dark panel ({contrast})")
        if shots:
            session.screenshot(os.path.join(shots, "panel-dark.png"), crop=_panel_corner(session))
    finally:
        program.end()


def check_xembed_icon_on_dark_panel(session, binary, shots):
    program = Program(session, binary, env={"DBUS_SESSION_BUS_ADDRESS": bus_without_tray(session)})
    try:
        docked_icon(session)
        _, contrast, _ = wait_until(lambda: item_on_panel(session), 15, "the icon")
        expect(contrast >= 100, f"the XEmbed icon barely stands out from the dark panel "
                                f"({contrast})")
        if shots:
            session.screenshot(os.path.join(shots, "panel-dark-xembed.png"),
                               crop=_panel_corner(session))
    finally:
        program.end()


LIGHT_SESSION_CHECKS = [
    check_item_appears_when_panel_starts_later,
    check_title_follows_load,
    check_clicks_toggle_the_popover,
    check_second_launch_hands_over,
    check_host_menu_quits,
    check_own_menu_quits_on_ctrl_q,
    check_xembed_fallback,
]
DARK_SESSION_CHECKS = [check_icon_on_dark_panel, check_xembed_icon_on_dark_panel]


def run_checks(session, checks, binary, shots, only, results):
    for check in checks:
        name = check.__name__[len("check_"):]
        if only and name not in only:
            continue
        started = time.monotonic()
        try:
            check(session, binary, shots)
            results.append((name, None))
        except (CheckFailed, SessionError, subprocess.TimeoutExpired) as error:
            results.append((name, str(error)))
            print(session.log_tail(25), file=sys.stderr)
        except Exception:  # a broken check must not hide the others
            results.append((name, traceback.format_exc()))
        print(f"{'ok  ' if results[-1][1] is None else 'FAIL'} {name} "
              f"({time.monotonic() - started:.1f} s)", flush=True)


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--binary", required=True)
    parser.add_argument("--shots", help="folder for screenshots of the panel and popover")
    parser.add_argument("--only", help="run only these checks (comma-separated names without "
                                       "'check_')")
    args = parser.parse_args()
    binary = os.path.abspath(args.binary)
    if args.shots:
        os.makedirs(args.shots, exist_ok=True)

    def give_up(*_):
        raise SystemExit(f"gave up after {OVERALL_SECONDS} s")

    signal.signal(signal.SIGALRM, give_up)
    signal.signal(signal.SIGTERM, give_up)
    signal.alarm(OVERALL_SECONDS)

    only = set(args.only.split(",")) if args.only else set()
    results = []
    if not only or "without_display" in only:
        try:
            check_without_display(binary, args.shots)
            results.append(("without_display", None))
        except (CheckFailed, subprocess.TimeoutExpired) as error:
            results.append(("without_display", str(error)))
        print(f"{'ok  ' if results[-1][1] is None else 'FAIL'} without_display", flush=True)

    try:
        for dark, checks in ((False, LIGHT_SESSION_CHECKS), (True, DARK_SESSION_CHECKS)):
            if only and not only & {c.__name__[len("check_"):] for c in checks}:
                continue
            with DesktopSession(dark=dark) as session:
                run_checks(session, checks, binary, args.shots, only, results)
    except SessionError as error:
        results.append(("desktop session", str(error)))
        print(f"FAIL desktop session: {error}", flush=True)

    failed = [(name, why) for name, why in results if why]
    for name, why in failed:
        print(f"\n--- {name} ---\n{why}", file=sys.stderr)
    print(f"\n{len(results) - len(failed)} of {len(results)} checks passed")
    return 1 if failed or not results else 0


if __name__ == "__main__":
    sys.exit(main())
