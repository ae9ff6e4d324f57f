#!/usr/bin/env python3
# How smoothly the popover draws a real cut: runs the desktop cut check (two cuts, each with the
# mascot's journey, its snip and the rows sliding up) with Qt Quick's frame timing logged, and
# prints, for the frames drawn while something moved (frames less than 100 ms apart), how long
# each took to draw and how far apart they came. Goal: every such frame drawn within 32 ms.
# (Frames 50 to 100 ms apart are the endless loops' steps, which come that far apart by design;
# the springs of a cut draw about every 16 ms.)
#
#   bench/app/cut_frames.py [--binary build/release/src/app/quelmo]
#
# Needs what tests/desktop/cut_end_to_end.py needs (scripts/install-deps.sh test).

import argparse
import os
import re
import statistics
import sys
import tempfile

HERE = os.path.dirname(os.path.abspath(__file__))
ROOT = os.path.dirname(os.path.dirname(HERE))
sys.path.insert(0, os.path.join(ROOT, "tests", "desktop"))
import cut_end_to_end  # noqa: E402

FRAME = re.compile(r"Frame rendered with '\w+' renderloop in (\d+)ms.*frameDelta=(\d+)")
MOVING_MS = 100  # frames closer than this belong to one animation
GOAL_MS = 32


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--binary", default=os.path.join(ROOT, "build/release/src/app/quelmo"))
    args = parser.parse_args()
    binary = os.path.realpath(args.binary)
    with tempfile.TemporaryDirectory() as folder:
        log = os.path.join(folder, "frames.log")
        # The check starts the program with an environment of its own: a wrapper adds the
        # frame timing and keeps what the program writes.
        wrapper = os.path.join(folder, "quelmo")
        with open(wrapper, "w") as f:
            f.write("#!/bin/sh\nQT_LOGGING_RULES=\"$QT_LOGGING_RULES;"
                    "qt.scenegraph.time.renderloop=true\" exec \"$0.real\" \"$@\" 2>>"
                    f"'{log}'\n")
        os.chmod(wrapper, 0o755)
        os.symlink(binary, wrapper + ".real")
        sys.argv = [sys.argv[0], "--binary", wrapper]
        status = cut_end_to_end.main()
        with open(log, errors="replace") as f:
            frames = [(int(ms), int(delta)) for ms, delta in FRAME.findall(f.read())]
    moving = [(ms, delta) for ms, delta in frames if delta < MOVING_MS]
    if status != 0 or not moving:
        print(f"cut_frames: the cut check failed ({status}) or drew nothing", file=sys.stderr)
        return 2
    draw = [ms for ms, _ in moving]
    apart = [delta for _, delta in moving]
    worst = max(draw)
    print(f"{len(frames)} frames, {len(moving)} while moving: drawn in {statistics.mean(draw):.1f} ms"
          f" on average, at most {max(draw)} ms; {statistics.median(apart)} ms apart (median), at"
          f" most {max(apart)} ms; {sum(1 for d in apart if d <= 20)} within 20 ms of the last")
    print(f"worst frame of a cut / {GOAL_MS} ms: {worst / GOAL_MS:.2f}  "
          f"{'PASS' if worst < GOAL_MS else 'FAIL'}")
    return 0 if worst < GOAL_MS else 1


if __name__ == "__main__":
    sys.exit(main())
