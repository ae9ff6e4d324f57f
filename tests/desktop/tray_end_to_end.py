#!/usr/bin/env python3
# End to end: the real program in a headless desktop with a real tray host (xfce4-panel).
#
# The checks share one desktop session, because starting one takes seconds, but each starts its
# own instance of the program and ends it, so none depends on another. Every wait polls with a
# generous timeout, so a slow machine only makes the run slower; an overall alarm ends the run
# before the test runner's own limit, and the session ends every process started under it.
#
#     tray_end_to_end.py --binary build/src/app/quelmo [CHECK...]
# runs every check, or only those named (without "check_").

import contextlib
import json
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
TITLE = re.compile(r"^(\d{1,2}|100)% (\d{1,2}|100)%$")
OVERALL_SECONDS = 540
POPOVER_WIDTH = 320
# Clicks closer together than this count as one (a double click, a host sending a click twice).
BURST_SECONDS = 0.3
# Debian's own Python, which has pyatspi (python3-pyatspi), reads the accessibility tree.
ATSPI_PYTHON = "/usr/bin/python3"
ATSPI_PROBE = os.path.join(os.path.dirname(os.path.abspath(__file__)), "atspi_probe.py")


class CheckFailed(AssertionError):
    pass


def expect(condition, message):
    if not condition:
        raise CheckFailed(message)


@contextlib.contextmanager
def running(session, argv, env=None):
    proc = session.spawn(argv, env=env)
    try:
        yield proc
    finally:
        proc.terminate()  # (nothing when it has ended already)
        proc.wait(10)


def registered(session, proc):
    # The item's bus name once the tray host has it; the pid in it tells it from an item of an
    # earlier check that the host has not dropped yet.
    found = wait_until(lambda: [i for i in session.registered_items()
                                if i.startswith(f"{SNI}-{proc.pid}-")], 30, "the item")
    return found[0].split("/")[0]


def sni(session, service, method, *args):
    return session.gdbus("--dest", service, "--object-path", "/StatusNotifierItem", "--method",
                         f"{SNI}.{method}", "--", *map(str, args))


def title_of(session, service):
    # (The label is only offered to hosts that draw labels; the tooltip always has the title.)
    raw = session.get_property(service, "/StatusNotifierItem", SNI, "ToolTip")
    return (re.findall(r"'(\d+% \d+%)'", raw) or [""])[0]


def click(session, x, y, button=1):
    session.run(["xdotool", "mousemove", str(x), str(y), "click", str(button)])


def popover(session):
    found = session.run(["xdotool", "search", "--onlyvisible", "--class", "^quelmo$"])
    shown = [(w, session.window_geometry(w)) for w in found.stdout.split()]
    # The popover is 320 wide and as tall as its content allows.
    return next(((w, g) for w, g in shown if g and g[2] == POPOVER_WIDTH and g[3] >= 300), None)


def wait_popover(session, shown):
    if not shown:
        return wait_until(lambda: not popover(session), 20, "the popover to close")
    # The first opening loads the whole scene, which takes a while in a sanitized debug build
    # on a busy machine.
    window, geometry = wait_until(lambda: popover(session), 90, "the popover to open")
    # As a user would, wait until it has the keyboard before doing anything else.
    wait_until(lambda: session.run(["xdotool", "getactivewindow"]).stdout.strip() == window, 20,
               "the popover to take the keyboard")
    return geometry


def accessible_tree(session, proc):
    # The showing objects of the program as AT-SPI reports them: role, name, description, extents.
    result = session.run([ATSPI_PYTHON, ATSPI_PROBE, "tree", str(proc.pid)])
    return [json.loads(line) for line in result.stdout.splitlines()]


def accessible_names(session, proc):
    return {node["name"] for node in accessible_tree(session, proc)}


def accessible_named(session, proc, name, role=None):
    return next((n for n in accessible_tree(session, proc)
                 if n["name"] == name and (role is None or n["role"] == role) and n["extents"]),
                None)


def settled_named(session, proc, name, role, timeout, what):
    # The named object once it has held still for a second: the popover's content grows while
    # its first readings and candidates arrive, which moves what lies below it.
    seen = [None]

    def settled():
        node = accessible_named(session, proc, name, role)
        seen.append(node and node["extents"])
        return node if node and seen[-3:] == [node["extents"]] * 3 else None
    return wait_until(settled, timeout, what, interval=0.5)


def press_accessible(session, proc, name):
    result = session.run([ATSPI_PYTHON, ATSPI_PROBE, "press", str(proc.pid), name])
    expect(result.returncode == 0, f"could not press {name!r}: {result.stderr.strip()}")


