#!/usr/bin/env python3
"""A private, headless desktop session for driving the real program.

Starts Xvfb on a display of its own, a private session bus, the openbox window manager and an
xfce4-panel whose only business is a system tray (it hosts StatusNotifierItems and XEmbed icons
alike). Everything lives in a temporary folder and every process it started, and every process
those started, is ended when the session stops, whatever happened in between.

Usable as a library (DesktopSession) or as a command:
    desktop_session.py [--dark] [--bottom] -- COMMAND [ARG...]
runs COMMAND inside a fresh session and returns its exit status.
"""

import argparse
import ctypes
import os
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import time

PR_SET_CHILD_SUBREAPER = 36

PANEL_XML = """<?xml version="1.0" encoding="UTF-8"?>
<channel name="xfce4-panel" version="1.0">
  <property name="configver" type="int" value="2"/>
  <property name="panels" type="array">
    <value type="int" value="1"/>
    <property name="dark-mode" type="bool" value="{dark}"/>
    <property name="panel-1" type="empty">
      <property name="position" type="string" value="{position}"/>
      <property name="length" type="uint" value="100"/>
      <property name="position-locked" type="bool" value="true"/>
      <property name="size" type="uint" value="28"/>
      <property name="icon-size" type="uint" value="16"/>
      <property name="plugin-ids" type="array">
        <value type="int" value="1"/>
        <value type="int" value="2"/>
        <value type="int" value="3"/>
      </property>
    </property>
  </property>
  <property name="plugins" type="empty">
    <property name="plugin-1" type="string" value="separator">
      <property name="expand" type="bool" value="true"/>
      <property name="style" type="uint" value="0"/>
    </property>
    <property name="plugin-2" type="string" value="systray">
      <property name="square-icons" type="bool" value="false"/>
      <property name="symbolic-icons" type="bool" value="true"/>
    </property>
    <property name="plugin-3" type="string" value="separator">
      <property name="style" type="uint" value="0"/>
    </property>
  </property>
</channel>
"""

WATCHER = "org.kde.StatusNotifierWatcher"


class SessionError(RuntimeError):
    pass


def wait_until(predicate, timeout, what, interval=0.1):
    """Polls predicate until it returns something truthy; raises SessionError on timeout."""
    deadline = time.monotonic() + timeout
    while True:
        value = predicate()
        if value:
            return value
        if time.monotonic() >= deadline:
            raise SessionError(f"timed out after {timeout:.0f} s waiting for {what}")
        time.sleep(interval)


def _children_map():
    children = {}
    for entry in os.listdir("/proc"):
        if not entry.isdigit():
            continue
        try:
            with open(f"/proc/{entry}/stat", "rb") as f:
                stat = f.read()
        except OSError:
            continue
        # The command name may hold spaces and parentheses: the ppid follows the last ')'.
        fields = stat[stat.rfind(b")") + 2:].split()
        children.setdefault(int(fields[1]), []).append(int(entry))
    return children


def descendants(pid):
    children = _children_map()
    found, stack = [], [pid]
    while stack:
        for child in children.get(stack.pop(), []):
            found.append(child)
            stack.append(child)
    return found


