#!/usr/bin/env python3
# A real cut, end to end: processes that become cleanup candidates in a headless desktop (a CPU
# hog of our own and an idle Mousepad window), the popover opened from the tray item, the row's
# Cut button found through the accessibility tree and pressed with the pointer where it is drawn;
# the process is asked to quit, exits, and its row leaves. A hog of another user and one with a
# protected name run beside them the whole time and must never be offered.
#
#     cut_end_to_end.py --binary build/src/app/quelmo

import json
import os
import pwd
import signal
import struct
import subprocess
import sys
import time

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from desktop_session import DesktopSession, SessionError, wait_until  # noqa: E402
from tray_end_to_end import CheckFailed, click, expect, registered, running, settled_item, \
    wait_popover  # noqa: E402

OVERALL_SECONDS = 400
PROBE = os.path.join(os.path.dirname(os.path.abspath(__file__)), "atspi_probe.py")
# The Python that has pyatspi (Debian's python3-pyatspi), whatever python runs this script.
SYSTEM_PYTHON = "/usr/bin/python3"
# A push button's role name: "push button" in at-spi2-core 2.46 (Debian 12), "button" in 2.56
# (Debian 13).
PUSH_BUTTON_ROLES = ("push button", "button")

OWN_HOG = "cuttest-hog"
PROTECTED_HOG = "pulseaudio"   # a protected name: sound would go down with it
FOREIGN_HOG = "foreign-hog"    # runs as another user


def hog(session, name, user=None):
    # A busy loop whose process name is `name`, optionally as another user. It runs at the
    # lowest priority: three of them on a two-core machine would otherwise starve the program
    # under test and the X server, while its CPU share still reads as a hog's.
    code = (f"import ctypes, os\n"
            f"os.nice(19)\n"
            f"{'os.setgid(%d); os.setuid(%d)' % (user.pw_gid, user.pw_uid) if user else ''}\n"
            f"ctypes.CDLL(None).prctl(15, b'{name}', 0, 0, 0)\n"
            f"while True: pass\n")
    return session.spawn([SYSTEM_PYTHON, "-c", code])


def qsettings_variant_map(values):
    # A map of names to reals as QSettings keeps it in its text file: a QDataStream (Qt 4.0
    # format) of the QVariant, every byte escaped.
    data = struct.pack(">II", 8, len(values))
    for key, seconds in values.items():
        encoded = key.encode("utf-16-be")
        data += struct.pack(">I", len(encoded)) + encoded + struct.pack(">Id", 6, seconds)
    return "@Variant(" + "".join(f"\\x{b:02x}" for b in data) + ")"


def seed_settings(session, last_active):
    # The keenest sensitivity (a busy process is offered after 6 s), and when each application
    # was last in front.
    folder = os.path.join(session.env["XDG_CONFIG_HOME"], "quelmo")
    os.makedirs(folder, exist_ok=True)
    with open(os.path.join(folder, "quelmo.conf"), "w") as f:
        f.write("[General]\nnuvex.sensitivity=1\n"
                f"quelmo.focus.lastActive.v1={qsettings_variant_map(last_active)}\n")


def accessible_tree(session, pid):
    result = subprocess.run([SYSTEM_PYTHON, PROBE, "tree", str(pid)], env=session.env,
                            capture_output=True, text=True, timeout=60)
    return [json.loads(line) for line in result.stdout.splitlines() if line.startswith("{")]


