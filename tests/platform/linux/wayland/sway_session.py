#!/usr/bin/env python3
# A private, headless sway session (the wlroots headless backend, the pixman renderer, XWayland
# on) for tests that need a real Wayland compositor. sway refuses to run as root, so as root the
# session and the command run as an unprivileged user made for the purpose ("quelmo-wayland",
# created on first use), with a copy of the program when that user cannot reach it (a checkout
# under /root); any other user runs them as itself. Everything lives in a temporary runtime
# folder, and every process started here is ended when the session stops.
#
#     sway_session.py [--bar top|bottom] -- COMMAND [ARG...]
#
# runs COMMAND inside the session, with WAYLAND_DISPLAY, SWAYSOCK, DISPLAY (XWayland) and a
# private XDG_RUNTIME_DIR and HOME, and returns its exit status. Exit status 77 says that the
# session could not be had here (no sway, no XWayland, no user to run it as): the test is skipped.
# --bar adds a swaybar at that edge of the screen.

import ctypes
import glob
import os
import pwd
import shutil
import signal
import subprocess
import sys
import tempfile
import time

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "..", "desktop"))
from desktop_session import PR_SET_CHILD_SUBREAPER, end_descendants  # noqa: E402

SKIP = 77
USER = "quelmo-wayland"
PASSED_ON = ("QUELMO_", "ASAN_", "UBSAN_", "LSAN_", "GTEST_", "LANG", "LC_ALL")


class Unavailable(Exception):
    pass


def session_user():
    # (uid, gid, home) to run the session as: ourselves unless we are root.
    if os.geteuid() != 0:
        me = pwd.getpwuid(os.geteuid())
        return me.pw_uid, me.pw_gid
    try:
        entry = pwd.getpwnam(USER)
    except KeyError:
        made = subprocess.run(["useradd", "--system", "--no-create-home", "--home-dir", "/nonexistent",
                               "--shell", "/usr/sbin/nologin", USER], capture_output=True)
        if made.returncode not in (0, 9):  # 9: made meanwhile by another run
            raise Unavailable(f"cannot create the user {USER}: {made.stderr.decode().strip()}")
        entry = pwd.getpwnam(USER)
    return entry.pw_uid, entry.pw_gid


def within_reach(command, env, root, uid, gid):
    # As root, the session's user may not reach the program, the files it names or a sanitizer's
    # suppressions file (a checkout under a private home such as /root): those are copied into
    # the session's folder.
    if os.geteuid() != 0:
        return command

    def reachable(path, mode):
        return subprocess.run(["test", mode, path], user=uid, group=gid, extra_groups=[]).returncode == 0

    def copied(path, mode):
        target = os.path.join(root, "bin", os.path.basename(path))
        os.makedirs(os.path.dirname(target), exist_ok=True)
        shutil.copy(path, target)
        os.chmod(target, mode)
        for folder in (os.path.dirname(target), target):
            os.chown(folder, uid, gid)
        return target

    program = shutil.which(command[0])
    if program is None:
        raise Unavailable(f"{command[0]} is not there to run")
    if not reachable(program, "-x"):
        command = [copied(program, 0o700), *command[1:]]
    # So are the files the command names (a script, and the program it drives).
    command = [command[0]] + [
        copied(arg, 0o700) if os.path.isabs(arg) and os.path.isfile(arg) and
        not reachable(arg, "-r") else arg for arg in command[1:]]
    for name, value in env.items():
        if name.endswith("SAN_OPTIONS"):
            options = []
            for option in value.split(":"):
                key, _, path = option.partition("=")
                if key == "suppressions" and os.path.isfile(path) and not reachable(path, "-r"):
                    option = f"suppressions={copied(path, 0o600)}"
                options.append(option)
            env[name] = ":".join(options)
    return command


def wait_for(predicate, timeout, what, process):
    deadline = time.monotonic() + timeout
    while not (value := predicate()):
        if process.poll() is not None:
            raise Unavailable(f"sway ended before {what} (status {process.returncode})")
        if time.monotonic() >= deadline:
            raise Unavailable(f"timed out after {timeout} s waiting for {what}")
        time.sleep(0.02)
    return value


