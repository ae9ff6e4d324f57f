#!/usr/bin/env python3
# End to end: where the popover opens and how the icon looks on trays other than the default
# desktop's: a dark and a light XEmbed tray (trayer, which asks no icon colour), a host that
# reports clicks relative to its own widget, and the program at a scale other than the panel's.
#
#     placement_end_to_end.py --binary build/src/app/quelmo [CHECK...]
# runs every check, or only those named (without "check_").

import os
import re
import shutil
import sys
import time

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from desktop_session import DesktopSession, SessionError, wait_until  # noqa: E402
from tray_end_to_end import (BURST_SECONDS, CheckFailed, click, expect,  # noqa: E402
                             registered, run_checks, running, settled_item, sni, xembed_icon)

OVERALL_SECONDS = 420
POPOVER_WIDTH = 320  # logical pixels
TRAY_HEIGHT = 28


def luminance(rgb):
    def linear(channel):
        c = channel / 255
        return c / 12.92 if c <= 0.04045 else ((c + 0.055) / 1.055) ** 2.4
    r, g, b = map(linear, rgb)
    return 0.2126 * r + 0.7152 * g + 0.0722 * b


def contrast(a, b):
    la, lb = sorted((luminance(a), luminance(b)))
    return (lb + 0.05) / (la + 0.05)


def popover(session, scale=1):
    found = session.run(["xdotool", "search", "--onlyvisible", "--class", "^quelmo$"])
    shown = [session.window_geometry(w) for w in found.stdout.split()]
    return next((g for g in shown if g and g[2] == POPOVER_WIDTH * scale and g[3] >= 300 * scale),
                None)


def wait_popover(session, shown, scale=1):
    if not shown:
        return wait_until(lambda: not popover(session, scale), 20, "the popover to close")
    return wait_until(lambda: popover(session, scale), 90, "the popover to open")


def icon_contrast(session, centre, size=24):
    # The icon's contrast with the tray as it is on screen: the tray's colour is the one most
    # pixels around the icon have; the icon's, the one that differs most from it.
    x, y = centre
    rows = session.pixels((x - size // 2 - 4, y - size // 2 - 4, size + 8, size + 8))
    colours = [rgb for row in rows for rgb in row]
    tray = max(set(colours), key=colours.count)
    return max(contrast(rgb, tray) for rgb in colours), tray


# -- the checks -----------------------------------------------------------------------------------

def check_icon_stands_out_on_dark_and_light_xembed_trays(binary):
    if not shutil.which("trayer"):
        raise CheckFailed("trayer is not installed (scripts/install-deps.sh test)")
    for tint, dark in (("0x202020", True), ("0xf0f0f0", False)):
        # No StatusNotifierItem host and a tray that asks no icon colour: only its pixels say
        # what the icon is drawn on.
        with DesktopSession(panel=False) as session, \
                running(session, ["trayer", "--edge", "top", "--align", "right",
                                  "--widthtype", "pixel", "--width", "200", "--height",
                                  str(TRAY_HEIGHT), "--transparent", "true", "--alpha", "0",
                                  "--tint", tint, "--SetDockType", "true"]), \
                running(session, [binary]):
            centre = xembed_icon(session)
            # The icon is tinted again once the tray has drawn its background.
            seen = []
            try:
                ratio, tray = wait_until(
                    lambda: (seen.append(icon_contrast(session, centre)) or seen[-1][0] >= 3)
                    and seen[-1], 15, f"the icon to stand out on the {tint} tray", interval=0.5)
            except SessionError as error:
                raise CheckFailed(f"{error}: contrast {seen[-1][0]:.2f}:1 on {seen[-1][1]}")
            expect(luminance(tray) < 0.2 if dark else luminance(tray) > 0.6,
                   f"the tray is {tray}, not as tinted")
            print(f"     {tint} tray {tray}: icon contrast {ratio:.2f}:1", flush=True)

            # The popover opens on release, not on press.
            x, y = centre
            session.run(["xdotool", "mousemove", str(x), str(y), "mousedown", "1"])
            time.sleep(1.5)
            expect(not popover(session), "the popover opened on the press")
            session.run(["xdotool", "mouseup", "1"])
            gx, gy, gw, gh = wait_popover(session, True)
            expect(gx <= x <= gx + gw and gy >= TRAY_HEIGHT,
                   f"the popover at {(gx, gy)} is not under the icon at {centre}")
            click(session, x, y)
            wait_popover(session, False)


def check_widget_relative_click_points(session, binary):
    # Hosts that report a point inside their own widget ((0, 25) on MATE, (8, 14) on waybar):
    # the popover still opens under the pointer on the item, not at the screen's left edge.
    with running(session, [binary]) as proc:
        service = registered(session, proc)
        (x, y), _ = settled_item(session)
        for point in ((0, 25), (8, 14)):
            session.run(["xdotool", "mousemove", str(x), str(y)])
            sni(session, service, "Activate", *point)
            gx, gy, gw, gh = wait_popover(session, True)
            expect(gx <= x <= gx + gw, f"Activate{point}: the popover at x={gx} is not under "
                                       f"the pointer at x={x}")
            expect(gy >= TRAY_HEIGHT, f"Activate{point}: the popover (top {gy}) covers the panel")
            time.sleep(BURST_SECONDS)  # a second click within a burst is part of the first
            sni(session, service, "Activate", *point)
            wait_popover(session, False)
            time.sleep(BURST_SECONDS)


def check_popover_under_the_item_at_another_scale(session, binary):
    # The panel at 1×, the program at 2×: the host's point is in device pixels; the popover
    # (640 device pixels wide) hangs under the item all the same, and so under a point the
    # host reports for an item in the middle of the screen.
    with running(session, [binary], {"QT_SCALE_FACTOR": "2"}) as proc:
        service = registered(session, proc)
        (x, y), _ = settled_item(session)
        click(session, x, y)
        gx, gy, gw, gh = wait_popover(session, True, scale=2)
        expect(gx <= x <= gx + gw, f"the popover at x={gx}..{gx + gw} is not under the item "
                                   f"at x={x}")
        expect(gy >= TRAY_HEIGHT, f"the popover (top {gy}) covers the panel")
        time.sleep(BURST_SECONDS)
        click(session, x, y)
        wait_popover(session, False, scale=2)
        time.sleep(1)
        session.run(["xdotool", "mousemove", "800", "14"])
        sni(session, service, "Activate", 800, 14)
        gx, gy, gw, gh = wait_popover(session, True, scale=2)
        expect(gx == 800 - gw // 2 and gy >= TRAY_HEIGHT,
               f"the popover at {(gx, gy)} is not centred under x=800")
        time.sleep(BURST_SECONDS)
        sni(session, service, "Activate", 800, 14)
        wait_popover(session, False, scale=2)


SEPARATE = [check_icon_stands_out_on_dark_and_light_xembed_trays]
SHARED = [check_widget_relative_click_points, check_popover_under_the_item_at_another_scale]


def main():
    return run_checks(SEPARATE, SHARED, OVERALL_SECONDS)


if __name__ == "__main__":
    sys.exit(main())