def cut_buttons(session, pid):
    # The Cut buttons on screen, as {row name: centre}.
    found = {}
    for node in accessible_tree(session, pid):
        if node["role"] in PUSH_BUTTON_ROLES and node["name"] == "Cut" and node["extents"]:
            x, y, w, h = node["extents"]
            found[node["description"].split(" — ")[0]] = (x + w // 2, y + h // 2)
    return found


def settled_rows(session, pid, name, what):
    # The Cut buttons once the one for `name` sits still: a row that has just left (a cut, a
    # refresh) slides the rows below it up, and a click read before that lands beside them.
    seen = [None]

    def settled():
        found = cut_buttons(session, pid)
        seen.append(found.get(name))
        return found if name in found and seen[-2] == found[name] else None
    return wait_until(settled, 60, what, interval=0.3)


def header_button(session, pid):
    for node in accessible_tree(session, pid):
        if node["role"] in PUSH_BUTTON_ROLES and node["name"].startswith("Cut pick") \
                and node["extents"]:
            x, y, w, h = node["extents"]
            return x + w // 2, y + h // 2
    return None


def window_of(session, pid):
    found = session.run(["xdotool", "search", "--onlyvisible", "--pid", str(pid)]).stdout.split()
    return found[0] if found else None


def check_real_cut(session, binary):
    user = pwd.getpwnam("nobody")
    # Mousepad, opened and then left behind another window: in front of it goes xlogo.
    # (A few megabytes of text keep it clear of the smallest size an idle application is offered
    # at, 40 MiB.)
    document = os.path.join(session.root, "notes.txt")
    with open(document, "w") as f:
        f.write("Nothing to see here.\n" * 200000)
    mousepad = session.spawn(["mousepad", "--disable-server", document])
    wait_until(lambda: window_of(session, mousepad.pid), 30, "Mousepad's window")
    with running(session, ["xlogo", "-geometry", "300x300+100+300"]) as logo:
        window = wait_until(lambda: session.run(["xdotool", "search", "--onlyvisible", "--class",
                                                 "xlogo"]).stdout.split(), 20, "xlogo's window")[0]
        session.run(["xdotool", "windowactivate", "--sync", window])
        seed_settings(session, {"org.xfce.mousepad": time.time() - 3 * 3600})

        own = hog(session, OWN_HOG)
        others = [hog(session, PROTECTED_HOG), hog(session, FOREIGN_HOG, user)]
        # (The popover's own log says, should it not open, whether the click reached the program.)
        env = {"QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1", "NO_AT_BRIDGE": "0", "LANGUAGE": "en",
               "QT_LOGGING_RULES": "quelmo.popover.debug=true"}
        try:
            with running(session, [binary], env) as quelmo:
                registered(session, quelmo)
                (x, y), _ = settled_item(session)
                click(session, x, y)
                wait_popover(session, True)
                hx, hy = wait_until(lambda: header_button(session, quelmo.pid), 30,
                                    "the cleanup card's header")
                click(session, hx, hy)

                rows = settled_rows(session, quelmo.pid, OWN_HOG, f"a row for {OWN_HOG}")
                expect(PROTECTED_HOG not in rows and FOREIGN_HOG not in rows,
                       f"protected or foreign processes offered: {sorted(rows)}")
                click(session, *rows[OWN_HOG])
                expect(own.wait(10) == -signal.SIGTERM,
                       f"{OWN_HOG} ended with {own.returncode}, not by SIGTERM")
                wait_until(lambda: OWN_HOG not in cut_buttons(session, quelmo.pid), 10,
                           f"the {OWN_HOG} row to leave")

                rows = settled_rows(session, quelmo.pid, "Mousepad", "a row for Mousepad")
                expect(PROTECTED_HOG not in rows and FOREIGN_HOG not in rows,
                       f"protected or foreign processes offered: {sorted(rows)}")
                click(session, *rows["Mousepad"])
                # Asked to close its window (an unchanged document closes without a question).
                expect(mousepad.wait(10) == 0, f"Mousepad ended with {mousepad.returncode}")
                wait_until(lambda: "Mousepad" not in cut_buttons(session, quelmo.pid), 10,
                           "the Mousepad row to leave")
                expect(all(p.poll() is None for p in others),
                       "a protected or foreign process was ended")
                expect(quelmo.poll() is None, "the program ended")
        finally:
            for p in [own, mousepad, *others]:
                p.kill()
                p.wait(5)


def main():
    if sys.argv[1:2] != ["--binary"] or len(sys.argv) < 3:
        sys.exit(f"usage: {sys.argv[0]} --binary PROGRAM")
    binary = os.path.abspath(sys.argv[2])

    def give_up(*_):
        raise SystemExit(f"gave up after {OVERALL_SECONDS} s")

    signal.signal(signal.SIGALRM, give_up)
    signal.signal(signal.SIGTERM, give_up)
    signal.alarm(OVERALL_SECONDS)
    with DesktopSession() as session:
        session.spawn(["/usr/libexec/at-spi-bus-launcher", "--launch-immediately"])
        started = time.monotonic()
        try:
            check_real_cut(session, binary)
        except (CheckFailed, SessionError, subprocess.TimeoutExpired) as error:
            print(f"FAIL real_cut: {error}\n{session.log_tail()}", file=sys.stderr)
            return 1
        print(f"ok   real_cut ({time.monotonic() - started:.1f} s)")
    return 0


if __name__ == "__main__":
    sys.exit(main())
