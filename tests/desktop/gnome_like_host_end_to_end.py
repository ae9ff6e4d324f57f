#!/usr/bin/env python3
# End to end on a host that treats clicks like GNOME Shell's AppIndicator extension: a single
# left click opens the item's menu (when it has entries) and only a double click calls Activate.
# The stand-in (gnome_like_host) is the watcher and the host on a bus of its own, as the
# extension is inside the shell; the program must still open its popover on one click.
#
#     gnome_like_host_end_to_end.py --binary build/src/app/quelmo --host build/.../gnome_like_host

import argparse
import os
import re
import signal
import sys
import time

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from desktop_session import WATCHER, DesktopSession, SessionError, wait_until  # noqa: E402
from tray_end_to_end import click, expect, popover, running, wait_popover  # noqa: E402


def host_icon(session):
    found = session.run(["xdotool", "search", "--onlyvisible", "--name", "gnome-like-host item"])
    geometries = [session.window_geometry(w) for w in found.stdout.split()]
    return next(((x + w // 2, y + h // 2) for x, y, w, h in filter(None, geometries)), None)


def listed_items(session, bus):
    return session.run(["gdbus", "call", "--session", "--dest", WATCHER, "--object-path",
                        "/StatusNotifierWatcher", "--method", "org.freedesktop.DBus.Properties.Get",
                        WATCHER, "RegisteredStatusNotifierItems"], env=bus).stdout


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--binary", required=True)
    parser.add_argument("--host", required=True)
    args = parser.parse_args()
    signal.signal(signal.SIGALRM, lambda *_: sys.exit("gave up after 240 s"))
    signal.alarm(240)
    with DesktopSession() as session:
        bus = {"DBUS_SESSION_BUS_ADDRESS": session.new_bus()}
        with running(session, [args.host], bus), \
                running(session, [os.path.abspath(args.binary)],
                        {**bus, "QT_LOGGING_RULES": "quelmo.popover.debug=true"}) as proc:
            x, y = wait_until(lambda: host_icon(session), 30, "the item on the stand-in's panel")
            # (The program learns what kind of host it faces right after registering.) The host
            # asks AboutToShow as the item arrives, which is no click.
            time.sleep(1)
            expect(not popover(session), "the popover opened without a click")
            # A host that draws labels gets the title as one, with the widest title as its guide.
            items = listed_items(session, bus)
            service, path = re.findall(r"'(:[^'/@]+)@(/[^']*)'", items)[0]
            label = session.run(["gdbus", "call", "--session", "--dest", service, "--object-path",
                                 path, "--method", "org.freedesktop.DBus.Properties.GetAll",
                                 "org.kde.StatusNotifierItem"], env=bus).stdout
            expect(re.search(r"'XAyatanaLabel': <'\d+% \d+%'>", label) and
                   "'XAyatanaLabelGuide': <'100% 100%'>" in label, f"no label in {label[:300]}")
            # The shell looks for Activate in the item's description.
            described = session.run(["gdbus", "introspect", "--session", "--dest", service,
                                     "--object-path", path], env=bus)
            expect(described.returncode == 0 and "Activate(" in described.stdout,
                   f"the item's description: {described.stderr or described.stdout[:300]}")
            click(session, x, y)
            wait_popover(session, True)
            # Another click closes it (the press takes the focus away, or the shell reports it)
            # and the shell's late report of that click does not open it again. While the host's
            # own menu still holds its grab, as the shell's does, that click only closes the
            # menu: a second one then closes the popover.
            time.sleep(1)
            click(session, x, y)
            try:
                wait_until(lambda: not popover(session), 3, "the popover to close")
            except SessionError:
                time.sleep(1)
                click(session, x, y)
                wait_popover(session, False)
            time.sleep(1.5)
            expect(not popover(session), "the popover opened again after the closing click")
            expect(proc.poll() is None, "the program ended")
    print("ok: one click opened the popover")
    dropped_item_falls_back(args)
    print("ok: an item the host kept dropping came back and opens on a click")
    return 0


def dropped_item_falls_back(args):
    # A host that drops the item again and again (as the shell did for items it failed to set
    # up): the program registers anew a few times, then shows its fallback icon, which Qt hands
    # to the same host; that one stays, and a click on it opens the popover.
    with DesktopSession() as session:
        bus = {"DBUS_SESSION_BUS_ADDRESS": session.new_bus()}
        with running(session, [args.host, "--drop-first", "6"], bus), \
                running(session, [os.path.abspath(args.binary)], bus) as proc:
            def listed():
                return re.findall(r"'([^']*)'", listed_items(session, bus))
            first = wait_until(listed, 30, "the item")[0]
            # The fallback icon comes from a connection of its own, so it is listed apart.
            wait_until(lambda: [e for e in listed() if e != first], 90, "the fallback item")
            time.sleep(1.5)  # it stays: the host drops only the first few
            expect(len(listed()) == 1 and first not in listed(), f"listed: {listed()}")
            x, y = wait_until(lambda: host_icon(session), 10, "the kept item's icon")
            # Without menu entries the host calls Activate on a double click only.
            session.run(["xdotool", "mousemove", str(x), str(y), "click", "--repeat", "2",
                         "--delay", "120", "1"])
            wait_popover(session, True)
            expect(proc.poll() is None, "the program ended")


if __name__ == "__main__":
    sys.exit(main())
