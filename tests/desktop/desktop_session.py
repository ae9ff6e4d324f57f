#!/usr/bin/env python3
# A private, headless desktop for driving the real program: Xvfb on a display of its own, a
# private session bus, the openbox window manager and an xfce4-panel whose only business is a
# system tray (it hosts StatusNotifierItems and XEmbed icons alike). Everything lives in a
# temporary folder, and every process started here, and every process those started, is ended
# when the session stops, whatever happened in between.
#
# As a library: `with DesktopSession() as session: ...`. As a command:
#     desktop_session.py -- COMMAND [ARG...]
# runs COMMAND inside a fresh session and returns its exit status.

import ctypes
import os
import re
import select
import shutil
import signal
import subprocess
import sys
import tempfile
import time

PR_SET_CHILD_SUBREAPER = 36
WATCHER = "org.kde.StatusNotifierWatcher"
# A full-width panel at the top (p=6); the expanding separator pushes the tray to the right end.
PANEL_XML = """<?xml version="1.0" encoding="UTF-8"?><channel name="xfce4-panel" version="1.0">
<property name="configver" type="int" value="2"/>
<property name="panels" type="array"><value type="int" value="1"/>
 <property name="panel-1" type="empty"><property name="position" type="string" value="p=6;x=0;y=0"/>
  <property name="length" type="uint" value="100"/><property name="size" type="uint" value="28"/>
  <property name="position-locked" type="bool" value="true"/>
  <property name="icon-size" type="uint" value="16"/><property name="plugin-ids" type="array">
  <value type="int" value="1"/><value type="int" value="2"/><value type="int" value="3"/></property>
</property></property>
<property name="plugins" type="empty">
 <property name="plugin-1" type="string" value="separator">
  <property name="expand" type="bool" value="true"/><property name="style" type="uint" value="0"/>
 </property>
 <property name="plugin-2" type="string" value="systray">
  <property name="square-icons" type="bool" value="false"/>
  <property name="symbolic-icons" type="bool" value="true"/></property>
 <property name="plugin-3" type="string" value="separator"/>
</property></channel>
"""


class SessionError(RuntimeError):
    pass


def wait_until(predicate, timeout, what, interval=0.1):
    # Polls predicate until it returns something truthy, and returns that.
    deadline = time.monotonic() + timeout
    while not (value := predicate()):
        if time.monotonic() >= deadline:
            raise SessionError(f"timed out after {timeout:.0f} s waiting for {what}")
        time.sleep(interval)
    return value


def descendants(pid):
    children = {}
    for entry in filter(str.isdigit, os.listdir("/proc")):
        try:
            with open(f"/proc/{entry}/stat", "rb") as f:
                stat = f.read()
        except OSError:
            continue
        # The command name may hold spaces and parentheses: the ppid follows the last ')'.
        children.setdefault(int(stat[stat.rfind(b")") + 2:].split()[1]), []).append(int(entry))
    found, stack = [], [pid]
    while stack:
        below = children.get(stack.pop(), [])
        found += below
        stack += below
    return found


def end_descendants(grace=3):
    # Everything below this process, asked first and then forced. Only current descendants are
    # signalled, never a number that may have been reused; as the subreaper makes orphans our
    # children, reaping here also clears what died under a parent that went first.
    for sig in (signal.SIGTERM, signal.SIGKILL):
        deadline = time.monotonic() + grace
        for pid in descendants(os.getpid()):
            try:
                os.kill(pid, sig)
            except OSError:
                pass
        while descendants(os.getpid()) and time.monotonic() < deadline:
            time.sleep(0.05)
            try:
                while os.waitpid(-1, os.WNOHANG)[0]:
                    pass
            except ChildProcessError:
                pass


def _read_line(fd, what, timeout=20):
    data, deadline = b"", time.monotonic() + timeout
    while not data.endswith(b"\n"):
        if not select.select([fd], [], [], max(0, deadline - time.monotonic()))[0]:
            raise SessionError(f"timed out waiting for {what}")
        if not (chunk := os.read(fd, 256)):
            break
        data += chunk
    os.close(fd)
    if not data.strip():
        raise SessionError(f"nothing came from {what}")
    return data.decode().strip()