def click_centre(session, extents):
    x, y, w, h = extents
    click(session, x + w // 2, y + h // 2)


def stored_setting(session, key):
    path = os.path.join(session.env["XDG_CONFIG_HOME"], "quelmo", "quelmo.conf")
    try:
        with open(path, encoding="utf-8") as f:
            found = re.search(rf"^{re.escape(key)}=(.*)$", f.read(), re.M)
    except FileNotFoundError:
        return None
    return found.group(1) if found else None


def item_on_panel(session):
    # The panel holds nothing but the tray, so whatever differs from the panel's own colour in
    # its right half is the item: its centre and its contrast with the panel.
    px, py, pw, ph = session.panel_window()
    left, rows = px + pw // 2, session.pixels((px + pw // 2, py, pw - pw // 2, ph))
    colours = [rgb for row in rows for rgb in row]
    background = max(set(colours), key=colours.count)
    # (The rows at the edges hold the panel's border lines.)
    hits = [(x, y, sum(abs(a - b) for a, b in zip(rgb, background)))
            for y, row in enumerate(rows[1:-2], 1) for x, rgb in enumerate(row)]
    hits = [h for h in hits if h[2] > 60]
    if len(hits) < 8:
        return None
    xs, ys = [h[0] for h in hits], [h[1] for h in hits]
    return (left + (min(xs) + max(xs)) // 2, py + (min(ys) + max(ys)) // 2), max(h[2] for h in hits)


def settled_item(session):
    # The item on the panel once it sits still: the host draws the icon first and lays it out
    # again when the title arrives, and a click in between lands beside it.
    seen = [None]

    def settled():
        found = item_on_panel(session)
        seen.append(found and found[0])
        return found if found and seen[-2] == found[0] else None
    return wait_until(settled, 20, "the icon on the panel", interval=0.3)


def xembed_icon(session):
    # The program's icon docked in the XEmbed tray: a small window of its own that is not
    # top-level, returned as its centre once it sits still (the panel lays its icons out again
    # right after one docks).
    icons = [None]

    def settled():
        tree = session.run(["xwininfo", "-root", "-tree"]).stdout
        found = re.findall(r'^ {6,}0x[0-9a-f]+ .*\("quelmo" "quelmo"\)\s+(\d+)x(\d+)\S*\s+\+(-?\d+)'
                           r'\+(-?\d+)', tree, re.M)
        icon = next(((x + w // 2, y + h // 2) for w, h, x, y in (map(int, f) for f in found)
                     if w <= 64 and h <= 64), None)
        icons.append(icon)
        return icon if icon and icons[-2] == icon else None

    return wait_until(settled, 30, "the icon to dock in the XEmbed tray", interval=0.5)


# -- the checks -----------------------------------------------------------------------------------

def check_without_display(binary):
    base = {k: v for k, v in os.environ.items() if k not in ("DISPLAY", "WAYLAND_DISPLAY")}
    unused = next(n for n in range(917, 999) if not os.path.exists(f"/tmp/.X11-unix/X{n}"))
    for extra in ({}, {"DISPLAY": f":{unused}"}, {"WAYLAND_DISPLAY": "wayland-917"}):
        result = subprocess.run([binary], env={**base, **extra}, capture_output=True, text=True,
                                timeout=30)
        expect(result.returncode != 0, f"{extra}: exit status 0")
        expect(re.fullmatch(r"quelmo: [^\n]+\n", result.stderr) and not result.stdout,
               f"{extra}: expected one line on stderr, got {result.stderr!r} {result.stdout!r}")


def check_title_follows_load(session, binary):
    with running(session, [binary]) as proc:
        service = registered(session, proc)
        first = wait_until(lambda: title_of(session, service), 10, "a title")
        expect(TITLE.match(first), f"title {first!r} is not of the form 'N% M%'")
        tooltip = session.get_property(service, "/StatusNotifierItem", SNI, "ToolTip")
        expect(re.search(r"'\d+% \d+%'", tooltip), f"the tooltip {tooltip!r} has no title")
        burners = [session.spawn([sys.executable, "-c", "while True: pass"])
                   for _ in range(os.cpu_count() or 2)]
        try:
            seen = {first}
            for _ in range(80):
                if title := title_of(session, service):
                    seen.add(title)
                busiest = max(int(m.group(1)) for m in map(TITLE.match, seen) if m)
                if busiest >= 60 and len(seen) > 1:
                    break
                time.sleep(0.25)
        finally:
            for burner in burners:
                burner.kill()
        expect(all(map(TITLE.match, seen)), f"titles {sorted(seen)}")
        expect(len(seen) > 1 and busiest >= 60, f"titles {sorted(seen)} with every core busy")


def check_clicks_toggle_the_popover(session, binary):
    # Another application's window, to click into.
    with running(session, ["xlogo", "-geometry", "300x300+100+300"]), \
            running(session, [binary]) as proc:
        service = registered(session, proc)
        (x, y), contrast = settled_item(session)
        expect(contrast >= 100, f"the icon barely stands out from the panel ({contrast})")
        click(session, x, y)
        gx, gy, gw, gh = wait_popover(session, True)
        panel = session.panel_window()
        expect(gy >= panel[1] + panel[3], f"the popover (top {gy}) overlaps the panel")
        expect(gx <= x <= gx + gw, f"the popover at x={gx} is not under the click at {x}")
        expect(gx >= 0 and gx + gw <= session.width and gy + gh <= session.height,
               f"the popover at {(gx, gy)} leaves the screen")
        time.sleep(BURST_SECONDS)
        click(session, x, y)
        wait_popover(session, False)
        wait_until(lambda: session.run(["xdotool", "search", "--onlyvisible", "--class",
                                        "xlogo"]).stdout, 20, "the other window")
        # Escape closes it, and so does a click into another window (it loses the focus).
        for gesture in (["key", "Escape"], ["mousemove", "250", "450", "click", "1"]):
            time.sleep(BURST_SECONDS)
            click(session, x, y)
            wait_popover(session, True)
            session.run(["xdotool", *gesture])
            wait_popover(session, False)
        # Right after a focus-loss close a click is taken as the one that closed it: pause.
        time.sleep(1)
        # A host that passes the pointer position (KDE): the popover hangs under that point.
        session.run(["xdotool", "mousemove", "640", "100"])
        sni(session, service, "Activate", 640, 100)
        at = wait_popover(session, True)
        # Centred under the point; hanging from it unless its height needs it lifted on screen.
        expect(at[0] == 480 and (at[1] == 104 or (at[1] < 104 and at[1] + at[3] == session.height)),
               f"the popover at {at} is not under (640, 100)")
        time.sleep(BURST_SECONDS)
        sni(session, service, "Activate", 640, 100)
        wait_popover(session, False)
        expect(proc.poll() is None, "the program ended")


def check_second_launch_hands_over(session, binary):
    with running(session, [binary]) as first:
        registered(session, first)
        expect(not popover(session), "the popover is open before anyone asked")
        with running(session, [binary]) as second:
            expect(second.wait(30) == 0, f"the second launch exited with {second.returncode}")
        wait_popover(session, True)
        expect(first.poll() is None, "the first instance ended")
        expect(len(session.registered_items()) == 1, "a second item was registered")


def check_host_menu_quits(session, binary):
    with running(session, [binary]) as proc:
        registered(session, proc)
        (x, y), _ = settled_item(session)
        click(session, x, y, button=3)
        menu = wait_until(lambda: host_menu(session), 15, "the panel to show the item's menu")
        expect(not popover(session), "a right click opened the popover")
        # The panel draws this menu; its one entry fills it, so its middle is "Quit Nuvex".
        mx, my, mw, mh = session.window_geometry(menu)
        time.sleep(0.5)
        click(session, mx + mw // 2, my + mh // 2)
        expect(proc.wait(20) == 0, f"quitting from the menu exited with {proc.returncode}")


def host_menu(session):
    found = session.run(["xdotool", "search", "--onlyvisible", "--name", "."]).stdout.split()
    return next((w for w in found if "MENU" in session.run(
        ["xprop", "-id", w, "_NET_WM_WINDOW_TYPE"]).stdout), None)


def check_xembed_fallback(session, binary):
    # Without a StatusNotifierItem host on its bus, the program docks in the XEmbed tray.
    with running(session, [binary], {"DBUS_SESSION_BUS_ADDRESS": session.new_bus()}):
        x, y = xembed_icon(session)
        click(session, x, y)
        wait_popover(session, True)
        click(session, x, y)
        wait_popover(session, False)


def check_popover_content_language_style_and_quit(session, binary):
    # What a user sees in the popover, read as assistive technologies read it; then the footer:
    # the language picker, a cat swatch and Quit.
    env = {"QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1"}
    with running(session, [binary], env) as proc:
        service = registered(session, proc)
        sni(session, service, "Activate", 640, 300)
        wait_popover(session, True)
        english = {"Quelmo", "total power", "CPU", "GPU", "Neural Engine", "Memory", "Power",
                   "Language", "Cat", "Launch at login", "Updated every 1s", "Quit", "White",
                   "Grey", "Cheese", "Black"}
        names = wait_until(lambda: (n := accessible_names(session, proc)) >= english and n, 30,
                           "the popover's texts over AT-SPI")
        expect(any(re.fullmatch(r"\d+%", n) for n in names), f"no percentage among {names}")
        expect(any(re.fullmatch(r"\d+\.\d / \d+\.\d GB", n) for n in names),
               f"no memory detail among {names}")

        picker = settled_named(session, proc, "System", "combo box", 15, "the language picker")
        click_centre(session, picker["extents"])
        korean = settled_named(session, proc, "한국어", None, 10, "the picker's choices")
        click_centre(session, korean["extents"])
        footer = {"언어", "고양이", "로그인 시 자동 실행", "1초마다 갱신", "종료", "까망이"}
        names = wait_until(lambda: (n := accessible_names(session, proc)) >= footer and n, 15,
                           "the footer in Korean")
        expect("Quit" not in names and "Language" not in names, "English left in the footer")
        expect(stored_setting(session, "quelmo.lang") == "ko", "the language was not stored")

        press_accessible(session, proc, "까망이")
        wait_until(lambda: stored_setting(session, "quelmo.catStyle") == "black", 10,
                   "the black style to be stored")

        press_accessible(session, proc, "종료")
        expect(proc.wait(20) == 0, f"Quit in the footer exited with {proc.returncode}")


def check_quit_signals_save_and_leave_the_tray(session, binary):
    baselines = os.path.join(session.env["XDG_CONFIG_HOME"], "quelmo", "baselines.conf")
    for signo in (signal.SIGTERM, signal.SIGINT, signal.SIGHUP):
        with contextlib.suppress(FileNotFoundError):
            os.remove(baselines)
        with running(session, [binary]) as proc:
            service = registered(session, proc)
            # A few refreshes with the popover open: far fewer than the 30 between two saves.
            sni(session, service, "Activate", 640, 300)
            wait_popover(session, True)
            time.sleep(2)
            proc.send_signal(signo)
            expect(proc.wait(20) == 0, f"{signo.name} ended it with {proc.returncode}")
            wait_until(lambda: not [i for i in session.registered_items()
                                    if i.startswith(f"{SNI}-{proc.pid}-")], 20,
                       f"the item to leave the tray after {signo.name}")
            with open(baselines) as f:
                expect("nuvex.baselines.v1=" in f.read(), f"no baselines saved on {signo.name}")


CHECKS = [check_title_follows_load, check_clicks_toggle_the_popover,
          check_popover_content_language_style_and_quit,
          check_second_launch_hands_over, check_host_menu_quits, check_xembed_fallback,
          check_quit_signals_save_and_leave_the_tray]


def run_checks(separate, shared, overall_seconds):
    # Runs the checks named on the command line (all by default): each of `separate` on its own,
    # as check(binary), then those of `shared` in one desktop, as check(session, binary). A failed
    # or broken check is reported without hiding the others.
    if sys.argv[1:2] != ["--binary"] or len(sys.argv) < 3:
        sys.exit(f"usage: {sys.argv[0]} --binary PROGRAM [CHECK...]")
    binary, only = os.path.abspath(sys.argv[2]), sys.argv[3:]

    def give_up(*_):
        raise SystemExit(f"gave up after {overall_seconds} s")

    signal.signal(signal.SIGALRM, give_up)
    signal.signal(signal.SIGTERM, give_up)
    signal.alarm(overall_seconds)
    wanted = [c for c in separate + shared if not only or c.__name__[6:] in only]
    failed = []

    def attempt(check, session=None):
        started, failures = time.monotonic(), len(failed)
        try:
            check(binary) if session is None else check(session, binary)
        except (CheckFailed, SessionError, subprocess.TimeoutExpired) as error:
            tail = session.log_tail() if session else ""
            failed.append(f"{check.__name__}: {error}\n{tail}")
        except Exception:  # a broken check must not hide the others
            failed.append(f"{check.__name__}: {traceback.format_exc()}")
        print(f"{'FAIL' if len(failed) > failures else 'ok  '} {check.__name__[6:]} "
              f"({time.monotonic() - started:.1f} s)", flush=True)

    for check in (c for c in wanted if c in separate):
        attempt(check)
    if in_session := [c for c in wanted if c in shared]:
        with DesktopSession() as session:
            for check in in_session:
                attempt(check, session)
    print("\n\n".join(failed), file=sys.stderr)
    print(f"{len(wanted) - len(failed)} of {len(wanted)} checks passed")
    return 1 if failed or not wanted else 0


def main():
    return run_checks([check_without_display], CHECKS, OVERALL_SECONDS)


if __name__ == "__main__":
    sys.exit(main())
