#!/usr/bin/env python3
# Reads a running program's accessibility tree over AT-SPI and acts on it; the desktop tests run
# it with a Python that has pyatspi (Debian's python3-pyatspi), inside their session.
#
#     atspi_probe.py tree PID            the showing objects as JSON lines: role, name,
#                                        description and extents (x, y, width, height)
#     atspi_probe.py press PID NAME      presses (clicks) the showing object named NAME

import json
import sys
import time

import pyatspi


def application(pid, timeout=15):
    # The registry learns of a program a moment after it connects to the accessibility bus.
    deadline = time.monotonic() + timeout
    while True:
        desktop = pyatspi.Registry.getDesktop(0)
        for i in range(desktop.childCount):
            app = desktop.getChildAtIndex(i)
            if app is not None and app.get_process_id() == pid:
                return app
        if time.monotonic() > deadline:
            return None
        time.sleep(0.3)


def showing(node, depth=0):
    if node is None or depth > 60:
        return
    states = node.getState()
    if node.getRole() not in (pyatspi.ROLE_APPLICATION, pyatspi.ROLE_FRAME, pyatspi.ROLE_WINDOW) \
            and not states.contains(pyatspi.STATE_SHOWING):
        return
    yield node
    for i in range(node.childCount):
        yield from showing(node.getChildAtIndex(i), depth + 1)


def extents(node):
    try:
        box = node.queryComponent().getExtents(pyatspi.DESKTOP_COORDS)
        return [box.x, box.y, box.width, box.height]
    except NotImplementedError:
        return None


def main():
    command, pid = sys.argv[1], int(sys.argv[2])
    app = application(pid)
    if app is None:
        print(f"no accessible application with pid {pid}", file=sys.stderr)
        return 1
    if command == "tree":
        for node in showing(app):
            print(json.dumps({"role": node.getRoleName(), "name": node.name,
                              "description": node.description, "extents": extents(node)},
                             ensure_ascii=False))
        return 0
    if command == "press":
        name = sys.argv[3]
        for node in showing(app):
            if node.name == name:
                try:
                    action = node.queryAction()
                except NotImplementedError:
                    continue
                names = [action.getName(i).lower() for i in range(action.nActions)]
                for wanted in ("press", "click", "activate"):
                    if wanted in names:
                        action.doAction(names.index(wanted))
                        return 0
        print(f"nothing named {name!r} to press", file=sys.stderr)
        return 1
    print(f"unknown command {command!r}", file=sys.stderr)
    return 2


if __name__ == "__main__":
    sys.exit(main())