class DesktopSession:
    def __init__(self, width=1280, height=800, panel=True):
        # panel=False leaves out the xfce4-panel, for a test that brings a tray of its own.
        self.width, self.height, self.with_panel = width, height, panel
        self.root = self.env = self._log = None

    def __enter__(self):
        try:
            self.start()
        except BaseException:
            self.stop()
            raise
        return self

    def __exit__(self, *exc):
        self.stop()

    def start(self):
        # Orphans of the session (services the bus started, helpers of the panel) become our
        # children, so stop() finds and ends them too.
        ctypes.CDLL(None).prctl(PR_SET_CHILD_SUBREAPER, 1, 0, 0, 0)
        self.root = tempfile.mkdtemp(prefix="quelmo-desktop-")
        self._log = open(os.path.join(self.root, "session.log"), "wb")
        home = {n: os.path.join(self.root, n) for n in ("config", "cache", "data", "run", "home")}
        for folder in home.values():
            os.makedirs(folder, mode=0o700)
        self.env = {k: v for k, v in os.environ.items()
                    if k not in ("DISPLAY", "WAYLAND_DISPLAY", "DBUS_SESSION_BUS_ADDRESS",
                                 "SESSION_MANAGER", "XAUTHORITY", "QT_QPA_PLATFORM")}
        self.env.update(HOME=home["home"], XDG_CONFIG_HOME=home["config"],
                        XDG_CACHE_HOME=home["cache"], XDG_DATA_HOME=home["data"],
                        XDG_RUNTIME_DIR=home["run"], XDG_SESSION_TYPE="x11", NO_AT_BRIDGE="1",
                        GTK_THEME="Adwaita", LANG=os.environ.get("LANG", "C.UTF-8"))
        xfconf = os.path.join(home["config"], "xfce4", "xfconf", "xfce-perchannel-xml")
        os.makedirs(xfconf)
        with open(os.path.join(xfconf, "xfce4-panel.xml"), "w") as f:
            f.write(PANEL_XML)
        self.env["DISPLAY"] = ":" + self._reported(
            lambda fd: ["Xvfb", "-displayfd", fd, "-screen", "0", f"{self.width}x{self.height}x24",
                        "-nolisten", "tcp", "-noreset"], "Xvfb")
        self.env["DBUS_SESSION_BUS_ADDRESS"] = self.new_bus()
        self.spawn(["openbox", "--sm-disable"])
        wait_until(lambda: "window id" in self.run(
            ["xprop", "-root", "_NET_SUPPORTING_WM_CHECK"]).stdout, 30, "openbox")
        if not self.with_panel:
            return
        self.spawn(["xfce4-panel", "--disable-wm-check"])
        wait_until(lambda: "true" in self.watcher("IsStatusNotifierHostRegistered"), 60,
                   "the panel's tray host")
        wait_until(self.panel_window, 30, "the panel window")

    def stop(self):
        end_descendants()
        if self._log:
            self._log.close()
            self._log = None
        if self.root and not os.environ.get("QUELMO_KEEP_SESSION"):
            shutil.rmtree(self.root, ignore_errors=True)

    def _reported(self, argv_with_fd, what):
        # Starts a daemon that tells one line (its display, its address) through a pipe.
        read_end, write_end = os.pipe()
        self.spawn(argv_with_fd(str(write_end)), pass_fds=(write_end,))
        os.close(write_end)
        return _read_line(read_end, what)

    def new_bus(self):
        # Another session bus; returns its address.
        return self._reported(lambda fd: ["dbus-daemon", "--session", "--nofork",
                                          f"--print-address={fd}"], "a session bus")

    def spawn(self, argv, env=None, **kwargs):
        kwargs.setdefault("stdout", self._log)
        kwargs.setdefault("stderr", self._log)
        return subprocess.Popen(argv, env={**self.env, **(env or {})}, start_new_session=True,
                                **kwargs)

    def run(self, argv, text=True, env=None):
        return subprocess.run(argv, env={**self.env, **(env or {})}, capture_output=True,
                              text=text, timeout=30)

    def gdbus(self, *args):
        result = self.run(["gdbus", "call", "--session", "--timeout", "15", *args])
        return result.stdout.strip() if result.returncode == 0 else ""

    def get_property(self, dest, path, interface, name):
        return self.gdbus("--dest", dest, "--object-path", path, "--method",
                          "org.freedesktop.DBus.Properties.Get", interface, name)

    def watcher(self, name):
        return self.get_property(WATCHER, "/StatusNotifierWatcher", WATCHER, name)

    def registered_items(self):
        return re.findall(r"'([^']*)'", self.watcher("RegisteredStatusNotifierItems"))

    def panel_window(self):
        # The panel's (x, y, width, height) once it is mapped.
        found = self.run(["xdotool", "search", "--onlyvisible", "--class", "xfce4-panel"])
        geometries = [self.window_geometry(w) for w in found.stdout.split()]
        return next((g for g in geometries if g and g[2] >= self.width // 2), None)

    def window_geometry(self, window):
        info = self.run(["xwininfo", "-id", str(window)]).stdout
        found = re.findall(r"^\s*(?:Absolute upper-left [XY]|Width|Height):\s*(-?\d+)", info, re.M)
        return tuple(map(int, found)) if len(found) == 4 else None

    def pixels(self, crop):
        # The crop (x, y, w, h) of the screen as rows of (r, g, b) tuples.
        x, y, w, h = crop
        data = self.run(["import", "-window", "root", "-crop", f"{w}x{h}+{x}+{y}", "+repage",
                         "-depth", "8", "rgb:-"], text=False).stdout
        return [[tuple(data[i:i + 3]) for i in range(row, row + 3 * w, 3)]
                for row in range(0, len(data) - 3 * w + 1, 3 * w)]

    def log_tail(self, lines=25):
        with open(os.path.join(self.root, "session.log"), "rb") as f:
            return b"\n".join(f.read().splitlines()[-lines:]).decode(errors="replace")


if __name__ == "__main__":
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(143))
    command = sys.argv[2:] if sys.argv[1:2] == ["--"] else sys.argv[1:]
    if not command:
        sys.exit("usage: desktop_session.py -- COMMAND [ARG...]")
    with DesktopSession() as session:
        sys.exit(session.spawn(command, stdout=None, stderr=None).wait())
