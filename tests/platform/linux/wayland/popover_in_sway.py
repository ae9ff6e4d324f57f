#!/usr/bin/env python3
# The real program's popover in a sway session with a bar (run by sway_session.py --bar top|bottom):
# sway centres a floating XWayland window whatever position it asks for, and a bar's tray
# reports clicks relative to its own widget (waybar: (8, 14)). The popover must open next to
# the pointer on the bar all the same, clear of the bar.
#
#     sway_session.py --bar top -- popover_in_sway.py --binary build/src/app/quelmo

import json
import os
import re
import select
import subprocess
import sys
import time

POPOVER_WIDTH = 320


class Failed(AssertionError):
    pass


def wait_until(predicate, timeout, what):
    deadline = time.monotonic() + timeout
    while not (value := predicate()):
        if time.monotonic() >= deadline:
            raise Failed(f"timed out after {timeout} s waiting for {what}")
        time.sleep(0.1)
    return value


def swaymsg(*args):
    return subprocess.run(["swaymsg", *args], capture_output=True, text=True, timeout=10).stdout


def nodes(node=None):
    node = node or json.loads(swaymsg("-t", "get_tree", "-r"))
    yield node
    for child in node.get("nodes", []) + node.get("floating_nodes", []):
        yield from nodes(child)


def free_area():
    # The workspace's rectangle: the output without the bar.
    workspace = next(n for n in nodes() if n.get("type") == "workspace" and
                     not n["name"].startswith("__"))
    r = workspace["rect"]
    return r["x"], r["y"], r["width"], r["height"]


def popover():
    for n in nodes():
        if (n.get("window_properties") or {}).get("class") == "quelmo" and \
                n["rect"]["width"] == POPOVER_WIDTH:
            return n["rect"]
    return None


def start_bus():
    read_end, write_end = os.pipe()
    subprocess.Popen(["dbus-daemon", "--session", "--nofork", f"--print-address={write_end}"],
                     pass_fds=(write_end,), stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    os.close(write_end)
    if not select.select([read_end], [], [], 20)[0]:
        raise Failed("no session bus")
    return os.read(read_end, 512).decode().strip()


def activate(env, service, x, y):
    subprocess.run(["gdbus", "call", "--session", "--dest", service, "--object-path",
                    "/StatusNotifierItem", "--method", "org.kde.StatusNotifierItem.Activate",
                    "--", str(x), str(y)], env=env, capture_output=True, timeout=20)


def item_service(env, pid):
    names = subprocess.run(["gdbus", "call", "--session", "--dest", "org.freedesktop.DBus",
                            "--object-path", "/", "--method", "org.freedesktop.DBus.ListNames"],
                           env=env, capture_output=True, text=True, timeout=20).stdout
    found = re.search(rf"'(org\.kde\.StatusNotifierItem-{pid}-\d+)'", names)
    return found and found.group(1)


def main():
    if sys.argv[1:2] != ["--binary"] or len(sys.argv) != 3:
        sys.exit(f"usage: {sys.argv[0]} --binary PROGRAM")
    env = {**os.environ, "DBUS_SESSION_BUS_ADDRESS": start_bus(), "QT_QPA_PLATFORM": "xcb",
           "NO_AT_BRIDGE": "1"}
    program = subprocess.Popen([sys.argv[2]], env=env)
    failures = []
    try:
        service = wait_until(lambda: item_service(env, program.pid), 30, "the item on the bus")
        ax, ay, aw, ah = free_area()
        bar_at_top = ay > 0
        bar_edge = ay if bar_at_top else ay + ah

        def clear_of_bar(r):
            return r["y"] >= bar_edge if bar_at_top else r["y"] + r["height"] <= bar_edge
        for pointer_x in (ax + aw - 40, ax + 300):
            # The pointer on the item in the bar; the host says (8, 14), inside its widget.
            pointer = (pointer_x, bar_edge - 8 if bar_at_top else bar_edge + 8)
            swaymsg("seat", "-", "cursor", "set", str(pointer[0]), str(pointer[1]))
            activate(env, service, 8, 14)
            try:
                # Placed once sway has mapped it; the first opening loads the whole scene.
                rect = wait_until(
                    lambda: (r := popover()) and r["x"] <= pointer[0] <= r["x"] + r["width"]
                    and clear_of_bar(r) and r, 60,
                    f"the popover next to the pointer at {pointer}")
                print(f"pointer {pointer}: popover at ({rect['x']}, {rect['y']}) "
                      f"{rect['width']}x{rect['height']}, free area {(ax, ay, aw, ah)}", flush=True)
                expect_left = max(ax, min(pointer[0] - POPOVER_WIDTH // 2, ax + aw - POPOVER_WIDTH))
                if rect["x"] != expect_left:
                    failures.append(f"pointer {pointer}: popover at x={rect['x']}, "
                                    f"not centred under it ({expect_left})")
            except Failed as error:
                failures.append(f"{error}; it is at {popover()}")
            time.sleep(0.3)  # a second click within 0.2 s is part of the first
            activate(env, service, 8, 14)
            wait_until(lambda: not popover(), 20, "the popover to close")
            time.sleep(0.6)  # (a click right after a close is taken as part of it)
    except Failed as error:
        failures.append(str(error))
    finally:
        program.terminate()
        program.wait(10)
    for failure in failures:
        print("FAIL", failure, file=sys.stderr)
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