class DesktopSession:
    def __init__(self, dark=False, bottom=False, width=1280, height=800):
        self.dark = dark
        self.bottom = bottom
        self.width = width
        self.height = height
        self.root = None
        self.env = None
        self.display = None
        self.bus_address = None
        self._procs = []
        self._log = None

    # -- lifetime -------------------------------------------------------------------------

    def __enter__(self):
        self.start()
        return self

    def __exit__(self, *exc):
        self.stop()

    def start(self):
        # Orphans of the session (services the bus started, a program's helpers) become our
        # children, so stop() can find and end them too.
        try:
            ctypes.CDLL(None, use_errno=True).prctl(PR_SET_CHILD_SUBREAPER, 1, 0, 0, 0)
        except (OSError, AttributeError):
            pass
        self.root = tempfile.mkdtemp(prefix="quelmo-desktop-")
        self._log = open(os.path.join(self.root, "session.log"), "wb")
        env = {k: v for k, v in os.environ.items()
               if k not in ("DISPLAY", "WAYLAND_DISPLAY", "DBUS_SESSION_BUS_ADDRESS",
                            "SESSION_MANAGER", "XAUTHORITY", "QT_QPA_PLATFORM")}
        for name in ("config", "cache", "data", "runtime", "home"):
            os.makedirs(os.path.join(self.root, name), mode=0o700)
        env.update({
            "HOME": os.path.join(self.root, "home"),
            "XDG_CONFIG_HOME": os.path.join(self.root, "config"),
            "XDG_CACHE_HOME": os.path.join(self.root, "cache"),
            "XDG_DATA_HOME": os.path.join(self.root, "data"),
            "XDG_RUNTIME_DIR": os.path.join(self.root, "runtime"),
            "XDG_SESSION_TYPE": "x11",
            "NO_AT_BRIDGE": "1",
            "GTK_THEME": "Adwaita:dark" if self.dark else "Adwaita",
            "LANG": env.get("LANG", "C.UTF-8"),
        })
        self.env = env
        self._write_panel_config()
        self._start_x()
        self._start_bus()
        self._start_window_manager()
        self.start_panel()

    def stop(self):
        pids = []
        for proc in self._procs:
            pids.extend(descendants(proc.pid))
            pids.append(proc.pid)
        pids.extend(descendants(os.getpid()))
        pids = list(dict.fromkeys(pids))
        for sig in (signal.SIGTERM, signal.SIGKILL):
            for pid in pids:
                try:
                    os.kill(pid, sig)
                except (ProcessLookupError, PermissionError):
                    pass
            deadline = time.monotonic() + 3
            while time.monotonic() < deadline and any(_alive(p) for p in pids):
                _reap()
                time.sleep(0.05)
        _reap()
        self._procs.clear()
        if self._log:
            self._log.close()
            self._log = None
        if self.root and not os.environ.get("QUELMO_KEEP_SESSION"):
            shutil.rmtree(self.root, ignore_errors=True)

    # -- the parts --------------------------------------------------------------------------

    def _write_panel_config(self):
        folder = os.path.join(self.env["XDG_CONFIG_HOME"], "xfce4", "xfconf",
                              "xfce-perchannel-xml")
        os.makedirs(folder)
        # p=6: a full-width panel at the top; p=8: at the bottom.
        position = "p=8;x=0;y=0" if self.bottom else "p=6;x=0;y=0"
        with open(os.path.join(folder, "xfce4-panel.xml"), "w") as f:
            f.write(PANEL_XML.format(dark="true" if self.dark else "false", position=position))

    def _start_x(self):
        read_end, write_end = os.pipe()
        xvfb = self.spawn(["Xvfb", "-displayfd", str(write_end), "-screen", "0",
                           f"{self.width}x{self.height}x24", "-nolisten", "tcp", "-noreset"],
                          pass_fds=(write_end,), with_session_env=False)
        os.close(write_end)
        number = _read_line(read_end, 20, "Xvfb to choose a display")
        os.close(read_end)
        if not number.strip().isdigit():
            raise SessionError(f"Xvfb did not start (exit status {xvfb.poll()})")
        self.display = ":" + number.strip()
        self.env["DISPLAY"] = self.display

    def _start_bus(self):
        read_end, write_end = os.pipe()
        self.spawn(["dbus-daemon", "--session", "--nofork", f"--print-address={write_end}"],
                   pass_fds=(write_end,), with_session_env=True)
        os.close(write_end)
        self.bus_address = _read_line(read_end, 20, "the session bus").strip()
        os.close(read_end)
        if not self.bus_address:
            raise SessionError("dbus-daemon did not start")
        self.env["DBUS_SESSION_BUS_ADDRESS"] = self.bus_address

    def _start_window_manager(self):
        self.spawn(["openbox", "--sm-disable"])
        wait_until(lambda: "window id" in self.run(
            ["xprop", "-root", "_NET_SUPPORTING_WM_CHECK"]).stdout, 30, "openbox")

    def start_panel(self):
        self.panel = self.spawn(["xfce4-panel", "--disable-wm-check"])
        wait_until(self.host_registered, 60, "the panel's tray host")
        wait_until(self.panel_window, 30, "the panel window")

    def stop_panel(self):
        # The panel runs some plugins (the tray among them) in helper processes of its own;
        # they go with it, or the next panel finds the tray taken.
        pids = descendants(self.panel.pid) + [self.panel.pid]
        for sig in (signal.SIGTERM, signal.SIGKILL):
            for pid in pids:
                try:
                    os.kill(pid, sig)
                except ProcessLookupError:
                    pass
            deadline = time.monotonic() + 5
            while time.monotonic() < deadline and any(_alive(p) for p in pids):
                _reap()
                time.sleep(0.05)
        wait_until(lambda: not self.host_registered(), 30, "the panel to go away")

    # -- helpers for tests ------------------------------------------------------------------

    def spawn(self, argv, env=None, with_session_env=True, **kwargs):
        child_env = dict(self.env if with_session_env and self.env else os.environ)
        if env:
            child_env.update(env)
        kwargs.setdefault("stdout", self._log)
        kwargs.setdefault("stderr", self._log)
        proc = subprocess.Popen(argv, env=child_env, start_new_session=True, **kwargs)
        self._procs.append(proc)
        return proc

    def run(self, argv, timeout=30, env=None, check=False, text=True):
        child_env = dict(self.env)
        if env:
            child_env.update(env)
        return subprocess.run(argv, env=child_env, capture_output=True, text=text,
                              timeout=timeout, check=check)

    def gdbus(self, *args, timeout=15):
        result = self.run(["gdbus", "call", "--session", "--timeout", str(timeout), *args],
                          timeout=timeout + 5)
        return result.stdout.strip() if result.returncode == 0 else None

    def get_property(self, dest, path, interface, name):
        return self.gdbus("--dest", dest, "--object-path", path, "--method",
                          "org.freedesktop.DBus.Properties.Get", interface, name)

    def host_registered(self):
        value = self.get_property(WATCHER, "/StatusNotifierWatcher", WATCHER,
                                  "IsStatusNotifierHostRegistered")
        return value is not None and "true" in value

    def registered_items(self):
        value = self.get_property(WATCHER, "/StatusNotifierWatcher", WATCHER,
                                  "RegisteredStatusNotifierItems")
        return re.findall(r"'([^']*)'", value or "")

    def panel_window(self):
        """The panel's geometry as (x, y, width, height), once it is mapped."""
        found = self.run(["xdotool", "search", "--onlyvisible", "--class", "xfce4-panel"])
        for window in found.stdout.split():
            geometry = self.window_geometry(window)
            if geometry and geometry[2] >= self.width // 2:
                return geometry
        return None

    def window_geometry(self, window):
        info = self.run(["xwininfo", "-id", str(window)])
        if info.returncode != 0:
            return None
        values = dict(re.findall(r"^\s*(Absolute upper-left [XY]|Width|Height):\s*(-?\d+)",
                                 info.stdout, re.M))
        if len(values) != 4:
            return None
        return (int(values["Absolute upper-left X"]), int(values["Absolute upper-left Y"]),
                int(values["Width"]), int(values["Height"]))

    def screenshot(self, path, crop=None):
        """Saves the screen (or the crop (x, y, w, h) of it) as a PNG."""
        self.run(_import_argv(crop) + [path], check=True)

    def pixels(self, crop):
        """The crop (x, y, w, h) of the screen as rows of (r, g, b) tuples."""
        data = self.run(_import_argv(crop) + ["-depth", "8", "ppm:-"], check=True,
                        text=False).stdout
        # P6 header: magic, width, height, maximum value, each followed by white space.
        fields, offset = [], 0
        while len(fields) < 4:
            while data[offset:offset + 1].isspace():
                offset += 1
            end = offset
            while not data[end:end + 1].isspace():
                end += 1
            fields.append(data[offset:end])
            offset = end
        offset += 1
        width, height = int(fields[1]), int(fields[2])
        body = data[offset:offset + width * height * 3]
        return [[tuple(body[(y * width + x) * 3:(y * width + x) * 3 + 3]) for x in range(width)]
                for y in range(height)]

    def log_tail(self, lines=40):
        try:
            with open(os.path.join(self.root, "session.log"), "rb") as f:
                return b"\n".join(f.read().splitlines()[-lines:]).decode(errors="replace")
        except OSError:
            return ""