def run(command, bar=None):
    for tool in ("sway", "Xwayland"):
        if not shutil.which(tool):
            raise Unavailable(f"{tool} is not installed (scripts/install-deps.sh test)")
    uid, gid = session_user()
    ctypes.CDLL(None).prctl(PR_SET_CHILD_SUBREAPER, 1, 0, 0, 0)
    root = tempfile.mkdtemp(prefix="quelmo-sway-")
    try:
        folders = {n: os.path.join(root, n) for n in ("home", "config", "cache", "data")}
        for folder in folders.values():
            os.mkdir(folder, 0o700)
        with open(os.path.join(root, "sway.conf"), "w") as f:
            if bar:
                f.write(f"bar {{\n position {bar}\n}}\n")
            f.write("xwayland enable\n"
                    f"exec printenv DISPLAY > {root}/display.tmp && mv {root}/display.tmp {root}/display\n")
        for path in [root, *folders.values(), os.path.join(root, "sway.conf")]:
            os.chown(path, uid, gid)
        os.chmod(root, 0o700)

        env = {k: v for k, v in os.environ.items() if k.startswith(PASSED_ON)}
        env.update(PATH=os.environ.get("PATH", "/usr/bin:/bin"), XDG_RUNTIME_DIR=root,
                   HOME=folders["home"], XDG_CONFIG_HOME=folders["config"],
                   XDG_CACHE_HOME=folders["cache"], XDG_DATA_HOME=folders["data"],
                   DBUS_SESSION_BUS_ADDRESS="disabled:",  # no bus of its own to autolaunch
                   LANG=os.environ.get("LANG", "C.UTF-8"))
        as_user = dict(user=uid, group=gid, extra_groups=[]) if os.geteuid() == 0 else {}
        log = open(os.path.join(root, "sway.log"), "wb")
        sway = subprocess.Popen(["sway", "--config", os.path.join(root, "sway.conf")], cwd=root,
                                env={**env, "WLR_BACKENDS": "headless", "WLR_RENDERER": "pixman",
                                     "WLR_LIBINPUT_NO_DEVICES": "1"},
                                stdout=log, stderr=log, start_new_session=True, **as_user)
        socket = wait_for(lambda: glob.glob(os.path.join(root, "sway-ipc.*.sock")), 10,
                          "its IPC socket", sway)[0]
        display = wait_for(lambda: os.path.exists(os.path.join(root, "display")), 10,
                           "XWayland", sway) and open(os.path.join(root, "display")).read().strip()
        if not display:
            raise Unavailable("sway started without XWayland")
        wayland = wait_for(lambda: [os.path.basename(p) for p in glob.glob(os.path.join(root, "wayland-*"))
                                    if not p.endswith(".lock")], 10, "its Wayland socket", sway)[0]
        env.update(WAYLAND_DISPLAY=wayland, SWAYSOCK=socket, DISPLAY=display,
                   XDG_SESSION_TYPE="wayland", XDG_CURRENT_DESKTOP="sway")
        command = within_reach(command, env, root, uid, gid)
        try:
            status = subprocess.Popen(command, env=env, cwd=root, **as_user).wait()
        except OSError as error:
            raise Unavailable(f"cannot run {command[0]}: {error}")
        if status != 0:
            log.flush()
            with open(os.path.join(root, "sway.log"), "rb") as f:
                sys.stderr.write("--- sway log (last lines) ---\n" +
                                 b"\n".join(f.read().splitlines()[-15:]).decode(errors="replace") + "\n")
        return status
    finally:
        end_descendants()
        shutil.rmtree(root, ignore_errors=True)


if __name__ == "__main__":
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(143))
    args, bar = sys.argv[1:], None
    if args[:1] == ["--bar"] and len(args) > 1:
        bar, args = args[1], args[2:]
    command = args[1:] if args[:1] == ["--"] else args
    if not command or bar not in (None, "top", "bottom"):
        sys.exit("usage: sway_session.py [--bar top|bottom] -- COMMAND [ARG...]")
    try:
        sys.exit(run(command, bar))
    except Unavailable as reason:
        print(f"SKIPPED: no sway session here: {reason}", file=sys.stderr)
        sys.exit(SKIP)