def _import_argv(crop):
    argv = ["import", "-window", "root"]
    if crop:
        x, y, w, h = crop
        argv += ["-crop", f"{w}x{h}+{x}+{y}", "+repage"]
    return argv


def _alive(pid):
    try:
        os.kill(pid, 0)
    except ProcessLookupError:
        return False
    except PermissionError:
        return True
    try:
        with open(f"/proc/{pid}/stat") as f:
            return f.read().rsplit(")", 1)[1].split()[0] != "Z"
    except OSError:
        return False


def _reap():
    while True:
        try:
            pid, _ = os.waitpid(-1, os.WNOHANG)
        except ChildProcessError:
            return
        if pid == 0:
            return


def _read_line(fd, timeout, what):
    import select
    data = b""
    deadline = time.monotonic() + timeout
    while not data.endswith(b"\n"):
        remaining = deadline - time.monotonic()
        if remaining <= 0:
            raise SessionError(f"timed out waiting for {what}")
        ready, _, _ = select.select([fd], [], [], remaining)
        if not ready:
            continue
        chunk = os.read(fd, 256)
        if not chunk:
            break
        data += chunk
    return data.decode()


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--dark", action="store_true", help="a dark panel theme")
    parser.add_argument("--bottom", action="store_true", help="the panel at the bottom")
    parser.add_argument("command", nargs=argparse.REMAINDER)
    args = parser.parse_args()
    command = args.command[1:] if args.command[:1] == ["--"] else args.command
    if not command:
        parser.error("no command given")
    with DesktopSession(dark=args.dark, bottom=args.bottom) as session:
        proc = session.spawn(command, stdout=None, stderr=None)
        return proc.wait()


if __name__ == "__main__":
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(143))
    sys.exit(main())
